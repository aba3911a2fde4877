// The few Windows record types that more than one part of the Linux backend hands to the engine (file times, the find
// record, the wide character). Kept apart so that every backend header can include it without including the others.
#pragma once

#include <cstdint>

#ifndef KELMARO_WIN_TYPES_DECLARED
#define KELMARO_WIN_TYPES_DECLARED

// Repeating a typedef with the same type is allowed, so these agree with winapi.h whichever is read first.
typedef uint32_t DWORD;
typedef char CHAR;

#ifndef MAX_PATH
#define MAX_PATH 260
#endif

// A wide character is wchar_t, so that L"" literals work in the engine and its tests. Linux's wchar_t has 32 bits;
// the backend converts to and from UTF-16 wherever a file holds wide text, and counts limits in UTF-16 units there.
typedef wchar_t WCHAR;
typedef WCHAR *LPWSTR;
typedef const WCHAR *LPCWSTR;

// 100-nanosecond intervals since 1601-01-01 UTC, in two halves, as Windows keeps them.
typedef struct _FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
} FILETIME, *PFILETIME, *LPFILETIME;

// The record that FindFirstFileA and IShellLinkA::GetPath fill: the same fields in the same order as on Windows
// (320 bytes), so that code that copies or clears it whole behaves the same on both platforms.
typedef struct _WIN32_FIND_DATAA {
  DWORD dwFileAttributes;
  FILETIME ftCreationTime;
  FILETIME ftLastAccessTime;
  FILETIME ftLastWriteTime;
  DWORD nFileSizeHigh;
  DWORD nFileSizeLow;
  DWORD dwReserved0;
  DWORD dwReserved1;
  CHAR cFileName[MAX_PATH];
  CHAR cAlternateFileName[14];
} WIN32_FIND_DATAA, *PWIN32_FIND_DATAA, *LPWIN32_FIND_DATAA;

#endif  // KELMARO_WIN_TYPES_DECLARED
