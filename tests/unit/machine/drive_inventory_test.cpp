// The drive inventory: drive kinds asked per letter, file system kinds, and the drive table with its builder, its
// limits and its readers. A machine with every kind of drive is made by putting a GetDriveTypeA of the test's own in
// the swappable call table, so that the same rows run on Linux and under Wine.
#include "machine/drive_inventory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "machine/network_paths.h"
#include "platform/testing.h"
#include "reports/error_reporter.h"
#include "support/scratch_folder.h"

#ifndef _WIN32
#include "platform/posix/testing.h"
#endif

namespace {

// A machine with a removable disk A:, a fixed disk C:, a CD-ROM drive D:, a network drive E:, a RAM disk R: and a
// drive U: that the system cannot tell; every other letter has no drive.
int driveTypeCalls = 0;
std::string lastRootAsked;
UINT WINAPI MachineOfEveryKind(LPCSTR root) {
  ++driveTypeCalls;
  lastRootAsked = root != nullptr ? root : "(null)";
  switch (root != nullptr ? root[0] & ~0x20 : 0) {
    case 'A':
      return DRIVE_REMOVABLE;
    case 'C':
      return DRIVE_FIXED;
    case 'D':
      return DRIVE_CDROM;
    case 'E':
      return DRIVE_REMOTE;
    case 'R':
      return DRIVE_RAMDISK;
    case 'U':
      return DRIVE_UNKNOWN;
    default:
      return DRIVE_NO_ROOT_DIR;
  }
}

class DriveRows : public ::testing::Test {
 protected:
  void SetUp() override {
    ForgetDriveTable();
    ASSERT_TRUE(TestSwapSystemCall("GetDriveTypeA", TestCall(&MachineOfEveryKind)));
    driveTypeCalls = 0;
  }
  void TearDown() override {
    TestRestoreSystemCalls();
    ForgetDriveTable();
  }
};

std::string Label(int row, int fromZero, int size = 300, int *unread = nullptr) {
  char buffer[300];
  std::memset(buffer, '#', sizeof buffer);
  EXPECT_EQ(DriveRowLabel(buffer, row, unread, size, fromZero), buffer);
  return buffer;
}

std::string Letters(unsigned mask) {
  char buffer[40];
  std::memset(buffer, '#', sizeof buffer);
  EXPECT_EQ(DriveLettersOfKinds(buffer, mask), buffer);
  EXPECT_EQ(buffer[29], '#') << "29 bytes at most";
  return buffer;
}

// The label that a fixed drive's row is to carry: the volume's, as the network-aware volume reader gives it, or
// "???" when the volume does not answer.
std::string VolumeLabelOf(char letter) {
  char root[4] = {letter, ':', '\\', 0};
  char label[MAX_PATH + 1] = "", fileSystem[MAX_PATH + 1];
  DWORD serial, maxLength, flags;
  return GetVolumeDetails(root, label, sizeof label, &serial, &maxLength, &flags, fileSystem, sizeof fileSystem)
             ? label
             : "???";
}

TEST(DriveKinds, OfDriveTypes) {
  struct Row {
    UINT driveType;
    int kind;
  } rows[] = {{DRIVE_UNKNOWN, 0}, {DRIVE_NO_ROOT_DIR, 0}, {DRIVE_REMOVABLE, 5}, {DRIVE_FIXED, 2},
              {DRIVE_REMOTE, 3},  {DRIVE_CDROM, 4},       {DRIVE_RAMDISK, 6},   {7, 0},
              {0xFFFFFFFFu, 0}};
  for (const Row &row : rows) EXPECT_EQ(DriveKindOfType(row.driveType), row.kind) << "drive type " << row.driveType;
}

TEST(DriveKinds, MaskBits) {
  struct Row {
    int kind;
    unsigned bit;
  } rows[] = {{0, 0x1},  {1, 0x2},  {2, 0x4},   {3, 0x8}, {4, 0x10}, {5, 0x20},
              {6, 0x40}, {7, 0x80}, {8, 0x100}, {9, 0x1}, {-1, 0x1}, {100, 0x1}};
  for (const Row &row : rows) EXPECT_EQ(DriveKindBit(row.kind), row.bit) << "kind " << row.kind;
}

TEST(FileSystemKinds, ByName) {
  struct Row {
    const char *name;
    int kind;
  } rows[] = {{"FAT", 0},
              {"fat", 0},
              {"FAT32", 1},
              {"Fat32", 1},
              {"ntfs", 2},
              {"NTFS", 2},
              {"CDFS", 3},
              {"NETWORK", 4},
              {"network", 4},
              {"LINUX-like NETOS", 4},
              {"NTFS-like NETOS", 4},
              {"NTFS系NETOS", 4},  // the Japanese suffix
              {"netos", 4},
              {"xNeToSx", 4},
              {"exFAT", -1},
              {"FAT16", -1},
              {"NTFS ", -1},
              {"NETO", -1},
              {"LINUX", -1},  // a Samba server's name, which keeps no suffix
              {"UNIX", -1},
              {"EXT4", -1},
              {"", -1},
              {nullptr, -1},
              // "N" as the trail byte of a double-byte character starts no match.
              {"\x83NETOS", -1},
              {"\x83NNETOS", 4}};
  for (const Row &row : rows) EXPECT_EQ(ClassifyFileSystem(row.name), row.kind) << (row.name ? row.name : "(null)");
}

TEST(FileSystemKinds, KeptPerLetter) {
  ForgetDriveTable();
  struct Row {
    int letter;
    const char *name;
    int stored;    // StoreDriveFileSystem's answer
    int readBack;  // DriveFileSystemKind afterwards
  } rows[] = {{'c', "NTFS", 2, 2},
              {'C', "FAT32", 1, 1},
              {'Z', "CDFS", 3, 3},
              {'a', "", -1, -1},
              {'\\', "NTFS-like NETOS", 4, 4},  // a network root's slot, 27
              {'[', "FAT", 0, 0},
              {']', "NETWORK", 4, 4},  // slots 26 and 28
              {'^', "NTFS", 2, -1},
              {'1', "NTFS", 2, -1},  // no slot: nothing kept
              {'q', nullptr, -1, -1}};
  for (const Row &row : rows) {
    EXPECT_EQ(StoreDriveFileSystem(row.letter, row.name), row.stored) << static_cast<char>(row.letter);
    EXPECT_EQ(DriveFileSystemKind(row.letter), row.readBack) << static_cast<char>(row.letter);
  }
  EXPECT_EQ(DriveFileSystemKind('c'), 1) << "the last name kept for a letter counts, in either case";
  EXPECT_EQ(DriveFileSystemKind('D'), -1) << "never read";
  EXPECT_EQ(DriveSlot('a'), 0);
  EXPECT_EQ(DriveSlot('\\'), 27);
  EXPECT_EQ(DriveSlot(']'), 28);
  ForgetDriveTable();
  EXPECT_EQ(DriveFileSystemKind('c'), -1);
}

TEST(DriveInventory, KindsOfTheScratchDrive) {
  ScratchFolder scratch;
#ifndef _WIN32
  // An ordinary disk under the scratch folder, whatever the machine's own /tmp is.
  TestSetMountTable("20 1 8:1 / / rw - ext4 /dev/sda1 rw\n");
  TestSetDeviceFolders(scratch.LinuxPath().c_str(), scratch.LinuxPath().c_str());
#endif
  int letter = scratch.Path()[0];
  EXPECT_EQ(RootDriveType(letter), static_cast<UINT>(DRIVE_FIXED));
  EXPECT_EQ(DriveKindOfIndex((letter | 0x20) - 'a'), kDriveFixed) << "kinds are the program's own numbers";
  EXPECT_EQ(IsCdDrive(letter), 0);
  EXPECT_EQ(IsRemovableDrive(letter | 0x20), 0);
  EXPECT_EQ(IsRemoteDrive(letter), 0);
  EXPECT_EQ(IsOnRemovableMedia(scratch.Path().c_str()), 0);
#ifndef _WIN32
  TestSetMountTable(nullptr);
  TestSetDeviceFolders(nullptr, nullptr);
#endif
}

TEST(DriveInventory, LettersWithoutAnAnswer) {
  EXPECT_EQ(RootDriveType('\\'), static_cast<UINT>(DRIVE_REMOTE)) << "a network root, never asked";
  EXPECT_EQ(IsRemoteDrive('\\'), 0) << "the kind test goes by drive index, which the backslash has not";
  EXPECT_EQ(DriveKindOfIndex(26), kDriveNone);
  EXPECT_EQ(DriveKindOfIndex(-1), kDriveNone);
  EXPECT_EQ(IsKindOneDrive('C'), 0);
  EXPECT_EQ(IsOnRemovableMedia("a.txt"), 0) << "no backslash, no drive";
  EXPECT_EQ(IsOnRemovableMedia(nullptr), 0);
}

TEST(DriveInventory, TheEmptyTable) {
  ForgetDriveTable();
  EXPECT_EQ(Letters(0xFFFFFFFFu), "");
  for (int letter = 'A'; letter <= 'Z'; ++letter) EXPECT_EQ(IsNetworkDriveLetter(letter), 0);
  EXPECT_EQ(IsNetworkDriveLetter('\\'), 0);
  EXPECT_EQ(DriveLetterOfRow(0, 0), 0);
  EXPECT_EQ(DriveLetterOfRow(0, 1), 0);
  EXPECT_EQ(DriveRowCount(), 0);
  EXPECT_EQ(FindDriveRow('C', 1), -1);
  EXPECT_EQ(Label(0, 1), "");
  EXPECT_EQ(NetworkRowNumber(), -1);
  ReleaseDriveTable();  // nothing to give back
  ReleaseDriveTable();
  EXPECT_EQ(DriveRowCount(), 0);
}

TEST_F(DriveRows, KindsOfEveryDrive) {
  struct Row {
    int index;
    int kind;
  } rows[] = {{0, kDriveRemovable},
              {1, kDriveNone},
              {2, kDriveFixed},
              {3, kDriveCdRom},
              {4, kDriveRemote},
              {17, kDriveRamDisk},
              {20, kDriveNone} /* DRIVE_UNKNOWN */,
              {25, kDriveNone}};
  for (const Row &row : rows) EXPECT_EQ(DriveKindOfIndex(row.index), row.kind) << "index " << row.index;
  DriveKindOfIndex(3);
  EXPECT_EQ(lastRootAsked, "D:\\") << "the system is asked about the drive's root";

  struct Test {
    const char *what;
    int (*test)(int letter);
    const char *yes;  // the letters of both cases for which it answers 1
  } tests[] = {{"IsCdDrive", IsCdDrive, "Dd"},
               {"IsRemovableDrive", IsRemovableDrive, "Aa"},
               {"IsRemoteDrive", IsRemoteDrive, "Ee"},
               {"IsKindOneDrive", IsKindOneDrive, ""}};
  for (const Test &test : tests)
    for (const char *letter = "AaCcDdEeRrUuZz\\"; *letter != 0; ++letter)
      EXPECT_EQ(test.test(*letter), std::strchr(test.yes, *letter) != nullptr ? 1 : 0) << test.what << " " << *letter;

  struct Path {
    const char *path;
    int onRemovable;
  } paths[] = {{"D:\\a", 1},
               {"d:\\", 1},
               {"A:\\x\\y.lnk", 1},
               {"C:\\x", 0},
               {"E:\\x", 0},
               {"R:\\x", 0},
               {"D:a", 0} /* no backslash */,
               {"a.txt", 0},
               {"", 0},
               {nullptr, 0},
               {"\\\\srv\\sh", 0}};
  for (const Path &path : paths)
    EXPECT_EQ(IsOnRemovableMedia(path.path), path.onRemovable) << (path.path ? path.path : "(null)");

  driveTypeCalls = 0;
  EXPECT_EQ(RootDriveType('\\'), static_cast<UINT>(DRIVE_REMOTE));
  EXPECT_EQ(driveTypeCalls, 0) << "a network root is not asked about";
}

TEST_F(DriveRows, RowsOfABuiltTable) {
  EXPECT_EQ(BuildDriveTable(nullptr, nullptr, 0), 6) << "the number of rows less 1";
  EXPECT_EQ(DriveRowCount(), 7);
  EXPECT_EQ(NetworkRowNumber(), 1);

  // Rows counted from zero: the computer, the network, then A, C, D, E and R.
  struct Row {
    int letter;
    std::string label;
  } rows[] = {{'/', "[ﾏｲｺﾝﾋﾟｭｰﾀ]"},
              {'\\', "[ﾏｲﾈｯﾄﾜｰｸ]"},
              {'A', "???"},  // a removable disk's label is never read
              {'C', VolumeLabelOf('C')},
              {'D', "???"},  // nor a CD-ROM's
              {'E', VolumeLabelOf('E')},
              {'R', VolumeLabelOf('R')}};
  for (int row = 0; row < 7; ++row) {
    EXPECT_EQ(DriveRowLetter(row, 1, 0), rows[row].letter) << "row " << row;
    EXPECT_EQ(Label(row, 1), rows[row].label) << "row " << row;
    if (row > 0) {
      EXPECT_EQ(DriveLetterOfRow(row - 1, 0), rows[row].letter) << "counted from the row behind row 0: " << row;
      EXPECT_EQ(Label(row - 1, 0), rows[row].label) << "counted from the row behind row 0: " << row;
    }
  }
  EXPECT_EQ(DriveLetterOfRow(0, 0), '\\');
  EXPECT_EQ(DriveLetterOfRow(7, 1), 0) << "behind the last row";
  EXPECT_EQ(DriveLetterOfRow(6, 0), 0) << "behind the last row, counted from 1";

  // Kinds by mask; row 0, the computer, is never among them.
  struct Mask {
    unsigned mask;
    const char *letters;
  } masks[] = {{1u << 4, "D"},  {1u << 5, "A"}, {1u << 3, "E"}, {1u << 6, "R"},           {1u << 2, "C"},
               {1u << 8, "\\"}, {1u << 7, ""},  {34, "A"},      {0xFFFFFFFFu, "\\ACDER"}, {0, ""}};
  for (const Mask &mask : masks) EXPECT_EQ(Letters(mask.mask), mask.letters) << "mask " << mask.mask;
  EXPECT_EQ(IsNetworkDriveLetter('e'), 1);
  EXPECT_EQ(IsNetworkDriveLetter('E'), 1);
  EXPECT_EQ(IsNetworkDriveLetter('C'), 0);
  EXPECT_EQ(IsNetworkDriveLetter('\\'), 0) << "the network row is kind 8, not a network drive";

  struct Find {
    int letter, fromZero, row;
  } finds[] = {{'/', 1, 0},  {'/', 0, -1} /* row 0 is passed over */,
               {'\\', 1, 1}, {'\\', 0, 0},
               {'c', 1, 3},  {'C', 0, 2},
               {'r', 0, 5},  {'Q', 1, -1},
               {'Z', 0, -1}};
  for (const Find &find : finds)
    EXPECT_EQ(FindDriveRow(find.letter, find.fromZero), find.row)
        << static_cast<char>(find.letter) << " from zero " << find.fromZero;

  int unread = 0;
  Label(2, 1, 300, &unread);
  EXPECT_EQ(unread, 1) << "\"???\" marks a label that was not read";
  unread = 7;
  Label(0, 1, 300, &unread);
  EXPECT_EQ(unread, 7) << "another label leaves the flag as it was";

  // The network row gives the network root its file system slot.
  EXPECT_EQ(DriveSlot('\\'), 1);
  EXPECT_EQ(DriveSlot('c'), 2);
}

TEST_F(DriveRows, LowerCaseLettersWithFlagsFourAndTwo) {
  struct Row {
    unsigned flags;
    const char *letters;
  } rows[] = {{6, "\\acder"}, {0xFF, "\\acder"}, {4, "\\ACDER"}, {2, "\\ACDER"}, {0, "\\ACDER"}};
  for (const Row &row : rows) {
    BuildDriveTable(nullptr, nullptr, row.flags);
    EXPECT_EQ(Letters(0xFFFFFFFFu), row.letters) << "flags " << row.flags;
  }
  BuildDriveTable(nullptr, nullptr, 6);
  EXPECT_EQ(FindDriveRow('C', 1), 3) << "compared in upper case";
  EXPECT_EQ(IsNetworkDriveLetter('E'), 1);
}

TEST_F(DriveRows, BoundsOfTheReaders) {
  BuildDriveTable(nullptr, nullptr, 0);
  struct Row {
    int row, fromZero, checkBounds, letter;
  } rows[] = {{28, 1, 1, -11}, {28, 0, 1, -11}, {100, 1, 1, -11}, {27, 1, 1, 0}, {28, 1, 0, 0},
              {28, 0, 0, 0},   {1000, 0, 0, 0}, {-1, 1, 0, 0},    {-1, 0, 1, 0}, {6, 1, 1, 'R'}};
  for (const Row &row : rows)
    EXPECT_EQ(DriveRowLetter(row.row, row.fromZero, row.checkBounds), row.letter)
        << "row " << row.row << " from zero " << row.fromZero << " bounds " << row.checkBounds;
  EXPECT_EQ(DriveLetterOfRow(28, 1), -11) << "with the bounds check";
  EXPECT_EQ(Label(28, 1), "");
  EXPECT_EQ(Label(-3, 1), "");
}

TEST_F(DriveRows, LabelsAreCutBetweenCharacters) {
  std::string longLabel(300, 'x');
  ASSERT_EQ(AddDriveRow(kDriveFixed, nullptr, nullptr, longLabel.c_str(), 'Q'), 0);
  ASSERT_EQ(AddDriveRow(kDriveFixed, nullptr, nullptr, "表表", 'S'), 1);  // 0x95 0x5C twice
  struct Row {
    int row, size;
    std::string label;
  } rows[] = {{0, 300, std::string(255, 'x')},  // never past byte 255
              {0, 256, std::string(255, 'x')},
              {0, 10, std::string(9, 'x')},
              {0, 1, ""},
              {1, 5, "表表"},
              {1, 4, "表"},  // the second character would not leave room for the terminator
              {1, 3, "表"},
              {1, 2, ""}};
  for (const Row &row : rows)
    EXPECT_EQ(Label(row.row, 1, row.size), row.label) << "row " << row.row << " size " << row.size;
  char untouched[4] = "abc";
  EXPECT_EQ(DriveRowLabel(untouched, 0, nullptr, 0, 1), untouched);
  EXPECT_STREQ(untouched, "abc") << "a size of 0 writes nothing";
}

TEST_F(DriveRows, TheTableHoldsTwentyNineRows) {
  for (int row = 0; row < 29; ++row) {
    int letter = row < 26 ? 'A' + row : 'a' + row - 26;
    ASSERT_EQ(AddDriveRow(kDriveFixed, nullptr, nullptr, "x", letter), row);
  }
  EXPECT_EQ(AddDriveRow(kDriveFixed, nullptr, nullptr, "x", 'd'), -1) << "a full table refuses any row";
  EXPECT_EQ(DriveRowCount(), 29);
  EXPECT_EQ(Letters(1u << kDriveFixed), "BCDEFGHIJKLMNOPQRSTUVWXYZabc") << "rows 1 to 28";
  EXPECT_EQ(DriveRowLetter(28, 1, 0), 'c');
}

TEST_F(DriveRows, ADriveBehindZIsRefusedOnceWithAWarning) {
  struct Row {
    int language;
    std::string output;
  } rows[] = {
      {1, "ドライブ情報取得:ドライブの数が２６をオーバーしました。コンピュータシステムが異常です。Press Any Key>>"},
      {0,
       "GetDriveInfomation:The number of drive number exceeds 26.  Something fatal occurrs in your computer "
       "system.Press Any Key>>"}};
  for (const Row &row : rows) {
    ForgetDriveTable();
    SetLanguageIndex(row.language);
    TestConsoleBegin("");
    EXPECT_EQ(AddDriveRow(kDriveFixed, nullptr, nullptr, "x", '['), -1);
    EXPECT_EQ(TestConsoleOutput(), row.output);
    EXPECT_EQ(AddDriveRow(kDriveFixed, nullptr, nullptr, "x", '['), 0) << "the warning is given once";
    EXPECT_EQ(TestConsoleOutput(), row.output) << "and no second time";
    TestConsoleEnd();
  }
  SetLanguageIndex(1);
}

TEST_F(DriveRows, ReleasedAndBuiltAgain) {
  size_t before = TestLiveBlockCount();
  BuildDriveTable(nullptr, nullptr, 0);
  size_t built = TestLiveBlockCount();
  EXPECT_EQ(built, before + 7) << "a block per row";
  BuildDriveTable(nullptr, nullptr, 0);
  EXPECT_EQ(TestLiveBlockCount(), built) << "a build over a built table keeps the rows' blocks";

  ReleaseDriveTable();
  EXPECT_EQ(TestLiveBlockCount(), before);
  EXPECT_EQ(DriveRowCount(), 7) << "the count stays";
  EXPECT_EQ(DriveLetterOfRow(0, 1), 0) << "but the rows hold nothing";
  EXPECT_EQ(Letters(0xFFFFFFFFu), "");
  EXPECT_EQ(FindDriveRow('C', 1), -1);
  EXPECT_EQ(Label(0, 1), "");
  ReleaseDriveTable();
  EXPECT_EQ(TestLiveBlockCount(), before) << "released twice";

  EXPECT_EQ(BuildDriveTable(nullptr, nullptr, 0), 6);
  EXPECT_EQ(Letters(0xFFFFFFFFu), "\\ACDER");
  ReleaseDriveTable();
}

TEST(NetworkErrors, WhichErrorsCount) {
  struct Row {
    DWORD error;
    int network, password;
  } rows[] = {{53, 1, 0}, {86, 1, 1},  {58, 1, 1}, {1326 /* a bad logon is no network error */, 0, 0},
              {2, 0, 0},  {4100, 1, 0}};
  for (const Row &row : rows) {
    EXPECT_EQ(IsNetworkError(row.error), row.network) << row.error;
    EXPECT_EQ(IsNetworkPasswordError(row.error), row.password) << row.error;
  }
}

}  // namespace
