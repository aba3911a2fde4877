// TEMPORARY until the file-operations branch merges: the declarations the walker needs.
#pragma once

int ChangeToFolder(const char *path, int allowNetwork);
int SetPathAttributes(const char *path, unsigned attributes);
int DeleteFilePath(const char *path);
int MovePath(const char *oldPath, const char *newPath);
int PathAccessible(char *path);
