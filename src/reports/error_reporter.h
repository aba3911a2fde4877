// The error reporter: the one way in which failures are told to the user.
#pragma once

#include "platform/winapi.h"

// Sounds the alert of a message level (16 stop, 48 warning).
void ReportBeep(unsigned level);
// 1: the network messages stay silent.
void SetNetworkMessagesQuiet(int value);
// The style of the next report, and the line it belongs to.
void SetReportStyle(unsigned style, const char *line);
// Tells a fault about `path` with the system's error and the path's attributes. Result: the user's answer (a
// message-box code), or 0 when nothing was asked.
int ReportErrorWithAttributes(HWND owner, const char *path, const char *text, const char *title, int nameMode);
// The access question for a refused delete or remove. `code` is the captured system error; `name` (may be null) or
// else `path` names the object; `module` and `titleId` give the title; `style` is the prompt's style. Result: 1 when
// the caller is to treat the operation as failed and try nothing more, -1 to go on, 0 when the error was not a refused
// access. Until the reporter lands: always 0, so the caller's own failure handling decides.
int ReportAccessProblem(DWORD code, const char *name, const char *path, HMODULE module, UINT titleId, UINT style);
// Tells that the drive of a shortcut's target `target` is not there ("ﾘﾝｸ先 %s はありません。", titled "実行", with
// the warning icon) and waits for a key.
void ReportMissingLinkTarget(HWND window, const char *target);
// The question before a read-only folder is entered in the folder-removal mode: the folder's path, with Retry and
// Cancel. Result: the prompt's button code.
int AskAboutReadOnlyFolder(HWND owner, const char *path);
