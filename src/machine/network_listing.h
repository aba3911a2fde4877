// The network listing: workgroups, servers and shares read as directory entries, so that the walker reaches them
// with the same find calls as a folder, and the list of what the network browser has shown. The browser is slow, so
// every batch it gives on the way down to a place is kept in the list for the rest of the run, and listings are
// served from the list: a second look at the same place makes no browser call.
#pragma once

#include "platform/winapi.h"

// A copy of a browser record, its four texts owned by the copy. In a node of the list, lpRemoteName holds the view
// path of the entry ("\:\group\srv\share"), not the browser's text.
struct NetResourceCopy {
  DWORD dwScope;
  DWORD dwType;
  DWORD dwDisplayType;
  DWORD dwUsage;
  char *lpLocalName;
  char *lpRemoteName;
  char *lpComment;
  char *lpProvider;
};

// One entry of the network list.
struct NetworkNode {
  NetResourceCopy *Resource;
  NetworkNode *Next;
  DWORD SiblingCount;  // how many entries the batch held
  DWORD Serial;        // the number of the batch that brought it, from 1 on
  int Depth;           // the absolute PathDepth of its view path: 1 group, 2 server, 3 share
  int Unreachable;     // 1: the browser could not open it (ERROR_BAD_NETPATH); 2: a listing named it and the
                       // browser did not show it (no entry of its level, only an answer for itself and below)
  int Reserved;
};

// Bits of a network result (NextNetworkName, LookUpNetworkList, FindFirstNetworkEntry).
enum NetworkLookUpBit : unsigned {
  kLookUpFound = 1,
  kLookUpNotFound = 2,
  kLookUpNothingTried = 4,  // cancelled, or nothing tried
  kLookUpBelowShare = 8,    // with kLookUpFound: the place lies below a share, the file system has it
  kLookUpBrowserFailed = 0x10,
  kLookUpUnreachable = 0x20,
  kLookUpWildcardStop = 0x80,
};

// The first entry of the network view at `pattern` ("\\srv\*.*", "\:\group\*.lnk"): the place is looked up in the
// list, and browsed once when the list does not hold it. *cursor (a search's network position) is set for
// FindNextNetworkEntry. `pattern` may come back in the network's own view spelling
// ("\:\WORKGROUP\SRV\*.*"), which is what the listing goes on from. Result: 0 with an entry (a folder by its name) in
// `record`; 4 for a path that is no network path; otherwise the result bits, with "." in the record (bit 0x10: the
// browser failed for this place).
int FindFirstNetworkEntry(void **cursor, char *pattern, WIN32_FIND_DATAA *record);
// The next entry of the running network listing: 0 with an entry, else the result bits (2 at the end).
int FindNextNetworkEntry(void **cursor, WIN32_FIND_DATAA *record);
// Makes `path` the place of the running network listing again, after a descent listed another place.
void SetNetworkListPath(const char *path);

// The first node of the network list, null while the list is empty.
NetworkNode *NetworkListHead(void);
// Looks `path` (a 520-byte buffer, view or UNC form; a last component with a wildcard means every entry of the place)
// up in the network list from *cursor on. Found: `path` holds the list's spelling (the whole view path with
// `fullPath` set, its last component otherwise), *cursor the node behind the match, and the result kLookUpFound (with
// kLookUpUnreachable for a node the browser could not open). Not found: kLookUpNotFound, with *resource (may be null)
// a copy of the browser record of the place's parent where the list holds that, for FreeNetResourceCopy. The stop
// flag gives kLookUpNothingTried.
unsigned LookUpNetworkList(char *path, int fullPath, NetResourceCopy **resource, NetworkNode **cursor);
void FreeNetResourceCopy(NetResourceCopy *resource);

// Browses from the top of the network, or from `parent`, down towards `path` and adds every batch it sees to the list;
// `path` gets the network's view spelling. Result: the walk's code (1 or -5 the place was listed, -7 it lies below a
// share, -1 not found or failed, -6 an extended error without a message, 0 nothing listed, -4 stopped, -3 the Insert
// key held down).
int EnumerateNetwork(NETRESOURCEA *parent, char *path);
// The error of the last listing (ERROR_PATH_NOT_FOUND for a place the network does not have), 0 for none.
DWORD NetworkListingError(void);
// Tells a failure of the browser: "[name] in place", the message of `code` (-1: the listing's error) and the system's
// text, through the console prompt (style 48), and keeps it for the result text (TakeNetworkMessage). Access denied
// (5) is told only while the refused-access switch is set. Result: 1 when a message applied, 0 when none did.
int ReportNetworkFailure(HWND owner, DWORD code, const char *place, const NETRESOURCEA *resource);
// 1 after ReportNetworkFailure showed a message in the listing under way.
int NetworkMessageShown(void);
// The oldest message of ReportNetworkFailure that is not yet in the result text: its text and its place, each cut
// to its buffer of `size` bytes. Result: 1 with a message taken, 0 when none waits.
int TakeNetworkMessage(char *text, size_t textSize, char *place, size_t placeSize);
// How many such messages wait.
size_t NetworkMessagesWaiting(void);
// The switches of the messages, 0 at start and never set by this program: quiet (no message at all), suppressed
// (only a message about an extended error), and refused access told.
void SetNetworkMessageSwitches(int quiet, int suppressed, int reportRefusedAccess);

// Frees the list and every text the listing keeps; the state is as at start.
void ReleaseNetworkNodes(void);
