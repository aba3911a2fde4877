// Environment strings.
#include "machine/environment_strings.h"

#include <cstring>

#include "platform/winapi.h"
#include "text/memory_blocks.h"
#include "text/path_strings.h"
#include "text/tokens.h"

namespace {

// Replaces the name between the two "%" at `open` and `close` by its value, keeping the text behind `close`.
void ExpandOneName(char *open, char *close) {
  HGLOBAL tailHandle = 0, valueHandle = 0;
  char *tail = AcquireBlock(&tailHandle, nullptr, kPathSize, nullptr);
  char *value = AcquireBlock(&valueHandle, nullptr, kPathSize, nullptr);
  if (tail != nullptr && value != nullptr) {
    *close = 0;
    const char *behind = close + 1;
    if (*behind != 0) {
      std::strncpy(tail, behind, kPathSize - 1);
      tail[kPathSize - 1] = 0;
    }
    const char *name = open + 1;
    // The value buffer starts out holding the name: a value too long for it leaves the call's answer unwritten, and
    // the name itself then replaces "%NAME%". Deliberate: a path field can take no longer value anyway.
    std::strncpy(value, name, kPathSize - 1);
    value[kPathSize - 1] = 0;
    DWORD length = GetEnvironmentVariableA(name, value, kPathSize);
    if (length != 0 && value[0] != 0) {
      size_t valueLength = std::strlen(value);
      std::memmove(open, value, valueLength + 1);
      std::strcat(open, tail);
    } else {
      *close = '%';
    }
  }
  ReleaseBlock(valueHandle, value);
  ReleaseBlock(tailHandle, tail);
}

}  // namespace

void ExpandEnvironmentNames(char *text) {
  char *open = FindCharacter(text, '%');
  while (open != nullptr) {
    char *close = FindCharacter(open + 1, '%');
    if (close == nullptr) return;
    ExpandOneName(open, close);
    // From the byte behind the opening "%": a value just put in is searched too.
    open = FindCharacter(open + 1, '%');
  }
}
