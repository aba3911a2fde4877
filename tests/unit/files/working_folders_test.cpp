// The working folder: entering a folder and reading it back.
#include "files/working_folders.h"

#include <gtest/gtest.h>

#include <string>

#include "support/scratch_folder.h"

namespace {

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
      {"\\\\server\\share\\folder", 0, '\\'},         // a network path is not entered, and that is no failure
      {"\\:\\group\\server", 1, '\\'},                // a place of the view has nothing to enter
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
  char buffer[520];
  ASSERT_EQ(GetWorkingFolder(buffer, sizeof buffer), buffer);
  EXPECT_EQ(lstrcmpiA(buffer, folder.c_str()), 0) << buffer;
  EXPECT_EQ(GetWorkingFolder(buffer, 3), nullptr) << "does not fit";
}

}  // namespace
