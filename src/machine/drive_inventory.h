// The drive inventory: the kinds of the machine's drives.
#pragma once

// Writes the letters of the drives whose kind is in `kindMask` (16: CD-ROM) to `buffer` (27 bytes), terminated.
// Result: their number.
int DriveLettersOfKinds(char *buffer, unsigned kindMask);
// 1 when the path lies on a drive of a removable kind (CD-ROM, removable disk).
int IsOnRemovableMedia(const char *path);
// Gives back the drive table.
void ReleaseDriveTable(void);
