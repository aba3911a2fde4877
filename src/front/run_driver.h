// The run driver: from the accepted command line to the end of the process. It reads the control-state store back
// as a dialog's Start button would, sets the matcher up, walks the folder tree once, and winds the services down.
#pragma once

#include "platform/winapi.h"

// The run as main asks for it; `showFoldersId` and `reportChangedId` are 3034 and 3032 when the options p and r were
// given, else 0. Under `confirm` the end is announced and a key is waited for. Result: 1, the exit code of a run.
int RunPass(unsigned showFoldersId, unsigned reportChangedId, int confirm);
// The wind-up frame around the pass. Result: always 0.
int RunReplacement(HWND window, unsigned reserved);
// The pass itself. `mode` 1 is a real run, kIdSimulationRun a simulation. Result: 0 for a finished pass, else the id of
// the control whose content was missing or unusable (kIdOldString, kIdNewString, kIdSearchFolder).
unsigned ReplaceFromControls(unsigned mode);
// Reads and checks the search folder of the store into `folder` (520 bytes). Result 0, or kIdSearchFolder.
unsigned CheckStartFolder(char *folder);
// kWalkShortcuts for a real pass, with kWalkDryRun for a simulation: a start folder on a CD-ROM drive, or mode
// kIdSimulationRun.
unsigned WalkFlagsFor(unsigned mode, int driveLetter);
