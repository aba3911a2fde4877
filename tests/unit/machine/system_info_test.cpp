// System information: the system's class by version, worked out once, through version calls of the test's own in
// the swappable call table, so that every row runs on Linux and under Wine; the class of the real system; the
// formatted prompt, the drive check's record and the run's tidy-ups.
#include "machine/system_info.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

#include "platform/testing.h"
#include "resources/message_ids.h"

namespace {

// One system as the version calls describe it.
struct System {
  const char *what;
  DWORD platform, major, minor;
  const char *servicePack;
  BYTE productType;  // the byte at offset 154 of the record, where the narrow extended record keeps it
  WORD architecture;
  DWORD product;  // what GetProductInfo gives
  int serverR2;   // what GetSystemMetrics(SM_SERVERR2) gives
};

const System kWindows10 = {"10.0 x64", 2, 10, 0, "", 1, 9, 0x30, 0};
const System *current = &kWindows10;
bool rtlAnswers = true;  // else RtlGetVersion fails (a status above 0) and GetVersionExA answers
LONG rtlStatus = 0;
BOOL versionExAnswer = TRUE;
int calls = 0;
char residue = 0;  // a byte that GetVersionExA leaves behind the service pack text's terminator
DWORD rtlSizeSeen = 0, versionExSizeSeen = 0;

LONG WINAPI FakeRtlGetVersion(void *record) {
  ++calls;
  OSVERSIONINFOEXA *info = static_cast<OSVERSIONINFOEXA *>(record);
  rtlSizeSeen = info->dwOSVersionInfoSize;
  if (!rtlAnswers) return 1;
  info->dwMajorVersion = current->major;
  info->dwMinorVersion = current->minor;
  info->dwBuildNumber = 4321;
  info->dwPlatformId = current->platform;
  // The service pack text in UTF-16, as the wide record holds it.
  unsigned char *text = static_cast<unsigned char *>(record) + 20;
  size_t i = 0;
  for (; current->servicePack[i] != 0; ++i) {
    text[2 * i] = static_cast<unsigned char>(current->servicePack[i]);
    text[2 * i + 1] = 0;
  }
  text[2 * i] = text[2 * i + 1] = 0;
  info->wProductType = current->productType;
  return rtlStatus;
}

BOOL WINAPI FakeGetVersionEx(LPOSVERSIONINFOA info) {
  ++calls;
  versionExSizeSeen = info->dwOSVersionInfoSize;
  if (!versionExAnswer) return FALSE;
  info->dwMajorVersion = current->major;
  info->dwMinorVersion = current->minor;
  info->dwBuildNumber = 1234;
  info->dwPlatformId = current->platform;
  std::strcpy(info->szCSDVersion, current->servicePack);
  info->szCSDVersion[std::strlen(current->servicePack) + 1] = residue;
  return TRUE;
}

void WINAPI FakeNativeSystemInfo(LPSYSTEM_INFO info) {
  ++calls;
  std::memset(info, 0, sizeof *info);
  info->wProcessorArchitecture = current->architecture;
}

// What a 32-bit process hears on a 64-bit system: the native call is the one that tells the width.
void WINAPI FakeSystemInfo(LPSYSTEM_INFO info) {
  ++calls;
  std::memset(info, 0, sizeof *info);
  info->wProcessorArchitecture = 0;
}

BOOL WINAPI FakeProductInfo(DWORD, DWORD, DWORD, DWORD, DWORD *type) {
  ++calls;
  *type = current->product;
  return TRUE;
}

int WINAPI FakeSystemMetrics(int index) {
  ++calls;
  return index == 89 ? current->serverR2 : 0;
}

class SystemClass : public ::testing::Test {
 protected:
  void SetUp() override {
    current = &kWindows10;
    rtlAnswers = true;
    rtlStatus = 0;
    versionExAnswer = TRUE;
    calls = 0;
    rtlSizeSeen = versionExSizeSeen = 0;
    residue = 0;
    struct {
      const char *name;
      FARPROC call;
    } swaps[] = {
        {"RtlGetVersion", TestCall(&FakeRtlGetVersion)},          {"GetVersionExA", TestCall(&FakeGetVersionEx)},
        {"GetNativeSystemInfo", TestCall(&FakeNativeSystemInfo)}, {"GetSystemInfo", TestCall(&FakeSystemInfo)},
        {"GetProductInfo", TestCall(&FakeProductInfo)},           {"GetSystemMetrics", TestCall(&FakeSystemMetrics)}};
    for (const auto &swap : swaps) ASSERT_TRUE(TestSwapSystemCall(swap.name, swap.call)) << swap.name;
    ForgetOsClass();
  }
  void TearDown() override {
    TestRestoreSystemCalls();
    ForgetOsClass();
  }
};

// The class and its name for a system, worked out afresh.
struct Outcome {
  unsigned osClass;
  std::string name;
};
Outcome ClassOf(const System &system) {
  current = &system;
  ForgetOsClass();
  char name[40];
  std::memset(name, '#', sizeof name);
  unsigned value = GetOsClass(name);
  EXPECT_EQ(GetOsClass(nullptr), value) << system.what << ": the second call hands the class back";
  return {value, name};
}

TEST_F(SystemClass, ByVersion) {
  const unsigned all = 0xFFFFFFFFu;
  const std::string allNames = "Windows 3.1 Server 64bit";  // the first name's bit and both suffixes' bits are set
  struct Row {
    System system;
    bool throughRtl;  // false: RtlGetVersion fails and GetVersionExA answers
    unsigned osClass;
    std::string name;
  } rows[] = {
      {{"Win32s", 0, 3, 10, "", 0, 0, 0, 0}, false, 0x1002, "Windows 32s"},
      {{"95", 1, 4, 0, "", 0, 0, 0, 0}, false, 0xA004, "Windows 95"},
      {{"95 OSR2 B", 1, 4, 0, " B", 0, 0, 0, 0}, false, 0xA014, "Windows 95"},
      {{"95 OSR2 C", 1, 4, 0, " C", 0, 0, 0, 0}, false, 0xA014, "Windows 95"},
      {{"95 A", 1, 4, 0, " A", 0, 0, 0, 0}, false, 0xA004, "Windows 95"},
      {{"98", 1, 4, 10, "", 0, 0, 0, 0}, false, 0xA008, "Windows 98"},
      {{"98 SE A", 1, 4, 10, " A", 0, 0, 0, 0}, false, 0xA028, "Windows 98SE"},
      {{"98 SE B", 1, 4, 10, " B", 0, 0, 0, 0}, false, 0xA028, "Windows 98SE"},
      {{"98 C", 1, 4, 10, " C", 0, 0, 0, 0}, false, 0xA008, "Windows 98"},
      {{"98 A in first place", 1, 4, 10, "A", 0, 0, 0, 0}, false, 0xA008, "Windows 98"},
      {{"Me", 1, 4, 90, "", 0, 0, 0, 0}, false, 0xA040, "Windows Me"},
      {{"95 line 4.20", 1, 4, 20, "", 0, 0, 0, 0}, false, all, allNames},
      {{"NT 4", 2, 4, 0, "Service Pack 6", 0, 0, 0, 0}, true, all, allNames},
      {{"2000", 2, 5, 0, "", 1, 0, 0, 0}, true, 0x72100, "Windows 2000"},
      {{"XP", 2, 5, 1, "Service Pack 3", 1, 0, 0, 0}, true, 0x72200, "Windows XP"},
      {{"Server 2003", 2, 5, 2, "", 3, 0, 0, 0}, true, 0x72400, " Server"},
      {{"XP x64", 2, 5, 2, "", 1, 9, 0, 0}, true, 0x74000, " 64bit"},
      {{"5.2 workstation on x86", 2, 5, 2, "", 1, 0, 0, 0}, true, 0x72400, " Server"},
      {{"Server 2003 R2", 2, 5, 2, "", 1, 9, 0, 1}, true, 0x72400, " Server"},
      {{"5.3", 2, 5, 3, "", 1, 9, 0, 0}, true, 0x30000, ""},
      {{"Vista", 2, 6, 0, "", 1, 9, 0x30, 0}, true, all, allNames},
      {{"7", 2, 6, 1, "", 1, 0, 0x30, 0}, true, all, allNames},
      {{"8.1", 2, 6, 3, "", 1, 9, 0x30, 0}, true, all, allNames},
      {{"9.0", 2, 9, 0, "", 1, 9, 0x30, 0}, true, all, allNames},
      {{"10 x64", 2, 10, 0, "", 1, 9, 0x30, 0}, true, 0xE0000 | 0x800000 | 0x4000, "Windows 10 64bit"},
      {{"10 product type 0", 2, 10, 0, "", 0, 9, 0x30, 0}, true, 0x8E4000, "Windows 10 64bit"},
      {{"10 x86", 2, 10, 0, "", 1, 0, 0x30, 0}, true, 0x8E2000, "Windows 10"},
      {{"10 ARM64", 2, 10, 0, "", 1, 12, 0x30, 0}, true, 0x8E2000, "Windows 10"},
      {{"10 server product", 2, 10, 0, "", 1, 9, 8, 0}, true, 0x8E4400, "Windows 10 Server 64bit"},
      {{"10 server product type", 2, 10, 0, "", 3, 9, 0x30, 0}, true, 0x8E4400, "Windows 10 Server 64bit"},
      {{"10 through GetVersionExA", 2, 10, 0, "", 0, 9, 0x30, 0}, false, 0x8E4000, "Windows 10 64bit"},
      {{"10.1", 2, 10, 1, "", 1, 9, 0x30, 0}, true, 0x10E4000, "After Windows 10 64bit"},
      {{"11", 2, 11, 0, "", 1, 9, 0x30, 0}, true, 0x10E4000, "After Windows 10 64bit"},
      {{"11 server x86", 2, 11, 0, "", 1, 0, 8, 0}, true, 0x10E2400, "After Windows 10 Server"},
      {{"an unknown platform", 3, 10, 0, "", 1, 9, 0x30, 0}, true, all, allNames},
  };
  for (const Row &row : rows) {
    rtlAnswers = row.throughRtl;
    Outcome outcome = ClassOf(row.system);
    EXPECT_EQ(outcome.osClass, row.osClass) << row.system.what << std::hex << " 0x" << outcome.osClass;
    EXPECT_EQ(outcome.name, row.name) << row.system.what;
    EXPECT_EQ(OsMajorVersion(), row.system.major) << row.system.what;
    EXPECT_EQ(OsMinorVersion(), row.system.minor) << row.system.what;
    EXPECT_EQ(OsBuildNumber(), row.throughRtl ? 4321u : 1234u) << row.system.what;
    EXPECT_STREQ(OsServicePackText(), row.system.servicePack) << row.system.what;
  }
}

// The 95 line's editions by the second byte of the service pack text: Windows 95 reads it whatever the text, Windows
// 98 only behind a first byte that is not the terminator.
TEST_F(SystemClass, TheSecondByteOfAnEmptyText) {
  rtlAnswers = false;
  residue = 'C';
  EXPECT_EQ(ClassOf({"95, empty text, C behind it", 1, 4, 0, "", 0, 0, 0, 0}).osClass, 0xA014u);
  residue = 'A';
  EXPECT_EQ(ClassOf({"98, empty text, A behind it", 1, 4, 10, "", 0, 0, 0, 0}).osClass, 0xA008u);
}

TEST_F(SystemClass, ServerProducts) {
  const int kServers[] = {8,  9,  12, 15, 17, 18, 19, 20, 21, 22, 23, 24, 25, 29,
                          30, 31, 32, 33, 34, 35, 37, 39, 42, 43, 44, 45, 46};
  for (DWORD product = 0; product <= 80; ++product) {
    bool server = std::find(std::begin(kServers), std::end(kServers), static_cast<int>(product)) != std::end(kServers);
    System system = {"10 with a product", 2, 10, 0, "", 1, 9, product, 0};
    EXPECT_EQ(ClassOf(system).osClass & kOsServer, server ? kOsServer : 0u) << "product " << product;
  }
  ASSERT_TRUE(TestSwapSystemCall("GetProductInfo", nullptr));
  System system = {"10 without GetProductInfo", 2, 10, 0, "", 1, 9, 8, 0};
  EXPECT_EQ(ClassOf(system).osClass, 0x8E4000u) << "a missing entry point makes no server";
}

TEST_F(SystemClass, WorkedOutOnce) {
  EXPECT_EQ(GetOsClass(nullptr), 0x8E4000u);
  int asked = calls;
  System other = {"XP", 2, 5, 1, "", 1, 0, 0, 0};
  current = &other;
  EXPECT_EQ(GetOsClass(nullptr), 0x8E4000u);
  EXPECT_EQ(calls, asked) << "no version call after the first";

  // A class that stays all bits set is worked out all the same.
  System seven = {"7", 2, 6, 1, "", 1, 9, 0x30, 0};
  ClassOf(seven);
  asked = calls;
  current = &kWindows10;
  EXPECT_EQ(GetOsClass(nullptr), 0xFFFFFFFFu);
  EXPECT_EQ(calls, asked);
}

TEST_F(SystemClass, NoVersionAnswer) {
  rtlAnswers = false;
  versionExAnswer = FALSE;
  char name[40] = "garbage";
  EXPECT_EQ(GetOsClass(name), 0x2000000u);
  EXPECT_STREQ(name, "未設定");
  EXPECT_EQ(OsMajorVersion(), 0xFFFFFFFFu) << "nothing kept";
  versionExAnswer = TRUE;
  EXPECT_EQ(GetOsClass(name), 0x8E4000u) << "the next call asks again, and GetVersionExA answers";
  EXPECT_STREQ(name, "Windows 10 64bit");
}

TEST_F(SystemClass, WhichCallAnswers) {
  GetOsClass(nullptr);
  EXPECT_EQ(rtlSizeSeen, 156u) << "RtlGetVersion is handed the narrow extended record";
  EXPECT_EQ(versionExSizeSeen, 0u) << "GetVersionExA is not asked when RtlGetVersion answers";

  ForgetOsClass();
  ASSERT_TRUE(TestSwapSystemCall("RtlGetVersion", nullptr));
  EXPECT_EQ(GetOsClass(nullptr), 0x8E4000u);
  EXPECT_EQ(versionExSizeSeen, 148u) << "without RtlGetVersion, GetVersionExA with the plain narrow record";
  ASSERT_TRUE(TestSwapSystemCall("RtlGetVersion", TestCall(&FakeRtlGetVersion)));

  struct Row {
    LONG status;
    bool fromRtl;
  } rows[] = {{0, true}, {-1073741811 /* STATUS_INVALID_PARAMETER */, true}, {1, false}, {259, false}};
  for (const Row &row : rows) {
    ForgetOsClass();
    rtlStatus = row.status;
    GetOsClass(nullptr);
    EXPECT_EQ(OsBuildNumber(), row.fromRtl ? 4321u : 1234u) << "status " << row.status;
  }
  rtlStatus = 0;

  ForgetOsClass();
  ASSERT_TRUE(TestSwapSystemCall("GetNativeSystemInfo", nullptr));
  EXPECT_EQ(GetOsClass(nullptr), 0x8E2000u) << "without GetNativeSystemInfo, GetSystemInfo tells the width";
  EXPECT_EQ(ReadNativeSystemInfo()->wProcessorArchitecture, 0);
}

TEST(PackWideText, FoldsInPlace) {
  struct Row {
    std::string wide;
    unsigned size;
    std::string narrow;  // the first bytes of the buffer afterwards, its terminator included
  } rows[] = {{std::string("S\0P\0 \0001\0\0\0", 10), 10, std::string("SP 1\0", 5)},
              {std::string("\0\0", 2), 2, std::string("\0", 1)},
              // A character whose second byte is not 0 keeps both bytes.
              {std::string("A\0\x42\x30\0\0", 6), 6, std::string("AB0\0", 4)},
              // No terminator within the size: the text ends at the size.
              {std::string("A\0B\0XY", 6), 4, std::string("AB\0\0XY", 6)}};
  for (const Row &row : rows) {
    std::string buffer = row.wide;
    PackWideText(reinterpret_cast<unsigned char *>(&buffer[0]), row.size);
    EXPECT_EQ(buffer.substr(0, row.narrow.size()), row.narrow) << row.size;
  }
  PackWideText(nullptr, 4);
}

TEST_F(SystemClass, WideServicePackText) {
  System xp = {"XP SP3", 2, 5, 1, "Service Pack 3", 1, 0, 0, 0};
  ClassOf(xp);
  EXPECT_STREQ(OsServicePackText(), "Service Pack 3") << "folded from the wide text";
}

// The real version calls: the class agrees with what the system itself reports, whatever version Wine plays.
TEST(SystemClassOfThisMachine, AgreesWithTheSystem) {
  TestRestoreSystemCalls();
  ForgetOsClass();
  struct {
    DWORD size, major, minor, build, platform;
    unsigned short text[128];
    unsigned short servicePackMajor, servicePackMinor, suiteMask;
    unsigned char productType, reserved;
  } wide = {284, 0, 0, 0, 0, {0}, 0, 0, 0, 0, 0};
  HMODULE ntdll = LoadLibraryA("ntdll.dll");
  ASSERT_NE(ntdll, nullptr);
  auto rtlGetVersion =
      reinterpret_cast<LONG(WINAPI *)(void *)>(reinterpret_cast<void *>(GetProcAddress(ntdll, "RtlGetVersion")));
  ASSERT_NE(rtlGetVersion, nullptr);
  ASSERT_EQ(rtlGetVersion(&wide), 0);
  SYSTEM_INFO native;
  GetNativeSystemInfo(&native);

  char name[40] = "garbage";
  unsigned value = GetOsClass(name);
  EXPECT_EQ(OsMajorVersion(), wide.major);
  EXPECT_EQ(OsMinorVersion(), wide.minor);
  EXPECT_EQ(OsBuildNumber(), wide.build);
  std::string width = native.wProcessorArchitecture == 9 ? " 64bit" : "";
  if (wide.major >= 10) {
    bool ten = wide.major == 10 && wide.minor == 0;
    EXPECT_EQ(value & ~static_cast<unsigned>(kOsServer),
              0xE0000u | (ten ? kOsWindows10 : kOsAfterWindows10) | (width.empty() ? kOs32Bit : kOs64Bit))
        << std::hex << value;
    std::string server = value & kOsServer ? " Server" : "";
    EXPECT_EQ(name, (ten ? "Windows 10" : "After Windows 10") + server + width);
  } else if (wide.major >= 6) {
    EXPECT_EQ(value, 0xFFFFFFFFu) << "versions 6 to 9 stay all bits set";
  }
  ForgetOsClass();
}

TEST(FormattedPrompt, TheTextShown) {
  const std::string longArgument(600, 'x');
  struct Row {
    const char *format, *title, *argument, *prefix, *separator;
    std::string shown;
  } rows[] = {{"ﾘﾝｸ先 %s はありません。", "実行", "X:\\a", nullptr, nullptr, "実行:ﾘﾝｸ先 X:\\a はありません。"},
              {"%s", "t", "arg", "pre", "\n", "t:pre\narg"},
              {"no conversion", "t", "arg", "", "", "t:no conversion"},
              {"100% sure", "t", nullptr, "p", "-", "t:p-100% sure"},  // no argument: no formatting
              {nullptr, "t", nullptr, "p", nullptr, "t:p"},
              {"[%s]", "t", longArgument.c_str(), "", "", "t:[" + longArgument + "]"}};
  for (const Row &row : rows) {
    size_t blocks = TestLiveBlockCount();
    TestConsoleBegin("k");
    EXPECT_EQ(ShowFormattedPromptText(row.format, row.title, row.argument, nullptr, 0, row.prefix, row.separator), 1);
    EXPECT_EQ(TestConsoleOutput(), row.shown + "Press Any Key>>") << (row.format ? row.format : "(null)");
    TestConsoleEnd();
    EXPECT_EQ(TestLiveBlockCount(), blocks) << "the text's block is given back";
  }
}

TEST(FormattedPrompt, ByIdAndTheAnswer) {
  TestConsoleBegin("y");
  EXPECT_EQ(ShowFormattedPrompt(nullptr, kMsgLinkTargetMissing, kMsgRunTitle, "X:\\a", nullptr, MB_YESNO, "[1]", " "),
            IDYES);
  EXPECT_EQ(TestConsoleOutput(), "実行:[1] ﾘﾝｸ先 X:\\a はありません。Y:はい N:いいえ>>Y");
  TestConsoleEnd();
  TestConsoleBegin("k");
  ShowFormattedPrompt(nullptr, 8014, kMsgRunTitle, nullptr, nullptr, 0, nullptr, nullptr);
  EXPECT_EQ(TestConsoleOutput(), "実行:<失敗>Press Any Key>>") << "an id without a text";
  TestConsoleEnd();
}

TEST(CheckResultRecord, Words) {
  CheckResult record;
  std::memset(&record, 0x55, sizeof record);
  EXPECT_EQ(ResetCheckResult(&record), &record);
  const int32_t reset[7] = {0, -1, -1, 0, 0, 0, 0};
  EXPECT_EQ(std::memcmp(record.words, reset, sizeof reset), 0);
  EXPECT_EQ(SetCheckResultOk(&record), &record);
  const int32_t ok[7] = {0, 1, 1, 0, 0, 0, 0};
  EXPECT_EQ(std::memcmp(record.words, ok, sizeof ok), 0);
  EXPECT_EQ(ResetCheckResult(nullptr), nullptr);
  EXPECT_EQ(SetCheckResultOk(nullptr), nullptr);
}

TEST(TidyUps, NothingToDoTwice) {
  size_t blocks = TestLiveBlockCount();
  for (int round = 0; round < 2; ++round) {
    ReleaseProgramTexts();
    PopNetworkFolder();
    ReleaseNetworkList();
  }
  EXPECT_EQ(TestLiveBlockCount(), blocks);
}

}  // namespace
