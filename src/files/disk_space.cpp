// Volume space and the default allocation unit of a file system.
#include "files/disk_space.h"

#include <cstdlib>
#include <cstring>

#include "files/error_numbers.h"
#include "machine/drive_inventory.h"
#include "machine/known_folders.h"
#include "machine/network_paths.h"
#include "reports/last_error.h"
#include "reports/memory_reports.h"
#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/quoted_args.h"

namespace {

typedef BOOL(WINAPI *GetDiskFreeSpaceExCall)(LPCSTR, PULARGE_INTEGER, PULARGE_INTEGER, PULARGE_INTEGER);
// Looked up by name at the first need, as the oldest systems lack it; while empty, looked up again at the next call.
GetDiskFreeSpaceExCall diskFreeSpaceEx = nullptr;

// The file system kind of a network volume: it has no allocation unit of its own to report.
const int kNetworkFileSystem = 4;

// The default allocation units, as doublings of one sector: each threshold that the volume's size reaches doubles the
// sectors per cluster once, and the first that it does not reach ends the doubling.
const unsigned long long kFatThresholds[] = {0x1FFFFFF, 0x3FFFFFF, 0x7FFFFFF, 0xFFFFFFF, 0x1FFFFFFF, 0x3FFFFFFF};
// FAT32 starts at 8 sectors as soon as it is half a gigabyte: the first threshold stands three times.
const unsigned long long kFat32Thresholds[] = {0x1FFFFFFF,  0x1FFFFFFF,  0x1FFFFFFF,
                                               0x1FFFFFFFF, 0x3FFFFFFFF, 0x7FFFFFFFF};
const unsigned long long kNtfsThresholds[] = {0x200FFFFF, 0x400FFFFF, 0x7FFFFFFF};

DWORD DoublingsFor(const unsigned long long *thresholds, size_t count, unsigned long long totalBytes) {
  DWORD sectors = 1;
  for (size_t i = 0; i < count && totalBytes >= thresholds[i]; ++i) sectors *= 2;
  return sectors;
}

// Makes `root` the folder that a network volume is asked by: the real form of the path, cut to "\\server\share\".
void NetworkVolumeRoot(char *root) {
  SetNetworkLevelMask(kNetShare | kNetBelowShare);
  int saved = 0;
  char *real = ToRealNetworkPath(root, &saved);
  if (real != root) std::memmove(root, real, std::strlen(real) + 1);
  while (std::abs(PathDepth(root)) > 3) {
    int cut = CutLastComponent(root);
    if (cut == kCutEndsInBackslash)
      root[std::strlen(root) - 1] = 0;  // a trailing backslash first
    else if (cut != kCutAtBackslash && cut != kCutBehindRoot)
      break;
  }
  EnsureTrailingBackslash(root);
  RefreshDriveFileSystem(root);
  SetNetworkLevelMask(0);
}

}  // namespace

int AllocationUnitFor(int kind, unsigned long long totalBytes, DiskSpaceRecord *record) {
  if (kind < 0) {
    record->bytesPerSector = 0;
    record->sectorsPerCluster = 0;
    return 0;
  }
  if (kind >= kNetworkFileSystem) return -1;
  record->bytesPerSector = kind == 3 ? 2048 : 512;
  switch (kind) {
    case 0:
      // FAT stops at 64 sectors: the size of 2 GB is compared too, but never doubles.
      record->sectorsPerCluster = DoublingsFor(kFatThresholds, 6, totalBytes);
      break;
    case 1:
      record->sectorsPerCluster = DoublingsFor(kFat32Thresholds, 6, totalBytes);
      break;
    case 2:
      record->sectorsPerCluster = DoublingsFor(kNtfsThresholds, 3, totalBytes);
      break;
    default:
      record->sectorsPerCluster = 1;  // CDFS: one 2,048-byte sector
      break;
  }
  return 1;
}

void RefreshDriveFileSystem(char *root) {
  char label[MAX_PATH + 1];
  char fileSystem[MAX_PATH + 1];
  DWORD serial = 0, maxLength = 0, flags = 0;
  fileSystem[0] = 0;
  // The answer does not matter: a volume that does not answer leaves the name empty, which is the unknown kind.
  GetVolumeDetails(root, label, sizeof label, &serial, &maxLength, &flags, fileSystem, sizeof fileSystem);
  StoreDriveFileSystem(static_cast<unsigned char>(root[0]), fileSystem);
}

int GetDiskSpace(char *path, DiskSpaceRecord *record, DiskSpaceRecordEx *recordEx) {
  DiskSpaceRecord localRecord;
  DiskSpaceRecordEx localRecordEx;
  int onlyOne = 0;
  if (record == nullptr) {
    record = &localRecord;
    onlyOne = 1;
  }
  if (recordEx == nullptr) {
    recordEx = &localRecordEx;
    onlyOne = 1;
  }
  std::memset(record, 0, sizeof *record);
  std::memset(recordEx, 0, sizeof *recordEx);
  if (path == nullptr) path = const_cast<char *>("");

  HGLOBAL rootHandle = 0;
  char *root = AcquireBlock(&rootHandle, nullptr, kPathSize, nullptr);
  if (root == nullptr) return 1;
  root[0] = path[0];
  std::strcpy(root + 1, ":\\");
  if (IsNetworkPath(path)) {
    std::strncpy(root, path, kPathSize - 1);
    root[kPathSize - 1] = 0;
    size_t length = std::strlen(root);
    if (length >= 3 && std::strcmp(root + length - 3, "*.*") == 0) {
      length -= 3;
      root[length] = 0;
      if (length >= 1 && IsSingleByteCharAt(root, root, '\\', static_cast<unsigned>(length - 1)) &&
          !(length >= 2 && root[length - 2] == ':'))
        root[length - 1] = 0;
    }
    if ((ClassifyNetworkPath(root) & kNetShareNamed) == 0) {
      // Above share level there is no disk.
      ReleaseBlock(rootHandle, root);
      ClearErrors();
      return 0;
    }
    NetworkVolumeRoot(root);
  }

  int succeeded = 0;
  DWORD error = 0;
  if (diskFreeSpaceEx == nullptr) {
    HMODULE kernel = GetModuleHandleA("KERNEL32.DLL");
    if (kernel != nullptr)
      diskFreeSpaceEx = reinterpret_cast<GetDiskFreeSpaceExCall>(
          reinterpret_cast<void *>(GetProcAddress(kernel, "GetDiskFreeSpaceExA")));
  }
  int finished = 0;
  if (diskFreeSpaceEx != nullptr) {
    ULARGE_INTEGER freeToCaller, total, totalFree;
    SetKeptLastError(0);
    BOOL done = diskFreeSpaceEx(root, &freeToCaller, &total, &totalFree);
    error = CaptureLastError();
    if (done) {
      succeeded = 1;
      // A caller who gave one record only gets no figures from this branch: it stops before the records are
      // filled, and the old query is not asked.
      finished = onlyOne;
      if (!finished) {
        recordEx->freeToCaller = freeToCaller.QuadPart;
        recordEx->totalBytes = total.QuadPart;
        recordEx->totalFree = totalFree.QuadPart;
        int kind = DriveFileSystemKind(static_cast<unsigned char>(root[0]));
        finished = kind == kNetworkFileSystem ||
                   (kind < kNetworkFileSystem && AllocationUnitFor(kind, total.QuadPart, record) == 1);
      }
    }
  }
  if (!finished) {
    DWORD sectorsPerCluster = 0, bytesPerSector = 0, freeClusters = 0, totalClusters = 0;
    SetKeptLastError(0);
    BOOL done = GetDiskFreeSpaceA(root, &sectorsPerCluster, &bytesPerSector, &freeClusters, &totalClusters);
    error = CaptureLastError();
    if (done) {
      succeeded = 1;
      record->totalClusters = totalClusters;
      record->freeClusters = freeClusters;
      record->sectorsPerCluster = sectorsPerCluster;
      record->bytesPerSector = bytesPerSector;
    }
  }
  ReleaseBlock(rootHandle, root);
  SettleErrors(error);
  return succeeded ? 0 : 1;
}
