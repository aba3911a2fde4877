// Volume space. Nothing in this edition asks for it; one check that the query answers for a local volume.
#include "files/disk_space.h"

#include <gtest/gtest.h>

#include "support/scratch_folder.h"

namespace {

TEST(GetDiskSpace, LocalVolume) {
  ScratchFolder scratch;
  PathBuffer path(scratch.Path());
  DiskSpaceRecord record = {1, 1, 1, 1};
  DiskSpaceRecordEx recordEx = {1, 1, 1};
  ASSERT_EQ(GetDiskSpace(path.bytes, &record, &recordEx), 0);
  EXPECT_GT(recordEx.totalBytes, 0ull);
  EXPECT_LE(recordEx.totalFree, recordEx.totalBytes);
  EXPECT_GT(record.bytesPerSector, 0u);
  EXPECT_GT(record.totalClusters, 0u);
}

}  // namespace
