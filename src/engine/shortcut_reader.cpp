// The shortcut reader. A .lnk file is read through a shell link object; a .pif file (which the walk's "*.lnk" mask
// does not bring here) is read as a bag of strings, from which what looks like a program path is picked.
#include "engine/shortcut_reader.h"

#include <cstdio>
#include <cstring>

#include "engine/shell_link_api.h"
#include "files/exact_names.h"
#include "files/file_operations.h"
#include "machine/drive_inventory.h"
#include "machine/environment_strings.h"
#include "machine/network_paths.h"
#include "reports/error_reporter.h"
#include "reports/memory_reports.h"
#include "resources/message_ids.h"
#include "text/memory_blocks.h"
#include "text/myjctype.h"
#include "text/path_strings.h"
#include "text/quoted_args.h"
#include "text/tokens.h"

namespace {

unsigned readMode = 0;
int skipResolve = 0;
int quietReader = 0;
// Slot 0 the working folder, slot 1 the shortcut being processed; slot 2 is released with them and nothing fills it.
HGLOBAL keptHandles[3];
char *keptTexts[3];
int keepRawWorkingFolder = 0;
DWORD targetAttributes = 0;

void CopyText(char *dest, const char *src) { std::snprintf(dest, kPathSize, "%s", src); }

// A missing target's text: what shape it has, and whether it is set aside as the raw target.
unsigned ClassifyMissingTarget(char *rawTarget, char *target) {
  TrimLeadingSpace(target);
  TrimTrailingSpace(target);
  if (*target == 0) return 0;
  int code = LocateTarget(target);
  if (code == kTargetNoDrive || code == kTargetNotFound || PathKind(target) == kPathNothing) {
    int shape = ClassifyPathShape(target, kPathNothing);
    if (shape == kPathNothing) return 0;
    CopyText(rawTarget, target);
    target[0] = 0;
    if (code == kTargetNoDrive) return kReadMissingDriveShape;
    if (shape == kPathFile) return kReadMissingFileShape;
    if (shape == kPathFolder) return kReadMissingFolderShape;
    if (code == kTargetFoundRespelled) return kReadNoShortcut;
    return 0;
  }
  int kind = PathKind(target);
  unsigned result = 0;
  if (IsUncPrefix(target)) {
    CopyText(rawTarget, target);
    target[0] = 0;
    result = (kind & kPathFolder) ? kReadMissingFolderShape : kReadMissingFileShape;
  }
  if (kind == kPathFile) result += kReadTargetFile;
  if (kind == kPathFolder && FindCharacter(target, '\\') != nullptr) result += kReadTargetFolder;
  return result;
}

// A bare target name is joined to the working folder; a target on a missing drive is reported (unless quiet) and
// delivered as stored.
void RepairTargetText(HWND window, const char *workingFolder, const char *rawTarget, unsigned localMode,
                      unsigned status, char *result) {
  if ((status & kReadTargetFile) && *result != 0 && FindCharacter(result, '\\') == nullptr) {
    char folder[kPathSize];
    CopyText(folder, workingFolder);
    JoinPath(result, folder, result);
  }
  if (*rawTarget != 0 && (status & kReadMissingDrive)) {
    if ((localMode & kReadModeSearchesAll) && !quietReader) ReportMissingLinkTarget(window, rawTarget);
    CopyText(result, rawTarget);
  }
}

// The whole of a file in a zeroed block of its size plus 2, or null (not a file, a program, unreadable).
HGLOBAL ReadWholeFile(char *path, unsigned long long *sizeOut) {
  *sizeOut = 0;
  if (PathKind(path) != kPathFile) return nullptr;
  SHFILEINFOA info;
  std::memset(&info, 0, sizeof info);
  if (SHGetFileInfoA(path, 0, &info, sizeof info, SHGFI_EXETYPE) != 0) return nullptr;
  HANDLE file = OpenPath(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0);
  if (file == INVALID_HANDLE_VALUE) return nullptr;
  unsigned long long size = GetFileSize64(file);
  if (size == ~0ull || size > 0xFFFFFFFEull) {
    CloseFileHandle(file);
    return nullptr;
  }
  HGLOBAL block = GlobalAlloc(GHND, static_cast<SIZE_T>(size + 2));
  char *bytes = block ? static_cast<char *>(GlobalLock(block)) : nullptr;
  int read = bytes ? ReadFileBlock(file, bytes, static_cast<DWORD>(size)) : -1;
  if (block) GlobalUnlock(block);
  CloseFileHandle(file);
  if (read < 0) {
    if (block) GlobalFree(block);
    return nullptr;
  }
  *sizeOut = size;
  return block;
}

// One string of a .pif file. Result: where the scan goes on (0 ends it).
size_t ScanPifString(const char *string, char *path, char *folder, size_t position, unsigned *status, char *arguments) {
  char text[kPathSize];
  CopyText(text, string);
  TrimLeadingSpace(text);
  TrimTrailingSpace(text);
  if (text[0] == 0) return position - 1;
  if (!ReplaceUnprintable(text, 0) || std::strcmp(text, "-") == 0 || std::strcmp(text, "/") == 0) return position - 1;
  if (text[0] == '-' || text[0] == '/') {
    QuoteIfSpaced(text);
    if (arguments != nullptr) CopyText(arguments, text);
    return position - 1;
  }
  int kind = PathKind(text);
  if (kind == kPathNothing) {
    kind = ClassifyPathShape(text, kPathNothing);
    if (kind == kPathNothing) {
      *status |= kReadPifStringRefused;
      return position - 1;
    }
  }
  int code = LocateTarget(text);
  if (code == kTargetNoDrive) {
    *status |= kReadPifStringRefused;
    return 0;
  }
  if (code == kTargetFoundRespelled || code == kTargetFound || code == kTargetNotTested) QuoteIfSpaced(text);
  if (kind == kPathFile) {
    *status |= kReadShapeFile | kReadTargetFile;
    CopyText(path, text);
  } else if (kind == kPathFolder) {
    *status |= kReadShapeFolder | kReadTargetFolder;
    CopyText(folder, text);
  } else {
    *status |= kReadPifStringRefused;
  }
  return position - 1;
}

// Strings of a .pif file are visited from its end to its start, so the one nearest the start has the last word.
// Nothing of the file's structure is read.
unsigned ReadPif(char *result, char *workingFolder, char *arguments, unsigned status) {
  unsigned long long size = 0;
  HGLOBAL block = ReadWholeFile(result, &size);
  if (block == nullptr) return status;
  if (size == 0) {
    GlobalFree(block);
    return status | kReadEmptyPif;
  }
  char *bytes = static_cast<char *>(GlobalLock(block));
  for (size_t i = static_cast<size_t>(size); i != 0;) {
    if (bytes[i - 1] != 0)
      --i;
    else
      i = ScanPifString(bytes + i, result, workingFolder, i, &status, arguments);
  }
  GlobalUnlock(block);
  GlobalFree(block);
  return status;
}

// One read's blocks, outputs and running state, shared by its steps.
struct ShortcutRead {
  HWND window;
  char *path;  // the shortcut's own path as the caller gave it
  char *arguments;
  char *icon;
  char *description;
  int *showCmdOut;
  int *iconIndexOut;
  unsigned mode;
  unsigned localMode;  // the mode, with kReadModeIconFound added once the icon's file is found
  unsigned status;
  bool repair;   // false where the read ends without the repair of the target text
  char *result;  // the shortcut's own path in its real form, then what the read delivers as the path
  char *work;    // the text each shell call fills
  char *workingFolder;
  char *rawTarget;  // a missing target's text as stored
};

// The icon location; a found icon file also gives the icon index.
void ReadIcon(IShellLinkA *link, ShortcutRead &read) {
  char *work = read.work;
  int ignoredIndex = 0;
  work[0] = 0;
  if (SUCCEEDED(link->GetIconLocation(work, kPathSize, &ignoredIndex))) {
    if (read.icon != nullptr && work[0] != 0) CopyText(read.icon, work);
  } else {
    work[0] = 0;
  }
  if (work[0] == 0) return;
  int code = LocateTarget(work);
  if (code != kTargetFound && code != kTargetFoundRespelled) {
    if (code == kTargetNotTested) work[0] = 0;
    read.status = kReadIconMissing;
    return;
  }
  // The index passed on is the shell's reading of the shortcut file; the stored one is dropped.
  SHFILEINFOA info;
  std::memset(&info, 0, sizeof info);
  if (read.iconIndexOut != nullptr && SHGetFileInfoA(read.path, 0, &info, sizeof info, SHGFI_ICONLOCATION))
    *read.iconIndexOut = info.iIcon;
  if (read.mode & kReadModeIconAsResult) {
    read.localMode = kReadModeIconFound;
    CopyText(read.result, work);
  } else {
    read.localMode |= kReadModeIconFound;
  }
}

// The target path: its status bits and, found or not, the delivered path and the icon it stands in for. Result:
// false where the read ends here (no target path, or the icon's file taken as the result).
bool ReadTarget(IShellLinkA *link, ShortcutRead &read) {
  char *work = read.work;
  WIN32_FIND_DATAA found;
  std::memset(&found, 0, sizeof found);
  work[0] = 0;
  if (FAILED(link->GetPath(work, kPathSize, &found, SLGP_UNCPRIORITY))) work[0] = 0;
  if (work[0] == 0) {
    // No target path (a special folder): the path comes back as the shortcut's own.
    read.status |= kReadNoTarget;
    read.result[0] = 0;
    return false;
  }
  int code = LocateTarget(work);
  if (code == kTargetNotFound || code == kTargetNoDrive || code == kTargetNotTested) {
    read.status |= kReadTargetMissing;
    if (code == kTargetNoDrive) {
      CopyText(read.rawTarget, work);
      read.status |= kReadMissingDrive;
    }
    if (work[0] != 0) read.status |= ClassifyMissingTarget(read.rawTarget, work);
  } else {
    targetAttributes = found.dwFileAttributes;
    if (targetAttributes & FILE_ATTRIBUTE_DIRECTORY)
      read.status |= kReadTargetFolder;
    else if (targetAttributes != 0)
      read.status |= kReadTargetFile;
    else
      read.status |= kReadZeroAttributes;
  }
  // A local mode of exactly kReadModeIconFound: the icon's file was taken as the result.
  bool iconIsResult = read.localMode == kReadModeIconFound;
  if (!iconIsResult && work[0] != 0) CopyText(read.result, work);
  // A shortcut without an icon location gets its target as its icon, and is written back so.
  if (read.icon != nullptr && read.icon[0] == 0 && work[0] != 0) {
    CopyText(read.icon, work);
    if (read.status & kReadTargetMissing) read.status |= kReadIconMissing;
  }
  if (iconIsResult) read.repair = false;
  return !iconIsResult;
}

// The working folder, checked and kept in slot 0.
void ReadWorkingFolder(IShellLinkA *link, ShortcutRead &read) {
  char *workingFolder = read.workingFolder;
  if (FAILED(link->GetWorkingDirectory(workingFolder, kPathSize))) {
    workingFolder[0] = 0;
    if (read.mode & kReadModeIconAsResult) keepRawWorkingFolder = 1;
  }
  if (workingFolder[0] != 0) {
    int folderCode = LocateTarget(workingFolder);
    if (folderCode == kTargetNoDrive || folderCode == kTargetNotFound) {
      read.status |= kReadFolderMissing;
      keepRawWorkingFolder = 1;
    } else if (folderCode == kTargetNotTested || (read.mode & kReadModeIconAsResult)) {
      keepRawWorkingFolder = 1;
    }
  }
  // An empty working folder leaves slot 0 with what the processing put there before the read.
  SetKeptText(workingFolder, 0);
}

// The arguments, the working folder, the description and the show command.
void ReadRemainingFields(IShellLinkA *link, ShortcutRead &read) {
  if (read.arguments != nullptr && FAILED(link->GetArguments(read.arguments, kPathSize))) read.arguments[0] = 0;
  ReadWorkingFolder(link, read);
  char *work = read.work;
  work[0] = 0;
  if (FAILED(link->GetDescription(work, kPathSize))) work[0] = 0;
  if (read.description != nullptr && work[0] != 0) CopyText(read.description, work);
  int show = 1;
  HRESULT shown = link->GetShowCmd(&show);
  if (read.showCmdOut != nullptr) *read.showCmdOut = SUCCEEDED(shown) ? show : 1;
}

// Loads the shortcut file into `link` and resolves it unless resolving is switched off. Result: the failure status,
// or 0 when the fields can be read.
unsigned LoadLink(IShellLinkA *link, IPersistFile *persist, const ShortcutRead &read) {
  char loadPath[kPathSize];
  CopyText(loadPath, read.result);
  StripOuterQuotes(loadPath);
  WCHAR wide[kShellPathSize];
  if (MultiByteToWideChar(CP_ACP, 0, loadPath, -1, wide, kShellPathSize) == 0 || FAILED(persist->Load(wide, 0)))
    return kReadLoadFailed;
  if (!skipResolve && FAILED(link->Resolve(read.window, SLR_NO_UI | SLR_UPDATE))) return kReadResolveFailed;
  return 0;
}

// A .lnk file through a shell link object: load, then the icon, the target and the remaining fields.
void ReadLinkFile(ShortcutRead &read) {
  IShellLinkA *link = nullptr;
  IPersistFile *persist = nullptr;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                              reinterpret_cast<void **>(&link)))) {
    read.status = kReadNoObject;
    link = nullptr;
  } else {
    keepRawWorkingFolder = 0;
    if (FAILED(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void **>(&persist)))) {
      read.status = kReadNoPersist;
      persist = nullptr;
    }
  }
  if (persist != nullptr) {
    unsigned failure = LoadLink(link, persist, read);
    if (failure != 0) {
      read.status = failure;
    } else {
      ReadIcon(link, read);
      if (ReadTarget(link, read)) ReadRemainingFields(link, read);
    }
  }
  if (persist != nullptr) persist->Release();
  if (link != nullptr) link->Release();
}

// Which kind of file the path names, by its extension: a .lnk or .pif file is read, anything else is no shortcut.
void ReadByExtension(ShortcutRead &read) {
  char *extension = HasExtension(read.result);
  char extensionText[kPathSize] = "";
  if (extension != nullptr) CutTrailingQuote(extensionText, extension);
  if (extension == nullptr || (lstrcmpiA(extensionText, "lnk") != 0 && lstrcmpiA(extensionText, "pif") != 0)) {
    read.status = kReadNoShortcut;
    read.repair = false;
  } else if (lstrcmpiA(extensionText, "pif") == 0) {
    read.status = ReadPif(read.result, read.workingFolder, read.arguments, read.status);
    if (read.status & kReadEmptyPif) read.repair = false;
  } else {
    ReadLinkFile(read);
  }
}

}  // namespace

void SetSkipResolve(int value) { skipResolve = value; }
void SetQuietReader(int value) { quietReader = value; }

int LocateTarget(const char *path) {
  if (!(readMode & kReadModeSearchesAll) && IsOnRemovableMedia(path))
    return (readMode & kReadModeRemovableNotTested) ? kTargetNotTested : kTargetFound;
  char text[kPathSize];
  CopyText(text, path);
  char *name = text;
  if (name[0] == '"') {
    ++name;
    char *close = FindCharacter(name, '"');
    if (close != nullptr) *close = 0;
  }
  char found[kPathSize];
  int result = SearchForFile(name, found, kPathSize);
  if (result == kSearchNoDrive) return kTargetNoDrive;
  return result == kSearchFound ? kTargetFound : kTargetNotFound;
}

int ClassifyPathShape(char *text, int fallback) {
  if (!ReplaceUnprintable(text, 0)) return fallback;
  bool rooted =
      (IsCharAlphaA(text[0]) && text[1] == ':' && IsSingleByteCharAt(text, text, '\\', 2)) || IsUncPrefix(text);
  char *dot = ExtensionDot(text, nullptr);
  if (NextSeparator(text) == nullptr) return dot != nullptr ? kPathFile : fallback;
  if (!rooted) return fallback;
  for (char *rest = text;;) {
    dot = ExtensionDot(rest, nullptr);
    if (dot == nullptr) return kPathFolder;
    char *separator = NextSeparator(dot);
    if (separator == nullptr) return kPathFile;
    if (NextSeparator(separator + 1) == nullptr) return kPathFile;
    rest = separator;
  }
}

void SetKeptText(const char *text, int slot) {
  if (text == nullptr || *text == 0) return;
  HGLOBAL handle = nullptr;
  char *copy = AcquireBlock(&handle, nullptr, kPathSize, nullptr);
  if (copy == nullptr) return;
  CopyText(copy, text);
  ExpandEnvironmentNames(copy);
  if (slot != 0 || !keepRawWorkingFolder) MakeExactPath(copy, kExactLongNames, 0);
  if (keptHandles[slot] != nullptr && keptTexts[slot] != nullptr) GlobalUnlock(keptHandles[slot]);
  keptHandles[slot] = StoreToBlock(nullptr, keptHandles[slot], copy);
  keptTexts[slot] = static_cast<char *>(GlobalLock(keptHandles[slot]));
  ReleaseBlock(handle, copy);
}

const char *KeptText(int slot) { return keptTexts[slot] != nullptr ? keptTexts[slot] : ""; }

void ReleaseKeptTexts(void) {
  for (int slot = 0; slot < 3; ++slot) {
    ReleaseBlock(keptHandles[slot], keptTexts[slot]);
    keptHandles[slot] = nullptr;
    keptTexts[slot] = nullptr;
  }
}

unsigned ReadShortcut(HWND window, char *path, char *arguments, char *icon, char *description, int *showCmdOut,
                      int *iconIndexOut, unsigned mode) {
  HGLOBAL workHandle = nullptr, folderHandle = nullptr, rawHandle = nullptr, resultHandle = nullptr;
  char *work = AcquireBlock(&workHandle, nullptr, kPathSize, nullptr);
  char *workingFolder = AcquireBlock(&folderHandle, nullptr, kPathSize, nullptr);
  char *rawTarget = AcquireBlock(&rawHandle, nullptr, kPathSize, nullptr);
  char *resultBlock = AcquireBlock(&resultHandle, nullptr, 2 * kPathSize, nullptr);
  unsigned status = 0;
  targetAttributes = 0;
  if (work == nullptr || workingFolder == nullptr || rawTarget == nullptr || resultBlock == nullptr) {
    status = kReadNoObject;
  } else {
    if (arguments != nullptr) arguments[0] = 0;
    if (icon != nullptr) icon[0] = 0;
    if (iconIndexOut != nullptr) *iconIndexOut = 0;
    CopyText(resultBlock, path);
    ShortcutRead read{window, path, arguments, icon,    description, showCmdOut,    iconIndexOut, mode,
                      mode,   0,    true,      nullptr, work,        workingFolder, rawTarget};
    // The shortcut's own path in its real form, for the calls below.
    read.result = IsNetworkPath(resultBlock) ? ToRealNetworkPath(resultBlock, nullptr) : resultBlock;
    if (showCmdOut != nullptr) *showCmdOut = 1;
    workingFolder[0] = 0;
    rawTarget[0] = 0;
    readMode = mode;

    ReadByExtension(read);
    if (read.repair && !(read.localMode & kReadModeNoRepair) && read.status > 0)
      RepairTargetText(window, workingFolder, rawTarget, read.localMode, read.status, read.result);
    if (read.result[0] != 0) CopyText(path, read.result);
    status = read.status;
  }
  ReleaseBlock(workHandle, work);
  ReleaseBlock(folderHandle, workingFolder);
  ReleaseBlock(rawHandle, rawTarget);
  ReleaseBlock(resultHandle, resultBlock);
  keepRawWorkingFolder = 0;
  return status;
}
