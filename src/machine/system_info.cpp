// System information. In a run on local paths nothing is kept, so the releases find nothing to do.
#include "machine/system_info.h"

void ReleaseProgramTexts(void) {}
void PopNetworkFolder(void) {}
void ReleaseNetworkList(void) {}
