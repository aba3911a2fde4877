// File operations with one error policy. Every wrapper has the same shape: make a network path real (a place of the
// network view with no real form is answered at once), SetKeptLastError(0), the system call, CaptureLastError at once,
// put the path back, move the change counter for calls that change the disk, then keep the captured error and set the
// run-time error number from it.
#include "files/file_operations.h"

#include <cstring>

#include "files/error_numbers.h"
#include "files/path_views.h"
#include "files/program_files.h"
#include "machine/drive_inventory.h"
#include "machine/known_folders.h"
#include "machine/network_paths.h"
#include "reports/error_reporter.h"
#include "reports/last_error.h"
#include "reports/memory_reports.h"
#include "resources/message_ids.h"
#include "text/memory_blocks.h"
#include "text/path_strings.h"
#include "text/tokens.h"

namespace {

int changeCounter = 0;

// The signatures that SHGetFileInfoA gives in the low word of its answer: "PE", "NE" and "MZ" as little-endian words.
const unsigned kPortableSignature = 0x4550;
const unsigned kNewSignature = 0x454E;
const unsigned kDosSignature = 0x5A4D;

// The folder whose virtual-store twin a failed delete tries. Nothing sets it yet; while it is empty, that branch is
// not taken.
char deleteFolderHint[kPathSize] = "";

typedef BOOL(WINAPI *GetFileSizeExCall)(HANDLE, PLARGE_INTEGER);
// Looked up by name at the first need, as the oldest systems lack it; while empty, looked up again at the next call.
GetFileSizeExCall fileSizeEx = nullptr;

// Title of the access question for a refused delete or remove.
const UINT kDeleteTitleId = kMsgDeleteTitle;
const UINT kWarningStyle = MB_ICONEXCLAMATION;

void MoveChangeCounter(int success) {
  // Unsigned arithmetic: the counter wraps instead of overflowing, and from then on only falls.
  unsigned value = static_cast<unsigned>(changeCounter);
  if (changeCounter < 0)
    value -= 1;
  else if (success)
    value += 1;
  else
    value = 0;
  changeCounter = static_cast<int>(value);
}

// A null path is read as an empty one, which the system calls answer as a path that is not there.
char emptyPath[1] = "";
char *OrEmpty(char *path) { return path != nullptr ? path : emptyPath; }

void CopyPath(char *dest, const char *src) {
  std::strncpy(dest, src, kPathSize - 1);
  dest[kPathSize - 1] = 0;
}

// One delete or remove attempt and the access question that a refusal brings. Result: the call's success; *error gets
// the captured error and *claimed whether the question settled the outcome.
int AttemptRemoval(const char *target, const char *shownPath, int folder, DWORD *error, int *claimed) {
  SetKeptLastError(0);
  BOOL done = folder ? RemoveDirectoryA(target) : DeleteFileA(target);
  *error = CaptureLastError();
  *claimed =
      ReportAccessProblem(*error, nullptr, shownPath, GetModuleHandleA(nullptr), kDeleteTitleId, kWarningStyle) == 1;
  return done ? 1 : 0;
}

// The second try of a failed delete or remove: on the twin of `folder` under the user's virtual store, joined with
// `name` when one is given. Result: 1 when a twin was there and the try succeeded (the error is then cleared).
int RemoveVirtualStoreTwin(const char *folder, const char *name, const char *shownPath, int isFolder, DWORD *error) {
  HGLOBAL handle = 0;
  char *twin = AcquireBlock(&handle, nullptr, kPathSize, nullptr);
  if (twin == nullptr) return 0;
  int done = 0;
  if (FindVirtualStoreTwin(0, folder, twin) == 1) {
    HGLOBAL nameHandle = 0;
    char *nameCopy = name != nullptr ? AcquireBlock(&nameHandle, nullptr, kPathSize, nullptr) : nullptr;
    if (nameCopy != nullptr) {
      CopyPath(nameCopy, name);
      JoinPath(nullptr, twin, nameCopy);
    }
    if (name == nullptr || nameCopy != nullptr) {
      int claimed = 0;
      done = AttemptRemoval(twin, shownPath, isFolder, error, &claimed);
      if (done) *error = 0;
    }
    ReleaseBlock(nameHandle, nameCopy);
  }
  ReleaseBlock(handle, twin);
  return done;
}

}  // namespace

unsigned long long GetFileSize64(HANDLE file) {
  if (fileSizeEx == nullptr) {
    HMODULE kernel = GetModuleHandleA("KERNEL32.DLL");
    if (kernel != nullptr)
      fileSizeEx =
          reinterpret_cast<GetFileSizeExCall>(reinterpret_cast<void *>(GetProcAddress(kernel, "GetFileSizeEx")));
  }
  unsigned long long size = ~0ull;
  SetKeptLastError(0);
  if (fileSizeEx != nullptr) {
    LARGE_INTEGER value;
    BOOL done = fileSizeEx(file, &value);
    DWORD error = CaptureLastError();
    if (done) size = static_cast<unsigned long long>(value.QuadPart);
    SettleErrors(error);
    return size;
  }
  // The old call stands in with a high half of 0; a low half with all bits set counts as failure.
  DWORD low = GetFileSize(file, nullptr);
  DWORD error = CaptureLastError();
  if (low != INVALID_FILE_SIZE) size = low;
  SettleErrors(error);
  return size;
}

int CloseFileHandle(HANDLE file) {
  SetKeptLastError(0);
  BOOL done = CloseHandle(file);
  SettleErrors(CaptureLastError());
  return done ? 0 : 1;
}

int ReadFileBlock(HANDLE file, void *buffer, DWORD count) {
  DWORD read = 0;
  SetKeptLastError(0);
  BOOL done = ReadFile(file, buffer, count, &read, nullptr);
  SettleErrors(CaptureLastError());
  return done ? static_cast<int>(read) : -1;
}

HANDLE CreateFileOn(char *path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                    DWORD attributes, HANDLE templateFile) {
  UnquotedPath unquoted = Unquote(OrEmpty(path));
  RealPath real;
  if (!MakeRealPath(unquoted.text, &real)) {
    // No file can be opened at a place of the network view; tell the caller so rather than leave an old error.
    Requote(unquoted);
    SettleErrors(ERROR_PATH_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
  }
  if (attributes == 0xFFFFFFFFu) {
    DWORD present = 0;
    attributes = GetPathAttributes(real.text, &present) == 0 ? present : FILE_ATTRIBUTE_NORMAL;
  }
  SetKeptLastError(0);
  HANDLE file = CreateFileA(real.text, access, share, security, disposition, attributes, templateFile);
  DWORD error = CaptureLastError();
  RestoreRealPath(real);
  Requote(unquoted);
  SettleErrors(error);
  return file;
}

HANDLE OpenPath(char *path, DWORD access, DWORD share, DWORD disposition, DWORD attributes) {
  if (path == nullptr) return INVALID_HANDLE_VALUE;
  StripOuterQuotes(path);
  RealPath real;
  if (!MakeRealPath(path, &real)) return INVALID_HANDLE_VALUE;
  HGLOBAL handle = 0;
  char *copy = AcquireBlock(&handle, nullptr, kPathSize, nullptr);
  if (copy != nullptr) CopyPath(copy, real.text);
  RestoreRealPath(real);
  if (copy == nullptr) return INVALID_HANDLE_VALUE;
  HANDLE file = CreateFileOn(copy, access, share, nullptr, disposition, attributes, nullptr);
  ReleaseBlock(handle, copy);
  return file;
}

int SearchForFile(char *name, char *out, DWORD outSize) {
  if (name == nullptr || *name == 0) return kSearchNotFound;
  RealPath real;
  if (!MakeRealPath(name, &real)) return kSearchFound;
  if (!IsNetworkPath(name) && FindCharacter(name, '\\') != nullptr) {
    // Deliberately the root of the first letter whatever the name looks like: a relative "a\b" asks for "a:\".
    char root[4] = {name[0], ':', '\\', 0};
    if (PathAccessible(root) != 0) return kSearchNoDrive;
  }
  HGLOBAL handle = 0;
  char *copy = AcquireBlock(&handle, nullptr, kPathSize, nullptr);
  if (copy == nullptr) {
    RestoreRealPath(real);
    return kSearchNotFound;
  }
  CopyPath(copy, real.text);
  RestoreRealPath(real);
  char *filePart = nullptr;
  SetKeptLastError(0);
  DWORD length = SearchPathA(nullptr, copy, nullptr, outSize, out, &filePart);
  SettleErrors(CaptureLastError());
  ReleaseBlock(handle, copy);
  if (length != 0 && length < outSize) return kSearchFound;
  if (IsProgramFileName(name)) return kSearchNotFound;
  // A name that is no program is taken as a path of its own: found if it is there.
  if (outSize > 0) {
    std::strncpy(out, name, outSize - 1);
    out[outSize - 1] = 0;
  }
  return PathAccessible(name) == 0 ? kSearchFound : kSearchNotFound;
}

int DeleteFilePath(char *path) {
  HGLOBAL handle = 0;
  char *copy = AcquireBlock(&handle, nullptr, kPathSize, nullptr);
  if (copy == nullptr) return 1;
  CopyPath(copy, path != nullptr ? path : "");
  StripOuterQuotes(copy);
  RealPath real;
  if (!MakeRealPath(copy, &real)) {
    ReleaseBlock(handle, copy);
    MoveChangeCounter(1);
    ClearErrors();
    return 0;
  }
  DWORD error = 0;
  int claimed = 0;
  int done = AttemptRemoval(real.text, path, 0, &error, &claimed);
  if (!done && !claimed && error != ERROR_SHARING_VIOLATION)
    done = RemoveVirtualStoreTwin(deleteFolderHint, SplitFileName(nullptr, real.text), path, 0, &error);
  ReleaseBlock(handle, copy);
  MoveChangeCounter(done);
  SettleErrors(error);
  return done ? 0 : 1;
}

int DeleteIfPresent(char *path) {
  if (path == nullptr || *path == 0) {
    ClearErrors();
    return 1;
  }
  RealPath real;
  if (!MakeRealPath(path, &real)) return 0;
  RestoreRealPath(real);
  if (PathAccessible(path) != 0) return 0;
  return DeleteFilePath(path);
}

int MovePath(char *oldPath, char *newPath) {
  oldPath = OrEmpty(oldPath);
  newPath = OrEmpty(newPath);
  RealPath from, to;
  // Deliberately no restore of the first path when the second has no real form: no caller passes a place of the
  // view as the target, and the first edit is left standing as it always was.
  if (!MakeRealPath(oldPath, &from)) return 0;
  if (!MakeRealPath(newPath, &to)) return 0;
  SetKeptLastError(0);
  BOOL done = MoveFileA(from.text, to.text);
  DWORD error = CaptureLastError();
  RestoreRealPath(to);
  RestoreRealPath(from);
  MoveChangeCounter(done ? 1 : 0);
  SettleErrors(error);
  return done ? 0 : 1;
}

int RemoveFolderPath(char *path) {
  path = OrEmpty(path);
  RealPath real;
  if (!MakeRealPath(path, &real)) {
    MoveChangeCounter(1);
    ClearErrors();
    return 0;
  }
  DWORD error = 0;
  int claimed = 0;
  int done = AttemptRemoval(real.text, path, 1, &error, &claimed);
  // Unlike a file, a folder's twin is tried on every failure that the question left open, a sharing violation too.
  if (!done && !claimed) done = RemoveVirtualStoreTwin(real.text, nullptr, path, 1, &error);
  RestoreRealPath(real);
  MoveChangeCounter(done);
  SettleErrors(error);
  return done ? 0 : 1;
}

int GetPathAttributes(char *path, DWORD *attributes) {
  path = OrEmpty(path);
  RealPath real;
  if (!MakeRealPath(path, &real)) {
    *attributes = FILE_ATTRIBUTE_DIRECTORY;
    return 0;
  }
  SetKeptLastError(0);
  DWORD value = GetFileAttributesA(real.text);
  DWORD error = CaptureLastError();
  RestoreRealPath(real);
  SettleErrors(error);
  *attributes = value;
  return value == INVALID_FILE_ATTRIBUTES ? 1 : 0;
}

int SetPathAttributes(char *path, DWORD attributes) {
  // Zero would be refused by some systems; "no attributes" is FILE_ATTRIBUTE_NORMAL.
  if (attributes == 0) attributes = FILE_ATTRIBUTE_NORMAL;
  path = OrEmpty(path);
  RealPath real;
  if (!MakeRealPath(path, &real)) return 0;
  // Deliberately left in its real form when the path is not there: nothing is changed, and the callers drop the path.
  if (PathAccessible(real.text) != 0) return 0;
  SetKeptLastError(0);
  BOOL done = SetFileAttributesA(real.text, attributes);
  DWORD error = CaptureLastError();
  RestoreRealPath(real);
  MoveChangeCounter(done ? 1 : 0);
  SettleErrors(error);
  return done ? 0 : 1;
}

int PathAccessible(char *path) {
  if (path == nullptr || *path == 0) {
    SetRunTimeError(2);
    return -1;
  }
  UnquotedPath unquoted = Unquote(path);
  RealPath real;
  int result = 0;
  if (MakeRealPath(unquoted.text, &real)) {
    result = _access(real.text, 0) == 0 ? 0 : -1;
    RestoreRealPath(real);
  }
  Requote(unquoted);
  return result;
}

int PathKind(char *path) {
  if (path == nullptr || *path == 0) return kPathEmpty;
  DWORD kept = GetKeptLastError();
  UnquotedPath unquoted = Unquote(path);
  // A share by itself counts as a real place here, so that it is a folder and not a name of the network view.
  SetNetworkLevelMask(kNetShareNamed);
  int kind = kPathNothing;
  DWORD attributes = 0;
  if (*unquoted.text != 0 && PathAccessible(unquoted.text) == 0 && GetPathAttributes(unquoted.text, &attributes) == 0)
    kind = (attributes & FILE_ATTRIBUTE_DIRECTORY) ? kPathFolder : kPathFile;
  SetNetworkLevelMask(0);
  Requote(unquoted);
  SetKeptLastError(kept);
  return kind;
}

int ExecutableKind(const char *path) {
  SHFILEINFOA info;
  std::memset(&info, 0, sizeof info);
  DWORD_PTR answer = SHGetFileInfoA(path, 0, &info, sizeof info, SHGFI_EXETYPE);
  if (answer == 0) return -1;
  unsigned low = static_cast<unsigned>(answer & 0xFFFF);
  unsigned high = static_cast<unsigned>((answer >> 16) & 0xFFFF);
  if (high != 0) return (low == kPortableSignature || low == kNewSignature) ? 0 : -1;
  if (low == kPortableSignature) return 1;
  if (low == kDosSignature) return 2;
  return -1;
}

int IsWindowsProgram(char *path) {
  if (path == nullptr || *path == 0 || PathKind(path) != kPathFile) return -3;
  switch (ExecutableKind(path)) {
    case -1:
      return -1;
    case 0:
      return 1;
    default:
      return 0;
  }
}
