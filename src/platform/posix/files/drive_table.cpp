// The drive table of the Linux backend.
#include "platform/posix/files/drive_table.h"

#include <cctype>
#include <cstdlib>

#include "platform/posix/text/charset.h"

namespace {

struct DriveTable {
  bool loaded = false;
  std::string roots[26];  // index 0 is A:, empty for a letter that is not mapped
};

DriveTable &Table() {
  static DriveTable table;
  return table;
}

// "/srv/win/c/" and "/srv/win/c" are the same root; "/" stays "/".
std::string NormalisedRoot(std::string root) {
  while (root.size() > 1 && root.back() == '/') root.pop_back();
  return root;
}

void Load() {
  DriveTable &table = Table();
  for (std::string &root : table.roots) root.clear();
  table.roots['Z' - 'A'] = "/";
  const char *drives = std::getenv("KELMARO_DRIVES");
  std::string text = drives ? drives : "";
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find(';', start);
    if (end == std::string::npos) end = text.size();
    std::string item = text.substr(start, end - start);
    // An item is "L=/folder"; one that is not of that form is passed over.
    if (item.size() >= 3 && std::isalpha(static_cast<unsigned char>(item[0])) && item[1] == '=' && item[2] == '/') {
      int index = std::toupper(static_cast<unsigned char>(item[0])) - 'A';
      table.roots[index] = NormalisedRoot(item.substr(2));
    }
    start = end + 1;
  }
  table.loaded = true;
}

}  // namespace

void ReloadDriveTable(void) { Load(); }

std::string DriveRoot(char letter) {
  if (!Table().loaded) Load();
  if (!std::isalpha(static_cast<unsigned char>(letter))) return std::string();
  return Table().roots[std::toupper(static_cast<unsigned char>(letter)) - 'A'];
}

bool LinuxPathToDrivePath(const std::string &linuxPath, std::string *drivePath) {
  if (!Table().loaded) Load();
  if (linuxPath.empty() || linuxPath[0] != '/') return false;
  int best = -1;
  size_t bestLength = 0;
  for (int i = 0; i < 26; ++i) {
    const std::string &root = Table().roots[i];
    if (root.empty()) continue;
    bool holds = root == "/" || (linuxPath.compare(0, root.size(), root) == 0 &&
                                 (linuxPath.size() == root.size() || linuxPath[root.size()] == '/'));
    if (holds && (best < 0 || root.size() > bestLength)) {
      best = i;
      bestLength = root.size();
    }
  }
  if (best < 0) return false;
  std::string rest = Table().roots[best] == "/" ? linuxPath : linuxPath.substr(bestLength);
  std::string result(1, static_cast<char>('A' + best));
  result += ":\\";
  size_t i = 0;
  while (i < rest.size() && rest[i] == '/') ++i;
  bool lastWasSeparator = false;
  for (; i < rest.size(); ++i) {
    if (rest[i] == '/') {
      if (!lastWasSeparator) result += '\\';
      lastWasSeparator = true;
    } else {
      result += rest[i];
      lastWasSeparator = false;
    }
  }
  if (result.size() > 3 && result.back() == '\\') result.pop_back();
  *drivePath = result;
  return true;
}

bool DrivePathToLinuxPath(const std::string &drivePath, std::string *linuxPath) {
  if (drivePath.size() < 3 || drivePath[1] != ':' || (drivePath[2] != '\\' && drivePath[2] != '/')) return false;
  std::string root = DriveRoot(drivePath[0]);
  if (root.empty()) return false;
  std::string rest = Cp932ToUtf8(drivePath.substr(3));
  // After the conversion a backslash can only be a separator: a trail byte 0x5C no longer exists in UTF-8.
  std::string result = root;
  for (char c : rest) {
    if (c == '\\') c = '/';
    if (c == '/' && !result.empty() && result.back() == '/') continue;
    if (c != '/' && !result.empty() && result.back() != '/' && result.size() == root.size()) result += '/';
    result += c;
  }
  *linuxPath = result;
  return true;
}
