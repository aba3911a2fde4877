// Exact-case and long names: each component of a path is asked of the file system, one find call per component, and
// the path is rebuilt from the answers in one process-wide buffer.
#include "files/exact_names.h"

#include <cstring>

#include "files/directory_search.h"
#include "files/error_numbers.h"
#include "files/file_operations.h"
#include "machine/network_paths.h"
#include "platform/winapi.h"
#include "reports/last_error.h"
#include "reports/memory_reports.h"
#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/quoted_args.h"
#include "text/tokens.h"

namespace {

// The rebuilt path; a result handed back by pointer lives here until the next walk.
char exactPathBuffer[kPathSize];
// Set while a walk runs, so that a walk reached from inside one gives its path back instead of recursing.
int exactInProgress = 0;

// Copies at most 519 bytes and a terminator; `src` may overlap `dest`.
void CopyText(char *dest, const char *src) {
  size_t length = std::strlen(src);
  if (length > kPathSize - 1) length = kPathSize - 1;
  std::memmove(dest, src, length);
  dest[length] = 0;
}

// Rebuilds `path` (of which `work` is a writable copy) in exactPathBuffer. Result: 1 when the buffer holds the result,
// 0 when the result is null. *foundBySearch tells that a bare name was found along the search path.
int Rebuild(char *path, char *work, unsigned char flags, int *foundBySearch) {
  char *buffer = exactPathBuffer;
  buffer[0] = 0;
  *foundBySearch = 0;

  if (IsDriveRoot(work) || IsUncRootForm(work)) {
    CopyText(buffer, work);
    buffer[0] = static_cast<char>(ToUpperByte(static_cast<unsigned char>(buffer[0])));
    return 1;
  }

  char *walked = work;
  int saved = 0;
  if (IsNetworkPath(work)) {
    int answer = ResolveNetworkName(work, buffer);
    // Mode 0 folds only while names are folded at all; kExactNoFolding (mode 1) never folds.
    FoldPathCase(buffer, nullptr, (flags & kExactNoFolding) ? 1 : 0);
    if (answer == 1 || answer == -1) return 1;
    walked = ToRealNetworkPath(work, &saved);
    if (saved == 0) {
      CopyText(buffer, walked);
      return 1;
    }
    if (saved > 0) {
      // Keep the view's prefix ("\:\group") of the caller's path in front of the real path that is walked.
      char *hit = FindNoCase(path, walked + 1);
      size_t prefix = hit != nullptr ? static_cast<size_t>(hit - path) : 0;
      std::memcpy(buffer, path, prefix);
      buffer[prefix] = 0;
    } else {
      buffer[0] = path[0];
      buffer[1] = path[1];
      buffer[2] = 0;
    }
  }

  if (FindCharacter(walked, '\\') == nullptr) {
    if (SearchForFile(path, walked, kPathSize) == kSearchFound) {
      *foundBySearch = 1;
    } else {
      CopyText(walked, path);
      if (FindCharacter(walked, '\\') == nullptr) {
        CopyText(buffer, path);
        return 1;
      }
    }
  }

  char *cursor = walked;
  if (FindCharacter(walked, '\\') != nullptr) {
    if (FindText(walked, ":\\") != nullptr) {
      buffer[0] = static_cast<char>(ToUpperByte(static_cast<unsigned char>(walked[0])));
      std::strcpy(buffer + 1, ":\\");
      cursor = walked + 3;
    } else if (IsUncPrefix(walked)) {
      char *cut = FindCharacter(walked + 2, '\\');
      if (cut != nullptr) *cut = 0;
      if (saved != 0) {
        JoinPath(nullptr, buffer, walked + 2);
      } else {
        std::strcpy(buffer, "\\\\");
        CopyText(buffer + 2, walked + 2);
      }
      if (cut != nullptr) *cut = '\\';
      cursor = cut != nullptr ? cut : walked + std::strlen(walked);
    }
  }

  char *p = cursor;
  int ended = 0;
  while (*p != 0) {
    if (*p == '\\') ++p;
    if (*p == 0) break;
    char *start = p;
    char *separator = FindCharacter(p, '\\');
    // A backslash at the component's start is a doubled one, and a name that ends in a colon is a drive: neither is
    // asked for, and the walk goes on behind them.
    if (separator != nullptr && (separator == start || separator[-1] == ':')) {
      p = separator + 1;
      continue;
    }
    if (separator != nullptr) *separator = 0;

    WIN32_FIND_DATAA record;
    HANDLE found = nullptr;
    char *name = start;
    if (FindFirstExact(&record, walked, &found) != 0) {
      // What cannot be asked for ends the walk; the component itself still goes in, in "Program files" case.
      FoldPathCase(start, nullptr, (flags & kExactNoFolding) ? 1 : 2);
      ended = 1;
    } else {
      DWORD error = GetKeptLastError();
      if (found != nullptr && found != INVALID_HANDLE_VALUE) FindClose(found);
      if (error != 0) {
        CopyText(buffer, path);
        return 1;
      }
      FillShortName(record.cFileName, record.cAlternateFileName);
      if (flags & kExactLongNames)
        name = record.cFileName;
      else if (flags & kExactShortNames)
        name = record.cAlternateFileName;
      if (*name == 0) return 0;
    }

    if (buffer[0] == 0) {
      // A relative path: only its first component survives. Callers give absolute paths.
      CopyText(buffer, name);
      return 1;
    }
    JoinPath(nullptr, buffer, name);
    if (separator != nullptr) {
      *separator = '\\';
      p = separator + 1;
    } else {
      p = start + std::strlen(start);
    }
    if (ended) break;
  }
  return 1;
}

}  // namespace

char *ResolveExactPath(char *path, unsigned char flags, int mode) {
  if (exactInProgress) return path;
  if (path == nullptr || *path == 0) return nullptr;
  HasDriveRoot(path);
  // A path that is not there cannot be asked for its spelling; it comes back as it was, without a message.
  if (PathAccessible(path) != 0) return path;

  exactInProgress = 1;
  StripOuterQuotes(path);
  HGLOBAL workHandle = 0;
  char *work = AcquireBlock(&workHandle, nullptr, kPathSize, nullptr);
  if (work == nullptr) {
    exactInProgress = 0;
    return path;
  }
  CopyText(work, path);
  int foundBySearch = 0;
  int haveResult = Rebuild(path, work, flags, &foundBySearch);
  ReleaseBlock(workHandle, work);
  if (!haveResult) {
    exactInProgress = 0;
    return nullptr;
  }
  char *text = exactPathBuffer;
  if (foundBySearch) {
    // A bare name stays a bare name: the folder where the search found it is dropped.
    char *name = SplitFileName(nullptr, exactPathBuffer);
    if (name != nullptr) text = name;
  }
  char *result = path;
  if (mode == 1)
    result = text;
  else
    std::memmove(path, text, std::strlen(text) + 1);
  exactInProgress = 0;
  return result;
}

char *MakeExactPath(char *path, unsigned char flags, int mode) {
  if (path == nullptr || *path == 0) return path;
  char *result = ResolveExactPath(path, flags, mode);
  if ((flags & kExactShortNames) && result != nullptr) ApplyCaseFlags(result, flags);
  return path;
}

void FillShortName(char *longName, char *shortName) {
  if (shortName[0] != 0 || std::strlen(longName) >= 13) return;
  std::strcpy(shortName, longName);
  UpperText(shortName);
  for (const char *p = longName; *p != 0; ++p) {
    unsigned char c = static_cast<unsigned char>(*p);
    if (IsLeadByte(c) || IsCharLowerA(static_cast<CHAR>(c))) return;
  }
  FoldPathCase(longName, nullptr, 0);
}

char *FindNoCase(const char *text, const char *pattern) {
  if (text == nullptr || pattern == nullptr || std::strlen(text) < std::strlen(pattern)) return nullptr;
  HGLOBAL textHandle = nullptr;
  HGLOBAL patternHandle = nullptr;
  char *textCopy = StoreAndLockBlock(&textHandle, nullptr, text);
  char *patternCopy = StoreAndLockBlock(&patternHandle, nullptr, pattern);
  char *result = nullptr;
  if (textCopy != nullptr && patternCopy != nullptr) {
    LowerText(textCopy);
    LowerText(patternCopy);
    char *hit = FindText(textCopy, patternCopy);
    if (hit != nullptr) result = const_cast<char *>(text) + (hit - textCopy);
  }
  ReleaseBlock(textHandle, textCopy);
  ReleaseBlock(patternHandle, patternCopy);
  return result;
}
