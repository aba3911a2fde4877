// Our reader against shortcuts that real Windows systems wrote (../shared/lnk-samples), and against lnkinfo, a reader
// that no one here wrote: what it read from each sample is committed in data/lnkinfo_fields.tsv
// (data/make_lnkinfo_table.py), and it reads what our writer writes when it is installed.
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "platform/posix/drive_table.h"
#include "platform/posix/lnk_codec.h"
#include "platform/posix/lnk_text.h"
#include "platform/posix/path_names.h"
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
TEST(LnkSamples, EveryFileLoadsOrFailsCleanly) {
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

// One row of the committed table.
struct LnkinfoRow {
  std::string file;
  uint32_t show = 0;
  uint16_t hotkey = 0;
  std::map<std::string, std::string> field;  // local, network, env, desc, rel, workdir, args, icon
};

std::string Unescape(const std::string &text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '^' && i + 2 < text.size()) {
      out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

std::vector<LnkinfoRow> LnkinfoTable() {
  static const char *const kColumns[] = {"local", "network", "env", "desc", "rel", "workdir", "args", "icon"};
  std::ifstream in(std::string(KELMARO_SOURCE_DIR) + "/tests/unit/posix/data/lnkinfo_fields.tsv");
  std::vector<LnkinfoRow> rows;
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> cells;
    std::stringstream stream(line);
    std::string cell;
    while (std::getline(stream, cell, '\t')) cells.push_back(cell);
    cells.resize(11);
    LnkinfoRow row;
    row.file = cells[0];
    row.show = static_cast<uint32_t>(std::stoul(cells[1]));
    row.hotkey = static_cast<uint16_t>(std::stoul(cells[2]));
    for (int i = 0; i < 8; ++i) row.field[kColumns[i]] = Unescape(cells[3 + i]);
    rows.push_back(row);
  }
  return rows;
}

// lnkinfo gives U+FFFD for bytes that are no character of the code page; our conversion gives '?', as Windows does.
std::string Normalised(std::string text) {
  const std::string replacement = "\xEF\xBF\xBD";
  for (size_t at = text.find(replacement); at != std::string::npos; at = text.find(replacement, at))
    text.replace(at, replacement.size(), "?");
  return text;
}

// Where we read a sample differently from lnkinfo, and why we keep our reading.
const std::map<std::pair<std::string, std::string>, const char *> kDisagreements = {
    // U+1F370 is stored as a surrogate pair; lnkinfo decodes the pair to U+1EF71.
    {{"pylnk/local_emoji.lnk", "rel"}, "lnkinfo decodes a surrogate pair wrongly"},
    {{"pylnk/local_emoji.lnk", "local"}, "lnkinfo decodes a surrogate pair wrongly"},
    {{"pylnk/diacritic_symbols.lnk", "local"}, "lnkinfo decodes a surrogate pair wrongly"},
    // ANSI paths from other code pages hold 0xA0 (sample5) and 0xFD (sample6), which code page 932 defines as single
    // characters (U+F8F0, U+F8F1 on Windows); lnkinfo takes them for lead bytes and swallows the byte behind, a
    // backslash in sample5.
    {{"lnkparse3/sample5.lnk", "local"}, "lnkinfo reads 0xA0 as a lead byte"},
    {{"lnkparse3/sample6.lnk", "local"}, "lnkinfo reads 0xFD as a lead byte"},
    // The path ends in 0xA0: U+F8F0 for Windows and for us, U+FFFD for lnkinfo.
    {{"lnkparse3/invalid_date3.lnk", "local"}, "lnkinfo has no character for 0xA0"},
};

TEST(LnkSamples, AgreeWithLnkinfo) {
  SKIP_WITHOUT_SAMPLES();
  std::vector<LnkinfoRow> table = LnkinfoTable();
  ASSERT_GE(table.size(), 1088u);
  size_t compared = 0, targets = 0;
  for (const LnkinfoRow &row : table) {
    std::vector<uint8_t> bytes = ReadBytes(std::string(kSamples) + "/" + row.file);
    ShellLinkRecord record;
    ASSERT_EQ(ParseShellLink(ByteSpan{bytes.data(), bytes.size()}, &record), LnkError::kNone) << row.file;
    // lnkinfo shows the icon environment block's text as the icon location, when there is one.
    std::u16string icon =
        record.extra.hasIconEnvironment ? record.extra.iconEnvironmentTarget : record.strings.iconLocation;
    std::map<std::string, std::u16string> ours = {
        {"local", record.hasLinkInfo ? LinkInfoLocalPath(record.linkInfo) : u""},
        {"network", record.hasLinkInfo ? LinkInfoNetworkPath(record.linkInfo, false) : u""},
        {"env", record.extra.environmentTarget},
        {"desc", record.strings.description},
        {"rel", record.strings.relativePath},
        {"workdir", record.strings.workingDir},
        {"args", record.strings.arguments},
        {"icon", icon},
    };
    for (const auto &field : ours) {
      if (kDisagreements.count({row.file, field.first})) continue;
      EXPECT_EQ(Normalised(Utf8(field.second)), Normalised(row.field.at(field.first)))
          << row.file << ": " << field.first;
      ++compared;
    }
    EXPECT_EQ(record.header.showCommand, row.show) << row.file;
    EXPECT_EQ(record.header.hotKey, row.hotkey) << row.file;
    // The target that GetPath gives with SLGP_UNCPRIORITY, where no variable is set: the share, else the local
    // path, else (when the ID list places no path, which lnkinfo does not read) the environment text.
    const std::string &network = row.field.at("network"), &local = row.field.at("local"), &env = row.field.at("env");
    std::u16string fromIdList;
    bool idListPath = record.hasIdList && IdListPath(record.idList, &fromIdList);
    std::string expected = !network.empty() ? network : !local.empty() ? local : idListPath ? "" : env;
    if (!expected.empty() && !kDisagreements.count({row.file, "local"})) {
      EnvironmentLookup none = [](const std::u16string &, std::u16string *) { return false; };
      EXPECT_EQ(Normalised(Utf8(SelectTargetPath(record, true, false, none))), Normalised(expected)) << row.file;
      ++targets;
    }
  }
  EXPECT_GE(compared, 8 * 1088u - kDisagreements.size());
  EXPECT_GE(targets, 850u);
}

// lnkinfo reads no ID list: where the lists of these files lead, as their LinkInfo says too. Their file entries have
// extension blocks of versions 3, 8 and 9; the share's name is right only in the UTF-16 copy of its item.
TEST(LnkSamples, IdListsLeadWhereWindowsPutThem) {
  SKIP_WITHOUT_SAMPLES();
  struct Row {
    const char *file, *path;  // nullptr: a list that we cannot place
  } rows[] = {
      {"ez/WinXP/Notepad.lnk", "C:\\WINDOWS\\system32\\notepad.exe"},
      {"ez/Misc/native.seven.01.test", "C:\\Program Files\\ConTEXT\\ConTEXT.exe"},
      {"ez/Win10/$R9HN8HZ.lnk", "C:\\xwf18.6\\winhex64.exe"},
      {"ez/Misc/remote.file.xp.test",
       u8"\\\\als-fichiers3\\Qualité\\Archives\\Méthodologie WAS\\Norme de développement JAVA.doc"},
      {"pylnk/mounted_folder1_file1.lnk", "Z:\\Downloads\\folder1\\file1.txt"},
      {"ez/Win10/ms-settingsnetwork-wifi.lnk.test", nullptr},
      // The Desktop by its class id, whose bytes hold a ':' where a drive item has its own.
      {"ez/Win10/Book2.xlsx.lnk.test", nullptr},
  };
  for (const Row &row : rows) {
    std::vector<uint8_t> bytes = ReadBytes(std::string(kSamples) + "/" + row.file);
    ShellLinkRecord record;
    ASSERT_EQ(ParseShellLink(ByteSpan{bytes.data(), bytes.size()}, &record), LnkError::kNone) << row.file;
    std::u16string path;
    EXPECT_EQ(record.hasIdList && IdListPath(record.idList, &path), row.path != nullptr) << row.file;
    EXPECT_EQ(Utf8(path), row.path ? row.path : "") << row.file;
  }
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

TEST(LnkSamples, LnkinfoReadsWhatWeWrite) {
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
