// SHGetFileInfoA on Linux, for the two questions the engine asks: a file's program type, and the icon that a file
// (a shortcut above all) shows. Private to the Linux backend; winapi.h includes it.
#pragma once

#include "platform/posix/win_types.h"

typedef void *HICON;

typedef struct _SHFILEINFOA {
  HICON hIcon;
  int iIcon;
  DWORD dwAttributes;
  CHAR szDisplayName[MAX_PATH];
  CHAR szTypeName[80];
} SHFILEINFOA;

#define SHGFI_ICONLOCATION 0x000001000u
#define SHGFI_EXETYPE 0x000002000u

// flags SHGFI_EXETYPE: 0 for a file that is no program; else the signature in the low word ("PE" 0x4550, "NE"
// 0x454E, "MZ" 0x5A4D) and, for a Windows program, its expected Windows version in the high word (0 for a console
// or MS-DOS program). A .com or .bat file counts as MS-DOS ("MZ", 0), as Windows answers for it.
// flags SHGFI_ICONLOCATION: 1 with `info` holding the file that holds the icon and the icon's index; for a shortcut
// its stored icon location (environment names expanded) and index, for any other file the file itself and 0. 0 for a
// path that is not there or a shortcut that cannot be read.
uintptr_t SHGetFileInfoA(const char *path, DWORD attributes, SHFILEINFOA *info, unsigned size, unsigned flags);
