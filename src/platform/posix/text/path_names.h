// File names as the Linux backend compares, matches, orders and shows them. Windows does all of this in UTF-16, with
// its file system's upper-case table, so the backend does it in UTF-16 too: a name on disk (UTF-8) and a name from the
// program (Shift-JIS) meet as UTF-16 units. Private to the Linux backend.
#pragma once

#include <string>
#include <vector>

// UTF-8 and UTF-16. A byte that is not valid UTF-8, and a lone surrogate, become U+FFFD.
std::u16string Utf8ToUtf16(const std::string &text);
std::string Utf16ToUtf8(const std::u16string &text);
// Shift-JIS and UTF-16, as an "A" call of Windows converts its strings (see charset.h for what cannot be converted).
std::u16string ProgramToUtf16(const std::string &text);
std::string Utf16ToProgram(const std::u16string &text);

// The name of a directory entry (UTF-8 on disk) as a Windows listing shows it in Shift-JIS: every UTF-16 unit that
// Shift-JIS cannot hold reads "?" (so a character outside the BMP reads "??"), and so does every character that no
// Windows name can hold (\ / : * ? " < > | and controls), which a Linux name may carry.
std::string DiskNameToProgram(const std::string &diskName);

// One UTF-16 unit in upper case, as a case-blind Windows file system compares it: the simple upper case of the BMP
// character; surrogates stay as they are.
char16_t FoldUnit(char16_t unit);
std::u16string FoldName(const std::u16string &name);
// Whether two names are the same name to Windows.
bool SameNameIgnoringCase(const std::u16string &a, const std::u16string &b);

// True for a mask with one of Windows' wildcards, "*" and "?" or their DOS forms "<", ">" and '"'.
bool HasWildcard(const std::u16string &mask);
// The mask as the file system receives it from FindFirstFileA, upper-cased: "*.*" becomes "*"; otherwise "?" becomes
// ">" (DOS_QM), a "." before "?" or "*" becomes '"' (DOS_DOT), a "*" before "." becomes "<" (DOS_STAR), and when the
// caller's pattern ended in "." (a dot that making the path full removed), a final "*" becomes "<". So "*.lnk" is
// "<.LNK", "a?" matches "a", "x.*" matches "x", and "*." matches names without a dot.
std::u16string DosMask(const std::u16string &mask, bool patternEndedInDot);
// Whether an upper-cased name matches a mask from DosMask, by the file system's rules: "*" any run, "?" one unit,
// "<" any run that does not take the name's last ".", ">" one unit other than "." (or nothing before a "." and at the
// end), '"' a "." (or nothing at the end); any other unit matches itself.
bool MatchesDosMask(const std::u16string &foldedName, const std::u16string &dosMask);

// The order of a listing on NTFS: by the upper-cased UTF-16 name, unit by unit. Names equal without case (which Linux
// allows side by side) follow their bytes on disk, so that the order never depends on the order of reading.
bool ListsBefore(const std::u16string &foldedA, const std::string &diskA, const std::u16string &foldedB,
                 const std::string &diskB);

// The non-empty pieces of a text between separators: the names of a path ("a\\b\" gives "a", "b"), the folders
// of a search list ("x;;y" gives "x", "y").
template <typename Text>
std::vector<Text> SplitNonEmpty(const Text &text, typename Text::value_type separator) {
  std::vector<Text> pieces;
  size_t start = 0;
  while (start < text.size()) {
    size_t stop = text.find(separator, start);
    if (stop == Text::npos) stop = text.size();
    if (stop > start) pieces.push_back(text.substr(start, stop - start));
    start = stop + 1;
  }
  return pieces;
}
