// The current folder and GetFullPathNameA, on the backend and under Wine. SearchPathA: through SearchForFile.
#include <gtest/gtest.h>

#include <string>

#include "platform/winapi.h"
#include "support/scratch_folder.h"

namespace {

std::string CurrentDirectory() {
  char buffer[MAX_PATH * 2];
  DWORD length = GetCurrentDirectoryA(sizeof buffer, buffer);
  return std::string(buffer, length < sizeof buffer ? length : 0);
}

// Each test starts in its own scratch folder (which puts the current folder back at the end).
class FullPath : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(SetCurrentDirectoryA(folder_.Path().c_str())) << GetLastError(); }
  ScratchFolder folder_;
};

TEST_F(FullPath, SettingTheCurrentFolderKeepsTheCallersSpelling) {
  folder_.MakeFolder("Sub");
  EXPECT_EQ(CurrentDirectory(), folder_.Path());
  ASSERT_TRUE(SetCurrentDirectoryA("sub\\"));
  EXPECT_EQ(CurrentDirectory(), folder_ / "sub");  // not "Sub": the text given, made full
}

std::string Expand(std::string text, const std::string &folder, const std::string &drive) {
  size_t at;
  while ((at = text.find("{}")) != std::string::npos) text.replace(at, 2, folder);
  while ((at = text.find("{d}")) != std::string::npos) text.replace(at, 3, drive);
  return text;
}

// Every call that takes a path makes it full this way first.
TEST_F(FullPath, PathsAreMadeFullInTheTextAlone) {
  const struct Row {
    const char *given, *expected;  // "{}" stands for the current folder, "{d}" for its drive ("C:")
  } rows[] = {
      {".\\a\\..\\b", "{}\\b"},
      {"a/b", "{}\\a\\b"},
      {"a\\\\b", "{}\\a\\b"},
      {"a\\", "{}\\a\\"},
      {"a. .", "{}\\a"},           // trailing dots and spaces go
      {"a.\\b", "{}\\a\\b"},       // a folder name loses one trailing dot
      {"\\x\\y", "{d}\\x\\y"},     // from the current drive's root
      {"{d}", "{}\\"},             // the current drive alone: its current folder, with a backslash
      {"Y:x", "Y:\\x"},            // another drive's current folder is its root
      {"C:\\..\\..\\x", "C:\\x"},  // ".." stops at the root
      {"\\\\server\\share\\a\\..\\..\\b", "\\\\server\\share\\b"},
      {"表\\x", "{}\\表\\x"},  // 0x95 0x5C: a trail byte, not a separator
  };
  const std::string drive = folder_.Path().substr(0, 2);
  for (const Row &row : rows) {
    std::string given = Expand(row.given, folder_.Path(), drive);
    char buffer[MAX_PATH * 2];
    char *part = nullptr;
    DWORD length = GetFullPathNameA(given.c_str(), sizeof buffer, buffer, &part);
    ASSERT_TRUE(length > 0 && length < sizeof buffer) << given << " error " << GetLastError();
    EXPECT_EQ(std::string(buffer, length), Expand(row.expected, folder_.Path(), drive)) << given;
  }
}

}  // namespace
