// Hooks by which tests steer the Linux backend's view of the machine: the mount table and the device folders from
// which a drive's kind, its file system and its label are read, so that no test depends on the machine's own mounts.
// Nothing outside tests/ includes this header. (The file system's own hooks are in platform/posix/files/testing.h.)
#pragma once

// Uses `mountInfo`, a text in the form of /proc/self/mountinfo, as the mount table (null: the machine's own again).
void TestSetMountTable(const char *mountInfo);
// Reads the removable flags of block devices below `sysRoot` in place of /sys (its "dev/block/MAJOR:MINOR" links
// lead to the devices' folders), and the labels from `labelFolder` in place of /dev/disk/by-label; null gives back
// the machine's own.
void TestSetDeviceFolders(const char *sysRoot, const char *labelFolder);
