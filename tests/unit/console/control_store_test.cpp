// The control-state store, with its odd removal path.
#include "console/control_store.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class ControlStore : public ::testing::Test {
 protected:
  void SetUp() override { ResetControlStore(); }
  std::vector<std::string> Rows() {
    std::vector<std::string> rows;
    for (int i = 0; i < ControlTextCount(); ++i) rows.push_back(ControlTextRow(i));
    return rows;
  }
};

TEST_F(ControlStore, RemovalPathDropsTheFirstRowWhateverItsId) {
  struct Row {
    std::vector<std::pair<unsigned, const char *>> before;
    unsigned emptyId;
    std::vector<std::string> after;
  } rows[] = {{{}, 3011, {}},
              {{{3018, "C:\\a"}}, 3010, {}},
              {{{3018, "C:\\a"}, {3010, "old"}}, 3018, {"3010|old"}},
              {{{3018, "C:\\a"}, {3010, "old"}, {3011, "new"}}, 3011, {"3010|old", "3011|new"}}};
  for (size_t i = 0; i < sizeof rows / sizeof rows[0]; ++i) {
    ResetControlStore();
    for (const auto &row : rows[i].before) SetControlText(row.second, row.first);
    SetControlText("", rows[i].emptyId);
    EXPECT_EQ(Rows(), rows[i].after) << "case " << i;
  }
}

TEST_F(ControlStore, GetControlText) {
  SetControlText("C:\\a|b", 3018);
  SetControlText("first", 3010);
  SetControlText("second", 3010);
  char buffer[16];
  GetControlText(nullptr, 3018, buffer, sizeof buffer);
  EXPECT_STREQ(buffer, "C:\\a|b");  // only the first "|" ends the id
  GetControlText(nullptr, 3010, buffer, sizeof buffer);
  EXPECT_STREQ(buffer, "first");  // two rows of one id: the first
  GetControlText(nullptr, 3011, buffer, sizeof buffer);
  EXPECT_STREQ(buffer, "");
}

// The option letters reach the store one SetControlChecked each (the command-line tests run them end to end); the
// odd part is that an unchecking call replaces the list, and ids compare as numbers.
TEST_F(ControlStore, CheckedIds) {
  EXPECT_EQ(IsControlChecked(nullptr, 3019), 0);  // empty store
  SetControlChecked(3019, 1);
  EXPECT_STREQ(CheckedIdsText(), " 3019");
  SetCheckedIds("3019x  3040");
  EXPECT_EQ(IsControlChecked(nullptr, 3019), 1);  // "3019x" counts as 3019
  EXPECT_EQ(IsControlChecked(nullptr, 301), 0);
  SetControlChecked(3016, 0);
  SetControlChecked(3022, 1);
  EXPECT_STREQ(CheckedIdsText(), "3016 3022");
}

}  // namespace
