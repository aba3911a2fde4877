// Registry and profile access: the two readers between the program and its saved settings. They tell nobody
// anything: a setting that cannot be read comes back as the caller's default text.
#pragma once

#include "platform/winapi.h"

// Where ReadSettingString goes: 0 (the start) the registry; not 0 a private profile file, and the registry is not
// touched. Set before the first read or not at all; nothing in a run sets it.
void SetUseProfileFile(int useProfileFile);
int UseProfileFile(void);
// The full path of the profile file, kept in a block of its own; empty until set. Null empties it. Result: 1, or 0
// when no block could be had (the path is then empty).
int SetProfileFilePath(const char *path);
const char *ProfileFilePath(void);

// One string value. With the profile file in use: the key `valueName` (null or empty: the list of the section's keys)
// of the section `subKey` in that file, as GetPrivateProfileStringA reads it, `root` unused. Otherwise what
// ReadRegistryString gives. No fallback from one store to the other.
int ReadSettingString(HKEY root, const char *subKey, const char *valueName, const char *defaultText, char *buffer,
                      unsigned bufferSize);

// One string value of the key `subKey` under `root`; a null or empty `valueName` asks for the key's default value.
// `bufferSize` is clamped to 0xFFFE. Result, and what `buffer` then holds (always terminated unless bufferSize is 0):
// - the clamped size: a string value (REG_SZ, or REG_EXPAND_SZ unexpanded) was read, and `buffer` holds it;
// - the length of `subKey`: the default value was asked for, the key is there without one; `buffer` holds `subKey`;
// - 0: key or value missing, or the value does not fit; `buffer` holds `defaultText` (null: empty);
// - -1: the value is there but not a string; `buffer` as for 0.
// `root` is closed at the end in every case, so a caller may hand over a key of its own; a predefined root is not
// changed by that.
int ReadRegistryString(HKEY root, const char *subKey, const char *valueName, const char *defaultText, char *buffer,
                       unsigned bufferSize);
