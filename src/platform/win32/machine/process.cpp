// The process-wide facts of the Windows side: how the process ends on an invalid parameter, and its start-up, which
// has nothing to prepare since the console and the arguments are Shift-JIS already.
#include "platform/winapi.h"

[[noreturn]] void ExitOnInvalidParameter(void) {
  TerminateProcess(GetCurrentProcess(), 0xC0000417);
  for (;;) {
  }
}

void PlatformStartup(int *, char ***) {}

// Windows takes a relative folder as the user's own business: the folder checks refuse it, having no drive head.
const char *PlatformFolderArgument(const char *text) { return text; }
