// The run driver. The walk itself is not wired in yet: a run prints its frame and ends.
#include "front/run_driver.h"

#include "console/console_prompt.h"

int RunPass(unsigned, unsigned, int confirm) {
  SetStopFlag(0);
  SetPauseFlag(0);
  ConsolePrintf("\n");
  SetPauseFlag(0);
  SetStopFlag(0);
  if (confirm) {
    ConsolePrintf("\n\n====> 終了：");
    ConsolePrompt(nullptr, nullptr, nullptr, MB_OK);
  }
  return 1;
}
