// Network browsing (WNetOpenEnumA and its companions) by Windows' names, over the share table: one provider, one
// group, the servers of the mapped shares and their shares. Included by platform/winapi.h.
#pragma once

typedef HANDLE *LPHANDLE;

// A browser record, field for field as Windows lays it out.
typedef struct _NETRESOURCEA {
  DWORD dwScope;
  DWORD dwType;
  DWORD dwDisplayType;
  DWORD dwUsage;
  LPSTR lpLocalName;
  LPSTR lpRemoteName;
  LPSTR lpComment;
  LPSTR lpProvider;
} NETRESOURCEA, *LPNETRESOURCEA;

#define RESOURCE_CONNECTED 0x00000001u
#define RESOURCE_GLOBALNET 0x00000002u
#define RESOURCE_REMEMBERED 0x00000003u
#define RESOURCE_CONTEXT 0x00000005u
#define RESOURCETYPE_ANY 0x00000000u
#define RESOURCETYPE_DISK 0x00000001u
#define RESOURCETYPE_PRINT 0x00000002u
#define RESOURCEDISPLAYTYPE_GENERIC 0x00000000u
#define RESOURCEDISPLAYTYPE_DOMAIN 0x00000001u
#define RESOURCEDISPLAYTYPE_SERVER 0x00000002u
#define RESOURCEDISPLAYTYPE_SHARE 0x00000003u
#define RESOURCEDISPLAYTYPE_NETWORK 0x00000006u
#define RESOURCEUSAGE_CONNECTABLE 0x00000001u
#define RESOURCEUSAGE_CONTAINER 0x00000002u
#define RESOURCEUSAGE_ATTACHED 0x00000010u
#define RESOURCEUSAGE_ALL 0x00000013u
#define NO_ERROR 0
#define ERROR_NO_MORE_ITEMS 259
#define ERROR_NOT_CONTAINER 1207
#define ERROR_EXTENDED_ERROR 1208
#define ERROR_NO_NETWORK 1222

// Opens a browse. The network has one provider, "Microsoft Windows Network"; under it one group (the `workgroup` of
// /etc/samba/smb.conf where that file sets one, else KELMARO_WORKGROUP, else "WORKGROUP"); under the group the servers
// of the share table ("\\srv"), under each server its mapped shares ("\\srv\share"), servers and shares in name order
// without case. RESOURCE_GLOBALNET with `parent` null lists the provider, with the provider, the group or a server the
// level below it (the parent is known by its display type and remote name, matched without case); RESOURCE_CONTEXT
// lists the group, as Windows' network neighbourhood starts at the caller's own group; RESOURCE_CONNECTED lists every
// mapped share; RESOURCE_REMEMBERED nothing. `usage` filters a RESOURCE_GLOBALNET browse (0 or RESOURCEUSAGE_ALL:
// everything); RESOURCETYPE_PRINT finds only the containers. Result: NO_ERROR with a handle in *handle;
// ERROR_INVALID_PARAMETER for a null handle, an unknown scope, or a parent with another scope than
// RESOURCE_GLOBALNET; ERROR_BAD_NETPATH for a group or server that is not there, as Windows answers for a server that
// does not answer; ERROR_NOT_CONTAINER for a share.
DWORD WNetOpenEnumA(DWORD scope, DWORD type, DWORD usage, LPNETRESOURCEA parent, LPHANDLE handle);
// Fills `buffer` (*bufferSize bytes) with the next records of a browse: NETRESOURCEA records from its start, their
// strings at its end, at most *count of them (0xFFFFFFFF: as many as fit). Result: NO_ERROR with *count set;
// ERROR_NO_MORE_ITEMS at the end; ERROR_MORE_DATA with *bufferSize the size that the next record needs when not even
// one fits; ERROR_INVALID_HANDLE for a handle no browse has; ERROR_INVALID_PARAMETER for a null count, buffer or size.
DWORD WNetEnumResourceA(HANDLE handle, LPDWORD count, LPVOID buffer, LPDWORD bufferSize);
// Ends a browse. Result: NO_ERROR, or ERROR_INVALID_HANDLE for a handle no browse has.
DWORD WNetCloseEnum(HANDLE handle);
// The provider's last extended error. The share table never leaves one: *error 0, both texts empty (where their
// buffers have room). Result: NO_ERROR; ERROR_INVALID_PARAMETER for a null error word.
DWORD WNetGetLastErrorA(LPDWORD error, LPSTR errorText, DWORD errorTextSize, LPSTR nameText, DWORD nameTextSize);
