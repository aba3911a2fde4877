// Path strings.
#include "text/path_strings.h"

#include <cstdio>
#include <cstring>

#include "platform/winapi.h"
#include "text/myjctype.h"
#include "text/quoted_args.h"
#include "text/tokens.h"

namespace {

int backslashWasTrimmed = 0;
// Set, network view paths ("\:\group\server\share") are no longer recognised. No caller sets it.
int networkViewOff = 0;
// Whether names are folded to the "Program files" case. No caller clears it.
int foldNamesSwitch = 1;
char cutQuoteBuffer[kPathSize];

// A backslash that is a character of its own at offset n.
bool RealBackslashAt(const char *s, size_t n) { return IsSingleByteCharAt(s, s, '\\', static_cast<unsigned>(n)); }

bool HasRealBackslash(const char *s) { return FindCharacter(s, '\\') != nullptr; }

}  // namespace

int IsNetworkPath(const char *path) {
  if (path == nullptr || networkViewOff) return 0;
  return path[0] == '\\' && (path[1] == ':' || path[1] == '\\') ? 1 : 0;
}

char *NextSeparator(const char *path) {
  if (path == nullptr || *path == 0) return nullptr;
  return FindCharacter(path + (IsNetworkPath(path) ? 1 : 0), '\\');
}

char *LastSeparator(char *path) {
  if (path == nullptr || *path == 0) return nullptr;
  char *slash = FindLastCharacter(path, '/');
  char *backslash = FindLastCharacter(path, '\\');
  if (slash != nullptr && *slash != '/') slash = nullptr;
  if (backslash != nullptr && *backslash != '\\') backslash = nullptr;
  if (slash != nullptr && (backslash == nullptr || slash > backslash)) {
    *slash = '\\';
    return slash;
  }
  return backslash;
}

int IsRootSeparator(const char *p, const char *base, int k) {
  if (p == nullptr || base == nullptr || p <= base || p - base < k) return 0;
  const char *before = p - k;
  if (*before != ':' && *before != '\\') return 0;
  if (before > base && IsLeadByte(static_cast<unsigned char>(before[-1]))) return 0;
  return 1;
}

int IsDriveRoot(const char *path) {
  if (path == nullptr || *path == 0 || !HasRealBackslash(path)) return 0;
  return std::strcmp(path + 1, ":\\") == 0 ? 1 : 0;
}

int IsUncRootForm(const char *path) {
  if (path == nullptr || !HasRealBackslash(path)) return 0;
  return std::strcmp(path, "\\\\") == 0 ? 1 : 0;
}

char *HasDriveRoot(char *path) {
  if (path == nullptr || *path == 0) return nullptr;
  char *hit = FindText(path, ":\\");
  if (hit == nullptr) return nullptr;
  // The position is the one found before the ".\" goes: callers use it as a flag, rarely as a place.
  StripDotPrefix(path);
  return hit;
}

int StripDotPrefix(char *text) {
  if (text == nullptr || *text == 0) return 0;
  char *hit = FindText(text, ".\\");
  if (hit == nullptr) return 0;
  ShiftLeftInPlace(hit, 2);
  return 1;
}

char *EnsureTrailingBackslash(char *path) {
  size_t length = std::strlen(path);
  if (length > 0 && RealBackslashAt(path, length - 1)) return nullptr;
  path[length] = '\\';
  path[length + 1] = 0;
  return path + length;
}

int TrimFolderBackslash(char *path) {
  backslashWasTrimmed = 0;
  if (path == nullptr || *path == 0 || IsDriveRoot(path) || IsUncRootForm(path)) return 0;
  char *last = LastSeparator(path);
  if (last != nullptr && last[1] == 0) {
    *last = 0;
    backslashWasTrimmed = 1;
  }
  return backslashWasTrimmed;
}

int BackslashWasTrimmedFlag(void) { return backslashWasTrimmed; }
void ClearBackslashWasTrimmed(void) { backslashWasTrimmed = 0; }

int CutLastComponent(char *path) {
  if (path == nullptr || *path == 0) return kCutNothing;
  char *last = FindLastCharacter(path, '\\');
  if (last == nullptr || *last != '\\') return kCutNothing;
  if (last[1] == 0) return kCutEndsInBackslash;
  int result;
  if (IsRootSeparator(last, path, 1)) {
    last[1] = 0;
    result = kCutBehindRoot;
  } else {
    *last = 0;
    result = kCutAtBackslash;
  }
  BalanceQuotes(&path, 0);
  return result;
}

char *CutTrailingQuote(char *dest, const char *src) {
  if (src == nullptr) return nullptr;
  // With no separate destination the copy goes to one static buffer, so that `src` stays as it was even when the
  // caller passed it as both. The next such call overwrites it.
  char *target = (dest == nullptr || dest == src) ? cutQuoteBuffer : dest;
  std::snprintf(target, kPathSize, "%s", src);
  size_t length = std::strlen(target);
  if (length > 0 && IsQuoteAt(target, static_cast<unsigned>(length - 1))) target[length - 1] = 0;
  return target;
}

char *ExtensionDot(const char *text, int *quoteState) {
  if (quoteState != nullptr) *quoteState = 0;
  if (text == nullptr || *text == 0) return nullptr;
  const unsigned char *s = reinterpret_cast<const unsigned char *>(text);
  size_t i = std::strlen(text);
  while (i > 0) {
    size_t at = i - 1;
    // A trail byte with a lead byte in front of it is stepped over with its lead; a double-byte character that is
    // the text's first character ends the scan.
    if (at >= 1 && IsTrailByte(s[at]) && IsLeadByte(s[at - 1])) {
      if (at - 1 == 0) return nullptr;
      i = at - 1;
      continue;
    }
    if (s[at] == '.') return const_cast<char *>(text + at);
    if (s[at] == '"' && quoteState != nullptr) *quoteState ^= 1;
    i = at;
  }
  return nullptr;
}

char *HasExtension(const char *path) {
  if (path == nullptr || *path == 0) return nullptr;
  char *dot = ExtensionDot(path, nullptr);
  if (dot == nullptr) return nullptr;
  if (dot[1] == 0 || dot[1] == '\\' || dot[1] == '/') return nullptr;
  if (FindCharacter(dot, '\\') != nullptr) return nullptr;
  return dot + 1;
}

char *FolderPart(char *path) {
  if (path == nullptr || *path == 0) return nullptr;
  StripOuterQuotes(path);
  char *separator = LastSeparator(path);
  if (separator == nullptr) {
    char *colon = FindLastCharacter(path, ':');
    if (colon == nullptr || *colon != ':') return nullptr;
    colon[1] = 0;
    return path;
  }
  if (IsRootSeparator(separator, path, 1))
    separator[1] = 0;
  else
    separator[0] = 0;
  return path;
}

char *CutAtLastSeparator(char *path, int *saved) {
  if (saved != nullptr) *saved = 0;
  if (path == nullptr || *path == 0) return nullptr;
  char *separator = LastSeparator(path);
  if (separator == nullptr) return nullptr;
  char *cut = IsRootSeparator(separator, path, 1) ? separator + 1 : separator;
  if (saved != nullptr) *saved = static_cast<unsigned char>(*cut);
  *cut = 0;
  return cut;
}

void RestoreCutByte(char *position, int byte) {
  if (position != nullptr && byte != 0) *position = static_cast<char>(byte);
}

int JoinPath(char *dest, char *dir, char *file) {
  const bool haveDir = dir != nullptr && *dir != 0;
  const bool haveFile = file != nullptr && *file != 0;
  StripDotPrefix(dir);
  if (HasDriveRoot(file) != nullptr) {
    // An absolute name replaces everything, in both places.
    if (dest != nullptr && dest != file) std::memmove(dest, file, std::strlen(file) + 1);
    if (dir != nullptr && dir != file) std::memmove(dir, file, std::strlen(file) + 1);
    return 0;
  }
  size_t dirLength = dir ? std::strlen(dir) : 0;
  size_t fileLength = file ? std::strlen(file) : 0;
  if (dirLength + fileLength >= kPathSize) return 0;

  char *base = dir;
  char *slashBase = nullptr;
  if (haveDir) {
    if (dest != nullptr && dest != file && dest != dir) {
      std::memmove(dest, dir, dirLength + 1);
      base = dest;
    }
    if (std::strchr(base, '/') != nullptr) {
      SlashToBackslash(base);
      slashBase = base;
    }
  }

  const bool inPlace = dest != nullptr && dest == file;
  char *result;
  char *appendPart = nullptr;
  size_t cutAt = 0;
  char cutByte = 0;
  if (inPlace) {
    if (IsQuoteAt(dest, 0)) ShiftLeftInPlace(dest, 1);
    size_t baseLength = std::strlen(base);
    ShiftRightInPlace(dest, static_cast<int>(baseLength));
    std::memcpy(dest, base, baseLength);
    result = dest;
    // The folder part alone is looked at while its end is examined.
    cutAt = baseLength;
    cutByte = dest[cutAt];
    dest[cutAt] = 0;
  } else {
    if (!haveDir && !haveFile) return 0;
    if (!haveDir) return static_cast<int>(fileLength);
    if (!haveFile) return static_cast<int>(std::strlen(base));
    appendPart = IsQuoteAt(file, 0) ? file + 1 : file;
    size_t baseLength = std::strlen(base);
    if (baseLength > 0 && IsQuoteAt(base, static_cast<unsigned>(baseLength - 1))) base[baseLength - 1] = 0;
    result = base;
  }

  if (*result != 0) {
    size_t length = std::strlen(result);
    bool needsBackslash = !RealBackslashAt(result, length - 1);
    if (inPlace) {
      result[cutAt] = cutByte;
      if (needsBackslash) {
        ShiftRightInPlace(result + length, 1);
        result[length] = '\\';
      }
    } else {
      if (needsBackslash) {
        result[length] = '\\';
        result[length + 1] = 0;
      }
      std::strcat(result, appendPart);
    }
  } else if (inPlace) {
    result[cutAt] = cutByte;
  }

  // A folder written with slashes gives a result written with slashes, all of it.
  if (slashBase != nullptr) BackslashToSlash(slashBase);
  BalanceQuotes(&result, 0);
  return static_cast<int>(std::strlen(result));
}

void FoldPathCase(char *path, const char *alternate, int mode) {
  if (alternate != nullptr && *alternate != 0) return;
  if (mode == 1) return;
  if (mode == 0 && foldNamesSwitch == 0) return;
  if (path == nullptr || *path == 0 || IsLeadByte(static_cast<unsigned char>(path[0]))) return;
  LowerText(path);
  for (char *separator = NextSeparator(path); separator != nullptr;) {
    char *next = separator + 1;
    unsigned char c = static_cast<unsigned char>(*next);
    if (c != 0 && IsLeadByte(c)) {
      next += next[1] != 0 ? 2 : 1;
    } else if (c != 0 && IsCharLowerA(static_cast<CHAR>(c))) {
      *next = static_cast<char>(ToUpperByte(c));
    }
    separator = FindCharacter(next, '\\');
  }
  path[0] = static_cast<char>(ToUpperByte(static_cast<unsigned char>(path[0])));
}

const char *FitTextToControl(void *, void *, const char *text, unsigned) { return text; }
const char *FitPathToControl(void *, void *, const char *text, unsigned) { return text; }
