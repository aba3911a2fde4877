// The registry of the Linux backend. Not read from a file yet: every key is missing.
#include "platform/winapi.h"

LSTATUS RegOpenKeyExA(HKEY, const char *, DWORD, REGSAM, PHKEY result) {
  if (result != nullptr) *result = nullptr;
  return ERROR_FILE_NOT_FOUND;
}

LSTATUS RegQueryValueExA(HKEY, const char *, DWORD *, DWORD *, unsigned char *, DWORD *) {
  return ERROR_INVALID_HANDLE;
}

LSTATUS RegEnumValueA(HKEY, DWORD, char *, DWORD *, DWORD *, DWORD *, unsigned char *, DWORD *) {
  return ERROR_INVALID_HANDLE;
}

LSTATUS RegCloseKey(HKEY key) {
  uintptr_t value = reinterpret_cast<uintptr_t>(key);
  return value >= 0x80000000u && value <= 0x80000003u ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

void ReloadRegistry(void) {}
