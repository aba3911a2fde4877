// A scratch folder for one test, made below the current folder through the same Windows operations on both platforms
// (the real ones under Wine, the Linux backend on the host), and removed with everything in it at the end of the test.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "platform/winapi.h"

class ScratchFolder {
 public:
  // "<current folder>\kelmaro-<suite>-<test>": unique per test, so that tests run side by side do not meet.
  ScratchFolder() {
    char current[MAX_PATH];
    DWORD length = GetCurrentDirectoryA(MAX_PATH, current);
    EXPECT_GT(length, 0u);
    EXPECT_LT(length, static_cast<DWORD>(MAX_PATH));
    const ::testing::TestInfo *test = ::testing::UnitTest::GetInstance()->current_test_info();
    root_ = std::string(current);
    if (root_.back() != '\\') root_ += '\\';
    root_ += std::string("kelmaro-") + test->test_suite_name() + "-" + test->name();
    for (char &c : root_)
      if (c == '/') c = '-';  // parameterised test names
    RemoveTree(root_);
    EXPECT_TRUE(CreateDirectoryA(root_.c_str(), nullptr)) << root_ << " error " << GetLastError();
    GetCurrentDirectoryA(MAX_PATH, saved_);
  }
  ~ScratchFolder() {
    SetCurrentDirectoryA(saved_);
    RemoveTree(root_);
  }
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;

  // The scratch folder itself, or a path below it ("a\b").
  std::string Path(const std::string &relative = "") const {
    return relative.empty() ? root_ : root_ + "\\" + relative;
  }
  std::string MakeFolder(const std::string &relative) const {
    std::string path = Path(relative);
    EXPECT_TRUE(CreateDirectoryA(path.c_str(), nullptr)) << path << " error " << GetLastError();
    return path;
  }
  std::string MakeFile(const std::string &relative, const std::string &contents = "") const {
    std::string path = Path(relative);
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    EXPECT_NE(file, INVALID_HANDLE_VALUE) << path << " error " << GetLastError();
    if (file == INVALID_HANDLE_VALUE) return path;
    DWORD written = 0;
    if (!contents.empty()) WriteFile(file, contents.data(), static_cast<DWORD>(contents.size()), &written, nullptr);
    CloseHandle(file);
    return path;
  }

 private:
  static void RemoveTree(const std::string &path) {
    DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return;
    if (attributes & FILE_ATTRIBUTE_READONLY) SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
      DeleteFileA(path.c_str());
      return;
    }
    WIN32_FIND_DATAA entry;
    HANDLE search = FindFirstFileA((path + "\\*").c_str(), &entry);
    if (search != INVALID_HANDLE_VALUE) {
      do {
        std::string name = entry.cFileName;
        if (name != "." && name != "..") RemoveTree(path + "\\" + name);
      } while (FindNextFileA(search, &entry));
      FindClose(search);
    }
    RemoveDirectoryA(path.c_str());
  }

  std::string root_;
  char saved_[MAX_PATH] = "";
};

// A writable copy of a text, for the routines that edit their path in place: 520 bytes, as the program's buffers are.
struct PathBuffer {
  explicit PathBuffer(const std::string &text) { Set(text); }
  void Set(const std::string &text) {
    std::string cut = text.substr(0, sizeof bytes - 1);
    std::copy(cut.begin(), cut.end(), bytes);
    bytes[cut.size()] = 0;
  }
  std::string Text() const { return bytes; }
  char bytes[520];
};
