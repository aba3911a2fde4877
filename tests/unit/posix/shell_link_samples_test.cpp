// The shell link object of the Linux backend over shortcuts that real Windows systems wrote (../shared/lnk-samples),
// and lnkinfo, a reader that no one here wrote, over what the object writes when lnkinfo is installed.
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "platform/posix/files/drive_table.h"
#include "platform/posix/lnk/lnk_text.h"
#include "platform/posix/text/path_names.h"
#include "scratch_drive.h"

namespace {

namespace fs = std::filesystem;

const char *const kSamples = KELMARO_SHARED_SAMPLES;

std::string Utf8(const std::u16string &text) { return Utf16ToUtf8(text); }

// The sample files, by their path below the samples folder, licences and notes left out.
std::vector<std::string> SampleFiles() {
  std::vector<std::string> files;
  for (const fs::directory_entry &entry : fs::recursive_directory_iterator(kSamples)) {
    std::string name = entry.path().filename().string();
    if (!entry.is_regular_file() || name == "LICENSE" || name == "README.md" || name == "metadata.txt") continue;
    files.push_back(fs::relative(entry.path(), kSamples).string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

#define SKIP_WITHOUT_SAMPLES()     \
  if (!fs::is_directory(kSamples)) \
  GTEST_SKIP() << "no shortcut samples at " << kSamples << " (the shared folder exists in CI only)"

// Every sample goes through the shell link object as the engine calls it; under the sanitizers this proves that no
// file makes the reader leave its buffer or leak. The ones that fail to load are exactly those that are damaged.
TEST(ShellLinkSamples, EveryFileLoadsOrFailsCleanly) {
  SKIP_WITHOUT_SAMPLES();
  // A sample is loaded where it is, through Z:, or, when its path is not plain ASCII (some have no Shift-JIS form), as
  // a copy named T:\\sample.lnk.
  ScratchDrive drive;
  std::set<std::string> failed;
  size_t loaded = 0;
  for (const std::string &file : SampleFiles()) {
    ShellLink o;
    std::string path = std::string(kSamples) + "/" + file, drivePath;
    std::wstring wide = L"T:\\sample.lnk";
    if (LinuxPathToDrivePath(path, &drivePath) &&
        std::all_of(drivePath.begin(), drivePath.end(), [](char c) { return c > 0 && c < 0x7F; }))
      wide.assign(drivePath.begin(), drivePath.end());
    else
      fs::copy_file(path, drive.Linux("sample.lnk"), fs::copy_options::overwrite_existing);
    if (o.persist->Load(wide.c_str(), 0) != S_OK) {
      failed.insert(file);
      continue;
    }
    ++loaded;
    char text[520];
    WIN32_FIND_DATAA find;
    int number = 0;
    WORD hotkey = 0;
    o.link->GetPath(text, sizeof text, &find, SLGP_UNCPRIORITY);
    o.link->GetPath(text, sizeof text, &find, SLGP_RAWPATH);
    o.link->GetArguments(text, sizeof text);
    o.link->GetWorkingDirectory(text, sizeof text);
    o.link->GetDescription(text, sizeof text);
    o.link->GetIconLocation(text, sizeof text, &number);
    o.link->GetShowCmd(&number);
    o.link->GetHotkey(&hotkey);
  }
  // Two files that are no shortcut, and one whose string counts overlap so that the last string runs past the end.
  std::set<std::string> expected = {"ez/Bad/$I2GXWHL.lnk", "ez/Bad/$I2GXWHL.test",
                                    "lnkparse3/padded_cli_arguments.lnk"};
  EXPECT_EQ(failed, expected);
  EXPECT_GE(loaded, 1089u);
}

// Runs lnkinfo on a file; its standard output, or nothing when it fails.
bool RunLnkinfo(const std::string &path, std::string *output) {
  std::string command = "lnkinfo -c windows-932 '" + path + "' 2>/dev/null";
  FILE *pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return false;
  char buffer[4096];
  size_t got;
  output->clear();
  while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0) output->append(buffer, got);
  int status = pclose(pipe);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string LnkinfoField(const std::string &output, const std::string &label) {
  size_t at = output.find("\t" + label + "\t");
  if (at == std::string::npos) return std::string();
  size_t colon = output.find(": ", at);
  size_t end = output.find('\n', colon);
  return output.substr(colon + 2, end - colon - 2);
}

TEST(ShellLinkSamples, LnkinfoReadsWhatWeWrite) {
  if (system("lnkinfo -V >/dev/null 2>&1") != 0) GTEST_SKIP() << "lnkinfo is not installed (package liblnk-utils)";
  ScratchDrive drive;
  struct Row {
    const char *target, *args, *workdir, *icon, *desc;
    const char *local, *network;  // what lnkinfo must find, UTF-8
  } rows[] = {
      {"T:\\Program Files\\app.exe", "-x \"a b\"", "T:\\Program Files", "T:\\icons\\i.dll", "An app",
       "T:\\Program Files\\app.exe", ""},
      {"T:\\表\\予定.txt", "/表", "T:\\表", "T:\\表\\予定.txt", "説明", u8"T:\\表\\予定.txt", ""},
      {"\\\\server\\share\\dir\\f.txt", "", "\\\\server\\share", "", "", "", "\\\\server\\share\\dir\\f.txt"},
  };
  for (const Row &row : rows) {
    {
      ShellLink o;
      o.link->SetIconLocation(*row.icon ? row.icon : row.target, 0);
      o.link->SetPath(row.target);
      o.link->SetArguments(row.args);
      o.link->SetDescription(row.desc);
      o.link->SetWorkingDirectory(row.workdir);
      ASSERT_EQ(o.persist->Save(L"T:\\written.lnk", TRUE), S_OK) << row.target;
    }
    std::string output;
    ASSERT_TRUE(RunLnkinfo(drive.Linux("written.lnk"), &output)) << row.target;
    EXPECT_EQ(LnkinfoField(output, "Local path"), row.local) << output;
    EXPECT_EQ(LnkinfoField(output, "Network path"), row.network) << output;
    EXPECT_EQ(LnkinfoField(output, "Command line arguments"), Utf8(Utf16FromCp932(row.args))) << output;
    EXPECT_EQ(LnkinfoField(output, "Working directory"), Utf8(Utf16FromCp932(row.workdir))) << output;
    EXPECT_EQ(LnkinfoField(output, "Description"), Utf8(Utf16FromCp932(row.desc))) << output;
    EXPECT_EQ(LnkinfoField(output, "Icon location"), Utf8(Utf16FromCp932(*row.icon ? row.icon : row.target))) << output;
    // A drive path gets an ID list; a UNC path none, as Windows writes it.
    EXPECT_EQ(output.find("Number of items") != std::string::npos, *row.local != 0) << output;
  }
}

}  // namespace
