// The current folder and full paths (GetCurrentDirectoryA, SetCurrentDirectoryA, GetFullPathNameA, SearchPathA): the
// Linux backend on the host, Windows' own calls under Wine.
#include <gtest/gtest.h>

#include <cstring>
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
  void SetUp() override {
    ASSERT_TRUE(SetCurrentDirectoryA(folder_.Path().c_str())) << GetLastError();
    drive_ = folder_.Path().substr(0, 2);
  }

  std::string Full(const std::string &path, std::string *filePart = nullptr) {
    char buffer[MAX_PATH * 2];
    std::memset(buffer, 'G', sizeof buffer);
    char *part = reinterpret_cast<char *>(1);
    DWORD length = GetFullPathNameA(path.c_str(), sizeof buffer, buffer, &part);
    if (length == 0 || length >= sizeof buffer) return "<failed " + std::to_string(GetLastError()) + ">";
    if (filePart) *filePart = part ? part : "<null>";
    return std::string(buffer, length);
  }

  ScratchFolder folder_;
  std::string drive_;  // "C:" or "Z:"
};

TEST_F(FullPath, SettingTheCurrentFolderKeepsTheCallersSpelling) {
  folder_.MakeFolder("Sub");
  EXPECT_EQ(CurrentDirectory(), folder_.Path());
  ASSERT_TRUE(SetCurrentDirectoryA("sub\\"));
  EXPECT_EQ(CurrentDirectory(), folder_ / "sub");  // not "Sub": the text given, made full
  ASSERT_TRUE(SetCurrentDirectoryA(".."));
  EXPECT_EQ(CurrentDirectory(), folder_.Path());
  // A buffer too small is left alone, and the size it needs is the answer.
  char small[4] = {'G', 'G', 'G', 'G'};
  EXPECT_EQ(GetCurrentDirectoryA(sizeof small, small), folder_.Path().size() + 1);
  EXPECT_EQ(small[0], 'G');
  EXPECT_EQ(GetCurrentDirectoryA(0, nullptr), folder_.Path().size() + 1);
}

TEST_F(FullPath, SettingTheCurrentFolderFailsForWhatIsNoFolder) {
  folder_.MakeFile("file.txt");
  struct Row {
    const char *path;
    DWORD error;
  } rows[] = {
      {"absent", ERROR_FILE_NOT_FOUND},
      {"absent\\deeper", ERROR_PATH_NOT_FOUND},
      {"file.txt", ERROR_DIRECTORY},
      {"", ERROR_INVALID_NAME},
  };
  for (const Row &row : rows) {
    SetLastError(0);
    EXPECT_FALSE(SetCurrentDirectoryA(row.path)) << row.path;
    EXPECT_EQ(GetLastError(), row.error) << row.path;
  }
  EXPECT_EQ(CurrentDirectory(), folder_.Path());
}

struct FullRow {
  const char *given;
  std::string expected;  // "{}" stands for the current folder, "{d}" for its drive ("C:")
  const char *filePart;
};

std::string Expand(std::string text, const std::string &folder, const std::string &drive) {
  size_t at;
  while ((at = text.find("{}")) != std::string::npos) text.replace(at, 2, folder);
  while ((at = text.find("{d}")) != std::string::npos) text.replace(at, 3, drive);
  return text;
}

TEST_F(FullPath, PathsAreMadeFullInTheTextAlone) {
  const FullRow rows[] = {
      {"a", "{}\\a", "a"},
      {".\\a\\..\\b", "{}\\b", "b"},
      {"a/b", "{}\\a\\b", "b"},
      {"a\\\\b", "{}\\a\\b", "b"},
      {"a\\", "{}\\a\\", "<null>"},
      {".", "{}", nullptr},
      {"a.", "{}\\a", "a"},  // trailing dots and spaces go
      {"a. .", "{}\\a", "a"},
      {"a.\\b", "{}\\a\\b", "b"},    // a folder name loses one trailing dot
      {"\\x\\y", "{d}\\x\\y", "y"},  // from the current drive's root
      {"{d}", "{}\\", "<null>"},     // the current drive alone: its current folder, with a backslash
      {"{d}x", "{}\\x", "x"},
      {"Y:x", "Y:\\x", "x"},  // another drive's current folder is its root
      {"C:\\a\\.\\b\\..\\c", "C:\\a\\c", "c"},
      {"C:\\..\\..\\x", "C:\\x", "x"},  // ".." stops at the root
      {"C:/a/b/", "C:\\a\\b\\", "<null>"},
      {"\\\\server\\share\\a\\..\\..\\b", "\\\\server\\share\\b", "b"},
      {"表\\x", "{}\\表\\x", "x"},  // 0x95 0x5C: a trail byte, not a separator
  };
  for (const FullRow &row : rows) {
    std::string given = Expand(row.given, folder_.Path(), drive_);
    std::string part;
    std::string full = Full(given, &part);
    EXPECT_EQ(full, Expand(row.expected, folder_.Path(), drive_)) << given;
    if (row.filePart) {
      EXPECT_EQ(part, row.filePart) << given;
    }
  }
  char small[5] = {'G', 'G', 'G', 'G', 'G'};  // too small: left alone, and the size it needs is the answer
  EXPECT_EQ(GetFullPathNameA("name.lnk", sizeof small, small, nullptr), (folder_ / "name.lnk").size() + 1);
  EXPECT_EQ(small[0], 'G');
}

TEST_F(FullPath, SearchPathLooksInTheFoldersItIsGiven) {
  folder_.MakeFolder("one");
  folder_.MakeFolder("two");
  folder_.MakeFile("two\\tool.exe");
  std::string list = folder_ / "one" + ";" + folder_ / "two";
  char buffer[MAX_PATH];
  char *part = nullptr;
  DWORD length = SearchPathA(list.c_str(), "TOOL.EXE", nullptr, sizeof buffer, buffer, &part);
  ASSERT_GT(length, 0u) << GetLastError();
  EXPECT_EQ(std::string(buffer, length), folder_ / "two\\TOOL.EXE");  // the name as asked for
  EXPECT_STREQ(part, "TOOL.EXE");
  length = SearchPathA(list.c_str(), "tool", ".exe", sizeof buffer, buffer, nullptr);
  EXPECT_EQ(std::string(buffer, length), folder_ / "two\\tool.exe");
  SetLastError(0);
  EXPECT_EQ(SearchPathA(list.c_str(), "absent.exe", nullptr, sizeof buffer, buffer, nullptr), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  // A name that says where it is is looked for there alone.
  length = SearchPathA(nullptr, ".\\two\\tool.exe", nullptr, sizeof buffer, buffer, nullptr);
  EXPECT_EQ(std::string(buffer, length), folder_ / "two\\tool.exe");
}

}  // namespace
