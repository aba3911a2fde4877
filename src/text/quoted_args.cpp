// Quoted arguments and small string tools.
#include "text/quoted_args.h"

#include <cctype>
#include <cstring>

#include "platform/winapi.h"
#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/tokens.h"

int IsQuoteAt(const char *s, unsigned n) {
  if (s == nullptr || *s == 0) return 0;
  return _myNthctype(s, n) == 0 && s[n] == '"' ? 1 : 0;
}

char *FirstQuote(const char *s) {
  if (s == nullptr || *s == 0) return nullptr;
  return FindCharacter(s, '"');
}

int QuoteWhole(char *s) {
  if (IsQuoteAt(s, 0)) return 1;
  int length = static_cast<int>(std::strlen(s));
  ShiftRightInPlace(s, 1);
  s[0] = '"';
  s[length + 1] = '"';
  s[length + 2] = 0;
  return length + 1;
}

void BalanceQuotes(char **slot, int keepQuotes) {
  if (slot == nullptr || *slot == nullptr || **slot == 0) return;
  char *s = *slot;
  unsigned last = static_cast<unsigned>(std::strlen(s)) - 1;
  int begins = IsQuoteAt(s, 0);
  int ends = IsQuoteAt(s, last);
  if (begins && !ends) {
    s[last + 1] = '"';
    s[last + 2] = 0;
  } else if (ends && !begins) {
    ShiftRightInPlace(s, 1);
    s[0] = '"';
  }
  if (!keepQuotes && FindBlank(s) == nullptr) StripOuterQuotes(s);
}

char *QuoteIfSpaced(char *s) {
  if (IsQuoteAt(s, 0) && FindCharacter(s + 1, '"') != nullptr) return nullptr;
  char *blank = FindBlank(s);
  if (blank == nullptr) return nullptr;
  QuoteWhole(s);
  return blank;
}

char *FindBlank(const char *s) { return s == nullptr ? nullptr : FindCharacter(s, ' '); }

int ShiftRightInPlace(char *s, int n) {
  size_t length = std::strlen(s);
  std::memmove(s + n, s, length + 1);
  return static_cast<int>(length) + n;
}

void ZeroBytes(void *address, unsigned count) { std::memset(address, 0, count); }

namespace {

void ReplaceSingleByte(char *s, char from, char to) {
  if (s == nullptr) return;
  for (char *p = FindCharacter(s, static_cast<unsigned char>(from)); p != nullptr;
       p = FindCharacter(p + 1, static_cast<unsigned char>(from)))
    *p = to;
}

}  // namespace

void SlashToBackslash(char *s) { ReplaceSingleByte(s, '/', '\\'); }
void BackslashToSlash(char *s) { ReplaceSingleByte(s, '\\', '/'); }

char *FindLast(char *text, const char *pattern) {
  if (text == nullptr || pattern == nullptr || *pattern == 0) return nullptr;
  size_t textLength = std::strlen(text);
  size_t patternLength = std::strlen(pattern);
  if (textLength < patternLength) return nullptr;
  const unsigned char first = static_cast<unsigned char>(pattern[0]);
  const bool leadFirst = IsLeadByte(first) && pattern[1] != 0;
  char *candidate = text + (textLength - patternLength);
  for (;;) {
    unsigned offset = static_cast<unsigned>(candidate - text);
    if (*candidate == 0) return nullptr;
    if (_myNthctype(text, offset) != 2 && static_cast<unsigned char>(candidate[0]) == first &&
        (!leadFirst || candidate[1] == pattern[1])) {
      // Cut behind the candidate so that the comparison sees exactly the pattern's length; put the byte back.
      char saved = candidate[patternLength];
      candidate[patternLength] = 0;
      int differs = lstrcmpA(candidate, pattern);
      candidate[patternLength] = saved;
      if (differs == 0) return candidate;
    }
    if (candidate == text) return nullptr;
    --candidate;
    if (candidate > text && IsTrailByte(static_cast<unsigned char>(*candidate)) &&
        _myNthctype(text, static_cast<unsigned>(candidate - text)) == 2)
      --candidate;
  }
}

int TrimTrailingSpace(char *s) {
  if (s == nullptr || *s == 0) return 0;
  int cut = 0;
  for (size_t i = std::strlen(s); i > 0; --i) {
    unsigned char c = static_cast<unsigned char>(s[i - 1]);
    if (i >= 2 && IsTrailByte(c) && IsLeadByte(static_cast<unsigned char>(s[i - 2]))) break;
    if (!std::isspace(c)) break;
    s[i - 1] = 0;
    ++cut;
  }
  return cut;
}

int IsLineEnd(int c) { return c == 0x0A || c == 0x0D ? 1 : 0; }

int PathDepth(const char *path) {
  if (path == nullptr) return 0;
  bool unc = IsUncPrefix(path) != 0;
  if (unc && path[2] == 0) return 0;
  if (!unc && (path[0] == 0 || path[1] == 0)) return 0;
  const char *p = FindCharacter(path + (unc ? 1 : 2), '\\');
  if (p == nullptr) return unc ? -1 : 0;
  int count = 0;
  while (p != nullptr) {
    ++count;
    while (p[1] == '\\') ++p;  // a doubled backslash counts once
    p = FindCharacter(p + 1, '\\');
  }
  return unc ? ~count : count;
}

int DriveLetterOf(int index) { return index + 65; }
int DriveIndexOf(int letter) { return ToUpperByte(letter) - 65; }

char *FindFormatMark(const char *s) { return s == nullptr ? nullptr : FindText(s, "%s"); }

void CutAtMarker(char *s, const char *marker) {
  // The search is meant to start two bytes in front of the string; nothing in front of a message can complete the
  // marker, so it starts at the string itself and finds the same first hit.
  if (s == nullptr || s[0] == 0 || s[1] == 0 || marker == nullptr) return;
  char *hit = FindText(s, marker);
  if (hit != nullptr) *hit = 0;
}

int RemoveDuplicates(char **list) {
  if (list == nullptr) return 0;
  int count = 0;
  while (list[count] != nullptr) ++count;
  for (int i = 0; i < count; ++i) {
    for (int j = i + 1; j < count;) {
      if (lstrcmpA(list[i], list[j]) == 0) {
        std::memmove(&list[j], &list[j + 1], sizeof(char *) * static_cast<size_t>(count - j));
        --count;
      } else {
        ++j;
      }
    }
  }
  return count;
}

void AttributeLetters(long attributes, char *field) {
  if (attributes < 0) return;
  field[0] = (attributes & 0x20) ? 'A' : '-';
  field[1] = (attributes & 0x01) ? 'R' : '-';
  field[2] = (attributes & 0x02) ? 'H' : '-';
  field[3] = (attributes & 0x04) ? 'S' : '-';
  field[4] = '-';
}

namespace {
// Bytes that pass although isprint refuses them; none set, and without a list no byte is bad.
const char *allowedUnprintable = nullptr;
}  // namespace

int ReplaceUnprintable(char *s, int replacement) {
  if (s == nullptr || *s == 0) return 0;
  for (char *p = s; *p != 0; ++p) {
    unsigned char c = static_cast<unsigned char>(*p);
    if (std::isprint(c) || allowedUnprintable == nullptr) continue;
    if (std::strchr(allowedUnprintable, c) != nullptr) continue;
    if (replacement == 0) return 0;
    *p = static_cast<char>(replacement);
  }
  return 1;
}

const char *UnknownText(void) { return "???"; }
