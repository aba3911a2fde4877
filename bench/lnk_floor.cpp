// The I/O floor of the scale benchmark: the least that any program must do to rewrite the shortcuts of a tree, done
// with plain file I/O. It walks the tree, reads each *.lnk file whole, and rewrites it the way our writer does (a new
// file beside it, written and renamed over the old one); a run of the real program is compared with it.
//
//   lnk_floor ROOT [NEEDLE] [--sync]
//
// With NEEDLE only the files whose bytes hold it (ASCII letters without case) are rewritten and the rest only read, so
// that a run in which a tenth of the shortcuts change has a floor that rewrites that tenth. --sync waits for the disk
// (fsync) before each rename, to show what that would cost. Prints the numbers of files read and rewritten.
#include <dirent.h>
#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

long readCount = 0;
long rewriteCount = 0;
bool syncEach = false;

// Whether `bytes` hold `needle`, ASCII letters without case.
bool Holds(const std::vector<char> &bytes, const std::string &needle) {
  for (size_t i = 0; i + needle.size() <= bytes.size(); ++i)
    if (strncasecmp(bytes.data() + i, needle.data(), needle.size()) == 0) return true;
  return false;
}

bool EndsWithLnk(const char *name) {
  size_t length = std::strlen(name);
  return length >= 4 && strcasecmp(name + length - 4, ".lnk") == 0;
}

void Fail(const std::string &path) {
  std::perror(path.c_str());
  std::exit(1);
}

void Rewrite(const std::string &path, const std::string &needle) {
  int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) Fail(path);
  std::vector<char> bytes;
  char buffer[8192];
  for (;;) {
    ssize_t got = read(fd, buffer, sizeof buffer);
    if (got < 0) Fail(path);
    if (got == 0) break;
    bytes.insert(bytes.end(), buffer, buffer + got);
  }
  close(fd);
  ++readCount;
  if (!needle.empty() && !Holds(bytes, needle)) return;
  std::string temporary = path + ".new";
  fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (fd < 0) Fail(temporary);
  if (write(fd, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) Fail(temporary);
  if (syncEach && fsync(fd) != 0) Fail(temporary);
  if (close(fd) != 0 || rename(temporary.c_str(), path.c_str()) != 0) Fail(temporary);
  ++rewriteCount;
}

// Files first, then sub-folders, as the program walks.
void Walk(const std::string &folder, const std::string &needle) {
  DIR *dir = opendir(folder.c_str());
  if (dir == nullptr) Fail(folder);
  std::vector<std::string> files, folders;
  while (struct dirent *entry = readdir(dir)) {
    if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
    if (entry->d_type == DT_DIR)
      folders.push_back(entry->d_name);
    else if (EndsWithLnk(entry->d_name))
      files.push_back(entry->d_name);
  }
  closedir(dir);
  for (const std::string &name : files) Rewrite(folder + "/" + name, needle);
  for (const std::string &name : folders) Walk(folder + "/" + name, needle);
}

}  // namespace

int main(int argc, char **argv) {
  std::string root, needle;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--sync") == 0)
      syncEach = true;
    else if (root.empty())
      root = argv[i];
    else
      needle = argv[i];
  }
  if (root.empty()) {
    std::fprintf(stderr, "usage: lnk_floor ROOT [NEEDLE] [--sync]\n");
    return 2;
  }
  Walk(root, needle);
  std::printf("read=%ld rewritten=%ld\n", readCount, rewriteCount);
  return 0;
}
