// Program files: whether a name has a program's extension.
#pragma once

// 1 when the name's extension is exe, com, bat, pif, lnk or cmd, in any case (a closing quote does not count), else 0.
int IsProgramFileName(const char *name);
