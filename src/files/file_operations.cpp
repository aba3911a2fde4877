// TEMPORARY until the file-operations branch merges.
#include "files/file_operations.h"

#include "platform/winapi.h"

int ChangeToFolder(const char *path, int) { return SetCurrentDirectoryA(path) ? 3 : -1; }
int SetPathAttributes(const char *path, unsigned attributes) { return SetFileAttributesA(path, attributes) ? 0 : 1; }
int DeleteFilePath(const char *path) { return DeleteFileA(path) ? 0 : 1; }
int MovePath(const char *oldPath, const char *newPath) { return MoveFileA(oldPath, newPath) ? 0 : 1; }
int PathAccessible(char *path) { return GetFileAttributesA(path) == INVALID_FILE_ATTRIBUTES ? -1 : 0; }
