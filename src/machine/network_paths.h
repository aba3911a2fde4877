// Network paths: the UNC form "\\server\share\folder" and the network view form "\:\group\server\share\folder",
// how deep a path lies, the real path inside a view path, made in place for the time of one system call, the two
// forms turned into each other, and the volume facts of a place by network-aware rules.
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

// 1 when the path starts with two backslashes; null gives 0.
int IsUncPath(const char *path);
// The bit set above; 0 for a path that is not a network path. By the depth of the path (absolute PathDepth): 0 the
// network root (exactly 1, wildcards or not), 1 a group or the view root, 2 a server, 3 a share, 4 a folder below a
// share, 5 and more deeper than that.
unsigned ClassifyNetworkPath(const char *path);
// The levels that a caller accepts as real for one call; set it, make the call, set it back to 0.
void SetNetworkLevelMask(unsigned mask);
unsigned NetworkLevelMask(void);
// The real (UNC) path for a network path, as a pointer into `path` itself. `saved` (if given) tells the outcome:
// 0 no real path (a place of the network view, or not a network path); below 0 the path was real as it stood (minus
// its first byte); above 0 the byte that was overwritten to make the real path appear, which RestoreNetworkPath puts
// back. At rest (NetworkLevelMask 0) only a place below a share is real; a server or a share by itself needs its bit
// in the mask. Between this call and RestoreNetworkPath the caller's string is not its own text: nobody may read it,
// and the pair must not be nested on one string.
char *ToRealNetworkPath(char *path, int *saved);
// Puts back the byte that ToRealNetworkPath overwrote. Result 1 when a byte was written; 0 for a null pointer or a
// `saved` below 1.
int RestoreNetworkPath(char *pointer, int saved);

// The group texts that the network listing fills: CurrentGroup, the group of the place being listed, and GroupHint,
// the group that the browser showed last. Each is a 520-byte buffer, empty at start; these give the buffers.
char *CurrentGroupText(void);
char *GroupHintText(void);
// While set, a UNC path gets no view prefix (AddNetworkPrefix does nothing). 0 at start.
void SetNoViewPrefix(int value);
// The remote name and comment of the node of the network list that matched last: kept as two terminated strings,
// one behind the other, each cut to 519 bytes. The reader gives the first; the comment stands behind its terminator.
void SetRemoteNameAndComment(const char *remoteName, const char *comment);
const char *RemoteNameAndComment(void);

// Turns a UNC path into the view form in place: "\\srv\sh" becomes "\:\group\srv\sh", with GroupHint for the group,
// or CurrentGroup where the hint is empty. The buffer must have room for "\:" and the group. Result: 1 done; 0 for a
// path that is not UNC, or with NoViewPrefix set; -1 when no group is known (the path is unchanged).
int AddNetworkPrefix(char *path);
// The view path of `remote` in `group`: "\:\group\srv\sh" for the remote name "\\srv\sh" (or a name "x\srv\sh", whose
// tail from its first backslash is taken). The group is read up to its first backslash (the byte there is cut and put
// back, so `group` must be writable). Without a remote name, `out` is the group alone; without a group, or a remote
// name without a tail, `out` is empty. Result: `out`.
char *ComposeNetworkPath(char *out, char *group, const char *remote);
// The reverse of AddNetworkPrefix: takes "\:" and CurrentGroup out of a view path that names a share, leaving its UNC
// form. The group in the path is not compared: the length of CurrentGroup is what is taken out. Result: 1 done; 0 for
// a UNC path or one that names no share.
int DropNetworkPrefix(char *path);
// The proper spelling of a network path in `out` (520 bytes): the network list's spelling of its first four levels
// where the list holds them; otherwise the whole path upper-cased, with the share of a view path in capital and lower
// case ("\:\GROUP\SERVER\Share\DIR"). Result: for a path below a share, -2 found and 0 not found; for any other, 1
// found and -1 not found.
int ResolveNetworkName(const char *path, char *out);

// The volume facts of the root `root`, as GetVolumeInformationA gives them, by the network rules. A local root is asked
// by its first three bytes ("C:\"). A network path is asked as the share that holds it ("\\srv\sh\"); a place of the
// network view above a share makes no system call: its file system reads "NETWORK", its label the group or
// "[ﾏｲﾈｯﾄﾜｰｸ]", and the three numbers 0. A network volume's file system name gets a suffix by the language ("NTFS-like
// NETOS", "NTFS系NETOS"), except from a Samba server, which reads "LINUX" and empties the suffix of the current
// language for the rest of the run. A label with a character that no name may hold is dropped. Result: not 0 on
// success, and then the system call's result; on failure the buffers are as the call left them.
int GetVolumeDetails(const char *root, char *label, DWORD labelSize, DWORD *serial, DWORD *maxLength, DWORD *flags,
                     char *fileSystemName, DWORD fileSystemNameSize);
// The suffix that GetVolumeDetails gives a network file system's name in language `index` (0 English, 1 Japanese):
// "-like " and "系" until a Samba server empties the one of the language of the time.
const char *NetworkSuffix(int index);
// Puts both suffixes back as they are at start. A run never does: the emptying lasts for the rest of it. Tests do,
// so that one test's Samba server does not change the next test's names.
void RestoreNetworkSuffixes(void);

// 1 for an error that a network place gives (a lost connection, a refused logon, an unknown server ...), else 0.
int IsNetworkError(DWORD error);
// 1 for the two network errors that a password can cure: 86 (bad password) and 58 (the server refused).
int IsNetworkPasswordError(DWORD error);
// 1 when the machine has a network connection: GetSystemMetrics(SM_NETWORK) has bit 0, and InternetGetConnectedState
// answers 1 with a modem, LAN or proxy connection. Asked anew on every call (nothing fixes the answer in this tool);
// with SM_NETWORK clear, the connection is not asked for.
int NetworkPresent(void);
// 1 once the network listing found the network unreachable; the drive question then asks nothing for a network path.
// Nothing sets it before the network listing lands: 0.
int NetworkUnavailable(void);
// A network message is waiting for the next folder fault (the network listing leaves one), and its clearing.
int NetworkErrorPending(void);
void ClearPendingNetworkError(void);
