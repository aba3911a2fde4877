// TEMPORARY until the file-operations branch merges.
#pragma once
char *MakeExactPath(char *path, unsigned flags, int mode);
