// Program files: the extension test (by which a search miss is told from a path), and the kind of program read from
// small made-up executables.
#include "files/program_files.h"

#include <gtest/gtest.h>

#include "support/executable_images.h"
#include "support/scratch_folder.h"

namespace {

TEST(IsProgramFileName, Extensions) {
  struct Row {
    const char *name;
    int result;
  } rows[] = {
      {"a.exe", 1},    {"A.EXE", 1},  {"x\\y.Com", 1},    {"run.bat", 1},      {"old.pif", 1},
      {"link.lnk", 1}, {"go.cmd", 1}, {"\"a b.exe\"", 1}, {"a.txt", 0},        {"a.exe.txt", 0},
      {"a.exec", 0},   {"a.ex", 0},   {"exe", 0},         {"folder.exe\\", 0}, {"", 0},
  };
  for (const Row &row : rows) EXPECT_EQ(IsProgramFileName(row.name), row.result) << row.name;
}

// Nothing in this edition asks for the kind; one check of the answers on which Windows and Wine agree.
TEST(IsWindowsProgram, TellsWindowsProgramsFromConsoleProgramsAndFiles) {
  ScratchFolder scratch;
  PathBuffer windowed(scratch.MakeFile("windowed.exe", PortableImage(2)));
  PathBuffer console(scratch.MakeFile("console.exe", PortableImage(3)));
  PathBuffer text(scratch.MakeFile("text.exe", "no program here"));
  PathBuffer folder(scratch.MakeFolder("folder.exe"));
  EXPECT_EQ(IsWindowsProgram(windowed.bytes), 1);
  EXPECT_EQ(IsWindowsProgram(console.bytes), 0);
  EXPECT_EQ(IsWindowsProgram(text.bytes), -1);
  EXPECT_EQ(IsWindowsProgram(folder.bytes), -3);
}

}  // namespace
