// The console's message box, the reports' beep switch and the walker's stop state.
#include "console/console_prompt.h"

#include <cctype>

namespace {

int beepSwitch = 0;
int stopFlag = 0;
unsigned pauseFlag = 0;

struct PromptRow {
  const char *prompt;
  const char *keys;
  int codes[3];
  int answerAtEnd;  // what the end of input answers
};

// Tested by single bits, first hit wins, so MB_YESNOCANCEL (3) and MB_RETRYCANCEL (5) get the OK/cancel row: a
// caller that looks for IDYES or IDRETRY then never sees it. That is the behaviour its callers were written against.
const PromptRow kOkCancel = {"Y:OK C:ｷｬﾝｾﾙ>>", "YC", {IDOK, IDCANCEL, 0}, IDCANCEL};
const PromptRow kAbortRetryIgnore = {"A:中止 Y:やり直し I:無視>>", "AYI", {IDABORT, IDRETRY, IDIGNORE}, IDABORT};
const PromptRow kYesNo = {"Y:はい N:いいえ>>", "YN", {IDYES, IDNO, 0}, IDNO};
const PromptRow kAnyKey = {"Press Any Key>>", "", {IDOK, 0, 0}, IDOK};

}  // namespace

int ConsolePrompt(HWND, const char *text, const char *caption, unsigned flags) {
  if (caption != nullptr && *caption != 0) ConsolePrintf("%s:", caption);
  if (text != nullptr && *text != 0) ConsolePrintf("%s", text);
  const PromptRow &row = (flags & 1) ? kOkCancel : (flags & 2) ? kAbortRetryIgnore : (flags & 4) ? kYesNo : kAnyKey;
  ConsolePrintf("%s", row.prompt);
  for (;;) {
    ConsoleFlush();
    int key = ConsoleReadKey();
    if (key < 0) return row.answerAtEnd;
    if (key > 0) key = std::toupper(key);
    key &= 0xFF;
    if (row.keys[0] == 0) return IDOK;
    for (int i = 0; row.keys[i] != 0; ++i) {
      if (key == static_cast<unsigned char>(row.keys[i])) {
        ConsolePrintf("%c", key);
        return row.codes[i];
      }
    }
  }
}

void SetBeepSwitch(int value) { beepSwitch = value; }
int BeepSwitch(void) { return beepSwitch; }
void SetStopFlag(int value) { stopFlag = value; }
int IsStopRequested(void) { return stopFlag; }
void SetPauseFlag(unsigned value) { pauseFlag = value; }
int IsKeyDown(int virtualKey) {
  // With swapped mouse buttons, the left button is asked for as the right one and the other way round.
  if (GetSystemMetrics(SM_SWAPBUTTON) != 0) {
    if (virtualKey == VK_LBUTTON)
      virtualKey = VK_RBUTTON;
    else if (virtualKey == VK_RBUTTON)
      virtualKey = VK_LBUTTON;
  }
  return (GetAsyncKeyState(virtualKey) & 0x8000) ? 1 : 0;
}
