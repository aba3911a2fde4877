// System information: the one word that tells the rest of the program which Windows it runs on, worked out once from
// the version calls; the run's tidy-ups; the one-line prompt with a formatted text; and the record that the drive
// check passes back.
#pragma once

#include <cstdint>

#include "platform/winapi.h"

// Bits of the system's class.
enum OsClassBit : unsigned {
  kOsWindows31 = 0x1,
  kOsWindows32s = 0x2,
  kOsWindows95 = 0x4,
  kOsWindows98 = 0x8,
  kOsWindows95Second = 0x10,
  kOsWindows98Second = 0x20,
  kOsWindowsMe = 0x40,
  kOsWindowsNt = 0x80,
  kOsWindows2000 = 0x100,
  kOsWindowsXp = 0x200,
  kOsServer = 0x400,
  kOsWindowsVista = 0x800,
  kOsWin32sPlatform = 0x1000,
  kOs32Bit = 0x2000,
  kOs64Bit = 0x4000,
  kOsWindows95Family = 0x8000,
  kOsNt5Step1 = 0x10000,
  kOsNt5Step2 = 0x20000,
  kOsNt5Step3 = 0x40000,
  kOsVirtualStore = 0x80000,  // NT 6 or later
  kOsWindows7 = 0x100000,
  kOsWindows8 = 0x200000,
  kOsWindows81 = 0x400000,
  kOsWindows10 = 0x800000,
  kOsAfterWindows10 = 0x1000000,
  kOsUnknown = 0x2000000,  // the version could not be read
};
// The class before it is worked out; it can also stay the class for good (versions 6.0 to 9.x and others).
const unsigned kOsClassNotKnown = 0xFFFFFFFFu;

// The system's class. Worked out at the first call that can read the version, and from then on handed back as it
// stands. When no version call answers, the result is kOsUnknown, and the next call tries again. With a `name`
// buffer (room for 32 bytes), the class's name goes there too: the first name of the bits in the order 0x1, 0x2, 0x4,
// 0x20, 0x8, 0x40, 0x80, 0x100, 0x200, 0x800, 0x100000 ... 0x2000000 ("Windows 98SE" before "Windows 98"), then
// " Server" for 0x400 and " 64bit" for 0x4000. A null buffer is not written.
unsigned GetOsClass(char *name);
// Forgets the class, the versions and the entry points looked up for them, so that the next GetOsClass asks the
// system again (for tests, which change the system's answers).
void ForgetOsClass(void);

// The record that the version calls fill: OSVERSIONINFOEXA (156 bytes) at its start, in room for the wide record
// that RtlGetVersion writes whatever size the record states (RTL_OSVERSIONINFOEXW, 284 bytes).
union VersionRecord {
  OSVERSIONINFOEXA info;
  unsigned char bytes[284];
};
// The version through ntdll's RtlGetVersion, looked up at the first need ("ntdll.dll" loaded, a module below 33 taken
// for a failure) and kept once found. The record's size word must be set. Result: 1 when the entry point was found
// and its status is not above 0, which an error status (negative) is not; 0 when it is missing.
int ReadVersion(VersionRecord *record);
// The processor facts: GetNativeSystemInfo where the system has it, otherwise GetSystemInfo, into a record kept for
// the process. Result: that record.
const SYSTEM_INFO *ReadNativeSystemInfo(void);
// Folds the UTF-16 text at `text` (at most `size` bytes, terminated by two zero bytes) to single bytes in place: each
// character's second byte is dropped when it is 0, kept when it is not. The folded text is terminated; bytes behind
// it are left as they were.
void PackWideText(unsigned char *text, unsigned size);
// The major and minor version and the build read for the class (all bits set before), and the service pack text.
DWORD OsMajorVersion(void);
DWORD OsMinorVersion(void);
DWORD OsBuildNumber(void);
const char *OsServicePackText(void);

// Shows through the console prompt a text of `prefix`, `separator` and the message, each null read as empty. With an
// `argument`, a message that holds a conversion ("%s", its one) is formatted with it; otherwise it stands as it is.
// Result: the prompt's answer; 0 when no buffer could be had for the text.
int ShowFormattedPromptText(const char *format, const char *title, const char *argument, HWND owner, UINT style,
                            const char *prefix, const char *separator);
// The same with the message and title loaded by id from `module` (0: the program's own messages) first.
int ShowFormattedPrompt(HMODULE module, UINT messageId, UINT titleId, const char *argument, HWND owner, UINT style,
                        const char *prefix, const char *separator);

// The seven words by which the drive check says how far it came.
struct CheckResult {
  int32_t words[7];
};
// Set the record to 0, -1, -1, 0, 0, 0, 0 (nothing checked yet) or to 0, 1, 1, 0, 0, 0, 0 (passed). Result: the
// record; a null record is returned as it is.
CheckResult *ResetCheckResult(CheckResult *record);
CheckResult *SetCheckResultOk(CheckResult *record);

// The tidy-ups of the run's clean-up. Each frees what it holds and may be called with nothing to do, and twice; in a
// run on local paths none of them finds anything.
// The kept program texts of the dialog tool's program runner, which nothing in this tool fills.
void ReleaseProgramTexts(void);
// The top of the stack of network folders that a walk entered, which nothing in this tool pushes.
void PopNetworkFolder(void);
// The kept network text and the whole stack of network folders.
void ReleaseNetworkList(void);
