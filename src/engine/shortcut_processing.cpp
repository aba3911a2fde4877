// Per-shortcut processing. The fields are offered in the order target, icon, arguments (option i), working folder.
// A shortcut with at least one replacement is written back whole from its texts as they stand afterwards, which
// carries three side effects that users rely on: environment names in target and icon are stored expanded, a
// target cut by a front match is stored cut, and an empty working folder comes back as the shortcut's own path.
#include "engine/shortcut_processing.h"

#include <cstdio>
#include <cstring>

#include "engine/shortcut_reader.h"
#include "engine/shortcut_writer.h"
#include "engine/string_matcher.h"
#include "files/exact_names.h"
#include "files/working_folders.h"
#include "machine/environment_strings.h"
#include "machine/network_paths.h"
#include "reports/error_reporter.h"
#include "reports/last_error.h"
#include "reports/memory_reports.h"
#include "reports/result_text.h"
#include "resources/message_ids.h"
#include "text/memory_blocks.h"
#include "text/path_strings.h"
#include "text/resource_strings.h"
#include "text/tokens.h"

namespace {

int shortcutChanged = 0;
int anyShortcutChanged = 0;
int headerWritten = 0;
// The line that field names are formatted into, shared by the rows of one shortcut.
char resultLine[kPathSize];

const unsigned kFieldTarget = kMsgFieldTarget;
const unsigned kFieldArguments = kMsgFieldArguments;
const unsigned kFieldIcon = kMsgFieldIcon;
const unsigned kFieldFolder = kMsgFieldWorkingFolder;

void WriteSimulationHead(HWND window, unsigned flags) {
  if (!(flags & kProcessSimulate)) return;
  LoadStrings(kMsgSimulationMark, kMsgSimulationMark);
  HGLOBAL handle = nullptr;
  char *copy = StoreAndLockBlock(&handle, nullptr, FirstSlotText());
  SetKeptLastError(0);
  AddResultEntry(window, copy, nullptr, nullptr, kMsgChangedItemsHeading, 0);
  ReleaseBlock(handle, copy);
}

// Offers one field to the matcher. Result 1 when it was changed (the rows are then in the result text).
int ReportFieldReplace(HWND window, char *field, unsigned stringId, unsigned flags) {
  if (field == nullptr || *field == 0) return 0;
  HGLOBAL handle = nullptr;
  char *oldText = StoreAndLockBlock(&handle, nullptr, field);
  char *match = nullptr;
  int replaced = ReplaceInField(field, &match);
  shortcutChanged |= replaced;
  if (replaced == 1) {
    if (!headerWritten) {
      headerWritten = 1;
      // A stale system error is kept out of the rows: the result text would append its text.
      SetKeptLastError(0);
      AddResultEntry(window, nullptr, nullptr, nullptr, 0, 0);
      WriteSimulationHead(window, flags);
      SetKeptLastError(0);
      AddResultEntry(window, nullptr, KeptText(1), nullptr, 0, 0);
    }
    LoadStrings(stringId, stringId);
    std::snprintf(resultLine, sizeof resultLine, "%s", FirstSlotText());
    SetKeptLastError(0);
    AddResultEntry(window, resultLine, oldText, match, 0, 0);
  }
  ReleaseBlock(handle, oldText);
  return replaced;
}

// The body of one shortcut.
unsigned ProcessShortcut(HWND window, const char *path, unsigned flags, const char *folder) {
  HGLOBAL handles[6] = {};
  char *target = AcquireFieldBuffer(&handles[0]);
  char *arguments = AcquireFieldBuffer(&handles[1]);
  char *icon = AcquireFieldBuffer(&handles[2]);
  char *description = AcquireBlock(&handles[3], nullptr, kPathSize, nullptr);
  char *workingFolder = AcquireFieldBuffer(&handles[4]);
  char *baseFolder = AcquireBlock(&handles[5], nullptr, kPathSize, nullptr);
  unsigned status = kReadNoObject;
  if (target && arguments && icon && description && workingFolder && baseFolder) {
    std::snprintf(target, kPathSize, "%s", path);
    if (folder != nullptr)
      std::snprintf(baseFolder, kPathSize, "%s", folder);
    else
      GetWorkingFolder(baseFolder, kPathSize);
    int saved = 0;
    if (IsNetworkPath(target)) {
      char *real = ToRealNetworkPath(target, &saved);
      if (saved != 0 && real != target) std::memmove(target, real, std::strlen(real) + 1);
    }
    if (IsNetworkPath(baseFolder)) {
      char *real = ToRealNetworkPath(baseFolder, &saved);
      if (saved != 0 && real != baseFolder) std::memmove(baseFolder, real, std::strlen(real) + 1);
    }
    MakeExactPath(baseFolder, kExactLongNames, 0);
    icon[0] = 0;
    arguments[0] = 0;
    description[0] = 0;
    shortcutChanged = 0;
    headerWritten = 0;
    // Before the read, slot 0 holds the shortcut's own path: a shortcut without a working folder keeps it.
    std::snprintf(workingFolder, kPathSize, "%s", target);
    SetKeptText(workingFolder, 0);
    if (FindCharacter(target, '\\') == nullptr) {
      std::snprintf(arguments, kPathSize, "%s", target);
      JoinPath(target, baseFolder, arguments);
    }
    int showCmd = 1;
    int iconIndex = 0;
    status = ReadShortcut(window, target, arguments, icon, description, &showCmd, &iconIndex, kReadModeProcessing);
    std::snprintf(workingFolder, kPathSize, "%s", KeptText(0));
    ExpandEnvironmentNames(target);
    ExpandEnvironmentNames(icon);
    if (status < kReadUnreadable) {
      MakeExactPath(target, kExactLongNames, 0);
      if (status & kReadTargetFile) MakeExactPath(icon, kExactLongNames, 0);
      // The pending rows: a field that was offered and did not change, shown only if another field did.
      struct Pending {
        unsigned id;
        const char *text;
      } pending[4] = {};
      SetResultBaseFolder(workingFolder);
      if (!ReportFieldReplace(window, target, kFieldTarget, flags)) pending[0] = {kFieldTarget, target};
      if (icon[0] != 0 && !ReportFieldReplace(window, icon, kFieldIcon, flags)) pending[1] = {kFieldIcon, icon};
      SetResultBaseFolder("");
      if (arguments[0] != 0 && GetIncludeArguments()) {
        SetResultTargetCheck(1);
        if (!ReportFieldReplace(window, arguments, kFieldArguments, flags)) pending[2] = {kFieldArguments, arguments};
        SetResultTargetCheck(0);
      }
      if (workingFolder[0] != 0 && !ReportFieldReplace(window, workingFolder, kFieldFolder, flags))
        pending[3] = {kFieldFolder, workingFolder};
      if (shortcutChanged) {
        for (const Pending &row : pending) {
          if (row.id == 0) continue;
          LoadStrings(row.id, row.id);
          std::snprintf(resultLine, sizeof resultLine, "%s (%s) ", FirstSlotText(), "Not Applicable");
          SetKeptLastError(0);
          AddResultEntry(window, resultLine, row.text, nullptr, 0, 0);
        }
        // The rows say the shortcut was changed in any case, and so does the walker's line. A save that failed is
        // told on standard error alone, so that what the console and the result text say stays as it always was.
        if (!(flags & kProcessSimulate)) {
          SetKeptLastError(0);
          unsigned written = WriteShortcut(window, KeptText(1), target, arguments, workingFolder, icon, description,
                                           showCmd, iconIndex);
          if (written & kWriteNothingSaved) TellFailedSave(KeptText(1), GetKeptLastError());
        }
      }
    }
  }
  ReleaseFieldBuffer(handles[0], target);
  ReleaseFieldBuffer(handles[1], arguments);
  ReleaseFieldBuffer(handles[2], icon);
  ReleaseBlock(handles[3], description);
  ReleaseFieldBuffer(handles[4], workingFolder);
  ReleaseBlock(handles[5], baseFolder);
  return status;
}

}  // namespace

unsigned ReplaceInShortcut(HWND window, char *path, unsigned flags, const char *folder) {
  // Slot 1 holds the shortcut's own path, expanded and in the disk's spelling: the head row and the writer use it.
  SetKeptText(path, 1);
  unsigned status = ProcessShortcut(window, path, flags, folder);
  anyShortcutChanged |= shortcutChanged;
  return status;
}

int CurrentShortcutChanges(void) { return shortcutChanged; }
int WasAnyShortcutChanged(void) { return anyShortcutChanged; }
void ClearShortcutChanged(void) { anyShortcutChanged = 0; }
