// Name rules and folder checks.
#include "files/folder_checks.h"

#include <cctype>
#include <cstdio>
#include <cstring>

#include "files/directory_search.h"
#include "files/disk_space.h"
#include "files/exact_names.h"
#include "files/file_operations.h"
#include "files/working_folders.h"
#include "machine/drive_inventory.h"
#include "machine/network_paths.h"
#include "reports/error_reporter.h"
#include "reports/last_error.h"
#include "reports/plain_message.h"
#include "resources/message_ids.h"
#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/quoted_args.h"
#include "text/resource_strings.h"
#include "text/tokens.h"

namespace {

// The characters that no long name may hold, in the order in which they are looked for: the first of this list that a
// name holds is the one named, whatever its place in the name.
const char kForbiddenCharacters[] = "*?<>/:\"|";

// What the drive question leads to: ask the drive again, or give up.
const int kDriveRetry = IDYES;
const int kDriveGiveUp = IDNO;
// The drive kinds that count as removable for the question: kind 1 and the removable disks.
const unsigned kRemovableKinds = (1u << 1) | (1u << kDriveRemovable);

int lastBadCharacter = 0;
// kComponentWalk while a path is checked part by part: a long part is then a folder part.
const int kComponentWalk = 3;
int componentCheck = 0;
// 1 after the user agreed to retry a network logon, -1 after a network failure that needs no question, else 0.
int driveRetryState = 0;

struct FaultMessage {
  int fault;
  UINT id;
};
const FaultMessage kPathFaultMessages[] = {
    {kFaultForbiddenCharacter, kMsgNameHasBadCharacter},
    {kFaultFolderPartTooLong, kMsgNameOver11},
    {kFaultNameTooLong, kMsgNameOver8},
    {kFaultExtensionTooLong, kMsgExtensionOver3},
    {kFaultEmptyPath, kMsgFolderNameEmpty},
    {kFaultWrongForm, kMsgFolderNameRuleBroken},
};

bool IsLetter(int c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

int NetworkHead(const char *path) { return IsSingleByteCharAt(path, path, '\\', 1) ? 32 : 16; }

// Whether `letter` is among the drive table's drives of `kindMask`, compared as the C library folds case.
bool DriveOfKinds(int letter, unsigned kindMask) {
  char letters[30];
  DriveLettersOfKinds(letters, kindMask);
  for (const char *p = letters; *p != 0; ++p)
    if (std::tolower(static_cast<unsigned char>(*p)) == std::tolower(letter & 0xFF)) return true;
  return false;
}

// Walks the parts of `text` from `start`, each between backslashes. Result: 0, or the fault; *badPart is where it was
// found: the part itself, or the doubled backslash and what follows it.
int CheckParts(HWND owner, char *start, const char **badPart) {
  for (char *part = start;;) {
    char *separator = FindCharacter(part, '\\');
    if (separator == nullptr) {
      int fault = CheckNameLength(0, part, owner);
      if (fault != 0) *badPart = part;
      return fault;
    }
    if (separator[1] == '\\') {
      *badPart = separator;
      return kFaultWrongForm;
    }
    *separator = 0;
    int fault = CheckNameLength(0, part, owner);
    if (fault != 0) {
      // The part alone is shown, without what follows it.
      *badPart = part;
      return fault;
    }
    *separator = '\\';
    part = separator + 1;
  }
}

// The checks of a non-empty path.
int CheckPathSyntaxText(HWND owner, const char *path, int rooted) {
  HGLOBAL handle = nullptr;
  char *text = AcquireBlock(&handle, nullptr, kPathSize, nullptr);
  if (text == nullptr) return 0;
  std::snprintf(text, kPathSize, "%s", path);
  // Only the text behind the last "..\" is checked, as a relative path.
  char *up = FindLast(text, "..\\");
  if (up != nullptr) {
    std::memmove(text, up + 3, std::strlen(up + 3) + 1);
    rooted = 0;
  }
  int result = 0;
  const char *badPart = nullptr;
  char *start = text;
  if (rooted) {
    int head = HasDriveHead(text);
    if (head == 0) {
      result = kFaultWrongForm;
    } else if (head & 32) {
      start = text + 2;
    } else if (!HasColonHead(text) || !HasRootBackslash(text)) {
      result = kFaultWrongForm;
    } else if (IsDriveRoot(text)) {
      ReleaseBlock(handle, text);
      return 0;
    } else if (IsSingleByteCharAt(text, text, '\\', 3)) {
      result = kFaultWrongForm;
    } else {
      start = text + 3;
    }
  }
  if (result == 0) {
    componentCheck = kComponentWalk;
    result = CheckParts(owner, start, &badPart);
  }
  if (result < 0) {
    char shown[kPathSize + 3];
    std::snprintf(shown, sizeof shown, "'%s'", badPart != nullptr ? badPart : text);
    ReportRuleFault(shown, result, owner);
  }
  componentCheck = 0;
  ReleaseBlock(handle, text);
  return result;
}

// The question when a drive does not answer. Result: what CheckPathSyntaxRules does next (kDriveRetry asks the drive
// again; the answer to a network logon question; 2 for a network password error; otherwise kDriveGiveUp).
int AskDriveRetry(const char *path, HWND owner, DWORD code, int removable) {
  if (IsNetworkPath(path) && NetworkUnavailable()) return kDriveGiveUp;
  if (GetRunTimeError() == 0) MapLastError();
  HGLOBAL handle = nullptr;
  char *message = AcquireBlock(&handle, nullptr, kPathSize, nullptr);
  if (message == nullptr) return kDriveGiveUp;
  unsigned style;
  if (IsNetworkError(code) && IsNetworkPasswordError(code)) {
    LoadStrings(kMsgNetworkRefusedAskPassword, kMsgPasswordAskButtons);
    std::snprintf(message, kPathSize, "[%s]\n%s%s", path, FirstSlotText(), SecondSlotText());
    style = MB_YESNO | MB_ICONHAND;
    driveRetryState = 1;
  } else if (IsNetworkError(code)) {
    LoadStrings(kMsgNetworkFolderNoAccess, kMsgNetworkFolderNoAccess);
    std::snprintf(message, kPathSize, "[%s]\n%s", path, FirstSlotText());
    style = MB_ICONHAND;
    driveRetryState = -1;
  } else {
    int letter = (path != nullptr && *path != 0) ? ToUpperByte(static_cast<unsigned char>(*path)) : '?';
    LoadStrings(removable ? kMsgDriveAccessFailedAsk : kMsgDriveAccessRefused, kMsgDriveTitle);
    std::snprintf(message, kPathSize, "[-%c-] %s", letter, FirstSlotText());
    style = removable ? (MB_YESNO | MB_ICONHAND) : MB_ICONHAND;
    driveRetryState = 0;
  }
  ReleaseSystemErrorText();
  SetReportStyle(style, nullptr);
  LoadStrings(kMsgDriveTitle, kMsgDriveTitle);
  int answer = ReportError(owner, nullptr, message, FirstSlotText(), 0);
  // Only the logon question has an answer that counts: yes to "retry?" on a removable drive ends the check as no
  // does, and the drive is not asked again.
  int result = kDriveGiveUp;
  if (driveRetryState == 1) {
    driveRetryState = answer == IDYES ? 1 : 0;
    result = answer;
  }
  if (IsNetworkPasswordError(code)) result = 2;
  ReleaseBlock(handle, message);
  return result;
}

}  // namespace

int DotEntryTest(const char *name) { return name != nullptr && lstrcmpA(name, ".") == 0 ? 1 : 0; }
int DotDotEntryTest(const char *name) { return name != nullptr && lstrcmpA(name, "..") == 0 ? 1 : 0; }

int HasDriveHead(const char *path) {
  if (path == nullptr) return 0;
  if (IsNetworkPath(path)) return NetworkHead(path);
  return IsLetter(static_cast<unsigned char>(path[0])) ? 1 : 0;
}

int HasColonHead(const char *path) {
  if (path == nullptr) return 0;
  if (IsNetworkPath(path)) return NetworkHead(path);
  return path[0] != 0 && IsSingleByteCharAt(path, path, ':', 1) ? 1 : 0;
}

int HasRootBackslash(const char *path) {
  if (path == nullptr) return 0;
  if (IsNetworkPath(path)) return 1;
  return path[0] != 0 && path[1] != 0 && IsSingleByteCharAt(path, path, '\\', 2) ? 1 : 0;
}

int IsRootedPath(const char *path) {
  return HasDriveHead(path) && HasColonHead(path) && HasRootBackslash(path) ? 1 : 0;
}

int LastBadCharacter(void) { return lastBadCharacter; }

int CheckNameCharacters(HWND owner, const char *name, int report) {
  lastBadCharacter = 0;
  if (name == nullptr) return 0;
  for (const char *c = kForbiddenCharacters; *c != 0; ++c) {
    if (FindCharacter(name, static_cast<unsigned char>(*c)) != nullptr) {
      lastBadCharacter = static_cast<unsigned char>(*c);
      if (report) ReportNameFault(owner, name, kFaultBadName, lastBadCharacter, 1);
      return kFaultForbiddenCharacter;
    }
  }
  return 0;
}

void ReportNameFault(HWND owner, const char *name, int fault, int character, int isFile) {
  if (fault != kFaultExtensionTooLong && fault != kFaultNameTooLong && fault != kFaultBadName) return;
  if (character == 0) character = lastBadCharacter;
  lastBadCharacter = 0;
  char text[2 * kPathSize + 32] = "";
  size_t used = 0;
  if (character != 0) used = static_cast<size_t>(std::snprintf(text, sizeof text, "'%c' in  ", character));
  UINT body = fault == kFaultExtensionTooLong ? kMsgExtensionOver3
              : fault == kFaultNameTooLong    ? kMsgNameOver8
                                              : kMsgNameHasBadCharacter;
  LoadStrings(body, isFile == 1 ? kMsgBadFileNameTitle : kMsgBadFolderNameTitle);
  std::snprintf(text + used, sizeof text - used, "\"%s\": %s", name != nullptr ? name : "", FirstSlotText());
  ShowPlainMessage(owner, text, SecondSlotText(), MB_ICONEXCLAMATION);
}

UINT PathFaultMessageId(int fault) {
  for (const FaultMessage &row : kPathFaultMessages)
    if (row.fault == fault) return row.id;
  return 0;
}

void ReportRuleFault(const char *name, int fault, HWND owner) {
  UINT id = PathFaultMessageId(fault);
  if (id == 0) return;
  SetReportStyle(MB_ICONEXCLAMATION, nullptr);
  ReportErrorById(owner, fault == kFaultEmptyPath ? " " : name, id, kMsgBadFolderNameTitle, 0);
}

int CheckNameLength(int report, const char *name, HWND owner) {
  int fault = CheckNameCharacters(owner, name, report);
  if (fault != 0) return fault;
  if (name != nullptr && std::strlen(name) > kNameLengthLimit)
    return componentCheck == kComponentWalk ? kFaultFolderPartTooLong : kFaultNameTooLong;
  return 0;
}

int CheckPathSyntax(HWND owner, const char *path, int rooted) {
  if (path == nullptr || *path == 0) {
    ReportRuleFault(nullptr, kFaultEmptyPath, owner);
    return kFaultEmptyPath;
  }
  return CheckPathSyntaxText(owner, path, rooted);
}

int CheckFileName(HWND owner, const char *path, int report) {
  HGLOBAL handle = nullptr;
  char *copy = AcquireBlock(&handle, nullptr, kPathSize, nullptr);
  if (copy == nullptr) return 0;
  std::snprintf(copy, kPathSize, "%s", path != nullptr ? path : "");
  char *name = copy;
  int fault = 0;
  char *separator = LastSeparator(copy);
  if (separator != nullptr) {
    if (!IsRootedPath(copy)) {
      if (report) ReportNameFault(owner, copy, kFaultBadName, '\\', report);
      ReleaseBlock(handle, copy);
      return 1;
    }
    name = separator + 1;
    int saved = 0;
    char *cut = CutAtLastSeparator(copy, &saved);
    fault = CheckPathSyntax(owner, copy, 1);
    RestoreCutByte(cut, saved);
  }
  if (fault == 0) {
    if (name[0] == '.') {
      fault = kFaultBadName;
    } else if (char *extension = HasExtension(name)) {
      char *dot = extension - 1;
      *dot = 0;
      fault = CheckNameLength(0, name, owner);
      if (fault == 0) fault = CheckNameCharacters(owner, extension, 0);
      if (fault == 0 && std::strlen(extension) > kNameLengthLimit) fault = kFaultExtensionTooLong;
      *dot = '.';
    } else {
      char *dot = ExtensionDot(name, nullptr);
      if (dot != nullptr) *dot = 0;
      fault = CheckNameLength(0, name, owner);
      if (dot != nullptr) *dot = '.';
    }
  }
  int result = fault;
  if (fault != 0 && report) {
    ReportNameFault(owner, name, fault, 0, report);
    result = 1;
  }
  ReleaseBlock(handle, copy);
  return result;
}

int FolderExists(const char *path) {
  if (path == nullptr || *path == 0) return 0;
  char copy[kPathSize];
  std::snprintf(copy, sizeof copy, "%s", path);
  return PathAccessible(copy) == 0 ? 1 : 0;
}

int CheckFolderOrReport(HWND owner, const char *path, int mode, const char *line) {
  if (FolderExists(path)) return 1;
  if (mode == 1) return 1;
  UINT body, title;
  int nameMode;
  if (mode == 2) {
    body = kMsgFileNotFound;
    title = kMsgFileAccessTitle;
    nameMode = 1;
  } else if (mode == 4) {
    body = kMsgFolderNotFound;
    title = kMsgFolderAccessTitle;
    nameMode = 0;
  } else {
    return 0;
  }
  SetReportStyle(MB_ICONEXCLAMATION, line);
  ReportErrorByIdWithAttributes(owner, path, body, title, nameMode);
  return 0;
}

int CheckPathSyntaxRules(HWND owner, char *path, int allowCd, unsigned flags) {
  SetRunTimeError(0);
  if (IsNetworkPath(path) && !NetworkPresent()) return -1;
  if ((flags & kRulesCheckSyntax) && CheckPathSyntax(owner, path, 1) != 0) {
    SetRunTimeError(2);
    return 2;
  }
  for (;;) {
    SetRunTimeError(0);
    int letter = path != nullptr ? static_cast<unsigned char>(path[0]) : 0;
    DWORD code = GetDiskSpace(path, nullptr, nullptr) == 0 ? 0 : GetKeptLastError();
    if (code != 0 && (flags & kRulesRemovableIsNoFault) &&
        (IsCdDrive(letter) || IsRemovableDrive(letter) || IsKindOneDrive(letter)))
      code = 0;
    int removable = 0;
    if (code != 0) {
      removable = DriveOfKinds(letter, kRemovableKinds) ? 1 : 0;
      if (allowCd && code >= 256 && DriveOfKinds(letter, kDriveKindCdRom)) code = 0;
    }
    int next = static_cast<int>(code);
    if (!(flags & kRulesAskNothing) && code != 0) {
      next = AskDriveRetry(path, owner, code, removable);
      if (driveRetryState == 1) {
        driveRetryState = 0;
        return -1;
      }
    }
    if (next == kDriveGiveUp) return -1;
    SetRunTimeError(0);
    if (next == kDriveRetry) continue;
    return CompleteDrivePath(&path);
  }
}

int LocateOnSearchPath(const char *path, char *out) {
  if (path == nullptr) return 0;
  HGLOBAL handle = nullptr;
  char *buffer = out;
  if (buffer == nullptr) {
    buffer = AcquireBlock(&handle, nullptr, kPathSize, nullptr);
    if (buffer == nullptr) return 0;
  }
  char text[kPathSize];
  std::snprintf(text, sizeof text, "%s", path[0] == '"' ? path + 1 : path);
  if (path[0] == '"') {
    char *close = FindCharacter(text, '"');
    if (close != nullptr) *close = 0;
  }
  int found = SearchForFile(text, buffer, kPathSize);
  int result;
  if (found == kSearchNoDrive) {
    result = kSearchNoDrive;
  } else {
    result = found == kSearchFound ? 1 : 0;
    if (result == 1 && out != nullptr) {
      MakeExactPath(out, kExactLongNames, 0);
      if (lstrcmpiA(text, out) != 0) result = -1;
    }
  }
  if (handle != nullptr) ReleaseBlock(handle, buffer);
  return result;
}
