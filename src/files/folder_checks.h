// Name rules and folder checks: what a folder or name typed by a person must pass before it is used. A check is
// silent or reports; its faults are small negative numbers, which one table turns into messages.
#pragma once

#include "platform/winapi.h"

// The faults of the name and path checks.
enum NameFault {
  kFaultBadName = -1,  // a bad character, or a name that begins with a dot
  kFaultForbiddenCharacter = -3,
  kFaultFolderPartTooLong = -8,
  kFaultNameTooLong = -9,
  kFaultExtensionTooLong = -11,
  kFaultEmptyPath = -15,
  kFaultWrongForm = -16,
};

// Flags of CheckPathSyntaxRules.
enum PathRuleFlag : unsigned {
  kRulesCheckSyntax = 1,         // run CheckPathSyntax first
  kRulesRemovableIsNoFault = 4,  // a failing CD-ROM or removable drive is no fault
  kRulesAskNothing = 8,          // a drive fault is not put to the user
};

// The longest name, and the longest extension, that a check lets pass.
const unsigned kNameLengthLimit = 255;

// 1 when the name is exactly "." (or ".."), else 0; null and empty give 0.
int DotEntryTest(const char *name);
int DotDotEntryTest(const char *name);
// The tests of a path's head. For a network head ("\\" or "\:") HasDriveHead and HasColonHead give 32 when the second
// byte is a backslash, else 16, and HasRootBackslash gives 1. Otherwise: a letter first (1), a ":" second (1), a
// backslash third (1); 0 where not. IsRootedPath: 1 when all three hold.
int HasDriveHead(const char *path);
int HasColonHead(const char *path);
int HasRootBackslash(const char *path);
int IsRootedPath(const char *path);
// The forbidden character that the latest check found, or 0.
int LastBadCharacter(void);
// kFaultForbiddenCharacter when `name` holds one of "*?<>/:\"|" (the first of that list that it holds is kept, and
// reported when `report` is not 0), else 0.
int CheckNameCharacters(HWND owner, const char *name, int report);
// Tells a fault of a name (only kFaultExtensionTooLong, kFaultNameTooLong and kFaultBadName; others are passed over),
// naming `character` (0: the last bad character) when there is one; titled as a file's fault when `isFile` is 1.
void ReportNameFault(HWND owner, const char *name, int fault, int character, int isFile);
// The message id of a path fault, or 0 for a fault that has none.
UINT PathFaultMessageId(int fault);
// Reports a path fault through its message (nothing for a fault without one); an empty path is shown as a blank.
void ReportRuleFault(const char *name, int fault, HWND owner);
// The characters and the length of one name: 0, the character fault, or a length fault (kFaultFolderPartTooLong while
// a path is checked part by part, else kFaultNameTooLong).
int CheckNameLength(int report, const char *name, HWND owner);
// The form of a path and each of its parts; `rooted` 1 asks for a drive or network head. Only the text behind the last
// "..\" counts, and it counts as not rooted. A fault is reported with the part where it was found. Result: 0 or a
// fault.
int CheckPathSyntax(HWND owner, const char *path, int rooted);
// The folder part of `path` as CheckPathSyntax does, then the name: no leading dot, the stem and the extension each
// within the limits. Result: 0; a fault when `report` is 0; 1 after a fault was reported, and for a path with a
// separator but no root.
int CheckFileName(HWND owner, const char *path, int report);
// 1 when the path is not empty and can be reached, else 0.
int FolderExists(const char *path);
// 1 when the folder exists. Otherwise: mode 1 gives 1 without a word; modes 2 (a file) and 4 (a folder) report the
// missing place (with `line` below the report) and give 0; other modes give 0 without a word.
int CheckFolderOrReport(HWND owner, const char *path, int mode, const char *line);
// The drive and path check before a walk: 0 (or the run-time error number of completing a bare drive) when the walk
// may go on; 2 for a path fault, -1 for a missing network or a drive that does not answer (after the question).
int CheckPathSyntaxRules(HWND owner, char *path, int allowCd, unsigned flags);
// Looks for `path` (its quoted part when it begins with a quote) where SearchForFile looks, into `out` (520 bytes,
// may be null). Result: 1 found, 0 not found, -1 found under another spelling, -3 the drive is missing.
int LocateOnSearchPath(const char *path, char *out);
