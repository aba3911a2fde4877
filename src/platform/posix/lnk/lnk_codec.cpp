// The shortcut file as a whole: the structures in their order, and the readings of a record that the shell link
// object makes.
#include "platform/posix/lnk/lnk_codec.h"

LnkError ParseShellLink(ByteSpan file, ShellLinkRecord *record) {
  ShellLinkRecord parsed;
  LnkError error = ParseLnkHeader(file, &parsed.header);
  if (error != LnkError::kNone) return error;
  uint32_t flags = parsed.header.linkFlags;
  size_t offset = kLnkHeaderSize;
  if (flags & kLinkHasIdList) {
    parsed.hasIdList = true;
    error = ParseLnkIdList(file, &offset, &parsed.idList);
    if (error != LnkError::kNone) return error;
  }
  if (flags & kLinkHasLinkInfo) {
    parsed.hasLinkInfo = true;
    error = ParseLnkLinkInfo(file, &offset, &parsed.linkInfo, &parsed.damage);
    if (error != LnkError::kNone) return error;
  }
  error = ParseLnkStrings(file, &offset, flags, &parsed.strings);
  if (error != LnkError::kNone) return error;
  ParseLnkExtraData(file, offset, &parsed.extra, &parsed.damage);
  *record = parsed;
  return LnkError::kNone;
}

std::vector<uint8_t> SerializeShellLink(const ShellLinkRecord &record) {
  const LnkStrings &strings = record.strings;
  // ForceNoLinkInfo is kept: it decides whether LinkInfo or the ID list names the target, and a save must not change
  // that. SetPath clears it, as the LinkInfo it writes is then the target's.
  uint32_t flags = record.header.linkFlags & ~kLinkStructureFlags;
  flags |= kLinkIsUnicode;
  if (record.hasIdList) flags |= kLinkHasIdList;
  if (record.hasLinkInfo) flags |= kLinkHasLinkInfo;
  if (!strings.description.empty()) flags |= kLinkHasName;
  if (!strings.relativePath.empty()) flags |= kLinkHasRelativePath;
  if (!strings.workingDir.empty()) flags |= kLinkHasWorkingDir;
  if (!strings.arguments.empty()) flags |= kLinkHasArguments;
  if (!strings.iconLocation.empty()) flags |= kLinkHasIconLocation;
  // An environment block is read whether or not LinkFlags announces it, but only an announced one counts as the
  // target or the icon; the announcement is kept as it was, so that a save does not turn a block that was passed
  // over into the target. The shell link object announces every block it sets.
  if (record.extra.hasEnvironment && (record.header.linkFlags & kLinkHasExpString)) flags |= kLinkHasExpString;
  if (record.extra.hasIconEnvironment && (record.header.linkFlags & kLinkHasExpIcon)) flags |= kLinkHasExpIcon;
  LnkHeader header = record.header;
  header.linkFlags = flags;
  std::vector<uint8_t> out;
  WriteLnkHeader(header, &out);
  if (record.hasIdList) WriteLnkIdList(record.idList, &out);
  if (record.hasLinkInfo) WriteLnkLinkInfo(record.linkInfo, &out);
  WriteLnkStrings(strings, &out);
  WriteLnkExtraData(record.extra, &out);
  return out;
}

bool ExpandEnvironmentText(const std::u16string &text, const EnvironmentLookup &lookup, std::u16string *expanded) {
  std::u16string result;
  bool complete = true;
  size_t i = 0;
  while (i < text.size()) {
    size_t open = text.find(u'%', i);
    size_t close = open == std::u16string::npos ? open : text.find(u'%', open + 1);
    if (close == std::u16string::npos) {
      result += text.substr(i);
      break;
    }
    result += text.substr(i, open - i);
    std::u16string name = text.substr(open + 1, close - open - 1);
    std::u16string value;
    if (!name.empty() && lookup && lookup(name, &value)) {
      result += value;
      i = close + 1;
    } else {
      // An unknown name stays as it is written, with both its signs, as Windows leaves it.
      complete = false;
      result += text.substr(open, close - open + 1);
      i = close + 1;
    }
  }
  *expanded = result;
  return complete;
}

namespace {

std::u16string LinkInfoPath(const LnkLinkInfo &info) {
  std::u16string local = LinkInfoLocalPath(info);
  return local.empty() ? LinkInfoNetworkPath(info, true) : local;
}

}  // namespace

std::u16string SelectTargetPath(const ShellLinkRecord &record, bool uncPriority, bool rawPath,
                                const EnvironmentLookup &lookup) {
  // ForceNoLinkInfo asks a reader to go by the ID list. Windows can place every ID list; this backend cannot place
  // one that starts in a user's folder, and then LinkInfo, which names the same target, is the better answer.
  bool linkInfoFirst = record.hasLinkInfo && !(record.header.linkFlags & kLinkForceNoLinkInfo);
  if (uncPriority && linkInfoFirst) {
    std::u16string network = LinkInfoNetworkPath(record.linkInfo, false);
    if (!network.empty()) return network;
  }
  bool environment = record.extra.hasEnvironment && (record.header.linkFlags & kLinkHasExpString) &&
                     !record.extra.environmentTarget.empty();
  if (environment) {
    if (rawPath) return record.extra.environmentTarget;
    std::u16string expanded;
    if (ExpandEnvironmentText(record.extra.environmentTarget, lookup, &expanded)) return expanded;
  }
  if (linkInfoFirst) {
    std::u16string path = LinkInfoPath(record.linkInfo);
    if (!path.empty()) return path;
  }
  std::u16string fromIdList;
  if (record.hasIdList && IdListPath(record.idList, &fromIdList)) return fromIdList;
  if (record.hasLinkInfo && !linkInfoFirst) {
    std::u16string path = uncPriority ? LinkInfoNetworkPath(record.linkInfo, false) : std::u16string();
    if (path.empty()) path = LinkInfoPath(record.linkInfo);
    if (!path.empty()) return path;
  }
  if (environment) return record.extra.environmentTarget;
  return std::u16string();
}

std::u16string SelectIconLocation(const ShellLinkRecord &record, const EnvironmentLookup &lookup) {
  bool environment = record.extra.hasIconEnvironment && (record.header.linkFlags & kLinkHasExpIcon) &&
                     !record.extra.iconEnvironmentTarget.empty();
  if (environment) {
    std::u16string expanded;
    if (ExpandEnvironmentText(record.extra.iconEnvironmentTarget, lookup, &expanded)) return expanded;
  }
  if (!record.strings.iconLocation.empty() || !environment) return record.strings.iconLocation;
  return record.extra.iconEnvironmentTarget;
}
