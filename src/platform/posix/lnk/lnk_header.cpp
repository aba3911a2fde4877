// ShellLinkHeader: the fixed 76 bytes at the start of every shortcut file.
#include <cstring>

#include "platform/posix/lnk/lnk_codec.h"

namespace {

// {00021401-0000-0000-C000-000000000046} as it lies in the file (the first three fields little-endian).
const uint8_t kShellLinkClsid[16] = {0x01, 0x14, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00,
                                     0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46};

}  // namespace

LnkError ParseLnkHeader(ByteSpan file, LnkHeader *header) {
  uint32_t size = 0;
  if (!SpanHas(file, 0, kLnkHeaderSize)) return LnkError::kTooShort;
  ReadU32(file, 0, &size);
  if (size != kLnkHeaderSize || std::memcmp(file.data + kLnkHeaderClsid, kShellLinkClsid, 16) != 0)
    return LnkError::kBadHeader;
  uint32_t iconIndex = 0;
  ReadU32(file, kLnkHeaderFlags, &header->linkFlags);
  ReadU32(file, kLnkHeaderAttributes, &header->fileAttributes);
  ReadU64(file, kLnkHeaderCreation, &header->creationTime);
  ReadU64(file, kLnkHeaderAccess, &header->accessTime);
  ReadU64(file, kLnkHeaderWrite, &header->writeTime);
  ReadU32(file, kLnkHeaderFileSize, &header->fileSize);
  ReadU32(file, kLnkHeaderIconIndex, &iconIndex);
  header->iconIndex = static_cast<int32_t>(iconIndex);
  ReadU32(file, kLnkHeaderShowCommand, &header->showCommand);
  ReadU16(file, kLnkHeaderHotKey, &header->hotKey);
  return LnkError::kNone;
}

void WriteLnkHeader(const LnkHeader &header, std::vector<uint8_t> *out) {
  PutU32(out, static_cast<uint32_t>(kLnkHeaderSize));
  out->insert(out->end(), kShellLinkClsid, kShellLinkClsid + 16);
  PutU32(out, header.linkFlags);
  PutU32(out, header.fileAttributes);
  PutU64(out, header.creationTime);
  PutU64(out, header.accessTime);
  PutU64(out, header.writeTime);
  PutU32(out, header.fileSize);
  PutU32(out, static_cast<uint32_t>(header.iconIndex));
  PutU32(out, header.showCommand);
  PutU16(out, header.hotKey);
  PutU16(out, 0);
  PutU32(out, 0);
  PutU32(out, 0);
}
