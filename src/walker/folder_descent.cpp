// The recursive descent: in each folder, first the files of the mask, then every sub-folder, depth-first, in the
// order in which the listing gives them. One routine calls itself through EnterSubfolder; all shared state is in the
// walk context, and each level holds only its own search and entry.
#include "walker/folder_descent.h"

#include <cstdio>
#include <cstring>

#include "console/console_prompt.h"
#include "files/directory_search.h"
#include "files/folder_checks.h"
#include "machine/network_paths.h"
#include "reports/error_reporter.h"
#include "reports/last_error.h"
#include "resources/message_ids.h"
#include "text/memory_blocks.h"
#include "text/quoted_args.h"
#include "text/resource_strings.h"
#include "walker/walk_context.h"
#include "walker/walk_state.h"

namespace {

const char kAllEntries[] = "*.*";
// The style values that choose the password question's tail. The question's texts go by the style's low values, not
// by its bits counted from 0: value 4 (MB_YESNO) adds the two-answer tail, values 1 and 2 (OK/cancel, and the
// three-way question that MB_YESNOCANCEL holds) the three-answer one. The walker's 0x33 thus gets the three-answer
// tail alone, as its prompt asks with OK and cancel.
const unsigned kTwoAnswerTail = MB_YESNO;
const unsigned kThreeAnswerTail = MB_OKCANCEL | MB_ABORTRETRYIGNORE;

bool IsDotName(const char *name) { return DotEntryTest(name) || DotDotEntryTest(name); }

// The number of masks, duplicates dropped, or 1 without a list.
int MaskCount() { return g_walk.MaskList == nullptr ? 1 : RemoveDuplicates(g_walk.MaskList); }

int EnterSubfolder(HWND owner, FindHandle handle, FindRecord record) {
  // A name that would not fit the walk's 520-byte paths is passed over: joining it would leave FolderPath as it is,
  // and the step back would then cut one level too many. Windows' own listing limit keeps a run from getting here;
  // on Linux a link that points back up can, and this is where its walk ends.
  size_t room = std::strlen(g_walk.FolderPath) + 1 + std::strlen(record.cFileName) + 1 + std::strlen(g_walk.Mask);
  if (room >= kPathSize) return 0;
  JoinPath(nullptr, g_walk.FolderPath, record.cFileName);
  int skip = 0;
  // In the folder-removal mode a read-only folder is asked about first, unless the read-only switch is set, and is
  // entered only when the user answers Retry.
  if ((g_walk.WalkFlags & kWalkRemoveFolders) && (record.dwFileAttributes & FILE_ATTRIBUTE_READONLY) &&
      !g_walk.ReadOnlySwitch)
    skip = AskAboutReadOnlyFolder(owner, g_walk.FolderPath) == IDRETRY ? 0 : 1;
  JoinPath(g_walk.SearchPattern, g_walk.FolderPath, g_walk.Mask);
  if (IsStopRequested()) {
    g_walk.Outcome = AddOutcome(g_walk.Outcome, kWalkStop);
    return kWalkStop;
  }
  if (skip == 0) {
    g_walk.WalkStatus = ScanFolder(owner);
    // Any negative status ends the walk: a stop from below reaches the caller as an abort, and FolderPath stays as
    // it was below.
    if (g_walk.WalkStatus < 0) return kWalkAbort;
    if (IsStopRequested()) {
      g_walk.Outcome = AddOutcome(g_walk.Outcome, kWalkStop);
      return kWalkStop;
    }
  }
  // Step back: the parent's path is not kept anywhere; it comes from cutting the mask and the folder's own name.
  FolderPart(g_walk.SearchPattern);
  FolderPart(g_walk.SearchPattern);
  std::snprintf(g_walk.FolderPath, kPathSize, "%s", g_walk.SearchPattern);
  if (g_walk.NetworkWalk && IsNetworkViewLevel(g_walk.FolderPath)) {
    // The descent replaced the process-wide network listing; the caller's listing is made the running one again.
    CloseFind(&handle);
    JoinPath(g_walk.EntryBuffer, g_walk.FolderPath, const_cast<char *>(kAllEntries));
    ResumeNetworkListing(g_walk.EntryBuffer);
  }
  return g_walk.WalkStatus;
}

}  // namespace

int IsFileEntry(DWORD attributes) {
  if (attributes & FILE_ATTRIBUTE_DIRECTORY) return 0;
  if (g_walk.TypeFilter == 0) return 1;
  if (g_walk.TypeFilter & kTypeFiles) {
    if (g_walk.TypeFilter & kTypeFolders) g_walk.TypeFilterNow &= ~kTypeFolders;
    return 1;
  }
  return 0;
}

int SelectFileEntry(DWORD attributes, const char *name) {
  if (!IsFileEntry(attributes)) return 0;
  if (g_walk.ExcludeList == nullptr) return 1;
  for (char **entry = g_walk.ExcludeList; *entry != nullptr; ++entry)
    if (lstrcmpiA(name, *entry) == 0) return kWalkEntryDone;
  return 0;
}

int SelectFolderEntry(DWORD attributes) {
  if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) return 0;
  if (g_walk.TypeFilter & kTypeFolders) {
    if (g_walk.TypeFilter & kTypeFiles) g_walk.TypeFilterNow &= ~kTypeFiles;
    return 1;
  }
  if (g_walk.WalkFlags & kWalkSubfolders) {
    g_walk.TypeFilterNow = 0;
    return -1;
  }
  return g_walk.TypeFilter == 0 ? 1 : 0;
}

int IsNetworkViewLevel(const char *path) { return (ClassifyNetworkPath(path) & (kNetRoot | kNetGroup | kNetServer)); }

int NetworkAccessPrompt(HWND owner, const char *path, unsigned style) {
  DWORD error = GetKeptLastError();
  if (!IsNetworkError(error)) return 0;
  // Any other network error ends the questions for the rest of the process.
  if (!IsNetworkPasswordError(error)) return 7;
  HGLOBAL handle = nullptr;
  char *text = AcquireBlock(&handle, nullptr, 65535, nullptr);
  if (text == nullptr) return 1;
  LoadStrings(kMsgNetworkRefusedAskPassword, kMsgPasswordAskButtons);
  std::snprintf(text, 65535, "%s", FirstSlotText());
  if (style & kTwoAnswerTail) std::strncat(text, SecondSlotText(), 65535 - std::strlen(text) - 1);
  if (style & kThreeAnswerTail) {
    LoadStrings(kMsgPasswordAskButtonsQuiet, kMsgFolderFileErrorTitle);
    std::strncat(text, FirstSlotText(), 65535 - std::strlen(text) - 1);
  }
  LoadStrings(kMsgFolderFileErrorTitle, kMsgFolderFileErrorTitle);
  SetReportStyle(style, nullptr);
  int answer = ReportErrorWithAttributes(owner, path, text, FirstSlotText(), 0);
  ReleaseBlock(handle, text);
  // Yes would open the folder with the shell and ask whether that worked; a console can do neither, and the stub's
  // answer makes it 2.
  if (answer == IDYES) return 2;
  if (answer == IDCANCEL) return 3;
  return answer;
}

namespace {

// How a step leaves the level: on with the next step, or out by one of the two exits. kFinish ends the level with the
// entries done; kClose with the status as it stands. kSearchAgain begins the mask pass again after the network prompt.
enum StepEnd { kGoOn, kSearchAgain, kFinish, kClose };

// The action on a folder entry when the walk moves folders, and the type filter made whole again for the next entry.
void ActOnFolderEntry(HWND owner, FindRecord &record) {
  if (g_walk.TypeFilterNow && (g_walk.WalkFlags & kWalkMove))
    g_walk.WalkStatus =
        ActOnEntry(owner, (g_walk.WalkFlags & kWalkDelete) ? kEntryDeleteFolder : kEntryActOnFolder, record);
  g_walk.TypeFilterNow = g_walk.TypeFilter;
}

// A network folder that refused the first search: the user is asked for a password, to go on, or to abort.
StepEnd AnswerNetworkRefusal(HWND owner) {
  int answer = NetworkAccessPrompt(owner, g_walk.FolderPath, MB_ICONEXCLAMATION | MB_YESNOCANCEL);
  if (answer == 4) return kSearchAgain;
  if (answer == 7) {
    g_walk.NetworkPromptOn = 0;
  } else if (answer == 3) {
    g_walk.WalkStatus = kWalkAbort;
    g_walk.Outcome = AddOutcome(g_walk.Outcome, kWalkAbort);
    return kClose;
  }
  return kGoOn;
}

// The first search of the folder with the current mask. A search that finds nothing only leaves a status that is not
// 0; on a network walk a refusal is asked about here.
StepEnd SearchWithMask(HWND owner, FindHandle &handle, FindRecord &record) {
  JoinPath(g_walk.SearchPattern, g_walk.FolderPath, g_walk.Mask);
  g_walk.WalkStatus = FindFirstEntry(&handle, g_walk.SearchPattern, &record);
  if (g_walk.NetworkWalk && g_walk.NetworkPromptOn) return AnswerNetworkRefusal(owner);
  return kGoOn;
}

// The status of an action or a descent in the mask pass: an abort closes the level, a stop from below stops the walk.
StepEnd TestMaskPassStatus() {
  if (g_walk.WalkStatus == kWalkAbort) return kClose;
  if (g_walk.WalkStatus == kWalkStop) {
    SetStopFlag(kStopByWalk);
    return kFinish;
  }
  return kGoOn;
}

// A file the mask pass has taken: when a required-names list is satisfied by it, the walk stops here.
StepEnd TestRequiredNames(FindRecord &record) {
  JoinPath(g_walk.EntryPath, g_walk.FolderPath, record.cFileName);
  if (g_walk.FilterReached) return kGoOn;
  SetStopFlag(kStopByWalk);
  g_walk.Outcome = AddOutcome(g_walk.Outcome, kWalkStop);
  g_walk.WalkStatus = kWalkStop;
  g_walk.EntriesDone = 1;
  return kClose;
}

// The levels of the network view list only folders, so there the mask pass goes down too. On a drive a folder called
// "x.lnk" is no entry of this pass.
bool IsNetworkViewFolder(FindRecord &record) {
  return g_walk.NetworkWalk && IsNetworkViewLevel(g_walk.FolderPath) && !IsDotName(record.cFileName) &&
         SelectFolderEntry(record.dwFileAttributes);
}

// A folder of the network view, met by the mask pass: handled as the all-entries pass handles a folder.
StepEnd EnterNetworkViewFolder(HWND owner, FindHandle &handle, FindRecord &record) {
  ActOnFolderEntry(owner, record);
  if (!(g_walk.WalkFlags & kWalkSubfolders)) return kGoOn;
  g_walk.WalkStatus = EnterSubfolder(owner, handle, record);
  return TestMaskPassStatus();
}

// One entry of the mask pass: a file is acted on, an excluded name only counts for the required names, and a folder
// is entered only at the levels of the network view.
StepEnd TakeMaskEntry(HWND owner, FindHandle &handle, FindRecord &record) {
  int select = SelectFileEntry(record.dwFileAttributes, record.cFileName);
  if (select == 1) {
    g_walk.WalkStatus =
        ActOnEntry(owner, (g_walk.WalkFlags & kWalkDelete) ? kEntryDeleteFile : kEntryActOnFile, record);
    return g_walk.WalkStatus != 0 ? TestMaskPassStatus() : TestRequiredNames(record);
  }
  if (select == kWalkEntryDone) {
    g_walk.WalkStatus = 0;
    return TestRequiredNames(record);
  }
  if (IsNetworkViewFolder(record)) return EnterNetworkViewFolder(owner, handle, record);
  return kGoOn;
}

// The entries of one mask's search, in listing order, up to the end of the listing, which closes the search.
StepEnd ListMaskEntries(HWND owner, FindHandle &handle, FindRecord &record) {
  for (;;) {
    if (g_walk.WalkStatus == kFindSkip) {
      g_walk.WalkStatus = FindNextEntry(&handle, &record);
      continue;
    }
    if (g_walk.WalkStatus != 0) {
      CloseFind(&handle);
      return IsStopRequested() ? kFinish : kGoOn;
    }
    if (IsStopRequested()) return kFinish;
    StepEnd end = TakeMaskEntry(owner, handle, record);
    if (end != kGoOn) return end;
    g_walk.WalkStatus = FindNextEntry(&handle, &record);
  }
}

// The mask pass: every file of the mask is acted on at once, in listing order.
StepEnd RunMaskPass(HWND owner, FindHandle &handle, FindRecord &record) {
  int maskCount = MaskCount();
  for (int maskIndex = 0; maskIndex < maskCount; ++maskIndex) {
    if (maskCount > 1) std::snprintf(g_walk.Mask, sizeof g_walk.Mask, "%s", g_walk.MaskList[maskIndex]);
    StepEnd end = SearchWithMask(owner, handle, record);
    if (end == kSearchAgain) {
      maskIndex = -1;
      continue;
    }
    if (end != kGoOn) return end;
    if (IsStopRequested()) return kFinish;
    // Every folder the walk reaches is printed, after its first search whatever it found: also one without a
    // shortcut and one that could not be listed. The line is flushed at once, so that a run stopped from outside has
    // shown how far it came.
    if (maskCount == 1 && g_walk.ShowFolders) {
      ConsolePrintf("\n %s", g_walk.FolderPath);
      ConsoleFlush();
    }
    end = ListMaskEntries(owner, handle, record);
    if (end != kGoOn) return end;
  }
  return kGoOn;
}

// One entry of the all-entries pass: a folder other than "." and ".." is acted on and then walked completely.
StepEnd TakeFolderEntry(HWND owner, FindHandle &handle, FindRecord &record) {
  if (IsDotName(record.cFileName) || !SelectFolderEntry(record.dwFileAttributes)) return kGoOn;
  ActOnFolderEntry(owner, record);
  if (!(g_walk.WalkFlags & kWalkSubfolders)) return kGoOn;
  g_walk.WalkStatus = EnterSubfolder(owner, handle, record);
  if (g_walk.WalkStatus == kWalkAbort) return kClose;
  if (g_walk.WalkStatus == kWalkStop) return kFinish;
  return kGoOn;
}

// The all-entries pass: every sub-folder is walked completely before the next entry is looked at. The stop flag
// reaches this pass through EnterSubfolder.
StepEnd RunFolderPass(HWND owner, FindHandle &handle, FindRecord &record) {
  JoinPath(g_walk.EntryBuffer, g_walk.FolderPath, const_cast<char *>(kAllEntries));
  g_walk.WalkStatus = FindFirstEntry(&handle, g_walk.EntryBuffer, &record);
  while (g_walk.WalkStatus == 0 || g_walk.WalkStatus == kFindSkip) {
    if (g_walk.WalkStatus == 0) {
      StepEnd end = TakeFolderEntry(owner, handle, record);
      if (end != kGoOn) return end;
    }
    g_walk.WalkStatus = FindNextEntry(&handle, &record);
  }
  return kGoOn;
}

// In the folder-removal mode the finished folder itself goes, unless it is the start folder that is to be kept.
StepEnd RemoveFinishedFolder() {
  bool keep = (g_walk.WalkFlags & kWalkKeepStart) && g_walk.StartFolder != nullptr &&
              lstrcmpiA(g_walk.FolderPath, g_walk.StartFolder) == 0;
  if (!keep && RemoveFolderEntry(g_walk.FolderPath) == '?') {
    g_walk.WalkStatus = kWalkAbort;
    g_walk.Outcome = AddOutcome(g_walk.Outcome, kWalkAbort);
    return kClose;
  }
  return kFinish;
}

// The folder's listing is done. SearchPattern is made again because EnterSubfolder steps back by cutting it.
StepEnd EndFolder(FindHandle &handle) {
  CloseFind(&handle);
  JoinPath(g_walk.SearchPattern, g_walk.FolderPath, g_walk.Mask);
  if (!(g_walk.WalkFlags & kWalkRemoveFolders)) return kFinish;
  return RemoveFinishedFolder();
}

// The level's exit: the search is closed and the status handed up, the entries done when the level finished.
int LeaveFolder(FindHandle &handle, StepEnd end) {
  if (end == kFinish) g_walk.WalkStatus = static_cast<int>(g_walk.EntriesDone);
  CloseFind(&handle);
  return g_walk.WalkStatus;
}

}  // namespace

int ScanFolder(HWND owner) {
  FindHandle handle = {nullptr, nullptr};
  FindRecord record;
  std::memset(&record, 0, sizeof record);
  StepEnd end = IsStopRequested() ? kFinish : RunMaskPass(owner, handle, record);
  if (end == kGoOn) end = RunFolderPass(owner, handle, record);
  if (end == kGoOn) end = EndFolder(handle);
  return LeaveFolder(handle, end);
}
