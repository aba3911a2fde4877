// The state that every routine of the walker shares, and the routines they call in each other. Private to walker/.
#pragma once

#include "files/directory_search.h"
#include "platform/winapi.h"
#include "text/path_strings.h"

// What the walk does to one entry: ActOnEntry's `action`. The delete mode deletes; every other mode acts on files
// with kEntryActOnFile and on folders with kEntryActOnFolder.
enum EntryAction {
  kEntryDeleteFile = 5,
  kEntryActOnFile = 6,
  kEntryDeleteFolder = 9,  // also the finished folder itself, when folders are removed
  kEntryActOnFolder = 10,
};

// Bits of the type filter: which kinds of entries the walk acts on (0: the mode decides).
enum TypeFilterBit : unsigned { kTypeFiles = 0x100, kTypeFolders = 0x200 };

// The stop flag's value when the walk stops itself (the required names are all seen, an action asked to stop).
const int kStopByWalk = 1000;

// A required name of the name list, with the full path once it was seen.
struct NameListNode {
  NameListNode *next;
  char name[MAX_PATH];
  char path[kPathSize];
};

struct WalkContext {
  // Set by PrepareWalk.
  unsigned ShowFolders{};
  unsigned ReportChanged{};
  unsigned StatusControl{};
  unsigned CountControl{};
  void *OwnerDC{};
  unsigned TypeFilter{};
  unsigned TypeFilterNow{};
  // Set for each walk.
  unsigned WalkFlags{};
  char Mask[kPathSize] = {};
  HGLOBAL folderHandle{};
  char *FolderPath{};
  HGLOBAL patternHandle{};
  char *SearchPattern{};
  HGLOBAL entryHandle{};
  char *EntryBuffer{};
  HGLOBAL lineHandle{};
  char *LineBuffer{};
  char EntryPath[kPathSize] = {};
  HGLOBAL startHandle{};
  char *StartFolder{};
  unsigned EntriesDone{};
  unsigned EntriesChanged{};
  int Outcome{};
  int WalkStatus{};
  unsigned CountIn{};
  int NetworkWalk{};
  int NetworkPromptOn{};
  int FilterReached{};
  // Filters and lists that a walk may set; these values mean "off", and ScanFolderTree leaves them so.
  char **MaskList{};
  char **ExcludeList{};
  NameListNode *NameList{};
  const char *NamePattern{};
  int DateMode = -1;  // -1 off; 0 between the limits; 1 up to the high limit; 2 from the low limit on
  FILETIME DateLow{};
  FILETIME DateHigh{};
  int SizeMode = -1;  // -1 off; 0 at least the limit; 1 at most
  unsigned long long SizeLimit{};
  unsigned AttributeFilter{};
  unsigned SetAttributesValue{};
  HGLOBAL CollectedNames{};
  char CollectSeparator{};
  int ReadOnlySwitch{};
};

extern WalkContext g_walk;

// Walks the folder in FolderPath and everything below it.
int ScanFolder(HWND owner);
// Acts on one file of the mask pass (or, in the move mode, a folder): counts it and prints its line.
int ActOnEntry(HWND owner, int action, FindRecord record);
// 1: act on the entry, 0: skip it, -1: the required names are all seen, stop the walk.
int AcceptEntry(FindRecord record);

// The delete-or-move operation of those modes on one entry (or, with kEntryDeleteFolder, the finished folder itself).
// Result: a
// mark character: '-' done, '?' the walk is to abort, 'E' not done.
int RunEntryOperation(HWND owner, char *path, unsigned index, int action);
int RemoveFolderEntry(char *path);
