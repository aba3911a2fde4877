// What the file service tests share: a scratch folder that also puts the current folder back before it goes (several
// tests enter it), and a writable 520-byte copy of a path for the routines that edit their path in place.
#pragma once

#include <algorithm>
#include <string>

#include "../platform/scratch_folder.h"
#include "platform/winapi.h"

class FileScratch {
 public:
  FileScratch() { GetCurrentDirectoryA(MAX_PATH, saved_); }
  // The body runs before the folder is removed, so that the folder is not the current one then.
  ~FileScratch() { SetCurrentDirectoryA(saved_); }
  FileScratch(const FileScratch &) = delete;
  FileScratch &operator=(const FileScratch &) = delete;

  // The scratch folder itself, or a path below it ("a\b").
  std::string Path(const std::string &relative = "") const {
    return relative.empty() ? folder_.Path() : folder_ / relative;
  }
  std::string MakeFolder(const std::string &relative) const {
    folder_.MakeFolder(relative);
    return Path(relative);
  }
  std::string MakeFile(const std::string &relative, const std::string &contents = "") const {
    folder_.MakeFile(relative, contents);
    return Path(relative);
  }

 private:
  char saved_[MAX_PATH] = "";
  ScratchFolder folder_;
};

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
