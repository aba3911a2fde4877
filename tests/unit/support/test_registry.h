// Values put into the registry that the program reads, for tests on both builds: through the registry calls themselves
// on Windows (and Wine), as a registry file on Linux, so that the backend's own reader is what the test goes through.
#pragma once

#include <string>
#include <vector>

#include "platform/winapi.h"

// Keys of the test's own under HKEY_CURRENT_USER, removed again at the end. On Windows (and Wine) they are written
// through RegCreateKeyExA and RegSetValueExA, and the destructor removes with RegDeleteTreeA the topmost key that each
// call created (never a key that was there before). On Linux every change rewrites one registry file, a version 5.00
// export in UTF-16, that KELMARO_REGISTRY names, and reloads the registry; the destructor deletes the file, puts
// KELMARO_REGISTRY back as it was and reloads again. A failed write fails the test.
class TestRegistry {
 public:
  TestRegistry();   // nothing written yet
  ~TestRegistry();  // every key it wrote removed (Windows) or its file deleted (Linux)
  TestRegistry(const TestRegistry &) = delete;
  TestRegistry &operator=(const TestRegistry &) = delete;

  // A key path of its own below HKEY_CURRENT_USER for each call, "Software\KelmaroTest-<process>-<time>", that no other
  // test run, also one at the same time under the same Wine prefix, uses. Tests put their keys below it.
  static std::string UniqueKey();

  // `subKey` is a full path below HKEY_CURRENT_USER ("Software\\Orvel\\Tarnbrook\\UseDefine"); an empty `name` is the
  // key's default value. Texts are Shift-JIS. A string is stored with one terminator after its bytes, as
  // RegSetValueExA stores `value` with the size strlen + 1; a REG_MULTI_SZ list is given as "one\0two\0"s.
  void SetString(const std::string &subKey, const std::string &name, const std::string &value, DWORD type = REG_SZ);
  void SetDword(const std::string &subKey, const std::string &name, DWORD value);
  void SetBinary(const std::string &subKey, const std::string &name, const std::string &bytes);
  void MakeKey(const std::string &subKey);  // a key with no values

 private:
  void Set(const std::string &subKey, const std::string &name, DWORD type, const std::string &bytes);
#ifdef _WIN32
  std::vector<std::string> created_;  // the topmost key that each call made, in order
#else
  struct Value {
    std::string name;
    DWORD type;
    std::string bytes;  // as given to RegSetValueExA: a string with its terminator
  };
  struct Key {
    std::string path;
    std::vector<Value> values;  // in the order first set
  };
  Key &KeyFor(const std::string &subKey);  // found without case, or added at the end
  void Write();
  std::vector<Key> keys_;  // in the order first made
  std::string file_;       // the registry file, once written
  bool hadVariable_ = false;
  std::string savedVariable_;  // KELMARO_REGISTRY as it was
#endif
};
