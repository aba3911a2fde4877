// The global heap behind GlobalAlloc ... GlobalFree, ours on both platforms. A block keeps exactly the size that was
// asked for, as Windows reports it, but its storage grows geometrically underneath, so that a text which is grown by
// a few bytes at a time (the run's result text) costs time in proportion to what is added, not to its length.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/testing.h"
#include "platform/winapi.h"

namespace {

const unsigned kBlockMagic = 0x4B4D4842;  // marks a live block, so that a stale or foreign handle is refused

struct Block {
  unsigned magic;
  size_t size;      // what the owner asked for: GlobalSize
  size_t capacity;  // what is allocated underneath, never less than size
  char *data;
  unsigned lockCount;
  unsigned long long stamp;  // see KmGlobalStamp
};

size_t allocationLimit = kNoAllocationLimit;
bool loggingAllocations = false;
std::vector<size_t> &AllocationLog() {
  static std::vector<size_t> log;
  return log;
}
size_t liveBlocks = 0;
unsigned long long lastStamp = 0;  // the stamps handed out so far; 64 bits never wrap in a process's life

// The hook for tests and the log, and the one place where a request is refused for its size.
bool RequestAllowed(size_t bytes) {
  if (loggingAllocations) AllocationLog().push_back(bytes);
  return bytes <= allocationLimit;
}

Block *FromHandle(HGLOBAL handle) {
  Block *block = static_cast<Block *>(handle);
  if (block == nullptr || block->magic != kBlockMagic) return nullptr;
  return block;
}

HGLOBAL Fail(DWORD code) {
  SetLastError(code);
  return nullptr;
}

}  // namespace

HGLOBAL KmGlobalAlloc(UINT flags, SIZE_T bytes) {
  if (!RequestAllowed(bytes)) return Fail(ERROR_NOT_ENOUGH_MEMORY);
  Block *block = static_cast<Block *>(std::malloc(sizeof(Block)));
  if (block == nullptr) return Fail(ERROR_NOT_ENOUGH_MEMORY);
  block->data = nullptr;
  if (bytes > 0) {
    block->data = static_cast<char *>((flags & GMEM_ZEROINIT) ? std::calloc(bytes, 1) : std::malloc(bytes));
    if (block->data == nullptr) {
      std::free(block);
      return Fail(ERROR_NOT_ENOUGH_MEMORY);
    }
  }
  block->magic = kBlockMagic;
  block->size = bytes;
  block->capacity = bytes;
  block->lockCount = 0;
  block->stamp = ++lastStamp;
  ++liveBlocks;
  return block;
}

HGLOBAL KmGlobalReAlloc(HGLOBAL handle, SIZE_T bytes, UINT flags) {
  Block *block = FromHandle(handle);
  if (block == nullptr) return Fail(ERROR_INVALID_HANDLE);
  if (!RequestAllowed(bytes)) return Fail(ERROR_NOT_ENOUGH_MEMORY);
  if (bytes > block->capacity) {
    // Double the storage when growing, so that repeated small growth is amortised; fall back to the exact size when
    // the doubled one cannot be had.
    size_t wanted = block->capacity * 2 > bytes ? block->capacity * 2 : bytes;
    char *grown = static_cast<char *>(std::realloc(block->data, wanted));
    if (grown == nullptr && wanted != bytes) {
      wanted = bytes;
      grown = static_cast<char *>(std::realloc(block->data, wanted));
    }
    if (grown == nullptr) return Fail(ERROR_NOT_ENOUGH_MEMORY);
    block->data = grown;
    block->capacity = wanted;
  }
  // Bytes behind the old size may hold what a shrink left there: the grown part is zeroed from the old size on.
  if ((flags & GMEM_ZEROINIT) && bytes > block->size) std::memset(block->data + block->size, 0, bytes - block->size);
  block->size = bytes;
  block->stamp = ++lastStamp;
  return block;
}

LPVOID KmGlobalLock(HGLOBAL handle) {
  Block *block = FromHandle(handle);
  if (block == nullptr) {
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
  }
  // As on Windows, a block of no bytes has no storage to point at.
  if (block->size == 0) return nullptr;
  ++block->lockCount;
  block->stamp = ++lastStamp;
  return block->data;
}

BOOL KmGlobalUnlock(HGLOBAL handle) {
  Block *block = FromHandle(handle);
  if (block == nullptr) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  if (block->lockCount > 0) --block->lockCount;
  return block->lockCount > 0 ? TRUE : FALSE;
}

HGLOBAL KmGlobalFree(HGLOBAL handle) {
  Block *block = FromHandle(handle);
  if (block == nullptr) {
    SetLastError(ERROR_INVALID_HANDLE);
    return handle;
  }
  block->magic = 0;
  std::free(block->data);
  std::free(block);
  --liveBlocks;
  return nullptr;
}

SIZE_T KmGlobalSize(HGLOBAL handle) {
  Block *block = FromHandle(handle);
  return block == nullptr ? 0 : block->size;
}

unsigned long long KmGlobalStamp(HGLOBAL handle) {
  Block *block = FromHandle(handle);
  return block == nullptr ? 0 : block->stamp;
}

void TestSetAllocationLimit(size_t maxBytes) { allocationLimit = maxBytes; }
void TestStartAllocationLog(void) {
  AllocationLog().clear();
  loggingAllocations = true;
}
std::vector<size_t> TestAllocationLog(void) { return AllocationLog(); }
size_t TestLiveBlockCount(void) { return liveBlocks; }
