// Byte classes, the double-byte-aware character search, and the command-line tools.
#include "text/tokens.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

TEST(ByteClasses, Boundaries) {
  struct Row {
    unsigned char byte;
    int lead, trail;
  } rows[] = {{0x3F, 0, 0}, {0x40, 0, 1}, {0x5C, 0, 1}, {0x7E, 0, 1}, {0x7F, 0, 0}, {0x80, 0, 1}, {0x81, 1, 1},
              {0x9F, 1, 1}, {0xA0, 0, 1}, {0xDF, 0, 1}, {0xE0, 1, 1}, {0xFC, 1, 1}, {0xFD, 0, 0}, {0xFF, 0, 0}};
  for (const Row &row : rows) {
    EXPECT_EQ(IsLeadByte(row.byte), row.lead) << std::hex << int(row.byte);
    EXPECT_EQ(IsTrailByte(row.byte), row.trail) << std::hex << int(row.byte);
  }
}

TEST(FindCharacter, RespectsDoubleByteCharacters) {
  struct Row {
    const char *text;
    unsigned c;
    int first, last;                                            // offsets, -1 for null
  } rows[] = {{"a\\b\\c", '\\', 1, 3}, {"表", '\\', -1, -1},    // the trail byte is no backslash
              {"表\\x", '\\', 2, 2},   {"a表b", 0x955C, 1, 1},  // a double-byte character is found as one value
              {"abc", 0, 3, 3},                                 // the terminator is found
              {"ab\x95", 'a', 0, 0},                            // lead byte before the terminator ends the walk
              {"ab\x95", 'z', -1, 3},  // ... and gives the terminator's address to the last-search
              {"", 'a', -1, -1}};
  for (const Row &row : rows) {
    const char *first = FindCharacter(row.text, row.c);
    const char *last = FindLastCharacter(row.text, row.c);
    EXPECT_EQ(first ? first - row.text : -1, row.first) << row.text;
    EXPECT_EQ(last ? last - row.text : -1, row.last) << row.text;
  }
}

TEST(StripOuterQuotes, Cases) {
  struct Row {
    const char *before, *after;
    int result;
  } rows[] = {{"\"a b\"", "a b", 1}, {"a\"b", "ab", 1}, {"\"a\"b", "a", 1}, {"\"\"", "\"\"", 0},
              {"\"", "\"", 0},       {"abc", "abc", 0}, {"x\"\"", "x", 1},  {"\"C:\\表\"", "C:\\表", 1}};
  for (const Row &row : rows) {
    char buffer[32];
    std::strcpy(buffer, row.before);
    EXPECT_EQ(StripOuterQuotes(buffer), row.result) << row.before;
    EXPECT_STREQ(buffer, row.after) << row.before;
  }
}

// An unbalanced quote ends the process; the program-level tests see that exit.
TEST(FirstToken, FindsTheBlankThatEndsTheFirstArgument) {
  struct Row {
    const char *line;
    int blank;  // offset, -1 for null
  } rows[] = {
      {"a b c", 1},        {"\"a b\" c", 5}, {"a", -1}, {"x\"a b\" c", 6},  // a quote further on is skipped as a whole
      {"表 \"a b\" c", 2},  // a double-byte character before the quote: the quote's blank is an ordinary one
  };
  for (const Row &row : rows) {
    const char *blank = FirstToken(row.line);
    EXPECT_EQ(blank ? blank - row.line : -1, row.blank) << row.line;
  }
}

TEST(SplitFileName, Cases) {
  struct Row {
    const char *path, *name, *pathAfter;
  } rows[] = {{"C:\\a\\b.lnk", "b.lnk", "C:\\a\\b.lnk"}, {"C:\\a\\", "", "C:\\a\\"},  // an empty name, not null
              {"dir/sub/x", "x", "dir/sub\\x"},  // the last "/" becomes "\" when it is the last separator
              {"\"C:\\p q\\r\"", "r", "C:\\p q\\r"},     {"name", "name", "name"},   {"C:\\表", "表", "C:\\表"}};
  for (const Row &row : rows) {
    char path[64];
    std::strcpy(path, row.path);
    const char *name = SplitFileName(nullptr, path);
    ASSERT_NE(name, nullptr) << row.path;
    EXPECT_STREQ(name, row.name) << row.path;
    EXPECT_STREQ(path, row.pathAfter) << row.path;
  }
  char empty[1] = "";
  EXPECT_EQ(SplitFileName(nullptr, empty), nullptr);
}

TEST(TrimLeadingSpace, StopsAtADoubleByteBlank) {
  char text[16] = " \t x y";
  EXPECT_EQ(TrimLeadingSpace(text), 3);
  EXPECT_STREQ(text, "x y");
  char lead[8] = "\x81\x40z";
  EXPECT_EQ(TrimLeadingSpace(lead), 0);
}

}  // namespace
