// Forced failures of the Linux backend's file operations, for tests: one row per operation in a table, in the manner of
// a system-call table, that tests fill through platform/posix/files/testing.h. This is how a test running as root
// proves "access refused" or "disk full". Private to the Linux backend.
#pragma once

#include <string>

#include "platform/winapi.h"

// The operations that can be made to fail; the table names each by its Windows name. The shell link object opens and
// replaces its file with the wide calls, as Windows' does, so that a test can fail a shortcut's load or save without
// touching the engine's own file calls.
enum FaultPoint {
  kFaultFindFirstFile,
  kFaultFindNextFile,
  kFaultFindClose,
  kFaultCreateFile,
  kFaultCreateFileW,
  kFaultReadFile,
  kFaultWriteFile,
  kFaultGetFileInformationByHandle,
  kFaultSetFileInformationByHandle,
  kFaultCloseHandle,
  kFaultGetFileSize,
  kFaultGetFileSizeEx,
  kFaultDeleteFile,
  kFaultMoveFile,
  kFaultMoveFileExW,
  kFaultCreateDirectory,
  kFaultRemoveDirectory,
  kFaultGetFileAttributes,
  kFaultSetFileAttributes,
  kFaultSetCurrentDirectory,
  kFaultSearchPath,
  kFaultGetDiskFreeSpace,
  kFaultGetDiskFreeSpaceEx,
  kFaultGetVolumeInformation,
  kFaultCount
};

// Counts one call of the operation. True when this call is to fail: `*error` then holds the error that the call is to
// leave as its last error, and the call gives its failure answer without touching anything.
bool ForcedFailure(FaultPoint point, DWORD *error);
// Counts one reading of a folder's entries, for TestFolderReads.
void CountFolderRead(void);
// True when listing the folder with this full path (as MakeFullPath gives it, compared without case) is to fail, with
// `*error` as the error.
bool ForcedListingFailure(const std::u16string &folder, DWORD *error);
