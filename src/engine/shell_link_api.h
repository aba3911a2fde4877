// The shell link objects as the shortcut engine uses them: Windows' own on Windows, ours over the .lnk codec on
// Linux (declared by the platform header there).
#pragma once

#include "platform/winapi.h"

// Texts exchanged with a shell link object: 520 bytes, or as many wide characters for a path.
enum { kShellPathSize = 520 };
