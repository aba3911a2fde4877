// The table of forced failures of the Linux backend, and the test hooks that fill it.
#include "platform/posix/files/fault_table.h"

#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/posix/files/drive_table.h"
#include "platform/posix/files/path_resolver.h"
#include "platform/posix/files/share_table.h"
#include "platform/posix/files/testing.h"
#include "platform/posix/text/path_names.h"

namespace {

struct FaultRow {
  const char *name;
  int skip;  // calls still to let through before the failures begin
  int left;  // failures still to give; -1 for every call from then on
  DWORD error;
  size_t calls;  // calls counted since the process began
};

// clang-format off
FaultRow table[] = {
    {"FindFirstFileA", 0, 0, 0, 0},
    {"FindNextFileA", 0, 0, 0, 0},
    {"FindClose", 0, 0, 0, 0},
    {"CreateFileA", 0, 0, 0, 0},
    {"CreateFileW", 0, 0, 0, 0},
    {"ReadFile", 0, 0, 0, 0},
    {"WriteFile", 0, 0, 0, 0},
    {"GetFileInformationByHandle", 0, 0, 0, 0},
    {"SetFileInformationByHandle", 0, 0, 0, 0},
    {"CloseHandle", 0, 0, 0, 0},
    {"GetFileSize", 0, 0, 0, 0},
    {"GetFileSizeEx", 0, 0, 0, 0},
    {"DeleteFileA", 0, 0, 0, 0},
    {"MoveFileA", 0, 0, 0, 0},
    {"MoveFileExW", 0, 0, 0, 0},
    {"CreateDirectoryA", 0, 0, 0, 0},
    {"RemoveDirectoryA", 0, 0, 0, 0},
    {"GetFileAttributesA", 0, 0, 0, 0},
    {"SetFileAttributesA", 0, 0, 0, 0},
    {"SetCurrentDirectoryA", 0, 0, 0, 0},
    {"SearchPathA", 0, 0, 0, 0},
    {"GetDiskFreeSpaceA", 0, 0, 0, 0},
    {"GetDiskFreeSpaceExA", 0, 0, 0, 0},
    {"GetVolumeInformationA", 0, 0, 0, 0},
};
// clang-format on
static_assert(sizeof table / sizeof table[0] == kFaultCount, "one row for each fault point");

struct ListingFault {
  std::u16string folder;
  DWORD error;
};
std::vector<ListingFault> listingFaults;
size_t folderReads = 0;

}  // namespace

bool ForcedFailure(FaultPoint point, DWORD *error) {
  FaultRow &row = table[point];
  ++row.calls;
  if (row.left == 0) return false;
  if (row.skip > 0) {
    --row.skip;
    return false;
  }
  if (row.left > 0) --row.left;
  *error = row.error;
  return true;
}

void CountFolderRead(void) { ++folderReads; }

size_t TestFolderReads(void) { return folderReads; }

bool ForcedListingFailure(const std::u16string &folder, DWORD *error) {
  for (const ListingFault &fault : listingFaults) {
    if (SameNameIgnoringCase(fault.folder, folder)) {
      *error = fault.error;
      return true;
    }
  }
  return false;
}

bool TestFailCalls(const char *operation, DWORD error, int count, int skip) {
  for (FaultRow &row : table) {
    if (std::strcmp(row.name, operation) == 0) {
      row.error = error;
      row.left = count;
      row.skip = skip;
      return true;
    }
  }
  return false;
}

bool TestFailListing(const char *folder, DWORD error) {
  std::u16string full;
  if (!MakeFullPath(ProgramToUtf16(folder), &full)) return false;
  // "C:\a\" and "C:\a" name the same folder; only a root keeps its backslash.
  if (full.size() > 3 && full.back() == u'\\') full.pop_back();
  listingFaults.push_back({full, error});
  return true;
}

size_t TestCountedCalls(const char *operation) {
  for (const FaultRow &row : table)
    if (std::strcmp(row.name, operation) == 0) return row.calls;
  return 0;
}

void TestClearFaults(void) {
  for (FaultRow &row : table) {
    row.skip = 0;
    row.left = 0;
    row.error = 0;
  }
  listingFaults.clear();
}

void TestSetDrives(const char *drives) {
  if (drives)
    setenv("KELMARO_DRIVES", drives, 1);
  else
    unsetenv("KELMARO_DRIVES");
  ReloadDriveTable();
  ForgetCurrentFolder();
}

// Beside the drives' hook: the share table knows nothing of the current folder, which may lie on a share.
void TestSetShares(const char *shares) {
  if (shares)
    setenv("KELMARO_SHARES", shares, 1);
  else
    unsetenv("KELMARO_SHARES");
  ReloadShareTable();
  ForgetCurrentFolder();
}
