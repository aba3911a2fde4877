// Hooks by which tests steer the parts of the platform layer that are ours on both platforms: the global heap and the
// console. Nothing outside tests/ includes this header.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

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
// The styles of the alerts (MessageBeep) sounded since TestConsoleBegin, in order; none of them reached a speaker.
std::vector<unsigned> TestConsoleBeeps(void);
void TestConsoleEnd(void);
