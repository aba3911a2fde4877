// The drive inventory: the kind of a drive and of its file system, asked per letter from the system, and the drive
// table of the dialog tool's drive list, with its builder and its readers. Nothing in this tool builds the table, so
// its readers find it empty unless a caller builds it.
#pragma once

#include "platform/winapi.h"

// Drive kinds, the program's own numbering of GetDriveTypeA's answers; 7 and 8 are the table's rows of the computer
// and of the network, and nothing produces kind 1, which has a test of its own all the same.
enum DriveKind {
  kDriveNone = 0,
  kDriveKindOne = 1,
  kDriveFixed = 2,
  kDriveRemote = 3,
  kDriveCdRom = 4,
  kDriveRemovable = 5,
  kDriveRamDisk = 6,
  kDriveComputerRow = 7,
  kDriveNetworkRow = 8,
};
// Bits of a drive kind mask: kind k is bit 1 << k.
enum DriveKindBit : unsigned { kDriveKindRemote = 1u << kDriveRemote, kDriveKindCdRom = 1u << kDriveCdRom };
// The mask bit of a kind: 1 << kind for kinds 0 to 8, bit 0 (1) for any other.
unsigned DriveKindBit(int kind);
// The drive kind of a GetDriveTypeA answer: 2 removable 5, 3 fixed 2, 4 remote 3, 5 CD-ROM 4, 6 RAM disk 6, any
// other 0.
int DriveKindOfType(UINT driveType);

// File system kinds, from the name that a volume reports.
enum FileSystemKind {
  kFileSystemUnknown = -1,
  kFileSystemFat = 0,
  kFileSystemFat32 = 1,
  kFileSystemNtfs = 2,
  kFileSystemCdfs = 3,
  kFileSystemNetwork = 4,
};
// "FAT" 0, "FAT32" 1, "NTFS" 2, "CDFS" 3, "NETWORK" 4 (compared without case), any name that holds "NETOS" without
// case 4 (the tail that the network volumes' names get); any other name, empty and null too, -1.
int ClassifyFileSystem(const char *name);

// GetDriveTypeA of the root of `letter` ("X:\"); DRIVE_REMOTE for the letter "\", a network root, without asking.
UINT RootDriveType(int letter);
// The drive kind of drive index 0 ("A") to 25; kDriveNone outside them.
int DriveKindOfIndex(int index);
// The per-letter tests: a CD-ROM drive, a removable disk, the kind 1 that nothing produces (always 0), a remote drive.
// The last three go by drive index, which a letter outside A to Z (either case) has not: they give 0 for it.
int IsCdDrive(int letter);
int IsRemovableDrive(int letter);
int IsKindOneDrive(int letter);
int IsRemoteDrive(int letter);
// 1 when the path holds a backslash and its first byte names a CD-ROM, removable or kind-one drive.
int IsOnRemovableMedia(const char *path);

// The slot of a drive letter among the file system slots: the upper-cased letter less 'A' (the backslash of a network
// root has 27), or, once the table has a network row, that row's number for the backslash. Slots run from 0 to 28;
// anything else has none.
int DriveSlot(int letter);
// Keeps a volume's file system name and its kind for the drive letter, for the rest of the run. Result: the kind
// (ClassifyFileSystem); a letter without a slot keeps nothing.
int StoreDriveFileSystem(int letter, const char *fileSystemName);
// The file system kind last kept for the letter: -1 (unknown) until a volume of it was read.
int DriveFileSystemKind(int letter);

// ---- The drive table ----------------------------------------------------------------------------------------------
// Up to 29 rows, each a text of the drive list: one digit (the kind), the letter, a colon, then the label; so byte 1
// is the letter and the label begins at byte 3. Row 0 is the computer ("/"), then the network ("\") unless the
// network view is switched off, then the drives A to Z that answer.

// Fills the table anew: the computer's row (label "[ﾏｲｺﾝﾋﾟｭｰﾀ]"), the network's ("[ﾏｲﾈｯﾄﾜｰｸ]"), whose number then
// gives the network root its file system slot, and a row for each drive whose kind is not 0, with its letter in
// lower case when `flags` has both 4 and 2. `owner` and `images` are the dialog's and go nowhere here. Result: the
// number of rows less 1; -1 when not even the computer's row could be stored.
int BuildDriveTable(HWND owner, void *images, unsigned flags);
// Adds a row of `kind` for `letter` (its label cut to 258 bytes). Without a label one is read: none for a CD-ROM or a
// removable disk, which carry "???" so that no medium has to spin up; for the others the volume label of the root
// (GetVolumeDetails), or "???" when the volume does not answer. The letter "[" behind "Z" is refused once, with a
// warning through the console prompt that the drives exceed 26; a full table refuses any row. Result: the row's
// number, or -1 when it was refused or could not be stored.
int AddDriveRow(int kind, HWND owner, void *images, const char *label, int letter);
// The number of rows the latest build stored (kept over ReleaseDriveTable, whose rows then hold nothing).
int DriveRowCount(void);
// The row number of the network row, -1 before a build has stored one.
int NetworkRowNumber(void);
// Writes the letters of rows 1 to 28 whose kind has its bit in `kindMask` to `buffer` (room for 29 bytes), as a plain
// terminated text. Result: the buffer.
char *DriveLettersOfKinds(char *buffer, unsigned kindMask);
// 1 when `letter` is among the table's network drives (kind 3, without case), else 0.
int IsNetworkDriveLetter(int letter);
// The letter of a row: 0 when the row holds nothing, -11 when `checkBounds` is set and `row` is 28 or more. Rows are
// counted from 0 with `fromZero` set, otherwise from the row behind row 0.
int DriveRowLetter(int row, int fromZero, int checkBounds);
// DriveRowLetter with the bounds check.
int DriveLetterOfRow(int row, int fromZero);
// The row that holds `letter` (compared in upper case), or -1. With `fromZero` clear row 0 is passed over and the
// answer is counted from row 1.
int FindDriveRow(int letter, int fromZero);
// Copies a row's label to `buffer`: at most `size` bytes with the terminator, and never past byte 255, cut between
// characters; empty for a row that holds nothing. `unread` (may be null) is set to 1 when the label is "???" and left
// as it was otherwise. Rows are counted as DriveRowLetter counts them. Result: the buffer.
char *DriveRowLabel(char *buffer, int row, int *unread, int size, int fromZero);
// Gives back the rows' texts. The count stays as it is; the rows then hold nothing. Nothing to give back is no fault.
void ReleaseDriveTable(void);
// For tests: gives back the rows and the kept file system names, and puts the table, the network row, the file system
// kinds and the overflow warning back as they are at start.
void ForgetDriveTable(void);
