// The network listing: workgroups, servers and shares read as directory entries, so that the walker reaches them
// with the same find calls as a folder, and the list of what the network browser has shown. Until the network listing
// lands, the list stays empty and every listing and look-up misses.
#pragma once

#include "platform/winapi.h"

struct FindHandle;
// A node of the network list and the copy of a browser record that a node owns; their fields belong to the listing.
struct NetworkNode;
struct NetResourceCopy;

// The first entry of the network view at `pattern`. Result 0 with an entry in `record`, else a non-zero network
// result (bit 0x10: the place could not be listed).
int FindFirstNetworkEntry(FindHandle *handle, const char *pattern, WIN32_FIND_DATAA *record);
// The next entry of the running network listing: 0 with an entry, else not 0.
int FindNextNetworkEntry(FindHandle *handle, WIN32_FIND_DATAA *record);
// Makes `path` the running network listing again after a descent replaced it.
void ResumeNetworkListing(const char *path);

// Bits of a look-up's result.
enum NetworkLookUpBit : unsigned {
  kLookUpFound = 1,
  kLookUpNotFound = 2,
  kLookUpNothingTried = 4,
};
// The first node of the network list, null while the list is empty.
NetworkNode *NetworkListHead(void);
// Looks `path` (a 520-byte buffer) up in the network list from *cursor on. When found, `path` holds the list's
// spelling (the whole path with `fullPath` set, its last component otherwise) and *cursor the node behind the match;
// `resource` (may be null) receives a copy of the parent's browser record. Result: the NetworkLookUpBit bits.
unsigned LookUpNetworkList(char *path, int fullPath, NetResourceCopy **resource, NetworkNode **cursor);
