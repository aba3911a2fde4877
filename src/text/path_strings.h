// Path strings: joining, cutting and testing paths as text. A path is a NUL-terminated Shift-JIS string in the
// caller's buffer, edited in place; it may be quoted, use "/", or start with a drive or a "\\server\share" head.
// Separators are searched by characters, so the trail byte 0x5C of a double-byte character is never one. Nothing
// here touches the file system.
#pragma once

enum { kPathSize = 520 };

// 1 when the path begins with "\:" or "\\" (a network path), else 0; null gives 0.
int IsNetworkPath(const char *path);
// The next backslash, searched from byte 0 (byte 1 for a network path); null for a null or empty path or none.
char *NextSeparator(const char *path);
// The last "\" or "/", whichever is further on (a "/" found is rewritten to "\"); null if none.
char *LastSeparator(char *path);
// 1 when the byte `k` bytes before `p` (and above `base`) is ":" or "\" and no lead byte stands in front of it.
int IsRootSeparator(const char *p, const char *base, int k);
// "X:\" exactly.
int IsDriveRoot(const char *path);
// "\\" exactly.
int IsUncRootForm(const char *path);
// Where ":\" stands in the path, or null; a ".\" in the path is deleted on the way.
char *HasDriveRoot(char *path);
// Deletes the first ".\", wherever it stands. Result 1 when deleted.
int StripDotPrefix(char *text);
// Appends "\" unless the path ends in a real one. Result: the added backslash, or null.
char *EnsureTrailingBackslash(char *path);
// Deletes a trailing real separator, except from a drive or UNC root. Result: whether one was deleted (also kept in
// the flag that BackslashWasTrimmedFlag reads).
// Nothing calls it yet; the error reporter reads and clears the flag.
int TrimFolderBackslash(char *path);
int BackslashWasTrimmedFlag(void);
void ClearBackslashWasTrimmed(void);
// What CutLastComponent did. The values are statuses, not lengths.
enum CutResult {
  kCutNothing = 0,            // no path, or no backslash in it
  kCutEndsInBackslash = -10,  // nothing cut: the path ends in its last backslash
  kCutAtBackslash = -20,      // cut at the last backslash
  kCutBehindRoot = -30,       // cut behind a root separator, which stays
};
// Goes up one folder. Result: a CutResult.
int CutLastComponent(char *path);
// A copy of `src` without a trailing quote: in `dest`, or in one static buffer when `dest` is null or `src` itself.
char *CutTrailingQuote(char *dest, const char *src);
// The last dot, scanning backwards by characters, or null; `quoteState` (if given) tells whether it lies inside an
// open quote.
char *ExtensionDot(const char *text, int *quoteState);
// The name behind the last dot of the path when one follows and no separator does; else null.
char *HasExtension(const char *path);
// Cuts the path to its folder ("C:\a\b" to "C:\a", "C:\a" to "C:\", "C:a" to "C:"). Null when there is none.
char *FolderPart(char *path);
// Cuts at the last separator (behind it for a root separator); `saved` receives the byte overwritten. Result: the
// position of the cut, or null. RestoreCutByte puts the byte back.
char *CutAtLastSeparator(char *path, int *saved);
void RestoreCutByte(char *position, int byte);
// The one path combiner. Result: the length of the joined path; 0 when `file` is absolute (it then replaces `dest`
// and `dir`), when the two together have 520 bytes or more (nothing joined), or when both are empty. `dest` may be
// null (the join happens in `dir`), `dir` itself, or `file` itself (joined in place).
int JoinPath(char *dest, char *dir, char *file);
// Folds "c:\PROGRAM files\abc" to "C:\Program files\Abc"; mode 1 never folds, mode 0 folds when names are folded,
// any other mode always; a non-empty `alternate` (a second form of the name) keeps the case as stored.
void FoldPathCase(char *path, const char *alternate, int mode);
// Shortens a text to the width of a control. A console has no control and no width: the text comes back unchanged.
// Nothing calls it yet.
const char *FitTextToControl(void *window, void *deviceContext, const char *text, unsigned controlId);
const char *FitPathToControl(void *window, void *deviceContext, const char *text, unsigned controlId);
