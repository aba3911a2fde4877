// The gate of path fault reports.
#include "files/path_faults.h"

#include "reports/result_text.h"

int ReportPathFault(HWND owner, const char *name, int fault, int count, int style) {
  if (fault & 16) return 0;
  return ReportFolderFault(owner, name, fault, count, style);
}
