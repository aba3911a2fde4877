// The shortcut writer: builds a shortcut file anew from its field texts and saves it over the old one.
#pragma once

#include "platform/winapi.h"

// Result bits of WriteShortcut; 0 is success.
enum WriteResult : unsigned {
  kWriteIconFailed = 0x1,
  kWritePathFailed = 0x2,
  kWriteArgumentsFailed = 0x4,
  kWriteFolderFailed = 0x8,
  kWriteShowFailed = 0x10,
  kWriteDescriptionFailed = 0x20,
  kWriteSaveFailed = 0x40000,
  kWriteNoPersist = 0x80000,
  kWriteNoObject = 0x100000,
  // Any of the three above: nothing was saved, and the old file is as it was.
  kWriteNothingSaved = kWriteSaveFailed | kWriteNoPersist | kWriteNoObject,
};

// Saves a shortcut at `shortcutPath` that holds exactly these fields (Shift-JIS texts). The old file is not read:
// its hotkey and anything else not set here is gone afterwards. An empty `icon` takes `target` as the icon location;
// null `arguments`, `description` or `workingFolder` are not set, empty ones are; `showCmd` 0 keeps the default.
// Where nothing was saved (kWriteNothingSaved), the kept last error holds the system's error for it: the Windows error
// that the failed call's result wraps, or that result itself.
unsigned WriteShortcut(HWND window, const char *shortcutPath, const char *target, const char *arguments,
                       const char *workingFolder, const char *icon, const char *description, int showCmd,
                       int iconIndex);
