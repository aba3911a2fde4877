// The version calls of the Linux backend: Windows 10, 64-bit or 32-bit as the build, through every call by which the
// program asks, so that the system's class has one defined state on Linux.
#include <gtest/gtest.h>

#include <cstring>

#include "machine/system_info.h"
#include "platform/winapi.h"

namespace {

const bool kWideBuild = sizeof(void *) == 8;

TEST(LinuxVersion, GetVersionExA) {
  struct Row {
    DWORD size;
    BOOL ok;
  } rows[] = {{sizeof(OSVERSIONINFOA), TRUE}, {sizeof(OSVERSIONINFOEXA), TRUE}, {0, FALSE}, {284, FALSE}};
  for (const Row &row : rows) {
    OSVERSIONINFOEXA info;
    std::memset(&info, 0x55, sizeof info);
    info.dwOSVersionInfoSize = row.size;
    SetLastError(0);
    EXPECT_EQ(GetVersionExA(reinterpret_cast<LPOSVERSIONINFOA>(&info)), row.ok) << row.size;
    if (!row.ok) {
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER)) << row.size;
      EXPECT_EQ(info.dwMajorVersion, 0x55555555u) << "nothing written";
      continue;
    }
    EXPECT_EQ(info.dwMajorVersion, 10u);
    EXPECT_EQ(info.dwMinorVersion, 0u);
    EXPECT_EQ(info.dwBuildNumber, 19045u);
    EXPECT_EQ(info.dwPlatformId, static_cast<DWORD>(VER_PLATFORM_WIN32_NT));
    EXPECT_STREQ(info.szCSDVersion, "");
    // The extended fields only for the extended record.
    EXPECT_EQ(info.wProductType, row.size == sizeof(OSVERSIONINFOEXA) ? VER_NT_WORKSTATION : 0x55) << row.size;
  }
}

TEST(LinuxVersion, RtlGetVersionThroughNtdll) {
  HMODULE ntdll = LoadLibraryA("NTDLL.DLL");
  ASSERT_NE(ntdll, nullptr) << "the system modules load, named without case";
  EXPECT_NE(LoadLibraryA("kernel32"), nullptr);
  EXPECT_EQ(LoadLibraryA("ntdll.dll.bak"), nullptr);
  auto rtlGetVersion =
      reinterpret_cast<int32_t (*)(void *)>(reinterpret_cast<void *>(GetProcAddress(ntdll, "RtlGetVersion")));
  ASSERT_NE(rtlGetVersion, nullptr);
  struct {
    DWORD size, major, minor, build, platform;
    char16_t text[128];
    WORD servicePackMajor, servicePackMinor, suiteMask;
    BYTE productType, reserved;
  } wide;
  struct Row {
    DWORD size;
    BYTE productType;  // written only into the whole wide record
  } rows[] = {{284, VER_NT_WORKSTATION}, {276, 0x55}, {156, 0x55}};
  for (const Row &row : rows) {
    std::memset(&wide, 0x55, sizeof wide);
    wide.size = row.size;
    EXPECT_EQ(rtlGetVersion(&wide), 0);
    EXPECT_EQ(wide.major, 10u);
    EXPECT_EQ(wide.build, 19045u);
    EXPECT_EQ(wide.text[0], 0) << "an empty text in UTF-16";
    EXPECT_EQ(wide.text[1], 0x5555) << "and nothing behind it";
    EXPECT_EQ(wide.productType, row.productType) << row.size;
  }
}

TEST(LinuxVersion, TheProcessorIsTheBuilds) {
  SYSTEM_INFO native, plain;
  GetNativeSystemInfo(&native);
  GetSystemInfo(&plain);
  EXPECT_EQ(native.wProcessorArchitecture, kWideBuild ? PROCESSOR_ARCHITECTURE_AMD64 : PROCESSOR_ARCHITECTURE_INTEL);
  EXPECT_EQ(plain.wProcessorArchitecture, native.wProcessorArchitecture);
  EXPECT_GE(native.dwNumberOfProcessors, 1u);
  EXPECT_GT(native.dwPageSize, 0u);
  DWORD type = 0;
  EXPECT_TRUE(GetProductInfo(10, 0, 0, 0, &type));
  EXPECT_EQ(type, PRODUCT_PROFESSIONAL);
  EXPECT_EQ(GetSystemMetrics(SM_SERVERR2), 0);
}

TEST(LinuxVersion, TheSystemsClass) {
  ForgetOsClass();
  char name[40] = "garbage";
  EXPECT_EQ(GetOsClass(name), kWideBuild ? 0x8E4000u : 0x8E2000u);
  EXPECT_STREQ(name, kWideBuild ? "Windows 10 64bit" : "Windows 10");
  ForgetOsClass();
}

}  // namespace
