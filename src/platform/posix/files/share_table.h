// The network shares of the Linux backend: where "\\server\share" is mounted. Three sources, in this order: the table
// in KELMARO_SHARES ("\\srv\share=/mnt/srv/share;\\srv\other=/media/other"), the cifs and smb3 mounts of the mount
// table (their source is "//server/share"), and GNOME's gvfs mounts ($XDG_RUNTIME_DIR/gvfs/
// "smb-share:server=srv,share=share"). Private to the Linux backend.
#pragma once

#include <string>
#include <utility>
#include <vector>

// The Linux folder where the share `share` of `server` is mounted; names match without case. The first source that
// maps the share wins; within KELMARO_SHARES the last item for a share. Result: false when no source maps it.
bool ShareFolder(const std::u16string &server, const std::u16string &share, std::string *folder);
// The UNC form of an absolute Linux path inside a mapped share, by the share whose folder holds it most closely
// ("/mnt/srv/share/a" becomes "\\srv\share\a", in UTF-8, the server and share spelled as their source spells them).
// Result: false when no share holds the path.
bool LinuxPathToSharePath(const std::string &linuxPath, std::string *uncPath);
// Every share that a source maps, once, as (server, share) spelled as the source that wins spells them, in the order
// in which the sources are asked (within KELMARO_SHARES the last item first). The network browser lists them.
std::vector<std::pair<std::u16string, std::u16string>> MappedShares(void);
// Reads the table anew from its three sources at the next need (tests change them between cases).
void ReloadShareTable(void);
