// Double-byte text: the position-aware byte tests, the character-wise search and the case routines.
#include "text/myjctype.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/testing.h"

namespace {

TEST(Myjctype, CharacterClasses) {
  struct Row {
    const char *name, *text;
    unsigned n;
    int iskanjin, nthctype;
  } rows[] = {
      {"hyou: lead", "表", 0, 1, kLeadByte},
      {"hyou: trail 0x5C", "表", 1, 0, kTrailByte},
      {"81 81 81 41 @0: run of 1", "\x81\x81\x81\x41", 0, 1, kLeadByte},
      {"81 81 81 41 @1: run of 2", "\x81\x81\x81\x41", 1, 0, kTrailByte},
      {"81 81 81 41 @2: run of 3", "\x81\x81\x81\x41", 2, 1, kLeadByte},
      {"81 81 81 41 @3", "\x81\x81\x81\x41", 3, 0, kTrailByte},
      {"lead before terminator: the lead", "a\x95", 1, 1, kLeadByte},
      {"lead before terminator: the terminator", "a\x95", 2, 0, kBrokenTrail},
      {"lead then blank", "\x95 ", 1, 0, kBrokenTrail},
      {"offset 0 is never a trail", "\x81", 0, 1, kLeadByte},
      {"half-width katakana at the start", "\xB3", 0, 0, kSingleByte},
      {"half-width katakana behind a lead", "\x83\xB3", 1, 0, kTrailByte},
      {"run broken by a single byte",
       "\x81\x81"
       "A\x81\x81",
       4, 0, kTrailByte},
      {"terminator of a plain text", "ab", 2, 0, kSingleByte},
      {"byte 0x7F behind a lead", "\x81\x7F", 1, 0, kBrokenTrail},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(_myIskanjin(row.text, row.n), row.iskanjin);
    EXPECT_EQ(_myNthctype(row.text, row.n), row.nthctype);
  }
}

TEST(Myjctype, IsSingleByteCharAt) {
  const char text[] = "a\\表\\b";  // a \ 95 5C \ b
  struct Row {
    const char *name, *start, *s;
    unsigned char ch;
    unsigned n;
    int result;
  } rows[] = {
      {"backslash at 1", text, text, '\\', 1, 1},
      {"trail byte 0x5C is no backslash", text, text, '\\', 3, 0},
      {"backslash behind the character", text, text, '\\', 4, 1},
      {"other byte", text, text, 'b', 4, 0},
      {"null start means s", nullptr, text, '\\', 3, 0},
      {"empty start means s", "", text + 3, '\\', 0, 1},  // from the trail byte on, 0x5C reads as single
      {"s inside the text, classified from start", text, text + 3, '\\', 0, 0},
      {"s inside the text, offset onward", text, text + 2, '\\', 2, 1},
      {"start behind s but not behind s + n", text + 1, text, '\\', 1, 0},
      {"start behind s + n", text + 3, text, 'a', 1, 0},
      {"null s", text, nullptr, 'a', 0, 0},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(IsSingleByteCharAt(row.start, row.s, row.ch, row.n), row.result);
  }
}

TEST(Myjctype, FindText) {
  struct Row {
    const char *name, *s, *t;
    int offset;  // -1 for null
  } rows[] = {
      {"plain", "C:\\foo\\bar", "foo", 3},
      {"first of several", "abab", "ab", 0},
      {"empty pattern gives s", "abc", "", 0},
      {"not there", "abc", "abd", -1},
      {"longer than s", "ab", "abc", -1},
      {"backslash as the trail of hyou", "表", "\\", -1},
      {"pattern starting inside a character",
       "\x83\x41"
       "A",
       "A", 2},
      {"pattern across a character boundary", "x表\\y", "\\y", 3},
      {"double-byte pattern", "a表b", "表", 1},
      {"lead byte before the terminator ends the search", "a\x95", "\x95", -1},
      {"empty s", "", "a", -1},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    const char *found = FindText(row.s, row.t);
    EXPECT_EQ(found ? found - row.s : -1, row.offset);
  }
  EXPECT_EQ(FindText(nullptr, "a"), nullptr);
  EXPECT_EQ(FindText("a", nullptr), nullptr);
}

TEST(Myjctype, CaseRoutines) {
  struct Row {
    const char *name, *text;
    unsigned char flags;
    const char *after;
  } rows[] = {
      {"bit 0 upper", "Abc\\表x", 0x01, "ABC\\表X"},
      {"bit 1 lower", "ABC\\\x83\x41Z", 0x02, "abc\\\x83\x41z"},
      {"bit 0 wins over bit 1", "aB", 0x03, "AB"},
      {"no bits", "aB", 0x04, "aB"},
      {"half-width katakana untouched", "\xB1z", 0x01, "\xB1Z"},
      {"empty", "", 0x01, ""},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    char buffer[32];
    std::strcpy(buffer, row.text);
    EXPECT_EQ(ApplyCaseFlags(buffer, row.flags), buffer);
    EXPECT_STREQ(buffer, row.after);
  }
  EXPECT_EQ(ApplyCaseFlags(nullptr, 1), nullptr);
  LowerText(nullptr);
  UpperText(nullptr);
}

TEST(Myjctype, ToUpperByte) {
  struct Row {
    int c, result;
  } rows[] = {{'a', 'A'}, {'z', 'Z'},    {'A', 'A'},   {'1', '1'},   {0, 0},
              {-1, 0xFF}, {-0x9F, 0x61}, {0xE0, 0xE0}, {0xB1, 0xB1}, {0x161, 0x61}};
  for (const Row &row : rows) EXPECT_EQ(ToUpperByte(row.c), row.result) << "c = " << row.c;
}

TEST(Myjctype, NullTextShowsTheAssertion) {
  TestConsoleBegin("");
  EXPECT_EQ(_myIskanjin(nullptr, 0), 0);
  EXPECT_EQ(_myNthctype(nullptr, 3), 0);
  std::string errors = TestConsoleErrors();
  TestConsoleEnd();
  EXPECT_EQ(errors, "myjctype: s=NUUL at _myIskanjin()\nmyjctype: s=NUUL at _myNthctype()\n");
}

}  // namespace
