// Growing texts in global blocks. A run appends hundreds of thousands of rows to its result text, so an append must
// cost time in proportion to what it adds: see AppendTextToBlock.
#include "text/growing_text.h"

#include <algorithm>
#include <cstring>

#include "reports/last_error.h"

namespace {

const UINT kTextFlags = GMEM_MOVEABLE | GMEM_ZEROINIT;

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

}  // namespace

TextBlockOutcome AppendTextToBlock(HGLOBAL *slot, const char *text) {
  if (text == nullptr) text = "";
  HGLOBAL handle = *slot;
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
      oldLength = 0;  // the old text counts as empty; the lock below fails again and the block is lost
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

  TextBlockOutcome outcome = kTextAppended;
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
      // the block, which keeps its old size here, rather than written past its end; the caller's warning tells that
      // the text is not what it should be.
      written = std::min(newLength, static_cast<size_t>(GlobalSize(handle)) - 1);
      std::memcpy(block, text, written);
      block[written] = 0;
    }
    // Only the no-room path above can miss; its text is kept as it stands.
    if (written != oldLength + newLength) outcome = kTextCutShort;
    // A block that is still locked by somebody else may still be written to: its length is not worth keeping.
    if (!GlobalUnlock(handle)) RememberLength(handle, written);
  }
  if (room != nullptr) {
    if (roomLocked != nullptr) GlobalUnlock(room);
    GlobalFree(room);
  }
  *slot = handle;
  return handle == nullptr ? kTextBlockLost : outcome;
}

bool StoreTextInBlock(HGLOBAL *slot, const char *text) {
  if (text == nullptr) text = "";
  const size_t length = std::strlen(text);
  HGLOBAL result;
  if (*slot != nullptr) {
    result = GlobalReAlloc(*slot, length + 1, kTextFlags);
    if (result == nullptr) GlobalFree(*slot);
  } else {
    SetKeptLastError(0);
    result = GlobalAlloc(kTextFlags, length + 1);
  }
  *slot = nullptr;
  if (result == nullptr) return false;
  char *block = static_cast<char *>(GlobalLock(result));
  if (block == nullptr) {
    GlobalFree(result);
    return false;
  }
  std::memcpy(block, text, length + 1);
  if (!GlobalUnlock(result)) RememberLength(result, length);
  *slot = result;
  return true;
}
