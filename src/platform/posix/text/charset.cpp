// Charset conversion for the Linux backend, over the C library's iconv.
#include "platform/posix/text/charset.h"

#include <errno.h>
#include <iconv.h>
#include <langinfo.h>
#include <locale.h>
#include <strings.h>

#include <cstring>
#include <map>
#include <utility>

namespace {

// The locale's charset name, or empty when no conversion is to be done.
std::string &LocaleCharset() {
  static std::string name;
  return name;
}

// Length of the character that starts at `text[0]` in the given charset, so that an unconvertible one is skipped whole.
size_t CharacterLength(const unsigned char *text, size_t left, bool fromCp932, bool fromUtf8) {
  if (fromCp932) {
    unsigned char c = text[0];
    bool lead = (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC);
    return lead && left >= 2 ? 2 : 1;
  }
  if (fromUtf8) {
    size_t length = 1;
    while (length < left && length < 4 && (text[length] & 0xC0) == 0x80) ++length;
    return length;
  }
  return 1;
}

// One conversion descriptor per pair of charsets for the life of the process: a listing converts every name it
// returns, and opening a descriptor costs far more than a conversion.
struct DescriptorCache {
  std::map<std::pair<std::string, std::string>, iconv_t> open;
  ~DescriptorCache() {
    for (auto &entry : open) iconv_close(entry.second);
  }
};

iconv_t Descriptor(const char *from, const char *to) {
  static DescriptorCache cache;
  auto key = std::make_pair(std::string(from), std::string(to));
  auto found = cache.open.find(key);
  if (found != cache.open.end()) return found->second;
  iconv_t cd = iconv_open(to, from);
  if (cd != reinterpret_cast<iconv_t>(-1)) cache.open[key] = cd;
  return cd;
}

// `unitMarks`: an unconvertible character from UTF-8 gives one "?" for each UTF-16 unit it would take on Windows, so
// a character outside the BMP (four bytes of UTF-8) gives "??".
std::string Convert(const std::string &text, const char *from, const char *to, bool unitMarks = false) {
  iconv_t cd = Descriptor(from, to);
  if (cd == reinterpret_cast<iconv_t>(-1)) return text;
  iconv(cd, nullptr, nullptr, nullptr, nullptr);
  bool fromCp932 = strcasecmp(from, "CP932") == 0;
  bool fromUtf8 = strcasecmp(from, "UTF-8") == 0;
  std::string out;
  out.reserve(text.size() * 2 + 8);
  char *in = const_cast<char *>(text.data());
  size_t inLeft = text.size();
  char buffer[512];
  while (inLeft > 0) {
    char *outPtr = buffer;
    size_t outLeft = sizeof buffer;
    size_t result = iconv(cd, &in, &inLeft, &outPtr, &outLeft);
    out.append(buffer, static_cast<size_t>(outPtr - buffer));
    if (result == static_cast<size_t>(-1)) {
      if (errno == E2BIG) continue;
      // EILSEQ or EINVAL: one character that cannot be read or written here; it shows as "?".
      size_t skip = CharacterLength(reinterpret_cast<unsigned char *>(in), inLeft, fromCp932, fromUtf8);
      in += skip;
      inLeft -= skip;
      out.push_back('?');
      if (unitMarks && fromUtf8 && skip == 4) out.push_back('?');
      iconv(cd, nullptr, nullptr, nullptr, nullptr);
    }
  }
  return out;
}

// Bytes 0x00 to 0x7F are the same characters in CP932 and in UTF-8 (0x5C is the backslash in both, as the C library's
// CP932 reads it), so a text of them alone needs no conversion. Nearly every path is such a text, and a run converts
// each path many times over.
bool IsAscii(const std::string &text) {
  for (char c : text)
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  return true;
}

// Charsets whose texts the program takes as they are: no charset named, ASCII (the C locale), or Shift-JIS itself.
bool PassesUnchanged(const char *charset) {
  if (charset == nullptr || *charset == 0) return true;
  static const char *const kPassThrough[] = {"ANSI_X3.4-1968", "ASCII", "US-ASCII",    "SHIFT_JIS",
                                             "SJIS",           "CP932", "WINDOWS-31J", "MS_KANJI"};
  for (const char *name : kPassThrough)
    if (strcasecmp(charset, name) == 0) return true;
  return false;
}

}  // namespace

std::string Cp932ToUtf8(const std::string &text) { return IsAscii(text) ? text : Convert(text, "CP932", "UTF-8"); }
std::string Utf8ToCp932(const std::string &text) { return IsAscii(text) ? text : Convert(text, "UTF-8", "CP932"); }
std::string Utf8NameToCp932(const std::string &text) {
  return IsAscii(text) ? text : Convert(text, "UTF-8", "CP932", true);
}

std::string Cp932ToLocale(const std::string &text) {
  return LocaleCharset().empty() ? text : Convert(text, "CP932", LocaleCharset().c_str());
}

std::string LocaleToCp932(const std::string &text) {
  return LocaleCharset().empty() ? text : Convert(text, LocaleCharset().c_str(), "CP932");
}

void ChooseLocaleCharset(void) {
  setlocale(LC_ALL, "");
  const char *codeset = nl_langinfo(CODESET);
  LocaleCharset().clear();
  // The C locale reports ASCII: bytes pass unchanged, which is what a script that compares Shift-JIS output wants.
  if (PassesUnchanged(codeset)) return;
  LocaleCharset() = codeset;
  // Numbers and sorting stay those of the C locale inside the program.
  setlocale(LC_NUMERIC, "C");
  setlocale(LC_COLLATE, "C");
  setlocale(LC_CTYPE, "C");
}

std::string CharsetToCp932(const std::string &text, const char *charset) {
  return PassesUnchanged(charset) || IsAscii(text) ? text : Convert(text, charset, "CP932");
}
