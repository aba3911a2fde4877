// What the Linux backend tells about one directory entry in Windows' terms: its attributes, size and file times.
// Private to the Linux backend.
#pragma once

#include <cstdint>
#include <string>

#include "platform/posix/win_types.h"
#include "platform/winapi.h"

// The facts of one entry, read with one statx call (two for a symbolic link).
struct EntryFacts {
  bool isDirectory = false;
  bool isLink = false;     // the entry is a symbolic link; the facts are those of its target
  bool dangling = false;   // a link whose target cannot be reached; the facts are those of the link
  bool readOnly = false;   // this process may not write it (see AttributesOf)
  bool isSpecial = false;  // a FIFO, a socket or a device: neither a file, a folder nor a link, and never opened
  uint32_t mode = 0;       // the Linux permission bits (07777)
  uint64_t size = 0;
  uint64_t creationTime = 0;  // FILETIME ticks
  uint64_t accessTime = 0;
  uint64_t writeTime = 0;
};

// Reads the facts of `name` in the folder open as `folder` (AT_FDCWD: `name` is a path). Result: 0, or the errno of
// the failed call (ENOENT, ENOTDIR, EACCES ...).
int ReadEntryFacts(int folder, const char *name, EntryFacts *facts);

// The attributes Windows would show: FILE_ATTRIBUTE_DIRECTORY (0x10) for a folder and for a link to one, as a
// junction shows; FILE_ATTRIBUTE_ARCHIVE (0x20) for anything else; FILE_ATTRIBUTE_READONLY (0x01) when the entry is
// not writable; FILE_ATTRIBUTE_HIDDEN (0x02) for a name with a leading dot (not "." and ".."); and
// FILE_ATTRIBUTE_REPARSE_POINT (0x400) for a symbolic link, as Windows marks its own symbolic links.
DWORD AttributesOf(const EntryFacts &facts, const std::string &diskName);

// Fills a listing record: the facts, the attributes and `programName` (Shift-JIS), cut at a character boundary so that
// it fits cFileName with its terminator. There are no short names: cAlternateFileName is empty.
void FillFindData(const EntryFacts &facts, DWORD attributes, const std::string &programName, WIN32_FIND_DATAA *data);

// A FILETIME from its 64-bit tick count and back.
FILETIME ToFileTime(uint64_t ticks);
uint64_t FromFileTime(const FILETIME &time);
