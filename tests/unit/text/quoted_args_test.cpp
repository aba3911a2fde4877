// Quoted arguments and the small string tools.
#include "text/quoted_args.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(Quotes, BalanceQuotes) {
  struct Row {
    const char *before;
    int keep;
    const char *after;
  } rows[] = {
      {"\"a b", 0, "\"a b\""}, {"a b\"", 0, "\"a b\""}, {"\"ab\"", 0, "ab"}, {"\"ab", 0, "ab"},
      {"\"ab\"", 1, "\"ab\""}, {"\"ab", 1, "\"ab\""},   {"\"", 0, "\""},     {"", 0, ""},
  };
  for (const Row &row : rows) {
    char text[16];
    std::strcpy(text, row.before);
    char *slot = text;
    BalanceQuotes(&slot, row.keep);
    EXPECT_STREQ(text, row.after) << row.before << " keep " << row.keep;
  }
  BalanceQuotes(nullptr, 0);
}

TEST(Quotes, WholeAndSpaced) {
  char empty[8] = "";
  EXPECT_EQ(QuoteWhole(empty), 1);
  EXPECT_STREQ(empty, "\"\"");
  char quoted[8] = "\"x";
  EXPECT_EQ(QuoteWhole(quoted), 1);
  EXPECT_STREQ(quoted, "\"x");
  char plain[8] = "abc";
  EXPECT_EQ(QuoteWhole(plain), 4);
  EXPECT_STREQ(plain, "\"abc\"");

  char spaced[16] = "a b";
  EXPECT_EQ(QuoteIfSpaced(spaced), spaced + 1);
  EXPECT_STREQ(spaced, "\"a b\"");
  EXPECT_EQ(QuoteIfSpaced(spaced), nullptr);
  EXPECT_STREQ(spaced, "\"a b\"");
  char solid[16] = "ab";
  EXPECT_EQ(QuoteIfSpaced(solid), nullptr);
  EXPECT_STREQ(solid, "ab");

  // 0x83 0x22 is no double-byte character of CP932, but 0x81 0x22 would put a quote value in trail position.
  EXPECT_EQ(IsQuoteAt("\x81\x22", 1), 0);
  EXPECT_EQ(IsQuoteAt("a\"", 1), 1);
  EXPECT_EQ(IsQuoteAt("", 0), 0);
}

TEST(Search, FindLastAndFindNoCase) {
  struct Row {
    const char *text, *pattern;
    int offset;  // -1: null
  } rows[] = {
      {"abab", "ab", 2}, {"ab", "ab", 0}, {"abc", "a", 0},   {"bcd", "c", 1},        {"abc", "x", -1},
      {"a", "ab", -1},   {"abc", "", -1}, {"表\\", "\\", 2}, {"\x95\x5C", "\\", -1},  // the trail byte of 表 is not
                                                                                      // found
  };
  for (const Row &row : rows) {
    char text[16];
    std::strcpy(text, row.text);
    const char *hit = FindLast(text, row.pattern);
    EXPECT_EQ(hit ? hit - text : -1, row.offset) << row.text << " / " << row.pattern;
    EXPECT_STREQ(text, row.text) << "the text is left as it was";
  }
  const char *name = "a.lnk";
  EXPECT_EQ(FindNoCase(name, "LNK"), name + 2);
  EXPECT_STREQ(name, "a.lnk");
  EXPECT_EQ(FindNoCase("ab", "abc"), nullptr);
  const char *kanji = "\x82\x60x";  // Ａ (0x82 0x60) has a trail byte that is the letter `; no case folding inside
  EXPECT_EQ(FindNoCase(kanji, "X"), kanji + 2);
}

TEST(SmallTools, Cases) {
  char blanks[8] = "   ";
  EXPECT_EQ(TrimTrailingSpace(blanks), 3);
  EXPECT_STREQ(blanks, "");
  char text[16] = "ab \t";
  EXPECT_EQ(TrimTrailingSpace(text), 2);
  EXPECT_STREQ(text, "ab");

  struct DepthRow {
    const char *path;
    int depth;
  } depths[] = {{"C:\\a\\b", 2}, {"\\\\srv\\share", -3}, {"C:\\a\\\\b", 2}, {"C:", 0},
                {"\\\\", 0},     {"\\\\x", -2},          {"\\\\\\", -2},    {nullptr, 0}};
  for (const DepthRow &row : depths) EXPECT_EQ(PathDepth(row.path), row.depth) << (row.path ? row.path : "null");

  char field[6] = "zzzzz";
  AttributeLetters(0x23, field);
  EXPECT_STREQ(field, "ARH--");
  AttributeLetters(-1, field);
  EXPECT_STREQ(field, "ARH--");

  char one[8] = "a", two[8] = "b", three[8] = "a", four[8] = "b";
  char *list[] = {one, two, three, four, nullptr};
  EXPECT_EQ(RemoveDuplicates(list), 2);
  EXPECT_EQ(list[0], one);
  EXPECT_EQ(list[1], two);
  EXPECT_EQ(list[2], nullptr);
  EXPECT_EQ(RemoveDuplicates(nullptr), 0);

  char message[32] = "abc。def。";
  CutAtMarker(message, "。");
  EXPECT_STREQ(message, "abc");
  EXPECT_EQ(DriveLetterOf(0), 'A');
  EXPECT_EQ(DriveIndexOf('c'), 2);
  const char *format = "x%d%s";
  EXPECT_EQ(FindFormatMark(format), format + 3);
  char slashes[16] = "a/b\\c";
  SlashToBackslash(slashes);
  EXPECT_STREQ(slashes, "a\\b\\c");
  BackslashToSlash(slashes);
  EXPECT_STREQ(slashes, "a/b/c");
  char anything[8] = "\x01x";
  EXPECT_EQ(ReplaceUnprintable(anything, '_'), 1);
  EXPECT_STREQ(anything, "\x01x");
}

}  // namespace
