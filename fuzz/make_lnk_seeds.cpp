// The fuzz target's seed corpus: shortcuts as our writer makes them, one file each in the folder given. Most go
// through the shell link object's Set calls in the engine's writer order; the structures that only Windows writes
// (LinkInfo's local and network forms, a Unicode LinkInfo, ANSI strings) come from records given to the codec.
//
//   make_lnk_seeds FOLDER
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/posix/lnk/lnk_codec.h"
#include "platform/posix/shell/shell_link_image.h"
#include "platform/winapi.h"

namespace {

// Texts are Shift-JIS, written as bytes: this build keeps narrow literals as they are in the source.
struct Fields {
  const char *name;
  const char *icon;  // null: not set
  int iconIndex;
  const char *target;
  const char *arguments;
  const char *description;
  const char *folder;
  int showCmd;
  WORD hotkey;
};

const Fields kMade[] = {
    {"drive_path", nullptr, 0, "C:\\Program Files\\App\\app.exe", "", "", "C:\\Program Files\\App", 1, 0},
    {"all_fields", "C:\\Windows\\System32\\shell32.dll", 12, "D:\\Apps\\tool.exe", "-x \"a b\" /y",
     "A tool with a description", "D:\\Apps", 3, 0x0641},
    {"unc_path", nullptr, 0, "\\\\server\\share\\folder\\file.txt", "", "", "\\\\server\\share", 7, 0},
    {"unc_share_only", nullptr, 0, "\\\\server\\share", "", "", "", 1, 0},
    {"environment", "%SystemRoot%\\system32\\imageres.dll", 5, "%SystemRoot%\\notepad.exe", "%TEMP%\\x.txt", "",
     "%USERPROFILE%", 1, 0},
    {"bare_name", nullptr, 0, "notepad.exe", "", "", "", 1, 0},
    {"shift_jis", "E:\\\x83\x65\x83\x58\x83\x67\\icon.ico", 0,
     "E:\\\x93\xfa\x96\x7b\x8c\xea\\\x83\x65\x83\x58\x83\x67.exe", "\xc3\xbd\xc4", "\x95\x5c",
     "E:\\\x93\xfa\x96\x7b\x8c\xea", 1, 0},
    {"long_arguments", nullptr, 0, "C:\\a.exe",
     "0123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789"
     "0123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789"
     "0123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789",
     "", "", 1, 0},
    {"folder_target", nullptr, 0, "C:\\Users\\Public\\Documents\\", "", "", "", 1, 0},
    {"no_target", "C:\\icons\\only.ico", 0, "", "", "icon and description only", "", 1, 0},
};

bool WriteFile(const std::string &path, const std::vector<uint8_t> &bytes) {
  FILE *file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  bool ok = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  return std::fclose(file) == 0 && ok;
}

bool Make(const Fields &f, std::vector<uint8_t> *bytes) {
  IShellLinkA *link = nullptr;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                              reinterpret_cast<void **>(&link))))
    return false;
  bool ok = true;
  if (f.icon != nullptr) ok &= SUCCEEDED(link->SetIconLocation(f.icon, f.iconIndex));
  if (*f.target != 0) ok &= SUCCEEDED(link->SetPath(f.target));
  ok &= SUCCEEDED(link->SetArguments(f.arguments));
  ok &= SUCCEEDED(link->SetDescription(f.description));
  ok &= SUCCEEDED(link->SetWorkingDirectory(f.folder));
  ok &= SUCCEEDED(link->SetShowCmd(f.showCmd));
  if (f.hotkey != 0) ok &= SUCCEEDED(link->SetHotkey(f.hotkey));
  ok &= SUCCEEDED(SaveShellLinkImage(link, bytes));
  link->Release();
  return ok;
}

// Records for the codec's writer alone.
std::vector<std::pair<std::string, ShellLinkRecord>> Records() {
  std::vector<std::pair<std::string, ShellLinkRecord>> out;
  ShellLinkRecord local;
  local.header.fileAttributes = 0x20;
  local.header.writeTime = 0x01D9C0FFEE000000ull;
  local.header.fileSize = 4096;
  local.hasIdList = BuildIdListForPath(u"C:\\Tools\\run.exe", {}, &local.idList);
  local.hasLinkInfo = true;
  local.linkInfo.hasLocal = true;
  local.linkInfo.driveType = 3;
  local.linkInfo.driveSerialNumber = 0x1234ABCD;
  local.linkInfo.volumeLabel = u"SYSTEM";
  local.linkInfo.localBasePath = u"C:\\Tools\\run.exe";
  local.strings.relativePath = u".\\run.exe";
  local.strings.workingDir = u"C:\\Tools";
  out.emplace_back("linkinfo_local", local);

  ShellLinkRecord unicode = local;
  unicode.linkInfo.volumeLabel = u"\u30c7\u30fc\u30bf";                          // not ASCII: a Unicode VolumeID
  unicode.linkInfo.localBasePath = u"C:\\\u0627\u062e\u062a\u0628\u0627\u0631";  // not CP932: Unicode offsets
  unicode.linkInfo.commonPathSuffix = u"\u00e9t\u00e9.txt";
  out.emplace_back("linkinfo_unicode", unicode);

  ShellLinkRecord network;
  network.hasLinkInfo = true;
  network.linkInfo.hasNetwork = true;
  network.linkInfo.netName = u"\\\\FILES\\Team";
  network.linkInfo.deviceName = u"Z:";
  network.linkInfo.networkProviderType = kNetworkProviderLanman;
  network.linkInfo.commonPathSuffix = u"plans\\2024.xlsx";
  network.strings.description = u"Plans";
  out.emplace_back("linkinfo_network_device", network);

  ShellLinkRecord both = local;
  both.linkInfo.hasNetwork = true;
  both.linkInfo.netName = u"\\\\\u30b5\u30fc\u30d0\\share";
  both.header.linkFlags = kLinkForceNoLinkInfo;
  out.emplace_back("linkinfo_both_forced", both);

  ShellLinkRecord environment;
  environment.header.linkFlags = kLinkHasExpString | kLinkHasExpIcon;
  environment.extra.hasEnvironment = true;
  environment.extra.environmentTarget = u"%ProgramFiles%\\App\\app.exe";
  environment.extra.hasIconEnvironment = true;
  environment.extra.iconEnvironmentTarget = u"%ProgramFiles%\\App\\app.ico";
  environment.strings.iconLocation = u"C:\\Program Files\\App\\app.ico";
  out.emplace_back("environment_blocks", environment);
  return out;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_lnk_seeds FOLDER\n");
    return 2;
  }
  std::string folder = argv[1];
  // No drive is mapped, so that SetPath finds nothing on this machine and every run makes the same bytes.
  setenv("KELMARO_DRIVES", "", 1);
  CoInitialize(nullptr);
  int made = 0;
  for (const Fields &f : kMade) {
    std::vector<uint8_t> bytes;
    if (!Make(f, &bytes) || !WriteFile(folder + "/" + f.name + ".lnk", bytes)) {
      std::fprintf(stderr, "make_lnk_seeds: cannot make %s\n", f.name);
      return 1;
    }
    ++made;
  }
  for (const auto &named : Records()) {
    if (!WriteFile(folder + "/" + named.first + ".lnk", SerializeShellLink(named.second))) {
      std::fprintf(stderr, "make_lnk_seeds: cannot write %s\n", named.first.c_str());
      return 1;
    }
    ++made;
  }
  CoUninitialize();
  std::printf("make_lnk_seeds: %d shortcuts in %s\n", made, folder.c_str());
  return 0;
}
