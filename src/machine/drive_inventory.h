// The drive inventory: the kinds of the machine's drives.
#pragma once

// Bits of a drive kind mask.
enum DriveKindBit : unsigned { kDriveKindCdRom = 16 };

// Writes the letters of the drives whose kind is in `kindMask` to `buffer` (27 bytes), terminated.
// Result: their number.
int DriveLettersOfKinds(char *buffer, unsigned kindMask);
// 1 when the path lies on a drive of a removable kind (CD-ROM, removable disk).
int IsOnRemovableMedia(const char *path);
// Gives back the drive table.
void ReleaseDriveTable(void);
// The file system kind that the drive table holds for a drive letter: -1 (unknown), as nothing fills the table.
int DriveFileSystemKind(int letter);
// Keeps a volume's file system name for its drive letter. Result: the file system kind; -1 (unknown) until the drive
// table is built.
int StoreDriveFileSystem(int letter, const char *fileSystemName);
