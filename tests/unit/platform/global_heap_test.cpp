// What the growing texts need of our heap: the change stamp, and zero fill also in large storage taken again.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/winapi.h"

namespace {

TEST(GlobalHeap, StampChangesWhenTheBlockCanBeWritten) {
  EXPECT_EQ(KmGlobalStamp(nullptr), 0u);
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 16);
  unsigned long long stamp = KmGlobalStamp(block);
  EXPECT_NE(stamp, 0u);

  GlobalLock(block);
  unsigned long long locked = KmGlobalStamp(block);
  EXPECT_NE(locked, stamp) << "locking";
  GlobalUnlock(block);
  EXPECT_EQ(KmGlobalStamp(block), locked) << "unlocking";

  block = GlobalReAlloc(block, 32, GMEM_MOVEABLE | GMEM_ZEROINIT);
  EXPECT_NE(KmGlobalStamp(block), locked) << "resizing";
  GlobalFree(block);
}

TEST(GlobalHeap, LargeStorageTakenAgainIsZeroFilled) {
  const size_t kLarge = 300 * 1024;
  HGLOBAL first = GlobalAlloc(GMEM_MOVEABLE, kLarge);
  char *p = static_cast<char *>(GlobalLock(first));
  ASSERT_NE(p, nullptr);
  std::memset(p, 0xAB, kLarge);
  GlobalUnlock(first);
  GlobalFree(first);
  // A slightly smaller request may get the same storage back: zero fill must hold all the same.
  HGLOBAL second = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, kLarge - 1000);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(GlobalSize(second), kLarge - 1000);
  p = static_cast<char *>(GlobalLock(second));
  for (size_t i = 0; i < kLarge - 1000; ++i) ASSERT_EQ(p[i], 0) << "at " << i;
  std::memset(p, 0xCD, kLarge - 1000);
  GlobalUnlock(second);
  // Growing within the storage zero-fills the new part, and the old part stays.
  second = GlobalReAlloc(second, kLarge + 1000, GMEM_MOVEABLE | GMEM_ZEROINIT);
  ASSERT_NE(second, nullptr);
  p = static_cast<char *>(GlobalLock(second));
  EXPECT_EQ(static_cast<unsigned char>(p[0]), 0xCDu);
  EXPECT_EQ(static_cast<unsigned char>(p[kLarge - 1001]), 0xCDu);
  for (size_t i = kLarge - 1000; i < kLarge + 1000; ++i) ASSERT_EQ(p[i], 0) << "at " << i;
  GlobalUnlock(second);
  GlobalFree(second);
}

}  // namespace
