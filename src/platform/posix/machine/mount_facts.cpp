// The mount table and the device facts behind the Linux backend's drive kinds and volumes (see mount_facts.h).
#include "platform/posix/machine/mount_facts.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>

#include "platform/posix/testing.h"

namespace {

struct DeviceFacts {
  bool removable = false;
  std::string name;  // the device's name in /sys ("sdb1"), empty when /sys does not know it
};

// The table in force, read again whenever the machine's table changes; tests put a text of their own in its place.
struct MountState {
  unsigned testGeneration = 0;  // the test table's count when the table was last read
  std::string sysRoot = "/sys";
  std::string labelFolder = "/dev/disk/by-label";
  int table = -1;  // /proc/self/mountinfo, kept open: a mount or unmount makes poll report POLLPRI on it
  bool loaded = false;
  std::vector<MountEntry> mounts;
  std::map<unsigned long long, DeviceFacts> devices;  // by major and minor, kept as long as the table
  std::map<std::string, MountEntry> folders;          // the mount of each folder asked about, as long as the table
};

MountState &State() {
  static MountState state;
  return state;
}

bool ReadWhole(int descriptor, std::string *text) {
  if (lseek(descriptor, 0, SEEK_SET) != 0) return false;
  text->clear();
  char buffer[8192];
  for (;;) {
    ssize_t got = read(descriptor, buffer, sizeof buffer);
    if (got < 0) return false;
    if (got == 0) return true;
    text->append(buffer, static_cast<size_t>(got));
  }
}

const std::vector<MountEntry> *CurrentMounts() {
  MountState &state = State();
  if (state.testGeneration != MountTableTestGeneration()) {
    state.testGeneration = MountTableTestGeneration();
    state.loaded = false;
  }
  if (const std::string *text = TestMountTableText()) {
    if (!state.loaded) {
      state.mounts = ParseMountInfo(*text);
      state.devices.clear();
      state.folders.clear();
      state.loaded = true;
    }
    return &state.mounts;
  }
  if (state.table < 0) {
    state.table = open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC);
    if (state.table < 0) return nullptr;
    state.loaded = false;
  }
  if (state.loaded) {
    struct pollfd changed = {state.table, POLLPRI, 0};
    if (poll(&changed, 1, 0) > 0 && (changed.revents & (POLLPRI | POLLERR))) state.loaded = false;
  }
  if (!state.loaded) {
    std::string text;
    if (!ReadWhole(state.table, &text)) return nullptr;
    state.mounts = ParseMountInfo(text);
    state.devices.clear();
    state.folders.clear();
    state.loaded = true;
  }
  return &state.mounts;
}

std::string LastName(const std::string &path) {
  size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

bool IsFile(const std::string &path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

// What /sys says of a block device: /sys/dev/block/MAJOR:MINOR leads to the device's folder, which for a partition
// lies in its disk's folder (and holds a file "partition"); the disk's "removable" reads 1 for a removable medium.
const DeviceFacts &FactsOfDevice(const MountEntry &mount) {
  MountState &state = State();
  unsigned long long key = (static_cast<unsigned long long>(mount.major) << 32) | mount.minor;
  auto known = state.devices.find(key);
  if (known != state.devices.end()) return known->second;
  DeviceFacts facts;
  std::string link = state.sysRoot + "/dev/block/" + std::to_string(mount.major) + ":" + std::to_string(mount.minor);
  char resolved[PATH_MAX];
  if (realpath(link.c_str(), resolved) != nullptr) {
    std::string folder = resolved;
    facts.name = LastName(folder);
    std::string disk = IsFile(folder + "/partition") ? folder.substr(0, folder.find_last_of('/')) : folder;
    std::ifstream removable(disk + "/removable");
    char flag = 0;
    facts.removable = removable.get(flag) && flag == '1';
  }
  return state.devices[key] = facts;
}

// udev's escapes in the names of /dev/disk/by-label ("My\x20Disk").
std::string UnescapeLabel(const std::string &name) {
  std::string out;
  for (size_t i = 0; i < name.size(); ++i) {
    if (name.compare(i, 2, "\\x") == 0 && i + 3 < name.size() && isxdigit(static_cast<unsigned char>(name[i + 2])) &&
        isxdigit(static_cast<unsigned char>(name[i + 3]))) {
      out.push_back(static_cast<char>(std::stoi(name.substr(i + 2, 2), nullptr, 16)));
      i += 3;
    } else {
      out.push_back(name[i]);
    }
  }
  return out;
}

bool IsNfs(const std::string &type) {
  if (type.compare(0, 3, "nfs") != 0) return false;
  for (size_t i = 3; i < type.size(); ++i)
    if (type[i] < '0' || type[i] > '9') return false;
  return true;
}

}  // namespace

bool MountOfFolder(const std::string &folder, MountEntry *mount) {
  const std::vector<MountEntry> *mounts = CurrentMounts();
  if (mounts == nullptr) return false;
  // The engine asks about the same drives for every shortcut it reads: a folder's mount is kept until the table
  // changes, so that a question costs a look at the table's state, not a walk of the folder's links.
  std::map<std::string, MountEntry> &known = State().folders;
  auto kept = known.find(folder);
  if (kept != known.end()) {
    *mount = kept->second;
    return true;
  }
  char resolved[PATH_MAX];
  if (realpath(folder.c_str(), resolved) == nullptr) return false;
  const MountEntry *found = MountHolding(*mounts, resolved);
  if (found == nullptr) return false;
  *mount = known[folder] = *found;
  return true;
}

UINT DriveTypeOfMount(const MountEntry &mount) {
  const std::string &type = mount.type;
  if (type == "tmpfs" || type == "ramfs") return DRIVE_RAMDISK;
  if (type == "iso9660" || type == "udf") return DRIVE_CDROM;
  if (type == "cifs" || type == "smb3" || IsNfs(type) || type == "fuse.sshfs") return DRIVE_REMOTE;
  if (mount.major != 0 && FactsOfDevice(mount).removable) return DRIVE_REMOVABLE;
  return DRIVE_FIXED;
}

std::string FileSystemNameOfMount(const MountEntry &mount) {
  static const struct {
    const char *type;
    const char *name;
  } kWindowsNames[] = {
      {"vfat", "FAT32"},
      {"msdos", "FAT"},
      {"ntfs", "NTFS"},
      {"ntfs3", "NTFS"},
      {"exfat", "exFAT"},
      {"iso9660", "CDFS"},
      {"udf", "UDF"},
      // ntfs-3g mounts as a bare "fuseblk", as it gives no subtype; with one, the type reads "fuseblk.ntfs-3g".
      {"fuseblk", "NTFS"},
      {"fuseblk.ntfs", "NTFS"},
      {"fuseblk.ntfs-3g", "NTFS"},
      {"fuse.ntfs-3g", "NTFS"},
      {"fuseblk.exfat", "exFAT"},
      {"fuse.exfat", "exFAT"},
  };
  for (const auto &known : kWindowsNames)
    if (mount.type == known.type) return known.name;
  std::string name = mount.type;
  for (char &c : name)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return name;
}

std::string VolumeLabelOfMount(const MountEntry &mount) {
  if (mount.major == 0) return std::string();
  std::string device = FactsOfDevice(mount).name;
  if (device.empty() && mount.source.compare(0, 5, "/dev/") == 0) device = LastName(mount.source);
  if (device.empty()) return std::string();
  const std::string &folder = State().labelFolder;
  DIR *labels = opendir(folder.c_str());
  if (labels == nullptr) return std::string();
  std::string label;
  while (struct dirent *entry = readdir(labels)) {
    char target[PATH_MAX];
    ssize_t length = readlink((folder + "/" + entry->d_name).c_str(), target, sizeof target - 1);
    if (length <= 0) continue;
    if (LastName(std::string(target, static_cast<size_t>(length))) == device) {
      label = UnescapeLabel(entry->d_name);
      break;
    }
  }
  closedir(labels);
  return label;
}

void TestSetDeviceFolders(const char *sysRoot, const char *labelFolder) {
  MountState &state = State();
  state.sysRoot = sysRoot ? sysRoot : "/sys";
  state.labelFolder = labelFolder ? labelFolder : "/dev/disk/by-label";
  state.devices.clear();
  state.folders.clear();
}
