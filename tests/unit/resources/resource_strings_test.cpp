// The two message slots and the block copies of a load.
#include "resources/resource_strings.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/testing.h"

namespace {

const unsigned kMissing = 8014;  // no message has this id
char *const kSentinel = reinterpret_cast<char *>(0x5A5A);

class ResourceStrings : public ::testing::Test {
 protected:
  void TearDown() override { TestSetAllocationLimit(kNoAllocationLimit); }
};

TEST_F(ResourceStrings, LoadStatusAndSlots) {
  char *first = FirstSlotText(), *second = SecondSlotText();
  struct Row {
    const char *name;
    unsigned firstId, secondId;
    int status;
    std::string first, second;
  } rows[] = {
      {"body and title", 8059, 8057, 0, "の取り込みに失敗しました。", "AddToGlobalMemory() の警告"},
      {"nothing asked: both slots emptied", 0, 0, 0, "", ""},
      {"second only: the first slot is emptied", 0, 8070, 0, "", "Drive: ﾄﾞﾗｲﾌﾞ・ﾌｫﾙﾀﾞ指定失敗"},
      {"first only: the second slot is emptied", 8018, 0, 0, "権限の確認", ""},
      {"first missing", kMissing, 8057, 2, "<失敗>", "AddToGlobalMemory() の警告"},
      {"second missing", 8059, kMissing, 1, "の取り込みに失敗しました。", "<失敗>"},
      {"both missing", kMissing, kMissing, 3, "<失敗>", "<失敗>"},
  };
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
  EXPECT_EQ(FirstSlotText(), first);
  EXPECT_NE(first, second);
  EXPECT_GT(std::string(first).size(), 100u);
  EXPECT_GT(std::string(second).size(), 100u);
}

TEST_F(ResourceStrings, BlockCopies) {
  size_t live = TestLiveBlockCount();
  StringBlockPair pair = {{kSentinel, kSentinel, 77}, {kSentinel, kSentinel, 88}};
  EXPECT_EQ(LoadStringPair(&pair, nullptr, 8059, kMissing), 1);
  ASSERT_NE(pair.first.locked, nullptr);
  ASSERT_NE(pair.second.locked, nullptr);
  EXPECT_EQ(std::string(pair.first.locked), "の取り込みに失敗しました。");
  EXPECT_EQ(std::string(pair.second.locked), "<失敗>");
  EXPECT_NE(pair.first.locked, FirstSlotText());
  EXPECT_EQ(GlobalSize(pair.first.handle), std::string(pair.first.locked).size() + 1);
  EXPECT_EQ(GlobalSize(pair.second.handle), 7u);
  EXPECT_EQ(pair.first.size, 77u) << "the size word is not filled";
  EXPECT_EQ(pair.second.size, 88u);
  EXPECT_EQ(TestLiveBlockCount(), live + 2);
  LoadStrings(8402, 8404);
  EXPECT_EQ(std::string(pair.first.locked), "の取り込みに失敗しました。") << "the copies outlive the slots";
  // Release frees each block and clears its handle, not its pointer; a second release finds nothing to free.
  char *pointer = pair.first.locked;
  ReleaseStringBlockPair(&pair);
  EXPECT_EQ(TestLiveBlockCount(), live);
  EXPECT_EQ(pair.first.handle, nullptr);
  EXPECT_EQ(pair.second.handle, nullptr);
  EXPECT_EQ(pair.first.locked, pointer);
  ReleaseStringBlockPair(&pair);
  ReleaseStringBlockPair(nullptr);
  EXPECT_EQ(TestLiveBlockCount(), live);
  // Only the ids asked for are copied.
  pair = {{kSentinel, kSentinel, 0}, {kSentinel, kSentinel, 0}};
  EXPECT_EQ(LoadStringPair(&pair, nullptr, 0, 8018), 0);
  EXPECT_EQ(pair.first.handle, nullptr);
  EXPECT_EQ(pair.first.locked, nullptr);
  EXPECT_EQ(std::string(pair.second.locked), "権限の確認");
  EXPECT_EQ(TestLiveBlockCount(), live + 1);
  ReleaseStringBlockPair(&pair);
}

TEST_F(ResourceStrings, BlockCopyThatCannotBeHadIsLeftAtZeroUnreported) {
  TestSetAllocationLimit(0);
  StringBlockPair pair = {{kSentinel, kSentinel, 0}, {kSentinel, kSentinel, 0}};
  EXPECT_EQ(LoadStringPair(&pair, nullptr, 8059, 8057), 0);
  EXPECT_EQ(pair.first.handle, nullptr);
  EXPECT_EQ(pair.first.locked, nullptr);
  EXPECT_EQ(pair.second.handle, nullptr);
  EXPECT_EQ(std::string(FirstSlotText()), "の取り込みに失敗しました。") << "the slots are loaded all the same";
  ReleaseStringBlockPair(&pair);
}

TEST_F(ResourceStrings, LoadToAddresses) {
  char *first = kSentinel, *second = kSentinel;
  EXPECT_EQ(LoadStringPairTo(nullptr, nullptr, 8064, 8065, &first, &second), 0);
  EXPECT_EQ(first, FirstSlotText());
  EXPECT_EQ(second, SecondSlotText());
  EXPECT_EQ(std::string(second), "ﾌｫﾙﾀﾞｱｸｾｽ");
  StringBlockPair pair = {};
  first = second = kSentinel;
  EXPECT_EQ(LoadStringPairTo(&pair, nullptr, kMissing, 8065, &first, &second), 2);
  EXPECT_EQ(first, pair.first.locked);
  EXPECT_EQ(second, pair.second.locked);
  EXPECT_EQ(std::string(first), "<失敗>");
  ReleaseStringBlockPair(&pair);
  // No record and no addresses: only the slots are loaded.
  EXPECT_EQ(LoadStringPairTo(nullptr, nullptr, 8064, 0, nullptr, nullptr), 0);
  EXPECT_EQ(std::string(FirstSlotText()), "ﾌｧｲﾙｱｸｾｽ");
}

}  // namespace
