// The shortcut (.lnk) file as a record: the fields of each on-disk structure, decoded, plus the layout constants that
// the structure files share. The codec turns bytes into this record and back (lnk_codec.h); docs/lnk-format.md
// describes the structures.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// ---- The header: offsets and the bits of LinkFlags ----------------------------------------------------------------

const size_t kLnkHeaderSize = 0x4C;
const size_t kLnkHeaderClsid = 0x04;       // 16 bytes, always {00021401-0000-0000-C000-000000000046}
const size_t kLnkHeaderFlags = 0x14;       // LinkFlags
const size_t kLnkHeaderAttributes = 0x18;  // the target's file attributes
const size_t kLnkHeaderCreation = 0x1C;    // the target's three times, FILETIME each
const size_t kLnkHeaderAccess = 0x24;
const size_t kLnkHeaderWrite = 0x2C;
const size_t kLnkHeaderFileSize = 0x34;   // low 32 bits of the target's size
const size_t kLnkHeaderIconIndex = 0x38;  // signed
const size_t kLnkHeaderShowCommand = 0x3C;
const size_t kLnkHeaderHotKey = 0x40;  // 16 bits: low byte the key, high byte the modifiers
// 0x42: 2 reserved bytes, 0x44 and 0x48: two reserved 32-bit words, all 0.

const uint32_t kLinkHasIdList = 0x00000001;
const uint32_t kLinkHasLinkInfo = 0x00000002;
const uint32_t kLinkHasName = 0x00000004;
const uint32_t kLinkHasRelativePath = 0x00000008;
const uint32_t kLinkHasWorkingDir = 0x00000010;
const uint32_t kLinkHasArguments = 0x00000020;
const uint32_t kLinkHasIconLocation = 0x00000040;
const uint32_t kLinkIsUnicode = 0x00000080;
const uint32_t kLinkForceNoLinkInfo = 0x00000100;
const uint32_t kLinkHasExpString = 0x00000200;
const uint32_t kLinkHasExpIcon = 0x00004000;
// The bits that say which structures follow the header; the writer derives them from the record's contents.
const uint32_t kLinkStructureFlags = kLinkHasIdList | kLinkHasLinkInfo | kLinkHasName | kLinkHasRelativePath |
                                     kLinkHasWorkingDir | kLinkHasArguments | kLinkHasIconLocation | kLinkIsUnicode |
                                     kLinkHasExpString | kLinkHasExpIcon;

// ---- Extra data blocks ---------------------------------------------------------------------------------------------

const uint32_t kBlockEnvironment = 0xA0000001;      // the target as text with environment names, 0x314 bytes
const uint32_t kBlockSpecialFolder = 0xA0000005;    // CSIDL of the folder the ID list starts in, 0x10 bytes
const uint32_t kBlockIconEnvironment = 0xA0000007;  // the icon file as text with environment names, 0x314 bytes
const uint32_t kBlockKnownFolder = 0xA000000B;      // KNOWNFOLDERID the ID list starts in, 0x1C bytes
const size_t kEnvironmentBlockSize = 0x314;         // 8 + 260 ANSI bytes + 260 UTF-16 units
const size_t kEnvironmentAnsiChars = 260;
const size_t kSpecialFolderBlockSize = 0x10;
const size_t kKnownFolderBlockSize = 0x1C;

// ---- The record ----------------------------------------------------------------------------------------------------

// ShellLinkHeader, decoded.
struct LnkHeader {
  uint32_t linkFlags = 0;
  uint32_t fileAttributes = 0;
  uint64_t creationTime = 0;  // FILETIME as one number
  uint64_t accessTime = 0;
  uint64_t writeTime = 0;
  uint32_t fileSize = 0;
  int32_t iconIndex = 0;
  uint32_t showCommand = 1;  // SW_SHOWNORMAL
  uint16_t hotKey = 0;
};

// LinkInfo, decoded. Text is UTF-16: the Unicode copy where the file has one, else the ANSI copy read as CP932.
struct LnkLinkInfo {
  bool hasLocal = false;  // VolumeIDAndLocalBasePath
  uint32_t driveType = 0;
  uint32_t driveSerialNumber = 0;
  std::u16string volumeLabel;
  std::u16string localBasePath;
  bool hasNetwork = false;    // CommonNetworkRelativeLinkAndPathSuffix
  uint32_t networkFlags = 0;  // 1 ValidDevice, 2 ValidNetType
  std::u16string netName;     // "\\server\share"
  std::u16string deviceName;  // "Z:", when ValidDevice
  uint32_t networkProviderType = 0;
  std::u16string commonPathSuffix;
};

const uint32_t kNetworkValidDevice = 0x1;
const uint32_t kNetworkValidNetType = 0x2;
const uint32_t kNetworkProviderLanman = 0x00020000;  // WNNC_NET_LANMAN

// The five texts of StringData; each is present when its LinkFlags bit is set.
struct LnkStrings {
  std::u16string description;  // NAME_STRING
  std::u16string relativePath;
  std::u16string workingDir;
  std::u16string arguments;
  std::u16string iconLocation;
};

// The extra data blocks that carry a target or an icon; other blocks are passed over and only their signatures kept.
struct LnkExtraData {
  bool hasEnvironment = false;
  std::u16string environmentTarget;  // the Unicode copy, or the ANSI copy read as CP932 when that is empty
  bool hasIconEnvironment = false;
  std::u16string iconEnvironmentTarget;
  bool hasSpecialFolder = false;
  uint32_t specialFolderId = 0;  // CSIDL
  uint32_t specialFolderOffset = 0;
  bool hasKnownFolder = false;
  uint8_t knownFolderId[16] = {};
  uint32_t knownFolderOffset = 0;
  std::vector<uint32_t> otherSignatures;
};

// Damage that a reader can live with: flagged in the record, the shortcut still loads.
const uint32_t kDamageExtraBlock = 0x1;     // an extra block runs past the end, is too small, or is malformed
const uint32_t kDamageNoTerminal = 0x2;     // the extra data ends without its terminal block
const uint32_t kDamageVolumeLabel = 0x4;    // LinkInfo's volume label cannot be read
const uint32_t kDamageTrailingBytes = 0x8;  // bytes follow the terminal block

// One shortcut file.
struct ShellLinkRecord {
  LnkHeader header;
  bool hasIdList = false;
  std::vector<uint8_t> idList;  // the items, without the 2-byte size before them and the terminal after them
  bool hasLinkInfo = false;
  LnkLinkInfo linkInfo;
  LnkStrings strings;
  LnkExtraData extra;
  uint32_t damage = 0;  // kDamage... bits, set by the reader
};

// Why a file could not be read. Damage that the fields depend on (a size or offset that leads outside the file or its
// structure, text without its end) makes the whole read fail, so that nothing half-read is ever acted on.
enum class LnkError {
  kNone,
  kTooShort,         // shorter than the header
  kBadHeader,        // header size or class id is not that of a shortcut
  kIdListPastEnd,    // the ID list's size leads past the end of the file
  kIdListDamaged,    // an item's size leads outside the list, or the list has no terminal item
  kLinkInfoPastEnd,  // LinkInfo's size leads past the end of the file
  kLinkInfoDamaged,  // a size, offset or text inside LinkInfo leads outside it
  kStringPastEnd,    // a string's count leads past the end of the file
};
