// System information: the system's class from the version calls, the run's tidy-ups, the formatted one-line prompt
// and the drive check's record.
#include "machine/system_info.h"

#include <cstdio>
#include <cstring>

#include "console/console_prompt.h"
#include "machine/network_listing.h"
#include "platform/system_calls.h"
#include "text/memory_blocks.h"
#include "text/path_strings.h"
#include "text/resource_strings.h"
#include "text/tokens.h"

namespace {

typedef LONG(WINAPI *RtlGetVersionCall)(void *record);
typedef void(WINAPI *NativeSystemInfoCall)(LPSYSTEM_INFO info);
typedef BOOL(WINAPI *ProductInfoCall)(DWORD major, DWORD minor, DWORD servicePackMajor, DWORD servicePackMinor,
                                      DWORD *productType);

// The sizes that the version record states: the extended narrow record for RtlGetVersion, which writes the wide
// record all the same, and the plain narrow record for GetVersionExA.
const DWORD kRtlRecordSize = 156;
const DWORD kNarrowRecordSize = 148;
// Where the service pack text starts in both layouts, and how far RtlGetVersion's wide text may reach.
const unsigned kServicePackOffset = 20;
const unsigned kWideServicePackBytes = 256;

unsigned osClass = kOsClassNotKnown;
bool osClassWorkedOut = false;
DWORD majorVersion = 0xFFFFFFFFu;
DWORD minorVersion = 0xFFFFFFFFu;
DWORD buildNumber = 0;
char servicePack[kPathSize];
SYSTEM_INFO systemInfo;

RtlGetVersionCall rtlGetVersion = nullptr;

template <typename Function>
Function AsCall(FARPROC address) {
  return reinterpret_cast<Function>(reinterpret_cast<void *>(address));
}

// An entry point of kernel32, or null.
FARPROC KernelEntry(const char *name) {
  HMODULE kernel = GetModuleHandleA("kernel32.dll");
  return kernel != nullptr ? GetProcAddress(kernel, name) : nullptr;
}

// Product types of the server editions (PRODUCT_DATACENTER_SERVER, PRODUCT_ENTERPRISE_SERVER ...).
int IsServerProduct(const VersionRecord &record) {
  ProductInfoCall productInfo = AsCall<ProductInfoCall>(KernelEntry("GetProductInfo"));
  if (productInfo == nullptr) return 0;
  DWORD type = 0;
  productInfo(record.info.dwMajorVersion, record.info.dwMinorVersion, record.info.wServicePackMajor,
              record.info.wServicePackMinor, &type);
  switch (type) {
    case 8:
    case 9:
    case 12:
    case 15:
    case 37:
    case 39:
      return 1;
    default:
      return (type >= 17 && type <= 25) || (type >= 29 && type <= 35) || (type >= 42 && type <= 46) ? 1 : 0;
  }
}

bool IsAmd64Processor() { return ReadNativeSystemInfo()->wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64; }

unsigned ClassOfWindows95Line(DWORD minor, const char *pack) {
  if (minor == 0) return pack[1] == 'C' || pack[1] == 'B' ? 0xA014 : 0xA004;
  if (minor == 10) return pack[0] != 0 && (pack[1] == 'A' || pack[1] == 'B') ? 0xA028 : 0xA008;
  if (minor == 90) return 0xA040;
  return osClass;
}

unsigned ClassOfNtLine(const VersionRecord &record, DWORD major, DWORD minor) {
  if (major >= 10) {
    unsigned type = record.info.wProductType;
    unsigned value = type == 0 || type == 1 ? 0xE0000 : 0xE0400;
    value |= major == 10 && minor == 0 ? kOsWindows10 : kOsAfterWindows10;
    if (IsServerProduct(record)) value |= kOsServer;
    value |= IsAmd64Processor() ? kOs64Bit : kOs32Bit;
    return value;
  }
  // Versions 6 to 9 keep the class unknown, all bits set: every test of a bit passes, so such a system is taken for
  // a 64-bit server with a virtual store. The names of Vista to 8.1 stand in the name table only. The class has
  // always been worked out so, and what depends on the bits is tuned to it.
  if (major >= 6) return osClass;
  if (major == 5) {
    switch (minor) {
      case 2:
        if (GetSystemMetrics(SM_SERVERR2) == 0 && record.info.wProductType == 1)
          return 0x70000 | (IsAmd64Processor() ? kOs64Bit : 0x2400u);
        return 0x72400;
      case 1:
        return 0x72200;
      case 0:
        return 0x72100;
      default:
        return 0x30000;
    }
  }
  return osClass | 0x2080;
}

unsigned WorkOutOsClass() {
  if (osClassWorkedOut) return osClass;
  VersionRecord record;
  std::memset(&record, 0, sizeof record);
  record.info.dwOSVersionInfoSize = kRtlRecordSize;
  bool wide = ReadVersion(&record) != 0;
  if (!wide) {
    record.info.dwOSVersionInfoSize = kNarrowRecordSize;
    if (!GetVersionExA(reinterpret_cast<LPOSVERSIONINFOA>(&record.info))) return kOsUnknown;
  }
  majorVersion = record.info.dwMajorVersion;
  minorVersion = record.info.dwMinorVersion;
  buildNumber = record.info.dwBuildNumber;
  unsigned char *pack = record.bytes + kServicePackOffset;
  unsigned packRoom = wide ? kWideServicePackBytes : sizeof record.info.szCSDVersion;
  if (wide) PackWideText(pack, packRoom);
  unsigned length = 0;
  while (length < packRoom && pack[length] != 0) ++length;
  std::memcpy(servicePack, pack, length);
  servicePack[length] = 0;

  switch (record.info.dwPlatformId) {
    case VER_PLATFORM_WIN32s:
      osClass = 0x1002;
      break;
    case VER_PLATFORM_WIN32_WINDOWS:
      if (majorVersion == 4) osClass = ClassOfWindows95Line(minorVersion, reinterpret_cast<const char *>(pack));
      break;
    case VER_PLATFORM_WIN32_NT:
      osClass = ClassOfNtLine(record, majorVersion, minorVersion);
      break;
    default:
      break;
  }
  osClassWorkedOut = true;
  return osClass;
}

struct ClassName {
  unsigned bit;
  const char *name;
};

// In the order in which the names are looked for: the second edition of 98 before 98 itself.
const ClassName kClassNames[] = {
    {kOsWindows31, "Windows 3.1"},
    {kOsWindows32s, "Windows 32s"},
    {kOsWindows95, "Windows 95"},
    {kOsWindows98Second, "Windows 98SE"},
    {kOsWindows98, "Windows 98"},
    {kOsWindowsMe, "Windows Me"},
    {kOsWindowsNt, "Windows NT"},
    {kOsWindows2000, "Windows 2000"},
    {kOsWindowsXp, "Windows XP"},
    {kOsWindowsVista, "Windows Vista"},
    {kOsWindows7, "Windows 7"},
    {kOsWindows8, "Windows 8"},
    {kOsWindows81, "Windows 8.1"},
    {kOsWindows10, "Windows 10"},
    {kOsAfterWindows10, "After Windows 10"},
    {kOsUnknown, "未設定"},
};

// The network folders that a walk entered, each kept in a block: the dialog tool pushes one per network place it
// opens; this tool opens none, so the stack stays empty.
struct NetworkFolder {
  HGLOBAL path;
  NetworkFolder *below;
};
NetworkFolder *networkFolderTop = nullptr;
BlockRecord keptNetworkText = {nullptr, nullptr, 0};
// The program runner's kept text and its two blocks.
BlockRecord programText = {nullptr, nullptr, 0};
HGLOBAL runnerBlocks[2] = {nullptr, nullptr};

void FreeBlock(HGLOBAL *block) {
  if (*block != nullptr) GlobalFree(*block);
  *block = nullptr;
}

}  // namespace

unsigned GetOsClass(char *name) {
  unsigned value = osClass == kOsClassNotKnown ? WorkOutOsClass() : osClass;
  if (name == nullptr) return value;
  name[0] = 0;
  for (const ClassName &entry : kClassNames)
    if (value & entry.bit) {
      std::strcpy(name, entry.name);
      break;
    }
  if (value & kOsServer) std::strcat(name, " Server");
  if (value & kOs64Bit) std::strcat(name, " 64bit");
  return value;
}

void ForgetOsClass(void) {
  osClass = kOsClassNotKnown;
  osClassWorkedOut = false;
  majorVersion = minorVersion = 0xFFFFFFFFu;
  buildNumber = 0;
  servicePack[0] = 0;
  rtlGetVersion = nullptr;
}

int ReadVersion(VersionRecord *record) {
  if (rtlGetVersion == nullptr) {
    HMODULE ntdll = LoadLibraryA("ntdll.dll");
    if (reinterpret_cast<uintptr_t>(ntdll) < 33) return 0;
    rtlGetVersion = AsCall<RtlGetVersionCall>(GetProcAddress(ntdll, "RtlGetVersion"));
    if (rtlGetVersion == nullptr) return 0;
  }
  return rtlGetVersion(record) <= 0 ? 1 : 0;
}

const SYSTEM_INFO *ReadNativeSystemInfo(void) {
  NativeSystemInfoCall native = AsCall<NativeSystemInfoCall>(KernelEntry("GetNativeSystemInfo"));
  if (native != nullptr) {
    native(&systemInfo);
  } else {
    GetSystemInfo(&systemInfo);
  }
  return &systemInfo;
}

void PackWideText(unsigned char *text, unsigned size) {
  if (text == nullptr || size == 0) return;
  unsigned from = 0, to = 0;
  while (from + 1 < size && (text[from] != 0 || text[from + 1] != 0)) {
    unsigned char first = text[from], second = text[from + 1];
    text[to++] = first;
    if (second != 0) text[to++] = second;
    from += 2;
  }
  text[to < size ? to : size - 1] = 0;
}

DWORD OsMajorVersion(void) { return majorVersion; }
DWORD OsMinorVersion(void) { return minorVersion; }
DWORD OsBuildNumber(void) { return buildNumber; }
const char *OsServicePackText(void) { return servicePack; }

int ShowFormattedPromptText(const char *format, const char *title, const char *argument, HWND owner, UINT style,
                            const char *prefix, const char *separator) {
  if (format == nullptr) format = "";
  if (prefix == nullptr) prefix = "";
  if (separator == nullptr) separator = "";
  size_t size = std::strlen(format) + std::strlen(prefix) + std::strlen(separator) +
                (argument != nullptr ? std::strlen(argument) : 0) + 10;
  HGLOBAL handle = nullptr;
  char *text = AcquireBlock(&handle, nullptr, static_cast<DWORD>(size), nullptr);
  if (text == nullptr) return 0;
  size_t head = std::strlen(prefix) + std::strlen(separator);
  std::strcpy(text, prefix);
  std::strcat(text, separator);
  if (argument != nullptr && FindCharacter(format, '%') != nullptr) {
    std::snprintf(text + head, size - head, format, argument);
  } else {
    std::strcat(text, format);
  }
  int answer = ConsolePrompt(owner, text, title, style);
  ReleaseBlock(handle, text);
  return answer;
}

int ShowFormattedPrompt(HMODULE module, UINT messageId, UINT titleId, const char *argument, HWND owner, UINT style,
                        const char *prefix, const char *separator) {
  LoadStringPair(nullptr, module, messageId, titleId);
  return ShowFormattedPromptText(FirstSlotText(), SecondSlotText(), argument, owner, style, prefix, separator);
}

CheckResult *ResetCheckResult(CheckResult *record) {
  if (record != nullptr) {
    const int32_t words[7] = {0, -1, -1, 0, 0, 0, 0};
    std::memcpy(record->words, words, sizeof words);
  }
  return record;
}

CheckResult *SetCheckResultOk(CheckResult *record) {
  if (record != nullptr) {
    const int32_t words[7] = {0, 1, 1, 0, 0, 0, 0};
    std::memcpy(record->words, words, sizeof words);
  }
  return record;
}

void ReleaseProgramTexts(void) {
  ReleaseBlockRecord(&programText);
  for (HGLOBAL &block : runnerBlocks) FreeBlock(&block);
}

void PopNetworkFolder(void) {
  NetworkFolder *top = networkFolderTop;
  if (top == nullptr) return;
  networkFolderTop = top->below;
  FreeBlock(&top->path);
  delete top;
}

void ReleaseNetworkList(void) {
  ReleaseNetworkNodes();
  ReleaseBlockRecord(&keptNetworkText);
  while (networkFolderTop != nullptr) PopNetworkFolder();
}
