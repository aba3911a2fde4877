// Known folders: the paths of the shell's known folders under 46 fixed rows, read from the registry's "Shell
// Folders" lists, with their labels; and the user's virtual store, whose twins of protected folders the file services
// look for. Nothing here reports: a folder that cannot be found leaves its row empty.
#pragma once

#include "platform/winapi.h"

// The rows of the table. Rows 9, 17 and 26 are unused, and rows 46 to 54 are never filled.
enum SpecialFolderRow {
  kFolderDesktop = 0,
  kFolderTemplatesNew = 6,  // the shell's templates, on systems of the NT 5 third step and later
  kFolderTemplates = 7,     // the same folder on the systems before
  kFolderRecent = 8,
  kFolderPersonal = 10,
  kFolderCache = 19,
  kFolderHistory = 21,
  kFolderLocalAppData = 23,
  kFolderProgramFiles = 38,
  kFolderProgramFilesX86 = 39,
  kFolderCommonFiles = 40,
  kFolderCommonFilesX86 = 41,
  kFolderProgramFilesUser = 42,
  kFolderCommonFilesUser = 43,
  kFolderProgramFilesX86User = 44,
  kFolderCommonFilesX86User = 45,
  kSpecialFolderRows = 46,
  kSpecialFolderEntries = 55,
};

// Fills the table at the first call; later calls do nothing.
void LoadSpecialFolders(void);
// The path (GetSpecialFolder) or the label (GetSpecialFolderLabel) of a row into `buffer` (520 bytes), empty for a row
// without one. A table not filled yet is filled, but this call still answers empty. Result: 1 when a buffer was
// given, else 0.
int GetSpecialFolder(char *buffer, int index);
int GetSpecialFolderLabel(char *buffer, int index);
// Fills the table if needed, then the path and the label of a row into the buffers that are given. Result: 1.
int GetSpecialFolderPair(char *path, char *label, int index);
// 1 when the row's lookup found its folder in the registry or by its rule, else 0.
int SpecialFolderFound(int index);
// Adds to the list control `controlId` the selected text (when `addSelected` is set and it is not empty), then each
// row's path in its exact spelling (an empty text for a row without one), and selects the row whose path is the
// selected text, without case. Result: 46.
// Nothing calls it yet: the list it fills belongs to the windowed edition's dialog.
int FillSpecialFolderList(HWND owner, const char *selected, unsigned controlId, int addSelected);

// The user's virtual store: the local application data folder's "VirtualStore", or empty. A table not filled yet is
// filled, and this call answers empty.
void VirtualStoreRoot(char *buffer);
// The twin of `path` in the virtual store: the root joined with what follows the path's ":\" (or the whole path when
// it has none). Empty when there is no root.
void VirtualStorePathOf(char *buffer, const char *path);
// The folder under the user's virtual store that shadows `path`, on systems that have one. Result: 1 when an existing
// twin folder was written to `buffer` (520 bytes), else 0.
int FindVirtualStoreTwin(int unused, const char *path, char *buffer);

// Forgets the table, so that the next need fills it anew (for tests, which change the registry and the folders).
void ForgetSpecialFolders(void);
