// Program files: the extension test by which a search tells a program's name from a path.
#include "files/program_files.h"

#include <cstring>

#include "platform/winapi.h"
#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/quoted_args.h"

namespace {

// The extensions of the files that the system runs as programs, in the order in which they are tried.
const char *const kProgramExtensions[] = {"exe", "com", "bat", "pif", "lnk", "cmd"};

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
