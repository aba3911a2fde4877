// Growing texts in global blocks, and the one way out when memory for them runs out. A run appends hundreds of
// thousands of rows to its result text, so an append must cost time in proportion to what it adds: see AppendToBlock.
#include "text/growing_text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "console/console_prompt.h"
#include "reports/last_error.h"
#include "resources/resource_strings.h"

namespace {

const UINT kTextFlags = GMEM_MOVEABLE | GMEM_ZEROINIT;
const unsigned kWarningStyle = 48;  // warning icon, any key
const unsigned kStopStyle = 16;     // stop icon, any key

const UINT kAppendTitleId = 8057;  // "AddToGlobalMemory() の警告"
const UINT kStoreTitleId = 8058;   // "SaveToGlobalMemory() の警告"
const UINT kAppendShortId = 8059;  // "の取り込みに失敗しました。"
const UINT kAccessFailedId = 8060;  // "予期せぬｴﾗｰにより記憶領域のｱｸｾｽに失敗しました。"
const UINT kMemoryExhaustedId = 8062;  // "ﾒﾓﾘｰｴﾗｰ: 記憶領域の確保失敗!!\n強制終了します。"

// The text lengths of the last few blocks that these routines wrote, each with the block's stamp at the moment they
// let go of it. A text block has no length word, and finding its end by scanning would make every append cost as much
// as the whole text: a run's result text would grow in quadratic time. While a block's stamp is unchanged nobody has
// locked it since, so nobody can have written to it, and the remembered length is exactly what a scan would find.
// Any other block (new to us, or touched since) is scanned once. A few entries, so that a report built between two
// rows of the result text does not push the result text out.
struct KnownLength {
  HGLOBAL handle;
  unsigned long long stamp;
  size_t length;
};
const int kKnownCount = 4;
KnownLength knownLengths[kKnownCount];
int nextKnown = 0;

// Call once the block is unlocked and this routine is done with it, so that the stamp is the one that stays.
void RememberLength(HGLOBAL handle, size_t length) {
  KnownLength *entry = nullptr;
  for (KnownLength &known : knownLengths)
    if (known.handle == handle) entry = &known;
  if (entry == nullptr) {
    entry = &knownLengths[nextKnown];
    nextKnown = (nextKnown + 1) % kKnownCount;
  }
  *entry = {handle, KmGlobalStamp(handle), length};
}

// Call before locking the block, since a lock changes its stamp.
bool RecallLength(HGLOBAL handle, size_t *length) {
  for (const KnownLength &known : knownLengths) {
    if (known.handle == handle && known.stamp != 0 && KmGlobalStamp(handle) == known.stamp) {
      *length = known.length;
      return true;
    }
  }
  return false;
}

// FatalMemoryExit's state: `busy` while its message is being shown, `warned` once it has been.
int fatalBusy = 0;
int fatalWarned = 0;
char fatalMessage[kStringSlotSize];

}  // namespace

HGLOBAL AppendToBlock(HWND owner, HGLOBAL handle, const char *text) {
  if (text == nullptr) text = "";
  const size_t newLength = std::strlen(text);
  size_t oldLength = 0;
  HGLOBAL room = nullptr;
  void *roomLocked = nullptr;
  if (handle == nullptr) {
    SetKeptLastError(0);
    handle = GlobalAlloc(kTextFlags, newLength + 1);
  } else {
    bool lengthKnown = RecallLength(handle, &oldLength);
    char *old = static_cast<char *>(GlobalLock(handle));
    if (old == nullptr) {
      oldLength = 0;  // the old text counts as empty; the lock below fails again and ends the run
    } else {
      if (!lengthKnown) oldLength = std::strlen(old);
      // Room for a copy of the old text is asked of the heap before the block grows, and only if it is granted does
      // the block grow: an exhausted heap thus takes the path below where the block keeps its size. The room is never
      // written: a resize keeps the block's contents, so the old text is still in place and only the new text has to
      // be copied behind it. So the room is asked for without zero fill, and neither taking nor returning it touches
      // its bytes; the heap keeps a large freed storage for the next such request (platform/global_heap.cpp). An
      // append thus costs no more for a long text than for a short one.
      SetKeptLastError(0);
      room = GlobalAlloc(GMEM_MOVEABLE, oldLength + 1);
      if (room != nullptr) roomLocked = GlobalLock(room);
      GlobalUnlock(handle);
      if (roomLocked != nullptr) handle = GlobalReAlloc(handle, oldLength + newLength + 1, kTextFlags);
    }
  }
  const bool oldKept = roomLocked != nullptr;

  char *block = nullptr;
  if (handle != nullptr) {
    block = static_cast<char *>(GlobalLock(handle));
    if (block == nullptr) {
      GlobalFree(handle);
      handle = nullptr;
    }
  }
  if (block != nullptr) {
    size_t written;
    if (oldKept) {
      std::memcpy(block + oldLength, text, newLength + 1);
      written = oldLength + newLength;
    } else {
      // The block is new, or was not grown: the text is written from its start, over the old one. Deliberately cut to
      // the block, which keeps its old size here, rather than written past its end; the warning below tells that the
      // text is not what it should be.
      written = std::min(newLength, static_cast<size_t>(GlobalSize(handle)) - 1);
      std::memcpy(block, text, written);
      block[written] = 0;
    }
    // Only the no-room path above can miss; its text is kept as it stands and the run goes on.
    if (written != oldLength + newLength) {
      LoadStrings(kAppendShortId, kAppendTitleId);
      ConsolePrompt(owner, FirstSlotText(), SecondSlotText(), kWarningStyle);
    }
    // A block that is still locked by somebody else may still be written to: its length is not worth keeping.
    if (!GlobalUnlock(handle)) RememberLength(handle, written);
  }
  if (room != nullptr) {
    if (roomLocked != nullptr) GlobalUnlock(room);
    GlobalFree(room);
  }
  if (handle == nullptr) FatalMemoryExit(owner, kAppendTitleId, kAccessFailedId);
  return handle;
}

HGLOBAL StoreToBlock(HWND owner, HGLOBAL handle, const char *text) {
  if (text == nullptr) text = "";
  const size_t length = std::strlen(text);
  HGLOBAL result;
  if (handle != nullptr) {
    result = GlobalReAlloc(handle, length + 1, kTextFlags);
  } else {
    SetKeptLastError(0);
    result = GlobalAlloc(kTextFlags, length + 1);
  }
  if (result != nullptr) {
    char *block = static_cast<char *>(GlobalLock(result));
    if (block != nullptr) {
      std::memcpy(block, text, length + 1);
      if (!GlobalUnlock(result)) RememberLength(result, length);
      return result;
    }
    GlobalFree(result);
  }
  FatalMemoryExit(owner, kStoreTitleId, kAccessFailedId);
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
      LoadStrings(kMemoryExhaustedId, 0);
      std::strcpy(fatalMessage, FirstSlotText());
      if (detailId != 0) {
        std::strcat(fatalMessage, "\n");
        LoadStrings(detailId, 0);
        // Deliberately over the start of the buffer, not behind the line break: with a detail id, the detail alone is
        // the message. Both callers pass 8060, so what users see is that one line, not the general text above it.
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
