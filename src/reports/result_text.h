// The result text of a run: one growing Shift-JIS text, lines ending in "\r\n", into which the engine writes what was
// done (which shortcut, which field, from what to what, with a remark on a target that is not there). It is kept in
// memory for the whole process; this tool shows it nowhere and drops it at the end of the run.
#pragma once

#include <cstddef>

#include "platform/winapi.h"

// The report file's name, in the report folder.
extern const char kReportFileName[];

// Adds one row: the heading `headingId` (only if the text has none yet), `prefix` (runs straight into what follows),
// `path` with its short form in brackets where that differs and its attribute letters, `target` on a line of its own
// with a remark when it is not there, and the system's text for `systemError` (0: GetLastError). Every argument may be
// null or 0. A call made while one is running adds nothing. errno is as it was on entry.
void AddResultEntry(HWND owner, const char *prefix, const char *path, const char *target, UINT headingId,
                    DWORD systemError);
// The text, locked; null when there is none. A second call gives the same pointer; the next AddResultEntry voids it.
char *LockResultText(void);
// Unlocks and frees the text; the next text may have a heading again.
void ReleaseResultText(void);
// The folder against which relative targets of the next rows are tested; null or empty for none.
void SetResultBaseFolder(const char *folder);
// Not 0: the next rows' targets are not tested (for a row whose new text is no path).
void SetResultTargetCheck(int off);
// The folder of the report file: empty, as nothing in this tool writes the file.
const char *ReportFolder(void);
// Deletes `name` in `folder` (or `name` itself for an empty folder) if it is there. No message.
void DeleteResultFile(const char *folder, const char *name);
// The text of the fault message, into `text` of `size` bytes: a line feed, "[ﾌｫﾙﾀﾞ] " for `*style` bit 2 and
// "[ﾌｧｲﾙ] " for bit 1, the fault's own text (-11 with `count` and the "go on" text), the read error line for the faults
// that are not -24, -22, -21 or -19, and the question for bit 8. `*style` comes back as the report is to ask: an
// access fault (2) on a folder turns bit 8 off and bit 4 on, so that it asks without the question's text; -24 and
// -19 only inform, and clear it.
void FolderFaultText(char *text, size_t size, int fault, int count, int *style);
// The fault message for a folder or file path: `fault` picks the text, `count` goes into the "maximum" text, `style`
// bits 1 and 2 name a file or a folder, bit 8 makes it a question. Result: 0 for yes, -1 otherwise (0 for -11); the
// faults -18 and -20 come back as they are, 0 for 0, -22 after a pending network message. A network error kept from
// the last call, on a path that is no network drive, is told as fault -22. The message also leaves a row in the
// result text, under the heading "警告: ﾌｫﾙﾀﾞ・ﾌｧｲﾙｴﾗｰ". errno is 0 afterwards.
int ReportFolderFault(HWND owner, const char *path, int fault, int count, int style);

// Adds a row for each message of the network listing that is not in the text yet: the message, then the place it
// names, under the heading "ﾈｯﾄﾜｰｸ" (8300). The last error and the kept one are as they were.
void AddNetworkMessageRows(HWND owner);
