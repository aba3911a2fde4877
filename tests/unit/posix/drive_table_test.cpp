// The drive table of the Linux backend: where it comes from, and the drive form of Linux paths and back.
#include "platform/posix/files/drive_table.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "platform/posix/files/testing.h"
#include "support/saved_environment.h"

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

namespace fs = std::filesystem;

// A folder of fake Wine prefixes, with HOME, WINEPREFIX and KELMARO_DRIVES as each test sets them; all three are put
// back afterwards and the table is read anew. No test here reads the machine's own ~/.wine: each names its HOME and
// its WINEPREFIX (or unsets it) before the table is read.
class DrivesFromWinePrefix : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string folder = (fs::temp_directory_path() / "kelmaro-prefixes-XXXXXX").string();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    root_ = fs::canonical(folder);
    // HOME's prefix: the default devices of a new prefix, and what else a dosdevices folder may hold.
    fs::path devices = root_ / "home/.wine/dosdevices";
    fs::create_directories(devices);
    fs::create_directories(root_ / "home/.wine/drive_c/windows");
    fs::create_directories(root_ / "data");
    fs::create_symlink("../drive_c", devices / "c:");
    fs::create_symlink("/", devices / "z:");
    fs::create_symlink(root_ / "home/../data", devices / "d:");  // absolute, with a ".." that its real path drops
    fs::create_symlink("/dev/sda1", devices / "c::");            // the raw device of C:
    std::ofstream(devices / "e:") << "not a link";
    fs::create_symlink("../missing/./deeper", devices / "Y:");  // a link to nothing, named in upper case
    fs::create_symlink("/", devices / "D:");                    // "d:" wins: Wine's own spelling
    fs::create_symlink("../drive_c", devices / "ab:");
    // Another prefix, for WINEPREFIX, and a folder that is no prefix.
    fs::create_directories(root_ / "other/dosdevices");
    fs::create_symlink(root_ / "data", root_ / "other/dosdevices/q:");
    fs::create_directories(root_ / "nowine");
  }
  void TearDown() override {
    environment_.Restore();
    TestSetDrives(environment_.Original("KELMARO_DRIVES"));  // reads the table anew
    std::error_code ignored;
    fs::remove_all(root_, ignored);
  }

  // Sets the three variables (null: unset) and reads the table anew.
  void Environment(const std::string &home, const char *winePrefix, const char *drives) {
    setenv("HOME", home.c_str(), 1);
    if (winePrefix)
      setenv("WINEPREFIX", winePrefix, 1);
    else
      unsetenv("WINEPREFIX");
    TestSetDrives(drives);
  }
  // The mapped letters with their roots, "C=/x;Z=/".
  static std::string Table() {
    std::string table;
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
      std::string root = DriveRoot(letter);
      if (root.empty()) continue;
      if (!table.empty()) table += ";";
      table += std::string(1, letter) + "=" + root;
    }
    return table;
  }

  fs::path root_;

  SavedEnvironment environment_{"HOME", "WINEPREFIX", "KELMARO_DRIVES"};
};

TEST_F(DrivesFromWinePrefix, TheLinksOfHomesPrefixAreTheDrives) {
  Environment((root_ / "home").string(), nullptr, nullptr);
  const std::string prefix = (root_ / "home/.wine").string();
  // Relative and absolute targets by their real paths; a link to nothing by its plain path; "c::", the file "e:" and
  // "ab:" are no drives.
  EXPECT_EQ(Table(),
            "C=" + prefix + "/drive_c;D=" + (root_ / "data").string() + ";Y=" + prefix + "/missing/deeper;Z=/");
  std::string drive;
  ASSERT_TRUE(LinuxPathToDrivePath(prefix + "/drive_c/windows", &drive));
  EXPECT_EQ(drive, "C:\\windows");
  ASSERT_TRUE(LinuxPathToDrivePath("/usr", &drive));
  EXPECT_EQ(drive, "Z:\\usr");
  // An empty WINEPREFIX is none: HOME's prefix counts.
  Environment((root_ / "home").string(), "", nullptr);
  EXPECT_EQ(DriveRoot('C'), prefix + "/drive_c");
}

TEST_F(DrivesFromWinePrefix, WinePrefixNamesThePrefix) {
  Environment((root_ / "home").string(), (root_ / "other").c_str(), nullptr);
  EXPECT_EQ(Table(), "Q=" + (root_ / "data").string());  // no Z: where the prefix has none
  // A WINEPREFIX without dosdevices is no prefix, and HOME's is not looked at.
  Environment((root_ / "home").string(), (root_ / "nowine").c_str(), nullptr);
  EXPECT_EQ(Table(), "Z=/");
}

TEST_F(DrivesFromWinePrefix, KelmaroDrivesWinsEvenEmpty) {
  Environment((root_ / "home").string(), nullptr, "C=/srv/c");
  EXPECT_EQ(Table(), "C=/srv/c;Z=/");
  Environment((root_ / "home").string(), nullptr, "");
  EXPECT_EQ(Table(), "Z=/");
}

TEST_F(DrivesFromWinePrefix, WithoutPrefixZIsTheRoot) {
  Environment((root_ / "nowine").string(), nullptr, nullptr);
  EXPECT_EQ(Table(), "Z=/");
  Environment((root_ / "absent").string(), nullptr, nullptr);
  EXPECT_EQ(Table(), "Z=/");
}

}  // namespace
