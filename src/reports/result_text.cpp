// The result text. Not wired in yet: it holds nothing.
#include "reports/result_text.h"

void ReleaseResultText(void) {}
void DeleteResultFile(const char *) {}
int HasReportFolder(void) { return 0; }
