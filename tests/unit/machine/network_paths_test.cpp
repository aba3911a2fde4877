// Network path classification and the real path made in place.
#include "machine/network_paths.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(NetworkPaths, Classification) {
  struct Row {
    const char *path;
    unsigned bits;
  } rows[] = {{"\\\\", 1},
              {"\\:\\", 6},
              {"\\:\\grp", 2},
              {"\\:\\grp\\srv", 0x308},
              {"\\\\srv", 0x108},
              {"\\:\\grp\\srv\\sh", 0x710},
              {"\\\\srv\\sh", 0x510},
              {"\\\\srv\\sh\\d", 0x520},
              {"\\\\srv\\sh\\d\\e", 0x560},
              {"\\\\srv\\*.*", 0x590},
              {"c:\\x", 0}};
  for (const Row &row : rows) EXPECT_EQ(ClassifyNetworkPath(row.path), row.bits) << row.path;
}

TEST(NetworkPaths, RealPathInPlace) {
  char view[32] = "\\:\\grp\\srv\\sh\\d";
  int saved = 0;
  char *real = ToRealNetworkPath(view, &saved);
  EXPECT_STREQ(real, "\\\\srv\\sh\\d");
  EXPECT_EQ(saved, 'p');
  EXPECT_EQ(RestoreNetworkPath(real, saved), 1);
  EXPECT_STREQ(view, "\\:\\grp\\srv\\sh\\d");

  char share[32] = "\\\\srv\\sh";
  EXPECT_EQ(ToRealNetworkPath(share, &saved), share);
  EXPECT_EQ(saved, 0);  // at rest a share by itself is no real place
  SetNetworkLevelMask(0x400);
  EXPECT_EQ(ToRealNetworkPath(share, &saved), share);
  EXPECT_EQ(saved, -92);
  SetNetworkLevelMask(0);
  EXPECT_STREQ(share, "\\\\srv\\sh");
  char below[32] = "\\\\srv\\sh\\d";
  ToRealNetworkPath(below, &saved);
  EXPECT_EQ(saved, -92);
  EXPECT_EQ(RestoreNetworkPath(below, saved), 0);
  char local[8] = "c:\\x";
  EXPECT_EQ(ToRealNetworkPath(local, &saved), local);
  EXPECT_EQ(saved, 0);
}

}  // namespace
