// Paths and folders for the Linux backend: the current folder, full paths, the search path, the Windows and system
// folders, and environment variables.
#include <strings.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/files/drive_table.h"
#include "platform/posix/files/error_codes.h"
#include "platform/posix/files/fault_table.h"
#include "platform/posix/files/path_resolver.h"
#include "platform/posix/text/charset.h"
#include "platform/posix/text/path_names.h"
#include "platform/winapi.h"

extern char **environ;

namespace {

// Windows' rule for the string operations: the length when the buffer holds the text and its terminator, otherwise the
// size it would take, terminator included, with the buffer left alone.
DWORD CopyOut(const std::string &text, LPSTR buffer, DWORD size) {
  DWORD length = static_cast<DWORD>(text.size());
  if (buffer && size > length) {
    std::memcpy(buffer, text.c_str(), length + 1);
    return length;
  }
  return length + 1;
}

// A drive-form folder (UTF-16) for a Linux folder, if a drive holds it.
bool DriveFormOf(const std::string &linuxFolder, std::u16string *folder) {
  std::string drivePath;
  if (linuxFolder.empty() || linuxFolder[0] != '/' || !LinuxPathToDrivePath(linuxFolder, &drivePath)) return false;
  *folder = Utf8ToUtf16(drivePath);
  return true;
}

// The Windows folder: the one that windir (or SystemRoot) names, full, when it names one in drive form, as a user
// or a test may choose; otherwise C:\windows when drive C is mapped, where a Wine prefix keeps it; otherwise none.
std::u16string WindowsFolder() {
  static const char *const kNames[] = {"windir", "SystemRoot"};
  for (const char *name : kNames) {
    char value[MAX_PATH + 1];
    DWORD length = GetEnvironmentVariableA(name, value, sizeof value);
    if (length == 0 || length >= sizeof value) continue;
    std::u16string given = ProgramToUtf16(value), full;
    bool drivePath = given.size() >= 3 && given[1] == u':' && (given[2] == u'\\' || given[2] == u'/');
    if (drivePath && MakeFullPath(given, &full)) {
      if (full.size() > 3 && full.back() == u'\\') full.pop_back();
      return full;
    }
  }
  if (!DriveRootOf(u'C').empty()) return u"C:\\windows";
  return std::u16string();
}

UINT FolderOut(const std::u16string &folder, LPSTR buffer, UINT size) {
  if (folder.empty()) {
    if (buffer && size > 0) buffer[0] = 0;
    SetLastError(ERROR_PATH_NOT_FOUND);
    return 0;
  }
  return CopyOut(Utf16ToProgram(folder), buffer, size);
}

std::u16string SystemFolder() {
  std::u16string windows = WindowsFolder();
  if (windows.empty()) return windows;
  return windows + (windows.back() == u'\\' ? u"system32" : u"\\system32");
}

// The folders that SearchPathA looks in when it is given none, in Windows' order with the safe search mode that is its
// default: the program's folder, the system folder, the Windows folder, the current folder, then PATH.
std::vector<std::u16string> DefaultSearchFolders() {
  std::vector<std::u16string> folders;
  std::u16string folder;
  std::vector<char> exe(4096);
  ssize_t length = readlink("/proc/self/exe", exe.data(), exe.size() - 1);
  if (length > 0) {
    std::string program(exe.data(), static_cast<size_t>(length));
    size_t slash = program.rfind('/');
    if (slash != std::string::npos && DriveFormOf(slash == 0 ? "/" : program.substr(0, slash), &folder))
      folders.push_back(folder);
  }
  std::u16string system = SystemFolder();
  if (!system.empty()) folders.push_back(system);
  std::u16string windows = WindowsFolder();
  if (!windows.empty()) folders.push_back(windows);
  folders.push_back(CurrentFolder());
  const char *path = std::getenv("PATH");
  std::string list = path ? path : "";
  size_t start = 0;
  while (start < list.size()) {
    size_t end = list.find(':', start);
    if (end == std::string::npos) end = list.size();
    if (DriveFormOf(list.substr(start, end - start), &folder)) folders.push_back(folder);
    start = end + 1;
  }
  return folders;
}

// Whether a name says where it is: with a drive, from a root, or from the current folder by ".\" or "..\".
bool NamesItsFolder(const std::u16string &name) {
  auto separator = [](char16_t c) { return c == u'\\' || c == u'/'; };
  if (name.size() >= 2 && name[1] == u':') return true;
  if (!name.empty() && separator(name[0])) return true;
  if (name.size() >= 2 && name[0] == u'.' && separator(name[1])) return true;
  return name.size() >= 3 && name[0] == u'.' && name[1] == u'.' && separator(name[2]);
}

}  // namespace

DWORD GetCurrentDirectoryA(DWORD bufferLength, LPSTR buffer) {
  return CopyOut(Utf16ToProgram(CurrentFolder()), buffer, bufferLength);
}

BOOL SetCurrentDirectoryA(LPCSTR pathName) {
  DWORD error;
  if (ForcedFailure(kFaultSetCurrentDirectory, &error)) {
    SetLastError(error);
    return FALSE;
  }
  DiskPath path;
  // SetCurrentDirectory(""): ERROR_INVALID_NAME, where most calls say ERROR_PATH_NOT_FOUND for an empty path.
  error = pathName && !*pathName ? static_cast<DWORD>(ERROR_INVALID_NAME) : FindProgramPath(pathName, &path);
  if (error == 0 && !path.exists) error = ERROR_FILE_NOT_FOUND;
  if (error == 0 && !path.facts.isDirectory) error = ERROR_DIRECTORY;
  if (error == 0 && chdir(path.linux.c_str()) != 0) error = ErrorFromErrno(errno);
  if (error != 0) {
    SetLastError(error);
    return FALSE;
  }
  SetCurrentFolder(path.full);
  return TRUE;
}

DWORD GetFullPathNameA(LPCSTR fileName, DWORD bufferLength, LPSTR buffer, LPSTR *filePart) {
  std::u16string given, full;
  DWORD error = ProgramPathToUtf16(fileName, &given);
  if (error != 0) {
    SetLastError(error == ERROR_PATH_NOT_FOUND ? static_cast<DWORD>(ERROR_INVALID_PARAMETER) : error);
    return 0;
  }
  if (!MakeFullPath(given, &full)) {
    SetLastError(ERROR_INVALID_NAME);
    return 0;
  }
  std::string text = Utf16ToProgram(full);
  DWORD result = CopyOut(text, buffer, bufferLength);
  if (filePart && result == text.size()) {
    size_t nameStart = Utf16ToProgram(full.substr(0, LastNameStart(full))).size();
    *filePart = nameStart < text.size() ? buffer + nameStart : nullptr;
  }
  return result;
}

DWORD SearchPathA(LPCSTR path, LPCSTR fileName, LPCSTR extension, DWORD bufferLength, LPSTR buffer, LPSTR *filePart) {
  DWORD error;
  if (ForcedFailure(kFaultSearchPath, &error)) {
    SetLastError(error);
    return 0;
  }
  if (!fileName || !*fileName) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  std::u16string name = ProgramToUtf16(fileName);
  if (extension && *extension) {
    size_t lastName = name.find_last_of(u"\\/");
    lastName = lastName == std::u16string::npos ? 0 : lastName + 1;
    if (name.find(u'.', lastName) == std::u16string::npos) name += ProgramToUtf16(extension);
  }
  std::vector<std::u16string> candidates;
  if (NamesItsFolder(name)) {
    candidates.push_back(name);
  } else {
    std::vector<std::u16string> folders;
    if (path) {
      folders = SplitNonEmpty(ProgramToUtf16(path), u';');
    } else {
      folders = DefaultSearchFolders();
    }
    for (const std::u16string &folder : folders) {
      bool separated = folder.back() == u'\\' || folder.back() == u'/';
      candidates.push_back(folder + (separated ? u"" : u"\\") + name);
    }
  }
  for (const std::u16string &candidate : candidates) {
    std::u16string full;
    DiskPath found;
    if (candidate.size() > MAX_PATH || !MakeFullPath(candidate, &full)) continue;
    if (FindOnDisk(full, &found) != 0 || !found.exists) continue;
    std::string text = Utf16ToProgram(full);
    DWORD result = CopyOut(text, buffer, bufferLength);
    if (filePart && result == text.size()) {
      size_t nameStart = Utf16ToProgram(full.substr(0, LastNameStart(full))).size();
      *filePart = nameStart < text.size() ? buffer + nameStart : nullptr;
    }
    return result;
  }
  SetLastError(ERROR_FILE_NOT_FOUND);
  return 0;
}

UINT GetWindowsDirectoryA(LPSTR buffer, UINT size) { return FolderOut(WindowsFolder(), buffer, size); }

UINT GetSystemDirectoryA(LPSTR buffer, UINT size) { return FolderOut(SystemFolder(), buffer, size); }

DWORD GetEnvironmentVariableA(LPCSTR name, LPSTR buffer, DWORD size) {
  if (!name || !*name) {
    SetLastError(ERROR_ENVVAR_NOT_FOUND);
    return 0;
  }
  std::string key = Cp932ToLocale(name);
  const char *value = key.find('=') == std::string::npos ? std::getenv(key.c_str()) : nullptr;
  // Windows' names are blind to case: "Path" finds PATH when no "Path" is set.
  for (char **entry = environ; !value && entry && *entry; ++entry) {
    const char *equals = std::strchr(*entry, '=');
    if (equals && static_cast<size_t>(equals - *entry) == key.size() &&
        strncasecmp(*entry, key.c_str(), key.size()) == 0)
      value = equals + 1;
  }
  if (!value) {
    SetLastError(ERROR_ENVVAR_NOT_FOUND);
    return 0;
  }
  // Success leaves the last error alone: a caller tells an empty value from a missing one by clearing it first.
  return CopyOut(LocaleToCp932(value), buffer, size);
}
