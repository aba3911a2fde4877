// Network paths: the UNC form "\\server\share\folder" and the network view form "\:\group\server\share\folder",
// how deep a path lies, and the real path inside a view path, made in place for the time of one system call.
#pragma once

#include "platform/winapi.h"

// Classification bits of a network path.
enum NetworkClass {
  kNetRoot = 0x01,
  kNetGroup = 0x02,
  kNetViewRoot = 0x04,
  kNetServer = 0x08,
  kNetShare = 0x10,
  kNetBelowShare = 0x20,
  kNetDeepBelowShare = 0x40,
  kNetWildcard = 0x80,
  kNetServerNamed = 0x100,
  kNetViewForm = 0x200,
  kNetShareNamed = 0x400,
};

// 1 when the path starts with two backslashes.
// Its caller comes with the network paths' real forms.
int IsUncPath(const char *path);
// The bit set above; 0 for a path that is not a network path.
unsigned ClassifyNetworkPath(const char *path);
// The levels that a caller accepts as real for one call; set it, make the call, set it back to 0.
// Its readers come with the network paths' real forms.
void SetNetworkLevelMask(unsigned mask);
unsigned NetworkLevelMask(void);
// The real (UNC) path for a network path, as a pointer into `path` itself. `saved` (if given) tells the outcome:
// 0 no real path (a place of the network view, or not a network path); below 0 the path was real as it stood; above
// 0 the byte that was overwritten to make the real path appear, which RestoreNetworkPath puts back.
char *ToRealNetworkPath(char *path, int *saved);
// Puts back the byte that ToRealNetworkPath overwrote. Result 1 when a byte was written.
int RestoreNetworkPath(char *pointer, int saved);
// The proper spelling of a network path. Without a network listing nothing is ever found: the path is written to
// `out` upper-cased (the share of a view path gets a capital and lower case). Result: -1 above a share, 0 below.
int ResolveNetworkName(const char *path, char *out);
// The volume facts of the root `root`, as GetVolumeInformationA gives them, by the network rules. Result: not 0 on
// success. Until the network rules land, the volume never answers (0), and the buffers are left as they were.
int GetVolumeDetails(const char *root, char *label, DWORD labelSize, DWORD *serial, DWORD *maxLength, DWORD *flags,
                     char *fileSystemName, DWORD fileSystemNameSize);
// 1 for an error that a network place gives (a lost connection, a refused logon, an unknown server ...), else 0.
int IsNetworkError(DWORD error);
// 1 for the two network errors that a password can cure: 86 (bad password) and 58 (the server refused).
int IsNetworkPasswordError(DWORD error);
// 1 when the machine has a network connection (a network at all, and a modem, LAN or proxy connection); asked anew
// on every call.
int NetworkPresent(void);
// 1 once the network listing found the network unreachable; the drive question then asks nothing for a network path.
// Nothing sets it before the network listing lands: 0.
int NetworkUnavailable(void);
// A network message is waiting for the next folder fault (the network listing leaves one), and its clearing.
int NetworkErrorPending(void);
void ClearPendingNetworkError(void);
