// Name rules and folder checks.
#pragma once

// 1 when the path names a folder that can be reached, else 0.
int FolderExists(const char *path);
