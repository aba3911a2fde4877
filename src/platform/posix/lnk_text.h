// Text conversions of the shortcut codec: a shortcut holds UTF-16 and ANSI text; the program holds Shift-JIS (CP932),
// which is also the ANSI code page that the backend reads ANSI text of a shortcut in, as a Japanese Windows would.
#pragma once

#include <string>

// UTF-8 and UTF-16. A malformed sequence, or an unpaired surrogate, becomes U+FFFD; nothing is dropped silently.
std::u16string Utf16FromUtf8(const std::string &text);
std::string Utf8FromUtf16(const std::u16string &text);

// CP932 and UTF-16. A character that CP932 cannot hold becomes "?", as Windows' conversion without best fit gives;
// bytes that are no CP932 character become U+003F too.
std::u16string Utf16FromCp932(const std::string &text);
std::string Cp932FromUtf16(const std::u16string &text);

// True when `text` converts to CP932 and back without loss.
bool Cp932Holds(const std::u16string &text);
// True when every unit is below 0x80.
bool IsAscii(const std::u16string &text);

// The longest prefix of the CP932 text `text` that has at most `maxBytes` bytes and does not end inside a
// double-byte character.
std::string Cp932Prefix(const std::string &text, size_t maxBytes);
