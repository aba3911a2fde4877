// The kept last error.
#include "reports/last_error.h"

#include <cerrno>

namespace {
DWORD keptError = 0;
}  // namespace

DWORD GetKeptLastError(void) { return keptError; }

void SetKeptLastError(DWORD code) {
  SetLastError(code);
  keptError = code;
}

int GetRunTimeError(void) { return errno; }
void SetRunTimeError(int code) { errno = code; }
