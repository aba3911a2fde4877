// The errno table of the Linux backend.
#include "platform/posix/files/error_codes.h"

#include <cerrno>

namespace {

struct ErrnoRow {
  int error;
  DWORD windows;
};

// One row per errno that a file call can meet; where Windows has a closer word than "access denied" (a read-only
// volume, a quota), it is that word, as a Windows volume of the same kind would answer.
const ErrnoRow kErrnoRows[] = {
    {0, 0},
    {ENOENT, ERROR_FILE_NOT_FOUND},
    {ENOTDIR, ERROR_PATH_NOT_FOUND},
    {EACCES, ERROR_ACCESS_DENIED},
    {EPERM, ERROR_ACCESS_DENIED},
    {EISDIR, ERROR_ACCESS_DENIED},
    {EEXIST, ERROR_ALREADY_EXISTS},
    {ENOTEMPTY, ERROR_DIR_NOT_EMPTY},
    {ENOSPC, ERROR_DISK_FULL},
    {EDQUOT, ERROR_DISK_QUOTA_EXCEEDED},
    {EROFS, ERROR_WRITE_PROTECT},
    {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    {ELOOP, ERROR_CANT_RESOLVE_FILENAME},
    {EXDEV, ERROR_NOT_SAME_DEVICE},
    {EBUSY, ERROR_BUSY},
    {ETXTBSY, ERROR_SHARING_VIOLATION},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {EINVAL, ERROR_INVALID_PARAMETER},
    {EBADF, ERROR_INVALID_HANDLE},
    {EIO, ERROR_IO_DEVICE},
    // A share whose server cannot be reached any more answers with the network's words, which the engine knows for
    // network errors: a lost connection, a server that is down or out of reach, a refusal, a time-out.
    {ENOTCONN, ERROR_NETNAME_DELETED},
    {ECONNRESET, ERROR_NETNAME_DELETED},
    {ECONNABORTED, ERROR_NETNAME_DELETED},
    {EHOSTDOWN, ERROR_BAD_NETPATH},
    {EHOSTUNREACH, ERROR_BAD_NETPATH},
    {ENETUNREACH, ERROR_NETWORK_UNREACHABLE},
    {ECONNREFUSED, ERROR_CONNECTION_REFUSED},
    {ETIMEDOUT, ERROR_SEM_TIMEOUT},
};

}  // namespace

DWORD ErrorFromErrno(int error) {
  for (const ErrnoRow &row : kErrnoRows)
    if (row.error == error) return row.windows;
  return ERROR_GEN_FAILURE;
}
