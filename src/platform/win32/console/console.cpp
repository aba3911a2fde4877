// The console of the Windows side: the real standard streams, and the key rule for input that is not a console.
#include <conio.h>

#include <cstdio>

#include "platform/console_backend.h"
#include "platform/winapi.h"

void BackendWrite(const char *bytes, size_t count) { fwrite(bytes, 1, count, stdout); }
void BackendFlush(void) { fflush(stdout); }
char *BackendReadLine(char *buffer, int size) { return fgets(buffer, size, stdin); }

// _getch reads the console even when standard input is redirected; a script's input would then never be read. So a
// key comes from the console only when standard input is one, and is otherwise the next byte of standard input.
int BackendReadKey(void) {
  DWORD mode = 0;
  if (GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode)) return _getch();
  return fgetc(stdin);
}

void BackendWriteError(const char *text) {
  fputs(text, stderr);
  fflush(stderr);
}

// winapi.h names the program's alert KmMessageBeep; beneath it is the system's own.
#undef MessageBeep
void BackendBeep(unsigned type) { MessageBeep(type); }
