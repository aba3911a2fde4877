// The walker on real folder trees: which folders it reaches and in what order, what it counts, and how long the
// display options last.
#include <gtest/gtest.h>

#include <string>

#include "console/control_store.h"
#include "platform/testing.h"
#include "support/scratch_folder.h"
#include "walker/walk_context.h"

namespace {

struct WalkRun {
  int result;
  unsigned count;
  std::string output;
};

WalkRun Walk(const std::string &folder, const char *mask = "*.lnk", bool prepare = true) {
  if (prepare) PrepareWalk(nullptr, kIdFolderDisplay, kIdResultLine, 0, 0, nullptr, nullptr, 0);
  TestConsoleBegin("");
  unsigned count = 77;
  int result = ScanFolderTree(nullptr, nullptr, kWalkShortcutTree, &count, folder.c_str(), mask, nullptr);
  WalkRun run = {result, count, TestConsoleOutput()};
  TestConsoleEnd();
  return run;
}

// The folder order and what is printed are checked by the command-line tests (WalkOrder); here, what is counted.
TEST(Walk, ShortcutsCountedInEveryFolder) {
  ScratchFolder tree;
  for (const char *folder : {"sub", "x.lnk", "Zeta", "Zeta\\deeper"}) tree.MakeFolder(folder);
  for (const char *file : {"a.lnk", "notes.txt", "sub\\b.lnk", "x.lnk\\c.lnk", "Zeta\\deeper\\d.LNK"})
    tree.MakeFile(file);
  WalkRun run = Walk(tree.Path());
  EXPECT_EQ(run.count, 4u);  // a.lnk, b.lnk, c.lnk, d.LNK: a folder named like a shortcut is entered, not counted
  EXPECT_EQ(run.result, 4);  // a normal end gives the entries acted on
}

TEST(Walk, DisplayOptionsLastOneWalk) {
  ScratchFolder tree;
  tree.MakeFile("a.lnk");
  // Under p the folder is shown; an empty file is no shortcut that could change, so r adds no line.
  EXPECT_EQ(Walk(tree.Path()).output, "\n " + tree.Path());
  // A second walk without a new PrepareWalk prints nothing, and counts its own entries alone.
  WalkRun second = Walk(tree.Path(), "*.lnk", false);
  EXPECT_EQ(second.output, "");
  EXPECT_EQ(second.count, 1u);
}

TEST(Walk, EmptyMaskAndMissingFolder) {
  ScratchFolder tree;
  tree.MakeFile("a.lnk");
  WalkRun empty = Walk(tree.Path(), "");
  EXPECT_EQ(empty.result, 0);
  EXPECT_EQ(empty.count, 0u);
  EXPECT_EQ(empty.output, "");
  // A folder that is not there is printed under p and ends both passes silently.
  WalkRun missing = Walk(tree.Path("gone"));
  EXPECT_EQ(missing.output, "\n " + tree.Path("gone"));
  EXPECT_EQ(missing.count, 0u);
}

TEST(WalkCodes, AddAndTestOutcome) {
  struct Row {
    int oldCode, code, merged;
  } rows[] = {{-128, -2048, -2176}, {-2176, -128, -2176}, {-4096, 128, -4224}};  // magnitudes merged, not added
  for (const Row &row : rows)
    EXPECT_EQ(AddOutcome(row.oldCode, row.code), row.merged) << row.oldCode << "," << row.code;
  EXPECT_EQ(TestOutcome(-2176, -2048), 1);
  EXPECT_EQ(TestOutcome(-2176, -4096), 0);
  EXPECT_EQ(TestOutcome(-2176, -2176), 1);
}

}  // namespace
