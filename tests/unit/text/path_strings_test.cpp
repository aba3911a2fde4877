// Path strings: the joins, cuts and tests that every path of the walk and the engine goes through.
#include "text/path_strings.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

TEST(JoinPath, SeparateDestination) {
  const std::string longName(516, 'n');  // with "abcd": 520 bytes
  struct Row {
    const char *dir, *file, *dest;  // dest starts as "sentinel"
    int result;
    const char *dirAfter = nullptr;
  } rows[] = {
      {"C:\\a", "b.lnk", "C:\\a\\b.lnk", 10},
      {"C:\\a\\", "b.lnk", "C:\\a\\b.lnk", 10},
      {"C:\\", "x", "C:\\x", 4},
      {"C:/a", "b", "C:/a/b", 6},                  // a folder with slashes gives slashes throughout
      {"\"C:\\a b\"", "c", "\"C:\\a b\\c\"", 10},  // quotes kept where a blank needs them
      {"\"C:\\ab\"", "c", "C:\\ab\\c", 7},         // and dropped where none does
      {"C:\\a", "\"my file\"", "\"C:\\a\\my file\"", 14},
      {".\\x", "y", "x\\y", 3},  // ".\" is deleted wherever it stands
      {"a.\\b", "c", "ab\\c", 4},
      {"C:\\a\\..\\b", "c", "C:\\a\\.b\\c", 9},              // no folding of parent references
      {"C:\\表", "x", "C:\\表\\x", 7},                       // the trail byte 0x5C is no separator
      {"C:\\a", "D:\\x", "D:\\x", 0, "D:\\x"},               // an absolute name replaces the destination and the folder
      {".\\abcd", longName.c_str(), "sentinel", 0, "abcd"},  // 520 bytes: nothing joined, only ".\" went
      {"", "", "sentinel", 0},
      {"", "name", "sentinel", 4},  // no folder: nothing written, the name's length
      {"C:/a/", "", "C:\\a\\", 5},  // no name: the folder copied, its slashes converted
  };
  for (const Row &row : rows) {
    char dir[kPathSize], file[kPathSize], dest[kPathSize] = "sentinel";
    std::strcpy(dir, row.dir);
    std::strcpy(file, row.file);
    EXPECT_EQ(JoinPath(dest, dir, file), row.result) << row.dir << " + " << row.file;
    EXPECT_STREQ(dest, row.dest) << row.dir << " + " << row.file;
    if (row.dirAfter != nullptr) {
      EXPECT_STREQ(dir, row.dirAfter) << row.dir << " + " << row.file;
    }
  }
}

// The two in-place forms callers use: into the folder (no destination), and into the name itself.
TEST(JoinPath, InPlace) {
  char dir[kPathSize] = "C:\\a", file[kPathSize] = "b";
  EXPECT_EQ(JoinPath(nullptr, dir, file), 6);
  EXPECT_STREQ(dir, "C:\\a\\b");
  char dir2[kPathSize] = "C:\\a", name[kPathSize] = "x";
  EXPECT_EQ(JoinPath(name, dir2, name), 6);
  EXPECT_STREQ(name, "C:\\a\\x");
}

TEST(PathCuts, FolderPartAndCutLastComponent) {
  struct Row {
    const char *path, *folder;  // null: no folder part, the path unchanged
  } rows[] = {{"C:\\a", "C:\\"},  {"C:\\a\\b", "C:\\a"},  {"C:a", "C:"}, {"a", nullptr}, {"\"C:\\a b\\c\"", "C:\\a b"},
              {"C:/a/b", "C:/a"}, {"C:\\表\\x", "C:\\表"}};
  for (const Row &row : rows) {
    char path[64];
    std::strcpy(path, row.path);
    char *result = FolderPart(path);
    if (row.folder == nullptr) {
      EXPECT_EQ(result, nullptr) << row.path;
      EXPECT_STREQ(path, row.path);
    } else {
      EXPECT_STREQ(result, row.folder) << row.path;
    }
  }
  struct CutRow {
    const char *path, *after;
    int result;
  } cuts[] = {{"abc", "abc", kCutNothing},
              {"C:\\a\\", "C:\\a\\", kCutEndsInBackslash},
              {"C:\\a\\b", "C:\\a", kCutAtBackslash},
              {"C:\\a", "C:\\", kCutBehindRoot},
              {"\"C:\\a b\\c", "\"C:\\a b\"", kCutAtBackslash}};
  for (const CutRow &row : cuts) {
    char path[64];
    std::strcpy(path, row.path);
    EXPECT_EQ(CutLastComponent(path), row.result) << row.path;
    EXPECT_STREQ(path, row.after) << row.path;
  }
}

// A cut at the last separator keeps a root's separator and gives back the byte it overwrote, which puts the path back.
TEST(PathCuts, CutAtLastSeparatorAndRestore) {
  struct Row {
    const char *path, *after;
    char saved;
  } rows[] = {{"C:\\a\\b", "C:\\a", '\\'}, {"C:\\a", "C:\\", 'a'}, {"C:\\", "C:\\", 0}, {"abc", "abc", 0}};
  for (const Row &row : rows) {
    char path[64];
    std::strcpy(path, row.path);
    int saved = -1;
    char *cut = CutAtLastSeparator(path, &saved);
    EXPECT_STREQ(path, row.after) << row.path;
    EXPECT_EQ(saved, static_cast<unsigned char>(row.saved)) << row.path;
    RestoreCutByte(cut, saved);
    EXPECT_STREQ(path, row.path) << row.path;
  }
}

TEST(PathTests, RootsAndSeparators) {
  EXPECT_EQ(IsDriveRoot("C:\\"), 1);
  EXPECT_EQ(IsDriveRoot("C:\\a"), 0);
  EXPECT_EQ(IsUncRootForm("\\\\"), 1);
  EXPECT_EQ(IsNetworkPath("\\:\\group"), 1);
  EXPECT_EQ(IsNetworkPath("\\\\srv"), 1);
  EXPECT_EQ(IsNetworkPath("\\a"), 0);
  char table[16] = "C:\\表";  // ends in a trail byte 0x5C: a real backslash still goes behind it
  EXPECT_EQ(EnsureTrailingBackslash(table), table + 5);
  EXPECT_STREQ(table, "C:\\表\\");
  EXPECT_EQ(EnsureTrailingBackslash(table), nullptr);
}

TEST(PathTests, ExtensionsAndQuotes) {
  struct Row {
    const char *path, *extension;
  } rows[] = {{"a.b\\c", nullptr}, {"a.", nullptr}, {"a.txt", "txt"}, {"C:\\d.x\\e.lnk", "lnk"}, {"表x", nullptr}};
  for (const Row &row : rows) {
    const char *extension = HasExtension(row.path);
    EXPECT_STREQ(extension ? extension : "(none)", row.extension ? row.extension : "(none)") << row.path;
  }
  char dest[16];
  EXPECT_EQ(CutTrailingQuote(dest, "abc\""), dest);
  EXPECT_STREQ(dest, "abc");
  char dotted[16] = "x.\\y";
  EXPECT_EQ(HasDriveRoot(dotted), nullptr);
  char drive[16] = "C:\\.\\y";
  EXPECT_NE(HasDriveRoot(drive), nullptr);
  EXPECT_STREQ(drive, "C:\\y");
}

TEST(FoldPathCase, Cases) {
  struct Row {
    const char *before;
    int mode;
    const char *after;
  } rows[] = {
      {"c:\\PROGRAM files\\abc", 0, "C:\\Program files\\Abc"},
      {"表\\ABC", 2, "表\\ABC"},  // a path that begins with a double-byte character stays
      {"ab\\表\\cd", 2, "Ab\\表\\Cd"},
      {"a\\", 0, "A\\"},
      {"c:\\ABC", 1, "c:\\ABC"},  // mode 1 never folds
  };
  for (const Row &row : rows) {
    char path[64];
    std::strcpy(path, row.before);
    FoldPathCase(path, nullptr, row.mode);
    EXPECT_STREQ(path, row.after) << row.before << " mode " << row.mode;
  }
}

}  // namespace
