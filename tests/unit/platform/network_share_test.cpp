// The file operations on a network share ("\\server\share\..."), on the Linux backend and under Wine: every operation
// that the program makes reaches a share as it reaches a drive. The sources of the Linux shares: posix/.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/winapi.h"
#include "support/scratch_folder.h"
#include "support/test_share.h"

namespace {

class NetworkShare : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!share_.Available()) GTEST_SKIP() << share_.Why();
    share_.MakeFolder("dir");
    share_.MakeFile("dir\\Named.lnk", "shortcut");
  }
  TestShare share_;
};

TEST_F(NetworkShare, EntriesAreMadeReadMovedAndDeleted) {
  const std::string folder = share_.Unc("new");
  ASSERT_TRUE(CreateDirectoryA(folder.c_str(), nullptr)) << folder << " error " << GetLastError();
  const std::string file = share_.Unc("new\\a.lnk");
  HANDLE handle = CreateFileA(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(handle, INVALID_HANDLE_VALUE) << file << " error " << GetLastError();
  DWORD written = 0;
  EXPECT_TRUE(WriteFile(handle, "abc", 3, &written, nullptr));
  EXPECT_TRUE(CloseHandle(handle));
  // The same file through the drive that holds the share's folder.
  EXPECT_EQ(GetFileAttributesA(share_.Local("new\\a.lnk").c_str()), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(GetFileAttributesA(folder.c_str()), FILE_ATTRIBUTE_DIRECTORY);

  handle = CreateFileA(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(handle, INVALID_HANDLE_VALUE) << file << " error " << GetLastError();
  char bytes[8] = "";
  DWORD read = 0;
  EXPECT_TRUE(ReadFile(handle, bytes, sizeof bytes, &read, nullptr));
  EXPECT_EQ(std::string(bytes, read), "abc");
  EXPECT_TRUE(CloseHandle(handle));

  const std::string moved = share_.Unc("new\\b.lnk");
  EXPECT_TRUE(MoveFileA(file.c_str(), moved.c_str())) << GetLastError();
  EXPECT_EQ(GetFileAttributesA(file.c_str()), INVALID_FILE_ATTRIBUTES);
  EXPECT_TRUE(DeleteFileA(moved.c_str())) << GetLastError();
  EXPECT_TRUE(RemoveDirectoryA(folder.c_str())) << GetLastError();
  EXPECT_EQ(GetFileAttributesA(share_.Local("new").c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(NetworkShare, NamesAreFoundWithoutRegardToCase) {
  std::string upper = share_.Unc("dir\\Named.lnk");
  for (char &c : upper) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  EXPECT_EQ(GetFileAttributesA(upper.c_str()), FILE_ATTRIBUTE_ARCHIVE) << upper;
  EXPECT_EQ(ListNames(share_.Unc("dir\\*.LNK")), std::vector<std::string>{"Named.lnk"});
}

TEST_F(NetworkShare, TheShareRootIsAFolder) {
  EXPECT_EQ(GetFileAttributesA(share_.Unc().c_str()), FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(GetFileAttributesA((share_.Unc() + "\\").c_str()), FILE_ATTRIBUTE_DIRECTORY);
  // A shared folder is listed by its server with its dots, unlike the root of a drive.
  EXPECT_EQ(ListNames(share_.Unc("*")), (std::vector<std::string>{".", "..", "dir"}));
  EXPECT_EQ(ListNames(share_.Unc("dir\\*")), (std::vector<std::string>{".", "..", "Named.lnk"}));
}

TEST_F(NetworkShare, DriveTypeAndVolume) {
  const std::string root = share_.Unc() + "\\";
  // Wine takes the share for a folder of its own disk: a fixed drive, and no root of a volume.
  EXPECT_EQ(GetDriveTypeA(root.c_str()), WindowsOrWine<UINT>(DRIVE_REMOTE, DRIVE_FIXED));
  char name[64] = "garbage";
  DWORD length = 0;
  BOOL answered = GetVolumeInformationA(root.c_str(), nullptr, 0, nullptr, &length, nullptr, name, sizeof name);
  EXPECT_EQ(answered, WindowsOrWine<BOOL>(TRUE, FALSE)) << GetLastError();
  if (answered) {
    EXPECT_STRNE(name, "garbage");
    EXPECT_GT(length, 0u);
  }
  ULARGE_INTEGER total;
  total.QuadPart = 0;
  EXPECT_TRUE(GetDiskFreeSpaceExA(share_.Unc("dir").c_str(), nullptr, &total, nullptr)) << GetLastError();
  EXPECT_GT(total.QuadPart, 0u);
}

TEST_F(NetworkShare, FullPathsAndACurrentFolderOnTheShare) {
  ScratchFolder keeper;  // puts the current folder back at the end
  char full[MAX_PATH] = "";
  char *filePart = nullptr;
  std::string path = share_.Unc("dir\\..\\other\\x.lnk");
  ASSERT_NE(GetFullPathNameA(path.c_str(), sizeof full, full, &filePart), 0u);
  EXPECT_EQ(std::string(full), share_.Unc("other\\x.lnk"));
  EXPECT_STREQ(filePart, "x.lnk");

  ASSERT_TRUE(SetCurrentDirectoryA(share_.Unc("dir").c_str())) << GetLastError();
  char current[MAX_PATH] = "";
  ASSERT_NE(GetCurrentDirectoryA(sizeof current, current), 0u);
  EXPECT_EQ(std::string(current), share_.Unc("dir"));
  struct Row {
    const char *given;
    std::string full;
  } rows[] = {
      {"x.lnk", share_.Unc("dir\\x.lnk")},
      {"..\\y", share_.Unc("y")},
      {"\\z", share_.Unc("z")},  // from the root of the current folder: the share's
  };
  for (const Row &row : rows) {
    ASSERT_NE(GetFullPathNameA(row.given, sizeof full, full, nullptr), 0u) << row.given;
    EXPECT_EQ(std::string(full), row.full) << row.given;
  }
  EXPECT_EQ(GetFileAttributesA("Named.lnk"), FILE_ATTRIBUTE_ARCHIVE);  // a relative name reaches the share
}

}  // namespace
