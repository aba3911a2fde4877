// The drive inventory: the kinds of the machine's drives.
#pragma once

// Writes the letters of the drives whose kind is in `kindMask` (16: CD-ROM) to `buffer` (27 bytes), terminated.
// Result: their number.
int DriveLettersOfKinds(char *buffer, unsigned kindMask);
// Gives back the drive table.
void ReleaseDriveTable(void);
