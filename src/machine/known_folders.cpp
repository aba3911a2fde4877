// Known folders. Until the special folders land, no virtual-store twin is ever found.
#include "machine/known_folders.h"

int FindVirtualStoreTwin(int, const char *, char *) { return 0; }
