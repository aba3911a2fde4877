// Directory entries in Windows' terms for the Linux backend, and FileTimeToLocalFileTime.
#include "platform/posix/files/file_info.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

namespace {

// Seconds from 1601-01-01 to 1970-01-01.
const int64_t kEpochDifference = 11644473600LL;

uint64_t Ticks(const struct statx_timestamp &time) {
  int64_t seconds = time.tv_sec + kEpochDifference;
  if (seconds < 0) return 0;
  return static_cast<uint64_t>(seconds) * 10000000u + time.tv_nsec / 100;
}

// The process's user and group do not change while the program runs; asking once saves a system call for each entry
// whose facts are read, several per shortcut.
uid_t EffectiveUser() {
  static const uid_t user = geteuid();
  return user;
}

bool InGroup(gid_t group) {
  static const gid_t effectiveGroup = getegid();
  if (group == effectiveGroup) return true;
  // The supplementary groups do not change while the program runs.
  static std::vector<gid_t> groups = [] {
    int count = getgroups(0, nullptr);
    std::vector<gid_t> list(count > 0 ? count : 0);
    if (count > 0 && getgroups(count, list.data()) < 0) list.clear();
    return list;
  }();
  for (gid_t member : groups)
    if (member == group) return true;
  return false;
}

// Read-only is decided by the write bit that applies to this process: the owner's, the group's or the others'. The
// superuser may write anything, so for it the entry counts as read-only only when it has no write bit at all, which is
// what SetFileAttributesA makes of FILE_ATTRIBUTE_READONLY. Reading the bits costs no call per entry; access control
// lists and read-only mounts are not looked at.
bool ReadOnly(const struct statx &info) {
  uid_t user = EffectiveUser();
  if (user == 0) return (info.stx_mode & 0222) == 0;
  if (info.stx_uid == user) return (info.stx_mode & S_IWUSR) == 0;
  if (InGroup(info.stx_gid)) return (info.stx_mode & S_IWGRP) == 0;
  return (info.stx_mode & S_IWOTH) == 0;
}

// Whether a path fails for the number of links on the way rather than for its last link: true when the link can be
// followed from its own folder, or when that folder cannot be reached for too many links.
bool TooManyLinksOnTheWay(const char *path) {
  const char *slash = std::strrchr(path, '/');
  if (!slash) return false;
  std::string folderPath = slash == path ? "/" : std::string(path, static_cast<size_t>(slash - path));
  int folder = open(folderPath.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return errno == ELOOP;
  struct stat info;
  bool followed = fstatat(folder, slash + 1, &info, 0) == 0;
  close(folder);
  return followed;
}

void TakeFacts(const struct statx &info, EntryFacts *facts) {
  facts->isDirectory = S_ISDIR(info.stx_mode);
  facts->isSpecial = !S_ISREG(info.stx_mode) && !S_ISDIR(info.stx_mode) && !S_ISLNK(info.stx_mode);
  facts->readOnly = ReadOnly(info);
  facts->mode = info.stx_mode & 07777;
  facts->size = facts->isDirectory ? 0 : info.stx_size;
  facts->accessTime = Ticks(info.stx_atime);
  facts->writeTime = Ticks(info.stx_mtime);
  // Where the file system keeps no birth time, the last write is the earliest time known.
  facts->creationTime = (info.stx_mask & STATX_BTIME) ? Ticks(info.stx_btime) : facts->writeTime;
}

}  // namespace

int ReadEntryFacts(int folder, const char *name, EntryFacts *facts) {
  *facts = EntryFacts();
  const unsigned int mask = STATX_BASIC_STATS | STATX_BTIME;
  struct statx info;
  if (statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, mask, &info) != 0) return errno;
  if (S_ISLNK(info.stx_mode)) {
    facts->isLink = true;
    struct statx target;
    if (statx(folder, name, AT_NO_AUTOMOUNT, mask, &target) == 0) {
      TakeFacts(target, facts);
      return 0;
    }
    // Too many links on the way: Linux follows at most 40 in one path (Windows at most 63 reparse points), and the
    // path as a whole cannot be resolved, which is not the same as a link to nothing.
    if (errno == ELOOP && folder == AT_FDCWD && TooManyLinksOnTheWay(name)) return ELOOP;
    // A link to nothing, or one of a loop of links, stands as a file of its own.
    facts->dangling = true;
  }
  TakeFacts(info, facts);
  if (facts->dangling) facts->size = 0;
  return 0;
}

DWORD AttributesOf(const EntryFacts &facts, const std::string &diskName) {
  DWORD attributes = facts.isDirectory ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE;
  if (facts.readOnly) attributes |= FILE_ATTRIBUTE_READONLY;
  if (!diskName.empty() && diskName[0] == '.' && diskName != "." && diskName != "..")
    attributes |= FILE_ATTRIBUTE_HIDDEN;
  if (facts.isLink) attributes |= FILE_ATTRIBUTE_REPARSE_POINT;
  return attributes;
}

void FillFindData(const EntryFacts &facts, DWORD attributes, const std::string &programName, WIN32_FIND_DATAA *data) {
  std::memset(data, 0, sizeof *data);
  data->dwFileAttributes = attributes;
  data->ftCreationTime = ToFileTime(facts.creationTime);
  data->ftLastAccessTime = ToFileTime(facts.accessTime);
  data->ftLastWriteTime = ToFileTime(facts.writeTime);
  data->nFileSizeHigh = static_cast<DWORD>(facts.size >> 32);
  data->nFileSizeLow = static_cast<DWORD>(facts.size);
  if (attributes & FILE_ATTRIBUTE_REPARSE_POINT) data->dwReserved0 = IO_REPARSE_TAG_SYMLINK;
  // A Shift-JIS name can be longer than MAX_PATH-1 bytes (255 double-byte characters); it is cut, never split.
  size_t length = 0;
  while (length < programName.size()) {
    unsigned char c = static_cast<unsigned char>(programName[length]);
    size_t step = ((c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC)) ? 2 : 1;
    if (length + step > sizeof data->cFileName - 1) break;
    length += step;
  }
  std::memcpy(data->cFileName, programName.data(), length);
}

FILETIME ToFileTime(uint64_t ticks) {
  FILETIME time;
  time.dwLowDateTime = static_cast<DWORD>(ticks);
  time.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
  return time;
}

uint64_t FromFileTime(const FILETIME &time) {
  return (static_cast<uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

// Windows turns a file time into local time by the time zone's bias of this moment, daylight saving included, not by
// the bias that held at the time itself; so does this.
BOOL FileTimeToLocalFileTime(const FILETIME *fileTime, LPFILETIME localFileTime) {
  if (!fileTime || !localFileTime) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  time_t now = time(nullptr);
  struct tm local;
  localtime_r(&now, &local);
  int64_t bias = static_cast<int64_t>(local.tm_gmtoff) * 10000000;
  uint64_t ticks = FromFileTime(*fileTime);
  // File times are at most 0x7FFFFFFFFFFFFFFF; a result outside 0 to that is refused.
  if (ticks > 0x7FFFFFFFFFFFFFFFull || (bias < 0 && ticks < static_cast<uint64_t>(-bias)) ||
      (bias > 0 && ticks > 0x7FFFFFFFFFFFFFFFull - static_cast<uint64_t>(bias))) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  *localFileTime = ToFileTime(static_cast<uint64_t>(static_cast<int64_t>(ticks) + bias));
  return TRUE;
}
