// Per-shortcut processing on shortcuts that the engine's own writer made: which fields are offered to the matcher,
// when the shortcut is written back, and what the written shortcut then holds.
#include "engine/shortcut_processing.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "engine/shell_link_api.h"
#include "engine/shortcut_reader.h"
#include "engine/shortcut_writer.h"
#include "engine/string_matcher.h"
#include "platform/testing.h"
#include "reports/error_reporter.h"
#include "support/scratch_folder.h"
#ifndef _WIN32
#include "platform/posix/files/testing.h"
#endif

namespace {

struct Fields {
  std::string target, arguments, folder, description;
};

// The fields as the shell link object reads them back, without the reader's repairs.
Fields FieldsOf(const std::string &path) {
  Fields fields;
  IShellLinkA *link = nullptr;
  IPersistFile *persist = nullptr;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                              reinterpret_cast<void **>(&link))))
    return fields;
  WCHAR wide[520];
  char text[520];
  if (SUCCEEDED(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void **>(&persist))) &&
      MultiByteToWideChar(CP_ACP, 0, path.c_str(), -1, wide, 520) != 0 && SUCCEEDED(persist->Load(wide, 0))) {
    WIN32_FIND_DATAA found;
    if (SUCCEEDED(link->GetPath(text, sizeof text, &found, SLGP_RAWPATH))) fields.target = text;
    if (SUCCEEDED(link->GetArguments(text, sizeof text))) fields.arguments = text;
    if (SUCCEEDED(link->GetWorkingDirectory(text, sizeof text))) fields.folder = text;
    if (SUCCEEDED(link->GetDescription(text, sizeof text))) fields.description = text;
  }
  if (persist != nullptr) persist->Release();
  link->Release();
  return fields;
}

// The file's bytes, read through the Windows calls so that the drive path works on both systems.
std::string BytesOf(const std::string &path) {
  HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return "(unreadable)";
  std::string bytes(4096, '\0');
  DWORD got = 0;
  if (!ReadFile(file, &bytes[0], static_cast<DWORD>(bytes.size()), &got, nullptr)) got = 0;
  CloseHandle(file);
  bytes.resize(got);
  return bytes;
}

class ShortcutProcessing : public ::testing::Test {
 protected:
  void SetUp() override {
    CoInitialize(nullptr);
    SetSkipResolve(1);
    SetQuietReader(1);
    SetMatchFlags(kMatchAll);
    SetIncludeArguments(0);
    scratch_.MakeFolder("Old");
    program_ = scratch_.MakeFile("Old\\prog.exe", "MZ");
    link_ = scratch_ / "link.lnk";
  }
  void TearDown() override {
    ReleaseKeptTexts();
    CoUninitialize();
  }
  void Make(const char *arguments, const std::string &folder) {
    ASSERT_EQ(WriteShortcut(nullptr, link_.c_str(), program_.c_str(), arguments, folder.c_str(), program_.c_str(),
                            "kept", 1, 0),
              0u);
  }
  // Processes the shortcut with `oldText` -> `newText`. Result: the status; `changed` whether a field changed.
  unsigned Process(const char *oldText, const char *newText, unsigned flags = kProcessReplace) {
    SetMatchStrings(oldText, newText);
    char path[520];
    std::snprintf(path, sizeof path, "%s", link_.c_str());
    unsigned status = ReplaceInShortcut(nullptr, path, flags, nullptr);
    changed_ = CurrentShortcutChanges() != 0;
    return status;
  }
  // `text` with "\Old\" turned into "\New\", as the matches below do.
  static std::string Moved(std::string text) {
    size_t at = text.find("\\Old");
    if (at != std::string::npos) text.replace(at, 4, "\\New");
    return text;
  }

  ScratchFolder scratch_;
  std::string program_, link_;
  bool changed_ = false;
};

TEST_F(ShortcutProcessing, NoMatchLeavesTheFileAlone) {
  Make("-x", scratch_.Path("Old"));
  std::string before = BytesOf(scratch_.Path("link.lnk"));
  ClearShortcutChanged();
  EXPECT_EQ(Process("\\Elsewhere\\", "\\New\\"), kReadTargetFile);
  EXPECT_FALSE(changed_);
  EXPECT_EQ(WasAnyShortcutChanged(), 0);
  EXPECT_EQ(BytesOf(scratch_.Path("link.lnk")), before);
}

// Target, icon and working folder are always offered; the arguments only with option i; the description never. A
// changed shortcut is written whole, the fields that did not match as they were read.
TEST_F(ShortcutProcessing, WhichFieldsAreOffered) {
  for (int includeArguments : {0, 1}) {
    SCOPED_TRACE(includeArguments);
    Make("\\Old\\arg", scratch_.Path("Old"));
    SetIncludeArguments(includeArguments);
    ClearShortcutChanged();
    Process("\\Old", "\\New");
    EXPECT_TRUE(changed_);
    EXPECT_EQ(WasAnyShortcutChanged(), 1);
    Fields fields = FieldsOf(link_);
    EXPECT_EQ(fields.target, Moved(program_));
    EXPECT_EQ(fields.folder, Moved(scratch_.Path("Old")));
    EXPECT_EQ(fields.arguments, includeArguments ? "\\New\\arg" : "\\Old\\arg");
    EXPECT_EQ(fields.description, "kept");
  }
}

// A shortcut without a working folder is offered its own path in that field, and is written back with it.
TEST_F(ShortcutProcessing, AnEmptyWorkingFolderComesBackAsTheShortcutsOwnPath) {
  scratch_.MakeFolder("Links");
  link_ = scratch_ / "Links\\link.lnk";
  Make("", "");
  Process("\\Links\\", "\\Moved\\");
  EXPECT_TRUE(changed_);
  Fields fields = FieldsOf(link_);
  EXPECT_EQ(fields.target, program_) << "the target did not match";
  EXPECT_EQ(fields.folder, scratch_ / "Moved\\link.lnk");
}

TEST_F(ShortcutProcessing, ASimulationChangesNothingOnDisk) {
  Make("", scratch_.Path("Old"));
  std::string before = BytesOf(scratch_.Path("link.lnk"));
  Process("\\Old", "\\New", kProcessReplace | kProcessSimulate);
  EXPECT_TRUE(changed_) << "the change is still found and reported";
  EXPECT_EQ(BytesOf(scratch_.Path("link.lnk")), before);
}

TEST_F(ShortcutProcessing, AShortcutThatCannotBeReadIsLeftAlone) {
  scratch_.MakeFile("link.lnk", "not a shortcut");
  EXPECT_GE(Process("not", "now"), kReadUnreadable);
  EXPECT_FALSE(changed_);
  EXPECT_EQ(BytesOf(scratch_.Path("link.lnk")), "not a shortcut");
}

// A save that fails is told on standard error, with the shortcut's path and the system's text, and with nothing else:
// the processing says that the shortcut changed all the same, as the result text does.
TEST_F(ShortcutProcessing, AFailedSaveIsToldOnStandardError) {
  Make("", scratch_.Path("Old"));
  std::string before = BytesOf(link_);
#ifdef _WIN32
  // Windows' save opens the file for writing, which a handle that shares reading alone refuses; its load only reads.
  HANDLE holder = CreateFileA(link_.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(holder, INVALID_HANDLE_VALUE);
#else
  ASSERT_TRUE(TestFailCalls("MoveFileExW", ERROR_SHARING_VIOLATION));
#endif
  TestConsoleBegin("");
  Process("\\Old", "\\New");
  std::string output = TestConsoleOutput(), errors = TestConsoleErrors();
  TestConsoleEnd();
#ifdef _WIN32
  CloseHandle(holder);
#else
  TestClearFaults();
#endif
  EXPECT_TRUE(changed_);
  EXPECT_EQ(BytesOf(link_), before);
  EXPECT_EQ(output, "");
  const char *text = DescribeSystemError(link_.c_str(), ERROR_SHARING_VIOLATION);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(errors, "kelmaro: could not save " + link_ + ": " + text + "\n");
  // The same shortcut saved without a hindrance: nothing told.
  TestConsoleBegin("");
  Process("\\Old", "\\New");
  errors = TestConsoleErrors();
  TestConsoleEnd();
  EXPECT_EQ(errors, "");
  EXPECT_EQ(FieldsOf(link_).target, Moved(program_));
}

}  // namespace
