// Whether the machine has a network, from its interfaces: a network interface other than the loopback that is up and
// running with an address counts as a LAN connection, as Windows counts a connected adapter.
#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>

#include "platform/winapi.h"

namespace {

bool HasConnectedInterface() {
  struct ifaddrs *list = nullptr;
  if (getifaddrs(&list) != 0) return false;
  bool found = false;
  for (struct ifaddrs *entry = list; entry != nullptr && !found; entry = entry->ifa_next) {
    if (entry->ifa_addr == nullptr) continue;
    int family = entry->ifa_addr->sa_family;
    if (family != AF_INET && family != AF_INET6) continue;
    unsigned flags = entry->ifa_flags;
    found = (flags & IFF_UP) && (flags & IFF_RUNNING) && !(flags & IFF_LOOPBACK);
  }
  freeifaddrs(list);
  return found;
}

}  // namespace

int GetSystemMetrics(int index) {
  if (index == SM_NETWORK) return HasConnectedInterface() ? 1 : 0;
  return 0;
}

BOOL InternetGetConnectedState(DWORD *flags, DWORD) {
  bool connected = HasConnectedInterface();
  if (flags != nullptr) *flags = connected ? INTERNET_CONNECTION_LAN : 0;
  return connected ? TRUE : FALSE;
}
