// Reads and writes shortcuts through IShellLinkA and IPersistFile, the way the engine calls them. Built twice from
// this one source: on Linux over our own shell link objects, and with MinGW for Windows, where under Wine it runs
// Wine's own. test_lnk_oracle.py compares what the two read and write.
//
//   lnk_tool read FILE...   one line per shortcut: tab-separated key=value fields, texts as the A interface gives
//                            them (Shift-JIS under a Japanese code page), control bytes and ^ written as ^XX
//   lnk_tool write FIELDS   FIELDS: a file of key=value lines (file, target, args, workdir, icon, index, desc, show)
//                            with the same escapes; writes the shortcut as the engine's writer does
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/winapi.h"
#ifdef _WIN32
#include <shlobj.h>
#endif

namespace {

const int kBuffer = 1040;

std::string Escape(const char *text) {
  std::string out;
  for (const unsigned char *p = reinterpret_cast<const unsigned char *>(text); *p; ++p) {
    if (*p < 0x20 || *p == '^') {
      char code[4];
      std::snprintf(code, sizeof code, "^%02X", *p);
      out += code;
    } else {
      out += static_cast<char>(*p);
    }
  }
  return out;
}

std::string Unescape(const std::string &text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '^' && i + 2 < text.size()) {
      out += static_cast<char>(std::strtol(text.substr(i + 1, 2).c_str(), nullptr, 16));
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

std::vector<WCHAR> Wide(const char *text) {
  int count = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
  std::vector<WCHAR> wide(count > 0 ? count : 1, 0);
  if (count > 0) MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), count);
  return wide;
}

bool Open(IShellLinkA **link, IPersistFile **persist) {
  *link = nullptr;
  *persist = nullptr;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                              reinterpret_cast<void **>(link))))
    return false;
  if (FAILED((*link)->QueryInterface(IID_IPersistFile, reinterpret_cast<void **>(persist)))) {
    (*link)->Release();
    return false;
  }
  return true;
}

void ReadOne(const char *file) {
  IShellLinkA *link;
  IPersistFile *persist;
  std::printf("%s", Escape(file).c_str());
  if (!Open(&link, &persist)) {
    std::printf("\tcreate=fail\n");
    return;
  }
  HRESULT hr = persist->Load(Wide(file).data(), 0);
  std::printf("\tload=%s", SUCCEEDED(hr) ? "ok" : "fail");
  if (SUCCEEDED(hr)) {
    char text[kBuffer];
    WIN32_FIND_DATAA find;
    std::memset(&find, 0xA5, sizeof find);  // proves that GetPath writes the record
    text[0] = 'X';
    text[1] = 0;
    hr = link->GetPath(text, kBuffer, &find, SLGP_UNCPRIORITY);
    std::printf("\tpathhr=%lx\tpath=%s\tattr=%lx\tsize=%lu\tname=%s", static_cast<unsigned long>(hr),
                Escape(text).c_str(), static_cast<unsigned long>(find.dwFileAttributes),
                static_cast<unsigned long>(find.nFileSizeLow), Escape(find.cFileName).c_str());
    hr = link->GetPath(text, kBuffer, nullptr, 0);
    std::printf("\tplain=%s", Escape(text).c_str());
    hr = link->GetPath(text, kBuffer, nullptr, SLGP_RAWPATH);
    std::printf("\traw=%s", Escape(text).c_str());
    hr = link->GetArguments(text, kBuffer);
    std::printf("\targs=%s", SUCCEEDED(hr) ? Escape(text).c_str() : "(fail)");
    hr = link->GetWorkingDirectory(text, kBuffer);
    std::printf("\tworkdir=%s", SUCCEEDED(hr) ? Escape(text).c_str() : "(fail)");
    hr = link->GetDescription(text, kBuffer);
    std::printf("\tdesc=%s", SUCCEEDED(hr) ? Escape(text).c_str() : "(fail)");
    int index = -7;
    hr = link->GetIconLocation(text, kBuffer, &index);
    std::printf("\ticon=%s\tindex=%d", SUCCEEDED(hr) ? Escape(text).c_str() : "(fail)", index);
    int show = -7;
    link->GetShowCmd(&show);
    WORD hotkey = 0xDEAD;
    link->GetHotkey(&hotkey);
    std::printf("\tshow=%d\thotkey=%u", show, static_cast<unsigned>(hotkey));
  }
  std::printf("\n");
  persist->Release();
  link->Release();
}

// The writer's order of calls: icon, path, arguments, description, working folder, show command, save. A hotkey can
// be set as well, which the engine's writer never does.
int WriteOne(const char *fieldsFile) {
  FILE *fields = std::fopen(fieldsFile, "rb");
  if (fields == nullptr) return 2;
  std::string file, target, args, workdir, icon, desc;
  int index = 0, show = 0, hotkey = 0;
  bool hasArgs = false, hasWorkdir = false, hasDesc = false;
  char line[4096];
  while (std::fgets(line, sizeof line, fields) != nullptr) {
    std::string text = line;
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    size_t equals = text.find('=');
    if (equals == std::string::npos) continue;
    std::string key = text.substr(0, equals), value = Unescape(text.substr(equals + 1));
    if (key == "file") file = value;
    if (key == "target") target = value;
    if (key == "args") args = value, hasArgs = true;
    if (key == "workdir") workdir = value, hasWorkdir = true;
    if (key == "icon") icon = value;
    if (key == "desc") desc = value, hasDesc = true;
    if (key == "index") index = std::atoi(value.c_str());
    if (key == "show") show = std::atoi(value.c_str());
    if (key == "hotkey") hotkey = std::atoi(value.c_str());
  }
  std::fclose(fields);
  IShellLinkA *link;
  IPersistFile *persist;
  if (!Open(&link, &persist)) return 3;
  unsigned failed = 0;
  const std::string &iconText = icon.empty() ? target : icon;
  if (!iconText.empty() && FAILED(link->SetIconLocation(iconText.c_str(), index))) failed |= 0x1;
  if (!target.empty() && FAILED(link->SetPath(target.c_str()))) failed |= 0x2;
  if (hasArgs && FAILED(link->SetArguments(args.c_str()))) failed |= 0x4;
  if (hasDesc && FAILED(link->SetDescription(desc.c_str()))) failed |= 0x20;
  if (hasWorkdir && FAILED(link->SetWorkingDirectory(workdir.c_str()))) failed |= 0x8;
  if (show != 0 && FAILED(link->SetShowCmd(show))) failed |= 0x10;
  // Not something the engine sets: a test sets it to see that a rewrite drops it.
  if (hotkey != 0 && FAILED(link->SetHotkey(static_cast<WORD>(hotkey)))) failed |= 0x40;
  if (FAILED(persist->Save(Wide(file.c_str()).data(), TRUE))) failed |= 0x40000;
  persist->Release();
  link->Release();
  std::printf("%s\twrite=%x\n", Escape(file.c_str()).c_str(), failed);
  return 0;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: lnk_tool read FILE... | lnk_tool write FIELDS...\n");
    return 2;
  }
  CoInitialize(nullptr);
  std::string command = argv[1];
  int status = 0;
  for (int i = 2; i < argc; ++i) {
    if (command == "read")
      ReadOne(argv[i]);
    else if (command == "write")
      status |= WriteOne(argv[i]);
    else
      return 2;
  }
  std::fflush(stdout);
  return status;
}
