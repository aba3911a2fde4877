// The control-state store as the engine reads it: texts by id, with the removal path that drops the first row whatever
// its id, and checked ids compared as numbers.
#include "console/control_store.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/control_store_clear.h"

namespace {

std::string TextOf(unsigned id) {
  char buffer[64];
  GetControlText(nullptr, id, buffer, sizeof buffer);
  return buffer;
}

class ControlStore : public ::testing::Test {
 protected:
  void SetUp() override { ClearControlStore(); }
};

// Emptying one control drops the first row, whatever its id: the front end relies on this to forget the search folder
// it set first. So emptying kIdNewString can take the folder away and leave the new string standing.
TEST_F(ControlStore, AnEmptyTextDropsTheFirstRowWhateverItsId) {
  struct Row {
    std::vector<std::pair<unsigned, const char *>> before;
    unsigned emptied;
    std::vector<std::pair<unsigned, const char *>> after;  // what each id then reads
  } rows[] = {
      {{}, kIdNewString, {{kIdNewString, ""}}},
      {{{kIdSearchFolder, "C:\\a"}}, kIdOldString, {{kIdSearchFolder, ""}, {kIdOldString, ""}}},
      {{{kIdSearchFolder, "C:\\a"}, {kIdOldString, "old"}},
       kIdSearchFolder,
       {{kIdSearchFolder, ""}, {kIdOldString, "old"}}},
      {{{kIdSearchFolder, "C:\\a"}, {kIdOldString, "old"}, {kIdNewString, "new"}},
       kIdNewString,
       {{kIdSearchFolder, ""}, {kIdOldString, "old"}, {kIdNewString, "new"}}},
  };
  for (size_t i = 0; i < sizeof rows / sizeof rows[0]; ++i) {
    ClearControlStore();
    for (const auto &row : rows[i].before) SetControlText(row.second, row.first);
    SetControlText("", rows[i].emptied);
    for (const auto &read : rows[i].after) EXPECT_EQ(TextOf(read.first), read.second) << "case " << i;
  }
}

TEST_F(ControlStore, GetControlText) {
  SetControlText("C:\\a|b", kIdSearchFolder);
  SetControlText("first", kIdOldString);
  SetControlText("second", kIdOldString);
  EXPECT_EQ(TextOf(kIdSearchFolder), "C:\\a|b");  // only the first "|" ends the id
  EXPECT_EQ(TextOf(kIdOldString), "first");       // two rows of one id: the first
  EXPECT_EQ(TextOf(kIdNewString), "");
  // A text as long as the buffer stays unterminated, and the rest of a shorter one is zero-filled.
  char buffer[4] = {'#', '#', '#', '#'};
  GetControlText(nullptr, kIdOldString, buffer, 3);
  EXPECT_EQ(std::string(buffer, 4), std::string("fir#"));
  SetControlText("ab", kIdNewString);
  GetControlText(nullptr, kIdNewString, buffer, sizeof buffer);
  EXPECT_EQ(std::string(buffer, 4), std::string("ab\0\0", 4));
}

// The option letters reach the store one SetControlChecked each (the command-line tests run them end to end); the
// odd part is that an unchecking call replaces the list with the unchecked id, and ids compare as numbers.
TEST_F(ControlStore, CheckedIds) {
  EXPECT_EQ(IsControlChecked(nullptr, kIdMatchFront), 0);  // empty store
  SetControlChecked(kIdMatchFront, 1);
  EXPECT_EQ(IsControlChecked(nullptr, kIdMatchFront), 1);
  SetCheckedIds("3019x  3040");
  EXPECT_EQ(IsControlChecked(nullptr, kIdMatchFront), 1);  // "3019x" counts as 3019
  EXPECT_EQ(IsControlChecked(nullptr, kIdConfirm), 1);
  EXPECT_EQ(IsControlChecked(nullptr, 301), 0);
  SetControlChecked(kIdSearchInFolder, 0);
  SetControlChecked(kIdFolderUnit, 1);
  EXPECT_EQ(IsControlChecked(nullptr, kIdMatchFront), 0);
  EXPECT_EQ(IsControlChecked(nullptr, kIdConfirm), 0);
  EXPECT_EQ(IsControlChecked(nullptr, kIdSearchInFolder), 1);
  EXPECT_EQ(IsControlChecked(nullptr, kIdFolderUnit), 1);
}

}  // namespace
