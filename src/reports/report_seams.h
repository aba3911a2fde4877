// The two reports that the file services make before the error reporter and the folder checks are in place: the
// question put when the system refuses access, and the fault message for a folder that is not there. Until those
// arrive, both stay silent and answer so that the caller carries on as it would after a report that asked nothing.
#pragma once

#include "platform/winapi.h"

// The access question for a refused delete or remove. `code` is the captured system error; `name` (may be null) or
// else `path` names the object; `module` and `titleId` give the title; `style` is the prompt's style. Result: 1 when
// the caller is to treat the operation as failed and try nothing more, -1 to go on, 0 when the error was not a refused
// access. Silent here: always 0, so the caller's own failure handling decides.
int ReportAccessProblem(DWORD code, const char *name, const char *path, HMODULE module, UINT titleId, UINT style);

// The fault message for a folder or file path. `fault` is the program's fault number (a value with bit 16 set is never
// shown), `count` and `style` go to the message. Result: the answer of the message. Silent here: always 0.
int ReportPathFault(HWND owner, const char *name, int fault, int count, int style);
