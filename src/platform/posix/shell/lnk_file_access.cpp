// The machine as the shell link object sees it, over POSIX: drive paths through the drive table, whole-file reads,
// replacement by rename, stat for a target's facts, the process environment.
#include "platform/posix/shell/lnk_file_access.h"

#include <errno.h>
#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/posix/files/drive_table.h"
#include "platform/posix/files/error_codes.h"
#include "platform/posix/files/fault_table.h"
#include "platform/posix/files/path_resolver.h"
#include "platform/posix/text/charset.h"
#include "platform/winapi.h"

extern char **environ;

namespace {

const uint64_t kUnixEpochAsFileTime = 116444736000000000ULL;  // 1970-01-01 in 100 ns since 1601-01-01

// The folder part and the name part of a Linux path.
void SplitLinuxPath(const std::string &path, std::string *folder, std::string *name) {
  size_t slash = path.rfind('/');
  *folder = slash == 0 ? "/" : path.substr(0, slash);
  *name = path.substr(slash + 1);
}

// Windows' read-only attribute belongs to the file, and holds for an administrator too: a file that nobody may write
// counts as read-only even for root, as does one that this process may not write.
bool IsReadOnly(const std::string &linuxPath, const struct stat &info) {
  return (info.st_mode & 0222) == 0 || access(linuxPath.c_str(), W_OK) != 0;
}

// The file calls of a load and a save, each through the fault table under the name of the call that Windows' shell
// link object makes for it, so that a test can make any one of them fail. A forced failure sets errno to EIO and
// leaves its Windows error in `*forced`, which the caller then reports in place of the mapped errno.
int OpenFile(const char *path, int flags, mode_t mode, DWORD *forced) {
  if (ForcedFailure(kFaultCreateFileW, forced)) {
    errno = EIO;
    return -1;
  }
  return open(path, flags | O_CLOEXEC, mode);
}

ssize_t ReadFromFile(int fd, void *buffer, size_t size, DWORD *forced) {
  if (ForcedFailure(kFaultReadFile, forced)) {
    errno = EIO;
    return -1;
  }
  return read(fd, buffer, size);
}

bool WriteAll(int fd, const std::vector<uint8_t> &bytes, DWORD *forced) {
  size_t done = 0;
  while (done < bytes.size()) {
    if (ForcedFailure(kFaultWriteFile, forced)) {
      errno = EIO;
      return false;
    }
    ssize_t written = write(fd, bytes.data() + done, bytes.size() - done);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    done += static_cast<size_t>(written);
  }
  return true;
}

// fstat of an open file; Windows' shell link object asks an open file for its size and kind the same way.
int StatFile(int fd, struct stat *info, DWORD *forced) {
  if (ForcedFailure(kFaultGetFileInformationByHandle, forced)) {
    errno = EIO;
    return -1;
  }
  return fstat(fd, info);
}

// fchmod of the new file, which Windows does through the handle as well.
int SetFileMode(int fd, mode_t mode, DWORD *forced) {
  if (ForcedFailure(kFaultSetFileInformationByHandle, forced)) {
    errno = EIO;
    return -1;
  }
  return fchmod(fd, mode);
}

int CloseFile(int fd, DWORD *forced) {
  int result = close(fd);
  if (result == 0 && ForcedFailure(kFaultCloseHandle, forced)) {
    errno = EIO;
    return -1;
  }
  return result;
}

int RenameFile(const char *from, const char *to, DWORD *forced) {
  if (ForcedFailure(kFaultMoveFileExW, forced)) {
    errno = EIO;
    return -1;
  }
  return rename(from, to);
}

// The Windows error of a failed call: the forced one, else the mapped errno.
DWORD FileError(int error, DWORD forced) { return forced != 0 ? forced : ErrorFromErrno(error); }

// The Linux path of a drive path, each name found without case as Windows finds it (a name that is not there is
// taken as written, so that a new file can be made). Without this, a target typed in another case than the disk's
// would read as missing, its shortcut would be saved with no target facts, and the engine would then take that
// shortcut for unreadable. `*special` tells whether the entry found is a FIFO, a socket or a device. Result: false for
// a path on no mapped drive.
bool LinuxPathOf(const std::string &drivePath, std::string *linuxPath, bool *special) {
  DiskPath found;
  *special = false;
  if (FindProgramPath(drivePath.c_str(), &found) == 0 && !found.linux.empty()) {
    *linuxPath = found.linux;
    *special = found.exists && found.facts.isSpecial;
    return true;
  }
  return DrivePathToLinuxPath(drivePath, linuxPath);
}

// The process's file mode mask. Nothing in the program changes it, so it is asked once (asking takes two calls).
mode_t ProcessUmask() {
  static const mode_t mask = [] {
    mode_t current = umask(0);
    umask(current);
    return current;
  }();
  return mask;
}

// Makes a new file beside the one being replaced, named after it with a leading dot (hidden on both systems) and a
// number, and opened for writing with `mode` (less the mask). Result: the descriptor, or -1 with errno set.
int MakeTemporary(const std::string &folder, const std::string &name, mode_t mode, std::string *temporary,
                  DWORD *forced) {
  static const unsigned process = static_cast<unsigned>(getpid());
  static unsigned counter = 0;
  for (int attempt = 0; attempt < 100; ++attempt) {
    char suffix[32];
    std::snprintf(suffix, sizeof suffix, ".%x-%x", process, counter++);
    *temporary = folder + "/." + name + suffix;
    int fd = OpenFile(temporary->c_str(), O_WRONLY | O_CREAT | O_EXCL, mode & 0777, forced);
    // A name left by an earlier run that was stopped in the middle of a save: the next number.
    if (fd >= 0 || errno != EEXIST) return fd;
  }
  errno = EEXIST;
  return -1;
}

}  // namespace

FileFacts QueryFileFacts(const std::string &drivePath) {
  FileFacts facts;
  // The resolver has read the entry's facts on its way (following a symbolic link, as stat does): asking again would
  // cost two more calls for every name of every target the writer records.
  DiskPath found;
  if (FindProgramPath(drivePath.c_str(), &found) != 0 || !found.exists || found.facts.dangling) return facts;
  const EntryFacts &entry = found.facts;
  facts.exists = true;
  facts.isFolder = found.isRoot || entry.isDirectory;
  facts.attributes = facts.isFolder ? 0x10 : 0x20;
  if (!facts.isFolder && entry.readOnly) facts.attributes |= 0x01;
  if (!found.diskName.empty() && found.diskName[0] == '.') facts.attributes |= 0x02;
  facts.size = facts.isFolder ? 0 : entry.size;
  facts.writeTime = entry.writeTime;
  facts.accessTime = entry.accessTime;
  facts.creationTime = entry.creationTime;
  return facts;
}

uint32_t ReadShortcutFile(const std::string &drivePath, size_t limit, std::vector<uint8_t> *bytes) {
  std::string linuxPath;
  bool special = false;
  if (!LinuxPathOf(drivePath, &linuxPath, &special)) return ERROR_PATH_NOT_FOUND;
  // The resolver has read the entry's facts on its way: a FIFO, a socket or a device is refused before anything opens
  // it, as opening a device can itself act on the device.
  if (special) return ERROR_ACCESS_DENIED;
  return ReadLinuxFile(linuxPath, limit, bytes);
}

uint32_t ReadLinuxFile(const std::string &linuxPath, size_t limit, std::vector<uint8_t> *bytes) {
  DWORD forced = 0;
  // Without O_NONBLOCK, opening a FIFO waits for a writer, for ever in a tree nobody writes to; a terminal would become
  // the process's own without O_NOCTTY. Neither flag changes how a regular file reads.
  int fd = OpenFile(linuxPath.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY, 0, &forced);
  if (fd < 0) {
    int error = errno;
    if (forced != 0 || error != ENOENT) return FileError(error, forced);
    std::string folder, name;
    SplitLinuxPath(linuxPath, &folder, &name);
    struct stat info;
    bool folderThere = stat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
    return folderThere ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
  }
  struct stat info;
  uint32_t result = ERROR_SUCCESS;
  if (StatFile(fd, &info, &forced) != 0) {
    result = FileError(errno, forced);
  } else if (!S_ISREG(info.st_mode)) {
    // A folder, or something that took the name's place after the resolver looked (a FIFO, a socket, a device): no
    // shortcut, and not read, as a read of it could wait for ever.
    result = ERROR_ACCESS_DENIED;
  } else if (static_cast<uint64_t>(info.st_size) > limit) {
    result = ERROR_NOT_ENOUGH_MEMORY;
  } else {
    // Room for the size that fstat gave and one byte more: a read that does not fill it has met the end of the file,
    // so a shortcut takes one read. A file that grew meanwhile is read on, up to the limit.
    size_t room = static_cast<size_t>(info.st_size) + 1;
    size_t done = 0;
    bytes->resize(room);
    for (;;) {
      ssize_t got = ReadFromFile(fd, bytes->data() + done, room - done, &forced);
      if (got < 0 && errno == EINTR && forced == 0) continue;
      if (got < 0) {
        result = FileError(errno, forced);
        break;
      }
      done += static_cast<size_t>(got);
      if (done > limit) {
        result = ERROR_NOT_ENOUGH_MEMORY;
        break;
      }
      if (got == 0 || done < room) break;
      room = std::min(room * 2, limit + 1);
      bytes->resize(room);
    }
    bytes->resize(result == ERROR_SUCCESS ? done : 0);
  }
  close(fd);
  return result;
}

uint32_t ReplaceShortcutFile(const std::string &drivePath, const std::vector<uint8_t> &bytes) {
  // The facts of the old file come from the resolver, which read them on its way to the name. A shortcut that is a
  // symbolic link stays one: the file it points to is the one replaced. A path the resolver cannot take is asked of
  // the file system as written.
  DiskPath found;
  std::string linuxPath;
  bool there = false, isFolder = false, readOnly = false;
  mode_t mode = 0;
  bool resolved = FindProgramPath(drivePath.c_str(), &found) == 0 && !found.linux.empty();
  if (resolved) {
    linuxPath = found.linux;
  } else if (!DrivePathToLinuxPath(drivePath, &linuxPath)) {
    return ERROR_PATH_NOT_FOUND;
  }
  if (resolved && found.exists && !found.facts.isLink) {
    there = true;
    isFolder = found.isRoot || found.facts.isDirectory;
    readOnly = found.facts.readOnly;
    mode = found.facts.mode;
  } else if (!resolved || found.exists) {
    struct stat old;
    there = lstat(linuxPath.c_str(), &old) == 0;
    if (there && S_ISLNK(old.st_mode)) {
      char *real = realpath(linuxPath.c_str(), nullptr);
      if (real != nullptr) {
        linuxPath = real;
        free(real);
      }
      there = stat(linuxPath.c_str(), &old) == 0;
    }
    if (there) {
      isFolder = S_ISDIR(old.st_mode);
      readOnly = IsReadOnly(linuxPath, old);
      mode = old.st_mode & 07777;
    }
  }
  std::string folder, name;
  SplitLinuxPath(linuxPath, &folder, &name);
  if (name.empty()) return ERROR_PATH_NOT_FOUND;
  // Windows opens the old file for writing, which a read-only file or a folder refuses; a rename would not.
  if (there && (isFolder || readOnly)) return ERROR_ACCESS_DENIED;
  if (!there) mode = 0666 & ~ProcessUmask();
  std::string temporary;
  DWORD forced = 0;
  int fd = MakeTemporary(folder, name, mode, &temporary, &forced);
  // The only folder met on the way is the one that would hold the file: a missing entry is a missing folder.
  if (fd < 0) return errno == ENOENT && forced == 0 ? ERROR_PATH_NOT_FOUND : FileError(errno, forced);
  // The new file is not synced before the rename. The rename alone keeps a failed save from harming the old shortcut,
  // while waiting for the disk on every save (fsync) cost up to 7 ms a shortcut, more than all the rest of its repair
  // (bench/README.md). Across a crash of the machine, ext4 with its default auto_da_alloc writes the data of a file
  // renamed over another before the rename is committed.
  bool ok = WriteAll(fd, bytes, &forced);
  // The mask took bits from the mode the file was made with, or the mode has bits beyond the permissions.
  if (ok && (mode & (ProcessUmask() | ~0777u)) != 0) ok = SetFileMode(fd, mode, &forced) == 0;
  int error = ok ? 0 : errno;
  if (CloseFile(fd, &forced) != 0 && ok) {
    ok = false;
    error = errno;
  }
  if (ok && RenameFile(temporary.c_str(), linuxPath.c_str(), &forced) != 0) {
    ok = false;
    error = errno;
  }
  if (!ok) {
    unlink(temporary.c_str());
    return FileError(error, forced);
  }
  return ERROR_SUCCESS;
}

uint64_t LocalFileTime(uint64_t utcFileTime) {
  if (utcFileTime < kUnixEpochAsFileTime) return utcFileTime;
  time_t seconds = static_cast<time_t>((utcFileTime - kUnixEpochAsFileTime) / 10000000ULL);
  struct tm local;
  if (localtime_r(&seconds, &local) == nullptr) return utcFileTime;
  int64_t shift = static_cast<int64_t>(local.tm_gmtoff) * 10000000LL;
  return static_cast<uint64_t>(static_cast<int64_t>(utcFileTime) + shift);
}

bool LookupEnvironmentVariable(const std::string &name, std::string *value) {
  if (name.empty()) return false;
  for (char **entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    const char *equals = std::strchr(*entry, '=');
    if (equals == nullptr || static_cast<size_t>(equals - *entry) != name.size()) continue;
    if (strncasecmp(*entry, name.c_str(), name.size()) != 0) continue;
    *value = LocaleToCp932(equals + 1);
    return true;
  }
  return false;
}
