// The option letters: the rows the command-line table (CompatibilityOfLetters) leaves out.
#include <gtest/gtest.h>

#include "front/command_line.h"

namespace {

TEST(Options, CompatibilityTable) {
  struct Row {
    const char *letters;
    int accepted;
  } rows[] = {{"imfdimm", 1}, {"fedc", 0}, {"ay", 1}, {"az", 1}, {"ecrr", 1}};
  for (const Row &row : rows) EXPECT_EQ(OptionsAreCompatible(row.letters), row.accepted) << row.letters;
}

}  // namespace
