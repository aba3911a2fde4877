// GetPrivateProfileStringA: the lines of a profile file, lists, cut results, defaults, the texts of files and the
// names of files, on the backend and under Wine.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "platform/winapi.h"
#include "support/scratch_folder.h"

#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace std::string_literals;

namespace {

const char kSentinel = '\xCC';

// What one call wrote into a buffer of `size` bytes pre-filled with 0xCC (with a few more behind it, to show a write
// past the end), and its result.
struct Read {
  std::string bytes;
  DWORD result;
};

Read ReadProfile(const std::string &file, const char *section, const char *key, const char *fallback, DWORD size) {
  std::vector<char> buffer(size + 4, kSentinel);
  DWORD result = GetPrivateProfileStringA(section, key, fallback, buffer.data(), size, file.c_str());
  return {std::string(buffer.begin(), buffer.end()), result};
}

// The buffer after a call that wrote `written`: those bytes, then the untouched rest.
std::string Written(const std::string &written, DWORD size) {
  return written + std::string(size + 4 - written.size(), kSentinel);
}

// One read of a file with `text`: `expected` is every byte the call writes, terminators included.
struct Row {
  const char *what;
  std::string text;
  const char *section, *key, *fallback;
  DWORD size;
  std::string expected;
  DWORD result;
};

// Each row's file gets a name of its own: Wine keeps a profile file that it has read and would answer the next row
// from the last one's text.
void ExpectRows(const std::vector<Row> &rows) {
  ScratchFolder folder;
  int number = 0;
  for (const Row &row : rows) {
    std::string file = folder.MakeFile("row" + std::to_string(++number) + ".ini", row.text);
    Read read = ReadProfile(file, row.section, row.key, row.fallback, row.size);
    EXPECT_EQ(read.bytes, Written(row.expected, row.size)) << row.what;
    EXPECT_EQ(read.result, row.result) << row.what;
  }
}

// A file's text in UTF-16LE behind its byte order mark.
std::string Utf16File(const std::u16string &text) {
  std::string bytes = "\xFF\xFE";
  for (char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

const std::string kText =
    "[Sec]\r\n"
    "key=value\r\n"
    "  Spaced Key  =  two words  \r\n"
    "dq=\"quoted\"\r\n"
    "sq='single'\r\n"
    "mixed=\"a'\r\n"
    "lone=\"\r\n"
    "inner=  \" a \"  \r\n"
    "empty=\r\n"
    "eq= a=b \r\n"
    ";note=x\r\n"
    "bare\r\n"
    "note=v ; no comment\r\n"
    "dup=first\r\n"
    "DUP=second\r\n"
    "[ Pad ] behind\r\n"
    "a=1\r\n"
    "[sec]\r\n"
    "later=in the second [sec]\r\n";

TEST(ProfileFile, KeysAreFoundByWindowsRules) {
  ExpectRows({
      {"names without case", kText, "SEC", "KEY", "d", 20, "value\0"s, 5},
      {"blanks around a key and its value", kText, "sec", "spaced key", "d", 20, "two words\0"s, 9},
      {"double quotes", kText, "sec", "dq", "d", 20, "quoted\0"s, 6},
      {"single quotes", kText, "sec", "sq", "d", 20, "single\0"s, 6},
      {"quotes that differ", kText, "sec", "mixed", "d", 20, "\"a'\0"s, 3},
      {"one quote", kText, "sec", "lone", "d", 20, "\"\0"s, 1},
      {"blanks inside quotes", kText, "sec", "inner", "d", 20, " a \0"s, 3},
      {"an empty value", kText, "sec", "empty", "d", 20, "\0"s, 0},
      {"the first = divides", kText, "sec", "eq", "d", 20, "a=b\0"s, 3},
      {"a line without = is no key", kText, "sec", "bare", "d", 20, "d\0"s, 1},
      {"a ; inside a value", kText, "sec", "note", "d", 30, "v ; no comment\0"s, 14},
      {"the first of two keys", kText, "sec", "dup", "d", 20, "first\0"s, 5},
      {"a section name's blanks and what follows its ]", kText, "pad", "a", "d", 20, "1\0"s, 1},
      {"the caller's blanks", kText, " Pad\t", " a ", "d", 20, "1\0"s, 1},
      {"only the first section of a name", kText, "sec", "later", "d", 20, "d\0"s, 1},
      {"a missing key", kText, "sec", "absent", "d", 20, "d\0"s, 1},
      {"a missing section", kText, "absent", "key", "d", 20, "d\0"s, 1},
      {"LF alone ends lines", "[s]\nk=v\n", "s", "k", "d", 20, "v\0"s, 1},
      {"CR alone ends lines", "[s]\rk=v", "s", "k", "d", 20, "v\0"s, 1},
      {"indented lines, tabs", "  [s]\r\n\tk\t=\tv\t\r\n", "s", "k", "d", 20, "v\0"s, 1},
      {"a [ line without ] starts no section", "[t]\r\nk=t\r\n[s\r\nk=s\r\n", "s", "k", "d", 20, "d\0"s, 1},
      {"the last ] ends the name", "[s]x]\r\nk=v\r\n", "s]x", "k", "d", 20, "v\0"s, 1},
      {"a 0 byte ends a value", "[s]\r\nk=a\0b\r\nj=2\r\n"s, "s", "k", "d", 20, "a\0"s, 1},
      {"the line after a 0 byte", "[s]\r\nk=a\0b\r\nj=2\r\n"s, "s", "j", "d", 20, "2\0"s, 1},
      {"Ctrl-Z is a blank", "[s]\r\nk=v\x1A\r\n", "s", "k", "d", 20, "v\0"s, 1},
      // Double-byte names: 表 (0x95 0x5C) ends in "\", ア (0x83 0x41) in "A", ム (0x83 0x80) is no "]" pair.
      {"double-byte names", "[\x95\x5C]\r\n\x83\x41=\x95\x5C\x82\xA0\r\n", "\x95\x5C", "\x83\x41", "d", 20,
       "\x95\x5C\x82\xA0\0"s, 4},
      {"a second byte keeps its case", "[s]\r\n\x83\x41=v\r\n", "s", "\x83\x61", "d", 20, "d\0"s, 1},
      {"ASCII beside double bytes folds", "[s]\r\nA\x95\x5C=v\r\n", "s", "a\x95\x5C", "d", 20, "v\0"s, 1},
      {"a second byte ] ends no name", "[\x83\x5D]\r\nk=v\r\n", "\x83\x5D", "k", "d", 20, "v\0"s, 1},
  });
}

TEST(ProfileFile, ListsKeysAndSections) {
  ExpectRows({
      {"the keys of the first section of a name", kText, "sec", nullptr, "d", 100,
       "key\0Spaced Key\0dq\0sq\0mixed\0lone\0inner\0empty\0eq\0note\0dup\0DUP\0\0"s, 60},
      {"the sections", kText, nullptr, nullptr, "d", 100, "Sec\0Pad\0sec\0\0"s, 12},
      {"a key name is ignored for sections", kText, nullptr, "key", "d", 100, "Sec\0Pad\0sec\0\0"s, 12},
      {"comments and lines without = are no keys", "[s]\r\n;c=1\r\n  ;d=2\r\n#e=3\r\nbare\r\nk=1\r\n", "s", nullptr,
       "d", 20, "#e\0k\0\0"s, 5},
      {"empty, unclosed and repeated sections", "x=1\r\n[a]\r\n[]\r\n[\x83\x5D\r\n[ b ]\r\n[A]\r\n", nullptr, nullptr,
       "d", 20, "a\0b\0A\0\0"s, 6},
      {"a section without keys: the default", "[e]\r\n[f]\r\nx=1\r\n", "e", nullptr, "dflt", 20, "dflt\0"s, 4},
      {"a missing section: the default", kText, "absent", nullptr, "dflt", 20, "dflt\0"s, 4},
      {"no sections: an empty list", "x=1\r\n", nullptr, nullptr, "d", 20, "\0"s, 0},
      {"an empty file", "", nullptr, nullptr, "d", 20, "\0"s, 0},
  });
}

// Windows writes both zeros at the end of a cut list; Wine's "A" call copies its result without the last one.
TEST(ProfileFile, WhatDoesNotFitIsCut) {
  const std::string keys = "[s]\r\nab=1\r\ncd=2\r\n";
  const std::string sections = "[ab]\r\n[cd]\r\n";
  ExpectRows({
      {"a value cut", kText, "sec", "key", "d", 3, "va\0"s, 2},
      {"a value that just fits", kText, "sec", "key", "d", 6, "value\0"s, 5},
      {"one byte", kText, "sec", "key", "d", 1, "\0"s, 0},
      {"no bytes", kText, "sec", "key", "d", 0, "", 0},
      {"the default cut", kText, "sec", "absent", "default", 4, "def\0"s, 3},
      // The backend cuts the bytes at size - 1, the count that Windows documents; Wine converts the value through
      // UTF-16 and leaves the place of the character that it cannot finish unwritten.
      {"a double-byte character cut", "[s]\r\nk=a\x95\x5C\r\n", "s", "k", "d", 3, WindowsOrWine("a\x95\0"s, "a\xCC\0"s),
       2},
      {"keys with room to spare", keys, "s", nullptr, "d", 8, "ab\0cd\0\0"s, 6},
      // A list that fills the buffer exactly counts as cut.
      {"keys that fill the buffer", keys, "s", nullptr, "d", 7, WindowsOrWine("ab\0cd\0\0"s, "ab\0cd\0"s), 5},
      {"keys cut in a name", keys, "s", nullptr, "d", 6, WindowsOrWine("ab\0c\0\0"s, "ab\0c\0"s), 4},
      {"keys cut before a name", keys, "s", nullptr, "d", 5, WindowsOrWine("ab\0\0\0"s, "ab\0\0"s), 3},
      {"keys cut at a name's zero", keys, "s", nullptr, "d", 4, WindowsOrWine("ab\0\0"s, "ab\0"s), 2},
      {"keys cut in the first name", keys, "s", nullptr, "d", 3, WindowsOrWine("a\0\0"s, "a\0"s), 1},
      // Wine finds no key in two bytes and gives the default.
      {"keys in two bytes", keys, "s", nullptr, "d", 2, WindowsOrWine("\0\0"s, "d\0"s), WindowsOrWine(0u, 1u)},
      {"keys in one byte", keys, "s", nullptr, "d", 1, "\0"s, 0},
      {"sections with room to spare", sections, nullptr, nullptr, "d", 8, "ab\0cd\0\0"s, 6},
      {"sections that fill the buffer", sections, nullptr, nullptr, "d", 7, WindowsOrWine("ab\0cd\0\0"s, "ab\0cd\0"s),
       5},
      {"sections cut in a name", sections, nullptr, nullptr, "d", 6, WindowsOrWine("ab\0c\0\0"s, "ab\0c\0"s), 4},
      {"sections in two bytes", sections, nullptr, nullptr, "d", 2, WindowsOrWine("\0\0"s, "\0"s), 0},
      {"sections in one byte", sections, nullptr, nullptr, "d", 1, "\0"s, 0},
  });
}

TEST(ProfileFile, AMissingKeyGivesTheDefaultWithoutTrailingBlanks) {
  ExpectRows({
      {"trailing spaces", "", "s", "k", "one two  ", 20, "one two\0"s, 7},
      {"only spaces are blanks here", "", "s", "k", "a \t ", 20, "a \t\0"s, 3},
      // Windows strips every trailing blank; Wine keeps the first character of a default of blanks.
      {"a default of blanks", "", "s", "k", "   ", 20, WindowsOrWine("\0"s, " \0"s), WindowsOrWine(0u, 1u)},
      {"a null default", "", "s", "k", nullptr, 20, "\0"s, 0},
  });
}

TEST(ProfileFile, AMissingFileGivesTheDefault) {
  ScratchFolder folder;
  folder.MakeFolder("dir");
  struct MissingRow {
    const char *what;
    std::string file;
    const char *section, *key;
    std::string expected;
    DWORD result;
  } rows[] = {
      {"a key", folder / "absent.ini", "s", "k", "dflt\0"s, 4},
      {"the keys of a section", folder / "absent.ini", "s", nullptr, "dflt\0"s, 4},
      {"the sections: an empty list", folder / "absent.ini", nullptr, nullptr, "\0"s, 0},
      {"a missing folder", folder / "absent\\x.ini", "s", "k", "dflt\0"s, 4},
      {"a folder", folder / "dir", "s", "k", "dflt\0"s, 4},
  };
  for (const MissingRow &row : rows) {
    Read read = ReadProfile(row.file, row.section, row.key, "dflt", 20);
    EXPECT_EQ(read.bytes, Written(row.expected, 20)) << row.what;
    EXPECT_EQ(read.result, row.result) << row.what;
  }
  SetLastError(0);
  ReadProfile(folder / "absent.ini", "s", "k", "dflt", 20);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST(ProfileFile, FilesAreShiftJisOrUtf16) {
  ExpectRows({
      {"Shift-JIS bytes as they are", "[s]\r\nk=\x95\x5C\x82\xA0\r\n", "s", "k", "d", 20, "\x95\x5C\x82\xA0\0"s, 4},
      {"UTF-16 in Shift-JIS", Utf16File(u"[表]\r\nキー=値あx\r\n"), "\x95\x5C", "\x83\x4C\x81\x5B", "d", 20,
       "\x92\x6C\x82\xA0x\0"s, 5},
      {"UTF-16 sections", Utf16File(u"[表]\r\n[s]\r\n"), nullptr, nullptr, "d", 20, "\x95\x5C\0s\0\0"s, 5},
      {"a UTF-16 mark alone", "\xFF\xFE", "s", "k", "d", 20, "d\0"s, 1},
      // Windows takes the UTF-8 mark for three characters of the first line, which then starts no section; Wine
      // reads the file as UTF-8. Behind the mark's own line, the file reads the same on both.
      {"a UTF-8 mark before a section", "\xEF\xBB\xBF[s]\r\nk=v\r\n", "s", "k", "d", 20, WindowsOrWine("d\0"s, "v\0"s),
       1},
      {"a UTF-8 mark on a line of its own", "\xEF\xBB\xBF\r\n[s]\r\nk=v\r\n", "s", "k", "d", 20, "v\0"s, 1},
  });
}

TEST(ProfileFile, TheFileIsNamedAsPathsAreNamed) {
  ScratchFolder folder;
  folder.MakeFolder("Sub");
  folder.MakeFile("Sub\\Case.Ini", "[s]\r\nk=v\r\n");
  std::string slashes = folder / "sub/case.ini";
  for (char &c : slashes)
    if (c == '\\') c = '/';
  ASSERT_TRUE(SetCurrentDirectoryA(folder.Path().c_str()));  // the scratch folder puts the old one back
  for (const std::string &name : {folder / "SUB\\case.INI", slashes, "sub\\case.ini"s, ".\\Sub\\Case.Ini"s}) {
    Read read = ReadProfile(name, "s", "k", "d", 20);
    EXPECT_EQ(read.bytes, Written("v\0"s, 20)) << name;
  }
  // A bare name is looked for in the Windows folder, not in the current one.
  folder.MakeFile("here.ini", "[s]\r\nk=here\r\n");
  EXPECT_EQ(ReadProfile("here.ini", "s", "k", "d", 20).bytes, Written("d\0"s, 20));
}

TEST(ProfileFile, ABareNameIsInTheWindowsFolder) {
#ifdef _WIN32
  char windows[MAX_PATH];
  ASSERT_GT(GetWindowsDirectoryA(windows, sizeof windows), 0u);
  std::string name = "kelmaro-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(GetTickCount()) + ".ini";
  std::string path = std::string(windows) + "\\" + name;
  HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) GTEST_SKIP() << "no file can be made in the Windows folder";
  DWORD written = 0;
  WriteFile(file, "[s]\r\nk=windows\r\n", 16, &written, nullptr);
  CloseHandle(file);
  Read read = ReadProfile(name, "s", "k", "d", 20);
  DeleteFileA(path.c_str());
#else
  // The Windows folder of the Linux backend is the one that windir names.
  ScratchFolder folder;
  folder.MakeFile("settings.ini", "[s]\r\nk=windows\r\n");
  const char *saved = std::getenv("windir");
  std::string savedValue = saved ? saved : "";
  setenv("windir", folder.Path().c_str(), 1);
  Read read = ReadProfile("settings.ini", "s", "k", "d", 20);
  unsetenv("windir");
  Read noWindowsFolder = ReadProfile("settings.ini", "s", "k", "d", 20);
  if (saved) setenv("windir", savedValue.c_str(), 1);
  EXPECT_EQ(noWindowsFolder.bytes, Written("d\0"s, 20));
#endif
  EXPECT_EQ(read.bytes, Written("windows\0"s, 20));
}

// Windows itself crashes on a null buffer; the backend and Wine give 0.
TEST(ProfileFile, ANullBufferGetsNothing) {
#ifdef _WIN32
  if (!RunningUnderWine()) GTEST_SKIP() << "Windows crashes on a null buffer";
#endif
  ScratchFolder folder;
  std::string file = folder.MakeFile("x.ini", "[s]\r\nk=v\r\n");
  EXPECT_EQ(GetPrivateProfileStringA("s", "k", "d", nullptr, 20, file.c_str()), 0u);
  EXPECT_EQ(GetPrivateProfileStringA(nullptr, nullptr, "d", nullptr, 20, file.c_str()), 0u);
}

#ifndef _WIN32
// A pipe is not waited on, nor read; a file too large for a settings file is not read either.
TEST(ProfileFile, OnlyRegularFilesAreRead) {
  ScratchFolder folder;
  ASSERT_EQ(mkfifo((folder.LinuxPath() + "/pipe.ini").c_str(), 0600), 0);
  EXPECT_EQ(ReadProfile(folder / "pipe.ini", "s", "k", "d", 20).bytes, Written("d\0"s, 20));
  folder.MakeFile("large.ini", "[s]\r\nk=v\r\n");
  ASSERT_EQ(truncate((folder.LinuxPath() + "/large.ini").c_str(), 17 << 20), 0);  // sparse: nothing is written
  SetLastError(0);
  EXPECT_EQ(ReadProfile(folder / "large.ini", "s", "k", "d", 20).bytes, Written("d\0"s, 20));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
}
#endif

// Damaged files read as far as they make sense, and never past their end.
TEST(ProfileFile, DamagedFilesReadAsFarAsTheyGo) {
  ExpectRows({
      {"a [ at the end", "[s]\r\nk=v\r\n[", "s", "k", "d", 20, "v\0"s, 1},
      {"a key without a line end", "[s]\r\nk", "s", nullptr, "d", 20, "d\0"s, 1},
      {"a lone = ", "[s]\r\n=", "s", "k", "d", 20, "d\0"s, 1},
      // The backend gives a file's bytes as they are; Wine converts them through UTF-16, where a lead byte without
      // its second one becomes U+30FB, which is 0x81 0x45 in Shift-JIS.
      {"a lead byte at the end", "[s]\r\nk=v\x81", "s", "k", "d", 20, WindowsOrWine("v\x81\0"s, "v\x81\x45\0"s),
       WindowsOrWine(2u, 3u)},
      {"a lead byte before ]", "[\x81]\r\n[t]\r\n", nullptr, nullptr, "d", 20, "t\0\0"s, 2},
      // The backend drops a last byte that makes no UTF-16 unit; Wine reads it as a character of its own.
      {"an odd byte behind UTF-16", Utf16File(u"[s]\r\nk=v") + "x", "s", "k", "d", 20, WindowsOrWine("v\0"s, "vx\0"s),
       WindowsOrWine(1u, 2u)},
  });
}

}  // namespace
