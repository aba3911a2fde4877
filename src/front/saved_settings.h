// Options and search folder saved by the dialog tool in the user's settings, read as defaults. Nothing here writes,
// creates or deletes a setting.
#pragma once

// Reads the saved option value (control ids, as the store keeps them) into `buffer`. Result 1 when it is not empty.
int GetSavedOptions(char *buffer, int size);
// Reads the saved search folder into `buffer`. Result 1 when it is not empty.
int GetSavedFolder(char *buffer, int size);
// The key below HKEY_CURRENT_USER under which the settings' own key is looked for; copied (cut to fit its room).
void SetRegistryBaseKey(const char *text);
