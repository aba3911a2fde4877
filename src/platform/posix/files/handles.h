// Handle values of the Linux backend. Private to the Linux backend.
#pragma once

#include "platform/winapi.h"

// A new handle value: a multiple of 4 as Windows' are, never 0 or INVALID_HANDLE_VALUE, and never given twice in one
// process, so that a handle used after its close can only miss (ERROR_INVALID_HANDLE), never hit another object.
HANDLE NewHandleValue(void);
