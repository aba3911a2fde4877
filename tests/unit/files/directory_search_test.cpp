// Directory search: the error table, repaired names, and the life of one search handle.
#include "files/directory_search.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "reports/last_error.h"
#include "support/scratch_folder.h"
#include "support/test_share.h"

namespace {

TEST(MapLastError, Table) {
  struct Row {
    DWORD system;
    int runTime;
  } rows[] = {{0, 0},   {2, 2},    {3, 2},   {18, 2},   {123, 2},   {161, 2},          {4, 24},           {5, 13},
              {12, 13}, {6, 9},    {8, 12},  {14, 12},  {1130, 12}, {0x80030008u, 12}, {0x8007000Eu, 12}, {11, 8},
              {39, 28}, {112, 28}, {80, 17}, {183, 17}, {1, 22},    {87, 22}};
  for (const Row &row : rows) {
    SetKeptLastError(row.system);
    SetRunTimeError(-1);
    EXPECT_EQ(MapLastError(), row.runTime) << row.system;
    EXPECT_EQ(GetRunTimeError(), row.runTime) << row.system;
  }
  SetKeptLastError(0);
}

TEST(RepairFoundName, QuestionMarksBecomeUnderscores) {
  struct Row {
    const char *found, *repaired;
  } rows[] = {
      {"a?b", "a_b"},
      {"a??b", "a_?b"},  // the byte behind a repaired "?" is not looked at
      {"ab?", "ab_"},
      {"\x83\x3F.b", "\x83\x3F.b"},  // a double-byte character whose trail byte is 0x3F stays
  };
  for (const Row &row : rows) {
    char name[MAX_PATH] = "";
    std::strcpy(name, row.found);
    RepairFoundName(name);
    EXPECT_STREQ(name, row.repaired) << row.found;
  }
}

TEST(DirectorySearch, ListingsFromStartToEndAndFailedOnes) {
  ScratchFolder scratch;
  scratch.MakeFile("a.lnk");
  scratch.MakeFile("b.lnk");
  std::string pattern = scratch.Path("*.*");
  FindHandle handle = {nullptr, nullptr};
  FindRecord record;
  int status = FindFirstEntry(&handle, &pattern[0], &record), found = 0;
  for (; status == 0; status = FindNextEntry(&handle, &record)) ++found;
  EXPECT_EQ(found, 4) << "the dots too: the walker drops them (its tests check the names)";
  EXPECT_EQ(status, 1);
  // The end of a listing leaves no trace of an error, and the handle is closed already.
  EXPECT_EQ(GetKeptLastError(), 0u);
  EXPECT_EQ(GetRunTimeError(), 0);
  EXPECT_EQ(handle.SearchHandle, nullptr);
  // An open search is closed once.
  pattern = scratch.Path("*.lnk");
  ASSERT_EQ(FindFirstEntry(&handle, &pattern[0], &record), 0);
  EXPECT_STREQ(record.cFileName, "a.lnk");
  EXPECT_EQ(CloseFind(&handle), 1);
  EXPECT_EQ(CloseFind(&handle), 0);
  // An empty match and a missing folder: both are run-time error 2, told apart by the kept error.
  std::string noMatch = scratch.Path("*.txt"), noFolder = scratch.Path("gone\\*.lnk");
  EXPECT_EQ(FindFirstEntry(&handle, &noMatch[0], &record), 2);
  EXPECT_EQ(GetKeptLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(CloseFind(&handle), 0) << "a failed first call leaves nothing to close";
  EXPECT_EQ(FindFirstEntry(&handle, &noFolder[0], &record), 2);
  EXPECT_EQ(GetKeptLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
}

TEST(DirectorySearch, ExactFindOfOnePath) {
  ScratchFolder scratch;
  scratch.MakeFile("Mixed.Lnk", "12345");
  std::string path = scratch.Path("mixed.lnk"), missing = scratch.Path("nothing");
  FindRecord record;
  HANDLE handle = nullptr;
  ASSERT_EQ(FindFirstExact(&record, &path[0], &handle), 0);
  EXPECT_EQ(FoundEntrySize(&record), 5ull);
  ASSERT_NE(handle, nullptr);
  FindClose(handle);
  EXPECT_EQ(FindFirstExact(&record, &missing[0], &handle), 2);
  EXPECT_EQ(handle, nullptr);
  // A place of the network view is a folder by its own name, without a system call.
  char view[] = "\\:\\grp\\srv";
  ASSERT_EQ(FindFirstExact(&record, view, &handle), 0);
  EXPECT_STREQ(record.cFileName, "srv");
  EXPECT_EQ(record.dwFileAttributes, static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
  // The size joins the two halves.
  record.nFileSizeHigh = 1;
  record.nFileSizeLow = 2;
  EXPECT_EQ(FoundEntrySize(&record), 0x100000002ull);
}

// A pattern on a share that answers goes to the file system, in UNC form and in the network view's form alike, and
// the pattern's string is as it was when the call returns, though the view's was made real in place for the call.
TEST(DirectorySearch, ListingsOnAShare) {
  TestShare share;
  if (!share.Available()) GTEST_SKIP() << share.Why();
  share.MakeFile("a.lnk");
  share.MakeFolder("sub");
  share.MakeFile("sub\\b.lnk");
  const std::string view = "\\:\\WORKGROUP\\" + std::string(TestShare::Server()) + "\\" + share.Share();
  for (const std::string &pattern :
       {share.Unc("*.*"), share.Unc("sub\\*.lnk"), view + "\\*.*", view + "\\sub\\*.lnk"}) {
    PathBuffer buffer(pattern);
    FindHandle handle = {nullptr, nullptr};
    FindRecord record;
    std::vector<std::string> names;
    int status = FindFirstEntry(&handle, buffer.bytes, &record);
    EXPECT_EQ(buffer.Text(), pattern);
    for (; status == 0; status = FindNextEntry(&handle, &record)) names.push_back(record.cFileName);
    EXPECT_EQ(status, 1) << pattern;
    const std::vector<std::string> expected = pattern.find("\\sub\\") != std::string::npos
                                                  ? std::vector<std::string>{"b.lnk"}
                                                  : std::vector<std::string>{".", "..", "a.lnk", "sub"};
    EXPECT_EQ(names, expected) << pattern;
  }
}

}  // namespace
