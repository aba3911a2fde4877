// The Linux backend's file system where Linux shows through: the drive table, the current folder, names spelled in
// more than one case, symbolic links, permission bits, names Windows cannot hold, forced failures, network paths,
// local time, the Windows folder and the search path. Files are made with the C library here, so that a test can
// set up what Windows could not.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/testing.h"
#include "scratch_drive.h"

namespace {

using Names = std::vector<std::string>;

DWORD ErrorOf(DWORD attributes) { return attributes == INVALID_FILE_ATTRIBUTES ? GetLastError() : 0; }

// A Linux folder of the test's own, mapped as drive T: (Z: stays "/"); the process folder is put back at the end.
class LinuxDisk : public ::testing::Test {
 protected:
  std::string Linux(const std::string &relative = "") const { return drive_.Linux(relative); }
  void Touch(const std::string &relative, const std::string &contents = "") const {
    std::ofstream file(Linux(relative), std::ios::binary);
    file << contents;
    ASSERT_TRUE(file.good()) << relative;
  }
  void MakeFolder(const std::string &relative) const { ASSERT_EQ(mkdir(Linux(relative).c_str(), 0755), 0) << relative; }
  void Link(const std::string &target, const std::string &relative) const {
    ASSERT_EQ(symlink(target.c_str(), Linux(relative).c_str()), 0) << relative;
  }
  bool Exists(const std::string &relative) const {
    struct stat info;
    return lstat(Linux(relative).c_str(), &info) == 0;
  }
  mode_t Mode(const std::string &relative) const {
    struct stat info;
    return stat(Linux(relative).c_str(), &info) == 0 ? (info.st_mode & 07777) : 0;
  }

  ScratchDrive drive_;
};

TEST_F(LinuxDisk, DrivesComeFromTheTable) {
  TestSetDrives(("T=" + Linux() + ";U=/nonexistent-kelmaro").c_str());
  EXPECT_EQ(GetDriveTypeA("t:"), static_cast<UINT>(DRIVE_FIXED));
  EXPECT_EQ(GetDriveTypeA("U:\\"), static_cast<UINT>(DRIVE_NO_ROOT_DIR));  // mapped to nothing
  EXPECT_EQ(GetLogicalDrives(), (1u << ('T' - 'A')) | (1u << ('Z' - 'A')));
  SetLastError(0);
  EXPECT_EQ(ErrorOf(GetFileAttributesA("U:\\x")), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
  Touch("f.lnk", "abc");
  EXPECT_EQ(GetFileAttributesA("T:\\f.lnk"), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(GetFileAttributesA(("Z:" + Linux() + "/f.lnk").c_str()), FILE_ATTRIBUTE_ARCHIVE);  // "/" as a separator
}

TEST_F(LinuxDisk, TheCurrentFolderIsTheProcessFolderByTheLongestRoot) {
  MakeFolder("sub");
  MakeFolder("sub/deeper");
  ASSERT_EQ(chdir(Linux("sub/deeper").c_str()), 0);
  TestSetDrives(("T=" + Linux() + ";S=" + Linux() + "/sub").c_str());
  char buffer[MAX_PATH];
  DWORD length = GetCurrentDirectoryA(sizeof buffer, buffer);
  EXPECT_EQ(std::string(buffer, length), "S:\\deeper");
  // A relative path starts there; a path from the root starts at S:'s root.
  EXPECT_EQ(GetFileAttributesA("..\\deeper"), FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(GetFileAttributesA("\\deeper"), FILE_ATTRIBUTE_DIRECTORY);
  // A process folder that no drive holds: the first mapped drive's root.
  ASSERT_EQ(chdir("/"), 0);
  TestSetDrives(("Z=/nonexistent-kelmaro;B=" + Linux()).c_str());
  length = GetCurrentDirectoryA(sizeof buffer, buffer);
  EXPECT_EQ(std::string(buffer, length), "B:\\");
}

TEST_F(LinuxDisk, ANameAsWrittenWinsOverItsOtherCases) {
  Touch("a.txt", "lower");
  Touch("A.TXT", "upper");
  EXPECT_STREQ(FindFirst("T:\\A.TXT").data.cFileName, "A.TXT");
  EXPECT_STREQ(FindFirst("T:\\a.txt").data.cFileName, "a.txt");
  // Neither as written: the first in listing order, which for one name in two cases is by bytes.
  EXPECT_STREQ(FindFirst("T:\\a.Txt").data.cFileName, "A.TXT");
  // A drive root lists no "." and "..".
  EXPECT_EQ(ListNames("T:\\*"), (Names{"A.TXT", "a.txt"}));
}

TEST_F(LinuxDisk, NamesSpelledAsOnDiskCostNoFolderReads) {
  MakeFolder("One");
  MakeFolder("One/Two");
  Touch("One/Two/f.lnk");
  size_t before = TestFolderReads();
  EXPECT_EQ(GetFileAttributesA("T:\\One\\Two\\f.lnk"), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_TRUE(FindFirst("T:\\One\\Two\\f.lnk").found);
  EXPECT_EQ(TestFolderReads(), before);
  EXPECT_EQ(GetFileAttributesA("T:\\one\\Two\\F.LNK"), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(TestFolderReads(), before + 2);  // "one" and "F.LNK" were looked for
  EXPECT_EQ(ListNames("T:\\\\One\\\\Two\\\\*"), (Names{".", "..", "f.lnk"}));
  EXPECT_EQ(TestFolderReads(), before + 3);  // a listing reads its folder once
}

// A folder read for a look without case is kept while its time stamps show no change, so that shortcut after
// shortcut with the same target in another case reads nothing; each change below must be seen at once.
TEST_F(LinuxDisk, AFolderReadForALookWithoutCaseIsKeptUntilItChanges) {
  MakeFolder("Apps");
  MakeFolder("Apps/Prog");
  Touch("Apps/Prog/Prog.exe");
  Touch("Apps/Prog/Gone.exe");
  // A folder changed within the last moments is read anew for every look (its stamps could still match a change
  // made after the reading); these have settled.
  struct timespec pause = {0, 250 * 1000 * 1000};
  nanosleep(&pause, nullptr);
  size_t before = TestFolderReads();
  EXPECT_EQ(GetFileAttributesA("T:\\APPS\\PROG\\PROG.EXE"), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(TestFolderReads(), before + 3);  // the root, Apps and Prog
  EXPECT_STREQ(FindFirst("T:\\apps\\prog\\prog.EXE").data.cFileName, "Prog.exe");
  EXPECT_EQ(ErrorOf(GetFileAttributesA("T:\\APPS\\PROG\\NEW.EXE")), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(TestFolderReads(), before + 3);

  struct Change {
    const char *what;
    std::function<void()> make;
    const char *lookFor;
    const char *found;  // null: not found
  };
  const Change changes[] = {
      {"a new entry", [&] { Touch("Apps/Prog/new.exe"); }, "T:\\APPS\\PROG\\NEW.EXE", "new.exe"},
      {"a name in another case that lists first", [&] { Touch("Apps/Prog/PROG.exe"); }, "T:\\apps\\PROG\\prog.exe",
       "PROG.exe"},
      {"a removed entry", [&] { ASSERT_EQ(unlink(Linux("Apps/Prog/Gone.exe").c_str()), 0); },
       "T:\\APPS\\PROG\\GONE.EXE", nullptr},
      {"a renamed entry",
       [&] { ASSERT_EQ(rename(Linux("Apps/Prog/new.exe").c_str(), Linux("Apps/Prog/Newer.exe").c_str()), 0); },
       "T:\\APPS\\PROG\\NEWER.EXE", "Newer.exe"},
      {"a folder replaced by another of the same name",
       [&] {
         ASSERT_EQ(rename(Linux("Apps/Prog").c_str(), Linux("Apps/Old").c_str()), 0);
         MakeFolder("Apps/Prog");
         Touch("Apps/Prog/Other.exe");
       },
       "T:\\APPS\\PROG\\PROG.EXE", nullptr},
  };
  for (const Change &change : changes) {
    SCOPED_TRACE(change.what);
    change.make();
    FirstFound found = FindFirst(change.lookFor);
    EXPECT_EQ(found.found, change.found != nullptr);
    if (change.found != nullptr && found.found) {
      EXPECT_STREQ(found.data.cFileName, change.found);
    }
  }
}

// Follows links into a folder for as long as FindFirstFileA lists it, as a walk that enters every folder would.
// Result: the number of levels listed and the error that ended it; each level must list `entries`.
std::pair<int, DWORD> WalkDown(std::string folder, const std::string &link, const Names &entries) {
  for (int levels = 0; levels < MAX_PATH; ++levels) {
    FirstFound found = FindFirst(folder + "\\*");
    if (!found.found) return {levels, found.error};
    EXPECT_EQ(ListNames(folder + "\\*"), entries) << folder;
    folder += "\\" + link;
  }
  return {MAX_PATH, 0};
}

TEST_F(LinuxDisk, ALinkToAFolderLooksLikeAJunction) {
  MakeFolder("d");
  Touch("d/x.lnk");
  Link(".", "d/loop");  // the folder itself
  Link("..", "d/up");   // its parent
  for (const char *name : {"T:\\d\\loop", "T:\\d\\up"}) {
    FirstFound found = FindFirst(name);
    ASSERT_TRUE(found.found) << name;
    EXPECT_EQ(found.data.dwFileAttributes, FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT) << name;
    EXPECT_EQ(found.data.dwReserved0, IO_REPARSE_TAG_SYMLINK) << name;
  }
  // ".." is the parent in the path's own terms ("T:\d"), not the parent of the link's target (the drive's parent).
  EXPECT_EQ(GetFileAttributesA("T:\\d\\up\\..\\x.lnk"), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(GetFileAttributesA("T:\\d\\up\\d\\loop\\loop\\x.lnk"), FILE_ATTRIBUTE_ARCHIVE);
}

TEST_F(LinuxDisk, ALoopOfLinksEndsAtThePathLimitOrTheLinkLimit) {
  MakeFolder("d");
  Link(".", "d/l");
  Link(".", "d/loop-loop");
  const Names entries = {".", "..", "l", "loop-loop"};
  // Ten characters a level outgrow MAX_PATH long before Linux's limit of 40 links in one path ("T:\d" and "\*" go
  // around the levels) ...
  std::pair<int, DWORD> end = WalkDown("T:\\d", "loop-loop", entries);
  EXPECT_EQ(end.second, static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE));
  EXPECT_EQ(end.first, (MAX_PATH - 4 - 2) / 10 + 1);
  // ... two characters a level reach it: "T:\d" and 40 links, as Windows stops after 63 reparse points.
  end = WalkDown("T:\\d", "l", entries);
  EXPECT_EQ(end.second, static_cast<DWORD>(ERROR_CANT_RESOLVE_FILENAME));
  EXPECT_EQ(end.first, 41);
}

TEST_F(LinuxDisk, LinksToFilesAndLinksToNothing) {
  MakeFolder("d");
  Touch("target.lnk", "12345");
  Link("target.lnk", "link.lnk");
  Link("absent", "dead.lnk");
  Link("self", "self");  // a loop of one
  Link("d", "dlink");
  struct Row {
    const char *name;
    DWORD attributes;
    DWORD size;
  } rows[] = {
      {"link.lnk", FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_REPARSE_POINT, 5},  // the target's size
      {"dead.lnk", FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_REPARSE_POINT, 0},
      {"self", FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_REPARSE_POINT, 0},
  };
  for (const Row &row : rows) {
    FirstFound found = FindFirst(std::string("T:\\") + row.name);
    ASSERT_TRUE(found.found) << row.name;
    EXPECT_EQ(found.data.dwFileAttributes, row.attributes) << row.name;
    EXPECT_EQ(found.data.nFileSizeLow, row.size) << row.name;
  }
  SetLastError(0);
  EXPECT_EQ(CreateFileA("T:\\self", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CANT_RESOLVE_FILENAME));
  // A link is deleted, never what it points to.
  EXPECT_TRUE(DeleteFileA("T:\\link.lnk"));
  EXPECT_TRUE(Exists("target.lnk"));
  SetLastError(0);
  EXPECT_FALSE(DeleteFileA("T:\\dlink"));  // it looks like a folder
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
  EXPECT_TRUE(RemoveDirectoryA("T:\\dlink"));
  EXPECT_FALSE(Exists("dlink"));
  EXPECT_TRUE(Exists("d"));
}

TEST_F(LinuxDisk, ReadOnlyFollowsTheWriteBits) {
  Touch("f.lnk");
  MakeFolder("d");
  struct Row {
    const char *name;
    mode_t mode;
    DWORD attributes;
  } rows[] = {
      {"f.lnk", 0444, FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY},
      {"f.lnk", 0644, FILE_ATTRIBUTE_ARCHIVE},
      {"d", 0555, FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY},
      {"d", 0755, FILE_ATTRIBUTE_DIRECTORY},
  };
  for (const Row &row : rows) {
    ASSERT_EQ(chmod(Linux(row.name).c_str(), row.mode), 0);
    EXPECT_EQ(GetFileAttributesA((std::string("T:\\") + row.name).c_str()), row.attributes)
        << row.name << " " << std::oct << row.mode;
  }
  ASSERT_TRUE(SetFileAttributesA("T:\\f.lnk", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN));
  EXPECT_EQ(Mode("f.lnk"), 0444u);
  ASSERT_TRUE(SetFileAttributesA("T:\\f.lnk", FILE_ATTRIBUTE_NORMAL));
  EXPECT_EQ(Mode("f.lnk"), 0644u);  // the owner's write permission comes back
  ASSERT_TRUE(SetFileAttributesA("T:\\d", FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(Mode("d"), 0755u);  // a folder keeps its permissions
  EXPECT_EQ(_access("T:\\f.lnk", 2), 0);
  ASSERT_TRUE(SetFileAttributesA("T:\\f.lnk", FILE_ATTRIBUTE_READONLY));
  errno = 0;
  EXPECT_EQ(_access("T:\\f.lnk", 2), -1);
  EXPECT_EQ(errno, EACCES);
  EXPECT_EQ(_access("T:\\f.lnk", 0), 0);
  errno = 0;
  EXPECT_EQ(_access("T:\\absent", 0), -1);
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(LinuxDisk, NamesWindowsCannotHoldReadWithMarks) {
  Touch("a:b");
  Touch("back\\slash");
  Touch("\xFF-not-utf8");
  // In the order of the names on disk: the byte 0xFF reads as U+FFFD, which comes after the letters.
  EXPECT_EQ(ListNames("T:\\*"), (Names{"a?b", "back?slash", "?-not-utf8"}));
  // Such a name cannot be opened by what it reads as, just as on Windows, but a wildcard finds it.
  SetLastError(0);
  EXPECT_EQ(ErrorOf(GetFileAttributesA("T:\\a?b")), static_cast<DWORD>(ERROR_INVALID_NAME));
  EXPECT_TRUE(FindFirst("T:\\a?b").found);
}

TEST_F(LinuxDisk, ListingAChosenFolderCanBeMadeToFail) {
  MakeFolder("locked");
  Touch("locked/x.lnk");
  ASSERT_TRUE(TestFailListing("T:\\locked\\", ERROR_ACCESS_DENIED));
  EXPECT_FALSE(TestFailListing("", ERROR_ACCESS_DENIED));
  for (const char *pattern : {"T:\\locked\\*.lnk", "t:\\LOCKED\\*", "T:\\locked\\x.lnk"}) {
    FirstFound found = FindFirst(pattern);
    EXPECT_FALSE(found.found) << pattern;
    EXPECT_EQ(found.error, static_cast<DWORD>(ERROR_ACCESS_DENIED)) << pattern;
  }
  EXPECT_EQ(ListNames("T:\\*"), Names{"locked"});  // its parent still lists it
  EXPECT_EQ(GetFileAttributesA("T:\\locked\\x.lnk"), FILE_ATTRIBUTE_ARCHIVE);
  TestClearFaults();
  EXPECT_EQ(ListNames("T:\\locked\\*.lnk"), Names{"x.lnk"});
}

TEST_F(LinuxDisk, ChosenCallsCanBeMadeToFail) {
  for (const char *name : {"a", "b", "c", "d"}) Touch(name);
  EXPECT_FALSE(TestFailCalls("NoSuchOperation", ERROR_ACCESS_DENIED));
  // Let one through, then fail two.
  ASSERT_TRUE(TestFailCalls("DeleteFileA", ERROR_ACCESS_DENIED, 2, 1));
  struct Row {
    const char *path;
    bool deleted;
  } rows[] = {{"T:\\a", true}, {"T:\\b", false}, {"T:\\c", false}, {"T:\\d", true}};
  for (const Row &row : rows) {
    SetLastError(0);
    EXPECT_EQ(DeleteFileA(row.path) != 0, row.deleted) << row.path;
    EXPECT_EQ(GetLastError(), row.deleted ? 0u : static_cast<DWORD>(ERROR_ACCESS_DENIED)) << row.path;
    EXPECT_EQ(Exists(row.path + 3), !row.deleted) << row.path;
  }
  // Every call, until cleared.
  ASSERT_TRUE(TestFailCalls("CreateFileA", ERROR_DISK_FULL, -1));
  for (int call = 0; call < 3; ++call) {
    SetLastError(0);
    EXPECT_EQ(CreateFileA("T:\\new", GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DISK_FULL));
  }
  EXPECT_FALSE(Exists("new"));
  TestClearFaults();
  HANDLE file = CreateFileA("T:\\new", GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
  EXPECT_NE(file, INVALID_HANDLE_VALUE);
  CloseHandle(file);
}

TEST_F(LinuxDisk, AnEntryThatGoesAwayDuringAListingIsPassedOver) {
  for (const char *name : {"a", "b", "c"}) Touch(name);
  WIN32_FIND_DATAA data;
  HANDLE search = FindFirstFileA("T:\\*", &data);
  ASSERT_NE(search, INVALID_HANDLE_VALUE);
  EXPECT_STREQ(data.cFileName, "a");
  ASSERT_EQ(unlink(Linux("b").c_str()), 0);
  ASSERT_TRUE(FindNextFileA(search, &data));
  EXPECT_STREQ(data.cFileName, "c");
  EXPECT_FALSE(FindNextFileA(search, &data));
  FindClose(search);
}

TEST_F(LinuxDisk, NetworkPathsMiss) {
  SetLastError(0);
  EXPECT_EQ(ErrorOf(GetFileAttributesA("\\\\server\\share\\x")), static_cast<DWORD>(ERROR_BAD_NETPATH));
  SetLastError(0);
  EXPECT_EQ(CreateFileA("\\\\server\\share\\x", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr),
            INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_NETPATH));
  SetLastError(0);
  EXPECT_FALSE(GetVolumeInformationA("\\\\server\\share\\", nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_NETPATH));
}

// Sets an environment variable for one test and puts it back.
class SavedVariable {
 public:
  explicit SavedVariable(const char *name) : name_(name) {
    const char *value = std::getenv(name);
    had_ = value != nullptr;
    if (had_) value_ = value;
  }
  ~SavedVariable() {
    if (had_)
      setenv(name_.c_str(), value_.c_str(), 1);
    else
      unsetenv(name_.c_str());
    tzset();
  }

 private:
  std::string name_, value_;
  bool had_;
};

uint64_t TicksOf(time_t seconds) { return (static_cast<uint64_t>(seconds) + 11644473600ull) * 10000000ull; }

TEST(FileTimes, LocalTimeUsesTheZonesBiasOfNow) {
  SavedVariable zone("TZ");
  struct Row {
    const char *zone;
    int64_t hours;
  } rows[] = {{"JST-9", 9}, {"UTC0", 0}, {"EST5", -5}};  // zones without daylight saving
  for (const Row &row : rows) {
    setenv("TZ", row.zone, 1);
    tzset();
    uint64_t ticks = TicksOf(1577836800);  // 2020-01-01 00:00 UTC
    FILETIME utc = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)}, local;
    ASSERT_TRUE(FileTimeToLocalFileTime(&utc, &local)) << row.zone;
    uint64_t localTicks = (static_cast<uint64_t>(local.dwHighDateTime) << 32) | local.dwLowDateTime;
    EXPECT_EQ(static_cast<int64_t>(localTicks - ticks), row.hours * 3600 * 10000000) << row.zone;
  }
  FILETIME tooLate = {0, 0x80000000u}, out;
  SetLastError(0);
  EXPECT_FALSE(FileTimeToLocalFileTime(&tooLate, &out));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

// SearchPathA looks where Windows looks: the program's folder, the system folder and the Windows folder (from windir,
// else SystemRoot), the current folder, then PATH.
TEST_F(LinuxDisk, SearchPathLooksInTheWindowsFoldersTheCurrentFolderAndPath) {
  SavedVariable path("PATH"), windir("windir"), systemRoot("SystemRoot");
  for (const char *folder : {"bin", "Win", "Win/system32", "system32"}) MakeFolder(folder);
  for (const char *file : {"bin/tool.exe", "here.txt", "Win/system32/sys.exe", "Win/win.exe", "system32/root.exe"})
    Touch(file);
  setenv("PATH", ("/nonexistent-kelmaro:" + Linux("bin")).c_str(), 1);
  unsetenv("windir");
  setenv("SystemRoot", "T:/Win/", 1);
  ASSERT_TRUE(SetCurrentDirectoryA("T:\\"));
  struct Row {
    const char *name, *extension, *found;
  } rows[] = {
      {"tool.exe", nullptr, "T:\\bin\\tool.exe"},
      {"here", ".txt", "T:\\here.txt"},
      {"sys.exe", nullptr, "T:\\Win\\system32\\sys.exe"},
      {"win.exe", nullptr, "T:\\Win\\win.exe"},
  };
  for (const Row &row : rows) {
    char buffer[MAX_PATH];
    char *part = nullptr;
    DWORD length = SearchPathA(nullptr, row.name, row.extension, sizeof buffer, buffer, &part);
    EXPECT_EQ(std::string(buffer, length), row.found) << row.name;
    EXPECT_STREQ(part, std::strrchr(row.found, '\\') + 1) << row.name;
  }
  char buffer[MAX_PATH];
  SetLastError(0);
  EXPECT_EQ(SearchPathA(nullptr, "absent.exe", nullptr, sizeof buffer, buffer, nullptr), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  setenv("windir", "T:\\", 1);  // windir before SystemRoot, also when it is a root
  DWORD length = SearchPathA(nullptr, "root.exe", nullptr, sizeof buffer, buffer, nullptr);
  EXPECT_EQ(std::string(buffer, length), "T:\\system32\\root.exe");
  unsetenv("SystemRoot");
  setenv("windir", "/usr/share", 1);  // not a drive path: no Windows folder
  EXPECT_EQ(SearchPathA(nullptr, "win.exe", nullptr, sizeof buffer, buffer, nullptr), 0u);
}

TEST_F(LinuxDisk, AFileMovesToAnotherFileSystemByCopy) {
  // /dev/shm is a file system of its own on most machines.
  char pattern[] = "/dev/shm/kelmaro-shm-XXXXXX";
  struct stat rootInfo, shmInfo;
  std::string shm = mkdtemp(pattern) ? pattern : "";
  if (shm.empty() || stat(Linux().c_str(), &rootInfo) != 0 || stat(pattern, &shmInfo) != 0 ||
      rootInfo.st_dev == shmInfo.st_dev) {
    if (!shm.empty()) std::filesystem::remove_all(shm);
    GTEST_SKIP() << "no second file system beside " << Linux();
  }
  TestSetDrives(("T=" + Linux() + ";M=" + shm).c_str());
  Touch("f.lnk", "moved bytes");
  struct timespec old[2] = {{0, UTIME_OMIT}, {1000000000, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, Linux("f.lnk").c_str(), old, 0), 0);
  MakeFolder("d");
  EXPECT_TRUE(MoveFileA("T:\\f.lnk", "M:\\f.lnk")) << GetLastError();
  EXPECT_FALSE(Exists("f.lnk"));
  std::vector<uint8_t> moved = ReadBytes(shm + "/f.lnk");
  EXPECT_EQ(std::string(moved.begin(), moved.end()), "moved bytes");
  struct stat info;
  ASSERT_EQ(stat((shm + "/f.lnk").c_str(), &info), 0);
  EXPECT_EQ(info.st_mtim.tv_sec, 1000000000);
  SetLastError(0);
  EXPECT_FALSE(MoveFileA("T:\\d", "M:\\d"));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_SAME_DEVICE));
  std::filesystem::remove_all(shm);
}

}  // namespace
