// The global heap behind GlobalAlloc ... GlobalFree, ours on both platforms. A block keeps exactly the size that was
// asked for, as Windows reports it, but its storage grows geometrically underneath, so that a text which is grown by
// a few bytes at a time (the run's result text) costs time in proportion to what is added, not to its length. Large
// storage is also kept for reuse when its block is freed (see TakeStorage).
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

// Storage of a large block comes with half as much again, and the storage of the last large block freed is kept as a
// spare for the next request that it fits. Each append to a growing text asks for room as large as the whole text and
// gives it back unwritten (text/growing_text.cpp); if every such request went to the system's allocator, it would cost
// page faults in proportion to the text, and an append to a long text would cost several times one to a short text.
// With the spare, such a request finds its storage ready nearly every time. Small storage goes straight to malloc.
const size_t kLargeStorage = 64 * 1024;
char *spareData = nullptr;
size_t spareCapacity = 0;

// Storage for `bytes` (> 0), zeroed up to `bytes` when asked; `capacity` receives what it holds. Null if none.
char *TakeStorage(size_t bytes, bool zeroed, size_t *capacity) {
  *capacity = bytes;
  if (bytes < kLargeStorage) return static_cast<char *>(zeroed ? std::calloc(bytes, 1) : std::malloc(bytes));
  // A spare far larger than the request stays for a request that needs it.
  if (spareData != nullptr && spareCapacity >= bytes && spareCapacity / 2 <= bytes) {
    char *data = spareData;
    *capacity = spareCapacity;
    spareData = nullptr;
    spareCapacity = 0;
    if (zeroed) std::memset(data, 0, bytes);
    return data;
  }
  size_t wanted = bytes <= static_cast<size_t>(-1) / 3 * 2 ? bytes + bytes / 2 : bytes;
  char *data = static_cast<char *>(zeroed ? std::calloc(wanted, 1) : std::malloc(wanted));
  if (data == nullptr && wanted != bytes) {
    wanted = bytes;
    data = static_cast<char *>(zeroed ? std::calloc(wanted, 1) : std::malloc(wanted));
  }
  if (data != nullptr) *capacity = wanted;
  return data;
}

void ReturnStorage(char *data, size_t capacity) {
  if (capacity < kLargeStorage) {
    std::free(data);
    return;
  }
  std::free(spareData);
  spareData = data;
  spareCapacity = capacity;
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
  block->capacity = bytes;
  if (bytes > 0) {
    block->data = TakeStorage(bytes, (flags & GMEM_ZEROINIT) != 0, &block->capacity);
    if (block->data == nullptr) {
      std::free(block);
      return Fail(ERROR_NOT_ENOUGH_MEMORY);
    }
  }
  block->magic = kBlockMagic;
  block->size = bytes;
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
  ReturnStorage(block->data, block->capacity);
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
