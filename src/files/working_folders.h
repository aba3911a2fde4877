// The process's working folder and each drive's current folder: reading them, changing them, and completing a bare
// drive name with its drive's folder. The error policy is that of file_operations.h.
#pragma once

#include "platform/winapi.h"

// The drive number of the network, as ChangeToFolder gives it for a network path: the backslash (92) less 64.
enum { kNetworkDriveNumber = 28 };

// GetCurrentDirectoryA into `buffer`. Result: the buffer, or null when it failed or did not fit.
char *GetWorkingFolder(char *buffer, DWORD size);
// SetCurrentDirectoryA. With `allowNetwork` 0 a network path succeeds at once without a system call, as does a place
// of the network view. Result: 0 on success, 1 on failure (also for a null or empty path).
int SetWorkingFolder(char *path, int allowNetwork);
// Makes `path` the working folder. Result: the drive number, 1 for A: to 26 for Z: (28 for a real network path) on
// success; 92 for a network path that is not entered (any, with `allowNetwork` 0; a place of the network view
// otherwise); -1 for a path without a drive or a folder that is there but cannot be entered; -2 for a path that is not
// there, which is reported as a path fault.
int ChangeToFolder(char *path, int allowNetwork);
// The current folder of drive `drive` (1 for A:) through GetFullPathNameA on "a:". For kNetworkDriveNumber: the kept
// network working folder, and while that is empty the first two bytes of what
// `buffer` holds and a backslash, with both errors cleared. Result: the buffer, or null when it failed.
char *GetDriveFolder(int drive, char *buffer, DWORD size);
// GetDriveFolder for the drive letter that `buffer` begins with. Result: 0 (the run-time error number cleared), or the
// run-time error number.
int GetDriveFolderOf(char *buffer, DWORD size);
// Completes *path in place (a 520-byte buffer) when it holds no backslash: it is read as a bare drive name ("D:") and
// replaced by that drive's current folder, with a backslash added to a two-byte result. Result: 0, or the run-time
// error number of the failure (13 when that number was 0).
int CompleteDrivePath(char **path);
// Makes drive `letter` current (SetCurrentDirectoryA on "X:"). Result: 1 on success and for the backslash (the
// network, which has no drive to change to); -1 on failure. Nothing calls it yet.
int ChangeToDriveLetter(int letter);
