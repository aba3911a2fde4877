// A scratch folder tree for tests.
#include "support/scratch_tree.h"

#include <atomic>
#include <chrono>
#include <fstream>

#ifdef _WIN32
#include <windows.h>
#endif

namespace fs = std::filesystem;

namespace {

fs::path FromUtf8(const std::string &text) { return fs::u8path(text); }

// UTF-8 to Shift-JIS the way each platform spells it to the program.
std::string ToProgramCharset(const fs::path &path) {
#ifdef _WIN32
  std::wstring wide = path.wstring();
  int size = WideCharToMultiByte(932, 0, wide.c_str(), -1, nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<size_t>(size > 0 ? size - 1 : 0), '\0');
  if (size > 1) WideCharToMultiByte(932, 0, wide.c_str(), -1, &out[0], size, nullptr, nullptr);
  return out;
#else
  // The Linux program names this folder Z:\... and turns UTF-8 names into Shift-JIS; the tests here use ASCII.
  std::string text = path.string();
  std::string out = "Z:";
  for (char c : text) out += c == '/' ? '\\' : c;
  return out;
#endif
}

}  // namespace

ScratchTree::ScratchTree() {
  static std::atomic<unsigned> counter{0};
  auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
  root_ = fs::temp_directory_path() / ("kelmaro_unit_" + std::to_string(stamp) + "_" + std::to_string(counter++));
  fs::create_directories(root_);
}

ScratchTree::~ScratchTree() {
  std::error_code ignored;
  fs::remove_all(root_, ignored);
}

void ScratchTree::Folder(const std::string &relative) { fs::create_directories(root_ / FromUtf8(relative)); }

void ScratchTree::File(const std::string &relative, const std::string &content) {
  fs::path path = root_ / FromUtf8(relative);
  fs::create_directories(path.parent_path());
  std::ofstream out(path, std::ios::binary);
  out << content;
}

std::string ScratchTree::ProgramPath(const std::string &relative) const {
  fs::path path = relative.empty() ? root_ : root_ / FromUtf8(relative);
  return ToProgramCharset(path.make_preferred());
}
