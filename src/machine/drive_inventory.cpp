// The drive inventory: the kind of a drive asked per letter from the system, the file system kinds kept per letter,
// and the drive table of the dialog tool's drive list, which nothing in this tool builds.
#include "machine/drive_inventory.h"

#include <cstdio>
#include <cstring>

#include "console/console_prompt.h"
#include "machine/network_paths.h"
#include "platform/system_calls.h"
#include "resources/message_ids.h"
#include "text/growing_text.h"
#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/resource_strings.h"
#include "text/tokens.h"

namespace {

const int kRowCapacity = 29;
const int kSlotCount = 29;
// The highest row number that a reader with the bounds check takes, and its answer beyond.
const int kBoundedRows = 28;
const int kOutOfBounds = -11;
const int kLabelLimit = 258;
const int kLabelReadLimit = 256;  // DriveRowLabel writes no byte past 255
const char kUnreadLabel[] = "???";

int driveRowCount = 0;
BlockRecord driveRows[kRowCapacity];
unsigned driveRowKinds[kRowCapacity];
int networkRow = -1;
int driveOverflowWarned = 1;

int driveFsKind[kSlotCount] = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
                               -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
HGLOBAL driveFsName[kSlotCount];

int DriveKindOfLetter(int letter) { return DriveKindOfIndex(ToUpperByte(letter & 0xFF) - 'A'); }

// Copies at most `limit` - 1 bytes of `source` and a terminator, never parting a double-byte character.
void CopyCut(char *dest, const char *source, int limit) {
  int length = 0;
  while (source[length] != 0) {
    int step = IsLeadByte(static_cast<unsigned char>(source[length])) && source[length + 1] != 0 ? 2 : 1;
    if (length + step > limit - 1) break;
    length += step;
  }
  std::memcpy(dest, source, static_cast<size_t>(length));
  dest[length] = 0;
}

// "NETOS" in the name, at a character boundary, without regard to the case of single-byte letters. A fixed pattern
// of letters needs no folded copies, so this search takes no memory.
bool HoldsNetworkTail(const char *name) {
  static const char kTail[] = "NETOS";
  for (const char *p = name; *p != 0;) {
    int i = 0;
    while (kTail[i] != 0 && ToUpperByte(static_cast<unsigned char>(p[i])) == kTail[i]) ++i;
    if (kTail[i] == 0) return true;
    p += IsLeadByte(static_cast<unsigned char>(*p)) && p[1] != 0 ? 2 : 1;
  }
  return false;
}

// The table's row for a row number as the readers count it; null when the row holds nothing.
const char *RowText(int row, int fromZero) {
  if (row < 0) return nullptr;
  int index = fromZero ? row : row + 1;
  if (index >= driveRowCount || index >= kRowCapacity) return nullptr;
  return driveRows[index].locked;
}

// The warning that the table has no room for a drive behind Z, in the pair of the program's language.
void WarnDriveOverflow(HWND owner) {
  static const char *const kTitles[] = {"GetDriveInfomation", "ドライブ情報取得"};
  static const char *const kTexts[] = {
      "The number of drive number exceeds 26.  Something fatal occurrs in your computer system.",
      "ドライブの数が２６をオーバーしました。コンピュータシステムが異常です。"};
  int language = LanguageIndex() == 0 ? 0 : 1;
  ConsolePrompt(owner, kTexts[language], kTitles[language], MB_ICONEXCLAMATION);
}

// The label of a drive whose row is made without one.
void ReadRowLabel(int kind, int letter, char *label, DWORD labelSize) {
  // Reading a CD-ROM's or a removable disk's label would spin up its medium.
  if (kind == kDriveCdRom || kind == kDriveRemovable) {
    std::strcpy(label, kUnreadLabel);
    return;
  }
  char root[4] = {static_cast<char>(letter), ':', '\\', 0};
  DWORD serial = 0, maxLength = 0, flags = 0;
  char fileSystem[MAX_PATH + 1];
  label[0] = 0;
  if (!GetVolumeDetails(root, label, labelSize, &serial, &maxLength, &flags, fileSystem, sizeof fileSystem))
    std::strcpy(label, kUnreadLabel);
}

}  // namespace

unsigned DriveKindBit(int kind) { return kind >= 0 && kind <= 8 ? 1u << kind : 1u; }

int DriveKindOfType(UINT driveType) {
  switch (driveType) {
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

int ClassifyFileSystem(const char *name) {
  static const char *const kNames[] = {"FAT", "FAT32", "NTFS", "CDFS", "NETWORK"};
  if (name == nullptr) return kFileSystemUnknown;
  for (int kind = 0; kind < 5; ++kind)
    if (lstrcmpiA(name, kNames[kind]) == 0) return kind;
  return HoldsNetworkTail(name) ? kFileSystemNetwork : kFileSystemUnknown;
}

UINT RootDriveType(int letter) {
  char root[4] = {static_cast<char>(letter), ':', '\\', 0};
  if (IsNetworkPath(root)) return DRIVE_REMOTE;
  return GetDriveTypeA(root);
}

int DriveKindOfIndex(int index) {
  if (index < 0 || index > 25) return kDriveNone;
  return DriveKindOfType(RootDriveType('A' + index));
}

int IsCdDrive(int letter) { return RootDriveType(letter) == DRIVE_CDROM ? 1 : 0; }
int IsRemovableDrive(int letter) { return DriveKindOfLetter(letter) == kDriveRemovable ? 1 : 0; }
// No answer of GetDriveTypeA is kind 1, so the system is not asked.
int IsKindOneDrive(int) { return 0; }
int IsRemoteDrive(int letter) { return DriveKindOfLetter(letter) == kDriveRemote ? 1 : 0; }

int IsOnRemovableMedia(const char *path) {
  if (path == nullptr || FindCharacter(path, '\\') == nullptr) return 0;
  int letter = static_cast<unsigned char>(path[0]);
  return IsCdDrive(letter) || IsRemovableDrive(letter) || IsKindOneDrive(letter) ? 1 : 0;
}

int DriveSlot(int letter) {
  char root[4] = {static_cast<char>(letter), ':', '\\', 0};
  if (networkRow != -1 && IsNetworkPath(root)) return networkRow;
  return ToUpperByte(letter & 0xFF) - 'A';
}

int StoreDriveFileSystem(int letter, const char *fileSystemName) {
  int kind = ClassifyFileSystem(fileSystemName);
  int slot = DriveSlot(letter);
  if (slot < 0 || slot >= kSlotCount) return kind;
  // A name that finds no room is lost; its kind is what the program reads.
  StoreTextInBlock(&driveFsName[slot], fileSystemName);
  driveFsKind[slot] = kind;
  return kind;
}

int DriveFileSystemKind(int letter) {
  int slot = DriveSlot(letter);
  return slot >= 0 && slot < kSlotCount ? driveFsKind[slot] : kFileSystemUnknown;
}

int BuildDriveTable(HWND owner, void *images, unsigned flags) {
  driveRowCount = 0;
  LoadStrings(kMsgMyComputer, 0);
  if (AddDriveRow(kDriveComputerRow, owner, images, FirstSlotText(), '/') < 0) return -1;
  // IsNetworkPath answers nothing while the network view is switched off.
  if (IsNetworkPath("\\:\\")) {
    networkRow = driveRowCount;
    LoadStrings(kMsgMyNetwork, 0);
    AddDriveRow(kDriveNetworkRow, owner, images, FirstSlotText(), '\\');
  }
  bool lower = (flags & 6) == 6;
  for (int index = 0; index < 26; ++index) {
    int kind = DriveKindOfIndex(index);
    if (kind != kDriveNone) AddDriveRow(kind, owner, images, nullptr, (lower ? 'a' : 'A') + index);
  }
  return driveRowCount - 1;
}

int AddDriveRow(int kind, HWND owner, void *, const char *label, int letter) {
  char read[MAX_PATH + 1];
  if (label == nullptr) {
    ReadRowLabel(kind, letter, read, sizeof read);
    label = read;
  }
  if (driveOverflowWarned && ToUpperByte(letter & 0xFF) == 'Z' + 1) {
    WarnDriveOverflow(owner);
    driveOverflowWarned = 0;
    return -1;
  }
  if (driveRowCount >= kRowCapacity) return -1;
  char text[3 + kLabelLimit + 1];
  std::snprintf(text, 4, "%d%c:", kind >= 0 && kind <= 9 ? kind : 0, letter);
  CopyCut(text + 3, label, kLabelLimit + 1);
  BlockRecord &row = driveRows[driveRowCount];
  // A row of an earlier build keeps its block, which takes the new text.
  if (row.locked != nullptr) GlobalUnlock(row.handle);
  row.locked = nullptr;
  if (!StoreTextInBlock(&row.handle, text)) return -1;
  row.locked = static_cast<char *>(GlobalLock(row.handle));
  if (row.locked == nullptr) {
    ReleaseBlockRecord(&row);
    return -1;
  }
  row.size = static_cast<DWORD>(std::strlen(text) + 1);
  driveRowKinds[driveRowCount] = static_cast<unsigned>(kind);
  return driveRowCount++;
}

int DriveRowCount(void) { return driveRowCount; }
int NetworkRowNumber(void) { return networkRow; }

char *DriveLettersOfKinds(char *buffer, unsigned kindMask) {
  int length = 0;
  for (int index = 1; index < kRowCapacity && index < driveRowCount; ++index)
    if (driveRows[index].locked != nullptr && (DriveKindBit(static_cast<int>(driveRowKinds[index])) & kindMask))
      buffer[length++] = driveRows[index].locked[1];
  buffer[length] = 0;
  return buffer;
}

int IsNetworkDriveLetter(int letter) {
  char letters[kRowCapacity + 1];
  DriveLettersOfKinds(letters, kDriveKindRemote);
  for (const char *p = letters; *p != 0; ++p)
    if (ToUpperByte(static_cast<unsigned char>(*p)) == ToUpperByte(letter & 0xFF)) return 1;
  return 0;
}

int DriveRowLetter(int row, int fromZero, int checkBounds) {
  if (checkBounds && row >= kBoundedRows) return kOutOfBounds;
  const char *text = RowText(row, fromZero);
  return text != nullptr ? static_cast<unsigned char>(text[1]) : 0;
}

int DriveLetterOfRow(int row, int fromZero) { return DriveRowLetter(row, fromZero, 1); }

int FindDriveRow(int letter, int fromZero) {
  int wanted = ToUpperByte(letter & 0xFF);
  for (int index = fromZero ? 0 : 1; index < driveRowCount && index < kRowCapacity; ++index) {
    const char *text = driveRows[index].locked;
    if (text != nullptr && ToUpperByte(static_cast<unsigned char>(text[1])) == wanted)
      return fromZero ? index : index - 1;
  }
  return -1;
}

char *DriveRowLabel(char *buffer, int row, int *unread, int size, int fromZero) {
  if (buffer == nullptr || size <= 0) return buffer;
  const char *text = RowText(row, fromZero);
  if (text == nullptr) {
    buffer[0] = 0;
    return buffer;
  }
  CopyCut(buffer, text + 3, size < kLabelReadLimit ? size : kLabelReadLimit);
  if (unread != nullptr && std::strcmp(text + 3, kUnreadLabel) == 0) *unread = 1;
  return buffer;
}

void ReleaseDriveTable(void) {
  for (BlockRecord &row : driveRows) ReleaseBlockRecord(&row);
}

void ForgetDriveTable(void) {
  ReleaseDriveTable();
  driveRowCount = 0;
  networkRow = -1;
  driveOverflowWarned = 1;
  for (int slot = 0; slot < kSlotCount; ++slot) {
    if (driveFsName[slot] != nullptr) GlobalFree(driveFsName[slot]);
    driveFsName[slot] = nullptr;
    driveFsKind[slot] = kFileSystemUnknown;
  }
}
