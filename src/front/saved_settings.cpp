// Saved settings. The registry behind them is not read yet: nothing counts as saved.
#include "front/saved_settings.h"

int GetSavedOptions(char *buffer, int size) {
  if (size > 0) buffer[0] = 0;
  return 0;
}

int GetSavedFolder(char *buffer, int size) {
  if (size > 0) buffer[0] = 0;
  return 0;
}
