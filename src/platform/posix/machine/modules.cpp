// GetProcAddress of the Linux backend: the operations that the engine looks up by name on Windows, because the oldest
// systems lack them (and ntdll's RtlGetVersion, which no header declares), are always there here.
#include "platform/winapi.h"

namespace {

// Function addresses of any type go into the one FARPROC type by way of a plain pointer, as on Windows.
template <typename Function>
FARPROC AsProc(Function *function) {
  return reinterpret_cast<FARPROC>(reinterpret_cast<void *>(function));
}

}  // namespace

FARPROC GetProcAddress(HMODULE, LPCSTR name) {
  struct Entry {
    const char *name;
    FARPROC address;
  };
  static const Entry entries[] = {
      {"GetFileSizeEx", AsProc(&GetFileSizeEx)},
      {"GetDiskFreeSpaceExA", AsProc(&GetDiskFreeSpaceExA)},
      {"GetNativeSystemInfo", AsProc(&GetNativeSystemInfo)},
      {"GetProductInfo", AsProc(&GetProductInfo)},
      {"RtlGetVersion", AsProc(&RtlGetVersion)},
  };
  if (name != nullptr)
    for (const Entry &entry : entries)
      if (lstrcmpA(entry.name, name) == 0) return entry.address;
  SetLastError(ERROR_PROC_NOT_FOUND);
  return nullptr;
}
