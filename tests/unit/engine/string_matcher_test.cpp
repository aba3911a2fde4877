// The string matcher: the worked examples, the double-byte edges, and the limits of the field buffer.
#include "engine/string_matcher.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/testing.h"

namespace {

class StringMatcher : public ::testing::Test {
 protected:
  void SetUp() override {
    field = AcquireFieldBuffer(&handle);
    ASSERT_NE(field, nullptr);
  }
  void TearDown() override {
    TestSetAllocationLimit(kNoAllocationLimit);
    ReleaseFieldBuffer(handle, field);
  }
  // Puts the strings, the flags and the field in place and runs the matcher; the match pointer is pre-set to a
  // sentinel so that a write shows.
  int Run(const char *text, const char *oldString, const char *newString, unsigned char flags) {
    SetMatchStrings(oldString, newString);
    SetMatchFlags(flags);
    std::memset(field, 0, kFieldSize);
    std::strcpy(field, text);
    match = sentinel;
    return ReplaceInField(field, &match);
  }
  HGLOBAL handle = nullptr;
  char *field = nullptr;
  char sentinel[1] = {0};
  char *match = nullptr;
};

TEST_F(StringMatcher, WorkedExamples) {
  struct Row {
    const char *field, *oldString, *newString;
    unsigned char flags;
    int result;
    const char *after;  // null: unchanged
  } rows[] = {{"C:\\Program Files\\App\\a.exe", "C:\\Program Files", "D:\\Apps", 0x09, 1, "D:\\Apps\\App\\a.exe"},
              {"c:\\program files\\a.exe", "C:\\PROGRAM FILES", "D:\\X", 0x09, 1, "D:\\X\\a.exe"},
              {"c:\\program files\\a.exe", "C:\\PROGRAM FILES", "D:\\X", 0x49, 0, nullptr},
              {"C:\\Program", "C:\\Program", "D:\\P", 0x09, 1, "D:\\P"},
              {"C:\\Programs\\App\\a.exe", "C:\\Program", "D:\\P", 0x09, 0, "C:\\Program"},  // truncated
              {"C:\\foo\\bar", "C:\\foo\\", "D:", 0x09, 0, "C:\\foo\\"},                     // truncated
              {"ABCDEF", "AB", "XY", 0x05, 1, "XYCDEF"},
              {"ABCDEF", "AB", "XYZ", 0x05, 1, "XYCCDEF"},
              {"ABCDEF", "ABC", "X", 0x05, 1, "XDED"},
              {"ABCD", "ABC", "X", 0x05, 1, "XD"},
              {"ABCDEF", "ABCDEF", "X", 0x05, 1, "X"},
              {"ABC", "ABCD", "X", 0x05, 0, nullptr},
              {"C:\\a\\b.txt", "b.txt", "c.dat", 0x0A, 1, "C:\\a\\c.dat"},
              {"C:\\a\\xb.txt", "b.txt", "c.dat", 0x0A, 0, nullptr},
              {"C:\\a\\xb.txt", "b.txt", "c.dat", 0x06, 1, "C:\\a\\xc.dat"},
              {"C:\\a\\b.txt", "\\b.txt", "\\c", 0x0A, 1, "C:\\a\\c"},
              {"b.txt", "b.txt", "c", 0x0A, 1, "c"},
              {"a.txt", "bb.txt", "c", 0x06, 0, nullptr},
              {"ABAB", "AB", "X", 0x20, 1, "XX"},
              {"abAB", "AB", "X", 0x20, 1, "XX"},
              {"abAB", "AB", "X", 0x60, 1, "abX"},
              {"aaa", "aa", "b", 0x20, 1, "ba"},
              {"aXa", "a", "aa", 0x20, 1, "aaXaa"},
              {"abc", "b", "x", 0x30, 0, nullptr},
              {"a\\bc", "b", "x", 0x30, 1, "a\\xc"},
              {"C:\\foo\\foobar\\foo", "foo", "x", 0xA0, 1, "C:\\x\\foobar\\x"},
              {"foo\\x", "foo", "yy", 0xA0, 1, "yy\\x"},
              {"C:\\foo\\bar", "\\foo", "\\x", 0xA0, 1, "C:\\x\\bar"},
              {"C:\\foo\\bar", "foo\\", "x\\", 0xA0, 0, nullptr}};
  for (const Row &row : rows) {
    SCOPED_TRACE(::testing::Message() << row.field << " | " << row.oldString << " | " << row.newString << " | "
                                      << std::hex << int(row.flags));
    EXPECT_EQ(Run(row.field, row.oldString, row.newString, row.flags), row.result);
    EXPECT_STREQ(field, row.after ? row.after : row.field);
    if (row.result == 1) {
      EXPECT_EQ(match, field);
    }
  }
}

TEST_F(StringMatcher, FurtherEdges) {
  const std::string longest(kFieldSize - 1, 'p');
  struct Row {
    const char *name;
    std::string field, oldString, newString;
    unsigned char flags;
    int result;
    std::string after;  // empty: unchanged
  } rows[] = {          // 表 is 0x95 0x5C: its trail byte counts as a separator in front of a match ...
              {"trail 0x5C before an all/folder match", "C:\\表foo\\x", "foo", "yy", 0xA0, 1, "C:\\表yy\\x"},
              {"trail 0x5C before an end/folder match", "C:\\表b.txt", "b.txt", "c", 0x0A, 1, "C:\\表c"},
              // ... but not behind one: a trail 0x5C is no backslash at the right boundary.
              {"trail 0x5C after a match", "C:\\x表y", "C:\\x\x95", "D:", 0xA0, 0, ""},
              {"end/folder: a match that begins on the trail 0x5C", "C:\\表x", "\\x", "y", 0x0A, 0, ""},
              // All match searches character by character: "A" inside ア (0x83 0x41) is not found ...
              {"all: no match inside a character", "\x83\x41", "A", "B", 0x60, 0, ""},
              {"all, case-blind: no match inside a character", "\x83\x41", "a", "B", 0x20, 0, ""},
              // ... while End match has no such protection and splits the character.
              {"end: match on a trail byte", "\x83\x41", "A", "B", 0x06, 1, "\x83\x42"},
              {"all: double-byte old string", "a表b表", "表", "x", 0x20, 1, "axbx"},
              {"z: backslash only as a trail byte", "表", "表", "x", 0x30, 0, ""},
              // All match keeps the case of the field and of the new string: only the search copy is lowered.
              {"all, case-blind", "Foo\\BAR\\fOO", "FOO", "Baz", 0x20, 1, "Baz\\BAR\\Baz"},
              // Front match in character units writes the byte that stood at the cut offset back into the result.
              {"front/char: the new text ends at the cut offset", "abc\\d", "abc", "X", 0x05, 1, "X\\d\\d"},
              {"front/char: one byte of the result changed", "ABCDEF", "ABCD", "XY", 0x05, 1, "XYEFEF"},
              {"front/char: the offset behind the new terminator", "ABCDEFGH", "ABCDEF", "X", 0x05, 1, "XGH"},
              // A splice that would overflow the field's buffer is no replacement.
              {"front, just fits", "a" + longest.substr(1), "a", "b", 0x05, 1, "b" + longest.substr(1)},
              {"front, one byte too long", "a\\" + longest.substr(2), "a", "bb", 0x09, 0, ""},
              {"front, character unit, too long", "a" + longest.substr(1), "a", "bb", 0x05, 0, ""},
              {"end, too long", longest.substr(1) + "a", "a", "bb", 0x06, 0, ""},
              {"end, just fits", longest.substr(2) + "a", "a", "bb", 0x06, 1, longest.substr(2) + "bb"},
              {"all, the last splice too long", "a" + longest.substr(3) + "a", "a", "bb", 0x20, 0, ""},
              {"all, just fits", "a" + longest.substr(4) + "a", "a", "bb", 0x20, 1, "bb" + longest.substr(4) + "bb"}};
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(Run(row.field.c_str(), row.oldString.c_str(), row.newString.c_str(), row.flags), row.result);
    EXPECT_EQ(std::string(field), row.after.empty() ? row.field : row.after);
  }
}

// A field equal to the old string is replaced in every mode; an empty old string (typed by the user) matches nothing.
TEST_F(StringMatcher, WholeFieldAndEmptyOldStringInEveryMode) {
  for (unsigned char flags : {0x09, 0x49, 0x05, 0x45, 0x0A, 0x4A, 0x06, 0x46, 0x20, 0x60, 0x30, 0x70, 0xA0, 0xE0}) {
    SCOPED_TRACE(int(flags));
    EXPECT_EQ(Run("abc", "", "x", flags), 0);
    EXPECT_STREQ(field, "abc");
    EXPECT_EQ(Run("C:\\Old", "C:\\Old", "D:\\New", flags), 1);
    EXPECT_STREQ(field, "D:\\New");
    EXPECT_EQ(match, field);
  }
}

TEST_F(StringMatcher, EndMatchReadsTheByteInFrontOfTheField) {
  EXPECT_EQ(field[-1], 0);  // the guard byte of the field buffer
  field[-1] = static_cast<char>(0x81);
  EXPECT_EQ(Run("xab", "ab", "c", 0x06), 0);
  EXPECT_STREQ(field, "xab");
  EXPECT_EQ(Run("ab", "ab", "c", 0x06), 1);  // equal lengths do not look there
  EXPECT_STREQ(field, "c");
  field[-1] = 0;
}

TEST_F(StringMatcher, FrontMatchReadsNothingBehindAShortField) {
  // Fill the buffer behind the terminator with text up to its very end: no terminator to stop a read.
  SetMatchStrings("abcdef", "x");
  SetMatchFlags(0x05);
  std::memset(field, 'Q', kFieldSize);
  std::memcpy(field, "abc", 4);
  std::string before(field, kFieldSize);
  EXPECT_EQ(ReplaceInField(field, &match), 0);
  EXPECT_EQ(std::string(field, kFieldSize), before);
}

TEST_F(StringMatcher, NoWorkingBlockNoReplacement) {
  size_t live = TestLiveBlockCount();
  TestSetAllocationLimit(kFieldSize - 1);
  for (unsigned char flags : {0x05, 0x20}) {
    EXPECT_EQ(Run("abc", "a", "x", flags), 0) << int(flags);
    EXPECT_STREQ(field, "abc");
  }
  EXPECT_EQ(TestLiveBlockCount(), live);
}

}  // namespace
