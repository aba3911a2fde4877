// Per-shortcut processing: the read, replace and write of one shortcut file, as the walker asks for it.
#pragma once

#include "platform/winapi.h"

// Runs the whole read, replace and write of the shortcut at `path`. `mode` 0x40 is a real run, 0xC0 a dry run in
// which nothing is written. `baseFolder` null: the current working folder. Result: the shortcut's read status
// (0x10000 and above: it could not be read).
int ReplaceInShortcut(HWND owner, char *path, unsigned mode, const char *baseFolder);
// Not 0 when the latest ReplaceInShortcut replaced at least one field.
int IsShortcutChanged(void);
// Not 0 when any shortcut of the run was changed; cleared before a pass.
int WasAnyShortcutChanged(void);
void ClearShortcutChanged(void);
