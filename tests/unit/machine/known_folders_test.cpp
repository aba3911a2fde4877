// The known folders against the registry they are read from: under Wine the prefix's own "Shell Folders" values,
// which the test reads back itself; on Linux values that the test puts there. And the labels by the system's class.
#include "machine/known_folders.h"

#include <gtest/gtest.h>

#include <string>

#include "machine/system_info.h"
#include "support/scratch_folder.h"
#include "support/test_registry.h"

namespace {

const char kShellFolders[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// The user's "Shell Folders" value `name` when it is a string naming a folder that is there, else "".
std::string UsersFolder(const char *name) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_CURRENT_USER, kShellFolders, 0, KEY_READ, &key) != ERROR_SUCCESS) return "";
  char value[520];
  DWORD size = sizeof value;
  DWORD type = REG_NONE;
  LSTATUS status = RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<unsigned char *>(value), &size);
  RegCloseKey(key);
  if (status != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ)) return "";
  DWORD attributes = GetFileAttributesA(value);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) ? value : "";
}

struct RowOfValue {
  int index;
  const char *valueName;
  const char *label;     // before the virtual store's systems
  const char *newLabel;  // from them on
};

TEST(SpecialFolderTable, RowsAgreeWithTheUsersShellFolders) {
  ScratchFolder folder;
  TestRegistry registry;
#ifndef _WIN32
  // On Linux the registry holds what the test puts there; under Wine it is the prefix's own.
  for (const char *name : {"Desktop", "AppData", "Local AppData", "Personal", "My Music", "Recent"})
    registry.SetString(kShellFolders, name, folder.MakeFolder(name));
#endif
  const RowOfValue rows[] = {
      {0, "Desktop", "ﾃﾞｽｸﾄｯﾌﾟ(&D)", "ﾃﾞｽｸﾄｯﾌﾟ(&D)"},
      {8, "Recent", "最近使ったﾌｧｲﾙ(&R)", "最近使ったﾌｧｲﾙ(&R)"},
      {10, "Personal", "ﾏｲ ﾄﾞｷｭﾒﾝﾄ(&D)", "ﾄﾞｷｭﾒﾝﾄ(&D)"},
      {12, "My Music", "ﾏｲ ﾐｭｰｼﾞｯｸ(&M)", "ﾐｭｰｼﾞｯｸ(&M)"},
      {16, "AppData", "ｱﾌﾟﾘｹｰｼｮﾝﾃﾞｰﾀ(&A)", "ｱﾌﾟﾘｹｰｼｮﾝﾃﾞｰﾀ(&A)"},
      {23, "Local AppData", "ﾛｰｶﾙｱﾌﾟﾘｹｰｼｮﾝﾃﾞｰﾀ(&B)", "ﾛｰｶﾙｱﾌﾟﾘｹｰｼｮﾝﾃﾞｰﾀ(&B)"},
  };
  const bool virtualStore = (GetOsClass(nullptr) & kOsVirtualStore) != 0;
  ForgetSpecialFolders();
  int checked = 0;
  for (const RowOfValue &row : rows) {
    SCOPED_TRACE(row.valueName);
    std::string expected = UsersFolder(row.valueName);
    char path[520];
    char label[520];
    GetSpecialFolderPair(path, label, row.index);
    if (expected.empty()) continue;
    ++checked;
    EXPECT_EQ(path, expected);
    EXPECT_STREQ(label, virtualStore ? row.newLabel : row.label);
    EXPECT_EQ(SpecialFolderFound(row.index), 1);
  }
  EXPECT_GE(checked, 3) << "the registry names too few folders that are there";
  ForgetSpecialFolders();
}

TEST(SpecialFolderTable, RowsOutsideTheTableAreEmpty) {
  char buffer[520] = "x";
  for (int index : {-1, 9, 17, 26, 46, 54, 55, 1000}) {
    SCOPED_TRACE(index);
    EXPECT_EQ(GetSpecialFolderPair(buffer, nullptr, index), 1);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(SpecialFolderFound(index), 0);
  }
  EXPECT_EQ(FillSpecialFolderList(nullptr, "C:\\", 3014, 1), kSpecialFolderRows);
  ForgetSpecialFolders();
}

}  // namespace
