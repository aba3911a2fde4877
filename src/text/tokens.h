// Bytes, tokens and file names: the Shift-JIS byte classes, the character search that respects double-byte
// characters, the number parser, and the tools that take a command line apart. None of them allocates; all edit in
// the caller's buffer.
#pragma once

// 1 for a lead byte of a double-byte character (0x81-0x9F, 0xE0-0xFC), else 0.
int IsLeadByte(unsigned char c);
// 1 for a byte that may follow a lead byte (0x40-0x7E, 0x80-0xFC), else 0.
int IsTrailByte(unsigned char c);

// The first occurrence of `c` at a character boundary, or null. `c` above 0xFF is a double-byte character (lead in
// the high byte). Searching for 0 finds the terminator. A lead byte directly before the terminator ends the search
// with null. A null string gives null.
char *FindCharacter(const char *s, unsigned c);
// The last occurrence of `c` at a character boundary, or null. A lead byte directly before the terminator, with no hit
// before it, gives the address of the terminator. A null string gives null.
char *FindLastCharacter(const char *s, unsigned c);

// Decimal text to a signed 32-bit value as atoi reads it; null gives 0.
int ParseNumber(const char *s);
// Deletes the first `n` bytes of `s`. Result 0.
int ShiftLeftInPlace(char *s, int n);
// Deletes leading white space (isspace) that is not a lead byte. Result: the number of bytes deleted; null gives 0.
int TrimLeadingSpace(char *s);
// The byte behind the first `"`, or null at a NUL or a lead byte before any quote, or for a null string.
char *QuoteStart(const char *s);
// Null for a null string; `s` itself when QuoteStart finds no quote; null when the opening quote has no closing one;
// else the byte behind the closing quote.
char *SkipQuoted(const char *s);
// The blank that ends the first argument of a line, or null when there is none. A quoted stretch is skipped first.
// An opening quote without its closing quote ends the process through the invalid-parameter path.
char *FirstToken(const char *line);
// Removes the first quote and cuts at the last quote behind it. Result 1 when a non-empty text remains; 0 when there
// was no quote (or no text), and 0 with the quotes put back when they were all the text held.
int StripOuterQuotes(char *s);
// 1 when the first two bytes are backslashes. `path` must not be null.
int IsUncPrefix(const char *path);
// The file-name part of `path` (quotes stripped in place, the last "/" rewritten to "\" when it is the last
// separator). dest null: a pointer into `path`; dest another buffer: the name copied there; dest equal to the working
// string: the name moved to its start. Null for a null or empty path.
char *SplitFileName(char *dest, char *path);
