// The allocate-and-lock routine with its size back-off, over our global heap. Every caller asks for a fresh block, so
// only that path is tried here.
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
    EXPECT_EQ(GlobalSize(handle), row.granted) << row.asked;
    for (DWORD i = 0; i < granted; ++i) ASSERT_EQ(p[i], 0) << "zero fill at " << i;
    ReleaseBlock(handle, p);
  }
}

TEST_F(MemoryBlocks, NothingToBeHad) {
  TestSetAllocationLimit(0);
  HGLOBAL handle = nullptr;
  DWORD granted = 77;
  EXPECT_EQ(AcquireBlock(&handle, nullptr, 300, &granted), nullptr);
  EXPECT_EQ(granted, 0u);
  EXPECT_EQ(handle, nullptr);
}

}  // namespace
