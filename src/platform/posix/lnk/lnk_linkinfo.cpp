// LinkInfo: where the target was when the shortcut was saved, as a local path on a volume and/or as a network share
// with the path below it. Every offset is checked against the structure that holds it before it is followed.
#include "platform/posix/lnk/lnk_codec.h"
#include "platform/posix/lnk/lnk_text.h"

namespace {

// LinkInfo header.
const size_t kInfoSize = 0x00;
const size_t kInfoHeaderSize = 0x04;
const size_t kInfoFlags = 0x08;
const size_t kInfoVolumeIdOffset = 0x0C;
const size_t kInfoLocalBasePathOffset = 0x10;
const size_t kInfoNetworkOffset = 0x14;
const size_t kInfoSuffixOffset = 0x18;
const size_t kInfoLocalBasePathOffsetUnicode = 0x1C;  // only with a header of 0x24 bytes or more
const size_t kInfoSuffixOffsetUnicode = 0x20;
const size_t kInfoHeaderAnsi = 0x1C;
const size_t kInfoHeaderUnicode = 0x24;
const uint32_t kInfoHasVolume = 0x1;   // VolumeIDAndLocalBasePath
const uint32_t kInfoHasNetwork = 0x2;  // CommonNetworkRelativeLinkAndPathSuffix

// VolumeID.
const size_t kVolumeSize = 0x00;
const size_t kVolumeDriveType = 0x04;
const size_t kVolumeSerial = 0x08;
const size_t kVolumeLabelOffset = 0x0C;
const size_t kVolumeLabelOffsetUnicode = 0x10;  // present when the label offset is 0x14
const size_t kVolumeHeaderAnsi = 0x10;
const size_t kVolumeHeaderUnicode = 0x14;

// CommonNetworkRelativeLink.
const size_t kNetSize = 0x00;
const size_t kNetFlags = 0x04;
const size_t kNetNameOffset = 0x08;
const size_t kNetDeviceOffset = 0x0C;
const size_t kNetProvider = 0x10;
const size_t kNetNameOffsetUnicode = 0x14;  // present when the name offset is above 0x14
const size_t kNetDeviceOffsetUnicode = 0x18;
const size_t kNetHeaderAnsi = 0x14;
const size_t kNetHeaderUnicode = 0x1C;

// Reads the text at `offset` of `span`: ANSI (as CP932), or UTF-16 with `unicode`. False when the offset is outside
// the span or the text has no end inside it.
bool TextAt(ByteSpan span, size_t offset, bool unicode, std::u16string *text) {
  if (offset >= span.size) return false;
  if (unicode) return ReadUtf16Z(span, offset, span.size, text);
  std::string ansi;
  if (!ReadAnsiZ(span, offset, span.size, &ansi)) return false;
  *text = Utf16FromCp932(ansi);
  return true;
}

// VolumeID: nothing the shell link object gives depends on it, so damage here is only flagged.
bool ReadVolume(ByteSpan info, uint32_t offset, LnkLinkInfo *result) {
  uint32_t size = 0, labelOffset = 0, labelOffsetUnicode = 0;
  if (!ReadU32(info, offset, &size) || size < kVolumeHeaderAnsi || !SpanHas(info, offset, size)) return false;
  ByteSpan volume = SubSpan(info, offset, size);
  ReadU32(volume, kVolumeDriveType, &result->driveType);
  ReadU32(volume, kVolumeSerial, &result->driveSerialNumber);
  ReadU32(volume, kVolumeLabelOffset, &labelOffset);
  if (labelOffset == kVolumeHeaderUnicode)
    return ReadU32(volume, kVolumeLabelOffsetUnicode, &labelOffsetUnicode) &&
           TextAt(volume, labelOffsetUnicode, true, &result->volumeLabel);
  return TextAt(volume, labelOffset, false, &result->volumeLabel);
}

bool ReadNetwork(ByteSpan info, uint32_t offset, LnkLinkInfo *result) {
  uint32_t size = 0, nameOffset = 0, deviceOffset = 0;
  if (!ReadU32(info, offset, &size) || size < kNetHeaderAnsi || !SpanHas(info, offset, size)) return false;
  ByteSpan net = SubSpan(info, offset, size);
  ReadU32(net, kNetFlags, &result->networkFlags);
  ReadU32(net, kNetNameOffset, &nameOffset);
  ReadU32(net, kNetDeviceOffset, &deviceOffset);
  ReadU32(net, kNetProvider, &result->networkProviderType);
  if (!TextAt(net, nameOffset, false, &result->netName)) return false;
  bool device = (result->networkFlags & kNetworkValidDevice) != 0;
  if (device && !TextAt(net, deviceOffset, false, &result->deviceName)) return false;
  if (nameOffset > kNetHeaderAnsi) {
    uint32_t nameOffsetUnicode = 0, deviceOffsetUnicode = 0;
    if (!ReadU32(net, kNetNameOffsetUnicode, &nameOffsetUnicode) ||
        !ReadU32(net, kNetDeviceOffsetUnicode, &deviceOffsetUnicode))
      return false;
    if (nameOffsetUnicode != 0 && !TextAt(net, nameOffsetUnicode, true, &result->netName)) return false;
    if (device && deviceOffsetUnicode != 0 && !TextAt(net, deviceOffsetUnicode, true, &result->deviceName))
      return false;
  }
  return true;
}

void PutVolume(const LnkLinkInfo &info, std::vector<uint8_t> *out) {
  size_t start = out->size();
  bool unicode = !Cp932Holds(info.volumeLabel);
  PutU32(out, 0);
  PutU32(out, info.driveType);
  PutU32(out, info.driveSerialNumber);
  if (unicode) {
    PutU32(out, static_cast<uint32_t>(kVolumeHeaderUnicode));
    PutU32(out, static_cast<uint32_t>(kVolumeHeaderUnicode));
    PutUtf16(out, info.volumeLabel, true);
  } else {
    PutU32(out, static_cast<uint32_t>(kVolumeHeaderAnsi));
    PutAnsiZ(out, Cp932FromUtf16(info.volumeLabel));
  }
  PatchU32(out, start + kVolumeSize, static_cast<uint32_t>(out->size() - start));
}

void PutNetwork(const LnkLinkInfo &info, std::vector<uint8_t> *out) {
  size_t start = out->size();
  bool device = !info.deviceName.empty();
  bool unicode = !IsAscii(info.netName) || !IsAscii(info.deviceName);
  size_t header = unicode ? kNetHeaderUnicode : kNetHeaderAnsi;
  out->resize(start + header, 0);
  uint32_t flags = kNetworkValidNetType | (device ? kNetworkValidDevice : 0);
  PatchU32(out, start + kNetFlags, flags);
  PatchU32(out, start + kNetProvider, info.networkProviderType ? info.networkProviderType : kNetworkProviderLanman);
  PatchU32(out, start + kNetNameOffset, static_cast<uint32_t>(out->size() - start));
  PutAnsiZ(out, Cp932FromUtf16(info.netName));
  if (device) {
    PatchU32(out, start + kNetDeviceOffset, static_cast<uint32_t>(out->size() - start));
    PutAnsiZ(out, Cp932FromUtf16(info.deviceName));
  }
  if (unicode) {
    PatchU32(out, start + kNetNameOffsetUnicode, static_cast<uint32_t>(out->size() - start));
    PutUtf16(out, info.netName, true);
    if (device) {
      PatchU32(out, start + kNetDeviceOffsetUnicode, static_cast<uint32_t>(out->size() - start));
      PutUtf16(out, info.deviceName, true);
    }
  }
  PatchU32(out, start + kNetSize, static_cast<uint32_t>(out->size() - start));
}

std::u16string JoinWithBackslash(const std::u16string &base, const std::u16string &rest) {
  if (base.empty() || rest.empty() || base.back() == u'\\') return base + rest;
  return base + u"\\" + rest;
}

}  // namespace

LnkError ParseLnkLinkInfo(ByteSpan file, size_t *offset, LnkLinkInfo *result, uint32_t *damage) {
  uint32_t size = 0, headerSize = 0, flags = 0;
  if (!ReadU32(file, *offset + kInfoSize, &size) || !SpanHas(file, *offset, size)) return LnkError::kLinkInfoPastEnd;
  ByteSpan info = SubSpan(file, *offset, size);
  if (size < kInfoHeaderAnsi || !ReadU32(info, kInfoHeaderSize, &headerSize) || headerSize < kInfoHeaderAnsi ||
      headerSize > size)
    return LnkError::kLinkInfoDamaged;
  bool unicodeOffsets = headerSize >= kInfoHeaderUnicode;
  uint32_t volumeOffset = 0, baseOffset = 0, networkOffset = 0, suffixOffset = 0;
  uint32_t baseOffsetUnicode = 0, suffixOffsetUnicode = 0;
  ReadU32(info, kInfoFlags, &flags);
  ReadU32(info, kInfoVolumeIdOffset, &volumeOffset);
  ReadU32(info, kInfoLocalBasePathOffset, &baseOffset);
  ReadU32(info, kInfoNetworkOffset, &networkOffset);
  ReadU32(info, kInfoSuffixOffset, &suffixOffset);
  if (unicodeOffsets) {
    ReadU32(info, kInfoLocalBasePathOffsetUnicode, &baseOffsetUnicode);
    ReadU32(info, kInfoSuffixOffsetUnicode, &suffixOffsetUnicode);
  }
  LnkLinkInfo parsed;
  if (flags & kInfoHasVolume) {
    parsed.hasLocal = true;
    if (!ReadVolume(info, volumeOffset, &parsed)) *damage |= kDamageVolumeLabel;
    if (!TextAt(info, baseOffset, false, &parsed.localBasePath)) return LnkError::kLinkInfoDamaged;
    if (baseOffsetUnicode != 0 && !TextAt(info, baseOffsetUnicode, true, &parsed.localBasePath))
      return LnkError::kLinkInfoDamaged;
  }
  if (flags & kInfoHasNetwork) {
    parsed.hasNetwork = true;
    if (!ReadNetwork(info, networkOffset, &parsed)) return LnkError::kLinkInfoDamaged;
  }
  // The suffix belongs to either form; an offset of 0 means there is none.
  if (suffixOffset != 0 && !TextAt(info, suffixOffset, false, &parsed.commonPathSuffix))
    return LnkError::kLinkInfoDamaged;
  if (suffixOffsetUnicode != 0 && !TextAt(info, suffixOffsetUnicode, true, &parsed.commonPathSuffix))
    return LnkError::kLinkInfoDamaged;
  *result = parsed;
  *offset += size;
  return LnkError::kNone;
}

void WriteLnkLinkInfo(const LnkLinkInfo &info, std::vector<uint8_t> *out) {
  size_t start = out->size();
  bool unicode = (info.hasLocal && !IsAscii(info.localBasePath)) || !IsAscii(info.commonPathSuffix);
  size_t header = unicode ? kInfoHeaderUnicode : kInfoHeaderAnsi;
  out->resize(start + header, 0);
  PatchU32(out, start + kInfoHeaderSize, static_cast<uint32_t>(header));
  PatchU32(out, start + kInfoFlags, (info.hasLocal ? kInfoHasVolume : 0) | (info.hasNetwork ? kInfoHasNetwork : 0));
  if (info.hasLocal) {
    PatchU32(out, start + kInfoVolumeIdOffset, static_cast<uint32_t>(out->size() - start));
    PutVolume(info, out);
    PatchU32(out, start + kInfoLocalBasePathOffset, static_cast<uint32_t>(out->size() - start));
    PutAnsiZ(out, Cp932FromUtf16(info.localBasePath));
  }
  if (info.hasNetwork) {
    PatchU32(out, start + kInfoNetworkOffset, static_cast<uint32_t>(out->size() - start));
    PutNetwork(info, out);
  }
  PatchU32(out, start + kInfoSuffixOffset, static_cast<uint32_t>(out->size() - start));
  PutAnsiZ(out, Cp932FromUtf16(info.commonPathSuffix));
  if (unicode) {
    if (info.hasLocal) {
      PatchU32(out, start + kInfoLocalBasePathOffsetUnicode, static_cast<uint32_t>(out->size() - start));
      PutUtf16(out, info.localBasePath, true);
    }
    PatchU32(out, start + kInfoSuffixOffsetUnicode, static_cast<uint32_t>(out->size() - start));
    PutUtf16(out, info.commonPathSuffix, true);
  }
  PatchU32(out, start + kInfoSize, static_cast<uint32_t>(out->size() - start));
}

std::u16string LinkInfoLocalPath(const LnkLinkInfo &info) {
  if (!info.hasLocal || info.localBasePath.empty()) return std::u16string();
  return JoinWithBackslash(info.localBasePath, info.commonPathSuffix);
}

std::u16string LinkInfoNetworkPath(const LnkLinkInfo &info, bool deviceForm) {
  if (!info.hasNetwork) return std::u16string();
  const std::u16string &base = deviceForm && !info.deviceName.empty() ? info.deviceName : info.netName;
  if (base.empty()) return std::u16string();
  return JoinWithBackslash(base, info.commonPathSuffix);
}
