// The network listing: workgroups, servers and shares read as directory entries, so that the walker reaches them
// with the same find calls as a folder. Until the network listing lands, every listing misses.
#pragma once

#include "platform/winapi.h"

struct FindHandle;

// The first entry of the network view at `pattern`. Result 0 with an entry in `record`, else a non-zero network
// result (bit 0x10: the place could not be listed).
int FindFirstNetworkEntry(FindHandle *handle, const char *pattern, WIN32_FIND_DATAA *record);
// The next entry of the running network listing: 0 with an entry, else not 0.
int FindNextNetworkEntry(FindHandle *handle, WIN32_FIND_DATAA *record);
// Makes `path` the running network listing again after a descent replaced it.
void ResumeNetworkListing(const char *path);
