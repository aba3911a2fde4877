// System texts of the Linux backend: FormatMessageA over the C library's errno texts and the backend's own, the
// locale they are told in, inserts, the two ways of delivering a text; and the libraries that are never loaded.
#include <gtest/gtest.h>
#include <locale.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/posix/files/error_codes.h"
#include "platform/posix/text/charset.h"
#include "platform/winapi.h"
#include "support/hex_text.h"
#include "support/saved_environment.h"

namespace {

const DWORD kAllocateFromSystem = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM;

// The text FormatMessageA allocates for `code`, or "<none>" with the last error behind it.
std::string Message(DWORD code, DWORD flags = kAllocateFromSystem, const char *argument = nullptr) {
  char *text = nullptr;
  char name[64] = "";
  char *arguments[1] = {name};
  if (argument != nullptr) std::strcpy(name, argument);
  SetLastError(0);
  DWORD length = FormatMessageA(flags, nullptr, code, 0, reinterpret_cast<LPSTR>(&text), 0,
                                argument != nullptr ? reinterpret_cast<va_list *>(arguments) : nullptr);
  if (length == 0) return "<none " + std::to_string(GetLastError()) + ">";
  std::string out(text, length);
  EXPECT_EQ(std::strlen(text), length) << code;
  LocalFree(text);
  return out;
}

std::string CText(int error) {
  locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
  std::string text = strerror_l(error, c);
  freelocale(c);
  return text;
}

class SystemMessages : public ::testing::Test {
 protected:
  void SetUp() override { Environment(nullptr, nullptr, "C"); }
  void TearDown() override { environment_.Restore(); }
  // The three variables that name the messages locale; null unsets one.
  static void Environment(const char *all, const char *messages, const char *lang) {
    const char *values[] = {all, messages, lang};
    const char *names[] = {"LC_ALL", "LC_MESSAGES", "LANG"};
    for (int i = 0; i < 3; ++i)
      if (values[i] != nullptr)
        setenv(names[i], values[i], 1);
      else
        unsetenv(names[i]);
  }

  SavedEnvironment environment_{"LC_ALL", "LC_MESSAGES", "LANG"};
};

// The code of each failure is told in the words of the errno it stands for.
TEST_F(SystemMessages, ErrnoTexts) {
  struct Row {
    DWORD code;
    int error;
  } rows[] = {
      {ERROR_FILE_NOT_FOUND, ENOENT},
      {ERROR_PATH_NOT_FOUND, ENOENT},
      {ERROR_TOO_MANY_OPEN_FILES, EMFILE},
      {ERROR_ACCESS_DENIED, EACCES},
      {ERROR_INVALID_HANDLE, EBADF},
      {ERROR_NOT_ENOUGH_MEMORY, ENOMEM},
      {ERROR_OUTOFMEMORY, ENOMEM},
      {ERROR_NOT_SAME_DEVICE, EXDEV},
      {ERROR_WRITE_PROTECT, EROFS},
      {ERROR_WRITE_FAULT, EIO},
      {ERROR_READ_FAULT, EIO},
      {ERROR_SHARING_VIOLATION, ETXTBSY},
      {ERROR_FILE_EXISTS, EEXIST},
      {ERROR_INVALID_PARAMETER, EINVAL},
      {ERROR_DISK_FULL, ENOSPC},
      {ERROR_DIR_NOT_EMPTY, ENOTEMPTY},
      {ERROR_BUSY, EBUSY},
      {ERROR_ALREADY_EXISTS, EEXIST},
      {ERROR_FILENAME_EXCED_RANGE, ENAMETOOLONG},
      {ERROR_DIRECTORY, ENOTDIR},
      {ERROR_IO_DEVICE, EIO},
      {ERROR_DISK_QUOTA_EXCEEDED, EDQUOT},
      {ERROR_CANT_RESOLVE_FILENAME, ELOOP},
  };
  for (const Row &row : rows) EXPECT_EQ(Message(row.code), CText(row.error) + "\r\n") << row.code;
}

// Every error that the errno table can give has a text.
TEST_F(SystemMessages, EveryMappedErrorHasAText) {
  const int errors[] = {ENOENT,       ENOTDIR,   EACCES,       EPERM,       EISDIR,       EEXIST,
                        ENOTEMPTY,    ENOSPC,    EDQUOT,       EROFS,       ENAMETOOLONG, ELOOP,
                        EXDEV,        EBUSY,     ETXTBSY,      EMFILE,      ENFILE,       ENOMEM,
                        EINVAL,       EBADF,     EIO,          EPROTO,      ENOTCONN,     ECONNRESET,
                        ECONNABORTED, EHOSTDOWN, EHOSTUNREACH, ENETUNREACH, ECONNREFUSED, ETIMEDOUT};
  for (int error : errors) EXPECT_EQ(Message(ErrorFromErrno(error)).find("<none"), std::string::npos) << error;
}

// Codes without an errno have texts of their own, in the language of the messages locale.
TEST_F(SystemMessages, OwnTextsByLanguage) {
  struct Row {
    const char *all, *messages, *lang;
    std::string text;
  } rows[] = {
      {nullptr, nullptr, "C", "There are no more files.\r\n"},
      {nullptr, nullptr, nullptr, "There are no more files.\r\n"},
      {nullptr, nullptr, "ja_JP.UTF-8", "これ以上ファイルはありません。\r\n"},
      {nullptr, "ja_JP.UTF-8", "C", "これ以上ファイルはありません。\r\n"},
      {"C", "ja_JP.UTF-8", "ja_JP.UTF-8", "There are no more files.\r\n"},
      {"ja_JP.eucJP", nullptr, nullptr, "これ以上ファイルはありません。\r\n"},
      {nullptr, "", "ja_JP.UTF-8", "これ以上ファイルはありません。\r\n"},  // an empty variable counts as unset
  };
  for (const Row &row : rows) {
    Environment(row.all, row.messages, row.lang);
    std::string text = Message(ERROR_NO_MORE_FILES);
    EXPECT_EQ(text, row.text) << (row.all ? row.all : "-") << " " << (row.messages ? row.messages : "-") << " "
                              << (row.lang ? row.lang : "-") << "\n"
                              << Hex(text);
  }
}

// In a Japanese locale the C library's own translation comes through, as Shift-JIS; the process's locale is not
// touched on the way.
TEST_F(SystemMessages, LocaleTranslation) {
  locale_t ja = newlocale(LC_ALL_MASK, "ja_JP.UTF-8", static_cast<locale_t>(0));
  if (ja == static_cast<locale_t>(0)) GTEST_SKIP() << "the ja_JP.UTF-8 locale is not installed";
  std::string utf8 = strerror_l(EACCES, ja);
  freelocale(ja);
  if (utf8 == CText(EACCES)) GTEST_SKIP() << "the C library has no Japanese messages here";
  std::string before = setlocale(LC_ALL, nullptr);
  Environment(nullptr, "ja_JP.UTF-8", "C");
  EXPECT_EQ(Hex(Message(ERROR_ACCESS_DENIED)), Hex(Utf8ToCp932(utf8) + "\r\n"));
  EXPECT_EQ(setlocale(LC_ALL, nullptr), before);
}

TEST_F(SystemMessages, UnknownCodesAndSources) {
  EXPECT_EQ(Message(0), "<none 317>");
  EXPECT_EQ(Message(9999), "<none 317>");
  EXPECT_EQ(Message(ERROR_INTERNET_EXTENDED_ERROR | 1), "<none 317>");
  // No module has a message table of its own.
  EXPECT_EQ(Message(ERROR_ACCESS_DENIED, FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_HMODULE), "<none 317>");
  EXPECT_EQ(Message(ERROR_ACCESS_DENIED, kAllocateFromSystem | FORMAT_MESSAGE_FROM_HMODULE), CText(EACCES) + "\r\n");
}

TEST_F(SystemMessages, Inserts) {
  const DWORD withArray = kAllocateFromSystem | FORMAT_MESSAGE_ARGUMENT_ARRAY;
  EXPECT_EQ(Message(ERROR_INVALID_NAME, withArray, "a?b.txt"), "The name a?b.txt is not valid.\r\n");
  EXPECT_EQ(Message(ERROR_INVALID_NAME, withArray | FORMAT_MESSAGE_IGNORE_INSERTS, "x"),
            "The name %1 is not valid.\r\n");
  EXPECT_EQ(Message(ERROR_INVALID_NAME), "The name %1 is not valid.\r\n");
  Environment(nullptr, nullptr, "ja_JP.UTF-8");
  EXPECT_EQ(Message(ERROR_INVALID_NAME, withArray, "表.txt"), "名前 表.txt は使えません。\r\n");
}

TEST_F(SystemMessages, CallersBuffer) {
  const std::string expected = CText(EACCES) + "\r\n";
  char buffer[128];
  SetLastError(0);
  DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, ERROR_ACCESS_DENIED, 0, buffer,
                                static_cast<DWORD>(expected.size() + 1), nullptr);
  EXPECT_EQ(length, expected.size());
  EXPECT_EQ(std::string(buffer), expected);
  length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, ERROR_ACCESS_DENIED, 0, buffer,
                          static_cast<DWORD>(expected.size()), nullptr);
  EXPECT_EQ(length, 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
}

TEST_F(SystemMessages, LeavesErrnoAlone) {
  errno = ERANGE;
  Message(ERROR_ACCESS_DENIED);
  Message(9999);
  EXPECT_EQ(errno, ERANGE);
}

TEST(Libraries, NothingIsLoaded) {
  SetLastError(0);
  EXPECT_EQ(LoadLibraryA("WININET.DLL"), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
  EXPECT_TRUE(FreeLibrary(nullptr));
  DWORD error = 99, length = 16;
  char buffer[16] = "old";
  EXPECT_TRUE(InternetGetLastResponseInfoA(&error, buffer, &length));
  EXPECT_EQ(error, 0u);
  EXPECT_EQ(length, 0u);
  EXPECT_STREQ(buffer, "");
}

}  // namespace
