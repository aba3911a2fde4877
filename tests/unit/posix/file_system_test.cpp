// The Linux backend's file system where Linux shows through: the drive table, the current folder, names spelled in
// more than one case, symbolic links, permission bits, and names Windows cannot hold. Files
// are made with the C library here, so that a test can set up what Windows could not.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/files/testing.h"
#include "scratch_drive.h"

namespace {

using Names = std::vector<std::string>;

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

std::string CurrentFolder() {
  char buffer[MAX_PATH];
  return std::string(buffer, GetCurrentDirectoryA(sizeof buffer, buffer));
}

TEST_F(LinuxDisk, DrivesAndTheCurrentFolderComeFromTheTable) {
  MakeFolder("sub");
  MakeFolder("sub/deeper");
  Touch("sub/f.lnk");
  ASSERT_EQ(chdir(Linux("sub/deeper").c_str()), 0);
  TestSetDrives(("T=" + Linux() + ";S=" + Linux() + "/sub;U=/nonexistent-kelmaro").c_str());
  EXPECT_EQ(CurrentFolder(), "S:\\deeper");  // by the longest root
  struct Row {
    std::string path;
    DWORD attributes, error;
  } rows[] = {
      {"..\\f.lnk", FILE_ATTRIBUTE_ARCHIVE, 0},                    // from the current folder
      {"Z:" + Linux() + "/sub/f.lnk", FILE_ATTRIBUTE_ARCHIVE, 0},  // "/" as a separator
      {"U:\\x", INVALID_FILE_ATTRIBUTES, ERROR_PATH_NOT_FOUND},    // mapped to nothing
  };
  for (const Row &row : rows) {
    SetLastError(0);
    EXPECT_EQ(GetFileAttributesA(row.path.c_str()), row.attributes) << row.path;
    if (row.error) {
      EXPECT_EQ(GetLastError(), row.error) << row.path;
    }
  }
  // A process folder that no drive holds: the first mapped drive's root.
  ASSERT_EQ(chdir("/"), 0);
  TestSetDrives(("Z=/nonexistent-kelmaro;B=" + Linux()).c_str());
  EXPECT_EQ(CurrentFolder(), "B:\\");
}

TEST_F(LinuxDisk, ANameAsWrittenWinsOverItsOtherCases) {
  Touch("a.txt", "lower");
  Touch("A.TXT", "upper");
  EXPECT_STREQ(FindFirst("T:\\A.TXT").data.cFileName, "A.TXT");
  // Neither as written: the first in listing order, which for one name in two cases is by bytes.
  EXPECT_STREQ(FindFirst("T:\\a.Txt").data.cFileName, "A.TXT");
  // A drive root lists no "." and "..".
  EXPECT_EQ(ListNames("T:\\*"), (Names{"A.TXT", "a.txt"}));
}

// Names spelled as on disk cost no folder reads. A folder read for a look without case is kept while its time stamps
// show no change, so that shortcut after shortcut with the same target in another case reads nothing; each change
// below must be seen at once.
TEST_F(LinuxDisk, FolderReadsAreSparedAndKeptUntilTheFolderChanges) {
  MakeFolder("Apps");
  MakeFolder("Apps/Prog");
  Touch("Apps/Prog/Prog.exe");
  Touch("Apps/Prog/Gone.exe");
  // A folder changed within the last moments is read anew for every look (its stamps could still match a change
  // made after the reading); these have settled.
  struct timespec pause = {0, 250 * 1000 * 1000};
  nanosleep(&pause, nullptr);
  size_t before = TestFolderReads();
  EXPECT_TRUE(FindFirst("T:\\Apps\\Prog\\Prog.exe").found);
  EXPECT_EQ(TestFolderReads(), before);
  EXPECT_EQ(GetFileAttributesA("T:\\Apps\\PROG\\PROG.EXE"), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(TestFolderReads(), before + 2);  // Apps and Prog, where "PROG" and "PROG.EXE" were looked for
  EXPECT_STREQ(FindFirst("T:\\APPS\\prog\\prog.EXE").data.cFileName, "Prog.exe");
  EXPECT_EQ(FindFirst("T:\\APPS\\PROG\\NEW.EXE").error, static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(TestFolderReads(), before + 3);  // the root as well

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

TEST_F(LinuxDisk, LinksLookLikeJunctionsAndAreDeletedThemselves) {
  MakeFolder("d");
  Touch("d/x.lnk");
  Touch("target.lnk", "12345");
  Link(".", "d/loop");  // the folder itself
  Link("..", "d/up");
  Link("target.lnk", "link.lnk");
  Link("absent", "dead.lnk");
  Link("self", "self");  // a loop of one
  Link("d", "dlink");
  const DWORD kFileLink = FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_REPARSE_POINT;
  struct Row {
    const char *name;
    DWORD attributes, size;
  } rows[] = {
      {"d\\loop", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT, 0},
      {"link.lnk", kFileLink, 5},  // the target's size
      {"dead.lnk", kFileLink, 0},
      {"self", kFileLink, 0},
  };
  for (const Row &row : rows) {
    FirstFound found = FindFirst(std::string("T:\\") + row.name);
    ASSERT_TRUE(found.found) << row.name;
    EXPECT_EQ(found.data.dwFileAttributes, row.attributes) << row.name;
    EXPECT_EQ(found.data.nFileSizeLow, row.size) << row.name;
    EXPECT_EQ(found.data.dwReserved0, IO_REPARSE_TAG_SYMLINK) << row.name;
  }
  // ".." is the parent in the path's own terms ("T:\d"), not the parent of the link's target (the drive's parent).
  EXPECT_EQ(GetFileAttributesA("T:\\d\\up\\..\\x.lnk"), FILE_ATTRIBUTE_ARCHIVE);
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

// The plain modes (0644, 0755) are what every other test sees; here the ones without write permission.
TEST_F(LinuxDisk, ReadOnlyFollowsTheWriteBits) {
  Touch("f.lnk");
  MakeFolder("d");
  ASSERT_EQ(chmod(Linux("f.lnk").c_str(), 0444), 0);
  ASSERT_EQ(chmod(Linux("d").c_str(), 0555), 0);
  EXPECT_EQ(GetFileAttributesA("T:\\f.lnk"), FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(GetFileAttributesA("T:\\d"), FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY);
  ASSERT_TRUE(SetFileAttributesA("T:\\f.lnk", FILE_ATTRIBUTE_NORMAL));
  EXPECT_EQ(Mode("f.lnk"), 0644u);  // the owner's write permission comes back
  ASSERT_TRUE(SetFileAttributesA("T:\\d", FILE_ATTRIBUTE_NORMAL));
  EXPECT_EQ(Mode("d"), 0555u);  // a folder keeps its permissions
}

TEST_F(LinuxDisk, NamesWindowsCannotHoldReadWithMarks) {
  Touch("a:b");
  Touch("\xFF-not-utf8");
  // In the order of the names on disk: the byte 0xFF reads as U+FFFD, which comes after the letters.
  EXPECT_EQ(ListNames("T:\\*"), (Names{"a?b", "?-not-utf8"}));
  // Such a name cannot be opened by what it reads as, just as on Windows, but a wildcard finds it.
  EXPECT_TRUE(FindFirst("T:\\a?b").found);
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

// Puts an environment variable back as it was.
struct SavedVariable {
  explicit SavedVariable(const char *name) : name(name), had(std::getenv(name)), value(had ? std::getenv(name) : "") {}
  ~SavedVariable() { had ? setenv(name.c_str(), value.c_str(), 1) : unsetenv(name.c_str()); }
  std::string name;
  bool had;
  std::string value;
};

// A target typed without a folder is found where Windows looks for it.
TEST_F(LinuxDisk, SearchPathLooksInTheWindowsFoldersTheCurrentFolderAndPath) {
  SavedVariable path("PATH"), windir("windir"), systemRoot("SystemRoot");
  for (const char *folder : {"bin", "Win", "Win/system32", "system32"}) MakeFolder(folder);
  for (const char *file : {"bin/tool.exe", "here.txt", "Win/system32/sys.exe", "Win/win.exe", "system32/root.exe"})
    Touch(file);
  setenv("PATH", ("/nonexistent-kelmaro:" + Linux("bin")).c_str(), 1);
  unsetenv("windir");
  setenv("SystemRoot", "T:/Win/", 1);
  ASSERT_TRUE(SetCurrentDirectoryA("T:\\"));
  auto search = [](const char *name) {
    char buffer[MAX_PATH];
    SetLastError(0);
    DWORD length = SearchPathA(nullptr, name, nullptr, sizeof buffer, buffer, nullptr);
    return length ? std::string(buffer, length) : "error " + std::to_string(GetLastError());
  };
  EXPECT_EQ(search("tool.exe"), "T:\\bin\\tool.exe");
  EXPECT_EQ(search("here.txt"), "T:\\here.txt");
  EXPECT_EQ(search("sys.exe"), "T:\\Win\\system32\\sys.exe");
  EXPECT_EQ(search("win.exe"), "T:\\Win\\win.exe");
  EXPECT_EQ(search("absent.exe"), "error 2");  // ERROR_FILE_NOT_FOUND
  setenv("windir", "T:\\", 1);                 // windir before SystemRoot, also when it is a root
  EXPECT_EQ(search("root.exe"), "T:\\system32\\root.exe");
  unsetenv("SystemRoot");
  setenv("windir", "/usr/share", 1);  // not a drive path: no Windows folder
  EXPECT_EQ(search("win.exe"), "error 2");
}

}  // namespace
