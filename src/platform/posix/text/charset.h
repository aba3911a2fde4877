// Conversions between Shift-JIS (CP932), the program's charset, and the charsets of Linux: UTF-8 for names on disk,
// the locale's charset for the console and the command line. Private to the Linux backend.
#pragma once

#include <string>

// A character that the target charset cannot hold becomes "?", as Windows shows such a name; bytes that are not valid
// in the source charset become "?" too. Nothing is ever dropped silently.
std::string Cp932ToUtf8(const std::string &text);
std::string Utf8ToCp932(const std::string &text);
// As Utf8ToCp932, for a file name as Windows' "A" calls show it: an unconvertible character outside the BMP reads
// "??", one "?" for each of its two UTF-16 units.
std::string Utf8NameToCp932(const std::string &text);

// The locale's charset, as chosen at start-up. In the C locale, and where the locale is Shift-JIS itself, these pass
// bytes through unchanged.
std::string Cp932ToLocale(const std::string &text);
std::string LocaleToCp932(const std::string &text);
void ChooseLocaleCharset(void);
// From a charset named as nl_langinfo(CODESET) names it (the C locale's ASCII and Shift-JIS itself pass unchanged).
std::string CharsetToCp932(const std::string &text, const char *charset);
