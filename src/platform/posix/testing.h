// Hooks by which tests steer the Linux backend, so that no test depends on the machine's own mounts, shares or network:
// those of the file system (files/testing.h: forced failures, the drive table, the mount table, the share table, the
// runtime folder of gvfs) and those of the machine below (network interfaces, the devices behind the drives). Nothing
// outside tests/ includes this header.
#pragma once

#include <cstddef>

#include "platform/posix/files/testing.h"

// The machine's network interfaces, in place of its own (null: the machine's own again): a list of items
// "name=word,word" separated by ";", the words among "up", "running", "loopback" and "address" (it has an IPv4 or IPv6
// address), e.g. "lo=up,running,loopback,address;eth0=up,running,address". GetSystemMetrics(SM_NETWORK) and
// InternetGetConnectedState answer from it.
void TestSetInterfaces(const char *interfaces);
// How many times InternetGetConnectedState has been called since the process began.
size_t TestConnectionQueries(void);

// Reads the removable flags of block devices below `sysRoot` in place of /sys (its "dev/block/MAJOR:MINOR" links
// lead to the devices' folders), and the labels from `labelFolder` in place of /dev/disk/by-label; null gives back
// the machine's own. The mount table itself is set with TestSetMountTable (files/testing.h).
void TestSetDeviceFolders(const char *sysRoot, const char *labelFolder);

// Reads the Samba configuration whose workgroup names the network's group from `path` instead of
// /etc/samba/smb.conf (null: that file again). A path that does not exist leaves KELMARO_WORKGROUP to name it.
void TestSetSambaConfig(const char *path);
