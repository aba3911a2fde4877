// Drives and volumes for the Linux backend: GetDriveTypeA, GetLogicalDrives, GetVolumeInformationA,
// GetDiskFreeSpaceA and GetDiskFreeSpaceExA.
#include <fcntl.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "platform/posix/files/error_codes.h"
#include "platform/posix/files/fault_table.h"
#include "platform/posix/files/path_resolver.h"
#include "platform/posix/machine/mount_facts.h"
#include "platform/posix/text/charset.h"
#include "platform/posix/text/path_names.h"
#include "platform/winapi.h"

namespace {

BOOL FailWith(DWORD error) {
  SetLastError(error);
  return FALSE;
}

// The drive letter of a path that starts "X:"; 0 for anything else.
char16_t DriveLetter(const std::u16string &path) {
  bool letter = path.size() >= 2 && ((path[0] >= u'A' && path[0] <= u'Z') || (path[0] >= u'a' && path[0] <= u'z'));
  return letter && path[1] == u':' ? path[0] : 0;
}

// True for a drive root given as "X:", "X:\" or "X:/".
bool IsDriveRoot(const std::u16string &path) {
  return DriveLetter(path) != 0 && (path.size() == 2 || (path.size() == 3 && (path[2] == u'\\' || path[2] == u'/')));
}

bool DriveIsThere(char16_t letter) {
  std::string root = DriveRootOf(letter);
  EntryFacts facts;
  return !root.empty() && ReadEntryFacts(AT_FDCWD, root.c_str(), &facts) == 0 && facts.isDirectory;
}

std::u16string CurrentDriveRoot() { return CurrentFolder().substr(0, 3); }

// True for a path that begins with two separators: a path of the network.
bool IsNetworkHead(const std::u16string &path) {
  return path.size() >= 2 && (path[0] == u'\\' || path[0] == u'/') && (path[1] == u'\\' || path[1] == u'/');
}

// The kind of drive whose folder is `folder`, from the mount that holds it; a folder whose mount cannot be told is
// taken for an ordinary disk.
UINT DriveTypeOfFolder(const std::string &folder) {
  MountEntry mount;
  return MountOfFolder(folder, &mount) ? DriveTypeOfMount(mount) : DRIVE_FIXED;
}

// Finds the volume of a folder given as the program gives paths (null: the current drive). Result: 0 or an error.
DWORD VolumeOf(LPCSTR path, struct statvfs *volume) {
  DiskPath found;
  DWORD error;
  if (path) {
    error = FindProgramPath(path, &found);
  } else {
    error = FindOnDisk(CurrentDriveRoot(), &found);
  }
  if (error != 0) return error;
  if (!found.exists) return ERROR_FILE_NOT_FOUND;
  if (statvfs(found.linux.c_str(), volume) != 0) return ErrorFromErrno(errno);
  return 0;
}

}  // namespace

UINT GetDriveTypeA(LPCSTR rootPathName) {
  // Any path on a drive tells that drive's type, as Windows answers for "C:\Windows\" too.
  std::u16string root = rootPathName ? ProgramToUtf16(rootPathName) : CurrentDriveRoot();
  // A path on a share ("\\server\share\") is remote where the share table maps the share and it can be reached.
  std::string shareFolder;
  bool shareRoot = false;
  if (IsNetworkHead(root)) return FindShareRoot(root, &shareFolder, &shareRoot) == 0 ? DRIVE_REMOTE : DRIVE_NO_ROOT_DIR;
  char16_t letter = DriveLetter(root);
  if (letter == 0 || !DriveIsThere(letter)) return DRIVE_NO_ROOT_DIR;
  return DriveTypeOfFolder(DriveRootOf(letter));
}

DWORD GetLogicalDrives(void) {
  // Every drive that is there, whatever its kind, as Windows counts them.
  DWORD drives = 0;
  for (int i = 0; i < 26; ++i)
    if (DriveIsThere(static_cast<char16_t>(u'A' + i))) drives |= 1u << i;
  return drives;
}

BOOL GetVolumeInformationA(LPCSTR rootPathName, LPSTR volumeNameBuffer, DWORD volumeNameSize,
                           LPDWORD volumeSerialNumber, LPDWORD maximumComponentLength, LPDWORD fileSystemFlags,
                           LPSTR fileSystemNameBuffer, DWORD fileSystemNameSize) {
  DWORD error;
  if (ForcedFailure(kFaultGetVolumeInformation, &error)) return FailWith(error);
  std::u16string root = rootPathName ? ProgramToUtf16(rootPathName) : CurrentDriveRoot();
  std::string linux;
  if (IsNetworkHead(root)) {
    // "\\server\share\": the volume of the folder where the share is mounted. ERROR_BAD_NETPATH for a share that
    // is not mapped, as for a server that is not there.
    bool shareRoot = false;
    error = FindShareRoot(root, &linux, &shareRoot);
    if (error != 0) return FailWith(error);
    if (!shareRoot) return FailWith(ERROR_DIR_NOT_ROOT);
  } else {
    char16_t letter = DriveLetter(root);
    // "C:\Windows\": a folder, but not the root of a volume.
    if (letter == 0) return FailWith(ERROR_INVALID_NAME);
    if (!IsDriveRoot(root)) return FailWith(ERROR_DIR_NOT_ROOT);
    if (!DriveIsThere(letter)) return FailWith(ERROR_PATH_NOT_FOUND);
    linux = DriveRootOf(letter);
  }
  struct statfs volume;
  if (statfs(linux.c_str(), &volume) != 0) return FailWith(ErrorFromErrno(errno));
  MountEntry mount;
  bool mounted = MountOfFolder(linux, &mount);
  std::string fileSystem = mounted ? FileSystemNameOfMount(mount) : "UNKNOWN";
  std::string label = mounted ? Utf8ToCp932(VolumeLabelOfMount(mount)) : std::string();
  if (fileSystemNameBuffer && fileSystemNameSize <= fileSystem.size()) return FailWith(ERROR_BAD_LENGTH);
  if (volumeNameBuffer && volumeNameSize <= label.size()) return FailWith(ERROR_BAD_LENGTH);
  if (volumeNameBuffer) std::memcpy(volumeNameBuffer, label.c_str(), label.size() + 1);
  // The file system's id in 32 bits: its two halves, as statvfs's f_fsid folds them.
  if (volumeSerialNumber)
    *volumeSerialNumber = static_cast<DWORD>(volume.f_fsid.__val[0]) ^ static_cast<DWORD>(volume.f_fsid.__val[1]);
  if (maximumComponentLength) *maximumComponentLength = static_cast<DWORD>(volume.f_namelen);
  if (fileSystemFlags) {
    *fileSystemFlags = FILE_CASE_PRESERVED_NAMES | FILE_UNICODE_ON_DISK;
    if (volume.f_flags & ST_RDONLY) *fileSystemFlags |= FILE_READ_ONLY_VOLUME;
  }
  if (fileSystemNameBuffer) std::memcpy(fileSystemNameBuffer, fileSystem.c_str(), fileSystem.size() + 1);
  return TRUE;
}

BOOL GetDiskFreeSpaceA(LPCSTR rootPathName, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector,
                       LPDWORD numberOfFreeClusters, LPDWORD totalNumberOfClusters) {
  DWORD error;
  if (ForcedFailure(kFaultGetDiskFreeSpace, &error)) return FailWith(error);
  struct statvfs volume;
  error = VolumeOf(rootPathName, &volume);
  if (error != 0) return FailWith(error);
  uint64_t fragment = volume.f_frsize ? volume.f_frsize : volume.f_bsize;
  uint64_t sector = fragment < 512 ? fragment : 512;
  uint64_t sectors = fragment / sector;
  auto clamp = [](uint64_t count) { return count > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<DWORD>(count); };
  if (sectorsPerCluster) *sectorsPerCluster = static_cast<DWORD>(sectors);
  if (bytesPerSector) *bytesPerSector = static_cast<DWORD>(sector);
  if (numberOfFreeClusters) *numberOfFreeClusters = clamp(volume.f_bavail);
  if (totalNumberOfClusters) *totalNumberOfClusters = clamp(volume.f_blocks);
  return TRUE;
}

BOOL GetDiskFreeSpaceExA(LPCSTR directoryName, PULARGE_INTEGER freeBytesAvailableToCaller,
                         PULARGE_INTEGER totalNumberOfBytes, PULARGE_INTEGER totalNumberOfFreeBytes) {
  DWORD error;
  if (ForcedFailure(kFaultGetDiskFreeSpaceEx, &error)) return FailWith(error);
  struct statvfs volume;
  error = VolumeOf(directoryName, &volume);
  if (error != 0) return FailWith(error);
  uint64_t fragment = volume.f_frsize ? volume.f_frsize : volume.f_bsize;
  if (freeBytesAvailableToCaller) freeBytesAvailableToCaller->QuadPart = volume.f_bavail * fragment;
  if (totalNumberOfBytes) totalNumberOfBytes->QuadPart = volume.f_blocks * fragment;
  if (totalNumberOfFreeBytes) totalNumberOfFreeBytes->QuadPart = volume.f_bfree * fragment;
  return TRUE;
}
