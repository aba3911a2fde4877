// The silent stand-ins for the access question and the path fault message.
#include "reports/report_seams.h"

int ReportAccessProblem(DWORD, const char *, const char *, HMODULE, UINT, UINT) { return 0; }

int ReportPathFault(HWND, const char *, int, int, int) { return 0; }
