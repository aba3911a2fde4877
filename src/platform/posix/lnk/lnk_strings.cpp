// StringData: the description, relative path, working folder, arguments and icon location, each a 16-bit count of
// characters followed by that many UTF-16 units, or bytes in the ANSI code page when the shortcut is not Unicode.
#include "platform/posix/lnk/lnk_codec.h"
#include "platform/posix/lnk/lnk_text.h"

namespace {

struct StringSlot {
  uint32_t flag;
  std::u16string LnkStrings::*field;
};

// The order in which the strings follow each other in the file.
const StringSlot kSlots[] = {
    {kLinkHasName, &LnkStrings::description},          {kLinkHasRelativePath, &LnkStrings::relativePath},
    {kLinkHasWorkingDir, &LnkStrings::workingDir},     {kLinkHasArguments, &LnkStrings::arguments},
    {kLinkHasIconLocation, &LnkStrings::iconLocation},
};

}  // namespace

LnkError ParseLnkStrings(ByteSpan file, size_t *offset, uint32_t linkFlags, LnkStrings *strings) {
  bool unicode = (linkFlags & kLinkIsUnicode) != 0;
  size_t position = *offset;
  LnkStrings parsed;
  for (const StringSlot &slot : kSlots) {
    if (!(linkFlags & slot.flag)) continue;
    uint16_t count = 0;
    if (!ReadU16(file, position, &count)) return LnkError::kStringPastEnd;
    position += 2;
    if (unicode) {
      if (!ReadUtf16(file, position, count, &(parsed.*slot.field))) return LnkError::kStringPastEnd;
      position += 2 * static_cast<size_t>(count);
    } else {
      if (!SpanHas(file, position, count)) return LnkError::kStringPastEnd;
      parsed.*slot.field = Utf16FromCp932(std::string(reinterpret_cast<const char *>(file.data + position), count));
      position += count;
    }
    // A count that includes a terminator is not the format's, but some writers do it; the text ends there.
    std::u16string &text = parsed.*slot.field;
    size_t nul = text.find(u'\0');
    if (nul != std::u16string::npos) text.resize(nul);
  }
  *strings = parsed;
  *offset = position;
  return LnkError::kNone;
}

void WriteLnkStrings(const LnkStrings &strings, std::vector<uint8_t> *out) {
  for (const StringSlot &slot : kSlots) {
    const std::u16string &text = strings.*slot.field;
    if (text.empty()) continue;
    // The count has 16 bits; the shell link object refuses longer texts before they get here.
    std::u16string written = text.substr(0, 0xFFFF);
    PutU16(out, static_cast<uint16_t>(written.size()));
    PutUtf16(out, written, false);
  }
}
