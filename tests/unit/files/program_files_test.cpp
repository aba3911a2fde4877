// The extension test, by which a search miss is told from a path.
#include "files/program_files.h"

#include <gtest/gtest.h>

namespace {

TEST(IsProgramFileName, Extensions) {
  struct Row {
    const char *name;
    int result;
  } rows[] = {
      {"A.EXE", 1},       {"x\\y.Com", 1},  {"run.bat", 1}, {"old.pif", 1}, {"link.lnk", 1},     {"go.cmd", 1},
      {"\"a b.exe\"", 1}, {"a.exe.txt", 0}, {"a.exec", 0},  {"exe", 0},     {"folder.exe\\", 0}, {"", 0},
  };
  for (const Row &row : rows) EXPECT_EQ(IsProgramFileName(row.name), row.result) << row.name;
}

}  // namespace
