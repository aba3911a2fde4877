// Private profile files (".ini") of the Linux backend. Not read yet: every read gives the default.
#include <cstring>

#include "platform/winapi.h"

DWORD GetPrivateProfileStringA(LPCSTR, LPCSTR, LPCSTR defaultText, LPSTR returned, DWORD size, LPCSTR) {
  if (returned == nullptr || size == 0) return 0;
  const char *text = defaultText != nullptr ? defaultText : "";
  DWORD length = static_cast<DWORD>(std::strlen(text));
  if (length >= size) length = size - 1;
  std::memcpy(returned, text, length);
  returned[length] = 0;
  return length;
}
