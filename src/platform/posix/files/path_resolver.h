// Windows paths in the Linux backend: made full as Windows makes them (in UTF-16, with the current folder), and found
// on disk through the drive table, name by name, without regard to case. Private to the Linux backend.
#pragma once

#include <string>

#include "platform/posix/files/file_info.h"
#include "platform/winapi.h"

// A path from the program (Shift-JIS) in UTF-16. Result: 0; ERROR_PATH_NOT_FOUND for a null path;
// ERROR_FILENAME_EXCED_RANGE for one of more than MAX_PATH characters, which an "A" call of Windows cannot take.
DWORD ProgramPathToUtf16(const char *path, std::u16string *out);

// The full form of a path, as GetFullPathNameW gives it (see GetFullPathNameA in files.h). A path of the network
// ("\\server\share\...") keeps its first two names as its root; a device path ("\\?\", "\\.\") stays as it is.
// Result: false for an empty path, which has no full form.
bool MakeFullPath(const std::u16string &path, std::u16string *full);

// Where the last name of a full path begins (its length when the path ends in "\").
size_t LastNameStart(const std::u16string &full);
// The folder part of a full path: "C:\a" for "C:\a\b", "C:\" for "C:\b".
std::u16string FolderOf(const std::u16string &full);

// A full path as found on disk.
struct DiskPath {
  std::u16string full;   // the full Windows path
  std::string linux;     // its Linux path, each name that was found in its spelling on disk
  std::string diskName;  // the last name, as on disk (as given when it was not found; empty for a root)
  bool isRoot = false;   // a drive root, or the root of a share
  bool onShare = false;  // reached through the share table ("\\server\share\...")
  bool exists = false;   // the last name was found; `facts` describe it
  bool endsInSeparator = false;
  EntryFacts facts;
};

// Finds a full path (from MakeFullPath) on disk. Each name is first tried as written, with one call for the whole path
// when every name is; a name that is not there as written is looked for without case in its folder, which is read
// for it (the first in listing order wins when several differ only in case). Result: 0 when the folder that would hold
// the last name is there (whether the last name is found is `exists`); ERROR_PATH_NOT_FOUND when a folder on the way is
// missing or a file, or the drive is not mapped; ERROR_INVALID_NAME for a name with a character no Windows name holds
// (* ? < > : " | and controls), or for a file named with a trailing "\"; ERROR_ACCESS_DENIED for a folder that
// cannot be searched. A path of the network ("\\server\share\...") is found in the folder where the share table
// says the share is mounted; ERROR_BAD_NETPATH for a share that no source maps or whose folder cannot be reached, for
// a server alone and for a device path.
DWORD FindOnDisk(const std::u16string &full, DiskPath *path);
// The same for a path as the program gives it: converted, checked for length and made full first.
DWORD FindProgramPath(const char *path, DiskPath *found);

// The share that a path of the network lies on ("\\srv\sh", "\\srv\sh\", "\\srv\sh\dir", made full first): the Linux
// folder of its root, and whether the path is that root. Result: 0; ERROR_BAD_NETPATH for a path that is on no share
// that the share table maps (a server alone, a device path, a path that is not of the network), or whose share
// cannot be reached.
DWORD FindShareRoot(const std::u16string &path, std::string *linuxFolder, bool *isRoot);

// The current folder, full, in drive form (see GetCurrentDirectoryA in files.h).
const std::u16string &CurrentFolder(void);
void SetCurrentFolder(const std::u16string &full);
// Forgets the current folder, so that it is read anew from the process at the next need (after the drive table has
// changed).
void ForgetCurrentFolder(void);

// The Linux path of a drive root, or empty for a letter that is not mapped.
std::string DriveRootOf(char16_t letter);
