// What the user is told when memory runs out, and the texts in global blocks that never give a failure back: they
// return a usable block or end the process with status -2. The block work itself is text/growing_text.h's; the
// warnings and the forced end are here, so that no service below the reports talks to the user.
#pragma once

#include "platform/winapi.h"

// Reads GetLastError, keeps it (reports/last_error.h) and returns it. The first out-of-memory code (8) of the process
// also shows the low-memory warning; later ones do not.
DWORD CaptureLastError(void);
// For tests: forget that the low-memory warning was given.
void ResetLowMemoryWarning(void);

// Appends `text` (null reads as empty) to the text in the unlocked block `handle`, or starts a block with it when
// `handle` is 0. The block then holds exactly the old text, the new one and a NUL: its size is their lengths plus
// one, whatever it was before. Result: the block's handle, which may differ from `handle`; never 0. When the heap
// cannot lend the room to keep the old text while the block grows, the block keeps its size, is written from its
// start with as much of `text` as fits, and a warning ("AddToGlobalMemory() の警告") is shown; the run goes on. When
// the block cannot be had, grown or locked, FatalMemoryExit ends the process. `owner` goes to the prompts only.
HGLOBAL AppendToBlock(HWND owner, HGLOBAL handle, const char *text);
// Makes the unlocked block `handle` (or a new one when it is 0) hold exactly `text` and its NUL, growing or shrinking
// it to that size. Result: the block's handle; never 0. A block that cannot be had or locked ends the process.
HGLOBAL StoreToBlock(HWND owner, HGLOBAL handle, const char *text);
// Stores a copy of `text` in the block named by *slot (through StoreToBlock) and locks it; `locked` is the slot's
// pointer from a former call, or 0, and is unlocked first. Result: the locked copy, or 0 when the lock failed (the
// block is then freed and *slot is 0). A null `slot` or `text` changes nothing and gives back `locked`.
char *StoreAndLockBlock(HGLOBAL *slot, char *locked, const char *text);
// Shows the memory-failure message (the text of `detailId` alone when it is not 0, else "ﾒﾓﾘｰｴﾗｰ: ..."), titled by
// `titleId`, waits for a key, and ends the process through exit(-2), so that exit handlers run. A call that comes in
// while the message is being shown ends the process at once, without a second message.
[[noreturn]] void FatalMemoryExit(HWND owner, UINT titleId, UINT detailId);
