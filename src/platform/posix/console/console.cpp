// The console backend of Linux: standard streams, with Shift-JIS converted to the locale's charset on the way out and
// back on the way in, one key read from the terminal in raw mode without echo, and the alert.
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "platform/console_backend.h"
#include "platform/posix/text/charset.h"

namespace {
// A lead byte that ended one write and waits for its trail byte in the next.
std::string pendingLead;

bool IsLead(unsigned char c) { return (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC); }
}  // namespace

void BackendWrite(const char *bytes, size_t count) {
  std::string text = pendingLead + std::string(bytes, count);
  pendingLead.clear();
  // Find whether the last byte is a lead byte that lacks its trail.
  size_t i = 0;
  while (i < text.size()) {
    if (IsLead(static_cast<unsigned char>(text[i]))) {
      if (i + 1 == text.size()) {
        pendingLead = text.substr(i);
        text.resize(i);
        break;
      }
      i += 2;
    } else {
      ++i;
    }
  }
  std::string out = Cp932ToLocale(text);
  fwrite(out.data(), 1, out.size(), stdout);
}

void BackendFlush(void) { fflush(stdout); }

char *BackendReadLine(char *buffer, int size) {
  if (fgets(buffer, size, stdin) == nullptr) return nullptr;
  std::string converted = LocaleToCp932(buffer);
  size_t limit = static_cast<size_t>(size - 1);
  if (converted.size() > limit) converted.resize(limit);
  std::memcpy(buffer, converted.c_str(), converted.size() + 1);
  return buffer;
}

int BackendReadKey(void) {
  if (!isatty(STDIN_FILENO)) return fgetc(stdin);
  struct termios saved;
  if (tcgetattr(STDIN_FILENO, &saved) != 0) return fgetc(stdin);
  struct termios raw = saved;
  raw.c_lflag &= static_cast<tcflag_t>(~(ICANON | ECHO));
  raw.c_cc[VMIN] = 1;
  raw.c_cc[VTIME] = 0;
  tcsetattr(STDIN_FILENO, TCSANOW, &raw);
  int key = fgetc(stdin);
  tcsetattr(STDIN_FILENO, TCSANOW, &saved);
  return key;
}

void BackendWriteError(const char *text) {
  std::string out = Cp932ToLocale(text);
  fwrite(out.data(), 1, out.size(), stderr);
  fflush(stderr);
}

// A terminal has one sound for every style. Into a file or a pipe a BEL would only be a stray byte, so nothing goes
// there.
void BackendBeep(unsigned) {
  if (!isatty(STDERR_FILENO)) return;
  fputc('\a', stderr);
  fflush(stderr);
}
