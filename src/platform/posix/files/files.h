// The Windows file-system operations of the Linux backend, by their Windows names and signatures: listing folders,
// opening, reading and writing files, deleting, moving and creating entries, attributes, the current folder, full
// paths, the search path, drives and volumes, file times, and the environment. platform/winapi.h includes this header
// on Linux; the engine never includes it itself.
//
// Drives come from the drive table (see drive_table.h): from KELMARO_DRIVES when it is set (Z: is "/" unless it says
// otherwise), else from the links of a Wine prefix's dosdevices folder (WINEPREFIX, else ~/.wine), else Z: alone as
// "/". Network shares ("\\server\share") come from the share table (KELMARO_SHARES, then the cifs and smb3 mounts,
// then gvfs's; see share_table.h), so that a path of the network reaches every operation here as a drive path does.
// Names are matched without case, as Windows matches them; listings come in NTFS order. Each operation sets the last
// error as Windows does for the same input; where this backend answers differently from Windows, the comment at the
// operation says so. Paths obey Windows' rules (see path_resolver.h), with these Linux facts showing through:
// - A symbolic link shows as Windows shows its own: FILE_ATTRIBUTE_REPARSE_POINT beside the attributes of its target,
//   so a link to a folder is a folder, as a junction is; a link to nothing, or a loop of links, is a file. A path
//   through more than 40 links fails with ERROR_CANT_RESOLVE_FILENAME, as Windows fails beyond 63 reparse points.
// - A Linux name that ends in a dot or a space is listed as it is but cannot be opened by it, since Windows drops
//   such an ending from every path; the same holds on Windows for such names. CON, NUL, AUX and the other device
//   names of Windows are plain names here.
// - Handles are values in tables of this backend: a file handle is closed by CloseHandle, a search by FindClose.
#pragma once

#include "platform/posix/win_types.h"

typedef int64_t LONGLONG;
typedef uint64_t ULONGLONG;
typedef DWORD *LPDWORD;

typedef union _LARGE_INTEGER {
  struct {
    DWORD LowPart;
    LONG HighPart;
  };
  struct {
    DWORD LowPart;
    LONG HighPart;
  } u;
  LONGLONG QuadPart;
} LARGE_INTEGER, *PLARGE_INTEGER;

typedef union _ULARGE_INTEGER {
  struct {
    DWORD LowPart;
    DWORD HighPart;
  };
  struct {
    DWORD LowPart;
    DWORD HighPart;
  } u;
  ULONGLONG QuadPart;
} ULARGE_INTEGER, *PULARGE_INTEGER;

typedef struct _SECURITY_ATTRIBUTES {
  DWORD nLength;
  LPVOID lpSecurityDescriptor;
  BOOL bInheritHandle;
} SECURITY_ATTRIBUTES, *LPSECURITY_ATTRIBUTES;

// Reads and writes are always synchronous here: an OVERLAPPED record is never looked at, and callers pass null.
typedef struct _OVERLAPPED OVERLAPPED, *LPOVERLAPPED;

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))
#define INVALID_FILE_ATTRIBUTES 0xFFFFFFFFu
#define INVALID_FILE_SIZE 0xFFFFFFFFu

#define FILE_ATTRIBUTE_READONLY 0x00000001u
#define FILE_ATTRIBUTE_HIDDEN 0x00000002u
#define FILE_ATTRIBUTE_SYSTEM 0x00000004u
#define FILE_ATTRIBUTE_DIRECTORY 0x00000010u
#define FILE_ATTRIBUTE_ARCHIVE 0x00000020u
#define FILE_ATTRIBUTE_NORMAL 0x00000080u
#define FILE_ATTRIBUTE_TEMPORARY 0x00000100u
#define FILE_ATTRIBUTE_REPARSE_POINT 0x00000400u
#define IO_REPARSE_TAG_SYMLINK 0xA000000Cu

#define GENERIC_READ 0x80000000u
#define GENERIC_WRITE 0x40000000u
#define GENERIC_EXECUTE 0x20000000u
#define GENERIC_ALL 0x10000000u
#define FILE_READ_DATA 0x0001u
#define FILE_WRITE_DATA 0x0002u
#define FILE_APPEND_DATA 0x0004u
#define FILE_SHARE_READ 0x00000001u
#define FILE_SHARE_WRITE 0x00000002u
#define FILE_SHARE_DELETE 0x00000004u
#define CREATE_NEW 1
#define CREATE_ALWAYS 2
#define OPEN_EXISTING 3
#define OPEN_ALWAYS 4
#define TRUNCATE_EXISTING 5
#define FILE_FLAG_BACKUP_SEMANTICS 0x02000000u
#define FILE_FLAG_DELETE_ON_CLOSE 0x04000000u

#define DRIVE_UNKNOWN 0
#define DRIVE_NO_ROOT_DIR 1
#define DRIVE_REMOVABLE 2
#define DRIVE_FIXED 3
#define DRIVE_REMOTE 4
#define DRIVE_CDROM 5
#define DRIVE_RAMDISK 6

#define FILE_CASE_SENSITIVE_SEARCH 0x00000001u
#define FILE_CASE_PRESERVED_NAMES 0x00000002u
#define FILE_UNICODE_ON_DISK 0x00000004u
#define FILE_READ_ONLY_VOLUME 0x00080000u

#define ERROR_INVALID_FUNCTION 1
#define ERROR_TOO_MANY_OPEN_FILES 4
#define ERROR_NOT_SAME_DEVICE 17
#define ERROR_NO_MORE_FILES 18
#define ERROR_WRITE_PROTECT 19
#define ERROR_BAD_LENGTH 24
#define ERROR_GEN_FAILURE 31
#define ERROR_SHARING_VIOLATION 32
#define ERROR_BAD_NETPATH 53
#define ERROR_NETNAME_DELETED 64
#define ERROR_FILE_EXISTS 80
#define ERROR_DISK_FULL 112
#define ERROR_SEM_TIMEOUT 121
#define ERROR_INVALID_NAME 123
#define ERROR_DIR_NOT_ROOT 144
#define ERROR_DIR_NOT_EMPTY 145
#define ERROR_BUSY 170
#define ERROR_ALREADY_EXISTS 183
#define ERROR_ENVVAR_NOT_FOUND 203
#define ERROR_FILENAME_EXCED_RANGE 206
#define ERROR_MORE_DATA 234
#define ERROR_DIRECTORY 267
#define ERROR_IO_DEVICE 1117
#define ERROR_CONNECTION_REFUSED 1225
#define ERROR_NETWORK_UNREACHABLE 1231
#define ERROR_DISK_QUOTA_EXCEEDED 1295
#define ERROR_CANT_RESOLVE_FILENAME 1921

// ---- Listing a folder ----------------------------------------------------------------------------------------------
// FindFirstFileA reads the folder once and keeps the matching entries: "." and ".." first (not at a drive root; at the
// root of a share, as a server lists a shared folder), then
// the rest in NTFS order (by the upper-cased UTF-16 name). The mask is matched as NTFS matches it (see DosMask in
// path_names.h); there are no short names, so a mask never matches through one ("*.lnk" does not find "a.lnkx", which
// Windows finds through the short name A~1.LNK where short names are made). A mask without wildcards finds its one
// entry, without reading the folder when it is spelled as on disk. Errors: ERROR_FILE_NOT_FOUND (no match, or a pattern
// ending in "\"), ERROR_PATH_NOT_FOUND (no such folder, an empty pattern, an unmapped drive), ERROR_INVALID_NAME (a
// wildcard in the folder part, or a file in its place), ERROR_FILENAME_EXCED_RANGE (over MAX_PATH characters),
// ERROR_ACCESS_DENIED, ERROR_BAD_NETPATH (a share that is not mapped, or a server alone: "\\srv\*").
HANDLE FindFirstFileA(LPCSTR fileName, LPWIN32_FIND_DATAA findData);
// The next entry; FALSE with ERROR_NO_MORE_FILES at the end (and on every call after it), ERROR_INVALID_HANDLE for a
// handle that is not an open search. An entry deleted since the listing was read is passed over.
BOOL FindNextFileA(HANDLE findFile, LPWIN32_FIND_DATAA findData);
// Ends a search. FALSE with ERROR_INVALID_HANDLE for anything but an open search, INVALID_HANDLE_VALUE included.
BOOL FindClose(HANDLE findFile);

// ---- Files ---------------------------------------------------------------------------------------------------------
// Opens or creates a file, as Windows does for the five dispositions: CREATE_NEW fails with ERROR_FILE_EXISTS on an
// existing name; CREATE_ALWAYS and OPEN_ALWAYS succeed on one with the last error ERROR_ALREADY_EXISTS, and set it to
// 0 otherwise; CREATE_ALWAYS refuses (ERROR_ACCESS_DENIED) to replace a hidden file unless FILE_ATTRIBUTE_HIDDEN is
// asked for. A read-only file refuses write access (ERROR_ACCESS_DENIED) even to the superuser, as Windows refuses it
// to an administrator. A folder opens only with FILE_FLAG_BACKUP_SEMANTICS (else ERROR_ACCESS_DENIED). A new file gets
// FILE_ATTRIBUTE_READONLY if asked. The share mode is not enforced (Linux has no such locks): ERROR_SHARING_VIOLATION
// never comes. FILE_FLAG_DELETE_ON_CLOSE deletes the file when its handle is closed. The security record and the
// template are ignored.
HANDLE CreateFileA(LPCSTR fileName, DWORD desiredAccess, DWORD shareMode, LPSECURITY_ATTRIBUTES securityAttributes,
                   DWORD creationDisposition, DWORD flagsAndAttributes, HANDLE templateFile);
// Reads up to `bytesToRead` bytes; at the end of the file it succeeds with 0 bytes. ERROR_ACCESS_DENIED on a handle
// opened without read access, ERROR_INVALID_HANDLE on anything but an open file.
BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD bytesToRead, LPDWORD bytesRead, LPOVERLAPPED overlapped);
// Writes all bytes at the file position (ERROR_DISK_FULL when the disk is full).
BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD bytesToWrite, LPDWORD bytesWritten, LPOVERLAPPED overlapped);
// Closes a file handle; FALSE with ERROR_INVALID_HANDLE for anything else (a search handle is closed by FindClose),
// except INVALID_HANDLE_VALUE, the process's own pseudo-handle to Windows, whose "close" succeeds.
BOOL CloseHandle(HANDLE object);
// The size's low half (the high half through `fileSizeHigh`); INVALID_FILE_SIZE on failure, and with the last error
// set to 0 when the low half really is 0xFFFFFFFF.
DWORD GetFileSize(HANDLE file, LPDWORD fileSizeHigh);
BOOL GetFileSizeEx(HANDLE file, PLARGE_INTEGER fileSize);

// ---- Entries -------------------------------------------------------------------------------------------------------
// Deletes a file. ERROR_ACCESS_DENIED for a read-only file and for a folder (also a link to one), as on Windows.
BOOL DeleteFileA(LPCSTR fileName);
// Renames or moves a file or folder; never replaces: ERROR_ALREADY_EXISTS when the new name is taken (a change of case
// alone is a rename). A file moves to another drive's file system by copy and delete; a folder cannot
// (ERROR_NOT_SAME_DEVICE), nor into itself (ERROR_INVALID_PARAMETER).
BOOL MoveFileA(LPCSTR existingFileName, LPCSTR newFileName);
// Creates a folder. ERROR_ALREADY_EXISTS when the name is taken, ERROR_PATH_NOT_FOUND when its parent is missing.
BOOL CreateDirectoryA(LPCSTR pathName, LPSECURITY_ATTRIBUTES securityAttributes);
// Removes an empty folder (a link to a folder: the link). ERROR_DIR_NOT_EMPTY, ERROR_DIRECTORY for a file,
// ERROR_ACCESS_DENIED for a read-only folder, ERROR_SHARING_VIOLATION for the current folder (Windows holds it open).
BOOL RemoveDirectoryA(LPCSTR pathName);
// The attributes (see AttributesOf in file_info.h), INVALID_FILE_ATTRIBUTES on failure. A drive root is 0x10.
DWORD GetFileAttributesA(LPCSTR fileName);
// FILE_ATTRIBUTE_READONLY takes every write permission from a file, its absence gives the owner's back; the other
// attributes have no place on a Linux file system and are accepted without effect, as is READONLY on a folder.
BOOL SetFileAttributesA(LPCSTR fileName, DWORD fileAttributes);
// The run-time library's access test on a program path: 0 when it exists (mode 0) and, for mode 2, is not read-only;
// otherwise -1 with errno ENOENT or EACCES.
int _access(const char *path, int mode);

// ---- Paths and folders ---------------------------------------------------------------------------------------------
// The current folder in drive form, without a trailing backslash except at a root. At start it is the process's
// folder by the longest mapped root; if no drive holds it, by the mapped share that holds it ("\\srv\share\dir");
// if none does either, the root of the first mapped drive. Returns the length
// without terminator, or the size needed with it when the buffer is too small.
DWORD GetCurrentDirectoryA(DWORD bufferLength, LPSTR buffer);
// Makes an existing folder current; it is kept as given (made full), so its case is the caller's, as on Windows.
// ERROR_DIRECTORY for a file, ERROR_INVALID_NAME for an empty path. Another drive's current folder is its root: a
// process that only calls this has no "=X:" variables on Windows either.
BOOL SetCurrentDirectoryA(LPCSTR pathName);
// The full form of a path, made without touching the disk: "/" becomes "\", "." and ".." are resolved in the text,
// a dot at the end of a folder name and dots and spaces at the end of the path are dropped, "\x" starts at the
// current drive's root, "X:x" at drive X's current folder ("X:" alone is that folder with a trailing backslash, as
// Wine and recent Windows give it), "x" at the current folder. `filePart` gets the last name
// (null when the path ends in "\"). Returns the length, or the size needed with the terminator.
DWORD GetFullPathNameA(LPCSTR fileName, DWORD bufferLength, LPSTR buffer, LPSTR *filePart);
// Looks for a file (or folder) of that name: with `path` null in the program's folder, the system folder, the Windows
// folder, the current folder and the folders of PATH, in this order (PATH's Linux folders in drive form). `extension`
// is added to a name without one. A name with a folder part (absolute, or starting ".\" or "..\") is only looked at
// where it says. Returns the length, or the size needed with the terminator; 0 with ERROR_FILE_NOT_FOUND.
DWORD SearchPathA(LPCSTR path, LPCSTR fileName, LPCSTR extension, DWORD bufferLength, LPSTR buffer, LPSTR *filePart);
// The Windows folder of Linux: the one that the environment variable windir (or SystemRoot) names in drive form;
// without it "C:\windows" when drive C is mapped, as a Wine prefix has it (the folder need not be there); otherwise
// none, and these give 0 with ERROR_PATH_NOT_FOUND and an empty buffer. The system folder is its "system32".
UINT GetWindowsDirectoryA(LPSTR buffer, UINT size);
UINT GetSystemDirectoryA(LPSTR buffer, UINT size);

// ---- Drives and volumes --------------------------------------------------------------------------------------------
// Their callers come with the drive inventory.
// The kind of a mapped drive whose folder exists, named by any path on it ("X:", "X:\", "X:\dir\"; null: the current
// drive), from the mount that holds the drive's folder: DRIVE_RAMDISK (tmpfs, ramfs), DRIVE_CDROM (iso9660, udf),
// DRIVE_REMOTE (cifs, smb3, nfs, fuse.sshfs), DRIVE_REMOVABLE (a block device whose disk /sys calls removable),
// DRIVE_FIXED for the rest and where the mount cannot be told. DRIVE_REMOTE for a path on a share that the share table
// maps and that can be reached ("\\server\share\"); DRIVE_NO_ROOT_DIR for anything else.
UINT GetDriveTypeA(LPCSTR rootPathName);
// One bit per drive that is there, whatever its kind, bit 0 for A:.
DWORD GetLogicalDrives(void);
// The volume of a mapped drive's root ("X:\" or "X:"), from the mount that holds the drive's folder: the label that
// /dev/disk/by-label gives its device (empty when none does), a serial number from the file system's id (statfs's
// f_fsid), its longest name (f_namelen), FILE_CASE_PRESERVED_NAMES | FILE_UNICODE_ON_DISK (and FILE_READ_ONLY_VOLUME),
// and its file system's name as Windows spells it where it has one ("FAT32" for vfat, "FAT" for msdos, "NTFS" for
// ntfs, ntfs3 and ntfs-3g, "exFAT", "CDFS" for iso9660, "UDF"), else the Linux type in capitals ("EXT4", "TMPFS").
// ERROR_BAD_LENGTH when the label or the name does not fit its buffer, ERROR_DIR_NOT_ROOT for a folder that is not a
// root, ERROR_PATH_NOT_FOUND for an unmapped drive. The root of a mapped share ("\\server\share\") is the volume of
// the folder where it is mounted; ERROR_BAD_NETPATH for a share that is not mapped.
BOOL GetVolumeInformationA(LPCSTR rootPathName, LPSTR volumeNameBuffer, DWORD volumeNameSize,
                           LPDWORD volumeSerialNumber, LPDWORD maximumComponentLength, LPDWORD fileSystemFlags,
                           LPSTR fileSystemNameBuffer, DWORD fileSystemNameSize);
// The free and total space of the volume that holds a folder (null: the current drive), in clusters of the file
// system's fragment size as 512-byte sectors; counts beyond 32 bits read 0xFFFFFFFF. ERROR_FILE_NOT_FOUND for a
// folder that is not there, ERROR_PATH_NOT_FOUND for one whose parent is not, or on an unmapped drive.
BOOL GetDiskFreeSpaceA(LPCSTR rootPathName, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector,
                       LPDWORD numberOfFreeClusters, LPDWORD totalNumberOfClusters);
// The same in bytes: free to this process, total, free in all. Any of the three may be null.
BOOL GetDiskFreeSpaceExA(LPCSTR directoryName, PULARGE_INTEGER freeBytesAvailableToCaller,
                         PULARGE_INTEGER totalNumberOfBytes, PULARGE_INTEGER totalNumberOfFreeBytes);

// ---- Private profile files ----------------------------------------------------------------------------------------
// One key of a section of an ".ini" file, named as the program names paths; a name without a folder ("x.ini") is
// looked for in the Windows folder (see GetWindowsDirectoryA; without one there is no such file), a null name is
// "win.ini" there. The registry's IniFileMapping, which Windows looks at first, is empty here. Sections ("[name]") and
// keys ("name=value") match with ASCII letters without case, and only the first section of a name counts; blanks
// around names and values are trimmed, and a value in a pair of the same quotes (" or ') loses them. Lines starting
// with ";", lines without "=" and lines before the first section are no keys. A null `keyName` lists the section's
// keys, a null `appName` the file's sections: each name ends in a 0 and the list in a second one. A missing file,
// section or key gives `defaultText` (null: empty) without its trailing spaces, and so does a section without keys
// when its keys are asked for; the sections of a missing file are an empty list. A text that does not fit is cut: the
// result is then size - 1; a list is cut unless it is shorter than the buffer, to size - 2 bytes and two zeros, and
// the result is size - 2. Result: the length copied, without the (last) terminator; 0 for a null buffer (which
// Windows does not survive) or a size of 0. The file is read as Shift-JIS bytes, or as UTF-16 behind the UTF-16LE
// byte order mark; a UTF-8 byte order mark is no mark to Windows and none here. Only a regular file is read (a pipe is
// not waited on), and none over 16 MiB. A file that cannot be read leaves the last error that opening it would
// (ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_ACCESS_DENIED; ERROR_NOT_ENOUGH_MEMORY for a file too large);
// any other read leaves the last error alone.
DWORD GetPrivateProfileStringA(LPCSTR appName, LPCSTR keyName, LPCSTR defaultText, LPSTR returned, DWORD size,
                               LPCSTR fileName);

// ---- Times and the environment -------------------------------------------------------------------------------------
// A UTC file time in local time, by the time zone's bias of this moment (as Windows does).
BOOL FileTimeToLocalFileTime(const FILETIME *fileTime, LPFILETIME localFileTime);
// A variable of the process environment, its name matched without case (an exact match first); the value in
// Shift-JIS. Returns the length, or the size needed with the terminator (the buffer untouched); 0 with
// ERROR_ENVVAR_NOT_FOUND for a name that is not set. Success leaves the last error as it was (so an empty value gives
// 0 without an error of its own).
DWORD GetEnvironmentVariableA(LPCSTR name, LPSTR buffer, DWORD size);
