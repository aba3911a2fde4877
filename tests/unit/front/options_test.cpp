// The option letters: the compatibility test.
#include <gtest/gtest.h>

#include "front/command_line.h"

namespace {

TEST(Options, CompatibilityTable) {
  struct Row {
    const char *letters;
    int accepted;
  } rows[] = {
      {"fd", 1},   {"ec", 1},  {"ax", 1}, {"fdkpr", 1},   {"", 0},     {"d", 0},   {"fe", 0},   {"ff", 0},
      {"f", 0},    {"fdc", 0}, {"a", 0},  {"axy", 0},     {"fdx", 0},  {"adx", 0}, {"fdxy", 1}, {"fdxyz", 1},
      {"axdc", 1}, {"fd?", 1}, {"FD", 0}, {"imfdimm", 1}, {"fedc", 0}, {"ay", 1},  {"az", 1},   {"ecrr", 1},
  };
  for (const Row &row : rows) EXPECT_EQ(OptionsAreCompatible(row.letters), row.accepted) << row.letters;
}

}  // namespace
