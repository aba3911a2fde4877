// The kept last error: the program's own copy of the platform's last-error value, so that it outlives the calls in
// between and a later report can still show it; and the run-time error number beside it. A plain record that every
// wrapper may include: it tells the user nothing (the low-memory warning that hangs on it is CaptureLastError's, in
// reports/memory_reports.h).
#pragma once

#include "platform/winapi.h"

DWORD GetKeptLastError(void);
// SetLastError(code) and keeps the code.
void SetKeptLastError(DWORD code);
int GetRunTimeError(void);
void SetRunTimeError(int code);
