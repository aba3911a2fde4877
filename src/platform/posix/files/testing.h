// Hooks by which tests steer the Linux backend's file system: forced failures of its operations, the drive table and
// the sources of the share table.
// Nothing outside tests/ includes this header.
#pragma once

#include <cstddef>

#include "platform/winapi.h"

// Makes calls of one operation, named as in Windows ("FindFirstFileA", "CreateFileA", "ReadFile", "DeleteFileA" ...),
// fail with `error` as their last error: the next `skip` calls still go through, then `count` calls fail (-1: every
// call from then on). A failing call changes nothing on disk. A shortcut's load opens with "CreateFileW", asks the
// open file its kind and size with "GetFileInformationByHandle" and reads with "ReadFile"; its save makes the new file
// with "CreateFileW", goes through "WriteFile", gives it the old file's mode with "SetFileInformationByHandle" (only
// where the process's mask took bits from that mode), "CloseHandle", and puts it in place with "MoveFileExW". Result:
// false for an operation the table does not know.
bool TestFailCalls(const char *operation, DWORD error, int count = 1, int skip = 0);
// How many calls of the operation have reached the table since the process began, failed or not: so that a test can
// let through the calls that come before the one it means to fail. 0 for an operation the table does not know.
size_t TestCountedCalls(const char *operation);
// Listing `folder` (FindFirstFileA on any pattern in it) fails with `error` until TestClearFaults. The folder is given
// as the program gives paths and compared, once made full, without case. Result: false for a path that is not valid.
bool TestFailListing(const char *folder, DWORD error);
// Ends all forced failures.
void TestClearFaults(void);
// How many times the backend has read the entries of a folder since the process began: once per listing, and once
// per name that had to be looked for without case. A path whose names are all spelled as on disk costs none.
size_t TestFolderReads(void);

// Uses `drives`, in the form of KELMARO_DRIVES ("C=/srv/c;D=/mnt/d"), as the drive table, and reads the current folder
// anew in the light of it. Null unsets KELMARO_DRIVES, so that the table comes as the environment says without it:
// from the Wine prefix that WINEPREFIX or HOME names, if there is one, else Z: alone is "/". The unit tests run with
// a HOME of their own and no WINEPREFIX (support/host_environment.cpp), so there null gives Z: alone.
void TestSetDrives(const char *drives);

// The sources of the share table, in place of the machine's own: `shares` in the form of KELMARO_SHARES
// ("\\srv\share=/mnt/srv/share;...", null: none set); `text` as the mount table, in the form of /proc/self/mountinfo
// (null: the machine's own); `folder` in place of XDG_RUNTIME_DIR, where gvfs keeps its mounts in "gvfs" (null: the
// environment's). Each reads the share table anew; a new share table also reads the current folder anew.
void TestSetShares(const char *shares);
void TestSetMountTable(const char *text);
void TestSetRuntimeFolder(const char *folder);
