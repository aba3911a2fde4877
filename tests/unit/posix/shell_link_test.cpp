// The shell link objects of the Linux backend, called as the engine calls them: reading a shortcut, writing one, the
// limits of what a shortcut may hold, and the file errors of Load and Save.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/posix/lnk/lnk_codec.h"
#include "platform/posix/shell/lnk_file_access.h"
#include "posix/lnk/lnk_test_data.h"
#include "scratch_drive.h"

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

const std::vector<uint8_t> kExample(kExampleFile, kExampleFile + sizeof kExampleFile);

// The names in a folder, to prove that a save leaves nothing behind.
Names NamesIn(const std::string &folder) {
  Names names;
  for (const fs::directory_entry &entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

ShellLinkRecord RecordOf(const std::string &linuxPath) {
  std::vector<uint8_t> bytes = ReadBytes(linuxPath);
  ShellLinkRecord record;
  EXPECT_EQ(ParseShellLink(ByteSpan{bytes.data(), bytes.size()}, &record), LnkError::kNone) << linuxPath;
  return record;
}

mode_t ModeOf(const std::string &linuxPath) {
  struct stat info;
  return stat(linuxPath.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
}

// GetPath as the engine's reader calls it, into a find record pre-filled to prove that every byte is written.
HRESULT Target(const ShellLink &o, std::string *path, WIN32_FIND_DATAA *find) {
  char text[520] = "garbage";
  std::memset(find, 0xA5, sizeof *find);
  HRESULT result = o.link->GetPath(text, sizeof text, find, SLGP_UNCPRIORITY);
  *path = text;
  return result;
}

std::string TargetOf(const ShellLink &o) {
  std::string path;
  WIN32_FIND_DATAA find;
  Target(o, &path, &find);
  return path;
}

TEST(ShellLinkObject, ReadsAShortcutAsTheEngineDoes) {
  ScratchDrive drive;
  WriteBytes(drive.Linux("example.lnk"), kExample);
  ShellLink o(L"T:\\example.lnk");
  std::string path;
  WIN32_FIND_DATAA find;
  ASSERT_EQ(Target(o, &path, &find), S_OK);
  EXPECT_EQ(path, "C:\\test\\a.txt");
  EXPECT_EQ(find.dwFileAttributes, 0x20u);
  EXPECT_EQ(find.ftLastWriteTime.dwHighDateTime, 0x01C91515u);
  EXPECT_STREQ(find.cFileName, "a.txt");
  EXPECT_EQ(find.cFileName[MAX_PATH - 1], 0);  // every byte written, the pre-fill gone
  EXPECT_STREQ(find.cAlternateFileName, "");
  EXPECT_EQ(o.link->Resolve(nullptr, SLR_NO_UI | SLR_UPDATE), S_OK);
  // No target: S_FALSE and a find record of zeros.
  ShellLink empty;
  WIN32_FIND_DATAA zero = {};
  EXPECT_EQ(Target(empty, &path, &find), S_FALSE);
  EXPECT_EQ(path, "");
  EXPECT_EQ(std::memcmp(&find, &zero, sizeof find), 0);
}

TEST(ShellLinkObject, CutsTextsToTheBufferWithoutSplittingACharacter) {
  ScratchDrive drive;
  ShellLink o;
  ASSERT_EQ(o.link->SetDescription("表表x"), S_OK);
  struct Row {
    int size;
    const char *text;
  } rows[] = {{6, "表表x"}, {4, "表"}, {3, "表"}, {1, ""}};
  for (const Row &row : rows) {
    char text[8];
    std::memset(text, 'Z', sizeof text);
    EXPECT_EQ(o.link->GetDescription(text, row.size), S_OK) << row.size;
    EXPECT_STREQ(text, row.text) << row.size;
    EXPECT_EQ(text[row.size], 'Z') << row.size;  // nothing beyond the buffer
  }
  EXPECT_EQ(o.link->GetDescription(nullptr, 8), E_INVALIDARG);
}

// The texts of a written shortcut are read back by lnkinfo (shell_link_samples_test.cpp) and by Wine (tests/wine); here
// what those leave out: the find record, the icon index and show command, and the structures a Windows reader looks at.
TEST(ShellLinkObject, WritesAShortcutThatReadsBack) {
  ScratchDrive drive;
  // Names on disk are UTF-8; in the program they are Shift-JIS.
  fs::create_directories(drive.Linux(u8"プログラム"));
  WriteBytes(drive.Linux(u8"プログラム/表.exe"), std::vector<uint8_t>{});
  const char *target = "T:\\プログラム\\表.exe";
  {
    ShellLink o;  // the writer's order of calls
    EXPECT_EQ(o.link->SetIconLocation("T:\\icons.dll", 4), S_OK);
    EXPECT_EQ(o.link->SetPath(target), S_OK);
    EXPECT_EQ(o.link->SetArguments("/予定 \"a b\""), S_OK);
    EXPECT_EQ(o.link->SetShowCmd(SW_SHOWMINNOACTIVE), S_OK);
    ASSERT_EQ(o.persist->Save(L"T:\\out.lnk", TRUE), S_OK);
  }
  ShellLink back(L"T:\\out.lnk");
  std::string path;
  WIN32_FIND_DATAA find;
  EXPECT_EQ(Target(back, &path, &find), S_OK);
  EXPECT_EQ(path, target);
  EXPECT_STREQ(find.cFileName, "表.exe");
  EXPECT_EQ(back.Text(&IShellLinkA::GetArguments), "/予定 \"a b\"");
  int index = 0;
  EXPECT_EQ(back.Icon(&index), "T:\\icons.dll");
  EXPECT_EQ(index, 4);
  EXPECT_EQ(back.Show(), SW_SHOWMINNOACTIVE);
  // An ID list and LinkInfo for the same path.
  ShellLinkRecord record = RecordOf(drive.Linux("out.lnk"));
  std::u16string fromIdList;
  ASSERT_TRUE(IdListPath(record.idList, &fromIdList));
  EXPECT_EQ(fromIdList, u"T:\\プログラム\\表.exe");
  EXPECT_EQ(LinkInfoLocalPath(record.linkInfo), u"T:\\プログラム\\表.exe");
}

TEST(ShellLinkObject, TheHeaderDescribesTheTarget) {
  ScratchDrive drive;
  fs::create_directories(drive.Linux("dir"));
  WriteBytes(drive.Linux("file.txt"), std::vector<uint8_t>(10, 'x'));
  WriteBytes(drive.Linux(".hidden"), {});
  WriteBytes(drive.Linux("locked.txt"), {});
  chmod(drive.Linux("locked.txt").c_str(), 0444);
  struct Row {
    const char *target;
    DWORD attributes, size;
  } rows[] = {
      {"T:\\FILE.TXT", 0x20, 10},  // names are found without case, as Windows finds them
      {"T:\\dir", 0x10, 0},       {"T:\\.hidden", 0x22, 0}, {"T:\\locked.txt", 0x21, 0},
      {"T:\\missing.txt", 0, 0},  // as Windows: a target that is not there leaves the header empty
  };
  ShellLink o;
  for (const Row &row : rows) {
    ASSERT_EQ(o.link->SetPath(row.target), S_OK) << row.target;
    ASSERT_EQ(o.persist->Save(L"T:\\facts.lnk", TRUE), S_OK) << row.target;
    std::string path;
    WIN32_FIND_DATAA find;
    EXPECT_EQ(Target(ShellLink(L"T:\\facts.lnk"), &path, &find), S_OK) << row.target;
    EXPECT_EQ(path, row.target);
    EXPECT_EQ(find.dwFileAttributes, row.attributes) << row.target;
    EXPECT_EQ(find.nFileSizeLow, row.size) << row.target;
  }
}

// Only the engine's GetPath flag is checked here; lnk_tool's others are compared with Wine's in tests/wine.
TEST(ShellLinkObject, TargetsAndIconsInOtherForms) {
  ScratchDrive drive;
  setenv("KELMARO_LINK_TEST", "T:\\env", 1);
  struct Row {
    const char *set, *path;
  } rows[] = {
      {"\\\\server\\share\\a\\b.txt", "\\\\server\\share\\a\\b.txt"},
      {"%kelmaro_link_test%\\x.exe", "T:\\env\\x.exe"},
      {"T:/forward/slashes.txt", "T:\\forward\\slashes.txt"},
  };
  ShellLink o;
  for (const Row &row : rows) {
    ASSERT_EQ(o.link->SetPath(row.set), S_OK) << row.set;
    EXPECT_EQ(TargetOf(o), row.path) << row.set;  // the object reads the same before it is saved
    ASSERT_EQ(o.persist->Save(L"T:\\forms.lnk", TRUE), S_OK) << row.set;
    EXPECT_EQ(TargetOf(ShellLink(L"T:\\forms.lnk")), row.path) << row.set;
  }
  // An icon with environment names keeps them for Windows, in the icon environment block, and reads expanded.
  ASSERT_EQ(o.link->SetIconLocation("%KELMARO_LINK_TEST%\\i.dll", 2), S_OK);
  ASSERT_EQ(o.persist->Save(L"T:\\icon.lnk", TRUE), S_OK);
  ShellLinkRecord record = RecordOf(drive.Linux("icon.lnk"));
  EXPECT_EQ(record.extra.iconEnvironmentTarget, u"%KELMARO_LINK_TEST%\\i.dll");
  int index = 0;
  EXPECT_EQ(o.Icon(&index), "T:\\env\\i.dll");
  unsetenv("KELMARO_LINK_TEST");
}

// Windows reads the target, working folder and icon file into buffers of MAX_PATH characters, and shows a
// description of at most INFOTIPSIZE (1024); the 16-bit count bounds the arguments. A longer text is refused, and
// so is every save until it is set again within bounds: the old shortcut stays as it was.
TEST(ShellLinkObject, RefusesTextsThatWindowsWouldCutShort) {
  ScratchDrive drive;
  typedef HRESULT (*Setter)(IShellLinkA *, const char *);
  struct Row {
    const char *field;
    Setter set;
    size_t longest;
  } rows[] = {
      {"path", [](IShellLinkA *l, const char *t) { return l->SetPath(t); }, 259},
      {"description", [](IShellLinkA *l, const char *t) { return l->SetDescription(t); }, 1023},
      {"arguments", [](IShellLinkA *l, const char *t) { return l->SetArguments(t); }, 65535},
  };
  WriteBytes(drive.Linux("old.lnk"), kExample);
  ShellLink o;
  for (const Row &row : rows) {
    std::string fits = "T:\\" + std::string(row.longest - 3, 'a');
    ASSERT_EQ(row.set(o.link, fits.c_str()), S_OK) << row.field;
    EXPECT_EQ(row.set(o.link, (fits + "b").c_str()), E_INVALIDARG) << row.field;
    EXPECT_EQ(o.persist->Save(L"T:\\old.lnk", TRUE), E_INVALIDARG) << row.field;
    EXPECT_EQ(ReadBytes(drive.Linux("old.lnk")), kExample) << row.field;
    ASSERT_EQ(row.set(o.link, fits.c_str()), S_OK) << row.field;
    EXPECT_EQ(o.persist->Save(L"T:\\new.lnk", TRUE), S_OK) << row.field;
  }
  // A double-byte character is one character of the limit.
  std::string japanese = "T:\\";
  for (int i = 0; i < 256; ++i) japanese += "表";
  EXPECT_EQ(o.link->SetPath(japanese.c_str()), S_OK);
  EXPECT_EQ(o.link->SetPath((japanese + "x").c_str()), E_INVALIDARG);
  EXPECT_EQ(NamesIn(drive.Linux()), (Names{"new.lnk", "old.lnk"}));
}

TEST(ShellLinkObject, SaveReplacesTheOldFileWhole) {
  ScratchDrive drive;
  ShellLink o;
  ASSERT_EQ(o.link->SetPath("T:\\x.exe"), S_OK);
  // The new file keeps the old one's permissions, also the bits that the process's mask would take from them; a new
  // file has the mode a new file gets.
  mode_t mask = umask(022);
  for (mode_t mode : {0640, 0666}) {
    WriteBytes(drive.Linux("link.lnk"), std::vector<uint8_t>(5000, 'x'));
    chmod(drive.Linux("link.lnk").c_str(), mode);
    ASSERT_EQ(o.persist->Save(L"T:\\link.lnk", TRUE), S_OK);
    RecordOf(drive.Linux("link.lnk"));
    EXPECT_EQ(ModeOf(drive.Linux("link.lnk")), mode);
  }
  ASSERT_EQ(o.persist->Save(L"T:\\new.lnk", TRUE), S_OK);
  umask(mask);
  EXPECT_EQ(ModeOf(drive.Linux("new.lnk")), 0644u);
  // A shortcut that is a symbolic link stays one, and what it points to is rewritten.
  ASSERT_EQ(symlink("link.lnk", drive.Linux("alias.lnk").c_str()), 0);
  ASSERT_EQ(o.link->SetDescription("through the alias"), S_OK);
  ASSERT_EQ(o.persist->Save(L"T:\\alias.lnk", TRUE), S_OK);
  EXPECT_TRUE(fs::is_symlink(drive.Linux("alias.lnk")));
  EXPECT_EQ(ShellLink(L"T:\\link.lnk").Text(&IShellLinkA::GetDescription), "through the alias");
  EXPECT_EQ(NamesIn(drive.Linux()), (Names{"alias.lnk", "link.lnk", "new.lnk"}));
}

TEST(ShellLinkObject, SaveAndLoadFailCleanly) {
  ScratchDrive drive;
  fs::create_directories(drive.Linux("folder.lnk"));
  WriteBytes(drive.Linux("readonly.lnk"), {1, 2, 3});
  chmod(drive.Linux("readonly.lnk").c_str(), 0444);
  WriteBytes(drive.Linux("cut.lnk"), std::vector<uint8_t>(kExampleFile, kExampleFile + 200));
  ShellLink o;
  ASSERT_EQ(o.link->SetPath("T:\\x.exe"), S_OK);
  ASSERT_EQ(o.link->SetDescription("kept"), S_OK);
  struct Row {
    const wchar_t *path;
    HRESULT save, load;
  } rows[] = {
      {L"T:\\no\\such.lnk", HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)},
      {L"T:\\folder.lnk", E_ACCESSDENIED, E_ACCESSDENIED},
      // Windows will not write over a read-only file, whoever asks.
      {L"T:\\readonly.lnk", E_ACCESSDENIED, E_FAIL},
      {L"T:\\missing.lnk", S_OK, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)},
      {L"T:\\cut.lnk", S_OK, E_FAIL},
  };
  for (const Row &row : rows) {
    if (row.save != S_OK) {
      EXPECT_EQ(o.persist->Save(row.path, TRUE), row.save) << row.path;
    }
    EXPECT_EQ(o.persist->Load(row.path, 0), row.load) << row.path;
    EXPECT_EQ(o.Text(&IShellLinkA::GetDescription), "kept") << row.path;  // a failed load leaves the object alone
  }
  EXPECT_EQ(ReadBytes(drive.Linux("readonly.lnk")), std::vector<uint8_t>({1, 2, 3}));
  EXPECT_EQ(NamesIn(drive.Linux()), (Names{"cut.lnk", "folder.lnk", "readonly.lnk"}));
}

// Each file call of a save can fail on a real disk (a full disk, a network share gone, a virus scanner holding the
// file): the save then reports that call's error, the old shortcut keeps every byte, and no half-made file stays.
TEST(ShellLinkObject, ASaveThatFailsAtAnyCallLeavesTheOldShortcut) {
  ScratchDrive drive;
  ShellLink o;
  ASSERT_EQ(o.link->SetPath("T:\\x.exe"), S_OK);
  ASSERT_EQ(o.link->SetDescription("new"), S_OK);
  struct Row {
    const char *call;
    DWORD error;
  } rows[] = {
      {"CreateFileW", ERROR_ACCESS_DENIED},
      {"WriteFile", ERROR_DISK_FULL},
      {"CloseHandle", ERROR_IO_DEVICE},
      {"MoveFileExW", ERROR_SHARING_VIOLATION},
  };
  for (const Row &row : rows) {
    WriteBytes(drive.Linux("link.lnk"), kExample);
    ASSERT_TRUE(TestFailCalls(row.call, row.error)) << row.call;
    EXPECT_EQ(o.persist->Save(L"T:\\link.lnk", TRUE), HRESULT_FROM_WIN32(row.error)) << row.call;
    EXPECT_EQ(ReadBytes(drive.Linux("link.lnk")), kExample) << row.call;
    EXPECT_EQ(NamesIn(drive.Linux()), (Names{"link.lnk"})) << row.call;
    TestClearFaults();
  }
  // With the faults gone the same save goes through.
  ASSERT_EQ(o.persist->Save(L"T:\\link.lnk", TRUE), S_OK);
  EXPECT_EQ(ShellLink(L"T:\\link.lnk").Text(&IShellLinkA::GetDescription), "new");
}

TEST(ShellLinkObject, ALoadThatFailsAtAnyCallLeavesTheObject) {
  ScratchDrive drive;
  WriteBytes(drive.Linux("link.lnk"), kExample);
  ShellLink o;
  ASSERT_EQ(o.link->SetDescription("kept"), S_OK);
  for (const char *call : {"CreateFileW", "ReadFile"}) {
    ASSERT_TRUE(TestFailCalls(call, ERROR_SHARING_VIOLATION));
    EXPECT_EQ(o.persist->Load(L"T:\\link.lnk", 0), HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION)) << call;
    EXPECT_EQ(o.Text(&IShellLinkA::GetDescription), "kept") << call;
    TestClearFaults();
  }
  EXPECT_EQ(o.persist->Load(L"T:\\link.lnk", 0), S_OK);
}

// A name ending in .lnk on something that is no file: opening a FIFO for reading would wait for a writer for ever,
// and opening a device can act on it. Each is refused as a shortcut that cannot be read, by the load and by the
// shell's icon look-up alike, and none of them is opened (a test that hangs here has failed).
TEST(ShellLinkObject, AFifoASocketOrADeviceIsNoShortcut) {
  ScratchDrive drive;
  ASSERT_EQ(mkfifo(drive.Linux("fifo.lnk").c_str(), 0666), 0);
  int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_GE(listener, 0);
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::string socketPath = drive.Linux("socket.lnk");
  ASSERT_LT(socketPath.size(), sizeof address.sun_path);
  std::memcpy(address.sun_path, socketPath.c_str(), socketPath.size() + 1);
  ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
  struct Name {
    const wchar_t *wide;
    const char *path;
  };
  std::vector<Name> names = {{L"T:\\fifo.lnk", "T:\\fifo.lnk"}, {L"T:\\socket.lnk", "T:\\socket.lnk"}};
  // Only root may make a device node: the same device as /dev/null, which would read as an empty file.
  if (mknod(drive.Linux("device.lnk").c_str(), S_IFCHR | 0666, makedev(1, 3)) == 0)
    names.push_back({L"T:\\device.lnk", "T:\\device.lnk"});
  ShellLink o;
  ASSERT_EQ(o.link->SetDescription("kept"), S_OK);
  for (const Name &name : names) {
    const std::string path = name.path;
    EXPECT_EQ(o.persist->Load(name.wide, 0), E_ACCESSDENIED) << path;
    EXPECT_EQ(o.Text(&IShellLinkA::GetDescription), "kept") << path;
    SHFILEINFOA info;
    std::memset(&info, 0, sizeof info);
    EXPECT_EQ(SHGetFileInfoA(path.c_str(), 0, &info, sizeof info, SHGFI_ICONLOCATION), 0u) << path;
    EXPECT_EQ(SHGetFileInfoA(path.c_str(), 0, &info, sizeof info, SHGFI_EXETYPE), 0u) << path;
  }
  close(listener);
}

// A shortcut is read with room for the size the file gives and one byte more, so that a larger one is refused.
TEST(ShortcutFiles, AFileIsReadWholeUpToTheLimit) {
  ScratchDrive drive;
  const size_t limit = 10000;
  for (size_t size : {size_t{0}, limit, limit + 1}) {
    std::vector<uint8_t> bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(i * 7);
    WriteBytes(drive.Linux("file.lnk"), bytes);
    std::vector<uint8_t> read(3, 'x');
    uint32_t error = ReadShortcutFile("T:\\file.lnk", limit, &read);
    EXPECT_EQ(error, static_cast<uint32_t>(size <= limit ? ERROR_SUCCESS : ERROR_NOT_ENOUGH_MEMORY)) << size;
    if (size <= limit) {
      EXPECT_EQ(read, bytes) << size;
    }
  }
}

}  // namespace
