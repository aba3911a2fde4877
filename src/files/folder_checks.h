// Name rules and folder checks: what a folder or name typed by a person must pass before it is used.
#pragma once

#include "platform/winapi.h"

// 1 when the name is exactly "." (or ".."), else 0; null and empty give 0.
int DotEntryTest(const char *name);
int DotDotEntryTest(const char *name);
// 1 when the path is not empty and can be reached, else 0.
int FolderExists(const char *path);
// 1 when the folder exists. Otherwise: mode 1 gives 1 without a word; modes 2 (a file) and 4 (a folder) report the
// missing place and give 0.
int CheckFolderOrReport(HWND owner, const char *path, int mode, const char *line);
// The drive and path check before a walk: 0 (or a run-time error number) when the walk may go on, -1 or 2 when not.
int CheckPathSyntaxRules(HWND owner, char *path, int forCopy, unsigned flags);
// The fault message for a folder or file path. `fault` is the program's fault number (a value with bit 16 set is never
// shown), `count` and `style` go to the message. Result: the answer of the message. Until the folder checks land:
// silent, 0.
int ReportPathFault(HWND owner, const char *name, int fault, int count, int style);
