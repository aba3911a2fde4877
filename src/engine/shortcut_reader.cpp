// The shortcut reader's switches. Not wired in yet.
#include "engine/shortcut_reader.h"

namespace {
int skipResolve = 0;
int quietReader = 0;
}  // namespace

void SetSkipResolve(int value) { skipResolve = value; }
void SetQuietReader(int value) { quietReader = value; }
void ReleaseKeptTexts(void) {}
