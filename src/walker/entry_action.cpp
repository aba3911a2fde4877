// The entry action dispatcher: decides what happens to one entry the walk found, counts it, and prints its line. For a
// shortcut walk: the filters that are set must pass, the full path is built, the shortcut action runs, and a changed
// shortcut gets the line "\n ---> - C:\dir\name.lnk" under option r.
#include <cstdio>
#include <cstring>

#include "console/console_prompt.h"
#include "engine/shortcut_processing.h"
#include "engine/shortcut_reader.h"
#include "files/directory_search.h"
#include "files/file_operations.h"
#include "reports/memory_reports.h"
#include "text/myjctype.h"
#include "text/tokens.h"
#include "walker/walk_context.h"
#include "walker/walk_state.h"

namespace {

const char kMarkDone = '-';
const char kMarkFailed = '?';
const char kMarkNotDone = 'E';

// -2 no list; -1 every required name is now seen; 1 this entry is one of them; 0 it is none.
int MatchNameList(const char *path) {
  if (g_walk.NameList == nullptr) return -2;
  char copy[kPathSize];
  std::snprintf(copy, sizeof copy, "%s", path);
  const char *name = SplitFileName(nullptr, copy);
  int matched = 0;
  bool allFound = true;
  for (NameListNode *node = g_walk.NameList; node != nullptr; node = node->next) {
    if (node->path[0] == 0 && name != nullptr && lstrcmpiA(name, node->name) == 0) {
      std::snprintf(node->path, sizeof node->path, "%s", path);
      matched = 1;
    }
    if (node->path[0] == 0) allFound = false;
  }
  return allFound ? -1 : matched;
}

// "*" and "?" as in a file pattern, letters without case.
bool WildcardMatch(const char *name, const char *pattern) {
  if (*pattern == 0) return *name == 0;
  if (*pattern == '*') return WildcardMatch(name, pattern + 1) || (*name != 0 && WildcardMatch(name + 1, pattern));
  if (*name == 0) return false;
  if (*pattern != '?' &&
      ToUpperByte(static_cast<unsigned char>(*name)) != ToUpperByte(static_cast<unsigned char>(*pattern)))
    return false;
  return WildcardMatch(name + 1, pattern + 1);
}

bool FileTimeBefore(const FILETIME &a, const FILETIME &b) {
  return a.dwHighDateTime != b.dwHighDateTime ? a.dwHighDateTime < b.dwHighDateTime : a.dwLowDateTime < b.dwLowDateTime;
}

// One delete or move. A walk names no destination folder, so the move mode moves nothing.
int DoEntryOperation(char *path, int action) {
  if (action == kEntryDeleteFile || action == kEntryDeleteFolder) {
    DWORD attributes = 0;
    bool folder = GetPathAttributes(path, &attributes) == 0 && (attributes & FILE_ATTRIBUTE_DIRECTORY);
    int failed = folder ? RemoveFolderPath(path) : DeleteFilePath(path);
    return failed ? kWalkSkipped : 0;
  }
  return AddOutcome(kWalkSkipped, kWalkNotDone);
}

}  // namespace

int RunEntryOperation(HWND, char *path, unsigned, int action) {
  int code;
  do {
    code = DoEntryOperation(path, action);
  } while (code == kWalkRetry);
  if (code < 0 && TestOutcome(code, kWalkAbort)) return kMarkFailed;
  if (code < 0 && TestOutcome(code, kWalkSkipped)) return kMarkNotDone;
  return kMarkDone;
}

int RemoveFolderEntry(char *path) { return RunEntryOperation(nullptr, path, 0, kEntryDeleteFolder); }

int AcceptEntry(FindRecord record) {
  DWORD attributes = record.dwFileAttributes;
  uint64_t size = FoundEntrySize(&record);
  uint64_t localTime = FoundEntryLocalTime(&record);
  g_walk.FilterReached = 0;
  JoinPath(g_walk.EntryPath, g_walk.FolderPath, record.cFileName);
  int listed = MatchNameList(g_walk.EntryPath);
  if (listed == -1) return -1;
  if (listed != -2) return 0;
  g_walk.FilterReached = 1;
  // The filters: each one that is set must pass; an unset one passes every entry.
  if (g_walk.NamePattern != nullptr) {
    bool plain = (g_walk.WalkFlags & kWalkPlainNames) != 0;
    if (plain ? lstrcmpiA(record.cFileName, g_walk.NamePattern) != 0
              : !WildcardMatch(record.cFileName, g_walk.NamePattern))
      return 0;
  }
  if (g_walk.DateMode != -1) {
    FILETIME when = {static_cast<DWORD>(localTime), static_cast<DWORD>(localTime >> 32)};
    bool afterLow = !FileTimeBefore(when, g_walk.DateLow);
    bool beforeHigh = !FileTimeBefore(g_walk.DateHigh, when);
    if (g_walk.DateMode == 0 && !(afterLow && beforeHigh)) return 0;
    if (g_walk.DateMode == 1 && !beforeHigh) return 0;
    if (g_walk.DateMode == 2 && !afterLow) return 0;
  }
  if (g_walk.SizeMode == 0 && size < g_walk.SizeLimit) return 0;
  if (g_walk.SizeMode == 1 && size > g_walk.SizeLimit) return 0;
  if (g_walk.AttributeFilter != 0) {
    DWORD effective = attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes;
    if ((effective & g_walk.AttributeFilter) != g_walk.AttributeFilter) return 0;
  }
  return 1;
}

int ActOnEntry(HWND owner, int action, FindRecord record) {
  g_walk.LineBuffer[0] = 0;
  int accepted = AcceptEntry(record);
  if (accepted == -1 || accepted == 0) {
    int code = accepted == -1 ? kWalkStop : kWalkSkipped;
    g_walk.Outcome = AddOutcome(g_walk.Outcome, code);
    g_walk.WalkStatus = code;
  } else {
    // "  C:\dir\name": two blanks where a mark goes later.
    g_walk.LineBuffer[0] = ' ';
    g_walk.LineBuffer[1] = ' ';
    g_walk.LineBuffer[2] = 0;
    JoinPath(g_walk.LineBuffer + 2, g_walk.FolderPath, record.cFileName);
    std::snprintf(g_walk.EntryBuffer, kPathSize, "%s", g_walk.LineBuffer + 2);
    if (IsStopRequested()) {
      g_walk.Outcome = AddOutcome(g_walk.Outcome, kWalkStop);
      g_walk.WalkStatus = kWalkStop;
    } else {
      if (g_walk.WalkFlags & kWalkSetAttributes) {
        SetPathAttributes(g_walk.EntryBuffer, g_walk.SetAttributesValue);
      } else if (g_walk.WalkFlags & (kWalkDelete | kWalkMove)) {
        int mark = RunEntryOperation(owner, g_walk.EntryBuffer, g_walk.EntriesDone + 1, action);
        std::snprintf(g_walk.LineBuffer, kPathSize, "%c %s", mark, g_walk.EntryBuffer);
        if (mark == kMarkFailed) {
          g_walk.Outcome = AddOutcome(g_walk.Outcome, kWalkAbort);
          g_walk.WalkStatus = kWalkAbort;
        } else if (mark == kMarkNotDone) {
          g_walk.WalkStatus = kWalkSkipped;
        } else {
          ++g_walk.EntriesChanged;
          g_walk.WalkStatus = kWalkEntryDone;
        }
      } else if (g_walk.WalkFlags & kWalkShortcuts) {
        std::snprintf(g_walk.LineBuffer, kPathSize, "%s", g_walk.EntryBuffer);
        unsigned mode = (g_walk.WalkFlags & kWalkDryRun) ? kProcessReplace | kProcessSimulate : kProcessReplace;
        g_walk.WalkStatus = ReplaceInShortcut(owner, g_walk.LineBuffer, mode, nullptr);
        if (!CurrentShortcutChanges()) {
          g_walk.LineBuffer[0] = 0;
        } else {
          char mark = kMarkDone;
          // A shortcut that could not be read is never marked changed by the engine; the test stays as the contract
          // between the two sides.
          if (g_walk.WalkStatus >= static_cast<int>(kReadUnreadable)) {
            g_walk.Outcome = AddOutcome(g_walk.Outcome, kWalkFailed);
            mark = kMarkFailed;
          }
          std::snprintf(g_walk.LineBuffer, kPathSize, "%c %s", mark, g_walk.EntryBuffer);
          ++g_walk.EntriesChanged;
        }
      }
      ++g_walk.EntriesDone;
      if (g_walk.CollectedNames != nullptr) {
        char separator[2] = {g_walk.CollectSeparator, 0};
        g_walk.CollectedNames = AppendToBlock(owner, g_walk.CollectedNames, separator);
        g_walk.CollectedNames = AppendToBlock(owner, g_walk.CollectedNames, g_walk.LineBuffer + 2);
      }
      if (g_walk.ReportChanged && g_walk.LineBuffer[0] != 0) {
        ConsolePrintf("\n ---> %s", g_walk.LineBuffer);
        ConsoleFlush();  // as the folder lines: what was done is shown even if the run is stopped from outside
      }
    }
  }
  if (TestOutcome(1, kWalkAbort)) {
    g_walk.WalkStatus = kWalkAbort;
    return kWalkAbort;
  }
  return g_walk.WalkStatus;
}
