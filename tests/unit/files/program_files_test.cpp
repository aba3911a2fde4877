// Program files: the extension test, and the kind of program read from small made-up executables.
#include "files/program_files.h"

#include <gtest/gtest.h>

#include <string>

#include "scratch_folder.h"

namespace {

TEST(IsProgramFileName, Extensions) {
  struct Row {
    const char *name;
    int result;
  } rows[] = {
      {"a.exe", 1},       {"A.EXE", 1},      {"x\\y.Com", 1}, {"run.bat", 1},     {"old.pif", 1},
      {"link.lnk", 1},    {"go.cmd", 1},     {"\"a b.exe\"", 1}, {"a.txt", 0},   {"a.exe.txt", 0},
      {"a.exec", 0},      {"a.ex", 0},       {"exe", 0},      {"folder.exe\\", 0}, {"", 0},
  };
  for (const Row &row : rows) EXPECT_EQ(IsProgramFileName(row.name), row.result) << row.name;
  EXPECT_EQ(IsProgramFileName(nullptr), 0);
}

// Little-endian words and double words at an offset of a header under construction.
void Put16(std::string *bytes, size_t offset, unsigned value) {
  (*bytes)[offset] = static_cast<char>(value & 0xFF);
  (*bytes)[offset + 1] = static_cast<char>((value >> 8) & 0xFF);
}
void Put32(std::string *bytes, size_t offset, unsigned value) {
  Put16(bytes, offset, value & 0xFFFF);
  Put16(bytes, offset + 2, value >> 16);
}

// A DOS program of 0x400 bytes: its relocation table stands where a later format's header would begin.
std::string DosImage() {
  std::string bytes(0x400, '\0');
  bytes[0] = 'M';
  bytes[1] = 'Z';
  Put16(&bytes, 0x02, 0x90);  // bytes on the last page
  Put16(&bytes, 0x04, 2);     // pages
  Put16(&bytes, 0x08, 4);     // header paragraphs
  Put16(&bytes, 0x18, 0x1C);  // relocation table
  return bytes;
}

// The DOS stub of a later format, with e_lfanew pointing at 0x80.
std::string StubImage() {
  std::string bytes = DosImage();
  Put16(&bytes, 0x18, 0x40);
  Put32(&bytes, 0x3C, 0x80);
  return bytes;
}

// A PE32 image with no sections and the given subsystem (2 windowed, 3 console), subsystem version 4.0.
std::string PortableImage(unsigned subsystem) {
  std::string bytes = StubImage();
  const size_t pe = 0x80, optional = pe + 24;
  bytes.replace(pe, 4, std::string("PE\0\0", 4));
  Put16(&bytes, pe + 4, 0x14C);       // i386
  Put16(&bytes, pe + 20, 0xE0);       // size of the optional header
  Put16(&bytes, pe + 22, 0x0103);     // executable, no relocations, 32-bit
  Put16(&bytes, optional, 0x10B);     // PE32
  Put32(&bytes, optional + 16, 0);    // entry point
  Put32(&bytes, optional + 28, 0x400000);
  Put32(&bytes, optional + 32, 0x1000);  // section alignment
  Put32(&bytes, optional + 36, 0x200);   // file alignment
  Put16(&bytes, optional + 40, 4);       // operating system version
  Put16(&bytes, optional + 48, 4);       // subsystem version 4.0
  Put32(&bytes, optional + 56, 0x1000);  // size of image
  Put32(&bytes, optional + 60, 0x400);   // size of headers
  Put16(&bytes, optional + 68, subsystem);
  Put32(&bytes, optional + 72, 0x100000);
  Put32(&bytes, optional + 76, 0x1000);
  Put32(&bytes, optional + 80, 0x100000);
  Put32(&bytes, optional + 84, 0x1000);
  Put32(&bytes, optional + 92, 16);  // data directories
  return bytes;
}

// A 16-bit Windows image (NE) that expects Windows 3.10.
std::string NewImage() {
  std::string bytes = StubImage();
  const size_t ne = 0x80;
  bytes[ne] = 'N';
  bytes[ne + 1] = 'E';
  bytes[ne + 2] = 5;               // linker version
  Put16(&bytes, ne + 0x0C, 0x8302);  // flags
  bytes[ne + 0x36] = 2;            // target: Windows
  Put16(&bytes, ne + 0x3E, 0x030A);
  return bytes;
}

bool UnderWine() {
#ifdef _WIN32
  HMODULE ntdll = GetModuleHandleA("ntdll.dll");
  return ntdll != nullptr && GetProcAddress(ntdll, "wine_get_version") != nullptr;
#else
  return false;
#endif
}

TEST(ExecutableKind, MadeUpImages) {
  ScratchFolder scratch;
  const bool wine = UnderWine();
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
