// Bytes of a text in hexadecimal ("95 5C 41"), for failure messages about Shift-JIS bytes and for output that must pass
// through a regular expression unchanged.
#pragma once

#include <string>

inline std::string Hex(const std::string &bytes) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string out;
  for (unsigned char c : bytes) {
    if (!out.empty()) out += ' ';
    out += kDigits[c >> 4];
    out += kDigits[c & 15];
  }
  return out;
}
