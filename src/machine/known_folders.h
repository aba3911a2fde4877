// Known folders: the user's folders that Windows knows by name, and the virtual store that shadows protected ones.
#pragma once

// The folder under the user's virtual store that shadows `path`. Result: 1 when an existing twin folder was written
// to `buffer` (520 bytes), else 0. Until the special folders land, there is never one.
int FindVirtualStoreTwin(int unused, const char *path, char *buffer);
