// The version calls of the Linux backend: Windows 10 in the width of this build (see system_version.h).
#include <unistd.h>

#include <cstring>

#include "platform/winapi.h"

namespace {

const DWORD kMajor = 10;
const DWORD kMinor = 0;
const DWORD kBuild = 19045;

// RTL_OSVERSIONINFOEXW, with its text in UTF-16 whatever the width of wchar_t on this machine.
struct WideVersionRecord {
  DWORD dwOSVersionInfoSize;
  DWORD dwMajorVersion;
  DWORD dwMinorVersion;
  DWORD dwBuildNumber;
  DWORD dwPlatformId;
  char16_t szCSDVersion[128];
  WORD wServicePackMajor;
  WORD wServicePackMinor;
  WORD wSuiteMask;
  BYTE wProductType;
  BYTE wReserved;
};
static_assert(sizeof(WideVersionRecord) == 284, "RTL_OSVERSIONINFOEXW is 284 bytes");
static_assert(sizeof(OSVERSIONINFOA) == 148 && sizeof(OSVERSIONINFOEXA) == 156, "the narrow records keep their sizes");

void FillSystemInfo(LPSYSTEM_INFO info) {
  std::memset(info, 0, sizeof *info);
  bool wide = sizeof(void *) == 8;
  info->wProcessorArchitecture = wide ? PROCESSOR_ARCHITECTURE_AMD64 : PROCESSOR_ARCHITECTURE_INTEL;
  long pageSize = sysconf(_SC_PAGESIZE);
  info->dwPageSize = pageSize > 0 ? static_cast<DWORD>(pageSize) : 4096;
  info->dwAllocationGranularity = 65536;
  info->lpMinimumApplicationAddress = reinterpret_cast<void *>(static_cast<uintptr_t>(0x10000));
  info->lpMaximumApplicationAddress =
      reinterpret_cast<void *>(wide ? static_cast<uintptr_t>(0x7FFFFFFEFFFFull) : static_cast<uintptr_t>(0x7FFEFFFF));
  long processors = sysconf(_SC_NPROCESSORS_ONLN);
  info->dwNumberOfProcessors = processors > 0 ? static_cast<DWORD>(processors) : 1;
  unsigned bits = info->dwNumberOfProcessors < sizeof(DWORD_PTR) * 8 ? info->dwNumberOfProcessors : 0;
  info->dwActiveProcessorMask = bits ? (static_cast<DWORD_PTR>(1) << bits) - 1 : ~static_cast<DWORD_PTR>(0);
  // PROCESSOR_AMD_X8664 and PROCESSOR_INTEL_PENTIUM, the types Windows gives for these architectures.
  info->dwProcessorType = wide ? 8664 : 586;
  info->wProcessorLevel = 6;
}

}  // namespace

BOOL GetVersionExA(LPOSVERSIONINFOA info) {
  if (info == nullptr ||
      (info->dwOSVersionInfoSize != sizeof(OSVERSIONINFOA) && info->dwOSVersionInfoSize != sizeof(OSVERSIONINFOEXA))) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
  }
  info->dwMajorVersion = kMajor;
  info->dwMinorVersion = kMinor;
  info->dwBuildNumber = kBuild;
  info->dwPlatformId = VER_PLATFORM_WIN32_NT;
  std::memset(info->szCSDVersion, 0, sizeof info->szCSDVersion);
  if (info->dwOSVersionInfoSize == sizeof(OSVERSIONINFOEXA)) {
    LPOSVERSIONINFOEXA extended = reinterpret_cast<LPOSVERSIONINFOEXA>(info);
    extended->wServicePackMajor = 0;
    extended->wServicePackMinor = 0;
    extended->wSuiteMask = VER_SUITE_SINGLEUSERTS;
    extended->wProductType = VER_NT_WORKSTATION;
    extended->wReserved = 0;
  }
  return TRUE;
}

void GetSystemInfo(LPSYSTEM_INFO info) {
  if (info != nullptr) FillSystemInfo(info);
}

void GetNativeSystemInfo(LPSYSTEM_INFO info) {
  if (info != nullptr) FillSystemInfo(info);
}

BOOL GetProductInfo(DWORD, DWORD, DWORD, DWORD, DWORD *productType) {
  if (productType == nullptr) return FALSE;
  *productType = PRODUCT_PROFESSIONAL;
  return TRUE;
}

int32_t RtlGetVersion(void *record) {
  // Written field by field through the wide layout, as Wine writes it: a record that states a smaller size gets the
  // version, the platform and the text's terminator, and nothing behind them.
  WideVersionRecord *info = static_cast<WideVersionRecord *>(record);
  info->dwMajorVersion = kMajor;
  info->dwMinorVersion = kMinor;
  info->dwBuildNumber = kBuild;
  info->dwPlatformId = VER_PLATFORM_WIN32_NT;
  info->szCSDVersion[0] = 0;
  if (info->dwOSVersionInfoSize == sizeof(WideVersionRecord)) {
    info->wServicePackMajor = 0;
    info->wServicePackMinor = 0;
    info->wSuiteMask = VER_SUITE_SINGLEUSERTS;
    info->wProductType = VER_NT_WORKSTATION;
    info->wReserved = 0;
  }
  return 0;
}
