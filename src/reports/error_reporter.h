// The error reporter: the one way in which failures are told to the user. A report is composed of up to five pieces
// (the object's name in quotes, the caller's text, the read-only remark, the system's text for the error, and a line
// set beforehand) and goes to the console prompt, whose answer is the report's result.
#pragma once

#include "platform/winapi.h"
// LanguageIndex, which chooses the member of the text pairs here.
#include "text/resource_strings.h"

// The code that DescribeSystemError reads from GetLastError itself.
const DWORD kCurrentLastError = 0xFFFFFFFFu;

// The system's text for `code` (kCurrentLastError: GetLastError), with the file name of `path` (may be null or
// empty) inserted where the text has a place for it, line ends trimmed. Result: the text, valid until the next fetch
// or ReleaseSystemErrorText; null for code 0 or a code the system has no text for.
char *DescribeSystemError(const char *path, DWORD code);
// Frees the current system text.
void ReleaseSystemErrorText(void);
// Tells on standard error, in one line, that the shortcut at `path` could not be saved, with the system's text for
// `code` (DescribeSystemError with the path), or the code itself where the system has none:
// "kelmaro: could not save <path>: <text>". Standard output is flushed first, so that the line stands after what was
// printed before it. Nothing waits for an answer; GetLastError is as it was on entry.
void TellFailedSave(const char *path, DWORD code);
// The style of the next reports (message-box bits: 16 stop, 32 question, 48 warning, 64 information, plus 4 for yes
// and no) and a line to add below them (copied up to 519 bytes; null or empty for none). Both stay until the next call.
void SetReportStyle(unsigned level, const char *line);
// Tells the user about `name` (may be null; nameMode 1 shows its file name only) with `body` (may be null), titled
// `title`, and waits for the answer, after the alert of the style unless the console's beep switch is set. The system's
// text is that of the last error on entry. GetLastError and errno are as they were on entry. Result: the prompt's
// answer.
int ReportError(HWND owner, const char *name, const char *body, const char *title, int nameMode);
// ReportError after reading the attributes of `name` (a failed read counts as 0x80), so that a read-only object
// gets the read-only remark.
int ReportErrorWithAttributes(HWND owner, const char *name, const char *body, const char *title, int nameMode);
// The two above with the body and the title loaded by message id.
int ReportErrorById(HWND owner, const char *name, UINT bodyId, UINT titleId, int nameMode);
int ReportErrorByIdWithAttributes(HWND owner, const char *name, UINT bodyId, UINT titleId, int nameMode);
// Sounds the alert of a style: 0x40 as 64, 0x10 or 0x20 as 48, any other as it stands.
void ReportBeep(unsigned style);
// The access question for a refused delete or remove. `code` is the captured system error; `name` (may be null) or
// else `path` names the object; `module` and `titleId` give the title; `style` is the prompt's style. Result: 0 when
// the error was no refused access, 1 when the caller is to stop (style 0, 48, or the answer no), -1 to go on.
int ReportAccessProblem(DWORD code, const char *name, const char *path, HMODULE module, UINT titleId, UINT style);
// The pair "Error occurred." / "ｴﾗｰが発生しました。", by LanguageIndex.
const char *ErrorOccurredText(void);
// 1: the network messages stay silent.
void SetNetworkMessagesQuiet(int value);
// Tells that the drive of a shortcut's target `target` is not there ("ﾘﾝｸ先 %s はありません。", titled "実行", with
// the warning icon) and waits for a key.
void ReportMissingLinkTarget(HWND window, const char *target);
// The question before a read-only folder is entered in the folder-removal mode: the folder's path, with Retry and
// Cancel. Result: the prompt's button code.
int AskAboutReadOnlyFolder(HWND owner, const char *path);
