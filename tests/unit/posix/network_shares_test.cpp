// The network facts of the Linux backend: the mount table, the share table's three sources and their order, the UNC
// name of a Linux folder, what a share that is not mapped answers, and the network interfaces behind NetworkPresent.
// Every source is the test's own: a mount table text, a share table, a runtime folder, a list of interfaces.
#include <gtest/gtest.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "machine/network_paths.h"
#include "platform/posix/files/error_codes.h"
#include "platform/posix/files/mount_table.h"
#include "platform/posix/files/share_table.h"
#include "platform/posix/testing.h"
#include "platform/winapi.h"
#include "support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;

TEST(MountTable, ParsesEachLine) {
  const std::string text =
      "36 35 98:0 /mnt1 /mnt2 rw,noatime master:1 - ext3 /dev/root rw,errors=continue\n"
      "61 27 0:50 / /mnt/with\\040space rw,relatime shared:5 master:2 - cifs //srv/my\\040share rw,vers=3.1.1\n"
      "70 27 0:55 / /mnt/back\\134slash\\011tab rw - tmpfs tmpfs rw\n"
      "\n"
      "garbage\n"
      "71 27 0:56 / /no/dash rw shared:1 ext4 /dev/sda1 rw\n"  // no "-" before the type
      "x 27 0:57 / /bad/id rw - ext4 /dev/sda2 rw\n"           // an id that is no number
      "72 27 0:58 / /no/super rw - tmpfs tmpfs\n"              // the super options missing
      "73 27 259:3 / /\\777 rw - ext4 /dev/nvme0n1p3 rw\n";    // no octal escape: "\777" is no byte
  std::vector<MountEntry> entries = ParseMountInfo(text);
  ASSERT_EQ(entries.size(), 4u);
  EXPECT_EQ(entries[0].id, 36);
  EXPECT_EQ(entries[0].parentId, 35);
  EXPECT_EQ(entries[0].major, 98u);
  EXPECT_EQ(entries[0].minor, 0u);
  EXPECT_EQ(entries[0].root, "/mnt1");
  EXPECT_EQ(entries[0].mountPoint, "/mnt2");
  EXPECT_EQ(entries[0].options, "rw,noatime");
  EXPECT_EQ(entries[0].type, "ext3");
  EXPECT_EQ(entries[0].source, "/dev/root");
  EXPECT_EQ(entries[0].superOptions, "rw,errors=continue");
  EXPECT_EQ(entries[1].mountPoint, "/mnt/with space");  // two optional fields before the "-"
  EXPECT_EQ(entries[1].type, "cifs");
  EXPECT_EQ(entries[1].source, "//srv/my share");
  EXPECT_EQ(entries[2].mountPoint, "/mnt/back\\slash\ttab");  // no optional fields
  EXPECT_EQ(entries[3].mountPoint, "/\\777");
  EXPECT_EQ(entries[3].major, 259u);
  EXPECT_EQ(entries[3].minor, 3u);
}

TEST(MountTable, TheMountThatHoldsAPath) {
  const std::vector<MountEntry> entries = ParseMountInfo(
      "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
      "2 1 8:2 / /mnt rw - ext4 /dev/sda2 rw\n"
      "3 2 8:3 / /mnt/a rw - ext4 /dev/sda3 rw\n"
      "4 1 0:40 / /mnt rw - tmpfs tmpfs rw\n"  // mounted over /mnt later: hides the two before
      "5 4 0:41 / /mnt/b rw - tmpfs tmpfs rw\n"
      "6 1 0:42 / /srv rw - tmpfs tmpfs rw\n"
      "7 6 0:43 / /srv rw - tmpfs second rw\n");  // a second mount on the same point
  struct Row {
    const char *path, *source;
  } rows[] = {
      {"/", "/dev/sda1"},       {"/home/me", "/dev/sda1"}, {"/mntx", "/dev/sda1"},  // whole names only
      {"/mnt/a/file", "tmpfs"}, {"/mnt", "tmpfs"},         {"/mnt/b/c", "tmpfs"},  {"/srv/x", "second"},
  };
  for (const Row &row : rows) {
    const MountEntry *holder = MountHolding(entries, row.path);
    ASSERT_NE(holder, nullptr) << row.path;
    EXPECT_EQ(holder->source, row.source) << row.path;
  }
  EXPECT_EQ(MountHolding(entries, "/mnt/b/c")->mountPoint, "/mnt/b");
  EXPECT_TRUE(IsHiddenMount(entries, 1));
  EXPECT_TRUE(IsHiddenMount(entries, 2));
  EXPECT_FALSE(IsHiddenMount(entries, 3));
  EXPECT_FALSE(IsHiddenMount(entries, 0));
  EXPECT_EQ(MountHolding(ParseMountInfo("2 1 8:2 / /mnt rw - ext4 /dev/sda2 rw\n"), "/home"), nullptr);
}

// The share table from three sources of the test's own: KELMARO_SHARES, a mount table and a gvfs folder.
class ShareSources : public ::testing::Test {
 protected:
  void SetUp() override {
    static int counter = 0;
    runtime_ =
        fs::temp_directory_path() / ("kelmaro-runtime-" + std::to_string(getpid()) + "-" + std::to_string(++counter));
    fs::create_directories(runtime_ / "gvfs");
    for (const char *name :
         {"smb-share:server=gv-srv,share=pub", "smb-share:domain=WG,server=gv-srv,share=my%20files,user=bob",
          "smb-share:server=gv-srv,share=both", "sftp:host=gv-srv,user=bob", "smb-server:server=gv-srv",
          "smb-share:server=gv-srv"})
      fs::create_directory(runtime_ / "gvfs" / name);
    TestSetRuntimeFolder(runtime_.c_str());
    TestSetMountTable(
        "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
        "20 1 0:50 / /mnt/docs rw - cifs //srv/docs rw\n"
        "21 1 0:51 / /mnt/data rw - cifs //MNT-SRV/Data rw\n"
        "22 1 0:52 / /mnt/data3 rw - smb3 \\\\mnt-srv\\data3 rw\n"
        "23 1 0:53 / /mnt/sub rw - cifs //mnt-srv/sub/dir rw\n"       // a folder below a share
        "24 1 0:54 /inner /mnt/bound rw - cifs //mnt-srv/bound rw\n"  // a bind of a folder of the share
        "25 1 0:55 / /mnt/nfs rw - nfs4 //mnt-srv/nfs rw\n"
        "26 1 0:56 / /mnt/hidden rw - cifs //mnt-srv/hidden rw\n"
        "27 1 0:57 / /mnt/hidden rw - tmpfs tmpfs rw\n"
        "28 1 0:58 / /mnt/both/ rw - cifs //gv-srv/both rw\n");
    TestSetShares(
        "\\\\Srv\\Docs=/env/docs;//srv/docs2/=/env/docs2/;\\\\srv\\dup=/first;\\\\srv\\dup=/second;bad;"
        "\\\\srvonly=/x;\\\\s\\a\\b=/y;\\\\s\\rel=relative;=/z");
  }
  void TearDown() override {
    TestSetShares(nullptr);
    TestSetMountTable(nullptr);
    TestSetRuntimeFolder(nullptr);
    std::error_code ignored;
    fs::remove_all(runtime_, ignored);
  }
  fs::path runtime_;
};

TEST_F(ShareSources, EachSourceInItsOrder) {
  const std::string gvfs = (runtime_ / "gvfs").string() + "/";
  struct Row {
    const char16_t *server, *share;
    std::string folder;  // empty: not mapped
  } rows[] = {
      {u"SRV", u"docs", "/env/docs"},    // the environment wins over a mount; names without case
      {u"srv", u"DOCS2", "/env/docs2"},  // "//" and a separator behind the share
      {u"srv", u"dup", "/second"},       // the later item
      {u"srvonly", u"x", ""},
      {u"s", u"a", ""},    // a third name
      {u"s", u"rel", ""},  // no absolute folder
      {u"mnt-srv", u"data", "/mnt/data"},
      {u"mnt-srv", u"data3", "/mnt/data3"},
      {u"mnt-srv", u"sub", ""},
      {u"mnt-srv", u"bound", ""},
      {u"mnt-srv", u"nfs", ""},
      {u"mnt-srv", u"hidden", ""},
      {u"gv-srv", u"both", "/mnt/both"},  // the mount table wins over gvfs
      {u"gv-srv", u"pub", gvfs + "smb-share:server=gv-srv,share=pub"},
      {u"GV-SRV", u"My Files", gvfs + "smb-share:domain=WG,server=gv-srv,share=my%20files,user=bob"},
      {u"gv-srv", u"", ""},
      {u"nosuch", u"share", ""},
  };
  for (const Row &row : rows) {
    std::string folder;
    std::string name = fs::path(row.server).string() + "\\" + fs::path(row.share).string();
    EXPECT_EQ(ShareFolder(row.server, row.share, &folder), !row.folder.empty()) << name;
    if (!row.folder.empty()) {
      EXPECT_EQ(folder, row.folder) << name;
    }
  }
}

TEST_F(ShareSources, TheUncNameOfALinuxFolder) {
  TestSetShares("\\\\srv\\docs=/env/docs;\\\\srv\\deep=/env/docs/deep;\\\\srv\\dup=/first;\\\\srv\\dup=/second");
  struct Row {
    const char *linux, *unc;  // null: no share holds it
  } rows[] = {
      {"/env/docs", "\\\\srv\\docs"},
      {"/env/docs/a//b/", "\\\\srv\\docs\\a\\b"},
      {"/env/docs/deep/x", "\\\\srv\\deep\\x"},  // the share that holds it most closely
      {"/env/docsx", nullptr},                   // whole names only
      {"/first/x", nullptr},                     // the item that a later one overrides names nothing
      {"/second/x", "\\\\srv\\dup\\x"},
      {"/mnt/data/y", "\\\\MNT-SRV\\Data\\y"},  // spelled as the mount's source spells it
  };
  for (const Row &row : rows) {
    std::string unc;
    EXPECT_EQ(LinuxPathToSharePath(row.linux, &unc), row.unc != nullptr) << row.linux;
    if (row.unc) {
      EXPECT_EQ(unc, row.unc) << row.linux;
    }
  }
}

// Every operation on a share that no source maps fails as Windows fails for a server that is not there; a share
// whose folder is gone, and a server alone, the same.
TEST_F(ShareSources, ASharePathThatIsNotMapped) {
  TestSetShares("\\\\srv\\gone=/nonexistent-kelmaro/share");
  auto attributes = [](const char *path) { return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES; };
  auto list = [](const char *path) {
    WIN32_FIND_DATAA data;
    HANDLE found = FindFirstFileA(path, &data);
    if (found != INVALID_HANDLE_VALUE) FindClose(found);
    return found != INVALID_HANDLE_VALUE;
  };
  auto open = [](const char *path) {
    HANDLE file = CreateFileA(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    return file != INVALID_HANDLE_VALUE;
  };
  auto remove = [](const char *path) { return DeleteFileA(path) != 0; };
  auto move = [](const char *path) { return MoveFileA(path, "\\\\nosrv\\share\\b") != 0; };
  auto makeFolder = [](const char *path) { return CreateDirectoryA(path, nullptr) != 0; };
  auto removeFolder = [](const char *path) { return RemoveDirectoryA(path) != 0; };
  auto enter = [](const char *path) { return SetCurrentDirectoryA(path) != 0; };
  auto space = [](const char *path) { return GetDiskFreeSpaceExA(path, nullptr, nullptr, nullptr) != 0; };
  auto volume = [](const char *path) {
    return GetVolumeInformationA(path, nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0) != 0;
  };
  struct Row {
    const char *what;
    bool (*call)(const char *);
    const char *path;
  } rows[] = {
      {"GetFileAttributesA", attributes, "\\\\nosrv\\share\\a"},
      {"GetFileAttributesA", attributes, "\\\\nosrv\\share"},
      {"GetFileAttributesA", attributes, "\\\\srv\\gone\\a"},
      {"GetFileAttributesA", attributes, "\\\\srv\\gone"},
      {"GetFileAttributesA", attributes, "\\\\srv"},
      {"FindFirstFileA", list, "\\\\nosrv\\share\\*"},
      {"FindFirstFileA", list, "\\\\srv\\*"},
      {"FindFirstFileA", list, "\\\\?\\C:\\*"},
      {"CreateFileA", open, "\\\\nosrv\\share\\a"},
      {"DeleteFileA", remove, "\\\\nosrv\\share\\a"},
      {"MoveFileA", move, "\\\\nosrv\\share\\a"},
      {"CreateDirectoryA", makeFolder, "\\\\nosrv\\share\\a"},
      {"RemoveDirectoryA", removeFolder, "\\\\nosrv\\share\\a"},
      {"SetCurrentDirectoryA", enter, "\\\\nosrv\\share"},
      {"GetDiskFreeSpaceExA", space, "\\\\nosrv\\share\\"},
      {"GetVolumeInformationA", volume, "\\\\nosrv\\share\\"},
      {"GetVolumeInformationA", volume, "\\\\srv\\gone\\"},
  };
  for (const Row &row : rows) {
    SetLastError(0);
    EXPECT_FALSE(row.call(row.path)) << row.what << " " << row.path;
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_NETPATH)) << row.what << " " << row.path;
  }
  EXPECT_EQ(GetDriveTypeA("\\\\nosrv\\share\\"), static_cast<UINT>(DRIVE_NO_ROOT_DIR));
  EXPECT_EQ(GetDriveTypeA("\\\\srv\\gone\\"), static_cast<UINT>(DRIVE_NO_ROOT_DIR));
}

// A mapped share: GetDriveTypeA and GetVolumeInformationA answer for the folder where it is mounted.
TEST_F(ShareSources, TheVolumeOfAMappedShare) {
  ScratchFolder folder;
  folder.MakeFolder("dir");
  TestSetShares(("\\\\srv\\share=" + folder.LinuxPath()).c_str());
  EXPECT_EQ(GetDriveTypeA("\\\\SRV\\Share\\"), static_cast<UINT>(DRIVE_REMOTE));
  EXPECT_EQ(GetDriveTypeA("\\\\srv\\share\\dir\\"), static_cast<UINT>(DRIVE_REMOTE));  // any path on it, as on a drive
  struct statvfs volume;
  ASSERT_EQ(statvfs(folder.LinuxPath().c_str(), &volume), 0);
  DWORD serial = 0, maxLength = 0;
  char name[32] = "";
  ASSERT_TRUE(GetVolumeInformationA("\\\\srv\\share\\", nullptr, 0, &serial, &maxLength, nullptr, name, sizeof name));
  EXPECT_EQ(maxLength, volume.f_namemax);
  EXPECT_NE(name[0], 0);
  ASSERT_TRUE(GetVolumeInformationA("\\\\srv\\share", nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0));
  SetLastError(0);
  EXPECT_FALSE(GetVolumeInformationA("\\\\srv\\share\\dir\\", nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DIR_NOT_ROOT));
}

// A process started in a folder that no drive holds, but a share does, has that share's path as its current folder.
TEST_F(ShareSources, AProcessFolderThatOnlyAShareHolds) {
  ScratchFolder folder;
  folder.MakeFolder("dir");
  char saved[4096];
  ASSERT_NE(getcwd(saved, sizeof saved), nullptr);
  ASSERT_EQ(chdir((folder.LinuxPath() + "/dir").c_str()), 0);
  TestSetDrives("Z=/nonexistent-kelmaro");
  TestSetShares(("\\\\srv\\share=" + folder.LinuxPath()).c_str());
  char current[MAX_PATH] = "";
  GetCurrentDirectoryA(sizeof current, current);
  EXPECT_STREQ(current, "\\\\srv\\share\\dir");
  char full[MAX_PATH] = "";
  GetFullPathNameA("..\\x.lnk", sizeof full, full, nullptr);
  EXPECT_STREQ(full, "\\\\srv\\share\\x.lnk");
  EXPECT_EQ(chdir(saved), 0);
  TestSetDrives(nullptr);
}

// A share whose server has gone answers with errnos of the network; they become the network errors that the engine
// treats as such (the walker's network questions, the drive check's network message).
TEST(NetworkErrors, ErrnosOfALostServer) {
  struct Row {
    int error;
    DWORD windows;
  } rows[] = {
      {ENOTCONN, 64},     {ECONNRESET, 64},    {ECONNABORTED, 64},   {EHOSTDOWN, 53},
      {EHOSTUNREACH, 53}, {ENETUNREACH, 1231}, {ECONNREFUSED, 1225}, {ETIMEDOUT, 121},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(ErrorFromErrno(row.error), row.windows) << row.error;
    // A time-out is no error of the network to the engine: it ends nothing more than another failure would.
    EXPECT_EQ(IsNetworkError(row.windows), row.windows != 121 ? 1 : 0) << row.error;
  }
}

// NetworkPresent by the interfaces: a connection is an interface other than the loopback, up and running, with an
// address.
TEST(NetworkInterfaces, WhatCountsAsAConnection) {
  struct Row {
    const char *interfaces;
    int present;
  } rows[] = {
      {"", 0},
      {"lo=up,running,loopback,address", 0},
      {"eth0=up,running,address", 1},
      {"eth0=up,address", 0},       // not running: no carrier
      {"eth0=running,address", 0},  // down
      {"eth0=up,running", 0},       // no address
      {"lo=up,running,loopback,address;eth0=up;wlan0=up,running,address", 1},
  };
  for (const Row &row : rows) {
    TestSetInterfaces(row.interfaces);
    EXPECT_EQ(GetSystemMetrics(SM_NETWORK) & 1, row.present) << row.interfaces;
    DWORD flags = 0xDEADBEEF;
    EXPECT_EQ(InternetGetConnectedState(&flags, 0), row.present) << row.interfaces;
    EXPECT_EQ(flags, row.present ? INTERNET_CONNECTION_LAN : 0u) << row.interfaces;
    EXPECT_EQ(NetworkPresent(), row.present) << row.interfaces;
  }
  TestSetInterfaces(nullptr);
}

TEST(NetworkInterfaces, WithoutANetworkTheConnectionIsNotAskedFor) {
  TestSetInterfaces("lo=up,running,loopback,address");
  size_t before = TestConnectionQueries();
  EXPECT_EQ(NetworkPresent(), 0);
  EXPECT_EQ(TestConnectionQueries(), before);
  TestSetInterfaces("eth0=up,running,address");
  EXPECT_EQ(NetworkPresent(), 1);
  EXPECT_EQ(TestConnectionQueries(), before + 1);
  EXPECT_EQ(NetworkPresent(), 1);  // asked anew on every call
  EXPECT_EQ(TestConnectionQueries(), before + 2);
  TestSetInterfaces(nullptr);
}

}  // namespace
