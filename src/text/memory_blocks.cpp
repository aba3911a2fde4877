// Global memory blocks.
#include "text/memory_blocks.h"

#include "reports/last_error.h"

namespace {
// Blocks that a service keeps between calls, with their locked pointers, ended by a zero handle.
HGLOBAL savedHandles[8];
void *savedPointers[8];
}  // namespace

HGLOBAL ResizeOrAllocBlock(HGLOBAL handle, DWORD size) {
  SetKeptLastError(0);
  HGLOBAL result = handle == nullptr ? GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size)
                                     : GlobalReAlloc(handle, size, GMEM_MOVEABLE | GMEM_ZEROINIT);
  // The platform's error is read and dropped: the caller learns of a failure from the null handle.
  GetLastError();
  return result;
}

char *AcquireBlock(HGLOBAL *slot, void *locked, DWORD size, DWORD *granted) {
  if (slot == nullptr) {
    if (granted != nullptr) *granted = size;
    return nullptr;
  }
  if (*slot != nullptr && locked != nullptr) GlobalUnlock(*slot);
  while (size != 0) {
    *slot = ResizeOrAllocBlock(*slot, size);
    if (*slot != nullptr) break;
    size = size > 0xFF ? size - 0xFF : size - 1;
  }
  char *result = nullptr;
  if (*slot != nullptr) {
    result = static_cast<char *>(GlobalLock(*slot));
    if (result == nullptr) {
      GlobalFree(*slot);
      *slot = nullptr;
    }
  }
  if (granted != nullptr) *granted = size;
  return result;
}

void ReleaseBlock(HGLOBAL handle, void *locked) {
  if (handle == nullptr) return;
  if (locked != nullptr) GlobalUnlock(handle);
  GlobalFree(handle);
}

void ReleaseBlockRecord(BlockRecord *record) {
  if (record == nullptr || record->handle == nullptr) return;
  ReleaseBlock(record->handle, record->locked);
  record->handle = nullptr;
  record->locked = nullptr;
  record->size = 0;
}

void ReleaseSavedBlocks(void) {
  for (int i = 0; i < 8 && savedHandles[i] != nullptr; ++i) {
    ReleaseBlock(savedHandles[i], savedPointers[i]);
    savedHandles[i] = nullptr;
    savedPointers[i] = nullptr;
  }
}
