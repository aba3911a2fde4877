// The result text: its rows compared byte for byte in Shift-JIS, on real files, and as the per-shortcut processing
// fills it on a small tree of shortcuts; the report file at the end of a run; the folder fault message.
#include "reports/result_text.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "console/control_store.h"
#include "engine/shortcut_processing.h"
#include "engine/shortcut_reader.h"
#include "engine/shortcut_writer.h"
#include "engine/string_matcher.h"
#include "front/run_driver.h"
#include "platform/testing.h"
#include "reports/error_reporter.h"
#include "reports/last_error.h"
#include "resources/message_ids.h"
#include "support/control_store_clear.h"
#include "support/hex_text.h"
#include "support/scratch_folder.h"
#include "text/resource_strings.h"
#include "walker/walk_context.h"

#ifndef _WIN32
#include "platform/posix/files/testing.h"
#endif

namespace {

const std::string kMissing = "(先にはありません)";
const std::string kArrow = "\r\n          --> ";

std::string Message(UINT id) {
  LoadStrings(id, 0);
  return FirstSlotText();
}

// The text as LockResultText gives it; "" for none.
std::string ResultTextNow() {
  const char *text = LockResultText();
  return text != nullptr ? text : "";
}

// The bracket behind a path in the result text: the path's short form, where it differs by more than case. Windows and
// Wine give every long component a short name; the Linux backend keeps none, so there it is always empty.
std::string ShortFormBracket(const std::string &path) {
#ifdef _WIN32
  char shortPath[MAX_PATH];
  DWORD length = GetShortPathNameA(path.c_str(), shortPath, sizeof shortPath);
  if (length == 0 || length >= sizeof shortPath) return "";
  // A component without a second name stands in its own name, upper-cased, as a short name is spelled.
  CharUpperA(shortPath);
  return lstrcmpiA(shortPath, path.c_str()) == 0 ? "" : "[" + std::string(shortPath) + "]";
#else
  (void)path;
  return "";
#endif
}

// One row for a path that exists: the path, its bracket and its attribute letters.
std::string PathRow(const std::string &path, const std::string &letters) {
  return path + ShortFormBracket(path) + " " + letters;
}

class ResultText : public ::testing::Test {
 protected:
  void SetUp() override {
    ReleaseResultText();
    SetResultBaseFolder(nullptr);
    SetResultTargetCheck(0);
    SetCurrentDirectoryA(scratch_.Path().c_str());
  }
  void TearDown() override {
    ReleaseResultText();
    SetResultBaseFolder(nullptr);
    SetResultTargetCheck(0);
  }
  // One entry with no system error kept, as the engine's callers make it.
  void Add(const char *prefix, const std::string *path, const std::string *target, UINT headingId = 0) {
    SetKeptLastError(0);
    AddResultEntry(nullptr, prefix, path != nullptr ? path->c_str() : nullptr,
                   target != nullptr ? target->c_str() : nullptr, headingId, 0);
  }

  ScratchFolder scratch_;
};

// A text has one heading, the first asked for; only the release of the text lets the next text have one.
TEST_F(ResultText, OnlyTheFirstHeadingAppears) {
  Add("[ｼﾐｭﾚｰｼｮﾝ]", nullptr, nullptr, kMsgChangedItemsHeading);
  Add("second", nullptr, nullptr, kMsgFolderFileErrorTitle);
  EXPECT_EQ(ResultTextNow(), "変更された項目\r\n\r\n[ｼﾐｭﾚｰｼｮﾝ]\r\nsecond\r\n");
  ReleaseResultText();
  Add("third", nullptr, nullptr, kMsgFolderFileErrorTitle);
  EXPECT_EQ(ResultTextNow(), "警告: ﾌｫﾙﾀﾞ・ﾌｧｲﾙｴﾗｰ\r\n\r\nthird\r\n");
}

TEST_F(ResultText, AnEntryOfNothingIsOneLineEnd) {
  Add(nullptr, nullptr, nullptr);
  EXPECT_EQ(ResultTextNow(), "\r\n");
  std::string empty;
  Add("", &empty, &empty);
  EXPECT_EQ(ResultTextNow(), "\r\n\r\n");
}

// The lock holds until the next entry; the release leaves no text.
TEST_F(ResultText, LockAndRelease) {
  EXPECT_EQ(LockResultText(), nullptr) << "no text before the first entry";
  Add("a", nullptr, nullptr);
  char *first = LockResultText();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(LockResultText(), first) << "a second call gives the same pointer";
  Add("b", nullptr, nullptr);
  EXPECT_EQ(ResultTextNow(), "a\r\nb\r\n") << "an entry after a lock still lands";
  ReleaseResultText();
  EXPECT_EQ(LockResultText(), nullptr);
}

// The four letters S, H, R, A in this order, '-' for each that is not set; none for a path that is not there.
TEST_F(ResultText, AttributeLetters) {
  struct Row {
    const char *name;
    bool folder;
    DWORD attributes;  // set after making it; 0: made, left as it is; ~0: not made
    const char *letters;
  } rows[] = {
      {"plain.txt", false, FILE_ATTRIBUTE_ARCHIVE, " ---A"},
      {"locked.txt", false, FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE, " --RA"},
      // A leading dot hides a file on Linux and under Wine; the hidden bit does on Windows.
      {".hidden", false, FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE, " -H-A"},
      {"folder", true, 0, " ----"},
      {"missing.txt", false, ~0u, ""},
#ifdef _WIN32
      {"all.sys", false,
       FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE, " SHRA"},
#endif
  };
  for (const Row &row : rows) {
    std::string path = scratch_ / row.name;
    if (row.attributes != ~0u) {
      if (row.folder)
        scratch_.MakeFolder(row.name);
      else
        scratch_.MakeFile(row.name);
      if (row.attributes != 0) {
        ASSERT_TRUE(SetFileAttributesA(path.c_str(), row.attributes)) << row.name;
      }
    }
    ReleaseResultText();
    Add("[ﾘﾝｸ先]", &path, nullptr);
    std::string expected = "[ﾘﾝｸ先]" + path + ShortFormBracket(path) + row.letters + "\r\n";
    EXPECT_EQ(ResultTextNow(), expected) << row.name << ": " << Hex(ResultTextNow());
  }
}

// A long component brings the short form in brackets, right behind the path; a path that differs from its short form
// only in case brings none.
TEST_F(ResultText, ShortFormInBrackets) {
  std::string longName = scratch_.MakeFile("A Long File Name.txt");
  Add(nullptr, &longName, nullptr);
#ifdef _WIN32
  EXPECT_NE(ShortFormBracket(longName), "") << "Windows and Wine give a long name a short one";
#endif
  EXPECT_EQ(ResultTextNow(), longName + ShortFormBracket(longName) + " ---A\r\n");

  ReleaseResultText();
#ifdef _WIN32
  // The Windows folder's components are short names already, spelled in lower or mixed case.
  char windows[MAX_PATH];
  ASSERT_GT(GetWindowsDirectoryA(windows, sizeof windows), 0u);
  std::string caseOnly = windows;
  const char *letters = " ----";
#else
  // A drive of the scratch folder, and names that are short already.
  scratch_.MakeFolder("abc");
  scratch_.MakeFile("abc\\def.txt");
  TestSetDrives(("T=" + scratch_.LinuxPath()).c_str());
  std::string caseOnly = "T:\\abc\\def.txt";
  const char *letters = " ---A";
#endif
  Add(nullptr, &caseOnly, nullptr);
  EXPECT_EQ(ResultTextNow(), caseOnly + letters + "\r\n");
#ifndef _WIN32
  TestSetDrives(nullptr);
#endif
}

// The target goes on a line of its own behind ten blanks and an arrow, with a remark when it is not there. A relative
// target is looked for in the base folder; with the check off, nothing is looked for.
TEST_F(ResultText, TargetRemarks) {
  scratch_.MakeFolder("base");
  std::string tool = scratch_.MakeFile("base\\tool.exe", "MZ");
  std::string base = scratch_.Path("base");
  std::string gone = scratch_ / "base\\gone.exe";
  struct Row {
    const char *what;
    std::string baseFolder;
    int checkOff;
    std::string target;
    std::string remark;
  } rows[] = {
      {"a full path that is there", "", 0, tool, ""},
      {"a full path that is not there", "", 0, gone, kMissing},
      {"a relative name found in the base folder", base, 0, "tool.exe", ""},
      {"a relative name without a base folder", "", 0, "tool.exe", kMissing},
      {"a relative name missing from the base folder", base, 0, "gone.exe", kMissing},
      {"a full path is not joined to the base folder", base, 0, tool, ""},
      {"a full path in quotes", base, 0, "\"" + tool + "\"", ""},
      {"the check off", base, 1, gone, ""},
      {"the check off, a relative name", "", 1, "gone.exe", ""},
  };
  for (const Row &row : rows) {
    ReleaseResultText();
    SetResultBaseFolder(row.baseFolder.c_str());
    SetResultTargetCheck(row.checkOff);
    Add("[ｵﾌﾟｼｮﾝ]", nullptr, &row.target);
    EXPECT_EQ(ResultTextNow(), "[ｵﾌﾟｼｮﾝ]" + kArrow + row.target + row.remark + "\r\n") << row.what;
  }
}

// The system's text for the error goes behind the row; with no error kept, nothing does. The run-time error number is
// as the caller left it, so that an entry can stand between a failure and its report.
TEST_F(ResultText, SystemTextAndErrno) {
  std::string path = scratch_ / "missing.txt";
  struct Row {
    const char *what;
    DWORD lastError, systemError;
  } rows[] = {
      {"no error", 0, 0},
      {"the error given", 0, ERROR_FILE_NOT_FOUND},
      {"the last error, when none is given", ERROR_ACCESS_DENIED, 0},
  };
  for (const Row &row : rows) {
    DWORD code = row.systemError != 0 ? row.systemError : row.lastError;
    std::string systemText;
    if (const char *text = DescribeSystemError(path.c_str(), code)) systemText = text;
    ReleaseSystemErrorText();
    ReleaseResultText();
    SetKeptLastError(row.lastError);
    errno = 1234;
    AddResultEntry(nullptr, nullptr, path.c_str(), nullptr, 0, row.systemError);
    EXPECT_EQ(errno, 1234) << row.what;
    std::string expected = path;
    if (!systemText.empty()) expected += "\r\n  ｳｨﾝﾄﾞｳｽﾞｼｽﾃﾑからのｴﾗｰﾒｯｾｰｼﾞ\n>>   " + systemText;
    EXPECT_EQ(ResultTextNow(), expected + "\r\n") << row.what;
  }
}

TEST_F(ResultText, DeleteResultFile) {
  scratch_.MakeFile(kReportFileName, "report");
  DeleteResultFile(scratch_.Path().c_str(), kReportFileName);
  EXPECT_EQ(GetFileAttributesA((scratch_ / kReportFileName).c_str()), INVALID_FILE_ATTRIBUTES);
  // Without a folder, the name is taken as it stands: here, in the current folder.
  scratch_.MakeFile(kReportFileName, "report");
  DeleteResultFile("", kReportFileName);
  EXPECT_EQ(GetFileAttributesA((scratch_ / kReportFileName).c_str()), INVALID_FILE_ATTRIBUTES);
  DeleteResultFile(scratch_.Path().c_str(), kReportFileName);  // nothing there: nothing happens
}

// Nothing sets the report folder, so the end of a run deletes no report file, neither in the current folder nor in
// the temporary folder, and leaves no result text behind.
TEST_F(ResultText, TheEndOfARunTouchesNoReportFile) {
  EXPECT_STREQ(ReportFolder(), "");
  std::string work = scratch_.MakeFolder("work");
  std::string temp = scratch_.MakeFolder("temp");
  scratch_.MakeFile("work\\_rplcsc_.txt", "report");
  scratch_.MakeFile("temp\\_rplcsc_.txt", "report");
  ASSERT_TRUE(SetCurrentDirectoryA(work.c_str()));
#ifdef _WIN32
  // The scratch folders of the later tests are made in the temporary folder: it is put back below.
  char savedTmp[MAX_PATH] = "", savedTemp[MAX_PATH] = "";
  DWORD haveTmp = GetEnvironmentVariableA("TMP", savedTmp, sizeof savedTmp);
  DWORD haveTemp = GetEnvironmentVariableA("TEMP", savedTemp, sizeof savedTemp);
  SetEnvironmentVariableA("TMP", temp.c_str());
  SetEnvironmentVariableA("TEMP", temp.c_str());
#else
  const char *oldTmpDir = std::getenv("TMPDIR");
  std::string savedTmpDir = oldTmpDir != nullptr ? oldTmpDir : "";
  setenv("TMPDIR", scratch_.LinuxPath().append("/temp").c_str(), 1);
#endif
  Add("row", nullptr, nullptr);
  ClearControlStore();  // no old string: the pass ends at once, and the run winds down
  RunReplacement(nullptr, 0);
#ifdef _WIN32
  SetEnvironmentVariableA("TMP", haveTmp != 0 ? savedTmp : nullptr);
  SetEnvironmentVariableA("TEMP", haveTemp != 0 ? savedTemp : nullptr);
#else
  if (oldTmpDir != nullptr)
    setenv("TMPDIR", savedTmpDir.c_str(), 1);
  else
    unsetenv("TMPDIR");
#endif
  EXPECT_NE(GetFileAttributesA((scratch_ / "work\\_rplcsc_.txt").c_str()), INVALID_FILE_ATTRIBUTES);
  EXPECT_NE(GetFileAttributesA((scratch_ / "temp\\_rplcsc_.txt").c_str()), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(LockResultText(), nullptr);
}

// The message's text by fault and style, and the style the report then asks with.
TEST(FolderFaultText, Rows) {
  const std::string folder = "[ﾌｫﾙﾀﾞ] ", file = "[ﾌｧｲﾙ] ";
  const std::string readError = "\n" + Message(kMsgReadError), question = Message(kMsgGoOnAsking);
  struct Row {
    int fault, count, style;
    std::string text;
    int styleAfter;
  } rows[] = {
      {-24, 0, 2, "\n" + folder + Message(kMsgNoNetworkDomain), 0},
      {-21, 0, 26, "\n" + folder + Message(kMsgFolderProtected) + question, 26},
      {-19, 0, 9, "\n" + file + Message(kMsgSearchStoppedByKey), 0},
      {-16, 0, 2, "\n" + folder + Message(kMsgFolderStructureDamaged) + readError, 2},
      {-15, 0, 1, "\n" + file + Message(kMsgFileNameUnreadable) + readError, 1},
      {-14, 0, 0, "\n" + Message(kMsgFolderInfoUnreadable) + readError, 0},
      {-13, 0, 0, "\n" + Message(kMsgDiskInfoUnreadable) + readError, 0},
      {-11, 300, 1, "\n" + file + "最大格納数 [300] を超えましたが、続行可能です。" + readError, 1},
      {-10, 0, 0, "\n" + Message(kMsgNoStorage) + readError, 0},
      {2, 0, 10, "\n[ﾌｫﾙﾀﾞ] ｱｸｾｽに失敗しました。\nﾌｫﾙﾀﾞ・ﾌｧｲﾙ読み込み時にｴﾗｰが発生しました。", 6},
      {2, 0, 9, "\n" + file + Message(kMsgAccessFailed) + readError + question, 9},
      {-22, 0, 0, "\n" + Message(kMsgAccessErrorTitle), 0},
      {-5, 0, 8, "\n" + Message(kMsgAccessErrorTitle) + readError + question, 8},
      {-5, 0, 3, "\n" + folder + file + Message(kMsgAccessErrorTitle) + readError, 3},
  };
  for (const Row &row : rows) {
    char text[2048];
    int style = row.style;
    FolderFaultText(text, sizeof text, row.fault, row.count, &style);
    EXPECT_EQ(std::string(text), row.text) << row.fault << " style " << row.style << ": " << Hex(text);
    EXPECT_EQ(style, row.styleAfter) << row.fault << " style " << row.style;
  }
}

class FolderFault : public ResultText {
 protected:
  void SetUp() override {
    ResultText::SetUp();
    TestConsoleBegin("");
  }
  void TearDown() override {
    TestConsoleEnd();
    ResultText::TearDown();
  }
};

// The faults that pass through leave no row; a told fault leaves one under its heading; -11 is always answered 0.
TEST_F(FolderFault, ResultsAndRows) {
  std::string path = scratch_.MakeFolder("dir");
  struct Row {
    int fault, style;
    int result;
    bool row;
  } rows[] = {
      {-18, 10, -18, false}, {-20, 10, -20, false}, {0, 10, 0, false}, {-11, 1, 0, true}, {-21, 2, -1, true},
  };
  for (const Row &row : rows) {
    ReleaseResultText();
    SetKeptLastError(0);
    errno = 7;
    EXPECT_EQ(ReportFolderFault(nullptr, path.c_str(), row.fault, 5, row.style), row.result) << row.fault;
    std::string expected = row.row ? "警告: ﾌｫﾙﾀﾞ・ﾌｧｲﾙｴﾗｰ\r\n\r\n" + PathRow(path, "----") + "\r\n" : "";
    EXPECT_EQ(ResultTextNow(), expected) << row.fault;
    if (row.row) {
      EXPECT_EQ(errno, 0) << row.fault;
    }
  }
  // Fault -24 names no path.
  ReleaseResultText();
  SetKeptLastError(0);
  ReportFolderFault(nullptr, path.c_str(), -24, 0, 2);
  EXPECT_EQ(ResultTextNow(), "警告: ﾌｫﾙﾀﾞ・ﾌｧｲﾙｴﾗｰ\r\n\r\n\r\n");
}

// The rows of a real pass over a small tree, in order: for the changed shortcut a blank row, its head row, each
// changed field with its new text and a remark where that is not there, then the offered fields that did not change;
// for the shortcut that did not change, nothing.
class ResultRows : public ResultText {
 protected:
  void SetUp() override {
    ResultText::SetUp();
    CoInitialize(nullptr);
    SetSkipResolve(1);
    SetQuietReader(1);
    SetMatchFlags(kMatchAll);
    SetIncludeArguments(1);
    ClearShortcutChanged();
    scratch_.MakeFolder("Old");
    scratch_.MakeFolder("Other");
    scratch_.MakeFolder("Links");
    scratch_.MakeFolder("Links\\sub");
    program_ = scratch_.MakeFile("Old\\prog.exe", "MZ");
    other_ = scratch_.MakeFile("Other\\tool.exe", "MZ");
    oldFolder_ = scratch_.Path("Old");
    Make("Links\\a.lnk", program_, "-x", oldFolder_);
    Make("Links\\sub\\b.lnk", other_, "-y", scratch_.Path("Other"));
    SetMatchStrings("\\Old\\", "\\New\\");
  }
  void TearDown() override {
    SetIncludeArguments(0);
    SetQuietReader(0);
    SetSkipResolve(0);
    ReleaseKeptTexts();
    CoUninitialize();
    ResultText::TearDown();
  }
  void Make(const char *name, const std::string &target, const char *arguments, const std::string &folder) {
    ASSERT_EQ(WriteShortcut(nullptr, (scratch_ / name).c_str(), target.c_str(), arguments, folder.c_str(),
                            target.c_str(), "", 1, 0),
              0u);
  }
  // The rows of a.lnk, the one shortcut that changes: its target and icon move from \Old\ to \New\, where nothing is;
  // its working folder (no backslash behind "Old") and its arguments are offered and stay.
  std::string ChangedRows(const std::string &simulationRows) {
    std::string moved = scratch_ / "New\\prog.exe";
    return "\r\n" + simulationRows + PathRow(scratch_ / "Links\\a.lnk", "---A") + "\r\n" + "[ﾘﾝｸ先]" +
           PathRow(program_, "---A") + kArrow + moved + kMissing + "\r\n" + "[ｱｲｺﾝ]" + PathRow(program_, "---A") +
           kArrow + moved + kMissing + "\r\n" + "[ｵﾌﾟｼｮﾝ] (Not Applicable) -x\r\n" + "[作業ﾌｫﾙﾀﾞ] (Not Applicable) " +
           PathRow(oldFolder_, "----") + "\r\n";
  }

  std::string program_, other_, oldFolder_;
};

TEST_F(ResultRows, APassOverATree) {
  PrepareWalk(nullptr, 0, 0, 0, 0, nullptr, nullptr, 0);
  unsigned count = 0;
  TestConsoleBegin("");
  ScanFolderTree(nullptr, nullptr, kWalkShortcutTree, &count, scratch_.Path("Links").c_str(), "*.lnk", nullptr);
  TestConsoleEnd();
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(WasAnyShortcutChanged(), 1);
  std::string text = ResultTextNow();
  EXPECT_EQ(text, ChangedRows("")) << Hex(text);
  EXPECT_EQ(GetFileAttributesA((scratch_ / "New").c_str()), INVALID_FILE_ATTRIBUTES);
}

// A dry run opens the text with the heading of changed items, behind the blank row, and marks the shortcut.
TEST_F(ResultRows, ASimulationIsMarked) {
  std::string link = scratch_ / "Links\\a.lnk";
  char path[520];
  std::snprintf(path, sizeof path, "%s", link.c_str());
  ReplaceInShortcut(nullptr, path, kProcessReplace | kProcessSimulate, nullptr);
  std::string text = ResultTextNow();
  EXPECT_EQ(text, ChangedRows("変更された項目\r\n\r\n[ｼﾐｭﾚｰｼｮﾝ]\r\n")) << Hex(text);
}

}  // namespace
