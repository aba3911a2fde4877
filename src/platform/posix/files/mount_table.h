// The mount table of the process (/proc/self/mountinfo): what is mounted where, with which file system and from
// which source. The share table finds network shares in it, and the volumes read a drive's file system from it.
// Private to the Linux backend.
#pragma once

#include <string>
#include <vector>

// One line of the mount table. The texts are as the kernel gave them, with the octal escapes of a space, tab, line
// feed and backslash ("\040", "\011", "\012", "\134") undone.
struct MountEntry {
  int id = 0;
  int parentId = 0;
  unsigned major = 0;
  unsigned minor = 0;
  std::string root;        // the folder of the file system that shows here: "/" for all of it, "/sub" for a bind
  std::string mountPoint;  // where it shows
  std::string options;     // the mount's own options ("rw,relatime")
  std::string type;        // "ext4", "cifs", "fuse.sshfs"
  std::string source;      // "/dev/sda1", "//server/share", "tmpfs"
  std::string superOptions;
};

// The entries of a mountinfo text, in its order. A line that does not have the fields of one (the ten or more fields
// with a "-" between the optional ones and the type) is passed over.
std::vector<MountEntry> ParseMountInfo(const std::string &text);
// The process's mount table, read anew on each call: /proc/self/mountinfo, or the text that a test has set. Empty
// when it cannot be read.
std::vector<MountEntry> ReadMountTable(void);
// True when the entry at `index` is hidden: a later entry shows on its mount point or on a folder above it, so that
// nothing of it can be reached any more.
bool IsHiddenMount(const std::vector<MountEntry> &entries, size_t index);
// The entry whose file system holds `path` (absolute, with symbolic links resolved): of the entries that are not
// hidden, the one with the longest mount point that holds it, the later one of two on the same point. Null when none
// holds it (a table without "/").
const MountEntry *MountHolding(const std::vector<MountEntry> &entries, const std::string &path);
// The text that a test has set in place of the machine's table (null while the machine's own is in force), and a count
// that each change of it raises, so that a reader who keeps the table knows when to read it again.
const std::string *TestMountTableText(void);
unsigned MountTableTestGeneration(void);
// Undoes the octal escapes of a mountinfo field.
std::string UnescapeMountField(const std::string &field);
