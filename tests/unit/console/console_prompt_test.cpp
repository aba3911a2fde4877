// The console's message box: which keys each flag value offers, and what each key answers.
#include "console/console_prompt.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/testing.h"

namespace {

struct PromptRun {
  int result;
  std::string output;
};

PromptRun Prompt(unsigned flags, const std::string &keys, const char *text = nullptr, const char *caption = nullptr) {
  TestConsoleBegin(keys);
  int result = ConsolePrompt(nullptr, text, caption, flags);
  PromptRun run = {result, TestConsoleOutput()};
  TestConsoleEnd();
  return run;
}

// Yes/no (0x04) with its keys and end of input is the confirmation, run end to end by the command-line tests.
TEST(ConsolePrompt, FlagTable) {
  struct Row {
    unsigned flags;
    std::string keys;
    const char *prompt, *echo;
    int result;
  } rows[] = {{0x00, "\xE0H", "Press Any Key>>", "", IDOK},  // the first code of a two-code key ends it
              {0x01, "nc", "Y:OK C:ｷｬﾝｾﾙ>>", "C", IDCANCEL},
              {0x02, "xa", "A:中止 Y:やり直し I:無視>>", "A", IDABORT},
              {0x02, "Y", "A:中止 Y:やり直し I:無視>>", "Y", IDRETRY},
              {0x02, "i", "A:中止 Y:やり直し I:無視>>", "I", IDIGNORE},
              {0x03, "nY", "Y:OK C:ｷｬﾝｾﾙ>>", "Y", IDOK},      // yes/no/cancel gets OK/cancel: bit 0 wins
              {0x05, "rc", "Y:OK C:ｷｬﾝｾﾙ>>", "C", IDCANCEL},  // retry/cancel never gives retry
              {0x34, "N", "Y:はい N:いいえ>>", "N", IDNO},    // icon bits change nothing
              // End of input never says yes.
              {0x01, "qqq", "Y:OK C:ｷｬﾝｾﾙ>>", "", IDCANCEL},
              {0x02, "qqq", "A:中止 Y:やり直し I:無視>>", "", IDABORT}};
  for (const Row &row : rows) {
    PromptRun run = Prompt(row.flags, row.keys);
    EXPECT_EQ(run.result, row.result) << "flags " << row.flags << " keys " << row.keys;
    EXPECT_EQ(run.output, std::string(row.prompt) + row.echo) << "flags " << row.flags << " keys " << row.keys;
  }
}

TEST(ConsolePrompt, CaptionAndText) {
  EXPECT_EQ(Prompt(0, "k", "x", "実行").output, "実行:xPress Any Key>>");
  EXPECT_EQ(Prompt(0, "k", "", "").output, "Press Any Key>>");
  EXPECT_EQ(Prompt(0, "k", "only text").output, "only textPress Any Key>>");
}

}  // namespace
