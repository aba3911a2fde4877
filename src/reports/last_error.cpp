// The kept last error.
#include "reports/last_error.h"

#include <cerrno>

#include "console/console_prompt.h"

namespace {
DWORD keptError = 0;
int lowMemoryWarned = 0;
}  // namespace

DWORD CaptureLastError(void) {
  keptError = GetLastError();
  if (keptError == ERROR_NOT_ENOUGH_MEMORY && !lowMemoryWarned) {
    lowMemoryWarned = 1;
    ConsolePrompt(nullptr,
                  "ｳｨﾝﾄﾞｳｽﾞのｺﾏﾝﾄﾞ実行用に充分なﾒﾓﾘが確保できませんでした。速やかにｱﾌﾟﾘｹｰｼｮﾝを終了して下さい。",
                  "致命的なｳｨﾝﾄﾞｳｽﾞ警告ﾒｯｾｰｼﾞ", MB_ICONEXCLAMATION);
  }
  return keptError;
}

DWORD GetKeptLastError(void) { return keptError; }

void SetKeptLastError(DWORD code) {
  SetLastError(code);
  keptError = code;
}

int GetRunTimeError(void) { return errno; }
void SetRunTimeError(int code) { errno = code; }
void ResetLowMemoryWarning(void) { lowMemoryWarned = 0; }
