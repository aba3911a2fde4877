// Name rules and folder checks. Until the syntax rules and the drive question land, those checks pass.
#include "files/folder_checks.h"

#include <cstdio>

#include "files/file_operations.h"
#include "text/path_strings.h"

int DotEntryTest(const char *name) { return name != nullptr && lstrcmpA(name, ".") == 0 ? 1 : 0; }
int DotDotEntryTest(const char *name) { return name != nullptr && lstrcmpA(name, "..") == 0 ? 1 : 0; }

int FolderExists(const char *path) {
  if (path == nullptr || *path == 0) return 0;
  char copy[kPathSize];
  std::snprintf(copy, sizeof copy, "%s", path);
  return PathAccessible(copy) == 0 ? 1 : 0;
}

int CheckFolderOrReport(HWND, const char *path, int mode, const char *) {
  if (FolderExists(path)) return 1;
  return mode == 1 ? 1 : 0;
}

int CheckPathSyntaxRules(HWND, char *, int, unsigned) { return 0; }

int ReportPathFault(HWND, const char *, int, int, int) { return 0; }
