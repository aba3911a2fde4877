// The registry calls as the program makes them, on the Linux backend (over a registry file) and under Wine (its real
// registry): the answers that both must give alike. The file formats and the backend's own limits:
// posix/registry_test.cpp.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/winapi.h"
#include "support/hex_text.h"
#include "support/scratch_folder.h"
#include "support/test_registry.h"

using namespace std::string_literals;

namespace {

class Registry : public ::testing::Test {
 protected:
  // A key of the test's own: no other run, also one under the same Wine prefix at the same time, has it.
  std::string Key(const std::string &below = "") const { return below.empty() ? root_ : root_ + "\\" + below; }

  TestRegistry registry_;

 private:
  const std::string root_ = TestRegistry::UniqueKey();
};

// Opens a key below HKEY_CURRENT_USER for reading; null where it cannot.
HKEY Open(const std::string &path) {
  HKEY key = nullptr;
  LSTATUS status = RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key);
  return status == ERROR_SUCCESS ? key : nullptr;
}

TEST_F(Registry, MissingKeysAndValues) {
  registry_.SetString(Key("Present"), "value", "1");
  HKEY key = reinterpret_cast<HKEY>(0x4321);
  EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, Key("Absent").c_str(), 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key, nullptr);
  EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, Key("Present\\Absent").c_str(), 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  // A path from the registry's root is refused below HKEY_CURRENT_USER.
  EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, ("\\" + Key("Present")).c_str(), 0, KEY_READ, &key), ERROR_BAD_PATHNAME);

  key = Open(Key("Present"));
  ASSERT_NE(key, nullptr);
  DWORD type = 0xDEADBEEF, size = 0xDEADBEEF;
  EXPECT_EQ(RegQueryValueExA(key, "absent", nullptr, &type, nullptr, &size), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegQueryValueExA(key, nullptr, nullptr, &type, nullptr, &size), ERROR_FILE_NOT_FOUND);  // no default
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
}

// Each type with its size: asked for with no buffer (success, the size), read into a buffer one byte short
// (ERROR_MORE_DATA, the size needed) and into one of the size told. Strings count their terminator and come in
// Shift-JIS.
TEST_F(Registry, SizesAndDataOfEachType) {
  struct Row {
    const char *name;
    DWORD type;
    std::string data;  // as read back
  } rows[] = {
      {"text", REG_SZ, "abc\0"s},
      {"japanese", REG_SZ, "日本語の表\0"s},
      {"empty", REG_SZ, "\0"s},
      {"expand", REG_EXPAND_SZ, "%TEMP%\\x\0"s},
      {"multi", REG_MULTI_SZ, "one\0two\0\0"s},
      {"dword", REG_DWORD, "\x78\x56\x34\x12"s},
      {"binary", REG_BINARY, "\x01\x00\xFF"s},
  };
  for (const Row &row : rows) {
    if (row.type == REG_DWORD)
      registry_.SetDword(Key(), row.name, 0x12345678);
    else if (row.type == REG_BINARY)
      registry_.SetBinary(Key(), row.name, row.data);
    else
      registry_.SetString(Key(), row.name, row.data.substr(0, row.data.size() - 1), row.type);
  }
  HKEY key = Open(Key());
  ASSERT_NE(key, nullptr);
  for (const Row &row : rows) {
    const DWORD needed = static_cast<DWORD>(row.data.size());
    DWORD type = 0xDEADBEEF, size = 0xDEADBEEF;
    EXPECT_EQ(RegQueryValueExA(key, row.name, nullptr, &type, nullptr, &size), ERROR_SUCCESS) << row.name;
    EXPECT_EQ(type, row.type) << row.name;
    EXPECT_EQ(size, needed) << row.name;

    unsigned char buffer[32];
    size = needed - 1;
    EXPECT_EQ(RegQueryValueExA(key, row.name, nullptr, nullptr, buffer, &size), ERROR_MORE_DATA) << row.name;
    EXPECT_EQ(size, needed) << row.name;

    std::memset(buffer, 0xCC, sizeof buffer);
    size = needed;
    EXPECT_EQ(RegQueryValueExA(key, row.name, nullptr, &type, buffer, &size), ERROR_SUCCESS) << row.name;
    EXPECT_EQ(size, needed) << row.name;
    EXPECT_EQ(Hex(std::string(buffer, buffer + size)), Hex(row.data)) << row.name;
    EXPECT_EQ(buffer[size], 0xCC) << row.name;
  }
  RegCloseKey(key);
}

TEST_F(Registry, TheDefaultValueHasNoName) {
  registry_.SetString(Key(), "", "default");
  registry_.SetString(Key(), "named", "other");
  HKEY key = Open(Key());
  ASSERT_NE(key, nullptr);
  for (const char *name : {static_cast<const char *>(nullptr), ""}) {
    char data[16] = "";
    DWORD size = sizeof data;
    EXPECT_EQ(RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<unsigned char *>(data), &size),
              ERROR_SUCCESS);
    EXPECT_STREQ(data, "default");
  }
  RegCloseKey(key);
}

TEST_F(Registry, NamesMatchWithoutCase) {
  registry_.SetString(Key("Mixed Case\\Ｆｕｌｌ"), "ValueName", "found");
  struct Row {
    const char *key;
    const char *value;
    LSTATUS status;
  } rows[] = {
      {"MIXED CASE\\ＦＵＬＬ", "VALUENAME", ERROR_SUCCESS},
      {"mixed case\\ｆｕｌｌ", "valuename", ERROR_SUCCESS},
      {"Mixed Case\\Full", "ValueName", ERROR_FILE_NOT_FOUND},  // full-width letters are other letters
      {"Mixed Case\\Ｆｕｌｌ", "Value Name", ERROR_FILE_NOT_FOUND},
  };
  for (const Row &row : rows) {
    HKEY key = Open(Key(row.key));
    LSTATUS status =
        key == nullptr ? ERROR_FILE_NOT_FOUND : RegQueryValueExA(key, row.value, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(status, row.status) << row.key << " " << row.value;
    if (key != nullptr) RegCloseKey(key);
  }
}

// A key below an open key, by a path of more than one name; a backslash at the end changes nothing.
TEST_F(Registry, KeysBelowAnOpenKey) {
  registry_.SetString(Key("Child\\Grand"), "deep", "1");
  HKEY top = Open(Key());
  ASSERT_NE(top, nullptr);
  for (const char *path : {"Child\\Grand", "child\\GRAND\\"}) {
    HKEY grand = nullptr;
    EXPECT_EQ(RegOpenKeyExA(top, path, 0, KEY_READ, &grand), ERROR_SUCCESS) << path;
    EXPECT_EQ(RegQueryValueExA(grand, "deep", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS) << path;
    EXPECT_EQ(RegCloseKey(grand), ERROR_SUCCESS) << path;
  }
  // An empty name: the same key as a new handle, which stays usable after the first is closed.
  HKEY again = nullptr;
  ASSERT_EQ(RegOpenKeyExA(top, "", 0, KEY_READ, &again), ERROR_SUCCESS);
  EXPECT_NE(again, top);
  EXPECT_EQ(RegCloseKey(top), ERROR_SUCCESS);
  HKEY child = nullptr;
  EXPECT_EQ(RegOpenKeyExA(again, "Child", 0, KEY_READ, &child), ERROR_SUCCESS);
  RegCloseKey(child);
  RegCloseKey(again);
}

// A predefined root opened by an empty name is the root itself; closing it is accepted and it stays open.
TEST_F(Registry, PredefinedRoots) {
  registry_.SetString(Key(), "value", "1");
  HKEY key = nullptr;
  EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "", 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_EQ(key, HKEY_CURRENT_USER);
  EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
  key = Open(Key());
  EXPECT_NE(key, nullptr);
  RegCloseKey(key);
}

// The values of a key in their order, then ERROR_NO_MORE_ITEMS. Windows gives them in the order they were made, and
// so does the Linux backend (the file's order); Wine keeps them sorted by name.
TEST_F(Registry, ValuesAreEnumeratedInOrder) {
  const char *const written[] = {"zeta", "Alpha", "", "mid"};
  for (const char *name : written) registry_.SetString(Key(), name, std::string("is ") + name);
  HKEY key = Open(Key());
  ASSERT_NE(key, nullptr);
  std::vector<std::string> names, data;
  DWORD index = 0;
  for (;; ++index) {
    char name[32], value[32];
    DWORD nameSize = sizeof name, valueSize = sizeof value, type = 0;
    LSTATUS status = RegEnumValueA(key, index, name, &nameSize, nullptr, &type,
                                   reinterpret_cast<unsigned char *>(value), &valueSize);
    if (status != ERROR_SUCCESS) {
      EXPECT_EQ(status, ERROR_NO_MORE_ITEMS);
      break;
    }
    EXPECT_EQ(nameSize, std::strlen(name));
    EXPECT_EQ(type, REG_SZ);
    names.push_back(name);
    data.push_back(value);
  }
  EXPECT_EQ(index, 4u);
  EXPECT_EQ(names, WindowsOrWine(std::vector<std::string>{"zeta", "Alpha", "", "mid"},
                                 std::vector<std::string>{"", "Alpha", "mid", "zeta"}));
  for (size_t i = 0; i < names.size() && i < data.size(); ++i) EXPECT_EQ(data[i], "is " + names[i]);
  // Further on it stays at the end.
  char name[32];
  DWORD nameSize = sizeof name;
  EXPECT_EQ(RegEnumValueA(key, 100, name, &nameSize, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);
  // A name that does not fit with its terminator: ERROR_MORE_DATA, and the data's size is still told.
  nameSize = 2;
  DWORD dataSize = 0;
  DWORD zeta = WindowsOrWine<DWORD>(0, 3);
  EXPECT_EQ(RegEnumValueA(key, zeta, name, &nameSize, nullptr, nullptr, nullptr, &dataSize), ERROR_MORE_DATA);
  EXPECT_EQ(dataSize, 8u);  // "is zeta" and its terminator
  RegCloseKey(key);
}

// A key made without values is there, and has none.
TEST_F(Registry, AKeyWithoutValues) {
  registry_.MakeKey(Key("Empty"));
  HKEY key = Open(Key("Empty"));
  ASSERT_NE(key, nullptr);
  char name[8];
  DWORD nameSize = sizeof name;
  EXPECT_EQ(RegEnumValueA(key, 0, name, &nameSize, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);
  RegCloseKey(key);
}

// What a TestRegistry wrote is gone after it; what was there before it stays.
TEST_F(Registry, TestKeysAreRemovedAtTheEnd) {
  registry_.SetString(Key("Before"), "value", "1");
  {
    TestRegistry inner;
    inner.SetString(Key("Inner\\Deep"), "value", "2");
    inner.SetDword(Key("Before"), "added", 3);
    HKEY key = Open(Key("Inner\\Deep"));
    EXPECT_NE(key, nullptr);
    if (key != nullptr) RegCloseKey(key);
  }
  EXPECT_EQ(Open(Key("Inner")), nullptr);
  HKEY key = Open(Key("Before"));
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(RegQueryValueExA(key, "value", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
  RegCloseKey(key);
}

}  // namespace
