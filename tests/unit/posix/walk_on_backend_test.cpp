// The walker over the Linux backend where Windows cannot be made to behave so: a folder that refuses its listing,
// and a walk that starts at a drive root.
#include <gtest/gtest.h>

#include <string>

#include "platform/posix/testing.h"
#include "platform/testing.h"
#include "support/scratch_tree.h"
#include "walker/walk_context.h"

namespace {

std::string WalkWithFolders(const std::string &folder, unsigned *count) {
  PrepareWalk(nullptr, 3034, 3032, 0, 0, nullptr, nullptr, 0);
  TestConsoleBegin("");
  ScanFolderTree(nullptr, nullptr, 0x48, count, folder.c_str(), "*.lnk", nullptr);
  std::string output = TestConsoleOutput();
  TestConsoleEnd();
  PrepareWalk(nullptr, 0, 0, 0, 0, nullptr, nullptr, 0);
  return output;
}

TEST(WalkOnBackend, AFolderThatRefusesItsListingIsPrintedAndPassedOver) {
  ScratchTree tree;
  tree.File("a/x.lnk");
  tree.File("b/inner/y.lnk");
  tree.File("c/z.lnk");
  ASSERT_TRUE(TestFailListing(tree.ProgramPath("b").c_str(), ERROR_ACCESS_DENIED));
  unsigned count = 0;
  std::string output = WalkWithFolders(tree.ProgramPath(), &count);
  TestClearFaults();
  // Its line under p, nothing below it, and the walk goes on with the next sibling.
  EXPECT_EQ(output, "\n " + tree.ProgramPath() + "\n " + tree.ProgramPath("a") + "\n " + tree.ProgramPath("b") + "\n " +
                        tree.ProgramPath("c"));
  EXPECT_EQ(count, 2u);
}

TEST(WalkOnBackend, ADriveRootKeepsItsBackslash) {
  ScratchTree tree;
  tree.File("top.lnk");
  tree.File("sub/deep.lnk");
  TestSetDrives(("Q=" + tree.Root().string()).c_str());
  unsigned count = 0;
  std::string output = WalkWithFolders("Q:\\", &count);
  TestSetDrives(nullptr);
  // The patterns are Q:\*.lnk and Q:\*.*, the sub-folder Q:\sub, and stepping back gives Q:\ again.
  EXPECT_EQ(output, "\n Q:\\\n Q:\\sub");
  EXPECT_EQ(count, 2u);
}

}  // namespace
