// The two message slots that every message goes through. (The block copies of a load have no caller.)
#include "text/resource_strings.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/winapi.h"
#include "resources/message_ids.h"

namespace {

const unsigned kMissing = 8014;  // no message has this id

TEST(ResourceStrings, LoadStatusAndSlots) {
  char *first = FirstSlotText(), *second = SecondSlotText();
  struct Row {
    const char *name;
    unsigned firstId, secondId;
    int status;
    std::string first, second;
  } rows[] = {{"body and title", kMsgAppendCutShort, kMsgAppendWarningTitle, 0, "の取り込みに失敗しました。",
               "AddToGlobalMemory() の警告"},
              {"nothing asked: both slots emptied", 0, 0, 0, "", ""},
              {"second only: the first slot is emptied", 0, kMsgDriveTitle, 0, "", "Drive: ﾄﾞﾗｲﾌﾞ・ﾌｫﾙﾀﾞ指定失敗"},
              {"first only: the second slot is emptied", kMsgRightsTitle, 0, 0, "権限の確認", ""},
              {"first missing", kMissing, kMsgAppendWarningTitle, 2, "<失敗>", "AddToGlobalMemory() の警告"},
              {"second missing", kMsgAppendCutShort, kMissing, 1, "の取り込みに失敗しました。", "<失敗>"}};
  for (const Row &row : rows) {
    LoadStrings(kMsgOptionValueName,
                kMsgFolderValueName);  // something in both slots that the row must clear or replace
    // ReportErrorById loads its texts and then reads the last error it is to report: a load must not change it.
    SetLastError(5);
    EXPECT_EQ(LoadStrings(row.firstId, row.secondId), row.status) << row.name;
    if (row.status == 0) {
      EXPECT_EQ(GetLastError(), 5u) << row.name;
    }
    EXPECT_EQ(std::string(first), row.first) << row.name;  // the slots keep their addresses
    EXPECT_EQ(std::string(second), row.second) << row.name;
  }
  LoadStrings(kMsgAdminMayBeNeededGoOn, kMsgPasswordAskButtonsQuiet);  // the longest texts fit whole
  char whole[1040];
  LoadStringA(nullptr, kMsgAdminMayBeNeededGoOn, whole, sizeof whole);
  EXPECT_STREQ(first, whole);
  LoadStringA(nullptr, kMsgPasswordAskButtonsQuiet, whole, sizeof whole);
  EXPECT_STREQ(second, whole);
}

}  // namespace
