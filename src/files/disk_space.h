// The free and total space of a volume, and the allocation unit that a file system uses by default for a volume of a
// given size (the extended query tells no cluster size, so it is worked out from the size).
#pragma once

#include "platform/winapi.h"

// Total clusters, free clusters, sectors per cluster, bytes per sector.
struct DiskSpaceRecord {
  DWORD totalClusters;
  DWORD freeClusters;
  DWORD sectorsPerCluster;
  DWORD bytesPerSector;
};

// Bytes free to the caller, total bytes, total free bytes.
struct DiskSpaceRecordEx {
  unsigned long long freeToCaller;
  unsigned long long totalBytes;
  unsigned long long totalFree;
};

// The space of the volume that holds `path` (a drive path, or a network path from share level down). Either record may
// be null. Both records are cleared first; a network place above share level has no disk and gives 0 with both clear.
// When only one record is given and the extended query answers, nothing is filled in (see the body). Result: 0 when a
// query succeeded, 1 when none did.
int GetDiskSpace(char *path, DiskSpaceRecord *record, DiskSpaceRecordEx *recordEx);

// Bytes per sector and sectors per cluster of `record` for file system kind `kind` (0 FAT, 1 FAT32, 2 NTFS, 3 CDFS) on
// a volume of `totalBytes`. Result: 1 when filled in; 0 for an unknown kind (below 0: both set to 0); -1 for kind 4 or
// above (network and others), with nothing stored.
int AllocationUnitFor(int kind, unsigned long long totalBytes, DiskSpaceRecord *record);

// Reads the file system name of the volume at `root` and keeps it in the drive table. A volume that does not answer is
// kept as unknown.
void RefreshDriveFileSystem(char *root);
