// The kept last error: the program's own copy of the platform's last-error value, so that it outlives the calls in
// between and a later report can still show it; and the run-time error number beside it.
#pragma once

#include "platform/winapi.h"

// Reads GetLastError, keeps it and returns it. The first out-of-memory code (8) of the process also shows the
// low-memory warning; later ones do not.
DWORD CaptureLastError(void);
DWORD GetKeptLastError(void);
// SetLastError(code) and keeps the code.
void SetKeptLastError(DWORD code);
int GetRunTimeError(void);
void SetRunTimeError(int code);

// For tests: forget that the low-memory warning was given.
void ResetLowMemoryWarning(void);
