// The console's message box, the beep switch of the reports, and the process-wide stop and pause state of the walker.
#pragma once

#include "platform/winapi.h"

// Writes the caption (with ":"), the text and the key prompt chosen by the low bits of `flags`, then waits for one of
// its keys and gives the Windows message-box code of that key. Bit 0: OK/cancel (Y, C). Else bit 1: abort, retry,
// ignore (A, Y, I). Else bit 2: yes/no (Y, N). Else any key, result 1. At the end of input a question gets its
// "no" or "cancel" answer (abort for the three-way one), so a script never hangs and never goes ahead.
int ConsolePrompt(HWND window, const char *text, const char *caption, unsigned flags);

// The beep switch: not 0 keeps the error reports silent; 0, the start value, lets each report sound its alert.
void SetBeepSwitch(int value);
int BeepSwitch(void);

void SetStopFlag(int value);
int IsStopRequested(void);
void SetPauseFlag(unsigned value);
// 1 while the key or mouse button is down (the buttons taken as swapped when the user swapped them), else 0.
// Its caller comes with the network listing.
int IsKeyDown(int virtualKey);
