// Files and entries through the Windows operations (CreateFileA, ReadFile, WriteFile, sizes, DeleteFileA, MoveFileA,
// CreateDirectoryA, RemoveDirectoryA, attributes): the Linux backend on the host, Windows' own calls under Wine.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/winapi.h"
#include "support/scratch_folder.h"

namespace {

std::string ReadAll(const std::string &path) {
  HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return "<cannot open>";
  std::string text;
  char buffer[7];  // small, so that a read ends in the middle of the text
  DWORD got = 0;
  while (ReadFile(file, buffer, sizeof buffer, &got, nullptr) && got > 0) text.append(buffer, got);
  CloseHandle(file);
  return text;
}

TEST(FileOps, CreateFileFollowsEachDisposition) {
  const DWORD readWrite = GENERIC_READ | GENERIC_WRITE;
  struct Row {
    DWORD disposition, access;
    bool present;  // the file is there before the call
    bool opens;
    DWORD error;           // the last error after the call
    const char *contents;  // what the file holds afterwards (null: it is not there)
  } rows[] = {
      {CREATE_NEW, readWrite, false, true, 0, ""},
      {CREATE_NEW, readWrite, true, false, ERROR_FILE_EXISTS, "old"},
      {CREATE_ALWAYS, readWrite, false, true, 0, ""},
      {CREATE_ALWAYS, readWrite, true, true, ERROR_ALREADY_EXISTS, ""},  // succeeds, and says that it replaced a file
      {CREATE_ALWAYS, GENERIC_READ, true, true, ERROR_ALREADY_EXISTS, ""},  // replacing for reading only still reads
      {OPEN_EXISTING, readWrite, false, false, ERROR_FILE_NOT_FOUND, nullptr},
      {OPEN_EXISTING, readWrite, true, true, 0, "old"},
      {OPEN_ALWAYS, readWrite, false, true, 0, ""},
      {OPEN_ALWAYS, readWrite, true, true, ERROR_ALREADY_EXISTS, "old"},
      {TRUNCATE_EXISTING, readWrite, false, false, ERROR_FILE_NOT_FOUND, nullptr},
      {TRUNCATE_EXISTING, readWrite, true, true, 0, ""},
  };
  for (const Row &row : rows) {
    ScratchFolder folder;
    if (row.present) folder.MakeFile("f.lnk", "old");
    SetLastError(0xDEADBEEF);
    HANDLE file = CreateFileA((folder / "f.lnk").c_str(), row.access, 0, nullptr, row.disposition,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD error = GetLastError();
    std::string label = std::to_string(row.disposition) + (row.present ? " on a file" : " on nothing") +
                        (row.access == GENERIC_READ ? ", reading" : "");
    EXPECT_EQ(file != INVALID_HANDLE_VALUE, row.opens) << label;
    EXPECT_EQ(error, row.error) << label;
    if (file != INVALID_HANDLE_VALUE) {
      char byte;
      DWORD got = 99;
      EXPECT_TRUE(ReadFile(file, &byte, 1, &got, nullptr)) << label << " error " << GetLastError();
      EXPECT_EQ(got, std::string(row.contents).size() > 0 ? 1u : 0u) << label;
      EXPECT_TRUE(CloseHandle(file));
    }
    if (row.contents) {
      EXPECT_EQ(ReadAll(folder / "f.lnk"), row.contents) << label;
    } else {
      EXPECT_EQ(GetFileAttributesA((folder / "f.lnk").c_str()), INVALID_FILE_ATTRIBUTES) << label;
    }
  }
}

TEST(FileOps, WrittenBytesReadBackWithTheirSize) {
  ScratchFolder folder;
  std::string text(70000, 'x');
  for (size_t i = 0; i < text.size(); ++i) text[i] = static_cast<char>('a' + i % 26);
  folder.MakeFile("data.bin", text);
  HANDLE file = CreateFileA((folder / "data.bin").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE);
  DWORD high = 0xDEADBEEF;
  EXPECT_EQ(GetFileSize(file, &high), 70000u);
  EXPECT_EQ(high, 0u);
  LARGE_INTEGER size;
  size.QuadPart = -1;
  EXPECT_TRUE(GetFileSizeEx(file, &size));
  EXPECT_EQ(size.QuadPart, 70000);
  std::string back(70000, '\0');
  DWORD got = 0;
  EXPECT_TRUE(ReadFile(file, &back[0], 70000, &got, nullptr));
  EXPECT_EQ(got, 70000u);
  EXPECT_EQ(back, text);
  // At the end a read succeeds with nothing.
  got = 99;
  EXPECT_TRUE(ReadFile(file, &back[0], 10, &got, nullptr));
  EXPECT_EQ(got, 0u);
  // The handle was opened for reading only.
  SetLastError(0);
  EXPECT_FALSE(WriteFile(file, "x", 1, &got, nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
  EXPECT_TRUE(CloseHandle(file));
  SetLastError(0);
  EXPECT_FALSE(CloseHandle(file));  // closed already
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  // INVALID_HANDLE_VALUE is the process's own pseudo-handle, whose "close" succeeds.
  EXPECT_TRUE(CloseHandle(INVALID_HANDLE_VALUE));
}

// Opens a file for writing; the handle is closed again at once. Result: whether it opened, and the last error.
std::pair<bool, DWORD> OpenForWriting(const std::string &path, DWORD disposition, DWORD attributes) {
  SetLastError(0);
  HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, disposition, attributes, nullptr);
  DWORD error = GetLastError();
  if (file == INVALID_HANDLE_VALUE) return {false, error};
  CloseHandle(file);
  return {true, 0};
}

TEST(FileOps, AReadOnlyFileRefusesWritesAndDeletionUntilReleased) {
  ScratchFolder folder;
  folder.MakeFile("ro.lnk", "keep");
  std::string path = folder / "ro.lnk";
  ASSERT_TRUE(SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(GetFileAttributesA(path.c_str()), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE);
  // Windows refuses even an administrator. Wine leaves it to the Linux permissions, which let root write anything.
  std::pair<bool, DWORD> refused(false, ERROR_ACCESS_DENIED), opened(true, 0);
  EXPECT_EQ(OpenForWriting(path, OPEN_EXISTING, 0), WindowsOrWine(refused, WineRunsAsRoot() ? opened : refused));
  SetLastError(0);
  EXPECT_FALSE(DeleteFileA(path.c_str()));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
  EXPECT_EQ(ReadAll(path), "keep");  // reading is allowed
  ASSERT_TRUE(SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL));
  EXPECT_EQ(GetFileAttributesA(path.c_str()), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_TRUE(DeleteFileA(path.c_str()));
}

TEST(FileOps, ReplacingAHiddenFileMustSayHidden) {
  ScratchFolder folder;
  folder.MakeFile(".hidden", "old");
  std::string path = folder / ".hidden";
  // Windows refuses unless the caller asks for the attribute the file has; Wine does not check.
  std::pair<bool, DWORD> refused(false, ERROR_ACCESS_DENIED), opened(true, 0);
  EXPECT_EQ(OpenForWriting(path, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL), WindowsOrWine(refused, opened));
  EXPECT_EQ(OpenForWriting(path, CREATE_ALWAYS, FILE_ATTRIBUTE_HIDDEN), opened);
}

TEST(FileOps, NamesAreFoundWithoutRegardToCase) {
  ScratchFolder folder;
  folder.MakeFolder("Folder");
  folder.MakeFile("Folder\\MixedCase.Txt", "found");
  EXPECT_EQ(GetFileAttributesA((folder / "FOLDER\\mixedcase.TXT").c_str()), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(ReadAll(folder / "folder\\MIXEDCASE.txt"), "found");
  EXPECT_EQ(ListNames(folder / "fOLDER\\*.txt"), std::vector<std::string>{"MixedCase.Txt"});
  // Replacing by another case keeps the one file.
  HANDLE file = CreateFileA((folder / "folder\\mixedcase.txt").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE);
  CloseHandle(file);
  EXPECT_EQ(ListNames(folder / "Folder\\*.*"), (std::vector<std::string>{".", "..", "MixedCase.Txt"}));
}

struct EntryErrorRow {
  const char *what;
  bool (*call)(const std::string &path);
  const char *name;
  DWORD error;
};

TEST(FileOps, EntryOperationsFailWithWindowsErrors) {
  ScratchFolder folder;
  folder.MakeFile("file.txt");
  folder.MakeFolder("dir");
  folder.MakeFolder("full");
  folder.MakeFile("full\\inside.txt");
  auto deleteFile = [](const std::string &path) { return DeleteFileA(path.c_str()) != 0; };
  auto removeFolder = [](const std::string &path) { return RemoveDirectoryA(path.c_str()) != 0; };
  auto makeFolder = [](const std::string &path) { return CreateDirectoryA(path.c_str(), nullptr) != 0; };
  auto attributes = [](const std::string &path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; };
  auto create = [](const std::string &path) {
    return CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr) != INVALID_HANDLE_VALUE;
  };
  const std::string tooLong(300, 'n');  // a path over MAX_PATH
  const EntryErrorRow rows[] = {
      {"DeleteFileA", deleteFile, "absent.txt", ERROR_FILE_NOT_FOUND},
      {"DeleteFileA", deleteFile, "absent\\x.txt", ERROR_PATH_NOT_FOUND},
      {"DeleteFileA", deleteFile, "dir", ERROR_ACCESS_DENIED},
      {"DeleteFileA", deleteFile, "*.txt", ERROR_INVALID_NAME},
      {"RemoveDirectoryA", removeFolder, "full", ERROR_DIR_NOT_EMPTY},
      {"RemoveDirectoryA", removeFolder, "file.txt", ERROR_DIRECTORY},
      {"RemoveDirectoryA", removeFolder, "absent", ERROR_FILE_NOT_FOUND},
      {"CreateDirectoryA", makeFolder, "dir", ERROR_ALREADY_EXISTS},
      {"CreateDirectoryA", makeFolder, "file.txt", ERROR_ALREADY_EXISTS},
      {"CreateDirectoryA", makeFolder, "absent\\new", ERROR_PATH_NOT_FOUND},
      {"GetFileAttributesA", attributes, "absent.txt", ERROR_FILE_NOT_FOUND},
      {"GetFileAttributesA", attributes, "absent\\x.txt", ERROR_PATH_NOT_FOUND},
      {"GetFileAttributesA", attributes, "file.txt\\x", ERROR_PATH_NOT_FOUND},
      {"GetFileAttributesA", attributes, "fi?e.txt", ERROR_INVALID_NAME},
      // A file's name with a backslash behind it: a bad name to NTFS (Wine: a missing path).
      {"GetFileAttributesA", attributes, "file.txt\\", WindowsOrWine<DWORD>(ERROR_INVALID_NAME, ERROR_PATH_NOT_FOUND)},
      {"GetFileAttributesA", attributes, tooLong.c_str(), ERROR_FILENAME_EXCED_RANGE},
      {"CreateFileA", create, tooLong.c_str(), ERROR_FILENAME_EXCED_RANGE},
  };
  for (const EntryErrorRow &row : rows) {
    SetLastError(0);
    EXPECT_FALSE(row.call(folder / row.name)) << row.what << " " << row.name;
    EXPECT_EQ(GetLastError(), row.error) << row.what << " " << row.name;
  }
  EXPECT_TRUE(DeleteFileA((folder / "full\\inside.txt").c_str()));
  EXPECT_TRUE(RemoveDirectoryA((folder / "full").c_str()));
  EXPECT_EQ(GetFileAttributesA((folder / "dir\\").c_str()), FILE_ATTRIBUTE_DIRECTORY);
}

TEST(FileOps, MoveRenamesButNeverReplaces) {
  ScratchFolder folder;
  folder.MakeFile("a.lnk", "a");
  folder.MakeFile("b.lnk", "b");
  folder.MakeFolder("dir");
  SetLastError(0);
  EXPECT_FALSE(MoveFileA((folder / "a.lnk").c_str(), (folder / "B.LNK").c_str()));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  SetLastError(0);
  EXPECT_FALSE(MoveFileA((folder / "absent.lnk").c_str(), (folder / "c.lnk").c_str()));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_TRUE(MoveFileA((folder / "a.lnk").c_str(), (folder / "dir\\moved.lnk").c_str()));
  EXPECT_EQ(ReadAll(folder / "dir\\moved.lnk"), "a");
  // A change of case alone is a rename of the one file (which Wine takes for a move onto itself, changing nothing).
  EXPECT_TRUE(MoveFileA((folder / "b.lnk").c_str(), (folder / "B.LNK").c_str()));
  EXPECT_EQ(ListNames(folder / "*.lnk"), WindowsOrWine<std::vector<std::string>>({"B.LNK"}, {"b.lnk"}));
  SetLastError(0);
  EXPECT_FALSE(MoveFileA((folder / "dir").c_str(), (folder / "dir\\inside").c_str()));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));  // a folder into itself
  EXPECT_TRUE(MoveFileA((folder / "dir").c_str(), (folder / "Renamed").c_str()));
  EXPECT_EQ(ReadAll(folder / "renamed\\moved.lnk"), "a");
}

TEST(FileOps, TheCurrentFolderCannotBeRemoved) {
  ScratchFolder folder;
  folder.MakeFolder("here");
  char before[MAX_PATH];
  ASSERT_GT(GetCurrentDirectoryA(sizeof before, before), 0u);
  ASSERT_TRUE(SetCurrentDirectoryA((folder / "here").c_str()));
  SetLastError(0);
  EXPECT_FALSE(RemoveDirectoryA((folder / "HERE").c_str()));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
  ASSERT_TRUE(SetCurrentDirectoryA(before));
  EXPECT_TRUE(RemoveDirectoryA((folder / "here").c_str()));
}

}  // namespace
