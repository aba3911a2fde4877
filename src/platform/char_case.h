// The text case routines, ours on both platforms so that folding and case-blind comparison give the same bytes on
// Windows, under Wine and on Linux. Text is Shift-JIS (CP932) whatever the machine's code page: the single-byte letters
// A-Z and a-z fold, and a double-byte character is left as it is in both bytes, even where its trail byte has the
// value of a letter (0x83 0x41 is "ア", not "A" behind a lead byte). Included by platform/winapi.h; include that.
#pragma once

#include "platform/winapi.h"

// CharLowerA / CharUpperA. Given a pointer to a text, folds the text in place, walking it character by character (a
// lead byte and the byte behind it are one character; a lead byte directly before the terminator ends the walk), and
// returns the pointer; the length never changes. Given a value whose bits from 16 up are 0, as Windows allows, folds
// the one character in its low byte and returns that value with the byte folded. A null pointer is returned as it is.
LPSTR KmCharLowerA(LPSTR text);
LPSTR KmCharUpperA(LPSTR text);

// IsCharLowerA: 1 for a through z, else 0. IsCharAlphaA: 1 for A through Z and a through z, else 0; half-width
// katakana (0xA1-0xDF) and the bytes of double-byte characters are not letters here.
BOOL KmIsCharLowerA(CHAR ch);
BOOL KmIsCharAlphaA(CHAR ch);

// lstrcmpA / lstrcmpiA: 0 when the texts are equal (lstrcmpiA: equal but for the case of single-byte letters; a
// double-byte character must match byte for byte), else -1 or 1. The engine uses these for equality only: the sign
// follows the byte values (after folding to lower case for lstrcmpiA), not Windows' linguistic order. A null text
// is less than any other text, and two nulls are equal, as on Windows.
int KmlstrcmpA(LPCSTR a, LPCSTR b);
int KmlstrcmpiA(LPCSTR a, LPCSTR b);

#ifdef CharLowerA
#undef CharLowerA
#endif
#ifdef CharUpperA
#undef CharUpperA
#endif
#ifdef IsCharLowerA
#undef IsCharLowerA
#endif
#ifdef IsCharAlphaA
#undef IsCharAlphaA
#endif
#ifdef lstrcmpA
#undef lstrcmpA
#endif
#ifdef lstrcmpiA
#undef lstrcmpiA
#endif
#define CharLowerA KmCharLowerA
#define CharUpperA KmCharUpperA
#define IsCharLowerA KmIsCharLowerA
#define IsCharAlphaA KmIsCharAlphaA
#define lstrcmpA KmlstrcmpA
#define lstrcmpiA KmlstrcmpiA
