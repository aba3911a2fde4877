// What the mount table tells of the volume that holds a Linux folder, as Windows tells it of a drive: the kind of
// drive (GetDriveTypeA), the file system's name and the volume's label (GetVolumeInformationA). The table is
// /proc/self/mountinfo; a block device's removable flag is read from /sys, its label from /dev/disk/by-label. Tests
// give a table text and folders of their own in place of these (platform/posix/testing.h). Private to the Linux
// backend.
#pragma once

#include <string>
#include <vector>

#include "platform/posix/files/mount_table.h"
#include "platform/winapi.h"

// The mount that holds a Linux folder, its symbolic links followed first. The answer for a folder is kept until the
// table changes (a folder's links that are pointed elsewhere meanwhile are not seen). Result: false when the folder
// cannot be resolved or the table read.
bool MountOfFolder(const std::string &folder, MountEntry *mount);
// The drive kind of a mount: DRIVE_RAMDISK for tmpfs and ramfs, DRIVE_CDROM for iso9660 and udf, DRIVE_REMOTE for
// cifs, smb3, nfs, nfs4 and fuse.sshfs, DRIVE_REMOVABLE for a block device whose disk says removable in /sys,
// DRIVE_FIXED for the rest.
UINT DriveTypeOfMount(const MountEntry &mount);
// The file system's name as Windows spells it where it has one ("FAT32" for vfat, "FAT" for msdos, "NTFS" for ntfs,
// ntfs3 and ntfs-3g's fuseblk, "exFAT", "CDFS" for iso9660, "UDF"), otherwise the Linux type in capitals ("EXT4").
std::string FileSystemNameOfMount(const MountEntry &mount);
// The label of a block device's volume: the name in /dev/disk/by-label whose link points at the device, its \xNN
// escapes undone (UTF-8). Empty for a volume without one, or without a block device.
std::string VolumeLabelOfMount(const MountEntry &mount);
