// A network share for the tests that need one, so that the network branches of the engine run against the build's own
// calls on both builds: a fresh folder that the file operations reach as "\\kelmaro-test\shareN". On Linux the share
// table maps it (and nothing else: the machine's mounts and gvfs folder are kept out); under Wine it is a folder in the
// prefix's dosdevices\unc, where Wine looks for "\\server\share". Windows itself cannot be given a share by a test:
// there the share is not available and the tests that need one skip.
#pragma once

#include <filesystem>
#include <string>

class TestShare {
 public:
  TestShare();
  ~TestShare();
  TestShare(const TestShare &) = delete;
  TestShare &operator=(const TestShare &) = delete;

  // Whether the share could be made; when not, Why() says why.
  bool Available() const { return !unc_.empty(); }
  const std::string &Why() const { return why_; }
  // The server's name ("kelmaro-test") and the share's ("share3").
  static const char *Server();
  const std::string &Share() const { return share_; }
  // The share, or a path below it ("a\b"): "\\kelmaro-test\share3\a\b", without a trailing backslash.
  std::string Unc(const std::string &relative = "") const;
  // The same place in drive form, reached without the network ("Z:\tmp\kelmaro-...\a\b").
  std::string Local(const std::string &relative = "") const;
  // Makes a file or a folder below the share, through its drive form; fails the test if it cannot.
  void MakeFile(const std::string &relative, const std::string &contents = "") const;
  void MakeFolder(const std::string &relative) const;

 private:
  std::string unc_;
  std::string local_;
  std::filesystem::path native_;  // the folder as the C++ library names it, for the clean-up
  std::string share_;
  std::string why_;
};
