// The registry and profile readers, and the saved settings read through them: what each kind of stored value gives,
// on the Linux backend's registry file and on the real registry under Wine.
#include "machine/registry_access.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "front/saved_settings.h"
#include "support/scratch_folder.h"
#include "support/test_registry.h"

namespace {

struct Read {
  int result;
  std::string text;
};

// ReadRegistryString into a buffer of `size` bytes that starts out filled with "#", so that a buffer left alone shows.
Read ReadString(const char *subKey, const char *valueName, const char *defaultText, unsigned size = 300) {
  std::string buffer(size + 1, '#');
  int result = ReadRegistryString(HKEY_CURRENT_USER, subKey, valueName, defaultText, &buffer[0], size);
  return {result, buffer.c_str()};
}

class RegistryReader : public ::testing::Test {
 protected:
  void SetUp() override {
    key_ = TestRegistry::UniqueKey();
    const char *kKey = key_.c_str();
    registry_.SetString(kKey, "text", "value");
    registry_.SetString(kKey, "empty", "");
    registry_.SetString(kKey, "expand", "%windir%\\x", REG_EXPAND_SZ);
    registry_.SetString(kKey, "long", std::string(400, 'L'));
    registry_.SetString(kKey, "japanese", "旧表示");
    registry_.SetDword(kKey, "number", 0x41414141);
    registry_.SetDword(kKey, "zero", 0);
    registry_.SetBinary(kKey, "bytes", std::string("ab\0", 3));
    registry_.MakeKey(std::string(kKey) + "\\NoDefault");
    registry_.SetString(std::string(kKey) + "\\WithDefault", "", "the default");
    registry_.SetDword(std::string(kKey) + "\\NumberDefault", "", 7);
  }

  TestRegistry registry_;
  std::string key_;
};

struct ReadRow {
  const char *subKey;
  const char *valueName;
  const char *defaultText;
  int result;  // kSize: the buffer's size (300); kKeyLength: the length of the sub-key
  const char *text;
};

const int kSize = 300;
const int kKeyLength = -100;

TEST_F(RegistryReader, EachKindOfValueReadsAsItsRowSays) {
  const char *kKey = key_.c_str();
  const std::string noDefault = std::string(kKey) + "\\NoDefault";
  const std::string withDefault = std::string(kKey) + "\\WithDefault";
  const std::string numberDefault = std::string(kKey) + "\\NumberDefault";
  const ReadRow rows[] = {
      // A string value: the success result is the buffer's size, not the text's length.
      {kKey, "text", "dflt", kSize, "value"},
      {kKey, "TEXT", "dflt", kSize, "value"},  // names without case
      {kKey, "japanese", "", kSize, "旧表示"},
      // An empty string under a name is still a string.
      {kKey, "empty", "dflt", kSize, ""},
      // Expandable text comes back as it stands.
      {kKey, "expand", "", kSize, "%windir%\\x"},
      // Missing key or value, and a value that does not fit: 0 and the default, none of a long value's text.
      {"Software\\KelmaroNoSuchKey", "text", "dflt", 0, "dflt"},
      {kKey, "missing", "dflt", 0, "dflt"},
      {kKey, "long", "dflt", 0, "dflt"},
      // Another type: -1 and the default, also where its bytes would pass for text.
      {kKey, "number", "dflt", -1, "dflt"},
      {kKey, "number", "", -1, ""},
      {kKey, "number", nullptr, -1, ""},
      {kKey, "zero", "", -1, ""},
      {kKey, "bytes", "dflt", -1, "dflt"},
      // A null default and an empty one alike leave the buffer empty.
      {kKey, "missing", nullptr, 0, ""},
      {kKey, "missing", "", 0, ""},
      // The default value, asked for by an empty or a null name, also tests that the key is there: a key without
      // one reads as its own path.
      {noDefault.c_str(), "", "dflt", kKeyLength, noDefault.c_str()},
      {noDefault.c_str(), nullptr, "", kKeyLength, noDefault.c_str()},
      {withDefault.c_str(), "", "dflt", kSize, "the default"},
      {numberDefault.c_str(), "", "dflt", -1, "dflt"},
      {"Software\\KelmaroNoSuchKey", "", "dflt", 0, "dflt"},
  };
  for (const ReadRow &row : rows) {
    SCOPED_TRACE(std::string(row.subKey) + " / " + (row.valueName ? row.valueName : "(null)"));
    Read read = ReadString(row.subKey, row.valueName, row.defaultText, kSize);
    int expected = row.result == kKeyLength ? static_cast<int>(std::strlen(row.subKey)) : row.result;
    EXPECT_EQ(read.result, expected);
    EXPECT_EQ(read.text, row.text);
  }
}

TEST_F(RegistryReader, TheSizeIsClampedBelow64KiB) {
  const char *kKey = key_.c_str();
  // 0xFFFE bytes are the most a read is given: a text of 0xFFFD bytes and its terminator fit, one byte more does not.
  registry_.SetString(kKey, "fits", std::string(0xFFFD, 'F'));
  registry_.SetString(kKey, "over", std::string(0xFFFE, 'O'));
  std::string buffer(0x10000, '#');
  EXPECT_EQ(ReadRegistryString(HKEY_CURRENT_USER, kKey, "fits", "", &buffer[0], 0x10000), 0xFFFE);
  EXPECT_EQ(std::strlen(buffer.c_str()), 0xFFFDu);
  EXPECT_EQ(ReadRegistryString(HKEY_CURRENT_USER, kKey, "over", "d", &buffer[0], 0x10000), 0);
  EXPECT_STREQ(buffer.c_str(), "d");
  EXPECT_EQ(ReadRegistryString(HKEY_CURRENT_USER, kKey, "text", "", &buffer[0], 0xFFFFFFFFu), 0xFFFE);
}

TEST_F(RegistryReader, ABufferTooSmallForTheDefaultGetsItsStart) {
  const char *kKey = key_.c_str();
  Read read = ReadString(kKey, "missing", "default", 4);
  EXPECT_EQ(read.result, 0);
  EXPECT_EQ(read.text, "def");
  // Size 0: nothing is written at all.
  char byte = '#';
  EXPECT_EQ(ReadRegistryString(HKEY_CURRENT_USER, kKey, "missing", "d", &byte, 0), 0);
  EXPECT_EQ(byte, '#');
}

TEST_F(RegistryReader, AKeyHandedInAsTheRootIsClosed) {
  const char *kKey = key_.c_str();
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key), ERROR_SUCCESS);
  char buffer[32];
  EXPECT_EQ(ReadRegistryString(key, "", "text", "", buffer, sizeof buffer), static_cast<int>(sizeof buffer));
  EXPECT_STREQ(buffer, "value");
  DWORD size = sizeof buffer;
  EXPECT_EQ(RegQueryValueExA(key, "text", nullptr, nullptr, reinterpret_cast<unsigned char *>(buffer), &size),
            ERROR_INVALID_HANDLE);
  // A predefined root stays usable after the reads closed it.
  EXPECT_EQ(ReadString(kKey, "text", "").result, kSize);
}

TEST(SettingReader, GoesToTheProfileFileOnlyWhenAsked) {
  const std::string key = TestRegistry::UniqueKey();
  const char *kKey = key.c_str();
  TestRegistry registry;
  registry.SetString(kKey, "text", "from the registry");
  ScratchFolder folder;
  std::string file = folder.MakeFile("settings.ini", "[" + key + "]\r\nfile=from the file\r\nb=2\r\n");
  char buffer[64];
  EXPECT_EQ(ReadSettingString(HKEY_CURRENT_USER, kKey, "text", "", buffer, sizeof buffer), 64);
  EXPECT_STREQ(buffer, "from the registry");

  ASSERT_EQ(SetProfileFilePath(file.c_str()), 1);
  EXPECT_EQ(ProfileFilePath(), file);
  SetUseProfileFile(1);
  // No falling back from one store to the other.
  EXPECT_EQ(ReadSettingString(HKEY_CURRENT_USER, kKey, "text", "none", buffer, sizeof buffer), 4);
  EXPECT_STREQ(buffer, "none");
  EXPECT_EQ(ReadSettingString(HKEY_CURRENT_USER, kKey, "file", "", buffer, sizeof buffer), 13);
  EXPECT_STREQ(buffer, "from the file");
  // An empty value name asks for the section's keys.
  EXPECT_EQ(ReadSettingString(HKEY_CURRENT_USER, kKey, "", "", buffer, sizeof buffer), 7);
  EXPECT_EQ(std::string(buffer, 8), std::string("file\0b\0\0", 8));
  SetUseProfileFile(0);
  SetProfileFilePath(nullptr);
  EXPECT_STREQ(ProfileFilePath(), "");
}

// The dialog tool's set of values: its options and its folder.
const char kSettingsKey[] = "Software\\Orvel\\Tarnbrook\\UseDefine";

struct SavedRow {
  const char *name;
  bool saved;           // the values are written
  const char *options;  // null: no option value
  const char *folder;   // null: no folder value
  int optionsResult;
  int folderResult;
};

TEST(SavedSettings, OnlyANonEmptyTextCountsAsSaved) {
  const std::string longText(300, 'x');  // with its terminator one byte more than the option line holds
  const SavedRow rows[] = {
      {"nothing saved", false, nullptr, nullptr, 0, 0},   {"the key alone", true, nullptr, nullptr, 0, 0},
      {"options only", true, "3012 3019", nullptr, 1, 0}, {"both", true, "3019 3022", "C:\\Links", 1, 1},
      {"empty options", true, "", "C:\\Links", 0, 1},     {"too long", true, longText.c_str(), "C:\\Links", 0, 1},
  };
  for (const SavedRow &row : rows) {
    SCOPED_TRACE(row.name);
    TestRegistry registry;
    if (row.saved) registry.MakeKey(kSettingsKey);
    if (row.options) registry.SetString(kSettingsKey, "option", row.options);
    if (row.folder) registry.SetString(kSettingsKey, "folder", row.folder);
    char options[300];
    char folder[520];
    std::memset(options, '#', sizeof options);
    std::memset(folder, '#', sizeof folder);
    EXPECT_EQ(GetSavedOptions(options, sizeof options), row.optionsResult);
    EXPECT_STREQ(options, row.optionsResult ? row.options : "");
    EXPECT_EQ(GetSavedFolder(folder, sizeof folder), row.folderResult);
    EXPECT_STREQ(folder, row.folderResult ? row.folder : "");
  }
}

TEST(SavedSettings, AValueOfAnotherTypeIsNothingSaved) {
  TestRegistry registry;
  registry.SetDword(kSettingsKey, "option", 3012);
  registry.SetBinary(kSettingsKey, "folder", "C:\\");
  char options[300];
  char folder[520];
  EXPECT_EQ(GetSavedOptions(options, sizeof options), 0);
  EXPECT_STREQ(options, "");
  EXPECT_EQ(GetSavedFolder(folder, sizeof folder), 0);
  EXPECT_STREQ(folder, "");
}

}  // namespace
