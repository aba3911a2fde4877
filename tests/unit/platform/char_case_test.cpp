// The text case routines that are ours on both platforms: single-byte letters fold, double-byte characters stay.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "platform/winapi.h"
#include "support/hex_text.h"

namespace {

TEST(CharCase, FoldsStringsInPlace) {
  struct Row {
    const char *name, *text, *lower, *upper;
  } rows[] = {
      {"ascii letters", "Abc XYZ 09_@[`{", "abc xyz 09_@[`{", "ABC XYZ 09_@[`{"},
      {"katakana pi, trail 'a'", "\x83\x73x\x83\x61", "\x83\x73x\x83\x61", "\x83\x73X\x83\x61"},
      {"lead run 81 81 81 41: 41 is a trail", "\x81\x81\x81\x41", "\x81\x81\x81\x41", "\x81\x81\x81\x41"},
      {"lead run 81 81 41: 41 is a letter", "\x81\x81\x41", "\x81\x81\x61", "\x81\x81\x41"},
      {"lone lead byte at the end", "A\x95", "a\x95", "A\x95"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    char lower[32], upper[32];
    std::snprintf(lower, sizeof lower, "%s", row.text);
    std::snprintf(upper, sizeof upper, "%s", row.text);
    EXPECT_EQ(CharLowerA(lower), lower);
    EXPECT_EQ(CharUpperA(upper), upper);
    EXPECT_EQ(Hex(lower), Hex(row.lower));
    EXPECT_EQ(Hex(upper), Hex(row.upper));
  }
}

TEST(CharCase, ByteTests) {
  struct Row {
    unsigned char c;
    BOOL lower, alpha;
  } rows[] = {{'a', 1, 1}, {'z', 1, 1}, {'A', 0, 1}, {'Z', 0, 1},  {'@', 0, 0},
              {'[', 0, 0}, {'`', 0, 0}, {'{', 0, 0}, {0xB1, 0, 0}, {0x82, 0, 0}};  // letters' edges, kana, lead
  for (const Row &row : rows) {
    SCOPED_TRACE(int(row.c));
    EXPECT_EQ(IsCharLowerA(static_cast<CHAR>(row.c)), row.lower);
    EXPECT_EQ(IsCharAlphaA(static_cast<CHAR>(row.c)), row.alpha);
  }
}

TEST(CharCase, Comparisons) {
  struct Row {
    const char *name, *a, *b;
    bool equal, equalIgnoringCase;
  } rows[] = {
      {"case differs", "c:\\program files", "C:\\PROGRAM FILES", false, true},
      {"prefix", "abc", "abcd", false, false},
      {"katakana a vs 83 61", "\x83\x41", "\x83\x61", false, false},  // the trail bytes are not letters
      {"double-byte then letters", "表A", "表a", false, true},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(lstrcmpA(row.a, row.b) == 0, row.equal);
    EXPECT_EQ(lstrcmpiA(row.a, row.b) == 0, row.equalIgnoringCase);
    EXPECT_EQ(lstrcmpiA(row.b, row.a) == 0, row.equalIgnoringCase);
  }
}

}  // namespace
