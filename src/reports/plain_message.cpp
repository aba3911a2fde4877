// A message that is no composed report.
#include "reports/plain_message.h"

#include "console/console_prompt.h"
#include "reports/error_reporter.h"

int ShowPlainMessage(HWND owner, const char *text, const char *title, unsigned style) {
  ReportBeep(style);
  return ConsolePrompt(owner, text, title, style);
}
