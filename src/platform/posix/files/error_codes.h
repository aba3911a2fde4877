// The one table from the C library's errno values to the Windows errors that the backend's calls leave as their last
// error. Every file, folder, volume and shortcut call of the Linux backend maps its failures through it.
#pragma once

#include "platform/winapi.h"

// The error Windows gives for a failed Linux call's errno, for an entry whose folder is known to be there (a missing
// entry is ERROR_FILE_NOT_FOUND; a caller that knows the folder is missing says ERROR_PATH_NOT_FOUND itself). An errno
// with no row gives ERROR_GEN_FAILURE; 0 gives 0.
DWORD ErrorFromErrno(int error);
