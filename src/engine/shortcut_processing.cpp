// Per-shortcut processing. Not wired in yet: every shortcut is left as it is.
#include "engine/shortcut_processing.h"

int ReplaceInShortcut(HWND, char *, unsigned, const char *) { return 0; }
int IsShortcutChanged(void) { return 0; }
int WasAnyShortcutChanged(void) { return 0; }
void ClearShortcutChanged(void) {}
