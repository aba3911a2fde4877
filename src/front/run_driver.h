// The run driver: the pass over the folder tree and the winding down of the process.
#pragma once

// The run as main asks for it; `showFoldersId` and `reportChangedId` are 3034 and 3032 when the options p and r were
// given, else 0. Under `confirm` the end is announced and a key is waited for. Result: 1, the exit code of a run.
int RunPass(unsigned showFoldersId, unsigned reportChangedId, int confirm);
