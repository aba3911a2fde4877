// Texts kept in global blocks (the run's result text, the error reporter's message, the walker's kept names): the
// block work of an append and of a store, which tells what went wrong and never tells the user. The routines that the
// rest of the program calls, and that end the run when memory runs out, stand on these (reports/memory_reports.h).
#pragma once

#include "platform/winapi.h"

// How an append to a text block went.
enum TextBlockOutcome {
  kTextAppended,  // the block holds the old text and the new one
  kTextCutShort,  // the heap could not lend room to keep the old text: the block kept its size and was written from
                  // its start with as much of the new text as fits
  kTextBlockLost  // the block could not be had, grown or locked; *handle is 0
};

// Appends `text` (null reads as empty) to the text in the unlocked block *handle, or starts a block with it when
// *handle is 0. On success the block holds exactly the old text, the new one and a NUL, its size their lengths plus
// one whatever it was before, and *handle may have changed. The kept last error is cleared before each allocation.
// Costs time in proportion to `text`, not to the old text, for a block that these routines wrote last.
TextBlockOutcome AppendTextToBlock(HGLOBAL *handle, const char *text);
// Makes the unlocked block *handle (or a new one when it is 0) hold exactly `text` (null reads as empty) and its NUL,
// growing or shrinking it to that size. Result: true; false when the block could not be had, resized or locked, and
// *handle is then 0 (the block is freed).
bool StoreTextInBlock(HGLOBAL *handle, const char *text);
