// The match flags: turns the option controls of the control-state store into the byte that steers the string matcher,
// and into the word that tells the shortcut processing to take the arguments field too.
#pragma once

// Reads the store, sets the matcher's flags (SetMatchFlags) and IncludeArguments (SetIncludeArguments, 1 when the
// arguments control is on), and returns the flags. Under All match only the restriction letters count (backslash
// required, else folder bounded); under Front or End match only the unit letters (folder, character). Cannot fail: a
// store with none of front, end and all gives a byte without any of them, which the front end never lets through.
unsigned char BuildMatchFlags(void);
