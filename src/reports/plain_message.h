// A message that is no composed report: a text the caller made, shown as it stands with its alert.
#pragma once

#include "platform/winapi.h"

// Sounds the alert of `style` and shows `text` titled `title` with the prompt's buttons of `style`. Result: the
// prompt's answer.
int ShowPlainMessage(HWND owner, const char *text, const char *title, unsigned style);
