// Shell link objects on Linux: IShellLinkA and IPersistFile with Windows' names, signatures and answers, over our own
// .lnk codec, and the few COM and code page calls around them. winapi.h includes this in its Linux section.
#pragma once

#include "platform/posix/win_types.h"
#include "platform/winapi.h"

// ---- COM basics ----------------------------------------------------------------------------------------------------

typedef LONG HRESULT;
typedef unsigned short USHORT;
typedef WCHAR OLECHAR;
typedef OLECHAR *LPOLESTR;
typedef const OLECHAR *LPCOLESTR;

#define STDMETHODCALLTYPE
#define SUCCEEDED(hr) (static_cast<HRESULT>(hr) >= 0)
#define FAILED(hr) (static_cast<HRESULT>(hr) < 0)
#define HRESULT_FROM_WIN32(code) \
  ((code) == 0 ? static_cast<HRESULT>(0) : static_cast<HRESULT>(((code)&0xFFFFu) | 0x80070000u))

#define S_OK static_cast<HRESULT>(0)
#define S_FALSE static_cast<HRESULT>(1)
#define E_NOTIMPL static_cast<HRESULT>(0x80004001u)
#define E_NOINTERFACE static_cast<HRESULT>(0x80004002u)
#define E_POINTER static_cast<HRESULT>(0x80004003u)
#define E_FAIL static_cast<HRESULT>(0x80004005u)
#define E_ACCESSDENIED static_cast<HRESULT>(0x80070005u)
#define E_OUTOFMEMORY static_cast<HRESULT>(0x8007000Eu)
#define E_INVALIDARG static_cast<HRESULT>(0x80070057u)
#define CLASS_E_NOAGGREGATION static_cast<HRESULT>(0x80040110u)
#define REGDB_E_CLASSNOTREG static_cast<HRESULT>(0x80040154u)
#define CO_E_NOTINITIALIZED static_cast<HRESULT>(0x800401F0u)

#ifndef ERROR_WRITE_FAULT
#define ERROR_WRITE_FAULT 29
#define ERROR_READ_FAULT 30
#define ERROR_DISK_FULL 112
#define ERROR_INSUFFICIENT_BUFFER 122
#endif

typedef struct _GUID {
  DWORD Data1;
  WORD Data2;
  WORD Data3;
  BYTE Data4[8];
} GUID;
typedef GUID IID;
typedef GUID CLSID;
typedef const IID &REFIID;
typedef const CLSID &REFCLSID;
bool operator==(const GUID &a, const GUID &b);
inline bool operator!=(const GUID &a, const GUID &b) { return !(a == b); }
inline BOOL IsEqualGUID(REFIID a, REFIID b) { return a == b; }

extern const IID IID_IUnknown;
extern const IID IID_IPersist;
extern const IID IID_IPersistFile;
extern const IID IID_IShellLinkA;
extern const CLSID CLSID_ShellLink;

#define CLSCTX_INPROC_SERVER 0x1

// The part of every COM object: reference counting and the question for another interface. QueryInterface sets
// `*object` to null when it answers E_NOINTERFACE.
struct IUnknown {
  virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **object) = 0;
  virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
  virtual ULONG STDMETHODCALLTYPE Release() = 0;

 protected:
  ~IUnknown() = default;  // an object goes with its last Release, never by delete through an interface
};
typedef IUnknown *LPUNKNOWN;

// Counts the calls; the first gives S_OK, later ones S_FALSE, as on Windows for one thread.
HRESULT CoInitialize(LPVOID reserved);
void CoUninitialize(void);
// Creates a shell link object (the only class there is here) and asks it for `riid`. Results: S_OK; the errors of
// QueryInterface; CO_E_NOTINITIALIZED before CoInitialize; CLASS_E_NOAGGREGATION with an outer object;
// REGDB_E_CLASSNOTREG for another class or a context without CLSCTX_INPROC_SERVER. `*object` is null on failure.
HRESULT CoCreateInstance(REFCLSID rclsid, LPUNKNOWN outer, DWORD context, REFIID riid, LPVOID *object);

// ---- Code pages ----------------------------------------------------------------------------------------------------

#define CP_ACP 0
#define CP_OEMCP 1
#define CP_THREAD_ACP 3
#define CP_UTF8 65001

// As on Windows. The ANSI code page (CP_ACP, CP_OEMCP, CP_THREAD_ACP) is 932; 932 and CP_UTF8 are the others known.
// `length` -1 converts through the terminator, which is counted. With `size` 0 the result is the size needed; a
// buffer too small gives 0 and ERROR_INSUFFICIENT_BUFFER; an unknown code page gives 0 and ERROR_INVALID_PARAMETER.
// `flags` is not used.
int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, int length, LPWSTR wide, int size);

// ---- Shell links ---------------------------------------------------------------------------------------------------

#define SLGP_SHORTPATH 0x1
#define SLGP_UNCPRIORITY 0x2
#define SLGP_RAWPATH 0x4
#define SLR_NO_UI 0x1
#define SLR_UPDATE 0x4
#ifndef SW_SHOWNORMAL
#define SW_SHOWNORMAL 1
#define SW_SHOWMAXIMIZED 3
#define SW_SHOWMINNOACTIVE 7
#endif

typedef struct _SHITEMID {
  USHORT cb;
  BYTE abID[1];
} SHITEMID;
typedef struct _ITEMIDLIST {
  SHITEMID mkid;
} ITEMIDLIST;
typedef ITEMIDLIST *PIDLIST_ABSOLUTE;
typedef const ITEMIDLIST *PCIDLIST_ABSOLUTE;

// The methods in Windows' order. Texts are Shift-JIS here and UTF-16 in the file.
struct IShellLinkA : public IUnknown {
  // The target, in Shift-JIS, cut to `size` bytes without splitting a character: with SLGP_UNCPRIORITY the share
  // form first, with SLGP_RAWPATH environment names unexpanded (the order of the records asked is SelectTargetPath's
  // in lnk_codec.h). S_FALSE and an empty text when the shortcut names no file-system target; E_INVALIDARG without a
  // buffer. `findData`, if given, is cleared and then filled from the header (attributes, times, size) and the
  // target's file name.
  virtual HRESULT STDMETHODCALLTYPE GetPath(LPSTR file, int size, WIN32_FIND_DATAA *findData, DWORD flags) = 0;
  // Not available on Linux: E_NOTIMPL.
  virtual HRESULT STDMETHODCALLTYPE GetIDList(PIDLIST_ABSOLUTE *list) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetIDList(PCIDLIST_ABSOLUTE list) = 0;
  // The Get calls for texts copy as GetPath does and give S_OK, an absent text being empty; E_INVALIDARG without a
  // buffer. The Set calls give S_OK, or E_INVALIDARG for null or for a text longer than Windows reads it (path,
  // working folder, icon: 259 characters; description: 1023; arguments: 65535), which also makes Save refuse.
  virtual HRESULT STDMETHODCALLTYPE GetDescription(LPSTR name, int size) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetDescription(LPCSTR name) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetWorkingDirectory(LPSTR folder, int size) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetWorkingDirectory(LPCSTR folder) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetArguments(LPSTR arguments, int size) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetArguments(LPCSTR arguments) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetHotkey(WORD *hotkey) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetHotkey(WORD hotkey) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetShowCmd(int *showCmd) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetShowCmd(int showCmd) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetIconLocation(LPSTR iconPath, int size, int *iconIndex) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetIconLocation(LPCSTR iconPath, int iconIndex) = 0;
  // Not available on Linux: E_NOTIMPL.
  virtual HRESULT STDMETHODCALLTYPE SetRelativePath(LPCSTR relativePath, DWORD reserved) = 0;
  // Linux keeps no link-tracking data to search with: S_OK, and the link stays as it is.
  virtual HRESULT STDMETHODCALLTYPE Resolve(HWND window, DWORD flags) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetPath(LPCSTR file) = 0;
};

struct IPersist : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetClassID(CLSID *classId) = 0;
};

struct IPersistFile : public IPersist {
  virtual HRESULT STDMETHODCALLTYPE IsDirty() = 0;
  // Reads a shortcut file (a drive path such as "Z:\x\y.lnk"). S_OK; HRESULT_FROM_WIN32 of ERROR_FILE_NOT_FOUND,
  // ERROR_PATH_NOT_FOUND or ERROR_ACCESS_DENIED; E_FAIL for a file that is not a shortcut or is damaged, in which
  // case the object keeps what it held.
  virtual HRESULT STDMETHODCALLTYPE Load(LPCOLESTR fileName, DWORD mode) = 0;
  // Writes the object as a new shortcut file over `fileName` (null: the file last loaded or saved), replacing the old
  // one only once the new one is complete. E_INVALIDARG, with no file touched, while a Set call has been refused
  // for a text too long for the file; HRESULT_FROM_WIN32 of the file error otherwise.
  virtual HRESULT STDMETHODCALLTYPE Save(LPCOLESTR fileName, BOOL remember) = 0;
  virtual HRESULT STDMETHODCALLTYPE SaveCompleted(LPCOLESTR fileName) = 0;
  // Not available on Linux (there is no task allocator): E_NOTIMPL.
  virtual HRESULT STDMETHODCALLTYPE GetCurFile(LPOLESTR *fileName) = 0;
};
