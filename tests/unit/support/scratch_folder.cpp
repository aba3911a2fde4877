// The scratch folder of the tests that work on real files.
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <system_error>

#ifndef _WIN32
#include <unistd.h>

#include "platform/posix/files/drive_table.h"
#endif

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() {
  static int counter = 0;
  GetCurrentDirectoryA(MAX_PATH, saved_);
  std::string base;
#ifdef _WIN32
  char temp[MAX_PATH];
  base.assign(temp, GetTempPathA(sizeof temp, temp));
  unsigned long process = GetCurrentProcessId();
#else
  fs::path linux = fs::temp_directory_path();
  EXPECT_TRUE(LinuxPathToDrivePath(linux.string(), &base)) << "no drive holds " << linux;
  unsigned long process = static_cast<unsigned long>(getpid());
#endif
  if (!base.empty() && base.back() == '\\') base.pop_back();
  // Wine gives every run the same process id, so the time of day keeps runs apart.
  std::string name = "kelmaro-" + std::to_string(process) + "-" + std::to_string(std::time(nullptr) % 1000000) + "-" +
                     std::to_string(++counter);
  path_ = base + "\\" + name;
  if (!CreateDirectoryA(path_.c_str(), nullptr)) {
    ADD_FAILURE() << path_ << " error " << GetLastError();
    return;
  }
#ifdef _WIN32
  wchar_t wide[MAX_PATH];
  if (MultiByteToWideChar(CP_ACP, 0, path_.c_str(), -1, wide, MAX_PATH) > 0) native_ = wide;
#else
  native_ = linux / name;
#endif
}

// Everything is deleted without the operations under test (a name that reads with "?" cannot be deleted through them,
// on Windows either): read-only files and folders are opened up first, and links are removed, never followed.
ScratchFolder::~ScratchFolder() {
  SetCurrentDirectoryA(saved_);
  if (native_.empty()) return;
  std::error_code ignored;
  fs::permissions(native_, fs::perms::owner_all, fs::perm_options::add, ignored);
  for (fs::recursive_directory_iterator it(native_, ignored), end; it != end; it.increment(ignored))
    if (!it->is_symlink(ignored)) fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
  fs::remove_all(native_, ignored);
}

std::string ScratchFolder::MakeFile(const std::string &name, const std::string &contents) const {
  std::string path = Path(name);
  HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  EXPECT_NE(file, INVALID_HANDLE_VALUE) << path << " error " << GetLastError();
  DWORD written = 0;
  EXPECT_TRUE(WriteFile(file, contents.data(), static_cast<DWORD>(contents.size()), &written, nullptr));
  EXPECT_EQ(written, contents.size());
  EXPECT_TRUE(CloseHandle(file));
  return path;
}

std::string ScratchFolder::MakeFolder(const std::string &name) const {
  std::string path = Path(name);
  EXPECT_TRUE(CreateDirectoryA(path.c_str(), nullptr)) << path << " error " << GetLastError();
  return path;
}

void ScratchFolder::MakeFileNamedInUtf8(const std::string &utf8Name) const {
  // Without a folder the name alone would land in the working folder of the test run.
  if (native_.empty()) {
    ADD_FAILURE() << "no scratch folder for " << utf8Name;
    return;
  }
  std::ofstream file(native_ / fs::u8path(utf8Name));
  EXPECT_TRUE(file.is_open()) << utf8Name;
}

std::vector<std::string> ListNames(const std::string &pattern) {
  std::vector<std::string> names;
  WIN32_FIND_DATAA data;
  HANDLE search = FindFirstFileA(pattern.c_str(), &data);
  if (search == INVALID_HANDLE_VALUE) return names;
  do names.push_back(data.cFileName);
  while (FindNextFileA(search, &data));
  FindClose(search);
  return names;
}

FirstFound FindFirst(const std::string &pattern) {
  FirstFound result;
  std::memset(&result.data, 0xCC, sizeof result.data);
  SetLastError(0);
  HANDLE search = FindFirstFileA(pattern.c_str(), &result.data);
  result.error = GetLastError();
  result.found = search != INVALID_HANDLE_VALUE;
  if (result.found) FindClose(search);
  return result;
}

bool RunningUnderWine() {
#ifdef _WIN32
  HMODULE ntdll = GetModuleHandleA("ntdll.dll");
  return ntdll && GetProcAddress(ntdll, "wine_get_version") != nullptr;
#else
  return false;
#endif
}
