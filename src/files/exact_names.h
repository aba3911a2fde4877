// Exact-case and long names: a path rebuilt, component by component, in the spelling that the disk keeps, in the long
// or the short form. The shortcut engine writes paths back in this form, so that a typed "c:\program files\x.exe"
// goes back as "C:\Program Files\x.EXE".
#pragma once

// Flags of MakeExactPath and ResolveExactPath.
enum ExactPathFlags {
  kExactUpperCase = 1,   // with kExactShortNames: upper-case the result
  kExactLowerCase = 2,   // with kExactShortNames: lower-case the result (kExactUpperCase wins)
  kExactShortNames = 4,  // each component's short name
  kExactLongNames = 8,   // each component's long name (wins over kExactShortNames)
  kExactNoFolding = 16,  // no case folding of a component that could not be asked for
};

// The walk. `path` must be writable with room for 520 bytes; its double quotes are removed for good once the path is
// known to exist. Mode 1 gives a pointer to the rebuilt text in one process-wide buffer, valid until the next call;
// any other mode copies it over `path` and gives `path`. Result:
// - null for a null or empty path, and when kExactShortNames finds a component without a short name;
// - `path` unchanged when it is not there, or when a walk is already running (the call came from inside one);
// - `path` less its quotes when the system reports an error after a successful find;
// - the rebuilt path: a component that cannot be asked for ends it, folded to "Program files" case unless
//   kExactNoFolding; a bare name found on the search path stays a bare name.
char *ResolveExactPath(char *path, unsigned char flags, int mode);
// ResolveExactPath, then with kExactShortNames the case flags on a result. Result: `path` in every case (also with mode
// 1), so a caller who wants the rebuilt text by pointer calls ResolveExactPath.
char *MakeExactPath(char *path, unsigned char flags, int mode);
// Completes a found entry's short name: an empty short name of a long name under 13 bytes becomes the long name upper
// cased (the file system keeps no second name for a name that is short already). A long name that is then all capitals
// and single-byte is folded to "Readme.txt" case when names are folded, so that an old disk's names read tidily.
void FillShortName(char *longName, char *shortName);

// The first occurrence of `pattern` in `text` without regard to the case of single-byte letters, at a character
// boundary; the offset is that of `text`, whose case stays. Null when there is none.
// The copies it folds are made with StoreAndLockBlock, so exhausted memory ends the run here as everywhere else; that
// is why it lives above the reports, beside its one caller, and not with the other small string tools.
char *FindNoCase(const char *text, const char *pattern);
