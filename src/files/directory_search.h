// Directory search: the one family of find routines through which every folder is listed. Over the system's find
// calls they add the program's error record (kept last error and run-time error number, always in step), a repair of
// found names, a search handle that survives being closed twice, and the network view.
#pragma once

#include <cstdint>

#include "platform/winapi.h"

// A directory entry exactly as the system gives it.
typedef WIN32_FIND_DATAA FindRecord;

// One search, owned by the caller: the system handle (0 for none; the invalid value after a failed first call) and
// the position in a network listing.
struct FindHandle {
  HANDLE SearchHandle;
  void *NetworkCursor;
};

// The value by which a find call may ask the walker to skip one entry and go on. Nothing produces it here.
const int kFindSkip = -111111;

// The first entry of `pattern`. Result 0 with an entry in `record`; otherwise 2 for a missing path, another run-time
// error number, or a network result. The pattern is edited during the call and restored.
int FindFirstEntry(FindHandle *handle, char *pattern, FindRecord *record);
// The next entry: 0 with an entry, 1 when there are no more (the handle is then closed and cleared), else an error.
int FindNextEntry(FindHandle *handle, FindRecord *record);
// 1 when an open search was closed, 0 when none was open (also after the end of a listing, and the second time).
int CloseFind(FindHandle *handle);
// As FindFirstEntry and FindNextEntry, on the file system only; `systemError` (if given) receives the system's code.
int FindFirstPlain(FindHandle *handle, const char *pattern, FindRecord *record, DWORD *systemError);
int FindNextPlain(FindHandle *handle, DWORD *systemError, FindRecord *record);
// One path, no name repair, for the exact-name walk: 0 on success with the open system handle in *handleOut (the
// caller closes it), else a run-time error number. A place of the network view gives a folder record of its name.
int FindFirstExact(FindRecord *record, char *path, HANDLE *handleOut);
// The entry's write time in local time, and its size, as 64-bit values.
uint64_t FoundEntryLocalTime(const FindRecord *record);
uint64_t FoundEntrySize(const FindRecord *record);
// The run-time error number for the kept last error, also made the current one.
int MapLastError(void);
// "?" where the system could not spell a character becomes "_", so that the file can be opened by that name.
void RepairFoundName(char *name);
// Makes `pattern` the running network listing again, after a descent listed another place in between: the next
// FindNextEntry goes on from the handle's own network position.
void ResumeNetworkListing(const char *pattern);
// What the latest FindFirstEntry started: 0 file system, 1 network listing, -1 unlistable place, -2 failed listing.
// Its caller comes with the network listing.
int SearchMode(void);
