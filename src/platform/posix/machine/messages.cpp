// System texts of the Linux backend (FormatMessageA, LocalFree), and the libraries that Windows would load for more of
// them (LoadLibraryA, FreeLibrary, InternetGetLastResponseInfoA): there are none on Linux, only the system modules
// that every process has.
#include <langinfo.h>
#include <locale.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/posix/text/charset.h"
#include "platform/winapi.h"

namespace {

// One row per error that the backend leaves as its last error. `error` is the errno whose text the C library has for
// it; 0 where no errno says the same thing, and then the row's own texts stand. Where two errnos could serve, the one
// that the backend's own failures come from is chosen: a missing folder on the way is ENOENT, not ENOTDIR; a read
// or write that failed at the device is EIO.
struct MessageRow {
  DWORD code;
  int error;
  const char *english;
  const char *japanese;
};

const MessageRow kMessageRows[] = {
    {ERROR_INVALID_FUNCTION, 0, "This operation is not possible here.", "この操作はできません。"},
    {ERROR_FILE_NOT_FOUND, ENOENT, nullptr, nullptr},
    {ERROR_PATH_NOT_FOUND, ENOENT, nullptr, nullptr},
    {ERROR_TOO_MANY_OPEN_FILES, EMFILE, nullptr, nullptr},
    {ERROR_ACCESS_DENIED, EACCES, nullptr, nullptr},
    {ERROR_INVALID_HANDLE, EBADF, nullptr, nullptr},
    {ERROR_NOT_ENOUGH_MEMORY, ENOMEM, nullptr, nullptr},
    {ERROR_OUTOFMEMORY, ENOMEM, nullptr, nullptr},
    {ERROR_NOT_SAME_DEVICE, EXDEV, nullptr, nullptr},
    {ERROR_NO_MORE_FILES, 0, "There are no more files.", "これ以上ファイルはありません。"},
    {ERROR_WRITE_PROTECT, EROFS, nullptr, nullptr},
    {ERROR_BAD_LENGTH, 0, "The length is not valid.", "長さが正しくありません。"},
    {ERROR_WRITE_FAULT, EIO, nullptr, nullptr},
    {ERROR_READ_FAULT, EIO, nullptr, nullptr},
    {ERROR_GEN_FAILURE, 0, "The system call failed.", "システムの呼び出しに失敗しました。"},
    {ERROR_SHARING_VIOLATION, ETXTBSY, nullptr, nullptr},
    {ERROR_BAD_NETPATH, 0, "The network path is not there.", "ネットワークのパスが見つかりません。"},
    {ERROR_NETNAME_DELETED, ENOTCONN, nullptr, nullptr},
    {ERROR_FILE_EXISTS, EEXIST, nullptr, nullptr},
    {ERROR_INVALID_PARAMETER, EINVAL, nullptr, nullptr},
    {ERROR_DISK_FULL, ENOSPC, nullptr, nullptr},
    {ERROR_SEM_TIMEOUT, ETIMEDOUT, nullptr, nullptr},
    {ERROR_INSUFFICIENT_BUFFER, 0, "The buffer is too small.", "バッファーが小さすぎます。"},
    // The one text with a place for the name of the object: a name is refused for its form, not for what it names.
    {ERROR_INVALID_NAME, 0, "The name %1 is not valid.", "名前 %1 は使えません。"},
    {ERROR_MOD_NOT_FOUND, 0, "The library is not there.", "ライブラリが見つかりません。"},
    {ERROR_PROC_NOT_FOUND, 0, "The operation is not there.", "操作が見つかりません。"},
    {ERROR_DIR_NOT_ROOT, 0, "The folder is not below a root.", "ルートの下のフォルダーではありません。"},
    {ERROR_DIR_NOT_EMPTY, ENOTEMPTY, nullptr, nullptr},
    {ERROR_BUSY, EBUSY, nullptr, nullptr},
    {ERROR_ALREADY_EXISTS, EEXIST, nullptr, nullptr},
    {ERROR_ENVVAR_NOT_FOUND, 0, "The environment variable is not set.", "環境変数がありません。"},
    {ERROR_FILENAME_EXCED_RANGE, ENAMETOOLONG, nullptr, nullptr},
    {ERROR_MORE_DATA, 0, "More data is there.", "データがまだあります。"},
    {ERROR_DIRECTORY, ENOTDIR, nullptr, nullptr},
    {ERROR_IO_DEVICE, EIO, nullptr, nullptr},
    {ERROR_CONNECTION_REFUSED, ECONNREFUSED, nullptr, nullptr},
    {ERROR_NETWORK_UNREACHABLE, ENETUNREACH, nullptr, nullptr},
    {ERROR_DISK_QUOTA_EXCEEDED, EDQUOT, nullptr, nullptr},
    {ERROR_CANT_RESOLVE_FILENAME, ELOOP, nullptr, nullptr},
};

const MessageRow *FindRow(DWORD code) {
  for (const MessageRow &row : kMessageRows)
    if (row.code == code) return &row;
  return nullptr;
}

// The locale that messages are told in, by the variables that the C library reads for LC_MESSAGES.
std::string MessagesLocaleName() {
  static const char *const kVariables[] = {"LC_ALL", "LC_MESSAGES", "LANG"};
  for (const char *variable : kVariables) {
    const char *value = std::getenv(variable);
    if (value != nullptr && *value != 0) return value;
  }
  return "C";
}

// The C library's text for `error` in the messages locale, in Shift-JIS. The locale is an object of its own, so the
// process's locale stays as it is; its character type comes from the same name, so that the text is given in that
// locale's charset, which is then converted.
std::string ErrnoText(int error, const std::string &localeName) {
  locale_t locale = newlocale(LC_MESSAGES_MASK | LC_CTYPE_MASK, localeName.c_str(), static_cast<locale_t>(0));
  if (locale == static_cast<locale_t>(0))
    locale = newlocale(LC_MESSAGES_MASK | LC_CTYPE_MASK, "C", static_cast<locale_t>(0));
  if (locale == static_cast<locale_t>(0)) return std::strerror(error);
  std::string text = strerror_l(error, locale);
  std::string converted = CharsetToCp932(text, nl_langinfo_l(CODESET, locale));
  freelocale(locale);
  return converted;
}

std::string RowText(const MessageRow &row) {
  std::string localeName = MessagesLocaleName();
  if (row.error != 0) return ErrnoText(row.error, localeName);
  return localeName.compare(0, 2, "ja") == 0 ? row.japanese : row.english;
}

// "%1" to "%99" from the argument array; every other byte as it stands.
std::string InsertArguments(const std::string &text, const char *const *arguments) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9') {
      size_t number = static_cast<size_t>(text[i + 1] - '0');
      size_t next = i + 2;
      if (next < text.size() && text[next] >= '0' && text[next] <= '9') number = number * 10 + (text[next++] - '0');
      const char *argument = arguments[number - 1];
      if (argument != nullptr) out += argument;
      i = next - 1;
      continue;
    }
    out += text[i];
  }
  return out;
}

DWORD FormatMessageWork(DWORD flags, DWORD messageId, LPSTR buffer, DWORD size, va_list *arguments) {
  const MessageRow *row = (flags & FORMAT_MESSAGE_FROM_SYSTEM) ? FindRow(messageId) : nullptr;
  if (row == nullptr) {
    SetLastError(ERROR_MR_MID_NOT_FOUND);
    return 0;
  }
  std::string text = RowText(*row);
  if ((flags & FORMAT_MESSAGE_ARGUMENT_ARRAY) && !(flags & FORMAT_MESSAGE_IGNORE_INSERTS) && arguments != nullptr)
    text = InsertArguments(text, reinterpret_cast<const char *const *>(arguments));
  text += "\r\n";
  if (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) {
    char *memory = static_cast<char *>(std::malloc(text.size() + 1));
    if (memory == nullptr) {
      SetLastError(ERROR_NOT_ENOUGH_MEMORY);
      return 0;
    }
    std::memcpy(memory, text.c_str(), text.size() + 1);
    *reinterpret_cast<char **>(buffer) = memory;
  } else {
    if (buffer == nullptr || text.size() + 1 > size) {
      SetLastError(ERROR_INSUFFICIENT_BUFFER);
      return 0;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
  }
  return static_cast<DWORD>(text.size());
}

}  // namespace

DWORD FormatMessageA(DWORD flags, LPCVOID, DWORD messageId, DWORD, LPSTR buffer, DWORD size, va_list *arguments) {
  int savedErrno = errno;
  DWORD length = FormatMessageWork(flags, messageId, buffer, size, arguments);
  errno = savedErrno;
  return length;
}

HLOCAL LocalFree(HLOCAL memory) {
  std::free(memory);
  return nullptr;
}

HMODULE LoadLibraryA(LPCSTR name) {
  static const char *const kSystemModules[] = {"ntdll.dll", "ntdll", "kernel32.dll", "kernel32"};
  if (name != nullptr)
    for (const char *module : kSystemModules)
      if (lstrcmpiA(name, module) == 0) return GetModuleHandleA(name);
  SetLastError(ERROR_MOD_NOT_FOUND);
  return nullptr;
}

BOOL FreeLibrary(HMODULE) { return TRUE; }

BOOL InternetGetLastResponseInfoA(DWORD *error, LPSTR buffer, DWORD *length) {
  if (error != nullptr) *error = 0;
  if (buffer != nullptr && length != nullptr && *length > 0) buffer[0] = 0;
  if (length != nullptr) *length = 0;
  return TRUE;
}
