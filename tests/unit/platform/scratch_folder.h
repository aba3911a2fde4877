// A fresh folder for the file-system tests that run on both platforms, made through the Windows operations themselves
// so that the same test checks the Linux backend on the host build and the real calls under Wine in the win64 build;
// and the small helpers that those tests share.
#pragma once

#include <string>
#include <vector>

#include "platform/winapi.h"

// A new empty folder in the temporary folder, given in drive form ("Z:\tmp\kelmaro-1234-1" on Linux, Windows' own
// temporary folder under Wine). Everything in it is deleted at the end of the test.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;

  // The folder, without a trailing backslash.
  const std::string &Path() const { return path_; }
  // The folder joined with a relative name ("a\b").
  std::string operator/(const std::string &name) const { return path_ + "\\" + name; }

  // Makes a file (CreateFileA, WriteFile) or a folder (CreateDirectoryA) by a relative name; fails the test if it
  // cannot.
  void MakeFile(const std::string &name, const std::string &contents = "") const;
  void MakeFolder(const std::string &name) const;
  // Makes an empty file whose name is given in UTF-8, for names that Shift-JIS cannot hold: with the C library on
  // Linux and with the wide-character calls on Windows.
  void MakeFileNamedInUtf8(const std::string &utf8Name) const;

 private:
  void Create();
  std::string path_;
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
// The bytes of a text, in hexadecimal, for failure messages about Shift-JIS names.
std::string Hex(const std::string &text);
// True when the tests run under Wine rather than on Windows or on Linux.
bool RunningUnderWine();
// True under Wine when it runs as root, which lets Linux permissions allow what Windows would refuse.
bool WineRunsAsRoot();
// Where Wine answers otherwise than Windows, a test names both answers: Windows' own, which the Linux backend gives,
// and Wine's. Neither check is loosened, and a change in either shows.
template <typename T>
T WindowsOrWine(T windows, T wine) {
  return RunningUnderWine() ? wine : windows;
}
