// The recursive descent's tests of entries and the network access question, for the other walker files and tests.
#pragma once

#include "platform/winapi.h"

// 1 for an entry that the mask pass acts on, 0 for one it passes over (a folder), -2 for a name on the exclude list.
int SelectFileEntry(DWORD attributes, const char *name);
int IsFileEntry(DWORD attributes);
// Not 0 for a folder that may be entered.
int SelectFolderEntry(DWORD attributes);
// Not 0 for a level of the network view that lists only folders (root, group, server).
int IsNetworkViewLevel(const char *path);
// For a folder of a network walk that could not be listed: 0 no network error; 1 or 2 go on; 3 abort; 4 search
// again; 7 ask no more.
int NetworkAccessPrompt(HWND owner, const char *path, unsigned style);
