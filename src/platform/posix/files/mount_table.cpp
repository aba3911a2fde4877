// The mount table of the Linux backend, from /proc/self/mountinfo.
#include "platform/posix/files/mount_table.h"

#include <fstream>
#include <iterator>
#include <sstream>

#include "platform/posix/files/share_table.h"
#include "platform/posix/files/testing.h"

namespace {

struct MountTableSource {
  bool testing = false;  // a test's text stands in for the machine's table
  std::string text;
  unsigned generation = 0;
};

MountTableSource &Source() {
  static MountTableSource source;
  return source;
}

std::vector<std::string> SplitFields(const std::string &line) {
  std::vector<std::string> fields;
  std::istringstream in(line);
  std::string field;
  while (in >> field) fields.push_back(field);
  return fields;
}

bool ParseNumber(const std::string &text, unsigned *value) {
  if (text.empty() || text.size() > 9) return false;
  unsigned result = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
    result = result * 10 + static_cast<unsigned>(c - '0');
  }
  *value = result;
  return true;
}

// True when the folder `outer` holds `path` (or is it): "/" holds everything, "/mnt" holds "/mnt/a" but not "/mnta".
bool Holds(const std::string &outer, const std::string &path) {
  if (outer == "/") return !path.empty() && path[0] == '/';
  return path.compare(0, outer.size(), outer) == 0 && (path.size() == outer.size() || path[outer.size()] == '/');
}

}  // namespace

std::string UnescapeMountField(const std::string &field) {
  std::string out;
  out.reserve(field.size());
  for (size_t i = 0; i < field.size(); ++i) {
    bool octal = field[i] == '\\' && i + 3 < field.size() && field[i + 1] >= '0' && field[i + 1] <= '3' &&
                 field[i + 2] >= '0' && field[i + 2] <= '7' && field[i + 3] >= '0' && field[i + 3] <= '7';
    if (octal) {
      out.push_back(static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 + (field[i + 3] - '0')));
      i += 3;
    } else {
      out.push_back(field[i]);
    }
  }
  return out;
}

std::vector<MountEntry> ParseMountInfo(const std::string &text) {
  std::vector<MountEntry> entries;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line)) {
    // 36 35 98:0 /mnt1 /mnt2 rw,noatime master:1 - ext3 /dev/root rw,errors=continue
    std::vector<std::string> fields = SplitFields(line);
    if (fields.size() < 10) continue;
    size_t dash = 6;
    while (dash < fields.size() && fields[dash] != "-") ++dash;
    if (dash + 3 > fields.size()) continue;
    MountEntry entry;
    unsigned id = 0, parent = 0;
    size_t colon = fields[2].find(':');
    if (!ParseNumber(fields[0], &id) || !ParseNumber(fields[1], &parent) || colon == std::string::npos ||
        !ParseNumber(fields[2].substr(0, colon), &entry.major) ||
        !ParseNumber(fields[2].substr(colon + 1), &entry.minor))
      continue;
    entry.id = static_cast<int>(id);
    entry.parentId = static_cast<int>(parent);
    entry.root = UnescapeMountField(fields[3]);
    entry.mountPoint = UnescapeMountField(fields[4]);
    entry.options = fields[5];
    entry.type = UnescapeMountField(fields[dash + 1]);
    entry.source = UnescapeMountField(fields[dash + 2]);
    if (dash + 3 < fields.size()) entry.superOptions = UnescapeMountField(fields[dash + 3]);
    entries.push_back(std::move(entry));
  }
  return entries;
}

std::vector<MountEntry> ReadMountTable(void) {
  const MountTableSource &source = Source();
  if (source.testing) return ParseMountInfo(source.text);
  std::ifstream in("/proc/self/mountinfo");
  std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  return ParseMountInfo(text);
}

bool IsHiddenMount(const std::vector<MountEntry> &entries, size_t index) {
  for (size_t later = index + 1; later < entries.size(); ++later)
    if (Holds(entries[later].mountPoint, entries[index].mountPoint)) return true;
  return false;
}

const MountEntry *MountHolding(const std::vector<MountEntry> &entries, const std::string &path) {
  const MountEntry *best = nullptr;
  for (size_t i = 0; i < entries.size(); ++i) {
    const MountEntry &entry = entries[i];
    if (!Holds(entry.mountPoint, path) || IsHiddenMount(entries, i)) continue;
    if (best == nullptr || entry.mountPoint.size() >= best->mountPoint.size()) best = &entry;
  }
  return best;
}

void TestSetMountTable(const char *text) {
  MountTableSource &source = Source();
  source.testing = text != nullptr;
  source.text = text != nullptr ? text : "";
  ++source.generation;
  ReloadShareTable();
}

const std::string *TestMountTableText(void) { return Source().testing ? &Source().text : nullptr; }

unsigned MountTableTestGeneration(void) { return Source().generation; }
