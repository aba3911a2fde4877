// Network browsing over the share table: the provider, its one group, the servers of the mapped shares and their
// shares, as Windows' browser gives them, so that the network listing sees on Linux what it sees on Windows.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/posix/files/share_table.h"
#include "platform/posix/testing.h"
#include "platform/posix/text/charset.h"
#include "platform/posix/text/path_names.h"
#include "platform/winapi.h"

namespace {

const char kProvider[] = "Microsoft Windows Network";
const char kDefaultGroup[] = "WORKGROUP";
const char kSambaConfig[] = "/etc/samba/smb.conf";

// A record with its strings owned, before it is packed into the caller's buffer.
struct Record {
  DWORD scope, type, displayType, usage;
  std::string remoteName;
  std::string comment;
  bool hasComment;
};

struct Browse {
  std::vector<Record> records;
  size_t next = 0;
};

std::set<Browse *> &OpenBrowses() {
  static std::set<Browse *> browses;
  return browses;
}

// The Samba configuration a test put in place of the machine's; empty for the machine's own.
std::string &SambaConfigOverride() {
  static std::string path;
  return path;
}

std::string Trimmed(const std::string &text) {
  size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) return "";
  size_t last = text.find_last_not_of(" \t\r");
  return text.substr(first, last - first + 1);
}

std::string Lower(std::string text) {
  for (char &c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

// The `workgroup` of the [global] section of a Samba configuration, or empty. Keys are read as Samba reads them:
// without case and without their blanks; ";" and "#" begin a comment line; a section that is named again goes on.
std::string SambaWorkgroup(const std::string &path) {
  std::ifstream file(path);
  std::string line, section = "global", group;
  while (std::getline(file, line)) {
    std::string text = Trimmed(line);
    if (text.empty() || text[0] == ';' || text[0] == '#') continue;
    if (text[0] == '[') {
      size_t end = text.find(']');
      section = Lower(Trimmed(text.substr(1, end == std::string::npos ? std::string::npos : end - 1)));
      continue;
    }
    size_t equals = text.find('=');
    if (section != "global" || equals == std::string::npos) continue;
    std::string key;
    for (char c : Lower(text.substr(0, equals)))
      if (c != ' ' && c != '\t') key.push_back(c);
    if (key == "workgroup") group = Trimmed(text.substr(equals + 1));
  }
  return group;
}

// The one group: Samba's workgroup where its configuration names one, else KELMARO_WORKGROUP, else "WORKGROUP".
// Samba's file is UTF-8; the environment is in the locale's charset.
std::string GroupName() {
  const std::string &override = SambaConfigOverride();
  std::string group = SambaWorkgroup(override.empty() ? kSambaConfig : override);
  if (!group.empty()) return Utf8ToCp932(group);
  const char *environment = std::getenv("KELMARO_WORKGROUP");
  if (environment != nullptr && *environment != 0) return LocaleToCp932(environment);
  return kDefaultGroup;
}

bool SameName(const std::string &a, const std::string &b) {
  return SameNameIgnoringCase(ProgramToUtf16(a), ProgramToUtf16(b));
}

bool ListsBeforeByName(const std::u16string &a, const std::u16string &b) { return FoldName(a) < FoldName(b); }

// The servers of the share table, each once, in name order without case.
std::vector<std::u16string> Servers(const std::vector<std::pair<std::u16string, std::u16string>> &shares) {
  std::vector<std::u16string> servers;
  for (const auto &share : shares) {
    bool seen = false;
    for (const std::u16string &server : servers) seen = seen || SameNameIgnoringCase(server, share.first);
    if (!seen) servers.push_back(share.first);
  }
  std::stable_sort(servers.begin(), servers.end(), ListsBeforeByName);
  return servers;
}

Record ProviderRecord() {
  return {
      RESOURCE_GLOBALNET, RESOURCETYPE_ANY, RESOURCEDISPLAYTYPE_NETWORK, RESOURCEUSAGE_CONTAINER, kProvider, "", false};
}

Record GroupRecord() {
  return {RESOURCE_GLOBALNET,
          RESOURCETYPE_ANY,
          RESOURCEDISPLAYTYPE_DOMAIN,
          RESOURCEUSAGE_CONTAINER,
          GroupName(),
          "",
          false};
}

std::vector<Record> ServerRecords() {
  std::vector<Record> records;
  for (const std::u16string &server : Servers(MappedShares()))
    records.push_back({RESOURCE_GLOBALNET, RESOURCETYPE_ANY, RESOURCEDISPLAYTYPE_SERVER, RESOURCEUSAGE_CONTAINER,
                       "\\\\" + Utf16ToProgram(server), "", true});
  return records;
}

// The shares of `server` (a program-text name), in name order; false when the table has no share of it.
bool ShareRecords(const std::string &server, DWORD scope, std::vector<Record> *records) {
  std::vector<std::pair<std::u16string, std::u16string>> shares = MappedShares();
  std::stable_sort(shares.begin(), shares.end(), [](const auto &a, const auto &b) {
    if (!SameNameIgnoringCase(a.first, b.first)) return ListsBeforeByName(a.first, b.first);
    return ListsBeforeByName(a.second, b.second);
  });
  bool any = false;
  for (const auto &share : shares) {
    if (!server.empty() && !SameNameIgnoringCase(share.first, ProgramToUtf16(server))) continue;
    any = true;
    records->push_back({scope, RESOURCETYPE_DISK, RESOURCEDISPLAYTYPE_SHARE, RESOURCEUSAGE_CONNECTABLE,
                        "\\\\" + Utf16ToProgram(share.first) + "\\" + Utf16ToProgram(share.second), "", true});
  }
  return any;
}

// The level below `parent` in a RESOURCE_GLOBALNET browse. Result: NO_ERROR, or the error of the open.
DWORD ChildrenOf(const NETRESOURCEA &parent, std::vector<Record> *records) {
  std::string remote = parent.lpRemoteName != nullptr ? parent.lpRemoteName : "";
  switch (parent.dwDisplayType) {
    case RESOURCEDISPLAYTYPE_NETWORK:
      if (!SameName(remote, kProvider)) return ERROR_BAD_NETPATH;
      records->push_back(GroupRecord());
      return NO_ERROR;
    case RESOURCEDISPLAYTYPE_DOMAIN:
      if (!SameName(remote, GroupName())) return ERROR_BAD_NETPATH;
      *records = ServerRecords();
      return NO_ERROR;
    case RESOURCEDISPLAYTYPE_SERVER:
      if (remote.size() < 3 || remote.compare(0, 2, "\\\\") != 0 || remote.find('\\', 2) != std::string::npos)
        return ERROR_BAD_NETPATH;
      return ShareRecords(remote.substr(2), RESOURCE_GLOBALNET, records) ? NO_ERROR : ERROR_BAD_NETPATH;
    case RESOURCEDISPLAYTYPE_SHARE:
      return ERROR_NOT_CONTAINER;
    default:
      return ERROR_BAD_NETPATH;
  }
}

// Whether a record passes a RESOURCE_GLOBALNET browse's usage and type filters.
bool Wanted(const Record &record, DWORD type, DWORD usage) {
  if (type == RESOURCETYPE_PRINT && record.usage != RESOURCEUSAGE_CONTAINER) return false;
  if (usage == 0 || (usage & (RESOURCEUSAGE_CONNECTABLE | RESOURCEUSAGE_CONTAINER)) == 0) return true;
  return (record.usage & usage) != 0;
}

DWORD Answer(DWORD code) {
  SetLastError(code);
  return code;
}

Browse *OpenBrowse(HANDLE handle) {
  Browse *browse = static_cast<Browse *>(handle);
  return OpenBrowses().count(browse) != 0 ? browse : nullptr;
}

size_t StringBytes(const Record &record) {
  return record.remoteName.size() + 1 + (record.hasComment ? record.comment.size() + 1 : 0) + sizeof kProvider;
}

}  // namespace

DWORD WNetOpenEnumA(DWORD scope, DWORD type, DWORD usage, LPNETRESOURCEA parent, LPHANDLE handle) {
  if (handle == nullptr) return Answer(ERROR_INVALID_PARAMETER);
  std::vector<Record> records;
  DWORD code = NO_ERROR;
  if (parent != nullptr && scope != RESOURCE_GLOBALNET) return Answer(ERROR_INVALID_PARAMETER);
  switch (scope) {
    case RESOURCE_GLOBALNET:
      if (parent == nullptr)
        records.push_back(ProviderRecord());
      else
        code = ChildrenOf(*parent, &records);
      break;
    case RESOURCE_CONTEXT:
      records.push_back(GroupRecord());
      break;
    case RESOURCE_CONNECTED:
      ShareRecords("", RESOURCE_CONNECTED, &records);
      break;
    case RESOURCE_REMEMBERED:
      break;
    default:
      return Answer(ERROR_INVALID_PARAMETER);
  }
  if (code != NO_ERROR) return Answer(code);
  auto browse = std::make_unique<Browse>();
  for (const Record &record : records)
    if (scope != RESOURCE_GLOBALNET || Wanted(record, type, usage)) browse->records.push_back(record);
  *handle = browse.get();
  OpenBrowses().insert(browse.release());
  return Answer(NO_ERROR);
}

DWORD WNetEnumResourceA(HANDLE handle, LPDWORD count, LPVOID buffer, LPDWORD bufferSize) {
  Browse *browse = OpenBrowse(handle);
  if (browse == nullptr) return Answer(ERROR_INVALID_HANDLE);
  if (count == nullptr || buffer == nullptr || bufferSize == nullptr) return Answer(ERROR_INVALID_PARAMETER);
  if (browse->next >= browse->records.size()) return Answer(ERROR_NO_MORE_ITEMS);
  char *base = static_cast<char *>(buffer);
  size_t size = *bufferSize;
  size_t front = 0, back = size;
  DWORD taken = 0;
  while (browse->next < browse->records.size() && (*count == 0xFFFFFFFFu || taken < *count)) {
    const Record &record = browse->records[browse->next];
    size_t strings = StringBytes(record);
    if (front + sizeof(NETRESOURCEA) + strings > back) break;
    NETRESOURCEA *out = reinterpret_cast<NETRESOURCEA *>(base + front);
    front += sizeof(NETRESOURCEA);
    auto place = [&](const std::string &text) {
      back -= text.size() + 1;
      std::memcpy(base + back, text.c_str(), text.size() + 1);
      return base + back;
    };
    out->dwScope = record.scope;
    out->dwType = record.type;
    out->dwDisplayType = record.displayType;
    out->dwUsage = record.usage;
    out->lpLocalName = nullptr;
    out->lpRemoteName = place(record.remoteName);
    out->lpComment = record.hasComment ? place(record.comment) : nullptr;
    out->lpProvider = place(kProvider);
    ++taken;
    ++browse->next;
  }
  if (taken == 0) {
    *bufferSize = static_cast<DWORD>(sizeof(NETRESOURCEA) + StringBytes(browse->records[browse->next]));
    return Answer(ERROR_MORE_DATA);
  }
  *count = taken;
  return Answer(NO_ERROR);
}

DWORD WNetCloseEnum(HANDLE handle) {
  Browse *browse = OpenBrowse(handle);
  if (browse == nullptr) return Answer(ERROR_INVALID_HANDLE);
  OpenBrowses().erase(browse);
  delete browse;
  return Answer(NO_ERROR);
}

DWORD WNetGetLastErrorA(LPDWORD error, LPSTR errorText, DWORD errorTextSize, LPSTR nameText, DWORD nameTextSize) {
  if (error == nullptr) return ERROR_INVALID_PARAMETER;
  *error = 0;
  if (errorText != nullptr && errorTextSize > 0) errorText[0] = 0;
  if (nameText != nullptr && nameTextSize > 0) nameText[0] = 0;
  return NO_ERROR;
}

void TestSetSambaConfig(const char *path) { SambaConfigOverride() = path != nullptr ? path : ""; }
