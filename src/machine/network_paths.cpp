// Network paths.
#include "machine/network_paths.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "machine/drive_inventory.h"
#include "machine/network_listing.h"
#include "resources/message_ids.h"
#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/quoted_args.h"
#include "text/resource_strings.h"
#include "text/tokens.h"

namespace {

unsigned networkLevelMask = 0;
// The network message waiting to be shown for the next folder fault: the error and the provider's word beside it.
// Only the network listing sets them.
DWORD pendingNetworkError = 0;
DWORD pendingNetworkWord = 0;

char currentGroup[kPathSize] = "";
char groupHint[kPathSize] = "";
int noViewPrefix = 0;
// The remote name, its terminator, the comment and its terminator.
char remoteNameAndComment[2 * kPathSize] = "";

// The kept answer of NetworkPresent. Nothing in this tool fixes it, so the question is asked on every call; a fixed
// answer would save the dialog edition's many asks while it lists the network.
int networkStateFixed = 0;
int networkPresentValue = 0;

// The suffixes behind a network file system's name, by LanguageIndex. Writable: a Samba server empties the one of the
// language of the time, for the rest of the run.
char networkSuffixes[2][8] = {"-like ", "系"};
const char *const kStartSuffixes[2] = {"-like ", "系"};
const char kNetworkOsTail[] = "NETOS";
const char kNetworkFileSystem[] = "NETWORK";
// Characters that no volume label may hold: a label with one of them is not shown.
const char kBadLabelCharacters[] = "*?<>/:\"|";
// The file system flags by which a server without a comment that names Samba is taken for some other Unix.
const DWORD kUnixServerFlags = 8;

int SuffixIndex(int language) { return language == 0 ? 0 : 1; }

// Copies at most 519 bytes of `src` and a terminator to `dest`, a 520-byte buffer. Null copies as empty.
void CopyPath(char *dest, const char *src) {
  if (src == nullptr) src = "";
  size_t length = std::strlen(src);
  if (length > kPathSize - 1) length = kPathSize - 1;
  std::memmove(dest, src, length);
  dest[length] = 0;
}

// Copies `text` into a buffer of `size` bytes, cut to fit; nothing for a null buffer or a size of 0.
void CopyBounded(char *dest, DWORD size, const char *text) {
  if (dest == nullptr || size == 0) return;
  std::snprintf(dest, size, "%s", text);
}

// Appends `text` to the string in a buffer of `size` bytes, cut to fit.
void AppendBounded(char *dest, DWORD size, const char *text) {
  if (dest == nullptr || size == 0) return;
  size_t used = std::strlen(dest);
  if (used + 1 >= size) return;
  std::snprintf(dest + used, size - used, "%s", text);
}

// 1 when `text` holds `word` without regard to case. (The file services' FindNoCase stands above this folder and ends
// the run on exhausted memory; a comment that cannot be copied here simply does not match.)
int HoldsWordNoCase(const char *text, const char *word) {
  size_t length = std::strlen(text);
  size_t wordLength = std::strlen(word);
  if (length < wordLength) return 0;
  HGLOBAL handle = nullptr;
  DWORD granted = 0;
  char *copy = AcquireBlock(&handle, nullptr, static_cast<DWORD>(length + wordLength + 2), &granted);
  if (copy == nullptr || granted < length + wordLength + 2) {
    ReleaseBlock(handle, copy);
    return 0;
  }
  std::memcpy(copy, text, length + 1);
  char *folded = copy + length + 1;
  std::memcpy(folded, word, wordLength + 1);
  LowerText(copy);
  LowerText(folded);
  int found = FindText(copy, folded) != nullptr ? 1 : 0;
  ReleaseBlock(handle, copy);
  return found;
}

// 1 when the last byte of a path is a backslash of its own.
int EndsInBackslash(const char *path) {
  size_t length = std::strlen(path);
  return length > 0 && IsSingleByteCharAt(path, path, '\\', static_cast<unsigned>(length - 1)) ? 1 : 0;
}

// Cuts a path behind its fourth level: "\:\g\s\sh\d\e" becomes "\:\g\s\sh\d", "\\s\sh\d\" becomes "\\s\sh\d".
void CutToFourLevels(char *path) {
  while (std::abs(PathDepth(path)) > 4) {
    char *last = FindLastCharacter(path, '\\');
    if (last == nullptr || *last != '\\') return;
    *last = 0;
  }
}

// The share component of a view path is the one behind its fourth backslash ("\", ":\", "group\", "server\"): it is
// lower-cased and gets a capital first letter. A path without one is left alone.
void SpellShareOfViewPath(char *path) {
  char *p = path;
  for (int i = 0; i < 3 && p != nullptr; ++i) p = FindCharacter(p + 1, '\\');
  if (p == nullptr || p[1] == 0) return;
  char *end = FindCharacter(p + 1, '\\');
  char cut = 0;
  if (end != nullptr) {
    cut = *end;
    *end = 0;
  }
  LowerText(p + 1);
  p[1] = static_cast<char>(ToUpperByte(static_cast<unsigned char>(p[1])));
  if (end != nullptr) *end = cut;
}

// Cuts a real path behind its share: "\\srv\sh\d\e\" becomes "\\srv\sh\".
void CutBehindShare(char *real) {
  char *server = FindCharacter(real + 2, '\\');
  char *share = server != nullptr ? FindCharacter(server + 1, '\\') : nullptr;
  if (share != nullptr) share[1] = 0;
}

// The facts of a place of the network view, which has no file system: no system call is made. `work` is the path as
// it stood, with its trailing backslash; `bits` its class without that backslash.
int ViewPlaceDetails(char *work, unsigned bits, char *label, DWORD labelSize, DWORD *serial, DWORD *maxLength,
                     DWORD *flags, char *fileSystemName, DWORD fileSystemNameSize) {
  CopyBounded(fileSystemName, fileSystemNameSize, kNetworkFileSystem);
  if (bits == 0 || (ClassifyNetworkPath(work) & kNetViewRoot) != 0) {
    // The view root and what is no network path once its backslash is cut ("\\") are "my network". A path that names
    // a share always has a real form under the mask of a share, so the network row's own label, which the drive table
    // would give such a path, is never asked for.
    LoadStrings(kMsgMyNetwork, 0);
    CopyBounded(label, labelSize, FirstSlotText());
  } else {
    if (currentGroup[0] == 0 && !IsUncPath(work) && std::strlen(work) > 3)
      ComposeNetworkPath(currentGroup, work + 3, nullptr);
    CopyBounded(label, labelSize, currentGroup);
  }
  if (serial != nullptr) *serial = 0;
  if (maxLength != nullptr) *maxLength = 0;
  if (flags != nullptr) *flags = 0;
  return 1;
}

// Names a network volume's file system by the server it stands on: "LINUX" for a Samba server (whose comment says so),
// which also empties the suffix of the language for the rest of the run; "UNIX" for another server whose flags read
// exactly 8; then the suffix and "NETOS" behind the name while the suffix is not empty.
void NameNetworkFileSystem(int networkVolume, DWORD volumeFlags, char *fileSystemName, DWORD fileSystemNameSize) {
  char *suffix = networkSuffixes[SuffixIndex(LanguageIndex())];
  if (networkVolume && remoteNameAndComment[0] != 0) {
    const char *comment = remoteNameAndComment + std::strlen(remoteNameAndComment) + 1;
    if (HoldsWordNoCase(comment, "Samba")) {
      CopyBounded(fileSystemName, fileSystemNameSize, "LINUX");
      suffix[0] = 0;
    } else if (volumeFlags == kUnixServerFlags) {
      CopyBounded(fileSystemName, fileSystemNameSize, "UNIX");
    }
  }
  if (suffix[0] != 0) {
    AppendBounded(fileSystemName, fileSystemNameSize, suffix);
    AppendBounded(fileSystemName, fileSystemNameSize, kNetworkOsTail);
  }
}

}  // namespace

int IsNetworkPasswordError(DWORD error) {
  return error == ERROR_INVALID_PASSWORD || error == ERROR_BAD_NET_RESP ? 1 : 0;
}

int IsNetworkError(DWORD error) {
  static const DWORD kErrors[] = {50,   52,   53,   54,   55,   56,   57,   58,   59,   64,   65,   66,   67,
                                  69,   86,   88,   1203, 1205, 1214, 1220, 1222, 1225, 1227, 1229, 1231, 1234,
                                  1236, 1241, 1244, 1245, 1707, 1724, 1739, 1763, 1790, 1792, 2108, 2250, 4100};
  for (DWORD known : kErrors)
    if (known == error) return 1;
  return 0;
}

int NetworkPresent(void) {
  if (networkStateFixed) return networkPresentValue;
  int present = 0;
  // SM_NETWORK: bit 0 is set when the machine has a network at all; without one, no connection is asked for.
  if (GetSystemMetrics(SM_NETWORK) & 1) {
    DWORD flags = 0;
    BOOL connected = InternetGetConnectedState(&flags, 0);
    const DWORD kConnections = INTERNET_CONNECTION_MODEM | INTERNET_CONNECTION_LAN | INTERNET_CONNECTION_PROXY;
    present = connected == 1 && (flags & kConnections) != 0 ? 1 : 0;
  }
  networkPresentValue = present;
  return present;
}

int NetworkUnavailable(void) { return 0; }

int NetworkErrorPending(void) { return pendingNetworkError != 0 ? 1 : 0; }
void ClearPendingNetworkError(void) {
  pendingNetworkError = 0;
  pendingNetworkWord = 0;
}

int IsUncPath(const char *path) { return path != nullptr && path[0] == '\\' && path[1] == '\\' ? 1 : 0; }

void SetNetworkLevelMask(unsigned mask) { networkLevelMask = mask; }
unsigned NetworkLevelMask(void) { return networkLevelMask; }

char *CurrentGroupText(void) { return currentGroup; }
char *GroupHintText(void) { return groupHint; }
void SetNoViewPrefix(int value) { noViewPrefix = value; }

void SetRemoteNameAndComment(const char *remoteName, const char *comment) {
  CopyPath(remoteNameAndComment, remoteName);
  CopyPath(remoteNameAndComment + std::strlen(remoteNameAndComment) + 1, comment);
}
const char *RemoteNameAndComment(void) { return remoteNameAndComment; }

unsigned ClassifyNetworkPath(const char *path) {
  if (!IsNetworkPath(path)) return 0;
  unsigned bits = (FindCharacter(path, '*') != nullptr || FindCharacter(path, '?') != nullptr) ? kNetWildcard : 0;
  int depth = PathDepth(path);
  if (depth < 0) depth = -depth;
  const bool view = !IsUncPath(path);
  switch (depth) {
    case 0:
      return kNetRoot;
    case 1:
      bits |= kNetGroup;
      if (IsDriveRoot(path)) bits |= kNetViewRoot;
      if (!view) bits |= kNetServerNamed;
      return bits;
    case 2:
      return bits | (view ? 0x308u : 0x108u);
    case 3:
      return bits | (view ? 0x710u : 0x510u);
    case 4:
      return bits | (view ? 0x720u : 0x520u);
    default:
      return bits | (view ? 0x760u : 0x560u);
  }
}

char *ToRealNetworkPath(char *path, int *saved) {
  if (saved != nullptr) *saved = 0;
  if (path == nullptr || *path == 0 || !IsNetworkPath(path)) return path;
  unsigned bits = ClassifyNetworkPath(path);
  // At rest a server or a share by itself is no real place; anything below a share is.
  if ((bits & networkLevelMask) == 0 && (bits & kNetBelowShare) == 0) return path;
  if ((bits & kNetViewForm) == 0) {
    if (saved != nullptr) *saved = -static_cast<unsigned char>(path[0]);
    return path;
  }
  // A real path lies inside every view path, behind the group: overwriting the group's last byte with a backslash
  // makes "\\server\share" appear in place.
  if (path[1] != 0 && path[2] != 0 && path[3] != 0) {
    char *backslash = FindCharacter(path + 3, '\\');
    if (backslash != nullptr) {
      char *before = backslash - 1;
      if (saved != nullptr) *saved = static_cast<unsigned char>(*before);
      *before = '\\';
      return before;
    }
  }
  return path;
}

int RestoreNetworkPath(char *pointer, int saved) {
  if (pointer == nullptr || saved < 1) return 0;
  *pointer = static_cast<char>(saved);
  return 1;
}

int AddNetworkPrefix(char *path) {
  if (noViewPrefix || path == nullptr || !IsUncPath(path)) return 0;
  const char *group = groupHint[0] != 0 ? groupHint : currentGroup;
  if (group[0] == 0) return -1;
  // "\\srv\sh" to "\:\group\srv\sh": the text from the second byte moves right by "\:" and the group, in place.
  size_t groupLength = std::strlen(group);
  size_t length = std::strlen(path);
  std::memmove(path + 3 + groupLength, path + 1, length);
  path[0] = '\\';
  path[1] = ':';
  path[2] = '\\';
  std::memcpy(path + 3, group, groupLength);
  return 1;
}

char *ComposeNetworkPath(char *out, char *group, const char *remote) {
  out[0] = 0;
  if (group == nullptr || *group == 0) return out;
  char *cut = FindCharacter(group, '\\');
  char cutByte = 0;
  if (cut != nullptr) {
    cutByte = *cut;
    *cut = 0;
  }
  if (remote == nullptr || *remote == 0) {
    CopyPath(out, group);
  } else {
    const char *tail = IsUncPath(remote) ? remote + 1 : FindCharacter(remote, '\\');
    if (tail != nullptr) std::snprintf(out, kPathSize, "%c:\\%s\\%s", '\\', group, tail + 1);
  }
  if (cut != nullptr) *cut = cutByte;
  return out;
}

int DropNetworkPrefix(char *path) {
  if (path == nullptr || IsUncPath(path) || (ClassifyNetworkPath(path) & kNetShareNamed) == 0) return 0;
  // "\:\group\srv\sh" to "\\srv\sh": ":\" and the group go, whatever the group in the path is called.
  size_t take = std::strlen(currentGroup) + 2;
  size_t length = std::strlen(path);
  if (take > length - 1) take = length - 1;
  std::memmove(path + 1, path + 1 + take, length - take);
  return 1;
}

int ResolveNetworkName(const char *path, char *out) {
  CopyPath(out, path);
  CutToFourLevels(out);
  NetworkNode *cursor = NetworkListHead();
  int found = (LookUpNetworkList(out, 1, nullptr, &cursor) & kLookUpFound) != 0 ? 1 : 0;
  unsigned bits = ClassifyNetworkPath(path);
  if (!found) {
    CopyPath(out, path);
    UpperText(out);
    if ((bits & kNetViewForm) != 0 && std::abs(PathDepth(path)) >= 3) SpellShareOfViewPath(out);
  }
  if (bits & kNetBelowShare) return found ? -2 : 0;
  return found ? 1 : -1;
}

int GetVolumeDetails(const char *root, char *label, DWORD labelSize, DWORD *serial, DWORD *maxLength, DWORD *flags,
                     char *fileSystemName, DWORD fileSystemNameSize) {
  // The root is worked on in a copy: it may be the caller's label buffer, which is cleared before the call.
  char work[kPathSize];
  CopyPath(work, root);
  int networkDrive = IsNetworkDriveLetter(static_cast<unsigned char>(work[0]));
  int networkVolume = 0;
  char *volume = work;
  if (!IsNetworkPath(work)) {
    if (std::strlen(work) > 3) work[3] = 0;
  } else {
    int trimmed = EndsInBackslash(work);
    if (trimmed) work[std::strlen(work) - 1] = 0;
    unsigned bits = ClassifyNetworkPath(work);
    SetNetworkLevelMask(kNetShare);
    int saved = 0;
    char *real = ToRealNetworkPath(work, &saved);
    SetNetworkLevelMask(0);
    // The real path lies inside `work` and ends where it ends: the backslash goes back on both.
    if (trimmed) std::strcat(work, "\\");
    if (saved == 0)
      return ViewPlaceDetails(work, bits, label, labelSize, serial, maxLength, flags, fileSystemName,
                              fileSystemNameSize);
    volume = real;
    if (std::abs(PathDepth(volume)) >= 4) CutBehindShare(volume);
    networkVolume = 1;
  }

  if (label != nullptr && label != root && labelSize > 0) label[0] = 0;
  DWORD volumeFlags = 0;
  BOOL result = GetVolumeInformationA(volume, label, labelSize, serial, maxLength, &volumeFlags, fileSystemName,
                                      fileSystemNameSize);
  if (!result) return 0;
  if (flags != nullptr) *flags = volumeFlags;
  if (label != nullptr) {
    for (const char *bad = kBadLabelCharacters; *bad != 0; ++bad) {
      if (FindCharacter(label, static_cast<unsigned char>(*bad)) != nullptr) {
        label[0] = 0;
        break;
      }
    }
  }
  if (networkVolume || networkDrive)
    NameNetworkFileSystem(networkVolume, volumeFlags, fileSystemName, fileSystemNameSize);
  return result;
}

const char *NetworkSuffix(int index) { return networkSuffixes[SuffixIndex(index)]; }

void RestoreNetworkSuffixes(void) {
  for (int i = 0; i < 2; ++i) std::snprintf(networkSuffixes[i], sizeof networkSuffixes[i], "%s", kStartSuffixes[i]);
}
