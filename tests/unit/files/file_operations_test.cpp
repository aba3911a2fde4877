// The file wrappers on a real file system: what each gives back, and what it leaves in the two error records.
#include "files/file_operations.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "file_test_support.h"
#include "reports/last_error.h"

namespace {

// A drive letter that names no drive here, or 0 when every letter is taken.
char MissingDriveLetter() {
  for (char letter = 'Y'; letter > 'A'; --letter) {
    char root[4] = {letter, ':', '\\', 0};
    if (GetDriveTypeA(root) == DRIVE_NO_ROOT_DIR) return letter;
  }
  return 0;
}

TEST(PathKind, TellsWhatIsThere) {
  FileScratch scratch;
  std::string file = scratch.MakeFile("a file.txt", "x");
  std::string folder = scratch.MakeFolder("a folder");
  struct Row {
    std::string path;
    int kind;
  } rows[] = {
      {"", kPathEmpty},
      {"\"\"", kPathNothing},
      {scratch.Path("nothing here"), kPathNothing},
      {scratch.Path("nothing here\\below"), kPathNothing},
      {file, kPathFile},
      {"\"" + file + "\"", kPathFile},
      {folder, kPathFolder},
      {"\"" + folder + "\"", kPathFolder},
      {"\\\\server", kPathFolder},  // a server of the network view
      {"\\:\\group", kPathFolder},  // a group of the network view
  };
  for (const Row &row : rows) {
    PathBuffer path(row.path);
    EXPECT_EQ(PathKind(path.bytes), row.kind) << row.path;
    EXPECT_EQ(path.Text(), row.path) << "quotes and network edits are put back";
  }
  EXPECT_EQ(PathKind(nullptr), kPathEmpty);
}

TEST(PathKind, LeavesTheKeptErrorAsItWas) {
  FileScratch scratch;
  std::string file = scratch.MakeFile("f.txt");
  for (const std::string &text : {scratch.Path("missing.txt"), file, std::string("\\\\server")}) {
    SetKeptLastError(1234);
    PathBuffer path(text);
    PathKind(path.bytes);
    EXPECT_EQ(GetKeptLastError(), 1234u) << text;
  }
}

TEST(PathAccessible, ExistenceWithQuotesAndNetworkPlaces) {
  FileScratch scratch;
  std::string file = scratch.MakeFile("here.txt");
  PathBuffer quoted("\"" + file + "\" and more");
  EXPECT_EQ(PathAccessible(quoted.bytes), 0);
  EXPECT_EQ(quoted.Text(), "\"" + file + "\" and more");
  PathBuffer missing(scratch.Path("gone.txt"));
  EXPECT_EQ(PathAccessible(missing.bytes), -1);
  EXPECT_EQ(GetRunTimeError(), 2);
  PathBuffer place("\\:\\group\\server");
  EXPECT_EQ(PathAccessible(place.bytes), 0);
}

TEST(GetPathAttributes, NetworkPlaceIsAFolderWithoutASystemCall) {
  PathBuffer server("\\\\server");
  DWORD attributes = 0xDEADBEEF;
  SetKeptLastError(4321);
  EXPECT_EQ(GetPathAttributes(server.bytes, &attributes), 0);
  EXPECT_EQ(attributes, 0x10u);
  EXPECT_EQ(GetKeptLastError(), 4321u) << "no system call was made";
  EXPECT_EQ(server.Text(), "\\\\server");
}

TEST(GetPathAttributes, ReadsTheDiskAndKeepsTheError) {
  FileScratch scratch;
  PathBuffer folder(scratch.MakeFolder("sub"));
  DWORD attributes = 0;
  EXPECT_EQ(GetPathAttributes(folder.bytes, &attributes), 0);
  EXPECT_NE(attributes & FILE_ATTRIBUTE_DIRECTORY, 0u);
  PathBuffer missing(scratch.Path("missing"));
  EXPECT_EQ(GetPathAttributes(missing.bytes, &attributes), 1);
  EXPECT_EQ(attributes, INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(GetKeptLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(GetRunTimeError(), 2);
}

TEST(SetPathAttributes, ZeroMeansNormal) {
  FileScratch scratch;
  PathBuffer file(scratch.MakeFile("ro.txt"));
  ASSERT_TRUE(SetFileAttributesA(file.bytes, FILE_ATTRIBUTE_READONLY));
  ASSERT_NE(GetFileAttributesA(file.bytes) & FILE_ATTRIBUTE_READONLY, 0u);
  EXPECT_EQ(SetPathAttributes(file.bytes, 0), 0);
  DWORD after = GetFileAttributesA(file.bytes);
  EXPECT_EQ(after & FILE_ATTRIBUTE_READONLY, 0u) << std::hex << after;
  EXPECT_EQ(GetKeptLastError(), 0u);
}

TEST(SetPathAttributes, MissingPathChangesNothing) {
  FileScratch scratch;
  PathBuffer missing(scratch.Path("missing.txt"));
  SetChangeCounter(5);
  EXPECT_EQ(SetPathAttributes(missing.bytes, FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_EQ(ChangeCounterValue(), 5) << "no call was made";
  EXPECT_EQ(PathAccessible(missing.bytes), -1) << "nothing was created";
}

TEST(DeleteIfPresent, Outcomes) {
  FileScratch scratch;
  PathBuffer missing(scratch.Path("missing.txt"));
  EXPECT_EQ(DeleteIfPresent(missing.bytes), 0);

  PathBuffer empty("");
  SetKeptLastError(77);
  SetRunTimeError(22);
  EXPECT_EQ(DeleteIfPresent(empty.bytes), 1);
  EXPECT_EQ(GetKeptLastError(), 0u);
  EXPECT_EQ(GetRunTimeError(), 0);
  EXPECT_EQ(DeleteIfPresent(nullptr), 1);

  PathBuffer file(scratch.MakeFile("doomed.txt", "abc"));
  EXPECT_EQ(DeleteIfPresent(file.bytes), 0);
  EXPECT_EQ(GetFileAttributesA(file.bytes), INVALID_FILE_ATTRIBUTES);

  PathBuffer place("\\:\\group\\server");
  EXPECT_EQ(DeleteIfPresent(place.bytes), 0);
}

TEST(DeleteIfPresent, RefusedDeleteFails) {
  FileScratch scratch;
  PathBuffer file(scratch.MakeFile("kept.txt"));
  ASSERT_TRUE(SetFileAttributesA(file.bytes, FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(DeleteIfPresent(file.bytes), 1);
  EXPECT_EQ(GetKeptLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
  EXPECT_EQ(GetRunTimeError(), 13);
  EXPECT_NE(GetFileAttributesA(file.bytes), INVALID_FILE_ATTRIBUTES);
}

TEST(DeleteFilePath, QuotedPathAndNetworkPlace) {
  FileScratch scratch;
  std::string file = scratch.MakeFile("quoted.txt");
  PathBuffer quoted("\"" + file + "\"");
  EXPECT_EQ(DeleteFilePath(quoted.bytes), 0);
  EXPECT_EQ(GetFileAttributesA(file.c_str()), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(quoted.Text(), "\"" + file + "\"") << "the delete works on a copy";

  PathBuffer place("\\\\server\\share");
  SetKeptLastError(5);
  SetRunTimeError(13);
  EXPECT_EQ(DeleteFilePath(place.bytes), 0);
  EXPECT_EQ(GetKeptLastError(), 0u);
  EXPECT_EQ(GetRunTimeError(), 0);
}

TEST(ChangeCounter, RisesWithSuccessDropsOnFailureAndOnceNegativeOnlyFalls) {
  FileScratch scratch;
  PathBuffer file(scratch.MakeFile("c.txt"));
  PathBuffer missingFolder(scratch.Path("no folder"));
  SetChangeCounter(0);
  EXPECT_EQ(SetPathAttributes(file.bytes, FILE_ATTRIBUTE_NORMAL), 0);
  EXPECT_EQ(SetPathAttributes(file.bytes, FILE_ATTRIBUTE_NORMAL), 0);
  EXPECT_EQ(ChangeCounterValue(), 2);
  EXPECT_EQ(RemoveFolderPath(missingFolder.bytes), 1);
  EXPECT_EQ(ChangeCounterValue(), 0);
  SetChangeCounter(-3);
  EXPECT_EQ(SetPathAttributes(file.bytes, FILE_ATTRIBUTE_NORMAL), 0);
  EXPECT_EQ(ChangeCounterValue(), -4);
  EXPECT_EQ(RemoveFolderPath(missingFolder.bytes), 1);
  EXPECT_EQ(ChangeCounterValue(), -5);
  SetChangeCounter(0);
}

TEST(MoveAndRemove, RenameAndRemoveFolders) {
  FileScratch scratch;
  PathBuffer from(scratch.MakeFile("old.txt", "1"));
  PathBuffer to(scratch.Path("new.txt"));
  EXPECT_EQ(MovePath(from.bytes, to.bytes), 0);
  EXPECT_NE(GetFileAttributesA(to.bytes), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(MovePath(from.bytes, to.bytes), 1) << "the old name is gone";
  EXPECT_EQ(GetRunTimeError(), 2);
  PathBuffer place("\\:\\group\\server");
  EXPECT_EQ(MovePath(to.bytes, place.bytes), 0) << "a view place is answered at once";

  PathBuffer full(scratch.MakeFolder("full"));
  scratch.MakeFile("full\\x.txt");
  EXPECT_EQ(RemoveFolderPath(full.bytes), 1);
  PathBuffer empty(scratch.MakeFolder("empty"));
  EXPECT_EQ(RemoveFolderPath(empty.bytes), 0);
  EXPECT_EQ(GetFileAttributesA(empty.bytes), INVALID_FILE_ATTRIBUTES);
}

TEST(FileHandles, OpenReadSizeClose) {
  FileScratch scratch;
  std::string file = scratch.MakeFile("data.bin", "hello");
  PathBuffer quoted("\"" + file + "\"");
  HANDLE handle = OpenPath(quoted.bytes, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
  ASSERT_NE(handle, INVALID_HANDLE_VALUE);
  EXPECT_EQ(quoted.Text(), file) << "OpenPath removes the quotes for good";
  EXPECT_EQ(GetFileSize64(handle), 5ull);
  char bytes[16] = "";
  EXPECT_EQ(ReadFileBlock(handle, bytes, sizeof bytes), 5);
  EXPECT_EQ(std::string(bytes, 5), "hello");
  EXPECT_EQ(ReadFileBlock(handle, bytes, sizeof bytes), 0) << "the end of the file";
  EXPECT_EQ(CloseFileHandle(handle), 0);

  PathBuffer quotedAgain("\"" + file + "\"");
  handle = CreateFileOn(quotedAgain.bytes, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0xFFFFFFFFu, nullptr);
  ASSERT_NE(handle, INVALID_HANDLE_VALUE);
  EXPECT_EQ(quotedAgain.Text(), "\"" + file + "\"") << "CreateFileOn puts the quotes back";
  EXPECT_EQ(CloseFileHandle(handle), 0);

  PathBuffer missing(scratch.Path("missing.bin"));
  EXPECT_EQ(OpenPath(missing.bytes, GENERIC_READ, 0, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetRunTimeError(), 2);
  PathBuffer place("\\:\\group\\server");
  EXPECT_EQ(OpenPath(place.bytes, GENERIC_READ, 0, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL), INVALID_HANDLE_VALUE);
}

TEST(SearchForFile, Outcomes) {
  FileScratch scratch;
  std::string file = scratch.MakeFile("found.txt");
  char out[520];

  EXPECT_EQ(SearchForFile(nullptr, out, sizeof out), 1);
  PathBuffer empty("");
  EXPECT_EQ(SearchForFile(empty.bytes, out, sizeof out), 1);

  PathBuffer full(file);
  EXPECT_EQ(SearchForFile(full.bytes, out, sizeof out), 0);
  EXPECT_EQ(lstrcmpiA(out, file.c_str()), 0) << out;

  // A name that is no program and is not found is still handed back as it stands.
  PathBuffer text(scratch.Path("absent.txt"));
  std::strcpy(out, "sentinel");
  EXPECT_EQ(SearchForFile(text.bytes, out, sizeof out), 1);
  EXPECT_EQ(std::string(out), text.Text());

  // A program that the search does not find leaves the buffer alone.
  PathBuffer program("kelmaro-no-such-program.exe");
  std::strcpy(out, "sentinel");
  EXPECT_EQ(SearchForFile(program.bytes, out, sizeof out), 1);
  EXPECT_STREQ(out, "sentinel");

  // A bare name in the current folder is found along the search path.
  ASSERT_TRUE(SetCurrentDirectoryA(scratch.Path().c_str()));
  PathBuffer bare("found.txt");
  EXPECT_EQ(SearchForFile(bare.bytes, out, sizeof out), 0);
  EXPECT_EQ(lstrcmpiA(out, file.c_str()), 0) << out;

  PathBuffer place("\\:\\group\\server");
  std::strcpy(out, "sentinel");
  EXPECT_EQ(SearchForFile(place.bytes, out, sizeof out), 0);
  EXPECT_STREQ(out, "sentinel");
}

TEST(SearchForFile, MissingDriveRootGivesMinusThree) {
  char letter = MissingDriveLetter();
  if (letter == 0) GTEST_SKIP() << "every drive letter is taken here";
  PathBuffer name(std::string(1, letter) + ":\\a.txt");
  char out[520] = "sentinel";
  EXPECT_EQ(SearchForFile(name.bytes, out, sizeof out), -3);
  EXPECT_STREQ(out, "sentinel");
}

}  // namespace
