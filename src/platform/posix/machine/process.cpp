// The small process-wide facts of the Linux backend: last error, module handle, start-up.
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "platform/posix/files/drive_table.h"
#include "platform/posix/text/charset.h"
#include "platform/winapi.h"

namespace {
DWORD lastError = 0;
}  // namespace

DWORD GetLastError(void) { return lastError; }
void SetLastError(DWORD code) { lastError = code; }

// Any non-zero value will do: on Linux nothing is loaded through a module handle.
HMODULE GetModuleHandleA(LPCSTR) { return reinterpret_cast<HMODULE>(0x400000); }
HWND GetDesktopWindow(void) { return nullptr; }
SHORT GetAsyncKeyState(int) { return 0; }

[[noreturn]] void ExitOnInvalidParameter(void) { _exit(0x17); }

void PlatformStartup(int *argc, char ***argv) {
  ChooseLocaleCharset();
  static std::vector<std::string> texts;
  static std::vector<char *> pointers;
  texts.clear();
  for (int i = 0; i < *argc; ++i) {
    std::string arg = (*argv)[i];
    struct stat info;
    std::string drivePath;
    // A folder named the Linux way is handed over in the drive form that the program understands; its name is taken
    // as it stands on disk, in UTF-8.
    if (i > 0 && !arg.empty() && arg[0] == '/' && stat(arg.c_str(), &info) == 0 && S_ISDIR(info.st_mode) &&
        LinuxPathToDrivePath(arg, &drivePath))
      texts.push_back(Utf8ToCp932(drivePath));
    else
      texts.push_back(LocaleToCp932(arg));
  }
  pointers.clear();
  for (std::string &text : texts) pointers.push_back(&text[0]);
  pointers.push_back(nullptr);
  *argv = pointers.data();
}
