// Hooks by which tests steer the parts of the platform layer that are ours on both platforms: the global heap, the
// console and the swappable system calls. Nothing outside tests/ includes this header.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/winapi.h"

// Heap requests (GlobalAlloc, GlobalReAlloc) for more than `maxBytes` fail as an exhausted heap does; 0 lets
// nothing through, kNoAllocationLimit (the default) everything.
const size_t kNoAllocationLimit = static_cast<size_t>(-1);
void TestSetAllocationLimit(size_t maxBytes);
// From now on, the size of every heap request is recorded, successful or not, until the next call.
void TestStartAllocationLog(void);
std::vector<size_t> TestAllocationLog(void);
// The number of blocks allocated and not yet freed.
size_t TestLiveBlockCount(void);

// Console traffic goes to memory instead of the real streams: standard input reads from `input` (as a file or pipe,
// not a console, so keys are its bytes and its end answers "no"), and everything written is kept.
void TestConsoleBegin(const std::string &input);
std::string TestConsoleOutput(void);  // what was written since TestConsoleBegin
std::string TestConsoleErrors(void);  // what went to standard error since TestConsoleBegin
// The styles of the alerts (MessageBeep) sounded since TestConsoleBegin, in order; none of them reached a speaker.
std::vector<unsigned> TestConsoleBeeps(void);
void TestConsoleEnd(void);

// Puts `call` in place of a system operation for the machine services, which reach these through the swappable table
// (platform/system_calls.h): "GetDriveTypeA", "GetVersionExA", "GetSystemInfo", "GetSystemMetrics", and the entry
// points looked up by name, "RtlGetVersion", "GetNativeSystemInfo" and "GetProductInfo", and the network browser's
// "WNetOpenEnumA", "WNetEnumResourceA", "WNetCloseEnum" and "WNetGetLastErrorA". `call` must have the
// operation's own type, WINAPI included (TestCall makes one of a function). Null puts the real call back for the
// direct calls, and for an entry point means that the lookup finds nothing. Result: false for a name the table does
// not hold.
bool TestSwapSystemCall(const char *name, FARPROC call);
template <typename Function>
FARPROC TestCall(Function *function) {
  return reinterpret_cast<FARPROC>(reinterpret_cast<void *>(function));
}
// Puts every real operation back.
void TestRestoreSystemCalls(void);
