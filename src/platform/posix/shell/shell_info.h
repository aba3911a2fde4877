// SHGetFileInfoA of the Linux backend, for the one question that the engine asks of it: the kind of an executable file
// (SHGFI_EXETYPE), read from the file's headers as Windows reads them. platform/winapi.h includes this header on Linux;
// the engine never includes it itself.
#pragma once

typedef struct HICON__ *HICON;
typedef ULONG_PTR DWORD_PTR;

typedef struct _SHFILEINFOA {
  HICON hIcon;
  int iIcon;
  DWORD dwAttributes;
  CHAR szDisplayName[MAX_PATH];
  CHAR szTypeName[80];
} SHFILEINFOA;

#define SHGFI_ICONLOCATION 0x000001000u
#define SHGFI_EXETYPE 0x000002000u

// With SHGFI_EXETYPE, the type of the executable file at `path`, as Windows documents it:
// - LOWORD "PE" (0x4550) or "NE" (0x454E), HIWORD the Windows version the program was made for (for PE the subsystem
//   version, 0x0400 for 4.0): a windowed Windows program;
// - LOWORD "PE", HIWORD 0: a console program, or a batch file (.bat, .cmd, by its extension);
// - LOWORD "MZ" (0x5A4D), HIWORD 0: a DOS program (.exe, or .com by its extension), also the DOS stub of a format
//   that is neither PE nor NE;
// - 0: not an executable, no such file, a folder, or another flag than SHGFI_EXETYPE (nothing else is answered here).
// An NE file made for another system than Windows (OS/2) gives 0. `fileAttributes` and `info` are not used.
DWORD_PTR SHGetFileInfoA(LPCSTR path, DWORD fileAttributes, SHFILEINFOA *info, UINT infoSize, UINT flags);
