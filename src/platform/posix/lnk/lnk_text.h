// Text conversions of the shortcut codec: a shortcut holds UTF-16 and ANSI text; the program holds Shift-JIS (CP932),
// which is also the ANSI code page that the backend reads ANSI text of a shortcut in, as a Japanese Windows would.
#pragma once

#include <string>

// CP932 and UTF-16 as Windows converts them: user-defined characters are the private use area U+E000 to U+E757,
// and the single bytes 0x80, 0xA0 and 0xFD to 0xFF are U+0080, U+F8F0 and U+F8F1 to U+F8F3, so that every byte of a
// name survives the round trip. A character that CP932 cannot hold becomes "?" (Windows without best fit), and so
// does a double-byte code that CP932 leaves unassigned.
std::u16string Utf16FromCp932(const std::string &text);
std::string Cp932FromUtf16(const std::u16string &text);

// True when `text` converts to CP932 and back without loss.
bool Cp932Holds(const std::u16string &text);
// True when every unit is below 0x80.
bool IsAscii(const std::u16string &text);

// The longest prefix of the CP932 text `text` that has at most `maxBytes` bytes and does not end inside a
// double-byte character.
std::string Cp932Prefix(const std::string &text, size_t maxBytes);
