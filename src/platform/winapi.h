// The one header through which the engine reaches the operating system. The engine calls Windows operations by their
// Windows names; on Windows this header brings in the system's headers, on Linux it declares the same names and
// src/platform/posix/ implements them. A few operations are ours on both platforms (the global heap, the text case
// routines, the console), so that they behave identically everywhere and tests can steer them.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

#ifdef _WIN32

#include <io.h>
#include <objbase.h>
#include <windows.h>
// SHGetFileInfoA, and the shell link objects with their interface ids, which the lean Windows headers leave out.
#include <shellapi.h>
#include <shlguid.h>
#include <shlobj.h>
// InternetGetConnectedState and InternetGetLastResponseInfoA.
#include <wininet.h>
// Network browsing (WNetOpenEnumA ...), which the lean Windows headers leave out.
#include <winnetwk.h>

#else  // the Linux backend

#define WINAPI
#define CALLBACK
#define MAX_PATH 260

// Windows' integer types keep their Windows widths: BOOL is int and DWORD is 32 bits, as on Windows.
typedef int BOOL;
typedef unsigned char BYTE;
typedef unsigned short WORD;
typedef uint32_t DWORD;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef unsigned int UINT;
typedef char CHAR;
typedef char *LPSTR;
typedef const char *LPCSTR;
typedef void *LPVOID;
typedef const void *LPCVOID;
typedef intptr_t LONG_PTR;
typedef uintptr_t UINT_PTR;
typedef uintptr_t ULONG_PTR;
typedef size_t SIZE_T;
typedef void *HANDLE;
typedef struct HINSTANCE__ *HINSTANCE;
typedef HINSTANCE HMODULE;
typedef struct HWND__ *HWND;
typedef void *HGLOBAL;

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

#define ERROR_SUCCESS 0
#define ERROR_FILE_NOT_FOUND 2
#define ERROR_PATH_NOT_FOUND 3
#define ERROR_ACCESS_DENIED 5
#define ERROR_INVALID_HANDLE 6
#define ERROR_NOT_ENOUGH_MEMORY 8
#define ERROR_OUTOFMEMORY 14
#define ERROR_INVALID_PARAMETER 87
#define ERROR_BAD_NET_RESP 58
#define ERROR_INVALID_PASSWORD 86

#define MB_OK 0x00000000u
#define MB_OKCANCEL 0x00000001u
#define MB_ABORTRETRYIGNORE 0x00000002u
#define MB_YESNOCANCEL 0x00000003u
#define MB_YESNO 0x00000004u
#define MB_RETRYCANCEL 0x00000005u
#define MB_ICONHAND 0x00000010u
#define MB_ICONQUESTION 0x00000020u
#define MB_ICONEXCLAMATION 0x00000030u
#define MB_ICONASTERISK 0x00000040u
#define IDOK 1
#define IDCANCEL 2
#define IDABORT 3
#define IDRETRY 4
#define IDIGNORE 5
#define IDYES 6
#define IDNO 7

#define GMEM_FIXED 0x0000u
#define GMEM_MOVEABLE 0x0002u
#define GMEM_ZEROINIT 0x0040u
#define GHND (GMEM_MOVEABLE | GMEM_ZEROINIT)

// The module handle is a token on Linux: nothing is loaded from it, string resources are compiled in.
HMODULE GetModuleHandleA(LPCSTR moduleName);
// The few operations that the engine looks up by name (the ones the oldest Windows lack) are always found; any other
// name gives null with ERROR_PROC_NOT_FOUND. The module is not looked at.
typedef intptr_t (*FARPROC)(void);
#define ERROR_PROC_NOT_FOUND 127
FARPROC GetProcAddress(HMODULE module, LPCSTR procName);
DWORD GetLastError(void);
void SetLastError(DWORD code);
HWND GetDesktopWindow(void);

typedef short SHORT;
#define SM_SWAPBUTTON 23
#define SM_NETWORK 63
#define VK_LBUTTON 0x01
#define VK_RBUTTON 0x02
// Linux has no key state that a console program could ask for: no key is ever down, the buttons are not swapped.
SHORT GetAsyncKeyState(int virtualKey);
// SM_NETWORK: 1 when a network interface other than the loopback is up; any other index 0.
int GetSystemMetrics(int index);
#define INTERNET_CONNECTION_MODEM 0x01u
#define INTERNET_CONNECTION_LAN 0x02u
#define INTERNET_CONNECTION_PROXY 0x04u
// Connected (INTERNET_CONNECTION_LAN) when a network interface other than the loopback is up.
BOOL InternetGetConnectedState(DWORD *flags, DWORD reserved);

// System texts. FormatMessageA knows the errors that this backend leaves as its last error: a code that matches an
// errno gets the C library's text for it (strerror_l in the locale that LC_ALL, LC_MESSAGES or LANG names, converted
// to Shift-JIS), any other one a short text of the backend's own, in Japanese where that locale's language is "ja"
// and in English otherwise. Each text ends in "\r\n", as Windows' do. Only FORMAT_MESSAGE_FROM_SYSTEM finds them
// (FORMAT_MESSAGE_FROM_HMODULE alone finds nothing, as no module has a message table); an unknown code gives 0 with
// ERROR_MR_MID_NOT_FOUND. With FORMAT_MESSAGE_ARGUMENT_ARRAY, "%1" to "%99" take the texts of `arguments`, read as
// an array of string pointers; without it, or with FORMAT_MESSAGE_IGNORE_INSERTS, they stay as they stand. With
// FORMAT_MESSAGE_ALLOCATE_BUFFER the text goes into memory that LocalFree frees, its address into *(char **)buffer;
// otherwise into `buffer`, of `size` bytes, and a text that does not fit gives 0 with ERROR_INSUFFICIENT_BUFFER.
// Result: the length of the text. errno is left as it was.
typedef void *HLOCAL;
#define FORMAT_MESSAGE_ALLOCATE_BUFFER 0x00000100u
#define FORMAT_MESSAGE_IGNORE_INSERTS 0x00000200u
#define FORMAT_MESSAGE_FROM_HMODULE 0x00000800u
#define FORMAT_MESSAGE_FROM_SYSTEM 0x00001000u
#define FORMAT_MESSAGE_ARGUMENT_ARRAY 0x00002000u
#define ERROR_MOD_NOT_FOUND 126
#define ERROR_MR_MID_NOT_FOUND 317
#define ERROR_INTERNET_EXTENDED_ERROR 12003
DWORD FormatMessageA(DWORD flags, LPCVOID source, DWORD messageId, DWORD languageId, LPSTR buffer, DWORD size,
                     va_list *arguments);
// Frees what FormatMessageA allocated; null does nothing. Result: null.
HLOCAL LocalFree(HLOCAL memory);
// No library is ever loaded on Linux. The two system modules that every Windows process has, "ntdll.dll" and
// "kernel32.dll" (named without case, with or without ".dll"), give the module handle of GetModuleHandleA, through
// which GetProcAddress finds their operations; every other name gives null with ERROR_MOD_NOT_FOUND. FreeLibrary
// accepts anything, null included, and gives TRUE.
HMODULE LoadLibraryA(LPCSTR name);
BOOL FreeLibrary(HMODULE module);
// No internet session has answered: the response's error is 0, its text empty (when `buffer` has room for the NUL;
// *length becomes 0 in any case). Result: TRUE.
BOOL InternetGetLastResponseInfoA(DWORD *error, LPSTR buffer, DWORD *length);

#include "platform/posix/files/files.h"
// The system's version and processor: Windows 10 in the width of the build.
#include "platform/posix/machine/system_version.h"
// The registry, read from a registry file or a Wine prefix.
#include "platform/posix/machine/registry.h"
// Shell link objects (IShellLinkA, IPersistFile), COM creation, code page conversion, and the types they use.
#include "platform/posix/shell/shell_link.h"
// SHGetFileInfoA for a program type and an icon location.
#include "platform/posix/shell/shell_info.h"
// Network browsing over the share table.
#include "platform/posix/machine/network_browse.h"

#endif  // _WIN32

// ---- Ours on both platforms ----------------------------------------------------------------------------------------

// The global heap. Blocks keep exactly the size asked for (GlobalSize tells it), a GMEM_ZEROINIT request zero-fills
// the new bytes, and growing a block by a little costs time in proportion to the growth, not to the block. Handles
// are never 0 for a live block. A failed request sets the last error to ERROR_NOT_ENOUGH_MEMORY and gives 0.
HGLOBAL KmGlobalAlloc(UINT flags, SIZE_T bytes);
HGLOBAL KmGlobalReAlloc(HGLOBAL block, SIZE_T bytes, UINT flags);
LPVOID KmGlobalLock(HGLOBAL block);
BOOL KmGlobalUnlock(HGLOBAL block);
HGLOBAL KmGlobalFree(HGLOBAL block);
SIZE_T KmGlobalSize(HGLOBAL block);

#ifdef GlobalAlloc
#undef GlobalAlloc
#undef GlobalReAlloc
#undef GlobalLock
#undef GlobalUnlock
#undef GlobalFree
#undef GlobalSize
#endif
#define GlobalAlloc KmGlobalAlloc
#define GlobalReAlloc KmGlobalReAlloc
#define GlobalLock KmGlobalLock
#define GlobalUnlock KmGlobalUnlock
#define GlobalFree KmGlobalFree
#define GlobalSize KmGlobalSize

// A message box has no window to live in on a console: its caption and text go to standard error, and the answer is
// IDOK. Only the double-byte assertions use it.
int KmMessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type);
#ifdef MessageBoxA
#undef MessageBoxA
#endif
#define MessageBoxA KmMessageBoxA

// The alert of a message-box style (MB_OK, MB_ICONHAND, MB_ICONQUESTION, MB_ICONEXCLAMATION, MB_ICONASTERISK): on
// Windows the system's MessageBeep, on Linux a BEL to standard error when that is a terminal, and nothing otherwise.
// While a test has taken the console over, the style is recorded instead (TestConsoleBeeps). Result: TRUE.
BOOL KmMessageBeep(UINT type);
#ifdef MessageBeep
#undef MessageBeep
#endif
#define MessageBeep KmMessageBeep

#include "platform/char_case.h"

// ---- The console ---------------------------------------------------------------------------------------------------
// All console text is Shift-JIS in the program. On Linux it is converted to and from the locale's charset at this
// boundary (not at all in the C locale); on Windows the bytes pass as they are.

// Formats like printf into the buffered standard output. Result: the number of bytes formatted.
int ConsolePrintf(const char *format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;
int ConsoleVPrintf(const char *format, va_list args);
// Makes everything written so far visible.
void ConsoleFlush(void);
// Reads one line of standard input into `buffer`, as fgets does: at most size-1 bytes, the newline kept. Result:
// `buffer`, or null at the end of input (the buffer then keeps what it held).
char *ConsoleReadLine(char *buffer, int size);
// One key without echo and without waiting for Enter. When standard input is not a console, the key is the next byte
// of standard input. Result: the key's byte (0 to 255; 0 or 0xE0 starts a two-code key on a console), or -1 at the
// end of input.
int ConsoleReadKey(void);
// Writes a text unformatted to standard error.
void ConsoleWriteError(const char *text);

// Ends the process the way the run-time's invalid-parameter handler does: at once, without flushing, with status
// 0xC0000417 (STATUS_INVALID_CRUNTIME_PARAMETER) on Windows and its low byte, 0x17, on Linux.
[[noreturn]] void ExitOnInvalidParameter(void);

// Prepares the platform for the program before main's own work: on Linux the locale's charset for the console and the
// arguments, converted in place to Shift-JIS (an argument that is an existing absolute Linux folder is given in drive
// form); on Windows nothing.
void PlatformStartup(int *argc, char ***argv);
// The search folder as the program takes it from its command line, a typed line or the saved settings: on Linux an
// existing folder named the Linux way, absolute or relative to the current folder ("/srv/links", "links",
// "../links"), comes back in drive form, as an absolute one of the command line does at start-up; anything else, and
// everything on Windows, comes back as it is. The result stays valid until the next call.
const char *PlatformFolderArgument(const char *text);

#include "platform/text_support.h"
