// Open files for the Linux backend: CreateFileA, ReadFile, WriteFile, CloseHandle, GetFileSize and GetFileSizeEx.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <string>

#include "platform/posix/files/error_codes.h"
#include "platform/posix/files/fault_table.h"
#include "platform/posix/files/handles.h"
#include "platform/posix/files/path_resolver.h"
#include "platform/winapi.h"

namespace {

struct OpenFile {
  int fd = -1;
  bool readable = false;
  bool writable = false;
  std::string deleteOnClose;  // the Linux path to delete at the close, if FILE_FLAG_DELETE_ON_CLOSE was given
};

std::map<HANDLE, OpenFile> &Files() {
  static std::map<HANDLE, OpenFile> files;
  return files;
}

OpenFile *LookUp(HANDLE handle) {
  auto found = Files().find(handle);
  return found == Files().end() ? nullptr : &found->second;
}

HANDLE Fail(DWORD error) {
  SetLastError(error);
  return INVALID_HANDLE_VALUE;
}

BOOL FailWith(DWORD error) {
  SetLastError(error);
  return FALSE;
}

bool IsHidden(const std::string &diskName) { return !diskName.empty() && diskName[0] == '.'; }

}  // namespace

HANDLE NewHandleValue(void) {
  static uintptr_t next = 0x1000;
  next += 4;
  return reinterpret_cast<HANDLE>(next);
}

HANDLE CreateFileA(LPCSTR fileName, DWORD desiredAccess, DWORD, LPSECURITY_ATTRIBUTES, DWORD creationDisposition,
                   DWORD flagsAndAttributes, HANDLE) {
  DWORD error;
  if (ForcedFailure(kFaultCreateFile, &error)) return Fail(error);
  if (creationDisposition < CREATE_NEW || creationDisposition > TRUNCATE_EXISTING) return Fail(ERROR_INVALID_PARAMETER);
  DiskPath path;
  error = FindProgramPath(fileName, &path);
  if (error != 0) return Fail(error);

  bool wantRead = (desiredAccess & (GENERIC_READ | GENERIC_ALL | FILE_READ_DATA)) != 0;
  bool wantWrite = (desiredAccess & (GENERIC_WRITE | GENERIC_ALL | FILE_WRITE_DATA | FILE_APPEND_DATA)) != 0;
  bool existed = path.exists;
  int flags = O_CLOEXEC | O_NOCTTY;
  if (existed) {
    if (creationDisposition == CREATE_NEW) return Fail(ERROR_FILE_EXISTS);
    if (creationDisposition == TRUNCATE_EXISTING && !wantWrite) return Fail(ERROR_INVALID_PARAMETER);
    if (path.facts.isDirectory) {
      // A folder is opened only to be asked about, and only by one who says so.
      if (!(flagsAndAttributes & FILE_FLAG_BACKUP_SEMANTICS) || creationDisposition == CREATE_ALWAYS ||
          creationDisposition == TRUNCATE_EXISTING || wantWrite)
        return Fail(ERROR_ACCESS_DENIED);
      wantRead = false;
      flags |= O_RDONLY | O_DIRECTORY;
    } else {
      if (creationDisposition == CREATE_ALWAYS && IsHidden(path.diskName) &&
          !(flagsAndAttributes & FILE_ATTRIBUTE_HIDDEN))
        return Fail(ERROR_ACCESS_DENIED);
      bool truncates = creationDisposition == CREATE_ALWAYS || creationDisposition == TRUNCATE_EXISTING;
      if ((wantWrite || truncates) && path.facts.readOnly) return Fail(ERROR_ACCESS_DENIED);
      if (truncates) flags |= O_TRUNC;
    }
  } else {
    if (creationDisposition == OPEN_EXISTING || creationDisposition == TRUNCATE_EXISTING)
      return Fail(ERROR_FILE_NOT_FOUND);
    if (path.endsInSeparator) return Fail(ERROR_INVALID_NAME);
    flags |= O_CREAT | O_EXCL;
  }
  if (!(flags & O_DIRECTORY)) {
    // Emptying a file takes write access on Linux, whatever access the caller asked for.
    bool writes = wantWrite || (flags & O_TRUNC);
    if (wantRead && writes)
      flags |= O_RDWR;
    else if (writes)
      flags |= O_WRONLY;
    else if (wantRead || (flags & O_CREAT))
      flags |= O_RDONLY;
    else
      flags |= O_PATH;  // no access asked: a handle to ask about the file, as Windows gives one
  }
  // Not waiting for a writer when the name is a pipe; the flag is taken off again below.
  int fd = open(path.linux.c_str(), flags | ((flags & O_PATH) ? 0 : O_NONBLOCK), 0666);
  if (fd < 0) {
    if (errno == EEXIST) return Fail(ERROR_FILE_EXISTS);
    if (errno == ENOENT) return Fail(ERROR_FILE_NOT_FOUND);
    return Fail(ErrorFromErrno(errno));
  }
  if (!(flags & O_PATH)) fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
  if (!existed && (flagsAndAttributes & FILE_ATTRIBUTE_READONLY)) {
    struct stat info;
    if (fstat(fd, &info) == 0) fchmod(fd, info.st_mode & ~0222);
  }
  OpenFile file;
  file.fd = fd;
  file.readable = wantRead;
  file.writable = wantWrite;
  if (flagsAndAttributes & FILE_FLAG_DELETE_ON_CLOSE) file.deleteOnClose = path.linux;
  HANDLE handle = NewHandleValue();
  Files()[handle] = file;
  bool reports = creationDisposition == CREATE_ALWAYS || creationDisposition == OPEN_ALWAYS;
  SetLastError(existed && reports ? ERROR_ALREADY_EXISTS : 0);
  return handle;
}

BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD bytesToRead, LPDWORD bytesRead, LPOVERLAPPED) {
  if (bytesRead) *bytesRead = 0;
  OpenFile *open = LookUp(file);
  if (!open) return FailWith(ERROR_INVALID_HANDLE);
  DWORD error;
  if (ForcedFailure(kFaultReadFile, &error)) return FailWith(error);
  if (!open->readable) return FailWith(ERROR_ACCESS_DENIED);
  char *to = static_cast<char *>(buffer);
  DWORD done = 0;
  while (done < bytesToRead) {
    ssize_t got = read(open->fd, to + done, bytesToRead - done);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      if (bytesRead) *bytesRead = done;
      return FailWith(errno == EISDIR ? static_cast<DWORD>(ERROR_INVALID_FUNCTION) : ErrorFromErrno(errno));
    }
    if (got == 0) break;
    done += static_cast<DWORD>(got);
  }
  if (bytesRead) *bytesRead = done;
  return TRUE;
}

BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD bytesToWrite, LPDWORD bytesWritten, LPOVERLAPPED) {
  if (bytesWritten) *bytesWritten = 0;
  OpenFile *open = LookUp(file);
  if (!open) return FailWith(ERROR_INVALID_HANDLE);
  DWORD error;
  if (ForcedFailure(kFaultWriteFile, &error)) return FailWith(error);
  if (!open->writable) return FailWith(ERROR_ACCESS_DENIED);
  const char *from = static_cast<const char *>(buffer);
  DWORD done = 0;
  while (done < bytesToWrite) {
    ssize_t put = write(open->fd, from + done, bytesToWrite - done);
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) {
      if (bytesWritten) *bytesWritten = done;
      return FailWith(ErrorFromErrno(errno));
    }
    done += static_cast<DWORD>(put);
  }
  if (bytesWritten) *bytesWritten = done;
  return TRUE;
}

BOOL CloseHandle(HANDLE object) {
  // INVALID_HANDLE_VALUE is also the pseudo-handle of the process itself, which Windows "closes" with success.
  if (object == INVALID_HANDLE_VALUE) return TRUE;
  auto found = Files().find(object);
  if (found == Files().end()) return FailWith(ERROR_INVALID_HANDLE);
  DWORD error;
  if (ForcedFailure(kFaultCloseHandle, &error)) return FailWith(error);
  close(found->second.fd);
  if (!found->second.deleteOnClose.empty()) unlink(found->second.deleteOnClose.c_str());
  Files().erase(found);
  return TRUE;
}

DWORD GetFileSize(HANDLE file, LPDWORD fileSizeHigh) {
  OpenFile *open = LookUp(file);
  if (!open) {
    SetLastError(ERROR_INVALID_HANDLE);
    return INVALID_FILE_SIZE;
  }
  DWORD error;
  if (ForcedFailure(kFaultGetFileSize, &error)) {
    SetLastError(error);
    return INVALID_FILE_SIZE;
  }
  struct stat info;
  if (fstat(open->fd, &info) != 0) {
    SetLastError(ErrorFromErrno(errno));
    return INVALID_FILE_SIZE;
  }
  uint64_t size = S_ISDIR(info.st_mode) ? 0 : static_cast<uint64_t>(info.st_size);
  if (fileSizeHigh) *fileSizeHigh = static_cast<DWORD>(size >> 32);
  DWORD low = static_cast<DWORD>(size);
  // The caller cannot tell this size from a failure except by the last error.
  if (low == INVALID_FILE_SIZE) SetLastError(0);
  return low;
}

BOOL GetFileSizeEx(HANDLE file, PLARGE_INTEGER fileSize) {
  OpenFile *open = LookUp(file);
  if (!open) return FailWith(ERROR_INVALID_HANDLE);
  DWORD error;
  if (ForcedFailure(kFaultGetFileSizeEx, &error)) return FailWith(error);
  struct stat info;
  if (fstat(open->fd, &info) != 0) return FailWith(ErrorFromErrno(errno));
  if (!fileSize) return FailWith(ERROR_INVALID_PARAMETER);
  fileSize->QuadPart = S_ISDIR(info.st_mode) ? 0 : static_cast<LONGLONG>(info.st_size);
  return TRUE;
}
