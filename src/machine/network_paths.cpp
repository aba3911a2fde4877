// Network paths.
#include "machine/network_paths.h"

#include <cstring>

#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/quoted_args.h"
#include "text/tokens.h"

namespace {
unsigned networkLevelMask = 0;
// The network message waiting to be shown for the next folder fault: the error and the provider's word beside it.
// Only the network listing sets them.
DWORD pendingNetworkError = 0;
DWORD pendingNetworkWord = 0;
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
  // SM_NETWORK: bit 0 is set when the machine has a network at all.
  if (!(GetSystemMetrics(SM_NETWORK) & 1)) return 0;
  DWORD flags = 0;
  if (InternetGetConnectedState(&flags, 0) != 1) return 0;
  return (flags & (INTERNET_CONNECTION_MODEM | INTERNET_CONNECTION_LAN | INTERNET_CONNECTION_PROXY)) ? 1 : 0;
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

int ResolveNetworkName(const char *path, char *out) {
  std::strcpy(out, path);
  UpperText(out);
  unsigned bits = ClassifyNetworkPath(path);
  if ((bits & kNetViewForm) != 0 && (bits & (kNetShare | kNetBelowShare | kNetDeepBelowShare)) != 0) {
    // The share component of a view path: "\:\GROUP\SERVER\Share".
    char *p = out;
    for (int i = 0; i < 4 && p != nullptr; ++i) p = FindCharacter(p + 1, '\\');
    if (p != nullptr) {
      char *end = FindCharacter(p + 1, '\\');
      char saved = 0;
      if (end != nullptr) {
        saved = *end;
        *end = 0;
      }
      LowerText(p + 1);
      p[1] = static_cast<char>(ToUpperByte(static_cast<unsigned char>(p[1])));
      if (end != nullptr) *end = saved;
    }
  }
  return (bits & kNetBelowShare) ? 0 : -1;
}

int GetVolumeDetails(const char *, char *, DWORD, DWORD *, DWORD *, DWORD *, char *, DWORD) { return 0; }
