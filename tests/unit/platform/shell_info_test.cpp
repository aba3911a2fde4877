// SHGFI_EXETYPE, by which the shortcut reader passes over programs; Wine's departures named beside Windows' answers.
#include <gtest/gtest.h>

#include <string>

#include "platform/winapi.h"
#include "support/executable_images.h"
#include "support/scratch_folder.h"

namespace {

DWORD_PTR ExeType(const std::string &path) {
  SHFILEINFOA info;
  return SHGetFileInfoA(path.c_str(), 0, &info, sizeof info, SHGFI_EXETYPE);
}

TEST(ShellInfo, ExecutableTypes) {
  ScratchFolder scratch;
  struct Row {
    const char *name;
    std::string bytes;
    DWORD_PTR windows;
    DWORD_PTR wine;
  } rows[] = {
      // Wine puts the two bytes of "MZ" the wrong way round: 0x4D5A.
      {"dos.exe", DosImage(), 0x5A4D, 0x4D5A},
      {"dos.com", "\xCD\x20", 0x5A4D, 0x4D5A},
      {"stub.exe", StubImage(), 0x5A4D, 0x4D5A},
      {"console.exe", PortableImage(3), 0x4550, 0x4550},
      {"gui 10.0.exe", PortableImage(2, 10, 0), 0x0A004550, 0x0A004550},
      {"windows 3.1.exe", NewImage(2), 0x030A454E, 0x030A454E},
      {"os2.exe", NewImage(1), 0, 0},
      // Windows counts a batch file as a console program; Wine does not.
      {"batch.bat", "@echo off\r\n", 0x4550, 0},
      {"text.exe", "no program here", 0, 0},
  };
  for (const Row &row : rows) {
    scratch.MakeFile(row.name, row.bytes);
    EXPECT_EQ(ExeType(scratch / row.name), WindowsOrWine(row.windows, row.wine)) << row.name;
  }
}

}  // namespace
