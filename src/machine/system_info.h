// System information and the texts and network state that services keep for a run.
#pragma once

// Gives back the program texts kept for the run.
void ReleaseProgramTexts(void);
// Leaves the network folder that a walk entered, if any.
void PopNetworkFolder(void);
// Gives back the network list.
void ReleaseNetworkList(void);
