// Making Windows paths full and finding them on the Linux disk, for the Linux backend.
#include "platform/posix/files/path_resolver.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "platform/posix/files/drive_table.h"
#include "platform/posix/files/error_codes.h"
#include "platform/posix/files/fault_table.h"
#include "platform/posix/files/share_table.h"
#include "platform/posix/text/path_names.h"

namespace {

struct CurrentFolderState {
  bool known = false;
  std::u16string folder;
};

CurrentFolderState &Current() {
  static CurrentFolderState state;
  return state;
}

bool IsLetter(char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); }
char16_t UpperLetter(char16_t c) { return (c >= u'a' && c <= u'z') ? static_cast<char16_t>(c - u'a' + u'A') : c; }

// Characters that no Windows name may hold.
bool IsBadNameUnit(char16_t c) {
  return c < 0x20 || c == u'*' || c == u'?' || c == u'<' || c == u'>' || c == u':' || c == u'"' || c == u'|';
}

// Resolves "." and ".." among the names behind a root and trims dots the way Windows does: a name followed by "\"
// loses one trailing dot ("a.\b" is "a\b"), and the path loses all trailing dots and spaces unless it ends in "\".
// The names go straight into the result (every path of a run passes here, most of them several times).
std::u16string Normalise(const std::u16string &root, const std::u16string &rest) {
  std::u16string full;
  full.reserve(root.size() + rest.size());
  full = root;
  size_t names = 0;
  size_t i = 0;
  bool endsInSeparator = false;
  while (i < rest.size()) {
    size_t end = rest.find(u'\\', i);
    if (end == std::u16string::npos) end = rest.size();
    size_t length = end - i;
    bool followed = end < rest.size();
    if (length == 1 && rest[i] == u'.') {
    } else if (length == 2 && rest[i] == u'.' && rest[i + 1] == u'.') {
      // Back over the last name and the separator in front of it; the first name has none.
      if (names > 0) full.resize(--names == 0 ? root.size() : full.rfind(u'\\'));
    } else if (length > 0) {
      if (followed && rest[end - 1] == u'.') --length;
      if (names++ > 0) full += u'\\';
      full.append(rest, i, length);
    }
    if (followed) {
      endsInSeparator = true;
      i = end + 1;
      while (i < rest.size() && rest[i] == u'\\') ++i;
      if (i < rest.size()) endsInSeparator = false;
    } else {
      endsInSeparator = false;
      i = end;
    }
  }
  if (endsInSeparator && names > 0) {
    full += u'\\';
  } else {
    size_t keep = full.size();
    while (keep > root.size() && (full[keep - 1] == u'.' || full[keep - 1] == u' ')) --keep;
    full.resize(keep);
  }
  return full;
}

// The length of the root of a full path: 3 for "X:\"; for a path of the network, that of "\\server\share\", or of
// "\\server\share" where the path ends behind the share. 0 for a path with neither (a server alone, "\\server").
size_t RootLength(const std::u16string &full) {
  if (full.size() >= 3 && IsLetter(full[0]) && full[1] == u':' && full[2] == u'\\') return 3;
  if (full.size() < 3 || full[0] != u'\\' || full[1] != u'\\') return 0;
  size_t serverEnd = full.find(u'\\', 2);
  if (serverEnd == std::u16string::npos || serverEnd == 2 || serverEnd + 1 == full.size()) return 0;
  size_t shareEnd = full.find(u'\\', serverEnd + 1);
  if (shareEnd == serverEnd + 1) return 0;
  return shareEnd == std::u16string::npos ? full.size() : shareEnd + 1;
}

// The root of the current folder with its backslash: "C:\", or "\\server\share\" for a current folder on a share.
std::u16string CurrentRoot() {
  const std::u16string &current = CurrentFolder();
  size_t length = RootLength(current);
  if (length == 0) return u"\\";
  std::u16string root = current.substr(0, length);
  if (root.back() != u'\\') root += u'\\';
  return root;
}

std::string JoinLinux(const std::string &folder, const std::string &name) {
  if (folder == "/") return "/" + name;
  return folder + "/" + name;
}

// The names of a folder that was read for a look without case, by their folded form, so that the next look in the
// same folder reads nothing: a run looks up the same few folders (a program's folder, a drive root) for shortcut after
// shortcut, and reading the whole folder for each look made every such look cost as much as the folder is large.
struct FolderNames {
  std::string folder;                                        // its Linux path
  struct stat stamp;                                         // its facts when it was read
  std::unordered_map<std::u16string, std::string> byFolded;  // folded name -> the first name in listing order
  uint64_t lastUse = 0;
};

// A few folders are enough for the paths of one shortcut (each name of its target, icon and working folder).
const size_t kFoldersKept = 8;
// A folder changed this recently is not kept: its time stamps could still be those of a change that comes after the
// reading, as the file system takes them from a clock that moves in ticks of a few milliseconds.
const int64_t kSettledNanoseconds = 100 * 1000 * 1000;

std::vector<FolderNames> &KeptFolders() {
  static std::vector<FolderNames> kept;
  return kept;
}

int64_t Nanoseconds(const struct timespec &time) {
  return static_cast<int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
}

// Whether the folder is still as it was read: an entry made, removed or renamed in it changes its change time and its
// modification time.
bool SameStamp(const struct stat &a, const struct stat &b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && Nanoseconds(a.st_mtim) == Nanoseconds(b.st_mtim) &&
         Nanoseconds(a.st_ctim) == Nanoseconds(b.st_ctim);
}

// Reads a folder's names into `names`. Result: 0, or the error of reading the folder.
DWORD ReadFolderNames(const std::string &folder, FolderNames *names) {
  CountFolderRead();
  DIR *dir = opendir(folder.c_str());
  if (!dir) return errno == ENOENT || errno == ENOTDIR ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno);
  while (struct dirent *entry = readdir(dir)) {
    std::string name = entry->d_name;
    if (name == "." || name == "..") continue;
    // Of several names that differ only in case, the first in listing order: for one folded name, by bytes.
    auto inserted = names->byFolded.emplace(FoldName(Utf8ToUtf16(name)), name);
    if (!inserted.second && name < inserted.first->second) inserted.first->second = std::move(name);
  }
  closedir(dir);
  return 0;
}

// Looks in a folder for an entry whose name equals `folded` without case. Result: 0 with `*found` set, 0 with it empty
// when there is none, or the error of reading the folder. A folder kept from an earlier look answers when its time
// stamps show no change since (one stat instead of a reading).
DWORD FindIgnoringCase(const std::string &folder, const std::u16string &folded, std::string *found) {
  found->clear();
  std::vector<FolderNames> &kept = KeptFolders();
  static uint64_t uses = 0;
  ++uses;
  struct timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  struct stat stamp;
  bool stamped = stat(folder.c_str(), &stamp) == 0;
  for (auto names = kept.begin(); stamped && names != kept.end(); ++names) {
    if (names->folder != folder) continue;
    if (SameStamp(names->stamp, stamp)) {
      auto hit = names->byFolded.find(folded);
      if (hit == names->byFolded.end()) {
        names->lastUse = uses;
        return 0;
      }
      // The name itself is asked for as well: a folder whose times were set back, or a clock that went back, must not
      // make a kept name give an entry that is gone.
      struct stat entry;
      if (lstat(JoinLinux(folder, hit->second).c_str(), &entry) == 0) {
        names->lastUse = uses;
        *found = hit->second;
        return 0;
      }
    }
    kept.erase(names);
    break;
  }

  FolderNames names;
  DWORD error = ReadFolderNames(folder, &names);
  if (error != 0) return error;
  auto hit = names.byFolded.find(folded);
  if (hit != names.byFolded.end()) *found = hit->second;
  bool settled = Nanoseconds(now) - Nanoseconds(stamp.st_mtim) > kSettledNanoseconds &&
                 Nanoseconds(now) - Nanoseconds(stamp.st_ctim) > kSettledNanoseconds;
  if (stamped && settled) {
    names.folder = folder;
    names.stamp = stamp;
    names.lastUse = uses;
    if (kept.size() == kFoldersKept) {
      auto oldest = kept.begin();
      for (auto k = kept.begin(); k != kept.end(); ++k)
        if (k->lastUse < oldest->lastUse) oldest = k;
      kept.erase(oldest);
    }
    kept.push_back(std::move(names));
  }
  return 0;
}

}  // namespace

DWORD ProgramPathToUtf16(const char *path, std::u16string *out) {
  out->clear();
  if (!path) return ERROR_PATH_NOT_FOUND;
  *out = ProgramToUtf16(path);
  // An "A" call converts its path into a buffer of MAX_PATH + 1 units, terminator included.
  if (out->size() > MAX_PATH) return ERROR_FILENAME_EXCED_RANGE;
  return 0;
}

bool MakeFullPath(const std::u16string &given, std::u16string *full) {
  full->clear();
  if (given.empty()) return false;
  std::u16string path = given;
  for (char16_t &c : path)
    if (c == u'/') c = u'\\';

  if (path.size() >= 2 && path[0] == u'\\' && path[1] == u'\\') {
    if (path.size() >= 3 && (path[2] == u'?' || path[2] == u'.') && (path.size() == 3 || path[3] == u'\\')) {
      *full = path;
      return true;
    }
    // "\\server\share" is the root; ".." never climbs above it.
    size_t end = 2;
    for (int names = 0; names < 2 && end < path.size(); ++names) {
      while (end < path.size() && path[end] != u'\\') ++end;
      if (names == 0 && end < path.size()) ++end;
    }
    std::u16string root = path.substr(0, end);
    std::u16string rest = end < path.size() ? path.substr(end + 1) : std::u16string();
    if (end < path.size()) root += u'\\';
    *full = Normalise(root, rest);
    return true;
  }

  std::u16string root, rest;
  if (path.size() >= 2 && IsLetter(path[0]) && path[1] == u':') {
    if (path.size() >= 3 && path[2] == u'\\') {
      root = path.substr(0, 3);
      rest = path.substr(3);
    } else {
      const std::u16string &current = CurrentFolder();
      bool currentDrive = current.size() >= 2 && current[1] == u':' && UpperLetter(current[0]) == UpperLetter(path[0]);
      if (currentDrive) {
        root = current.substr(0, 3);
        // "C:" alone is the current folder with its backslash, as Windows keeps it.
        rest = current.substr(3) + u"\\" + path.substr(2);
      } else {
        root = path.substr(0, 2) + u"\\";
        rest = path.substr(2);
      }
    }
  } else if (path[0] == u'\\') {
    root = CurrentRoot();
    rest = path.substr(1);
  } else {
    const std::u16string &current = CurrentFolder();
    root = CurrentRoot();
    rest = (root.size() <= current.size() ? current.substr(root.size()) : std::u16string()) + u"\\" + path;
  }
  *full = Normalise(root, rest);
  return true;
}

size_t LastNameStart(const std::u16string &full) {
  size_t slash = full.rfind(u'\\');
  return slash == std::u16string::npos ? 0 : slash + 1;
}

std::u16string FolderOf(const std::u16string &full) {
  size_t start = LastNameStart(full);
  if (start == 0) return std::u16string();
  std::u16string folder = full.substr(0, start);
  if (!(folder.size() == 3 && folder[1] == u':') && folder.size() > 1) folder.pop_back();
  return folder;
}

std::string DriveRootOf(char16_t letter) {
  if (!IsLetter(letter)) return std::string();
  return DriveRoot(static_cast<char>(letter));
}

DWORD FindOnDisk(const std::u16string &full, DiskPath *path) {
  *path = DiskPath();
  path->full = full;
  std::string root;
  size_t rootLength = RootLength(full);
  // A root that is missing or is no folder: a drive that is not there, or a share that cannot be reached.
  DWORD missingRoot = ERROR_PATH_NOT_FOUND;
  if (full.size() >= 2 && full[0] == u'\\' && full[1] == u'\\') {
    // "\\server\share\..." is found in the folder where the share is mounted. A share that no source maps, a server
    // alone, and the device paths ("\\?\", "\\.\") are ERROR_BAD_NETPATH, as Windows answers for a server that is
    // not there.
    if (rootLength == 0) return ERROR_BAD_NETPATH;
    size_t serverEnd = full.find(u'\\', 2);
    size_t shareEnd = full[rootLength - 1] == u'\\' ? rootLength - 1 : rootLength;
    if (!ShareFolder(full.substr(2, serverEnd - 2), full.substr(serverEnd + 1, shareEnd - serverEnd - 1), &root))
      return ERROR_BAD_NETPATH;
    path->onShare = true;
    missingRoot = ERROR_BAD_NETPATH;
  } else {
    if (rootLength != 3) return ERROR_PATH_NOT_FOUND;
    root = DriveRootOf(full[0]);
    if (root.empty()) return ERROR_PATH_NOT_FOUND;
  }

  // The names behind the root are checked, and joined as written into the Linux path, without splitting the path
  // into a list of names: nearly every path is found as written, and each costs only this and one call.
  bool hasNames = false;
  for (size_t i = rootLength; i < full.size(); ++i) {
    if (full[i] == u'\\') continue;
    if (IsBadNameUnit(full[i])) return ERROR_INVALID_NAME;
    hasNames = true;
  }
  path->endsInSeparator = full.size() > rootLength && full.back() == u'\\';

  if (!hasNames) {
    path->isRoot = true;
    path->linux = root;
    int error = ReadEntryFacts(AT_FDCWD, root.c_str(), &path->facts);
    if (error != 0 || !path->facts.isDirectory) return missingRoot;
    path->exists = true;
    return 0;
  }

  // Every name as written: one call.
  std::string rest = Utf16ToUtf8(full.substr(rootLength));
  std::string linux;
  linux.reserve(root.size() + rest.size() + 1);
  linux = root;
  size_t lastName = 0;
  for (size_t i = 0; i < rest.size();) {
    size_t end = rest.find('\\', i);
    if (end == std::string::npos) end = rest.size();
    if (end > i) {
      if (linux.back() != '/') linux += '/';
      lastName = linux.size();
      linux.append(rest, i, end - i);
    }
    i = end + 1;
  }
  int error = ReadEntryFacts(AT_FDCWD, linux.c_str(), &path->facts);
  if (error == 0) {
    path->linux = std::move(linux);
    path->diskName = path->linux.substr(lastName);
    path->exists = true;
  } else if (error != ENOENT && error != ENOTDIR) {
    return ErrorFromErrno(error);
  } else {
    // Name by name, from the root; a name not there as written is looked for without case.
    std::vector<std::string> names = SplitNonEmpty(rest, '\\');
    std::string folder = root;
    EntryFacts facts;
    if (ReadEntryFacts(AT_FDCWD, root.c_str(), &facts) != 0 || !facts.isDirectory) return missingRoot;
    for (size_t k = 0; k < names.size(); ++k) {
      bool last = k + 1 == names.size();
      std::string candidate = JoinLinux(folder, names[k]);
      error = ReadEntryFacts(AT_FDCWD, candidate.c_str(), &facts);
      if (error == ENOENT) {
        std::string found;
        DWORD failure = FindIgnoringCase(folder, FoldName(Utf8ToUtf16(names[k])), &found);
        if (failure != 0) return failure;
        if (!found.empty()) {
          names[k] = found;
          candidate = JoinLinux(folder, found);
          error = ReadEntryFacts(AT_FDCWD, candidate.c_str(), &facts);
        }
      }
      if (error == ENOENT && last) {
        path->linux = candidate;
        path->diskName = names[k];
        return 0;
      }
      if (error == ENOENT || error == ENOTDIR) return ERROR_PATH_NOT_FOUND;
      if (error != 0) return ErrorFromErrno(error);
      if (!last && !facts.isDirectory) return ERROR_PATH_NOT_FOUND;
      folder = candidate;
    }
    path->linux = folder;
    path->diskName = names.back();
    path->facts = facts;
    path->exists = true;
  }
  // NTFS refuses a file's name with a backslash behind it as a bad name.
  if (path->endsInSeparator && !path->facts.isDirectory) return ERROR_INVALID_NAME;
  return 0;
}

DWORD FindShareRoot(const std::u16string &path, std::string *linuxFolder, bool *isRoot) {
  std::u16string full;
  if (path.size() < 2 || path[0] != path[1] || (path[0] != u'\\' && path[0] != u'/') || !MakeFullPath(path, &full))
    return ERROR_BAD_NETPATH;
  size_t rootLength = RootLength(full);
  if (rootLength == 0) return ERROR_BAD_NETPATH;
  DiskPath root;
  if (FindOnDisk(full.substr(0, rootLength), &root) != 0 || !root.exists) return ERROR_BAD_NETPATH;
  *linuxFolder = root.linux;
  *isRoot = full.size() == rootLength;
  return 0;
}

DWORD FindProgramPath(const char *path, DiskPath *found) {
  *found = DiskPath();
  std::u16string wide, full;
  DWORD error = ProgramPathToUtf16(path, &wide);
  if (error != 0) return error;
  if (!MakeFullPath(wide, &full)) return ERROR_PATH_NOT_FOUND;
  return FindOnDisk(full, found);
}

const std::u16string &CurrentFolder(void) {
  CurrentFolderState &state = Current();
  if (!state.known) {
    state.folder.clear();
    std::vector<char> buffer(4096);
    std::string drivePath;
    // By the drive that holds the process's folder, or else by the share that holds it, as the command line names
    // such a folder.
    if (getcwd(buffer.data(), buffer.size()) &&
        (LinuxPathToDrivePath(buffer.data(), &drivePath) || LinuxPathToSharePath(buffer.data(), &drivePath)))
      state.folder = Utf8ToUtf16(drivePath);
    for (char letter = 'A'; state.folder.empty() && letter <= 'Z'; ++letter)
      if (!DriveRoot(letter).empty()) state.folder = std::u16string(1, static_cast<char16_t>(letter)) + u":\\";
    if (state.folder.empty()) state.folder = u"C:\\";
    state.known = true;
  }
  return state.folder;
}

void SetCurrentFolder(const std::u16string &full) {
  CurrentFolderState &state = Current();
  state.folder = full;
  if (state.folder.size() > 3 && state.folder.back() == u'\\') state.folder.pop_back();
  state.known = true;
}

void ForgetCurrentFolder(void) { Current().known = false; }
