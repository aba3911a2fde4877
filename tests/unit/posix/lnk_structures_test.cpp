// The shortcut codec, one on-disk structure at a time: real bytes that Windows wrote, what we write, and damage.
#include <gtest/gtest.h>

#include <vector>

#include "lnk_test_data.h"
#include "platform/posix/lnk_codec.h"
#include "platform/posix/lnk_text.h"

namespace {

template <size_t N>
ByteSpan Span(const uint8_t (&bytes)[N]) {
  return ByteSpan{bytes, N};
}
ByteSpan Span(const std::vector<uint8_t> &bytes) { return ByteSpan{bytes.data(), bytes.size()}; }
std::string Utf8(const std::u16string &text) { return Utf8FromUtf16(text); }

// An ID list as it stands in a file (size, items, terminal) from items given one by one.
std::vector<uint8_t> IdListBytes(const std::vector<std::vector<uint8_t>> &items) {
  std::vector<uint8_t> joined;
  for (const std::vector<uint8_t> &item : items) joined.insert(joined.end(), item.begin(), item.end());
  std::vector<uint8_t> out;
  WriteLnkIdList(joined, &out);
  return out;
}

template <size_t N>
std::vector<uint8_t> Bytes(const uint8_t (&bytes)[N]) {
  return std::vector<uint8_t>(bytes, bytes + N);
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

TEST(LnkText, Utf8AndUtf16) {
  EXPECT_EQ(Utf16FromUtf8(u8"表\U0001F370"), u"表\U0001F370");
  EXPECT_EQ(Utf8FromUtf16(u"表\U0001F370"), u8"表\U0001F370");
  EXPECT_EQ(Utf16FromUtf8("\xC0\x80x\xE8\xA1"), u"\uFFFD\uFFFDx\uFFFD\uFFFD");  // overlong, then cut short
  EXPECT_EQ(Utf8FromUtf16(std::u16string(1, 0xD800) + u"x"), "\xEF\xBF\xBDx");  // a lone surrogate
}

// ---- ID list ----

TEST(LnkIdList, PlacesTheItemsWindowsWrites) {
  struct Row {
    const char *what;
    std::vector<std::vector<uint8_t>> items;
    const char *path;
  } rows[] = {
      {"XP: the long name of a version 3 block",
       {{0x14, 0x00, 0x1F, 0x50, 0xE0, 0x4F, 0xD0, 0x20, 0xEA, 0x3A,
         0x69, 0x10, 0xA2, 0xD8, 0x08, 0x00, 0x2B, 0x30, 0x30, 0x9D},
        {0x19, 0x00, 0x2F, 'C', ':', '\\', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
        Bytes(kXpFolderItem)},
       "C:\\WINDOWS"},
      {"Windows 10: a version 9 block after a drive item",
       {{0x19, 0x00, 0x2F, 'D', ':', '\\', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
        Bytes(kWin10FileItem)},
       "D:\\winhex64.exe"},
      {"XP share: the UTF-16 copy of the share's name wins over its cp1252 bytes",
       {Bytes(kNetworkRootItem), Bytes(kNetworkServerItem), Bytes(kNetworkShareItem), Bytes(kNetworkFolderItem)},
       u8"\\\\als-fichiers3\\Qualité\\Archives"},
  };
  for (const Row &row : rows) {
    std::vector<uint8_t> file = IdListBytes(row.items);
    size_t offset = 0;
    std::vector<uint8_t> items;
    ASSERT_EQ(ParseLnkIdList(Span(file), &offset, &items), LnkError::kNone) << row.what;
    EXPECT_EQ(offset, file.size()) << row.what;
    std::u16string path;
    ASSERT_TRUE(IdListPath(items, &path)) << row.what;
    EXPECT_EQ(Utf8(path), row.path) << row.what;
  }
}

TEST(LnkIdList, LeavesUnplaceableListsWithoutAPath) {
  // {26EE0668-A00A-44D7-9371-BEB064C98683} Control Panel, then a control panel item.
  std::vector<uint8_t> controlPanel = {0x14, 0x00, 0x1F, 0x80, 0x68, 0x06, 0xEE, 0x26, 0x0A, 0xA0,
                                       0xD7, 0x44, 0x93, 0x71, 0xBE, 0xB0, 0x64, 0xC9, 0x86, 0x83};
  std::vector<uint8_t> file = IdListBytes({controlPanel, Bytes(kXpFolderItem)});
  size_t offset = 0;
  std::vector<uint8_t> items;
  ASSERT_EQ(ParseLnkIdList(Span(file), &offset, &items), LnkError::kNone);
  std::u16string path = u"untouched";
  EXPECT_FALSE(IdListPath(items, &path));
  EXPECT_EQ(Utf8(path), "untouched");
  EXPECT_FALSE(IdListPath({}, &path));  // an empty list names nothing
  // A file entry with nothing before it to place it.
  file = IdListBytes({Bytes(kXpFolderItem)});
  offset = 0;
  ASSERT_EQ(ParseLnkIdList(Span(file), &offset, &items), LnkError::kNone);
  EXPECT_FALSE(IdListPath(items, &path));
}

TEST(LnkIdList, RefusesSizesThatLeadOutside) {
  struct Row {
    const char *what;
    std::vector<uint8_t> bytes;
    LnkError error;
  } rows[] = {
      {"no size at all", {0x05}, LnkError::kIdListPastEnd},
      {"list longer than the file", {0x10, 0x00, 0x00, 0x00}, LnkError::kIdListPastEnd},
      {"no terminal item", {0x04, 0x00, 0x04, 0x00, 0x1F, 0x00}, LnkError::kIdListDamaged},
      {"item past the list", {0x06, 0x00, 0x08, 0x00, 0x1F, 0x00, 0x00, 0x00}, LnkError::kIdListDamaged},
      {"item of size 1", {0x05, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00}, LnkError::kIdListDamaged},
      {"empty list without terminal", {0x00, 0x00}, LnkError::kIdListDamaged},
  };
  for (const Row &row : rows) {
    size_t offset = 0;
    std::vector<uint8_t> items;
    EXPECT_EQ(ParseLnkIdList(Span(row.bytes), &offset, &items), row.error) << row.what;
    EXPECT_EQ(offset, 0u) << row.what;
  }
}

TEST(LnkIdList, BuildsListsThatReadBack) {
  PathItemFacts folder, file;
  folder.exists = folder.isFolder = true;
  folder.attributes = 0x10;
  file.exists = true;
  file.attributes = 0x21;
  file.size = 1234;
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
    std::vector<uint8_t> items;
    ASSERT_TRUE(BuildIdListForPath(Utf16FromUtf8(row.path), row.facts, &items)) << row.path;
    std::u16string path;
    ASSERT_TRUE(IdListPath(items, &path)) << row.path;
    EXPECT_EQ(Utf8(path), row.readBack) << row.path;
    // The type byte of the last item says folder or file.
    size_t last = 0;
    for (size_t at = 0; at < items.size(); at += items[at] | (items[at + 1] << 8)) last = at;
    EXPECT_EQ(items[last + 2], row.lastType) << row.path;
  }
  std::vector<uint8_t> items;
  EXPECT_FALSE(BuildIdListForPath(u"\\\\server\\share", {}, &items));
  EXPECT_FALSE(BuildIdListForPath(u"relative\\x", {}, &items));
  // A file entry carries the target's facts: type, size, FAT date then time, attributes, name.
  file.size = 0x01020304;
  ASSERT_TRUE(BuildIdListForPath(u"C:\\a.txt", {file}, &items));
  const uint8_t *entry = items.data() + 0x14 + 0x19;  // behind My Computer and the drive
  EXPECT_EQ(entry[2], 0x32);
  EXPECT_EQ(entry[4] | entry[5] << 8 | entry[6] << 16 | entry[7] << 24, 0x01020304);
  EXPECT_EQ(entry[8] | entry[9] << 8, 0x392C);
  EXPECT_EQ(entry[10] | entry[11] << 8, 0xA369);
  EXPECT_EQ(entry[12] | entry[13] << 8, 0x21);
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
    info.localBasePath = Utf16FromUtf8(row.base);
    info.hasNetwork = row.network;
    info.netName = Utf16FromUtf8(row.net);
    info.deviceName = Utf16FromUtf8(row.device);
    info.commonPathSuffix = Utf16FromUtf8(row.suffix);
    std::vector<uint8_t> bytes;
    WriteLnkLinkInfo(info, &bytes);
    EXPECT_EQ(bytes[4], row.headerSize) << row.what;
    EXPECT_EQ(bytes[0] | bytes[1] << 8, static_cast<int>(bytes.size())) << row.what;
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

TEST(LnkLinkInfo, DeviceFormOfAMappedDrive) {
  LnkLinkInfo info;
  info.hasNetwork = true;
  info.netName = u"\\\\server\\share";
  info.deviceName = u"Z:";
  info.commonPathSuffix = u"dir\\f.txt";
  EXPECT_EQ(Utf8(LinkInfoNetworkPath(info, true)), "Z:\\dir\\f.txt");
  EXPECT_EQ(Utf8(LinkInfoNetworkPath(info, false)), "\\\\server\\share\\dir\\f.txt");
  info.commonPathSuffix.clear();
  EXPECT_EQ(Utf8(LinkInfoNetworkPath(info, false)), "\\\\server\\share");
}

TEST(LnkLinkInfo, RefusesOffsetsThatLeadOutside) {
  // Each row damages one field of the Windows 7 LinkInfo (size 0x68).
  struct Row {
    const char *what;
    size_t at;
    uint32_t value;
    LnkError error;
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
  };
  for (const Row &row : rows) {
    std::vector<uint8_t> bytes = Bytes(kUnicodeNetworkLinkInfo);
    for (int i = 0; i < 4; ++i) bytes[row.at + i] = static_cast<uint8_t>(row.value >> (8 * i));
    if (row.at == 0x08) bytes[0x10] = 0xF0;  // LocalBasePathOffset, now that the flag asks for it
    size_t offset = 0;
    LnkLinkInfo info;
    uint32_t damage = 0;
    EXPECT_EQ(ParseLnkLinkInfo(Span(bytes), &offset, &info, &damage), row.error) << row.what;
  }
  // A text without its terminator inside the structure.
  std::vector<uint8_t> unterminated = Bytes(kUnicodeNetworkLinkInfo);
  unterminated.resize(0x66);
  unterminated[0] = 0x66;
  size_t offset = 0;
  LnkLinkInfo info;
  uint32_t damage = 0;
  EXPECT_EQ(ParseLnkLinkInfo(Span(unterminated), &offset, &info, &damage), LnkError::kLinkInfoDamaged);
}

TEST(LnkLinkInfo, ADamagedVolumeIsOnlyFlagged) {
  std::vector<uint8_t> bytes(kExampleFile + kLnkHeaderSize + 2 + 0xBD, kExampleFile + kLnkHeaderSize + 2 + 0xBD + 0x3C);
  bytes[0x1C + 0x0C] = 0x40;  // the volume label's offset, beyond the VolumeID
  size_t offset = 0;
  LnkLinkInfo info;
  uint32_t damage = 0;
  ASSERT_EQ(ParseLnkLinkInfo(Span(bytes), &offset, &info, &damage), LnkError::kNone);
  EXPECT_EQ(damage, kDamageVolumeLabel);
  EXPECT_EQ(Utf8(LinkInfoLocalPath(info)), "C:\\test\\a.txt");
}

// ---- String data ----

TEST(LnkStrings, ReadsAnsiStringsAsShiftJisAndEndsATextAtACountedTerminator) {
  // Without the Unicode flag the strings are bytes in the ANSI code page, Shift-JIS here: 表 is 0x95 0x5C.
  const uint8_t ansi[] = {3, 0, 0x95, 0x5C, 'x', 2, 0, '-', 'a', 4, 0, 'i', '.', 'i', 'c'};
  size_t offset = 0;
  LnkStrings strings;
  ASSERT_EQ(ParseLnkStrings(Span(ansi), &offset, kLinkHasName | kLinkHasArguments | kLinkHasIconLocation, &strings),
            LnkError::kNone);
  EXPECT_EQ(Utf8(strings.description), u8"表x");
  EXPECT_EQ(Utf8(strings.arguments), "-a");
  EXPECT_EQ(Utf8(strings.iconLocation), "i.ic");
  EXPECT_EQ(offset, sizeof ansi);
  const uint8_t unicode[] = {3, 0, 'a', 0, 0, 0, 'b', 0};
  offset = 0;
  ASSERT_EQ(ParseLnkStrings(Span(unicode), &offset, kLinkHasArguments | kLinkIsUnicode, &strings), LnkError::kNone);
  EXPECT_EQ(Utf8(strings.arguments), "a");
  EXPECT_EQ(offset, 8u);
}

TEST(LnkStrings, RefusesCountsPastTheEnd) {
  struct Row {
    const char *what;
    std::vector<uint8_t> bytes;
    uint32_t flags;
  } rows[] = {
      {"no count", {}, kLinkHasName | kLinkIsUnicode},
      {"half a count", {1}, kLinkHasName},
      {"Unicode count one unit too many", {2, 0, 'a', 0, 'b'}, kLinkHasName | kLinkIsUnicode},
      {"ANSI count one byte too many", {3, 0, 'a', 'b'}, kLinkHasArguments},
      // A first count that swallows the second string leaves the third reading past the end, as in
      // lnkparse3/padded_cli_arguments.lnk.
      {"overlapping counts",
       {4, 0, 'a', 0, 1, 0, 'b', 0, 0x30, 0},
       kLinkHasWorkingDir | kLinkHasArguments | kLinkHasIconLocation | kLinkIsUnicode},
  };
  for (const Row &row : rows) {
    size_t offset = 0;
    LnkStrings strings;
    EXPECT_EQ(ParseLnkStrings(Span(row.bytes), &offset, row.flags, &strings), LnkError::kStringPastEnd) << row.what;
    EXPECT_EQ(offset, 0u) << row.what;
  }
}

TEST(LnkStrings, WritesOnlyTextsThatAreThere) {
  LnkStrings strings;
  strings.workingDir = u"C:\\表";
  strings.iconLocation = u"i";
  std::vector<uint8_t> bytes;
  WriteLnkStrings(strings, &bytes);
  const std::vector<uint8_t> expected = {4, 0, 'C', 0, ':', 0, '\\', 0, 0x68, 0x88, 1, 0, 'i', 0};
  EXPECT_EQ(bytes, expected);
}

// ---- Extra data ----

// An environment block as Windows lays it out: 260 ANSI bytes, then 260 UTF-16 units.
std::vector<uint8_t> EnvironmentBlock(uint32_t signature, const std::string &ansi, const std::u16string &wide) {
  std::vector<uint8_t> block(kEnvironmentBlockSize, 0);
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

std::vector<uint8_t> Join(std::initializer_list<std::vector<uint8_t>> parts) {
  std::vector<uint8_t> out;
  for (const std::vector<uint8_t> &part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

const std::vector<uint8_t> kTerminal = {0, 0, 0, 0};

// The special and known folder blocks and a tracker block stand between the two that carry a target or icon: the reader
// steps over them (their contents are used by nothing here).
TEST(LnkExtraData, ReadsTheBlocksThatCarryATargetOrIcon) {
  std::vector<uint8_t> special = {0x10, 0, 0, 0, 0x05, 0, 0, 0xA0, 0x25, 0, 0, 0, 0xD1, 0, 0, 0};
  std::vector<uint8_t> known = {0x1C, 0,    0,    0,    0x0B, 0,    0,    0xA0, 0x3A, 0xCC, 0xBF, 0xB4, 0x2C, 0xDB,
                                0x4C, 0x42, 0xB0, 0x29, 0x7F, 0xE9, 0x9A, 0x87, 0xC6, 0x41, 0xD1, 0,    0,    0};
  std::vector<uint8_t> tracker(0x60, 0);
  tracker[0] = 0x60;
  tracker[4] = 0x03;
  tracker[7] = 0xA0;
  std::vector<uint8_t> bytes =
      Join({EnvironmentBlock(kBlockEnvironment, "%windir%\\ansi.exe", u"%windir%\\notepad.exe"), special, known,
            tracker, EnvironmentBlock(kBlockIconEnvironment, "%SystemRoot%\\i.dll", u""), kTerminal});
  LnkExtraData extra;
  uint32_t damage = 0;
  ParseLnkExtraData(Span(bytes), 0, &extra, &damage);
  EXPECT_EQ(damage, 0u);
  EXPECT_TRUE(extra.hasEnvironment);
  EXPECT_EQ(Utf8(extra.environmentTarget), "%windir%\\notepad.exe");  // the Unicode copy
  EXPECT_TRUE(extra.hasIconEnvironment);
  EXPECT_EQ(Utf8(extra.iconEnvironmentTarget), "%SystemRoot%\\i.dll");  // no Unicode copy: the ANSI one
  EXPECT_TRUE(extra.hasSpecialFolder);
  EXPECT_TRUE(extra.hasKnownFolder);
}

TEST(LnkExtraData, FlagsDamageAndKeepsTheBlocksBeforeIt) {
  std::vector<uint8_t> environment = EnvironmentBlock(kBlockEnvironment, "", u"C:\\x.exe");
  std::vector<uint8_t> shortEnvironment(environment.begin(), environment.begin() + 0x200);
  shortEnvironment[0] = 0x00;
  shortEnvironment[1] = 0x02;
  std::vector<uint8_t> unterminated = EnvironmentBlock(kBlockEnvironment, std::string(260, 'a'), u"");
  std::vector<uint8_t> tiny = {6, 0, 0, 0, 1, 0};
  struct Row {
    const char *what;
    std::vector<uint8_t> bytes;
    uint32_t damage;
    bool environment;
  } rows[] = {
      {"complete", Join({environment, kTerminal}), 0, true},
      {"no terminal block", environment, kDamageNoTerminal, true},
      {"half a terminal block", Join({environment, {0, 0}}), kDamageNoTerminal, true},
      {"a block past the end", Join({environment, {0x40, 0, 0, 0, 1, 0, 0, 0xA0}}), kDamageExtraBlock, true},
      {"a block too small for its header", Join({environment, tiny}), kDamageExtraBlock, true},
      {"an environment block of the wrong size", Join({shortEnvironment, kTerminal}), kDamageExtraBlock, false},
      {"an environment text without its end", Join({unterminated, kTerminal}), kDamageExtraBlock, false},
      {"bytes behind the terminal block", Join({environment, kTerminal, {1, 2, 3}}), kDamageTrailingBytes, true},
  };
  for (const Row &row : rows) {
    LnkExtraData extra;
    uint32_t damage = 0;
    ParseLnkExtraData(Span(row.bytes), 0, &extra, &damage);
    EXPECT_EQ(damage, row.damage) << row.what;
    EXPECT_EQ(extra.hasEnvironment, row.environment) << row.what;
  }
}

TEST(LnkExtraData, WritesFixedSizeEnvironmentBlocks) {
  LnkExtraData extra;
  extra.hasEnvironment = true;
  extra.environmentTarget = u"%TEMP%\\表.exe";
  extra.hasIconEnvironment = true;
  extra.iconEnvironmentTarget = std::u16string(300, u'表');  // longer than the field: cut with its terminator
  std::vector<uint8_t> bytes;
  WriteLnkExtraData(extra, &bytes);
  ASSERT_EQ(bytes.size(), 2 * kEnvironmentBlockSize + 4);
  EXPECT_EQ(bytes[8 + 7], 0x95);  // the ANSI copy in Shift-JIS
  EXPECT_EQ(bytes[8 + 8], 0x5C);
  // The icon block's ANSI copy holds whole characters only: 129 of them and its terminator.
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
