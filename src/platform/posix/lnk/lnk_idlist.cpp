// LinkTargetIDList: the shell's item list for the target. Read to check its sizes and, where its first item places
// it in the file system, to recover the path; written for a drive path as My Computer, the drive and file entries.
#include <cstring>

#include "platform/posix/lnk/lnk_codec.h"
#include "platform/posix/lnk/lnk_text.h"
#include "platform/posix/text/path_names.h"

namespace {

// Item layout. Every item starts with its 16-bit size, which counts the size field itself; then the class type byte.
const size_t kItemType = 2;
// Root folder item (class type 0x1F): sort index at 3, the folder's CLSID at 4.
const size_t kRootClsid = 4;
const size_t kRootItemSize = 0x14;
// Volume item (class type 0x2?): the drive's name ("C:\") from 3, in a 25-byte item.
const size_t kVolumeName = 3;
const size_t kVolumeItemSize = 0x19;
// Network item (class type 0x4?): flags at 4, the location ("\\server\share") from 5, then an optional description
// and comments, then (flag 0x10) the same texts in UTF-16.
const size_t kNetworkFlags = 4;
const size_t kNetworkLocation = 5;
const uint8_t kNetworkHasDescription = 0x80;
const uint8_t kNetworkHasComments = 0x40;
const uint8_t kNetworkHasUnicode = 0x10;
// File entry item (class type 0x3?: 0x01 folder, 0x02 file, 0x04 the primary name is UTF-16): size at 4, FAT date and
// time at 8, attributes at 12, the primary name from 14; then extension blocks, the first at an even offset.
const size_t kEntrySize = 4;
const size_t kEntryDosTime = 8;
const size_t kEntryAttributes = 12;
const size_t kEntryName = 14;
const uint8_t kEntryFolder = 0x01;
const uint8_t kEntryFile = 0x02;
const uint8_t kEntryUnicodeName = 0x04;
// Extension block 0xBEEF0004 of a file entry: size, version, signature, two FAT times, then the long name at an
// offset that depends on the version; its last 2 bytes give the block's own offset in the item.
const uint32_t kBeef0004 = 0xBEEF0004;
const size_t kBeefVersion = 2;
const size_t kBeefSignature = 4;
const size_t kBeefCreation = 8;
const size_t kBeefAccess = 12;
const size_t kBeefNameOffsetV3 = 0x14;  // Windows XP
const size_t kBeefNameOffsetV7 = 0x26;
const size_t kBeefNameOffsetV8 = 0x2A;  // Windows 7
const size_t kBeefNameOffsetV9 = 0x2E;  // Windows 8 and later

// {20D04FE0-3AEA-1069-A2D8-08002B30309D} My Computer, {208D2C60-3AEA-1069-A2D7-08002B30309D} My Network Places and
// {F02C1A0D-BE21-4350-88B0-7367FC96EF3C} Network, as they lie in the file.
const uint8_t kMyComputer[16] = {0xE0, 0x4F, 0xD0, 0x20, 0xEA, 0x3A, 0x69, 0x10,
                                 0xA2, 0xD8, 0x08, 0x00, 0x2B, 0x30, 0x30, 0x9D};
const uint8_t kNetworkPlaces[16] = {0x60, 0x2C, 0x8D, 0x20, 0xEA, 0x3A, 0x69, 0x10,
                                    0xA2, 0xD7, 0x08, 0x00, 0x2B, 0x30, 0x30, 0x9D};
const uint8_t kNetworkFolder[16] = {0x0D, 0x1A, 0x2C, 0xF0, 0x21, 0xBE, 0x50, 0x43,
                                    0x88, 0xB0, 0x73, 0x67, 0xFC, 0x96, 0xEF, 0x3C};

// Splits a list into its items. False when an item's size leads outside the list or is too small to hold itself.
bool SplitItems(ByteSpan list, std::vector<ByteSpan> *items) {
  size_t position = 0;
  while (position < list.size) {
    uint16_t size = 0;
    if (!ReadU16(list, position, &size) || size < 3 || !SpanHas(list, position, size)) return false;
    items->push_back(SubSpan(list, position, size));
    position += size;
  }
  return true;
}

std::u16string ItemText(ByteSpan item, size_t offset, bool unicode, size_t *end) {
  std::u16string text;
  if (unicode) {
    if (!ReadUtf16Z(item, offset, item.size, &text)) return std::u16string();
    *end = offset + 2 * (text.size() + 1);
    return text;
  }
  std::string ansi;
  if (!ReadAnsiZ(item, offset, item.size, &ansi)) return std::u16string();
  *end = offset + ansi.size() + 1;
  return Utf16FromCp932(ansi);
}

// The long name of a file entry's 0xBEEF0004 block, looked for first at the even offset behind the primary name and
// then at the offset that the item's last 2 bytes give. False when the entry has none.
bool EntryLongName(ByteSpan item, size_t nameEnd, std::u16string *name) {
  size_t candidates[2] = {(nameEnd + 1) & ~static_cast<size_t>(1), 0};
  uint16_t trailing = 0;
  if (ReadU16(item, item.size - 2, &trailing)) candidates[1] = trailing;
  for (size_t start : candidates) {
    uint16_t size = 0, version = 0;
    uint32_t signature = 0;
    if (start < kEntryName || !ReadU16(item, start, &size) || !SpanHas(item, start, size) ||
        !ReadU16(item, start + kBeefVersion, &version) || !ReadU32(item, start + kBeefSignature, &signature) ||
        signature != kBeef0004)
      continue;
    size_t offset = version >= 9   ? kBeefNameOffsetV9
                    : version >= 8 ? kBeefNameOffsetV8
                    : version >= 7 ? kBeefNameOffsetV7
                    : version >= 3 ? kBeefNameOffsetV3
                                   : 0;
    if (offset != 0 && ReadUtf16Z(SubSpan(item, start, size), offset, size, name) && !name->empty()) return true;
  }
  return false;
}

void AppendComponent(std::u16string *path, const std::u16string &name) {
  if (!path->empty() && path->back() != u'\\') path->push_back(u'\\');
  *path += name;
}

}  // namespace

LnkError ParseLnkIdList(ByteSpan file, size_t *offset, std::vector<uint8_t> *items) {
  uint16_t size = 0;
  if (!ReadU16(file, *offset, &size) || !SpanHas(file, *offset + 2, size)) return LnkError::kIdListPastEnd;
  ByteSpan list = SubSpan(file, *offset + 2, size);
  // The items end at the first item of size 0; bytes that the list's size counts behind it are passed over.
  size_t position = 0;
  for (;;) {
    uint16_t itemSize = 0;
    if (!ReadU16(list, position, &itemSize)) return LnkError::kIdListDamaged;
    if (itemSize == 0) break;
    if (itemSize < 3 || !SpanHas(list, position, itemSize)) return LnkError::kIdListDamaged;
    position += itemSize;
  }
  items->assign(list.data, list.data + position);
  *offset += 2 + static_cast<size_t>(size);
  return LnkError::kNone;
}

void WriteLnkIdList(const std::vector<uint8_t> &items, std::vector<uint8_t> *out) {
  PutU16(out, static_cast<uint16_t>(items.size() + 2));
  out->insert(out->end(), items.begin(), items.end());
  PutU16(out, 0);
}

bool IdListPath(const std::vector<uint8_t> &bytes, std::u16string *path) {
  std::vector<ByteSpan> items;
  if (bytes.empty() || !SplitItems(ByteSpan{bytes.data(), bytes.size()}, &items)) return false;
  std::u16string result;
  bool placed = false;  // the path so far names a drive or a share
  for (size_t i = 0; i < items.size(); ++i) {
    ByteSpan item = items[i];
    uint8_t type = item.data[kItemType];
    size_t end = 0;
    if (type == 0x1F && i == 0) {
      // A root folder: only the computer and the network lead on to the file system.
      if (!SpanHas(item, kRootClsid, 16)) return false;
      const uint8_t *clsid = item.data + kRootClsid;
      if (std::memcmp(clsid, kMyComputer, 16) != 0 && std::memcmp(clsid, kNetworkPlaces, 16) != 0 &&
          std::memcmp(clsid, kNetworkFolder, 16) != 0)
        return false;
    } else if ((type & 0x70) == 0x20 && !placed) {
      std::u16string name = ItemText(item, kVolumeName, false, &end);
      // A drive letter: a shell folder given by its class id (type 0x2E) shares the bits of a volume item, and the
      // Desktop's id happens to hold ':' where a volume's name has it.
      bool letter = name.size() >= 2 && ((name[0] >= u'A' && name[0] <= u'Z') || (name[0] >= u'a' && name[0] <= u'z'));
      if (!letter || name[1] != u':') return false;
      result = name.substr(0, 2) + u"\\";
      placed = true;
    } else if ((type & 0x70) == 0x40 && !placed) {
      // Entire network, provider, domain and server items come before the share; the last one that holds a UNC
      // location places the path.
      uint8_t flags = 0;
      if (!ReadU8(item, kNetworkFlags, &flags)) return false;
      std::u16string location = ItemText(item, kNetworkLocation, false, &end);
      if (end == 0) return false;
      if (flags & kNetworkHasUnicode) {
        size_t next = end;
        std::u16string skipped;
        if (flags & kNetworkHasDescription) skipped = ItemText(item, next, false, &next);
        if (flags & kNetworkHasComments) skipped = ItemText(item, next, false, &next);
        size_t unicodeEnd = 0;
        std::u16string wide = ItemText(item, next, true, &unicodeEnd);
        if (unicodeEnd != 0) location = wide;
      }
      if (location.size() > 2 && location[0] == u'\\' && location[1] == u'\\') {
        while (!location.empty() && location.back() == u'\\') location.pop_back();
        result = location;
        placed = i + 1 == items.size() || (items[i + 1].data[kItemType] & 0x70) != 0x40;
      }
    } else if ((type & 0x70) == 0x30 && placed) {
      std::u16string name = ItemText(item, kEntryName, (type & kEntryUnicodeName) != 0, &end);
      if (end == 0) return false;
      std::u16string longName;
      if (EntryLongName(item, end, &longName)) name = longName;
      if (name.empty()) return false;
      AppendComponent(&result, name);
    } else {
      return false;
    }
  }
  if (!placed) return false;
  *path = result;
  return true;
}

uint32_t FileTimeToDosDateTime(uint64_t fileTime) {
  // Whole seconds since 1601, then the civil date by the days-from-epoch algorithm.
  uint64_t seconds = fileTime / 10000000;
  uint64_t days = seconds / 86400;
  uint32_t secondOfDay = static_cast<uint32_t>(seconds % 86400);
  // Days from 1601-01-01 to 1970-01-01.
  int64_t z = static_cast<int64_t>(days) - 134774 + 719468;
  int64_t era = z / 146097;
  int64_t dayOfEra = z - era * 146097;
  int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  int64_t mp = (5 * dayOfYear + 2) / 153;
  int64_t day = dayOfYear - (153 * mp + 2) / 5 + 1;
  int64_t month = mp < 10 ? mp + 3 : mp - 9;
  int64_t year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
  if (year < 1980 || year > 2107) return 0;
  uint32_t date = static_cast<uint32_t>(((year - 1980) << 9) | (month << 5) | day);
  uint32_t time = (secondOfDay / 3600) << 11 | ((secondOfDay / 60) % 60) << 5 | (secondOfDay % 60) / 2;
  return date | (time << 16);
}

bool BuildIdListForPath(const std::u16string &path, const std::vector<PathItemFacts> &facts,
                        std::vector<uint8_t> *items) {
  if (path.size() < 3 || path[1] != u':' || path[2] != u'\\') return false;
  char16_t letter = path[0];
  if (letter >= u'a' && letter <= u'z') letter = static_cast<char16_t>(letter - u'a' + u'A');
  if (letter < u'A' || letter > u'Z') return false;
  std::vector<std::u16string> names = SplitNonEmpty(path.substr(3), u'\\');
  bool endsAsFolder = path.back() == u'\\';

  std::vector<uint8_t> out;
  PutU16(&out, kRootItemSize);
  PutU8(&out, 0x1F);
  PutU8(&out, 0x50);  // the sort index Windows gives My Computer
  out.insert(out.end(), kMyComputer, kMyComputer + 16);

  size_t volume = out.size();
  PutU16(&out, kVolumeItemSize);
  PutU8(&out, 0x2F);
  PutU8(&out, static_cast<uint8_t>(letter));
  PutU8(&out, ':');
  PutU8(&out, '\\');
  out.resize(volume + kVolumeItemSize, 0);

  for (size_t i = 0; i < names.size(); ++i) {
    PathItemFacts fact = i < facts.size() ? facts[i] : PathItemFacts();
    bool folder = fact.exists ? fact.isFolder : (i + 1 < names.size() || endsAsFolder);
    uint32_t attributes = fact.exists ? fact.attributes : (folder ? 0x10u : 0u);
    bool ansi = Cp932Holds(names[i]);
    size_t item = out.size();
    out.resize(item + kEntryName, 0);  // the fixed part; its size is patched in when the item is complete
    out[item + kItemType] =
        static_cast<uint8_t>(0x30 | (folder ? kEntryFolder : kEntryFile) | (ansi ? 0 : kEntryUnicodeName));
    PatchU32(&out, item + kEntrySize, folder ? 0 : fact.size);
    PatchU32(&out, item + kEntryDosTime, fact.dosWriteTime);
    PatchU16(&out, item + kEntryAttributes, static_cast<uint16_t>(attributes));
    // The primary name is where Windows puts the 8.3 name; Linux has none, so it is the name itself, as Windows
    // writes it on a volume without short names.
    if (ansi)
      PutAnsiZ(&out, Cp932FromUtf16(names[i]));
    else
      PutUtf16(&out, names[i], true);
    if ((out.size() - item) % 2 != 0) PutU8(&out, 0);
    // Version 3, the form of Windows XP, which every later version reads: the long name at 0x14, behind a 16-bit
    // offset to it and a 16-bit size of a localized name (none).
    size_t block = out.size();
    out.resize(block + kBeefNameOffsetV3, 0);
    PatchU16(&out, block + kBeefVersion, 3);
    PatchU32(&out, block + kBeefSignature, kBeef0004);
    PatchU32(&out, block + kBeefCreation, fact.dosCreationTime);
    PatchU32(&out, block + kBeefAccess, fact.dosAccessTime);
    PatchU16(&out, block + kBeefAccess + 4, static_cast<uint16_t>(kBeefNameOffsetV3));
    PutUtf16(&out, names[i], true);
    PutU16(&out, static_cast<uint16_t>(block - item));
    if (out.size() - item > 0xFFFF) return false;
    PatchU16(&out, block, static_cast<uint16_t>(out.size() - block));
    PatchU16(&out, item, static_cast<uint16_t>(out.size() - item));
  }
  *items = out;
  return true;
}
