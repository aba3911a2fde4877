// What the mount table tells of the volume that holds a Linux folder, as Windows tells it of a drive: the kind of
// drive (GetDriveTypeA), the file system's name and the volume's label (GetVolumeInformationA). The table is
// /proc/self/mountinfo; a block device's removable flag is read from /sys, its label from /dev/disk/by-label. Tests
// give a table text and folders of their own in place of these (platform/posix/testing.h). Private to the Linux
// backend.
#pragma once

#include <string>
#include <vector>

#include "platform/winapi.h"

// One line of the mount table.
struct MountEntry {
  unsigned major = 0, minor = 0;  // the device; major 0 is a file system without a block device (tmpfs, proc, nfs)
  std::string mountPoint;         // octal escapes ("\040" for a blank) undone
  std::string type;               // "ext4", "fuseblk", "fuse.sshfs"
  std::string source;             // "/dev/sda1", "//server/share", "tmpfs"
};

// The lines of a mountinfo text, in their order. A line that does not have the form is passed over.
std::vector<MountEntry> ParseMountInfo(const std::string &text);
// The entry of `mounts` that holds the absolute path `path`: the longest mount point that is the path or a folder
// above it, and of equal ones the later, which hides the earlier. Null when none holds it.
const MountEntry *MountHolding(const std::vector<MountEntry> &mounts, const std::string &path);

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
