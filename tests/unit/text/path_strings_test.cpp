// Path strings: the joins, cuts and tests that every path of the walk and the engine goes through.
#include "text/path_strings.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

TEST(JoinPath, SeparateDestination) {
  struct Row {
    const char *dir, *file, *dest;
    int result;
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
      {"..\\x", "y", ".x\\y", 4},  // no folding of parent references
      {"C:\\a\\..\\b", "c", "C:\\a\\.b\\c", 9},
      {"C:\\表", "x", "C:\\表\\x", 7},  // the trail byte 0x5C is no separator
  };
  for (const Row &row : rows) {
    char dir[kPathSize], file[kPathSize], dest[kPathSize] = "sentinel";
    std::strcpy(dir, row.dir);
    std::strcpy(file, row.file);
    EXPECT_EQ(JoinPath(dest, dir, file), row.result) << row.dir << " + " << row.file;
    EXPECT_STREQ(dest, row.dest) << row.dir << " + " << row.file;
  }
}

TEST(JoinPath, ResultTable) {
  // An absolute name replaces both the destination and the folder.
  char dir[kPathSize] = "C:\\a", file[kPathSize] = "D:\\x", dest[kPathSize] = "old";
  EXPECT_EQ(JoinPath(dest, dir, file), 0);
  EXPECT_STREQ(dest, "D:\\x");
  EXPECT_STREQ(dir, "D:\\x");
  // 520 bytes together: nothing joined, only ".\" went from the folder.
  std::string longName(516, 'n');  // 4 + 516: exactly 520
  char dir2[kPathSize] = ".\\abcd";
  std::strcpy(file, longName.c_str());
  std::strcpy(dest, "kept");
  EXPECT_EQ(JoinPath(dest, dir2, file), 0);
  EXPECT_STREQ(dest, "kept");
  EXPECT_STREQ(dir2, "abcd");
  // Both empty; folder empty (nothing written, the name's length); name empty (the folder copied).
  char empty1[8] = "", empty2[8] = "";
  std::strcpy(dest, "kept");
  EXPECT_EQ(JoinPath(dest, empty1, empty2), 0);
  std::strcpy(file, "name");
  EXPECT_EQ(JoinPath(dest, empty1, file), 4);
  EXPECT_STREQ(dest, "kept");
  char dir3[kPathSize] = "C:/a/";
  EXPECT_EQ(JoinPath(dest, dir3, empty2), 5);
  EXPECT_STREQ(dest, "C:\\a\\");  // the slashes stay converted
}

TEST(JoinPath, InPlace) {
  char dir[kPathSize] = "C:\\a", file[kPathSize] = "b";
  EXPECT_EQ(JoinPath(nullptr, dir, file), 6);
  EXPECT_STREQ(dir, "C:\\a\\b");
  char dir2[kPathSize] = "C:\\a\\";
  EXPECT_EQ(JoinPath(dir2, dir2, file), 6);
  EXPECT_STREQ(dir2, "C:\\a\\b");
  char dir3[kPathSize] = "C:\\a", name[kPathSize] = "x";
  EXPECT_EQ(JoinPath(name, dir3, name), 6);
  EXPECT_STREQ(name, "C:\\a\\x");
  char root[kPathSize] = "C:\\", name2[kPathSize] = "\"x y\"";
  JoinPath(name2, root, name2);
  EXPECT_STREQ(name2, "\"C:\\x y\"");
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
  } cuts[] = {{"", "", 0},
              {"abc", "abc", 0},
              {"C:\\a\\", "C:\\a\\", -10},
              {"C:\\a\\b", "C:\\a", -20},
              {"C:\\a", "C:\\", -30},
              {"\"C:\\a b\\c", "\"C:\\a b\"", -20}};
  for (const CutRow &row : cuts) {
    char path[64];
    std::strcpy(path, row.path);
    EXPECT_EQ(CutLastComponent(path), row.result) << row.path;
    EXPECT_STREQ(path, row.after) << row.path;
  }
}

TEST(PathCuts, SeparatorsAndRoots) {
  char root[8] = "C:\\";
  int saved = 77;
  char *cut = CutAtLastSeparator(root, &saved);
  EXPECT_EQ(cut, root + 3);
  EXPECT_EQ(saved, 0);
  EXPECT_STREQ(root, "C:\\");
  char path[16] = "C:\\a\\b";
  cut = CutAtLastSeparator(path, &saved);
  EXPECT_STREQ(path, "C:\\a");
  EXPECT_EQ(saved, '\\');
  RestoreCutByte(cut, saved);
  EXPECT_STREQ(path, "C:\\a\\b");

  struct TrimRow {
    const char *path, *after;
    int trimmed;
  } trims[] = {{"C:\\", "C:\\", 0}, {"\\\\", "\\\\", 0}, {"C:\\a\\", "C:\\a", 1}, {"C:\\a", "C:\\a", 0}};
  for (const TrimRow &row : trims) {
    char text[16];
    std::strcpy(text, row.path);
    EXPECT_EQ(TrimFolderBackslash(text), row.trimmed) << row.path;
    EXPECT_EQ(BackslashWasTrimmedFlag(), row.trimmed) << row.path;
    EXPECT_STREQ(text, row.after) << row.path;
  }
  EXPECT_EQ(IsDriveRoot("C:\\"), 1);
  EXPECT_EQ(IsDriveRoot("C:\\a"), 0);
  EXPECT_EQ(IsUncRootForm("\\\\"), 1);
  EXPECT_EQ(IsNetworkPath("\\:\\group"), 1);
  EXPECT_EQ(IsNetworkPath("\\\\srv"), 1);
  EXPECT_EQ(IsNetworkPath("\\a"), 0);
  char slashes[16] = "a/b\\c/d";
  EXPECT_EQ(LastSeparator(slashes), slashes + 5);
  EXPECT_STREQ(slashes, "a/b\\c\\d");
  char table[16] = "C:\\表";  // ends in a trail byte 0x5C: a real backslash still goes behind it
  EXPECT_EQ(EnsureTrailingBackslash(table), table + 5);
  EXPECT_STREQ(table, "C:\\表\\");
  EXPECT_EQ(EnsureTrailingBackslash(table), nullptr);
}

TEST(PathTests, ExtensionsAndQuotes) {
  struct Row {
    const char *path, *extension;
  } rows[] = {{"a.b\\c", nullptr}, {"a.", nullptr}, {"a.txt", "txt"}, {"C:\\d.x\\e.lnk", "lnk"}, {"", nullptr}};
  for (const Row &row : rows) {
    const char *extension = HasExtension(row.path);
    if (row.extension == nullptr)
      EXPECT_EQ(extension, nullptr) << row.path;
    else
      EXPECT_STREQ(extension, row.extension) << row.path;
  }
  int quoteState = 9;
  const char *text = "\"a.b c\"";
  EXPECT_EQ(ExtensionDot(text, &quoteState), text + 2);
  EXPECT_EQ(quoteState, 1);
  EXPECT_EQ(ExtensionDot("表x", nullptr), nullptr);

  char src[16] = "abc\"";
  char *copy = CutTrailingQuote(src, src);
  EXPECT_STREQ(copy, "abc");
  EXPECT_STREQ(src, "abc\"");
  EXPECT_NE(copy, src);
  char dest[16];
  EXPECT_EQ(CutTrailingQuote(dest, src), dest);
  EXPECT_EQ(CutTrailingQuote(dest, nullptr), nullptr);
  char dotted[16] = "x.\\y";
  EXPECT_EQ(HasDriveRoot(dotted), nullptr);
  char drive[16] = "C:\\.\\y";
  EXPECT_NE(HasDriveRoot(drive), nullptr);
  EXPECT_STREQ(drive, "C:\\y");
}

TEST(FoldPathCase, Cases) {
  struct Row {
    const char *before, *alternate;
    int mode;
    const char *after;
  } rows[] = {
      {"c:\\PROGRAM files\\abc", "", 0, "C:\\Program files\\Abc"},
      {"表\\ABC", "", 2, "表\\ABC"},  // a path that begins with a double-byte character stays
      {"ab\\表\\cd", "", 2, "Ab\\表\\Cd"},
      {"a\\", "", 0, "A\\"},
      {"c:\\ABC", "ABC~1", 2, "c:\\ABC"},  // a second form of the name keeps the stored case
      {"c:\\ABC", "", 1, "c:\\ABC"},       // mode 1 never folds
  };
  for (const Row &row : rows) {
    char path[64];
    std::strcpy(path, row.before);
    FoldPathCase(path, row.alternate, row.mode);
    EXPECT_STREQ(path, row.after) << row.before << " mode " << row.mode;
  }
}

}  // namespace
