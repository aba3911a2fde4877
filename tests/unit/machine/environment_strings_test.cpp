// Environment names in a text, expanded in place.
#include "machine/environment_strings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/winapi.h"

namespace {

// Sets a variable of the process environment for the lookups under test.
void SetVariable(const char *name, const std::string &value) {
#ifdef _WIN32
  SetEnvironmentVariableA(name, value.c_str());
#else
  setenv(name, value.c_str(), 1);
#endif
}

class EnvironmentStrings : public ::testing::Test {
 protected:
  void SetUp() override {
    SetVariable("KMTEST_WINDIR", "C:\\Windows");
    SetVariable("KMTEST_A", "1");
    SetVariable("KMTEST_B", "2");
    SetVariable("KMTEST_NEST", "<%KMTEST_A%>");
    SetVariable("KMTEST_EMPTY", "");
    SetVariable("KMTEST_LONG", std::string(600, 'v'));
  }
};

TEST_F(EnvironmentStrings, Expansions) {
  struct Row {
    const char *text;
    const char *expanded;
  } rows[] = {
      {"%KMTEST_WINDIR%\\a.txt", "C:\\Windows\\a.txt"},
      {"%kmtest_windir%\\a.txt", "C:\\Windows\\a.txt"},  // names without regard to case
      {"%KMTEST_NOSUCH%\\a", "%KMTEST_NOSUCH%\\a"},
      {"100%", "100%"},
      {"%KMTEST_A%%KMTEST_B%", "12"},
      {"%KMTEST_NOSUCH%KMTEST_B%", "%KMTEST_NOSUCH2"},  // the closing "%" of an unknown name opens the next
      {"pre%KMTEST_NEST%post", "pre<1>post"},           // a value is searched in turn
      {"%KMTEST_EMPTY%x", "%KMTEST_EMPTY%x"},           // an empty value counts as not set
      {"%KMTEST_LONG%!", "KMTEST_LONG!"},               // too long for the buffer: the bare name stands in
      {"\x81\x25KMTEST_A%", "\x81\x25KMTEST_A%"},       // a trail byte 0x25 is no "%"
  };
  for (const Row &row : rows) {
    char text[1200];
    std::strcpy(text, row.text);
    ExpandEnvironmentNames(text);
    EXPECT_STREQ(text, row.expanded) << row.text;
  }
}

}  // namespace
