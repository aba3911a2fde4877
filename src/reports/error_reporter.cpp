// The error reporter. Not wired in yet: reports stay silent.
#include "reports/error_reporter.h"

namespace {
int networkMessagesQuiet = 0;
}  // namespace

void ReportBeep(unsigned) {}
void SetNetworkMessagesQuiet(int value) { networkMessagesQuiet = value; }
void SetReportStyle(unsigned, const char *) {}
int ReportErrorWithAttributes(HWND, const char *, const char *, const char *, int) { return 0; }
int ReportAccessProblem(DWORD, const char *, const char *, HMODULE, UINT, UINT) { return 0; }
