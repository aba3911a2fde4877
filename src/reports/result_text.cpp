// The result text of a run, the report file beside it, and the fault message for folders and files, which leaves a
// row in the result text too.
#include "reports/result_text.h"

#include <cstdio>
#include <cstring>

#include "files/exact_names.h"
#include "files/file_operations.h"
#include "machine/drive_inventory.h"
#include "machine/network_listing.h"
#include "machine/network_paths.h"
#include "reports/error_reporter.h"
#include "reports/last_error.h"
#include "reports/memory_reports.h"
#include "resources/message_ids.h"
#include "text/memory_blocks.h"
#include "text/path_strings.h"
#include "text/resource_strings.h"

const char kReportFileName[] = "_rplcsc_.txt";

namespace {

// The result text: process-wide, all zero at start.
struct ResultText {
  HGLOBAL handle;      // the block that holds the text; 0 for no text yet
  char *locked;        // set while LockResultText holds the block
  int headingWritten;  // a text has at most one heading: the first that anybody asked for
  int busy;            // AddResultEntry is running; a call that comes in meanwhile adds nothing
  int targetCheckOff;  // not 0: targets are not tested
  char baseFolder[kPathSize];
};
ResultText resultText;

// The folder of the report file. Only the dialog edition's writer of the report would set it.
char reportFolder[kPathSize];
// The report file's path, made by DeleteResultFile.
char reportFilePath[kPathSize];

// Stands in front of the system's own text for an error.
const char kSystemErrorLabel[] = "ｳｨﾝﾄﾞｳｽﾞｼｽﾃﾑからのｴﾗｰﾒｯｾｰｼﾞ\n>> ";
// Room for a path in brackets or a target with its arrow, and for the joined target behind a copy of it.
const DWORD kWorkSize = 1024;
// The fault message's text block.
const DWORD kFaultTextSize = 65535;

void Append(HWND owner, const char *text) { resultText.handle = AppendToBlock(owner, resultText.handle, text); }

void AppendString(HWND owner, UINT id) {
  LoadStrings(id, 0);
  Append(owner, FirstSlotText());
}

void CopyPath(char *dest, const char *src) { std::snprintf(dest, kPathSize, "%s", src != nullptr ? src : ""); }

// A target that names a drive, or starts at a root or a server, is not joined to the base folder.
bool IsFullPath(const char *text) {
  if (*text == '"') ++text;
  return text[0] == '\\' || (text[0] != 0 && text[1] == ':');
}

// `path` and, where its short form differs by more than case, the short form in brackets; then the attribute
// letters of what is there.
void AppendPath(HWND owner, const char *path, char *work) {
  Append(owner, path);
  std::snprintf(work, kWorkSize, "[%s", path);
  const char *shortForm = ResolveExactPath(work + 1, kExactShortNames, 0);
  if (shortForm != nullptr && *shortForm != 0 && lstrcmpiA(shortForm, path) != 0) {
    std::strcat(work, "]");
    Append(owner, work);
  }
  CopyPath(work, path);
  DWORD attributes = 0;
  if (PathKind(work) >= kPathFile && GetPathAttributes(work, &attributes) == 0) {
    char letters[8];
    std::snprintf(letters, sizeof letters, " %c%c%c%c", (attributes & FILE_ATTRIBUTE_SYSTEM) ? 'S' : '-',
                  (attributes & FILE_ATTRIBUTE_HIDDEN) ? 'H' : '-', (attributes & FILE_ATTRIBUTE_READONLY) ? 'R' : '-',
                  (attributes & FILE_ATTRIBUTE_ARCHIVE) ? 'A' : '-');
    Append(owner, letters);
  }
}

// The target on a line of its own behind an arrow, with a remark when it is on removable media (where its absence
// proves nothing) or not there. A relative target is looked for in the base folder.
void AppendTarget(HWND owner, const char *target, char *work) {
  std::snprintf(work, kWorkSize, "%s          --> %s", "\r\n", target);
  Append(owner, work);
  if (resultText.targetCheckOff) return;
  char *tested = work;
  char *copy = work + kPathSize;
  CopyPath(tested, target);
  if (resultText.baseFolder[0] != 0 && !IsFullPath(target)) {
    CopyPath(copy, target);
    CopyPath(tested, resultText.baseFolder);
    // Too long to join: the target is tested as it stands.
    if (JoinPath(nullptr, tested, copy) == 0) CopyPath(tested, target);
  }
  if (IsOnRemovableMedia(tested))
    AppendString(owner, kMsgRemovableDiskRemark);
  else if (PathKind(tested) < kPathFile)
    AppendString(owner, kMsgTargetMissingRemark);
}

// Appends to a text of `size` bytes, cutting what does not fit.
void AddText(char *text, size_t size, const char *piece) {
  size_t used = std::strlen(text);
  if (used + 1 < size) std::snprintf(text + used, size - used, "%s", piece);
}

void AddString(char *text, size_t size, UINT id) {
  LoadStrings(id, 0);
  AddText(text, size, FirstSlotText());
}

// "[word] ".
void AddBracketedString(char *text, size_t size, UINT id) {
  AddText(text, size, "[");
  AddString(text, size, id);
  AddText(text, size, "] ");
}

}  // namespace

void AddResultEntry(HWND owner, const char *prefix, const char *path, const char *target, UINT headingId,
                    DWORD systemError) {
  int savedErrno = GetRunTimeError();
  if (systemError == 0) systemError = GetLastError();
  if (resultText.busy) return;
  resultText.busy = 1;
  // The block may move with the next append: a pointer from LockResultText is void from here on.
  if (resultText.locked != nullptr) {
    GlobalUnlock(resultText.handle);
    resultText.locked = nullptr;
  }
  if (headingId != 0 && !resultText.headingWritten) {
    resultText.headingWritten = 1;
    AppendString(owner, headingId);
    Append(owner, "\r\n\r\n");
  }
  // A prefix runs straight into the text behind it.
  if (prefix != nullptr && *prefix != 0) Append(owner, prefix);
  HGLOBAL workHandle = nullptr;
  char *work = nullptr;
  if ((path != nullptr && *path != 0) || (target != nullptr && *target != 0))
    work = AcquireBlock(&workHandle, nullptr, kWorkSize, nullptr);
  if (work != nullptr) {
    if (path != nullptr && *path != 0) AppendPath(owner, path, work);
    if (target != nullptr && *target != 0) AppendTarget(owner, target, work);
  }
  ReleaseBlock(workHandle, work);
  const char *systemText = DescribeSystemError(path, systemError);
  if (systemText != nullptr) {
    Append(owner, "\r\n  ");
    Append(owner, kSystemErrorLabel);
    Append(owner, "  ");
    Append(owner, systemText);
  }
  ReleaseSystemErrorText();
  Append(owner, "\r\n");
  resultText.busy = 0;
  SetRunTimeError(savedErrno);
}

char *LockResultText(void) {
  if (resultText.handle == nullptr) return nullptr;
  if (resultText.locked == nullptr) resultText.locked = static_cast<char *>(GlobalLock(resultText.handle));
  return resultText.locked;
}

void ReleaseResultText(void) {
  if (resultText.locked != nullptr) GlobalUnlock(resultText.handle);
  if (resultText.handle != nullptr) GlobalFree(resultText.handle);
  resultText.handle = nullptr;
  resultText.locked = nullptr;
  resultText.headingWritten = 0;
}

void SetResultBaseFolder(const char *folder) { CopyPath(resultText.baseFolder, folder); }

void SetResultTargetCheck(int off) { resultText.targetCheckOff = off; }

const char *ReportFolder(void) { return reportFolder; }

void DeleteResultFile(const char *folder, const char *name) {
  char file[kPathSize];
  CopyPath(file, name);
  if (folder != nullptr && *folder != 0) {
    CopyPath(reportFilePath, folder);
    JoinPath(nullptr, reportFilePath, file);
  } else {
    CopyPath(reportFilePath, file);
  }
  if (PathKind(reportFilePath) >= kPathFile) DeleteIfPresent(reportFilePath);
}

void FolderFaultText(char *text, size_t size, int fault, int count, int *style) {
  struct FaultText {
    int fault;
    UINT id;
  };
  static const FaultText kFaultTexts[] = {
      {-24, kMsgNoNetworkDomain},    {-21, kMsgFolderProtected},
      {-19, kMsgSearchStoppedByKey}, {-16, kMsgFolderStructureDamaged},
      {-15, kMsgFileNameUnreadable}, {-14, kMsgFolderInfoUnreadable},
      {-13, kMsgDiskInfoUnreadable}, {-11, kMsgMaximumCount},
      {-10, kMsgNoStorage},          {2, kMsgAccessFailed},
  };
  if (size == 0) return;
  text[0] = 0;
  AddText(text, size, "\n");
  if (*style & 2) AddBracketedString(text, size, kMsgFolderWord);
  if (*style & 1) AddBracketedString(text, size, kMsgFileWord);
  UINT id = kMsgAccessErrorTitle;
  for (const FaultText &row : kFaultTexts)
    if (row.fault == fault) id = row.id;
  AddString(text, size, id);
  if (fault == -11) {
    char number[16];
    std::snprintf(number, sizeof number, " [%d] ", count);
    AddText(text, size, number);
    AddString(text, size, kMsgMaximumExceededGoOn);
  }
  if (fault == 2 && (*style & 2)) *style = (*style & ~8) | 4;
  if (fault == -24 || fault == -19) *style = 0;
  if (fault != -24 && fault != -22 && fault != -21 && fault != -19) {
    AddText(text, size, "\n");
    AddString(text, size, kMsgReadError);
  }
  if (*style & 8) AddString(text, size, kMsgGoOnAsking);
}

int ReportFolderFault(HWND owner, const char *path, int fault, int count, int style) {
  if (NetworkErrorPending()) {
    // The network listing's failure message for `path` is shown here once the network listing lands.
    ClearPendingNetworkError();
    return -22;
  }
  if (fault == -18 || fault == -20) return fault;
  if (fault == 0) return 0;
  const char *name = path != nullptr ? path : "";
  // A network error on a path that is no network drive is told as a network fault.
  if (IsNetworkError(GetKeptLastError()) && !IsNetworkDriveLetter(static_cast<unsigned char>(name[0]))) fault = -22;
  HGLOBAL textHandle = nullptr;
  HGLOBAL titleHandle = nullptr;
  char *text = AcquireBlock(&textHandle, nullptr, kFaultTextSize, nullptr);
  char *title = AcquireBlock(&titleHandle, nullptr, kPathSize, nullptr);
  int answer = 0;
  if (text != nullptr && title != nullptr) {
    FolderFaultText(text, kFaultTextSize, fault, count, &style);
    const char *shown = fault == -24 ? "" : name;
    SetReportStyle((style & (8 | 4)) ? MB_ICONHAND | MB_YESNO : MB_ICONHAND, nullptr);
    AddResultEntry(owner, nullptr, shown, nullptr, kMsgFolderFileErrorTitle, 0);
    LoadStrings(kMsgFolderFileErrorTitle, 0);
    CopyPath(title, FirstSlotText());
    answer = ReportErrorWithAttributes(owner, shown, text, title, 0);
  }
  ReleaseBlock(titleHandle, title);
  ReleaseBlock(textHandle, text);
  SetRunTimeError(0);
  if (fault == -11) return 0;
  return answer == IDYES ? 0 : -1;
}

void AddNetworkMessageRows(HWND owner) {
  if (NetworkMessagesWaiting() == 0) return;
  DWORD lastError = GetLastError();
  DWORD keptError = GetKeptLastError();
  HGLOBAL handle = nullptr;
  DWORD granted = 0;
  char *text = AcquireBlock(&handle, nullptr, 65535, &granted);
  char place[kPathSize];
  while (text != nullptr && TakeNetworkMessage(text, granted, place, sizeof place)) {
    // The message holds the system's text already.
    SetLastError(0);
    AddResultEntry(owner, text, place, nullptr, kMsgNetworkTitle, 0);
  }
  ReleaseBlock(handle, text);
  SetKeptLastError(keptError);
  SetLastError(lastError);
}
