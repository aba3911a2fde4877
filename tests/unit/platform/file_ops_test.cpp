// The entry calls the tool makes, on the Linux backend and under Wine; sizes and reads: files/file_operations_test.cpp.
#include <gtest/gtest.h>

#include <string>

#include "platform/winapi.h"
#include "support/scratch_folder.h"

namespace {

// Opened as the shortcut reader opens a file.
HANDLE OpenToRead(const std::string &path) {
  return CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                     nullptr);
}

TEST(FileOps, NamesAreFoundWithoutRegardToCase) {
  ScratchFolder folder;
  folder.MakeFolder("Folder");
  folder.MakeFile("Folder\\MixedCase.Txt", "found");
  EXPECT_EQ(GetFileAttributesA((folder / "FOLDER\\mixedcase.TXT").c_str()), FILE_ATTRIBUTE_ARCHIVE);
  HANDLE file = OpenToRead(folder / "folder\\MIXEDCASE.txt");  // listings: find_files_test.cpp
  EXPECT_NE(file, INVALID_HANDLE_VALUE);
  CloseHandle(file);
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
  auto attributes = [](const std::string &path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; };
  auto open = [](const std::string &path) { return OpenToRead(path) != INVALID_HANDLE_VALUE; };
  const std::string tooLong(300, 'n');  // a path over MAX_PATH
  const EntryErrorRow rows[] = {
      {"DeleteFileA", deleteFile, "absent.txt", ERROR_FILE_NOT_FOUND},
      {"RemoveDirectoryA", removeFolder, "full", ERROR_DIR_NOT_EMPTY},
      {"RemoveDirectoryA", removeFolder, "absent", ERROR_FILE_NOT_FOUND},
      {"GetFileAttributesA", attributes, "absent\\x.txt", ERROR_PATH_NOT_FOUND},
      {"GetFileAttributesA", attributes, "file.txt\\x", ERROR_PATH_NOT_FOUND},
      {"GetFileAttributesA", attributes, "fi?e.txt", ERROR_INVALID_NAME},
      // A file's name with a backslash behind it: a bad name to NTFS (Wine: a missing path).
      {"GetFileAttributesA", attributes, "file.txt\\", WindowsOrWine<DWORD>(ERROR_INVALID_NAME, ERROR_PATH_NOT_FOUND)},
      {"GetFileAttributesA", attributes, tooLong.c_str(), ERROR_FILENAME_EXCED_RANGE},
      {"CreateFileA", open, "absent.lnk", ERROR_FILE_NOT_FOUND},
  };
  for (const EntryErrorRow &row : rows) {
    SetLastError(0);
    EXPECT_FALSE(row.call(folder / row.name)) << row.what << " " << row.name;
    EXPECT_EQ(GetLastError(), row.error) << row.what << " " << row.name;
  }
  EXPECT_EQ(GetFileAttributesA((folder / "dir\\").c_str()), FILE_ATTRIBUTE_DIRECTORY);
}

TEST(FileOps, TheCurrentFolderCannotBeRemoved) {
  ScratchFolder folder;
  folder.MakeFolder("here");
  ASSERT_TRUE(SetCurrentDirectoryA((folder / "here").c_str()));  // the scratch folder puts the old one back
  SetLastError(0);
  EXPECT_FALSE(RemoveDirectoryA((folder / "HERE").c_str()));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
  ASSERT_TRUE(SetCurrentDirectoryA(folder.Path().c_str()));
  EXPECT_TRUE(RemoveDirectoryA((folder / "here").c_str()));
}

}  // namespace
