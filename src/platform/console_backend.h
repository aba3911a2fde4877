// What each platform supplies beneath the console routines of winapi.h. Private to src/platform/.
#pragma once

#include <cstddef>

void BackendWrite(const char *bytes, size_t count);
void BackendFlush(void);
char *BackendReadLine(char *buffer, int size);
int BackendReadKey(void);
void BackendWriteError(const char *text);
// Sounds the alert of a message-box style.
void BackendBeep(unsigned type);
