// The error reporter: composes a report from its pieces, fetches the system's text for an error, and puts the report
// to the console prompt; the access question and the two fixed prompts beside it.
#include "reports/error_reporter.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "console/console_prompt.h"
#include "files/file_operations.h"
#include "reports/last_error.h"
#include "reports/memory_reports.h"
#include "resources/message_ids.h"
#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/quoted_args.h"
#include "text/resource_strings.h"
#include "text/tokens.h"

namespace {

int networkMessagesQuiet = 0;

// The current system text: from FormatMessageA (keptHandle 0, freed by LocalFree) or an internet response copied
// into the global block keptHandle, which is then locked.
char *keptText = nullptr;
HGLOBAL keptHandle = nullptr;

// The style and the added line of the next reports; a report leaves both as they are.
unsigned reportLevel = 0;
char extraLine[kPathSize] = "";

// The attributes of the object of the report under way; bit 0 (read-only) brings the read-only remark.
DWORD attributeWord = 0;

const char *const kErrorOccurred[2] = {"Error occurred.", "ｴﾗｰが発生しました。"};

// What stands in front of a failed save's path on standard error: the program's name, as tools say who is speaking
// there, and the same words in every language, so that a script can look for them.
const char kFailedSavePrefix[] = "kelmaro: could not save ";

// What stands in front of every text that comes from the system.
const char kSystemPrefix[] = "ｳｨﾝﾄﾞｳｽﾞｼｽﾃﾑからのｴﾗｰﾒｯｾｰｼﾞ\n>> ";

const DWORD kScratchSize = 65535;
const DWORD kInternetErrorsFrom = 12000;
const DWORD kFlagsFromSystem = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM;

void CopyText(char *dest, const char *src) {
  std::strncpy(dest, src != nullptr ? src : "", kPathSize - 1);
  dest[kPathSize - 1] = 0;
}

// Cuts line ends from the end of the text; a byte that is the trail of a double-byte character stays.
void TrimLineEnds(char *text) {
  size_t length = std::strlen(text);
  while (length > 0 && IsLineEnd(static_cast<unsigned char>(text[length - 1])) &&
         _myNthctype(text, static_cast<unsigned>(length - 1)) != kTrailByte)
    text[--length] = 0;
}

// The internet server's last response, for ERROR_INTERNET_EXTENDED_ERROR, into a global block of its own.
void KeepInternetResponse(HGLOBAL *scratchHandle, char **scratch, DWORD granted) {
  DWORD responseError = 0;
  DWORD length = granted;
  InternetGetLastResponseInfoA(&responseError, *scratch, &length);
  if (responseError == ERROR_INSUFFICIENT_BUFFER) {
    ReleaseBlock(*scratchHandle, *scratch);
    *scratchHandle = nullptr;
    *scratch = AcquireBlock(scratchHandle, nullptr, length, &granted);
    if (*scratch == nullptr) return;
    length = granted;
    InternetGetLastResponseInfoA(&responseError, *scratch, &length);
  }
  ReleaseSystemErrorText();
  keptHandle = StoreToBlock(nullptr, nullptr, *scratch);
  keptText = static_cast<char *>(GlobalLock(keptHandle));
}

// Fetches the system's text for `code` into keptText, with the file name of `name` (may be null) as its %1.
// Result: 1 when there is a text.
int FetchSystemText(const char *name, DWORD code) {
  if (code == 0) return 0;
  char nameCopy[kPathSize];
  char *arguments[1] = {nullptr};
  if (name != nullptr && *name != 0) {
    CopyText(nameCopy, name);
    arguments[0] = SplitFileName(nullptr, nameCopy);
  }
  HGLOBAL scratchHandle = nullptr;
  DWORD granted = 0;
  char *scratch = AcquireBlock(&scratchHandle, nullptr, kScratchSize, &granted);
  DWORD flags = kFlagsFromSystem;
  HMODULE library = nullptr;
  // Internet errors have their texts in the internet library, not in the system's table.
  if (code > kInternetErrorsFrom) {
    library = LoadLibraryA("WININET.DLL");
    flags |= FORMAT_MESSAGE_FROM_HMODULE;
  }
  if (arguments[0] != nullptr) flags |= FORMAT_MESSAGE_ARGUMENT_ARRAY;
  int found = 0;
  if (code == ERROR_INTERNET_EXTENDED_ERROR) {
    if (scratch != nullptr) KeepInternetResponse(&scratchHandle, &scratch, granted);
    found = keptText != nullptr;
  } else {
    ReleaseSystemErrorText();
    FormatMessageA(flags, library, code, 0, reinterpret_cast<LPSTR>(&keptText), 0,
                   arguments[0] != nullptr ? reinterpret_cast<va_list *>(arguments) : nullptr);
    found = keptText != nullptr;
  }
  ReleaseBlock(scratchHandle, scratch);
  if (library != nullptr) FreeLibrary(library);
  return found;
}

// Texts of a report in the block *handle: the first one starts it.
void AddText(HGLOBAL *handle, const char *text) {
  *handle = *handle != nullptr ? AppendToBlock(nullptr, *handle, text) : StoreToBlock(nullptr, nullptr, text);
}

// Appends to a text of kPathSize bytes, cutting what does not fit.
void AppendBounded(char *text, const char *more) {
  size_t used = std::strlen(text);
  if (used + 1 < kPathSize) std::strncat(text, more, kPathSize - 1 - used);
}

}  // namespace

char *DescribeSystemError(const char *path, DWORD code) {
  if (code == kCurrentLastError) code = GetLastError();
  char pathCopy[kPathSize];
  const char *name = nullptr;
  if (path != nullptr && *path != 0) {
    CopyText(pathCopy, path);
    name = SplitFileName(nullptr, pathCopy);
  }
  if (!FetchSystemText(name, code)) return nullptr;
  TrimLineEnds(keptText);
  return keptText;
}

void ReleaseSystemErrorText(void) {
  if (keptHandle == nullptr) {
    if (keptText != nullptr) {
      LocalFree(keptText);
      keptText = nullptr;
    }
    return;
  }
  if (keptText != nullptr) {
    GlobalUnlock(keptHandle);
    keptText = nullptr;
  }
  GlobalFree(keptHandle);
  keptHandle = nullptr;
}

void TellFailedSave(const char *path, DWORD code) {
  DWORD saved = GetLastError();
  if (path == nullptr) path = "";
  const char *text = DescribeSystemError(path, code);
  char number[32];
  if (text == nullptr) {
    // A Windows error is a small number; anything larger is a result code, which Windows writes in hexadecimal.
    std::snprintf(number, sizeof number, code < 0x10000 ? "error %lu" : "error 0x%08lX",
                  static_cast<unsigned long>(code));
    text = number;
  }
  // One write for the whole line, so that it cannot be split by another writer of the same stream.
  size_t size = std::strlen(kFailedSavePrefix) + std::strlen(path) + 2 + std::strlen(text) + 2;
  HGLOBAL handle = nullptr;
  DWORD granted = 0;
  char *line = AcquireBlock(&handle, nullptr, static_cast<DWORD>(size), &granted);
  ConsoleFlush();
  if (line != nullptr && granted >= size) {
    std::snprintf(line, size, "%s%s: %s\n", kFailedSavePrefix, path, text);
    ConsoleWriteError(line);
  } else {
    // No room for the whole line: the same words in pieces.
    ConsoleWriteError(kFailedSavePrefix);
    ConsoleWriteError(path);
    ConsoleWriteError(": ");
    ConsoleWriteError(text);
    ConsoleWriteError("\n");
  }
  ReleaseBlock(handle, line);
  ReleaseSystemErrorText();
  SetLastError(saved);
}

void SetReportStyle(unsigned level, const char *line) {
  reportLevel = level;
  CopyText(extraLine, line);
}

int ReportError(HWND owner, const char *name, const char *body, const char *title, int nameMode) {
  DWORD savedError = GetLastError();
  int savedErrno = errno;
  // The title may be a message slot, and the read-only remark reloads the slots.
  HGLOBAL titleHandle = nullptr;
  char *titleCopy = AcquireBlock(&titleHandle, nullptr, kPathSize, nullptr);
  if (titleCopy != nullptr) CopyText(titleCopy, title);

  HGLOBAL textHandle = nullptr;
  int atLineStart = 0;
  int hasName = name != nullptr && *name != 0;
  if (hasName) {
    char shown[kPathSize];
    CopyText(shown, name);
    const char *shownName = nameMode == 1 ? SplitFileName(nullptr, shown) : shown;
    AddText(&textHandle, "'");
    AddText(&textHandle, shownName);
    if (BackslashWasTrimmedFlag()) AddText(&textHandle, "\\");
    AddText(&textHandle, "'");
    AddText(&textHandle, "\n");
    atLineStart = 1;
  }
  if (body != nullptr) {
    AddText(&textHandle, body);
    atLineStart = 0;
  }
  if (hasName && (attributeWord & FILE_ATTRIBUTE_READONLY)) {
    LoadStrings(kMsgReadOnlyCleared, 0);
    AddText(&textHandle, "\n");
    AddText(&textHandle, FirstSlotText());
    atLineStart = 0;
  }
  ClearBackslashWasTrimmed();

  const char *sysText = DescribeSystemError(name, savedError);
  // A report that says nothing of its own says at least that an error occurred.
  if (!atLineStart && body == nullptr) sysText = ErrorOccurredText();
  if (sysText != nullptr) {
    if (!atLineStart) AddText(&textHandle, "\n");
    AddText(&textHandle, "\n");
    AddText(&textHandle, kSystemPrefix);
    AddText(&textHandle, sysText);
    atLineStart = 0;
  }
  if (extraLine[0] != 0) {
    if (!atLineStart) AddText(&textHandle, "\n");
    AddText(&textHandle, extraLine);
  }

  char *text = textHandle != nullptr ? static_cast<char *>(GlobalLock(textHandle)) : nullptr;
  const char *shownText = text;
  if (shownText == nullptr) {
    shownText = DescribeSystemError(name, kCurrentLastError);
    if (shownText == nullptr) shownText = ErrorOccurredText();
  }
  if (!BeepSwitch()) ReportBeep(reportLevel);
  int answer = ConsolePrompt(owner, shownText, titleCopy, reportLevel);

  ReleaseSystemErrorText();
  if (text != nullptr) GlobalUnlock(textHandle);
  if (textHandle != nullptr) GlobalFree(textHandle);
  attributeWord = 0;
  SetKeptLastError(savedError);
  SetRunTimeError(savedErrno);
  ReleaseBlock(titleHandle, titleCopy);
  return answer;
}

int ReportErrorWithAttributes(HWND owner, const char *name, const char *body, const char *title, int nameMode) {
  DWORD savedError = GetLastError();
  int savedErrno = errno;
  char nameCopy[kPathSize];
  CopyText(nameCopy, name);
  DWORD attributes = 0;
  attributeWord = GetPathAttributes(nameCopy, &attributes) == 0 ? attributes : FILE_ATTRIBUTE_NORMAL;
  SetKeptLastError(savedError);
  SetRunTimeError(savedErrno);
  return ReportError(owner, name, body, title, nameMode);
}

int ReportErrorById(HWND owner, const char *name, UINT bodyId, UINT titleId, int nameMode) {
  LoadStrings(bodyId, titleId);
  return ReportError(owner, name, FirstSlotText(), SecondSlotText(), nameMode);
}

int ReportErrorByIdWithAttributes(HWND owner, const char *name, UINT bodyId, UINT titleId, int nameMode) {
  LoadStrings(bodyId, titleId);
  return ReportErrorWithAttributes(owner, name, FirstSlotText(), SecondSlotText(), nameMode);
}

void ReportBeep(unsigned style) {
  if (style & MB_ICONASTERISK)
    MessageBeep(MB_ICONASTERISK);
  else if (style & (MB_ICONHAND | MB_ICONQUESTION))
    MessageBeep(MB_ICONEXCLAMATION);
  else
    MessageBeep(style);
}

int ReportAccessProblem(DWORD code, const char *name, const char *path, HMODULE module, UINT titleId, UINT style) {
  if (code != ERROR_ACCESS_DENIED) return 0;
  if (style == 0) return 1;
  const char *object = name != nullptr ? name : path;
  const char *sysText = nullptr;
  if (FetchSystemText(object, ERROR_ACCESS_DENIED)) {
    TrimLineEnds(keptText);
    sysText = keptText;
  }
  HGLOBAL textHandle = nullptr;
  char *text = AcquireBlock(&textHandle, nullptr, kPathSize, nullptr);
  if (text == nullptr) {
    ReleaseSystemErrorText();
    return 1;
  }
  text[0] = 0;
  if (module != nullptr && titleId != 0) {
    StringBlockPair pair = {};
    LoadStringPair(&pair, module, titleId, 0);
    if (pair.first.locked != nullptr) {
      // The title up to its first full stop, as the head of the question.
      CutAtMarker(pair.first.locked, "。");
      std::snprintf(text, kPathSize, "%s: ", pair.first.locked);
    }
    ReleaseStringBlockPair(&pair);
  }
  if ((name != nullptr && *name != 0) || (path != nullptr && *path != 0)) {
    char pathCopy[kPathSize];
    CopyText(pathCopy, path);
    const char *shown = name != nullptr ? name : SplitFileName(nullptr, pathCopy);
    AppendBounded(text, shown != nullptr ? shown : "");
    AppendBounded(text, "\n");
  }
  if (sysText != nullptr && *sysText != 0) {
    AppendBounded(text, kSystemPrefix);
    AppendBounded(text, sysText);
    AppendBounded(text, "\n\n");
  }
  ReleaseSystemErrorText();
  LoadStrings(style == MB_ICONEXCLAMATION ? kMsgAdminMayBeNeeded : kMsgAdminMayBeNeededGoOn, kMsgRightsTitle);
  AppendBounded(text, FirstSlotText());
  int answer = ConsolePrompt(nullptr, text, SecondSlotText(), style);
  ReleaseBlock(textHandle, text);
  if (style == MB_ICONEXCLAMATION) return 1;
  return answer == IDNO ? 1 : -1;
}

const char *ErrorOccurredText(void) { return kErrorOccurred[LanguageIndex() == 0 ? 0 : 1]; }
void SetNetworkMessagesQuiet(int value) { networkMessagesQuiet = value; }

void ReportMissingLinkTarget(HWND window, const char *target) {
  char message[2 * kPathSize];
  LoadStrings(kMsgLinkTargetMissing, kMsgRunTitle);
  std::snprintf(message, sizeof message, FirstSlotText(), target);
  ConsolePrompt(window, message, SecondSlotText(), MB_ICONEXCLAMATION);
}

int AskAboutReadOnlyFolder(HWND owner, const char *path) {
  return ConsolePrompt(owner, path, nullptr, MB_RETRYCANCEL | MB_ICONEXCLAMATION);
}
