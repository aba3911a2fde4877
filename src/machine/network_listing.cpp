// The network listing: the list of what the browser has shown, the walk down the network that fills it, and the
// find calls that serve the places above share level from it.
#include "machine/network_listing.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>

#include "console/console_prompt.h"
#include "machine/network_paths.h"
#include "platform/system_calls.h"
#include "resources/message_ids.h"
#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/quoted_args.h"
#include "text/resource_strings.h"
#include "text/tokens.h"

namespace {

// The group of a UNC path whose group is not known yet: "\:\////\srv\share".
const char kPlaceholder[] = "\\:\\////";
const DWORD kBrowseBufferSize = 16384;
const DWORD kMessageSize = 65535;
// The Insert key: held down, it stops a browse.
const int kStopKey = 45;
// The usage of every browse: connectable, container and attached, that is everything.
const DWORD kUsageAll = 19;
// A browse without a parent starts at the caller's own part of the network.
const DWORD kScopeContext = 5;
// Walk codes of EnumerateLevel.
enum WalkCode {
  kWalkStopKey = -3,
  kWalkCancelled = -4,
  kWalkListed = -5,
  kWalkNoMessage = -6,
  kWalkBelowShare = -7,
  kWalkFailed = -1,
  kWalkNothing = 0,
  kWalkDone = 1,
};
// Bits that the walk adds to the target's class.
const unsigned kLevelReadToEnd = 0x800;
const unsigned kWalkEnds = 0x1000;
// The Unreachable value of a node that a target named and the browser did not show (the browser's own refusal is 1).
// Such a node only answers for itself and what lies below it: a listing of its level passes it over.
const int kNotThere = 2;

NetworkNode *listHead = nullptr;
NetworkNode *listTail = nullptr;

char targetPath[kPathSize] = "";
int targetDepth = 0;
unsigned enumClass = 0;
char listPath[kPathSize] = "";
char unmatchedName[kPathSize] = "";
char savedTarget[kPathSize] = "";
DWORD networkError = 0;
DWORD scopeParam = 0, typeParam = 0, usageParam = 0;
int levelCount = 0, serverLevelCount = 0;
DWORD enumSerial = 0;
int messageShown = 0;
int quietNetwork = 0, suppressNetworkMessages = 0, reportRefusedAccess = 0;
// The messages told and not yet taken into the result text: text, then place.
std::deque<std::pair<std::string, std::string>> waitingMessages;

void CopyPath(char *dest, const char *src) { std::snprintf(dest, kPathSize, "%s", src != nullptr ? src : ""); }

// `dest` (520 bytes) becomes the texts one behind the other, cut to fit.
void Concat(char *dest, const char *a, const char *b, const char *c = "", const char *d = "") {
  size_t used = 0;
  for (const char *part : {a, b, c, d}) {
    for (; part != nullptr && *part != 0 && used + 1 < kPathSize; ++part) dest[used++] = *part;
  }
  dest[used] = 0;
}

char *CopyText(const char *text) {
  if (text == nullptr) return nullptr;
  size_t length = std::strlen(text);
  char *copy = new char[length + 1];
  std::memcpy(copy, text, length + 1);
  return copy;
}

NetResourceCopy *CopyResource(const NetResourceCopy &from, const char *remoteName) {
  return new NetResourceCopy{from.dwScope,
                             from.dwType,
                             from.dwDisplayType,
                             from.dwUsage,
                             CopyText(from.lpLocalName),
                             CopyText(remoteName),
                             CopyText(from.lpComment),
                             CopyText(from.lpProvider)};
}

// Compares the first `length` bytes of two texts without case, as lstrcmpiA compares whole texts: 0 when equal.
int CompareNoCase(const char *a, const char *b, size_t length) {
  char left[kPathSize], right[kPathSize];
  std::snprintf(left, sizeof left, "%.*s", static_cast<int>(length), a);
  std::snprintf(right, sizeof right, "%.*s", static_cast<int>(length), b);
  return lstrcmpiA(left, right);
}

bool SameText(const char *a, const char *b) {
  if (a == nullptr || b == nullptr) return a == b;
  return lstrcmpiA(a, b) == 0;
}

int IsListedDisplayType(DWORD displayType) { return displayType >= 1 && displayType <= 3; }

// The text of a view path behind its group ("\srv\share" of "\:\grp\srv\share"), null for a group alone.
const char *BehindGroup(const char *view) {
  if (view[0] != '\\' || view[1] != ':' || view[2] != '\\') return nullptr;
  return FindCharacter(view + 3, '\\');
}

// The group of a view path into `group` (520 bytes): "grp" of "\:\grp\srv".
void GroupOf(const char *view, char *group) {
  group[0] = 0;
  if (view[0] != '\\' || view[1] != ':' || view[2] != '\\') return;
  CopyPath(group, view + 3);
  char *end = FindCharacter(group, '\\');
  if (end != nullptr) *end = 0;
}

// The node's path in the form of a search: the view path for a view search; for a UNC search "\\srv\share", the
// view path with its group taken out, so that a UNC path finds its place in whatever group holds it. A group has no
// UNC form: false.
bool SearchForm(const NetworkNode *node, bool unc, char *form) {
  const char *view = node->Resource->lpRemoteName;
  if (!unc) {
    CopyPath(form, view);
    return true;
  }
  const char *tail = BehindGroup(view);
  if (tail == nullptr) return false;
  Concat(form, "\\", tail);
  return true;
}

// 1 when `form` starts with `place` and names an entry right below it: "\\srv\share" below "\\srv", "\\srv" below
// the UNC root "\\".
bool IsEntryBelow(const char *form, const char *place) {
  size_t length = std::strlen(place);
  if (std::strlen(form) <= length || CompareNoCase(form, place, length) != 0) return false;
  const char *rest = form + length;
  if (length == 0 || place[length - 1] != '\\') {
    if (*rest != '\\') return false;
    ++rest;
  }
  return *rest != 0 && FindCharacter(rest, '\\') == nullptr;
}

// 1 when `place` lies below `form`: "\\srv\share" below "\\srv".
bool IsAncestor(const char *form, const char *place) {
  size_t length = std::strlen(form);
  return std::strlen(place) > length && CompareNoCase(place, form, length) == 0 && place[length] == '\\';
}

// Cuts a last component that holds a wildcard off `search`, leaving the place it lists ("\\" of "\\*.*", "\:\" of
// "\:\*.*"). Result: true when one was cut.
bool CutWildcard(char *search) {
  char *last = FindLastCharacter(search, '\\');
  if (last == nullptr) return false;
  if (FindCharacter(last, '*') == nullptr && FindCharacter(last, '?') == nullptr) return false;
  bool root = (last == search + 1 && search[0] == '\\') || (last == search + 2 && search[1] == ':');
  last[root ? 1 : 0] = 0;
  return true;
}

// The system's own name of a node: "\\srv\share" for a server or share, the group's name for a group.
void SystemName(const NetworkNode *node, char *name) {
  const char *tail = BehindGroup(node->Resource->lpRemoteName);
  if (tail != nullptr)
    Concat(name, "\\", tail);
  else
    GroupOf(node->Resource->lpRemoteName, name);
}

// A node the list holds already: the same depth, local name, view path, comment and provider.
NetworkNode *LookUpExact(int depth, const char *localName, const char *view, const char *comment,
                         const char *provider) {
  for (NetworkNode *node = listHead; node != nullptr; node = node->Next) {
    const NetResourceCopy *r = node->Resource;
    if (node->Depth == depth && SameText(r->lpLocalName, localName) && SameText(r->lpRemoteName, view) &&
        SameText(r->lpComment, comment) && SameText(r->lpProvider, provider))
      return node;
  }
  return nullptr;
}

// The view path of a browser record: a UNC name gets the group that the walk stands in, any other name (a group's)
// gets "\:\" in front.
void ViewPathOf(const char *remoteName, char *view) {
  CopyPath(view, remoteName);
  if (AddNetworkPrefix(view) == 1) return;
  if (IsUncPath(view)) {
    // No group is known: the placeholder stands for it.
    Concat(view, kPlaceholder, remoteName + 1);
    return;
  }
  char name[kPathSize];
  CopyPath(name, remoteName);
  Concat(view, "\\:\\", name);
}

void AppendNode(const NETRESOURCEA &entry, const char *view, DWORD siblings, int unreachable) {
  NetResourceCopy from = {entry.dwScope,     entry.dwType,       entry.dwDisplayType, entry.dwUsage,
                          entry.lpLocalName, entry.lpRemoteName, entry.lpComment,     entry.lpProvider};
  NetworkNode *node = new NetworkNode{CopyResource(from, view),  nullptr,     siblings, enumSerial,
                                      std::abs(PathDepth(view)), unreachable, 0};
  if (listTail != nullptr)
    listTail->Next = node;
  else
    listHead = node;
  listTail = node;
}

// Adds the groups, servers and shares of one batch that the list does not hold yet; the batch gets the next serial.
void AddBatchToList(const NETRESOURCEA *entries, DWORD count) {
  ++enumSerial;
  for (DWORD i = 0; i < count; ++i) {
    const NETRESOURCEA &entry = entries[i];
    if (!IsListedDisplayType(entry.dwDisplayType) || entry.lpRemoteName == nullptr) continue;
    char view[kPathSize];
    ViewPathOf(entry.lpRemoteName, view);
    if (LookUpExact(std::abs(PathDepth(view)), entry.lpLocalName, view, entry.lpComment, entry.lpProvider)) continue;
    AppendNode(entry, view, count, 0);
  }
}

// A place the browser could not open: its node is marked, or added marked when the list does not hold it.
void MarkUnreachable(const NETRESOURCEA &place) {
  if (place.lpRemoteName == nullptr) return;
  char view[kPathSize];
  ViewPathOf(place.lpRemoteName, view);
  for (NetworkNode *node = listHead; node != nullptr; node = node->Next) {
    if (SameText(node->Resource->lpRemoteName, view)) {
      node->Unreachable = 1;
      return;
    }
  }
  ++enumSerial;
  AppendNode(place, view, 1, 1);
}

// A place that a target named and the browser did not show: a node of its level, marked kNotThere, whose view path is
// `place` with `name` behind it.
void AddMissingNode(int level, const char *place, const char *name) {
  char view[kPathSize];
  Concat(view, place, level == 1 ? "" : "\\", name);
  const char *tail = BehindGroup(view);
  char remote[kPathSize];
  if (tail != nullptr)
    Concat(remote, "\\", tail);
  else
    CopyPath(remote, name);
  NETRESOURCEA missing = {RESOURCE_GLOBALNET,
                          RESOURCETYPE_ANY,
                          static_cast<DWORD>(level),
                          RESOURCEUSAGE_CONTAINER,
                          nullptr,
                          remote,
                          nullptr,
                          nullptr};
  ++enumSerial;
  AppendNode(missing, view, 1, kNotThere);
}

// The component of TargetPath at `level` (1 group, 2 server, 3 share) into `name`; empty when it has none.
void TargetComponent(int level, char *name) {
  name[0] = 0;
  const char *p = targetPath + 2;  // the backslash in front of the group
  for (int i = 1; i < level && p != nullptr; ++i) p = FindCharacter(p + 1, '\\');
  if (p == nullptr) return;
  CopyPath(name, p + 1);
  char *end = FindCharacter(name, '\\');
  if (end != nullptr) *end = 0;
}

// The part of TargetPath in front of the component at `level`: the place in which that component was looked for.
void TargetPlace(int level, char *place) {
  CopyPath(place, targetPath);
  char *p = place + 2;
  for (int i = 1; i < level && p != nullptr; ++i) p = FindCharacter(p + 1, '\\');
  if (p != nullptr) p[level == 1 ? 1 : 0] = 0;
}

// The last component of a browser name: "share" of "\\srv\share", "srv" of "\\srv", a group's name as it is.
const char *LastComponent(const char *remoteName) {
  const char *last = FindLastCharacter(remoteName, '\\');
  return last != nullptr ? last + 1 : remoteName;
}

// Whether a browser record at `level` is the one the target names there. A group of a target whose group is not
// known is any group: the first one the browser shows becomes the target's group.
bool MatchEntry(const NETRESOURCEA &entry, int level) {
  if (entry.lpRemoteName == nullptr) return false;
  char want[kPathSize];
  TargetComponent(level, want);
  if (level == 1 && std::strncmp(targetPath, kPlaceholder, sizeof kPlaceholder - 1) == 0) {
    CopyPath(savedTarget, targetPath);
    char group[kPathSize], unc[kPathSize];
    CopyPath(group, entry.lpRemoteName);
    Concat(unc, "\\", savedTarget + sizeof kPlaceholder - 1);
    ComposeNetworkPath(targetPath, group, unc);
    return true;
  }
  if (lstrcmpiA(LastComponent(entry.lpRemoteName), want) != 0) return false;
  // The target takes the network's spelling of the name.
  char spelled[kPathSize];
  TargetPlace(level, spelled);
  const char *rest = targetPath + std::strlen(spelled) + std::strlen(want) + (level == 1 ? 0 : 1);
  char tail[kPathSize];
  CopyPath(tail, rest);
  Concat(targetPath, spelled, level == 1 ? "" : "\\", LastComponent(entry.lpRemoteName), tail);
  return true;
}

int LevelOf(DWORD displayType) { return IsListedDisplayType(displayType) ? static_cast<int>(displayType) : 0; }

// Composes the failure message for ReportNetworkFailure's code into `text`. Result: false when the code has none.
bool NetworkMessageText(DWORD code, char *text, DWORD size) {
  static const DWORD kRefusals[] = {50,   52,   53,   54,   55,   56,   57,   58,   59,   64,   65,   66,   67,
                                    69,   86,   88,   1203, 1205, 1214, 1220, 1222, 1225, 1227, 1229, 1231, 1234,
                                    1236, 1241, 1244, 1245, 1707, 1724, 1739, 1763, 1790, 1792, 2108, 2250, 4100};
  UINT id = kMsgNetworkDriveError;
  switch (code) {
    case ERROR_EXTENDED_ERROR: {
      DWORD providerError = 0;
      char providerText[kPathSize] = "";
      char providerName[kPathSize] = "";
      if (WNetGetLastErrorA(&providerError, providerText, sizeof providerText, providerName, sizeof providerName) ==
              NO_ERROR &&
          providerText[0] != 0) {
        std::snprintf(text, size, "\n\n%s", providerText);
        return true;
      }
      break;
    }
    case ERROR_PATH_NOT_FOUND:
      id = kMsgNetworkFolderNotFound;
      break;
    case ERROR_INVALID_PASSWORD:
      id = kMsgPasswordInvalid;
      break;
    case ERROR_NO_NETWORK:
      id = kMsgNetworkNotConnected;
      break;
    case ERROR_NOT_ENOUGH_MEMORY:
      id = kMsgNoMemoryForDialog;
      break;
    case ERROR_ACCESS_DENIED:
      if (!reportRefusedAccess) return false;
      id = kMsgNetworkRefusedAskPassword;
      break;
    default:
      for (DWORD refusal : kRefusals)
        if (refusal == code) id = kMsgNetworkRefused;
      break;
  }
  LoadStrings(id, 0);
  std::snprintf(text, size, "%s", FirstSlotText());
  return true;
}

// The system's own text for `code`, line ends trimmed, into `text`; empty when the system has none.
void SystemText(DWORD code, char *text, DWORD size) {
  text[0] = 0;
  DWORD length =
      FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text, size, nullptr);
  if (length == 0 || length >= size) {
    text[0] = 0;
    return;
  }
  while (length > 0 && (text[length - 1] == '\r' || text[length - 1] == '\n' || text[length - 1] == ' '))
    text[--length] = 0;
}

// One browse of the level below `parent` (the top without one), and on down along TargetPath. Every batch goes to the
// list; a level above the target's looks for the target's entry there and goes down into it.
int EnumerateLevel(const NETRESOURCEA *parent, unsigned *cls, DWORD *errorOut) {
  SetLastError(0);
  HANDLE browse = nullptr;
  DWORD opened = WNetOpenEnumA(scopeParam, typeParam, usageParam, const_cast<NETRESOURCEA *>(parent), &browse);
  if (IsKeyDown(kStopKey)) {
    if (opened == NO_ERROR) WNetCloseEnum(browse);
    return kWalkStopKey;
  }
  if (opened != NO_ERROR) {
    if (opened == ERROR_INVALID_PARAMETER) return kWalkDone;
    if (opened == ERROR_BAD_NETPATH) {
      // The place is not there, or does not answer: it stays in the list as such, and is not asked again.
      if (parent != nullptr) MarkUnreachable(*parent);
      return kWalkFailed;
    }
    *errorOut = opened;
    if (opened == ERROR_EXTENDED_ERROR) {
      int suppressed = suppressNetworkMessages;
      suppressNetworkMessages = 0;
      ReportNetworkFailure(nullptr, opened, targetPath, parent);
      suppressNetworkMessages = suppressed;
      if (!messageShown) return serverLevelCount < 2 ? kWalkNoMessage : kWalkNothing;
      return kWalkFailed;
    }
    ReportNetworkFailure(nullptr, opened, targetPath, parent);
    return kWalkNothing;
  }
  if (IsStopRequested()) {
    WNetCloseEnum(browse);
    return kWalkCancelled;
  }
  HGLOBAL bufferHandle = nullptr;
  DWORD granted = 0;
  char *buffer = AcquireBlock(&bufferHandle, nullptr, kBrowseBufferSize, &granted);
  int result = kWalkNothing;
  bool listing = false;  // this level is the one the target lists
  bool leave = false;
  int lookingLevel = 0;  // the level at which the target's name was looked for and not found yet
  DWORD entriesSeen = 0;
  while (buffer != nullptr && !leave) {
    DWORD count = 0xFFFFFFFFu;
    DWORD size = granted;
    DWORD answer = WNetEnumResourceA(browse, &count, buffer, &size);
    if (IsStopRequested()) {
      result = kWalkCancelled;
      break;
    }
    if (answer == ERROR_NO_MORE_ITEMS) {
      *cls |= kLevelReadToEnd;
      break;
    }
    if (answer != NO_ERROR) {
      *errorOut = answer;
      ReportNetworkFailure(nullptr, answer, targetPath, nullptr);
      result = kWalkFailed;
      break;
    }
    const NETRESOURCEA *entries = reinterpret_cast<const NETRESOURCEA *>(buffer);
    entriesSeen += count;
    AddBatchToList(entries, count);
    if (*cls & kNetRoot) {
      // One batch is enough for the network root.
      *cls |= kWalkEnds;
      result = kWalkDone;
      break;
    }
    for (DWORD i = 0; i < count && !leave && !listing; ++i) {
      if (IsStopRequested()) {
        result = kWalkCancelled;
        leave = true;
        break;
      }
      const NETRESOURCEA &entry = entries[i];
      int level = LevelOf(entry.dwDisplayType);
      if (level >= targetDepth) {
        listing = true;
        break;
      }
      if (level != 0) {
        lookingLevel = level;
        if (!MatchEntry(entry, level)) continue;
        lookingLevel = 0;
        if (entry.dwDisplayType == RESOURCEDISPLAYTYPE_SHARE) {
          // The target lies below a share: the file system has it.
          *cls |= kWalkEnds;
          result = kWalkBelowShare;
          leave = true;
          break;
        }
        if (level == 1) CopyPath(GroupHintText(), entry.lpRemoteName);
      }
      // Down into the entry: a provider is passed through, a group or a server is the target's way.
      scopeParam = entry.dwScope;
      typeParam = 1;
      usageParam = kUsageAll;
      ++levelCount;
      if (level >= 2) ++serverLevelCount;
      NETRESOURCEA below = entry;
      int walked = EnumerateLevel(&below, cls, errorOut);
      --levelCount;
      if (level >= 2) --serverLevelCount;
      if (level == 0 && walked == kWalkNothing && lookingLevel == 0) continue;
      result = walked;
      leave = true;
    }
  }
  if (!leave && result == kWalkNothing && (*cls & kLevelReadToEnd)) {
    if (listing || entriesSeen == 0) {
      // The target's level was read whole (or the place is empty): the list holds its listing.
      *cls |= kWalkEnds;
      result = kWalkListed;
    } else if (lookingLevel != 0) {
      // The target names something that this level does not hold. The name goes into the list as such, so that
      // a second look at it or below it asks the browser nothing.
      TargetComponent(lookingLevel, unmatchedName);
      char place[kPathSize];
      TargetPlace(lookingLevel, place);
      AddMissingNode(lookingLevel, place, unmatchedName);
      *errorOut = ERROR_PATH_NOT_FOUND;
      ReportNetworkFailure(nullptr, ERROR_PATH_NOT_FOUND, place, nullptr);
      result = kWalkFailed;
    }
  }
  DWORD closed = WNetCloseEnum(browse);
  if (closed != NO_ERROR && result == kWalkNothing) {
    result = 3;
    *errorOut = closed;
    ReportNetworkFailure(nullptr, closed, targetPath, nullptr);
  }
  ReleaseBlock(bufferHandle, buffer);
  return result;
}

// Serves the next name of the place `path` from the list, browsing once for a first call that the list cannot
// answer. `out` is a file name buffer (MAX_PATH bytes).
unsigned NextNetworkName(char *path, int fullPath, NetworkNode **cursor, char *out, int first) {
  char work[kPathSize] = "";
  if (path != nullptr && *path != 0) {
    CopyPath(work, path);
    enumClass = ClassifyNetworkPath(work);
  }
  NetResourceCopy *resource = nullptr;
  unsigned result = LookUpNetworkList(work, fullPath, first ? &resource : nullptr, cursor);
  // A place whose parent the browser could not open is not asked again.
  bool known = (result & kLookUpFound) || (result & kLookUpUnreachable) || !first || path == nullptr || *path == 0;
  if (!known) {
    if (ClassifyNetworkPath(work) & kNetBelowShare) {
      networkError = 0;
      FreeNetResourceCopy(resource);
      return kLookUpFound | kLookUpBelowShare;
    }
    messageShown = 0;
    NETRESOURCEA parent = {};
    if (resource != nullptr)
      parent = {resource->dwScope,     resource->dwType,       resource->dwDisplayType, resource->dwUsage,
                resource->lpLocalName, resource->lpRemoteName, resource->lpComment,     resource->lpProvider};
    int walked = EnumerateNetwork(resource != nullptr ? &parent : nullptr, path);
    result &= kLookUpNotFound;
    CopyPath(work, path);
    bool lookAgain = false;
    switch (walked) {
      case kWalkBelowShare:
        result = kLookUpFound | kLookUpBelowShare;
        networkError = 0;
        lookAgain = true;
        break;
      case kWalkNoMessage:
        result = kLookUpWildcardStop;
        break;
      case kWalkListed:
      case kWalkDone:
        lookAgain = true;
        break;
      case kWalkFailed:
      case kWalkCancelled:
        if (walked == kWalkFailed && !(enumClass & kLevelReadToEnd)) result = kLookUpNotFound;
        if (enumClass & kWalkEnds)
          result = kLookUpNotFound;
        else
          result |= kLookUpBrowserFailed;
        break;
      case kWalkNothing:
        if (!(enumClass & kLevelReadToEnd)) result = kLookUpNotFound;
        break;
      default:
        break;
    }
    if (lookAgain) {
      *cursor = listHead;
      result &= ~kLookUpNotFound;
      result |= LookUpNetworkList(work, fullPath, nullptr, cursor);
    } else if (walked == kWalkFailed) {
      // A parent found unreachable by this browse says so at once.
      NetworkNode *again = listHead;
      char probe[kPathSize];
      CopyPath(probe, path);
      result |= LookUpNetworkList(probe, fullPath, nullptr, &again) & kLookUpUnreachable;
    }
    if ((result & kLookUpNotFound) && !(enumClass & kWalkEnds)) {
      if (networkError == 0) networkError = ERROR_PATH_NOT_FOUND;
      FreeNetResourceCopy(resource);
      if (out != nullptr) out[0] = 0;
      return result;
    }
    if (!(result & kLookUpNotFound)) networkError = 0;
  }
  if ((result & kLookUpFound) && out != nullptr) {
    // An entry's name fits a file name: the list's names are those of servers, shares and groups.
    size_t length = std::strlen(work);
    if (length > MAX_PATH - 1) length = MAX_PATH - 1;
    std::memcpy(out, work, length);
    out[length] = 0;
  }
  FreeNetResourceCopy(resource);
  return result;
}

}  // namespace

NetworkNode *NetworkListHead(void) { return listHead; }

void FreeNetResourceCopy(NetResourceCopy *resource) {
  if (resource == nullptr) return;
  delete[] resource->lpLocalName;
  delete[] resource->lpRemoteName;
  delete[] resource->lpComment;
  delete[] resource->lpProvider;
  delete resource;
}

unsigned LookUpNetworkList(char *path, int fullPath, NetResourceCopy **resource, NetworkNode **cursor) {
  if (IsStopRequested()) return kLookUpNothingTried;
  if (resource != nullptr) *resource = nullptr;
  if (cursor == nullptr || *cursor == nullptr) return kLookUpNotFound;
  if (IsDriveRoot(path) || std::strcmp(path, "\\\\") == 0 || std::strcmp(path, ".") == 0 ||
      std::strcmp(path, "..") == 0)
    return kLookUpFound;
  const bool unc = IsUncPath(path) != 0;
  int depth = std::abs(PathDepth(path));
  char search[kPathSize];
  CopyPath(search, path);
  const bool wildcard = CutWildcard(search);
  int parentDepth = depth - 1;
  // The place the parent has: the search itself when a wildcard was cut, else the search less its last component.
  char parentPlace[kPathSize];
  CopyPath(parentPlace, search);
  if (!wildcard) {
    char *last = FindLastCharacter(parentPlace, '\\');
    if (last != nullptr) *last = 0;
  }
  if (parentDepth <= 0 || search[0] == 0)
    CurrentGroupText()[0] = 0;
  else if (!unc)
    GroupOf(search, CurrentGroupText());
  NetworkNode *found = nullptr;
  bool parentUnreachable = false;
  for (NetworkNode *node = *cursor; node != nullptr; node = node->Next) {
    if (IsStopRequested()) return kLookUpNothingTried;
    if (!IsListedDisplayType(node->Resource->dwDisplayType)) continue;
    char form[kPathSize];
    if (node->Unreachable && node->Depth < depth && SearchForm(node, unc, form) &&
        (lstrcmpiA(form, parentPlace) == 0 || IsAncestor(form, parentPlace)))
      parentUnreachable = true;
    if (node->Depth != depth && node->Depth != parentDepth) continue;
    if (!SearchForm(node, unc, form)) continue;
    if (wildcard && node->Depth == depth && node->Unreachable == kNotThere) continue;
    bool match;
    if (node->Depth == depth)
      match = wildcard ? (!unc && depth == 1) || IsEntryBelow(form, search) : lstrcmpiA(form, search) == 0;
    else
      match = lstrcmpiA(form, parentPlace) == 0;
    if (!match) continue;
    const char *comment = node->Resource->lpComment;
    if (comment != nullptr && *comment != 0) SetRemoteNameAndComment(node->Resource->lpRemoteName, comment);
    if (node->Depth == depth) {
      found = node;
      break;
    }
    if (resource != nullptr && *resource == nullptr) {
      char system[kPathSize];
      SystemName(node, system);
      *resource = CopyResource(*node->Resource, system);
      GroupOf(node->Resource->lpRemoteName, CurrentGroupText());
    }
  }
  if (found == nullptr) return kLookUpNotFound | (parentUnreachable ? static_cast<unsigned>(kLookUpUnreachable) : 0u);
  const char *view = found->Resource->lpRemoteName;
  if (fullPath) {
    CopyPath(path, view);
  } else {
    const char *last = FindLastCharacter(view, '\\');
    CopyPath(path, last != nullptr ? last + 1 : view);
  }
  *cursor = found->Next;
  return kLookUpFound | (found->Unreachable ? static_cast<unsigned>(kLookUpUnreachable) : 0u);
}

int EnumerateNetwork(NETRESOURCEA *parent, char *path) {
  networkError = 0;
  usageParam = kUsageAll;
  if (parent != nullptr) {
    scopeParam = parent->dwScope;
    typeParam = 1;
  } else {
    scopeParam = kScopeContext;
    typeParam = 0;
  }
  levelCount = 0;
  serverLevelCount = 0;
  unsigned cls = ClassifyNetworkPath(path);
  targetDepth = std::abs(PathDepth(path));
  savedTarget[0] = 0;
  if (!IsUncPath(path))
    CopyPath(targetPath, path);
  else if (parent != nullptr && CurrentGroupText()[0] != 0)
    ComposeNetworkPath(targetPath, CurrentGroupText(), path);
  else
    Concat(targetPath, kPlaceholder, path + 1);
  if (!(cls & kNetWildcard)) targetDepth += 1;
  unmatchedName[0] = 0;
  GroupHintText()[0] = 0;
  DWORD error = 0;
  int walked = EnumerateLevel(parent, &cls, &error);
  // The path takes the network's spelling, once its group is known.
  if (std::strncmp(targetPath, kPlaceholder, sizeof kPlaceholder - 1) != 0) CopyPath(path, targetPath);
  GroupHintText()[0] = 0;
  enumClass = cls;
  if (error != 0) networkError = error;
  return walked;
}

DWORD NetworkListingError(void) { return networkError; }

int ReportNetworkFailure(HWND owner, DWORD code, const char *place, const NETRESOURCEA *resource) {
  if (quietNetwork) {
    messageShown = 0;
    return 0;
  }
  if (suppressNetworkMessages == 1 && (resource == nullptr || resource->dwDisplayType != 7)) return 0;
  if (resource != nullptr && unmatchedName[0] == 0) {
    const char *name = resource->lpRemoteName != nullptr ? resource->lpRemoteName : resource->lpComment;
    if (name != nullptr) {
      while (*name == '\\') ++name;
      CopyPath(unmatchedName, name);
      char *end = FindCharacter(unmatchedName, '\\');
      if (end != nullptr) *end = 0;
    }
  }
  if (code == 0xFFFFFFFFu) code = networkError;
  if (code == 0) return 0;
  HGLOBAL handle = nullptr;
  DWORD granted = 0;
  char *text = AcquireBlock(&handle, nullptr, kMessageSize, &granted);
  if (text == nullptr) return 0;
  text[0] = 0;
  size_t used = 0;
  if (unmatchedName[0] != 0) {
    used += std::snprintf(text, granted, "[%s] in ", unmatchedName);
    unmatchedName[0] = 0;
  }
  if (place != nullptr && *place != 0) used += std::snprintf(text + used, granted - used, "%s", place);
  HGLOBAL messageHandle = nullptr;
  char *message = AcquireBlock(&messageHandle, nullptr, kMessageSize, nullptr);
  bool applies = message != nullptr && NetworkMessageText(code, message, kMessageSize);
  if (!applies) {
    ReleaseBlock(messageHandle, message);
    ReleaseBlock(handle, text);
    messageShown = 0;
    return 0;
  }
  if (used > 0 && used < granted) used += std::snprintf(text + used, granted - used, "\n\n");
  if (used < granted) used += std::snprintf(text + used, granted - used, "%s", message);
  SystemText(code, message, kMessageSize);
  if (message[0] != 0 && used < granted) std::snprintf(text + used, granted - used, "\n\n%s", message);
  ReleaseBlock(messageHandle, message);
  if (text[0] != 0) {
    waitingMessages.emplace_back(text, place != nullptr ? place : "");
    LoadStrings(kMsgNetworkTitle, 0);
    ConsolePrompt(owner, text, FirstSlotText(), MB_ICONEXCLAMATION);
    messageShown = 1;
  } else {
    messageShown = 0;
  }
  ReleaseBlock(handle, text);
  return 1;
}

int NetworkMessageShown(void) { return messageShown; }

size_t NetworkMessagesWaiting(void) { return waitingMessages.size(); }

int TakeNetworkMessage(char *text, size_t textSize, char *place, size_t placeSize) {
  if (waitingMessages.empty()) return 0;
  std::snprintf(text, textSize, "%s", waitingMessages.front().first.c_str());
  std::snprintf(place, placeSize, "%s", waitingMessages.front().second.c_str());
  waitingMessages.pop_front();
  return 1;
}

void SetNetworkMessageSwitches(int quiet, int suppressed, int refusedAccess) {
  quietNetwork = quiet;
  suppressNetworkMessages = suppressed;
  reportRefusedAccess = refusedAccess;
}

int FindFirstNetworkEntry(void **networkCursor, char *pattern, WIN32_FIND_DATAA *record) {
  listPath[0] = 0;
  if (ClassifyNetworkPath(pattern) == 0) return 4;
  std::memset(record, 0, sizeof *record);
  NetworkNode *cursor = listHead;
  unsigned result = NextNetworkName(pattern, 0, &cursor, record->cFileName, 1);
  record->dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY;
  if (!(result & kLookUpFound))
    cursor = listHead;
  else
    result = 0;
  *networkCursor = cursor;
  if (result & (kLookUpNotFound | kLookUpWildcardStop)) {
    std::snprintf(record->cFileName, sizeof record->cFileName, ".");
    return static_cast<int>(result);
  }
  CopyPath(listPath, pattern);
  return static_cast<int>(result);
}

int FindNextNetworkEntry(void **networkCursor, WIN32_FIND_DATAA *record) {
  std::memset(record, 0, sizeof *record);
  NetworkNode *cursor = static_cast<NetworkNode *>(*networkCursor);
  unsigned result = NextNetworkName(listPath, 0, &cursor, record->cFileName, 0);
  if (!(result & kLookUpFound)) {
    *networkCursor = listHead;
    return result != 0 ? static_cast<int>(result) : static_cast<int>(kLookUpNotFound);
  }
  *networkCursor = cursor;
  record->dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY;
  return 0;
}

void SetNetworkListPath(const char *path) { CopyPath(listPath, path); }

void ReleaseNetworkNodes(void) {
  while (listHead != nullptr) {
    NetworkNode *next = listHead->Next;
    FreeNetResourceCopy(listHead->Resource);
    delete listHead;
    listHead = next;
  }
  listTail = nullptr;
  enumSerial = 0;
  listPath[0] = 0;
  targetPath[0] = 0;
  savedTarget[0] = 0;
  unmatchedName[0] = 0;
  networkError = 0;
  messageShown = 0;
  waitingMessages.clear();
}
