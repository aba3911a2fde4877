// The run-time error number that goes with the kept last error, which every file wrapper leaves in step with it.
// Private to the file services. This is the directory search's table; the two are to become one routine.
#pragma once

#include "platform/winapi.h"

// The run-time error number for the kept last error (22 for a code the table does not know), also stored as the
// current run-time error number.
int MapKeptError(void);
// The tail of every wrapper: keeps `captured` as the last error and sets the run-time error number from it. Result:
// that number.
int SettleErrors(DWORD captured);
// Sets the kept last error and the run-time error number both to 0.
void ClearErrors(void);
