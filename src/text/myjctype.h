// Double-byte text: whether a byte of a Shift-JIS text begins a character, a character-wise substring search, and the
// case routines that leave double-byte characters alone. Every routine that looks at a byte of a path or a message in
// context asks here (or FindCharacter in text/tokens.h) first, since a trail byte can have the value of "\\".
#pragma once

// Character classes given by _myNthctype.
enum CharacterClass {
  kSingleByte = 0,   // a single-byte character; the terminator counts as one
  kLeadByte = 1,     // the lead byte of a double-byte character
  kTrailByte = 2,    // the trail byte of a double-byte character
  kBrokenTrail = -1  // in trail position but outside the trail range (a NUL behind a lead byte gives this)
};

// 1 if s[n] really is the lead byte of a character of `s`, else 0. Looks back only over the run of lead-class bytes
// that ends at n, so its cost is that run's length and not the string's. A null `s` is a programming error: it shows
// an assertion box and gives 0. `n` must lie within the string or on its terminator.
int _myIskanjin(const char *s, unsigned n);
// The CharacterClass of s[n]. A lead byte at the very end of a string is kLeadByte: the byte behind it is not read. A
// null `s` shows an assertion box and gives 0.
int _myNthctype(const char *s, unsigned n);
// 1 if s[n], read in the text that begins at `start`, is a single-byte character equal to `ch`, else 0. `s` may point
// into the middle of the text that `start` begins; a null or empty `start` means `s` itself. A `start` behind `s`
// gives 0, as does a null `s`.
int IsSingleByteCharAt(const char *start, const char *s, unsigned char ch, unsigned n);
// The first occurrence of `t` in `s` that begins at a character boundary of `s`, or null. An empty `t` gives `s`. A
// lead byte directly before the terminator ends the search with null; a null argument gives null.
char *FindText(const char *s, const char *t);

// Fold `s` in place to lower or upper case through CharLowerA / CharUpperA: single-byte letters only, the length
// stays. A null `s` is ignored.
void LowerText(char *s);
void UpperText(char *s);
// `c` below 1: its low byte. Otherwise the upper case of `c` as the C locale's toupper gives it (a to z only), as its
// low byte. The process's locale has no say, so a byte of a Shift-JIS text is never changed by a Latin-1 rule.
int ToUpperByte(int c);
// flags bit 0: UpperText; else bit 1: LowerText; else nothing. Returns `s`; a null or empty `s` is returned at once.
char *ApplyCaseFlags(char *s, unsigned char flags);
