// The shortcut writer. It is deliberately not an edit of the existing file: the shell link object starts empty and
// the saved file holds exactly what is set here. No attribute or time of the old file is kept.
#include "engine/shortcut_writer.h"

#include "engine/shell_link_api.h"

unsigned WriteShortcut(HWND, const char *shortcutPath, const char *target, const char *arguments,
                       const char *workingFolder, const char *icon, const char *description, int showCmd,
                       int iconIndex) {
  IShellLinkA *link = nullptr;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                              reinterpret_cast<void **>(&link))))
    return kWriteNoObject;
  IPersistFile *persist = nullptr;
  if (FAILED(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void **>(&persist)))) {
    link->Release();
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
  if (MultiByteToWideChar(CP_ACP, 0, shortcutPath, -1, widePath, kShellPathSize) == 0 ||
      FAILED(persist->Save(widePath, TRUE)))
    result |= kWriteSaveFailed;
  persist->Release();
  link->Release();
  return result;
}
