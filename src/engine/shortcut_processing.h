// Per-shortcut processing: read one shortcut, offer its fields to the matcher one by one, note the changes in the
// result text, and write the shortcut back if anything changed.
#pragma once

#include "platform/winapi.h"

// Flags of the walker: 0x40 replace (always), 0x80 simulate (do everything but write).
enum ProcessFlag : unsigned { kProcessReplace = 0x40, kProcessSimulate = 0x80 };

// Runs the whole read, replace and write of the shortcut at `path`. `folder` null: the current working folder.
// Result: the shortcut's read status (0x10000 and above: it could not be read, and nothing was done).
unsigned ReplaceInShortcut(HWND window, char *path, unsigned flags, const char *folder);
// Not 0 when the latest shortcut had at least one field replaced.
int CurrentShortcutChanges(void);
// Not 0 when any shortcut of the pass was changed; cleared before a pass.
int WasAnyShortcutChanged(void);
void ClearShortcutChanged(void);
