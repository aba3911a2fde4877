// The run driver.
#include "front/run_driver.h"

#include <cctype>
#include <cstdio>

#include "console/console_prompt.h"
#include "console/control_store.h"
#include "engine/shortcut_processing.h"
#include "engine/shortcut_reader.h"
#include "engine/string_matcher.h"
#include "files/exact_names.h"
#include "files/folder_checks.h"
#include "front/match_flags.h"
#include "machine/drive_inventory.h"
#include "machine/system_info.h"
#include "reports/result_text.h"
#include "resources/message_ids.h"
#include "text/memory_blocks.h"
#include "text/path_strings.h"
#include "text/resource_strings.h"
#include "walker/walk_context.h"

namespace {

const unsigned kRealRun = 1;
// Written by the wind-up frame; nothing reads it.
unsigned reservedWord = 0;

}  // namespace

unsigned WalkFlagsFor(unsigned mode, int driveLetter) {
  char letters[27];
  DriveLettersOfKinds(letters, kDriveKindCdRom);
  int wanted = std::tolower(static_cast<unsigned char>(driveLetter));
  for (const char *p = letters; *p != 0; ++p)
    if (std::tolower(static_cast<unsigned char>(*p)) == wanted) return kWalkShortcuts | kWalkDryRun;
  return mode == kIdSimulationRun ? kWalkShortcuts | kWalkDryRun : kWalkShortcuts;
}

unsigned CheckStartFolder(char *folder) {
  GetControlText(nullptr, kIdSearchFolder, folder, kPathSize);
  if (CheckPathSyntaxRules(nullptr, folder, 0, 1) != 0) return kIdSearchFolder;
  if (CheckFolderOrReport(nullptr, folder, 4, nullptr) == 0) return kIdSearchFolder;
  return 0;
}

unsigned ReplaceFromControls(unsigned mode) {
  char work[kPathSize];
  GetControlText(nullptr, kIdOldString, work, kPathSize);
  if (work[0] == 0) return kIdOldString;
  SetMatchStrings(work, nullptr);
  GetControlText(nullptr, kIdNewString, work, kPathSize);
  if (work[0] == 0) return kIdNewString;
  SetMatchStrings(nullptr, work);
  BuildMatchFlags();
  int selected = 0;
  GetSelectedRows(nullptr, kIdDriveList, &selected, nullptr);
  ClearShortcutChanged();
  unsigned count = 0;
  if (IsControlChecked(nullptr, kIdSearchInFolder)) {
    unsigned fault = CheckStartFolder(work);
    if (fault != 0) return fault;
    MakeExactPath(work, kExactLongNames, 0);
    if (mode == kIdSimulationRun) ConsolePrintf("\nSimulation...\n");
    ScanFolderTree(nullptr, nullptr, WalkFlagsFor(mode, work[0]) | kWalkSubfolders, &count, work, "*.lnk", nullptr);
  } else {
    // The all-drives branch: one walk for each selected drive row of the store.
    for (int row = 0; row < selected; ++row) {
      std::snprintf(work, sizeof work, "%c:\\", 'A' + SelectedRowAt(row));
      ScanFolderTree(nullptr, nullptr, WalkFlagsFor(mode, work[0]) | kWalkSubfolders, &count, work, "*.lnk", nullptr);
      if (IsStopRequested()) return 0;
    }
  }
  if (!WasAnyShortcutChanged()) {
    // "No changes" goes to the results control, which the console shows nowhere.
    LoadStrings(kMsgTargetMissingRemark, kMsgTargetMissingRemark);
    SetControlTextStub(nullptr, kIdResultsThere, FirstSlotText());
  }
  return 0;
}

int RunReplacement(HWND, unsigned reserved) {
  reservedWord = reserved;
  ReplaceFromControls(kRealRun);
  // The dialog enables its results button (3035) when the pass left a text; a console has no button to enable.
  LockResultText();
  ReleaseProgramTexts();
  ReleaseDriveTable();
  ReleaseSavedBlocks();
  PopNetworkFolder();
  ReleaseNetworkList();
  if (ReportFolder()[0] != 0) DeleteResultFile(ReportFolder(), kReportFileName);
  ReleaseResultText();
  ReleaseKeptTexts();
  return 0;
}

int RunPass(unsigned showFoldersId, unsigned reportChangedId, int confirm) {
  ReleaseResultText();
  SetStopFlag(0);
  SetPauseFlag(0);
  PrepareWalk(nullptr, showFoldersId, reportChangedId, 0, 0, nullptr, nullptr, 0);
  SetSkipResolve(1);
  SetQuietReader(1);
  ConsolePrintf("\n");
  // Its result is not looked at: without it, each shortcut's object creation fails and says so in its status.
  CoInitialize(nullptr);
  RunReplacement(nullptr, 0);
  SetQuietReader(0);
  SetSkipResolve(0);
  PrepareWalk(nullptr, 0, 0, 0, 0, nullptr, nullptr, 0);
  SetPauseFlag(0);
  SetStopFlag(0);
  if (confirm) {
    ConsolePrintf("\n\n====> 終了：");
    ConsolePrompt(nullptr, nullptr, nullptr, MB_OK);
  }
  return 1;
}
