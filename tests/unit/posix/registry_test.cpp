// The registry of the Linux backend: files in each format written here, KELMARO_REGISTRY pointed at them, and read
// back through the Reg* calls; where the file is looked for, damaged files, sizes, the order of values and handles.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/posix/machine/registry_file.h"
#include "platform/winapi.h"
#include "support/hex_text.h"
#include "support/saved_environment.h"
#include "support/scratch_folder.h"

using namespace std::string_literals;

namespace {

// ---- Files ----

std::string LittleEndian(const std::u16string &text) {
  std::string bytes;
  for (char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  return bytes;
}

// A version 5.00 export as regedit writes it: UTF-16LE behind its byte order mark, lines ended by CR LF.
std::string Utf16File(const std::u16string &text) {
  std::u16string crlf;
  for (char16_t c : text) {
    if (c == u'\n') crlf.push_back(u'\r');
    crlf.push_back(c);
  }
  return "\xFF\xFE" + LittleEndian(crlf);
}

// An ANSI file with CR LF line ends, as regedit writes "REGEDIT4".
std::string Crlf(const std::string &text) {
  std::string out;
  for (char c : text) {
    if (c == '\n') out.push_back('\r');
    out.push_back(c);
  }
  return out;
}

// ---- Reading ----

struct Found {
  LSTATUS status;
  DWORD type;
  std::string data;
};

// Opens `path` below HKEY_CURRENT_USER and reads one value whole: first its size, then its bytes into a buffer of that
// size with a guard byte behind it.
Found Query(const std::string &path, const char *name) {
  Found found{ERROR_SUCCESS, 0xDEADBEEF, ""};
  HKEY key = nullptr;
  found.status = RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key);
  if (found.status != ERROR_SUCCESS) return found;
  DWORD size = 0xDEADBEEF;
  found.status = RegQueryValueExA(key, name, nullptr, nullptr, nullptr, &size);
  if (found.status == ERROR_SUCCESS) {
    std::vector<unsigned char> buffer(size + 1, 0xCC);
    DWORD given = size;
    found.status = RegQueryValueExA(key, name, nullptr, &found.type, buffer.data(), &given);
    EXPECT_EQ(given, size) << path << " " << name;
    EXPECT_EQ(buffer[size], 0xCC) << path << " " << name << ": written past its size";
    found.data.assign(buffer.begin(), buffer.begin() + given);
  }
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  return found;
}

// The names of a key's values as RegEnumValueA gives them, in its order, up to ERROR_NO_MORE_ITEMS.
std::vector<std::string> ValueNames(const std::string &path) {
  std::vector<std::string> names;
  HKEY key;
  if (RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return {"<no key>"};
  for (DWORD index = 0;; ++index) {
    char name[256];
    DWORD size = sizeof name;
    LSTATUS status = RegEnumValueA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr);
    if (status == ERROR_NO_MORE_ITEMS) break;
    if (status != ERROR_SUCCESS) {
      names.push_back("<status " + std::to_string(status) + ">");
      break;
    }
    names.push_back(name);
  }
  RegCloseKey(key);
  return names;
}

// Each test starts with KELMARO_REGISTRY, WINEPREFIX and HOME as the run had them and puts them back at its end, with
// the registry read anew, so that no test sees another's file.
class RegistryFile : public ::testing::Test {
 protected:
  void SetUp() override {}
  void TearDown() override {
    environment_.Restore();
    ReloadRegistry();
  }

  // Writes a file below the scratch folder (its folders made as needed) and gives its Linux path.
  std::string Write(const std::string &name, const std::string &bytes) {
    std::filesystem::path path = std::filesystem::path(folder_.LinuxPath()) / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
    out.close();
    EXPECT_TRUE(out) << path;
    return path.string();
  }
  // The registry is the file with these bytes.
  void Use(const std::string &bytes) {
    setenv("KELMARO_REGISTRY", Write("use.reg", bytes).c_str(), 1);
    ReloadRegistry();
  }
  std::string Linux(const std::string &name) const { return folder_.LinuxPath() + "/" + name; }

  ScratchFolder folder_;

  SavedEnvironment environment_{"KELMARO_REGISTRY", "WINEPREFIX", "HOME"};
};

// ---- Value types ----

// The same values in each format, read back with their types and bytes; strings in Shift-JIS with their terminators.
TEST_F(RegistryFile, EachValueTypeInEachFormat) {
  const std::string regedit4 = Crlf(R"(REGEDIT4

[HKEY_CURRENT_USER\Software\Kelmaro]
@="default"
"sz"="text"
"expand"=hex(2):25,54,45,4d,50,25,5c,78,00
"dword"=dword:0000000a
"binary"=hex:01,02,ff
"multi"=hex(7):61,00,62,63,00,00
"qword"=hex(b):01,00,00,00,00,00,00,80
"none"=hex(0):
"empty"=""
)");
  const std::string version5 = Utf16File(
      uR"(Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\Software\Kelmaro]
@="default"
"sz"="text"
"expand"=hex(2):25,00,54,00,45,00,4d,00,50,00,25,00,5c,00,78,00,00,00
"dword"=dword:0000000a
"binary"=hex:01,02,ff
"multi"=hex(7):61,00,00,00,62,00,63,00,00,00,00,00
"qword"=hex(b):01,00,00,00,00,00,00,80
"none"=hex(0):
"empty"=""
)");
  const std::string wine = R"(WINE REGISTRY Version 2
;; All keys relative to REGISTRY\\User\\S-1-5-21-0-0-0-1000

#arch=win64

[Software\\Kelmaro] 1795588211
#time=1dd7ca66c9b5cee
@="default"
"binary"=hex:01,02,ff
"dword"=dword:0000000a
"empty"=""
"expand"=str(2):"%TEMP%\\x"
"multi"=str(7):"a\0bc\0"
"none"=hex(0):
"qword"=hex(b):01,00,00,00,00,00,00,80
"sz"="text"
)";
  struct Row {
    const char *name;
    DWORD type;
    std::string data;
  } rows[] = {
      {"", REG_SZ, "default\0"s},
      {"sz", REG_SZ, "text\0"s},
      {"expand", REG_EXPAND_SZ, "%TEMP%\\x\0"s},
      {"dword", REG_DWORD, "\x0A\0\0\0"s},
      {"binary", REG_BINARY, "\x01\x02\xFF"s},
      {"multi", REG_MULTI_SZ, "a\0bc\0\0"s},
      {"qword", REG_QWORD, "\x01\0\0\0\0\0\0\x80"s},
      {"none", REG_NONE, ""},
      {"empty", REG_SZ, "\0"s},
  };
  const struct {
    const char *what;
    const std::string &file;
  } files[] = {{"REGEDIT4", regedit4}, {"version 5.00", version5}, {"user.reg", wine}};
  for (const auto &file : files) {
    Use(file.file);
    for (const Row &row : rows) {
      Found found = Query("Software\\Kelmaro", row.name);
      EXPECT_EQ(found.status, ERROR_SUCCESS) << file.what << " " << row.name;
      EXPECT_EQ(found.type, row.type) << file.what << " " << row.name;
      EXPECT_EQ(Hex(found.data), Hex(row.data)) << file.what << " " << row.name;
    }
    // The default value by a null name as well as by an empty one.
    EXPECT_EQ(Query("Software\\Kelmaro", nullptr).data, "default\0"s) << file.what;
  }
}

// Japanese key names, value names and texts in each charset a file comes in; "表" (0x95 0x5C) has a backslash for its
// second byte, which must not split the key's path.
TEST_F(RegistryFile, JapaneseTextReachesTheProgramInShiftJis) {
  struct Row {
    const char *what;
    std::string file;
  } rows[] = {
      {"version 5.00 in UTF-16", Utf16File(uR"(Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\Software\日本語\表示]
"名前"="値は表です"
"展開"=hex(2):e5,65,2c,67,00,00
)")},
      {"REGEDIT4 in CP932", Crlf(R"(REGEDIT4

[HKEY_CURRENT_USER\Software\日本語\表示]
"名前"="値は表です"
"展開"=hex(2):93,fa,96,7b,00
)")},
      {"REGEDIT4 in UTF-8, written by hand",
       u8R"(REGEDIT4
[HKEY_CURRENT_USER\Software\日本語\表示]
"名前"="値は表です"
"展開"=hex(2):93,fa,96,7b,00
)"},
      {"REGEDIT4 in UTF-8 with a byte order mark", "\xEF\xBB\xBF"s + u8R"(REGEDIT4
[HKEY_CURRENT_USER\Software\日本語\表示]
"名前"="値は表です"
"展開"=hex(2):93,fa,96,7b
)"},
      {"Wine's escapes", R"(WINE REGISTRY Version 2
[Software\\\x65e5\x672c\x8a9e\\\x8868\x793a] 1795588211
"\x540d\x524d"="\x5024\x306f\x8868\x3067\x3059"
"\x5c55\x958b"=str(2):"\x65e5\x672c"
)"},
  };
  for (const Row &row : rows) {
    Use(row.file);
    Found found = Query("Software\\日本語\\表示", "名前");
    EXPECT_EQ(found.status, ERROR_SUCCESS) << row.what;
    EXPECT_EQ(Hex(found.data), Hex("値は表です\0"s)) << row.what;
    found = Query("Software\\日本語\\表示", "展開");
    EXPECT_EQ(found.type, REG_EXPAND_SZ) << row.what;
    EXPECT_EQ(Hex(found.data), Hex("日本\0"s)) << row.what;
    EXPECT_EQ(ValueNames("software\\日本語\\表示"), (std::vector<std::string>{"名前", "展開"})) << row.what;
  }
}

// What Shift-JIS cannot hold reads "?", one for each UTF-16 unit, as an "A" call of Windows gives it; a key whose
// name has such characters is still there, under that name it cannot be opened by.
TEST_F(RegistryFile, CharactersShiftJisLacksReadAsQuestionMarks) {
  Use(R"(WINE REGISTRY Version 2
[Control Panel\\International\\\xd83c\xdf0e\xd83c\xdf0f] 1795588205
#time=1dd7ca668fc4e5e
"Currencies"="JPY"

[Software\\Kelmaro] 1795588205
"accent"="caf\xe9 \xd83c\xdf0e"
"\xe9t\xe9"="1"
)");
  EXPECT_EQ(Query("Software\\Kelmaro", "accent").data, "caf? ??\0"s);
  EXPECT_EQ(ValueNames("Software\\Kelmaro"), (std::vector<std::string>{"accent", "?t?"}));
  EXPECT_EQ(Query("Control Panel\\International\\????", "Currencies").status, ERROR_FILE_NOT_FOUND);
}

// ---- Names ----

TEST_F(RegistryFile, NamesMatchWithoutCaseAsWindowsFoldsThem) {
  Use(
      Utf16File(uR"(Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\Software\Kelmaro\Mixed Case]
"ValueName"="ascii"
"ＡＢＣ"="full-width"
"ΑΒΓ"="greek"
"АБВ"="cyrillic"
"ｶﾅ"="half-width kana"
)"));
  struct Row {
    const char *key;
    const char *value;
    const char *data;  // null: not found
  } rows[] = {
      {"SOFTWARE\\KELMARO\\MIXED CASE", "valuename", "ascii"},
      {"software\\kelmaro\\mixed case", "VALUENAME", "ascii"},
      {"Software\\Kelmaro\\Mixed Case", "ａｂｃ", "full-width"},
      {"Software\\Kelmaro\\Mixed Case", "αβγ", "greek"},
      {"Software\\Kelmaro\\Mixed Case", "абв", "cyrillic"},
      {"Software\\Kelmaro\\Mixed Case", "ｶﾅ", "half-width kana"},
      // Full-width and half-width forms are different letters to Windows, in any case.
      {"Software\\Kelmaro\\Mixed Case", "ABC", nullptr},
      {"Software\\Kelmaro\\Mixed Case", "カナ", nullptr},
      {"Software\\Kelmaro\\Mixed_Case", "ValueName", nullptr},
  };
  for (const Row &row : rows) {
    Found found = Query(row.key, row.value);
    if (row.data == nullptr) {
      EXPECT_EQ(found.status, ERROR_FILE_NOT_FOUND) << row.key << " " << row.value;
    } else {
      EXPECT_EQ(found.status, ERROR_SUCCESS) << row.key << " " << row.value;
      EXPECT_EQ(found.data, std::string(row.data) + '\0') << row.key << " " << row.value;
    }
  }
}

// A key named twice, or with its name in another case, is one key; a value set twice keeps its first place.
TEST_F(RegistryFile, AKeyOrValueNamedAgainIsTheSameOne) {
  Use(R"(REGEDIT4
[HKEY_CURRENT_USER\Software\Kelmaro]
"first"="1"
"second"="2"
[HKEY_CURRENT_USER\SOFTWARE\kelmaro]
"FIRST"="again"
"third"="3"
)");
  EXPECT_EQ(ValueNames("Software\\Kelmaro"), (std::vector<std::string>{"first", "second", "third"}));
  EXPECT_EQ(Query("Software\\Kelmaro", "first").data, "again\0"s);
}

// ---- Escapes and continuations ----

TEST_F(RegistryFile, EscapesOfEachFormat) {
  Use(Crlf(R"(REGEDIT4
[HKEY_CURRENT_USER\Software\Export]
"quote"="say \"hi\" in C:\\dir\\"
"name with \"quotes\" and \\"="named"
"newline"="one\ntwo"
"unknown"="\q"
)"));
  EXPECT_EQ(Query("Software\\Export", "quote").data, "say \"hi\" in C:\\dir\\\0"s);
  EXPECT_EQ(Query("Software\\Export", "name with \"quotes\" and \\").data, "named\0"s);
  EXPECT_EQ(Query("Software\\Export", "newline").data, "one\ntwo\0"s);
  EXPECT_EQ(Query("Software\\Export", "unknown").data, "q\0"s);

  Use(R"(WINE REGISTRY Version 2
[Software\\Wine \[bracket\]] 1795588211
"controls"="a\tb\nc\rd\\e\"f"
"octal"="\101\0610"
"hex"="\x41\x4a\x4B\x3042z\x30421"
"multi"=str(7):"one\0two\0"
"plain x"="\xg"
)");
  EXPECT_EQ(Query("Software\\Wine [bracket]", "controls").data, "a\tb\nc\rd\\e\"f\0"s);
  EXPECT_EQ(Query("Software\\Wine [bracket]", "octal").data, "A10\0"s);
  // "\x" takes up to four digits: "\x30421" is U+3042 and "1".
  EXPECT_EQ(Query("Software\\Wine [bracket]", "hex").data, "AJKあzあ1\0"s);
  EXPECT_EQ(Query("Software\\Wine [bracket]", "multi").data, "one\0two\0\0"s);
  EXPECT_EQ(Query("Software\\Wine [bracket]", "plain x").data, "xg\0"s);
}

// Binary lists go on over lines that end in a backslash, in regedit's layout and in looser ones.
TEST_F(RegistryFile, HexListsContinueOverLines) {
  const std::string expected = "\x01\x02\x03\x04\x05\x06"s;
  struct Row {
    const char *what;
    std::string file;
  } rows[] = {
      {"regedit's layout", Utf16File(uR"(Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\Software\Kelmaro]
"list"=hex:01,02,\
  03,04,\
  05,06
"after"="kept"
)")},
      {"blanks and tabs", Crlf("REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Kelmaro]\n\"list\"=hex: 01 , 02,\\  \n"
                               "\t03,04, \\\n05,06\n\"after\"=\"kept\"\n")},
      {"Wine's layout", R"(WINE REGISTRY Version 2
[Software\\Kelmaro] 1795588211
"after"="kept"
"list"=hex:01,02,03,\
  04,05,06
)"},
  };
  for (const Row &row : rows) {
    Use(row.file);
    EXPECT_EQ(Hex(Query("Software\\Kelmaro", "list").data), Hex(expected)) << row.what;
    EXPECT_EQ(Query("Software\\Kelmaro", "after").data, "kept\0"s) << row.what;
  }
  // A backslash on the last line of the file ends the list where the file ends.
  Use("REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Kelmaro]\n\"list\"=hex:01,02,\\");
  EXPECT_EQ(Hex(Query("Software\\Kelmaro", "list").data), "01 02");
}

// A string type given as hex: ANSI bytes in "REGEDIT4", UTF-16 in version 5.00; a missing terminator is added, as
// regedit adds it when it imports the file.
TEST_F(RegistryFile, StringTypesGivenAsHexGetATerminator) {
  Use("REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Kelmaro]\n\"sz\"=hex(1):61,62\n\"expand\"=hex(2):93,fa\n");
  EXPECT_EQ(Query("Software\\Kelmaro", "sz").data, "ab\0"s);
  EXPECT_EQ(Query("Software\\Kelmaro", "expand").data, "日\0"s);
  Use(
      Utf16File(u"Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER\\Software\\Kelmaro]\n"
                u"\"multi\"=hex(7):61,00,00,00,62,00\n"));
  EXPECT_EQ(Query("Software\\Kelmaro", "multi").data, "a\0b\0"s);
}

// ---- Keys of other roots, removals ----

TEST_F(RegistryFile, OnlyKeysOfTheCurrentUserAreKept) {
  Use(Crlf(R"(REGEDIT4
[HKEY_LOCAL_MACHINE\Software\Kelmaro]
"machine"="1"
[HKEY_USERS\S-1-5-21-0-0-0-1000\Software\Kelmaro]
"users"="1"
[HKEY_CURRENT_USER_X\Software\Kelmaro]
"lookalike"="1"
[hkey_current_user\Software\Kelmaro]
"user"="1"
)"));
  EXPECT_EQ(ValueNames("Software\\Kelmaro"), (std::vector<std::string>{"user"}));
  HKEY key = reinterpret_cast<HKEY>(0x1234);
  EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Software\\Kelmaro", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key, nullptr);
  EXPECT_EQ(RegQueryValueExA(HKEY_LOCAL_MACHINE, "machine", nullptr, nullptr, nullptr, nullptr), ERROR_FILE_NOT_FOUND);

  // A Wine file of another hive than the current user's.
  Use(R"(WINE REGISTRY Version 2
;; All keys relative to REGISTRY\\Machine

[Software\\Kelmaro] 1795588205
"machine"="1"
)");
  EXPECT_EQ(Query("Software\\Kelmaro", "machine").status, ERROR_FILE_NOT_FOUND);

  // Older Wine versions name the user's hive without "REGISTRY".
  Use(R"(WINE REGISTRY Version 2
;; All keys relative to \\User\\S-1-5-21-0-0-0-1000

[Software\\Kelmaro] 1795588205
"user"="1"
)");
  EXPECT_EQ(Query("Software\\Kelmaro", "user").status, ERROR_SUCCESS);
}

// "[-key]" removes a key read before it, with everything below it; "name"=- removes a value. What the file gives
// after a removal stands.
TEST_F(RegistryFile, RemovalsInAnExport) {
  Use(Crlf(R"(REGEDIT4
[HKEY_CURRENT_USER\Software\Kelmaro\Gone\Below]
"deep"="1"
[HKEY_CURRENT_USER\Software\Kelmaro]
"kept"="1"
"dropped"="1"
"moved"="1"
"dropped"=-
"never"=-
"MOVED"=-
"moved"="at the end now"
[-HKEY_CURRENT_USER\Software\Kelmaro\GONE]
"lost"="values after a removal belong to no key"
[-HKEY_CURRENT_USER\Software\Kelmaro\Never There]
[HKEY_CURRENT_USER\Software\Kelmaro\Back]
"again"="1"
[-HKEY_CURRENT_USER\Software\Kelmaro\Back]
[HKEY_CURRENT_USER\Software\Kelmaro\Back]
"new"="1"
)"));
  EXPECT_EQ(ValueNames("Software\\Kelmaro"), (std::vector<std::string>{"kept", "moved"}));
  EXPECT_EQ(Query("Software\\Kelmaro", "moved").data, "at the end now\0"s);
  EXPECT_EQ(Query("Software\\Kelmaro", "dropped").status, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Query("Software\\Kelmaro\\Gone", "deep").status, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Query("Software\\Kelmaro\\Gone\\Below", "deep").status, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(ValueNames("Software\\Kelmaro\\Back"), (std::vector<std::string>{"new"}));
}

// ---- Where the file is ----

TEST_F(RegistryFile, TheFileIsLookedForInItsOrder) {
  const char *const kFile = "WINE REGISTRY Version 2\n[Software\\\\Source] 1\n\"from\"=\"%s\"\n";
  auto file = [kFile](const char *from) {
    char text[128];
    std::snprintf(text, sizeof text, kFile, from);
    return std::string(text);
  };
  std::string named = Write("named.reg", file("named"));
  Write("prefix/user.reg", file("prefix"));
  Write("home/.wine/user.reg", file("home"));
  Write("empty-prefix/system.reg", file("system"));
  struct Row {
    const char *registry;  // null: unset
    const char *prefix;
    const char *home;
    const char *from;  // null: an empty registry
  } rows[] = {
      {named.c_str(), "prefix", "home", "named"},
      {"", "prefix", "home", "prefix"},  // empty counts as unset
      {nullptr, "prefix", "home", "prefix"},
      {nullptr, nullptr, "home", "home"},
      {nullptr, "", "home", "home"},
      // A file named but missing is an empty registry: nothing else is looked at.
      {"/nonexistent/kelmaro.reg", "prefix", "home", nullptr},
      {nullptr, "empty-prefix", "home", nullptr},  // a prefix without user.reg; ~/.wine is not asked
      {nullptr, "missing-prefix", "home", nullptr},
      {nullptr, nullptr, "missing-home", nullptr},
      {nullptr, nullptr, nullptr, nullptr},
  };
  for (const Row &row : rows) {
    auto set = [](const char *name, const char *value) {
      if (value == nullptr)
        unsetenv(name);
      else
        setenv(name, value, 1);
    };
    set("KELMARO_REGISTRY", row.registry);
    set("WINEPREFIX", row.prefix == nullptr || *row.prefix == 0 ? row.prefix : Linux(row.prefix).c_str());
    set("HOME", row.home == nullptr ? nullptr : Linux(row.home).c_str());
    ReloadRegistry();
    Found found = Query("Software\\Source", "from");
    std::string what = std::string(row.registry ? row.registry : "-") + " " + (row.prefix ? row.prefix : "-") + " " +
                       (row.home ? row.home : "-");
    if (row.from == nullptr) {
      EXPECT_EQ(found.status, ERROR_FILE_NOT_FOUND) << what;
    } else {
      EXPECT_EQ(found.data, std::string(row.from) + '\0') << what;
    }
  }
}

// The file is read once, at the first call; ReloadRegistry makes the next call read it again.
TEST_F(RegistryFile, TheFileIsReadOnceUntilReloaded) {
  Use("REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Kelmaro]\n\"value\"=\"old\"\n");
  EXPECT_EQ(Query("Software\\Kelmaro", "value").data, "old\0"s);
  Write("use.reg", "REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Kelmaro]\n\"value\"=\"new\"\n");
  EXPECT_EQ(Query("Software\\Kelmaro", "value").data, "old\0"s);
  ReloadRegistry();
  EXPECT_EQ(Query("Software\\Kelmaro", "value").data, "new\0"s);
}

// ---- Damage ----

// Each damaged line is passed over, and the good lines around it are kept.
TEST_F(RegistryFile, DamagedLinesArePassedOver) {
  const std::string good = "\"before\"=\"1\"\n";
  const std::string after = "\"after\"=\"2\"\n";
  struct Row {
    const char *what;
    std::string damage;
  } rows[] = {
      {"unterminated string", "\"bad\"=\"no end\n"},
      {"unterminated name", "\"bad=\"1\"\n"},
      {"no equals sign", "\"bad\" \"1\"\n"},
      {"nothing after the equals sign", "\"bad\"=\n"},
      {"text after a string", "\"bad\"=\"1\" junk\n"},
      {"bad hex digit", "\"bad\"=hex:01,0g,03\n"},
      {"three hex digits", "\"bad\"=hex:010\n"},
      {"missing comma", "\"bad\"=hex:01 02\n"},
      {"bad type number", "\"bad\"=hex(zz):01\n"},
      {"unclosed type", "\"bad\"=hex(2:01\n"},
      {"no colon", "\"bad\"=hex 01\n"},
      {"dword of nine digits", "\"bad\"=dword:000000001\n"},
      {"dword of no digits", "\"bad\"=dword:\n"},
      {"dword with junk", "\"bad\"=dword:0000000x\n"},
      {"unknown type", "\"bad\"=qword:1\n"},
      {"a line of text", "this is not a registry line\n"},
      {"binary junk", "\x01\x02\xFF\xFE\x00\x80 junk\n"s},
      {"a lone escape at the end", "\"bad\"=\"ends in \\"},
  };
  for (const Row &row : rows) {
    for (const char *header : {"REGEDIT4", "WINE REGISTRY Version 2"}) {
      bool wine = header[0] == 'W';
      std::string file = std::string(header) + "\n" +
                         (wine ? "[Software\\\\Kelmaro] 1\n" : "[HKEY_CURRENT_USER\\Software\\Kelmaro]\n") + good +
                         row.damage + "\n" + after;
      Use(file);
      EXPECT_EQ(ValueNames("Software\\Kelmaro"), (std::vector<std::string>{"before", "after"}))
          << row.what << " in " << header;
    }
  }
}

// A key line that cannot be read takes its values with it; the next key is read again.
TEST_F(RegistryFile, ADamagedKeyLineDropsItsValuesOnly) {
  Use("REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Broken\n\"lost\"=\"1\"\n"
      "[HKEY_CURRENT_USER\\Software\\Good]\n\"kept\"=\"1\"\n");
  EXPECT_EQ(Query("Software\\Good", "kept").status, ERROR_SUCCESS);
  EXPECT_EQ(Query("Software\\Broken", "lost").status, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(ValueNames("Software"), std::vector<std::string>());
  Use("WINE REGISTRY Version 2\n[Software\\\\Broken 1\n\"lost\"=\"1\"\n[Software\\\\Good] 1\n\"kept\"=\"1\"\n");
  EXPECT_EQ(Query("Software\\Good", "kept").status, ERROR_SUCCESS);
  EXPECT_EQ(Query("Software\\Broken", "lost").status, ERROR_FILE_NOT_FOUND);
}

// Windows allows keys 512 levels deep; a deeper key line is passed over with its values, in both kinds of file.
TEST_F(RegistryFile, KeysDeeperThanWindowsAllowsArePassedOver) {
  std::string deepest, tooDeep, wineDeepest;
  for (size_t level = 0; level < kRegistryDepthLimit; ++level) {
    deepest += level == 0 ? "k" : "\\k";
    wineDeepest += level == 0 ? "k" : "\\\\k";
  }
  tooDeep = deepest + "\\k";
  Use("REGEDIT4\n[HKEY_CURRENT_USER\\" + deepest + "]\n\"kept\"=\"1\"\n[HKEY_CURRENT_USER\\" + tooDeep +
      "]\n\"lost\"=\"1\"\n");
  EXPECT_EQ(Query(deepest, "kept").status, ERROR_SUCCESS);
  EXPECT_EQ(Query(tooDeep, "lost").status, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(ValueNames(deepest), (std::vector<std::string>{"kept"}));
  Use("WINE REGISTRY Version 2\n[" + wineDeepest + "] 1\n\"kept\"=\"1\"\n[" + wineDeepest +
      "\\\\k] 1\n\"lost\"=\"1\"\n");
  EXPECT_EQ(Query(deepest, "kept").status, ERROR_SUCCESS);
  EXPECT_EQ(Query(tooDeep, "lost").status, ERROR_FILE_NOT_FOUND);
}

// A file that ends in the middle of a line keeps what came before.
TEST_F(RegistryFile, ATruncatedFileKeepsWhatCameBefore) {
  const std::string whole = Utf16File(
      uR"(Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\Software\Kelmaro]
"first"="1"
"second"=hex:01,02,03
)");
  // Cut inside the last line, and at an odd byte (half a UTF-16 unit).
  for (size_t cut : {whole.size() - 8, whole.size() - 7}) {
    Use(whole.substr(0, cut));
    EXPECT_EQ(Query("Software\\Kelmaro", "first").data, "1\0"s) << cut;
  }
}

// Whatever a file is, if it is not a registry file it is an empty registry, and nothing is waited for.
TEST_F(RegistryFile, WhatCannotBeReadIsAnEmptyRegistry) {
  const std::string valid = "REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Kelmaro]\n\"value\"=\"1\"\n";
  std::string junk;
  for (int i = 0; i < 4096; ++i) junk.push_back(static_cast<char>((i * 7919 + 13) % 256));
  std::filesystem::create_directories(Linux("folder.reg"));
  ASSERT_EQ(mkfifo(Linux("fifo.reg").c_str(), 0600), 0);
  // A file over the limit whose start is a good registry file: it is refused whole, never read in part.
  std::string large = Write("large.reg", valid);
  ASSERT_EQ(truncate(large.c_str(), static_cast<off_t>(kRegistryFileLimit) + 1), 0);
  std::string unreadable = Write("unreadable.reg", valid);
  chmod(unreadable.c_str(), 0);
  struct Row {
    const char *what;
    std::string path;
  } rows[] = {
      {"empty", Write("empty.reg", "")},
      {"only a byte order mark", Write("bom.reg", "\xFF\xFE")},
      {"no header", Write("noheader.reg", valid.substr(9))},
      {"another header", Write("other.reg", "REGEDIT5\n" + valid.substr(9))},
      {"UTF-16 without its byte order mark",
       Write("nomark.reg", LittleEndian(u"REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Kelmaro]\n\"value\"=\"1\"\n"))},
      {"junk bytes", Write("junk.reg", junk)},
      {"junk behind a byte order mark", Write("junkbom.reg", "\xFF\xFE" + junk + "x")},
      {"a folder", Linux("folder.reg")},
      {"a FIFO", Linux("fifo.reg")},
      {"over 64 MiB", large},
      {"a device", "/dev/zero"},
  };
  for (const Row &row : rows) {
    setenv("KELMARO_REGISTRY", row.path.c_str(), 1);
    ReloadRegistry();
    EXPECT_EQ(Query("Software\\Kelmaro", "value").status, ERROR_FILE_NOT_FOUND) << row.what;
    EXPECT_EQ(Query("", "value").status, ERROR_FILE_NOT_FOUND) << row.what;
  }
  // Only where this process is barred from reading it (the superuser reads it anyway).
  if (access(unreadable.c_str(), R_OK) != 0) {
    setenv("KELMARO_REGISTRY", unreadable.c_str(), 1);
    ReloadRegistry();
    EXPECT_EQ(Query("Software\\Kelmaro", "value").status, ERROR_FILE_NOT_FOUND) << "unreadable";
  }
  chmod(unreadable.c_str(), 0600);
  std::filesystem::remove(large);  // sparse, but not left to the scratch folder's cleaning
}

// ---- Sizes ----

TEST_F(RegistryFile, SizesAndDataThatDoesNotFit) {
  Use(Crlf(R"(REGEDIT4
[HKEY_CURRENT_USER\Software\Kelmaro]
"text"="abc"
"japanese"="日本"
"dword"=dword:12345678
"empty"=hex:
)"));
  HKEY key;
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Kelmaro", 0, KEY_READ, &key), ERROR_SUCCESS);
  struct Row {
    const char *name;
    DWORD type;
    std::string data;
  } rows[] = {
      {"text", REG_SZ, "abc\0"s},
      {"japanese", REG_SZ, "日本\0"s},  // Shift-JIS bytes, not UTF-16 units
      {"dword", REG_DWORD, "\x78\x56\x34\x12"s},
      {"empty", REG_BINARY, ""},
  };
  for (const Row &row : rows) {
    const DWORD needed = static_cast<DWORD>(row.data.size());
    // No buffer: the size and the type.
    DWORD type = 0xDEADBEEF, size = 0xDEADBEEF;
    EXPECT_EQ(RegQueryValueExA(key, row.name, nullptr, &type, nullptr, &size), ERROR_SUCCESS) << row.name;
    EXPECT_EQ(size, needed) << row.name;
    EXPECT_EQ(type, row.type) << row.name;
    // One byte short: ERROR_MORE_DATA, the size needed, the buffer untouched.
    if (needed > 0) {
      unsigned char buffer[16];
      std::memset(buffer, 0xCC, sizeof buffer);
      type = 0xDEADBEEF;
      size = needed - 1;
      EXPECT_EQ(RegQueryValueExA(key, row.name, nullptr, &type, buffer, &size), ERROR_MORE_DATA) << row.name;
      EXPECT_EQ(size, needed) << row.name;
      EXPECT_EQ(type, row.type) << row.name;
      EXPECT_EQ(Hex(std::string(buffer, buffer + 4)), "CC CC CC CC") << row.name;
    }
    // Room to spare: the data, the size it took.
    unsigned char buffer[16];
    std::memset(buffer, 0xCC, sizeof buffer);
    size = sizeof buffer;
    EXPECT_EQ(RegQueryValueExA(key, row.name, nullptr, nullptr, buffer, &size), ERROR_SUCCESS) << row.name;
    EXPECT_EQ(size, needed) << row.name;
    EXPECT_EQ(Hex(std::string(buffer, buffer + size)), Hex(row.data)) << row.name;
    EXPECT_EQ(buffer[size], 0xCC) << row.name;
  }
  // Nothing asked for: only whether the value is there.
  EXPECT_EQ(RegQueryValueExA(key, "text", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
  DWORD type, size;
  EXPECT_EQ(RegQueryValueExA(key, "missing", nullptr, &type, nullptr, &size), ERROR_FILE_NOT_FOUND);
  // A buffer without its size, and the reserved argument, are refused.
  unsigned char buffer[16];
  DWORD reserved = 0;
  EXPECT_EQ(RegQueryValueExA(key, "text", nullptr, nullptr, buffer, nullptr), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(RegQueryValueExA(key, "text", &reserved, nullptr, nullptr, &size), ERROR_INVALID_PARAMETER);
  RegCloseKey(key);
}

// ---- Enumeration ----

TEST_F(RegistryFile, ValuesAreEnumeratedInTheFilesOrder) {
  Use(Crlf(R"(REGEDIT4
[HKEY_CURRENT_USER\Software\Kelmaro]
"zeta"="1"
"Alpha"="22"
@="default"
"表"=dword:00000007
)"));
  HKEY key;
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Kelmaro", 0, KEY_READ, &key), ERROR_SUCCESS);
  struct Row {
    const char *name;
    DWORD type;
    std::string data;
  } rows[] = {
      {"zeta", REG_SZ, "1\0"s}, {"Alpha", REG_SZ, "22\0"s}, {"", REG_SZ, "default\0"s}, {"表", REG_DWORD, "\7\0\0\0"s}};
  for (DWORD index = 0; index < 4; ++index) {
    const Row &row = rows[index];
    char name[16];
    std::memset(name, 'x', sizeof name);
    unsigned char data[16];
    DWORD nameSize = sizeof name, type = 0xDEADBEEF, dataSize = sizeof data;
    EXPECT_EQ(RegEnumValueA(key, index, name, &nameSize, nullptr, &type, data, &dataSize), ERROR_SUCCESS) << index;
    EXPECT_EQ(std::string(name), row.name) << index;
    EXPECT_EQ(nameSize, std::strlen(row.name)) << index;
    EXPECT_EQ(type, row.type) << index;
    EXPECT_EQ(Hex(std::string(data, data + dataSize)), Hex(row.data)) << index;
  }
  // Past the last value, however far.
  for (DWORD index : {4u, 5u, 1000u}) {
    char name[16];
    DWORD nameSize = sizeof name;
    EXPECT_EQ(RegEnumValueA(key, index, name, &nameSize, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);
  }

  // "Alpha" (5 bytes) in 5 bytes: no room for the terminator. Name, name size and data stay as they were; the type and
  // the data's size are told.
  char name[16] = "untouched";
  unsigned char data[16] = "untouched";
  DWORD nameSize = 5, type = 0xDEADBEEF, dataSize = sizeof data;
  EXPECT_EQ(RegEnumValueA(key, 1, name, &nameSize, nullptr, &type, data, &dataSize), ERROR_MORE_DATA);
  EXPECT_STREQ(name, "untouched");
  EXPECT_EQ(nameSize, 5u);
  EXPECT_EQ(type, REG_SZ);
  EXPECT_EQ(dataSize, 3u);
  EXPECT_STREQ(reinterpret_cast<char *>(data), "untouched");
  // Room for the name, not for the data ("22" and its terminator).
  nameSize = sizeof name;
  dataSize = 2;
  EXPECT_EQ(RegEnumValueA(key, 1, name, &nameSize, nullptr, &type, data, &dataSize), ERROR_MORE_DATA);
  EXPECT_STREQ(name, "untouched");
  EXPECT_EQ(nameSize, sizeof name);
  EXPECT_EQ(dataSize, 3u);
  EXPECT_STREQ(reinterpret_cast<char *>(data), "untouched");
  // No data buffer: its size.
  dataSize = 0;
  EXPECT_EQ(RegEnumValueA(key, 1, name, &nameSize, nullptr, nullptr, nullptr, &dataSize), ERROR_SUCCESS);
  EXPECT_STREQ(name, "Alpha");
  EXPECT_EQ(dataSize, 3u);
  // The default value has an empty name, and needs a buffer of one byte.
  nameSize = 1;
  EXPECT_EQ(RegEnumValueA(key, 2, name, &nameSize, nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
  EXPECT_STREQ(name, "");
  EXPECT_EQ(nameSize, 0u);
  // Without a name buffer or its size.
  EXPECT_EQ(RegEnumValueA(key, 0, nullptr, &nameSize, nullptr, nullptr, nullptr, nullptr), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(RegEnumValueA(key, 0, name, nullptr, nullptr, nullptr, nullptr, nullptr), ERROR_INVALID_PARAMETER);
  RegCloseKey(key);
  // A key without values, and the predefined root itself.
  Use("REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Empty]\n");
  EXPECT_EQ(ValueNames("Software\\Empty"), std::vector<std::string>());
  nameSize = sizeof name;
  EXPECT_EQ(RegEnumValueA(HKEY_CURRENT_USER, 0, name, &nameSize, nullptr, nullptr, nullptr, nullptr),
            ERROR_NO_MORE_ITEMS);
}

// ---- Keys and handles ----

TEST_F(RegistryFile, OpeningKeys) {
  Use(Crlf(R"(REGEDIT4
[HKEY_CURRENT_USER\Software\Kelmaro\Child\Grand]
"deep"="1"
)"));
  const HKEY kUnset = reinterpret_cast<HKEY>(0x4321);
  struct Row {
    const char *subKey;
    LSTATUS status;
  } rows[] = {
      {"Software\\Kelmaro\\Child\\Grand", ERROR_SUCCESS},
      {"Software\\Kelmaro\\Child\\Grand\\", ERROR_SUCCESS},
      {"Software\\Kelmaro\\Child\\Grand\\\\", ERROR_SUCCESS},
      {"Software\\Kelmaro\\Child\\Missing", ERROR_FILE_NOT_FOUND},
      {"Software\\Kelmaro\\Child\\Grand\\Deeper", ERROR_FILE_NOT_FOUND},
      {"\\Software\\Kelmaro", ERROR_BAD_PATHNAME},
      {"\\", ERROR_BAD_PATHNAME},
  };
  for (const Row &row : rows) {
    HKEY key = kUnset;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, row.subKey, 0, KEY_READ, &key), row.status) << row.subKey;
    if (row.status == ERROR_SUCCESS) {
      EXPECT_NE(key, kUnset) << row.subKey;
      EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS) << row.subKey;
    } else {
      EXPECT_EQ(key, nullptr) << row.subKey;
    }
  }

  // Below an open key, by a path of more than one name.
  HKEY kelmaro, grand, again;
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Kelmaro", 0, KEY_READ, &kelmaro), ERROR_SUCCESS);
  ASSERT_EQ(RegOpenKeyExA(kelmaro, "child\\GRAND", 0, KEY_READ, &grand), ERROR_SUCCESS);
  EXPECT_EQ(RegQueryValueExA(grand, "deep", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
  // An empty name opens the key itself anew: a handle of its own, which outlives the first.
  ASSERT_EQ(RegOpenKeyExA(grand, "", 0, KEY_READ, &again), ERROR_SUCCESS);
  EXPECT_NE(again, grand);
  EXPECT_EQ(RegCloseKey(grand), ERROR_SUCCESS);
  EXPECT_EQ(RegQueryValueExA(again, "deep", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(again), ERROR_SUCCESS);
  // A closed handle is no handle; closing it again fails too.
  EXPECT_EQ(RegQueryValueExA(grand, "deep", nullptr, nullptr, nullptr, nullptr), ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegCloseKey(grand), ERROR_INVALID_HANDLE);
  HKEY key = kUnset;
  EXPECT_EQ(RegOpenKeyExA(grand, "x", 0, KEY_READ, &key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(key, kUnset);
  EXPECT_EQ(RegCloseKey(kelmaro), ERROR_SUCCESS);
  EXPECT_EQ(RegOpenKeyExA(nullptr, "Software", 0, KEY_READ, &key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegEnumValueA(reinterpret_cast<HKEY>(0x80000004u), 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
            ERROR_INVALID_PARAMETER);
  char name[8];
  DWORD nameSize = sizeof name;
  EXPECT_EQ(RegEnumValueA(reinterpret_cast<HKEY>(0x80000004u), 0, name, &nameSize, nullptr, nullptr, nullptr, nullptr),
            ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, nullptr), ERROR_INVALID_PARAMETER);
}

// The predefined roots are always open: an empty name gives the root itself back, and closing one is accepted and
// changes nothing.
TEST_F(RegistryFile, PredefinedRoots) {
  Use("REGEDIT4\n[HKEY_CURRENT_USER]\n\"top\"=\"1\"\n[HKEY_CURRENT_USER\\Software]\n");
  for (HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS}) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(root, "", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(key, root);
    key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(root, nullptr, 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(key, root);
    EXPECT_EQ(RegCloseKey(root), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(root), ERROR_SUCCESS);
  }
  EXPECT_EQ(RegQueryValueExA(HKEY_CURRENT_USER, "top", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(ValueNames(""), (std::vector<std::string>{"top"}));
  // Below HKEY_CLASSES_ROOT one leading backslash is passed over; "\\" is then the root, as a handle of its own.
  HKEY key = nullptr;
  EXPECT_EQ(RegOpenKeyExA(HKEY_CLASSES_ROOT, "\\Software", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegOpenKeyExA(HKEY_CLASSES_ROOT, "\\", 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_NE(key, HKEY_CLASSES_ROOT);
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_EQ(RegOpenKeyExA(HKEY_USERS, "\\Software", 0, KEY_READ, &key), ERROR_BAD_PATHNAME);
}

// An open key is found again in the registry read anew, or is gone from it as a deleted key is.
TEST_F(RegistryFile, OpenKeysOutliveAReload) {
  Use("REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Kelmaro]\n\"value\"=\"old\"\n");
  HKEY key;
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Kelmaro", 0, KEY_READ, &key), ERROR_SUCCESS);
  Use("REGEDIT4\n[HKEY_CURRENT_USER\\SOFTWARE\\KELMARO]\n\"value\"=\"new\"\n");
  char data[8] = "";
  DWORD size = sizeof data;
  EXPECT_EQ(RegQueryValueExA(key, "value", nullptr, nullptr, reinterpret_cast<unsigned char *>(data), &size),
            ERROR_SUCCESS);
  EXPECT_STREQ(data, "new");
  Use("REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Other]\n");
  EXPECT_EQ(RegQueryValueExA(key, "value", nullptr, nullptr, nullptr, nullptr), ERROR_KEY_DELETED);
  HKEY below = nullptr;
  EXPECT_EQ(RegOpenKeyExA(key, "", 0, KEY_READ, &below), ERROR_KEY_DELETED);
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
}

// ---- Real files ----

// An export written by Wine's regedit (version 5.00, UTF-16), of values made with "reg add".
TEST_F(RegistryFile, AnExportOfWinesRegedit) {
  Use(
      Utf16File(uR"(Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\Software\KelmaroExportSample]
@="default"
"bin"=hex:01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10,11,12,13,14,15,16,17,\
  18,19,1a,1b,1c,1d,1e,1f,20,21,22,23,24,25,26,27,28
"dw"=dword:0000000a
"exp"=hex(2):25,00,54,00,45,00,4d,00,50,00,25,00,5c,00,78,00,00,00
"jp"="日本語の表"
"multi"=hex(7):6f,00,6e,00,65,00,00,00,74,00,77,00,6f,00,00,00,00,00
"qw"=hex(b):88,77,66,55,44,33,22,11
"sz"="say \"hi\" C:\\dir\\"

[HKEY_CURRENT_USER\Software\KelmaroExportSample\Sub]
"x"=""

)"));
  const std::string key = "Software\\KelmaroExportSample";
  std::string bytes;
  for (int i = 1; i <= 40; ++i) bytes.push_back(static_cast<char>(i));
  EXPECT_EQ(Query(key, "").data, "default\0"s);
  EXPECT_EQ(Hex(Query(key, "bin").data), Hex(bytes));
  EXPECT_EQ(Query(key, "dw").data, "\x0A\0\0\0"s);
  EXPECT_EQ(Query(key, "exp").data, "%TEMP%\\x\0"s);
  EXPECT_EQ(Query(key, "jp").data, "日本語の表\0"s);
  EXPECT_EQ(Query(key, "multi").data, "one\0two\0\0"s);
  EXPECT_EQ(Query(key, "qw").type, REG_QWORD);
  EXPECT_EQ(Query(key, "sz").data, "say \"hi\" C:\\dir\\\0"s);
  EXPECT_EQ(Query(key + "\\Sub", "x").data, "\0"s);
  EXPECT_EQ(ValueNames(key), (std::vector<std::string>{"", "bin", "dw", "exp", "jp", "multi", "qw", "sz"}));
}

// Lines as Wine 9 writes them into a prefix's user.reg: a key whose name is outside the BMP, options, default values,
// and regedit's layout of long binary values.
TEST_F(RegistryFile, AnExcerptOfARealUserReg) {
  Use(R"(WINE REGISTRY Version 2
;; All keys relative to REGISTRY\\User\\S-1-5-21-0-0-0-1000

#arch=win64

[AppEvents\\Schemes\\Apps\\Explorer\\Navigating\\.Current] 1795588211
#time=1dd7ca66c9b5cee
@=""

[Control Panel\\Desktop\\WindowMetrics] 1795588212
#time=1dd7ca66cdb52b8
"BorderWidth"="1"
"CaptionFont"=hex:f4,ff,ff,ff,00,00,00,00,00,00,00,00,00,00,00,00,bc,02,00,00,\
  00,00,00,80,00,00,00,22,4d,00,53,00,20,00,53,00,68,00,65,00,6c,00,6c,00,20,\
  00,44,00,6c,00,67,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,\
  00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00
"CaptionHeight"="18"

[Control Panel\\International] 1795588205
#time=1dd7ca668fc2d0a
"s1159"="\x5348\x524d"
"sCurrency"="\xffe5"
"sLongDate"="yyyy\x5e74M\x6708d\x65e5dddd"

[Control Panel\\International\\\xd83c\xdf0e\xd83c\xdf0f\xd83c\xdf0d] 1795588205
#time=1dd7ca668fc4e5e
"Currencies"="JPY"

[Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders] 1795588205
#time=1dd7ca668fd5d3e
"AppData"=str(2):"%USERPROFILE%\\AppData\\Roaming"
"Personal"=str(2):"%USERPROFILE%\\Documents"
)");
  EXPECT_EQ(Query("AppEvents\\Schemes\\Apps\\Explorer\\Navigating\\.Current", "").data, "\0"s);
  Found font = Query("Control Panel\\Desktop\\WindowMetrics", "CaptionFont");
  EXPECT_EQ(font.type, REG_BINARY);
  EXPECT_EQ(font.data.size(), 92u);
  EXPECT_EQ(Query("Control Panel\\Desktop\\WindowMetrics", "CaptionHeight").data, "18\0"s);
  EXPECT_EQ(Query("Control Panel\\International", "s1159").data, "午前\0"s);
  EXPECT_EQ(Query("Control Panel\\International", "sCurrency").data, "￥\0"s);
  EXPECT_EQ(Query("Control Panel\\International", "sLongDate").data, "yyyy年M月d日dddd\0"s);
  Found appData = Query("Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders", "appdata");
  EXPECT_EQ(appData.type, REG_EXPAND_SZ);
  EXPECT_EQ(appData.data, "%USERPROFILE%\\AppData\\Roaming\0"s);
  EXPECT_EQ(ValueNames("Control Panel\\International"), (std::vector<std::string>{"s1159", "sCurrency", "sLongDate"}));
}

}  // namespace
