// Makes a tree of shortcuts for the scale benchmark: the programs they point at on drives C:, D: and E:, and a tree of
// shortcut folders of a chosen size and depth, of which a chosen share points into D:\Apps (the old place that a run
// repairs to E:\Apps) and the rest into C:\Tools.
//
//   make_tree ROOT COUNT [--folder-size N] [--depth N] [--changed PERCENT] [--programs N] [--upper-case PERCENT]
//
// ROOT gets drive_c/, drive_d/, drive_e/ (the programs) and links/ (the shortcuts); the benchmark maps them as
// KELMARO_DRIVES="C=ROOT/drive_c;D=ROOT/drive_d;E=ROOT/drive_e;L=<a copy of ROOT/links>". Every distinct shortcut is
// saved once through our shell link objects (IShellLinkA + IPersistFile, the calls and order of the engine's writer);
// the files of the tree are copies of those bytes, so they are exactly what our writer makes, without a save (and its
// fsync) per file. A shortcut's bytes do not hold its own path, so a copy is the same shortcut in another place.
#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/winapi.h"

namespace fs = std::filesystem;

namespace {

struct Options {
  std::string root;
  long count = 0;
  long folderSize = 100;
  int depth = 3;
  int changedPercent = 100;
  int programs = 50;
  // Share of shortcuts whose texts are written in upper case ("D:\APPS\PROG07\PROG07.EXE"), which the disk holds in
  // mixed case: every such name is found on disk only by a look without case.
  int upperPercent = 10;
};

[[noreturn]] void Usage() {
  std::fprintf(stderr,
               "usage: make_tree ROOT COUNT [--folder-size N] [--depth N] [--changed PERCENT] [--programs N] "
               "[--upper-case PERCENT]\n");
  std::exit(2);
}

Options ParseOptions(int argc, char **argv) {
  if (argc < 3) Usage();
  Options options;
  options.root = argv[1];
  options.count = std::atol(argv[2]);
  for (int i = 3; i + 1 < argc; i += 2) {
    std::string key = argv[i];
    long value = std::atol(argv[i + 1]);
    if (key == "--folder-size")
      options.folderSize = value;
    else if (key == "--depth")
      options.depth = static_cast<int>(value);
    else if (key == "--changed")
      options.changedPercent = static_cast<int>(value);
    else if (key == "--programs")
      options.programs = static_cast<int>(value);
    else if (key == "--upper-case")
      options.upperPercent = static_cast<int>(value);
    else
      Usage();
  }
  if ((argc - 3) % 2 != 0 || options.count <= 0 || options.folderSize <= 0 || options.depth < 1 ||
      options.programs <= 0 || options.changedPercent < 0 || options.changedPercent > 100 || options.upperPercent < 0 ||
      options.upperPercent > 100)
    Usage();
  return options;
}

// Whether item `i` of a sequence is one of the `percent` in a hundred, spread evenly: 10% are items 9, 19, 29 ...
bool InShare(long i, int percent) { return (i + 1) * percent / 100 != i * percent / 100; }

std::string Upper(std::string text) {
  for (char &c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

void Touch(const fs::path &file) {
  fs::create_directories(file.parent_path());
  std::ofstream(file).put('\0');
}

// Saves one shortcut through the shell link objects, as the engine's writer does, and returns its bytes.
std::vector<char> SaveShortcut(const std::string &drivePath, const fs::path &linuxPath, const std::string &target,
                               const std::string &arguments, const std::string &folder,
                               const std::string &description) {
  IShellLinkA *link = nullptr;
  IPersistFile *persist = nullptr;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                              reinterpret_cast<void **>(&link))) ||
      FAILED(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void **>(&persist)))) {
    std::fprintf(stderr, "make_tree: no shell link object\n");
    std::exit(1);
  }
  bool ok = SUCCEEDED(link->SetIconLocation(target.c_str(), 0)) && SUCCEEDED(link->SetPath(target.c_str())) &&
            SUCCEEDED(link->SetArguments(arguments.c_str())) && SUCCEEDED(link->SetDescription(description.c_str())) &&
            SUCCEEDED(link->SetWorkingDirectory(folder.c_str())) && SUCCEEDED(link->SetShowCmd(1));
  WCHAR wide[MAX_PATH];
  ok = ok && MultiByteToWideChar(CP_ACP, 0, drivePath.c_str(), -1, wide, MAX_PATH) > 0 &&
       SUCCEEDED(persist->Save(wide, TRUE));
  persist->Release();
  link->Release();
  if (!ok) {
    std::fprintf(stderr, "make_tree: could not save %s\n", drivePath.c_str());
    std::exit(1);
  }
  std::ifstream in(linuxPath, std::ios::binary);
  std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  fs::remove(linuxPath);
  return bytes;
}

void WriteBytes(const fs::path &file, const std::vector<char> &bytes) {
  int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0 || write(fd, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()) || close(fd) != 0) {
    std::perror(file.c_str());
    std::exit(1);
  }
}

// The folder of shortcut folder `index`: `depth` levels, each with at most `fanOut` folders.
fs::path FolderOf(long index, int depth, long fanOut) {
  std::vector<long> digits(depth);
  for (int level = depth - 1; level >= 0; --level) {
    digits[level] = index % fanOut;
    index /= fanOut;
  }
  fs::path folder;
  for (int level = 0; level < depth; ++level) {
    char name[32];
    std::snprintf(name, sizeof name, level + 1 == depth ? "Links %04ld" : "Group %04ld", digits[level]);
    folder /= name;
  }
  return folder;
}

}  // namespace

int main(int argc, char **argv) {
  Options options = ParseOptions(argc, argv);
  fs::path root = fs::absolute(options.root);
  fs::path links = root / "links";
  if (fs::exists(links)) {
    std::fprintf(stderr, "make_tree: %s exists\n", links.c_str());
    return 1;
  }
  // The programs, in mixed case on disk.
  for (int p = 0; p < options.programs; ++p) {
    char name[64];
    std::snprintf(name, sizeof name, "Prog%02d/Prog%02d.exe", p, p);
    Touch(root / "drive_d/Apps" / name);
    Touch(root / "drive_e/Apps" / name);
    std::snprintf(name, sizeof name, "Tool%02d/Tool%02d.exe", p, p);
    Touch(root / "drive_c/Tools" / name);
  }
  fs::create_directories(root / "scratch");
  std::string drives = "C=" + (root / "drive_c").string() + ";D=" + (root / "drive_d").string() +
                       ";E=" + (root / "drive_e").string() + ";S=" + (root / "scratch").string();
  setenv("KELMARO_DRIVES", drives.c_str(), 1);
  CoInitialize(nullptr);

  // One shortcut for each program, place (old or other) and spelling. The upper-case spellings are found without
  // case, as Windows finds them, so their shortcuts hold the target's attributes, times and size too.
  std::vector<std::vector<char>> kinds;
  for (int changed = 0; changed < 2; ++changed)
    for (int upper = 0; upper < 2; ++upper)
      for (int p = 0; p < options.programs; ++p) {
        char folder[64], target[96], arguments[160], description[64];
        if (changed)
          std::snprintf(folder, sizeof folder, "D:\\Apps\\Prog%02d", p);
        else
          std::snprintf(folder, sizeof folder, "C:\\Tools\\Tool%02d", p);
        std::snprintf(target, sizeof target, "%s\\%s%02d.exe", folder, changed ? "Prog" : "Tool", p);
        std::snprintf(arguments, sizeof arguments, "/profile \"%s\\Data\"", folder);
        std::snprintf(description, sizeof description, "Program %02d", p);
        std::string t = upper ? Upper(target) : target, f = upper ? Upper(folder) : folder;
        kinds.push_back(SaveShortcut("S:\\kind.lnk", root / "scratch/kind.lnk", t, arguments, f, description));
      }
  fs::remove_all(root / "scratch");

  long folders = (options.count + options.folderSize - 1) / options.folderSize;
  long fanOut = static_cast<long>(std::ceil(std::pow(static_cast<double>(folders), 1.0 / options.depth) - 1e-9));
  if (fanOut < 1) fanOut = 1;
  while (std::pow(static_cast<double>(fanOut), options.depth) < static_cast<double>(folders)) ++fanOut;
  long made = 0, changed = 0;
  for (long f = 0; f < folders; ++f) {
    fs::path folder = links / FolderOf(f, options.depth, fanOut);
    fs::create_directories(folder);
    for (long k = 0; k < options.folderSize && made < options.count; ++k, ++made) {
      bool isChanged = InShare(made, options.changedPercent);
      // Spread apart from the changed ones: every hundred shortcuts in a row hold `upperPercent` of them, a tenth
      // of them among the changed when both are 10%.
      bool isUpper = (made * 7919) % 100 < options.upperPercent;
      int program = static_cast<int>(made % options.programs);
      size_t kind = (isChanged ? 2 : 0) * options.programs + (isUpper ? 1 : 0) * options.programs + program;
      char name[64];
      std::snprintf(name, sizeof name, "Shortcut %06ld.lnk", made);
      WriteBytes(folder / name, kinds[kind]);
      changed += isChanged;
    }
  }
  std::printf("shortcuts=%ld changed=%ld folders=%ld depth=%d fan_out=%ld\n", made, changed, folders, options.depth,
              fanOut);
  return 0;
}
