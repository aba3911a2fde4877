// File operations with one error policy: every file-system call of the program goes through a wrapper here. Each
// accepts paths of the network view (a place of the view that has no real form is answered without a system call),
// keeps the system's last error (reports/last_error.h) with the run-time error number in step with it, and gives a
// plain result. After any result that means failure, the caller reads the two error records.
//
// Paths are Shift-JIS, at most 520 bytes with the terminator, and must be writable: a network path is edited in place
// for the time of the call and put back before the wrapper returns (exceptions are stated at the routine).
#pragma once

#include "platform/winapi.h"

// What PathKind tells of a path.
enum PathKindValue {
  kPathEmpty = 0,    // null or empty
  kPathNothing = 1,  // nothing there (or it could not be read)
  kPathFile = 2,
  kPathFolder = 4,
};

// The 64-bit size of an open file, through GetFileSizeEx where the system has it, else GetFileSize. Result: all bits
// set on failure.
unsigned long long GetFileSize64(HANDLE file);
// CloseHandle. Result: 0 on success, 1 on failure.
int CloseFileHandle(HANDLE file);
// ReadFile of up to `count` bytes. Result: the number of bytes read, or -1 on failure.
int ReadFileBlock(HANDLE file, void *buffer, DWORD count);
// CreateFileA on a path that may be in double quotes (they are stepped over for the call). An `attributes` value of all
// bits set keeps the attributes of the file that is there (FILE_ATTRIBUTE_NORMAL when they cannot be read). Result: the
// handle, INVALID_HANDLE_VALUE on failure; for a place of the network view, INVALID_HANDLE_VALUE with the last error
// ERROR_PATH_NOT_FOUND.
HANDLE CreateFileOn(char *path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                    DWORD attributes, HANDLE templateFile);
// CreateFileOn with no security record and no template. The path's quotes are removed for good. Result: the handle, or
// INVALID_HANDLE_VALUE (also for a place of the network view).
HANDLE OpenPath(char *path, DWORD access, DWORD share, DWORD disposition, DWORD attributes);

// What SearchForFile finds.
enum SearchResult { kSearchFound = 0, kSearchNotFound = 1, kSearchNoDrive = -3 };

// Looks for `name` along the system's search path (SearchPathA) and writes the full path to `out`. Result: a
// SearchResult: found; not found or an empty name; no drive when the name holds a backslash and the root of its first
// letter ("X:\") is not there. A name without a program extension that the search misses is copied to `out` as it
// stands, with 0 if it exists as a path and 1 if not; a program name that the search misses leaves `out` alone. A place
// of the network view gives 0 and leaves `out` alone.
int SearchForFile(char *name, char *out, DWORD outSize);

// DeleteFileA on a path that may be in double quotes. A refused access is put to the user (the access question). A
// place of the network view counts as deleted. Result: 0 on success, 1 on failure.
int DeleteFilePath(char *path);
// Deletes the file if there is one. Result: 0 when deleted or when nothing is there (also a place of the network view);
// 1 for a null or empty path (both errors then 0) or a failed delete.
int DeleteIfPresent(char *path);
// MoveFileA. Result: 0 on success, 1 on failure; 0 at once when either path is a place of the network view.
// The walker's move mode would call it; it has no destination in this tool, so nothing calls it yet.
int MovePath(char *oldPath, char *newPath);
// RemoveDirectoryA, with the access question as DeleteFilePath. Result: 0 on success, 1 on failure.
int RemoveFolderPath(char *path);
// GetFileAttributesA into *attributes. A place of the network view is a folder (0x10) and costs no system call.
// Result: 0 on success, 1 on failure (*attributes is then all bits set).
int GetPathAttributes(char *path, DWORD *attributes);
// SetFileAttributesA; 0 stands for FILE_ATTRIBUTE_NORMAL. A path that is not there gives 0 and changes nothing.
// Result: 0 on success, 1 on failure.
int SetPathAttributes(char *path, DWORD attributes);
// The run-time library's existence test (_access) on a path that may be in double quotes. A place of the network view
// exists. Result: 0 if it exists, -1 if not (with the run-time error number set).
int PathAccessible(char *path);
// What is at a path that may be in double quotes: kPathEmpty, kPathNothing, kPathFile or kPathFolder. A server or a
// share counts as a real place here. Leaves the kept last error as it found it.
int PathKind(char *path);
// The kind of program at `path`, from the system's reading of its header (SHGetFileInfoA, SHGFI_EXETYPE): 0 a Windows
// program (PE or NE that names a Windows version), 1 a console program, 2 a DOS program, -1 anything else or no file.
// Nothing calls it yet.
int ExecutableKind(const char *path);
// 1 for a Windows program, 0 for a console or DOS program, -1 for a file that is no program, -3 for a null or empty
// path or one that is not a file. Nothing calls it yet.
int IsWindowsProgram(char *path);
