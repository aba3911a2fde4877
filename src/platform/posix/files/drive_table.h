// The drive letters of the Linux backend: a table from KELMARO_DRIVES ("C=/srv/win/c;D=/mnt/d"), in which Z: is "/"
// unless the variable says otherwise. Private to the Linux backend.
#pragma once

#include <string>

// The Linux folder that a drive letter stands for, or empty when the letter is not mapped.
std::string DriveRoot(char letter);
// The drive form of an absolute Linux path, by the longest mapped root that holds it ("/home/me" becomes
// "Z:\home\me"). The name parts stay in the path's own bytes. Result: false when no drive holds the path.
bool LinuxPathToDrivePath(const std::string &linuxPath, std::string *drivePath);
// The Linux path of a drive path ("C:\\a\\b" or "C:/a/b", Shift-JIS) on a mapped drive: the drive's root, then the
// components converted to UTF-8 and joined by "/". Names are taken as written; no case-blind look is made here.
// Result: false for a path that is not absolute on a mapped drive.
bool DrivePathToLinuxPath(const std::string &drivePath, std::string *linuxPath);
// Reads the table anew from the environment (tests change the variable between cases).
void ReloadDriveTable(void);
