// The "nothing known" answers of the drive inventory, the volume query and the virtual store.
#include "machine/machine_seams.h"

int DriveFileSystemKind(int) { return -1; }

int StoreDriveFileSystem(int, const char *) { return -1; }

int GetVolumeDetails(const char *, char *, DWORD, DWORD *, DWORD *, DWORD *, char *, DWORD) { return 0; }

int FindVirtualStoreTwin(int, const char *, char *) { return 0; }
