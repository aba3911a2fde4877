// A fresh folder for the tests that work on real files, made through the Windows operations themselves so that the
// same test checks the Linux backend on the host build and the real calls under Wine in the win64 build; and the small
// helpers that those tests share.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/winapi.h"

// A new empty folder in the temporary folder, given in drive form ("Z:\tmp\kelmaro-1234-1" on Linux, Windows' own
// temporary folder under Wine). At the end the current folder is put back as it was (tests may enter the scratch
// folder), then everything in the folder is deleted.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;

  // The folder, or a path below it ("a\b"), without a trailing backslash.
  std::string Path(const std::string &relative = "") const { return relative.empty() ? path_ : *this / relative; }
  // The folder joined with a name, also an empty one ("C:\x\").
  std::string operator/(const std::string &name) const { return path_ + "\\" + name; }
#ifndef _WIN32
  // The folder as Linux names it.
  std::string LinuxPath() const { return native_.string(); }
#endif

  // Makes a file (CreateFileA, WriteFile) or a folder (CreateDirectoryA) by a relative name and gives its path; fails
  // the test if it cannot.
  std::string MakeFile(const std::string &name, const std::string &contents = "") const;
  std::string MakeFolder(const std::string &name) const;
  // Makes an empty file whose name is given in UTF-8, for names that Shift-JIS cannot hold: through the C++ library's
  // own path, which is wide on Windows.
  void MakeFileNamedInUtf8(const std::string &utf8Name) const;

 private:
  std::string path_;
  std::filesystem::path native_;  // the folder as the C++ library names it
  char saved_[MAX_PATH] = "";
};

// The names that FindFirstFileA and FindNextFileA give for a pattern, in their order; empty when the first call fails.
std::vector<std::string> ListNames(const std::string &pattern);
// One FindFirstFileA, its handle closed again. The record is pre-filled with 0xCC to prove that it was written.
struct FirstFound {
  bool found;
  DWORD error;  // the last error after the call (set to 0 before it)
  WIN32_FIND_DATAA data;
};
FirstFound FindFirst(const std::string &pattern);
// True when the tests run under Wine rather than on Windows or on Linux.
bool RunningUnderWine();
// Where Wine answers otherwise than Windows, a test names both answers: Windows' own, which the Linux backend gives,
// and Wine's. Neither check is loosened, and a change in either shows.
template <typename T>
T WindowsOrWine(T windows, T wine) {
  return RunningUnderWine() ? wine : windows;
}

// A writable 520-byte copy of a path, for the routines that edit their path in place.
struct PathBuffer {
  explicit PathBuffer(const std::string &text) { Set(text); }
  void Set(const std::string &text) { bytes[text.copy(bytes, sizeof bytes - 1)] = 0; }
  std::string Text() const { return bytes; }
  char bytes[520];
};
