// The walk context, and the set-up and tear-down around one walk.
#include "walker/walk_context.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "console/console_prompt.h"
#include "console/control_store.h"
#include "files/folder_checks.h"
#include "files/working_folders.h"
#include "reports/error_reporter.h"
#include "reports/memory_reports.h"
#include "resources/message_ids.h"
#include "text/memory_blocks.h"
#include "text/tokens.h"
#include "walker/walk_state.h"

// Static storage, all zero at start but for the filter modes, which start switched off.
WalkContext g_walk;

namespace {

void FreeNameList() {
  while (g_walk.NameList != nullptr) {
    NameListNode *next = g_walk.NameList->next;
    std::free(g_walk.NameList);
    g_walk.NameList = next;
  }
}

// Required names, one a line.
void ParseNameList(const char *text) {
  FreeNameList();
  NameListNode **tail = &g_walk.NameList;
  while (*text != 0) {
    const char *end = std::strchr(text, '\n');
    size_t length = end ? static_cast<size_t>(end - text) : std::strlen(text);
    if (length > 0 && length < MAX_PATH) {
      NameListNode *node = static_cast<NameListNode *>(std::calloc(1, sizeof(NameListNode)));
      if (node == nullptr) break;
      std::memcpy(node->name, text, length);
      *tail = node;
      tail = &node->next;
    }
    text += length + (end ? 1 : 0);
  }
}

// 1, or -1 when none of the three blocks could be had. Only all three missing counts: one missing block alone is
// not noticed here, as the walk has always been set up.
int AcquireWalkBuffers(HWND owner) {
  g_walk.SearchPattern = AcquireBlock(&g_walk.patternHandle, nullptr, kPathSize, nullptr);
  g_walk.EntryBuffer = AcquireBlock(&g_walk.entryHandle, nullptr, kPathSize, nullptr);
  g_walk.FolderPath = AcquireBlock(&g_walk.folderHandle, nullptr, kPathSize, nullptr);
  if (g_walk.SearchPattern != nullptr || g_walk.EntryBuffer != nullptr || g_walk.FolderPath != nullptr) return 1;
  ReportBeep(MB_ICONHAND);
  // The message goes to the message-box stub, and the owner window would be closed: neither has anything to show on a
  // console.
  ShowMessageById(owner, kMsgMemoryAccessFailed, kMsgGlobalMemoryTitle, MB_ICONHAND);
  return -1;
}

void ReleaseWalkBuffers() {
  ReleaseBlock(g_walk.patternHandle, g_walk.SearchPattern);
  ReleaseBlock(g_walk.entryHandle, g_walk.EntryBuffer);
  ReleaseBlock(g_walk.folderHandle, g_walk.FolderPath);
  g_walk.patternHandle = g_walk.entryHandle = g_walk.folderHandle = nullptr;
  g_walk.SearchPattern = g_walk.EntryBuffer = g_walk.FolderPath = nullptr;
}

int Magnitude(int code) { return code < 0 ? -code : code; }

}  // namespace

int AddOutcome(int oldCode, int code) { return -(Magnitude(oldCode) | Magnitude(code)); }

int TestOutcome(int value, int code) {
  if (value == 0) return g_walk.Outcome;
  int bits = Magnitude(code);
  int against = value == 1 ? Magnitude(g_walk.Outcome) : Magnitude(value);
  return (against & bits) == bits ? 1 : 0;
}

void PrepareWalk(HWND, unsigned showFolders, unsigned reportChanged, unsigned statusControl, unsigned countControl,
                 const char *nameListText, void *, unsigned typeFilter) {
  // A console has no device context to fit names to.
  g_walk.OwnerDC = nullptr;
  g_walk.EntryPath[0] = 0;
  if (nameListText != nullptr && *nameListText != 0) ParseNameList(nameListText);
  g_walk.TypeFilter = typeFilter;
  g_walk.TypeFilterNow = typeFilter;
  g_walk.ShowFolders = showFolders;
  g_walk.ReportChanged = reportChanged;
  g_walk.StatusControl = statusControl;
  g_walk.CountControl = countControl;
}

int ScanFolderTree(HWND owner, int *stopOut, unsigned flags, unsigned *countInOut, const char *folder, const char *mask,
                   const char *leaveTo) {
  g_walk.Outcome = 0;
  SetStopFlag(0);
  if (folder != nullptr) g_walk.StartFolder = StoreAndLockBlock(&g_walk.startHandle, nullptr, folder);
  g_walk.EntriesChanged = 0;
  if (countInOut != nullptr) g_walk.CountIn = *countInOut;
  if (AcquireWalkBuffers(owner) == -1) return -1;
  g_walk.EntriesDone = 0;

  int result = 0;
  const char *pattern = g_walk.ExcludeList != nullptr && g_walk.MaskList != nullptr ? g_walk.MaskList[0] : mask;
  if (pattern != nullptr && *pattern != 0) {
    char work[kPathSize];
    std::snprintf(work, sizeof work, "%s", pattern);
    const char *name = SplitFileName(nullptr, work);
    std::snprintf(g_walk.Mask, sizeof g_walk.Mask, "%s", name ? name : "");
    if (folder != nullptr) {
      // A folder in the pattern is replaced by `folder`.
      char folderCopy[kPathSize];
      std::snprintf(folderCopy, sizeof folderCopy, "%s", folder);
      JoinPath(g_walk.SearchPattern, folderCopy, g_walk.Mask);
    } else {
      std::snprintf(g_walk.SearchPattern, kPathSize, "%s", pattern);
    }
    std::snprintf(g_walk.FolderPath, kPathSize, "%s", g_walk.SearchPattern);
    FolderPart(g_walk.FolderPath);
    g_walk.WalkFlags = flags;
    g_walk.EntriesDone = 0;
    if (IsNetworkPath(folder)) {
      g_walk.NetworkPromptOn = 1;
      SetNetworkMessagesQuiet(1);
      g_walk.NetworkWalk = 1;
    }
    g_walk.LineBuffer = AcquireBlock(&g_walk.lineHandle, nullptr, kPathSize, nullptr);
    result = ScanFolder(owner);
    if (leaveTo != nullptr && (g_walk.WalkFlags & kWalkChangedFolder) && FolderExists(leaveTo)) {
      char folderCopy[kPathSize];
      std::snprintf(folderCopy, sizeof folderCopy, "%s", leaveTo);
      ChangeToFolder(folderCopy, 0);
    }
  }
  g_walk.OwnerDC = nullptr;
  // The display fields act on one walk only: a later walk without a new PrepareWalk prints nothing.
  g_walk.CountControl = g_walk.ShowFolders = g_walk.ReportChanged = g_walk.StatusControl = 0;
  ReleaseWalkBuffers();
  if (countInOut != nullptr) *countInOut = g_walk.EntriesDone;
  if (folder != nullptr) ReleaseBlock(g_walk.startHandle, g_walk.StartFolder);
  ReleaseBlock(g_walk.lineHandle, g_walk.LineBuffer);
  g_walk.lineHandle = g_walk.startHandle = nullptr;
  g_walk.LineBuffer = g_walk.StartFolder = nullptr;
  g_walk.MaskList = g_walk.ExcludeList = nullptr;
  if (stopOut != nullptr) {
    *stopOut = IsStopRequested();
    SetPauseFlag(0);
    SetStopFlag(0);
  }
  return result;
}
