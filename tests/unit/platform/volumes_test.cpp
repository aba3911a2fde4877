// Drives, volumes, free space and environment variables: the Linux backend on the host, Windows' own calls under Wine.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/winapi.h"
#include "support/scratch_folder.h"

namespace {

// A drive letter that neither a default Wine prefix nor a default drive table maps.
const char kAbsentRoot[] = "Q:\\";

TEST(Volumes, DriveTypesTellMappedFromAbsent) {
  ScratchFolder folder;
  std::string root = folder.Path().substr(0, 3);
  EXPECT_EQ(GetDriveTypeA(root.c_str()), static_cast<UINT>(DRIVE_FIXED)) << root;
  EXPECT_EQ(GetDriveTypeA(root.substr(0, 2).c_str()), static_cast<UINT>(DRIVE_FIXED)) << root;
  EXPECT_EQ(GetDriveTypeA((folder.Path() + "\\").c_str()), static_cast<UINT>(DRIVE_FIXED));  // any path on it
  EXPECT_EQ(GetDriveTypeA(kAbsentRoot), static_cast<UINT>(DRIVE_NO_ROOT_DIR));
  DWORD drives = GetLogicalDrives();
  char letter = static_cast<char>(toupper(static_cast<unsigned char>(root[0])));
  EXPECT_NE(drives & (1u << (letter - 'A')), 0u);
  EXPECT_EQ(drives & (1u << ('Q' - 'A')), 0u);
}

TEST(Volumes, AVolumeDescribesItself) {
  ScratchFolder folder;
  std::string root = folder.Path().substr(0, 3);
  char label[MAX_PATH + 1], fileSystem[MAX_PATH + 1];
  std::memset(label, 'G', sizeof label);
  std::memset(fileSystem, 'G', sizeof fileSystem);
  DWORD serial = 0, longest = 0, flags = 0;
  ASSERT_TRUE(GetVolumeInformationA(root.c_str(), label, sizeof label, &serial, &longest, &flags, fileSystem,
                                    sizeof fileSystem))
      << GetLastError();
  EXPECT_LT(std::strlen(label), sizeof label);
  EXPECT_GT(std::strlen(fileSystem), 0u);
  EXPECT_LT(std::strlen(fileSystem), sizeof fileSystem);
  EXPECT_GE(longest, 255u);
  EXPECT_NE(flags & FILE_CASE_PRESERVED_NAMES, 0u);
  EXPECT_TRUE(GetVolumeInformationA(root.substr(0, 2).c_str(), nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0));
  SetLastError(0);
  EXPECT_FALSE(GetVolumeInformationA(kAbsentRoot, label, sizeof label, nullptr, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
  // A name buffer too small for the file system's name.
  SetLastError(0);
  EXPECT_FALSE(GetVolumeInformationA(root.c_str(), nullptr, 0, nullptr, nullptr, nullptr, fileSystem, 2));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_LENGTH));
  SetLastError(0);  // a folder is no volume root
  EXPECT_FALSE(
      GetVolumeInformationA((folder.Path() + "\\").c_str(), nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DIR_NOT_ROOT));
}

TEST(Volumes, FreeSpaceFitsInTheTotal) {
  ScratchFolder folder;
  ULARGE_INTEGER available, total, free;
  ASSERT_TRUE(GetDiskFreeSpaceExA((folder.Path() + "\\").c_str(), &available, &total, &free)) << GetLastError();
  EXPECT_GT(total.QuadPart, 0u);
  EXPECT_LE(free.QuadPart, total.QuadPart);
  EXPECT_LE(available.QuadPart, free.QuadPart);
  std::string root = folder.Path().substr(0, 3);
  DWORD sectors = 0, bytes = 0, freeClusters = 0, clusters = 0;
  ASSERT_TRUE(GetDiskFreeSpaceA(root.c_str(), &sectors, &bytes, &freeClusters, &clusters)) << GetLastError();
  EXPECT_GT(sectors, 0u);
  EXPECT_GT(bytes, 0u);
  EXPECT_GT(clusters, 0u);
  EXPECT_LE(freeClusters, clusters);
  SetLastError(0);
  EXPECT_FALSE(GetDiskFreeSpaceExA((folder / "absent\\").c_str(), &available, nullptr, nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  SetLastError(0);
  EXPECT_FALSE(GetDiskFreeSpaceExA(kAbsentRoot, &available, nullptr, nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
}

void SetVariable(const char *name, const char *value) {
#ifdef _WIN32
  SetEnvironmentVariableA(name, value);
#else
  if (value)
    setenv(name, value, 1);
  else
    unsetenv(name);
#endif
}

TEST(Volumes, EnvironmentNamesAreBlindToCase) {
  SetVariable("KELMARO_TEST_VALUE", "some value");
  char buffer[64];
  std::memset(buffer, 'G', sizeof buffer);
  EXPECT_EQ(GetEnvironmentVariableA("kelmaro_Test_value", buffer, sizeof buffer), 10u);
  EXPECT_STREQ(buffer, "some value");
  char small[4] = {'G', 'G', 'G', 'G'};
  EXPECT_EQ(GetEnvironmentVariableA("KELMARO_TEST_VALUE", small, sizeof small), 11u);  // the size needed
  EXPECT_EQ(small[0], 'G');
  // Success leaves the last error alone, so an empty value is told from a missing one by clearing it first.
  SetVariable("KELMARO_TEST_EMPTY", "");
  SetLastError(0xDEADBEEF);
  EXPECT_EQ(GetEnvironmentVariableA("KELMARO_TEST_EMPTY", buffer, sizeof buffer), 0u);
  EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
  EXPECT_STREQ(buffer, "");
  SetVariable("KELMARO_TEST_EMPTY", nullptr);
  SetVariable("KELMARO_TEST_VALUE", nullptr);
  SetLastError(0);
  EXPECT_EQ(GetEnvironmentVariableA("KELMARO_TEST_VALUE", buffer, sizeof buffer), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ENVVAR_NOT_FOUND));
}

}  // namespace
