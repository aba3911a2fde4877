// The drive letters of the Linux backend: a table from KELMARO_DRIVES ("C=/srv/win/c;D=/mnt/d"), in which Z: is "/"
// unless the variable says otherwise. Private to the Linux backend.
#pragma once

#include <string>

// The Linux folder that a drive letter stands for, or empty when the letter is not mapped.
std::string DriveRoot(char letter);
// The drive form of an absolute Linux path, by the longest mapped root that holds it ("/home/me" becomes
// "Z:\home\me"). The name parts stay in the path's own bytes. Result: false when no drive holds the path.
bool LinuxPathToDrivePath(const std::string &linuxPath, std::string *drivePath);
// Reads the table anew from the environment (tests change the variable between cases).
void ReloadDriveTable(void);
