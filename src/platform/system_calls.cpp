// The table of swappable system calls (platform/system_calls.h) and the hooks by which tests fill it.
#define KELMARO_SYSTEM_CALLS_BY_OWN_NAMES
#include "platform/system_calls.h"

#include "platform/testing.h"

namespace {

struct SwappableCall {
  const char *name;
  FARPROC current;  // what a test put in place; only read while `swapped`
  bool swapped;
};

// The entry points that are looked up by name first, then the direct calls.
SwappableCall calls[] = {
    {"RtlGetVersion", nullptr, false},     {"GetNativeSystemInfo", nullptr, false},
    {"GetProductInfo", nullptr, false},    {"GetDriveTypeA", nullptr, false},
    {"GetVersionExA", nullptr, false},     {"GetSystemInfo", nullptr, false},
    {"GetSystemMetrics", nullptr, false},  {"WNetOpenEnumA", nullptr, false},
    {"WNetEnumResourceA", nullptr, false}, {"WNetCloseEnum", nullptr, false},
    {"WNetGetLastErrorA", nullptr, false},
};
const int kLookedUpCount = 3;

SwappableCall *Find(const char *name, int count = static_cast<int>(sizeof calls / sizeof calls[0])) {
  if (name == nullptr) return nullptr;
  for (int i = 0; i < count; ++i)
    if (lstrcmpA(calls[i].name, name) == 0) return &calls[i];
  return nullptr;
}

// The test's replacement for `name`, as the function type of the operation; null while the real one holds.
template <typename Function>
Function Swapped(const char *name) {
  SwappableCall *call = Find(name);
  return call != nullptr && call->swapped ? reinterpret_cast<Function>(reinterpret_cast<void *>(call->current))
                                          : nullptr;
}

}  // namespace

UINT KmGetDriveTypeA(LPCSTR rootPathName) {
  if (auto call = Swapped<UINT(WINAPI *)(LPCSTR)>("GetDriveTypeA")) return call(rootPathName);
  return GetDriveTypeA(rootPathName);
}

BOOL KmGetVersionExA(LPOSVERSIONINFOA info) {
  if (auto call = Swapped<BOOL(WINAPI *)(LPOSVERSIONINFOA)>("GetVersionExA")) return call(info);
  return GetVersionExA(info);
}

void KmGetSystemInfo(LPSYSTEM_INFO info) {
  if (auto call = Swapped<void(WINAPI *)(LPSYSTEM_INFO)>("GetSystemInfo")) return call(info);
  GetSystemInfo(info);
}

int KmGetSystemMetrics(int index) {
  if (auto call = Swapped<int(WINAPI *)(int)>("GetSystemMetrics")) return call(index);
  return GetSystemMetrics(index);
}

FARPROC KmGetProcAddress(HMODULE module, LPCSTR procName) {
  SwappableCall *call = Find(procName, kLookedUpCount);
  if (call == nullptr || !call->swapped) return GetProcAddress(module, procName);
  if (call->current == nullptr) SetLastError(ERROR_PROC_NOT_FOUND);
  return call->current;
}

DWORD KmWNetOpenEnumA(DWORD scope, DWORD type, DWORD usage, LPNETRESOURCEA parent, LPHANDLE handle) {
  if (auto call = Swapped<DWORD(WINAPI *)(DWORD, DWORD, DWORD, LPNETRESOURCEA, LPHANDLE)>("WNetOpenEnumA"))
    return call(scope, type, usage, parent, handle);
  return WNetOpenEnumA(scope, type, usage, parent, handle);
}

DWORD KmWNetEnumResourceA(HANDLE handle, LPDWORD count, LPVOID buffer, LPDWORD bufferSize) {
  if (auto call = Swapped<DWORD(WINAPI *)(HANDLE, LPDWORD, LPVOID, LPDWORD)>("WNetEnumResourceA"))
    return call(handle, count, buffer, bufferSize);
  return WNetEnumResourceA(handle, count, buffer, bufferSize);
}

DWORD KmWNetCloseEnum(HANDLE handle) {
  if (auto call = Swapped<DWORD(WINAPI *)(HANDLE)>("WNetCloseEnum")) return call(handle);
  return WNetCloseEnum(handle);
}

DWORD KmWNetGetLastErrorA(LPDWORD error, LPSTR errorText, DWORD errorTextSize, LPSTR nameText, DWORD nameTextSize) {
  if (auto call = Swapped<DWORD(WINAPI *)(LPDWORD, LPSTR, DWORD, LPSTR, DWORD)>("WNetGetLastErrorA"))
    return call(error, errorText, errorTextSize, nameText, nameTextSize);
  return WNetGetLastErrorA(error, errorText, errorTextSize, nameText, nameTextSize);
}

bool TestSwapSystemCall(const char *name, FARPROC call) {
  SwappableCall *entry = Find(name);
  if (entry == nullptr) return false;
  entry->current = call;
  entry->swapped = true;
  return true;
}

void TestRestoreSystemCalls(void) {
  for (SwappableCall &call : calls) {
    call.current = nullptr;
    call.swapped = false;
  }
}
