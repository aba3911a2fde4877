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
  } rows[] = {
      {{}, 3011, {}},
      {{{3018, "C:\\a"}}, 3010, {}},
      {{{3018, "C:\\a"}, {3010, "old"}}, 3011, {"3010|old"}},
      {{{3018, "C:\\a"}, {3010, "old"}}, 3018, {"3010|old"}},
      {{{3018, "C:\\a"}, {3010, "old"}, {3011, "new"}}, 3011, {"3010|old", "3011|new"}},
  };
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

TEST_F(ControlStore, CheckedIdsAreComparedAsNumbers) {
  EXPECT_EQ(IsControlChecked(nullptr, 3019), 0);  // empty store
  SetCheckedIds("3019 3022");
  EXPECT_EQ(IsControlChecked(nullptr, 3022), 1);
  EXPECT_EQ(IsControlChecked(nullptr, 302), 0);
  EXPECT_STREQ(CheckedIdsText(), "3019 3022");  // the blanks are put back
  SetCheckedIds("3019x  3040 ");
  EXPECT_EQ(IsControlChecked(nullptr, 3019), 1);  // "3019x" counts as 3019
  EXPECT_EQ(IsControlChecked(nullptr, 0), 1);     // the doubled blank gives an empty item, 0
  EXPECT_EQ(IsControlChecked(nullptr, 3040), 1);
  SetCheckedIds(" 3041");
  EXPECT_EQ(IsControlChecked(nullptr, 3041), 1);  // a leading blank does no harm
}

TEST_F(ControlStore, SetControlCheckedStateIsNotOnOrOff) {
  SetControlChecked(3019, 1);
  EXPECT_STREQ(CheckedIdsText(), " 3019");
  EXPECT_EQ(IsControlChecked(nullptr, 3019), 1);
  SetCheckedIds("3012 3013 3019 3020 3021 3022 3023 3024 3025 3026 3040 3041 3042");
  SetControlChecked(3016, 0);
  EXPECT_STREQ(CheckedIdsText(), "3016");
  SetControlChecked(3022, 1);
  SetControlChecked(3022, 1);
  EXPECT_STREQ(CheckedIdsText(), "3016 3022 3022");
}

}  // namespace
