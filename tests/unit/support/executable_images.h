// Small made-up executables for the tests of the executable type: a DOS program, the DOS stub of a later format, PE
// images of a given subsystem, and a 16-bit Windows (NE) image. Each is just enough of its headers to be told apart.
#pragma once

#include <string>

// Little-endian words and double words at an offset of a header under construction.
inline void Put16(std::string *bytes, size_t offset, unsigned value) {
  (*bytes)[offset] = static_cast<char>(value & 0xFF);
  (*bytes)[offset + 1] = static_cast<char>((value >> 8) & 0xFF);
}
inline void Put32(std::string *bytes, size_t offset, unsigned value) {
  Put16(bytes, offset, value & 0xFFFF);
  Put16(bytes, offset + 2, value >> 16);
}

// A DOS program of 0x400 bytes: its relocation table stands where a later format's header would begin.
inline std::string DosImage() {
  std::string bytes(0x400, '\0');
  bytes[0] = 'M';
  bytes[1] = 'Z';
  Put16(&bytes, 0x18, 0x1C);  // relocation table
  return bytes;
}

// The DOS stub of a later format, with e_lfanew pointing at 0x80.
inline std::string StubImage() {
  std::string bytes = DosImage();
  Put16(&bytes, 0x18, 0x40);
  Put32(&bytes, 0x3C, 0x80);
  return bytes;
}

// A PE32 image with no sections, of the given subsystem (2 windowed, 3 console) and subsystem version. Wine answers 0
// for an image whose optional header is incomplete, so this one is complete.
inline std::string PortableImage(unsigned subsystem, unsigned major = 4, unsigned minor = 0) {
  std::string bytes = StubImage();
  const size_t pe = 0x80, optional = pe + 24;
  bytes.replace(pe, 4, std::string("PE\0\0", 4));
  Put16(&bytes, pe + 4, 0x14C);     // i386
  Put16(&bytes, pe + 20, 0xE0);     // size of the optional header
  Put16(&bytes, pe + 22, 0x0103);   // executable, no relocations, 32-bit
  Put16(&bytes, optional, 0x10B);   // PE32
  Put32(&bytes, optional + 16, 0);  // entry point
  Put32(&bytes, optional + 28, 0x400000);
  Put32(&bytes, optional + 32, 0x1000);  // section alignment
  Put32(&bytes, optional + 36, 0x200);   // file alignment
  Put16(&bytes, optional + 40, 4);       // operating system version
  Put16(&bytes, optional + 48, major);   // subsystem version
  Put16(&bytes, optional + 50, minor);
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

// A 16-bit image (NE) for a target system (2 Windows, 1 OS/2) that expects version 3.10.
inline std::string NewImage(char target = 2) {
  std::string bytes = StubImage();
  const size_t ne = 0x80;
  bytes[ne] = 'N';
  bytes[ne + 1] = 'E';
  bytes[ne + 0x36] = target;
  Put16(&bytes, ne + 0x3E, 0x030A);
  return bytes;
}
