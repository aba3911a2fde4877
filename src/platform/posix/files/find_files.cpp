// Listing folders for the Linux backend: FindFirstFileA, FindNextFileA and FindClose.
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <string>
#include <vector>

#include "platform/posix/files/error_codes.h"
#include "platform/posix/files/fault_table.h"
#include "platform/posix/files/file_info.h"
#include "platform/posix/files/handles.h"
#include "platform/posix/files/path_resolver.h"
#include "platform/posix/text/path_names.h"
#include "platform/winapi.h"

namespace {

// One open search. The folder is read once, by FindFirstFileA; the facts of each entry are read when it is returned,
// through the folder kept open, so that a long listing costs one call per entry it gives.
struct OpenSearch {
  int folder = -1;                 // -1 once every entry has been given
  std::string parentLinux;         // the folder's parent in the path's own terms, for ".."
  std::vector<std::string> names;  // the matching names on disk, in the order they are given
  size_t next = 0;
  bool single = false;  // a mask without wildcards: the one entry below, already read
  EntryFacts singleFacts;
  std::string singleName;
};

std::map<HANDLE, OpenSearch> &Searches() {
  static std::map<HANDLE, OpenSearch> searches;
  return searches;
}

HANDLE Fail(DWORD error) {
  SetLastError(error);
  return INVALID_HANDLE_VALUE;
}

void CloseFolder(OpenSearch *search) {
  if (search->folder >= 0) close(search->folder);
  search->folder = -1;
}

// Gives the next entry that can still be read. False at the end.
bool GiveNext(OpenSearch *search, WIN32_FIND_DATAA *data) {
  if (search->single) {
    if (search->next > 0) return false;
    ++search->next;
    FillFindData(search->singleFacts, AttributesOf(search->singleFacts, search->singleName),
                 DiskNameToProgram(search->singleName), data);
    return true;
  }
  while (search->folder >= 0 && search->next < search->names.size()) {
    const std::string &name = search->names[search->next++];
    EntryFacts facts;
    int error;
    if (name == "..")
      error = ReadEntryFacts(AT_FDCWD, search->parentLinux.c_str(), &facts);
    else
      error = ReadEntryFacts(search->folder, name.c_str(), &facts);
    if (error != 0) continue;  // gone since the listing was read
    std::string shown = (name == "." || name == "..") ? name : DiskNameToProgram(name);
    FillFindData(facts, AttributesOf(facts, name), shown, data);
    return true;
  }
  CloseFolder(search);
  return false;
}

// Reads the folder and keeps the names that match, in NTFS order with "." and ".." first. Result: 0 or an error.
DWORD ReadFolder(const std::string &linux, bool isDriveRoot, const std::u16string &dosMask, OpenSearch *search) {
  int folder = open(linux.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return ErrorFromErrno(errno);
  CountFolderRead();
  int reading = dup(folder);
  DIR *dir = reading >= 0 ? fdopendir(reading) : nullptr;
  if (!dir) {
    DWORD error = ErrorFromErrno(errno);
    if (reading >= 0) close(reading);
    close(folder);
    return error;
  }
  struct Match {
    std::u16string folded;
    std::string name;
  };
  std::vector<Match> matches;
  bool dot = false, dotDot = false;
  while (struct dirent *entry = readdir(dir)) {
    std::string name = entry->d_name;
    bool isDots = name == "." || name == "..";
    // A drive root has neither, as on NTFS. The root of a share has both, as a server lists a shared folder.
    if (isDots && isDriveRoot) continue;
    std::u16string folded = FoldName(Utf8ToUtf16(name));
    if (!MatchesDosMask(folded, dosMask)) continue;
    if (name == ".")
      dot = true;
    else if (name == "..")
      dotDot = true;
    else
      matches.push_back({std::move(folded), std::move(name)});
  }
  closedir(dir);
  std::sort(matches.begin(), matches.end(),
            [](const Match &a, const Match &b) { return ListsBefore(a.folded, a.name, b.folded, b.name); });
  if (dot) search->names.push_back(".");
  if (dotDot) search->names.push_back("..");
  for (Match &match : matches) search->names.push_back(std::move(match.name));
  search->folder = folder;
  size_t slash = linux.rfind('/');
  search->parentLinux = slash == 0 ? "/" : linux.substr(0, slash);
  return 0;
}

// Gives the first entry of a search and keeps the search under a new handle; ERROR_FILE_NOT_FOUND when it has none.
HANDLE Opened(OpenSearch *search, WIN32_FIND_DATAA *findData) {
  if (!GiveNext(search, findData)) {
    CloseFolder(search);
    return Fail(ERROR_FILE_NOT_FOUND);
  }
  HANDLE handle = NewHandleValue();
  Searches()[handle] = std::move(*search);
  return handle;
}

}  // namespace

HANDLE FindFirstFileA(LPCSTR fileName, LPWIN32_FIND_DATAA findData) {
  DWORD error;
  if (ForcedFailure(kFaultFindFirstFile, &error)) return Fail(error);
  if (!findData) return Fail(ERROR_INVALID_PARAMETER);
  std::u16string given, full;
  error = ProgramPathToUtf16(fileName, &given);
  if (error != 0) return Fail(error);
  // FindFirstFile(""): ERROR_PATH_NOT_FOUND.
  if (!MakeFullPath(given, &full)) return Fail(ERROR_PATH_NOT_FOUND);
  std::u16string mask = full.substr(LastNameStart(full));
  std::u16string folderPath = FolderOf(full);

  OpenSearch search;
  if (!mask.empty() && !HasWildcard(mask)) {
    // One entry by its name, as the exact-name walk asks for each name of a path. When it is found, every folder on
    // its way was found as a folder, so the checks below would all pass: one look-up of the path instead of two.
    DiskPath entry;
    if (FindOnDisk(full, &entry) == 0 && entry.exists && !entry.isRoot && !ForcedListingFailure(folderPath, &error)) {
      search.single = true;
      search.singleFacts = entry.facts;
      search.singleName = entry.diskName;
      return Opened(&search, findData);
    }
  }

  DiskPath folder;
  error = FindOnDisk(folderPath, &folder);
  if (error != 0) return Fail(error);
  if (!folder.exists) return Fail(ERROR_PATH_NOT_FOUND);
  // FindFirstFile("C:\dir\file.txt\*"): NTFS refuses a file's name with a backslash behind it as a bad name.
  if (!folder.facts.isDirectory) return Fail(ERROR_INVALID_NAME);
  if (ForcedListingFailure(folderPath, &error)) return Fail(error);
  // FindFirstFile("C:\dir\"): the folder is there, but there is no name to look for.
  if (mask.empty()) return Fail(ERROR_FILE_NOT_FOUND);

  if (!HasWildcard(mask)) {
    DiskPath entry;
    error = FindOnDisk(full, &entry);
    // The folder is good, so a bad name can only be the last one, which no entry can have: "a|b" finds nothing.
    if (error == ERROR_INVALID_NAME) error = ERROR_FILE_NOT_FOUND;
    if (error != 0) return Fail(error);
    // FindFirstFile("\\server\share"): a root is no entry of a folder, of a drive or of a share.
    if (!entry.exists || entry.isRoot) return Fail(ERROR_FILE_NOT_FOUND);
    search.single = true;
    search.singleFacts = entry.facts;
    search.singleName = entry.diskName;
  } else {
    // The dot that making the path full took from the end of "*." still counts for the mask.
    bool endedInDot = !given.empty() && given.back() == u'.';
    error = ReadFolder(folder.linux, folder.isRoot && !folder.onShare, DosMask(mask, endedInDot), &search);
    if (error != 0) return Fail(error);
  }
  return Opened(&search, findData);
}

BOOL FindNextFileA(HANDLE findFile, LPWIN32_FIND_DATAA findData) {
  auto found = Searches().find(findFile);
  if (found == Searches().end()) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  DWORD error;
  if (ForcedFailure(kFaultFindNextFile, &error)) {
    SetLastError(error);
    return FALSE;
  }
  if (!findData) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  if (!GiveNext(&found->second, findData)) {
    SetLastError(ERROR_NO_MORE_FILES);
    return FALSE;
  }
  return TRUE;
}

BOOL FindClose(HANDLE findFile) {
  auto found = Searches().find(findFile);
  if (found == Searches().end()) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  DWORD error;
  if (ForcedFailure(kFaultFindClose, &error)) {
    SetLastError(error);
    return FALSE;
  }
  CloseFolder(&found->second);
  Searches().erase(found);
  return TRUE;
}
