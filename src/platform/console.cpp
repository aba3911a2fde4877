// The console routines of winapi.h: formatting happens here, the bytes go to the platform's backend, or to memory
// while a test has taken the console over.
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/console_backend.h"
#include "platform/testing.h"
#include "platform/winapi.h"

namespace {

struct TestConsole {
  bool active = false;
  std::string input;
  size_t inputPos = 0;
  std::string output;
  std::string errors;
  std::vector<unsigned> beeps;
};

TestConsole &Captured() {
  static TestConsole console;
  return console;
}

}  // namespace

int ConsoleVPrintf(const char *format, va_list args) {
  char small[1024];
  va_list copy;
  va_copy(copy, args);
  int length = vsnprintf(small, sizeof small, format, copy);
  va_end(copy);
  if (length < 0) return length;
  std::string large;
  const char *text = small;
  if (static_cast<size_t>(length) >= sizeof small) {
    large.resize(static_cast<size_t>(length) + 1);
    vsnprintf(&large[0], large.size(), format, args);
    text = large.c_str();
  }
  if (Captured().active)
    Captured().output.append(text, static_cast<size_t>(length));
  else
    BackendWrite(text, static_cast<size_t>(length));
  return length;
}

int ConsolePrintf(const char *format, ...) {
  va_list args;
  va_start(args, format);
  int length = ConsoleVPrintf(format, args);
  va_end(args);
  return length;
}

void ConsoleFlush(void) {
  if (!Captured().active) BackendFlush();
}

char *ConsoleReadLine(char *buffer, int size) {
  TestConsole &console = Captured();
  if (!console.active) return BackendReadLine(buffer, size);
  // As fgets: stop behind a newline, at size-1 bytes, or at the end; nothing read at the end gives null.
  if (size <= 0 || console.inputPos >= console.input.size()) return nullptr;
  int used = 0;
  while (used < size - 1 && console.inputPos < console.input.size()) {
    char c = console.input[console.inputPos++];
    buffer[used++] = c;
    if (c == '\n') break;
  }
  buffer[used] = 0;
  return buffer;
}

int ConsoleReadKey(void) {
  TestConsole &console = Captured();
  if (!console.active) return BackendReadKey();
  if (console.inputPos >= console.input.size()) return -1;
  return static_cast<unsigned char>(console.input[console.inputPos++]);
}

void ConsoleWriteError(const char *text) {
  if (Captured().active)
    Captured().errors.append(text ? text : "");
  else
    BackendWriteError(text ? text : "");
}

int KmMessageBoxA(HWND, LPCSTR text, LPCSTR caption, UINT) {
  ConsoleFlush();
  if (caption && *caption) {
    ConsoleWriteError(caption);
    ConsoleWriteError(": ");
  }
  ConsoleWriteError(text);
  ConsoleWriteError("\n");
  return IDOK;
}

BOOL KmMessageBeep(UINT type) {
  if (Captured().active)
    Captured().beeps.push_back(type);
  else
    BackendBeep(type);
  return TRUE;
}

void TestConsoleBegin(const std::string &input) {
  TestConsole &console = Captured();
  console = TestConsole();
  console.active = true;
  console.input = input;
}

std::string TestConsoleOutput(void) { return Captured().output; }
std::string TestConsoleErrors(void) { return Captured().errors; }
std::vector<unsigned> TestConsoleBeeps(void) { return Captured().beeps; }
void TestConsoleEnd(void) { Captured() = TestConsole(); }
