// The two message slots that every message goes through. (The block copies of a load have no caller.)
#include "resources/resource_strings.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/winapi.h"

namespace {

const unsigned kMissing = 8014;  // no message has this id

TEST(ResourceStrings, LoadStatusAndSlots) {
  char *first = FirstSlotText(), *second = SecondSlotText();
  struct Row {
    const char *name;
    unsigned firstId, secondId;
    int status;
    std::string first, second;
  } rows[] = {{"body and title", 8059, 8057, 0, "の取り込みに失敗しました。", "AddToGlobalMemory() の警告"},
              {"nothing asked: both slots emptied", 0, 0, 0, "", ""},
              {"second only: the first slot is emptied", 0, 8070, 0, "", "Drive: ﾄﾞﾗｲﾌﾞ・ﾌｫﾙﾀﾞ指定失敗"},
              {"first only: the second slot is emptied", 8018, 0, 0, "権限の確認", ""},
              {"first missing", kMissing, 8057, 2, "<失敗>", "AddToGlobalMemory() の警告"},
              {"second missing", 8059, kMissing, 1, "の取り込みに失敗しました。", "<失敗>"}};
  for (const Row &row : rows) {
    LoadStrings(8402, 8404);  // something in both slots that the row must clear or replace
    // ReportErrorById loads its texts and then reads the last error it is to report: a load must not change it.
    SetLastError(5);
    EXPECT_EQ(LoadStrings(row.firstId, row.secondId), row.status) << row.name;
    if (row.status == 0) {
      EXPECT_EQ(GetLastError(), 5u) << row.name;
    }
    EXPECT_EQ(std::string(first), row.first) << row.name;  // the slots keep their addresses
    EXPECT_EQ(std::string(second), row.second) << row.name;
  }
  LoadStrings(8017, 8309);  // the longest texts fit whole
  char whole[1040];
  LoadStringA(nullptr, 8017, whole, sizeof whole);
  EXPECT_STREQ(first, whole);
  LoadStringA(nullptr, 8309, whole, sizeof whole);
  EXPECT_STREQ(second, whole);
}

}  // namespace
