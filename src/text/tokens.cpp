// Bytes, tokens and file names.
#include "text/tokens.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "platform/winapi.h"

int IsLeadByte(unsigned char c) { return (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC); }

int IsTrailByte(unsigned char c) { return (c >= 0x40 && c <= 0x7E) || (c >= 0x80 && c <= 0xFC); }

namespace {

// The character at `p` as one value (a double-byte character with its lead in the high byte) and its length. A lead
// byte directly before the terminator has length 0: the walk ends there.
unsigned CharacterAt(const unsigned char *p, int *length) {
  if (IsLeadByte(p[0])) {
    if (p[1] == 0) {
      *length = 0;
      return 0;
    }
    *length = 2;
    return (static_cast<unsigned>(p[0]) << 8) | p[1];
  }
  *length = 1;
  return p[0];
}

}  // namespace

char *FindCharacter(const char *s, unsigned c) {
  if (s == nullptr) return nullptr;
  const unsigned char *p = reinterpret_cast<const unsigned char *>(s);
  for (;;) {
    int length;
    unsigned here = CharacterAt(p, &length);
    if (length == 0) return nullptr;
    if (here == c) return const_cast<char *>(reinterpret_cast<const char *>(p));
    if (*p == 0) return nullptr;
    p += length;
  }
}

char *FindLastCharacter(const char *s, unsigned c) {
  if (s == nullptr) return nullptr;
  const unsigned char *p = reinterpret_cast<const unsigned char *>(s);
  const unsigned char *last = nullptr;
  for (;;) {
    int length;
    unsigned here = CharacterAt(p, &length);
    if (length == 0) return const_cast<char *>(reinterpret_cast<const char *>(last ? last : p + 1));
    if (here == c) last = p;
    if (*p == 0) break;
    p += length;
  }
  return const_cast<char *>(reinterpret_cast<const char *>(last));
}

int ParseNumber(const char *s) { return s == nullptr ? 0 : std::atoi(s); }

int ShiftLeftInPlace(char *s, int n) {
  std::memmove(s, s + n, std::strlen(s + n) + 1);
  return 0;
}

int TrimLeadingSpace(char *s) {
  if (s == nullptr) return 0;
  int count = 0;
  while (*s != 0 && !IsLeadByte(static_cast<unsigned char>(*s)) && std::isspace(static_cast<unsigned char>(*s))) {
    ShiftLeftInPlace(s, 1);
    ++count;
  }
  return count;
}

char *QuoteStart(const char *s) {
  if (s == nullptr) return nullptr;
  for (const unsigned char *p = reinterpret_cast<const unsigned char *>(s); *p != 0; ++p) {
    if (IsLeadByte(*p)) return nullptr;
    if (*p == '"') return const_cast<char *>(reinterpret_cast<const char *>(p + 1));
  }
  return nullptr;
}

char *SkipQuoted(const char *s) {
  if (s == nullptr) return nullptr;
  char *open = QuoteStart(s);
  if (open == nullptr) return const_cast<char *>(s);
  char *close = FindCharacter(open, '"');
  return close == nullptr ? nullptr : close + 1;
}

char *FirstToken(const char *line) {
  if (line == nullptr) return nullptr;
  char *from = SkipQuoted(line);
  // An opening quote without its closing one: the search would start from nowhere, which the run-time refuses by
  // ending the process. A typed line with an odd quote ends the program this way, on purpose.
  if (from == nullptr) ExitOnInvalidParameter();
  return FindCharacter(from, ' ');
}

int StripOuterQuotes(char *s) {
  if (s == nullptr || *s == 0) return 0;
  char *open = FindCharacter(s, '"');
  if (open == nullptr) return 0;
  ShiftLeftInPlace(open, 1);
  bool closingRemoved = false;
  char *close = FindLastCharacter(open, '"');
  if (close != nullptr && *close == '"') {
    *close = 0;
    closingRemoved = true;
  }
  if (*s != 0) return 1;
  // The quotes were all there was: a pair of quotes never becomes an empty text.
  s[0] = '"';
  s[1] = closingRemoved ? '"' : 0;
  if (closingRemoved) s[2] = 0;
  return 0;
}

int IsUncPrefix(const char *path) { return path[0] == '\\' && path[1] == '\\' ? 1 : 0; }

char *SplitFileName(char *dest, char *path) {
  if (path == nullptr || *path == 0) return nullptr;
  StripOuterQuotes(path);
  char *work = IsUncPrefix(path) ? path + 1 : path;
  char *slash = FindLastCharacter(work, '/');
  char *backslash = FindLastCharacter(work, '\\');
  if (slash != nullptr && *slash != '/') slash = nullptr;
  if (backslash != nullptr && *backslash != '\\') backslash = nullptr;
  char *separator = backslash;
  if (slash != nullptr && (backslash == nullptr || slash > backslash)) {
    *slash = '\\';
    separator = slash;
  }
  char *name = separator == nullptr ? work : separator + 1;
  if (dest == nullptr) return name;
  if (dest != work) {
    std::memmove(dest, name, std::strlen(name) + 1);
    return dest;
  }
  if (name != work) ShiftLeftInPlace(work, static_cast<int>(name - work));
  return dest;
}
