// The shortcut codec, one on-disk structure at a time, where the samples (checked against lnkinfo) and the whole-file
// round trips cannot reach: text conversion, the ID list items we build, and damage to each structure.
#include <gtest/gtest.h>

#include <vector>

#include "lnk_test_data.h"
#include "platform/posix/lnk/lnk_codec.h"
#include "platform/posix/lnk/lnk_text.h"
#include "platform/posix/text/path_names.h"

namespace {

using Bytes = std::vector<uint8_t>;

ByteSpan Span(const Bytes &bytes) { return ByteSpan{bytes.data(), bytes.size()}; }
std::string Utf8(const std::u16string &text) { return Utf16ToUtf8(text); }

Bytes Join(const std::vector<Bytes> &parts) {
  Bytes out;
  for (const Bytes &part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

TEST(LnkText, ShiftJisRoundTripsAsOnWindows) {
  struct Row {
    const char *what;
    std::string cp932;
    std::u16string utf16;
    std::string back;  // when it differs from cp932
  } rows[] = {
      {"ASCII and a trail byte 0x5C", "a\x95\x5C\\b", u"a表\\b", ""},
      // A character with an NEC-selected and an IBM code comes back as the IBM one, as Windows writes it.
      {"NEC and IBM extensions", "\x87\x40\xED\xA3", u"①惞", "\x87\x40\xFA\xBF"},
      {"bytes Shift-JIS leaves undefined", "\x80\xA0\xFD\xFE\xFF\\", u"\u0080\uF8F0\uF8F1\uF8F2\uF8F3\\", ""},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(Utf16FromCp932(row.cp932), row.utf16) << row.what;
    EXPECT_EQ(Cp932FromUtf16(row.utf16), row.back.empty() ? row.cp932 : row.back) << row.what;
  }
  EXPECT_EQ(Cp932FromUtf16(u"\u00E9\U0001F370x"), "??x");  // no CP932 for them, and no best fit
  EXPECT_EQ(Utf16FromCp932("\xEB\xD4x"), u"?x");           // an unassigned double-byte code is one character
  EXPECT_EQ(Cp932Prefix("\x95\x5C\x95\x5Cx", 3), "\x95\x5C");
}

// The samples' ID lists are Windows's; these are ours, which Explorer reads without looking at the target.
TEST(LnkIdList, BuildsListsThatReadBack) {
  PathItemFacts file;
  file.exists = true;
  file.attributes = 0x21;
  file.size = 0x01020304;
  file.dosWriteTime = 0xA369392C;
  struct Row {
    const char *path, *readBack;
    uint8_t lastType;
  } rows[] = {
      {"c:\\Program Files\\x", "C:\\Program Files\\x", 0x32},  // missing: the last name is taken for a file
      {"C:\\dir\\", "C:\\dir", 0x31},                          // a closing backslash says folder
      {u8"Z:\\emoji\\🍰.txt", u8"Z:\\emoji\\🍰.txt", 0x36},      // no CP932 for it: the primary name is UTF-16
      {"C:\\", "C:\\", 0x2F},
  };
  for (const Row &row : rows) {
    Bytes items;
    ASSERT_TRUE(BuildIdListForPath(Utf8ToUtf16(row.path), {}, &items)) << row.path;
    std::u16string path;
    ASSERT_TRUE(IdListPath(items, &path)) << row.path;
    EXPECT_EQ(Utf8(path), row.readBack) << row.path;
    size_t last = 0;
    for (size_t at = 0; at < items.size(); at += items[at] | (items[at + 1] << 8)) last = at;
    EXPECT_EQ(items[last + 2], row.lastType) << row.path;
  }
  Bytes items;
  EXPECT_FALSE(BuildIdListForPath(u"\\\\server\\share", {}, &items));
  // A file entry holds size, FAT date then time, attributes and name, behind My Computer and the drive.
  ASSERT_TRUE(BuildIdListForPath(u"C:\\a.txt", {file}, &items));
  const Bytes expected = {0x04, 0x03, 0x02, 0x01, 0x2C, 0x39, 0x69, 0xA3, 0x21, 0x00, 'a', '.', 't', 'x', 't', 0};
  EXPECT_EQ(Bytes(items.begin() + 0x14 + 0x19 + 4, items.begin() + 0x14 + 0x19 + 20), expected);
  std::u16string path = u"untouched";
  EXPECT_FALSE(IdListPath(Bytes(items.begin() + 0x14 + 0x19, items.end()), &path));  // nothing places the entry
  EXPECT_EQ(Utf8(path), "untouched");
}

TEST(LnkLinkInfo, RefusesOffsetsThatLeadOutside) {
  // Each row damages one field of a Windows 7 LinkInfo (size 0x68), which is then cut to `length`.
  struct Row {
    const char *what;
    size_t at;
    uint32_t value;
    LnkError error;
    size_t length = sizeof kUnicodeNetworkLinkInfo;
  } rows[] = {
      {"size past the end", 0x00, 0x69, LnkError::kLinkInfoPastEnd},
      {"network part's size past the end", 0x24, 0x50, LnkError::kLinkInfoDamaged},
      {"share name outside the network part", 0x2C, 0x25, LnkError::kLinkInfoDamaged},
      {"a text without its end", 0x00, 0x66, LnkError::kLinkInfoDamaged, 0x66},
  };
  for (const Row &row : rows) {
    Bytes bytes(kUnicodeNetworkLinkInfo, kUnicodeNetworkLinkInfo + sizeof kUnicodeNetworkLinkInfo);
    for (int i = 0; i < 4; ++i) bytes[row.at + i] = static_cast<uint8_t>(row.value >> (8 * i));
    bytes.resize(row.length);
    size_t offset = 0;
    LnkLinkInfo info;
    uint32_t damage = 0;
    EXPECT_EQ(ParseLnkLinkInfo(Span(bytes), &offset, &info, &damage), row.error) << row.what;
  }
}

// Nothing the shell link object gives depends on the volume, so its damage does not cost the shortcut.
TEST(LnkLinkInfo, ADamagedVolumeIsOnlyFlagged) {
  const uint8_t *start = kExampleFile + kLnkHeaderSize + 2 + 0xBD;
  Bytes bytes(start, start + 0x3C);
  bytes[0x1C + 0x0C] = 0x40;  // the volume label's offset, beyond the VolumeID
  size_t offset = 0;
  LnkLinkInfo info;
  uint32_t damage = 0;
  ASSERT_EQ(ParseLnkLinkInfo(Span(bytes), &offset, &info, &damage), LnkError::kNone);
  EXPECT_EQ(damage, kDamageVolumeLabel);
  EXPECT_EQ(Utf8(LinkInfoLocalPath(info)), "C:\\test\\a.txt");
}

// The only sample without the Unicode flag holds ASCII, and no sample counts a terminator.
TEST(LnkStrings, ReadsCountedTextsAndRefusesCountsPastTheEnd) {
  const uint32_t ansi = kLinkHasArguments, unicode = kLinkHasArguments | kLinkIsUnicode;
  struct Row {
    const char *what;
    Bytes bytes;
    uint32_t flags;
    LnkError error;
    const char *arguments;
  } rows[] = {
      {"ANSI is Shift-JIS", {3, 0, 0x95, 0x5C, 'x'}, ansi, LnkError::kNone, u8"表x"},
      {"a counted terminator ends the text", {3, 0, 'a', 0, 0, 0, 'b', 0}, unicode, LnkError::kNone, "a"},
      {"ANSI count one byte too many", {3, 0, 'a', 'b'}, ansi, LnkError::kStringPastEnd, ""},
  };
  for (const Row &row : rows) {
    size_t offset = 0;
    LnkStrings strings;
    EXPECT_EQ(ParseLnkStrings(Span(row.bytes), &offset, row.flags, &strings), row.error) << row.what;
    EXPECT_EQ(Utf8(strings.arguments), row.arguments) << row.what;
  }
}

// An environment block as Windows lays it out: 260 ANSI bytes, then 260 UTF-16 units.
Bytes EnvironmentBlock(const std::string &ansi, const std::u16string &wide) {
  Bytes block(kEnvironmentBlockSize, 0);
  block[0] = 0x14;
  block[1] = 0x03;
  for (int i = 0; i < 4; ++i) block[4 + i] = static_cast<uint8_t>(kBlockEnvironment >> (8 * i));
  for (size_t i = 0; i < ansi.size(); ++i) block[8 + i] = static_cast<uint8_t>(ansi[i]);
  for (size_t i = 0; i < wide.size(); ++i) {
    block[268 + 2 * i] = static_cast<uint8_t>(wide[i]);
    block[269 + 2 * i] = static_cast<uint8_t>(wide[i] >> 8);
  }
  return block;
}

TEST(LnkExtraData, FlagsDamageAndKeepsTheBlocksBeforeIt) {
  const Bytes terminal = {0, 0, 0, 0};
  Bytes environment = EnvironmentBlock("C:\\ansi.exe", u"C:\\x.exe");
  struct Row {
    const char *what;
    Bytes bytes;
    uint32_t damage;
    const char *target;  // nullptr: no environment block kept
  } rows[] = {
      {"no Unicode copy: the ANSI one", Join({EnvironmentBlock("C:\\a.exe", u""), terminal}), 0, "C:\\a.exe"},
      {"half a terminal block", Join({environment, {0, 0}}), kDamageNoTerminal, "C:\\x.exe"},
      {"a block past the end", Join({environment, {0x40, 0, 0, 0, 1, 0, 0, 0xA0}}), kDamageExtraBlock, "C:\\x.exe"},
      {"an environment text without its end", Join({EnvironmentBlock(std::string(260, 'a'), u""), terminal}),
       kDamageExtraBlock, nullptr},
      {"bytes behind the terminal block", Join({environment, terminal, {1, 2, 3}}), kDamageTrailingBytes, "C:\\x.exe"},
  };
  for (const Row &row : rows) {
    LnkExtraData extra;
    uint32_t damage = 0;
    ParseLnkExtraData(Span(row.bytes), 0, &extra, &damage);
    EXPECT_EQ(damage, row.damage) << row.what;
    EXPECT_EQ(extra.hasEnvironment, row.target != nullptr) << row.what;
    EXPECT_EQ(Utf8(extra.environmentTarget), row.target ? row.target : "") << row.what;
  }
}

TEST(LnkExtraData, WritesFixedSizeEnvironmentBlocks) {
  LnkExtraData extra;
  extra.hasIconEnvironment = true;
  extra.iconEnvironmentTarget = std::u16string(300, u'表');  // longer than the field: cut with its terminator
  Bytes bytes;
  WriteLnkExtraData(extra, &bytes);
  ASSERT_EQ(bytes.size(), kEnvironmentBlockSize + 4);
  // The ANSI copy is Shift-JIS, whole characters only: 129 of them and the terminator.
  EXPECT_EQ(Bytes(bytes.begin() + 8 + 256, bytes.begin() + 8 + 259), (Bytes{0x95, 0x5C, 0}));
  LnkExtraData back;
  uint32_t damage = 0;
  ParseLnkExtraData(Span(bytes), 0, &back, &damage);
  EXPECT_EQ(damage, 0u);
  EXPECT_EQ(back.iconEnvironmentTarget, std::u16string(259, u'表'));
}

// ID list items carry FAT times, as Explorer shows them without opening the file.
TEST(LnkIdList, FatDateAndTime) {
  struct Row {
    uint64_t fileTime;
    uint32_t dos;
  } rows[] = {
      {0x01C91515F2EEE9D0u, 0xA368392C},  // 2008-09-12 20:27:17.1: FAT keeps even seconds
      {119600064000000000u, 0x00000021},  // 1980-01-01 00:00:00
      {119600063990000000u, 0},           // one second before 1980
      {0, 0},
      {131958720000000000u, 0x00004E61},  // 2019-03-01, after a February of 28 days
      {132274080000000000u, 0x0000505D},  // 2020-02-29
      {159992927990000000u, 0xBF7DFF9F},  // 2107-12-31 23:59:58, the last FAT time
      {159992928000000000u, 0},           // 2108
  };
  for (const Row &row : rows) EXPECT_EQ(FileTimeToDosDateTime(row.fileTime), row.dos) << row.fileTime;
}

}  // namespace
