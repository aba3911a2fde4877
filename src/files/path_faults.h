// The one gate through which the file services tell a path fault: the folder changes and the checks both report
// through it, so neither has to know the other.
#pragma once

#include "platform/winapi.h"

// The folder or file fault message of the file services, for faults without bit 16; those are dropped (0).
int ReportPathFault(HWND owner, const char *name, int fault, int count, int style);
