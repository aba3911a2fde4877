// Everything the shell link object asks of the machine: reading and replacing a shortcut file, the facts of a target
// on disk, the local time zone and the environment. Paths go through the backend's path resolver, so that names are
// found without case as Windows finds them. Private to the Linux backend.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What the disk says of one path (Shift-JIS, drive form).
struct FileFacts {
  bool exists = false;
  bool isFolder = false;
  // 0x10 folder, 0x20 file, 0x01 a read-only file (no write permission for anyone, or none for this process), 0x02 a
  // name that starts with a dot.
  uint32_t attributes = 0;
  uint64_t size = 0;
  uint64_t creationTime = 0, accessTime = 0, writeTime = 0;  // FILETIME (UTC)
};

// The facts of a drive path; `exists` false for a path that is not on a mapped drive, or not there.
FileFacts QueryFileFacts(const std::string &drivePath);

// Reads a whole shortcut file. Result: a Windows error code: ERROR_SUCCESS; ERROR_PATH_NOT_FOUND for a path that is
// not on a mapped drive; ERROR_FILE_NOT_FOUND; ERROR_ACCESS_DENIED (also for a folder, and for a FIFO, a socket or a
// device, which is refused without a read that could wait); ERROR_NOT_ENOUGH_MEMORY for a file larger than `limit`;
// the mapped error of a failed open, fstat or read otherwise.
uint32_t ReadShortcutFile(const std::string &drivePath, size_t limit, std::vector<uint8_t> *bytes);
// The same for a file already found on disk, by its Linux path.
uint32_t ReadLinuxFile(const std::string &linuxPath, size_t limit, std::vector<uint8_t> *bytes);

// Puts `bytes` in place of the file at `drivePath`: written to a new file in the same folder, then renamed over the
// old one, so that the old file stays whole if anything fails. A read-only file (see FileFacts), or a folder,
// is refused as Windows refuses to open it for writing. The new file keeps the old one's permissions; a symbolic link
// stays in place and the file it names is replaced (a second hard link keeps the old contents). Result:
// ERROR_SUCCESS, ERROR_PATH_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_DISK_FULL or ERROR_WRITE_FAULT.
uint32_t ReplaceShortcutFile(const std::string &drivePath, const std::vector<uint8_t> &bytes);

// A FILETIME (UTC) moved into the local time zone of that moment, as Windows shows file times.
uint64_t LocalFileTime(uint64_t utcFileTime);

// The value of an environment variable, names compared without case, in Shift-JIS. False when it is not set.
bool LookupEnvironmentVariable(const std::string &name, std::string *value);
