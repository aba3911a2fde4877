// The shortcut codec, one on-disk structure at a time: real bytes that Windows wrote, what we write, and damage. What
// the samples check against lnkinfo (LinkInfo, strings and extra blocks as Windows writes them) is not repeated here.
#include <gtest/gtest.h>

#include <vector>

#include "lnk_test_data.h"
#include "platform/posix/lnk_codec.h"
#include "platform/posix/path_names.h"
#include "platform/posix/lnk_text.h"

namespace {

using Bytes = std::vector<uint8_t>;

template <size_t N>
Bytes Of(const uint8_t (&bytes)[N]) {
  return Bytes(bytes, bytes + N);
}
ByteSpan Span(const Bytes &bytes) { return ByteSpan{bytes.data(), bytes.size()}; }
std::string Utf8(const std::u16string &text) { return Utf16ToUtf8(text); }

Bytes Join(const std::vector<Bytes> &parts) {
  Bytes out;
  for (const Bytes &part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

// ---- Text ----

TEST(LnkText, ShiftJisRoundTripsAsOnWindows) {
  struct Row {
    const char *what;
    std::string cp932;
    std::u16string utf16;
    std::string back;  // when it differs from cp932
  } rows[] = {
      {"ASCII and a trail byte 0x5C", "a\x95\x5C\\b", u"a表\\b", ""},
      {"half-width katakana", "\xB6\xC5", u"ｶﾅ", ""},
      // A character with an NEC-selected and an IBM code comes back as the IBM one, as Windows writes it.
      {"NEC and IBM extensions", "\x87\x40\xED\xA3", u"①惞", "\x87\x40\xFA\xBF"},
      {"a user-defined character", "\xF7\xD5", u"\uE5B8", ""},
      {"bytes Shift-JIS leaves undefined", "\x80\xA0\xFD\xFE\xFF\\", u"\u0080\uF8F0\uF8F1\uF8F2\uF8F3\\", ""},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(Utf16FromCp932(row.cp932), row.utf16) << row.what;
    EXPECT_EQ(Cp932FromUtf16(row.utf16), row.back.empty() ? row.cp932 : row.back) << row.what;
    EXPECT_TRUE(Cp932Holds(row.utf16)) << row.what;
  }
  EXPECT_EQ(Cp932FromUtf16(u"\u00E9\U0001F370x"), "??x");  // no CP932 for them, and no best fit
  EXPECT_FALSE(Cp932Holds(u"\u00E9"));
  EXPECT_EQ(Utf16FromCp932("\xEB\xD4x"), u"?x");  // an unassigned double-byte code is one character
  EXPECT_EQ(Cp932Prefix("\x95\x5C\x95\x5Cx", 3), "\x95\x5C");
  EXPECT_EQ(Cp932Prefix("ab\x95", 3), "ab\x95");  // a lead byte at the very end stands alone
}

// ---- ID list ----

TEST(LnkIdList, BuildsListsThatReadBack) {
  PathItemFacts folder, file;
  folder.exists = folder.isFolder = true;
  folder.attributes = 0x10;
  file.exists = true;
  file.attributes = 0x21;
  file.size = 0x01020304;
  file.dosWriteTime = 0xA369392C;  // 2008-09-12 20:27:18
  struct Row {
    const char *path;
    std::vector<PathItemFacts> facts;
    const char *readBack;
    uint8_t lastType;
  } rows[] = {
      {"C:\\test\\a.txt", {folder, file}, "C:\\test\\a.txt", 0x32},
      {"c:\\Program Files\\x", {}, "C:\\Program Files\\x", 0x32},  // missing: the last name is taken for a file
      {"C:\\dir\\", {}, "C:\\dir", 0x31},                          // a closing backslash says folder
      {u8"Z:\\日本語\\表.txt", {}, u8"Z:\\日本語\\表.txt", 0x32},
      {u8"Z:\\emoji\\🍰.txt", {}, u8"Z:\\emoji\\🍰.txt", 0x36},  // no CP932 for it: the primary name is UTF-16
      {"C:\\", {}, "C:\\", 0x2F},
  };
  for (const Row &row : rows) {
    Bytes items;
    ASSERT_TRUE(BuildIdListForPath(Utf8ToUtf16(row.path), row.facts, &items)) << row.path;
    std::u16string path;
    ASSERT_TRUE(IdListPath(items, &path)) << row.path;
    EXPECT_EQ(Utf8(path), row.readBack) << row.path;
    // The type byte of the last item says folder or file.
    size_t last = 0;
    for (size_t at = 0; at < items.size(); at += items[at] | (items[at + 1] << 8)) last = at;
    EXPECT_EQ(items[last + 2], row.lastType) << row.path;
  }
  Bytes items;
  EXPECT_FALSE(BuildIdListForPath(u"\\\\server\\share", {}, &items));
  EXPECT_FALSE(BuildIdListForPath(u"relative\\x", {}, &items));
  // Explorer shows a file entry's facts without looking at the file: size, FAT date then time, attributes, name.
  ASSERT_TRUE(BuildIdListForPath(u"C:\\a.txt", {file}, &items));
  const uint8_t *entry = items.data() + 0x14 + 0x19;  // behind My Computer and the drive
  // Without them nothing places the entry, and an empty list names nothing.
  std::u16string path = u"untouched";
  EXPECT_FALSE(IdListPath(Bytes(items.begin() + 0x14 + 0x19, items.end()), &path));
  EXPECT_FALSE(IdListPath({}, &path));
  EXPECT_EQ(Utf8(path), "untouched");
  auto le = [entry](size_t at, int bytes) {
    uint32_t value = 0;
    for (int i = bytes - 1; i >= 0; --i) value = value << 8 | entry[at + i];
    return value;
  };
  EXPECT_EQ(le(4, 4), 0x01020304u);
  EXPECT_EQ(le(8, 4), 0xA369392Cu);
  EXPECT_EQ(le(12, 2), 0x21u);
  EXPECT_EQ(std::string(reinterpret_cast<const char *>(entry + 14)), "a.txt");
}

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

// ---- LinkInfo ----

TEST(LnkLinkInfo, WritesLocalAndNetworkFormsThatReadBack) {
  struct Row {
    const char *what;
    bool local, network;
    const char *base, *net, *device, *suffix;
    uint32_t headerSize;
  } rows[] = {
      {"local, ASCII: header 0x1C", true, false, "C:\\x\\y.exe", "", "", "", 0x1C},
      {"local, Japanese: Unicode copies too", true, false, u8"C:\\表\\予定.txt", "", "", "", 0x24},
      {"share", false, true, "", "\\\\server\\share", "", "dir\\f.txt", 0x1C},
      {"mapped drive", false, true, "", "\\\\server\\share", "Z:", "dir\\f.txt", 0x1C},
      {"share with a Japanese name", false, true, "", u8"\\\\サーバ\\共有", "", u8"表.txt", 0x24},
  };
  for (const Row &row : rows) {
    LnkLinkInfo info;
    info.hasLocal = row.local;
    info.driveType = row.local ? 3 : 0;
    info.localBasePath = Utf8ToUtf16(row.base);
    info.hasNetwork = row.network;
    info.netName = Utf8ToUtf16(row.net);
    info.deviceName = Utf8ToUtf16(row.device);
    info.commonPathSuffix = Utf8ToUtf16(row.suffix);
    Bytes bytes;
    WriteLnkLinkInfo(info, &bytes);
    EXPECT_EQ(bytes[4], row.headerSize) << row.what;
    size_t offset = 0;
    LnkLinkInfo back;
    uint32_t damage = 0;
    ASSERT_EQ(ParseLnkLinkInfo(Span(bytes), &offset, &back, &damage), LnkError::kNone) << row.what;
    EXPECT_EQ(offset, bytes.size()) << row.what;
    EXPECT_EQ(damage, 0u) << row.what;
    EXPECT_EQ(Utf8(back.localBasePath), row.base) << row.what;
    EXPECT_EQ(Utf8(back.netName), row.net) << row.what;
    EXPECT_EQ(Utf8(back.deviceName), row.device) << row.what;
    EXPECT_EQ(Utf8(back.commonPathSuffix), row.suffix) << row.what;
  }
}

TEST(LnkLinkInfo, RefusesOffsetsThatLeadOutside) {
  // Each row damages one field of the Windows 7 LinkInfo (size 0x68), which is then cut to `length`.
  struct Row {
    const char *what;
    size_t at;
    uint32_t value;
    LnkError error;
    size_t length = sizeof kUnicodeNetworkLinkInfo;
  } rows[] = {
      {"size past the end", 0x00, 0x69, LnkError::kLinkInfoPastEnd},
      {"size smaller than a header", 0x00, 0x10, LnkError::kLinkInfoDamaged},
      {"header size below 0x1C", 0x04, 0x18, LnkError::kLinkInfoDamaged},
      {"header size beyond the structure", 0x04, 0x70, LnkError::kLinkInfoDamaged},
      {"network part past the end", 0x14, 0x68, LnkError::kLinkInfoDamaged},
      {"network part's size past the end", 0x24, 0x50, LnkError::kLinkInfoDamaged},
      {"share name outside the network part", 0x2C, 0x25, LnkError::kLinkInfoDamaged},
      {"suffix past the end", 0x18, 0x1000, LnkError::kLinkInfoDamaged},
      {"Unicode suffix past the end", 0x20, 0x67, LnkError::kLinkInfoDamaged},
      {"local path wanted, offset outside", 0x08, 0x03, LnkError::kLinkInfoDamaged},
      {"a text without its end", 0x00, 0x66, LnkError::kLinkInfoDamaged, 0x66},
  };
  for (const Row &row : rows) {
    Bytes bytes = Of(kUnicodeNetworkLinkInfo);
    for (int i = 0; i < 4; ++i) bytes[row.at + i] = static_cast<uint8_t>(row.value >> (8 * i));
    if (row.at == 0x08) bytes[0x10] = 0xF0;  // LocalBasePathOffset, now that the flag asks for it
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

// ---- String data ----

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
      {"ANSI is Shift-JIS: 表 is 0x95 0x5C", {3, 0, 0x95, 0x5C, 'x'}, ansi, LnkError::kNone, u8"表x"},
      {"a counted terminator ends the text", {3, 0, 'a', 0, 0, 0, 'b', 0}, unicode, LnkError::kNone, "a"},
      {"ANSI count one byte too many", {3, 0, 'a', 'b'}, ansi, LnkError::kStringPastEnd, ""},
      {"half a count", {1}, ansi, LnkError::kStringPastEnd, ""},
  };
  for (const Row &row : rows) {
    size_t offset = 0;
    LnkStrings strings;
    EXPECT_EQ(ParseLnkStrings(Span(row.bytes), &offset, row.flags, &strings), row.error) << row.what;
    EXPECT_EQ(Utf8(strings.arguments), row.arguments) << row.what;
    if (row.error == LnkError::kNone) {
      EXPECT_EQ(offset, row.bytes.size()) << row.what;
    }
  }
}

// ---- Extra data ----

// An environment block as Windows lays it out: 260 ANSI bytes, then 260 UTF-16 units.
Bytes EnvironmentBlock(uint32_t signature, const std::string &ansi, const std::u16string &wide) {
  Bytes block(kEnvironmentBlockSize, 0);
  block[0] = 0x14;
  block[1] = 0x03;
  for (int i = 0; i < 4; ++i) block[4 + i] = static_cast<uint8_t>(signature >> (8 * i));
  for (size_t i = 0; i < ansi.size(); ++i) block[8 + i] = static_cast<uint8_t>(ansi[i]);
  for (size_t i = 0; i < wide.size(); ++i) {
    block[268 + 2 * i] = static_cast<uint8_t>(wide[i]);
    block[269 + 2 * i] = static_cast<uint8_t>(wide[i] >> 8);
  }
  return block;
}

TEST(LnkExtraData, FlagsDamageAndKeepsTheBlocksBeforeIt) {
  const Bytes terminal = {0, 0, 0, 0};
  Bytes environment = EnvironmentBlock(kBlockEnvironment, "C:\\ansi.exe", u"C:\\x.exe");
  Bytes shortEnvironment(environment.begin(), environment.begin() + 0x200);
  shortEnvironment[0] = 0x00;
  shortEnvironment[1] = 0x02;
  struct Row {
    const char *what;
    Bytes bytes;
    uint32_t damage;
    const char *target;  // nullptr: no environment block kept
  } rows[] = {
      {"complete: the Unicode copy", Join({environment, terminal}), 0, "C:\\x.exe"},
      {"no Unicode copy: the ANSI one", Join({EnvironmentBlock(kBlockEnvironment, "C:\\a.exe", u""), terminal}), 0,
       "C:\\a.exe"},
      {"no terminal block", environment, kDamageNoTerminal, "C:\\x.exe"},
      {"half a terminal block", Join({environment, {0, 0}}), kDamageNoTerminal, "C:\\x.exe"},
      {"a block past the end", Join({environment, {0x40, 0, 0, 0, 1, 0, 0, 0xA0}}), kDamageExtraBlock, "C:\\x.exe"},
      {"a block too small for its header", Join({environment, {6, 0, 0, 0, 1, 0}}), kDamageExtraBlock, "C:\\x.exe"},
      {"an environment block of the wrong size", Join({shortEnvironment, terminal}), kDamageExtraBlock, nullptr},
      {"an environment text without its end",
       Join({EnvironmentBlock(kBlockEnvironment, std::string(260, 'a'), u""), terminal}), kDamageExtraBlock, nullptr},
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
  extra.hasEnvironment = true;
  extra.environmentTarget = u"%TEMP%\\表.exe";
  extra.hasIconEnvironment = true;
  extra.iconEnvironmentTarget = std::u16string(300, u'表');  // longer than the field: cut with its terminator
  Bytes bytes;
  WriteLnkExtraData(extra, &bytes);
  ASSERT_EQ(bytes.size(), 2 * kEnvironmentBlockSize + 4);
  // A reader of the ANSI copy finds Shift-JIS, and whole characters only: 129 of them and the terminator.
  EXPECT_EQ(Bytes(bytes.begin() + 8 + 7, bytes.begin() + 8 + 9), (Bytes{0x95, 0x5C}));
  EXPECT_EQ(bytes[kEnvironmentBlockSize + 8 + 257], 0x5C);
  EXPECT_EQ(bytes[kEnvironmentBlockSize + 8 + 258], 0);
  LnkExtraData back;
  uint32_t damage = 0;
  ParseLnkExtraData(Span(bytes), 0, &back, &damage);
  EXPECT_EQ(damage, 0u);
  EXPECT_EQ(Utf8(back.environmentTarget), u8"%TEMP%\\表.exe");
  EXPECT_EQ(back.iconEnvironmentTarget, std::u16string(259, u'表'));
}

}  // namespace
