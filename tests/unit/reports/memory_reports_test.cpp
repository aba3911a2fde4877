// Texts in global blocks: exact sizes, what the heap's refusals lead to, and the end of the run when memory runs out;
// the one low-memory warning of the kept last error.
#include "reports/memory_reports.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/testing.h"
#include "reports/last_error.h"
#include "support/hex_text.h"

namespace {

// Callers bring no block, or one that StoreToBlock made.
HGLOBAL MakeBlock(const char *text) { return text == nullptr ? nullptr : StoreToBlock(nullptr, nullptr, text); }

// Every byte of the block, its NUL(s) included.
std::string BlockBytes(HGLOBAL handle) {
  char *p = static_cast<char *>(GlobalLock(handle));
  if (p == nullptr) return "<no lock>";
  std::string bytes(p, GlobalSize(handle));
  GlobalUnlock(handle);
  return bytes;
}

bool IsUnlocked(HGLOBAL handle) {
  GlobalLock(handle);
  return !GlobalUnlock(handle);
}

std::string WithNul(const std::string &text) { return text + std::string(1, '\0'); }

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
    const char *start, *text;  // start: null for no block
    std::string expected;
  } rows[] = {{"append, no block, null text", AppendToBlock, nullptr, nullptr, ""},
              {"append, no block", AppendToBlock, nullptr, "abc", "abc"},
              {"append to a stored text", AppendToBlock, "abc", "de", "abcde"},
              {"append null", AppendToBlock, "abc", nullptr, "abc"},
              {"store null: one NUL", StoreToBlock, nullptr, nullptr, ""},
              {"store a shorter text: the block shrinks", StoreToBlock, "abcdef", "ab", "ab"},
              {"store a longer text: it grows", StoreToBlock, "ab", "abcdef", "abcdef"}};
  for (const Row &row : rows) {
    size_t live = TestLiveBlockCount();
    HGLOBAL handle = MakeBlock(row.start);
    SetKeptLastError(5);
    HGLOBAL result = row.call(nullptr, handle, row.text);
    ASSERT_NE(result, nullptr) << row.name;
    EXPECT_EQ(BlockBytes(result), WithNul(row.expected)) << row.name;
    EXPECT_TRUE(IsUnlocked(result)) << row.name;
    EXPECT_EQ(TestLiveBlockCount(), live + 1) << row.name << ": no block is left behind";
    if (row.call == AppendToBlock) {
      EXPECT_EQ(GetKeptLastError(), 0u) << row.name;
    }
    result = AppendToBlock(nullptr, result, "+");
    EXPECT_EQ(BlockBytes(result), WithNul(row.expected + "+")) << row.name;
    GlobalFree(result);
  }
  EXPECT_EQ(TestConsoleOutput(), "") << "no warnings";
}

// The lengths an append remembers must never stand in for the text: a text cut short in place.
TEST_F(GrowingText, AppendFindsTheTextEndWhereAScanWould) {
  HGLOBAL handle = AppendToBlock(nullptr, StoreToBlock(nullptr, nullptr, "abcdef"), "g");
  static_cast<char *>(GlobalLock(handle))[2] = 0;
  GlobalUnlock(handle);
  handle = AppendToBlock(nullptr, handle, "XY");
  EXPECT_EQ(BlockBytes(handle), WithNul("abXY"));
  GlobalFree(handle);
}

TEST_F(GrowingText, NoRoomForTheOldTextOverwritesItAndWarns) {
  struct Row {
    const char *name;
    const char *start;
    size_t limit;
    const char *text;
    std::string bytes;  // the whole block afterwards
  } rows[] = {{"old text overwritten from the start", "abc", 3, "de", std::string("de\0\0", 4)},
              {"new text cut to the block, which keeps its size", "abc", 3, "defgh", std::string("def\0", 4)},
              {"empty old text, no room even for its NUL", "", 0, "x", std::string("\0", 1)}};
  for (const Row &row : rows) {
    TestConsoleBegin("");
    HGLOBAL handle = MakeBlock(row.start);
    TestSetAllocationLimit(row.limit);
    HGLOBAL result = AppendToBlock(nullptr, handle, row.text);
    TestSetAllocationLimit(kNoAllocationLimit);
    EXPECT_EQ(result, handle) << row.name;
    EXPECT_EQ(BlockBytes(result), row.bytes) << row.name;
    EXPECT_EQ(TestConsoleOutput(), "AddToGlobalMemory() の警告:の取り込みに失敗しました。Press Any Key>>") << row.name;
    EXPECT_TRUE(IsUnlocked(result)) << row.name;
    GlobalFree(result);
  }
}

// Callers always start from an empty slot.
TEST_F(GrowingText, StoreAndLockDuplicates) {
  HGLOBAL slot = nullptr;
  EXPECT_STREQ(StoreAndLockBlock(&slot, nullptr, "表示 text"), "表示 text");
  EXPECT_EQ(GlobalSize(slot), 10u);
  EXPECT_FALSE(GlobalUnlock(slot)) << "locked once";
  GlobalFree(slot);
}

#ifdef _WIN32
const int kFatalStatus = -2;  // exit(-2): the process's exit code is 0xFFFFFFFE
#else
const int kFatalStatus = 254;  // exit(-2): the low byte of the status
#endif

// The console goes to standard error, in hex, from an exit handler: its arrival shows that exit() ran the handlers.
void ReportConsoleAtExit() {
  TestConsoleBegin("");
  std::atexit([] { std::fprintf(stderr, "console=%s;\n", Hex(TestConsoleOutput()).c_str()); });
}

std::string ConsoleWas(const char *title) {
  return "console=" +
         Hex(std::string(title) + "の警告:予期せぬｴﾗｰにより記憶領域のｱｸｾｽに失敗しました。Press Any Key>>") + ";";
}

#define EXPECT_FATAL(statements, title) \
  EXPECT_EXIT(                          \
      {                                 \
        ReportConsoleAtExit();          \
        statements;                     \
      },                                \
      ::testing::ExitedWithCode(kFatalStatus), ConsoleWas(title))

// One per message: an append that cannot grow its block, and a store that gets no block.
TEST(GrowingTextDeathTest, NoMemoryEndsTheRunWithItsMessage) {
  EXPECT_FATAL(HGLOBAL handle = StoreToBlock(nullptr, nullptr, "abc"); TestSetAllocationLimit(4);
               AppendToBlock(nullptr, handle, "de"), "AddToGlobalMemory() ");
  EXPECT_FATAL(TestSetAllocationLimit(0); StoreToBlock(nullptr, nullptr, "abc"), "SaveToGlobalMemory() ");
}

TEST(LastError, LowMemoryWarningComesOnce) {
  ResetLowMemoryWarning();
  TestConsoleBegin("abc");
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  EXPECT_EQ(CaptureLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  CaptureLastError();
  SetLastError(ERROR_FILE_NOT_FOUND);
  CaptureLastError();
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  CaptureLastError();
  std::string output = TestConsoleOutput();
  TestConsoleEnd();
  EXPECT_EQ(output,
            "致命的なｳｨﾝﾄﾞｳｽﾞ警告ﾒｯｾｰｼﾞ:ｳｨﾝﾄﾞｳｽﾞのｺﾏﾝﾄﾞ実行用に充分なﾒﾓﾘが確保できませんでした。速やかにｱﾌﾟﾘｹｰｼｮﾝを"
            "終了して下さい。Press Any Key>>");
}

TEST(LastError, KeptValueOutlivesLaterCalls) {
  SetKeptLastError(0);
  EXPECT_EQ(GetLastError(), 0u);
  SetLastError(ERROR_ACCESS_DENIED);
  CaptureLastError();
  SetLastError(ERROR_SUCCESS);  // a later call that succeeds
  EXPECT_EQ(GetKeptLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

}  // namespace
