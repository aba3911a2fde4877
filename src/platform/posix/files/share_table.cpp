// The share table of the Linux backend.
#include "platform/posix/files/share_table.h"

#include <dirent.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "platform/posix/files/mount_table.h"
#include "platform/posix/files/testing.h"
#include "platform/posix/text/charset.h"
#include "platform/posix/text/path_names.h"

namespace {

struct ShareRow {
  std::u16string server;  // as its source spells it
  std::u16string share;
  std::string folder;  // the Linux folder, without a trailing "/" (except "/" itself)
};

struct ShareTable {
  bool loaded = false;
  std::vector<ShareRow> rows;  // in the order in which they win
};

ShareTable &Table() {
  static ShareTable table;
  return table;
}

// The runtime folder that a test has set in place of XDG_RUNTIME_DIR.
struct RuntimeFolderOverride {
  bool set = false;
  std::string folder;
};

RuntimeFolderOverride &RuntimeOverride() {
  static RuntimeFolderOverride runtime;
  return runtime;
}

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

std::string NormalisedFolder(std::string folder) {
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

// Splits "\\server\share" or "//server/share" (a separator behind the share is allowed) into its two names. Result:
// false for anything else: a missing or empty name, or a third one.
bool SplitUncRoot(const std::string &text, std::string *server, std::string *share) {
  if (text.size() < 2 || !IsSeparator(text[0]) || !IsSeparator(text[1])) return false;
  size_t serverEnd = 2;
  while (serverEnd < text.size() && !IsSeparator(text[serverEnd])) ++serverEnd;
  if (serverEnd == 2 || serverEnd == text.size()) return false;
  size_t shareEnd = serverEnd + 1;
  while (shareEnd < text.size() && !IsSeparator(text[shareEnd])) ++shareEnd;
  if (shareEnd == serverEnd + 1) return false;
  for (size_t i = shareEnd; i < text.size(); ++i)
    if (!IsSeparator(text[i])) return false;
  *server = text.substr(2, serverEnd - 2);
  *share = text.substr(serverEnd + 1, shareEnd - serverEnd - 1);
  return true;
}

// The items of KELMARO_SHARES, the last item first, so that a later item for the same share wins. Names are in the
// locale's charset, as the environment is; an item that is not "\\server\share=/folder" is passed over.
void AddEnvironmentShares(std::vector<ShareRow> *rows) {
  const char *shares = std::getenv("KELMARO_SHARES");
  std::string text = shares ? shares : "";
  std::vector<ShareRow> items;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find(';', start);
    if (end == std::string::npos) end = text.size();
    std::string item = text.substr(start, end - start);
    size_t equals = item.find('=');
    std::string server, share;
    if (equals != std::string::npos && equals + 1 < item.size() && item[equals + 1] == '/' &&
        SplitUncRoot(item.substr(0, equals), &server, &share))
      items.push_back({ProgramToUtf16(LocaleToCp932(server)), ProgramToUtf16(LocaleToCp932(share)),
                       NormalisedFolder(item.substr(equals + 1))});
    start = end + 1;
  }
  rows->insert(rows->end(), items.rbegin(), items.rend());
}

// The cifs and smb3 mounts of the mount table that show a whole share: their source names a share and nothing below
// it, they show the file system from its root, and no later mount hides them.
void AddMountedShares(std::vector<ShareRow> *rows) {
  std::vector<MountEntry> entries = ReadMountTable();
  for (size_t i = 0; i < entries.size(); ++i) {
    const MountEntry &entry = entries[i];
    if (entry.type != "cifs" && entry.type != "smb3") continue;
    std::string server, share;
    if (entry.root != "/" || !SplitUncRoot(entry.source, &server, &share) || IsHiddenMount(entries, i)) continue;
    rows->push_back({Utf8ToUtf16(server), Utf8ToUtf16(share), NormalisedFolder(entry.mountPoint)});
  }
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// A value of a gvfs mount name, with its "%XX" escapes undone.
std::string UnescapeGvfsValue(const std::string &value) {
  std::string out;
  for (size_t i = 0; i < value.size(); ++i) {
    int high = i + 2 < value.size() ? HexValue(value[i + 1]) : -1;
    int low = i + 2 < value.size() ? HexValue(value[i + 2]) : -1;
    if (value[i] == '%' && high >= 0 && low >= 0) {
      out.push_back(static_cast<char>(high * 16 + low));
      i += 2;
    } else {
      out.push_back(value[i]);
    }
  }
  return out;
}

// The shares that gvfs has mounted for this user: folders of $XDG_RUNTIME_DIR/gvfs named
// "smb-share:server=srv,share=data" (other keys, such as the user or the domain, may stand beside them). Only the
// names are read: asking a mount itself for anything would reach its server.
void AddGvfsShares(std::vector<ShareRow> *rows) {
  const RuntimeFolderOverride &runtime = RuntimeOverride();
  const char *environment = std::getenv("XDG_RUNTIME_DIR");
  std::string base = runtime.set ? runtime.folder : (environment ? environment : "");
  if (base.empty()) return;
  std::string gvfs = NormalisedFolder(base) + "/gvfs";
  DIR *dir = opendir(gvfs.c_str());
  if (!dir) return;
  std::vector<std::string> names;
  while (struct dirent *entry = readdir(dir)) names.push_back(entry->d_name);
  closedir(dir);
  // The listing's order is the file system's: sorted, the same share mounted twice always gives the same folder.
  std::sort(names.begin(), names.end());
  const std::string kPrefix = "smb-share:";
  for (const std::string &name : names) {
    if (name.compare(0, kPrefix.size(), kPrefix) != 0) continue;
    std::string server, share;
    for (const std::string &pair : SplitNonEmpty(name.substr(kPrefix.size()), ',')) {
      size_t equals = pair.find('=');
      if (equals == std::string::npos) continue;
      std::string key = pair.substr(0, equals);
      if (key == "server") server = UnescapeGvfsValue(pair.substr(equals + 1));
      if (key == "share") share = UnescapeGvfsValue(pair.substr(equals + 1));
    }
    if (server.empty() || share.empty()) continue;
    rows->push_back({Utf8ToUtf16(server), Utf8ToUtf16(share), gvfs + "/" + name});
  }
}

const ShareTable &Loaded() {
  ShareTable &table = Table();
  if (!table.loaded) {
    table.rows.clear();
    AddEnvironmentShares(&table.rows);
    AddMountedShares(&table.rows);
    AddGvfsShares(&table.rows);
    table.loaded = true;
  }
  return table;
}

bool Holds(const std::string &folder, const std::string &path) {
  if (folder == "/") return !path.empty() && path[0] == '/';
  return path.compare(0, folder.size(), folder) == 0 && (path.size() == folder.size() || path[folder.size()] == '/');
}

}  // namespace

bool ShareFolder(const std::u16string &server, const std::u16string &share, std::string *folder) {
  for (const ShareRow &row : Loaded().rows) {
    if (SameNameIgnoringCase(row.server, server) && SameNameIgnoringCase(row.share, share)) {
      *folder = row.folder;
      return true;
    }
  }
  return false;
}

bool LinuxPathToSharePath(const std::string &linuxPath, std::string *uncPath) {
  const ShareRow *best = nullptr;
  for (const ShareRow &row : Loaded().rows) {
    // A row that a row before it overrides for the same share is no name of the folder.
    std::string winner;
    if (!ShareFolder(row.server, row.share, &winner) || winner != row.folder) continue;
    if (Holds(row.folder, linuxPath) && (best == nullptr || row.folder.size() > best->folder.size())) best = &row;
  }
  if (best == nullptr) return false;
  std::string result = "\\\\" + Utf16ToUtf8(best->server) + "\\" + Utf16ToUtf8(best->share);
  std::string rest = best->folder == "/" ? linuxPath : linuxPath.substr(best->folder.size());
  for (const std::string &name : SplitNonEmpty(rest, '/')) result += "\\" + name;
  *uncPath = result;
  return true;
}

std::vector<std::pair<std::u16string, std::u16string>> MappedShares(void) {
  std::vector<std::pair<std::u16string, std::u16string>> shares;
  for (const ShareRow &row : Loaded().rows) {
    bool seen = false;
    for (const auto &share : shares)
      if (SameNameIgnoringCase(share.first, row.server) && SameNameIgnoringCase(share.second, row.share)) seen = true;
    if (!seen) shares.emplace_back(row.server, row.share);
  }
  return shares;
}

void ReloadShareTable(void) { Table().loaded = false; }

void TestSetRuntimeFolder(const char *folder) {
  RuntimeFolderOverride &runtime = RuntimeOverride();
  runtime.set = folder != nullptr;
  runtime.folder = folder != nullptr ? folder : "";
  ReloadShareTable();
}
