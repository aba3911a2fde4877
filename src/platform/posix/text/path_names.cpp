// File names in UTF-16 for the Linux backend: conversion, case folding, DOS wildcards and the NTFS listing order.
#include "platform/posix/text/path_names.h"

#include <locale.h>
#include <wctype.h>

#include <algorithm>
#include <vector>

#include "platform/posix/text/charset.h"

namespace {

const char16_t kReplacement = 0xFFFD;

bool IsSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

// The upper case of the C.UTF-8 locale, which is the plain Unicode one; where that locale is missing, only ASCII
// letters fold.
locale_t UnicodeLocale() {
  static locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
  return locale;
}

}  // namespace

std::u16string Utf8ToUtf16(const std::string &text) {
  std::u16string out;
  out.reserve(text.size());
  size_t i = 0;
  while (i < text.size()) {
    unsigned char lead = static_cast<unsigned char>(text[i]);
    char32_t c;
    size_t length;
    if (lead < 0x80) {
      c = lead;
      length = 1;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
      c = lead & 0x1F;
      length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      c = lead & 0x0F;
      length = 3;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      c = lead & 0x07;
      length = 4;
    } else {
      out.push_back(kReplacement);
      ++i;
      continue;
    }
    bool valid = i + length <= text.size();
    for (size_t k = 1; valid && k < length; ++k) {
      unsigned char next = static_cast<unsigned char>(text[i + k]);
      if ((next & 0xC0) != 0x80) valid = false;
      c = (c << 6) | (next & 0x3F);
    }
    // Overlong forms, surrogates and values past U+10FFFF are not UTF-8.
    static const char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (!valid || c < kSmallest[length] || IsSurrogate(c) || c > 0x10FFFF) {
      out.push_back(kReplacement);
      ++i;
      continue;
    }
    if (c >= 0x10000) {
      c -= 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(c));
    }
    i += length;
  }
  return out;
}

std::string Utf16ToUtf8(const std::u16string &text) {
  std::string out;
  out.reserve(text.size() * 3);
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
      ++i;
    } else if (IsSurrogate(c)) {
      c = kReplacement;
    }
    if (c < 0x80) {
      out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (c >> 6)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (c >> 12)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (c >> 18)));
      out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
  }
  return out;
}

std::u16string ProgramToUtf16(const std::string &text) { return Utf8ToUtf16(Cp932ToUtf8(text)); }
std::string Utf16ToProgram(const std::u16string &text) { return Utf8NameToCp932(Utf16ToUtf8(text)); }

std::string DiskNameToProgram(const std::string &diskName) {
  std::string windowsName = diskName;
  for (char &c : windowsName) {
    unsigned char byte = static_cast<unsigned char>(c);
    // All of these are ASCII, so none of them can be part of a longer UTF-8 character.
    if (byte < 0x20 || c == '\\' || c == ':' || c == '*' || c == '?' || c == '"' || c == '<' || c == '>' || c == '|')
      c = '?';
  }
  return Utf8NameToCp932(windowsName);
}

char16_t FoldUnit(char16_t unit) {
  if (unit < 0x80) return (unit >= 'a' && unit <= 'z') ? static_cast<char16_t>(unit - 'a' + 'A') : unit;
  if (IsSurrogate(unit)) return unit;
  locale_t locale = UnicodeLocale();
  if (locale == static_cast<locale_t>(0)) return unit;
  wint_t upper = towupper_l(static_cast<wint_t>(unit), locale);
  // A simple upper case that leaves the BMP would not fit in one unit; Windows keeps such a character as it is.
  return upper <= 0xFFFF && !IsSurrogate(upper) ? static_cast<char16_t>(upper) : unit;
}

std::u16string FoldName(const std::u16string &name) {
  std::u16string folded(name);
  for (char16_t &unit : folded) unit = FoldUnit(unit);
  return folded;
}

bool SameNameIgnoringCase(const std::u16string &a, const std::u16string &b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (a[i] != b[i] && FoldUnit(a[i]) != FoldUnit(b[i])) return false;
  return true;
}

bool HasWildcard(const std::u16string &mask) { return mask.find_first_of(u"*?<>\"") != std::u16string::npos; }

std::u16string DosMask(const std::u16string &mask, bool patternEndedInDot) {
  if (mask == u"*.*") return u"*";
  std::u16string dos = FoldName(mask);
  for (size_t i = 0; i < dos.size(); ++i) {
    if (i > 0 && dos[i] == u'.' && dos[i - 1] == u'*') dos[i - 1] = u'<';
    if (dos[i] == u'?') {
      dos[i] = u'>';
      if (i > 0 && dos[i - 1] == u'.') dos[i - 1] = u'"';
    } else if (dos[i] == u'*') {
      if (i > 0 && dos[i - 1] == u'.') dos[i - 1] = u'"';
    }
  }
  if (patternEndedInDot && !dos.empty() && dos.back() == u'*') dos.back() = u'<';
  return dos;
}

bool MatchesDosMask(const std::u16string &name, const std::u16string &mask) {
  const size_t n = name.size();
  const size_t m = mask.size();
  const size_t lastDot = name.rfind(u'.');
  // The set of mask positions reached after each unit of the name. A wildcard that may match nothing lets the
  // position behind it be reached as well; since such steps only ever lead one place forward, one pass upward
  // completes the set.
  std::vector<char> current(m + 1, 0), next(m + 1, 0);
  auto complete = [&](std::vector<char> &set, size_t at) {
    bool atEnd = at == n;
    bool atDot = !atEnd && name[at] == u'.';
    for (size_t i = 0; i < m; ++i) {
      if (!set[i]) continue;
      char16_t p = mask[i];
      if (p == u'*' || p == u'<' || (p == u'>' && (atEnd || atDot)) || (p == u'"' && atEnd)) set[i + 1] = 1;
    }
  };
  current[0] = 1;
  complete(current, 0);
  for (size_t j = 0; j < n; ++j) {
    std::fill(next.begin(), next.end(), 0);
    char16_t c = name[j];
    bool any = false;
    for (size_t i = 0; i < m; ++i) {
      if (!current[i]) continue;
      char16_t p = mask[i];
      size_t to = m + 1;  // none
      if (p == u'*') {
        to = i;
      } else if (p == u'<') {
        if (j != lastDot) to = i;
      } else if (p == u'?') {
        to = i + 1;
      } else if (p == u'>') {
        if (c != u'.') to = i + 1;
      } else if (p == u'"') {
        if (c == u'.') to = i + 1;
      } else if (p == c) {
        to = i + 1;
      }
      if (to <= m) {
        next[to] = 1;
        any = true;
      }
    }
    if (!any) return false;
    current.swap(next);
    complete(current, j + 1);
  }
  return current[m] != 0;
}

bool ListsBefore(const std::u16string &foldedA, const std::string &diskA, const std::u16string &foldedB,
                 const std::string &diskB) {
  if (foldedA != foldedB) return foldedA < foldedB;
  return diskA < diskB;
}
