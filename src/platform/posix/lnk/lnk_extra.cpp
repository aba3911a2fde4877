// ExtraData: the blocks behind the string data, each a 32-bit size and signature. Read are those that carry a target
// or an icon (environment texts, the special or known folder that the ID list starts in); the rest are passed over.
#include "platform/posix/lnk/lnk_codec.h"
#include "platform/posix/lnk/lnk_text.h"

namespace {

const size_t kBlockSizeField = 0;
const size_t kBlockSignature = 4;
const size_t kBlockHeader = 8;
// Environment and icon environment blocks: 260 ANSI bytes, then 260 UTF-16 units, each NUL-terminated.
const size_t kEnvironmentAnsi = 8;
const size_t kEnvironmentUnicode = 8 + kEnvironmentAnsiChars;
// Special folder block: the CSIDL, then the offset in the ID list of the first item below that folder.
const size_t kSpecialFolderId = 8;
const size_t kSpecialFolderOffset = 12;
// Known folder block: the KNOWNFOLDERID, then the offset in the ID list.
const size_t kKnownFolderId = 8;
const size_t kKnownFolderOffset = 24;

// The text of an environment block: the Unicode copy, or the ANSI copy when that is empty. False when neither copy
// ends inside its field.
bool EnvironmentText(ByteSpan block, std::u16string *text) {
  std::u16string wide;
  std::string ansi;
  bool hasWide = ReadUtf16Z(block, kEnvironmentUnicode, kEnvironmentUnicode + 2 * kEnvironmentAnsiChars, &wide);
  bool hasAnsi = ReadAnsiZ(block, kEnvironmentAnsi, kEnvironmentAnsi + kEnvironmentAnsiChars, &ansi);
  if (hasWide && !wide.empty()) {
    *text = wide;
    return true;
  }
  if (hasAnsi) {
    *text = Utf16FromCp932(ansi);
    return true;
  }
  return false;
}

void PutEnvironmentBlock(uint32_t signature, const std::u16string &text, std::vector<uint8_t> *out) {
  size_t start = out->size();
  PutU32(out, static_cast<uint32_t>(kEnvironmentBlockSize));
  PutU32(out, signature);
  // Both fields are fixed; the texts are cut to fit with their terminator (the shell link object refuses longer).
  std::string ansi = Cp932Prefix(Cp932FromUtf16(text), kEnvironmentAnsiChars - 1);
  out->insert(out->end(), ansi.begin(), ansi.end());
  out->resize(start + kEnvironmentUnicode, 0);
  PutUtf16(out, text.substr(0, kEnvironmentAnsiChars - 1), false);
  out->resize(start + kEnvironmentBlockSize, 0);
}

}  // namespace

void ParseLnkExtraData(ByteSpan file, size_t offset, LnkExtraData *extra, uint32_t *damage) {
  LnkExtraData parsed;
  for (;;) {
    uint32_t size = 0, signature = 0;
    if (!ReadU32(file, offset + kBlockSizeField, &size)) {
      *damage |= kDamageNoTerminal;
      break;
    }
    if (size < 4) {
      // The terminal block. Anything behind it is not the shortcut's.
      if (SpanHas(file, offset, 5)) *damage |= kDamageTrailingBytes;
      break;
    }
    if (size < kBlockHeader || !SpanHas(file, offset, size)) {
      *damage |= kDamageExtraBlock;
      break;
    }
    ByteSpan block = SubSpan(file, offset, size);
    ReadU32(block, kBlockSignature, &signature);
    bool understood = true;
    if (signature == kBlockEnvironment || signature == kBlockIconEnvironment) {
      bool icon = signature == kBlockIconEnvironment;
      std::u16string text;
      understood = size == kEnvironmentBlockSize && EnvironmentText(block, &text);
      if (understood && icon) {
        parsed.hasIconEnvironment = true;
        parsed.iconEnvironmentTarget = text;
      } else if (understood) {
        parsed.hasEnvironment = true;
        parsed.environmentTarget = text;
      }
    } else if (signature == kBlockSpecialFolder) {
      understood = size == kSpecialFolderBlockSize;
      if (understood) {
        parsed.hasSpecialFolder = true;
        ReadU32(block, kSpecialFolderId, &parsed.specialFolderId);
        ReadU32(block, kSpecialFolderOffset, &parsed.specialFolderOffset);
      }
    } else if (signature == kBlockKnownFolder) {
      understood = size == kKnownFolderBlockSize;
      if (understood) {
        parsed.hasKnownFolder = true;
        for (size_t i = 0; i < 16; ++i) parsed.knownFolderId[i] = block.data[kKnownFolderId + i];
        ReadU32(block, kKnownFolderOffset, &parsed.knownFolderOffset);
      }
    } else {
      parsed.otherSignatures.push_back(signature);
    }
    if (!understood) *damage |= kDamageExtraBlock;
    offset += size;
  }
  *extra = parsed;
}

void WriteLnkExtraData(const LnkExtraData &extra, std::vector<uint8_t> *out) {
  if (extra.hasEnvironment) PutEnvironmentBlock(kBlockEnvironment, extra.environmentTarget, out);
  if (extra.hasIconEnvironment) PutEnvironmentBlock(kBlockIconEnvironment, extra.iconEnvironmentTarget, out);
  PutU32(out, 0);
}
