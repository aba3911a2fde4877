// Drives and volumes for the Linux backend: GetDriveTypeA, GetLogicalDrives, GetVolumeInformationA,
// GetDiskFreeSpaceA and GetDiskFreeSpaceExA.
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>

#include "platform/posix/files/error_codes.h"
#include "platform/posix/files/fault_table.h"
#include "platform/posix/files/path_resolver.h"
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

// A field of /proc/self/mounts, with its octal escapes ("\040" for a space) undone.
std::string Unescape(const std::string &field) {
  std::string out;
  for (size_t i = 0; i < field.size(); ++i) {
    if (field[i] == '\\' && i + 3 < field.size() && field[i + 1] >= '0' && field[i + 1] <= '7') {
      out.push_back(static_cast<char>(std::stoi(field.substr(i + 1, 3), nullptr, 8)));
      i += 3;
    } else {
      out.push_back(field[i]);
    }
  }
  return out;
}

// The name of the file system that holds a folder, as Windows would call it: the Windows names for the file systems
// that Windows knows, the Linux name in upper case for the rest.
std::string FileSystemName(const std::string &folder) {
  char real[PATH_MAX];
  if (!realpath(folder.c_str(), real)) return "UNKNOWN";
  std::string path = real;
  std::ifstream mounts("/proc/self/mounts");
  std::string device, mountPoint, type, rest, best;
  size_t bestLength = 0;
  bool found = false;
  while (mounts >> device >> mountPoint >> type && std::getline(mounts, rest)) {
    std::string point = Unescape(mountPoint);
    bool holds = point == "/" || path == point ||
                 (path.compare(0, point.size(), point) == 0 && path.size() > point.size() && path[point.size()] == '/');
    // A later mount on the same point hides the earlier one.
    if (holds && (!found || point.size() >= bestLength)) {
      best = type;
      bestLength = point.size();
      found = true;
    }
  }
  if (!found) return "UNKNOWN";
  if (best == "vfat") return "FAT32";
  if (best == "msdos") return "FAT";
  if (best == "ntfs" || best == "ntfs3") return "NTFS";
  if (best == "iso9660") return "CDFS";
  if (best == "exfat") return "exFAT";
  for (char &c : best) c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
  return best;
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
  return letter != 0 && DriveIsThere(letter) ? DRIVE_FIXED : DRIVE_NO_ROOT_DIR;
}

DWORD GetLogicalDrives(void) {
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
  struct statvfs volume;
  if (statvfs(linux.c_str(), &volume) != 0) return FailWith(ErrorFromErrno(errno));
  std::string fileSystem = FileSystemName(linux);
  if (fileSystemNameBuffer && fileSystemNameSize <= fileSystem.size()) return FailWith(ERROR_BAD_LENGTH);
  // Linux keeps no volume label that a program could read without privileges: the label is empty.
  if (volumeNameBuffer && volumeNameSize > 0) volumeNameBuffer[0] = 0;
  if (volumeSerialNumber) {
    uint64_t id = volume.f_fsid;
    *volumeSerialNumber = static_cast<DWORD>(id ^ (id >> 32));
  }
  if (maximumComponentLength) *maximumComponentLength = static_cast<DWORD>(volume.f_namemax);
  if (fileSystemFlags) {
    *fileSystemFlags = FILE_CASE_PRESERVED_NAMES | FILE_UNICODE_ON_DISK;
    if (volume.f_flag & ST_RDONLY) *fileSystemFlags |= FILE_READ_ONLY_VOLUME;
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
