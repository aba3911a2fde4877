// Reading a registry file into a tree of keys: the bytes of a registry export ("REGEDIT4", or version 5.00 in UTF-16)
// or of a Wine prefix's user.reg in, the keys of HKEY_CURRENT_USER out. No file access here, so that a file's bytes
// can be tried from memory. Private to the Linux backend.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct RegistryValue {
  std::u16string name;    // as the file spells it; empty for the key's default value
  std::u16string folded;  // the name in upper case, as Windows compares value names
  uint32_t type = 0;
  // The bytes as Windows keeps them: the string types (REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ) in UTF-16LE with the
  // terminators they carry, every other type as the file gave its bytes.
  std::string data;
};

struct RegistryKey {
  // Subkeys by their name in upper case, as Windows compares key names.
  std::map<std::u16string, std::unique_ptr<RegistryKey>> subKeys;
  std::vector<RegistryValue> values;            // in the order the file first gave them
  std::map<std::u16string, size_t> valueIndex;  // a value's folded name to its place in `values`

  // The subkey or value of that name (compared without case), or null.
  const RegistryKey *SubKey(const std::u16string &name) const;
  const RegistryValue *Value(const std::u16string &name) const;
};

// The largest registry file that is read: a larger one is not a settings file, and is read as none.
const size_t kRegistryFileLimit = 64u << 20;
// The deepest key kept, in names below HKEY_CURRENT_USER; Windows allows 512 levels. A key line deeper than that is
// passed over with its values.
const size_t kRegistryDepthLimit = 512;

// The keys of HKEY_CURRENT_USER that a registry file holds. The charset is told by the bytes: a UTF-16LE byte order
// mark means UTF-16; otherwise text that is valid UTF-8 is UTF-8 (a file written by hand; a UTF-8 byte order mark is
// passed over), and anything else is the ANSI code page, CP932, as a Japanese regedit writes "REGEDIT4". The first
// line names the format: "REGEDIT4", "Windows Registry Editor Version 5.00" or "WINE REGISTRY Version 2". Bytes of any
// other kind give an empty key, and a line that cannot be read is passed over with nothing of it kept. Never fails.
std::unique_ptr<RegistryKey> ParseRegistryFile(const std::string &bytes);
