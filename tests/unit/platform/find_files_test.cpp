// FindFirstFileA and FindNextFileA: order, masks, names, attributes and errors, on the backend and under Wine.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/winapi.h"
#include "support/hex_text.h"
#include "support/scratch_folder.h"

namespace {

using Names = std::vector<std::string>;

struct MaskRow {
  const char *mask;
  Names expected;
  Names wine;  // Wine's answer where it is not Windows' (empty: the same)
};

TEST(FindFiles, MasksMatchAsTheFileSystemMatchesThem) {
  ScratchFolder folder;
  for (const char *name :
       {"x.lnk", "Y.LNK", "a.b.lnk", "lnk", "noext", "two.dots.txt", "a.lnkx", "ab.txt", "a.txt", "abc.txt", "_z"})
    folder.MakeFile(name);
  folder.MakeFolder("dir.lnk");
  // Dots first, then NTFS's order of the upper-cased names: "_" (0x5F) comes after every letter, where a lower-case
  // order would put it first.
  const Names all = {"a.b.lnk", "a.lnkx", "a.txt",        "ab.txt", "abc.txt", "dir.lnk",
                     "lnk",     "noext",  "two.dots.txt", "x.lnk",  "Y.LNK",   "_z"};
  Names withDots = {".", ".."};
  withDots.insert(withDots.end(), all.begin(), all.end());
  const MaskRow rows[] = {
      // Wine also finds "a.lnkx", through the short name A~XXXX.LNK that it makes up; so does Windows where short
      // names are made. There are none here.
      {"*.lnk", {"a.b.lnk", "dir.lnk", "x.lnk", "Y.LNK"}, {"a.b.lnk", "a.lnkx", "dir.lnk", "x.lnk", "Y.LNK"}},
      {"*", withDots, {}},
      {"*.*", withDots, {}},  // "*.*" is "*": names without a dot match
      // Only names without a dot. Wine drops the dot with the path's trailing dots and lists everything.
      {"*.", {"lnk", "noext", "_z"}, withDots},
      // "?" may match nothing before a dot (Wine's "?" always takes one character).
      {"a??.txt", {"a.txt", "ab.txt", "abc.txt"}, {"abc.txt"}},
      {"noext.*", {"noext"}, {}},  // ".*" may match nothing at the end
      {"*.l*", {"a.b.lnk", "a.lnkx", "dir.lnk", "x.lnk", "Y.LNK"}, {}},
      {"X.LNK", {"x.lnk"}, {}},  // no wildcard: the one name, spelled as on disk
  };
  for (const MaskRow &row : rows) {
    const Names &expected = row.wine.empty() ? row.expected : WindowsOrWine(row.expected, row.wine);
    EXPECT_EQ(ListNames(folder / row.mask), expected) << row.mask;
  }
  // A folder with nothing in it still has its dots.
  EXPECT_EQ(ListNames(folder / "dir.lnk\\*"), (Names{".", ".."}));
}

struct ErrorRow {
  std::string pattern;
  DWORD error;
};

TEST(FindFiles, FailuresGiveWindowsErrors) {
  ScratchFolder folder;
  folder.MakeFile("file.txt");
  folder.MakeFolder("dir");
  const ErrorRow rows[] = {
      {"", ERROR_PATH_NOT_FOUND},
      {folder / "", ERROR_FILE_NOT_FOUND},  // a pattern that ends in "\" names no entry
      // No match and no folder: files/directory_search_test.cpp.
      {folder / "file.txt\\*", ERROR_INVALID_NAME},  // a file's name with a backslash behind it
      {folder / "d*\\*", ERROR_INVALID_NAME},
      {folder / "a|b", ERROR_FILE_NOT_FOUND},  // a name no entry can have
      // There is no network here; Windows says this of a server that does not answer, Wine of any.
      {"\\\\server\\share\\*", WindowsOrWine<DWORD>(ERROR_BAD_NETPATH, ERROR_PATH_NOT_FOUND)},
      // An "A" call takes at most MAX_PATH characters.
      {folder / std::string(MAX_PATH - folder.Path().size() - 1, 'a'), ERROR_FILE_NOT_FOUND},
      {folder / std::string(MAX_PATH - folder.Path().size(), 'a'), ERROR_FILENAME_EXCED_RANGE},
  };
  for (const ErrorRow &row : rows) {
    FirstFound result = FindFirst(row.pattern);
    EXPECT_FALSE(result.found) << row.pattern;
    EXPECT_EQ(result.error, row.error) << row.pattern;
  }
}

TEST(FindFiles, EntriesCarryAttributesSizeAndTime) {
  ScratchFolder folder;
  folder.MakeFile("plain.lnk", "abc");
  folder.MakeFile(".hidden");
  folder.MakeFolder("sub");
  struct Row {
    const char *name;
    DWORD attributes;
    DWORD size;
  } rows[] = {
      {"plain.lnk", FILE_ATTRIBUTE_ARCHIVE, 3},
      {".hidden", FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_HIDDEN, 0},
      {"sub", FILE_ATTRIBUTE_DIRECTORY, 0},
  };
  for (const Row &row : rows) {
    FirstFound result = FindFirst(folder / row.name);
    ASSERT_TRUE(result.found) << row.name << " error " << result.error;
    EXPECT_EQ(result.data.dwFileAttributes, row.attributes) << row.name;
    EXPECT_EQ(result.data.nFileSizeLow, row.size) << row.name;
    EXPECT_NE(result.data.ftLastWriteTime.dwHighDateTime, 0u) << row.name;
  }
  // There are no short names; Wine makes them up, as Windows does on volumes that keep them.
  FirstFound result = FindFirst(folder.MakeFile("a rather long name.lnk"));
  ASSERT_TRUE(result.found);
  EXPECT_EQ(result.data.cAlternateFileName[0] != 0, RunningUnderWine());
}

TEST(FindFiles, NamesAreShiftJisAndWhatItCannotHoldReadsAsQuestionMarks) {
  ScratchFolder folder;
  folder.MakeFile("表.lnk");                       // 0x95 0x5C: its trail byte is a backslash
  folder.MakeFileNamedInUtf8(u8"\uD55C.txt");      // Hangul: no Shift-JIS form
  folder.MakeFileNamedInUtf8(u8"\U0001F600.txt");  // outside the BMP: two UTF-16 units, two marks
  Names names = ListNames(folder / "*.*");
  ASSERT_EQ(names.size(), 5u);
  // In UTF-16 order: U+8868, then U+D55C, then the surrogates D83D DE00.
  EXPECT_EQ(Hex(names[2]), Hex("表.lnk"));
  EXPECT_EQ(Hex(names[3]), Hex("?.txt"));
  EXPECT_EQ(Hex(names[4]), Hex("??.txt"));
  FirstFound exact = FindFirst(folder / "表.lnk");
  EXPECT_TRUE(exact.found) << exact.error;
  EXPECT_EQ(Hex(exact.data.cFileName), Hex("表.lnk"));
}

}  // namespace
