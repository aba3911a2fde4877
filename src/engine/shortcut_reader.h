// The shortcut reader's switches and kept texts, as the run driver sets and releases them around a pass.
#pragma once

// 1: do not let the shell resolve a shortcut whose target moved (no search, no user interface).
void SetSkipResolve(int value);
// 1: the reader shows no message of its own.
void SetQuietReader(int value);
// Gives back the texts that the reader keeps between shortcuts.
void ReleaseKeptTexts(void);
