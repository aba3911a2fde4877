// Quoted arguments and small string tools: adding and balancing the double quotes that carry paths with blanks, and
// the general string tools of the engine. All edit a NUL-terminated Shift-JIS string in the caller's buffer, which
// must have room for what is added. A quote is only a quote when it is a character of its own.
#pragma once

// 1 when `s[n]` is a single-byte character and a double quote; 0 for a null or empty string.
int IsQuoteAt(const char *s, unsigned n);
// The first double quote that is a character of its own, or null (also for a null or empty string).
char *FirstQuote(const char *s);
// Puts the whole string in quotes unless it begins with one. Result: 1 when it began with a quote (nothing done),
// else the old length plus 1.
int QuoteWhole(char *s);
// Completes a lone opening or closing quote of *slot; then, unless `keepQuotes`, removes the quotes of a text without
// a blank. A null slot or an empty string: nothing.
void BalanceQuotes(char **slot, int keepQuotes);
// Quotes a text that holds a blank and is not quoted already. Result: null when nothing was done, else where the
// blank stood before the text moved.
char *QuoteIfSpaced(char *s);
// The first blank at a character boundary, or null.
char *FindBlank(const char *s);

// Opens `n` bytes at the front; they keep what they held. Result: the old length plus n.
int ShiftRightInPlace(char *s, int n);
// Fills `count` bytes with 0. Nothing calls it yet.
void ZeroBytes(void *address, unsigned count);
// Every "/" (or "\") that is a character of its own becomes "\" (or "/"); null is ignored.
void SlashToBackslash(char *s);
void BackslashToSlash(char *s);
// The last occurrence of `pattern` in `text` at a character boundary, or null (also for an empty pattern). `text` is
// cut and restored while it is searched, so it must be writable; it is left as it was.
char *FindLast(char *text, const char *pattern);
// Cuts trailing white space, stopping at a double-byte character. Result: the number of bytes cut.
int TrimTrailingSpace(char *s);
// 1 for a line feed or carriage return, else 0.
int IsLineEnd(int c);
// The number of backslashes of a path (a doubled one counts once); for a UNC path its complement: "C:\a\b" gives 2,
// "\\srv\share" gives -3. Null gives 0.
int PathDepth(const char *path);
// A drive letter from its index (0 is "A") and back, upper case, without range checks. Nothing calls it yet.
int DriveLetterOf(int index);
int DriveIndexOf(int letter);
// The first "%s" at a character boundary, or null. Nothing calls it yet.
char *FindFormatMark(const char *s);
// Cuts a string of two or more bytes at the first occurrence of `marker`.
void CutAtMarker(char *s, const char *marker);
// Removes from a null-terminated array of strings every entry that equals an earlier one, keeping order. Result: the
// number that remain.
int RemoveDuplicates(char **list);
// Five letters for an attribute value, "ARHS-" style, without terminator; a negative value writes nothing. Nothing
// calls it yet.
void AttributeLetters(long attributes, char *field);
// Replaces each byte that isprint refuses and the allowed list does not hold. Result 1 for a non-empty string with no
// bad byte. No caller sets an allowed list, and without one no byte is bad, so nothing is replaced.
int ReplaceUnprintable(char *s, int replacement);
// "???", the label of a drive that cannot be read. Its caller comes with the drive inventory.
const char *UnknownText(void);
