// The drive inventory. Until the drive table is built, no drive is of any kind.
#include "machine/drive_inventory.h"

int DriveLettersOfKinds(char *buffer, unsigned) {
  buffer[0] = 0;
  return 0;
}

void ReleaseDriveTable(void) {}

int IsOnRemovableMedia(const char *) { return 0; }

int DriveFileSystemKind(int) { return -1; }
int StoreDriveFileSystem(int, const char *) { return -1; }
