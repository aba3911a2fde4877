// The string matcher. Several of its outcomes look like slips (the Front match truncation, the one byte written back
// after a Front splice, the End match test of the byte in front of the field); each is deliberate and is pinned by
// the matcher's tests, since shortcuts rewritten by the program have to come out the same byte for byte.
#include "engine/string_matcher.h"

#include <cstring>

#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/tokens.h"

namespace {

char OldString[kFieldSize];
char NewString[kFieldSize];
unsigned char MatchFlags;
int IncludeArguments;

// A working block of kFieldSize bytes for one call, or null. A block that cannot be had in full is not worked with.
char *AcquireWork(HGLOBAL *handle) {
  DWORD granted = 0;
  char *text = AcquireBlock(handle, nullptr, kFieldSize, &granted);
  if (text != nullptr && granted == kFieldSize) return text;
  ReleaseBlock(*handle, text);
  *handle = nullptr;
  return nullptr;
}

void CopyBounded(char *to, const char *from) {
  size_t length = std::strlen(from);
  if (length > kFieldSize - 1) length = kFieldSize - 1;
  std::memcpy(to, from, length);
  to[length] = 0;
}

void Store(char **matchOut, char *value) {
  if (matchOut != nullptr) *matchOut = value;
}

bool OldStringEquals(const char *text) {
  return ((MatchFlags & kCaseMatters) ? lstrcmpA(OldString, text) : lstrcmpiA(OldString, text)) == 0;
}

bool Fits(size_t length) { return length < kFieldSize; }

int EndMatch(char *field, char **matchOut) {
  size_t length = std::strlen(field), oldLength = std::strlen(OldString);
  if (length < oldLength) return 0;
  char *position = field;
  if (length > oldLength) {
    // Deliberately the byte in front of the field, not the one in front of the match position: no double-byte test
    // of the position takes place, and a match may begin on a trail byte. The field buffer puts a 0 there.
    if (IsLeadByte(static_cast<unsigned char>(field[-1]))) return 0;
    position = field + length - oldLength;
  }
  int result = 0;
  if (OldStringEquals(position)) {
    if (MatchFlags & kFolderUnit)
      result = IsLeftBoundary(field, position) && IsRightBoundary(position, position + oldLength);
    else
      result = 1;
    if (result && !Fits(length - oldLength + std::strlen(NewString))) result = 0;
    if (result) std::strcpy(position, NewString);
  }
  Store(matchOut, result ? field : position);
  return result;
}

int FrontMatch(char *field, char *tail, char **matchOut) {
  size_t length = std::strlen(field), oldLength = std::strlen(OldString);
  // The field is cut to the old string's length for the comparison, and the byte cut off is kept in `stash`. A field
  // shorter than the old string cannot compare equal, so nothing behind its terminator is read or written for it.
  char stash = 0, cutByte = 0;
  tail[0] = 0;
  if (length >= oldLength) {
    std::strcpy(tail, field + oldLength);
    stash = cutByte = field[oldLength];
    field[oldLength] = 0;
  }
  char *position = field;
  int result = 0;
  if (OldStringEquals(position)) {
    bool go = true;
    if (MatchFlags & kFolderUnit) {
      // The left boundary always holds at the start of the field. The cut is undone only for the right boundary's
      // look and made again behind it, with `stash` cleared: so a failed right boundary leaves the field cut to the
      // old string's length. That truncation is deliberate; the shortcut is then written with the shorter text.
      go = IsLeftBoundary(field, position);
      if (go) {
        if (stash != 0) {
          field[oldLength] = stash;
          stash = 0;
        }
        result = IsRightBoundary(position, position + oldLength);
        position[oldLength] = 0;
        go = result != 0;
      }
    } else {
      result = 1;
    }
    if (go && !Fits(std::strlen(NewString) + std::strlen(tail))) {
      // No room for the splice: no replacement, and the field as it came.
      if (length >= oldLength) field[oldLength] = cutByte;
      stash = 0;
      result = 0;
      go = false;
    }
    if (go) {
      std::strcpy(position, NewString);
      if (tail[0] != 0) std::strcat(field, tail);
    }
  }
  // Deliberate: in character unit `stash` is still set after a splice, and the byte that stood at the old string's
  // length goes back to that offset of the new text. With new and old strings of one length it is the byte that stands
  // there anyway; otherwise one byte of the result changes, or nothing where the offset lies behind the new
  // terminator. Where the offset is the new terminator itself, the text runs on over the old bytes behind it, up to
  // the old terminator, which the splice did not reach. Rewritten shortcuts depend on these bytes.
  if (stash != 0) field[oldLength] = stash;
  Store(matchOut, position);
  return result;
}

int AllMatch(char *field, char *tail, char **matchOut) {
  HGLOBAL scanHandle = nullptr, originalHandle = nullptr;
  char *scan = AcquireWork(&scanHandle);
  if (scan == nullptr) return 0;
  std::strcpy(scan, field);
  if (!(MatchFlags & kCaseMatters)) {
    // Deliberately the old string itself is lowered, for this and all later calls; the field is not: its untouched
    // parts and the new string keep their case. The search runs on the lowered copy, of the same byte length.
    CharLowerA(scan);
    CharLowerA(OldString);
  }
  size_t oldLength = std::strlen(OldString), newLength = std::strlen(NewString);
  // A field that grows may outgrow its buffer; then the whole field stays as it was, so it is kept first.
  char *original = nullptr;
  if (newLength > oldLength) {
    original = AcquireWork(&originalHandle);
    if (original == nullptr) {
      ReleaseBlock(scanHandle, scan);
      return 0;
    }
    std::strcpy(original, field);
  }
  size_t length = std::strlen(field);
  int result = 0;
  const char *s = scan;
  char *w = field;
  while (*s != 0) {
    const char *occurrence = FindText(s, OldString);
    if (occurrence == nullptr) break;
    w += occurrence - s;
    s = occurrence + oldLength;
    // The left boundary is read in the field as it stands, so the byte in front of w may be the last byte of a
    // replacement just made.
    if ((MatchFlags & kFolderBounded) && (!IsLeftBoundary(field, w) || !IsRightBoundary(w, w + oldLength))) {
      w += oldLength;
      continue;
    }
    if (!Fits(length - oldLength + newLength)) {
      std::strcpy(field, original);
      result = 0;
      break;
    }
    result = 1;
    std::strcpy(tail, w + oldLength);
    *w = 0;
    std::strcat(field, NewString);
    std::strcat(field, tail);
    w += newLength;
    length = length - oldLength + newLength;
  }
  Store(matchOut, field);
  ReleaseBlock(originalHandle, original);
  ReleaseBlock(scanHandle, scan);
  return result;
}

}  // namespace

void SetMatchStrings(const char *oldString, const char *newString) {
  if (oldString != nullptr) CopyBounded(OldString, oldString);
  if (newString != nullptr) CopyBounded(NewString, newString);
}

void SetMatchFlags(unsigned char flags) { MatchFlags = flags; }

void SetIncludeArguments(int value) { IncludeArguments = value; }

int GetIncludeArguments(void) { return IncludeArguments; }

char *AcquireFieldBuffer(HGLOBAL *slot) {
  DWORD granted = 0;
  char *block = AcquireBlock(slot, nullptr, kFieldSize + 1, &granted);
  if (block == nullptr) return nullptr;
  if (granted != kFieldSize + 1) {
    ReleaseBlock(*slot, block);
    *slot = nullptr;
    return nullptr;
  }
  return block + 1;  // the block is zero-filled: the guard byte in front is 0
}

void ReleaseFieldBuffer(HGLOBAL handle, char *field) { ReleaseBlock(handle, field != nullptr ? field - 1 : nullptr); }

int IsLeftBoundary(const char *base, const char *position) {
  if (IsSingleByteCharAt(base, position, '\\', 0)) return 1;
  if (position == base) return 1;
  return position[-1] == '\\';
}

int IsRightBoundary(const char *start, const char *end) { return IsSingleByteCharAt(start, end, '\\', 0) || *end == 0; }

int ReplaceInField(char *field, char **matchOut) {
  if (field == nullptr || *field == 0) {
    Store(matchOut, nullptr);
    return 0;
  }
  HGLOBAL tailHandle = nullptr;
  char *tail = AcquireWork(&tailHandle);
  if (tail == nullptr) return 0;
  int result = 0;
  if (((MatchFlags & kNeedsBackslash) && FindCharacter(field, '\\') == nullptr) || OldString[0] == 0)
    Store(matchOut, nullptr);
  else if (MatchFlags & kMatchEnd)
    result = EndMatch(field, matchOut);
  else if (MatchFlags & kMatchFront)
    result = FrontMatch(field, tail, matchOut);
  else if (MatchFlags & kMatchAll)
    result = AllMatch(field, tail, matchOut);
  ReleaseBlock(tailHandle, tail);
  return result;
}
