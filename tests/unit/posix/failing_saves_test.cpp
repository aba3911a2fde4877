// A walk that repairs two shortcuts while one system call of the first one's load or save fails, as a full disk, a
// failing disk, a refused access or a read-only mount makes it fail: the first shortcut keeps every byte and leaves
// no half-made file beside it, the walk goes on to the second, and a failed save is told on standard error.
#include <errno.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "engine/shortcut_processing.h"
#include "engine/shortcut_reader.h"
#include "engine/shortcut_writer.h"
#include "engine/string_matcher.h"
#include "platform/posix/files/error_codes.h"
#include "platform/testing.h"
#include "reports/error_reporter.h"
#include "scratch_drive.h"
#include "walker/walk_context.h"

namespace {

namespace fs = std::filesystem;

// The calls of a save in their order, and those of a load, by the names under which the fault table knows them.
const char *const kSaveCalls[] = {"CreateFileW", "WriteFile", "SetFileInformationByHandle", "CloseHandle",
                                  "MoveFileExW"};
const char *const kLoadCalls[] = {"CreateFileW", "GetFileInformationByHandle", "ReadFile"};
const int kErrnos[] = {ENOSPC, EIO, EACCES, EROFS};

class FailingCalls : public ::testing::Test {
 protected:
  void SetUp() override {
    SetSkipResolve(1);
    SetQuietReader(1);
    SetMatchFlags(kMatchAll);
    SetIncludeArguments(0);
    SetMatchStrings("T:\\Old", "T:\\New");
    fs::create_directory(drive_.Linux("Old"));
    fs::create_directory(drive_.Linux("links"));
    WriteBytes(drive_.Linux("Old/prog.exe"), {'M', 'Z'});
  }
  void TearDown() override { ReleaseKeptTexts(); }

  // Two shortcuts to the old program, a.lnk first in the walk. a.lnk carries the set-group-id bit, which the mask of
  // a new file never gives, so that its save has to set the mode of the new file.
  void MakeShortcuts() {
    for (const char *name : {"a.lnk", "b.lnk"}) {
      std::string path = std::string("T:\\links\\") + name;
      ASSERT_EQ(WriteShortcut(nullptr, path.c_str(), "T:\\Old\\prog.exe", "", "T:\\Old", "", "", 1, 0), 0u);
    }
    ASSERT_EQ(chmod(drive_.Linux("links/a.lnk").c_str(), 02644), 0);
    before_ = ReadBytes(drive_.Linux("links/a.lnk"));
  }

  // How many calls of `call` the first shortcut makes before its save: those of a simulated repair, which reads as a
  // repair does and writes nothing.
  size_t CallsBeforeSave(const char *call) {
    size_t start = TestCountedCalls(call);
    PathBuffer path("T:\\links\\a.lnk");
    TestConsoleBegin("");
    ReplaceInShortcut(nullptr, path.bytes, kProcessReplace | kProcessSimulate, nullptr);
    TestConsoleEnd();
    return TestCountedCalls(call) - start;
  }

  struct Run {
    std::string output, errors;
  };
  // The walk of the run, under options p and r.
  Run Walk() {
    PrepareWalk(nullptr, 3034, 3032, 0, 0, nullptr, nullptr, 0);
    TestConsoleBegin("");
    unsigned count = 0;
    ScanFolderTree(nullptr, nullptr, kWalkShortcutTree, &count, "T:\\links", "*.lnk", nullptr);
    Run run = {TestConsoleOutput(), TestConsoleErrors()};
    TestConsoleEnd();
    PrepareWalk(nullptr, 0, 0, 0, 0, nullptr, nullptr, 0);
    return run;
  }

  std::string TargetOf(const char *name) {
    PathBuffer path(std::string("T:\\links\\") + name);
    ReadShortcut(nullptr, path.bytes, nullptr, nullptr, nullptr, nullptr, nullptr, kReadModeProcessing);
    return path.Text();
  }

  std::vector<std::string> NamesInLinks() {
    std::vector<std::string> names;
    for (const fs::directory_entry &entry : fs::directory_iterator(drive_.Linux("links")))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  ScratchDrive drive_;
  std::vector<uint8_t> before_;
};

TEST_F(FailingCalls, ASaveThatFailsAtAnyCallIsToldAndTheWalkGoesOn) {
  for (const char *call : kSaveCalls) {
    for (int number : kErrnos) {
      SCOPED_TRACE(std::string(call) + " " + std::to_string(number));
      MakeShortcuts();
      DWORD error = ErrorFromErrno(number);
      size_t before = CallsBeforeSave(call);
      ASSERT_TRUE(TestFailCalls(call, error, 1, static_cast<int>(before)));
      Run run = Walk();
      TestClearFaults();
      // What standard output says is as it always was: both shortcuts changed.
      EXPECT_EQ(run.output, "\n T:\\links\n ---> - T:\\links\\a.lnk\n ---> - T:\\links\\b.lnk");
      const char *text = DescribeSystemError("T:\\links\\a.lnk", error);
      ASSERT_NE(text, nullptr);
      EXPECT_EQ(run.errors, "kelmaro: could not save T:\\links\\a.lnk: " + std::string(text) + "\n");
      EXPECT_EQ(ReadBytes(drive_.Linux("links/a.lnk")), before_);
      EXPECT_EQ(NamesInLinks(), (std::vector<std::string>{"a.lnk", "b.lnk"}));
      EXPECT_EQ(TargetOf("a.lnk"), "T:\\Old\\prog.exe");
      EXPECT_EQ(TargetOf("b.lnk"), "T:\\New\\prog.exe");
    }
  }
}

// A load that fails leaves the shortcut unread: no line, nothing written, nothing told.
TEST_F(FailingCalls, ALoadThatFailsAtAnyCallLeavesTheShortcutUnread) {
  for (const char *call : kLoadCalls) {
    for (int number : kErrnos) {
      SCOPED_TRACE(std::string(call) + " " + std::to_string(number));
      MakeShortcuts();
      ASSERT_TRUE(TestFailCalls(call, ErrorFromErrno(number)));
      Run run = Walk();
      TestClearFaults();
      EXPECT_EQ(run.output, "\n T:\\links\n ---> - T:\\links\\b.lnk");
      EXPECT_EQ(run.errors, "");
      EXPECT_EQ(ReadBytes(drive_.Linux("links/a.lnk")), before_);
      EXPECT_EQ(NamesInLinks(), (std::vector<std::string>{"a.lnk", "b.lnk"}));
      EXPECT_EQ(TargetOf("b.lnk"), "T:\\New\\prog.exe");
    }
  }
}

}  // namespace
