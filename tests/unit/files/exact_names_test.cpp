// Exact-case and long names, on a scratch tree whose spelling on disk the tests choose.
#include "files/exact_names.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <string>

#include "file_test_support.h"

#ifndef _WIN32
#include "platform/posix/testing.h"
#endif

namespace {

std::string Upper(std::string text) {
  for (char &c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}
std::string Lower(std::string text) {
  for (char &c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// A tree spelled in mixed case: <scratch>\Mixed Case\Inner Dir\Target File.Txt.
struct MixedTree {
  explicit MixedTree(const FileScratch &scratch) {
    scratch.MakeFolder("Mixed Case");
    scratch.MakeFolder("Mixed Case\\Inner Dir");
    target = scratch.MakeFile("Mixed Case\\Inner Dir\\Target File.Txt", "x");
  }
  std::string target;
};

TEST(ExactNames, RootsAreUpperCasedOrKept) {
  FileScratch scratch;
  char drive = static_cast<char>(std::tolower(static_cast<unsigned char>(scratch.Path()[0])));
  PathBuffer root(std::string(1, drive) + ":\\");
  EXPECT_EQ(ResolveExactPath(root.bytes, kExactLongNames, 0), root.bytes);
  EXPECT_EQ(root.Text(), Upper(std::string(1, drive)) + ":\\");
  PathBuffer unc("\\\\");
  EXPECT_EQ(ResolveExactPath(unc.bytes, kExactLongNames, 0), unc.bytes);
  EXPECT_EQ(unc.Text(), "\\\\");
}

TEST(ExactNames, EveryComponentInTheDisksSpellingInPlace) {
  FileScratch scratch;
  MixedTree tree(scratch);
  // The scratch folder's own path is in its disk spelling already; the letters of everything are turned about.
  std::string typed = Lower(tree.target.substr(0, 1)) + Upper(tree.target.substr(1));
  PathBuffer path(typed);
  EXPECT_EQ(ResolveExactPath(path.bytes, kExactLongNames, 0), path.bytes);
  EXPECT_EQ(path.Text(), tree.target);
  EXPECT_EQ(ExactPathInProgress(), 0);

  path.Set(Lower(tree.target));
  EXPECT_EQ(MakeExactPath(path.bytes, kExactLongNames, 0), path.bytes);
  EXPECT_EQ(path.Text(), tree.target);
}

TEST(ExactNames, PointerResultLeavesThePathAlone) {
  FileScratch scratch;
  MixedTree tree(scratch);
  std::string typed = Upper(tree.target);
  PathBuffer path(typed);
  char *result = ResolveExactPath(path.bytes, kExactLongNames | kExactNoFolding, 1);
  ASSERT_NE(result, nullptr);
  EXPECT_NE(result, path.bytes);
  EXPECT_STREQ(result, tree.target.c_str());
  EXPECT_EQ(path.Text(), typed);
  // MakeExactPath gives the caller's string back, whatever the mode.
  EXPECT_EQ(MakeExactPath(path.bytes, kExactLongNames, 1), path.bytes);
  EXPECT_EQ(path.Text(), typed);
}

TEST(ExactNames, WithoutNameFlagsTheGivenSpellingStays) {
  FileScratch scratch;
  MixedTree tree(scratch);
  std::string typed = tree.target.substr(0, scratch.Path().size()) + "\\mixed case\\INNER dir\\target file.txt";
  PathBuffer path(typed);
  ASSERT_NE(ResolveExactPath(path.bytes, 0, 0), nullptr);
  EXPECT_EQ(path.Text(), Upper(typed.substr(0, 1)) + typed.substr(1)) << "only the drive letter changes";
}

TEST(ExactNames, BareNameFoundOnTheSearchPathStaysBare) {
  FileScratch scratch;
  scratch.MakeFile("KelmaroProbe.EXE", "MZ");
  ASSERT_TRUE(SetCurrentDirectoryA(scratch.Path().c_str()));
  PathBuffer name("kelmaroprobe.exe");
  ASSERT_NE(ResolveExactPath(name.bytes, kExactLongNames, 0), nullptr);
  EXPECT_EQ(name.Text(), "KelmaroProbe.EXE");
}

TEST(ExactNames, DoubledBackslashIsNotAskedAndTheWalkGoesOn) {
  FileScratch scratch;
  MixedTree tree(scratch);
  for (const char *doubled : {"\\\\", "\\\\\\"}) {
    PathBuffer path(scratch.Path() + "\\mixed case" + doubled + "inner dir\\TARGET FILE.TXT");
    ASSERT_NE(ResolveExactPath(path.bytes, kExactLongNames, 0), nullptr);
    EXPECT_EQ(path.Text(), tree.target) << doubled;
  }
}

TEST(ExactNames, QuotesOfAPathThatExistsAreDropped) {
  FileScratch scratch;
  MixedTree tree(scratch);
  PathBuffer quoted("\"" + Lower(tree.target) + "\"");
  ASSERT_NE(ResolveExactPath(quoted.bytes, kExactLongNames, 0), nullptr);
  EXPECT_EQ(quoted.Text(), tree.target);

  std::string missing = "\"" + scratch.Path("no such file.txt") + "\"";
  PathBuffer absent(missing);
  EXPECT_EQ(ResolveExactPath(absent.bytes, kExactLongNames, 0), absent.bytes);
  EXPECT_EQ(absent.Text(), missing) << "a path that is not there comes back as it was";
}

TEST(ExactNames, NestedCallGetsItsPathBackUnchanged) {
  FileScratch scratch;
  MixedTree tree(scratch);
  std::string typed = Upper(tree.target);
  PathBuffer path(typed);
  SetExactPathInProgress(1);
  EXPECT_EQ(ResolveExactPath(path.bytes, kExactLongNames, 1), path.bytes);
  EXPECT_EQ(path.Text(), typed);
  SetExactPathInProgress(0);
}

TEST(ExactNames, NullAndEmpty) {
  EXPECT_EQ(ResolveExactPath(nullptr, kExactLongNames, 0), nullptr);
  char empty[520] = "";
  EXPECT_EQ(ResolveExactPath(empty, kExactLongNames, 0), nullptr);
  EXPECT_EQ(MakeExactPath(nullptr, kExactLongNames, 0), nullptr);
  EXPECT_EQ(MakeExactPath(empty, kExactLongNames, 0), empty);
}

TEST(ExactNames, AllCapitalShortNameReadsTidily) {
  FileScratch scratch;
  scratch.MakeFile("README.TXT");
  PathBuffer path(scratch.Path("readme.txt"));
  ASSERT_NE(ResolveExactPath(path.bytes, kExactLongNames, 0), nullptr);
  EXPECT_EQ(path.Text(), scratch.Path("Readme.txt"));
}

TEST(ExactNames, ShortNamesAndALongNameWithoutOne) {
  FileScratch scratch;
  std::string file = scratch.MakeFile("a name far too long.text");
  WIN32_FIND_DATAA entry;
  HANDLE search = FindFirstFileA(file.c_str(), &entry);
  ASSERT_NE(search, INVALID_HANDLE_VALUE);
  FindClose(search);
  PathBuffer path(file);
  char *result = ResolveExactPath(path.bytes, kExactShortNames, 1);
  if (entry.cAlternateFileName[0] != 0) {
    // A file system that keeps a short name for every long one (Windows, Wine): the path in short names.
    ASSERT_NE(result, nullptr);
    std::string text = result;
    EXPECT_EQ(text.substr(text.size() - std::strlen(entry.cAlternateFileName)), entry.cAlternateFileName) << text;
    return;
  }
  EXPECT_EQ(result, nullptr);
  EXPECT_EQ(MakeExactPath(path.bytes, kExactShortNames | kExactUpperCase, 0), path.bytes);
  EXPECT_EQ(path.Text(), file);
  EXPECT_EQ(ExactPathInProgress(), 0);
}

// Makes every find in `folder` refuse access, where the platform lets a test do that.
bool RefuseListing(const std::string &folder) {
#ifdef _WIN32
  (void)folder;
  return false;  // Wine keeps no folder from its owner, and neither can a test on Windows without rights
#else
  return TestFailListing(folder.c_str(), ERROR_ACCESS_DENIED);
#endif
}

void EndRefusals() {
#ifndef _WIN32
  TestClearFaults();
#endif
}

TEST(ExactNames, RefusedComponentStopsTheWalk) {
  FileScratch scratch;
  MixedTree tree(scratch);
  const std::string typed = scratch.Path("MIXED CASE\\INNER DIR\\TARGET FILE.TXT");
  PathBuffer path(typed);
  if (!RefuseListing(scratch.Path("Mixed Case"))) GTEST_SKIP() << "no way here to make a folder refuse its listing";
  char *folded = ResolveExactPath(path.bytes, kExactLongNames, 0);
  // "Inner Dir" cannot be asked for: it goes in folded (or as typed) and what lies behind it is dropped.
  EXPECT_NE(folded, nullptr);
  EXPECT_EQ(path.Text(), scratch.Path("Mixed Case\\Inner dir"));

  path.Set(typed);
  char *kept = ResolveExactPath(path.bytes, kExactLongNames | kExactNoFolding, 0);
  EndRefusals();
  EXPECT_NE(kept, nullptr);
  EXPECT_EQ(path.Text(), scratch.Path("Mixed Case\\INNER DIR"));
}

TEST(FillShortName, Rows) {
  struct Row {
    const char *longName;
    const char *shortName;
    const char *longAfter;
    const char *shortAfter;
  } rows[] = {
      {"notepad.exe", "", "notepad.exe", "NOTEPAD.EXE"},
      {"README.TXT", "", "Readme.txt", "README.TXT"},  // all capitals: folded to read tidily
      {"A1.B", "", "A1.b", "A1.B"},
      {"Program Files", "PROGRA~1", "Program Files", "PROGRA~1"},  // a short name of its own is kept
      {"a long name.txt", "", "a long name.txt", ""},              // 13 bytes or more: no short name
      {"ABCDEFGH.TXT", "", "Abcdefgh.txt", "ABCDEFGH.TXT"},        // 12 bytes still counts
      {"\x95\x5C.TXT", "", "\x95\x5C.TXT", "\x95\x5C.TXT"},        // a double-byte name is not folded
  };
  for (const Row &row : rows) {
    char longName[260];
    char shortName[14];
    std::strcpy(longName, row.longName);
    std::strcpy(shortName, row.shortName);
    FillShortName(longName, shortName);
    EXPECT_STREQ(longName, row.longAfter) << row.longName;
    EXPECT_STREQ(shortName, row.shortAfter) << row.longName;
  }
}

}  // namespace
