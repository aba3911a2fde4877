// The network share of the tests.
#include "support/test_share.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <system_error>

#include "platform/winapi.h"

#ifndef _WIN32
#include <unistd.h>

#include "platform/posix/files/drive_table.h"
#include "platform/posix/testing.h"
#endif

namespace fs = std::filesystem;

namespace {

// A name that no other share of this run, or of an earlier run, has had: Wine gives every run the same process id, so
// the time of day keeps runs apart.
std::string NewShareName() {
  static int counter = 0;
#ifdef _WIN32
  unsigned long process = GetCurrentProcessId();
#else
  unsigned long process = static_cast<unsigned long>(getpid());
#endif
  return "share" + std::to_string(process) + "-" + std::to_string(std::time(nullptr) % 1000000) + "-" +
         std::to_string(++counter);
}

#ifdef _WIN32
void MakeWholePath(const std::string &path) {
  // Each folder on the way; those that are there already refuse, which is what is wanted.
  for (size_t slash = path.find('\\', 3); slash != std::string::npos; slash = path.find('\\', slash + 1))
    CreateDirectoryA(path.substr(0, slash).c_str(), nullptr);
  CreateDirectoryA(path.c_str(), nullptr);
}
#endif

}  // namespace

const char *TestShare::Server() { return "kelmaro-test"; }

TestShare::TestShare() : share_(NewShareName()) {
#ifdef _WIN32
  char prefix[MAX_PATH];
  DWORD length = GetEnvironmentVariableA("WINEPREFIX", prefix, sizeof prefix);
  if (length == 0 || length >= sizeof prefix || prefix[0] != '/') {
    why_ = "no share can be made on Windows itself: only Wine maps \\\\server\\share to a folder of its prefix";
    return;
  }
  // Wine's drive Z: is the Linux root.
  std::string folder = std::string("Z:") + prefix + "/dosdevices/unc/" + Server() + "/" + share_;
  for (char &c : folder)
    if (c == '/') c = '\\';
  MakeWholePath(folder);
  if (GetFileAttributesA(folder.c_str()) == INVALID_FILE_ATTRIBUTES) {
    why_ = "the share's folder " + folder + " could not be made";
    return;
  }
  local_ = folder;
  wchar_t wide[MAX_PATH];
  if (MultiByteToWideChar(CP_ACP, 0, folder.c_str(), -1, wide, MAX_PATH) > 0) native_ = wide;
#else
  fs::path linux = fs::temp_directory_path() / ("kelmaro-" + share_);
  std::error_code error;
  fs::create_directory(linux, error);
  if (error || !LinuxPathToDrivePath(linux.string(), &local_)) {
    why_ = "the share's folder " + linux.string() + " could not be made";
    local_.clear();
    return;
  }
  native_ = linux;
  std::string shares = std::string("\\\\") + Server() + "\\" + share_ + "=" + linux.string();
  // Only this share: the machine's own mounts and gvfs folder stay out of the tests.
  TestSetShares(shares.c_str());
  TestSetMountTable("");
  TestSetRuntimeFolder(linux.c_str());
#endif
  unc_ = std::string("\\\\") + Server() + "\\" + share_;
}

TestShare::~TestShare() {
#ifndef _WIN32
  TestSetShares(nullptr);
  TestSetMountTable(nullptr);
  TestSetRuntimeFolder(nullptr);
#endif
  if (native_.empty()) return;
  std::error_code ignored;
  fs::remove_all(native_, ignored);
}

std::string TestShare::Unc(const std::string &relative) const {
  return relative.empty() ? unc_ : unc_ + "\\" + relative;
}

std::string TestShare::Local(const std::string &relative) const {
  return relative.empty() ? local_ : local_ + "\\" + relative;
}

void TestShare::MakeFile(const std::string &relative, const std::string &contents) const {
  std::string path = Local(relative);
  HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE) << path << " error " << GetLastError();
  DWORD written = 0;
  EXPECT_TRUE(WriteFile(file, contents.data(), static_cast<DWORD>(contents.size()), &written, nullptr));
  EXPECT_TRUE(CloseHandle(file));
}

void TestShare::MakeFolder(const std::string &relative) const {
  std::string path = Local(relative);
  EXPECT_TRUE(CreateDirectoryA(path.c_str(), nullptr)) << path << " error " << GetLastError();
}
