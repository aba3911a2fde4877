// The question that a network walk asks at a folder whose listing a network error refused: which tail the style
// gives the question, what the answers come back as, and which errors ask nothing.
#include <gtest/gtest.h>

#include <string>

#include "platform/testing.h"
#include "reports/last_error.h"
#include "resources/message_ids.h"
#include "walker/folder_descent.h"

namespace {

std::string Text(UINT id) {
  char text[1024] = "";
  LoadStringA(nullptr, id, text, sizeof text);
  return text;
}

struct Asked {
  int result;
  std::string output;
};

Asked Ask(DWORD error, unsigned style, const std::string &keys) {
  TestConsoleBegin(keys);
  SetKeptLastError(error);
  int result = NetworkAccessPrompt(nullptr, "\\\\srv\\sh", style);
  Asked asked = {result, TestConsoleOutput()};
  TestConsoleEnd();
  SetKeptLastError(0);
  return asked;
}

// A style's values choose the tails: 4 the two-answer one (8308), 1 or 2 the three-answer one (8309). The walker's
// own 0x33 gets 8309 alone.
TEST(NetworkAccessPrompt, StyleChoosesTheTails) {
  struct Row {
    unsigned style;
    bool twoAnswers;
    bool threeAnswers;
  } rows[] = {
      {0x33, false, true},  // the walker's: warning icon and MB_YESNOCANCEL
      {0x31, false, true},  // OK and cancel
      {0x32, false, true},  // abort, retry, ignore
      {0x34, true, false},  // yes and no
      {0x14, true, false},  // yes and no with the stop icon, whose 0x10 chooses nothing
      {0x37, true, true},   // both
      {0x30, false, false},
  };
  const std::string two = Text(kMsgPasswordAskButtons);
  const std::string three = Text(kMsgPasswordAskButtonsQuiet);
  const std::string question = Text(kMsgNetworkRefusedAskPassword);
  ASSERT_FALSE(two.empty());
  ASSERT_FALSE(three.empty());
  for (const Row &row : rows) {
    Asked asked = Ask(ERROR_INVALID_PASSWORD, row.style, "");
    EXPECT_NE(asked.output.find(question), std::string::npos) << std::hex << row.style;
    EXPECT_EQ(asked.output.find(two) != std::string::npos, row.twoAnswers) << std::hex << row.style;
    EXPECT_EQ(asked.output.find(three) != std::string::npos, row.threeAnswers) << std::hex << row.style;
  }
}

// On the console the walker's question is OK or cancel: Y goes on (1), C aborts (3); the end of input cancels.
TEST(NetworkAccessPrompt, Answers) {
  EXPECT_EQ(Ask(ERROR_INVALID_PASSWORD, 0x33, "Y").result, 1);
  EXPECT_EQ(Ask(ERROR_BAD_NET_RESP, 0x33, "C").result, 3);
  EXPECT_EQ(Ask(ERROR_INVALID_PASSWORD, 0x33, "").result, 3);
}

// Only a password error asks; another network error asks nothing and turns the questions off (7); any other error
// is no concern of the question (0).
TEST(NetworkAccessPrompt, ErrorsThatAskNothing) {
  struct Row {
    DWORD error;
    int result;
  } rows[] = {{53, 7}, {1222, 7}, {2, 0}, {5, 0}, {0, 0}};
  for (const Row &row : rows) {
    Asked asked = Ask(row.error, 0x33, "Y");
    EXPECT_EQ(asked.result, row.result) << row.error;
    EXPECT_EQ(asked.output, "") << row.error;
  }
}

}  // namespace
