// Exact-case and long names, on a scratch tree whose spelling on disk the tests choose.
#include "files/exact_names.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/scratch_folder.h"

#ifndef _WIN32
#include "platform/posix/files/testing.h"
#endif

namespace {

std::string Upper(std::string text) { return CharUpperA(&text[0]), text; }
std::string Lower(std::string text) { return CharLowerA(&text[0]), text; }

// A tree spelled in mixed case: <scratch>\Mixed Case\Inner Dir\Target File.Txt.
class ExactNames : public ::testing::Test {
 protected:
  void SetUp() override {
    scratch_.MakeFolder("Mixed Case");
    scratch_.MakeFolder("Mixed Case\\Inner Dir");
    target_ = scratch_.MakeFile("Mixed Case\\Inner Dir\\Target File.Txt", "x");
  }
  ScratchFolder scratch_;
  std::string target_;
};

TEST_F(ExactNames, ADriveRootIsUpperCased) {
  PathBuffer root(Lower(scratch_.Path().substr(0, 3)));
  EXPECT_EQ(ResolveExactPath(root.bytes, kExactLongNames, 0), root.bytes);
  EXPECT_EQ(root.Text(), Upper(scratch_.Path().substr(0, 3)));
}

// The tool asks for long names, the path copied back over the caller's.
TEST_F(ExactNames, EveryComponentInTheDisksSpelling) {
  // The scratch folder's own path is in its disk spelling already; the letters of everything are turned.
  PathBuffer path(Lower(target_.substr(0, 1)) + Upper(target_.substr(1)));
  EXPECT_EQ(MakeExactPath(path.bytes, kExactLongNames, 0), path.bytes);
  EXPECT_EQ(path.Text(), target_);
  // The walk has ended: a second path is rebuilt too, not handed back unchanged as one asked for during a walk is.
  PathBuffer again(Lower(target_));
  EXPECT_EQ(MakeExactPath(again.bytes, kExactLongNames, 0), again.bytes);
  EXPECT_EQ(again.Text(), target_);
}

TEST_F(ExactNames, BareNamesDoubledBackslashesQuotesAndCapitals) {
  scratch_.MakeFile("KelmaroProbe.EXE", "MZ");
  scratch_.MakeFile("README.TXT");
  ASSERT_TRUE(SetCurrentDirectoryA(scratch_.Path().c_str()));
  struct Row {
    const char *what;
    std::string typed, resolved;
  } rows[] = {
      {"a bare name found on the search path stays bare", "kelmaroprobe.exe", "KelmaroProbe.EXE"},
      {"a doubled backslash is not asked about", scratch_.Path("mixed case\\\\inner dir\\TARGET FILE.TXT"), target_},
      {"the quotes of a path that exists go", "\"" + Lower(target_) + "\"", target_},
      {"a name all in capitals reads tidily", scratch_.Path("readme.txt"), scratch_.Path("Readme.txt")},
  };
  for (const Row &row : rows) {
    PathBuffer path(row.typed);
    ASSERT_NE(ResolveExactPath(path.bytes, kExactLongNames, 0), nullptr) << row.what;
    EXPECT_EQ(path.Text(), row.resolved) << row.what;
  }
  std::string missing = "\"" + scratch_.Path("no such file.txt") + "\"";
  PathBuffer absent(missing);
  EXPECT_EQ(ResolveExactPath(absent.bytes, kExactLongNames, 0), absent.bytes);
  EXPECT_EQ(absent.Text(), missing) << "a path that is not there comes back as it was";
  char empty[520] = "";
  EXPECT_EQ(MakeExactPath(nullptr, kExactLongNames, 0), nullptr);
  EXPECT_EQ(MakeExactPath(empty, kExactLongNames, 0), empty);
}

TEST_F(ExactNames, RefusedComponentStopsTheWalk) {
#ifdef _WIN32
  GTEST_SKIP() << "Wine keeps no folder from its owner, and neither can a test on Windows without rights";
#else
  const std::string typed = scratch_.Path("MIXED CASE\\INNER DIR\\TARGET FILE.TXT");
  ASSERT_TRUE(TestFailListing(scratch_.Path("Mixed Case").c_str(), ERROR_ACCESS_DENIED));
  // "Inner Dir" cannot be asked for: it goes in folded and what lies behind it is dropped.
  PathBuffer path(typed);
  EXPECT_NE(ResolveExactPath(path.bytes, kExactLongNames, 0), nullptr);
  TestClearFaults();
  EXPECT_EQ(path.Text(), scratch_.Path("Mixed Case\\Inner dir"));
#endif
}

TEST(FillShortName, Rows) {
  struct Row {
    const char *longName, *shortName, *longAfter, *shortAfter;
  } rows[] = {
      {"notepad.exe", "", "notepad.exe", "NOTEPAD.EXE"},
      {"README.TXT", "", "Readme.txt", "README.TXT"},        // all capitals: folded to read tidily
      {"A LONG NAME.TXT", "", "A LONG NAME.TXT", ""},        // 13 bytes or more: no short name, and no folding
      {"ABCDEFGH.TXT", "", "Abcdefgh.txt", "ABCDEFGH.TXT"},  // 12 bytes still counts
      {"\x95\x5C.TXT", "", "\x95\x5C.TXT", "\x95\x5C.TXT"},  // a double-byte name is not folded
  };
  for (const Row &row : rows) {
    char longName[260], shortName[14];
    std::strcpy(longName, row.longName);
    std::strcpy(shortName, row.shortName);
    FillShortName(longName, shortName);
    EXPECT_STREQ(longName, row.longAfter) << row.longName;
    EXPECT_STREQ(shortName, row.shortAfter) << row.longName;
  }
}

// The hit is an offset into the text as given, whose case stays; folding stops at double-byte characters.
TEST(FindNoCase, HitsInTheGivenText) {
  const char *name = "a.lnk";
  EXPECT_EQ(FindNoCase(name, "LNK"), name + 2);
  EXPECT_EQ(FindNoCase("ab", "abc"), nullptr);
  const char *kanji = "\x82\x60x";  // Ａ (0x82 0x60) has a trail byte that is the letter `; no case folding inside
  EXPECT_EQ(FindNoCase(kanji, "X"), kanji + 2);
}

}  // namespace
