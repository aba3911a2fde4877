// The result text of a run: the rows of every change, kept in memory.
#pragma once

#include "platform/winapi.h"

// Empties the result text.
void ReleaseResultText(void);
// Deletes the report file `name` in the report folder, when one is set.
void DeleteResultFile(const char *name);
// Not 0 when a report folder is set.
int HasReportFolder(void);

// Adds rows for one entry to the result text: `line` (a field name, or null), `text` (the old text or the entry's
// path), `match` (the new text), and `headingId`, the heading that opens the text if it has none yet.
void AddResultEntry(HWND window, const char *line, const char *text, const char *match, unsigned headingId, int flags);
// The folder against which relative targets of the next rows are checked; empty for none.
void SetResultBaseFolder(const char *folder);
// 1: the next rows' texts are checked as targets.
void SetResultTargetCheck(int value);
