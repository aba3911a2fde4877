// Directory search.
#include "files/directory_search.h"

#include <cstdio>
#include <cstring>

#include "machine/network_listing.h"
#include "machine/network_paths.h"
#include "reports/last_error.h"
#include "reports/memory_reports.h"
#include "reports/result_text.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/tokens.h"

namespace {

int searchMode = 0;

bool IsOpen(HANDLE handle) { return handle != nullptr && handle != INVALID_HANDLE_VALUE; }

}  // namespace

int SearchMode(void) { return searchMode; }

void ResumeNetworkListing(const char *pattern) {
  SetNetworkListPath(pattern);
  searchMode = 1;
}

int MapLastError(void) {
  DWORD code = GetKeptLastError();
  int number;
  switch (code) {
    case 0:
      number = 0;
      break;
    case 2:
    case 3:
    case 18:
    case 123:
    case 161:
      number = 2;  // ENOENT
      break;
    case 4:
      number = 24;  // EMFILE
      break;
    case 5:
    case 12:
      number = 13;  // EACCES
      break;
    case 6:
      number = 9;  // EBADF
      break;
    case 8:
    case 14:
    case 1130:
    case 0x80030008u:
    case 0x8007000Eu:
      number = 12;  // ENOMEM
      break;
    case 11:
      number = 8;  // ENOEXEC
      break;
    case 39:
    case 112:
      number = 28;  // ENOSPC
      break;
    case 80:
    case 183:
      number = 17;  // EEXIST
      break;
    default:
      number = 22;  // EINVAL
      break;
  }
  SetRunTimeError(number);
  return number;
}

void RepairFoundName(char *name) {
  // The byte behind a repaired "?" is not looked at, so "??" becomes "_?": that is the rule names have always been
  // repaired by, and a file found under one spelling must keep being found under it. The walk stops at the name's
  // terminator: what lies behind it is not part of the name.
  for (size_t i = 0; name[i] != 0;) {
    if (IsSingleByteCharAt(name, name, '?', static_cast<unsigned>(i))) {
      name[i] = '_';
      if (name[i + 1] == 0) break;
      i += 2;
    } else {
      ++i;
    }
  }
}

int FindFirstPlain(FindHandle *handle, const char *pattern, FindRecord *record, DWORD *systemError) {
  if (systemError != nullptr) *systemError = 0;
  SetKeptLastError(0);
  HANDLE found = FindFirstFileA(pattern, record);
  handle->SearchHandle = found;
  DWORD error = CaptureLastError();
  int outcome;
  if (found != INVALID_HANDLE_VALUE) {
    // A valid handle with a last error that is not 0 counts as a failure.
    outcome = MapLastError();
    RepairFoundName(record->cFileName);
  } else {
    outcome = GetRunTimeError();
  }
  if (outcome != 0) {
    if (found != INVALID_HANDLE_VALUE) FindClose(found);
    handle->SearchHandle = nullptr;
  }
  if (systemError != nullptr) *systemError = error;
  SetKeptLastError(error);
  return MapLastError();
}

int FindNextPlain(FindHandle *handle, DWORD *systemError, FindRecord *record) {
  if (systemError != nullptr) *systemError = 0;
  SetKeptLastError(0);
  // Success or failure is read from the last error alone.
  FindNextFileA(handle->SearchHandle, record);
  DWORD error = CaptureLastError();
  int result;
  if (error == ERROR_NO_MORE_FILES) {
    result = 1;
  } else {
    result = MapLastError();
    RepairFoundName(record->cFileName);
  }
  if (result != 0) {
    if (handle->SearchHandle != INVALID_HANDLE_VALUE) FindClose(handle->SearchHandle);
    handle->SearchHandle = nullptr;
  }
  if (error == ERROR_NO_MORE_FILES) {
    // The end of a listing leaves no trace of an error.
    SetKeptLastError(0);
    SetRunTimeError(0);
  } else if (systemError != nullptr) {
    *systemError = error;
  }
  return result;
}

int FindFirstEntry(FindHandle *handle, char *pattern, FindRecord *record) {
  searchMode = 0;
  char *path = pattern;
  int saved = 0;
  if (IsNetworkPath(pattern)) {
    path = ToRealNetworkPath(pattern, &saved);
    if (saved == 0) {
      SetRunTimeError(0);
      SetKeptLastError(0);
      handle->SearchHandle = nullptr;
      int result = FindFirstNetworkEntry(&handle->NetworkCursor, pattern, record);
      // What the browser failed with goes into the result text, which stands above the network listing.
      AddNetworkMessageRows(nullptr);
      if (result == 0) {
        searchMode = 1;
        return 0;
      }
      if (result & 0x10) {
        searchMode = -1;
        return result;
      }
      // The listing may have taught the path its real form.
      path = ToRealNetworkPath(pattern, &saved);
      if (saved == 0) {
        searchMode = -2;
        return result;
      }
    }
  }
  SetRunTimeError(0);
  SetKeptLastError(0);
  int result = FindFirstPlain(handle, path, record, nullptr);
  RestoreNetworkPath(path, saved);
  // A badly formed share name reads as a missing path.
  if (saved != 0 && result == 22) return 2;
  return result;
}

int FindNextEntry(FindHandle *handle, FindRecord *record) {
  if (searchMode == 0) {
    if (handle == nullptr || handle->SearchHandle == nullptr) return 1;
    return FindNextPlain(handle, nullptr, record);
  }
  if (searchMode == 1) {
    if (handle == nullptr) return 1;
    handle->SearchHandle = nullptr;
    int result = FindNextNetworkEntry(&handle->NetworkCursor, record);
    AddNetworkMessageRows(nullptr);
    if (result == 0) return 0;
    searchMode = 0;
    return result;
  }
  return 1;
}

int CloseFind(FindHandle *handle) {
  if (handle == nullptr || !IsOpen(handle->SearchHandle)) return 0;
  // The kept error is left alone: a close never hides the error of the search before it.
  FindClose(handle->SearchHandle);
  handle->SearchHandle = nullptr;
  return 1;
}

int FindFirstExact(FindRecord *record, char *path, HANDLE *handleOut) {
  SetKeptLastError(0);
  char *real = path;
  int saved = 0;
  if (IsNetworkPath(path)) {
    real = ToRealNetworkPath(path, &saved);
    if (saved == 0) {
      // A level of the network view: a folder by the name of its last component.
      std::memset(record, 0, sizeof *record);
      if (*path != 0) {
        char copy[kPathSize];
        std::snprintf(copy, sizeof copy, "%s", path);
        const char *name = SplitFileName(nullptr, copy);
        std::snprintf(record->cFileName, sizeof record->cFileName, "%s", name ? name : "");
        record->dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY;
      }
      *handleOut = nullptr;
      return 0;
    }
  }
  SetKeptLastError(0);
  HANDLE found = FindFirstFileA(real, record);
  *handleOut = found;
  DWORD error = CaptureLastError();
  int mapped = MapLastError();
  RestoreNetworkPath(real, saved);
  int outcome = 0;
  if (found == INVALID_HANDLE_VALUE) {
    outcome = GetRunTimeError();
  } else if (mapped != 0) {
    FindClose(found);
    outcome = mapped;
  }
  if ((found == INVALID_HANDLE_VALUE || mapped != 0) && outcome != 0) *handleOut = nullptr;
  SetKeptLastError(error);
  MapLastError();
  return outcome;
}

uint64_t FoundEntryLocalTime(const FindRecord *record) {
  FILETIME local;
  if (!FileTimeToLocalFileTime(&record->ftLastWriteTime, &local)) local = record->ftLastWriteTime;
  return (static_cast<uint64_t>(local.dwHighDateTime) << 32) | local.dwLowDateTime;
}

uint64_t FoundEntrySize(const FindRecord *record) {
  return (static_cast<uint64_t>(record->nFileSizeHigh) << 32) | record->nFileSizeLow;
}
