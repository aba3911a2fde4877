// Private profile files (".ini") of the Linux backend: GetPrivateProfileStringA over a reader of our own. Windows
// first looks for a profile file's name under the registry's IniFileMapping key; this backend's registry is empty, so
// every read goes to the file itself. The file's bytes are parsed apart from reading it, and in Shift-JIS: a value
// comes back in the file's own bytes.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/files/error_codes.h"
#include "platform/posix/files/path_resolver.h"
#include "platform/posix/text/path_names.h"
#include "platform/winapi.h"

namespace {

// A larger file is not read (its reads give the default, with ERROR_NOT_ENOUGH_MEMORY): no settings file comes near
// it, and reading a damaged or wrong one whole must not exhaust the memory of the run.
const size_t kLargestProfile = 16u << 20;

struct ProfileKey {
  std::string name;
  std::string value;
};

struct ProfileSection {
  std::string name;
  std::vector<ProfileKey> keys;
};

bool IsLeadByte(unsigned char c) { return (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC); }

// The blanks that Windows trims around lines, names and values: the ASCII white space and Ctrl-Z, the old end-of-file
// mark. None of them can be the second byte of a Shift-JIS character (those start at 0x40), so the text may be
// trimmed from either end without looking at its characters.
bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r') || c == '\x1A'; }

// The bytes from `start` to `stop` without the blanks at both ends, and up to a 0 byte if one is there: a name or
// value ends at the first 0, as the C string that Windows keeps it in ends there.
std::string Trimmed(const std::string &text, size_t start, size_t stop) {
  while (start < stop && IsBlank(text[start])) ++start;
  while (stop > start && IsBlank(text[stop - 1])) --stop;
  stop = static_cast<size_t>(std::find(text.begin() + start, text.begin() + stop, '\0') - text.begin());
  return text.substr(start, stop - start);
}

// The last "]" from `start` to `stop` that is a character of its own, not the second byte of a double-byte character
// (as in 0x83 0x5D); `stop` when there is none.
size_t LastCloseBracket(const std::string &text, size_t start, size_t stop) {
  size_t found = stop;
  for (size_t i = start; i < stop; ++i) {
    if (IsLeadByte(static_cast<unsigned char>(text[i]))) {
      ++i;
    } else if (text[i] == ']') {
      found = i;
    }
  }
  return found;
}

// Whether two names are the same to Windows' profile reader: the same characters, ASCII letters without case. The
// second byte of a double-byte character is compared as it is (0x83 0x41 and 0x83 0x61 are two characters).
bool SameName(const std::string &a, const std::string &b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    unsigned char x = static_cast<unsigned char>(a[i]), y = static_cast<unsigned char>(b[i]);
    if (IsLeadByte(x) && i + 1 < a.size()) {
      if (x != y || a[i + 1] != b[i + 1]) return false;
      ++i;
      continue;
    }
    if (x >= 'a' && x <= 'z') x = static_cast<unsigned char>(x - 'a' + 'A');
    if (y >= 'a' && y <= 'z') y = static_cast<unsigned char>(y - 'a' + 'A');
    if (x != y) return false;
  }
  return true;
}

// The sections of a profile file's text (Shift-JIS). Lines end at CR or LF. A line "[name]" (blanks around it and
// around the name trimmed; anything behind the last "]" ignored) starts a section; "name=value" is a key of the
// section it stands in, its name and value trimmed. Lines before the first section belong to none and are not
// read. Not keys: empty lines, lines starting with ";" and lines without "=". A "[" line without a "]" is a line like
// any other. Nothing in the text can make this fail: whatever is not one of these forms is passed over.
std::vector<ProfileSection> ParseProfile(const std::string &text) {
  std::vector<ProfileSection> sections;
  size_t position = 0;
  while (position < text.size()) {
    size_t end = text.find_first_of("\r\n", position);
    if (end == std::string::npos) end = text.size();
    size_t start = position, stop = end;
    position = end + 1;
    while (start < stop && IsBlank(text[start])) ++start;
    while (stop > start && IsBlank(text[stop - 1])) --stop;
    if (start == stop || text[start] == ';') continue;
    if (text[start] == '[') {
      size_t close = LastCloseBracket(text, start + 1, stop);
      if (close < stop) {
        sections.push_back({Trimmed(text, start + 1, close), {}});
        continue;
      }
    }
    // Searched within the line only: a search to the end of the text for each line would make a long file slow.
    size_t equals = static_cast<size_t>(std::find(text.begin() + start, text.begin() + stop, '=') - text.begin());
    if (sections.empty() || equals == stop) continue;
    sections.back().keys.push_back({Trimmed(text, start, equals), Trimmed(text, equals + 1, stop)});
  }
  return sections;
}

// A file's text in Shift-JIS. A file that starts with the UTF-16LE byte order mark is UTF-16 and is converted, as
// Windows reads such a file for an "A" call; its odd last byte, if any, is dropped. Every other file is taken as
// Shift-JIS bytes, one that starts with the UTF-8 byte order mark too: Windows does not take that mark for one, so its
// three bytes stay at the head of the first line, where they spoil a section that starts there.
std::string ProfileText(const std::string &bytes) {
  if (bytes.size() < 2 || bytes[0] != '\xFF' || bytes[1] != '\xFE') return bytes;
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (size_t i = 2; i + 1 < bytes.size(); i += 2)
    units.push_back(
        static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) | (static_cast<unsigned char>(bytes[i + 1]) << 8)));
  return Utf16ToProgram(units);
}

// A file name with no folder in it ("x.ini", not "C:x.ini", ".\x.ini" or "sub\x.ini"), which Windows looks for in the
// Windows folder.
bool IsBareName(const std::string &name) {
  if (name.size() >= 2 && name[1] == ':') return false;
  for (size_t i = 0; i < name.size(); ++i) {
    if (IsLeadByte(static_cast<unsigned char>(name[i]))) {
      ++i;
    } else if (name[i] == '\\' || name[i] == '/') {
      return false;
    }
  }
  return true;
}

// Reads a regular file whole, without waiting on a pipe or a device: the name is opened without blocking and only
// read when it is a regular file. Result: 0, or the error for the last error.
DWORD ReadRegularFile(const std::string &linuxPath, std::string *bytes) {
  int fd = open(linuxPath.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  if (fd < 0) return errno == ENOENT ? static_cast<DWORD>(ERROR_FILE_NOT_FOUND) : ErrorFromErrno(errno);
  struct stat info;
  DWORD error = 0;
  if (fstat(fd, &info) != 0) {
    error = ErrorFromErrno(errno);
  } else if (!S_ISREG(info.st_mode)) {
    error = ERROR_ACCESS_DENIED;
  } else if (static_cast<uint64_t>(info.st_size) > kLargestProfile) {
    error = ERROR_NOT_ENOUGH_MEMORY;
  }
  char chunk[65536];
  while (error == 0) {
    ssize_t got = read(fd, chunk, sizeof chunk);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      error = ErrorFromErrno(errno);
    } else if (got == 0) {
      break;
    } else if (bytes->size() + static_cast<size_t>(got) > kLargestProfile) {
      error = ERROR_NOT_ENOUGH_MEMORY;  // it grew while it was read
    } else {
      bytes->append(chunk, static_cast<size_t>(got));
    }
  }
  close(fd);
  return error;
}

// The text of the profile file named as the program names it (null: "win.ini"). A bare name is looked for in the
// Windows folder that GetWindowsDirectoryA gives (see files.h); without one there is no such file. Result: false,
// with the last error set as opening the file sets it, when there is no file to read.
bool ReadProfileFile(LPCSTR fileName, std::string *text) {
  std::string name = fileName ? fileName : "win.ini";
  if (IsBareName(name)) {
    char windows[MAX_PATH];
    UINT length = GetWindowsDirectoryA(windows, sizeof windows);
    if (length == 0 || length >= sizeof windows) return false;
    bool separated = windows[length - 1] == '\\';
    name = std::string(windows, length) + (separated ? "" : "\\") + name;
  }
  DiskPath path;
  DWORD error = FindProgramPath(name.c_str(), &path);
  if (error == 0 && !path.exists) error = ERROR_FILE_NOT_FOUND;
  if (error == 0 && path.facts.isDirectory) error = ERROR_ACCESS_DENIED;
  std::string bytes;
  if (error == 0) error = ReadRegularFile(path.linux, &bytes);
  if (error != 0) {
    SetLastError(error);
    return false;
  }
  *text = ProfileText(bytes);
  return true;
}

// Windows' rule for one text: cut to size - 1 bytes (a double-byte character may lose its second byte). Result: the
// bytes copied.
DWORD CopyValue(const std::string &text, LPSTR returned, DWORD size) {
  size_t length = text.size() < size ? text.size() : size - 1;
  std::memcpy(returned, text.data(), length);
  returned[length] = 0;
  return static_cast<DWORD>(length);
}

// Windows' rule for a list: each name ends in a 0 and the list in a second one. The list is whole only when it is
// shorter than the buffer (a list that fills it exactly counts as cut, as on Windows); otherwise its first size - 2
// bytes come, then the two zeros, and the result is size - 2. A 1-byte buffer gets one 0.
DWORD CopyList(const std::vector<std::string> &names, LPSTR returned, DWORD size) {
  std::string list;
  for (const std::string &name : names) {
    list += name;
    list += '\0';
  }
  list += '\0';
  if (list.size() < size) {
    std::memcpy(returned, list.data(), list.size());
    return static_cast<DWORD>(list.size() - 1);
  }
  if (size < 2) {
    returned[0] = 0;
    return 0;
  }
  std::memcpy(returned, list.data(), size - 2);
  returned[size - 2] = 0;
  returned[size - 1] = 0;
  return size - 2;
}

// A value between a pair of the same quotes ('"' or "'") loses them.
std::string Unquoted(const std::string &value) {
  bool quoted = value.size() >= 2 && (value[0] == '"' || value[0] == '\'') && value.back() == value[0];
  return quoted ? value.substr(1, value.size() - 2) : value;
}

}  // namespace

DWORD GetPrivateProfileStringA(LPCSTR appName, LPCSTR keyName, LPCSTR defaultText, LPSTR returned, DWORD size,
                               LPCSTR fileName) {
  if (returned == nullptr || size == 0) return 0;
  std::string fallback = defaultText ? defaultText : "";
  while (!fallback.empty() && fallback.back() == ' ') fallback.pop_back();
  std::string text;
  bool found = ReadProfileFile(fileName, &text);
  std::vector<ProfileSection> sections;
  if (found) sections = ParseProfile(text);
  std::vector<std::string> names;
  if (appName == nullptr) {
    // The sections are listed even when there is no file: an empty list, never the default.
    for (const ProfileSection &section : sections)
      if (!section.name.empty()) names.push_back(section.name);
    return CopyList(names, returned, size);
  }
  // The caller's names are trimmed as the file's are; only the first section of a name is read.
  std::string wantedSection = Trimmed(appName, 0, std::strlen(appName));
  const ProfileSection *section = nullptr;
  for (const ProfileSection &candidate : sections) {
    if (SameName(candidate.name, wantedSection)) {
      section = &candidate;
      break;
    }
  }
  if (section == nullptr) return CopyValue(fallback, returned, size);
  if (keyName == nullptr) {
    for (const ProfileKey &key : section->keys)
      if (!key.name.empty()) names.push_back(key.name);
    return names.empty() ? CopyValue(fallback, returned, size) : CopyList(names, returned, size);
  }
  std::string wantedKey = Trimmed(keyName, 0, std::strlen(keyName));
  for (const ProfileKey &key : section->keys)
    if (SameName(key.name, wantedKey)) return CopyValue(Unquoted(key.value), returned, size);
  return CopyValue(fallback, returned, size);
}
