// Double-byte text.
#include "text/myjctype.h"

#include <cstdint>
#include <cstring>

#include "platform/winapi.h"
#include "text/tokens.h"

namespace {

unsigned char ByteAt(const char *s, unsigned n) { return static_cast<unsigned char>(s[n]); }

}  // namespace

int _myIskanjin(const char *s, unsigned n) {
  if (s == nullptr) {
    MessageBoxA(nullptr, "s=NUUL at _myIskanjin()", "myjctype", MB_OK);
    return 0;
  }
  if (!IsLeadByte(ByteAt(s, n))) return 0;
  // Inside a run of lead-class bytes every second byte is the trail of the one before it, and the run's first byte
  // begins a character, because the byte in front of it, not being lead-class, cannot take it as a trail. So the
  // parity of the run's length up to n answers the question without rescanning the string from its start.
  unsigned run = 1;
  while (run <= n && IsLeadByte(ByteAt(s, n - run))) ++run;
  return run % 2;
}

int _myNthctype(const char *s, unsigned n) {
  if (s == nullptr) {
    MessageBoxA(nullptr, "s=NUUL at _myNthctype()", "myjctype", MB_OK);
    return 0;
  }
  if (n > 0 && _myIskanjin(s, n - 1)) return IsTrailByte(ByteAt(s, n)) ? kTrailByte : kBrokenTrail;
  return IsLeadByte(ByteAt(s, n)) ? kLeadByte : kSingleByte;
}

int IsSingleByteCharAt(const char *start, const char *s, unsigned char ch, unsigned n) {
  if (s == nullptr) return 0;
  if (start == nullptr || *start == 0) {
    start = s;
  } else {
    uintptr_t from = reinterpret_cast<uintptr_t>(start), at = reinterpret_cast<uintptr_t>(s);
    if (from > at + n || from > at) return 0;
  }
  n += static_cast<unsigned>(s - start);
  if (_myNthctype(start, n) != kSingleByte) return 0;
  return ByteAt(start, n) == ch;
}

char *FindText(const char *s, const char *t) {
  if (s == nullptr || t == nullptr) return nullptr;
  size_t length = std::strlen(t);
  if (length == 0) return const_cast<char *>(s);
  for (const char *p = s; *p != 0;) {
    bool lead = IsLeadByte(static_cast<unsigned char>(*p));
    if (lead && p[1] == 0) return nullptr;
    if (std::strncmp(p, t, length) == 0) return const_cast<char *>(p);
    p += lead ? 2 : 1;
  }
  return nullptr;
}

void LowerText(char *s) {
  if (s != nullptr) CharLowerA(s);
}

void UpperText(char *s) {
  if (s != nullptr) CharUpperA(s);
}

int ToUpperByte(int c) {
  if (c < 1) return c & 0xFF;
  // The C locale's toupper: only a to z change, and a value beyond a byte is no letter.
  if (c >= 'a' && c <= 'z') c -= 'a' - 'A';
  return c & 0xFF;
}

char *ApplyCaseFlags(char *s, unsigned char flags) {
  if (s == nullptr || *s == 0) return s;
  if (flags & 0x01)
    UpperText(s);
  else if (flags & 0x02)
    LowerText(s);
  return s;
}
