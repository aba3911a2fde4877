// The known folders over a registry, drives and a Windows folder that the test makes: which row each "Shell
// Folders" value fills, the values that are passed over, a disowned key, the program folders and their twins in the
// user's virtual store. The Linux build says it is Windows 10 in 64 bits, so labels and user rows follow that class.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "machine/known_folders.h"
#include "machine/system_info.h"
#include "posix/scratch_drive.h"
#include "support/saved_environment.h"
#include "support/test_registry.h"

namespace {

const char kShellFolders[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

class SpecialFolders : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("windir", "T:\\Windows", 1);
    for (const char *folder :
         {"Windows", "Windows\\sub", "Program Files", "Desktop", "Docs", "Local", "Local\\VirtualStore",
          "Local\\VirtualStore\\Program Files", "Local\\VirtualStore\\Windows", "Local\\VirtualStore\\Windows\\sub"})
      MakeFolder(folder);
    ForgetSpecialFolders();
  }
  void TearDown() override { ForgetSpecialFolders(); }

  void MakeFolder(const std::string &name) { EXPECT_TRUE(CreateDirectoryA(("T:\\" + name).c_str(), nullptr)) << name; }

  static std::string Path(int index) {
    char buffer[520];
    GetSpecialFolderPair(buffer, nullptr, index);
    return buffer;
  }
  static std::string Label(int index) {
    char buffer[520];
    GetSpecialFolderPair(nullptr, buffer, index);
    return buffer;
  }

  SavedEnvironment environment_{"windir"};
  ScratchDrive drive_;
  TestRegistry registry_;
};

TEST_F(SpecialFolders, TheClassOfThisBuild) {
  // What the rows below rely on: a system with a virtual store and 64-bit program folders.
  unsigned osClass = GetOsClass(nullptr);
  EXPECT_TRUE(osClass & kOsVirtualStore);
  EXPECT_TRUE(osClass & kOs64Bit);
}

TEST_F(SpecialFolders, RowsFromTheShellFoldersValues) {
  registry_.SetString(kShellFolders, "Desktop", "T:\\Desktop");
  registry_.SetString(kShellFolders, "personal", "T:\\Docs");  // value names match without case
  registry_.SetString(kShellFolders, "Recent", "T:\\NotThere");
  registry_.SetString(kShellFolders, "Local AppData", "T:\\Local", REG_EXPAND_SZ);
  registry_.SetString(kShellFolders, "CommonDesktop", "T:\\Desktop");  // "common" names are passed over
  registry_.SetDword(kShellFolders, "Fonts", 1);                       // not a string: passed over
  struct Row {
    int index;
    const char *path;
    const char *label;
    int found;
  } const rows[] = {
      {kFolderDesktop, "T:\\Desktop", "ﾃﾞｽｸﾄｯﾌﾟ(&D)", 1},
      // The virtual store's systems call it "Documents", no longer "My Documents".
      {kFolderPersonal, "T:\\Docs", "ﾄﾞｷｭﾒﾝﾄ(&D)", 1},
      // Found, but no folder is there: the row stays empty, its label too.
      {kFolderRecent, "", "", 1},
      {kFolderLocalAppData, "T:\\Local", "ﾛｰｶﾙｱﾌﾟﾘｹｰｼｮﾝﾃﾞｰﾀ(&B)", 1},
      {27, "", "", 0},
      {2, "", "", 0},
      {9, "", "", 0},  // an unused row
      // Program Files on the Windows folder's drive, whatever the registry says.
      {kFolderProgramFiles, "T:\\Program Files", "Program Files(&1)", 1},
      {kFolderProgramFilesX86, "", "", 0},
      // The user's twin of Program Files in the virtual store.
      {kFolderProgramFilesUser, "T:\\Local\\VirtualStore\\Program Files", "Program Files (User)(&5)", 0},
      {kFolderCommonFilesUser, "", "", 0},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.index);
    EXPECT_EQ(Path(row.index), row.path);
    EXPECT_EQ(Label(row.index), row.label);
    EXPECT_EQ(SpecialFolderFound(row.index), row.found);
  }
}

TEST_F(SpecialFolders, ADisownedKeyGivesNothing) {
  registry_.SetString(kShellFolders, "!Do not use this registry key", "see User Shell Folders");
  registry_.SetString(kShellFolders, "Desktop", "T:\\Desktop");
  EXPECT_EQ(Path(kFolderDesktop), "");
  EXPECT_EQ(SpecialFolderFound(kFolderDesktop), 0);
  // The marker must be the exact name.
  ForgetSpecialFolders();
  TestRegistry other;
  other.SetString(kShellFolders, "!do not use this registry key", "");
  other.SetString(kShellFolders, "Desktop", "T:\\Desktop");
  EXPECT_EQ(Path(kFolderDesktop), "T:\\Desktop");
}

TEST_F(SpecialFolders, AnUnfilledTableAnswersEmptyOnce) {
  registry_.SetString(kShellFolders, "Desktop", "T:\\Desktop");
  char buffer[520] = "x";
  EXPECT_EQ(GetSpecialFolder(buffer, kFolderDesktop), 1);
  EXPECT_STREQ(buffer, "") << "the call that fills the table answers empty";
  EXPECT_EQ(GetSpecialFolder(buffer, kFolderDesktop), 1);
  EXPECT_STREQ(buffer, "T:\\Desktop");
  EXPECT_EQ(GetSpecialFolder(nullptr, kFolderDesktop), 0);
}

TEST_F(SpecialFolders, TheVirtualStore) {
  registry_.SetString(kShellFolders, "Local AppData", "T:\\Local");
  char buffer[520] = "x";
  VirtualStoreRoot(buffer);
  EXPECT_STREQ(buffer, "") << "the call that fills the table answers empty";
  VirtualStoreRoot(buffer);
  EXPECT_STREQ(buffer, "T:\\Local\\VirtualStore");
  VirtualStorePathOf(buffer, "C:\\Program Files\\A");
  EXPECT_STREQ(buffer, "T:\\Local\\VirtualStore\\Program Files\\A");
  VirtualStorePathOf(buffer, "relative\\A");
  EXPECT_STREQ(buffer, "T:\\Local\\VirtualStore\\relative\\A");

  struct Row {
    const char *path;
    const char *twin;
  } const rows[] = {
      // Below the Windows folder: its twin, where that is a folder.
      {"T:\\Windows\\sub", "T:\\Local\\VirtualStore\\Windows\\sub"},
      {"\"T:\\Windows\\sub\"", "T:\\Local\\VirtualStore\\Windows\\sub"},
      {"t:\\windows\\SUB", "T:\\Local\\VirtualStore\\Windows\\SUB"},
      {"T:\\Windows\\other", ""},
      // The Windows folder itself has nothing behind it to join.
      {"T:\\Windows", ""},
      {"T:\\Desktop", ""},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.path);
    char twin[520] = "x";
    EXPECT_EQ(FindVirtualStoreTwin(0, row.path, twin), row.twin[0] != 0);
    EXPECT_STREQ(twin, row.twin);
  }
}

TEST_F(SpecialFolders, NoVirtualStoreWithoutItsFolder) {
  char buffer[520] = "x";
  LoadSpecialFolders();
  VirtualStoreRoot(buffer);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(FindVirtualStoreTwin(0, "T:\\Windows\\sub", buffer), 0);
  EXPECT_EQ(Path(kFolderProgramFilesUser), "");
}

}  // namespace
