// The result text of a run: the rows of every change, kept in memory.
#pragma once

// Empties the result text.
void ReleaseResultText(void);
// Deletes the report file `name` in the report folder. Nothing sets a report folder in this edition.
void DeleteResultFile(const char *name);
// Not 0 when a report folder is set.
int HasReportFolder(void);
