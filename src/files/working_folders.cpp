// The working folder and the drives' current folders.
#include "files/working_folders.h"

#include <cstring>

#include "files/error_numbers.h"
#include "files/file_operations.h"
#include "files/path_faults.h"
#include "files/path_views.h"
#include "machine/network_paths.h"
#include "reports/error_reporter.h"
#include "reports/last_error.h"
#include "reports/memory_reports.h"
#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/tokens.h"

namespace {

// The working folder on the network, kept apart from the process's: the system has no current folder on a network
// place of the view. Set once the network listing can change to such a place.
char networkWorkingFolder[kPathSize] = "";

// The sum of every attribute bit that the program knows: a larger value read back is INVALID_FILE_ATTRIBUTES.
const DWORD kKnownAttributeBits = 0x19B7;
// The fault of a folder that is not there, and the style of its message: a folder, yes and no.
const int kMissingFolderFault = -21;
const int kMissingFolderStyle = 26;

}  // namespace

char *GetWorkingFolder(char *buffer, DWORD size) {
  SetKeptLastError(0);
  DWORD length = GetCurrentDirectoryA(size, buffer);
  SettleErrors(CaptureLastError());
  return length != 0 && length < size ? buffer : nullptr;
}

int SetWorkingFolder(char *path, int allowNetwork) {
  if (path == nullptr || *path == 0) {
    SettleErrors(ERROR_PATH_NOT_FOUND);
    return 1;
  }
  if (!allowNetwork && IsNetworkPath(path)) return 0;
  RealPath real;
  if (!MakeRealPath(path, &real)) return 0;
  SetKeptLastError(0);
  BOOL done = SetCurrentDirectoryA(real.text);
  DWORD error = CaptureLastError();
  RestoreRealPath(real);
  SettleErrors(error);
  return done ? 0 : 1;
}

int ChangeToFolder(char *path, int allowNetwork) {
  if (path == nullptr || *path == 0) return -1;
  if (!allowNetwork && IsNetworkPath(path)) return '\\';
  RealPath real;
  if (!MakeRealPath(path, &real)) return '\\';
  HGLOBAL handle = 0;
  char *copy = AcquireBlock(&handle, nullptr, kPathSize, nullptr);
  if (copy != nullptr) {
    std::strncpy(copy, real.text, kPathSize - 1);
    copy[kPathSize - 1] = 0;
  }
  RestoreRealPath(real);
  if (copy == nullptr) return -1;
  int result;
  if (!IsNetworkPath(copy) && copy[1] != ':') {
    result = -1;
  } else if (SetWorkingFolder(copy, allowNetwork) == 0) {
    result = ToUpperByte(static_cast<unsigned char>(copy[0])) - 64;
  } else {
    // Tell a folder that is not there from one that will not let us in; the report speaks of the former only. The
    // attribute read must not replace the error of the change itself.
    DWORD keptError = GetKeptLastError();
    int runTimeError = GetRunTimeError();
    DWORD attributes = 0;
    GetPathAttributes(copy, &attributes);
    SetKeptLastError(keptError);
    SetRunTimeError(runTimeError);
    if (attributes > kKnownAttributeBits) {
      ReportPathFault(nullptr, copy, kMissingFolderFault, 0, kMissingFolderStyle);
      result = -2;
    } else {
      result = -1;
    }
  }
  ReleaseBlock(handle, copy);
  return result;
}

char *GetDriveFolder(int drive, char *buffer, DWORD size) {
  if (buffer == nullptr || size == 0) return nullptr;
  if (drive == kNetworkDriveNumber) {
    if (networkWorkingFolder[0] != 0) {
      std::strncpy(buffer, networkWorkingFolder, size - 1);
      buffer[size - 1] = 0;
    } else if (size >= 4) {
      // The head of the network path that the caller holds: "\:\" for the view.
      buffer[2] = '\\';
      buffer[3] = 0;
    }
    ClearErrors();
    return buffer;
  }
  char name[3] = {static_cast<char>(drive + 0x60), ':', 0};
  char *filePart = nullptr;
  SetKeptLastError(0);
  DWORD length = GetFullPathNameA(name, size, buffer, &filePart);
  SettleErrors(CaptureLastError());
  return length != 0 && length < size ? buffer : nullptr;
}

int GetDriveFolderOf(char *buffer, DWORD size) {
  int drive = ToUpperByte(static_cast<unsigned char>(buffer[0])) - 64;
  if (GetDriveFolder(drive, buffer, size) == nullptr) return GetRunTimeError();
  SetRunTimeError(0);
  return 0;
}

int CompleteDrivePath(char **path) {
  if (path == nullptr || *path == nullptr) return 0;
  const DWORD kCopySize = 2 * kPathSize;
  HGLOBAL handle = 0;
  char *copy = AcquireBlock(&handle, nullptr, kCopySize, nullptr);
  if (copy == nullptr) return 12;
  std::strncpy(copy, *path, kPathSize - 1);
  copy[kPathSize - 1] = 0;
  int result = 0;
  if (FindCharacter(copy, '\\') == nullptr) {
    if (GetDriveFolderOf(copy, kCopySize) != 0) {
      result = GetRunTimeError();
      if (result == 0) result = 13;
    } else {
      if (std::strlen(copy) == 2) std::strcpy(copy + 2, "\\");
      std::strncpy(*path, copy, kPathSize - 1);
      (*path)[kPathSize - 1] = 0;
    }
  }
  ReleaseBlock(handle, copy);
  return result;
}

int ChangeToDriveLetter(int letter) {
  SetKeptLastError(0);
  char name[3] = {static_cast<char>(letter), ':', 0};
  // The two-byte text of a backslash and a colon is a network head: there is no drive to change to.
  if (IsNetworkPath(name)) return 1;
  BOOL done = SetCurrentDirectoryA(name);
  SettleErrors(CaptureLastError());
  return done ? 1 : -1;
}
