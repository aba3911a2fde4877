// The program's entry: the platform's start-up, then the conversation and the run.
#include "front/command_line.h"
#include "platform/winapi.h"

int main(int argc, char **argv) {
  PlatformStartup(&argc, &argv);
  int code = KelmaroMain(argc, argv);
  ConsoleFlush();
  return code;
}
