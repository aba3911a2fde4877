// The drive inventory: the kind of a drive asked per letter from the system, and the drive table, which nothing in
// this tool builds, so that its readers find it empty.
#include "machine/drive_inventory.h"

#include "platform/winapi.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/tokens.h"

namespace {

int KindOfDriveType(UINT type) {
  switch (type) {
    case DRIVE_REMOVABLE:
      return kDriveRemovable;
    case DRIVE_FIXED:
      return kDriveFixed;
    case DRIVE_REMOTE:
      return kDriveRemote;
    case DRIVE_CDROM:
      return kDriveCdRom;
    case DRIVE_RAMDISK:
      return kDriveRamDisk;
    default:
      return kDriveNone;
  }
}

int DriveKindOfLetter(int letter) {
  int upper = letter >= 'a' && letter <= 'z' ? letter - 'a' + 'A' : letter;
  return DriveKindOfIndex(upper - 'A');
}

}  // namespace

char *DriveLettersOfKinds(char *buffer, unsigned) {
  buffer[0] = 0;
  return buffer;
}

int IsNetworkDriveLetter(int letter) {
  char letters[30];
  DriveLettersOfKinds(letters, 1u << kDriveRemote);
  for (const char *p = letters; *p != 0; ++p)
    if (ToUpperByte(static_cast<unsigned char>(*p)) == ToUpperByte(letter & 0xFF)) return 1;
  return 0;
}

UINT RootDriveType(int letter) {
  char root[4] = {static_cast<char>(letter), ':', '\\', 0};
  if (IsNetworkPath(root)) return DRIVE_REMOTE;
  return GetDriveTypeA(root);
}

int DriveKindOfIndex(int index) {
  if (index < 0 || index > 25) return kDriveNone;
  return KindOfDriveType(RootDriveType('A' + index));
}

int IsCdDrive(int letter) { return RootDriveType(letter) == DRIVE_CDROM ? 1 : 0; }
int IsRemovableDrive(int letter) { return DriveKindOfLetter(letter) == kDriveRemovable ? 1 : 0; }
int IsKindOneDrive(int) { return 0; }
int IsRemoteDrive(int letter) { return DriveKindOfLetter(letter) == kDriveRemote ? 1 : 0; }

int IsOnRemovableMedia(const char *path) {
  if (path == nullptr || FindCharacter(path, '\\') == nullptr) return 0;
  int letter = static_cast<unsigned char>(path[0]);
  return IsCdDrive(letter) || IsRemovableDrive(letter) || IsKindOneDrive(letter) ? 1 : 0;
}

void ReleaseDriveTable(void) {}

int DriveFileSystemKind(int) { return -1; }
int StoreDriveFileSystem(int, const char *) { return -1; }
