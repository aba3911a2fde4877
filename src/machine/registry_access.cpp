// Registry and profile access.
#include "machine/registry_access.h"

#include <cstring>

#include "text/memory_blocks.h"
#include "text/path_strings.h"

namespace {

// The largest buffer a registry read is given: a size of 0xFFFF or more is cut to this.
const unsigned kLargestRegistryRead = 0xFFFE;

int useProfileFile = 0;
HGLOBAL profilePathBlock = 0;
char *profilePath = nullptr;

// Copies as much of `text` as fits, always terminated. The texts copied here are the caller's own (the sub-key, the
// default), which the readers pass back unchecked: a short buffer gets the start of them rather than an overrun.
void CopyFitting(char *buffer, unsigned bufferSize, const char *text) {
  size_t length = std::strlen(text);
  if (length >= bufferSize) length = bufferSize - 1;
  std::memcpy(buffer, text, length);
  buffer[length] = 0;
}

}  // namespace

void SetUseProfileFile(int value) { useProfileFile = value; }

int UseProfileFile(void) { return useProfileFile; }

int SetProfileFilePath(const char *path) {
  const char *text = path != nullptr ? path : "";
  char *locked = AcquireBlock(&profilePathBlock, profilePath, static_cast<DWORD>(std::strlen(text) + 1), nullptr);
  if (locked == nullptr || std::strlen(text) + 1 > GlobalSize(profilePathBlock)) {
    // A block cut short by the back-off would hold a path to another file: keep none.
    ReleaseBlock(profilePathBlock, locked);
    profilePathBlock = 0;
    profilePath = nullptr;
    return 0;
  }
  profilePath = locked;
  std::strcpy(profilePath, text);
  return 1;
}

const char *ProfileFilePath(void) { return profilePath != nullptr ? profilePath : ""; }

int ReadSettingString(HKEY root, const char *subKey, const char *valueName, const char *defaultText, char *buffer,
                      unsigned bufferSize) {
  if (useProfileFile) {
    const char *key = valueName != nullptr && *valueName != 0 ? valueName : nullptr;
    return static_cast<int>(
        GetPrivateProfileStringA(subKey, key, defaultText, buffer, bufferSize, ProfileFilePath()));
  }
  return ReadRegistryString(root, subKey, valueName, defaultText, buffer, bufferSize);
}

int ReadRegistryString(HKEY root, const char *subKey, const char *valueName, const char *defaultText, char *buffer,
                       unsigned bufferSize) {
  int result = 0;
  HKEY key = nullptr;
  DWORD size = bufferSize >= 0xFFFF ? kLargestRegistryRead : bufferSize;
  if (defaultText == nullptr) defaultText = "";
  const char *keyText = subKey != nullptr ? subKey : "";
  if (RegOpenKeyExA(root, subKey, 0, KEY_READ, &key) == ERROR_SUCCESS) {
    if (bufferSize != 0) buffer[0] = 0;
    DWORD type = REG_NONE;
    DWORD read = size;
    if (RegQueryValueExA(key, valueName, nullptr, &type, reinterpret_cast<unsigned char *>(buffer), &read) ==
        ERROR_SUCCESS)
      result = type == REG_SZ || type == REG_EXPAND_SZ ? static_cast<int>(size) : -1;
    // Asking for the default value doubles as the test that the key is there: a key without one reads as its own
    // path. A negative result for a sub-key without a backslash stays as it is.
    bool defaultValue = valueName == nullptr || *valueName == 0;
    if (defaultValue && !(result < 0 && NextSeparator(keyText) == nullptr)) {
      if (result == 0) result = static_cast<int>(std::strlen(keyText));
      if (bufferSize != 0 && buffer[0] == 0) CopyFitting(buffer, size, keyText);
    }
    RegCloseKey(key);
  }
  // The root goes too, so that a caller may hand over a key of its own.
  RegCloseKey(root);
  if (result > 0) return result;
  if (bufferSize != 0) CopyFitting(buffer, size, defaultText);
  return result;
}
