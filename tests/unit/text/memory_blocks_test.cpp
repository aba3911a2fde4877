// The allocate-and-lock pair with its size back-off, over our global heap.
#include "text/memory_blocks.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/testing.h"

namespace {

class MemoryBlocks : public ::testing::Test {
 protected:
  void TearDown() override { TestSetAllocationLimit(kNoAllocationLimit); }
};

TEST_F(MemoryBlocks, BacksOffBy255ThenByOne) {
  struct Row {
    DWORD asked;
    size_t limit;
    std::vector<size_t> tried;
    DWORD granted;
  } rows[] = {
      {1000, 300, {1000, 745, 490, 235}, 235},
      {520, kNoAllocationLimit, {520}, 520},
      {300, 40, {300, 45, 44, 43, 42, 41, 40}, 40},
      {256, 255, {256, 1}, 1},  // 256 is above 255, so the step is 255, straight down to 1
  };
  for (const Row &row : rows) {
    TestSetAllocationLimit(row.limit);
    TestStartAllocationLog();
    HGLOBAL handle = nullptr;
    DWORD granted = 0xDEADBEEF;
    char *p = AcquireBlock(&handle, nullptr, row.asked, &granted);
    ASSERT_NE(p, nullptr) << row.asked;
    EXPECT_EQ(TestAllocationLog(), row.tried) << row.asked;
    EXPECT_EQ(granted, row.granted) << row.asked;
    EXPECT_EQ(GlobalSize(handle), row.granted);
    for (DWORD i = 0; i < granted; ++i) ASSERT_EQ(p[i], 0) << "zero fill at " << i;
    ReleaseBlock(handle, p);
  }
}

TEST_F(MemoryBlocks, NothingToBeHadNullSlotAndSizeZero) {
  TestSetAllocationLimit(0);
  HGLOBAL handle = nullptr;
  DWORD granted = 77;
  EXPECT_EQ(AcquireBlock(&handle, nullptr, 300, &granted), nullptr);
  EXPECT_EQ(granted, 0u);
  EXPECT_EQ(handle, nullptr);
  TestSetAllocationLimit(kNoAllocationLimit);

  EXPECT_EQ(AcquireBlock(nullptr, nullptr, 100, &granted), nullptr);
  EXPECT_EQ(granted, 100u);

  HGLOBAL none = nullptr;
  granted = 55;
  EXPECT_EQ(AcquireBlock(&none, nullptr, 0, &granted), nullptr);
  EXPECT_EQ(granted, 0u);
  EXPECT_EQ(none, nullptr);

  // Size 0 on an existing unlocked block relocks it, as it stands.
  char *p = AcquireBlock(&handle, nullptr, 16, nullptr);
  ASSERT_NE(p, nullptr);
  p[0] = 'x';
  GlobalUnlock(handle);
  granted = 55;
  char *again = AcquireBlock(&handle, nullptr, 0, &granted);
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(again[0], 'x');
  EXPECT_EQ(granted, 0u);
  ReleaseBlock(handle, again);
}

TEST_F(MemoryBlocks, GrowingKeepsContentAndZeroFillsTheRest) {
  HGLOBAL handle = nullptr;
  char *p = AcquireBlock(&handle, nullptr, 8, nullptr);
  ASSERT_NE(p, nullptr);
  for (int i = 0; i < 8; ++i) p[i] = 'a';
  // Shrink, then grow: the bytes behind the small size must come back as zeros, not as the old 'a's.
  p = AcquireBlock(&handle, p, 4, nullptr);
  ASSERT_NE(p, nullptr);
  p = AcquireBlock(&handle, p, 4000, nullptr);
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(std::string(p, 4), "aaaa");
  for (int i = 4; i < 4000; ++i) ASSERT_EQ(p[i], 0) << i;
  ReleaseBlock(handle, p);
}

TEST_F(MemoryBlocks, FailedResizeAbandonsTheOldBlock) {
  HGLOBAL handle = nullptr;
  char *p = AcquireBlock(&handle, nullptr, 100, nullptr);
  ASSERT_NE(p, nullptr);
  HGLOBAL old = handle;
  size_t live = TestLiveBlockCount();
  TestSetAllocationLimit(200);
  DWORD granted = 0;
  p = AcquireBlock(&handle, p, 400, &granted);
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(granted, 145u);
  EXPECT_NE(handle, old);                     // a fresh block, not the old one resized
  EXPECT_EQ(TestLiveBlockCount(), live + 1);  // the old one is lost, not freed
  ReleaseBlock(handle, p);
  ReleaseBlock(old, nullptr);
}

TEST_F(MemoryBlocks, ReleaseRecord) {
  BlockRecord empty = {nullptr, reinterpret_cast<char *>(0x10), 7};
  ReleaseBlockRecord(&empty);
  EXPECT_EQ(empty.locked, reinterpret_cast<char *>(0x10));
  EXPECT_EQ(empty.size, 7u);
  ReleaseBlockRecord(nullptr);

  size_t live = TestLiveBlockCount();
  BlockRecord record = {nullptr, nullptr, 0};
  record.locked = AcquireBlock(&record.handle, nullptr, 520, &record.size);
  EXPECT_EQ(TestLiveBlockCount(), live + 1);
  ReleaseBlockRecord(&record);
  EXPECT_EQ(record.handle, nullptr);
  EXPECT_EQ(record.locked, nullptr);
  EXPECT_EQ(record.size, 0u);
  EXPECT_EQ(TestLiveBlockCount(), live);
}

}  // namespace
