// What the file services ask of the drive inventory, the volume query of the network paths and the special folders
// before those are in place. Each gives the answer that means "nothing known": an unknown file system, a volume that
// does not answer, no virtual-store twin.
#pragma once

#include "platform/winapi.h"

// The file system kind that the drive table holds for a drive letter: -1 (unknown) until a volume has been read.
int DriveFileSystemKind(int letter);
// Keeps a volume's file system name for its drive letter. Result: the file system kind; -1 (unknown) here, where
// nothing is kept.
int StoreDriveFileSystem(int letter, const char *fileSystemName);
// The volume facts of the root `root`, as GetVolumeInformationA gives them. Result: not 0 on success. Here the volume
// never answers: 0, and the buffers are left as they were.
int GetVolumeDetails(const char *root, char *label, DWORD labelSize, DWORD *serial, DWORD *maxLength, DWORD *flags,
                     char *fileSystemName, DWORD fileSystemNameSize);
// The folder under the user's virtual store that shadows `path`. Result: 1 when an existing twin folder was written to
// `buffer` (520 bytes), else 0. Here there is never one.
int FindVirtualStoreTwin(int unused, const char *path, char *buffer);
