// Special folders. Not wired in yet: no virtual-store twin is ever found.
#include "machine/special_folders.h"

int FindVirtualStoreTwin(int, const char *, char *) { return 0; }
