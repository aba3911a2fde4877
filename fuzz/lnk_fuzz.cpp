// The .lnk reader under libFuzzer. Each input goes the engine's way: into a shell link object of the Linux backend,
// as Load would take the file's bytes, then through every getter the engine reads a shortcut with. Where the load
// succeeds, the object's save is loaded again into a new object and must read the same, field by field; the codec's
// record of the saved bytes must hold what was saved, and saving that record must give the same bytes. Any breach
// aborts, so that libFuzzer keeps the input. The bytes stay in memory: no file per input.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/lnk/lnk_codec.h"
#include "platform/posix/shell/shell_link_image.h"
#include "platform/winapi.h"

namespace {

// The engine's buffer for every text it asks a shell link object for (kPathSize).
const int kEngineBuffer = 520;
// A short buffer as well: a text cut to fit must be a prefix of the whole one, never half a character more.
const int kShortBuffer = 9;

void Fail(const char *what, const std::string &before, const std::string &after) {
  std::fprintf(stderr, "lnk_fuzz: %s\n  first:  [%s]\n  second: [%s]\n", what, before.c_str(), after.c_str());
  std::abort();
}

void Require(bool ok, const char *what) {
  if (!ok) Fail(what, "", "");
}

// What one GetPath call gives: its result, the text and the find record.
struct PathReading {
  HRESULT result = E_FAIL;
  std::string text;
  DWORD attributes = 0;
  FILETIME creation = {0, 0}, access = {0, 0}, write = {0, 0};
  DWORD sizeLow = 0;
  std::string fileName;

  bool operator==(const PathReading &o) const {
    return result == o.result && text == o.text && attributes == o.attributes &&
           creation.dwLowDateTime == o.creation.dwLowDateTime && creation.dwHighDateTime == o.creation.dwHighDateTime &&
           access.dwLowDateTime == o.access.dwLowDateTime && access.dwHighDateTime == o.access.dwHighDateTime &&
           write.dwLowDateTime == o.write.dwLowDateTime && write.dwHighDateTime == o.write.dwHighDateTime &&
           sizeLow == o.sizeLow && fileName == o.fileName;
  }
};

// Every reading of a loaded shortcut: the engine's calls (GetPath with SLGP_UNCPRIORITY, the icon, the working folder,
// the arguments, the description, the show command) and the other readings of the target and the hot key.
struct Reading {
  PathReading path[3];  // flags SLGP_UNCPRIORITY (the engine's), 0, SLGP_RAWPATH
  HRESULT iconResult = E_FAIL, folderResult = E_FAIL, argumentsResult = E_FAIL, descriptionResult = E_FAIL;
  std::string icon, folder, arguments, description;
  int iconIndex = 0, showCmd = 0;
  WORD hotkey = 0;

  bool operator==(const Reading &o) const {
    return path[0] == o.path[0] && path[1] == o.path[1] && path[2] == o.path[2] && iconResult == o.iconResult &&
           folderResult == o.folderResult && argumentsResult == o.argumentsResult &&
           descriptionResult == o.descriptionResult && icon == o.icon && folder == o.folder &&
           arguments == o.arguments && description == o.description && iconIndex == o.iconIndex &&
           showCmd == o.showCmd && hotkey == o.hotkey;
  }

  std::string Show() const {
    std::string out;
    for (const PathReading &p : path) out += "path " + std::to_string(p.result) + " '" + p.text + "' ";
    out += "icon '" + icon + "' " + std::to_string(iconIndex) + " folder '" + folder + "' args '" + arguments +
           "' desc '" + description + "' show " + std::to_string(showCmd) + " hotkey " + std::to_string(hotkey);
    return out;
  }
};

// The text of a getter with the engine's buffer, checked against the same getter with a short one.
template <typename Getter>
HRESULT ReadText(Getter get, std::string *text) {
  char buffer[kEngineBuffer];
  std::memset(buffer, 0x5A, sizeof buffer);
  HRESULT result = get(buffer, kEngineBuffer);
  Require(std::memchr(buffer, 0, sizeof buffer) != nullptr, "a text without its terminator in the buffer");
  *text = buffer;
  char shortBuffer[kShortBuffer];
  std::memset(shortBuffer, 0x5A, sizeof shortBuffer);
  HRESULT shortResult = get(shortBuffer, kShortBuffer);
  Require(shortResult == result, "a short buffer changes the result");
  Require(std::memchr(shortBuffer, 0, sizeof shortBuffer) != nullptr, "a cut text without its terminator");
  std::string cut = shortBuffer;
  if (text->compare(0, cut.size(), cut) != 0) Fail("a cut text is not a prefix of the whole one", *text, cut);
  return result;
}

PathReading ReadPath(IShellLinkA *link, DWORD flags) {
  PathReading reading;
  WIN32_FIND_DATAA found;
  std::memset(&found, 0x5A, sizeof found);
  reading.result =
      ReadText([&](LPSTR buffer, int size) { return link->GetPath(buffer, size, &found, flags); }, &reading.text);
  Require(std::memchr(found.cFileName, 0, sizeof found.cFileName) != nullptr, "a find record's name without end");
  reading.attributes = found.dwFileAttributes;
  reading.creation = found.ftCreationTime;
  reading.access = found.ftLastAccessTime;
  reading.write = found.ftLastWriteTime;
  reading.sizeLow = found.nFileSizeLow;
  reading.fileName = found.cFileName;
  return reading;
}

Reading Read(IShellLinkA *link) {
  Reading r;
  // The engine's order: the icon first, then the target, then the rest.
  r.iconResult = ReadText([&](LPSTR b, int s) { return link->GetIconLocation(b, s, &r.iconIndex); }, &r.icon);
  r.path[0] = ReadPath(link, SLGP_UNCPRIORITY);
  r.path[1] = ReadPath(link, 0);
  r.path[2] = ReadPath(link, SLGP_RAWPATH);
  r.argumentsResult = ReadText([&](LPSTR b, int s) { return link->GetArguments(b, s); }, &r.arguments);
  r.folderResult = ReadText([&](LPSTR b, int s) { return link->GetWorkingDirectory(b, s); }, &r.folder);
  r.descriptionResult = ReadText([&](LPSTR b, int s) { return link->GetDescription(b, s); }, &r.description);
  Require(SUCCEEDED(link->GetShowCmd(&r.showCmd)), "GetShowCmd failed");
  Require(SUCCEEDED(link->GetHotkey(&r.hotkey)), "GetHotkey failed");
  return r;
}

IShellLinkA *NewLink() {
  static bool initialized = SUCCEEDED(CoInitialize(nullptr));
  Require(initialized, "CoInitialize failed");
  IShellLinkA *link = nullptr;
  Require(SUCCEEDED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                                     reinterpret_cast<void **>(&link))),
          "CoCreateInstance failed");
  return link;
}

std::string Narrow(const std::u16string &text) {
  std::string out;
  for (char16_t c : text) {
    char unit[8];
    std::snprintf(unit, sizeof unit, c < 0x80 && c >= 0x20 ? "%c" : "\\u%04X", static_cast<unsigned>(c));
    out += unit;
  }
  return out;
}

void SameText(const std::u16string &saved, const std::u16string &read, const char *what) {
  if (saved != read) Fail(what, Narrow(saved), Narrow(read));
}

// The fields of the saved record against those of its reading. What the writer settles on purpose is compared in
// its settled form: the bits of LinkFlags that say which structures follow, the network flags and provider.
void CheckSavedRecord(const ShellLinkRecord &saved, const ShellLinkRecord &read) {
  const LnkHeader &a = saved.header, &b = read.header;
  Require((a.linkFlags & ~kLinkStructureFlags) == (b.linkFlags & ~kLinkStructureFlags), "the other bits of LinkFlags");
  Require(a.fileAttributes == b.fileAttributes && a.creationTime == b.creationTime && a.accessTime == b.accessTime &&
              a.writeTime == b.writeTime && a.fileSize == b.fileSize && a.iconIndex == b.iconIndex &&
              a.showCommand == b.showCommand && a.hotKey == b.hotKey,
          "the header's fields");
  Require(saved.hasIdList == read.hasIdList && saved.idList == read.idList, "the ID list");
  Require(saved.hasLinkInfo == read.hasLinkInfo, "LinkInfo's presence");
  if (saved.hasLinkInfo) {
    const LnkLinkInfo &x = saved.linkInfo, &y = read.linkInfo;
    Require(x.hasLocal == y.hasLocal && x.hasNetwork == y.hasNetwork, "LinkInfo's parts");
    if (x.hasLocal) {
      Require(x.driveType == y.driveType && x.driveSerialNumber == y.driveSerialNumber, "the volume's numbers");
      SameText(x.volumeLabel, y.volumeLabel, "the volume label");
      SameText(x.localBasePath, y.localBasePath, "the local base path");
    }
    if (x.hasNetwork) {
      SameText(x.netName, y.netName, "the share name");
      SameText(x.deviceName, y.deviceName, "the mapped drive");
      Require(y.networkFlags == (kNetworkValidNetType | (x.deviceName.empty() ? 0 : kNetworkValidDevice)),
              "the network flags");
      Require(y.networkProviderType == (x.networkProviderType ? x.networkProviderType : kNetworkProviderLanman),
              "the network provider");
    }
    SameText(x.commonPathSuffix, y.commonPathSuffix, "the path suffix");
  }
  SameText(saved.strings.description, read.strings.description, "the description");
  SameText(saved.strings.relativePath, read.strings.relativePath, "the relative path");
  SameText(saved.strings.workingDir, read.strings.workingDir, "the working folder");
  SameText(saved.strings.arguments, read.strings.arguments, "the arguments");
  SameText(saved.strings.iconLocation, read.strings.iconLocation, "the icon location");
  Require(saved.extra.hasEnvironment == read.extra.hasEnvironment, "the environment block's presence");
  SameText(saved.extra.environmentTarget, read.extra.environmentTarget, "the environment target");
  Require(saved.extra.hasIconEnvironment == read.extra.hasIconEnvironment, "the icon environment block's presence");
  SameText(saved.extra.iconEnvironmentTarget, read.extra.iconEnvironmentTarget, "the icon environment target");
  Require(read.damage == 0, "our own save reads as damaged");
}

std::string Hex(const std::vector<uint8_t> &bytes) {
  std::string out;
  char pair[4];
  for (uint8_t b : bytes) {
    std::snprintf(pair, sizeof pair, "%02x", b);
    out += pair;
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  ShellLinkRecord record;
  bool parsed = ParseShellLink(ByteSpan{data, size}, &record) == LnkError::kNone;
  IShellLinkA *link = NewLink();
  HRESULT loaded = LoadShellLinkImage(link, data, size);
  Require(SUCCEEDED(loaded) == parsed, "the shell link object and the codec disagree on a load");
  if (!parsed) {
    Require(loaded == E_FAIL, "a damaged shortcut loads with another result than E_FAIL");
    link->Release();
    return 0;
  }
  Reading first = Read(link);

  std::vector<uint8_t> image;
  Require(SUCCEEDED(SaveShellLinkImage(link, &image)), "the save of a loaded shortcut is refused");
  IShellLinkA *again = NewLink();
  Require(SUCCEEDED(LoadShellLinkImage(again, image.data(), image.size())), "our own save does not load");
  Reading second = Read(again);
  if (!(first == second)) Fail("a save changes what the engine reads", first.Show(), second.Show());

  ShellLinkRecord reread;
  Require(ParseShellLink(ByteSpan{image.data(), image.size()}, &reread) == LnkError::kNone, "our save does not parse");
  CheckSavedRecord(record, reread);
  std::vector<uint8_t> imageAgain = SerializeShellLink(reread);
  if (imageAgain != image) Fail("a second save writes other bytes", Hex(image), Hex(imageAgain));

  again->Release();
  link->Release();
  return 0;
}
