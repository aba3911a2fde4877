// A scratch folder tree for tests that walk real folders, made with the C++ library, and named the way the program
// sees it: the native path on Windows, the drive form ("Z:\tmp\...") on Linux.
#pragma once

#include <filesystem>
#include <string>

class ScratchTree {
 public:
  ScratchTree();
  ~ScratchTree();
  ScratchTree(const ScratchTree &) = delete;
  ScratchTree &operator=(const ScratchTree &) = delete;

  // Creates a folder or an empty file below the root; `relative` uses "/" and is UTF-8.
  void Folder(const std::string &relative);
  void File(const std::string &relative, const std::string &content = "");
  // The path of `relative` (or of the root) as the program spells it, in Shift-JIS.
  std::string ProgramPath(const std::string &relative = "") const;
  const std::filesystem::path &Root() const { return root_; }

 private:
  std::filesystem::path root_;
};
