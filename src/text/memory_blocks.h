// Global memory blocks: the movable, zero-filled blocks that hold the program's temporary buffers, and the
// allocate-and-lock routine that backs off to smaller sizes instead of failing.
#pragma once

#include "platform/winapi.h"

// A block kept in a longer-lived structure: handle, locked pointer, size.
struct BlockRecord {
  HGLOBAL handle;
  char *locked;
  DWORD size;
};

// GlobalAlloc (handle 0) or GlobalReAlloc, always movable and zero-filled. Result: the new handle or 0. Clears the
// kept last error first.
HGLOBAL ResizeOrAllocBlock(HGLOBAL handle, DWORD size);
// Allocates or resizes *slot to `size` bytes and locks it. When the size cannot be had, tries 255 bytes less at a
// time, and below 256 one byte less, down to 1. `granted` (if given) receives the size reached. Result: the locked
// pointer, or null (slot null; size 0 with no block; nothing could be had; the lock failed). A failed resize
// abandons the old block: *slot becomes 0 and the retries are fresh allocations.
char *AcquireBlock(HGLOBAL *slot, void *locked, DWORD size, DWORD *granted);
// Unlocks (when `locked` is given) and frees a block; nothing for handle 0.
void ReleaseBlock(HGLOBAL handle, void *locked);
// ReleaseBlock on a record that holds a handle, then clears the record; a record without a handle is left alone.
// Nothing calls it yet.
void ReleaseBlockRecord(BlockRecord *record);
// Frees the blocks of the process-wide saved table; the run driver empties it at the end of a run.
void ReleaseSavedBlocks(void);
