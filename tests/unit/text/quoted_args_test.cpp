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
  } rows[] = {{"\"a b", 0, "\"a b\""}, {"a b\"", 0, "\"a b\""}, {"\"ab\"", 0, "ab"}, {"\"ab", 0, "ab"},
              {"\"ab\"", 1, "\"ab\""}, {"\"ab", 1, "\"ab\""},   {"\"", 0, "\""},     {"", 0, ""}};
  for (const Row &row : rows) {
    char text[16];
    std::strcpy(text, row.before);
    char *slot = text;
    BalanceQuotes(&slot, row.keep);
    EXPECT_STREQ(text, row.after) << row.before << " keep " << row.keep;
  }
}

TEST(Quotes, QuoteIfSpaced) {
  struct Row {
    const char *before, *after;
    int blank;  // offset of the blank given back, -1 for null
  } rows[] = {
      {"a b", "\"a b\"", 1},
      {"\"a b\"", "\"a b\"", -1},
      {"ab", "ab", -1},
      {"\"a b", "\"a b", 2},  // an opening quote alone is left as it is
  };
  for (const Row &row : rows) {
    char text[16];
    std::strcpy(text, row.before);
    char *blank = QuoteIfSpaced(text);
    EXPECT_EQ(blank ? blank - text : -1, row.blank) << row.before;
    EXPECT_STREQ(text, row.after) << row.before;
  }
  // 0x81 0x22 would put a quote value in trail position.
  EXPECT_EQ(IsQuoteAt("\x81\x22", 1), 0);
  EXPECT_EQ(IsQuoteAt("a\"", 1), 1);
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
                {"\\\\", 0},     {"\\\\x", -2},          {"\\\\\\", -2}};
  for (const DepthRow &row : depths) EXPECT_EQ(PathDepth(row.path), row.depth) << row.path;

  char one[8] = "a", two[8] = "b", three[8] = "a", four[8] = "b";
  char *list[] = {one, two, three, four, nullptr};
  EXPECT_EQ(RemoveDuplicates(list), 2);
  EXPECT_EQ(list[0], one);
  EXPECT_EQ(list[1], two);
  EXPECT_EQ(list[2], nullptr);

  // No list of refused bytes is set: only an empty text fails.
  char anything[8] = "\x01x", empty[1] = "";
  EXPECT_EQ(ReplaceUnprintable(anything, '_'), 1);
  EXPECT_STREQ(anything, "\x01x");
  EXPECT_EQ(ReplaceUnprintable(empty, 0), 0);
}

}  // namespace
