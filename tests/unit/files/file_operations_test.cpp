// The file wrappers on a real file system: what each gives back, and what it leaves in the two error records.
#include "files/file_operations.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/testing.h"
#include "reports/last_error.h"
#include "support/executable_images.h"
#include "support/scratch_folder.h"

namespace {

TEST(PathKind, TellsWhatIsThereAndLeavesTheKeptError) {
  ScratchFolder scratch;
  std::string file = scratch.MakeFile("a file.txt", "x");
  std::string folder = scratch.MakeFolder("a folder");
  struct Row {
    std::string path;
    int kind;
  } rows[] = {
      {"", kPathEmpty},
      {"\"\"", kPathNothing},
      {scratch.Path("nothing here"), kPathNothing},
      {file, kPathFile},
      {"\"" + file + "\"", kPathFile},
      {folder, kPathFolder},
      {"\\\\server", kPathFolder},  // a server of the network view
      {"\\:\\group", kPathFolder},  // a group of the network view
  };
  for (const Row &row : rows) {
    PathBuffer path(row.path);
    SetKeptLastError(1234);
    EXPECT_EQ(PathKind(path.bytes), row.kind) << row.path;
    EXPECT_EQ(path.Text(), row.path) << "quotes and network edits are put back";
    EXPECT_EQ(GetKeptLastError(), 1234u) << row.path;
  }
  EXPECT_EQ(PathKind(nullptr), kPathEmpty);
}

// A place of the network view that has no real form is answered at once: no system call, so the kept error stays.
TEST(FileOperations, NetworkPlacesAreAnsweredWithoutASystemCall) {
  PathBuffer place("\\:\\group\\server");
  char out[520] = "sentinel";
  SetKeptLastError(4321);  // PathKind's rows cover GetPathAttributes
  EXPECT_EQ(PathAccessible(place.bytes), 0);
  EXPECT_EQ(OpenPath(place.bytes, GENERIC_READ, 0, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL), INVALID_HANDLE_VALUE);
  EXPECT_EQ(SearchForFile(place.bytes, out, sizeof out), kSearchFound);
  EXPECT_STREQ(out, "sentinel");
  EXPECT_EQ(GetKeptLastError(), 4321u);
  EXPECT_EQ(place.Text(), "\\:\\group\\server");
  // DeleteFilePath counts the place as deleted and clears both errors.
  PathBuffer share("\\\\server\\share");
  SetRunTimeError(13);
  EXPECT_EQ(DeleteFilePath(share.bytes), 0);
  EXPECT_EQ(GetKeptLastError(), 0u);
  EXPECT_EQ(GetRunTimeError(), 0);
}

TEST(FileOperations, AttributesAndExistence) {
  ScratchFolder scratch;
  PathBuffer file(scratch.MakeFile("ro.txt")), missing(scratch.Path("missing"));
  DWORD attributes = 0;
  EXPECT_EQ(GetPathAttributes(missing.bytes, &attributes), 1);
  EXPECT_EQ(attributes, INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(GetKeptLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(GetRunTimeError(), 2);
  // 0 stands for FILE_ATTRIBUTE_NORMAL; a missing path changes nothing and is no failure.
  ASSERT_TRUE(SetFileAttributesA(file.bytes, FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(SetPathAttributes(file.bytes, 0), 0);
  EXPECT_EQ(GetFileAttributesA(file.bytes) & FILE_ATTRIBUTE_READONLY, 0u);
  EXPECT_EQ(GetKeptLastError(), 0u);
  EXPECT_EQ(SetPathAttributes(missing.bytes, FILE_ATTRIBUTE_READONLY), 0);
  // The existence test: quotes end the path; a miss sets the run-time error.
  PathBuffer quoted("\"" + file.Text() + "\" and more");
  EXPECT_EQ(PathAccessible(quoted.bytes), 0);
  EXPECT_EQ(quoted.Text(), "\"" + file.Text() + "\" and more");
  EXPECT_EQ(PathAccessible(missing.bytes), -1);
  EXPECT_EQ(GetRunTimeError(), 2);
}

TEST(FileOperations, DeleteAndRemove) {
  ScratchFolder scratch;
  // DeleteFilePath takes a quoted path, and works on a copy.
  std::string file = scratch.MakeFile("quoted.txt");
  PathBuffer quoted("\"" + file + "\"");
  EXPECT_EQ(DeleteFilePath(quoted.bytes), 0);
  EXPECT_EQ(GetFileAttributesA(file.c_str()), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(quoted.Text(), "\"" + file + "\"");
  // A refused delete fails with the error of the refusal, after the notice about administrator rights.
  PathBuffer kept(scratch.MakeFile("kept.txt"));
  ASSERT_TRUE(SetFileAttributesA(kept.bytes, FILE_ATTRIBUTE_READONLY));
  TestConsoleBegin("");
  EXPECT_EQ(DeleteFilePath(kept.bytes), 1);
  EXPECT_EQ(TestConsoleOutput().rfind("権限の確認:消去: kept.txt\n", 0), 0u) << TestConsoleOutput();
  TestConsoleEnd();
  EXPECT_EQ(GetKeptLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
  EXPECT_EQ(GetRunTimeError(), 13);
  EXPECT_NE(GetFileAttributesA(kept.bytes), INVALID_FILE_ATTRIBUTES);
  PathBuffer full(scratch.MakeFolder("full")), emptyFolder(scratch.MakeFolder("empty"));
  scratch.MakeFile("full\\x.txt");
  EXPECT_EQ(RemoveFolderPath(full.bytes), 1);
  EXPECT_EQ(RemoveFolderPath(emptyFolder.bytes), 0);
  EXPECT_EQ(GetFileAttributesA(emptyFolder.bytes), INVALID_FILE_ATTRIBUTES);
}

TEST(FileOperations, OpenReadSizeClose) {
  ScratchFolder scratch;
  std::string text(70000, 'x');  // more than one 64 KB block, read in one call as the shortcut reader does
  for (size_t i = 0; i < text.size(); ++i) text[i] = static_cast<char>('a' + i % 26);
  std::string file = scratch.MakeFile("data.bin", text);
  PathBuffer quoted("\"" + file + "\"");
  HANDLE handle = OpenPath(quoted.bytes, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0);
  ASSERT_NE(handle, INVALID_HANDLE_VALUE);
  EXPECT_EQ(quoted.Text(), file) << "OpenPath removes the quotes for good";
  EXPECT_EQ(GetFileSize64(handle), 70000ull);
  std::string back(70010, '\0');
  EXPECT_EQ(ReadFileBlock(handle, &back[0], 70010), 70000);
  EXPECT_EQ(back.substr(0, 70000), text);
  EXPECT_EQ(ReadFileBlock(handle, &back[0], 10), 0) << "the end of the file";
  EXPECT_EQ(CloseFileHandle(handle), 0);
}

TEST(SearchForFile, Outcomes) {
  ScratchFolder scratch;
  std::string file = scratch.MakeFile("found.txt");
  ASSERT_TRUE(SetCurrentDirectoryA(scratch.Path().c_str()));
  struct Row {
    const char *what;
    std::string name;
    int result;
    std::string out;  // "sentinel": the buffer is left alone
  } rows[] = {
      {"empty name", "", kSearchNotFound, "sentinel"},
      {"a bare name in the current folder, found along the search path", "found.txt", kSearchFound, file},
      {"no program, not found: handed back as it stands", scratch.Path("absent.txt"), kSearchNotFound,
       scratch.Path("absent.txt")},
      {"a program the search misses", "kelmaro-no-such-program.exe", kSearchNotFound, "sentinel"},
      // Q: is mapped neither by a default Wine prefix nor by a default drive table.
      {"the drive of a path is not there", "Q:\\a.txt", kSearchNoDrive, "sentinel"},
  };
  for (const Row &row : rows) {
    PathBuffer name(row.name);
    char out[520] = "sentinel";
    EXPECT_EQ(SearchForFile(name.bytes, out, sizeof out), row.result) << row.what;
    EXPECT_EQ(lstrcmpiA(out, row.out.c_str()), 0) << row.what << ": " << out;
  }
}

// What kind of program a file is, from the system's reading of its header; only a file can be one.
TEST(IsWindowsProgram, ByKind) {
  ScratchFolder scratch;
  scratch.MakeFolder("folder.exe");
  struct Row {
    const char *name;
    std::string bytes;  // empty: nothing is made
    int result;
  } rows[] = {
      {"gui.exe", PortableImage(2, 10, 0), 1},
      {"windows 3.1.exe", NewImage(2), 1},
      {"console.exe", PortableImage(3), 0},
      // Wine reads a DOS program's signature byte-swapped, so to Wine it is no program.
      {"dos.exe", DosImage(), WindowsOrWine(0, -1)},
      {"text.exe", "no program here", -1},
      {"folder.exe", "", -3},
      {"absent.exe", "", -3},
  };
  for (const Row &row : rows) {
    if (!row.bytes.empty()) scratch.MakeFile(row.name, row.bytes);
    PathBuffer path(scratch / row.name);
    EXPECT_EQ(IsWindowsProgram(path.bytes), row.result) << row.name;
  }
  PathBuffer empty("");
  EXPECT_EQ(IsWindowsProgram(empty.bytes), -3);
}

}  // namespace
