// Text conversions of the shortcut codec, over the backend's CP932 conversion (charset.h) and a UTF-8/UTF-16 coder.
#include "platform/posix/lnk_text.h"

#include "platform/posix/charset.h"

namespace {

const char16_t kReplacement = 0xFFFD;

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

void AppendUtf8(std::string *out, char32_t c) {
  if (c < 0x80) {
    out->push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out->push_back(static_cast<char>(0xC0 | (c >> 6)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out->push_back(static_cast<char>(0xE0 | (c >> 12)));
    out->push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out->push_back(static_cast<char>(0xF0 | (c >> 18)));
    out->push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

void AppendUtf16(std::u16string *out, char32_t c) {
  if (c < 0x10000) {
    out->push_back(static_cast<char16_t>(c));
  } else {
    c -= 0x10000;
    out->push_back(static_cast<char16_t>(0xD800 | (c >> 10)));
    out->push_back(static_cast<char16_t>(0xDC00 | (c & 0x3FF)));
  }
}

}  // namespace

std::u16string Utf16FromUtf8(const std::string &text) {
  std::u16string out;
  size_t i = 0;
  while (i < text.size()) {
    unsigned char c = static_cast<unsigned char>(text[i]);
    size_t length = c < 0x80 ? 1 : (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : (c >> 3) == 30 ? 4 : 0;
    if (length == 0 || length > text.size() - i) {
      out.push_back(kReplacement);
      ++i;
      continue;
    }
    char32_t code = length == 1 ? c : c & (0x3F >> (length - 1));
    bool valid = true;
    for (size_t k = 1; k < length; ++k) {
      unsigned char next = static_cast<unsigned char>(text[i + k]);
      if ((next & 0xC0) != 0x80) {
        valid = false;
        break;
      }
      code = (code << 6) | (next & 0x3F);
    }
    static const char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (!valid || code < kSmallest[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
      out.push_back(kReplacement);
      ++i;
      continue;
    }
    AppendUtf16(&out, code);
    i += length;
  }
  return out;
}

std::string Utf8FromUtf16(const std::u16string &text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
      ++i;
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = kReplacement;
    }
    AppendUtf8(&out, c);
  }
  return out;
}

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
    out += Utf16FromUtf8(Cp932ToUtf8(text.substr(run, i - run)));
    out.push_back(extra);
    run = ++i;
  }
  out += Utf16FromUtf8(Cp932ToUtf8(text.substr(run)));
  return out;
}

std::string Cp932FromUtf16(const std::u16string &text) {
  std::string out;
  size_t run = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    char16_t c = text[i];
    int byte = c == 0x0080 ? 0x80 : c == 0xF8F0 ? 0xA0 : (c >= 0xF8F1 && c <= 0xF8F3) ? 0xFD + (c - 0xF8F1) : -1;
    if (byte < 0) continue;
    out += Utf8ToCp932(Utf8FromUtf16(text.substr(run, i - run)));
    out.push_back(static_cast<char>(byte));
    run = i + 1;
  }
  out += Utf8ToCp932(Utf8FromUtf16(text.substr(run)));
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
