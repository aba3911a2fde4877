// Two operations of our own, on both platforms, that the text services stand on: LoadStringA over the message table
// compiled into the program, and the change stamp of a global block, by which a growing text knows that its block is
// still as it left it. Included by winapi.h; include that instead.
#pragma once

// Copies the message `id` into `buffer` as LoadStringA does: at most bufferMax-1 bytes and a NUL, and gives the number
// of bytes copied without the NUL. A text that does not fit is cut in front of the character that would not fit
// whole, so no half of a double-byte character is ever delivered. An id that the table does not hold gives 0, an empty
// buffer and the last error ERROR_RESOURCE_NAME_NOT_FOUND; a found text leaves the last error alone. A null buffer or
// a bufferMax below 1 gives 0 and writes nothing. The module handle is not looked at: the program has one table, and
// every handle the code passes (0, or the program's own) names it.
int KmLoadStringA(HINSTANCE module, UINT id, LPSTR buffer, int bufferMax);
#ifdef LoadStringA
#undef LoadStringA
#endif
#define LoadStringA KmLoadStringA

#ifndef ERROR_RESOURCE_NAME_NOT_FOUND
#define ERROR_RESOURCE_NAME_NOT_FOUND 1814
#endif

// A number that changes whenever the block is allocated, resized or locked, and is never given to two of these events
// in one process. While a block's stamp stays the same, nobody can have written to it through the heap's contract
// (writing needs a lock). 0 for a handle that names no block.
unsigned long long KmGlobalStamp(HGLOBAL block);
