// The system's version and processor as the Linux backend reports them, by their Windows names. The Linux edition
// stands for Windows 10 (10.0, build 19045, a workstation), in the 64-bit form when it is itself a 64-bit program and
// in the 32-bit form otherwise, so that everything that the program decides by the system's class has one defined
// state. platform/winapi.h includes this header on Linux; the engine never includes it itself.
#pragma once

#include <cstdint>

#include "platform/posix/win_types.h"

typedef unsigned short WORD;
typedef unsigned char BYTE;
typedef int BOOL;
typedef uintptr_t DWORD_PTR;

#define VER_PLATFORM_WIN32s 0
#define VER_PLATFORM_WIN32_WINDOWS 1
#define VER_PLATFORM_WIN32_NT 2
#define VER_NT_WORKSTATION 1
#define VER_SUITE_SINGLEUSERTS 0x00000100u
#define PROCESSOR_ARCHITECTURE_INTEL 0
#define PROCESSOR_ARCHITECTURE_AMD64 9
#define PRODUCT_PROFESSIONAL 0x00000030u
#define SM_SERVERR2 89

// The narrow version records, laid out as on Windows (148 and 156 bytes).
typedef struct _OSVERSIONINFOA {
  DWORD dwOSVersionInfoSize;
  DWORD dwMajorVersion;
  DWORD dwMinorVersion;
  DWORD dwBuildNumber;
  DWORD dwPlatformId;
  CHAR szCSDVersion[128];
} OSVERSIONINFOA, *POSVERSIONINFOA, *LPOSVERSIONINFOA;

typedef struct _OSVERSIONINFOEXA {
  DWORD dwOSVersionInfoSize;
  DWORD dwMajorVersion;
  DWORD dwMinorVersion;
  DWORD dwBuildNumber;
  DWORD dwPlatformId;
  CHAR szCSDVersion[128];
  WORD wServicePackMajor;
  WORD wServicePackMinor;
  WORD wSuiteMask;
  BYTE wProductType;
  BYTE wReserved;
} OSVERSIONINFOEXA, *POSVERSIONINFOEXA, *LPOSVERSIONINFOEXA;

typedef struct _SYSTEM_INFO {
  union {
    DWORD dwOemId;
    struct {
      WORD wProcessorArchitecture;
      WORD wReserved;
    };
  };
  DWORD dwPageSize;
  void *lpMinimumApplicationAddress;
  void *lpMaximumApplicationAddress;
  DWORD_PTR dwActiveProcessorMask;
  DWORD dwNumberOfProcessors;
  DWORD dwProcessorType;
  DWORD dwAllocationGranularity;
  WORD wProcessorLevel;
  WORD wProcessorRevision;
} SYSTEM_INFO, *LPSYSTEM_INFO;

// Fills a record of either narrow size (dwOSVersionInfoSize 148 or 156; the larger also gets the service pack
// numbers 0, the suite mask VER_SUITE_SINGLEUSERTS and the product type VER_NT_WORKSTATION) with 10.0.19045 on
// VER_PLATFORM_WIN32_NT and an empty service pack text. Windows 8.1 and later give 6.2 here to a program that does not
// declare itself in a manifest; this backend gives every program the version that RtlGetVersion gives. Any other size
// gives FALSE with ERROR_INSUFFICIENT_BUFFER, as Windows does.
BOOL GetVersionExA(LPOSVERSIONINFOA info);
// The processor as this program sees it and as the system has it: PROCESSOR_ARCHITECTURE_AMD64 for a 64-bit build,
// PROCESSOR_ARCHITECTURE_INTEL for a 32-bit one, whatever the machine's own processor is, so that the system's class
// tells the program's width. The number of processors online, the page size, 64 KiB as the allocation granularity.
void GetSystemInfo(LPSYSTEM_INFO info);
void GetNativeSystemInfo(LPSYSTEM_INFO info);
// PRODUCT_PROFESSIONAL for any version asked about. Result: TRUE; FALSE for a null out word.
BOOL GetProductInfo(DWORD majorVersion, DWORD minorVersion, DWORD servicePackMajor, DWORD servicePackMinor,
                    DWORD *productType);
// ntdll's version call, which the program finds by LoadLibraryA("ntdll.dll") and GetProcAddress: the record is read
// as RTL_OSVERSIONINFOEXW, whatever size it states. The version, build and platform as GetVersionExA gives them and
// the service pack text, empty, in UTF-16 are always written; the service pack numbers, suite mask and product type
// only when the size states the whole wide record (284 bytes), as Wine's does. Result: 0, success.
int32_t RtlGetVersion(void *info);
