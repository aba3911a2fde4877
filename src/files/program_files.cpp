// Program files: the extension test and the kind of program that a file holds.
#include "files/program_files.h"

#include <cstring>

#include "files/file_operations.h"
#include "platform/winapi.h"
#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/quoted_args.h"

namespace {

// The extensions of the files that the system runs as programs, in the order in which they are tried.
const char *const kProgramExtensions[] = {"exe", "com", "bat", "pif", "lnk", "cmd"};

// The signatures that SHGetFileInfoA gives in the low word of its answer: "PE", "NE" and "MZ" as little-endian words.
const unsigned kPortableSignature = 0x4550;
const unsigned kNewSignature = 0x454E;
const unsigned kDosSignature = 0x5A4D;

}  // namespace

int IsProgramFileName(const char *name) {
  if (name == nullptr || *name == 0) return 0;
  HGLOBAL handle = 0;
  char *copy = AcquireBlock(&handle, nullptr, kPathSize, nullptr);
  if (copy == nullptr) return 0;
  std::strncpy(copy, name, kPathSize - 1);
  copy[kPathSize - 1] = 0;
  LowerText(copy);
  int result = 0;
  char *extension = HasExtension(copy);
  if (extension != nullptr) {
    size_t length = std::strlen(copy);
    if (IsQuoteAt(copy, static_cast<unsigned>(length - 1))) copy[length - 1] = 0;
    for (const char *row : kProgramExtensions) {
      if (lstrcmpiA(extension, row) == 0) {
        result = 1;
        break;
      }
    }
  }
  ReleaseBlock(handle, copy);
  return result;
}

int ExecutableKind(const char *path) {
  SHFILEINFOA info;
  std::memset(&info, 0, sizeof info);
  DWORD_PTR answer = SHGetFileInfoA(path, 0, &info, sizeof info, SHGFI_EXETYPE);
  if (answer == 0) return -1;
  unsigned low = static_cast<unsigned>(answer & 0xFFFF);
  unsigned high = static_cast<unsigned>((answer >> 16) & 0xFFFF);
  if (high != 0) return (low == kPortableSignature || low == kNewSignature) ? 0 : -1;
  if (low == kPortableSignature) return 1;
  if (low == kDosSignature) return 2;
  return -1;
}

int IsWindowsProgram(char *path) {
  if (path == nullptr || *path == 0 || PathKind(path) != kPathFile) return -3;
  switch (ExecutableKind(path)) {
    case -1:
      return -1;
    case 0:
      return 1;
    default:
      return 0;
  }
}
