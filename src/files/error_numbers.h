// The error tail of the file wrappers, which leave the kept last error and the run-time error number in step (the
// table between the two is MapLastError's, in the directory search). Private to the file services.
#pragma once

#include "platform/winapi.h"

// The tail of every wrapper: keeps `captured` as the last error and sets the run-time error number from it. Result:
// that number.
int SettleErrors(DWORD captured);
// Sets the kept last error and the run-time error number both to 0.
void ClearErrors(void);
