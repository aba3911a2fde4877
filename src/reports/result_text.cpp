// The result text. Until it lands, it holds nothing.
#include "reports/result_text.h"

void ReleaseResultText(void) {}
void DeleteResultFile(const char *) {}
int HasReportFolder(void) { return 0; }
void AddResultEntry(HWND, const char *, const char *, const char *, unsigned, int) {}
void SetResultBaseFolder(const char *) {}
void SetResultTargetCheck(int) {}
