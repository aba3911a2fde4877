// The shortcut codec as a whole: a file in and out, which record gives the target and the icon, and damage anywhere
// in a file ending in a clean failure.
#include "platform/posix/lnk/lnk_codec.h"

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <vector>

#include "lnk_test_data.h"
#include "platform/posix/lnk/lnk_text.h"
#include "platform/posix/text/path_names.h"

namespace {

std::string Utf8(const std::u16string &text) { return Utf16ToUtf8(text); }
std::u16string U(const char *utf8) { return Utf8ToUtf16(utf8); }

// An environment of a few names, looked up without case as Windows does.
EnvironmentLookup Environment(std::map<std::string, std::string> values) {
  return [values](const std::u16string &name, std::u16string *value) {
    std::string key = Utf8(name);
    for (char &c : key) c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
    auto found = values.find(key);
    if (found == values.end()) return false;
    *value = U(found->second.c_str());
    return true;
  };
}

TEST(LnkFile, WritesWhatItReads) {
  ShellLinkRecord record;
  record.header.fileAttributes = 0x21;
  record.header.accessTime = 0x1112131415161718u;
  record.header.fileSize = 0xDEADBEEF;
  record.header.iconIndex = -3;
  record.header.showCommand = 7;
  record.header.hotKey = 0x0270;  // Ctrl+F1: written when set, though the engine never sets one
  // A structure bit that is wrong, the announcement of the icon block below, and a bit to keep.
  record.header.linkFlags = kLinkHasArguments | kLinkHasExpIcon | 0x00080000;
  ASSERT_TRUE(BuildIdListForPath(u"C:\\表\\x.exe", {}, &record.idList));
  record.hasIdList = true;
  record.hasLinkInfo = true;
  record.linkInfo.hasLocal = true;
  record.linkInfo.driveType = 3;
  record.linkInfo.localBasePath = u"C:\\表\\x.exe";
  record.strings.description = u"説明";
  record.strings.workingDir = u"C:\\表";
  record.strings.iconLocation = u"%SystemRoot%\\i.dll";
  record.extra.hasIconEnvironment = true;
  record.extra.iconEnvironmentTarget = u"%SystemRoot%\\i.dll";
  std::vector<uint8_t> bytes = SerializeShellLink(record);
  ShellLinkRecord back;
  ASSERT_EQ(ParseShellLink(ByteSpan{bytes.data(), bytes.size()}, &back), LnkError::kNone);
  EXPECT_EQ(back.header.linkFlags, kLinkHasIdList | kLinkHasLinkInfo | kLinkHasName | kLinkHasWorkingDir |
                                       kLinkHasIconLocation | kLinkIsUnicode | kLinkHasExpIcon | 0x00080000);
  // Each field read back, not only written again the same: a field lost both ways would pass the last check.
  EXPECT_EQ(back.header.accessTime, record.header.accessTime);
  EXPECT_EQ(back.header.iconIndex, -3);
  EXPECT_EQ(back.header.hotKey, 0x0270);
  EXPECT_EQ(back.idList, record.idList);
  EXPECT_EQ(back.strings.description, record.strings.description);
  EXPECT_EQ(back.extra.iconEnvironmentTarget, record.extra.iconEnvironmentTarget);
  EXPECT_EQ(back.damage, 0u);
  EXPECT_EQ(SerializeShellLink(back), bytes);
}

// The record that each row of the target table starts from: every source of a target present, each different.
ShellLinkRecord AllSources() {
  ShellLinkRecord record;
  record.header.linkFlags = kLinkHasExpString;
  record.hasIdList = BuildIdListForPath(u"C:\\from\\idlist.exe", {}, &record.idList);
  record.hasLinkInfo = true;
  record.linkInfo.hasLocal = true;
  record.linkInfo.localBasePath = u"C:\\local\\";  // the suffix belongs to both forms
  record.linkInfo.hasNetwork = true;
  record.linkInfo.netName = u"\\\\server\\share";
  record.linkInfo.deviceName = u"N:";
  record.linkInfo.commonPathSuffix = u"both.exe";
  record.extra.hasEnvironment = true;
  record.extra.environmentTarget = u"%DIR%\\env.exe";
  return record;
}

TEST(LnkFile, TargetComesFromTheRecordsInWindowsOrder) {
  auto noLocal = [](ShellLinkRecord *r) { r->linkInfo.hasLocal = false; };
  auto noLinkInfo = [](ShellLinkRecord *r) { r->hasLinkInfo = false; };
  auto noEnvironment = [](ShellLinkRecord *r) { r->extra.hasEnvironment = false; };
  auto force = [](ShellLinkRecord *r) { r->header.linkFlags |= kLinkForceNoLinkInfo; };
  auto unplaced = [](ShellLinkRecord *r) {  // an ID list that starts nowhere we can place
    r->idList.resize(0x14);
    r->idList[4] ^= 0xFF;
  };
  auto flagOff = [](ShellLinkRecord *r) { r->header.linkFlags &= ~kLinkHasExpString; };
  auto noSuffix = [](ShellLinkRecord *r) { r->linkInfo.commonPathSuffix.clear(); };
  using Edit = void (*)(ShellLinkRecord *);
  EnvironmentLookup set = Environment({{"DIR", "D:\\set"}});
  EnvironmentLookup unset = Environment({});
  struct Row {
    const char *what;
    std::vector<Edit> edits;
    bool unc, raw;
    EnvironmentLookup *environment;
    const char *target;
  } rows[] = {
      {"the environment text, expanded", {}, false, false, &set, "D:\\set\\env.exe"},
      {"raw path without UNC priority", {}, false, true, &set, "%DIR%\\env.exe"},
      {"the environment block without its flag is not read", {flagOff}, false, false, &set, "C:\\local\\both.exe"},
      {"no local path: the mapped drive", {noLocal}, false, false, &unset, "N:\\both.exe"},
      {"a share's root: no suffix", {noSuffix}, true, false, &unset, "\\\\server\\share"},
      {"ForceNoLinkInfo: the ID list first", {force}, true, false, &unset, "C:\\from\\idlist.exe"},
      {"forced, list unplaced: LinkInfo", {force, unplaced}, true, false, &unset, "\\\\server\\share\\both.exe"},
      {"nothing else: the environment text unexpanded", {noLinkInfo, unplaced}, false, false, &unset, "%DIR%\\env.exe"},
      {"nothing at all", {noLinkInfo, unplaced, noEnvironment}, true, false, &set, ""},
  };
  for (const Row &row : rows) {
    ShellLinkRecord record = AllSources();
    for (Edit edit : row.edits) edit(&record);
    EXPECT_EQ(Utf8(SelectTargetPath(record, row.unc, row.raw, *row.environment)), row.target) << row.what;
  }
}

TEST(LnkFile, IconComesFromTheEnvironmentBlockWhenItExpands) {
  ShellLinkRecord record;
  record.header.linkFlags = kLinkHasExpIcon;
  record.strings.iconLocation = u"C:\\Windows\\stored.ico";
  record.extra.hasIconEnvironment = true;
  record.extra.iconEnvironmentTarget = u"%SystemRoot%\\env.ico";
  EXPECT_EQ(Utf8(SelectIconLocation(record, Environment({{"SYSTEMROOT", "D:\\Win"}}))), "D:\\Win\\env.ico");
  EXPECT_EQ(Utf8(SelectIconLocation(record, Environment({}))), "C:\\Windows\\stored.ico");
  record.strings.iconLocation.clear();
  EXPECT_EQ(Utf8(SelectIconLocation(record, Environment({}))), "%SystemRoot%\\env.ico");
  record.header.linkFlags = 0;
  EXPECT_EQ(Utf8(SelectIconLocation(record, Environment({{"SYSTEMROOT", "D:\\Win"}}))), "");
}

TEST(LnkFile, ExpandsEnvironmentNames) {
  EnvironmentLookup environment = Environment({{"WINDIR", "C:\\Windows"}});
  struct Row {
    const char *text, *expanded;
    bool complete;
  } rows[] = {
      {"%windir%\\x.exe", "C:\\Windows\\x.exe", true},
      {"100%", "100%", true},
      {"%nosuch%\\%windir%", "%nosuch%\\C:\\Windows", false},
  };
  for (const Row &row : rows) {
    std::u16string expanded;
    EXPECT_EQ(ExpandEnvironmentText(U(row.text), environment, &expanded), row.complete) << row.text;
    EXPECT_EQ(Utf8(expanded), row.expanded) << row.text;
  }
}

TEST(LnkFile, RefusesWhatTheFieldsDependOn) {
  std::vector<uint8_t> example(kExampleFile, kExampleFile + sizeof kExampleFile);
  auto with = [&](size_t at, std::vector<uint8_t> bytes) {
    std::vector<uint8_t> copy = example;
    for (size_t i = 0; i < bytes.size(); ++i) copy[at + i] = bytes[i];
    return copy;
  };
  const size_t idList = kLnkHeaderSize, linkInfo = kLnkHeaderSize + 2 + 0xBD, strings = linkInfo + 0x3C;
  struct Row {
    const char *what;
    std::vector<uint8_t> bytes;
    LnkError error;
  } rows[] = {
      {"empty", {}, LnkError::kTooShort},
      {"header size not 0x4C", with(0, {0x4D}), LnkError::kBadHeader},
      {"the header only, with its flags", std::vector<uint8_t>(example.begin(), example.begin() + idList),
       LnkError::kIdListPastEnd},
      {"an item's size past the list", with(idList + 2, {0xFF, 0x00}), LnkError::kIdListDamaged},
      {"a list that ends before its terminal item", with(idList, {0xBB}), LnkError::kIdListDamaged},
      {"LinkInfo size past the end", with(linkInfo, {0xFF, 0xFF, 0, 0}), LnkError::kLinkInfoPastEnd},
      {"local path offset past LinkInfo", with(linkInfo + 0x10, {0x3C}), LnkError::kLinkInfoDamaged},
      {"string count past the end", with(strings, {0xFF, 0x7F}), LnkError::kStringPastEnd},
  };
  for (const Row &row : rows) {
    ShellLinkRecord record;
    EXPECT_EQ(ParseShellLink(ByteSpan{row.bytes.data(), row.bytes.size()}, &record), row.error) << row.what;
  }
}

TEST(LnkFile, EveryTruncationFailsCleanlyOrLosesOnlyExtraData) {
  // Under the sanitizers this also proves that no cut makes a read leave the bytes it was given; each cut copies
  // into a buffer of exactly that size.
  const size_t extraData = kLnkHeaderSize + 2 + 0xBD + 0x3C + 32;
  for (size_t size = 0; size < sizeof kExampleFile; ++size) {
    std::vector<uint8_t> cut(kExampleFile, kExampleFile + size);
    ShellLinkRecord record;
    LnkError error = ParseShellLink(ByteSpan{cut.data(), cut.size()}, &record);
    if (size < extraData) {
      EXPECT_NE(error, LnkError::kNone) << size;
    } else {
      ASSERT_EQ(error, LnkError::kNone) << size;
      EXPECT_NE(record.damage, 0u) << size;
      EXPECT_EQ(Utf8(record.strings.workingDir), "C:\\test") << size;
    }
  }
}

TEST(LnkFile, ScrambledBytesNeverReadOutside) {
  // A fixed sequence, so that a failure repeats: every byte of the file in turn takes a few values that make sizes
  // and offsets large, small or odd. The result may be anything but a read outside the buffer (the sanitizers watch).
  const uint8_t values[] = {0x00, 0x01, 0x13, 0x7F, 0x80, 0xFF};
  size_t parsed = 0;
  for (size_t at = 0; at < sizeof kExampleFile; ++at) {
    for (uint8_t value : values) {
      std::vector<uint8_t> bytes(kExampleFile, kExampleFile + sizeof kExampleFile);
      bytes[at] = value;
      ShellLinkRecord record;
      if (ParseShellLink(ByteSpan{bytes.data(), bytes.size()}, &record) == LnkError::kNone) {
        ++parsed;
        SelectTargetPath(record, true, false, nullptr);
        SelectIconLocation(record, nullptr);
      }
    }
  }
  EXPECT_GT(parsed, 0u);
}

}  // namespace
