// Messages by id, through the platform's LoadStringA, into the two process-wide slots and optional block copies.
#include "text/resource_strings.h"

#include <cstring>
#include <initializer_list>

namespace {

char firstSlot[kStringSlotSize];
char secondSlot[kStringSlotSize];
// The module that LoadStrings loads from: 0, the program's own file.
HMODULE stringInstance = nullptr;
// The member of the English and Japanese text pairs: Japanese, and nothing in this tool changes it.
int languageIndex = 1;

const int kLoadRoom = 1040;
const char kLoadFailed[] = "<失敗>";

// Loads one id into its slot and, with a record, a block copy. Result: the given failure bit, or 0.
int LoadOne(BlockRecord *copy, HMODULE module, UINT id, char *slot, int failureBit) {
  int status = 0;
  if (id != 0 && LoadStringA(module, id, slot, kLoadRoom) == 0) {
    std::strcpy(slot, kLoadFailed);
    status = failureBit;
  }
  if (copy != nullptr) {
    copy->handle = nullptr;
    copy->locked = nullptr;
    if (id != 0) {
      size_t size = std::strlen(slot) + 1;
      copy->handle = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size);
      if (copy->handle != nullptr) {
        copy->locked = static_cast<char *>(GlobalLock(copy->handle));
        if (copy->locked != nullptr) std::memcpy(copy->locked, slot, size);
      }
    }
  }
  return status;
}

}  // namespace

int LoadStringPair(StringBlockPair *record, HMODULE module, UINT firstId, UINT secondId) {
  // Both slots are emptied on every call, also the one that this call does not fill: callers rely on a slot holding
  // only what the latest load put there.
  firstSlot[0] = 0;
  secondSlot[0] = 0;
  int status = LoadOne(record ? &record->first : nullptr, module, firstId, firstSlot, kFirstStringFailed);
  status |= LoadOne(record ? &record->second : nullptr, module, secondId, secondSlot, kSecondStringFailed);
  return status;
}

int LoadStrings(UINT firstId, UINT secondId) { return LoadStringPair(nullptr, stringInstance, firstId, secondId); }

char *FirstSlotText(void) { return firstSlot; }
char *SecondSlotText(void) { return secondSlot; }

int LoadStringPairTo(StringBlockPair *record, HMODULE module, UINT firstId, UINT secondId, char **firstOut,
                     char **secondOut) {
  int status = LoadStringPair(record, module, firstId, secondId);
  if (firstOut != nullptr) *firstOut = record ? record->first.locked : firstSlot;
  if (secondOut != nullptr) *secondOut = record ? record->second.locked : secondSlot;
  return status;
}

void ReleaseStringBlockPair(StringBlockPair *record) {
  if (record == nullptr) return;
  for (BlockRecord *block : {&record->first, &record->second}) {
    if (block->handle == nullptr) continue;
    if (block->locked != nullptr) GlobalUnlock(block->handle);
    GlobalFree(block->handle);
    block->handle = nullptr;
  }
}

int LanguageIndex(void) { return languageIndex; }
void SetLanguageIndex(int index) { languageIndex = index; }
