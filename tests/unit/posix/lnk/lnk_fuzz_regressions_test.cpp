// The inputs on which the fuzz target (fuzz/lnk_fuzz.cpp) failed, each kept as the file it wrote (data/fuzz/), and the
// property it broke: a shortcut saved as it was loaded reads the same. The fuzz target checks it through the shell
// link object; here the codec's own readings of the record stand for the object's getters.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/posix/lnk/lnk_codec.h"
#include "platform/posix/text/path_names.h"

namespace {

std::vector<uint8_t> ReadBytes(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// The names the fuzz runs set (fuzz/run-fuzz), so that %NAME% expands here as it did there.
bool Lookup(const std::u16string &name, std::u16string *value) {
  if (name == u"windir" || name == u"SystemRoot") {
    *value = u"C:\\Windows";
    return true;
  }
  return false;
}

// What the engine reads of a record, as text.
std::string Readings(const ShellLinkRecord &r) {
  std::string out;
  const bool flags[][2] = {{true, false}, {false, false}, {false, true}};  // UNC priority, raw
  for (const auto &f : flags) out += "path=" + Utf16ToUtf8(SelectTargetPath(r, f[0], f[1], Lookup)) + "\n";
  out += "icon=" + Utf16ToUtf8(SelectIconLocation(r, Lookup)) + " " + std::to_string(r.header.iconIndex) + "\n";
  out += "args=" + Utf16ToUtf8(r.strings.arguments) + "\nfolder=" + Utf16ToUtf8(r.strings.workingDir) +
         "\ndesc=" + Utf16ToUtf8(r.strings.description) + "\nshow=" + std::to_string(r.header.showCommand) +
         " hotkey=" + std::to_string(r.header.hotKey) + "\n";
  return out;
}

struct Found {
  const char *file;  // in data/fuzz/
  const char *broke;
};

const Found kFound[] = {
    // An environment block that LinkFlags does not announce is passed over by the target's reading; the writer
    // announced every block it wrote, so the save made it the target.
    {"environment_block_unannounced.lnk", "the target changed from none to the block's text"},
    // ForceNoLinkInfo makes the ID list name the target before LinkInfo; the writer dropped the bit, so the save
    // made LinkInfo's path the target.
    {"force_no_linkinfo.lnk", "the target changed from the ID list's path to LinkInfo's"},
};

class FuzzRegressions : public testing::TestWithParam<Found> {};

TEST_P(FuzzRegressions, ASaveOfTheLoadedShortcutReadsTheSame) {
  const Found &found = GetParam();
  std::vector<uint8_t> bytes =
      ReadBytes(std::string(KELMARO_SOURCE_DIR) + "/tests/unit/posix/lnk/data/fuzz/" + found.file);
  ASSERT_FALSE(bytes.empty()) << found.file;
  ShellLinkRecord loaded;
  ASSERT_EQ(ParseShellLink(ByteSpan{bytes.data(), bytes.size()}, &loaded), LnkError::kNone);
  std::vector<uint8_t> saved = SerializeShellLink(loaded);
  ShellLinkRecord reloaded;
  ASSERT_EQ(ParseShellLink(ByteSpan{saved.data(), saved.size()}, &reloaded), LnkError::kNone);
  EXPECT_EQ(Readings(reloaded), Readings(loaded)) << found.broke;
  EXPECT_EQ(reloaded.header.linkFlags & ~kLinkStructureFlags, loaded.header.linkFlags & ~kLinkStructureFlags)
      << "the flags that are not the structure's";
  EXPECT_EQ(SerializeShellLink(reloaded), saved) << "a second save writes other bytes";
}

INSTANTIATE_TEST_SUITE_P(Found, FuzzRegressions, testing::ValuesIn(kFound), [](const auto &info) {
  std::string name = info.param.file;
  name = name.substr(0, name.find('.'));
  return name;
});

}  // namespace
