// The network listing. Until it lands, the list is empty and every lookup misses as a missing path does.
#include "machine/network_listing.h"

int FindFirstNetworkEntry(FindHandle *, const char *, WIN32_FIND_DATAA *) { return 2; }
int FindNextNetworkEntry(FindHandle *, WIN32_FIND_DATAA *) { return 1; }
void ResumeNetworkListing(const char *) {}

NetworkNode *NetworkListHead(void) { return nullptr; }

// The cursor can only be empty, and an empty cursor finds nothing.
unsigned LookUpNetworkList(char *, int, NetResourceCopy **resource, NetworkNode **) {
  if (resource != nullptr) *resource = nullptr;
  return kLookUpNotFound;
}
