// The result text. Until it lands, it holds nothing.
#include "reports/result_text.h"

const char kReportFileName[] = "_rplcsc_.txt";

void AddResultEntry(HWND, const char *, const char *, const char *, UINT, DWORD) {}
char *LockResultText(void) { return nullptr; }
void ReleaseResultText(void) {}
void SetResultBaseFolder(const char *) {}
void SetResultTargetCheck(int) {}
const char *ReportFolder(void) { return ""; }
void DeleteResultFile(const char *, const char *) {}
int ReportFolderFault(HWND, const char *, int, int, int) { return 0; }
