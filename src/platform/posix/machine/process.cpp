// The small process-wide facts of the Linux backend: last error, module handle, start-up.
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <string>
#include <vector>

#include "platform/posix/files/drive_table.h"
#include "platform/posix/files/share_table.h"
#include "platform/posix/text/charset.h"
#include "platform/winapi.h"

namespace {

DWORD lastError = 0;

// `name` (joined to the current folder when it is relative) with "." and ".." parts taken away by the text alone, so
// that a folder reached through a symbolic link keeps the name it was given. Empty when the current folder cannot be
// had.
std::string AbsoluteLinuxPath(const std::string &name) {
  std::string whole = name;
  if (name[0] != '/') {
    char cwd[PATH_MAX];
    if (getcwd(cwd, sizeof cwd) == nullptr) return std::string();
    whole = std::string(cwd) + "/" + name;
  }
  std::vector<std::string> parts;
  size_t start = 0;
  while (start <= whole.size()) {
    size_t slash = whole.find('/', start);
    if (slash == std::string::npos) slash = whole.size();
    std::string part = whole.substr(start, slash - start);
    if (part == "..") {
      if (!parts.empty()) parts.pop_back();
    } else if (!part.empty() && part != ".") {
      parts.push_back(part);
    }
    start = slash + 1;
  }
  std::string path;
  for (const std::string &part : parts) path += "/" + part;
  return path.empty() ? "/" : path;
}

// The Windows name of an absolute Linux folder: its drive form by the longest mapped root, or, where no drive holds
// it, its UNC form by the mapped share that holds it (the name Windows would have for a folder on a share that has no
// drive letter). Result: false when neither holds it.
bool WindowsFormOf(const std::string &linuxPath, std::string *windowsPath) {
  return LinuxPathToDrivePath(linuxPath, windowsPath) || LinuxPathToSharePath(linuxPath, windowsPath);
}

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
    // A folder named the Linux way is handed over in the drive form that the program understands (or the UNC form
    // where only a share holds it); its name is taken as it stands on disk, in UTF-8.
    if (i > 0 && !arg.empty() && arg[0] == '/' && stat(arg.c_str(), &info) == 0 && S_ISDIR(info.st_mode) &&
        WindowsFormOf(arg, &drivePath))
      texts.push_back(Utf8ToCp932(drivePath));
    else
      texts.push_back(LocaleToCp932(arg));
  }
  pointers.clear();
  for (std::string &text : texts) pointers.push_back(&text[0]);
  pointers.push_back(nullptr);
  *argv = pointers.data();
}

const char *PlatformFolderArgument(const char *text) {
  static std::string converted;
  if (text == nullptr || *text == 0) return text;
  // The name as the command line gave it, which is also its spelling on disk.
  std::string name = Cp932ToLocale(text);
  // A backslash or a drive colon makes it a Windows path. An absolute folder of the command line was converted at
  // start-up already; one that reaches here came from the saved settings or a typed line.
  if (name.find('\\') != std::string::npos || name.find(':') != std::string::npos) return text;
  struct stat info;
  if (stat(name.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) return text;
  std::string drivePath;
  std::string absolute = AbsoluteLinuxPath(name);
  if (absolute.empty() || !WindowsFormOf(absolute, &drivePath)) return text;
  converted = Utf8ToCp932(drivePath);
  return converted.c_str();
}
