// Whether the machine has a network, from its interfaces: a network interface other than the loopback that is up and
// running with an address counts as a LAN connection, as Windows counts a connected adapter.
#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>

#include <string>
#include <vector>

#include "platform/posix/testing.h"
#include "platform/posix/text/path_names.h"
#include "platform/winapi.h"

namespace {

// What the connection question needs to know of one interface.
struct InterfaceFacts {
  bool up = false;
  bool running = false;
  bool loopback = false;
  bool hasAddress = false;  // an IPv4 or IPv6 address
};

struct InterfaceSource {
  bool testing = false;  // a test's list stands in for the machine's interfaces
  std::vector<InterfaceFacts> interfaces;
  size_t connectionQueries = 0;
};

InterfaceSource &Source() {
  static InterfaceSource source;
  return source;
}

// The machine's interfaces, one record per address that getifaddrs gives.
std::vector<InterfaceFacts> MachineInterfaces() {
  std::vector<InterfaceFacts> interfaces;
  struct ifaddrs *list = nullptr;
  if (getifaddrs(&list) != 0) return interfaces;
  for (struct ifaddrs *entry = list; entry != nullptr; entry = entry->ifa_next) {
    InterfaceFacts facts;
    unsigned flags = entry->ifa_flags;
    facts.up = (flags & IFF_UP) != 0;
    facts.running = (flags & IFF_RUNNING) != 0;
    facts.loopback = (flags & IFF_LOOPBACK) != 0;
    int family = entry->ifa_addr != nullptr ? entry->ifa_addr->sa_family : AF_UNSPEC;
    facts.hasAddress = family == AF_INET || family == AF_INET6;
    interfaces.push_back(facts);
  }
  freeifaddrs(list);
  return interfaces;
}

bool HasConnectedInterface() {
  const InterfaceSource &source = Source();
  std::vector<InterfaceFacts> interfaces = source.testing ? source.interfaces : MachineInterfaces();
  for (const InterfaceFacts &facts : interfaces)
    if (facts.up && facts.running && !facts.loopback && facts.hasAddress) return true;
  return false;
}

}  // namespace

int GetSystemMetrics(int index) {
  if (index == SM_NETWORK) return HasConnectedInterface() ? 1 : 0;
  return 0;
}

BOOL InternetGetConnectedState(DWORD *flags, DWORD) {
  ++Source().connectionQueries;
  bool connected = HasConnectedInterface();
  if (flags != nullptr) *flags = connected ? INTERNET_CONNECTION_LAN : 0;
  return connected ? TRUE : FALSE;
}

void TestSetInterfaces(const char *interfaces) {
  InterfaceSource &source = Source();
  source.testing = interfaces != nullptr;
  source.interfaces.clear();
  if (interfaces == nullptr) return;
  for (const std::string &item : SplitNonEmpty(std::string(interfaces), ';')) {
    InterfaceFacts facts;
    size_t equals = item.find('=');
    std::string words = equals == std::string::npos ? std::string() : item.substr(equals + 1);
    for (const std::string &word : SplitNonEmpty(words, ',')) {
      if (word == "up") facts.up = true;
      if (word == "running") facts.running = true;
      if (word == "loopback") facts.loopback = true;
      if (word == "address") facts.hasAddress = true;
    }
    source.interfaces.push_back(facts);
  }
}

size_t TestConnectionQueries(void) { return Source().connectionQueries; }
