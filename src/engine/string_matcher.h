// The string matcher: decides whether one field of a shortcut holds the old string and splices the new string in,
// in place, steered by the match flags. It works on one text at a time and knows nothing of shortcuts.
#pragma once

#include "platform/winapi.h"

// A field buffer holds a text of at most kFieldSize - 1 bytes and its terminator.
enum { kFieldSize = 520 };

// The bits of the match flags. The front end sets exactly one of front, end and all.
enum MatchFlagBits {
  kMatchFront = 0x01,      // at the front of the field
  kMatchEnd = 0x02,        // at the end of the field
  kCharacterUnit = 0x04,   // carried, never tested: no boundary rule applies
  kFolderUnit = 0x08,      // front / end: the match must end on folder boundaries
  kNeedsBackslash = 0x10,  // only a field that holds a backslash takes part
  kMatchAll = 0x20,        // every occurrence
  kCaseMatters = 0x40,     // the case of letters matters
  kFolderBounded = 0x80    // all: each occurrence must lie on folder boundaries
};

// Sets the old and the new string for the following calls. A null argument leaves that string as it is; the other
// is copied (at most kFieldSize - 1 bytes of it).
void SetMatchStrings(const char *oldString, const char *newString);
// The match flags that ReplaceInField reads.
void SetMatchFlags(unsigned char flags);
// Whether the shortcut processing takes the arguments field too (1) or not (0).
void SetIncludeArguments(int value);
int GetIncludeArguments(void);

// A field buffer for ReplaceInField: a zero-filled block of kFieldSize bytes behind one guard byte of 0. End match
// reads the byte in front of the field, and this is where it is defined: a 0 is no lead byte, so it never refuses a
// match. Result: the field (the guard byte stays in front of it), or null when the full size cannot be had; *slot
// holds the block's handle, for ReleaseFieldBuffer.
char *AcquireFieldBuffer(HGLOBAL *slot);
void ReleaseFieldBuffer(HGLOBAL handle, char *field);

// Replaces the old string in `field` as the match flags say, in place. `field` must be a text in a field buffer
// (AcquireFieldBuffer): End match reads the byte in front of it. Result: 1 if at least one replacement was made, and
// then *matchOut is `field`; else 0, and *matchOut means nothing (it may be null, `field`, a position in it, or left
// unwritten). matchOut may be null.
// What a result 0 leaves: the field as it was, with one deliberate exception: Front match in folder unit, when the
// front of the field equals the old string but no folder boundary follows it, leaves the field cut to the old
// string's length; the shortcut processing writes that shorter text. A splice whose result would not fit in the
// field buffer is no replacement (result 0, field unchanged); in All match that holds for the whole field. So is
// an empty old string, and a working block that cannot be had.
int ReplaceInField(char *field, char **matchOut);

// 1 if a match at `position` in the text that begins at `base` begins on a folder boundary: the match begins with a
// real backslash, or at the start of the text, or behind a 0x5C byte. The last is a plain byte test: the trail byte
// 0x5C of a double-byte character counts as a separator, which the folder tests rely on.
int IsLeftBoundary(const char *base, const char *position);
// 1 if the byte at `end` (behind a match that begins at `start`) is a real backslash or the terminator. A match that
// itself ends in a backslash gets no allowance for it.
int IsRightBoundary(const char *start, const char *end);
