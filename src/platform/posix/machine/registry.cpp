// The registry of the Linux backend: the file that holds it found and read on first use, the open keys, and the
// four calls by their Windows names.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/posix/files/handles.h"
#include "platform/posix/machine/registry_file.h"
#include "platform/posix/text/path_names.h"
#include "platform/winapi.h"

namespace {

// ---- The file ----

std::string Variable(const char *name) {
  const char *value = std::getenv(name);
  return value != nullptr ? value : "";
}

// KELMARO_REGISTRY first; else the user.reg of the Wine prefix, WINEPREFIX or ~/.wine (a prefix that WINEPREFIX
// names is the only one looked at, as Wine itself looks at no other). An empty variable counts as unset.
std::string SourcePath() {
  std::string named = Variable("KELMARO_REGISTRY");
  if (!named.empty()) return named;
  std::string prefix = Variable("WINEPREFIX");
  if (prefix.empty()) {
    std::string home = Variable("HOME");
    if (home.empty()) return "";
    prefix = home + "/.wine";
  }
  return prefix + "/user.reg";
}

// The bytes of a regular file of at most kRegistryFileLimit bytes; empty for anything else. Opened without waiting,
// so that a FIFO or a device by that name never holds the program up, and then refused for not being a file.
std::string ReadSource(const std::string &path) {
  if (path.empty()) return "";
  int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  if (fd < 0) return "";
  std::string bytes;
  struct stat facts;
  if (fstat(fd, &facts) == 0 && S_ISREG(facts.st_mode) && facts.st_size >= 0 &&
      static_cast<unsigned long long>(facts.st_size) <= kRegistryFileLimit) {
    bytes.resize(static_cast<size_t>(facts.st_size));
    size_t done = 0;
    while (done < bytes.size()) {
      ssize_t got = read(fd, &bytes[done], bytes.size() - done);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) {
        done = 0;  // a file that fails halfway is not read at all, rather than read in part
        break;
      }
      if (got == 0) break;  // it shrank since fstat
      done += static_cast<size_t>(got);
    }
    bytes.resize(done);
  }
  close(fd);
  return bytes;
}

struct Store {
  bool loaded = false;
  std::unique_ptr<RegistryKey> currentUser;
  RegistryKey empty;  // what the other predefined roots hold
};

Store &TheStore() {
  static Store store;
  return store;
}

const RegistryKey *CurrentUser() {
  Store &store = TheStore();
  if (!store.loaded) {
    store.currentUser = ParseRegistryFile(ReadSource(SourcePath()));
    store.loaded = true;
  }
  return store.currentUser.get();
}

// ---- Handles ----

const uintptr_t kFirstRoot = 0x80000000u;  // HKEY_CLASSES_ROOT
const uintptr_t kLastRoot = 0x80000003u;   // HKEY_USERS

bool IsPredefined(HKEY key) {
  uintptr_t value = reinterpret_cast<uintptr_t>(key);
  return value >= kFirstRoot && value <= kLastRoot;
}

// An open key is its root and the path of names below it, not a place in the tree: a handle opened before the
// registry is read anew finds its key again in what was read, or finds it gone, as a Windows handle finds a key that
// another program deleted.
struct OpenKey {
  HKEY root;
  std::vector<std::u16string> names;
};

std::map<HKEY, OpenKey> &OpenKeys() {
  static std::map<HKEY, OpenKey> keys;
  return keys;
}

// The key behind a handle. ERROR_INVALID_HANDLE for a handle that is neither open nor predefined, ERROR_KEY_DELETED
// for one whose key is no longer in the registry.
LSTATUS Resolve(HKEY handle, OpenKey *open, const RegistryKey **key) {
  if (IsPredefined(handle)) {
    open->root = handle;
    open->names.clear();
  } else {
    auto found = OpenKeys().find(handle);
    if (found == OpenKeys().end()) return ERROR_INVALID_HANDLE;
    *open = found->second;
  }
  const RegistryKey *at = open->root == HKEY_CURRENT_USER ? CurrentUser() : &TheStore().empty;
  for (const std::u16string &name : open->names) {
    at = at->SubKey(name);
    if (at == nullptr) return ERROR_KEY_DELETED;
  }
  *key = at;
  return ERROR_SUCCESS;
}

// A value's bytes as an "A" call gives them: the string types converted from UTF-16 to Shift-JIS whole, terminators
// and all, so that a string's size counts its terminator and a REG_MULTI_SZ keeps its list; other types as they are.
std::string ProgramData(const RegistryValue &value) {
  if (value.type != REG_SZ && value.type != REG_EXPAND_SZ && value.type != REG_MULTI_SZ) return value.data;
  std::u16string text;
  for (size_t i = 0; i + 1 < value.data.size(); i += 2)
    text.push_back(static_cast<char16_t>(static_cast<unsigned char>(value.data[i]) |
                                         static_cast<unsigned char>(value.data[i + 1]) << 8));
  return Utf16ToProgram(text);
}

// Tells a value's type and data as RegQueryValueExA and RegEnumValueA tell them, `data` untouched when it has no room.
LSTATUS GiveData(const std::string &bytes, DWORD valueType, DWORD *type, unsigned char *data, DWORD *size) {
  if (type != nullptr) *type = valueType;
  DWORD needed = static_cast<DWORD>(bytes.size());
  LSTATUS result = ERROR_SUCCESS;
  if (data != nullptr) {
    if (*size < needed)
      result = ERROR_MORE_DATA;
    else
      std::memcpy(data, bytes.data(), needed);
  }
  if (size != nullptr) *size = needed;
  return result;
}

}  // namespace

LSTATUS RegOpenKeyExA(HKEY key, const char *subKey, DWORD, REGSAM, PHKEY result) {
  if (result == nullptr) return ERROR_INVALID_PARAMETER;
  // Windows gives a predefined root itself back for an empty name.
  if (IsPredefined(key) && (subKey == nullptr || *subKey == 0)) {
    *result = key;
    return ERROR_SUCCESS;
  }
  OpenKey open;
  const RegistryKey *at;
  LSTATUS status = Resolve(key, &open, &at);
  if (status == ERROR_INVALID_HANDLE) return status;  // *result as it was, as Windows leaves it
  *result = nullptr;
  if (status != ERROR_SUCCESS) return status;
  std::u16string path = subKey != nullptr ? ProgramToUtf16(subKey) : std::u16string();
  // A name from the root of the registry is refused (ERROR_BAD_PATHNAME) below every key but HKEY_CLASSES_ROOT,
  // where Windows takes "\\x" for "x". Trailing backslashes are passed over, as Windows passes them over.
  if (key == HKEY_CLASSES_ROOT && !path.empty() && path[0] == u'\\') path.erase(0, 1);
  if (!path.empty() && path[0] == u'\\') return ERROR_BAD_PATHNAME;
  for (const std::u16string &name : SplitNonEmpty(path, u'\\')) {
    at = at->SubKey(name);
    if (at == nullptr) return ERROR_FILE_NOT_FOUND;
    open.names.push_back(FoldName(name));
  }
  HKEY handle = reinterpret_cast<HKEY>(NewHandleValue());
  OpenKeys()[handle] = open;
  *result = handle;
  return ERROR_SUCCESS;
}

LSTATUS RegQueryValueExA(HKEY key, const char *valueName, DWORD *reserved, DWORD *type, unsigned char *data,
                         DWORD *size) {
  if (reserved != nullptr || (data != nullptr && size == nullptr)) return ERROR_INVALID_PARAMETER;
  OpenKey open;
  const RegistryKey *at;
  LSTATUS status = Resolve(key, &open, &at);
  if (status != ERROR_SUCCESS) return status;
  const RegistryValue *value = at->Value(valueName != nullptr ? ProgramToUtf16(valueName) : std::u16string());
  if (value == nullptr) return ERROR_FILE_NOT_FOUND;
  return GiveData(ProgramData(*value), value->type, type, data, size);
}

LSTATUS RegEnumValueA(HKEY key, DWORD index, char *name, DWORD *nameSize, DWORD *reserved, DWORD *type,
                      unsigned char *data, DWORD *dataSize) {
  if (name == nullptr || nameSize == nullptr || reserved != nullptr || (data != nullptr && dataSize == nullptr))
    return ERROR_INVALID_PARAMETER;
  OpenKey open;
  const RegistryKey *at;
  LSTATUS status = Resolve(key, &open, &at);
  if (status != ERROR_SUCCESS) return status;
  if (index >= at->values.size()) return ERROR_NO_MORE_ITEMS;
  const RegistryValue &value = at->values[index];
  std::string text = Utf16ToProgram(value.name);
  std::string bytes = ProgramData(value);
  // A name without room leaves the name, its size and the data alone, and still tells the type and the data's size.
  if (text.size() >= *nameSize) {
    GiveData(bytes, value.type, type, nullptr, dataSize);
    return ERROR_MORE_DATA;
  }
  status = GiveData(bytes, value.type, type, data, dataSize);
  if (status != ERROR_SUCCESS) return status;
  std::memcpy(name, text.c_str(), text.size() + 1);
  *nameSize = static_cast<DWORD>(text.size());
  return ERROR_SUCCESS;
}

LSTATUS RegCloseKey(HKEY key) {
  if (IsPredefined(key)) return ERROR_SUCCESS;
  return OpenKeys().erase(key) > 0 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

void ReloadRegistry(void) {
  TheStore().loaded = false;
  TheStore().currentUser.reset();
}
