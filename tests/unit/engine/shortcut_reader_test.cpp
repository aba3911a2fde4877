// The shortcut reader on shortcuts that the engine's own writer made: the status bits that tell what was found and
// what is missing, and the fields it delivers. Run as processing runs it: no resolving, no message.
#include "engine/shortcut_reader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "engine/shortcut_writer.h"
#include "support/scratch_folder.h"

namespace {

struct Read {
  unsigned status;
  std::string path, arguments, icon, description;
  int showCmd;
};

Read ReadAt(const std::string &path) {
  Read read;
  char text[520], arguments[520] = "x", icon[520] = "x", description[520] = "";
  std::snprintf(text, sizeof text, "%s", path.c_str());
  int iconIndex = 0;
  read.showCmd = 0;
  read.status =
      ReadShortcut(nullptr, text, arguments, icon, description, &read.showCmd, &iconIndex, kReadModeProcessing);
  read.path = text;
  read.arguments = arguments;
  read.icon = icon;
  read.description = description;
  return read;
}

class ShortcutReader : public ::testing::Test {
 protected:
  void SetUp() override {
    CoInitialize(nullptr);
    SetSkipResolve(1);
    SetQuietReader(1);
    program_ = scratch_.MakeFile("prog.exe", "MZ");
    folder_ = scratch_.MakeFolder("work");
  }
  void TearDown() override {
    ReleaseKeptTexts();
    CoUninitialize();
  }
  // A shortcut "name.lnk" in the scratch folder, written by the engine's writer.
  std::string Make(const std::string &target, const std::string &folder, const std::string &icon,
                   const std::string &name = "link.lnk") {
    std::string path = scratch_ / name;
    EXPECT_EQ(WriteShortcut(nullptr, path.c_str(), target.c_str(), "", folder.c_str(), icon.c_str(), "", 1, 0), 0u)
        << target;
    return path;
  }

  ScratchFolder scratch_;
  std::string program_, folder_;
};

// What is there decides the bits; a missing target comes back as stored, classed by the shape of its text.
TEST_F(ShortcutReader, StatusBitsSayWhatWasFound) {
  const std::string gone = scratch_ / "gone.exe";
  const std::string noDrive = "Q:\\x.exe";  // Q: is mapped neither by a default Wine prefix nor by the drive table
  struct Row {
    const char *what;
    std::string target, folder, icon;
    unsigned status;
    std::string path;  // what the path comes back as
  } rows[] = {
      {"a file", program_, folder_, program_, kReadTargetFile, program_},
      {"a folder", folder_, folder_, program_, kReadTargetFolder, folder_},
      {"a missing file", gone, folder_, program_, kReadTargetMissing | kReadMissingFileShape, gone},
      {"a missing folder", scratch_ / "gone", folder_, program_, kReadTargetMissing | kReadMissingFolderShape,
       scratch_ / "gone"},
      {"a target on a drive that is not there", noDrive, folder_, program_,
       kReadTargetMissing | kReadMissingDrive | kReadMissingDriveShape, noDrive},
      {"a working folder that is not there", program_, scratch_ / "nowhere", program_,
       kReadTargetFile | kReadFolderMissing, program_},
      // A missing icon file sets its bit and drops every bit found before it.
      {"an icon file that is not there", program_, folder_, scratch_ / "gone.ico", kReadIconMissing | kReadTargetFile,
       program_},
      // Without an icon the writer stores the target as the icon: a missing target then makes a missing icon.
      {"no icon and a missing target", gone, folder_, "", kReadIconMissing | kReadTargetMissing | kReadMissingFileShape,
       gone},
  };
  for (const Row &row : rows) {
    Read read = ReadAt(Make(row.target, row.folder, row.icon));
    EXPECT_EQ(read.status, row.status) << row.what;
    EXPECT_EQ(read.path, row.path) << row.what;
    EXPECT_LT(read.status, kReadUnreadable) << row.what;
  }
}

TEST_F(ShortcutReader, FilesThatAreNoShortcuts) {
  std::string text = scratch_.MakeFile("notes.txt", "text");
  std::string empty = scratch_.MakeFile("empty.lnk");
  std::string garbage = scratch_.MakeFile("garbage.lnk", "not a shortcut at all");
  struct Row {
    std::string path;
    unsigned status;
  } rows[] = {
      {text, kReadNoShortcut},
      {scratch_ / "noextension", kReadNoShortcut},
      {scratch_ / "absent.lnk", kReadLoadFailed},
      {empty, kReadLoadFailed},
      {garbage, kReadLoadFailed},
  };
  for (const Row &row : rows) {
    Read read = ReadAt(row.path);
    EXPECT_EQ(read.status, row.status) << row.path;
    EXPECT_EQ(read.path, row.path) << "the path stays the file's own";
    EXPECT_EQ(read.arguments, "") << "cleared at the start";
    EXPECT_EQ(read.icon, "") << "cleared at the start";
  }
}

TEST_F(ShortcutReader, DeliversTheFieldsAndTakesAnyCaseOfTheExtension) {
  std::string path = scratch_ / "FIELDS.LNK";
  ASSERT_EQ(WriteShortcut(nullptr, path.c_str(), program_.c_str(), "-a \"b c\"", folder_.c_str(), program_.c_str(),
                          "what it does", 3, 0),
            0u);
  Read read = ReadAt(path);
  EXPECT_EQ(read.status, kReadTargetFile);
  EXPECT_EQ(read.path, program_);
  EXPECT_EQ(read.arguments, "-a \"b c\"");
  EXPECT_EQ(read.icon, program_);
  EXPECT_EQ(read.description, "what it does");
  // Wine's shell link object reads every show command back as a normal window.
  EXPECT_EQ(read.showCmd, WindowsOrWine(3, 1));
  // The working folder is kept for processing, in the disk's spelling.
  EXPECT_EQ(std::string(KeptText(0)), folder_);
}

}  // namespace
