// Text conversions of the shortcut codec, over the backend's CP932 conversion (charset.h) and its UTF-8/UTF-16
// coder (path_names.h).
#include "platform/posix/lnk/lnk_text.h"

#include "platform/posix/text/charset.h"
#include "platform/posix/text/path_names.h"

namespace {

// Windows' code page 932 gives the single bytes that Shift-JIS leaves undefined characters of their own, so that
// every byte survives a round trip through UTF-16: 0x80 is U+0080, 0xA0 U+F8F0, 0xFD to 0xFF U+F8F1 to U+F8F3.
// iconv knows the rest of the code page (user-defined characters included) but not these.
char16_t SingleByteExtra(unsigned char c) {
  switch (c) {
    case 0x80:
      return 0x0080;
    case 0xA0:
      return 0xF8F0;
    case 0xFD:
    case 0xFE:
    case 0xFF:
      return static_cast<char16_t>(0xF8F1 + (c - 0xFD));
    default:
      return 0;
  }
}

}  // namespace

std::u16string Utf16FromCp932(const std::string &text) {
  std::u16string out;
  size_t run = 0;  // start of the bytes not yet converted
  size_t i = 0;
  while (i < text.size()) {
    unsigned char c = static_cast<unsigned char>(text[i]);
    bool lead = (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC);
    char16_t extra = lead ? 0 : SingleByteExtra(c);
    if (extra == 0) {
      i += lead && i + 1 < text.size() ? 2 : 1;
      continue;
    }
    out += Utf8ToUtf16(Cp932ToUtf8(text.substr(run, i - run)));
    out.push_back(extra);
    run = ++i;
  }
  out += Utf8ToUtf16(Cp932ToUtf8(text.substr(run)));
  return out;
}

std::string Cp932FromUtf16(const std::u16string &text) {
  std::string out;
  size_t run = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    char16_t c = text[i];
    int byte = c == 0x0080 ? 0x80 : c == 0xF8F0 ? 0xA0 : (c >= 0xF8F1 && c <= 0xF8F3) ? 0xFD + (c - 0xF8F1) : -1;
    if (byte < 0) continue;
    out += Utf8ToCp932(Utf16ToUtf8(text.substr(run, i - run)));
    out.push_back(static_cast<char>(byte));
    run = i + 1;
  }
  out += Utf8ToCp932(Utf16ToUtf8(text.substr(run)));
  return out;
}

bool Cp932Holds(const std::u16string &text) {
  if (IsAscii(text)) return true;
  return Utf16FromCp932(Cp932FromUtf16(text)) == text;
}

bool IsAscii(const std::u16string &text) {
  for (char16_t c : text)
    if (c >= 0x80) return false;
  return true;
}

std::string Cp932Prefix(const std::string &text, size_t maxBytes) {
  size_t end = 0;
  while (end < text.size()) {
    unsigned char c = static_cast<unsigned char>(text[end]);
    size_t length = ((c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC)) && end + 1 < text.size() ? 2 : 1;
    if (end + length > maxBytes) break;
    end += length;
  }
  return text.substr(0, end);
}
