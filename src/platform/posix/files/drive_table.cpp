// The drive table of the Linux backend.
#include "platform/posix/files/drive_table.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <vector>

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

// The items of KELMARO_DRIVES ("L=/folder", separated by ";"); Z: is "/" unless an item says otherwise. An item that
// is not of that form is passed over.
void LoadFromVariable(DriveTable &table, const std::string &text) {
  table.roots['Z' - 'A'] = "/";
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find(';', start);
    if (end == std::string::npos) end = text.size();
    std::string item = text.substr(start, end - start);
    if (item.size() >= 3 && std::isalpha(static_cast<unsigned char>(item[0])) && item[1] == '=' && item[2] == '/') {
      int index = std::toupper(static_cast<unsigned char>(item[0])) - 'A';
      table.roots[index] = NormalisedRoot(item.substr(2));
    }
    start = end + 1;
  }
}

// Where a link in the dosdevices folder leads, as an absolute path: a relative target ("../drive_c") is taken from the
// dosdevices folder. Where the target is there, its real path, the form in which getcwd and /proc/self/exe give the
// paths on the drive (the current folder is found by its root); where it is not, the path made plain in the text
// ("." and ".." resolved): the drive keeps its letter and stands for the folder that the link names, and its paths
// fail as those of a drive whose folder is missing, until the folder comes.
std::string LinkTarget(const std::string &dosDevices, const std::string &target) {
  std::string absolute = target[0] == '/' ? target : dosDevices + "/" + target;
  char real[PATH_MAX];
  if (realpath(absolute.c_str(), real) != nullptr) return NormalisedRoot(real);
  return NormalisedRoot(std::filesystem::path(absolute).lexically_normal().string());
}

// The drives of a Wine prefix: each symbolic link in its dosdevices folder named by a letter and a colon ("c:", any
// case) is that drive. Other entries ("c::", which stands for the raw device, and anything that is not a link) are
// passed over. Where "c:" and "C:" are both there, Wine's own spelling, "c:", wins.
void LoadFromPrefix(DriveTable &table, const std::string &dosDevices) {
  DIR *folder = opendir(dosDevices.c_str());
  if (folder == nullptr) return;
  std::vector<std::string> names;
  while (struct dirent *entry = readdir(folder)) names.push_back(entry->d_name);
  closedir(folder);
  std::sort(names.begin(), names.end());  // upper case first, so that lower case comes later and stays
  for (const std::string &name : names) {
    if (name.size() != 2 || name[1] != ':' || !std::isalpha(static_cast<unsigned char>(name[0]))) continue;
    std::string link = dosDevices + "/" + name;
    std::vector<char> target(PATH_MAX);
    ssize_t length = readlink(link.c_str(), target.data(), target.size());
    if (length <= 0 || static_cast<size_t>(length) >= target.size()) continue;  // not a link, or no target
    int index = std::toupper(static_cast<unsigned char>(name[0])) - 'A';
    table.roots[index] = LinkTarget(dosDevices, std::string(target.data(), static_cast<size_t>(length)));
  }
}

void Load() {
  DriveTable &table = Table();
  for (std::string &root : table.roots) root.clear();
  std::string dosDevices;
  if (const char *drives = std::getenv("KELMARO_DRIVES")) {
    LoadFromVariable(table, drives);
  } else if (WineDosDevices(&dosDevices)) {
    LoadFromPrefix(table, dosDevices);
  } else {
    table.roots['Z' - 'A'] = "/";
  }
  table.loaded = true;
}

}  // namespace

void ReloadDriveTable(void) { Load(); }

bool WineDosDevices(std::string *dosDevices) {
  const char *prefix = std::getenv("WINEPREFIX");
  std::string folder;
  if (prefix != nullptr && *prefix != 0) {
    folder = prefix;
  } else {
    const char *home = std::getenv("HOME");
    if (home == nullptr || *home == 0) return false;
    folder = std::string(home) + "/.wine";
  }
  folder += "/dosdevices";
  struct stat info;
  char real[PATH_MAX];
  if (stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode) || realpath(folder.c_str(), real) == nullptr)
    return false;
  *dosDevices = real;
  return true;
}

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
