// The drive letters of the Linux backend, in this order: from KELMARO_DRIVES ("C=/srv/win/c;D=/mnt/d") when it is
// set, even empty, and then Z: is "/" unless the variable says otherwise; else from the Wine prefix that WINEPREFIX
// names, or ~/.wine, when it has a dosdevices folder: each link there named "x:" is drive X, mapped to the real path
// of the link's target (a link to nothing still maps its letter, to the path it names), and Z: is "/" only if the
// prefix says so, as it does by default; else Z: alone, as "/". Private to the Linux backend.
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
// Reads the table anew from the environment (tests change KELMARO_DRIVES, WINEPREFIX and HOME between cases).
void ReloadDriveTable(void);
// The dosdevices folder of the Wine prefix that WINEPREFIX names (unset or empty: HOME's ".wine"), as its real path.
// Result: false when there is no such folder, so no prefix to take drives from.
bool WineDosDevices(std::string *dosDevices);
