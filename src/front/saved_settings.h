// Options and search folder saved by the dialog tool in the shared settings, read as defaults.
#pragma once

// Reads the saved option value (control ids, as the store keeps them) into `buffer`. Result 1 when it is not empty.
int GetSavedOptions(char *buffer, int size);
// Reads the saved search folder into `buffer`. Result 1 when it is not empty.
int GetSavedFolder(char *buffer, int size);
