// The Windows structures that more than one part of the Linux backend hands to the engine: a file time and the record
// of one directory entry. They keep Windows' layout (WIN32_FIND_DATAA is 320 bytes, as on Windows), so that code that
// copies or clears them whole behaves the same on both platforms. Windows itself gets them from <windows.h>.
#pragma once

#include <cstdint>

#ifndef MAX_PATH
#define MAX_PATH 260
#endif

// 100-nanosecond intervals since 1 January 1601 (UTC), split in two 32-bit halves as Windows keeps them.
typedef struct _FILETIME {
  uint32_t dwLowDateTime;
  uint32_t dwHighDateTime;
} FILETIME, *PFILETIME, *LPFILETIME;

typedef struct _WIN32_FIND_DATAA {
  uint32_t dwFileAttributes;
  FILETIME ftCreationTime;
  FILETIME ftLastAccessTime;
  FILETIME ftLastWriteTime;
  uint32_t nFileSizeHigh;
  uint32_t nFileSizeLow;
  uint32_t dwReserved0;  // the reparse tag when dwFileAttributes has FILE_ATTRIBUTE_REPARSE_POINT
  uint32_t dwReserved1;
  char cFileName[MAX_PATH];
  char cAlternateFileName[14];
} WIN32_FIND_DATAA, *PWIN32_FIND_DATAA, *LPWIN32_FIND_DATAA;
