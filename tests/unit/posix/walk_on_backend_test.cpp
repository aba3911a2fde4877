// The walker over the Linux backend where Windows cannot be made to behave so: a folder that refuses its listing,
// and a walk that starts at a drive root.
#include <gtest/gtest.h>

#include <string>

#include "platform/posix/files/testing.h"
#include "platform/testing.h"
#include "support/scratch_folder.h"
#include "walker/walk_context.h"

namespace {

std::string WalkWithFolders(const std::string &folder, unsigned *count) {
  PrepareWalk(nullptr, 3034, 3032, 0, 0, nullptr, nullptr, 0);
  TestConsoleBegin("");
  ScanFolderTree(nullptr, nullptr, kWalkShortcutTree, count, folder.c_str(), "*.lnk", nullptr);
  std::string output = TestConsoleOutput();
  TestConsoleEnd();
  PrepareWalk(nullptr, 0, 0, 0, 0, nullptr, nullptr, 0);
  return output;
}

TEST(WalkOnBackend, AFolderThatRefusesItsListingIsPrintedAndPassedOver) {
  ScratchFolder tree;
  for (const char *folder : {"a", "b", "b\\inner", "c"}) tree.MakeFolder(folder);
  for (const char *file : {"a\\x.lnk", "b\\inner\\y.lnk", "c\\z.lnk"}) tree.MakeFile(file);
  ASSERT_TRUE(TestFailListing(tree.Path("b").c_str(), ERROR_ACCESS_DENIED));
  unsigned count = 0;
  std::string output = WalkWithFolders(tree.Path(), &count);
  TestClearFaults();
  // Its line under p, nothing below it, and the walk goes on with the next sibling.
  EXPECT_EQ(output, "\n " + tree.Path() + "\n " + tree.Path("a") + "\n " + tree.Path("b") + "\n " + tree.Path("c"));
  EXPECT_EQ(count, 2u);
}

TEST(WalkOnBackend, ADriveRootKeepsItsBackslash) {
  ScratchFolder tree;
  tree.MakeFolder("sub");
  tree.MakeFile("top.lnk");
  tree.MakeFile("sub\\deep.lnk");
  TestSetDrives(("Q=" + tree.LinuxPath()).c_str());
  unsigned count = 0;
  std::string output = WalkWithFolders("Q:\\", &count);
  TestSetDrives(nullptr);
  // The patterns are Q:\*.lnk and Q:\*.*, the sub-folder Q:\sub, and stepping back gives Q:\ again.
  EXPECT_EQ(output, "\n Q:\\\n Q:\\sub");
  EXPECT_EQ(count, 2u);
}

}  // namespace
