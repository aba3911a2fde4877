// The working folder and the drives' current folders.
#include "files/working_folders.h"

#include <gtest/gtest.h>

#include <string>

#include "reports/last_error.h"
#include "support/scratch_folder.h"

namespace {

std::string CurrentFolder() {
  char buffer[MAX_PATH] = "";
  GetCurrentDirectoryA(MAX_PATH, buffer);
  return buffer;
}

// Windows gives a drive's folder without a trailing backslash; Wine keeps the one that it stores the folder with.
// Either is the same folder.
bool SameFolder(std::string a, std::string b) {
  if (a.size() > 3 && a.back() == '\\') a.pop_back();
  if (b.size() > 3 && b.back() == '\\') b.pop_back();
  return lstrcmpiA(a.c_str(), b.c_str()) == 0;
}

int DriveNumber(const std::string &path) { return (path[0] & ~0x20) - 'A' + 1; }

TEST(ChangeToFolder, Results) {
  ScratchFolder scratch;
  std::string folder = scratch.MakeFolder("Enter Me");
  std::string lowerDrive = folder;
  lowerDrive[0] = static_cast<char>(lowerDrive[0] | 0x20);
  struct Row {
    std::string path;
    int allowNetwork;
    int result;
  } rows[] = {
      {lowerDrive, 0, DriveNumber(folder)},  // the drive number comes from the upper-cased letter
      {scratch.Path("no such folder"), 0, -2},
      {scratch.MakeFile("not a folder.txt"), 0, -1},  // there, but not a folder that can be entered
      {"Enter Me", 0, -1},                            // no drive
      {"\\\\server\\share\\folder", 0, '\\'},
      {"\\:\\group\\server", 1, '\\'},  // a place of the view has nothing to enter
  };
  for (const Row &row : rows) {
    ASSERT_TRUE(SetCurrentDirectoryA(scratch.Path().c_str()));
    PathBuffer path(row.path);
    EXPECT_EQ(ChangeToFolder(path.bytes, row.allowNetwork), row.result) << row.path;
    EXPECT_EQ(path.Text(), row.path);
  }
  ASSERT_TRUE(SetCurrentDirectoryA(scratch.Path().c_str()));
  PathBuffer path(folder);
  ASSERT_EQ(ChangeToFolder(path.bytes, 0), DriveNumber(folder));
  EXPECT_EQ(lstrcmpiA(CurrentFolder().c_str(), folder.c_str()), 0) << CurrentFolder();
  // A missing folder keeps the error of the failed change.
  path.Set(scratch.Path("gone\\deeper"));
  EXPECT_EQ(ChangeToFolder(path.bytes, 0), -2);
  EXPECT_NE(GetKeptLastError(), 0u);
  EXPECT_EQ(GetRunTimeError(), 2);
}

TEST(WorkingFolder, SetAndRead) {
  ScratchFolder scratch;
  std::string folder = scratch.MakeFolder("here");
  PathBuffer path(folder), missing(scratch.Path("missing")), network("\\\\server\\share");
  EXPECT_EQ(SetWorkingFolder(path.bytes, 0), 0);
  char buffer[520];
  ASSERT_EQ(GetWorkingFolder(buffer, sizeof buffer), buffer);
  EXPECT_EQ(lstrcmpiA(buffer, folder.c_str()), 0) << buffer;
  EXPECT_EQ(GetWorkingFolder(buffer, 3), nullptr) << "does not fit";
  EXPECT_EQ(SetWorkingFolder(missing.bytes, 0), 1);
  EXPECT_EQ(GetRunTimeError(), 2);
  EXPECT_EQ(SetWorkingFolder(network.bytes, 0), 0) << "a network path is not entered, and that is no failure";
  EXPECT_EQ(SetWorkingFolder(nullptr, 0), 1);
}

TEST(DriveFolder, CurrentFolderOfADrive) {
  ScratchFolder scratch;
  std::string folder = scratch.MakeFolder("inner");
  ASSERT_TRUE(SetCurrentDirectoryA(folder.c_str()));
  char buffer[520];
  ASSERT_EQ(GetDriveFolder(DriveNumber(folder), buffer, sizeof buffer), buffer);
  EXPECT_TRUE(SameFolder(buffer, folder)) << buffer;
  char named[520] = {static_cast<char>(folder[0] | 0x20), 0};
  SetRunTimeError(22);
  EXPECT_EQ(GetDriveFolderOf(named, sizeof named), 0);
  EXPECT_EQ(GetRunTimeError(), 0);
  EXPECT_TRUE(SameFolder(named, folder)) << named;
  char view[520] = "\\:\\group\\server";  // the network keeps its head
  EXPECT_EQ(GetDriveFolderOf(view, sizeof view), 0);
  EXPECT_STREQ(view, "\\:\\");
  // A bare drive name gets its folder; a path with a backslash needs nothing.
  char text[520] = {folder[0], ':', 0}, full[520] = "c:\\some\\path";
  char *bare = text, *complete = full;
  EXPECT_EQ(CompleteDrivePath(&bare), 0);
  EXPECT_TRUE(SameFolder(text, folder)) << text;
  EXPECT_EQ(CompleteDrivePath(&complete), 0);
  EXPECT_STREQ(full, "c:\\some\\path");
}

TEST(ChangeToDriveLetter, Results) {
  ScratchFolder scratch;
  ASSERT_TRUE(SetCurrentDirectoryA(scratch.Path().c_str()));
  EXPECT_EQ(ChangeToDriveLetter('\\'), 1);
  EXPECT_EQ(ChangeToDriveLetter(scratch.Path()[0]), 1);
  EXPECT_EQ(lstrcmpiA(CurrentFolder().c_str(), scratch.Path().c_str()), 0) << "the drive's own folder stays";
  for (char letter = 'Y'; letter > 'A'; --letter) {
    char root[4] = {letter, ':', '\\', 0};
    if (GetDriveTypeA(root) != DRIVE_NO_ROOT_DIR) continue;
    EXPECT_EQ(ChangeToDriveLetter(letter), -1) << letter;
    break;
  }
}

}  // namespace
