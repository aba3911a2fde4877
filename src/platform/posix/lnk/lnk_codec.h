// The shortcut (.lnk) codec: bytes to ShellLinkRecord and back, one pair of routines per on-disk structure, plus the
// readings that the shell link object makes of a record (the target path) and the record it builds for a new file.
// Pure: no file is touched here, so every routine can be tested with bytes in memory.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/posix/lnk/lnk_bytes.h"
#include "platform/posix/lnk/lnk_record.h"

// ---- The whole file ------------------------------------------------------------------------------------------------

// Reads a shortcut file. Result: kNone with `*record` filled, or the first damage that the fields depend on (the
// record is then unspecified). Damage that the fields do not depend on is flagged in record->damage.
LnkError ParseShellLink(ByteSpan file, ShellLinkRecord *record);
// The file image of a record: header, ID list, LinkInfo, string data (always UTF-16), extra blocks, terminal block.
// The structure bits of LinkFlags are set from what the record holds (a string is written when it is not empty), the
// environment bits where the record holds the block and its flags announce it; the other bits are kept.
std::vector<uint8_t> SerializeShellLink(const ShellLinkRecord &record);

// ---- One structure each (lnk_header.cpp, lnk_idlist.cpp, lnk_linkinfo.cpp, lnk_strings.cpp, lnk_extra.cpp) -------
// The parsers read at *offset and move it past the structure; they fail as ParseShellLink describes.

LnkError ParseLnkHeader(ByteSpan file, LnkHeader *header);
void WriteLnkHeader(const LnkHeader &header, std::vector<uint8_t> *out);

// `items` gets the items without the list's size and terminal.
LnkError ParseLnkIdList(ByteSpan file, size_t *offset, std::vector<uint8_t> *items);
void WriteLnkIdList(const std::vector<uint8_t> &items, std::vector<uint8_t> *out);

LnkError ParseLnkLinkInfo(ByteSpan file, size_t *offset, LnkLinkInfo *info, uint32_t *damage);
// Writes LinkInfo with the ANSI copies in CP932, and with the Unicode copies too (header 0x24) when a text is not
// plain ASCII, so that a reader with another ANSI code page still finds the right characters.
void WriteLnkLinkInfo(const LnkLinkInfo &info, std::vector<uint8_t> *out);

// `linkFlags` says which strings are present and whether they are UTF-16 or ANSI (read as CP932).
LnkError ParseLnkStrings(ByteSpan file, size_t *offset, uint32_t linkFlags, LnkStrings *strings);
// Writes the strings that are not empty, as UTF-16; a text longer than the 16-bit count allows is cut there.
void WriteLnkStrings(const LnkStrings &strings, std::vector<uint8_t> *out);

// Never fails: the extra data follows everything the fields need, so damage there is flagged in `*damage` and the
// blocks before it are kept.
void ParseLnkExtraData(ByteSpan file, size_t offset, LnkExtraData *extra, uint32_t *damage);
// Writes the environment and icon environment blocks that the record holds, then the terminal block.
void WriteLnkExtraData(const LnkExtraData &extra, std::vector<uint8_t> *out);

// ---- Readings of a record ------------------------------------------------------------------------------------------

// The full local path of LinkInfo (LocalBasePath + CommonPathSuffix), or empty when it has none.
std::u16string LinkInfoLocalPath(const LnkLinkInfo &info);
// The network form of LinkInfo: "\\server\share" + CommonPathSuffix, or with `deviceForm` the mapped drive
// ("Z:" + suffix) where the link records one. Empty when LinkInfo has no network part.
std::u16string LinkInfoNetworkPath(const LnkLinkInfo &info, bool deviceForm);

// The file-system path that an ID list stands for, when its first item places it: My Computer and a drive, a drive,
// or the network and a share, followed by file entries. Result: false for any other list (a control panel item, a
// user folder whose place only the machine knows) and for an item that cannot be read.
bool IdListPath(const std::vector<uint8_t> &items, std::u16string *path);

// Looks up an environment variable for the expansion of %NAME%: false when it is not set.
typedef std::function<bool(const std::u16string &name, std::u16string *value)> EnvironmentLookup;
// Expands every %NAME% of `text`. Result: false, with `*expanded` holding what could be done, when a name is not set.
bool ExpandEnvironmentText(const std::u16string &text, const EnvironmentLookup &lookup, std::u16string *expanded);

// The target path as IShellLinkA::GetPath gives it. In order: with `uncPriority`, the network form of LinkInfo; the
// environment block's text (raw with `rawPath`, else expanded when every name is set); LinkInfo's local path; its
// network part (mapped drive form first); the ID list's path; the environment text as it stands. Empty when the
// shortcut names no file-system target.
std::u16string SelectTargetPath(const ShellLinkRecord &record, bool uncPriority, bool rawPath,
                                const EnvironmentLookup &lookup);

// The icon file as IShellLinkA::GetIconLocation gives it: the icon environment block's text expanded, when every name
// in it is set; else the icon location string, which the writer stored expanded; else the block's text as it stands.
std::u16string SelectIconLocation(const ShellLinkRecord &record, const EnvironmentLookup &lookup);

// ---- Building a new file -------------------------------------------------------------------------------------------

// What is known of one component of a path on disk, for the ID list's file entries.
struct PathItemFacts {
  bool exists = false;
  bool isFolder = false;
  uint32_t attributes = 0;  // FILE_ATTRIBUTE_... bits
  uint32_t size = 0;
  uint32_t dosCreationTime = 0, dosAccessTime = 0, dosWriteTime = 0;  // FileTimeToDosDateTime of the local times
};

// The FAT date (low half) and time (high half) that ID list items carry, for a FILETIME taken as calendar time (the
// caller shifts it to local time first, as Windows shows these). 0 for a time outside 1980 to 2107.
uint32_t FileTimeToDosDateTime(uint64_t fileTime);

// The ID list for an absolute drive path ("C:\a\b.txt"): My Computer, the drive, and one file entry per component
// (folder entries, then a file entry unless the target is a folder). `facts` has one entry per component; a missing
// entry counts as not existing. Result: false for a path that is not of that form.
bool BuildIdListForPath(const std::u16string &path, const std::vector<PathItemFacts> &facts,
                        std::vector<uint8_t> *items);
