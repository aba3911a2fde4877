// The error reporter: the composed texts byte for byte, the system text's fetch and release, the sticky style, the
// alert by style, the access question, and the errors a report leaves as it found them.
#include "reports/error_reporter.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#ifndef _WIN32
#include <locale.h>
#endif

#include "console/console_prompt.h"
#include "platform/testing.h"
#include "reports/last_error.h"
#include "resources/message_ids.h"
#include "support/hex_text.h"
#include "support/scratch_folder.h"
#include "text/path_strings.h"

namespace {

const char kPrefix[] = "ｳｨﾝﾄﾞｳｽﾞｼｽﾃﾑからのｴﾗｰﾒｯｾｰｼﾞ\n>> ";
const char kReadOnlyRemark[] = "[読み込み専用]解除後操作を続行します。";
const char kAnyKey[] = "Press Any Key>>";

// The platform's own text for `code`, without its line end. Windows' wording is read back from the system; on Linux
// it is the C library's text, in the C locale that the fixture sets, for the errno that the code stands for.
std::string SystemText(DWORD code) {
#ifdef _WIN32
  char *text = nullptr;
  DWORD length = FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0,
                                reinterpret_cast<LPSTR>(&text), 0, nullptr);
  std::string out = length != 0 ? std::string(text, length) : std::string();
  LocalFree(text);
  while (!out.empty() && (out.back() == '\r' || out.back() == '\n')) out.pop_back();
  return out;
#else
  int error = code == ERROR_ACCESS_DENIED ? EACCES : code == ERROR_FILE_NOT_FOUND ? ENOENT : 0;
  EXPECT_NE(error, 0) << "no errno named for code " << code;
  locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
  std::string out = strerror_l(error, c);
  freelocale(c);
  return out;
#endif
}

class ErrorReporter : public ::testing::Test {
 protected:
  void SetUp() override {
#ifndef _WIN32
    const char *saved = std::getenv("LC_ALL");
    hadLocale_ = saved != nullptr;
    if (hadLocale_) savedLocale_ = saved;
    setenv("LC_ALL", "C", 1);
#endif
    SetReportStyle(0, nullptr);
    ClearBackslashWasTrimmed();
    TestConsoleBegin("");
  }
  void TearDown() override {
    TestConsoleEnd();
    SetReportStyle(0, nullptr);
    SetBeepSwitch(0);
    SetLanguageIndex(1);
    SetLastError(0);
#ifndef _WIN32
    if (hadLocale_)
      setenv("LC_ALL", savedLocale_.c_str(), 1);
    else
      unsetenv("LC_ALL");
#endif
  }

  // One report with `error` as the last error, answered by `keys`: the console's output and the answer.
  struct Run {
    std::string output;
    int answer;
  };
  Run Report(const char *name, const char *body, DWORD error, int nameMode = 0, const std::string &keys = "",
             bool withAttributes = false) {
    TestConsoleBegin(keys);
    SetLastError(error);
    int answer = withAttributes ? ReportErrorWithAttributes(nullptr, name, body, "T", nameMode)
                                : ReportError(nullptr, name, body, "T", nameMode);
    return {TestConsoleOutput(), answer};
  }

 private:
  bool hadLocale_ = false;
  std::string savedLocale_;
};

// The report's text between the title and the key prompt.
std::string Shown(const std::string &text) { return "T:" + text + kAnyKey; }

TEST_F(ErrorReporter, ComposedTexts) {
  const std::string occurred = "ｴﾗｰが発生しました。";
  struct Row {
    const char *label;
    const char *name;
    const char *body;
    DWORD error;
    int nameMode;
    const char *extraLine;
    std::string text;
  } rows[] = {
      {"nothing but an error: two empty lines, the prefix, the pair", nullptr, nullptr, 0, 0, nullptr,
       "\n\n" + std::string(kPrefix) + occurred},
      {"the pair stands even where the system has a text", nullptr, nullptr, ERROR_ACCESS_DENIED, 0, nullptr,
       "\n\n" + std::string(kPrefix) + occurred},
      {"an empty name counts as none", "", nullptr, 0, 0, nullptr, "\n\n" + std::string(kPrefix) + occurred},
      {"a name and a system text: an empty line between", "C:\\d\\a.txt", nullptr, ERROR_ACCESS_DENIED, 0, nullptr,
       "'C:\\d\\a.txt'\n\n" + std::string(kPrefix) + SystemText(ERROR_ACCESS_DENIED)},
      {"a name with error 0: the name line alone", "C:\\d\\a.txt", nullptr, 0, 0, nullptr, "'C:\\d\\a.txt'\n"},
      {"name mode 1 shows the file name", "C:\\d\\a.txt", nullptr, 0, 1, nullptr, "'a.txt'\n"},
      {"a body alone with a system text", nullptr, "B", ERROR_FILE_NOT_FOUND, 0, nullptr,
       "B\n\n" + std::string(kPrefix) + SystemText(ERROR_FILE_NOT_FOUND)},
      {"a body alone with error 0", nullptr, "B", 0, 0, nullptr, "B"},
      {"an empty body is a body", nullptr, "", 0, 0, nullptr, ""},
      {"name, body and extra line", "C:\\d\\a.txt", "B", 0, 0, "X", "'C:\\d\\a.txt'\nB\nX"},
      {"the extra line right under the name line", "C:\\d\\a.txt", nullptr, 0, 0, "X", "'C:\\d\\a.txt'\nX"},
      {"the extra line under the system text", nullptr, "B", ERROR_ACCESS_DENIED, 0, "X",
       "B\n\n" + std::string(kPrefix) + SystemText(ERROR_ACCESS_DENIED) + "\nX"},
  };
  for (const Row &row : rows) {
    SetReportStyle(0, row.extraLine);
    Run run = Report(row.name, row.body, row.error, row.nameMode);
    EXPECT_EQ(run.output, Shown(row.text)) << row.label << "\n" << Hex(run.output) << "\n" << Hex(Shown(row.text));
    EXPECT_EQ(run.answer, IDOK) << row.label;
  }
}

TEST_F(ErrorReporter, LeavesTheErrorsAsTheyWere) {
  ScratchFolder scratch;
  std::string missing = scratch.Path("missing.txt");
  for (bool withAttributes : {false, true}) {
    TestConsoleBegin("");
    SetLastError(ERROR_ACCESS_DENIED);
    errno = ERANGE;
    // The attribute query of a missing file fails with an error of its own.
    if (withAttributes)
      ReportErrorWithAttributes(nullptr, missing.c_str(), "B", "T", 0);
    else
      ReportError(nullptr, missing.c_str(), "B", "T", 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED)) << withAttributes;
    EXPECT_EQ(GetKeptLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED)) << withAttributes;
    EXPECT_EQ(errno, ERANGE) << withAttributes;
  }
}

TEST_F(ErrorReporter, ReadOnlyRemark) {
  ScratchFolder scratch;
  PathBuffer file(scratch.MakeFile("a.txt"));
  ASSERT_TRUE(SetFileAttributesA(file.bytes, FILE_ATTRIBUTE_READONLY));
  std::string quoted = "'" + file.Text() + "'\n";
  std::string accessText = "\n\n" + std::string(kPrefix) + SystemText(ERROR_ACCESS_DENIED);
  // A body with error 5 on a read-only file: the remark and the system's text.
  Run run = Report(file.bytes, "B", ERROR_ACCESS_DENIED, 0, "", true);
  EXPECT_EQ(run.output, Shown(quoted + "B\n" + kReadOnlyRemark + accessText)) << Hex(run.output);
  // Without a body the remark is followed by the pair, not by the system's text.
  run = Report(file.bytes, nullptr, ERROR_ACCESS_DENIED, 0, "", true);
  EXPECT_EQ(run.output, Shown(quoted + "\n" + kReadOnlyRemark + "\n\n" + kPrefix + "ｴﾗｰが発生しました。"));
  // The attributes live for one report.
  run = Report(file.bytes, "B", ERROR_ACCESS_DENIED);
  EXPECT_EQ(run.output, Shown(quoted + "B" + accessText));
  // A file that is not there counts as a plain one.
  PathBuffer missing(scratch.Path("missing.txt"));
  run = Report(missing.bytes, "B", 0, 0, "", true);
  EXPECT_EQ(run.output, Shown("'" + missing.Text() + "'\nB"));
  SetFileAttributesA(file.bytes, FILE_ATTRIBUTE_NORMAL);
}

TEST_F(ErrorReporter, TrimmedBackslashIsShownOnce) {
  PathBuffer folder("C:\\d\\sub\\");
  ASSERT_EQ(TrimFolderBackslash(folder.bytes), 1);
  EXPECT_EQ(Report(folder.bytes, nullptr, 0).output, Shown("'C:\\d\\sub\\'\n"));
  EXPECT_EQ(Report(folder.bytes, nullptr, 0).output, Shown("'C:\\d\\sub'\n"));
  folder.Set("C:\\d\\sub\\");
  ASSERT_EQ(TrimFolderBackslash(folder.bytes), 1);
  EXPECT_EQ(Report(folder.bytes, nullptr, 0, 1).output, Shown("'sub\\'\n"));
}

TEST_F(ErrorReporter, StyleAndLineStay) {
  SetReportStyle(MB_YESNO | MB_ICONQUESTION, "L");
  const std::string expected = "T:B\nLY:はい N:いいえ>>";
  Run first = Report(nullptr, "B", 0, 0, "y");
  EXPECT_EQ(first.output, expected + "Y");
  EXPECT_EQ(first.answer, IDYES);
  Run second = Report(nullptr, "B", 0, 0, "n");
  EXPECT_EQ(second.output, expected + "N");
  EXPECT_EQ(second.answer, IDNO);
  // A line is kept up to 519 bytes.
  SetReportStyle(0, std::string(600, 'x').c_str());
  EXPECT_EQ(Report(nullptr, "B", 0).output, Shown("B\n" + std::string(519, 'x')));
  SetReportStyle(0, "");
  EXPECT_EQ(Report(nullptr, "B", 0).output, Shown("B"));
}

TEST_F(ErrorReporter, ByIdKeepsItsTitle) {
  ScratchFolder scratch;
  PathBuffer file(scratch.MakeFile("a.txt"));
  ASSERT_TRUE(SetFileAttributesA(file.bytes, FILE_ATTRIBUTE_READONLY));
  SetLastError(0);
  ReportErrorByIdWithAttributes(nullptr, file.bytes, kMsgAccessFailed, kMsgAccessErrorTitle, 1);
  // The read-only remark reloads the message slots; the title was copied before.
  EXPECT_EQ(TestConsoleOutput(),
            "ｱｸｾｸ時にｴﾗｰ発生:'a.txt'\nｱｸｾｽに失敗しました。\n" + std::string(kReadOnlyRemark) + kAnyKey);
  SetFileAttributesA(file.bytes, FILE_ATTRIBUTE_NORMAL);
  TestConsoleBegin("");
  ReportErrorById(nullptr, nullptr, kMsgAccessFailed, kMsgAccessErrorTitle, 0);
  EXPECT_EQ(TestConsoleOutput(), "ｱｸｾｸ時にｴﾗｰ発生:ｱｸｾｽに失敗しました。" + std::string(kAnyKey));
}

TEST_F(ErrorReporter, BeepByStyle) {
  struct Row {
    unsigned style, sounded;
  } rows[] = {{0, 0}, {16, 48}, {32, 48}, {48, 48}, {64, 64}, {16 + 64, 64}, {4, 4}, {4 + 16, 48}};
  for (const Row &row : rows) {
    TestConsoleBegin("");
    ReportBeep(row.style);
    EXPECT_EQ(TestConsoleBeeps(), std::vector<unsigned>{row.sounded}) << row.style;
  }
}

TEST_F(ErrorReporter, ReportsBeepUnlessSwitchedOff) {
  // Reports sound from the start of the process.
  EXPECT_EQ(BeepSwitch(), 0);
  SetReportStyle(MB_ICONHAND, nullptr);
  Report(nullptr, "B", 0);
  EXPECT_EQ(TestConsoleBeeps(), std::vector<unsigned>{MB_ICONEXCLAMATION});
  SetBeepSwitch(1);
  Report(nullptr, "B", 0);
  EXPECT_TRUE(TestConsoleBeeps().empty());
}

TEST_F(ErrorReporter, DescribeSystemError) {
  EXPECT_EQ(DescribeSystemError(nullptr, 0), nullptr);
  EXPECT_EQ(DescribeSystemError("C:\\d\\a.txt", 0), nullptr);
  // A code the system has no text for.
  EXPECT_EQ(DescribeSystemError(nullptr, 0x2000FFFFu), nullptr);
  const char *text = DescribeSystemError(nullptr, ERROR_ACCESS_DENIED);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::string(text), SystemText(ERROR_ACCESS_DENIED));
  SetLastError(ERROR_FILE_NOT_FOUND);
  text = DescribeSystemError("", kCurrentLastError);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::string(text), SystemText(ERROR_FILE_NOT_FOUND));
  ReleaseSystemErrorText();
  ReleaseSystemErrorText();
}

// The file name of the path takes the text's place for a name.
TEST_F(ErrorReporter, DescribeSystemErrorInsertsTheFileName) {
#ifdef _WIN32
  const DWORD code = ERROR_BAD_EXE_FORMAT;
  char name[] = "a.exe";
  char *arguments[1] = {name};
  char *raw = nullptr;
  FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_ARGUMENT_ARRAY, nullptr,
                 code, 0, reinterpret_cast<LPSTR>(&raw), 0, reinterpret_cast<va_list *>(arguments));
  ASSERT_NE(raw, nullptr);
  std::string expected = raw;
  LocalFree(raw);
  while (!expected.empty() && (expected.back() == '\r' || expected.back() == '\n')) expected.pop_back();
#else
  const DWORD code = ERROR_INVALID_NAME;
  std::string expected = "The name a.exe is not valid.";
#endif
  ASSERT_NE(expected.find("a.exe"), std::string::npos);
  const char *text = DescribeSystemError("\"C:\\d\\a.exe\"", code);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::string(text), expected);
  ReleaseSystemErrorText();
}

// A failed save is one line on standard error: the path, and the system's text for the error or, where the system
// has none, the code. Standard output gets nothing, nobody is asked, and the last error stays.
TEST_F(ErrorReporter, AFailedSaveIsToldOnStandardError) {
  SetLastError(ERROR_FILE_NOT_FOUND);
  TellFailedSave("C:\\d\\a.lnk", ERROR_ACCESS_DENIED);
  TellFailedSave("C:\\d\\b.lnk", 0x2000FFFFu);
  TellFailedSave("C:\\d\\c.lnk", 0xFFFFu);
  EXPECT_EQ(TestConsoleErrors(), "kelmaro: could not save C:\\d\\a.lnk: " + SystemText(ERROR_ACCESS_DENIED) +
                                     "\n"
                                     "kelmaro: could not save C:\\d\\b.lnk: error 0x2000FFFF\n"
                                     "kelmaro: could not save C:\\d\\c.lnk: error 65535\n");
  EXPECT_EQ(TestConsoleOutput(), "");
  EXPECT_TRUE(TestConsoleBeeps().empty());
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(ErrorReporter, InternetResponseIsKeptInABlock) {
  size_t blocks = TestLiveBlockCount();
  const char *text = DescribeSystemError(nullptr, ERROR_INTERNET_EXTENDED_ERROR);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::string(text), "");
  EXPECT_EQ(TestLiveBlockCount(), blocks + 1);
  ReleaseSystemErrorText();
  EXPECT_EQ(TestLiveBlockCount(), blocks);
}

TEST_F(ErrorReporter, ReportsFreeTheirBlocks) {
  size_t blocks = TestLiveBlockCount();
  SetReportStyle(0, "L");
  Report("C:\\d\\a.txt", "B", ERROR_ACCESS_DENIED);
  Report(nullptr, nullptr, 0);
  EXPECT_EQ(TestLiveBlockCount(), blocks);
}

TEST_F(ErrorReporter, AccessProblem) {
  HMODULE self = GetModuleHandleA(nullptr);
  const std::string system = kPrefix + SystemText(ERROR_ACCESS_DENIED) + "\n\n";
  const std::string notice = "ｳｲﾝﾄﾞｳｽﾞにより制限されたﾌｫﾙﾀﾞ内のﾌｧｲﾙ作成/消去には[管理者権限]が必要かもしれません。";
  const std::string ask =
      "ｳｲﾝﾄﾞｳｽﾞにより制限されたﾌｫﾙﾀﾞ内のﾌｧｲﾙ･ｻﾌﾞﾌｫﾙﾀﾞ作成/消去には[管理者権限]が必要かもしれません。"
      "ﾌｧｲﾙ･ｻﾌﾞﾌｫﾙﾀﾞの作成/消去に失敗する可能性がありますが、このまま続行しますか？";
  struct Row {
    const char *label;
    DWORD code;
    const char *name, *path;
    HMODULE module;
    UINT titleId, style;
    const char *keys;
    int result;
    std::string output;
  } rows[] = {
      {"not a refused access", ERROR_FILE_NOT_FOUND, nullptr, "C:\\d\\f.txt", self, kMsgDeleteTitle, 48, "", 0, ""},
      {"no style: stop without asking", ERROR_ACCESS_DENIED, nullptr, "C:\\d\\f.txt", self, kMsgDeleteTitle, 0, "", 1,
       ""},
      {"a notice: the path's file name, title cut at its full stop", ERROR_ACCESS_DENIED, nullptr, "C:\\d\\f.txt", self,
       kMsgFolderInfoUnreadable, 48, "", 1,
       "権限の確認:ﾌｫﾙﾀﾞの情報の読込に失敗しました: f.txt\n" + system + notice + kAnyKey},
      {"a name is shown whole; no module, no title", ERROR_ACCESS_DENIED, "C:\\d\\g.txt", "C:\\d\\f.txt", nullptr,
       kMsgDeleteTitle, 48, "", 1, "権限の確認:C:\\d\\g.txt\n" + system + notice + kAnyKey},
      {"no name and no path", ERROR_ACCESS_DENIED, nullptr, nullptr, self, kMsgDeleteTitle, 48, "", 1,
       "権限の確認:消去: " + system + notice + kAnyKey},
      {"the question answered no: stop", ERROR_ACCESS_DENIED, nullptr, "C:\\d\\f.txt", self, kMsgDeleteTitle,
       MB_YESNO | MB_ICONQUESTION, "n", 1, "権限の確認:消去: f.txt\n" + system + ask + "Y:はい N:いいえ>>N"},
      {"the question answered yes: go on", ERROR_ACCESS_DENIED, nullptr, "C:\\d\\f.txt", self, kMsgDeleteTitle,
       MB_YESNO | MB_ICONQUESTION, "y", -1, "権限の確認:消去: f.txt\n" + system + ask + "Y:はい N:いいえ>>Y"},
  };
  for (const Row &row : rows) {
    TestConsoleBegin(row.keys);
    EXPECT_EQ(ReportAccessProblem(row.code, row.name, row.path, row.module, row.titleId, row.style), row.result)
        << row.label;
    EXPECT_EQ(TestConsoleOutput(), row.output) << row.label << "\n" << Hex(TestConsoleOutput());
  }
}

TEST_F(ErrorReporter, LanguagePair) {
  EXPECT_EQ(LanguageIndex(), 1);
  EXPECT_EQ(std::string(ErrorOccurredText()), "ｴﾗｰが発生しました。");
  SetLanguageIndex(0);
  EXPECT_EQ(std::string(ErrorOccurredText()), "Error occurred.");
  EXPECT_EQ(Report(nullptr, nullptr, 0).output, Shown("\n\n" + std::string(kPrefix) + "Error occurred."));
}

}  // namespace
