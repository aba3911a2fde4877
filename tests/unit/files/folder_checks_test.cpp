// Name rules and folder checks: the faults each check finds, and what the user reads when it reports them.
#include "files/folder_checks.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/testing.h"
#include "reports/error_reporter.h"
#include "reports/last_error.h"
#include "support/scratch_folder.h"

namespace {

// What a call prints on the console, with no key typed (a question then answers as the end of input does).
template <typename Call>
std::string Printed(Call call) {
  TestConsoleBegin("");
  SetKeptLastError(0);
  SetReportStyle(0, nullptr);
  call();
  std::string output = TestConsoleOutput();
  TestConsoleEnd();
  return output;
}

const char kWrongForm[] = "ﾌｫﾙﾀﾞ名の指定ﾙｰﾙが間違っています。";
const char kBadCharacter[] = "名前に不正な文字が使われています。";

TEST(PathHead, Tests) {
  struct Row {
    const char *path;
    int drive, colon, root, rooted;
  } rows[] = {
      {"C:\\a", 1, 1, 1, 1},
      {"z:\\", 1, 1, 1, 1},
      {"\\\\srv\\share", 32, 32, 1, 1},
      {"\\:\\group", 16, 16, 1, 1},
      {"1:\\a", 0, 1, 1, 0},
      {"C:a", 1, 1, 0, 0},
      {"C", 1, 0, 0, 0},
      {"", 0, 0, 0, 0},
      {"a\\b", 1, 0, 0, 0},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(HasDriveHead(row.path), row.drive) << row.path;
    EXPECT_EQ(HasColonHead(row.path), row.colon) << row.path;
    EXPECT_EQ(HasRootBackslash(row.path), row.root) << row.path;
    EXPECT_EQ(IsRootedPath(row.path), row.rooted) << row.path;
  }
}

TEST(CheckNameCharacters, TheListsOrderNamesTheCharacter) {
  struct Row {
    const char *name;
    int result, character;
  } rows[] = {
      {"a*b?c", kFaultForbiddenCharacter, '*'},
      {"a?b*c", kFaultForbiddenCharacter, '*'},
      {"a|b", kFaultForbiddenCharacter, '|'},
      {"say \"hi\"", kFaultForbiddenCharacter, '"'},
      {"plain name.txt", 0, 0},
      {"\x83\x5C", 0, 0},  // ソ: its trail byte is no backslash
  };
  for (const Row &row : rows) {
    EXPECT_EQ(CheckNameCharacters(nullptr, row.name, 0), row.result) << row.name;
    EXPECT_EQ(LastBadCharacter(), row.character) << row.name;
  }
  std::string shown = Printed([] { EXPECT_EQ(CheckNameCharacters(nullptr, "a*b", 1), kFaultForbiddenCharacter); });
  EXPECT_EQ(shown, std::string("ﾌｧｲﾙ名不正:'*' in  \"a*b\": ") + kBadCharacter + "Press Any Key>>");
  EXPECT_EQ(LastBadCharacter(), 0) << "the report uses the character up";
}

TEST(CheckNameLength, TheLimitIsAllowed) {
  EXPECT_EQ(CheckNameLength(0, std::string(kNameLengthLimit, 'n').c_str(), nullptr), 0);
  EXPECT_EQ(CheckNameLength(0, std::string(kNameLengthLimit + 1, 'n').c_str(), nullptr), kFaultNameTooLong);
}

TEST(CheckPathSyntax, FaultsAndWhatIsShown) {
  const std::string part255(kNameLengthLimit, 'p');
  struct Row {
    std::string path;
    int rooted, result;
    std::string shown;  // the name as the report shows it; empty for no report
  } rows[] = {
      {"C:\\", 1, 0, ""},
      {"C:\\a\\b c\\d.txt", 1, 0, ""},
      {"\\\\server\\share\\dir", 1, 0, ""},
      {"C:\\" + part255 + "\\x", 1, 0, ""},
      {"a\\b", 0, 0, ""},
      {"..\\a", 1, 0, ""},  // only the text behind the last "..\" counts, and as a relative path
      {"C:\\x\\..\\..\\a", 1, 0, ""},
      {"C:\\\\a", 1, kFaultWrongForm, "''C:\\\\a''"},
      {"C:a", 1, kFaultWrongForm, "''C:a''"},
      {"1:\\a", 1, kFaultWrongForm, "''1:\\a''"},
      {"C:/a", 1, kFaultWrongForm, "''C:/a''"},
      {"C:\\a\\\\b", 1, kFaultWrongForm, "''\\\\b''"},  // from the doubled backslash on
      {"C:\\a\\\\", 1, kFaultWrongForm, "''\\\\''"},
      {"C:\\a/b\\c", 1, kFaultForbiddenCharacter, "''a/b''"},  // the part alone
      {"C:\\a\\b:c", 1, kFaultForbiddenCharacter, "''b:c''"},
      {"\\\\server\\sh*re", 1, kFaultForbiddenCharacter, "''sh*re''"},
      {"..\\..\\a?", 1, kFaultForbiddenCharacter, "''a?''"},
      {"C:\\" + part255 + "p\\x", 1, kFaultFolderPartTooLong, "''" + part255 + "p''"},
  };
  for (const Row &row : rows) {
    int result = 1;
    std::string shown = Printed([&] { result = CheckPathSyntax(nullptr, row.path.c_str(), row.rooted); });
    EXPECT_EQ(result, row.result) << row.path;
    if (row.shown.empty()) {
      EXPECT_EQ(shown, "") << row.path;
      continue;
    }
    const char *body = row.result == kFaultWrongForm            ? kWrongForm
                       : row.result == kFaultForbiddenCharacter ? kBadCharacter
                                                                : "...指定した名前が長すぎます。１１文字以内ですか？\n"
                                                                  "但し、 '.'を含む時は１２文字以内です。";
    EXPECT_EQ(shown, "ﾌｫﾙﾀﾞ名不正:" + row.shown + "\n" + body + "Press Any Key>>") << row.path;
  }
  std::string shown = Printed([] { EXPECT_EQ(CheckPathSyntax(nullptr, "", 1), kFaultEmptyPath); });
  EXPECT_EQ(shown, "ﾌｫﾙﾀﾞ名不正:' '\nﾌｫﾙﾀﾞ名が指定されていません。空です。Press Any Key>>");
}

TEST(CheckFileName, Results) {
  const std::string long256(kNameLengthLimit + 1, 'e');
  struct Row {
    std::string path;
    int report, result;
    std::string shown;
  } rows[] = {
      {"a.b", 0, 0, ""},
      {"a", 0, 0, ""},
      {"C:\\dir\\name.txt", 0, 0, ""},
      {".profile", 0, kFaultBadName, ""},
      {"a." + long256, 0, kFaultExtensionTooLong, ""},
      {long256 + ".txt", 0, kFaultNameTooLong, ""},
      {"a*b.txt", 0, kFaultForbiddenCharacter, ""},
      {"a*b.txt", 1, 1, ""},  // a character fault is not one that the name report tells
      {".profile", 1, 1, std::string("ﾌｧｲﾙ名不正:\".profile\": ") + kBadCharacter},
      {"sub\\a", 1, 1, std::string("ﾌｧｲﾙ名不正:'\\' in  \"sub\\a\": ") + kBadCharacter},
      {"sub\\a", 0, 1, ""},
      {long256 + ".txt", 1, 1, "ﾌｧｲﾙ名不正:\"" + long256 + ".txt\": ...指定した名前が長すぎます。８文字以内ですか？"},
  };
  for (const Row &row : rows) {
    // A report without a character of its own names the one that the latest character check found.
    CheckNameCharacters(nullptr, "clean", 0);
    int result = 0;
    std::string shown = Printed([&] { result = CheckFileName(nullptr, row.path.c_str(), row.report); });
    EXPECT_EQ(result, row.result) << row.path;
    EXPECT_EQ(shown, row.shown.empty() ? "" : row.shown + "Press Any Key>>") << row.path;
  }
}

TEST(CheckFolderOrReport, Modes) {
  ScratchFolder scratch;
  std::string missing = scratch / "missing";
  EXPECT_EQ(CheckFolderOrReport(nullptr, scratch.Path().c_str(), 4, nullptr), 1);
  std::string shown = Printed([&] { EXPECT_EQ(CheckFolderOrReport(nullptr, missing.c_str(), 1, nullptr), 1); });
  EXPECT_EQ(shown, "");
  shown = Printed([&] { EXPECT_EQ(CheckFolderOrReport(nullptr, missing.c_str(), 4, "the line"), 0); });
  EXPECT_EQ(shown.rfind("ﾌｫﾙﾀﾞｱｸｾｽ:'" + missing + "'\n指定ﾌｫﾙﾀﾞが見つかりません。", 0), 0u) << shown;
  EXPECT_NE(shown.find("\nthe line"
                       "Press Any Key>>"),
            std::string::npos)
      << shown;
  shown = Printed([&] { EXPECT_EQ(CheckFolderOrReport(nullptr, missing.c_str(), 2, nullptr), 0); });
  EXPECT_EQ(shown.rfind("ﾌｧｲﾙｱｸｾｽ:'missing'\n", 0), 0u) << "a file is named by its file name alone: " << shown;
}

TEST(CheckPathSyntaxRules, BeforeAWalk) {
  ScratchFolder scratch;
  PathBuffer folder(scratch.Path());
  std::string shown = Printed([&] { EXPECT_EQ(CheckPathSyntaxRules(nullptr, folder.bytes, 0, 1), 0); });
  EXPECT_EQ(shown, "");

  PathBuffer doubled(scratch.Path() + "\\\\x");
  shown = Printed([&] { EXPECT_EQ(CheckPathSyntaxRules(nullptr, doubled.bytes, 0, 1), 2); });
  EXPECT_EQ(GetRunTimeError(), 2);
  EXPECT_EQ(shown, std::string("ﾌｫﾙﾀﾞ名不正:''\\\\x''\n") + kWrongForm + "Press Any Key>>");

  // A drive that does not answer: the message names the drive. The system's text for the failure is gone by the
  // time the message is composed (loading the title clears the kept error), so none is shown.
  PathBuffer noDrive("Q:\\folder");
  shown = Printed([&] { EXPECT_EQ(CheckPathSyntaxRules(nullptr, noDrive.bytes, 0, 1), -1); });
  EXPECT_EQ(shown, "Drive: ﾄﾞﾗｲﾌﾞ・ﾌｫﾙﾀﾞ指定失敗:[-Q-] ﾄﾞﾗｲﾌﾞのｱｸｾｽが拒否されました。Press Any Key>>");
  // Without the question the drive test is the only check: what it found is not a fault.
  shown = Printed([&] { EXPECT_EQ(CheckPathSyntaxRules(nullptr, noDrive.bytes, 0, kRulesAskNothing), 0); });
  EXPECT_EQ(shown, "");
}

TEST(LocateOnSearchPath, Results) {
  ScratchFolder scratch;
  std::string file = scratch.MakeFile("Found.txt");
  std::string lower = scratch / "found.txt";
  char out[520];
  EXPECT_EQ(LocateOnSearchPath(file.c_str(), out), 1);
  EXPECT_EQ(std::string(out), file);
  EXPECT_EQ(LocateOnSearchPath(("\"" + file + "\" -x").c_str(), nullptr), 1) << "the quoted part is looked for";
  EXPECT_EQ(LocateOnSearchPath(lower.c_str(), out), 1) << "a spelling that differs only in case is the same name";
  ASSERT_TRUE(SetCurrentDirectoryA(scratch.Path().c_str()));
  EXPECT_EQ(LocateOnSearchPath("found.txt", out), -1) << "a bare name is found as a full path";
  EXPECT_EQ(std::string(out), file);
  EXPECT_EQ(LocateOnSearchPath("found.txt", nullptr), 1) << "without `out` there is nothing to compare";
  EXPECT_EQ(LocateOnSearchPath((scratch / "absent.txt").c_str(), out), 0);
  EXPECT_EQ(LocateOnSearchPath("Q:\\absent.txt", out), -3);
  EXPECT_EQ(LocateOnSearchPath(nullptr, out), 0);
}

}  // namespace
