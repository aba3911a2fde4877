// The recursive descent: in each folder, first the files of the mask, then every sub-folder, depth-first, in the
// order in which the listing gives them. One routine calls itself through EnterSubfolder; all shared state is in the
// walk context, and each level holds only its own search and entry.
#include "walker/folder_descent.h"

#include <cstdio>
#include <cstring>

#include "console/console_prompt.h"
#include "files/directory_search.h"
#include "files/folder_checks.h"
#include "machine/network_listing.h"
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
// The button bits of a prompt style that ask a question with answers (MB_ABORTRETRYIGNORE, MB_YESNO and their sum,
// MB_YESNOCANCEL): the question then names them.
const unsigned kAnswerButtons = MB_ABORTRETRYIGNORE | MB_YESNO;

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
  // The read-only question of the folder-removal mode, which this edition never turns on.
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

int IsNetworkPasswordError(DWORD error) {
  return error == ERROR_INVALID_PASSWORD || error == ERROR_BAD_NET_RESP ? 1 : 0;
}

int IsNetworkError(DWORD error) {
  static const DWORD kErrors[] = {50,   52,   53,   54,   55,   56,   57,   58,   59,   64,   65,   66,   67,
                                  69,   86,   88,   1203, 1205, 1214, 1220, 1222, 1225, 1227, 1229, 1231, 1234,
                                  1236, 1241, 1244, 1245, 1707, 1724, 1739, 1763, 1790, 1792, 2108, 2250, 4100};
  for (DWORD known : kErrors)
    if (known == error) return 1;
  return 0;
}

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
  if (style & MB_ICONHAND) std::strncat(text, SecondSlotText(), 65535 - std::strlen(text) - 1);
  if (style & kAnswerButtons) {
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

int ScanFolder(HWND owner) {
  FindHandle handle = {nullptr, nullptr};
  FindRecord record;
  std::memset(&record, 0, sizeof record);
  // "finish": the level ends with the entries done; "close": with the status as it stands.
  auto close = [&]() {
    CloseFind(&handle);
    return g_walk.WalkStatus;
  };
  auto finish = [&]() {
    g_walk.WalkStatus = static_cast<int>(g_walk.EntriesDone);
    return close();
  };
  if (IsStopRequested()) return finish();

  // The mask pass: every file of the mask is acted on at once, in listing order.
  int maskCount = MaskCount();
  for (int maskIndex = 0; maskIndex < maskCount; ++maskIndex) {
    if (maskCount > 1) std::snprintf(g_walk.Mask, sizeof g_walk.Mask, "%s", g_walk.MaskList[maskIndex]);
    JoinPath(g_walk.SearchPattern, g_walk.FolderPath, g_walk.Mask);
    g_walk.WalkStatus = FindFirstEntry(&handle, g_walk.SearchPattern, &record);
    if (g_walk.NetworkWalk && g_walk.NetworkPromptOn) {
      int answer = NetworkAccessPrompt(owner, g_walk.FolderPath, MB_ICONEXCLAMATION | MB_YESNOCANCEL);
      if (answer == 4) {
        maskIndex = -1;
        continue;
      }
      if (answer == 7) {
        g_walk.NetworkPromptOn = 0;
      } else if (answer == 3) {
        g_walk.WalkStatus = kWalkAbort;
        g_walk.Outcome = AddOutcome(g_walk.Outcome, kWalkAbort);
        return close();
      }
    }
    if (IsStopRequested()) return finish();
    // Every folder the walk reaches is printed, after its first search whatever it found: also one without a
    // shortcut and one that could not be listed.
    if (maskCount == 1 && g_walk.ShowFolders) ConsolePrintf("\n %s", g_walk.FolderPath);

    for (;;) {
      if (g_walk.WalkStatus == kFindSkip) {
        g_walk.WalkStatus = FindNextEntry(&handle, &record);
        continue;
      }
      if (g_walk.WalkStatus != 0) {
        CloseFind(&handle);
        if (IsStopRequested()) return finish();
        break;
      }
      if (IsStopRequested()) return finish();
      int select = SelectFileEntry(record.dwFileAttributes, record.cFileName);
      bool acted = false;  // take the status test of an action (or a descent)
      bool named = false;  // take the name-list test
      if (select == 1) {
        g_walk.WalkStatus =
            ActOnEntry(owner, (g_walk.WalkFlags & kWalkDelete) ? kEntryDeleteFile : kEntryActOnFile, record);
        if (g_walk.WalkStatus != 0)
          acted = true;
        else
          named = true;
      } else if (select == kWalkEntryDone) {
        g_walk.WalkStatus = 0;
        named = true;
      } else if (g_walk.NetworkWalk && IsNetworkViewLevel(g_walk.FolderPath) && !IsDotName(record.cFileName) &&
                 SelectFolderEntry(record.dwFileAttributes)) {
        // The levels of the network view list only folders, so there the mask pass goes down too. On a drive a
        // folder called "x.lnk" is no entry of this pass.
        if (g_walk.TypeFilterNow && (g_walk.WalkFlags & kWalkMove))
          g_walk.WalkStatus =
              ActOnEntry(owner, (g_walk.WalkFlags & kWalkDelete) ? kEntryDeleteFolder : kEntryActOnFolder, record);
        g_walk.TypeFilterNow = g_walk.TypeFilter;
        if (g_walk.WalkFlags & kWalkSubfolders) {
          g_walk.WalkStatus = EnterSubfolder(owner, handle, record);
          acted = true;
        }
      }
      if (named) {
        JoinPath(g_walk.EntryPath, g_walk.FolderPath, record.cFileName);
        if (!g_walk.FilterReached) {
          // The required names are all seen.
          SetStopFlag(kStopByWalk);
          g_walk.Outcome = AddOutcome(g_walk.Outcome, kWalkStop);
          g_walk.WalkStatus = kWalkStop;
          g_walk.EntriesDone = 1;
          return close();
        }
      }
      if (acted) {
        if (g_walk.WalkStatus == kWalkAbort) return close();
        if (g_walk.WalkStatus == kWalkStop) {
          SetStopFlag(kStopByWalk);
          return finish();
        }
      }
      g_walk.WalkStatus = FindNextEntry(&handle, &record);
    }
  }

  // The all-entries pass: every sub-folder is walked completely before the next entry is looked at.
  JoinPath(g_walk.EntryBuffer, g_walk.FolderPath, const_cast<char *>(kAllEntries));
  g_walk.WalkStatus = FindFirstEntry(&handle, g_walk.EntryBuffer, &record);
  while (g_walk.WalkStatus == 0 || g_walk.WalkStatus == kFindSkip) {
    if (g_walk.WalkStatus == 0 && !IsDotName(record.cFileName) && SelectFolderEntry(record.dwFileAttributes)) {
      if (g_walk.TypeFilterNow && (g_walk.WalkFlags & kWalkMove))
        g_walk.WalkStatus =
            ActOnEntry(owner, (g_walk.WalkFlags & kWalkDelete) ? kEntryDeleteFolder : kEntryActOnFolder, record);
      g_walk.TypeFilterNow = g_walk.TypeFilter;
      if (g_walk.WalkFlags & kWalkSubfolders) {
        g_walk.WalkStatus = EnterSubfolder(owner, handle, record);
        if (g_walk.WalkStatus == kWalkAbort) return close();
        if (g_walk.WalkStatus == kWalkStop) return finish();
      }
    }
    g_walk.WalkStatus = FindNextEntry(&handle, &record);
  }
  CloseFind(&handle);
  JoinPath(g_walk.SearchPattern, g_walk.FolderPath, g_walk.Mask);
  if (!(g_walk.WalkFlags & kWalkRemoveFolders)) return finish();

  // The folder-removal mode, which this edition never turns on: the finished folder itself goes, unless it is the
  // start folder that is to be kept.
  if (!((g_walk.WalkFlags & kWalkKeepStart) && g_walk.StartFolder != nullptr &&
        lstrcmpiA(g_walk.FolderPath, g_walk.StartFolder) == 0)) {
    if (RemoveFolderEntry(g_walk.FolderPath) == '?') {
      g_walk.WalkStatus = kWalkAbort;
      g_walk.Outcome = AddOutcome(g_walk.Outcome, kWalkAbort);
      return close();
    }
  }
  return finish();
}
