// Drive kinds and volumes of the Linux backend, from the mount that holds a drive's folder: mount tables and device
// folders made up by the tests (a /sys with removable and fixed disks, a /dev/disk/by-label), and once the machine's
// own table for a folder on a RAM disk.
#include "platform/posix/machine/mount_facts.h"

#include <gtest/gtest.h>
#include <linux/magic.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/posix/files/testing.h"
#include "platform/posix/testing.h"
#include "platform/winapi.h"
#include "support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;

std::string RealPath(const std::string &path) {
  char resolved[PATH_MAX];
  return realpath(path.c_str(), resolved) != nullptr ? resolved : path;
}

void WriteText(const fs::path &path, const std::string &text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path) << text;
}

// A scratch folder with the drive T: in it ("drive"), a made-up /sys ("sys") with a removable disk sdb (8:16, its
// partition sdb1 8:17) and a fixed disk sda (8:0, its partition sda2 8:2), and a made-up /dev/disk/by-label
// ("labels") that names sdb1, sda2 and the whole disk sdb.
class MountFacts : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = RealPath(scratch_.LinuxPath());
    fs::create_directories(root_ / "drive" / "sub");
    fs::path devices = root_ / "sys" / "devices" / "pci0000:00" / "block";
    WriteText(devices / "sdb" / "removable", "1\n");
    WriteText(devices / "sdb" / "sdb1" / "partition", "1\n");
    WriteText(devices / "sda" / "removable", "0\n");
    WriteText(devices / "sda" / "sda2" / "partition", "2\n");
    fs::create_directories(root_ / "sys" / "dev" / "block");
    struct Link {
      const char *device, *target;
    } links[] = {{"8:16", "sdb"}, {"8:17", "sdb/sdb1"}, {"8:0", "sda"}, {"8:2", "sda/sda2"}};
    for (const Link &link : links)
      fs::create_directory_symlink(fs::path("../../devices/pci0000:00/block") / link.target,
                                   root_ / "sys" / "dev" / "block" / link.device);
    fs::create_directories(root_ / "labels");
    struct Label {
      const char *name, *device;
    } labels[] = {{"USB\\x20STICK", "sdb1"},
                  {"SYSTEM", "sda2"},
                  {"\xE3\x83\xA9\xE3\x83\x99\xE3\x83\xAB", "sdb"},
                  {"LOOSE", "sdz9"}};
    for (const Label &label : labels)
      fs::create_symlink(fs::path("../../") / label.device, root_ / "labels" / label.name);
    TestSetDeviceFolders((root_ / "sys").c_str(), (root_ / "labels").c_str());
    TestSetDrives(("T=" + Drive()).c_str());
  }
  void TearDown() override {
    TestSetDrives(nullptr);
    TestSetMountTable(nullptr);
    TestSetDeviceFolders(nullptr, nullptr);
  }

  std::string Drive() const { return (root_ / "drive").string(); }
  // A table of the machine's root and one mount on the drive's folder.
  void MountDrive(const char *device, const char *type, const char *source) const {
    std::string table = "20 1 254:0 / / rw,relatime - ext4 /dev/vda rw\n31 20 " + std::string(device) + " / " +
                        Drive() + " rw,relatime shared:7 - " + type + " " + source + " rw\n";
    TestSetMountTable(table.c_str());
  }

  struct Volume {
    BOOL ok;
    DWORD error;
    std::string label, fileSystem;
    DWORD serial, maxLength, flags;
  };
  static Volume VolumeOf(const char *root, DWORD labelSize = 64, DWORD nameSize = 64) {
    Volume volume = {FALSE, 0, "", "", 0xDEADBEEF, 0xDEADBEEF, 0xDEADBEEF};
    char label[64], name[64];
    std::memset(label, '#', sizeof label);
    std::memset(name, '#', sizeof name);
    SetLastError(0);
    volume.ok =
        GetVolumeInformationA(root, label, labelSize, &volume.serial, &volume.maxLength, &volume.flags, name, nameSize);
    volume.error = GetLastError();
    if (volume.ok) {
      volume.label = label;
      volume.fileSystem = name;
    }
    return volume;
  }

  ScratchFolder scratch_;
  fs::path root_;
};

TEST(MountInfo, Lines) {
  struct Row {
    const char *line;
    bool taken;
    unsigned major, minor;
    const char *mountPoint, *type, *source;
  } rows[] = {
      {"36 35 98:0 /mnt1 /mnt2 rw,noatime master:1 - ext3 /dev/root rw,errors=continue", true, 98, 0, "/mnt2", "ext3",
       "/dev/root"},
      {"22 27 0:21 / /proc rw,relatime - proc proc rw", true, 0, 21, "/proc", "proc", "proc"},
      {"40 20 8:17 / /media/me/USB\\040STICK rw shared:1 master:2 - vfat /dev/sdb1 rw,uid=1000", true, 8, 17,
       "/media/me/USB STICK", "vfat", "/dev/sdb1"},
      {"41 20 0:50 / /mnt/back\\134slash rw - cifs //srv/my\\040share rw", true, 0, 50, "/mnt/back\\slash", "cifs",
       "//srv/my share"},
      {"42 20 0:51 / /mnt/x rw - fuse.sshfs me@host:/home rw", true, 0, 51, "/mnt/x", "fuse.sshfs", "me@host:/home"},
      {"43 20 0:52 / /mnt/\\0401 rw - tmpfs tmpfs rw", true, 0, 52, "/mnt/ 1", "tmpfs", "tmpfs"},
      {"44 20 0:53 / /mnt/\\09 rw - tmpfs none rw", true, 0, 53, "/mnt/\\09", "tmpfs", "none"},  // no escape
      {"garbage", false, 0, 0, "", "", ""},
      {"1 2 3:4 / /x rw", false, 0, 0, "", "", ""},                  // no separator, no type
      {"1 2 3:4 / /x rw shared:1 -", false, 0, 0, "", "", ""},       // nothing behind the separator
      {"1 2 34 / /x rw - ext4 /dev/x rw", false, 0, 0, "", "", ""},  // no minor
      {"1 2 3:x / /x rw - ext4 /dev/x rw", false, 0, 0, "", "", ""},
      {"", false, 0, 0, "", "", ""},
  };
  for (const Row &row : rows) {
    std::vector<MountEntry> mounts = ParseMountInfo(row.line);
    ASSERT_EQ(mounts.size(), row.taken ? 1u : 0u) << row.line;
    if (!row.taken) continue;
    EXPECT_EQ(mounts[0].major, row.major) << row.line;
    EXPECT_EQ(mounts[0].minor, row.minor) << row.line;
    EXPECT_EQ(mounts[0].mountPoint, row.mountPoint) << row.line;
    EXPECT_EQ(mounts[0].type, row.type) << row.line;
    EXPECT_EQ(mounts[0].source, row.source) << row.line;
  }
  EXPECT_EQ(
      ParseMountInfo("22 27 0:21 / /proc rw - proc proc rw\ngarbage\n25 24 0:23 / /dev/shm rw - tmpfs tmpfs rw").size(),
      2u)
      << "lines are read one by one, the last without a line end";
}

TEST(MountInfo, TheMountThatHoldsAPath) {
  std::vector<MountEntry> mounts = ParseMountInfo(
      "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
      "2 1 0:20 / /mnt rw - tmpfs first rw\n"
      "3 2 0:21 / /mnt/a rw - tmpfs under rw\n"
      "4 2 0:22 / /mnt/a rw - tmpfs over rw\n"
      "5 2 0:23 / /mnt/ab rw - tmpfs sibling rw\n");
  struct Row {
    const char *path, *source;
  } rows[] = {{"/mnt/a/x", "over"},  // the later of two mounts on one point hides the earlier
              {"/mnt/a", "over"},   {"/mnt/ab", "sibling"}, {"/mnt/abc", "first"},  // whole names only
              {"/mnt", "first"},    {"/mnt/b/c", "first"},  {"/usr/bin", "/dev/sda1"}, {"/", "/dev/sda1"}};
  for (const Row &row : rows) {
    const MountEntry *mount = MountHolding(mounts, row.path);
    ASSERT_NE(mount, nullptr) << row.path;
    EXPECT_EQ(mount->source, row.source) << row.path;
  }
  EXPECT_EQ(MountHolding({}, "/x"), nullptr);
  EXPECT_EQ(MountHolding(ParseMountInfo("2 1 0:20 / /mnt rw - tmpfs t rw"), "/usr"), nullptr);
}

TEST_F(MountFacts, DriveKinds) {
  struct Row {
    const char *device, *type, *source;
    UINT kind;
  } rows[] = {
      {"0:30", "tmpfs", "tmpfs", DRIVE_RAMDISK},
      {"0:31", "ramfs", "ramfs", DRIVE_RAMDISK},
      {"11:0", "iso9660", "/dev/sr0", DRIVE_CDROM},
      {"11:0", "udf", "/dev/sr0", DRIVE_CDROM},
      {"0:50", "cifs", "//srv/share", DRIVE_REMOTE},
      {"0:50", "smb3", "//srv/share", DRIVE_REMOTE},
      {"0:51", "nfs", "srv:/export", DRIVE_REMOTE},
      {"0:51", "nfs4", "srv:/export", DRIVE_REMOTE},
      {"0:52", "fuse.sshfs", "me@srv:/home", DRIVE_REMOTE},
      {"0:53", "nfsd", "nfsd", DRIVE_FIXED},           // the server's own control file system
      {"8:17", "vfat", "/dev/sdb1", DRIVE_REMOVABLE},  // a partition of a removable disk
      {"8:16", "ext4", "/dev/sdb", DRIVE_REMOVABLE},   // the removable disk itself
      {"8:17", "fuseblk", "/dev/sdb1", DRIVE_REMOVABLE},
      {"8:2", "ext4", "/dev/sda2", DRIVE_FIXED},
      {"8:0", "xfs", "/dev/sda", DRIVE_FIXED},
      {"8:99", "ext4", "/dev/sdz9", DRIVE_FIXED},   // a device that /sys does not know
      {"0:40", "btrfs", "/dev/sdb1", DRIVE_FIXED},  // no block device in the table: no removable flag to read
      {"0:41", "overlay", "overlay", DRIVE_FIXED},
  };
  for (const Row &row : rows) {
    MountDrive(row.device, row.type, row.source);
    EXPECT_EQ(GetDriveTypeA("T:\\"), row.kind) << row.type << " on " << row.device;
    EXPECT_EQ(GetDriveTypeA("t:\\sub\\"), row.kind) << "any path on the drive: " << row.type;
  }
  EXPECT_EQ(GetDriveTypeA("Q:\\"), static_cast<UINT>(DRIVE_NO_ROOT_DIR)) << "not mapped";
  TestSetMountTable("");
  EXPECT_EQ(GetDriveTypeA("T:\\"), static_cast<UINT>(DRIVE_FIXED)) << "a mount that cannot be told is a disk";
}

TEST_F(MountFacts, TheMountAboveTheDriveAndThroughALink) {
  // The drive's folder lies below the mount point; the drive is also reached through a symbolic link.
  std::string table = "20 1 254:0 / / rw - ext4 /dev/vda rw\n31 20 0:30 / " + root_.string() +
                      " rw - tmpfs tmpfs rw\n32 31 11:0 / " + root_.string() + "/drivex rw - iso9660 /dev/sr0 ro\n";
  TestSetMountTable(table.c_str());
  EXPECT_EQ(GetDriveTypeA("T:\\"), static_cast<UINT>(DRIVE_RAMDISK));
  fs::create_directory_symlink(root_ / "drive", root_ / "link");
  TestSetDrives(("T=" + (root_ / "link").string()).c_str());
  EXPECT_EQ(GetDriveTypeA("T:\\"), static_cast<UINT>(DRIVE_RAMDISK)) << "the link's target is looked up";
  EXPECT_NE(GetLogicalDrives() & (1u << ('T' - 'A')), 0u) << "a RAM disk is a drive that is there";
}

TEST_F(MountFacts, FileSystemNames) {
  struct Row {
    const char *type, *name;
  } rows[] = {{"vfat", "FAT32"},   {"msdos", "FAT"},
              {"ntfs", "NTFS"},    {"ntfs3", "NTFS"},
              {"fuseblk", "NTFS"}, {"fuseblk.ntfs-3g", "NTFS"},
              {"exfat", "exFAT"},  {"fuseblk.exfat", "exFAT"},
              {"iso9660", "CDFS"}, {"udf", "UDF"},
              {"ext4", "EXT4"},    {"btrfs", "BTRFS"},
              {"tmpfs", "TMPFS"},  {"fuse.sshfs", "FUSE.SSHFS"},
              {"cifs", "CIFS"}};
  for (const Row &row : rows) {
    MountDrive("8:2", row.type, "/dev/sda2");
    Volume volume = VolumeOf("T:\\");
    ASSERT_TRUE(volume.ok) << row.type << " error " << volume.error;
    EXPECT_EQ(volume.fileSystem, row.name) << row.type;
  }
}

TEST_F(MountFacts, Labels) {
  struct Row {
    const char *device, *type, *source;
    std::string label;
  } rows[] = {{"8:17", "vfat", "/dev/sdb1", "USB STICK"},  // udev's \x20 is a blank
              {"8:2", "ntfs3", "/dev/sda2", "SYSTEM"},
              {"8:16", "ext4", "/dev/sdb", "ラベル"},  // in Shift-JIS
              {"8:0", "ext4", "/dev/sda", ""},         // no label points at it
              {"8:99", "ext4", "/dev/sdz9", "LOOSE"},  // not in /sys: found by its source's name
              {"0:30", "tmpfs", "tmpfs", ""}};
  for (const Row &row : rows) {
    MountDrive(row.device, row.type, row.source);
    Volume volume = VolumeOf("T:\\");
    ASSERT_TRUE(volume.ok) << row.device;
    EXPECT_EQ(volume.label, row.label) << row.device;
  }
  TestSetDeviceFolders((root_ / "sys").c_str(), (root_ / "no such folder").c_str());
  MountDrive("8:17", "vfat", "/dev/sdb1");
  EXPECT_EQ(VolumeOf("T:\\").label, "") << "a machine without labels";
}

TEST_F(MountFacts, VolumeFactsAndBuffers) {
  MountDrive("8:17", "vfat", "/dev/sdb1");
  struct statfs facts;
  ASSERT_EQ(statfs(Drive().c_str(), &facts), 0);
  Volume volume = VolumeOf("T:");
  ASSERT_TRUE(volume.ok);
  EXPECT_EQ(volume.serial, static_cast<DWORD>(facts.f_fsid.__val[0]) ^ static_cast<DWORD>(facts.f_fsid.__val[1]));
  EXPECT_EQ(volume.maxLength, static_cast<DWORD>(facts.f_namelen));
  EXPECT_EQ(volume.flags & (FILE_CASE_PRESERVED_NAMES | FILE_UNICODE_ON_DISK),
            FILE_CASE_PRESERVED_NAMES | FILE_UNICODE_ON_DISK);

  struct Row {
    const char *root;
    DWORD labelSize, nameSize;
    BOOL ok;
    DWORD error;
  } rows[] = {{"T:\\", 10, 6, TRUE, 0},                  // "USB STICK" and "FAT32" just fit
              {"T:\\", 9, 6, FALSE, ERROR_BAD_LENGTH},   // the label does not
              {"T:\\", 10, 5, FALSE, ERROR_BAD_LENGTH},  // the name does not
              {"T:\\sub\\", 64, 64, FALSE, ERROR_DIR_NOT_ROOT},
              {"Q:\\", 64, 64, FALSE, ERROR_PATH_NOT_FOUND},
              {"\\\\srv\\share\\", 64, 64, FALSE, ERROR_BAD_NETPATH}};
  for (const Row &row : rows) {
    Volume result = VolumeOf(row.root, row.labelSize, row.nameSize);
    EXPECT_EQ(result.ok, row.ok) << row.root << " " << row.labelSize << " " << row.nameSize;
    if (!row.ok) {
      EXPECT_EQ(result.error, row.error) << row.root << " " << row.labelSize << " " << row.nameSize;
    }
  }
}

// The machine's own mount table, for a folder on a RAM disk where the machine has one.
TEST(MachineMounts, AFolderOnATmpfsIsARamDisk) {
  struct statfs facts;
  if (statfs("/dev/shm", &facts) != 0 || facts.f_type != TMPFS_MAGIC) {
    GTEST_SKIP() << "this machine has no tmpfs at /dev/shm";
  }
  char folder[] = "/dev/shm/kelmaro-ramdisk-XXXXXX";
  if (mkdtemp(folder) == nullptr) GTEST_SKIP() << "/dev/shm takes no folder of ours";
  TestSetMountTable(nullptr);
  TestSetDeviceFolders(nullptr, nullptr);
  TestSetDrives((std::string("R=") + folder).c_str());
  EXPECT_EQ(GetDriveTypeA("R:\\"), static_cast<UINT>(DRIVE_RAMDISK));
  char name[16] = "";
  EXPECT_TRUE(GetVolumeInformationA("R:\\", nullptr, 0, nullptr, nullptr, nullptr, name, sizeof name));
  EXPECT_STREQ(name, "TMPFS");
  TestSetDrives(nullptr);
  rmdir(folder);
}

TEST(WindowsFolder, FromTheEnvironmentOrDriveC) {
  std::string windir = getenv("windir") ? getenv("windir") : "";
  bool hadWindir = getenv("windir") != nullptr;
  std::string systemRoot = getenv("SystemRoot") ? getenv("SystemRoot") : "";
  bool hadSystemRoot = getenv("SystemRoot") != nullptr;
  unsetenv("windir");
  unsetenv("SystemRoot");
  struct Row {
    const char *drives, *windir;
    std::string windows, system;
  } rows[] = {{"C=/tmp", nullptr, "C:\\windows", "C:\\windows\\system32"},           // as a Wine prefix has them
              {"C=/tmp", "Z:\\srv\\win", "Z:\\srv\\win", "Z:\\srv\\win\\system32"},  // windir first
              {"D=/tmp", nullptr, "", ""},
              {"C=/tmp", "/usr/share", "C:\\windows", "C:\\windows\\system32"}};  // not in drive form: passed over
  for (const Row &row : rows) {
    TestSetDrives(row.drives);
    if (row.windir) {
      setenv("windir", row.windir, 1);
    } else {
      unsetenv("windir");
    }
    char buffer[MAX_PATH] = "garbage";
    SetLastError(0);
    UINT length = GetWindowsDirectoryA(buffer, sizeof buffer);
    EXPECT_EQ(std::string(buffer), row.windows) << row.drives;
    EXPECT_EQ(length, row.windows.size()) << row.drives;
    if (row.windows.empty()) {
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    }
    length = GetSystemDirectoryA(buffer, sizeof buffer);
    EXPECT_EQ(std::string(buffer), row.system) << row.drives;
  }
  TestSetDrives(nullptr);
  hadWindir ? setenv("windir", windir.c_str(), 1) : unsetenv("windir");
  if (hadSystemRoot) setenv("SystemRoot", systemRoot.c_str(), 1);
}

}  // namespace
