// What the tests of the Linux backend share: a scratch folder mapped as drive T:, a shell link object made as the
// engine makes it, and whole-file reads and writes.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/posix/files/testing.h"
#include "platform/winapi.h"
#include "support/scratch_folder.h"

inline std::vector<uint8_t> ReadBytes(const std::string &linuxPath) {
  std::ifstream in(linuxPath, std::ios::binary);
  return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

inline void WriteBytes(const std::string &linuxPath, const std::vector<uint8_t> &bytes) {
  std::ofstream out(linuxPath, std::ios::binary);
  out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

// A scratch folder as drive T: (Z: stays "/"), with COM initialised, for the life of the object. Forced failures
// end with it.
class ScratchDrive {
 public:
  ScratchDrive() {
    TestSetDrives(("T=" + folder_.LinuxPath()).c_str());
    CoInitialize(nullptr);
  }
  ~ScratchDrive() {
    TestClearFaults();
    CoUninitialize();
    TestSetDrives(nullptr);
  }
  // A name in the folder as Linux spells it.
  std::string Linux(const std::string &name = "") const {
    return folder_.LinuxPath() + (name.empty() ? "" : "/" + name);
  }

 private:
  ScratchFolder folder_;
};

// A new shell link object with its IPersistFile, both released at the end; given a path, loaded from it as the
// engine's reader does.
struct ShellLink {
  ShellLink() {
    EXPECT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                               reinterpret_cast<void **>(&link)),
              S_OK);
    if (link) {
      EXPECT_EQ(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void **>(&persist)), S_OK);
    }
  }
  explicit ShellLink(const wchar_t *path) : ShellLink() { EXPECT_EQ(persist->Load(path, 0), S_OK); }
  ~ShellLink() {
    if (persist) persist->Release();
    if (link) link->Release();
  }
  ShellLink(const ShellLink &) = delete;
  ShellLink &operator=(const ShellLink &) = delete;

  // A text field through its Get call, from a buffer pre-filled to prove that it was written.
  std::string Text(HRESULT (IShellLinkA::*get)(LPSTR, int)) const {
    char text[520] = "garbage";
    EXPECT_EQ((link->*get)(text, sizeof text), S_OK);
    return text;
  }
  std::string Icon(int *index) const {
    char text[520] = "garbage";
    EXPECT_EQ(link->GetIconLocation(text, sizeof text, index), S_OK);
    return text;
  }
  int Show() const {
    int show = -1;
    EXPECT_EQ(link->GetShowCmd(&show), S_OK);
    return show;
  }

  IShellLinkA *link = nullptr;
  IPersistFile *persist = nullptr;
};
