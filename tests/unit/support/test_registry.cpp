// The registry values that tests put in: written through the registry on Windows, as a registry file on Linux.
#include "support/test_registry.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/posix/text/path_names.h"
#endif

std::string TestRegistry::UniqueKey() {
  static int counter = 0;
#ifdef _WIN32
  unsigned long process = static_cast<unsigned long>(_getpid());
#else
  unsigned long process = static_cast<unsigned long>(getpid());
#endif
  // Wine gives every run the same process id: the time, to the nanosecond where the clock has it, keeps runs apart.
  long long now = static_cast<long long>(std::chrono::system_clock::now().time_since_epoch().count());
  return "Software\\KelmaroTest-" + std::to_string(process) + "-" + std::to_string(now) + "-" +
         std::to_string(++counter);
}

void TestRegistry::SetString(const std::string &subKey, const std::string &name, const std::string &value, DWORD type) {
  Set(subKey, name, type, value + '\0');
}

void TestRegistry::SetDword(const std::string &subKey, const std::string &name, DWORD value) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<char>(value >> shift));
  Set(subKey, name, REG_DWORD, bytes);
}

void TestRegistry::SetBinary(const std::string &subKey, const std::string &name, const std::string &bytes) {
  Set(subKey, name, REG_BINARY, bytes);
}

#ifdef _WIN32

namespace {

// The byte after which a Shift-JIS text goes on, so that a trail byte 0x5C is never taken for a backslash.
size_t NextCharacter(const std::string &text, size_t at) {
  unsigned char c = static_cast<unsigned char>(text[at]);
  bool lead = (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC);
  return at + (lead && at + 1 < text.size() ? 2 : 1);
}

}  // namespace

TestRegistry::TestRegistry() {}

TestRegistry::~TestRegistry() {
  for (auto it = created_.rbegin(); it != created_.rend(); ++it) {
    LSTATUS status = RegDeleteTreeA(HKEY_CURRENT_USER, it->c_str());
    EXPECT_TRUE(status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND) << *it << " status " << status;
  }
}

void TestRegistry::MakeKey(const std::string &subKey) {
  // The first key along the path that is not there yet is the top of what this call makes.
  for (size_t at = 0;; at = NextCharacter(subKey, at)) {
    if (at < subKey.size() && subKey[at] != '\\') continue;
    std::string prefix = subKey.substr(0, at);
    HKEY key;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, prefix.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
      created_.push_back(prefix);
      break;
    }
    RegCloseKey(key);
    if (at >= subKey.size()) break;
  }
  HKEY key;
  LSTATUS status = RegCreateKeyExA(HKEY_CURRENT_USER, subKey.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                   KEY_SET_VALUE, nullptr, &key, nullptr);
  ASSERT_EQ(status, ERROR_SUCCESS) << subKey;
  RegCloseKey(key);
}

void TestRegistry::Set(const std::string &subKey, const std::string &name, DWORD type, const std::string &bytes) {
  MakeKey(subKey);
  HKEY key;
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, subKey.c_str(), 0, KEY_SET_VALUE, &key), ERROR_SUCCESS) << subKey;
  LSTATUS status = RegSetValueExA(key, name.empty() ? nullptr : name.c_str(), 0, type,
                                  reinterpret_cast<const BYTE *>(bytes.data()), static_cast<DWORD>(bytes.size()));
  EXPECT_EQ(status, ERROR_SUCCESS) << subKey << " " << name;
  RegCloseKey(key);
}

#else  // Linux: a registry file

namespace {

const char *const kVariable = "KELMARO_REGISTRY";

std::string LittleEndian(const std::u16string &text) {
  std::string bytes;
  for (char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  return bytes;
}

// A name or a string between quotes, escaped as regedit escapes them.
std::u16string Quoted(const std::u16string &text) {
  std::u16string out = u"\"";
  for (char16_t c : text) {
    if (c == u'\\' || c == u'"') out.push_back(u'\\');
    out.push_back(c);
  }
  return out + u"\"";
}

// Bytes as regedit writes them: "hex(N):aa,bb,...", the line broken after a comma with a backslash, and the next line
// indented by two blanks.
std::u16string HexList(DWORD type, const std::string &bytes, size_t used) {
  char head[32];
  if (type == REG_BINARY)
    std::snprintf(head, sizeof head, "hex:");
  else
    std::snprintf(head, sizeof head, "hex(%x):", static_cast<unsigned>(type));
  std::u16string out(head, head + std::strlen(head));
  used += out.size();
  for (size_t i = 0; i < bytes.size(); ++i) {
    char byte[4];
    std::snprintf(byte, sizeof byte, "%02x", static_cast<unsigned char>(bytes[i]));
    out += std::u16string(byte, byte + 2);
    used += 2;
    if (i + 1 < bytes.size()) {
      out.push_back(u',');
      if (++used > 76) {
        out += u"\\\r\n  ";
        used = 2;
      }
    }
  }
  return out;
}

bool IsString(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

}  // namespace

TestRegistry::TestRegistry() {
  const char *value = std::getenv(kVariable);
  hadVariable_ = value != nullptr;
  if (value != nullptr) savedVariable_ = value;
}

TestRegistry::~TestRegistry() {
  if (!file_.empty()) std::remove(file_.c_str());
  if (hadVariable_)
    setenv(kVariable, savedVariable_.c_str(), 1);
  else
    unsetenv(kVariable);
  ReloadRegistry();
}

TestRegistry::Key &TestRegistry::KeyFor(const std::string &subKey) {
  for (Key &key : keys_)
    if (lstrcmpiA(key.path.c_str(), subKey.c_str()) == 0) return key;
  keys_.push_back(Key{subKey, {}});
  return keys_.back();
}

void TestRegistry::MakeKey(const std::string &subKey) {
  KeyFor(subKey);
  Write();
}

// A value set again keeps its place, as RegSetValueExA keeps it.
void TestRegistry::Set(const std::string &subKey, const std::string &name, DWORD type, const std::string &bytes) {
  Key &key = KeyFor(subKey);
  bool replaced = false;
  for (Value &value : key.values)
    if (lstrcmpiA(value.name.c_str(), name.c_str()) == 0) {
      value.type = type;
      value.bytes = bytes;
      replaced = true;
    }
  if (!replaced) key.values.push_back(Value{name, type, bytes});
  Write();
}

void TestRegistry::Write() {
  static int counter = 0;
  if (file_.empty())
    file_ = (std::filesystem::temp_directory_path() /
             ("kelmaro-registry-" + std::to_string(getpid()) + "-" + std::to_string(++counter) + ".reg"))
                .string();
  std::u16string text = u"Windows Registry Editor Version 5.00\r\n";
  for (const Key &key : keys_) {
    text += u"\r\n[HKEY_CURRENT_USER\\" + ProgramToUtf16(key.path) + u"]\r\n";
    for (const Value &value : key.values) {
      std::u16string line = value.name.empty() ? u"@=" : Quoted(ProgramToUtf16(value.name)) + u"=";
      // A string comes back from the program's Shift-JIS in UTF-16, as RegSetValueExA stores it.
      std::u16string wide = IsString(value.type) ? ProgramToUtf16(value.bytes) : std::u16string();
      bool plain = value.type == REG_SZ && !wide.empty() && wide.back() == 0 &&
                   wide.find_first_of(u"\r\n", 0) == std::u16string::npos && wide.find(u'\0') == wide.size() - 1;
      if (plain) {
        line += Quoted(wide.substr(0, wide.size() - 1));
      } else if (value.type == REG_DWORD && value.bytes.size() == 4) {
        char number[16];
        DWORD dword = 0;
        for (int i = 3; i >= 0; --i) dword = dword << 8 | static_cast<unsigned char>(value.bytes[i]);
        std::snprintf(number, sizeof number, "dword:%08x", static_cast<unsigned>(dword));
        line += std::u16string(number, number + std::strlen(number));
      } else {
        line += HexList(value.type, IsString(value.type) ? LittleEndian(wide) : value.bytes, line.size());
      }
      text += line + u"\r\n";
    }
  }
  std::ofstream out(file_, std::ios::binary | std::ios::trunc);
  out << "\xFF\xFE" << LittleEndian(text);
  out.close();
  ASSERT_TRUE(out) << "cannot write " << file_;
  setenv(kVariable, file_.c_str(), 1);
  ReloadRegistry();
}

#endif
