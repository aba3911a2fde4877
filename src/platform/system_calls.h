// The system calls whose answers tests must be able to choose on both platforms: a machine with a CD-ROM drive or a
// removable disk, another version of Windows, a network browser with its groups, servers and failures. They go through
// one table of {name, current, default} entries, whose current entry is the real operation unless a test has put one of
// its own in place (platform/testing.h). The machine services include this header and call the operations by their
// Windows names, which it maps onto the table; the rest of the program, and the Linux backend that implements the
// names, never see it.
#pragma once

#include "platform/winapi.h"

UINT KmGetDriveTypeA(LPCSTR rootPathName);
BOOL KmGetVersionExA(LPOSVERSIONINFOA info);
void KmGetSystemInfo(LPSYSTEM_INFO info);
int KmGetSystemMetrics(int index);
// GetProcAddress, except for the entry points that the table holds by name ("RtlGetVersion", "GetNativeSystemInfo",
// "GetProductInfo"): those give what a test has put in their place (null: the lookup finds nothing, with the last
// error ERROR_PROC_NOT_FOUND), or else what the real lookup gives.
FARPROC KmGetProcAddress(HMODULE module, LPCSTR procName);
DWORD KmWNetOpenEnumA(DWORD scope, DWORD type, DWORD usage, LPNETRESOURCEA parent, LPHANDLE handle);
DWORD KmWNetEnumResourceA(HANDLE handle, LPDWORD count, LPVOID buffer, LPDWORD bufferSize);
DWORD KmWNetCloseEnum(HANDLE handle);
DWORD KmWNetGetLastErrorA(LPDWORD error, LPSTR errorText, DWORD errorTextSize, LPSTR nameText, DWORD nameTextSize);

#ifndef KELMARO_SYSTEM_CALLS_BY_OWN_NAMES
#undef GetDriveTypeA
#undef GetVersionExA
#undef GetSystemInfo
#undef GetSystemMetrics
#undef GetProcAddress
#undef WNetOpenEnumA
#undef WNetEnumResourceA
#undef WNetCloseEnum
#undef WNetGetLastErrorA
#define GetDriveTypeA KmGetDriveTypeA
#define GetVersionExA KmGetVersionExA
#define GetSystemInfo KmGetSystemInfo
#define GetSystemMetrics KmGetSystemMetrics
#define GetProcAddress KmGetProcAddress
#define WNetOpenEnumA KmWNetOpenEnumA
#define WNetEnumResourceA KmWNetEnumResourceA
#define WNetCloseEnum KmWNetCloseEnum
#define WNetGetLastErrorA KmWNetGetLastErrorA
#endif
