// The shortcut reader: opens one shortcut file and delivers its fields as texts, with a status word that says what
// was found and what is wrong with it. Nothing is changed on disk.
#pragma once

#include "platform/winapi.h"

// Bits of the read status.
enum ReadStatusBit : unsigned {
  kReadTargetFile = 0x4,
  kReadTargetFolder = 0x8,
  kReadNoShortcut = 0x10,
  kReadNoTarget = 0x200,
  kReadShapeFolder = 0x400,
  kReadShapeFile = 0x800,
  kReadMissingDrive = 0xC00,
  kReadEmptyPif = 0x1000,
  kReadTargetMissing = 0x2000,
  kReadFolderMissing = 0x4000,
  kReadIconMissing = 0x8000,
  kReadResolveFailed = 0x10000,
  kReadLoadFailed = 0x20000,
  kReadNoPersist = 0x80000,
  kReadNoObject = 0x100000,
  kReadZeroAttributes = 0x20000C,
};

// Reads the shortcut at `path` (520 bytes; on return the link target, or the path unchanged where no target was
// read). `arguments`, `icon` and `description` (520 bytes each, may be null) receive those fields; `showCmdOut`
// and `iconIndexOut` (may be null) the show command and the icon index. This edition reads with `mode` 0x20.
// Result: the read status; 0x10000 and above means the shortcut could not be read.
unsigned ReadShortcut(HWND window, char *path, char *arguments, char *icon, char *description, int *showCmdOut,
                      int *iconIndexOut, unsigned mode);
// 1 found (also through the search path), 0 not found, -3 the path's drive does not exist.
int LocateTarget(const char *path);
// Keeps `text` (environment names expanded, and in the disk's spelling) in slot 0 (the working folder) or slot 1
// (the shortcut being processed). An empty text leaves the slot as it is.
void SetKeptText(const char *text, int slot);
// The text kept in a slot, or an empty text.
const char *KeptText(int slot);
// 1: do not let the shell resolve a shortcut whose target moved (no search, no user interface).
void SetSkipResolve(int value);
// 1: the reader shows no message of its own.
void SetQuietReader(int value);
// Gives back the texts kept between shortcuts.
void ReleaseKeptTexts(void);
// From the text alone: 2 when a missing path looks like a file, 4 like a folder, else `fallback`.
int ClassifyPathShape(char *text, int fallback);
