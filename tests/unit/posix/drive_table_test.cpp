// The drive table of the Linux backend: drive form of Linux paths and back.
#include "platform/posix/files/drive_table.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

class DriveTable : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("KELMARO_DRIVES", "C=/srv/win/c/;D=/srv/win/c/data;x=/mnt/x", 1);
    ReloadDriveTable();
  }
  void TearDown() override {
    unsetenv("KELMARO_DRIVES");
    ReloadDriveTable();
  }
};

TEST_F(DriveTable, LinuxPathToDriveForm) {
  struct Row {
    const char *linux, *drive;
  } rows[] = {
      {"/srv/win/c", "C:\\"},
      {"/srv/win/cdata", "Z:\\srv\\win\\cdata"},  // a root holds whole components only
      {"/", "Z:\\"},
  };
  for (const Row &row : rows) {
    std::string drive;
    ASSERT_TRUE(LinuxPathToDrivePath(row.linux, &drive)) << row.linux;
    EXPECT_EQ(drive, row.drive) << row.linux;
  }
  std::string drive;
  EXPECT_FALSE(LinuxPathToDrivePath("relative/path", &drive));
}

TEST_F(DriveTable, DriveFormToLinuxPath) {
  struct Row {
    const char *drive, *linux;
  } rows[] = {
      {"c:\\a\\b", "/srv/win/c/a/b"},
      {"Z:/tmp/x", "/tmp/x"},
      {"C:\\表\\x", "/srv/win/c/\xE8\xA1\xA8/x"},  // 表 ends in 0x5C, which is no separator
  };
  for (const Row &row : rows) {
    std::string linux;
    ASSERT_TRUE(DrivePathToLinuxPath(row.drive, &linux)) << row.drive;
    EXPECT_EQ(linux, row.linux) << row.drive;
  }
  std::string linux;
  EXPECT_FALSE(DrivePathToLinuxPath("Q:\\a", &linux));  // not mapped
  EXPECT_FALSE(DrivePathToLinuxPath("\\\\server\\share", &linux));
}

}  // namespace
