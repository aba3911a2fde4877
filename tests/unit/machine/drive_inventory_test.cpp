// The drive inventory: drive kinds asked per letter, and the readers of the drive table, which stays empty.
#include "machine/drive_inventory.h"

#include <gtest/gtest.h>

#include <string>

#include "machine/network_paths.h"
#include "support/scratch_folder.h"

namespace {

TEST(DriveInventory, KindsOfTheScratchDrive) {
  ScratchFolder scratch;
  int letter = scratch.Path()[0];
  EXPECT_EQ(RootDriveType(letter), static_cast<UINT>(DRIVE_FIXED));
  EXPECT_EQ(DriveKindOfIndex((letter | 0x20) - 'a'), kDriveFixed) << "kinds are the program's own numbers";
  EXPECT_EQ(IsCdDrive(letter), 0);
  EXPECT_EQ(IsRemovableDrive(letter | 0x20), 0);
  EXPECT_EQ(IsRemoteDrive(letter), 0);
  EXPECT_EQ(IsOnRemovableMedia(scratch.Path().c_str()), 0);
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
  char letters[30] = "junk";
  EXPECT_EQ(DriveLettersOfKinds(letters, 0xFFFFFFFFu), letters);
  EXPECT_STREQ(letters, "");
  for (int letter = 'A'; letter <= 'Z'; ++letter) EXPECT_EQ(IsNetworkDriveLetter(letter), 0);
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
