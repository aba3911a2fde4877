// The text case routines behind CharLowerA ... lstrcmpiA, ours on both platforms.
#include "platform/char_case.h"

#include <cstdint>

namespace {

// The CP932 lead-byte range. The platform layer keeps its own copy of this fixed test rather than reaching into text/,
// which builds on the platform and not the other way round.
bool IsLead(unsigned char c) { return (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC); }

unsigned char Lower(unsigned char c) { return (c >= 'A' && c <= 'Z') ? static_cast<unsigned char>(c + 0x20) : c; }
unsigned char Upper(unsigned char c) { return (c >= 'a' && c <= 'z') ? static_cast<unsigned char>(c - 0x20) : c; }

// Windows reads a "pointer" whose bits from 16 up are all 0 as one character in its low word.
bool IsSingleCharacter(LPSTR text) { return (reinterpret_cast<uintptr_t>(text) >> 16) == 0; }

LPSTR Fold(LPSTR text, unsigned char (*fold)(unsigned char)) {
  if (text == nullptr) return text;
  if (IsSingleCharacter(text)) {
    uintptr_t value = reinterpret_cast<uintptr_t>(text);
    value = (value & ~static_cast<uintptr_t>(0xFF)) | fold(static_cast<unsigned char>(value & 0xFF));
    return reinterpret_cast<LPSTR>(value);
  }
  unsigned char *p = reinterpret_cast<unsigned char *>(text);
  while (*p != 0) {
    if (IsLead(*p)) {
      if (p[1] == 0) break;  // a lone lead byte at the end: nothing behind it is a character
      p += 2;
      continue;
    }
    *p = fold(*p);
    ++p;
  }
  return text;
}

int Compare(LPCSTR a, LPCSTR b, unsigned char (*fold)(unsigned char)) {
  if (a == nullptr || b == nullptr) return a == b ? 0 : (a == nullptr ? -1 : 1);
  const unsigned char *p = reinterpret_cast<const unsigned char *>(a);
  const unsigned char *q = reinterpret_cast<const unsigned char *>(b);
  for (;;) {
    if (IsLead(*p) && p[1] != 0) {
      // A double-byte character in `a`: both bytes must match exactly; its trail byte is no letter.
      if (*p != *q) return *p < *q ? -1 : 1;
      if (p[1] != q[1]) return p[1] < q[1] ? -1 : 1;
      p += 2;
      q += 2;
      continue;
    }
    unsigned char x = fold(*p), y = fold(*q);
    if (x != y) return x < y ? -1 : 1;
    if (x == 0) return 0;
    ++p;
    ++q;
  }
}

unsigned char Same(unsigned char c) { return c; }

}  // namespace

LPSTR KmCharLowerA(LPSTR text) { return Fold(text, Lower); }

LPSTR KmCharUpperA(LPSTR text) { return Fold(text, Upper); }

BOOL KmIsCharLowerA(CHAR ch) {
  unsigned char c = static_cast<unsigned char>(ch);
  return c >= 'a' && c <= 'z';
}

BOOL KmIsCharAlphaA(CHAR ch) {
  unsigned char c = static_cast<unsigned char>(ch);
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

int KmlstrcmpA(LPCSTR a, LPCSTR b) { return Compare(a, b, Same); }

int KmlstrcmpiA(LPCSTR a, LPCSTR b) { return Compare(a, b, Lower); }
