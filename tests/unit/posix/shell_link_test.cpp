// The shell link objects of the Linux backend, called as the engine calls them: COM creation and interfaces, reading
// a shortcut, writing one, the limits of what a shortcut may hold, and the file errors of Load and Save.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "lnk_test_data.h"
#include "platform/posix/drive_table.h"
#include "platform/posix/lnk_codec.h"
#include "platform/winapi.h"

namespace {

namespace fs = std::filesystem;

std::vector<uint8_t> ReadBytes(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

void WriteBytes(const std::string &path, const std::vector<uint8_t> &bytes) {
  std::ofstream out(path, std::ios::binary);
  out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

// A folder of its own as drive T:, COM initialised, and a fresh shell link object with its persist interface.
class ShellLinkTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/kelmaro-shell-link-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    folder_ = pattern;
    setenv("KELMARO_DRIVES", ("T=" + folder_).c_str(), 1);
    ReloadDriveTable();
    CoInitialize(nullptr);
    Create(&link_, &persist_);
  }
  void TearDown() override {
    if (persist_) persist_->Release();
    if (link_) link_->Release();
    CoUninitialize();
    unsetenv("KELMARO_DRIVES");
    ReloadDriveTable();
    fs::remove_all(folder_);
  }
  static void Create(IShellLinkA **link, IPersistFile **persist) {
    ASSERT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                               reinterpret_cast<void **>(link)),
              S_OK);
    ASSERT_EQ((*link)->QueryInterface(IID_IPersistFile, reinterpret_cast<void **>(persist)), S_OK);
  }
  std::string Linux(const std::string &name) const { return folder_ + "/" + name; }
  // The names in the folder, to prove that a save leaves nothing behind.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder_))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  // Reads a saved shortcut with a new object, as the engine's reader does.
  void Reload(const wchar_t *path, IShellLinkA **link, IPersistFile **persist) {
    Create(link, persist);
    ASSERT_EQ((*persist)->Load(path, 0), S_OK);
  }

  std::string folder_;
  IShellLinkA *link_ = nullptr;
  IPersistFile *persist_ = nullptr;
};

TEST(ComObjects, CreationNeedsCoInitialize) {
  // Bring the count to zero whatever ran before: each CoUninitialize undoes one CoInitialize.
  while (CoInitialize(nullptr) == S_FALSE) {
    CoUninitialize();
    CoUninitialize();
  }
  CoUninitialize();
  void *object = reinterpret_cast<void *>(1);
  EXPECT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA, &object),
            CO_E_NOTINITIALIZED);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(CoInitialize(nullptr), S_OK);
  EXPECT_EQ(CoInitialize(nullptr), S_FALSE);
  CoUninitialize();
  ASSERT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA, &object), S_OK);
  EXPECT_EQ(static_cast<IShellLinkA *>(object)->Release(), 0u);
  CoUninitialize();
  EXPECT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA, &object),
            CO_E_NOTINITIALIZED);
}

TEST_F(ShellLinkTest, CreationRefusesWhatItCannotMake) {
  void *object = reinterpret_cast<void *>(1);
  EXPECT_EQ(CoCreateInstance(IID_IPersistFile, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA, &object),
            REGDB_E_CLASSNOTREG);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, 0x4 /* local server */, IID_IShellLinkA, &object),
            REGDB_E_CLASSNOTREG);
  EXPECT_EQ(CoCreateInstance(CLSID_ShellLink, link_, CLSCTX_INPROC_SERVER, IID_IShellLinkA, &object),
            CLASS_E_NOAGGREGATION);
  const IID unknown = {0x12345678, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}};
  object = reinterpret_cast<void *>(1);
  EXPECT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, unknown, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
}

TEST_F(ShellLinkTest, OneObjectWithTwoInterfaces) {
  void *unknownFromLink = nullptr, *unknownFromPersist = nullptr, *persist = nullptr;
  ASSERT_EQ(link_->QueryInterface(IID_IUnknown, &unknownFromLink), S_OK);
  ASSERT_EQ(persist_->QueryInterface(IID_IUnknown, &unknownFromPersist), S_OK);
  EXPECT_EQ(unknownFromLink, unknownFromPersist);  // COM's rule of identity
  ASSERT_EQ(link_->QueryInterface(IID_IPersist, &persist), S_OK);
  EXPECT_EQ(persist, static_cast<void *>(persist_));
  CLSID classId = {};
  EXPECT_EQ(persist_->GetClassID(&classId), S_OK);
  EXPECT_TRUE(IsEqualGUID(classId, CLSID_ShellLink));
  // Created once (1), asked for IPersistFile in SetUp (2), three times here (5): Release counts down.
  EXPECT_EQ(link_->AddRef(), 6u);
  EXPECT_EQ(link_->Release(), 5u);
  EXPECT_EQ(static_cast<IUnknown *>(unknownFromLink)->Release(), 4u);
  EXPECT_EQ(static_cast<IUnknown *>(unknownFromPersist)->Release(), 3u);
  EXPECT_EQ(static_cast<IUnknown *>(persist)->Release(), 2u);
  void *none = reinterpret_cast<void *>(1);
  EXPECT_EQ(link_->QueryInterface(CLSID_ShellLink, &none), E_NOINTERFACE);
  EXPECT_EQ(none, nullptr);
}

TEST_F(ShellLinkTest, ReadsAShortcutAsTheEngineDoes) {
  WriteBytes(Linux("example.lnk"), std::vector<uint8_t>(kExampleFile, kExampleFile + sizeof kExampleFile));
  EXPECT_EQ(persist_->IsDirty(), S_FALSE);
  ASSERT_EQ(persist_->Load(L"T:\\example.lnk", 0), S_OK);
  char text[520];
  WIN32_FIND_DATAA find;
  std::memset(&find, 0xA5, sizeof find);  // every byte must be written
  ASSERT_EQ(link_->GetPath(text, sizeof text, &find, SLGP_UNCPRIORITY), S_OK);
  EXPECT_STREQ(text, "C:\\test\\a.txt");
  EXPECT_EQ(find.dwFileAttributes, 0x20u);
  EXPECT_EQ(find.ftCreationTime.dwLowDateTime, 0xF2EEE9D0u);
  EXPECT_EQ(find.ftCreationTime.dwHighDateTime, 0x01C91515u);
  EXPECT_EQ(find.ftLastWriteTime.dwHighDateTime, 0x01C91515u);
  EXPECT_EQ(find.nFileSizeHigh, 0u);
  EXPECT_EQ(find.nFileSizeLow, 0u);
  EXPECT_EQ(find.dwReserved0, 0u);
  EXPECT_STREQ(find.cFileName, "a.txt");
  EXPECT_EQ(find.cFileName[MAX_PATH - 1], 0);
  EXPECT_STREQ(find.cAlternateFileName, "");
  std::strcpy(text, "garbage");
  EXPECT_EQ(link_->GetWorkingDirectory(text, sizeof text), S_OK);
  EXPECT_STREQ(text, "C:\\test");
  std::strcpy(text, "garbage");
  EXPECT_EQ(link_->GetArguments(text, sizeof text), S_OK);
  EXPECT_STREQ(text, "");
  std::strcpy(text, "garbage");
  EXPECT_EQ(link_->GetDescription(text, sizeof text), S_OK);
  EXPECT_STREQ(text, "");
  int index = -1;
  std::strcpy(text, "garbage");
  EXPECT_EQ(link_->GetIconLocation(text, sizeof text, &index), S_OK);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(index, 0);
  int show = -1;
  EXPECT_EQ(link_->GetShowCmd(&show), S_OK);
  EXPECT_EQ(show, SW_SHOWNORMAL);
  WORD hotkey = 0xFFFF;
  EXPECT_EQ(link_->GetHotkey(&hotkey), S_OK);
  EXPECT_EQ(hotkey, 0);
  EXPECT_EQ(link_->Resolve(nullptr, SLR_NO_UI | SLR_UPDATE), S_OK);
}

TEST_F(ShellLinkTest, NoTargetIsSFalseWithAClearedFindRecord) {
  char text[520] = "garbage";
  WIN32_FIND_DATAA find;
  std::memset(&find, 0xA5, sizeof find);
  EXPECT_EQ(link_->GetPath(text, sizeof text, &find, SLGP_UNCPRIORITY), S_FALSE);
  EXPECT_STREQ(text, "");
  WIN32_FIND_DATAA zero;
  std::memset(&zero, 0, sizeof zero);
  EXPECT_EQ(std::memcmp(&find, &zero, sizeof find), 0);
}

TEST_F(ShellLinkTest, CutsTextsToTheBufferWithoutSplittingACharacter) {
  ASSERT_EQ(link_->SetDescription("表表x"), S_OK);
  struct Row {
    int size;
    const char *text;
  } rows[] = {{6, "表表x"}, {5, "表表"}, {4, "表"}, {3, "表"}, {2, ""}, {1, ""}};
  for (const Row &row : rows) {
    char text[8];
    std::memset(text, 'Z', sizeof text);
    EXPECT_EQ(link_->GetDescription(text, row.size), S_OK) << row.size;
    EXPECT_STREQ(text, row.text) << row.size;
    EXPECT_EQ(text[row.size], 'Z') << row.size;  // nothing beyond the buffer
  }
  char text[8];
  EXPECT_EQ(link_->GetDescription(text, 0), E_INVALIDARG);
  EXPECT_EQ(link_->GetDescription(nullptr, 8), E_INVALIDARG);
}

TEST_F(ShellLinkTest, WritesAShortcutThatReadsBack) {
  // Names on disk are UTF-8; in the program they are Shift-JIS.
  fs::create_directories(Linux(u8"プログラム"));
  WriteBytes(Linux(u8"プログラム/表.exe"), std::vector<uint8_t>(1234, 'x'));
  const char *target = "T:\\プログラム\\表.exe";
  // The writer's order of calls.
  EXPECT_EQ(link_->SetIconLocation("T:\\icons.dll", 4), S_OK);
  EXPECT_EQ(link_->SetPath(target), S_OK);
  EXPECT_EQ(link_->SetArguments("/予定 \"a b\""), S_OK);
  EXPECT_EQ(link_->SetDescription("説明"), S_OK);
  EXPECT_EQ(link_->SetWorkingDirectory("T:\\プログラム"), S_OK);
  EXPECT_EQ(link_->SetShowCmd(SW_SHOWMINNOACTIVE), S_OK);
  EXPECT_EQ(persist_->IsDirty(), S_OK);
  ASSERT_EQ(persist_->Save(L"T:\\out.lnk", TRUE), S_OK);
  EXPECT_EQ(persist_->IsDirty(), S_FALSE);

  IShellLinkA *link = nullptr;
  IPersistFile *persist = nullptr;
  Reload(L"T:\\out.lnk", &link, &persist);
  char text[520];
  WIN32_FIND_DATAA find;
  EXPECT_EQ(link->GetPath(text, sizeof text, &find, SLGP_UNCPRIORITY), S_OK);
  EXPECT_STREQ(text, target);
  EXPECT_EQ(find.dwFileAttributes, 0x20u);
  EXPECT_EQ(find.nFileSizeLow, 1234u);
  EXPECT_NE(find.ftLastWriteTime.dwHighDateTime, 0u);
  EXPECT_STREQ(find.cFileName, "表.exe");
  link->GetArguments(text, sizeof text);
  EXPECT_STREQ(text, "/予定 \"a b\"");
  link->GetDescription(text, sizeof text);
  EXPECT_STREQ(text, "説明");
  link->GetWorkingDirectory(text, sizeof text);
  EXPECT_STREQ(text, "T:\\プログラム");
  int index = 0, show = 0;
  link->GetIconLocation(text, sizeof text, &index);
  EXPECT_STREQ(text, "T:\\icons.dll");
  EXPECT_EQ(index, 4);
  link->GetShowCmd(&show);
  EXPECT_EQ(show, SW_SHOWMINNOACTIVE);
  persist->Release();
  link->Release();

  // The file as Windows would find it: an ID list and LinkInfo for the same path, strings in UTF-16.
  std::vector<uint8_t> bytes = ReadBytes(Linux("out.lnk"));
  ShellLinkRecord record;
  ASSERT_EQ(ParseShellLink(ByteSpan{bytes.data(), bytes.size()}, &record), LnkError::kNone);
  EXPECT_TRUE(record.header.linkFlags & kLinkIsUnicode);
  std::u16string fromIdList;
  ASSERT_TRUE(IdListPath(record.idList, &fromIdList));
  EXPECT_EQ(fromIdList, u"T:\\プログラム\\表.exe");
  EXPECT_EQ(LinkInfoLocalPath(record.linkInfo), u"T:\\プログラム\\表.exe");
  EXPECT_EQ(record.linkInfo.driveType, 3u);
  EXPECT_EQ(record.damage, 0u);
}

TEST_F(ShellLinkTest, TheHeaderDescribesTheTarget) {
  fs::create_directories(Linux("dir"));
  WriteBytes(Linux("file.txt"), std::vector<uint8_t>(10, 'x'));
  WriteBytes(Linux(".hidden"), {});
  WriteBytes(Linux("locked.txt"), {});
  chmod(Linux("locked.txt").c_str(), 0444);
  struct Row {
    const char *target;
    DWORD attributes;
    DWORD size;
  } rows[] = {
      {"T:\\file.txt", 0x20, 10},
      {"T:\\dir", 0x10, 0},
      {"T:\\.hidden", 0x22, 0},
      {"T:\\locked.txt", 0x21, 0},
      {"T:\\missing.txt", 0, 0},  // as Windows: a target that is not there leaves the
                                  // header empty
      {"Q:\\unmapped.txt", 0, 0},
  };
  for (const Row &row : rows) {
    ASSERT_EQ(link_->SetPath(row.target), S_OK) << row.target;
    ASSERT_EQ(persist_->Save(L"T:\\facts.lnk", TRUE), S_OK) << row.target;
    IShellLinkA *link = nullptr;
    IPersistFile *persist = nullptr;
    Reload(L"T:\\facts.lnk", &link, &persist);
    char text[520];
    WIN32_FIND_DATAA find;
    EXPECT_EQ(link->GetPath(text, sizeof text, &find, 0), S_OK) << row.target;
    EXPECT_STREQ(text, row.target);
    EXPECT_EQ(find.dwFileAttributes, row.attributes) << row.target;
    EXPECT_EQ(find.nFileSizeLow, row.size) << row.target;
    persist->Release();
    link->Release();
  }
}

TEST_F(ShellLinkTest, TargetsInOtherForms) {
  setenv("KELMARO_LINK_TEST", "T:\\env", 1);
  struct Row {
    const char *set, *path, *uncPath, *rawPath;
  } rows[] = {
      {"\\\\server\\share\\a\\b.txt", "\\\\server\\share\\a\\b.txt", "\\\\server\\share\\a\\b.txt",
       "\\\\server\\share\\a\\b.txt"},
      {"\\\\server\\share", "\\\\server\\share", "\\\\server\\share", "\\\\server\\share"},
      {"%kelmaro_link_test%\\x.exe", "T:\\env\\x.exe", "T:\\env\\x.exe", "%kelmaro_link_test%\\x.exe"},
      {"%NOT_SET_ANYWHERE%\\x.exe", "%NOT_SET_ANYWHERE%\\x.exe", "%NOT_SET_ANYWHERE%\\x.exe",
       "%NOT_SET_ANYWHERE%\\x.exe"},
      {"notepad.exe", "notepad.exe", "notepad.exe", "notepad.exe"},
      {"T:/forward/slashes.txt", "T:\\forward\\slashes.txt", "T:\\forward\\slashes.txt", "T:\\forward\\slashes.txt"},
  };
  for (const Row &row : rows) {
    ASSERT_EQ(link_->SetPath(row.set), S_OK) << row.set;
    char before[520];
    link_->GetPath(before, sizeof before, nullptr, 0);  // the object reads the same before it is saved
    EXPECT_STREQ(before, row.path) << row.set;
    ASSERT_EQ(persist_->Save(L"T:\\forms.lnk", TRUE), S_OK) << row.set;
    IShellLinkA *link = nullptr;
    IPersistFile *persist = nullptr;
    Reload(L"T:\\forms.lnk", &link, &persist);
    char text[520];
    link->GetPath(text, sizeof text, nullptr, 0);
    EXPECT_STREQ(text, row.path) << row.set;
    link->GetPath(text, sizeof text, nullptr, SLGP_UNCPRIORITY);
    EXPECT_STREQ(text, row.uncPath) << row.set;
    link->GetPath(text, sizeof text, nullptr, SLGP_RAWPATH);
    EXPECT_STREQ(text, row.rawPath) << row.set;
    persist->Release();
    link->Release();
  }
  unsetenv("KELMARO_LINK_TEST");
}

TEST_F(ShellLinkTest, AnIconWithEnvironmentNamesKeepsThemForWindows) {
  setenv("KELMARO_LINK_TEST", "T:\\env", 1);
  ASSERT_EQ(link_->SetIconLocation("%KELMARO_LINK_TEST%\\i.dll", 2), S_OK);
  ASSERT_EQ(persist_->Save(L"T:\\icon.lnk", TRUE), S_OK);
  std::vector<uint8_t> bytes = ReadBytes(Linux("icon.lnk"));
  ShellLinkRecord record;
  ASSERT_EQ(ParseShellLink(ByteSpan{bytes.data(), bytes.size()}, &record), LnkError::kNone);
  EXPECT_TRUE(record.header.linkFlags & kLinkHasExpIcon);
  EXPECT_EQ(record.extra.iconEnvironmentTarget, u"%KELMARO_LINK_TEST%\\i.dll");
  char text[520];
  int index = 0;
  EXPECT_EQ(link_->GetIconLocation(text, sizeof text, &index), S_OK);
  EXPECT_STREQ(text, "T:\\env\\i.dll");
  EXPECT_EQ(index, 2);
  unsetenv("KELMARO_LINK_TEST");
  EXPECT_EQ(link_->GetIconLocation(text, sizeof text, &index), S_OK);
  EXPECT_STREQ(text, "%KELMARO_LINK_TEST%\\i.dll");
}

// Windows reads the target, working folder and icon file into buffers of MAX_PATH characters, and shows a
// description of at most INFOTIPSIZE (1024); the 16-bit count bounds the arguments. A longer text is refused, and
// so is every save until it is set again within bounds: the old shortcut stays as it was.
TEST_F(ShellLinkTest, RefusesTextsThatWindowsWouldCutShort) {
  typedef HRESULT (*Setter)(IShellLinkA *, const char *);
  struct Row {
    const char *field;
    Setter set;
    size_t longest;
  } rows[] = {
      {"path", [](IShellLinkA *l, const char *t) { return l->SetPath(t); }, 259},
      {"working folder", [](IShellLinkA *l, const char *t) { return l->SetWorkingDirectory(t); }, 259},
      {"icon", [](IShellLinkA *l, const char *t) { return l->SetIconLocation(t, 0); }, 259},
      {"description", [](IShellLinkA *l, const char *t) { return l->SetDescription(t); }, 1023},
      {"arguments", [](IShellLinkA *l, const char *t) { return l->SetArguments(t); }, 65535},
  };
  std::vector<uint8_t> old(kExampleFile, kExampleFile + sizeof kExampleFile);
  WriteBytes(Linux("old.lnk"), old);
  for (const Row &row : rows) {
    std::string fits = "T:\\" + std::string(row.longest - 3, 'a');
    std::string tooLong = fits + "b";
    ASSERT_EQ(row.set(link_, fits.c_str()), S_OK) << row.field;
    EXPECT_EQ(row.set(link_, tooLong.c_str()), E_INVALIDARG) << row.field;
    EXPECT_EQ(persist_->Save(L"T:\\old.lnk", TRUE), E_INVALIDARG) << row.field;
    EXPECT_EQ(ReadBytes(Linux("old.lnk")), old) << row.field;
    ASSERT_EQ(row.set(link_, fits.c_str()), S_OK) << row.field;
    EXPECT_EQ(persist_->Save(L"T:\\new.lnk", TRUE), S_OK) << row.field;
  }
  // A double-byte character is one character of the limit.
  std::string japanese = "T:\\";
  for (int i = 0; i < 256; ++i) japanese += "表";
  EXPECT_EQ(link_->SetPath(japanese.c_str()), S_OK);
  EXPECT_EQ(link_->SetPath((japanese + "x").c_str()), E_INVALIDARG);
  EXPECT_EQ(link_->SetPath(nullptr), E_INVALIDARG);
  EXPECT_EQ(std::vector<std::string>({"new.lnk", "old.lnk"}), Names());
}

TEST_F(ShellLinkTest, SaveReplacesTheOldFileWhole) {
  WriteBytes(Linux("link.lnk"), std::vector<uint8_t>(5000, 'x'));
  chmod(Linux("link.lnk").c_str(), 0640);
  ASSERT_EQ(link_->SetPath("T:\\x.exe"), S_OK);
  ASSERT_EQ(persist_->Save(L"T:\\link.lnk", TRUE), S_OK);
  std::vector<uint8_t> bytes = ReadBytes(Linux("link.lnk"));
  ShellLinkRecord record;
  EXPECT_EQ(ParseShellLink(ByteSpan{bytes.data(), bytes.size()}, &record), LnkError::kNone);
  struct stat info;
  ASSERT_EQ(stat(Linux("link.lnk").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
  EXPECT_EQ(std::vector<std::string>({"link.lnk"}), Names());
  // A shortcut that is a symbolic link stays one.
  ASSERT_EQ(symlink("link.lnk", Linux("alias.lnk").c_str()), 0);
  ASSERT_EQ(link_->SetDescription("through the alias"), S_OK);
  ASSERT_EQ(persist_->Save(L"T:\\alias.lnk", TRUE), S_OK);
  EXPECT_TRUE(fs::is_symlink(Linux("alias.lnk")));
  EXPECT_EQ(ReadBytes(Linux("alias.lnk")), ReadBytes(Linux("link.lnk")));
  EXPECT_EQ(std::vector<std::string>({"alias.lnk", "link.lnk"}), Names());
  // Save without a name goes to the file last saved or loaded.
  ASSERT_EQ(link_->SetArguments("-again"), S_OK);
  ASSERT_EQ(persist_->Save(nullptr, TRUE), S_OK);
  IShellLinkA *link = nullptr;
  IPersistFile *persist = nullptr;
  Reload(L"T:\\link.lnk", &link, &persist);
  char text[520];
  link->GetArguments(text, sizeof text);
  EXPECT_STREQ(text, "-again");
  persist->Release();
  link->Release();
}

TEST_F(ShellLinkTest, SaveFailsCleanly) {
  fs::create_directories(Linux("folder.lnk"));
  WriteBytes(Linux("readonly.lnk"), {1, 2, 3});
  chmod(Linux("readonly.lnk").c_str(), 0444);
  ASSERT_EQ(link_->SetPath("T:\\x.exe"), S_OK);
  EXPECT_EQ(persist_->Save(nullptr, TRUE), E_INVALIDARG);  // nothing loaded or saved yet
  struct Row {
    const wchar_t *path;
    HRESULT result;
  } rows[] = {
      {L"Q:\\unmapped.lnk", HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)},
      {L"T:\\no\\such\\folder.lnk", HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)},
      {L"T:\\folder.lnk", E_ACCESSDENIED},
      {L"T:\\readonly.lnk", E_ACCESSDENIED},  // Windows will not write over a read-only file, whoever asks
  };
  for (const Row &row : rows) EXPECT_EQ(persist_->Save(row.path, TRUE), row.result) << row.path;
  EXPECT_EQ(ReadBytes(Linux("readonly.lnk")), std::vector<uint8_t>({1, 2, 3}));
  EXPECT_EQ(std::vector<std::string>({"folder.lnk", "readonly.lnk"}), Names());
}

TEST_F(ShellLinkTest, LoadFailsCleanly) {
  fs::create_directories(Linux("folder.lnk"));
  WriteBytes(Linux("text.lnk"), {'h', 'e', 'l', 'l', 'o'});
  WriteBytes(Linux("cut.lnk"), std::vector<uint8_t>(kExampleFile, kExampleFile + 200));
  ASSERT_EQ(link_->SetDescription("kept"), S_OK);
  struct Row {
    const wchar_t *path;
    HRESULT result;
  } rows[] = {
      {L"T:\\missing.lnk", HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)},
      {L"T:\\no\\such.lnk", HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)},
      {L"Q:\\unmapped.lnk", HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)},
      {L"T:\\folder.lnk", E_ACCESSDENIED},
      {L"T:\\text.lnk", E_FAIL},
      {L"T:\\cut.lnk", E_FAIL},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(persist_->Load(row.path, 0), row.result) << row.path;
    char text[16];
    link_->GetDescription(text, sizeof text);
    EXPECT_STREQ(text, "kept") << row.path;  // a failed load leaves the object as it was
  }
  EXPECT_EQ(persist_->Load(nullptr, 0), E_INVALIDARG);
}

TEST(CodePages, ConvertsBetweenShiftJisAndWide) {
  struct Row {
    UINT codePage;
    const char *text;
    const wchar_t *wide;
  } rows[] = {
      {CP_ACP, "表x", L"表x"},
      {932, "ｶﾅ", L"ｶﾅ"},
      {CP_UTF8, u8"表x", L"表x"},
      {CP_ACP, "", L""},
  };
  for (const Row &row : rows) {
    wchar_t wide[8];
    int count = MultiByteToWideChar(row.codePage, 0, row.text, -1, wide, 8);
    EXPECT_EQ(count, static_cast<int>(std::wcslen(row.wide)) + 1) << row.codePage;  // the terminator counts
    EXPECT_STREQ(wide, row.wide) << row.codePage;
    EXPECT_EQ(MultiByteToWideChar(row.codePage, 0, row.text, -1, nullptr, 0), count) << row.codePage;
    char text[16];
    EXPECT_EQ(WideCharToMultiByte(row.codePage, 0, wide, -1, text, sizeof text, nullptr, nullptr),
              static_cast<int>(std::strlen(row.text)) + 1)
        << row.codePage;
    EXPECT_STREQ(text, row.text) << row.codePage;
  }
  wchar_t wide[4];
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "表x", 2, wide, 4), 1);  // an explicit length counts no terminator
  EXPECT_EQ(wide[0], L'表');
  SetLastError(0);
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abcd", -1, wide, 4), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "a", -1, wide, 4), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  char text[8];
  const wchar_t noCp932[] = {0xE9, 0x1F370, 0};  // é and a cake
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, noCp932, -1, text, sizeof text, nullptr, nullptr), 3);
  EXPECT_STREQ(text, "??");  // no CP932 for them
}

}  // namespace
