// The shell link object of the Linux backend: one object that is both IShellLinkA and IPersistFile, holding a
// ShellLinkRecord that Load fills, the Set calls edit and Save writes; plus CoCreateInstance and the code page calls.
#include "platform/posix/shell/shell_link.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/posix/lnk/lnk_codec.h"
#include "platform/posix/lnk/lnk_text.h"
#include "platform/posix/shell/lnk_file_access.h"
#include "platform/posix/shell/shell_link_image.h"
#include "platform/posix/text/path_names.h"

const IID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID IID_IPersist = {0x0000010C, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID IID_IPersistFile = {0x0000010B, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID IID_IShellLinkA = {0x000214EE, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const CLSID CLSID_ShellLink = {0x00021401, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

bool operator==(const GUID &a, const GUID &b) {
  return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3 && std::memcmp(a.Data4, b.Data4, 8) == 0;
}

namespace {

// No shortcut comes near this; a larger file is not read into memory.
const size_t kLargestShortcutFile = 16u << 20;
// Windows reads the target, the working folder and the icon file into MAX_PATH buffers, and shows a description of
// at most INFOTIPSIZE characters, each with its terminator. A longer text would be cut short by Windows, so a Set
// call refuses it rather than let Save write a shortcut that Windows would misread.
const size_t kLongestPath = MAX_PATH - 1;
const size_t kLongestDescription = 1024 - 1;
const size_t kLongestArguments = 0xFFFF;  // what the 16-bit count of the file can say
const uint32_t kDriveFixed = 3;           // DRIVE_FIXED: the backend's mapped drives are fixed disks

// Which Set calls were refused for a text too long; Save refuses while any is.
enum Refused : unsigned {
  kRefusedPath = 1,
  kRefusedWorkingDir = 2,
  kRefusedArguments = 4,
  kRefusedDescription = 8,
  kRefusedIcon = 16,
};

int initializeCount = 0;

std::u16string Utf16FromWide(const WCHAR *wide, size_t length) {
  std::u16string out;
  for (size_t i = 0; i < length; ++i) {
    uint32_t c = static_cast<uint32_t>(wide[i]);
    if (c > 0x10FFFF) c = 0xFFFD;
    if (c >= 0x10000) {
      c -= 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 | (c >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 | (c & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(c));
    }
  }
  return out;
}

std::wstring WideFromUtf16(const std::u16string &text) {
  std::wstring out;
  for (size_t i = 0; i < text.size(); ++i) {
    uint32_t c = text[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
      ++i;
    }
    out.push_back(static_cast<WCHAR>(c));
  }
  return out;
}

bool IsAnsiCodePage(UINT codePage) {
  return codePage == CP_ACP || codePage == CP_OEMCP || codePage == CP_THREAD_ACP || codePage == 932;
}

// The variables of the process, for %NAME% in a shortcut's environment texts.
bool ProcessEnvironment(const std::u16string &name, std::u16string *value) {
  std::string text;
  if (!LookupEnvironmentVariable(Cp932FromUtf16(name), &text)) return false;
  *value = Utf16FromCp932(text);
  return true;
}

// Copies a text into an A-interface buffer, in Shift-JIS, cut to fit without splitting a character.
HRESULT CopyOut(const std::u16string &text, LPSTR buffer, int size) {
  if (buffer == nullptr || size <= 0) return E_INVALIDARG;
  std::string bytes = Cp932Prefix(Cp932FromUtf16(text), static_cast<size_t>(size) - 1);
  std::memcpy(buffer, bytes.data(), bytes.size());
  buffer[bytes.size()] = 0;
  return S_OK;
}

bool IsDrivePath(const std::u16string &path) {
  return path.size() >= 3 && path[1] == u':' && path[2] == u'\\' &&
         ((path[0] >= u'A' && path[0] <= u'Z') || (path[0] >= u'a' && path[0] <= u'z'));
}

bool IsUncPath(const std::u16string &path) {
  return path.size() > 2 && path[0] == u'\\' && path[1] == u'\\' && path[2] != u'\\';
}

void SetFileTimes(LnkHeader *header, const FileFacts &facts) {
  header->fileAttributes = facts.attributes;
  header->creationTime = facts.creationTime;
  header->accessTime = facts.accessTime;
  header->writeTime = facts.writeTime;
  header->fileSize = static_cast<uint32_t>(facts.size);
}

class ShellLink final : public IShellLinkA, public IPersistFile {
 public:
  ShellLink() { record_.header.linkFlags = kLinkIsUnicode; }

  // ---- IUnknown ----
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **object) override {
    if (object == nullptr) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IShellLinkA) {
      *object = static_cast<IShellLinkA *>(this);
    } else if (riid == IID_IPersistFile || riid == IID_IPersist) {
      *object = static_cast<IPersistFile *>(this);
    } else {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  // ---- IShellLinkA ----
  // The target in the order of SelectTargetPath (lnk_codec.h); SLGP_SHORTPATH gives the long path, as Linux has no
  // 8.3 names. The find record comes from the header, as Windows fills it, and the target's last name.
  HRESULT STDMETHODCALLTYPE GetPath(LPSTR file, int size, WIN32_FIND_DATAA *findData, DWORD flags) override {
    std::u16string path =
        SelectTargetPath(record_, (flags & SLGP_UNCPRIORITY) != 0, (flags & SLGP_RAWPATH) != 0, ProcessEnvironment);
    if (findData != nullptr) {
      std::memset(findData, 0, sizeof *findData);
      if (!path.empty()) {
        const LnkHeader &header = record_.header;
        findData->dwFileAttributes = header.fileAttributes;
        findData->ftCreationTime = {static_cast<DWORD>(header.creationTime),
                                    static_cast<DWORD>(header.creationTime >> 32)};
        findData->ftLastAccessTime = {static_cast<DWORD>(header.accessTime),
                                      static_cast<DWORD>(header.accessTime >> 32)};
        findData->ftLastWriteTime = {static_cast<DWORD>(header.writeTime), static_cast<DWORD>(header.writeTime >> 32)};
        findData->nFileSizeLow = header.fileSize;
        size_t slash = path.rfind(u'\\');
        std::string name = Cp932Prefix(Cp932FromUtf16(slash == std::u16string::npos ? path : path.substr(slash + 1)),
                                       sizeof findData->cFileName - 1);
        std::memcpy(findData->cFileName, name.data(), name.size());
      }
    }
    HRESULT result = CopyOut(path, file, size);
    if (FAILED(result)) return result;
    return path.empty() ? S_FALSE : S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetIDList(PIDLIST_ABSOLUTE *list) override {
    if (list != nullptr) *list = nullptr;
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetIDList(PCIDLIST_ABSOLUTE) override { return E_NOTIMPL; }

  HRESULT STDMETHODCALLTYPE GetDescription(LPSTR name, int size) override {
    return CopyOut(record_.strings.description, name, size);
  }
  HRESULT STDMETHODCALLTYPE SetDescription(LPCSTR name) override {
    return SetText(name, kLongestDescription, kRefusedDescription, &record_.strings.description);
  }
  HRESULT STDMETHODCALLTYPE GetWorkingDirectory(LPSTR folder, int size) override {
    return CopyOut(record_.strings.workingDir, folder, size);
  }
  HRESULT STDMETHODCALLTYPE SetWorkingDirectory(LPCSTR folder) override {
    return SetText(folder, kLongestPath, kRefusedWorkingDir, &record_.strings.workingDir);
  }
  HRESULT STDMETHODCALLTYPE GetArguments(LPSTR arguments, int size) override {
    return CopyOut(record_.strings.arguments, arguments, size);
  }
  HRESULT STDMETHODCALLTYPE SetArguments(LPCSTR arguments) override {
    return SetText(arguments, kLongestArguments, kRefusedArguments, &record_.strings.arguments);
  }

  HRESULT STDMETHODCALLTYPE GetHotkey(WORD *hotkey) override {
    if (hotkey == nullptr) return E_INVALIDARG;
    *hotkey = record_.header.hotKey;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SetHotkey(WORD hotkey) override {
    record_.header.hotKey = hotkey;
    dirty_ = true;
    return S_OK;
  }
  // The stored value as it is, also one that Windows would run as SW_SHOWNORMAL.
  HRESULT STDMETHODCALLTYPE GetShowCmd(int *showCmd) override {
    if (showCmd == nullptr) return E_INVALIDARG;
    *showCmd = static_cast<int>(record_.header.showCommand);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SetShowCmd(int showCmd) override {
    record_.header.showCommand = static_cast<uint32_t>(showCmd);
    dirty_ = true;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetIconLocation(LPSTR iconPath, int size, int *iconIndex) override {
    if (iconIndex != nullptr) *iconIndex = record_.header.iconIndex;
    return CopyOut(SelectIconLocation(record_, ProcessEnvironment), iconPath, size);
  }
  // An icon text with %NAME% goes into the icon environment block as well, as Windows stores it.
  HRESULT STDMETHODCALLTYPE SetIconLocation(LPCSTR iconPath, int iconIndex) override {
    HRESULT result = SetText(iconPath, kLongestPath, kRefusedIcon, &record_.strings.iconLocation);
    if (FAILED(result)) return result;
    record_.header.iconIndex = iconIndex;
    const std::u16string &text = record_.strings.iconLocation;
    record_.extra.hasIconEnvironment = text.find(u'%') != std::u16string::npos;
    record_.extra.iconEnvironmentTarget = record_.extra.hasIconEnvironment ? text : std::u16string();
    SetFlag(kLinkHasExpIcon, record_.extra.hasIconEnvironment);
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE SetRelativePath(LPCSTR, DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Resolve(HWND, DWORD) override { return S_OK; }

  // Replaces everything that says where the target is, as Windows does:
  //  - a drive path ("C:\a\b"): an ID list, and LinkInfo with the local path when the drive is mapped;
  //  - a UNC path ("\\server\share\a"): LinkInfo's network form and no ID list, Windows' default for such targets;
  //  - a text with %NAME%: the environment block, plus the above for its expansion when every name is set;
  //  - anything else (a bare file name): the environment block alone, which every reader takes as the target.
  // The header gets the target's attributes, times and size when it exists, else zeros.
  HRESULT STDMETHODCALLTYPE SetPath(LPCSTR file) override {
    std::u16string text;
    HRESULT result = SetText(file, kLongestPath, kRefusedPath, &text);
    if (FAILED(result)) return result;
    for (char16_t &c : text)
      if (c == u'/') c = u'\\';
    ShellLinkRecord &r = record_;
    r.hasIdList = false;
    r.idList.clear();
    r.hasLinkInfo = false;
    r.linkInfo = LnkLinkInfo();
    r.strings.relativePath.clear();
    r.extra.hasEnvironment = false;
    r.extra.environmentTarget.clear();
    r.extra.hasKnownFolder = false;
    r.extra.hasSpecialFolder = false;
    r.header.linkFlags &= ~kLinkForceNoLinkInfo;
    SetFileTimes(&r.header, FileFacts());
    std::u16string path = text;
    if (text.find(u'%') != std::u16string::npos) {
      r.extra.hasEnvironment = true;
      r.extra.environmentTarget = text;
      // The expansion is written only when it is complete and as short as Windows reads a path.
      if (!ExpandEnvironmentText(text, ProcessEnvironment, &path) || path.size() > kLongestPath) path.clear();
    }
    if (IsDrivePath(path)) {
      // One entry of facts per name, in the order BuildIdListForPath takes the names.
      std::vector<PathItemFacts> items;
      FileFacts target;  // the last name's, which the header records as well
      bool targetRead = false;
      for (size_t start = 3; start <= path.size();) {
        size_t stop = std::min(path.find(u'\\', start), path.size());
        if (stop > start) {
          FileFacts facts = QueryFileFacts(Cp932FromUtf16(path.substr(0, stop)));
          items.push_back(ItemFacts(facts));
          if (stop == path.size()) {
            target = facts;
            targetRead = true;
          }
        }
        start = stop + 1;
      }
      r.hasIdList = BuildIdListForPath(path, items, &r.idList);
      std::string drive(1, static_cast<char>(path[0]));
      if (QueryFileFacts(drive + ":\\").exists) {
        r.hasLinkInfo = true;
        r.linkInfo.hasLocal = true;
        r.linkInfo.driveType = kDriveFixed;
        r.linkInfo.localBasePath = path;
      }
      SetFileTimes(&r.header, targetRead ? target : QueryFileFacts(Cp932FromUtf16(path)));
    } else if (IsUncPath(path)) {
      size_t server = path.find(u'\\', 2);
      size_t share = server == std::u16string::npos ? server : path.find(u'\\', server + 1);
      r.hasLinkInfo = true;
      r.linkInfo.hasNetwork = true;
      r.linkInfo.networkProviderType = kNetworkProviderLanman;
      r.linkInfo.netName = path.substr(0, share);
      if (share != std::u16string::npos) r.linkInfo.commonPathSuffix = path.substr(share + 1);
    } else if (!r.extra.hasEnvironment && !text.empty()) {
      r.extra.hasEnvironment = true;
      r.extra.environmentTarget = text;
    }
    SetFlag(kLinkHasExpString, r.extra.hasEnvironment);
    return S_OK;
  }

  // ---- IPersistFile ----
  HRESULT STDMETHODCALLTYPE GetClassID(CLSID *classId) override {
    if (classId == nullptr) return E_POINTER;
    *classId = CLSID_ShellLink;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE IsDirty() override { return dirty_ ? S_OK : S_FALSE; }

  HRESULT STDMETHODCALLTYPE Load(LPCOLESTR fileName, DWORD) override {
    if (fileName == nullptr) return E_INVALIDARG;
    std::string path = Cp932FromUtf16(Utf16FromWide(fileName, std::wcslen(fileName)));
    std::vector<uint8_t> bytes;
    uint32_t error = ReadShortcutFile(path, kLargestShortcutFile, &bytes);
    if (error == ERROR_NOT_ENOUGH_MEMORY) return E_FAIL;
    if (error != ERROR_SUCCESS) return HRESULT_FROM_WIN32(error);
    HRESULT result = LoadImage(bytes.data(), bytes.size());
    if (SUCCEEDED(result)) currentFile_ = path;
    return result;
  }

  // Load after the file is read, and what Save writes.
  HRESULT LoadImage(const uint8_t *bytes, size_t size) {
    ShellLinkRecord record;
    if (ParseShellLink(ByteSpan{bytes, size}, &record) != LnkError::kNone) return E_FAIL;
    record_ = record;
    refused_ = 0;
    dirty_ = false;
    return S_OK;
  }
  HRESULT SaveImage(std::vector<uint8_t> *bytes) const {
    if (refused_ != 0) return E_INVALIDARG;
    *bytes = SerializeShellLink(record_);
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Save(LPCOLESTR fileName, BOOL remember) override {
    std::vector<uint8_t> image;
    HRESULT result = SaveImage(&image);
    if (FAILED(result)) return result;
    std::string path = fileName ? Cp932FromUtf16(Utf16FromWide(fileName, std::wcslen(fileName))) : currentFile_;
    if (path.empty()) return E_INVALIDARG;
    uint32_t error = ReplaceShortcutFile(path, image);
    if (error != ERROR_SUCCESS) return HRESULT_FROM_WIN32(error);
    if (remember || fileName == nullptr) {
      currentFile_ = path;
      dirty_ = false;
    }
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SaveCompleted(LPCOLESTR) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetCurFile(LPOLESTR *fileName) override {
    if (fileName != nullptr) *fileName = nullptr;
    return E_NOTIMPL;
  }

 private:
  ~ShellLink() = default;

  // Takes a Shift-JIS text for a field: refused (E_INVALIDARG, the field unchanged, Save refused until the field is
  // set again within bounds) when its UTF-16 form is longer than `longest`; null is E_INVALIDARG too.
  HRESULT SetText(LPCSTR text, size_t longest, unsigned refusedBit, std::u16string *field) {
    if (text == nullptr) return E_INVALIDARG;
    std::u16string wide = Utf16FromCp932(text);
    if (wide.size() > longest) {
      refused_ |= refusedBit;
      return E_INVALIDARG;
    }
    refused_ &= ~refusedBit;
    *field = wide;
    dirty_ = true;
    return S_OK;
  }

  // The record's flags stay true to its contents, for the Get calls before a save.
  void SetFlag(uint32_t flag, bool on) {
    if (on)
      record_.header.linkFlags |= flag;
    else
      record_.header.linkFlags &= ~flag;
  }

  static PathItemFacts ItemFacts(const FileFacts &facts) {
    PathItemFacts item;
    item.exists = facts.exists;
    item.isFolder = facts.isFolder;
    item.attributes = facts.attributes;
    item.size = static_cast<uint32_t>(facts.size);
    item.dosCreationTime = FileTimeToDosDateTime(LocalFileTime(facts.creationTime));
    item.dosAccessTime = FileTimeToDosDateTime(LocalFileTime(facts.accessTime));
    item.dosWriteTime = FileTimeToDosDateTime(LocalFileTime(facts.writeTime));
    return item;
  }

  ULONG references_ = 1;
  ShellLinkRecord record_;
  unsigned refused_ = 0;
  bool dirty_ = false;
  std::string currentFile_;  // Shift-JIS drive path
};

}  // namespace

// The object of CoCreateInstance is a ShellLink whatever interface the caller holds.
HRESULT LoadShellLinkImage(IShellLinkA *link, const uint8_t *bytes, size_t size) {
  if (link == nullptr || (bytes == nullptr && size != 0)) return E_INVALIDARG;
  return static_cast<ShellLink *>(link)->LoadImage(bytes, size);
}

HRESULT SaveShellLinkImage(IShellLinkA *link, std::vector<uint8_t> *bytes) {
  if (link == nullptr || bytes == nullptr) return E_INVALIDARG;
  return static_cast<ShellLink *>(link)->SaveImage(bytes);
}

HRESULT CoInitialize(LPVOID) { return initializeCount++ == 0 ? S_OK : S_FALSE; }

void CoUninitialize(void) {
  if (initializeCount > 0) --initializeCount;
}

HRESULT CoCreateInstance(REFCLSID rclsid, LPUNKNOWN outer, DWORD context, REFIID riid, LPVOID *object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (initializeCount == 0) return CO_E_NOTINITIALIZED;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  if (rclsid != CLSID_ShellLink || !(context & CLSCTX_INPROC_SERVER)) return REGDB_E_CLASSNOTREG;
  ShellLink *link = new (std::nothrow) ShellLink();
  if (link == nullptr) return E_OUTOFMEMORY;
  HRESULT result = link->QueryInterface(riid, object);
  link->Release();
  return result;
}

int MultiByteToWideChar(UINT codePage, DWORD, LPCSTR text, int length, LPWSTR wide, int size) {
  if (text == nullptr || length == 0 || length < -1 || size < 0 || (size > 0 && wide == nullptr) ||
      !(IsAnsiCodePage(codePage) || codePage == CP_UTF8)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  std::string bytes = length == -1 ? std::string(text, std::strlen(text) + 1) : std::string(text, length);
  std::wstring result = WideFromUtf16(IsAnsiCodePage(codePage) ? Utf16FromCp932(bytes) : Utf8ToUtf16(bytes));
  if (size == 0) return static_cast<int>(result.size());
  if (result.size() > static_cast<size_t>(size)) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  std::memcpy(wide, result.data(), result.size() * sizeof(WCHAR));
  return static_cast<int>(result.size());
}

