// The memory warnings, the forced end of the run, and the texts in blocks that stand on them.
#include "reports/memory_reports.h"

#include <cstdlib>
#include <cstring>

#include "console/console_prompt.h"
#include "reports/last_error.h"
#include "resources/message_ids.h"
#include "text/growing_text.h"
#include "text/resource_strings.h"

namespace {

const unsigned kWarningStyle = MB_ICONEXCLAMATION;  // warning icon, any key
const unsigned kStopStyle = MB_ICONHAND;            // stop icon, any key

int lowMemoryWarned = 0;

// FatalMemoryExit's state: `busy` while its message is being shown, `warned` once it has been.
int fatalBusy = 0;
int fatalWarned = 0;
char fatalMessage[kStringSlotSize];

}  // namespace

DWORD CaptureLastError(void) {
  DWORD code = GetLastError();
  SetKeptLastError(code);
  if (code == ERROR_NOT_ENOUGH_MEMORY && !lowMemoryWarned) {
    lowMemoryWarned = 1;
    ConsolePrompt(nullptr,
                  "ｳｨﾝﾄﾞｳｽﾞのｺﾏﾝﾄﾞ実行用に充分なﾒﾓﾘが確保できませんでした。速やかにｱﾌﾟﾘｹｰｼｮﾝを終了して下さい。",
                  "致命的なｳｨﾝﾄﾞｳｽﾞ警告ﾒｯｾｰｼﾞ", MB_ICONEXCLAMATION);
  }
  return code;
}

void ResetLowMemoryWarning(void) { lowMemoryWarned = 0; }

HGLOBAL AppendToBlock(HWND owner, HGLOBAL handle, const char *text) {
  TextBlockOutcome outcome = AppendTextToBlock(&handle, text);
  if (outcome == kTextCutShort) {
    LoadStrings(kMsgAppendCutShort, kMsgAppendWarningTitle);
    ConsolePrompt(owner, FirstSlotText(), SecondSlotText(), kWarningStyle);
  }
  if (outcome == kTextBlockLost) FatalMemoryExit(owner, kMsgAppendWarningTitle, kMsgMemoryAccessFailed);
  return handle;
}

HGLOBAL StoreToBlock(HWND owner, HGLOBAL handle, const char *text) {
  if (!StoreTextInBlock(&handle, text)) FatalMemoryExit(owner, kMsgStoreWarningTitle, kMsgMemoryAccessFailed);
  return handle;
}

char *StoreAndLockBlock(HGLOBAL *slot, char *locked, const char *text) {
  if (slot == nullptr || text == nullptr) return locked;
  if (*slot != nullptr && locked != nullptr) GlobalUnlock(*slot);
  *slot = StoreToBlock(nullptr, *slot, text);
  char *copy = static_cast<char *>(GlobalLock(*slot));
  if (copy == nullptr) {
    GlobalFree(*slot);
    *slot = nullptr;
  }
  return copy;
}

void FatalMemoryExit(HWND owner, UINT titleId, UINT detailId) {
  // A failure while the message is being put together or shown must not show it again: straight to the exit.
  if (!fatalBusy) {
    fatalBusy = 1;
    if (!fatalWarned) {
      // The slots are reloaded for the title below, so the message is kept in a buffer of its own.
      LoadStrings(kMsgMemoryExhausted, 0);
      std::strcpy(fatalMessage, FirstSlotText());
      if (detailId != 0) {
        std::strcat(fatalMessage, "\n");
        LoadStrings(detailId, 0);
        // Deliberately over the start of the buffer, not behind the line break: with a detail id, the detail alone is
        // the message. Both callers pass kMsgMemoryAccessFailed, so what users see is that one line, not the general
        // text above it.
        std::strcpy(fatalMessage, FirstSlotText());
      }
      LoadStrings(titleId, 0);
      ConsolePrompt(owner, fatalMessage, FirstSlotText(), kStopStyle);
    }
    fatalBusy = 0;
  }
  fatalWarned = 1;
  std::exit(-2);
}
