// The error reporter. Until its composed reports land, they stay silent; the prompts below are whole.
#include "reports/error_reporter.h"

#include <cstdio>

#include "console/console_prompt.h"
#include "resources/message_ids.h"
#include "text/path_strings.h"
#include "text/resource_strings.h"

namespace {
int networkMessagesQuiet = 0;
}  // namespace

char *DescribeSystemError(const char *, DWORD) { return nullptr; }
void ReleaseSystemErrorText(void) {}
void SetReportStyle(unsigned, const char *) {}
int ReportError(HWND, const char *, const char *, const char *, int) { return 0; }
int ReportErrorWithAttributes(HWND, const char *, const char *, const char *, int) { return 0; }
int ReportErrorById(HWND, const char *, UINT, UINT, int) { return 0; }
int ReportErrorByIdWithAttributes(HWND, const char *, UINT, UINT, int) { return 0; }
void ReportBeep(unsigned) {}
int ReportAccessProblem(DWORD, const char *, const char *, HMODULE, UINT, UINT) { return 0; }
int LanguageIndex(void) { return 1; }
void SetLanguageIndex(int) {}
const char *ErrorOccurredText(void) { return "ｴﾗｰが発生しました。"; }
void SetNetworkMessagesQuiet(int value) { networkMessagesQuiet = value; }

void ReportMissingLinkTarget(HWND window, const char *target) {
  char message[2 * kPathSize];
  LoadStrings(kMsgLinkTargetMissing, kMsgRunTitle);
  std::snprintf(message, sizeof message, FirstSlotText(), target);
  ConsolePrompt(window, message, SecondSlotText(), MB_ICONEXCLAMATION);
}

int AskAboutReadOnlyFolder(HWND owner, const char *path) {
  return ConsolePrompt(owner, path, nullptr, MB_RETRYCANCEL | MB_ICONEXCLAMATION);
}
