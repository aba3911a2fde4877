// The error tail that every file wrapper shares: the kept last error and the run-time error number in step.
#include "files/error_numbers.h"

#include "files/directory_search.h"
#include "reports/last_error.h"

int SettleErrors(DWORD captured) {
  SetKeptLastError(captured);
  return MapLastError();
}

void ClearErrors(void) {
  SetKeptLastError(0);
  SetRunTimeError(0);
}
