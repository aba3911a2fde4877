// The start of the unit tests on Linux: no Wine prefix of the machine reaches them. Where KELMARO_DRIVES is not set,
// the Linux backend takes its drives from the prefix that WINEPREFIX names or from ~/.wine; the tests expect the drive
// table of a machine without Wine (Z: alone), whoever runs them and however (by CTest or by hand). So the test program
// runs with an empty HOME of its own and without WINEPREFIX; a test that wants a prefix makes one and names it
// (posix/drive_table_test.cpp).
#ifndef _WIN32
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "platform/posix/files/drive_table.h"
#include "platform/posix/files/path_resolver.h"

namespace {

class NoWinePrefix : public ::testing::Environment {
 public:
  void SetUp() override {
    std::string folder = (std::filesystem::temp_directory_path() / "kelmaro-home-XXXXXX").string();
    if (mkdtemp(folder.data()) != nullptr) {
      home_ = folder;
    } else {
      ADD_FAILURE() << "no home folder for the tests could be made in " << folder;
    }
    // Without a folder of its own, a HOME that is not there holds no prefix either.
    setenv("HOME", home_.empty() ? "/nonexistent-kelmaro-home" : home_.c_str(), 1);
    unsetenv("WINEPREFIX");
    ReloadDriveTable();
    ForgetCurrentFolder();
  }
  void TearDown() override {
    std::error_code ignored;
    if (!home_.empty()) std::filesystem::remove_all(home_, ignored);
  }

 private:
  std::string home_;
};

::testing::Environment *const kNoWinePrefix = ::testing::AddGlobalTestEnvironment(new NoWinePrefix);

}  // namespace
#endif
