// Little-endian reading and writing for the shortcut codec. Every read names the span it reads from and is checked
// against it, so that a damaged length or offset can never take a read outside the bytes of the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// A view of bytes that the codec reads; it owns nothing.
struct ByteSpan {
  const uint8_t *data = nullptr;
  size_t size = 0;
};

// True when `count` bytes from `offset` lie inside the span. Written so that no sum can wrap.
inline bool SpanHas(ByteSpan span, size_t offset, size_t count) {
  return offset <= span.size && count <= span.size - offset;
}

// The bytes [offset, offset + count) of `span`; the caller has checked them with SpanHas.
inline ByteSpan SubSpan(ByteSpan span, size_t offset, size_t count) { return ByteSpan{span.data + offset, count}; }

// Each reader gives false, and leaves `*value` alone, when the value does not lie wholly inside the span.
inline bool ReadU8(ByteSpan span, size_t offset, uint8_t *value) {
  if (!SpanHas(span, offset, 1)) return false;
  *value = span.data[offset];
  return true;
}

inline bool ReadU16(ByteSpan span, size_t offset, uint16_t *value) {
  if (!SpanHas(span, offset, 2)) return false;
  const uint8_t *p = span.data + offset;
  *value = static_cast<uint16_t>(p[0] | (p[1] << 8));
  return true;
}

inline bool ReadU32(ByteSpan span, size_t offset, uint32_t *value) {
  if (!SpanHas(span, offset, 4)) return false;
  const uint8_t *p = span.data + offset;
  *value = static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) | (static_cast<uint32_t>(p[2]) << 16) |
           (static_cast<uint32_t>(p[3]) << 24);
  return true;
}

inline bool ReadU64(ByteSpan span, size_t offset, uint64_t *value) {
  uint32_t low = 0, high = 0;
  if (!ReadU32(span, offset, &low) || !ReadU32(span, offset + 4, &high)) return false;
  *value = (static_cast<uint64_t>(high) << 32) | low;
  return true;
}

// Reads a NUL-terminated single-byte string that starts at `offset` and must end before `limit` (itself within the
// span). Result: false when the string has no terminator before the limit.
bool ReadAnsiZ(ByteSpan span, size_t offset, size_t limit, std::string *text);
// The same for a NUL-terminated UTF-16LE string; the terminator is a 16-bit 0 at any byte position (strings are not
// always aligned in a file).
bool ReadUtf16Z(ByteSpan span, size_t offset, size_t limit, std::u16string *text);
// Reads exactly `units` UTF-16LE units from `offset`. Result: false when they do not lie inside the span.
bool ReadUtf16(ByteSpan span, size_t offset, size_t units, std::u16string *text);

// Appending little-endian values to a growing file image.
inline void PutU8(std::vector<uint8_t> *out, uint8_t value) { out->push_back(value); }
inline void PutU16(std::vector<uint8_t> *out, uint16_t value) {
  out->push_back(static_cast<uint8_t>(value));
  out->push_back(static_cast<uint8_t>(value >> 8));
}
inline void PutU32(std::vector<uint8_t> *out, uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8) out->push_back(static_cast<uint8_t>(value >> shift));
}
inline void PutU64(std::vector<uint8_t> *out, uint64_t value) {
  PutU32(out, static_cast<uint32_t>(value));
  PutU32(out, static_cast<uint32_t>(value >> 32));
}
// Overwrites a value that was appended earlier, at `offset`, once its final value is known (a size, an offset).
void PatchU16(std::vector<uint8_t> *out, size_t offset, uint16_t value);
void PatchU32(std::vector<uint8_t> *out, size_t offset, uint32_t value);
// Appends the bytes of `text`, then a NUL.
void PutAnsiZ(std::vector<uint8_t> *out, const std::string &text);
// Appends `text` as UTF-16LE, with a 16-bit NUL when `terminate` is set.
void PutUtf16(std::vector<uint8_t> *out, const std::u16string &text, bool terminate);
