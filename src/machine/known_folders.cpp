// Known folders of the shell.
#include "machine/known_folders.h"

#include <cstring>

#include "console/control_store.h"
#include "files/exact_names.h"
#include "files/file_operations.h"
#include "files/folder_checks.h"
#include "machine/system_info.h"
#include "resources/message_ids.h"
#include "text/memory_blocks.h"
#include "text/path_strings.h"
#include "text/resource_strings.h"
#include "text/tokens.h"

namespace {

// One row: the shell's folder id (0: none), the message ids of its value name under "Shell Folders" and of its label
// (0: none), and the label that systems with a virtual store show instead (0: the same).
struct FolderRow {
  int shellId;
  UINT nameId;
  UINT labelId;
  UINT newLabelId;
};

constexpr UINT Name(int row) { return kMsgShellFolderName + row; }
constexpr UINT Label(int row) { return kMsgSpecialFolderLabel + row; }
constexpr UINT NewLabel(int n) { return kMsgSpecialFolderLabelNew + n; }
constexpr UINT ProgramLabel(int row) { return kMsgProgramFolderLabel + row - kFolderProgramFiles; }

const FolderRow kRows[kSpecialFolderRows] = {
    {16, Name(0), Label(0), 0},
    {2, Name(1), Label(1), 0},
    {20, Name(2), Label(2), 0},
    {9, Name(3), Label(3), 0},
    {7, Name(4), Label(4), 0},
    {11, Name(5), Label(5), 0},
    {21, Name(6), Label(6), 0},
    {21, 0, Label(7), 0},
    {8, Name(8), Label(8), 0},
    {0, 0, 0, 0},
    {5, Name(10), Label(10), NewLabel(0)},
    {39, Name(11), Label(11), NewLabel(1)},
    {13, Name(12), Label(12), NewLabel(2)},
    {14, Name(13), Label(13), NewLabel(3)},
    {19, Name(14), Label(14), 0},
    {27, Name(15), Label(15), 0},
    {26, Name(16), Label(16), 0},
    {0, 0, 0, 0},
    {6, 0, Label(18), 0},
    {32, Name(19), Label(19), 0},
    {33, Name(20), Label(20), 0},
    {34, Name(21), Label(21), 0},
    {48, Name(22), Label(22), 0},
    {28, Name(23), Label(23), 0},
    {40, 0, Label(24), 0},
    {10, Name(25), Label(25), 0},
    {0, 0, 0, 0},
    {25, Name(27), Label(27), 0},
    {24, Name(28), Label(28), 0},
    {22, Name(29), Label(29), 0},
    {45, Name(30), Label(30), 0},
    {46, Name(31), Label(31), 0},
    {54, Name(32), Label(32), NewLabel(4)},
    {53, Name(33), Label(33), NewLabel(5)},
    {55, Name(34), Label(34), NewLabel(6)},
    {31, Name(35), Label(35), 0},
    {35, Name(36), Label(36), 0},
    {47, Name(37), Label(37), 0},
    {38, Name(38), ProgramLabel(38), 0},
    {42, Name(39), ProgramLabel(39), 0},
    {43, Name(40), ProgramLabel(40), 0},
    {44, Name(41), ProgramLabel(41), 0},
    {0, 0, ProgramLabel(42), 0},
    {0, 0, ProgramLabel(43), 0},
    {0, 0, ProgramLabel(44), 0},
    {0, 0, ProgramLabel(45), 0},
};

struct FolderEntry {
  HGLOBAL pathBlock;
  HGLOBAL labelBlock;
  int loaded;
};

FolderEntry entries[kSpecialFolderEntries];
int found[kSpecialFolderEntries];
int tableLoaded = 0;
// The virtual store's twins of the program folders, rows 38 to 41, where one exists.
char twinFolders[4][kPathSize];

// The keys that list the shell's folders, in the order in which they are asked.
struct ShellFoldersKey {
  HKEY root;
  const char *subKey;
};
const ShellFoldersKey kShellFoldersKeys[] = {
    {HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders"},
    {HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders"},
    {HKEY_USERS, ".Default\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders"},
};
// The value with which the system disowns a "Shell Folders" key.
const char kDisownedKeyMarker[] = "!Do not use this registry key";

unsigned OsClass() { return GetOsClass(nullptr); }

// The one of the two template rows that this system does not use.
bool IsUnusedTemplateRow(int index) {
  return index == ((OsClass() & kOsNt5Step3) ? kFolderTemplatesNew : kFolderTemplates);
}

UINT LabelIdOf(int index) {
  const FolderRow &row = kRows[index];
  return (OsClass() & kOsVirtualStore) && row.newLabelId != 0 ? row.newLabelId : row.labelId;
}

// Copies a text into a path buffer, cut to fit.
void CopyText(char *buffer, const char *text) {
  size_t length = std::strlen(text);
  if (length > kPathSize - 1) length = kPathSize - 1;
  std::memmove(buffer, text, length);
  buffer[length] = 0;
}

// A text of its own length in a global block, or 0 when none could be had.
HGLOBAL KeepText(HGLOBAL old, const char *text) {
  if (old != 0) GlobalFree(old);
  HGLOBAL block = 0;
  char *locked = AcquireBlock(&block, nullptr, static_cast<DWORD>(std::strlen(text) + 1), nullptr);
  if (locked == nullptr) return 0;
  if (GlobalSize(block) > std::strlen(text)) std::strcpy(locked, text);
  GlobalUnlock(block);
  return block;
}

void CopyBlock(char *buffer, HGLOBAL block) {
  buffer[0] = 0;
  if (block == 0) return;
  const char *text = static_cast<const char *>(GlobalLock(block));
  if (text != nullptr) CopyText(buffer, text);
  GlobalUnlock(block);
}

// The registry's lists of shell folders: 1 when the row's value name was found (`path` then holds its text, which
// need not exist when it came from the last key), -1 when a key disowns itself, 0 otherwise.
int ReadShellFolderValue(int index, char *path, char *label) {
  const FolderRow &row = kRows[index];
  UINT labelId = LabelIdOf(index);
  if (labelId == 0 || IsUnusedTemplateRow(index)) return 0;
  LoadStrings(row.nameId, labelId);
  char valueName[kPathSize];
  char labelText[kPathSize];
  CopyText(valueName, FirstSlotText());
  CopyText(labelText, SecondSlotText());
  int answer = 0;
  for (const ShellFoldersKey &keyName : kShellFoldersKeys) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(keyName.root, keyName.subKey, 0, KEY_READ, &key) != ERROR_SUCCESS) {
      RegCloseKey(keyName.root);
      continue;
    }
    label[0] = 0;
    bool matched = false;
    for (DWORD i = 0;; ++i) {
      char name[kPathSize];
      DWORD nameSize = kPathSize;
      DWORD dataSize = kPathSize;
      DWORD type = REG_NONE;
      LSTATUS status =
          RegEnumValueA(key, i, name, &nameSize, nullptr, &type, reinterpret_cast<unsigned char *>(path), &dataSize);
      if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) break;
      if (type != REG_SZ && type != REG_EXPAND_SZ) continue;
      if (std::strcmp(name, kDisownedKeyMarker) == 0) {
        answer = -1;
        break;
      }
      // The common folders' names are passed over: they would count only for a label that holds the word too.
      if (FindNoCase(name, "common") != nullptr && FindNoCase(labelText, "common") == nullptr) continue;
      if (lstrcmpiA(name, valueName) == 0) {
        answer = 1;
        CopyText(label, labelText);
        matched = true;
        break;
      }
    }
    if (answer < 0) {
      RegCloseKey(key);
      RegCloseKey(keyName.root);
      break;
    }
    // A folder that is there ends the lookup, and its key stays open for the run.
    if (matched && path[0] != 0 && FolderExists(path)) return answer;
    RegCloseKey(key);
    RegCloseKey(keyName.root);
  }
  return answer;
}

// The Internet cache's own registry, for the cache, cookie and history rows: the first "CachePath" string found.
void ReadCachePath(char *path, int index) {
  static const char *const kParents[] = {
      "System\\CurrentControlSet\\Services\\inetaccs\\Parameters\\Cache\\Paths",
      "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\Cache",
  };
  static const char *const kChildren[] = {"Content", "Cookies", "History"};
  if (index < kFolderCache || index > kFolderHistory) return;
  for (const char *parent : kParents) {
    char subKey[kPathSize];
    std::strcpy(subKey, parent);
    std::strcat(subKey, "\\");
    std::strcat(subKey, kChildren[index - kFolderCache]);
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, subKey, 0, KEY_READ, &key) != ERROR_SUCCESS) continue;
    char value[kPathSize];
    DWORD size = sizeof value;
    DWORD type = REG_NONE;
    LSTATUS status =
        RegQueryValueExA(key, "CachePath", nullptr, &type, reinterpret_cast<unsigned char *>(value), &size);
    RegCloseKey(key);
    if (status == ERROR_SUCCESS && (type == REG_SZ || type == REG_EXPAND_SZ)) {
      CopyText(path, value);
      return;
    }
  }
}

// The virtual store's twin of a source row's path, for the user's program folder rows: kept in the twins of rows 38
// to 41 when it is a folder, and then the row's path with `labelId`; otherwise the row stays empty.
void TakeTwin(int sourceIndex, UINT labelId, char *path, char *label) {
  char source[kPathSize];
  CopyBlock(source, entries[sourceIndex].pathBlock);
  char twin[kPathSize];
  twin[0] = 0;
  if (source[0] != 0) VirtualStorePathOf(twin, source);
  if (twin[0] != 0 && PathKind(twin) == kPathFolder) {
    CopyText(twinFolders[sourceIndex - kFolderProgramFiles], twin);
    CopyText(path, twin);
    LoadStrings(labelId, 0);
    CopyText(label, FirstSlotText());
  } else {
    path[0] = 0;
    label[0] = 0;
  }
}

// Adds the user's variants and writes the row.
void StoreSpecialFolder(char *label, char *path, int index) {
  unsigned osClass = OsClass();
  if (osClass & kOsVirtualStore) {
    if (index == kFolderProgramFilesUser) TakeTwin(kFolderProgramFiles, ProgramLabel(index), path, label);
    if (index == kFolderCommonFilesUser) TakeTwin(kFolderCommonFiles, ProgramLabel(index), path, label);
  }
  if (osClass & kOs64Bit) {
    if (index == kFolderProgramFilesX86User) TakeTwin(kFolderProgramFilesX86, ProgramLabel(index), path, label);
    if (index == kFolderCommonFilesX86User) TakeTwin(kFolderCommonFilesX86, ProgramLabel(index), path, label);
    // A 32-bit process is told the folder of the 32-bit programs: the folder of the 64-bit ones is wanted.
    if (index == kFolderProgramFiles || index == kFolderCommonFiles) {
      char *x86 = FindNoCase(path, " (x86)");
      if (x86 != nullptr) {
        char cut[kPathSize];
        CopyText(cut, path);
        char *at = cut + (x86 - path);
        std::memmove(at, at + 6, std::strlen(at + 6) + 1);
        if (PathKind(cut) == kPathFolder) CopyText(path, cut);
      }
    }
  }
  ReadCachePath(path, index);
  FolderEntry &entry = entries[index];
  if (entry.labelBlock != 0) GlobalFree(entry.labelBlock);
  entry.labelBlock = 0;
  // A row keeps its label only beside a path that is a folder.
  if (path[0] == 0 || PathKind(path) != kPathFolder) return;
  if (label[0] != 0) entry.labelBlock = KeepText(0, label);
  entry.pathBlock = KeepText(entry.pathBlock, path);
}

// The lookup of one row: 1 when its folder was found, -1 when the registry disowned its list, 0 otherwise.
int LookupSpecialFolder(char *path, char *label, int index) {
  path[0] = 0;
  label[0] = 0;
  int answer = 0;
  bool looked = false;
  if (index == kFolderProgramFiles) {
    char windows[kPathSize];
    if (GetWindowsDirectoryA(windows, sizeof windows) != 0) {
      CopyText(path, "C:\\Program Files");
      path[0] = windows[0];
      if (FolderExists(path)) {
        LoadStrings(ProgramLabel(index), 0);
        CopyText(label, FirstSlotText());
        answer = 1;
        looked = true;
      } else {
        path[0] = 0;
      }
    }
  } else if (index < kSpecialFolderRows && index != kFolderProgramFilesX86 && index != kFolderCommonFilesX86 &&
             index < kFolderProgramFilesUser) {
    answer = ReadShellFolderValue(index, path, label);
    looked = answer != 0;
  }
  if (looked) {
    entries[index].loaded = 1;
    if (path[0] != 0) {
      StoreSpecialFolder(label, path, index);
      return answer;
    }
  }
  if (index >= kFolderProgramFilesUser && index < kSpecialFolderRows) StoreSpecialFolder(label, path, index);
  return answer;
}

}  // namespace

void LoadSpecialFolders(void) {
  if (tableLoaded) return;
  tableLoaded = 1;
  char path[kPathSize];
  char label[kPathSize];
  for (int index = 0; index < kSpecialFolderEntries; ++index)
    found[index] = LookupSpecialFolder(path, label, index) == 1;
}

namespace {

// A row's path or label block into `buffer`; a table not filled yet is filled, and this call answers empty.
int CopyRowText(char *buffer, int index, HGLOBAL FolderEntry::*block) {
  if (buffer == nullptr) return 0;
  buffer[0] = 0;
  if (index < 0 || index >= kSpecialFolderEntries) return 1;
  if (!tableLoaded) {
    LoadSpecialFolders();
    return 1;
  }
  CopyBlock(buffer, entries[index].*block);
  return 1;
}

}  // namespace

int GetSpecialFolder(char *buffer, int index) { return CopyRowText(buffer, index, &FolderEntry::pathBlock); }

int GetSpecialFolderLabel(char *buffer, int index) { return CopyRowText(buffer, index, &FolderEntry::labelBlock); }

int GetSpecialFolderPair(char *path, char *label, int index) {
  LoadSpecialFolders();
  GetSpecialFolder(path, index);
  GetSpecialFolderLabel(label, index);
  return 1;
}

int SpecialFolderFound(int index) { return index >= 0 && index < kSpecialFolderEntries ? found[index] : 0; }

int FillSpecialFolderList(HWND owner, const char *selected, unsigned controlId, int addSelected) {
  LoadSpecialFolders();
  int selectedRow = -1;
  int row = 0;
  if (addSelected && selected != nullptr && *selected != 0) AddListRowText(owner, controlId, selected, 0, row++);
  for (int index = 0; index < kSpecialFolderRows; ++index, ++row) {
    char path[kPathSize];
    GetSpecialFolder(path, index);
    if (path[0] != 0) MakeExactPath(path, kExactLongNames, 0);
    AddListRowText(owner, controlId, path, 0, row);
    if (selected != nullptr && path[0] != 0 && lstrcmpiA(path, selected) == 0) selectedRow = row;
  }
  if (selectedRow >= 0) SelectListRow(owner, controlId, selectedRow);
  return kSpecialFolderRows;
}

void VirtualStoreRoot(char *buffer) {
  buffer[0] = 0;
  char local[kPathSize];
  CopyBlock(local, entries[kFolderLocalAppData].pathBlock);
  if (local[0] == 0) {
    LoadSpecialFolders();
    return;
  }
  char name[] = "VirtualStore";
  JoinPath(buffer, local, name);
}

void VirtualStorePathOf(char *buffer, const char *path) {
  VirtualStoreRoot(buffer);
  if (buffer[0] == 0) return;
  char rest[kPathSize];
  const char *colon = std::strstr(path, ":\\");
  CopyText(rest, colon != nullptr ? colon + 2 : path);
  JoinPath(nullptr, buffer, rest);
}

int FindVirtualStoreTwin(int, const char *path, char *buffer) {
  buffer[0] = 0;
  if (!(OsClass() & kOsVirtualStore)) return 0;
  char copy[kPathSize];
  CopyText(copy, path);
  StripOuterQuotes(copy);
  char sources[4][kPathSize];
  char targets[4][kPathSize];
  CopyText(sources[0], twinFolders[0]);
  CopyText(targets[0], twinFolders[1]);
  CopyText(sources[1], twinFolders[2]);
  CopyText(targets[1], twinFolders[3]);
  if (GetWindowsDirectoryA(sources[2], kPathSize) == 0) sources[2][0] = 0;
  if (GetSystemDirectoryA(sources[3], kPathSize) == 0) sources[3][0] = 0;
  for (int i = 2; i < 4; ++i) {
    targets[i][0] = 0;
    if (sources[i][0] != 0) VirtualStorePathOf(targets[i], sources[i]);
  }
  for (int i = 0; i < 4; ++i) {
    if (sources[i][0] == 0 || targets[i][0] == 0) continue;
    char *at = FindNoCase(copy, sources[i]);
    if (at == nullptr) continue;
    char *behind = at + std::strlen(sources[i]);
    if (*behind == 0) continue;
    if (*behind == '\\') ++behind;
    char joined[kPathSize];
    char rest[kPathSize];
    CopyText(rest, behind);
    if (JoinPath(joined, targets[i], rest) == 0) continue;
    if (PathKind(joined) == kPathFolder) {
      CopyText(buffer, joined);
      break;
    }
  }
  return buffer[0] != 0;
}

void ForgetSpecialFolders(void) {
  for (FolderEntry &entry : entries) {
    if (entry.pathBlock != 0) GlobalFree(entry.pathBlock);
    if (entry.labelBlock != 0) GlobalFree(entry.labelBlock);
    entry = FolderEntry{};
  }
  for (int &flag : found) flag = 0;
  for (char *twin : twinFolders) twin[0] = 0;
  tableLoaded = 0;
}
