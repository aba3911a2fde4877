// The kept last error and its one low-memory warning.
#include "reports/last_error.h"

#include <gtest/gtest.h>

#include "platform/testing.h"

namespace {

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
