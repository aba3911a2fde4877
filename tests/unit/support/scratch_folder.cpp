// The scratch folder of the tests that work on real files.
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#ifdef _WIN32
#include <wchar.h>
#else
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/drive_table.h"
#endif

namespace {

int counter = 0;

// Deletes everything below `folder`, then the folder. This does not go through the operations under test: a name
// that reads with "?" cannot be deleted through them, on Windows either.
#ifdef _WIN32
void RemoveTree(const std::wstring &folder) {
  WIN32_FIND_DATAW data;
  HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &data);
  if (search != INVALID_HANDLE_VALUE) {
    do {
      std::wstring name = data.cFileName;
      if (name == L"." || name == L"..") continue;
      std::wstring path = folder + L"\\" + name;
      SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
      if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) && !(data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT))
        RemoveTree(path);
      else if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
        RemoveDirectoryW(path.c_str());
      else
        DeleteFileW(path.c_str());
    } while (FindNextFileW(search, &data));
    FindClose(search);
  }
  RemoveDirectoryW(folder.c_str());
}

void RemoveTree(const std::string &folder) {
  wchar_t wide[MAX_PATH];
  if (MultiByteToWideChar(CP_ACP, 0, folder.c_str(), -1, wide, MAX_PATH) > 0) RemoveTree(std::wstring(wide));
}
#else
// Folders that a test made unwritable are opened up first; links are removed, never followed.
int OpenUp(const char *path, const struct stat *, int type, struct FTW *) {
  if (type == FTW_D) chmod(path, 0700);
  return 0;
}

int RemoveEntry(const char *path, const struct stat *, int, struct FTW *) {
  remove(path);
  return 0;
}

void RemoveTree(const std::string &linux) {
  nftw(linux.c_str(), OpenUp, 16, FTW_PHYS);
  nftw(linux.c_str(), RemoveEntry, 16, FTW_DEPTH | FTW_PHYS);
}
#endif

}  // namespace

ScratchFolder::ScratchFolder() { Create(); }

void ScratchFolder::Create() {
  GetCurrentDirectoryA(MAX_PATH, saved_);
  std::string base;
  unsigned long process;
#ifdef _WIN32
  char temp[MAX_PATH];
  DWORD length = GetTempPathA(sizeof temp, temp);
  base.assign(temp, length);
  if (!base.empty() && base.back() == '\\') base.pop_back();
  process = GetCurrentProcessId();
#else
  const char *tmp = std::getenv("TMPDIR");
  std::string linux = tmp && *tmp ? tmp : "/tmp";
  while (linux.size() > 1 && linux.back() == '/') linux.pop_back();
  ASSERT_TRUE(LinuxPathToDrivePath(linux, &base)) << "no drive holds " << linux;
  if (base.back() == '\\') base.pop_back();
  process = static_cast<unsigned long>(getpid());
#endif
  // Wine gives every run the same process id, so the time of day keeps runs apart.
  unsigned long stamp = static_cast<unsigned long>(std::time(nullptr) % 1000000);
  std::string name =
      "kelmaro-" + std::to_string(process) + "-" + std::to_string(stamp) + "-" + std::to_string(++counter);
  path_ = base + "\\" + name;
  ASSERT_TRUE(CreateDirectoryA(path_.c_str(), nullptr)) << path_ << " error " << GetLastError();
#ifndef _WIN32
  linux_ = linux + "/" + name;
#endif
}

ScratchFolder::~ScratchFolder() {
  SetCurrentDirectoryA(saved_);
#ifdef _WIN32
  if (!path_.empty()) RemoveTree(path_);
#else
  if (!linux_.empty()) RemoveTree(linux_);
#endif
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
#ifdef _WIN32
  wchar_t folder[MAX_PATH], name[MAX_PATH];
  ASSERT_GT(MultiByteToWideChar(CP_ACP, 0, path_.c_str(), -1, folder, MAX_PATH), 0);
  ASSERT_GT(MultiByteToWideChar(CP_UTF8, 0, utf8Name.c_str(), -1, name, MAX_PATH), 0);
  std::wstring path = std::wstring(folder) + L"\\" + name;
  FILE *file = _wfopen(path.c_str(), L"wb");
#else
  FILE *file = std::fopen((linux_ + "/" + utf8Name).c_str(), "wb");
#endif
  ASSERT_NE(file, nullptr) << utf8Name;
  std::fclose(file);
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

bool WineRunsAsRoot() {
  if (!RunningUnderWine()) return false;
  // Wine's Z: is the Linux root, so the process can read its own status there.
  HANDLE status =
      CreateFileA("Z:\\proc\\self\\status", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  if (status == INVALID_HANDLE_VALUE) return false;
  std::string text(4096, '\0');
  DWORD got = 0;
  ReadFile(status, &text[0], static_cast<DWORD>(text.size()), &got, nullptr);
  CloseHandle(status);
  text.resize(got);
  size_t uid = text.find("\nUid:");
  return uid != std::string::npos && std::strtoul(text.c_str() + uid + 5, nullptr, 10) == 0;
}

bool RunningUnderWine() {
#ifdef _WIN32
  HMODULE ntdll = GetModuleHandleA("ntdll.dll");
  return ntdll && GetProcAddress(ntdll, "wine_get_version") != nullptr;
#else
  return false;
#endif
}
