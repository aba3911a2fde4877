// SHGetFileInfoA on Linux: the program type from a file's header, the icon location from our .lnk reader.
#include "platform/posix/shell_info.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/lnk_codec.h"
#include "platform/posix/lnk_file_access.h"
#include "platform/posix/lnk_text.h"
#include "platform/posix/path_resolver.h"

namespace {

uint16_t Word(const std::vector<uint8_t> &bytes, size_t offset) {
  return offset + 2 <= bytes.size() ? static_cast<uint16_t>(bytes[offset] | (bytes[offset + 1] << 8)) : 0;
}

uint32_t Dword(const std::vector<uint8_t> &bytes, size_t offset) {
  return offset + 4 <= bytes.size() ? Word(bytes, offset) | (static_cast<uint32_t>(Word(bytes, offset + 2)) << 16) : 0;
}

// The first `limit` bytes of the file at a program path, or false when it is not a file that can be read.
bool ReadHead(const char *path, size_t limit, std::vector<uint8_t> *bytes, std::string *name) {
  DiskPath found;
  if (FindProgramPath(path, &found) != 0 || !found.exists || found.facts.attributes & 0x10) return false;
  FILE *file = std::fopen(found.linux.c_str(), "rb");
  if (file == nullptr) return false;
  bytes->resize(limit);
  size_t read = std::fread(bytes->data(), 1, limit, file);
  std::fclose(file);
  bytes->resize(read);
  *name = found.diskName;
  return true;
}

bool HasExtension(const std::string &name, const char *extension) {
  size_t dot = name.rfind('.');
  if (dot == std::string::npos) return false;
  std::string have = name.substr(dot + 1);
  if (have.size() != std::strlen(extension)) return false;
  for (size_t i = 0; i < have.size(); ++i)
    if ((have[i] | 0x20) != extension[i]) return false;
  return true;
}

uintptr_t ExecutableType(const char *path) {
  std::vector<uint8_t> bytes;
  std::string name;
  if (!ReadHead(path, 4096, &bytes, &name)) return 0;
  const uintptr_t kMz = 0x5A4D, kPe = 0x4550, kNe = 0x454E;
  if (HasExtension(name, "bat") || HasExtension(name, "com")) return kMz;
  if (!HasExtension(name, "exe") || Word(bytes, 0) != kMz) return 0;
  uint32_t header = Dword(bytes, 0x3C);
  if (header != 0 && header + 0x60 <= bytes.size()) {
    if (Dword(bytes, header) == 0x00004550u) {
      // The optional header follows the 20-byte file header: its subsystem and subsystem version tell a Windows
      // program (2, GUI) from a console one (3).
      size_t optional = header + 24;
      uint16_t subsystem = Word(bytes, optional + 68);
      uint16_t major = Word(bytes, optional + 48);
      uint16_t minor = Word(bytes, optional + 50);
      if (subsystem == 2) return kPe | (static_cast<uintptr_t>((major << 8) | (minor & 0xFF)) << 16);
      if (subsystem == 3) return kPe;
      return 0;
    }
    if (Word(bytes, header) == kNe) {
      uint16_t version = Word(bytes, header + 0x3E);
      return kNe | (static_cast<uintptr_t>(version) << 16);
    }
  }
  return kMz;
}

uintptr_t IconLocation(const char *path, SHFILEINFOA *info) {
  DiskPath found;
  if (FindProgramPath(path, &found) != 0 || !found.exists) return 0;
  std::snprintf(info->szDisplayName, sizeof info->szDisplayName, "%s", path);
  info->iIcon = 0;
  if (!HasExtension(found.diskName, "lnk")) return 1;
  std::vector<uint8_t> bytes;
  ShellLinkRecord record;
  if (ReadShortcutFile(path, 16u << 20, &bytes) != 0 ||
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

uintptr_t SHGetFileInfoA(const char *path, DWORD, SHFILEINFOA *info, unsigned size, unsigned flags) {
  if (path == nullptr) return 0;
  if (flags & SHGFI_EXETYPE) return ExecutableType(path);
  if ((flags & SHGFI_ICONLOCATION) && info != nullptr && size >= sizeof(SHFILEINFOA)) return IconLocation(path, info);
  return 0;
}
