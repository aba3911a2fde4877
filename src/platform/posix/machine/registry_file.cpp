// Registry files for the Linux backend: the two export formats of regedit and the user.reg of a Wine prefix, read into
// the keys of HKEY_CURRENT_USER. Everything is taken apart in UTF-16, the form in which Windows keeps the registry.
#include "platform/posix/machine/registry_file.h"

#include <utility>

#include "platform/posix/text/charset.h"
#include "platform/posix/text/path_names.h"
#include "platform/winapi.h"

namespace {

enum class Format { kNone, kAnsiExport, kUnicodeExport, kWine };

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }

int HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}

std::u16string TrimRight(const std::u16string &text) {
  size_t end = text.size();
  while (end > 0 && IsBlank(text[end - 1])) --end;
  return text.substr(0, end);
}

std::u16string TrimLeft(const std::u16string &text) {
  size_t start = 0;
  while (start < text.size() && IsBlank(text[start])) ++start;
  return text.substr(start);
}

size_t SkipBlanks(const std::u16string &text, size_t pos) {
  while (pos < text.size() && IsBlank(text[pos])) ++pos;
  return pos;
}

bool OnlyBlanksFrom(const std::u16string &text, size_t pos) { return SkipBlanks(text, pos) == text.size(); }

// True when `text` has `word` at `pos`, compared without case for ASCII letters ("hex(2):", "dword:").
bool HasWordAt(const std::u16string &text, size_t pos, const char *word) {
  for (; *word != 0; ++word, ++pos) {
    if (pos >= text.size()) return false;
    char16_t c = text[pos];
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
    if (c != static_cast<char16_t>(*word)) return false;
  }
  return true;
}

// ---- Charsets ----

// A strict check: no overlong forms, no surrogates, nothing past U+10FFFF. A file that passes is read as UTF-8.
bool IsUtf8(const std::string &bytes) {
  size_t i = 0;
  while (i < bytes.size()) {
    unsigned char lead = static_cast<unsigned char>(bytes[i]);
    size_t length;
    unsigned char low = 0x80, high = 0xBF;  // the range of the second byte
    if (lead < 0x80) {
      ++i;
      continue;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
      length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      length = 3;
      if (lead == 0xE0) low = 0xA0;
      if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      length = 4;
      if (lead == 0xF0) low = 0x90;
      if (lead == 0xF4) high = 0x8F;
    } else {
      return false;
    }
    if (bytes.size() - i < length) return false;
    for (size_t k = 1; k < length; ++k) {
      unsigned char next = static_cast<unsigned char>(bytes[i + k]);
      if (k == 1 ? (next < low || next > high) : (next & 0xC0) != 0x80) return false;
    }
    i += length;
  }
  return true;
}

// ANSI (CP932) bytes in UTF-16, converted piece by piece between NULs, so that a NUL behind a broken lead byte is never
// swallowed with it: the terminators of a string stay where they were.
std::u16string AnsiToUtf16(const std::string &bytes) {
  std::u16string out;
  size_t start = 0;
  for (;;) {
    size_t nul = bytes.find('\0', start);
    size_t end = nul == std::string::npos ? bytes.size() : nul;
    out += Utf8ToUtf16(Cp932ToUtf8(bytes.substr(start, end - start)));
    if (nul == std::string::npos) return out;
    out.push_back(0);
    start = nul + 1;
  }
}

std::u16string DecodeText(const std::string &bytes) {
  auto byte = [&bytes](size_t i) { return static_cast<unsigned char>(bytes[i]); };
  if (bytes.size() >= 2 && byte(0) == 0xFF && byte(1) == 0xFE) {
    std::u16string text;
    text.reserve(bytes.size() / 2);
    for (size_t i = 2; i + 1 < bytes.size(); i += 2) text.push_back(static_cast<char16_t>(byte(i) | byte(i + 1) << 8));
    return text;
  }
  if (bytes.size() >= 3 && byte(0) == 0xEF && byte(1) == 0xBB && byte(2) == 0xBF) return Utf8ToUtf16(bytes.substr(3));
  return IsUtf8(bytes) ? Utf8ToUtf16(bytes) : AnsiToUtf16(bytes);
}

std::string LittleEndian(const std::u16string &text) {
  std::string bytes;
  bytes.reserve(text.size() * 2);
  for (char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  return bytes;
}

// "\r\n", "\n" and a lone "\r" each end a line.
std::vector<std::u16string> SplitLines(const std::u16string &text) {
  std::vector<std::u16string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find_first_of(u"\r\n", start);
    if (end == std::u16string::npos) end = text.size();
    lines.push_back(text.substr(start, end - start));
    if (end + 1 < text.size() && text[end] == u'\r' && text[end + 1] == u'\n') ++end;
    start = end + 1;
  }
  return lines;
}

// ---- The tree ----

RegistryKey *MakeKey(RegistryKey *root, const std::vector<std::u16string> &names) {
  RegistryKey *key = root;
  for (const std::u16string &name : names) {
    std::unique_ptr<RegistryKey> &slot = key->subKeys[FoldName(name)];
    if (!slot) slot.reset(new RegistryKey);
    key = slot.get();
  }
  return key;
}

// Removes a key with everything below it; the key itself (no names) is never removed.
void RemoveKey(RegistryKey *root, const std::vector<std::u16string> &names) {
  RegistryKey *parent = root;
  for (size_t i = 0; parent != nullptr && i + 1 < names.size(); ++i) {
    auto found = parent->subKeys.find(FoldName(names[i]));
    parent = found == parent->subKeys.end() ? nullptr : found->second.get();
  }
  if (parent != nullptr && !names.empty()) parent->subKeys.erase(FoldName(names.back()));
}

// A value set again keeps its place and its first spelling, as RegSetValueEx keeps them.
void SetValue(RegistryKey *key, const std::u16string &name, uint32_t type, std::string data) {
  std::u16string folded = FoldName(name);
  auto found = key->valueIndex.find(folded);
  if (found != key->valueIndex.end()) {
    RegistryValue &value = key->values[found->second];
    value.type = type;
    value.data = std::move(data);
    return;
  }
  key->valueIndex[folded] = key->values.size();
  RegistryValue value;
  value.name = name;
  value.folded = std::move(folded);
  value.type = type;
  value.data = std::move(data);
  key->values.push_back(std::move(value));
}

// A removed value leaves only the index at first, so that a file of many removals costs no more than one of many
// values; Compact takes the values out once the file is read.
bool RemoveValue(RegistryKey *key, const std::u16string &name) { return key->valueIndex.erase(FoldName(name)) > 0; }

// Drops the values that are no longer in their key's index, in this key and below it (at most kRegistryDepthLimit
// levels deep).
void Compact(RegistryKey *key) {
  std::vector<RegistryValue> kept;
  kept.reserve(key->valueIndex.size());
  for (size_t i = 0; i < key->values.size(); ++i) {
    auto found = key->valueIndex.find(key->values[i].folded);
    if (found == key->valueIndex.end() || found->second != i) continue;
    found->second = kept.size();
    kept.push_back(std::move(key->values[i]));
  }
  key->values = std::move(kept);
  for (auto &subKey : key->subKeys) Compact(subKey.second.get());
}

// ---- Pieces of a line ----

// A quoted text from `pos` (just past its opening quote) to its closing quote, with the escapes of the format undone.
// Regedit's exports escape "\\" and "\"" (and Wine's regedit writes "\n" for a line break; "\r" likewise); any other
// character after a backslash stands for itself, as Wine's regedit reads it. Wine's user.reg escapes more: "\a" "\b"
// "\e" "\f" "\n" "\r" "\t" "\v", "\x" with up to four hexadecimal digits for one UTF-16 unit, and up to three octal
// digits. On success `pos` ends just past the closing quote (or `close`); false when the text is not closed.
bool ReadQuoted(const std::u16string &line, size_t *pos, bool wineEscapes, char16_t close, std::u16string *text) {
  text->clear();
  size_t i = *pos;
  while (i < line.size() && line[i] != close) {
    char16_t c = line[i++];
    if (c != u'\\') {
      text->push_back(c);
      continue;
    }
    if (i >= line.size()) return false;
    c = line[i++];
    if (!wineEscapes) {
      text->push_back(c == u'n' ? u'\n' : c == u'r' ? u'\r' : c);
      continue;
    }
    switch (c) {
      case u'a':
        text->push_back(u'\a');
        break;
      case u'b':
        text->push_back(u'\b');
        break;
      case u'e':
        text->push_back(0x1B);
        break;
      case u'f':
        text->push_back(u'\f');
        break;
      case u'n':
        text->push_back(u'\n');
        break;
      case u'r':
        text->push_back(u'\r');
        break;
      case u't':
        text->push_back(u'\t');
        break;
      case u'v':
        text->push_back(u'\v');
        break;
      case u'x': {
        if (i >= line.size() || HexDigit(line[i]) < 0) {
          text->push_back(u'x');
          break;
        }
        unsigned unit = 0;
        for (int digits = 0; digits < 4 && i < line.size() && HexDigit(line[i]) >= 0; ++digits)
          unit = unit * 16 + static_cast<unsigned>(HexDigit(line[i++]));
        text->push_back(static_cast<char16_t>(unit));
        break;
      }
      default:
        if (c >= u'0' && c <= u'7') {
          unsigned unit = c - u'0';
          for (int digits = 1; digits < 3 && i < line.size() && line[i] >= u'0' && line[i] <= u'7'; ++digits)
            unit = unit * 8 + (line[i++] - u'0');
          text->push_back(static_cast<char16_t>(unit));
        } else {
          text->push_back(c);
        }
    }
  }
  if (i >= line.size()) return false;
  *pos = i + 1;
  return true;
}

// Up to `maxDigits` hexadecimal digits from `pos`; false when there are none or more.
bool ReadHexNumber(const std::u16string &text, size_t *pos, int maxDigits, uint32_t *number) {
  size_t i = *pos;
  uint32_t value = 0;
  while (i < text.size() && HexDigit(text[i]) >= 0) {
    if (static_cast<int>(i - *pos) == maxDigits) return false;
    value = value * 16 + static_cast<uint32_t>(HexDigit(text[i++]));
  }
  if (i == *pos) return false;
  *pos = i;
  *number = value;
  return true;
}

// "aa,bb, cc" from `pos` to the end: bytes of one or two hexadecimal digits between commas. A comma may end the list,
// as it does before a line's continuation backslash.
bool ReadHexBytes(const std::u16string &text, size_t pos, std::string *bytes) {
  bytes->clear();
  for (;;) {
    pos = SkipBlanks(text, pos);
    if (pos == text.size()) return true;
    uint32_t byte;
    if (!ReadHexNumber(text, &pos, 2, &byte)) return false;
    bytes->push_back(static_cast<char>(byte));
    pos = SkipBlanks(text, pos);
    if (pos == text.size()) return true;
    if (text[pos++] != u',') return false;
  }
}

// ---- The reader ----

class FileReader {
 public:
  FileReader(Format format, std::vector<std::u16string> lines)
      : format_(format), lines_(std::move(lines)), root_(new RegistryKey) {}

  std::unique_ptr<RegistryKey> Read() {
    // The first line is the header.
    for (next_ = 1; next_ < lines_.size();) {
      std::u16string line = TrimLeft(lines_[next_++]);
      if (Wine() && HasWordAt(line, 0, ";; all keys relative to ")) ReadHiveLine(line.substr(24));
      // Comments, Wine's options of a key ("#time=", "#class=", "#link"), and lines of no kind are passed over; the
      // values after them still belong to their key.
      if (line.empty() || line[0] == u';' || (Wine() && line[0] == u'#')) continue;
      if (line[0] == u'[')
        ReadKeyLine(line);
      else if (line[0] == u'@' || line[0] == u'"')
        ReadValueLine(line);
    }
    if (removals_) Compact(root_.get());
    return std::move(root_);
  }

 private:
  bool Wine() const { return format_ == Format::kWine; }

  // Wine names the hive a file holds in a comment at its top: "REGISTRY\\User\\S-1-5-21-..." for user.reg, the
  // current user's ("\\User\\S-1-5-21-..." in the prefixes of older Wine versions). system.reg ("REGISTRY\\Machine")
  // and userdef.reg ("REGISTRY\\User\\.Default") are not HKEY_CURRENT_USER, and a file without the comment is taken
  // to be user.reg.
  void ReadHiveLine(const std::u16string &hive) {
    otherHive_ = !HasWordAt(hive, 0, "registry\\\\user\\\\s-") && !HasWordAt(hive, 0, "\\\\user\\\\s-");
  }

  // "[HKEY_CURRENT_USER\a\b]" or "[-HKEY_CURRENT_USER\a\b]" in an export; "[a\\b] 1234567890" in user.reg, whose keys
  // all lie below HKEY_CURRENT_USER. The values that follow a key of any other root are passed over.
  void ReadKeyLine(const std::u16string &line) {
    current_ = nullptr;
    std::u16string path;
    if (Wine()) {
      if (otherHive_) return;
      size_t pos = 1;
      if (!ReadQuoted(line, &pos, true, u']', &path)) return;
      std::vector<std::u16string> names = SplitNonEmpty(path, u'\\');
      if (names.size() <= kRegistryDepthLimit) current_ = MakeKey(root_.get(), names);
      return;
    }
    std::u16string trimmed = TrimRight(line);
    if (trimmed.size() < 2 || trimmed.back() != u']') return;
    path = trimmed.substr(1, trimmed.size() - 2);
    bool removal = !path.empty() && path[0] == u'-';
    if (removal) path.erase(0, 1);
    size_t separator = path.find(u'\\');
    if (!SameNameIgnoringCase(path.substr(0, separator), u"HKEY_CURRENT_USER")) return;
    std::vector<std::u16string> names;
    if (separator != std::u16string::npos) names = SplitNonEmpty(path.substr(separator + 1), u'\\');
    if (names.size() > kRegistryDepthLimit) return;
    if (removal)
      RemoveKey(root_.get(), names);
    else
      current_ = MakeKey(root_.get(), names);
  }

  // `"name"=data` or `@=data`; in an export `"name"=-` removes the value.
  void ReadValueLine(const std::u16string &line) {
    if (current_ == nullptr) return;
    std::u16string name;
    size_t pos = 1;
    if (line[0] == u'"' && !ReadQuoted(line, &pos, Wine(), u'"', &name)) return;
    pos = SkipBlanks(line, pos);
    if (pos >= line.size() || line[pos] != u'=') return;
    pos = SkipBlanks(line, pos + 1);
    if (pos >= line.size()) return;

    uint32_t type;
    std::string data;
    if (line[pos] == u'-' && !Wine()) {
      if (OnlyBlanksFrom(line, pos + 1)) removals_ = RemoveValue(current_, name) || removals_;
      return;
    }
    if (line[pos] == u'"' || (Wine() && HasWordAt(line, pos, "str("))) {
      type = REG_SZ;
      if (line[pos] != u'"') {
        pos += 4;
        if (!ReadHexNumber(line, &pos, 8, &type) || !HasWordAt(line, pos, "):\"")) return;
        pos += 2;
      }
      std::u16string text;
      ++pos;
      if (!ReadQuoted(line, &pos, Wine(), u'"', &text) || !OnlyBlanksFrom(line, pos)) return;
      text.push_back(0);
      data = LittleEndian(text);
    } else if (HasWordAt(line, pos, "dword:")) {
      pos += 6;
      uint32_t number;
      if (!ReadHexNumber(line, &pos, 8, &number) || !OnlyBlanksFrom(line, pos)) return;
      type = REG_DWORD;
      for (int shift = 0; shift < 32; shift += 8) data.push_back(static_cast<char>(number >> shift));
    } else if (HasWordAt(line, pos, "hex")) {
      pos += 3;
      type = REG_BINARY;
      if (HasWordAt(line, pos, "(")) {
        ++pos;
        if (!ReadHexNumber(line, &pos, 8, &type) || !HasWordAt(line, pos, ")")) return;
        ++pos;
      }
      if (!HasWordAt(line, pos, ":")) return;
      std::u16string list = WithContinuations(line.substr(pos + 1));
      if (!ReadHexBytes(list, 0, &data)) return;
      if (!Wine() && (type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ)) data = ExportedString(data);
    } else {
      return;
    }
    SetValue(current_, name, type, std::move(data));
  }

  // The bytes of a hex list go on over the next lines while a line ends in a backslash (and end with the file). Each
  // line is appended in place, so that a value of many lines costs time in proportion to its length.
  std::u16string WithContinuations(std::u16string list) {
    for (;;) {
      while (!list.empty() && IsBlank(list.back())) list.pop_back();
      if (list.empty() || list.back() != u'\\') return list;
      list.pop_back();
      if (next_ >= lines_.size()) return list;
      const std::u16string &line = lines_[next_++];
      list.append(line, SkipBlanks(line, 0), std::u16string::npos);
    }
  }

  // A string type given as hex in an export: its bytes are the ANSI code page's in "REGEDIT4" and UTF-16LE in version
  // 5.00. Both come out in UTF-16LE, with a terminator added where the bytes lack one, as regedit imports them.
  std::string ExportedString(std::string bytes) const {
    if (format_ == Format::kAnsiExport) {
      if (bytes.empty() || bytes.back() != 0) bytes.push_back(0);
      return LittleEndian(AnsiToUtf16(bytes));
    }
    size_t units = bytes.size() / 2;
    if (units == 0 || bytes[2 * units - 2] != 0 || bytes[2 * units - 1] != 0) bytes.append(2, '\0');
    return bytes;
  }

  Format format_;
  std::vector<std::u16string> lines_;
  size_t next_ = 0;
  std::unique_ptr<RegistryKey> root_;
  RegistryKey *current_ = nullptr;  // where the values of the lines read go; null: nowhere
  bool otherHive_ = false;          // a Wine file of another hive than the current user's: no key of it is kept
  bool removals_ = false;           // a value was removed: the keys are compacted at the end
};

Format HeaderFormat(const std::vector<std::u16string> &lines) {
  if (lines.empty()) return Format::kNone;
  std::u16string header = TrimRight(TrimLeft(lines[0]));
  if (header == u"REGEDIT4") return Format::kAnsiExport;
  if (header == u"Windows Registry Editor Version 5.00") return Format::kUnicodeExport;
  if (header == u"WINE REGISTRY Version 2") return Format::kWine;
  return Format::kNone;
}

}  // namespace

const RegistryKey *RegistryKey::SubKey(const std::u16string &name) const {
  auto found = subKeys.find(FoldName(name));
  return found == subKeys.end() ? nullptr : found->second.get();
}

const RegistryValue *RegistryKey::Value(const std::u16string &name) const {
  auto found = valueIndex.find(FoldName(name));
  return found == valueIndex.end() ? nullptr : &values[found->second];
}

std::unique_ptr<RegistryKey> ParseRegistryFile(const std::string &bytes) {
  std::vector<std::u16string> lines = SplitLines(DecodeText(bytes));
  Format format = HeaderFormat(lines);
  if (format == Format::kNone) return std::unique_ptr<RegistryKey>(new RegistryKey);
  return FileReader(format, std::move(lines)).Read();
}
