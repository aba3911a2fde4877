// Environment variables, which the tool expands in shortcut fields ("%windir%\notepad.exe"): the Linux backend on
// the host, Windows' own calls under Wine. (Nothing in the tool asks for volume facts or free space.)
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "platform/winapi.h"

namespace {

void SetVariable(const char *name, const char *value) {
#ifdef _WIN32
  SetEnvironmentVariableA(name, value);
#else
  if (value)
    setenv(name, value, 1);
  else
    unsetenv(name);
#endif
}

TEST(Environment, NamesAreBlindToCase) {
  SetVariable("KELMARO_TEST_VALUE", "some value");
  char buffer[64];
  std::memset(buffer, 'G', sizeof buffer);
  EXPECT_EQ(GetEnvironmentVariableA("kelmaro_Test_value", buffer, sizeof buffer), 10u);
  EXPECT_STREQ(buffer, "some value");
  // Too small: the buffer is left alone (the expansion of "%NAME%" counts on that) and the size needed comes back.
  char small[4] = {'G', 'G', 'G', 'G'};
  EXPECT_EQ(GetEnvironmentVariableA("KELMARO_TEST_VALUE", small, sizeof small), 11u);
  EXPECT_EQ(small[0], 'G');
  // An empty value is written out as an empty text: the expansion tells it from a value by the first byte.
  SetVariable("KELMARO_TEST_EMPTY", "");
  EXPECT_EQ(GetEnvironmentVariableA("KELMARO_TEST_EMPTY", buffer, sizeof buffer), 0u);
  EXPECT_STREQ(buffer, "");
  SetVariable("KELMARO_TEST_EMPTY", nullptr);
  SetVariable("KELMARO_TEST_VALUE", nullptr);
  SetLastError(0);
  EXPECT_EQ(GetEnvironmentVariableA("KELMARO_TEST_VALUE", buffer, sizeof buffer), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ENVVAR_NOT_FOUND));
}

}  // namespace
