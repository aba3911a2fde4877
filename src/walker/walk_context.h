// The folder tree walker: goes through a folder tree and does one thing to each entry. The run driver uses it with the
// mask "*.lnk", the shortcut action and sub-folders: the walk flags kWalkShortcutTree.
#pragma once

#include "platform/winapi.h"

// Walk flags.
enum WalkFlag {
  kWalkDelete = 0x0002,
  kWalkMove = 0x0004,
  kWalkShortcuts = 0x0008,
  kWalkDryRun = 0x0010,
  kWalkRemoveFolders = 0x0020,
  kWalkSubfolders = 0x0040,
  kWalkKeepStart = 0x0100,
  kWalkNoRetry = 0x0200,
  kWalkChangedFolder = 0x0400,
  kWalkPlainNames = 0x1000,
  kWalkSetAttributes = 0x2000,
};
// The run driver's walk: every shortcut below a folder, written back or (with kWalkDryRun) only looked at.
const unsigned kWalkShortcutTree = kWalkShortcuts | kWalkSubfolders;

// Walk codes: negative codes are single bits in negative form, merged by AddOutcome.
enum WalkCode {
  kWalkSetupFailed = -1,
  kWalkEntryDone = -2,
  kWalkRetry = -64,
  kWalkSkipped = -128,
  kWalkFailed = -256,
  kWalkMoveFailed = -512,
  kWalkNotDone = -1024,
  kWalkAbort = -2048,
  kWalkStop = -4096,
};

// Sets the display fields for the run: `showFolders` (3034 for option p, else 0) and `reportChanged` (3032 for
// option r, else 0) act on the next walk only. `nameListText`, when not empty, holds required names, one a line.
void PrepareWalk(HWND owner, unsigned showFolders, unsigned reportChanged, unsigned statusControl,
                 unsigned countControl, const char *nameListText, void *font, unsigned typeFilter);
// Walks `folder` (or the folder of `mask`) with `mask` and `flags`. `countInOut` receives the entries acted on;
// `stopOut`, if given, the stop flag (which is then cleared). Result: the entries acted on for a normal or stopped
// walk, -2048 for an aborted one, -1 when the walk's buffers could not be had.
int ScanFolderTree(HWND owner, int *stopOut, unsigned flags, unsigned *countInOut, const char *folder, const char *mask,
                   const char *leaveTo);
// -(|old| OR |code|).
int AddOutcome(int oldCode, int code);
// value 0: the walk's outcome; 1: whether the bits of |code| all stand in the outcome; else whether they all stand
// in |value|.
int TestOutcome(int value, int code);
