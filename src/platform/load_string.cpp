// LoadStringA, ours on both platforms: the program's messages are a table compiled into it (src/resources/), not a
// resource script, so that the same bytes come out on Windows and on Linux.
#include <cstring>

#include "platform/winapi.h"
#include "resources/message_table.h"

namespace {
// The Shift-JIS lead bytes. The platform layer stands beneath the text services, so it keeps its own test.
bool IsLead(unsigned char c) { return (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC); }
}  // namespace

int KmLoadStringA(HINSTANCE, UINT id, LPSTR buffer, int bufferMax) {
  if (buffer == nullptr || bufferMax < 1) return 0;
  const char *text = FindMessageText(id);
  if (text == nullptr) {
    buffer[0] = 0;
    SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return 0;
  }
  size_t room = static_cast<size_t>(bufferMax) - 1;
  // Walk by characters, so that a cut falls between two of them: a lead byte whose partner would not fit stays out.
  size_t length = 0;
  while (text[length] != 0) {
    size_t step = IsLead(static_cast<unsigned char>(text[length])) && text[length + 1] != 0 ? 2 : 1;
    if (length + step > room) break;
    length += step;
  }
  std::memcpy(buffer, text, length);
  buffer[length] = 0;
  return static_cast<int>(length);
}
