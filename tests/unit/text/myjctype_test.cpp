// Double-byte text: the position-aware byte tests, the character-wise search and the case routines.
#include "text/myjctype.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(Myjctype, CharacterClasses) {
  struct Row {
    const char *name, *text;
    unsigned n;
    int iskanjin, nthctype;
  } rows[] = {{"hyou: lead", "表", 0, 1, kLeadByte},
              {"hyou: trail 0x5C", "表", 1, 0, kTrailByte},
              {"81 81 81 41 @1: run of 2", "\x81\x81\x81\x41", 1, 0, kTrailByte},
              {"81 81 81 41 @2: run of 3", "\x81\x81\x81\x41", 2, 1, kLeadByte},
              {"lead before terminator: the terminator", "a\x95", 2, 0, kBrokenTrail},
              {"lead then blank", "\x95 ", 1, 0, kBrokenTrail},
              {"half-width katakana at the start", "\xB3", 0, 0, kSingleByte},
              {"half-width katakana behind a lead", "\x83\xB3", 1, 0, kTrailByte},
              {"run broken by a single byte",
               "\x81\x81"
               "A\x81\x81",
               4, 0, kTrailByte},
              {"byte 0x7F behind a lead", "\x81\x7F", 1, 0, kBrokenTrail}};
  for (const Row &row : rows) {
    EXPECT_EQ(_myIskanjin(row.text, row.n), row.iskanjin) << row.name;
    EXPECT_EQ(_myNthctype(row.text, row.n), row.nthctype) << row.name;
  }
}

// Callers pass the text itself as `start`, or the matcher a start in front of `s` with n = 0.
TEST(Myjctype, IsSingleByteCharAt) {
  const char text[] = "a\\表\\b";  // a \ 95 5C \ b
  struct Row {
    const char *name, *start, *s;
    unsigned char ch;
    unsigned n;
    int result;
  } rows[] = {{"backslash at 1", text, text, '\\', 1, 1},
              {"trail byte 0x5C is no backslash", text, text, '\\', 3, 0},
              {"backslash behind the character", text, text, '\\', 4, 1},
              {"other byte", text, text, 'b', 4, 0},
              {"s inside the text, classified from start", text, text + 3, '\\', 0, 0},
              {"s inside the text, on a backslash", text, text + 4, '\\', 0, 1}};
  for (const Row &row : rows) EXPECT_EQ(IsSingleByteCharAt(row.start, row.s, row.ch, row.n), row.result) << row.name;
}

TEST(Myjctype, FindText) {
  struct Row {
    const char *name, *s, *t;
    int offset;  // -1 for null
  } rows[] = {{"empty pattern gives s", "abc", "", 0},
              {"longer than s", "ab", "abc", -1},
              {"backslash as the trail of hyou", "表", "\\", -1},
              {"pattern starting inside a character",
               "\x83\x41"
               "A",
               "A", 2},
              {"pattern across a character boundary", "x表\\y", "\\y", 3},
              {"double-byte pattern", "a表b", "表", 1},
              {"lead byte before the terminator ends the search", "a\x95", "\x95", -1}};
  for (const Row &row : rows) {
    const char *found = FindText(row.s, row.t);
    EXPECT_EQ(found ? found - row.s : -1, row.offset) << row.name;
  }
}

TEST(Myjctype, CaseRoutines) {
  struct Row {
    const char *text;
    unsigned char flags;
    const char *after;
  } rows[] = {
      {"Abc\\表x", 0x01, "ABC\\表X"},
      {"ABC\\\x83\x41Z", 0x02, "abc\\\x83\x41z"},  // the trail byte 0x41 of ア stays
      {"aB", 0x03, "AB"},                          // bit 0 wins over bit 1
      {"\xB1z", 0x01, "\xB1Z"},                    // half-width katakana untouched
  };
  for (const Row &row : rows) {
    char buffer[32];
    std::strcpy(buffer, row.text);
    EXPECT_EQ(ApplyCaseFlags(buffer, row.flags), buffer);
    EXPECT_STREQ(buffer, row.after) << row.text;
  }
  // Only a to z: neither the bytes next to them nor a byte above 0x7F.
  for (int c : {0x40, 0x5B, 0x60, 0x7B, 0xE0, 0xE1}) EXPECT_EQ(ToUpperByte(c), c) << c;
  EXPECT_EQ(ToUpperByte('a'), 'A');
  EXPECT_EQ(ToUpperByte('z'), 'Z');
}

}  // namespace
