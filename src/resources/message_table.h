// The program's message table: every text that the program shows by a numeric id, in Japanese. The engine does not
// read it directly; it loads a message through LoadStringA (winapi.h), which reads this table on every platform.
#pragma once

// The Shift-JIS text of message `id`, NUL-terminated and never empty, or null for an id that the table does not hold.
// The text is constant and lives as long as the process.
const char *FindMessageText(unsigned id);
