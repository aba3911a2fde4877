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
  kReadPifStringRefused = 0x1C00,  // a .pif string that is no path, or is on a missing drive
  kReadTargetMissing = 0x2000,
  kReadFolderMissing = 0x4000,
  kReadIconMissing = 0x8000,
  kReadResolveFailed = 0x10000,
  kReadLoadFailed = 0x20000,
  kReadNoPersist = 0x80000,
  kReadNoObject = 0x100000,
  kReadZeroAttributes = 0x20000C,
};
// A missing target classed by the shape of its text: the shape bit with the matching target bit, and both shapes and
// both target bits for a target on a drive that is not there.
const unsigned kReadMissingFileShape = kReadShapeFile | kReadTargetFile;
const unsigned kReadMissingFolderShape = kReadShapeFolder | kReadTargetFolder;
const unsigned kReadMissingDriveShape = kReadMissingDrive | kReadTargetFile | kReadTargetFolder;
// A status at or above this could not be read, and processing gives the shortcut up.
const unsigned kReadUnreadable = kReadResolveFailed;

// Bits of the read mode.
enum ReadModeBit : unsigned {
  kReadModeIconAsResult = 0x01,        // the icon's file becomes the result, and the rest of the read is skipped
  kReadModeSearchRemovable = 0x02,     // paths on removable media are searched like any other
  kReadModeIconFound = 0x04,           // added to the reader's own copy of the mode once the icon's file was found
  kReadModeNoRepair = 0x08,            // the target text is delivered as read, not repaired
  kReadModeProcessing = 0x20,          // the mode per-shortcut processing reads with: searches as 0x02 does
  kReadModeRemovableNotTested = 0x40,  // without 0x02 and 0x20: a path on removable media is "not tested"
};
// Either bit searches removable media, and either lets the reader report a target on a missing drive.
const unsigned kReadModeSearchesAll = kReadModeSearchRemovable | kReadModeProcessing;

// What LocateTarget finds.
enum LocateCode : int {
  kTargetNotFound = 0,
  kTargetFound = 1,
  kTargetFoundRespelled = -1,  // found, spelled otherwise on disk
  kTargetNoDrive = -3,         // the path's drive is not there
  kTargetNotTested = -10000,   // on removable media, under kReadModeRemovableNotTested
};

// Reads the shortcut at `path` (520 bytes; on return the link target, or the path unchanged where no target was
// read). `arguments`, `icon` and `description` (520 bytes each, may be null) receive those fields; `showCmdOut`
// and `iconIndexOut` (may be null) the show command and the icon index. `mode`: bits of ReadModeBit; processing reads
// with kReadModeProcessing. Result: the read status; kReadUnreadable and above means the shortcut could not be read.
unsigned ReadShortcut(HWND window, char *path, char *arguments, char *icon, char *description, int *showCmdOut,
                      int *iconIndexOut, unsigned mode);
// A LocateCode: found (also through the search path), not found, or the path's drive does not exist.
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
// From the text alone: kPathFile when a missing path looks like a file, kPathFolder like a folder, else `fallback`.
int ClassifyPathShape(char *text, int fallback);
