// The codec against shortcuts that real Windows systems wrote (../shared/lnk-samples), and against lnkinfo, a reader
// that no one here wrote: what it read from each sample is committed in data/lnkinfo_fields.tsv
// (data/make_lnkinfo_table.py).
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "platform/posix/lnk/lnk_codec.h"
#include "platform/posix/lnk/lnk_text.h"
#include "platform/posix/text/path_names.h"

namespace {

namespace fs = std::filesystem;

const char *const kSamples = KELMARO_SHARED_SAMPLES;

std::string Utf8(const std::u16string &text) { return Utf16ToUtf8(text); }

std::vector<uint8_t> ReadBytes(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

#define SKIP_WITHOUT_SAMPLES()     \
  if (!fs::is_directory(kSamples)) \
  GTEST_SKIP() << "no shortcut samples at " << kSamples << " (the shared folder exists in CI only)"

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
  std::ifstream in(std::string(KELMARO_SOURCE_DIR) + "/tests/unit/posix/lnk/data/lnkinfo_fields.tsv");
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

}  // namespace
