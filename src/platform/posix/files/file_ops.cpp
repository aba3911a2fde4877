// Entries on disk for the Linux backend: DeleteFileA, MoveFileA, CreateDirectoryA, RemoveDirectoryA,
// GetFileAttributesA, SetFileAttributesA and the run-time library's _access.
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/posix/files/error_codes.h"
#include "platform/posix/files/fault_table.h"
#include "platform/posix/files/path_resolver.h"
#include "platform/posix/text/path_names.h"
#include "platform/winapi.h"

namespace {

BOOL FailWith(DWORD error) {
  SetLastError(error);
  return FALSE;
}

bool SameEntry(const std::string &a, const std::string &b) {
  struct stat infoA, infoB;
  return lstat(a.c_str(), &infoA) == 0 && lstat(b.c_str(), &infoB) == 0 && infoA.st_dev == infoB.st_dev &&
         infoA.st_ino == infoB.st_ino;
}

std::string ParentOf(const std::string &linux) {
  size_t slash = linux.rfind('/');
  return slash == 0 ? "/" : linux.substr(0, slash);
}

// Moves a file to another file system as Windows moves it to another volume: a copy that keeps the data, the
// permissions and the last write time, then the old file deleted. Result: 0 or an errno; on failure nothing is left
// at the new name.
int CopyAndDelete(const std::string &from, const std::string &to) {
  int source = open(from.c_str(), O_RDONLY | O_CLOEXEC);
  if (source < 0) return errno;
  struct stat info;
  if (fstat(source, &info) != 0) {
    int error = errno;
    close(source);
    return error;
  }
  int target = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, info.st_mode & 07777);
  if (target < 0) {
    int error = errno;
    close(source);
    return error;
  }
  int error = 0;
  char buffer[65536];
  for (;;) {
    ssize_t got = read(source, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) {
      if (got < 0) error = errno;
      break;
    }
    for (ssize_t done = 0; done < got && error == 0;) {
      ssize_t put = write(target, buffer + done, static_cast<size_t>(got - done));
      if (put < 0 && errno == EINTR) continue;
      if (put < 0)
        error = errno;
      else
        done += put;
    }
    if (error != 0) break;
  }
  if (error == 0) {
    struct timespec times[2] = {info.st_atim, info.st_mtim};
    futimens(target, times);
  }
  close(source);
  if (close(target) != 0 && error == 0) error = errno;
  if (error == 0 && unlink(from.c_str()) != 0) error = errno;
  if (error != 0) unlink(to.c_str());
  return error;
}

}  // namespace

BOOL DeleteFileA(LPCSTR fileName) {
  DWORD error;
  if (ForcedFailure(kFaultDeleteFile, &error)) return FailWith(error);
  DiskPath path;
  error = FindProgramPath(fileName, &path);
  if (error != 0) return FailWith(error);
  if (!path.exists) return FailWith(ERROR_FILE_NOT_FOUND);
  if (path.isRoot || path.facts.isDirectory) return FailWith(ERROR_ACCESS_DENIED);
  // A link is deleted itself; its target's permissions do not protect it.
  if (path.facts.readOnly && !path.facts.isLink) return FailWith(ERROR_ACCESS_DENIED);
  if (unlink(path.linux.c_str()) != 0) return FailWith(ErrorFromErrno(errno));
  return TRUE;
}

BOOL MoveFileA(LPCSTR existingFileName, LPCSTR newFileName) {
  DWORD error;
  if (ForcedFailure(kFaultMoveFile, &error)) return FailWith(error);
  DiskPath from, to;
  error = FindProgramPath(existingFileName, &from);
  if (error != 0) return FailWith(error);
  if (!from.exists) return FailWith(ERROR_FILE_NOT_FOUND);
  if (from.isRoot) return FailWith(ERROR_ACCESS_DENIED);
  error = FindProgramPath(newFileName, &to);
  if (error != 0) return FailWith(error);
  if (to.isRoot) return FailWith(ERROR_ALREADY_EXISTS);
  std::string target = to.linux;
  if (to.exists) {
    // The new name finds the entry itself: a change of case ("a.lnk" to "A.LNK") renames it to the spelling given.
    if (!SameEntry(from.linux, to.linux)) return FailWith(ERROR_ALREADY_EXISTS);
    target = ParentOf(to.linux) + "/" + Utf16ToUtf8(to.full.substr(LastNameStart(to.full)));
    if (target == from.linux) return TRUE;
    if (rename(from.linux.c_str(), target.c_str()) != 0) return FailWith(ErrorFromErrno(errno));
    return TRUE;
  }
  // Never over an entry that appeared since it was looked for.
  if (renameat2(AT_FDCWD, from.linux.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return TRUE;
  int failure = errno;
  if (failure == EINVAL) {  // a file system without RENAME_NOREPLACE
    struct stat info;
    if (lstat(target.c_str(), &info) == 0) return FailWith(ERROR_ALREADY_EXISTS);
    failure = rename(from.linux.c_str(), target.c_str()) == 0 ? 0 : errno;
    if (failure == 0) return TRUE;
  }
  if (failure == EXDEV && !from.facts.isDirectory) failure = CopyAndDelete(from.linux, target);
  if (failure == 0) return TRUE;
  return FailWith(failure == EEXIST ? ERROR_ALREADY_EXISTS : ErrorFromErrno(failure));
}

BOOL CreateDirectoryA(LPCSTR pathName, LPSECURITY_ATTRIBUTES) {
  DWORD error;
  if (ForcedFailure(kFaultCreateDirectory, &error)) return FailWith(error);
  DiskPath path;
  error = FindProgramPath(pathName, &path);
  if (error != 0) return FailWith(error);
  if (path.exists) return FailWith(ERROR_ALREADY_EXISTS);
  if (mkdir(path.linux.c_str(), 0777) != 0) return FailWith(ErrorFromErrno(errno));
  return TRUE;
}

BOOL RemoveDirectoryA(LPCSTR pathName) {
  DWORD error;
  if (ForcedFailure(kFaultRemoveDirectory, &error)) return FailWith(error);
  DiskPath path;
  error = FindProgramPath(pathName, &path);
  if (error != 0) return FailWith(error);
  if (!path.exists) return FailWith(ERROR_FILE_NOT_FOUND);
  if (path.isRoot) return FailWith(ERROR_ACCESS_DENIED);
  if (!path.facts.isDirectory) return FailWith(ERROR_DIRECTORY);
  if (path.facts.isLink) {
    if (unlink(path.linux.c_str()) != 0) return FailWith(ErrorFromErrno(errno));
    return TRUE;
  }
  if (path.facts.readOnly) return FailWith(ERROR_ACCESS_DENIED);
  std::u16string folder = path.full;
  if (folder.back() == u'\\') folder.pop_back();
  if (SameNameIgnoringCase(folder, CurrentFolder())) return FailWith(ERROR_SHARING_VIOLATION);
  if (rmdir(path.linux.c_str()) != 0) {
    if (errno == ENOTEMPTY || errno == EEXIST) return FailWith(ERROR_DIR_NOT_EMPTY);
    return FailWith(ErrorFromErrno(errno));
  }
  return TRUE;
}

DWORD GetFileAttributesA(LPCSTR fileName) {
  DWORD error;
  if (ForcedFailure(kFaultGetFileAttributes, &error)) {
    SetLastError(error);
    return INVALID_FILE_ATTRIBUTES;
  }
  DiskPath path;
  error = FindProgramPath(fileName, &path);
  if (error == 0 && !path.exists) error = ERROR_FILE_NOT_FOUND;
  if (error != 0) {
    SetLastError(error);
    return INVALID_FILE_ATTRIBUTES;
  }
  return AttributesOf(path.facts, path.diskName);
}

BOOL SetFileAttributesA(LPCSTR fileName, DWORD fileAttributes) {
  DWORD error;
  if (ForcedFailure(kFaultSetFileAttributes, &error)) return FailWith(error);
  DiskPath path;
  error = FindProgramPath(fileName, &path);
  if (error != 0) return FailWith(error);
  if (!path.exists) return FailWith(ERROR_FILE_NOT_FOUND);
  // A read-only folder means nothing on Windows (the shell uses the bit for its own purposes); taking the write
  // permission from a Linux folder would mean a great deal, so folders are left as they are.
  if (path.facts.isDirectory) return TRUE;
  struct stat info;
  if (stat(path.linux.c_str(), &info) != 0) return FailWith(ErrorFromErrno(errno));
  mode_t mode = info.st_mode & 07777;
  if (fileAttributes & FILE_ATTRIBUTE_READONLY)
    mode &= ~static_cast<mode_t>(0222);
  else if ((mode & 0222) == 0 || path.facts.readOnly)
    mode |= S_IWUSR;
  if (mode != (info.st_mode & 07777) && chmod(path.linux.c_str(), mode) != 0) return FailWith(ErrorFromErrno(errno));
  return TRUE;
}

int _access(const char *path, int mode) {
  DiskPath found;
  if (FindProgramPath(path, &found) != 0 || !found.exists) {
    errno = ENOENT;
    return -1;
  }
  if ((mode & 2) && found.facts.readOnly) {
    errno = EACCES;
    return -1;
  }
  return 0;
}
