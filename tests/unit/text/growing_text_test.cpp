// Texts in global blocks: exact sizes, what the heap's refusals lead to, and the end of the run when memory runs out.
#include "text/growing_text.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/testing.h"
#include "reports/last_error.h"
#include "support/hex_text.h"

namespace {

enum StartKind { kNoBlock, kStored, kLargeBlock };

// A block holding `text` as a caller would bring it: none, one that StoreToBlock made, or a 520-byte work block.
HGLOBAL MakeBlock(StartKind kind, const char *text) {
  if (kind == kNoBlock) return nullptr;
  if (kind == kStored) return StoreToBlock(nullptr, nullptr, text);
  HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 520);
  char *p = static_cast<char *>(GlobalLock(handle));
  std::strcpy(p, text);
  std::memset(p + std::strlen(text) + 1, 'x', 520 - std::strlen(text) - 1);  // leftovers behind the text
  GlobalUnlock(handle);
  return handle;
}

// Every byte of the block, its NUL(s) included.
std::string BlockBytes(HGLOBAL handle) {
  char *p = static_cast<char *>(GlobalLock(handle));
  if (p == nullptr) return "<no lock>";
  std::string bytes(p, GlobalSize(handle));
  GlobalUnlock(handle);
  return bytes;
}

// 1 if nobody holds a lock on the block.
bool IsUnlocked(HGLOBAL handle) {
  GlobalLock(handle);
  return !GlobalUnlock(handle);
}

std::string WithNul(const std::string &text) { return text + std::string(1, '\0'); }

const char kAppendWarning[] = "AddToGlobalMemory() の警告:の取り込みに失敗しました。Press Any Key>>";

class GrowingText : public ::testing::Test {
 protected:
  void SetUp() override { TestConsoleBegin(""); }
  void TearDown() override {
    TestSetAllocationLimit(kNoAllocationLimit);
    TestConsoleEnd();
  }
};

// Both routines leave a block of exactly the text and its NUL, unlocked, whatever block they were given; an append
// behind either goes on from the text.
TEST_F(GrowingText, AppendAndStoreSizeTheBlockToTheText) {
  struct Row {
    const char *name;
    HGLOBAL (*call)(HWND, HGLOBAL, const char *);
    StartKind kind;
    const char *start, *text;
    std::string expected;
  } rows[] = {
      {"append, no block, empty text: one byte, empty", AppendToBlock, kNoBlock, "", "", ""},
      {"append, no block, null text", AppendToBlock, kNoBlock, "", nullptr, ""},
      {"append, no block", AppendToBlock, kNoBlock, "", "abc", "abc"},
      {"append to a stored text", AppendToBlock, kStored, "abc", "de", "abcde"},
      {"append nothing", AppendToBlock, kStored, "abc", "", "abc"},
      {"append null", AppendToBlock, kStored, "abc", nullptr, "abc"},
      {"append to a stored empty text", AppendToBlock, kStored, "", "de", "de"},
      {"append double-byte characters", AppendToBlock, kStored, "表", "示", "表示"},
      {"append in a larger block: the block shrinks to the text", AppendToBlock, kLargeBlock, "abc", "de", "abcde"},
      {"append to an empty text in a larger block", AppendToBlock, kLargeBlock, "", "x", "x"},
      {"store in a new block", StoreToBlock, kNoBlock, "", "abc", "abc"},
      {"store null: one NUL", StoreToBlock, kNoBlock, "", nullptr, ""},
      {"store an empty text", StoreToBlock, kStored, "abc", "", ""},
      {"store a shorter text: the block shrinks", StoreToBlock, kStored, "abcdef", "ab", "ab"},
      {"store a longer text: it grows", StoreToBlock, kStored, "ab", "abcdef", "abcdef"},
      {"store in a larger block: it shrinks", StoreToBlock, kLargeBlock, "xyz", "q", "q"},
  };
  for (const Row &row : rows) {
    size_t live = TestLiveBlockCount();
    HGLOBAL handle = MakeBlock(row.kind, row.start);
    SetKeptLastError(5);
    HGLOBAL result = row.call(nullptr, handle, row.text);
    ASSERT_NE(result, nullptr) << row.name;
    EXPECT_EQ(GlobalSize(result), row.expected.size() + 1) << row.name;
    EXPECT_EQ(BlockBytes(result), WithNul(row.expected)) << row.name;
    EXPECT_TRUE(IsUnlocked(result)) << row.name;
    EXPECT_EQ(TestLiveBlockCount(), live + 1) << row.name << ": no block is left behind";
    if (row.call == AppendToBlock) {
      EXPECT_EQ(GetKeptLastError(), 0u) << row.name << ": the kept last error is cleared";
    }
    result = AppendToBlock(nullptr, result, "+");
    EXPECT_EQ(BlockBytes(result), WithNul(row.expected + "+")) << row.name;
    GlobalFree(result);
  }
  EXPECT_EQ(TestConsoleOutput(), "") << "no warnings";
}

TEST_F(GrowingText, AppendAsksForRoomForTheOldTextThenGrowsTheBlock) {
  HGLOBAL handle = StoreToBlock(nullptr, nullptr, "abc");
  TestStartAllocationLog();
  handle = AppendToBlock(nullptr, handle, "de");
  EXPECT_EQ(TestAllocationLog(), (std::vector<size_t>{4, 6}));
  GlobalFree(handle);
}

// Appends by turns to more blocks than the routine remembers text lengths for: each block keeps its exact text.
TEST_F(GrowingText, AppendsByTurnsToManyBlocks) {
  std::string models[5];
  HGLOBAL handles[5] = {};
  for (int i = 0; i < 40; ++i) {
    std::string piece =
        std::string(static_cast<size_t>(i % 7), static_cast<char>('a' + i % 26)) + (i % 3 ? "" : "表示");
    handles[i % 5] = AppendToBlock(nullptr, handles[i % 5], piece.c_str());
    models[i % 5] += piece;
    ASSERT_EQ(BlockBytes(handles[i % 5]), WithNul(models[i % 5])) << "after append " << i;
  }
  for (HGLOBAL handle : handles) GlobalFree(handle);
}

// An append must find the text's end where a scan would, also after somebody else has written to the block.
TEST_F(GrowingText, AppendSeesWhatOthersWroteInTheBlock) {
  HGLOBAL handle = StoreToBlock(nullptr, nullptr, "abcdef");
  handle = AppendToBlock(nullptr, handle, "g");
  char *p = static_cast<char *>(GlobalLock(handle));
  p[2] = 0;  // cut the text short in place
  GlobalUnlock(handle);
  handle = AppendToBlock(nullptr, handle, "XY");
  EXPECT_EQ(BlockBytes(handle), WithNul("abXY"));

  p = static_cast<char *>(GlobalLock(handle));
  p[0] = 'Z';
  GlobalUnlock(handle);
  handle = AppendToBlock(nullptr, handle, "!");
  EXPECT_EQ(BlockBytes(handle), WithNul("ZbXY!"));
  GlobalFree(handle);

  // A freed block and a new one of the same size (maybe at the same address) holding a shorter text.
  HGLOBAL first = StoreToBlock(nullptr, nullptr, "abcdef");
  GlobalFree(first);
  HGLOBAL second = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 7);
  p = static_cast<char *>(GlobalLock(second));
  std::memcpy(p, "ab\0def", 7);
  GlobalUnlock(second);
  second = AppendToBlock(nullptr, second, "X");
  EXPECT_EQ(BlockBytes(second), WithNul("abX"));
  GlobalFree(second);
}

TEST_F(GrowingText, NoRoomForTheOldTextOverwritesItAndWarns) {
  struct Row {
    const char *name;
    StartKind kind;
    const char *start;
    size_t limit;
    const char *text;
    std::string bytes;  // the whole block afterwards
  } rows[] = {
      {"old text overwritten from the start", kStored, "abc", 3, "de", std::string("de\0\0", 4)},
      {"new text cut to the block, which keeps its size", kStored, "abc", 3, "defgh", std::string("def\0", 4)},
      {"empty old text, no room even for its NUL", kStored, "", 0, "x", std::string("\0", 1)},
      {"in a larger block the rest stays as it was", kLargeBlock, "abc", 3, "de",
       std::string("de\0\0", 4) + std::string(516, 'x')},
  };
  for (const Row &row : rows) {
    TestConsoleBegin("");
    HGLOBAL handle = MakeBlock(row.kind, row.start);
    TestSetAllocationLimit(row.limit);
    HGLOBAL result = AppendToBlock(nullptr, handle, row.text);
    TestSetAllocationLimit(kNoAllocationLimit);
    EXPECT_EQ(result, handle) << row.name;
    EXPECT_EQ(BlockBytes(result), row.bytes) << row.name;
    EXPECT_EQ(TestConsoleOutput(), kAppendWarning) << row.name;
    EXPECT_TRUE(IsUnlocked(result)) << row.name;
    GlobalFree(result);
  }
}

TEST_F(GrowingText, StoreAndLockDuplicates) {
  char dummy = 0;
  HGLOBAL slot = nullptr;
  EXPECT_EQ(StoreAndLockBlock(&slot, &dummy, nullptr), &dummy);
  EXPECT_EQ(slot, nullptr);
  EXPECT_EQ(StoreAndLockBlock(nullptr, &dummy, "abc"), &dummy);

  size_t live = TestLiveBlockCount();
  char *copy = StoreAndLockBlock(&slot, nullptr, "abc");
  ASSERT_NE(copy, nullptr);
  ASSERT_NE(slot, nullptr);
  EXPECT_EQ(std::string(copy), "abc");
  EXPECT_EQ(GlobalSize(slot), 4u);

  // Storing again over the locked copy lets go of the old lock: one unlock then frees the block's last lock.
  copy = StoreAndLockBlock(&slot, copy, "a longer text");
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(std::string(copy), "a longer text");
  EXPECT_EQ(GlobalSize(slot), 14u);
  EXPECT_FALSE(GlobalUnlock(slot));
  EXPECT_EQ(TestLiveBlockCount(), live + 1);
  GlobalFree(slot);
}

// ---- The end of the run ------------------------------------------------------------------------------------------

#ifdef _WIN32
const int kFatalStatus = -2;  // exit(-2): the process's exit code is 0xFFFFFFFE
#else
const int kFatalStatus = 254;  // exit(-2): the low byte of the status
#endif

// In the dying process: keep the console in memory, and hand it to standard error, in hex, from an exit handler.
// That the text arrives at all shows that the process ended through exit() with its handlers run.
void ReportConsoleAtExit() {
  TestConsoleBegin("");
  std::atexit([] { std::fprintf(stderr, "console=%s;\n", Hex(TestConsoleOutput()).c_str()); });
}

std::string ConsoleWas(const std::string &text) { return "console=" + Hex(text) + ";"; }

const char kAppendFatal[] = "AddToGlobalMemory() の警告:予期せぬｴﾗｰにより記憶領域のｱｸｾｽに失敗しました。Press Any Key>>";
const char kStoreFatal[] = "SaveToGlobalMemory() の警告:予期せぬｴﾗｰにより記憶領域のｱｸｾｽに失敗しました。Press Any Key>>";

// The statements run in a child process, which must end through exit(-2) with `console` shown.
#define EXPECT_FATAL(statements, console) \
  EXPECT_EXIT(                            \
      {                                   \
        ReportConsoleAtExit();            \
        statements;                       \
      },                                  \
      ::testing::ExitedWithCode(kFatalStatus), ConsoleWas(console))

TEST(GrowingTextDeathTest, NoMemoryEndsTheRunWithItsMessage) {
  // No block to be had for an append or a store.
  EXPECT_FATAL(TestSetAllocationLimit(0); AppendToBlock(nullptr, nullptr, "abc"), kAppendFatal);
  EXPECT_FATAL(TestSetAllocationLimit(0); StoreToBlock(nullptr, nullptr, "abc"), kStoreFatal);
  // Room for the old text, but not for the grown block.
  EXPECT_FATAL(HGLOBAL handle = StoreToBlock(nullptr, nullptr, "abc"); TestSetAllocationLimit(4);
               AppendToBlock(nullptr, handle, "de"), kAppendFatal);
  EXPECT_FATAL(HGLOBAL slot = nullptr; char *copy = StoreAndLockBlock(&slot, nullptr, "a"); TestSetAllocationLimit(2);
               StoreAndLockBlock(&slot, copy, "abc"), kStoreFatal);
  // Without detail the general message shows.
  EXPECT_FATAL(FatalMemoryExit(nullptr, 8058, 0),
               "SaveToGlobalMemory() の警告:ﾒﾓﾘｰｴﾗｰ: 記憶領域の確保失敗!!\n強制終了します。Press Any Key>>");
}

}  // namespace
