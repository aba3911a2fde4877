// The drive inventory: the kinds of the machine's drives.
#pragma once

#include "platform/winapi.h"

// Bits of a drive kind mask.
enum DriveKindBit : unsigned { kDriveKindCdRom = 16 };

// Writes the letters of the table's drives whose kind is in `kindMask` to `buffer` (30 bytes), terminated. Result:
// the buffer. The table stays empty in this tool, so the text is empty.
char *DriveLettersOfKinds(char *buffer, unsigned kindMask);
// 1 when `letter` is among the table's network drives (kind 3), else 0.
int IsNetworkDriveLetter(int letter);

// Drive kinds, the program's own numbering of GetDriveTypeA's answers.
enum DriveKind {
  kDriveNone = 0,
  kDriveFixed = 2,
  kDriveRemote = 3,
  kDriveCdRom = 4,
  kDriveRemovable = 5,
  kDriveRamDisk = 6,
};
// GetDriveTypeA of the root of `letter` ("X:\"); DRIVE_REMOTE for the letter "\\", a network root, without asking.
UINT RootDriveType(int letter);
// The drive kind of drive index 0 ("A") to 25; kDriveNone above 26.
int DriveKindOfIndex(int index);
// The per-letter tests: a CD-ROM drive, a removable disk, the kind 1 that nothing produces (always 0), a remote drive.
int IsCdDrive(int letter);
int IsRemovableDrive(int letter);
int IsKindOneDrive(int letter);
int IsRemoteDrive(int letter);
// 1 when the path holds a backslash and its first byte names a CD-ROM, removable or kind-one drive.
int IsOnRemovableMedia(const char *path);
// Gives back the drive table.
void ReleaseDriveTable(void);
// The file system kind that the drive table holds for a drive letter: -1 (unknown), as nothing fills the table.
int DriveFileSystemKind(int letter);
// Keeps a volume's file system name for its drive letter. Result: the file system kind; -1 (unknown) until the drive
// table is built.
int StoreDriveFileSystem(int letter, const char *fileSystemName);
