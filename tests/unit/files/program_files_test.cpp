// Program files: the extension test, and the kind of program read from small made-up executables.
#include "files/program_files.h"

#include <gtest/gtest.h>

#include <string>

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
  EXPECT_EQ(IsProgramFileName(nullptr), 0);
}

TEST(ExecutableKind, MadeUpImages) {
  ScratchFolder scratch;
  const bool wine = RunningUnderWine();
  struct Row {
    const char *name;
    std::string bytes;
    int kind;
    int windows;
    bool wineDiffers;  // Wine's answer is not Windows' (see below): then no program at all
  } rows[] = {
      // Wine gives 0x4D5A for a DOS program, the two bytes of "MZ" the wrong way round; Windows gives 0x5A4D.
      {"dos.exe", DosImage(), 2, 0, true},
      {"stub.exe", StubImage(), 2, 0, true},
      {"dos.com", "\xCD\x20", 2, 0, true},
      {"console.exe", PortableImage(3), 1, 0, false},
      {"windowed.exe", PortableImage(2), 0, 1, false},
      {"old windows.exe", NewImage(), 0, 1, false},
      // Windows counts a batch file as a console program; Wine answers 0 for it.
      {"batch.bat", "@echo off\r\n", 1, 0, true},
      {"script.cmd", "@echo off\r\n", 1, 0, true},
      {"text.exe", "just some text, no program at all", -1, -1, false},
      {"empty.exe", "", -1, -1, false},
  };
  for (const Row &row : rows) {
    PathBuffer path(scratch.MakeFile(row.name, row.bytes));
    const bool differs = wine && row.wineDiffers;
    EXPECT_EQ(ExecutableKind(path.bytes), differs ? -1 : row.kind) << row.name;
    EXPECT_EQ(IsWindowsProgram(path.bytes), differs ? -1 : row.windows) << row.name;
  }
}

TEST(IsWindowsProgram, OnlyFilesAreAsked) {
  ScratchFolder scratch;
  PathBuffer folder(scratch.MakeFolder("folder.exe"));
  EXPECT_EQ(IsWindowsProgram(folder.bytes), -3);
  PathBuffer missing(scratch.Path("missing.exe"));
  EXPECT_EQ(IsWindowsProgram(missing.bytes), -3);
  PathBuffer empty("");
  EXPECT_EQ(IsWindowsProgram(empty.bytes), -3);
  EXPECT_EQ(IsWindowsProgram(nullptr), -3);
  EXPECT_EQ(ExecutableKind(scratch.Path("missing.exe").c_str()), -1);
}

}  // namespace
