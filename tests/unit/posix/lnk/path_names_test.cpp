// File names of the Linux backend where the listing tests on both platforms (platform/find_files_test.cpp) cannot
// reach: names on disk that no Windows name holds, case folding beyond ASCII, and the wildcard rows that a listing does
// not show one by one. Names without a Shift-JIS form are read there.
#include "platform/posix/text/path_names.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/posix/text/charset.h"

namespace {

std::string Utf8(const std::u16string &text) { return Utf16ToUtf8(text); }

TEST(PathNames, DiskNamesReadAsAWindowsListingShowsThem) {
  struct Row {
    std::string disk;
    std::string shown;
  } rows[] = {
      {"a\\b:c*d?e\"f<g>h|i", "a?b?c?d?e?f?g?h?i"},  // what no Windows name holds
  };
  for (const Row &row : rows) EXPECT_EQ(DiskNameToProgram(row.disk), row.shown) << row.disk;
}

// Names on disk are folded and ordered in UTF-16; each byte that starts no whole character becomes a replacement.
TEST(PathNames, Utf8ToUtf16) {
  const std::string text = u8"a\u00E9\u8868\U0001F600";
  EXPECT_EQ(Utf8ToUtf16(text), (std::u16string{u'a', 0x00E9, 0x8868, 0xD83D, 0xDE00}));
  EXPECT_EQ(Utf16ToUtf8(Utf8ToUtf16(text)), text);
  struct Row {
    const char *bytes;
    std::u16string expected;
  } rows[] = {
      {"\xC0\xAF", {0xFFFD, 0xFFFD}},              // an overlong "/" is not a slash
      {"\xED\xA0\x80", {0xFFFD, 0xFFFD, 0xFFFD}},  // an encoded surrogate
  };
  for (const Row &row : rows) EXPECT_EQ(Utf8ToUtf16(row.bytes), row.expected) << row.bytes;
  EXPECT_EQ(Utf16ToUtf8(std::u16string(1, 0xD800) + u"x"), "\xEF\xBF\xBDx");  // a lone surrogate
}

TEST(PathNames, FoldingUsesTheUpperCaseOfEachUnit) {
  struct Row {
    char16_t unit, folded;
  } rows[] = {
      {0x03B1, 0x0391},  // Greek alpha
      {0xFF41, 0xFF21},  // full-width a
      {0x00DF, 0x00DF},  // ß has no one-unit upper case
  };
  for (const Row &row : rows) EXPECT_EQ(FoldUnit(row.unit), row.folded) << static_cast<int>(row.unit);
  EXPECT_FALSE(SameNameIgnoringCase(u"Program Files", u"PROGRAM file"));
}

TEST(PathNames, DosMasksMatchByTheFileSystemsRules) {
  struct Row {
    const char16_t *mask;  // as FindFirstFileA gets it
    bool endedInDot;
    const char16_t *name;
    bool matches;
  } rows[] = {
      {u"*.*", false, u".", true},          {u"a?b", false, u"a.b", false},  // "?" never takes a dot
      {u"x.*", false, u"x", true},          {u"x.*", false, u"xy", false},
      {u"*.l*", false, u"a.lnk.txt", true},  // the "." after "*" may be any dot
      {u"*", true, u"a.", false},            // "*." never takes the last dot itself
      {u"??", false, u"\u8868", true},       // one unit is one character
  };
  for (const Row &row : rows) {
    bool matches = MatchesDosMask(FoldName(row.name), DosMask(row.mask, row.endedInDot));
    EXPECT_EQ(matches, row.matches) << Utf8(row.mask) << (row.endedInDot ? "." : "") << " on " << Utf8(row.name);
  }
}

}  // namespace
