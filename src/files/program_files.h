// Program files: whether a name has a program's extension, and what kind of program a file on disk is.
#pragma once

// 1 when the name's extension is exe, com, bat, pif, lnk or cmd, in any case (a closing quote does not count), else 0.
int IsProgramFileName(const char *name);
// The kind of program at `path`, from the system's reading of its header (SHGetFileInfoA, SHGFI_EXETYPE): 0 a Windows
// program (PE or NE that names a Windows version), 1 a console program, 2 a DOS program, -1 anything else or no file.
int ExecutableKind(const char *path);
// 1 for a Windows program, 0 for a console or DOS program, -1 for a file that is no program, -3 for a null or empty
// path or one that is not a file.
int IsWindowsProgram(char *path);
