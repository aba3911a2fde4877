// SHGetFileInfoA on Linux: the executable type of a file, read from its DOS header and the header that e_lfanew
// points at; and the icon location of a file, for a shortcut read by our .lnk reader.
// This header is reached through winapi.h, which declares the types it uses.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/files/path_resolver.h"
#include "platform/posix/lnk/lnk_codec.h"
#include "platform/posix/lnk/lnk_text.h"
#include "platform/posix/shell/lnk_file_access.h"
#include "platform/winapi.h"

namespace {

const DWORD kPortable = 0x4550;  // "PE" as a little-endian word
const DWORD kNew = 0x454E;       // "NE"
const DWORD kDos = 0x5A4D;       // "MZ"

// Offsets in the headers (IMAGE_DOS_HEADER, IMAGE_NT_HEADERS, IMAGE_OS2_HEADER).
const size_t kDosHeaderSize = 0x40;
const size_t kRelocationTable = 0x18;  // e_lfarlc: at 0x40 or above a later format follows
const size_t kNewHeaderOffset = 0x3C;  // e_lfanew
const size_t kOptionalHeader = 24;     // behind "PE\0\0" and the file header
const size_t kSubsystemVersion = kOptionalHeader + 48;
const size_t kSubsystem = kOptionalHeader + 68;
const size_t kNewTargetSystem = 0x36;  // ne_exetyp: 2 is Windows
const size_t kNewExpectedVersion = 0x3E;
const size_t kLaterHeaderSize = kSubsystem + 2;
const unsigned kWindowedSubsystem = 2;

unsigned Word(const unsigned char *p) { return p[0] | (p[1] << 8); }
DWORD DoubleWord(const unsigned char *p) { return Word(p) | (static_cast<DWORD>(Word(p + 2)) << 16); }

bool EndsInExtension(const char *path, const char *extension) {
  const char *dot = std::strrchr(path, '.');
  if (dot == nullptr || std::strchr(dot, '\\') != nullptr || std::strchr(dot, '/') != nullptr) return false;
  return lstrcmpiA(dot + 1, extension) == 0;
}

// Reads up to `size` bytes at `offset`. Result: the number read.
size_t ReadAt(int file, size_t offset, unsigned char *buffer, size_t size) {
  size_t got = 0;
  while (got < size) {
    ssize_t n = pread(file, buffer + got, size - got, static_cast<off_t>(offset + got));
    if (n <= 0) break;
    got += static_cast<size_t>(n);
  }
  return got;
}

// The type from the headers of an open file; `dosFallback` is the answer for a file that is no MZ image (a .com file
// is a DOS program whatever its bytes).
DWORD TypeFromHeaders(int file, DWORD dosFallback) {
  unsigned char dos[kDosHeaderSize];
  if (ReadAt(file, 0, dos, sizeof dos) < sizeof dos || dos[0] != 'M' || dos[1] != 'Z') return dosFallback;
  if (Word(dos + kRelocationTable) < kDosHeaderSize) return kDos;
  DWORD offset = DoubleWord(dos + kNewHeaderOffset);
  unsigned char later[kLaterHeaderSize];
  size_t got = ReadAt(file, offset, later, sizeof later);
  if (got >= 4 && std::memcmp(later, "PE\0\0", 4) == 0) {
    if (got < kLaterHeaderSize) return 0;
    if (Word(later + kSubsystem) != kWindowedSubsystem) return kPortable;
    unsigned major = Word(later + kSubsystemVersion), minor = Word(later + kSubsystemVersion + 2);
    return kPortable | ((major & 0xFF) << 24) | ((minor & 0xFF) << 16);
  }
  if (got >= 2 && later[0] == 'N' && later[1] == 'E') {
    if (got < kNewExpectedVersion + 2 || later[kNewTargetSystem] != 2) return 0;
    return kNew | (static_cast<DWORD>(Word(later + kNewExpectedVersion)) << 16);
  }
  return kDos;  // the DOS stub of some other format still runs as a DOS program
}

// The file that holds the icon of `path` and the icon's index: for a shortcut its stored icon location (environment
// names expanded when every one is set) and index; for any other file the file itself and 0. 0 for a path that is not
// there or a shortcut that cannot be read.
DWORD_PTR IconLocation(LPCSTR path, SHFILEINFOA *info) {
  DiskPath found;
  if (FindProgramPath(path, &found) != 0 || !found.exists) return 0;
  std::snprintf(info->szDisplayName, sizeof info->szDisplayName, "%s", path);
  info->iIcon = 0;
  if (!EndsInExtension(path, "lnk")) return 1;
  // A FIFO, a socket or a device by a shortcut's name is read as a damaged shortcut, and never opened.
  if (found.facts.isSpecial) return 0;
  std::vector<uint8_t> bytes;
  ShellLinkRecord record;
  if (ReadLinuxFile(found.linux, 16u << 20, &bytes) != 0 ||
      ParseShellLink(ByteSpan{bytes.data(), bytes.size()}, &record) != LnkError::kNone)
    return 0;
  EnvironmentLookup lookup = [](const std::u16string &name, std::u16string *value) {
    std::string text;
    if (!LookupEnvironmentVariable(Cp932FromUtf16(name), &text)) return false;
    *value = Utf16FromCp932(text);
    return true;
  };
  std::string location = Cp932FromUtf16(SelectIconLocation(record, lookup));
  std::snprintf(info->szDisplayName, sizeof info->szDisplayName, "%s", location.c_str());
  info->iIcon = record.header.iconIndex;
  return 1;
}

}  // namespace

DWORD_PTR SHGetFileInfoA(LPCSTR path, DWORD, SHFILEINFOA *info, UINT infoSize, UINT flags) {
  if (flags == SHGFI_ICONLOCATION && path != nullptr && info != nullptr && infoSize >= sizeof(SHFILEINFOA))
    return IconLocation(path, info);
  if (flags != SHGFI_EXETYPE || path == nullptr || *path == 0) return 0;
  DiskPath found;
  if (FindProgramPath(path, &found) != 0 || !found.exists || found.isRoot || found.facts.isDirectory ||
      found.facts.isSpecial)
    return 0;
  if (EndsInExtension(path, "bat") || EndsInExtension(path, "cmd")) return kPortable;
  // Not waiting on a FIFO that took the name's place since the resolver looked: it reads as no program.
  int file = open(found.linux.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (file < 0) return 0;
  DWORD type = TypeFromHeaders(file, EndsInExtension(path, "com") ? kDos : 0);
  close(file);
  return type;
}
