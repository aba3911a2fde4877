// The option controls turned into the matcher's flags and the arguments switch.
#include "front/match_flags.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>

#include "console/control_store.h"
#include "engine/string_matcher.h"
#include "support/control_store_clear.h"

namespace {

// Checks the controls of `letters` as the command line does (one SetControlChecked per letter).
void CheckLetters(const std::string &letters) {
  static const std::pair<char, unsigned> kControls[] = {
      {'i', kIdIncludeArguments},   {'m', kIdCaseMatters},   {'f', kIdMatchFront},    {'e', kIdMatchEnd},
      {'a', kIdMatchAll},           {'d', kIdFolderUnit},    {'c', kIdCharacterUnit}, {'x', kIdNoRestriction},
      {'y', kIdBetweenBackslashes}, {'z', kIdWithBackslash}, {'k', kIdConfirm}};
  ClearControlStore();
  for (char letter : letters)
    for (const auto &control : kControls)
      if (control.first == letter) SetControlChecked(control.second, 1);
}

TEST(MatchFlags, EveryAcceptedCombination) {
  struct Row {
    const char *letters;
    unsigned char flags, withM;
  } rows[] = {{"fd", 0x09, 0x49}, {"fc", 0x05, 0x45}, {"ed", 0x0A, 0x4A}, {"ec", 0x06, 0x46},
              {"ax", 0x20, 0x60}, {"az", 0x30, 0x70}, {"ay", 0xA0, 0xE0}};
  for (const Row &row : rows) {
    SCOPED_TRACE(row.letters);
    CheckLetters(row.letters);
    EXPECT_EQ(BuildMatchFlags(), row.flags);
    CheckLetters(std::string("m") + row.letters);
    SetMatchFlags(0xFF);
    EXPECT_EQ(BuildMatchFlags(), row.withM);
  }
}

TEST(MatchFlags, LettersThatLeaveNoTrace) {
  struct Row {
    const char *letters;
    unsigned char flags;
  } rows[] = {{"fdxyz", 0x09}, {"adc", 0x20}, {"ayz", 0x30}, {"fdcx", 0x0D}, {"fed", 0x09}, {"d", 0x08}};
  for (const Row &row : rows) {
    SCOPED_TRACE(row.letters);
    CheckLetters(row.letters);
    EXPECT_EQ(BuildMatchFlags(), row.flags);
  }
}

// What the options build is what the matcher then works with: m makes the case matter for the next replacement.
TEST(MatchFlags, TheFlagsReachTheMatcher) {
  SetMatchStrings("c:\\old", "D:\\new");
  for (const char *letters : {"fd", "mfd"}) {
    CheckLetters(letters);
    BuildMatchFlags();
    HGLOBAL handle = nullptr;
    char *field = AcquireFieldBuffer(&handle);
    ASSERT_NE(field, nullptr);
    std::snprintf(field, kFieldSize, "%s", "C:\\Old\\x.exe");
    char *match = nullptr;
    bool caseMatters = letters[0] == 'm';
    EXPECT_EQ(ReplaceInField(field, &match), caseMatters ? 0 : 1) << letters;
    EXPECT_STREQ(field, caseMatters ? "C:\\Old\\x.exe" : "D:\\new\\x.exe") << letters;
    ReleaseFieldBuffer(handle, field);
  }
}

TEST(MatchFlags, IncludeArgumentsFollowsItsControl) {
  CheckLetters("ifd");
  SetIncludeArguments(0);
  EXPECT_EQ(BuildMatchFlags(), 0x09);
  EXPECT_EQ(GetIncludeArguments(), 1);
  CheckLetters("fd");
  BuildMatchFlags();
  EXPECT_EQ(GetIncludeArguments(), 0);
}

}  // namespace
