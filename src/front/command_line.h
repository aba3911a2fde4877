// The program's entry and its whole conversation before a run: the argument forms, the typed-line prompt, the option
// letters and their compatibility test, the confirmation, and the hand-over to the run driver.
#pragma once

// The process entry, after the platform's start-up. Result: the exit code, 1 when a run was carried out, 0 when
// usage was shown, input was refused, the folder was missing or the user declined.
int KelmaroMain(int argc, char **argv);

// Prints the usage; `savedOptionText` null selects the prompting form, which ends with a yes/no question. Result 1
// only when the user answered yes.
int ShowUsage(char *programPath, const char *savedOptionText, const char *savedFolder);

// The 0-based row of the option letter (compared as one byte, with case), or -1.
int FindOptionRow(int letter);
// The one letter of `classText` that `letters` holds, or 0 when it holds none or more than one (repeats count).
int CountClassLetters(const char *letters, const char *classText);
// 1 when the letters may be used together, else 0.
int OptionsAreCompatible(const char *letters);
// 0 only when the letters hold a single letter of "dc" and a single letter of "xyz" together, else 1.
int NotBothClasses(const char *letters);
