// Messages by id: two static slots that make a message available with no allocation and no clean-up, and block
// copies for a caller that must hold a text over the next load.
#pragma once

#include "platform/winapi.h"
#include "text/memory_blocks.h"

// Room of each slot. LoadStringA is given 1040 of them, so a text is cut at 1039 bytes.
const int kStringSlotSize = 1048;

// Block copies of the two texts of one load: first, then second. Handle and locked pointer are filled; the size word
// is left as it was.
struct StringBlockPair {
  BlockRecord first;
  BlockRecord second;
};

// Load status bits, as LoadStringPair and LoadStrings give them.
const int kFirstStringFailed = 2;
const int kSecondStringFailed = 1;

// Empties both slots, then loads `firstId` into the first slot and `secondId` into the second (an id of 0 loads
// nothing and leaves its slot empty). A text that cannot be loaded, or that is empty, reads "<失敗>" and sets its bit
// in the result (2 for the first, 1 for the second); 0 means both loaded. With a `record`, each text that was asked
// for is also copied into a locked block of its length plus one, whose handle and pointer go into the record; a copy
// that cannot be had leaves 0 there, unreported, and an id of 0 stores 0. The record's old contents are overwritten,
// not released.
int LoadStringPair(StringBlockPair *record, HMODULE module, UINT firstId, UINT secondId);
// LoadStringPair into the slots only, from the program's own messages.
int LoadStrings(UINT firstId, UINT secondId);
// The slots. Their addresses never change; their contents are valid up to the next load of any kind.
char *FirstSlotText(void);
char *SecondSlotText(void);
// LoadStringPair, then the addresses of the two texts into `firstOut` and `secondOut` (either may be null): the block
// copies' when `record` is given (0 where a copy could not be had), otherwise the slots'. Nothing calls it yet.
int LoadStringPairTo(StringBlockPair *record, HMODULE module, UINT firstId, UINT secondId, char **firstOut,
                     char **secondOut);
// Unlocks (where a pointer is kept) and frees each block of the pair, and zeroes its handle. Null does nothing.
void ReleaseStringBlockPair(StringBlockPair *record);

// Which member of the program's English and Japanese text pairs is shown: 0 English, 1 Japanese (the start value).
// The pairs are compiled into the code beside the routines that show them (the reports, the machine's network
// names), which is why the choice stands down here with the messages and not with any one of them.
int LanguageIndex(void);
void SetLanguageIndex(int index);
