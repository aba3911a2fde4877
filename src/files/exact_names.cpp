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

// A root, "X:\" or "\\", is its own spelling, with the drive letter upper-cased.
void CopyRoot(const char *work) {
  CopyText(exactPathBuffer, work);
  exactPathBuffer[0] = static_cast<char>(ToUpperByte(static_cast<unsigned char>(exactPathBuffer[0])));
}

// A path of the network view: the view spells it itself, and only the real path behind it is walked. True when the
// buffer already holds the result; otherwise *walked is the real path, and the buffer holds what goes in front of it.
bool StartNetworkPath(char *path, char *work, unsigned char flags, char **walked, int *saved) {
  char *buffer = exactPathBuffer;
  int answer = ResolveNetworkName(work, buffer);
  // Mode 0 folds only while names are folded at all; kExactNoFolding (mode 1) never folds.
  FoldPathCase(buffer, nullptr, (flags & kExactNoFolding) ? 1 : 0);
  if (answer == 1 || answer == -1) return true;
  *walked = ToRealNetworkPath(work, saved);
  if (*saved == 0) {
    CopyText(buffer, *walked);
    return true;
  }
  if (*saved > 0) {
    // Keep the view's prefix ("\:\group") of the caller's path in front of the real path that is walked.
    char *hit = FindNoCase(path, *walked + 1);
    size_t prefix = hit != nullptr ? static_cast<size_t>(hit - path) : 0;
    std::memcpy(buffer, path, prefix);
    buffer[prefix] = 0;
  } else {
    buffer[0] = path[0];
    buffer[1] = path[1];
    buffer[2] = 0;
  }
  return false;
}

// A bare name is looked for along the search path, and the walk goes through the full path found. True when the
// buffer already holds the result: a name that is not found and still has no folder comes back as it was given.
bool SearchBareName(char *path, char *walked, int *foundBySearch) {
  if (SearchForFile(path, walked, kPathSize) == kSearchFound) {
    *foundBySearch = 1;
    return false;
  }
  CopyText(walked, path);
  if (FindCharacter(walked, '\\') != nullptr) return false;
  CopyText(exactPathBuffer, path);
  return true;
}

// The server of a UNC path goes into the buffer as it stands, behind the network view's prefix when there is one.
// Result: where the walk goes on: the backslash behind the server, or the end of the text.
char *CopyServerName(char *walked, int saved) {
  char *buffer = exactPathBuffer;
  char *cut = FindCharacter(walked + 2, '\\');
  if (cut != nullptr) *cut = 0;
  if (saved != 0) {
    JoinPath(nullptr, buffer, walked + 2);
  } else {
    std::strcpy(buffer, "\\\\");
    CopyText(buffer + 2, walked + 2);
  }
  if (cut != nullptr) *cut = '\\';
  return cut != nullptr ? cut : walked + std::strlen(walked);
}

// The root of the walked path goes into the buffer without being asked for: a drive with its letter upper-cased, or
// a UNC server. Result: where the walk of the components begins.
char *StartAtRoot(char *walked, int saved) {
  if (FindCharacter(walked, '\\') == nullptr) return walked;
  if (FindText(walked, ":\\") != nullptr) {
    exactPathBuffer[0] = static_cast<char>(ToUpperByte(static_cast<unsigned char>(walked[0])));
    std::strcpy(exactPathBuffer + 1, ":\\");
    return walked + 3;
  }
  if (IsUncPrefix(walked)) return CopyServerName(walked, saved);
  return walked;
}

// What the file system answered for one component.
enum ComponentAnswer {
  kComponentNamed,    // *name is the spelling to add
  kComponentRefused,  // it could not be asked for: *name is the component, folded, and the walk ends behind it
  kComponentError,    // the system reported an error after finding it: the result is the caller's path
  kComponentNoName,   // the wanted form of its name is empty: the result is null
};

// Asks the file system for the walked path so far, which ends with the component at `start`. The spelling taken is
// the long name with kExactLongNames, the short name with kExactShortNames, and otherwise the component as given.
ComponentAnswer AskComponent(char *walked, char *start, unsigned char flags, WIN32_FIND_DATAA *record, char **name) {
  HANDLE found = nullptr;
  *name = start;
  if (FindFirstExact(record, walked, &found) != 0) {
    // What cannot be asked for ends the walk; the component itself still goes in, in "Program files" case.
    FoldPathCase(start, nullptr, (flags & kExactNoFolding) ? 1 : 2);
    return kComponentRefused;
  }
  DWORD error = GetKeptLastError();
  if (found != nullptr && found != INVALID_HANDLE_VALUE) FindClose(found);
  if (error != 0) return kComponentError;
  FillShortName(record->cFileName, record->cAlternateFileName);
  if (flags & kExactLongNames)
    *name = record->cFileName;
  else if (flags & kExactShortNames)
    *name = record->cAlternateFileName;
  return **name == 0 ? kComponentNoName : kComponentNamed;
}

// Puts back the backslash that was cut behind the component at `start`. Result: where the next component begins.
char *RestoreSeparator(char *start, char *separator) {
  if (separator == nullptr) return start + std::strlen(start);
  *separator = '\\';
  return separator + 1;
}

// The walk from `cursor` on, one component at a time, each asked of the file system and joined to the buffer in the
// spelling it gave. Result: 1 when the buffer holds the result, 0 when the result is null.
int WalkComponents(char *path, char *walked, char *cursor, unsigned char flags) {
  char *buffer = exactPathBuffer;
  char *p = cursor;
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
    char *name = nullptr;
    ComponentAnswer answer = AskComponent(walked, start, flags, &record, &name);
    if (answer == kComponentError) {
      CopyText(buffer, path);
      return 1;
    }
    if (answer == kComponentNoName) return 0;
    if (buffer[0] == 0) {
      // A relative path: only its first component survives. Callers give absolute paths.
      CopyText(buffer, name);
      return 1;
    }
    JoinPath(nullptr, buffer, name);
    p = RestoreSeparator(start, separator);
    if (answer == kComponentRefused) break;
  }
  return 1;
}

// Rebuilds `path` (of which `work` is a writable copy) in exactPathBuffer. Result: 1 when the buffer holds the result,
// 0 when the result is null. *foundBySearch tells that a bare name was found along the search path.
int Rebuild(char *path, char *work, unsigned char flags, int *foundBySearch) {
  exactPathBuffer[0] = 0;
  *foundBySearch = 0;
  if (IsDriveRoot(work) || IsUncRootForm(work)) {
    CopyRoot(work);
    return 1;
  }
  char *walked = work;
  int saved = 0;
  if (IsNetworkPath(work) && StartNetworkPath(path, work, flags, &walked, &saved)) return 1;
  if (FindCharacter(walked, '\\') == nullptr && SearchBareName(path, walked, foundBySearch)) return 1;
  char *cursor = StartAtRoot(walked, saved);
  return WalkComponents(path, walked, cursor, flags);
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
