// Volume space, and the allocation unit worked out from a volume's size.
#include "files/disk_space.h"

#include <gtest/gtest.h>

#include <string>

#include "support/scratch_folder.h"

namespace {

TEST(AllocationUnitFor, Thresholds) {
  struct Row {
    int kind;
    unsigned long long total;
    int result;
    DWORD bytesPerSector;
    DWORD sectorsPerCluster;
  } rows[] = {
      {-1, 0x40000000, 0, 0, 0},  // unknown: both cleared
      {0, 0, 1, 512, 1},
      {0, 0x1FFFFFE, 1, 512, 1},
      {0, 0x1FFFFFF, 1, 512, 2},  // reaching a threshold counts
      {0, 0x3FFFFFF, 1, 512, 4},
      {0, 0x7FFFFFF, 1, 512, 8},
      {0, 0xFFFFFFF, 1, 512, 16},
      {0, 0x1FFFFFFF, 1, 512, 32},
      {0, 0x3FFFFFFF, 1, 512, 64},
      {0, 0x7FFFFFFF, 1, 512, 64},  // compared, never doubles
      {0, 0xFFFFFFFFFFull, 1, 512, 64},
      {1, 0x1FFFFFFE, 1, 512, 1},
      {1, 0x1FFFFFFF, 1, 512, 8},  // one step of three doublings
      {1, 0x20000000, 1, 512, 8},
      {1, 0x1FFFFFFFF, 1, 512, 16},
      {1, 0x3FFFFFFFF, 1, 512, 32},
      {1, 0x7FFFFFFFF, 1, 512, 64},
      {1, 0xFFFFFFFFFFull, 1, 512, 64},
      {2, 0x200FFFFE, 1, 512, 1},
      {2, 0x200FFFFF, 1, 512, 2},
      {2, 0x400FFFFF, 1, 512, 4},
      {2, 0x7FFFFFFF, 1, 512, 8},
      {2, 0xFFFFFFFFFFull, 1, 512, 8},
      {3, 0, 1, 2048, 1},
      {3, 0xFFFFFFFFFFull, 1, 2048, 1},
      {4, 0x40000000, -1, 7, 7},  // network and later kinds store nothing
      {5, 0x40000000, -1, 7, 7},
      {9, 0x40000000, -1, 7, 7},
  };
  for (const Row &row : rows) {
    DiskSpaceRecord record = {7, 7, 7, 7};
    EXPECT_EQ(AllocationUnitFor(row.kind, row.total, &record), row.result) << row.kind << " " << std::hex << row.total;
    EXPECT_EQ(record.bytesPerSector, row.bytesPerSector) << row.kind << " " << std::hex << row.total;
    EXPECT_EQ(record.sectorsPerCluster, row.sectorsPerCluster) << row.kind << " " << std::hex << row.total;
    EXPECT_EQ(record.totalClusters, 7u) << "other fields are not touched";
  }
}

TEST(GetDiskSpace, LocalVolume) {
  ScratchFolder scratch;
  PathBuffer path(scratch.Path());
  DiskSpaceRecord record = {1, 1, 1, 1};
  DiskSpaceRecordEx recordEx = {1, 1, 1};
  ASSERT_EQ(GetDiskSpace(path.bytes, &record, &recordEx), 0);
  EXPECT_GT(recordEx.totalBytes, 0ull);
  EXPECT_LE(recordEx.totalFree, recordEx.totalBytes);
  // The file system kind is not known, so the cluster figures come from the old query.
  EXPECT_GT(record.bytesPerSector, 0u);
  EXPECT_GT(record.sectorsPerCluster, 0u);
  EXPECT_GT(record.totalClusters, 0u);
  // A caller who gives one record gets no figures from the extended query.
  record = {1, 1, 1, 1};
  EXPECT_EQ(GetDiskSpace(path.bytes, &record, nullptr), 0);
  EXPECT_EQ(record.totalClusters, 0u);
  EXPECT_EQ(record.bytesPerSector, 0u);
}

TEST(GetDiskSpace, NetworkPlaceAboveShareHasNoDisk) {
  for (const char *text : {"\\\\server", "\\:\\group\\server", "\\\\server\\*.*"}) {
    PathBuffer path(text);
    DiskSpaceRecord record = {1, 1, 1, 1};
    DiskSpaceRecordEx recordEx = {1, 1, 1};
    EXPECT_EQ(GetDiskSpace(path.bytes, &record, &recordEx), 0) << text;
    EXPECT_EQ(record.totalClusters + record.freeClusters + record.sectorsPerCluster + record.bytesPerSector, 0u);
    EXPECT_EQ(recordEx.freeToCaller + recordEx.totalBytes + recordEx.totalFree, 0ull);
  }
}

TEST(GetDiskSpace, MissingDriveFails) {
  for (char letter = 'Y'; letter > 'A'; --letter) {
    char root[4] = {letter, ':', '\\', 0};
    if (GetDriveTypeA(root) != DRIVE_NO_ROOT_DIR) continue;
    PathBuffer path(std::string(root) + "folder");
    DiskSpaceRecord record;
    DiskSpaceRecordEx recordEx;
    EXPECT_EQ(GetDiskSpace(path.bytes, &record, &recordEx), 1) << root;
    return;
  }
  GTEST_SKIP() << "every drive letter is taken here";
}

}  // namespace
