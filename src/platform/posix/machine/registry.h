// The registry of the Linux backend: read-only, and read from one file when first asked.
//
// Where it comes from, in this order: the file that KELMARO_REGISTRY names (a registry export, "REGEDIT4" in the ANSI
// code page or "Windows Registry Editor Version 5.00" in UTF-16LE with its BOM, or a Wine prefix's user.reg); else
// the user.reg of the Wine prefix that WINEPREFIX names, or of ~/.wine, where there is one (the windowed edition run
// under Wine saved its settings there); else nothing, and the registry is empty. A file that cannot be read (missing,
// not a regular file, over 64 MiB, not in one of the formats) is an empty registry; a line that cannot be read is
// passed over. In an export, "[-key]" removes a key read before it with all below it, and "name"=- a value.
//
// Only HKEY_CURRENT_USER has keys: those of an export under "HKEY_CURRENT_USER\", all keys of a user.reg. The other
// predefined roots are there, and empty. Key and value names match without case, as Windows matches them: each UTF-16
// unit in its simple upper case (ASCII, Latin, Greek, Cyrillic, the full-width letters ...). Names and texts reach the
// program in Shift-JIS. platform/winapi.h includes this header on Linux; the engine never includes it itself.
#pragma once

#include <cstdint>

#include "platform/posix/win_types.h"

typedef struct HKEY__ *HKEY;
typedef HKEY *PHKEY;
typedef DWORD REGSAM;
typedef int32_t LSTATUS;

#define HKEY_CLASSES_ROOT ((HKEY)(uintptr_t)0x80000000u)
#define HKEY_CURRENT_USER ((HKEY)(uintptr_t)0x80000001u)
#define HKEY_LOCAL_MACHINE ((HKEY)(uintptr_t)0x80000002u)
#define HKEY_USERS ((HKEY)(uintptr_t)0x80000003u)

#define KEY_QUERY_VALUE 0x0001u
#define KEY_ENUMERATE_SUB_KEYS 0x0008u
#define KEY_NOTIFY 0x0010u
#define KEY_READ 0x20019u

#define REG_NONE 0u
#define REG_SZ 1u
#define REG_EXPAND_SZ 2u
#define REG_BINARY 3u
#define REG_DWORD 4u
#define REG_MULTI_SZ 7u
#define REG_QWORD 11u

#define ERROR_BAD_PATHNAME 161
// ERROR_MORE_DATA (234) comes with the file operations (files.h).
#define ERROR_NO_MORE_ITEMS 259
#define ERROR_KEY_DELETED 1018

// Opens `subKey` below an open key or a predefined root; "a\\b" goes down two keys, and backslashes at its end are
// passed over. Null or empty: a predefined root comes back itself, any other key as a new handle to it. Result:
// ERROR_SUCCESS with *result set; ERROR_FILE_NOT_FOUND for a key that is not there and ERROR_BAD_PATHNAME for a name
// that starts with a backslash (below HKEY_CLASSES_ROOT one leading backslash is passed over, as Windows does), both
// with *result null; ERROR_INVALID_HANDLE for a handle that is not open, *result left as it was; ERROR_KEY_DELETED
// for a key that was open but is gone since the registry was read anew; ERROR_INVALID_PARAMETER for a null `result`.
// `options` and `access` are not looked at.
LSTATUS RegOpenKeyExA(HKEY key, const char *subKey, DWORD options, REGSAM access, PHKEY result);
// Reads one value (null or empty name: the key's default value). `type`, `data` and `size` may each be null; with
// `data` null only the type and size are told. A string (REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ) comes in Shift-JIS with
// its terminators counted in the size; other types as their bytes. Result: ERROR_SUCCESS; ERROR_FILE_NOT_FOUND for a
// value that is not there; ERROR_MORE_DATA, with the type and *size set to what is needed and nothing written to
// `data` (Windows leaves it undefined), when it does not fit; ERROR_INVALID_PARAMETER for a non-null `reserved`, or
// `data` without `size`; ERROR_INVALID_HANDLE and ERROR_KEY_DELETED as RegOpenKeyExA gives them.
LSTATUS RegQueryValueExA(HKEY key, const char *valueName, DWORD *reserved, DWORD *type, unsigned char *data,
                         DWORD *size);
// The value at `index` of a key, in the file's order: its name (*nameSize: in the buffer's size, out the name's length
// without the terminator) and, as RegQueryValueExA gives them, its type and data. ERROR_NO_MORE_ITEMS past the last
// value. ERROR_MORE_DATA when the name or the data does not fit: the name, *nameSize and the data are left alone
// (Windows leaves them undefined, Wine writes what fits), the type and the data's size are told.
// ERROR_INVALID_PARAMETER without `name` or `nameSize`, with `reserved`, or with `data` but no `dataSize`; the handle's
// errors as for RegQueryValueExA.
LSTATUS RegEnumValueA(HKEY key, DWORD index, char *name, DWORD *nameSize, DWORD *reserved, DWORD *type,
                      unsigned char *data, DWORD *dataSize);
// Closes a key opened by RegOpenKeyExA. A predefined root is accepted and stays usable. ERROR_INVALID_HANDLE for
// anything else.
LSTATUS RegCloseKey(HKEY key);

// Forgets what was read, so that the next call reads the file anew (tests change KELMARO_REGISTRY, WINEPREFIX, HOME).
// Open keys stay open and are looked for again in what is read.
void ReloadRegistry(void);
