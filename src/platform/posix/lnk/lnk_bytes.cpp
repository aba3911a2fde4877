// Bounded string reads and the small writers of the shortcut codec.
#include "platform/posix/lnk/lnk_bytes.h"

bool ReadAnsiZ(ByteSpan span, size_t offset, size_t limit, std::string *text) {
  if (limit > span.size) limit = span.size;
  for (size_t i = offset; i < limit; ++i) {
    if (span.data[i] == 0) {
      text->assign(reinterpret_cast<const char *>(span.data + offset), i - offset);
      return true;
    }
  }
  return false;
}

bool ReadUtf16Z(ByteSpan span, size_t offset, size_t limit, std::u16string *text) {
  if (limit > span.size) limit = span.size;
  std::u16string result;
  for (size_t i = offset; i < limit && limit - i >= 2; i += 2) {
    char16_t unit = static_cast<char16_t>(span.data[i] | (span.data[i + 1] << 8));
    if (unit == 0) {
      *text = result;
      return true;
    }
    result.push_back(unit);
  }
  return false;
}

bool ReadUtf16(ByteSpan span, size_t offset, size_t units, std::u16string *text) {
  if (units > span.size / 2 || !SpanHas(span, offset, units * 2)) return false;
  text->clear();
  text->reserve(units);
  for (size_t i = 0; i < units; ++i) {
    const uint8_t *p = span.data + offset + 2 * i;
    text->push_back(static_cast<char16_t>(p[0] | (p[1] << 8)));
  }
  return true;
}

void PatchU16(std::vector<uint8_t> *out, size_t offset, uint16_t value) {
  (*out)[offset] = static_cast<uint8_t>(value);
  (*out)[offset + 1] = static_cast<uint8_t>(value >> 8);
}

void PatchU32(std::vector<uint8_t> *out, size_t offset, uint32_t value) {
  for (int i = 0; i < 4; ++i) (*out)[offset + i] = static_cast<uint8_t>(value >> (8 * i));
}

void PutAnsiZ(std::vector<uint8_t> *out, const std::string &text) {
  out->insert(out->end(), text.begin(), text.end());
  out->push_back(0);
}

void PutUtf16(std::vector<uint8_t> *out, const std::u16string &text, bool terminate) {
  for (char16_t unit : text) PutU16(out, unit);
  if (terminate) PutU16(out, 0);
}
