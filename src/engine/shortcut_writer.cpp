// The shortcut writer. It is deliberately not an edit of the existing file: the shell link object starts empty and
// the saved file holds exactly what is set here. No attribute or time of the old file is kept.
#include "engine/shortcut_writer.h"

#include "engine/shell_link_api.h"
#include "reports/last_error.h"

namespace {

// The system error inside a failed call's result: the Windows error that most of them wrap, else the result itself,
// which the system's message table knows as well (E_FAIL, E_OUTOFMEMORY).
DWORD ErrorOfResult(HRESULT result) {
  // HRESULT_FROM_WIN32 puts the error in the low word behind severity 1 and facility 7 (FACILITY_WIN32).
  const DWORD bits = static_cast<DWORD>(result);
  if ((bits & 0xFFFF0000u) == 0x80070000u) return bits & 0xFFFFu;
  return bits;
}

}  // namespace

unsigned WriteShortcut(HWND, const char *shortcutPath, const char *target, const char *arguments,
                       const char *workingFolder, const char *icon, const char *description, int showCmd,
                       int iconIndex) {
  IShellLinkA *link = nullptr;
  HRESULT made = CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                                  reinterpret_cast<void **>(&link));
  if (FAILED(made)) {
    SetKeptLastError(ErrorOfResult(made));
    return kWriteNoObject;
  }
  IPersistFile *persist = nullptr;
  HRESULT asked = link->QueryInterface(IID_IPersistFile, reinterpret_cast<void **>(&persist));
  if (FAILED(asked)) {
    link->Release();
    SetKeptLastError(ErrorOfResult(asked));
    return kWriteNoPersist;
  }
  unsigned result = 0;
  // The order is fixed: the icon before the path, the description before the working folder.
  const char *iconText = (icon != nullptr && *icon != 0) ? icon : target;
  if (iconText != nullptr && FAILED(link->SetIconLocation(iconText, iconIndex))) result |= kWriteIconFailed;
  if (target != nullptr && *target != 0 && FAILED(link->SetPath(target))) result |= kWritePathFailed;
  if (arguments != nullptr && FAILED(link->SetArguments(arguments))) result |= kWriteArgumentsFailed;
  if (description != nullptr && FAILED(link->SetDescription(description))) result |= kWriteDescriptionFailed;
  if (workingFolder != nullptr && FAILED(link->SetWorkingDirectory(workingFolder))) result |= kWriteFolderFailed;
  if (showCmd != 0 && FAILED(link->SetShowCmd(showCmd))) result |= kWriteShowFailed;
  // A path of up to 519 bytes can need as many wide characters: the buffer holds them all.
  WCHAR widePath[kShellPathSize];
  DWORD error = 0;
  if (MultiByteToWideChar(CP_ACP, 0, shortcutPath, -1, widePath, kShellPathSize) == 0) {
    error = GetLastError();
  } else {
    HRESULT saved = persist->Save(widePath, TRUE);
    if (FAILED(saved)) error = ErrorOfResult(saved);
  }
  if (error != 0) result |= kWriteSaveFailed;
  persist->Release();
  link->Release();
  // Kept after the releases, which may touch the last error.
  if (error != 0) SetKeptLastError(error);
  return result;
}
