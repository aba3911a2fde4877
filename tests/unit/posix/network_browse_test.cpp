// The Linux backend's network browser over the share table: the levels (provider, group, servers, shares) with the
// fields Windows fills, the group's name from Samba's configuration or the environment, the filters, a batch that
// does not fit, and the answers for what is not there. The share table and Samba's file are the test's own.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "platform/posix/testing.h"
#include "platform/winapi.h"
#include "support/scratch_folder.h"

namespace {

struct Seen {
  DWORD scope, type, displayType, usage;
  std::string remote;
  bool comment;  // lpComment is set
  std::string provider;
};

// Everything a browse of `parent` gives, one WNetEnumResourceA call after the other; `calls` counts the calls that
// gave records. Fails the test on an open or enumeration error.
std::vector<Seen> Browse(DWORD scope, NETRESOURCEA *parent, DWORD usage = RESOURCEUSAGE_ALL, DWORD bufferSize = 16384,
                         int *calls = nullptr) {
  std::vector<Seen> seen;
  HANDLE handle = reinterpret_cast<HANDLE>(0xdeadbeef);
  DWORD opened = WNetOpenEnumA(scope, RESOURCETYPE_ANY, usage, parent, &handle);
  EXPECT_EQ(opened, static_cast<DWORD>(NO_ERROR));
  if (opened != NO_ERROR) return seen;
  std::vector<char> buffer(bufferSize);
  for (;;) {
    DWORD count = 0xFFFFFFFFu;
    DWORD size = bufferSize;
    DWORD result = WNetEnumResourceA(handle, &count, buffer.data(), &size);
    if (result == ERROR_NO_MORE_ITEMS) break;
    EXPECT_EQ(result, static_cast<DWORD>(NO_ERROR));
    if (result != NO_ERROR) break;
    if (calls != nullptr) ++*calls;
    const NETRESOURCEA *records = reinterpret_cast<const NETRESOURCEA *>(buffer.data());
    for (DWORD i = 0; i < count; ++i) {
      const NETRESOURCEA &r = records[i];
      EXPECT_EQ(r.lpLocalName, nullptr);
      seen.push_back({r.dwScope, r.dwType, r.dwDisplayType, r.dwUsage, r.lpRemoteName ? r.lpRemoteName : "(null)",
                      r.lpComment != nullptr, r.lpProvider ? r.lpProvider : "(null)"});
    }
  }
  EXPECT_EQ(WNetCloseEnum(handle), static_cast<DWORD>(NO_ERROR));
  return seen;
}

NETRESOURCEA Parent(DWORD displayType, const char *remote) {
  NETRESOURCEA parent = {RESOURCE_GLOBALNET,         RESOURCETYPE_ANY, displayType, RESOURCEUSAGE_CONTAINER, nullptr,
                         const_cast<char *>(remote), nullptr,          nullptr};
  return parent;
}

class NetworkBrowse : public ::testing::Test {
 protected:
  void SetUp() override {
    TestSetMountTable("");
    TestSetRuntimeFolder("");
    TestSetSambaConfig((folder_.LinuxPath() + "/smb.conf").c_str());
    unsetenv("KELMARO_WORKGROUP");
    // Two shares of srv1 (given out of name order) and one of Srv2, whose server a second item spells otherwise.
    TestSetShares("\\\\srv1\\pub=/tmp;\\\\SRV1\\docs=/tmp;\\\\Srv2\\data=/tmp");
  }
  void TearDown() override {
    TestSetShares(nullptr);
    TestSetMountTable(nullptr);
    TestSetRuntimeFolder(nullptr);
    TestSetSambaConfig(nullptr);
    unsetenv("KELMARO_WORKGROUP");
  }
  void WriteSambaConfig(const std::string &text) { std::ofstream(folder_.LinuxPath() + "/smb.conf") << text; }
  ScratchFolder folder_;
};

const char kProvider[] = "Microsoft Windows Network";

// Each level with the fields Windows gives its records.
TEST_F(NetworkBrowse, Levels) {
  std::vector<Seen> providers = Browse(RESOURCE_GLOBALNET, nullptr);
  ASSERT_EQ(providers.size(), 1u);
  EXPECT_EQ(providers[0].displayType, RESOURCEDISPLAYTYPE_NETWORK);
  EXPECT_EQ(providers[0].usage, RESOURCEUSAGE_CONTAINER);
  EXPECT_EQ(providers[0].remote, kProvider);
  EXPECT_EQ(providers[0].provider, kProvider);

  NETRESOURCEA provider = Parent(RESOURCEDISPLAYTYPE_NETWORK, kProvider);
  std::vector<Seen> groups = Browse(RESOURCE_GLOBALNET, &provider);
  ASSERT_EQ(groups.size(), 1u);
  EXPECT_EQ(groups[0].remote, "WORKGROUP");
  EXPECT_EQ(groups[0].displayType, RESOURCEDISPLAYTYPE_DOMAIN);
  EXPECT_EQ(groups[0].scope, RESOURCE_GLOBALNET);
  EXPECT_FALSE(groups[0].comment);

  // The neighbourhood starts at the group.
  std::vector<Seen> context = Browse(RESOURCE_CONTEXT, nullptr);
  ASSERT_EQ(context.size(), 1u);
  EXPECT_EQ(context[0].remote, "WORKGROUP");

  NETRESOURCEA group = Parent(RESOURCEDISPLAYTYPE_DOMAIN, "workgroup");
  std::vector<Seen> servers = Browse(RESOURCE_GLOBALNET, &group);
  ASSERT_EQ(servers.size(), 2u);
  // In name order without case, each server spelled as the winning item spells it (KELMARO_SHARES' last item wins).
  EXPECT_EQ(servers[0].remote, "\\\\SRV1");
  EXPECT_EQ(servers[1].remote, "\\\\Srv2");
  for (const Seen &server : servers) {
    EXPECT_EQ(server.displayType, RESOURCEDISPLAYTYPE_SERVER);
    EXPECT_EQ(server.usage, RESOURCEUSAGE_CONTAINER);
    EXPECT_EQ(server.type, RESOURCETYPE_ANY);
    EXPECT_TRUE(server.comment);
  }

  NETRESOURCEA server = Parent(RESOURCEDISPLAYTYPE_SERVER, "\\\\srv1");
  std::vector<Seen> shares = Browse(RESOURCE_GLOBALNET, &server);
  ASSERT_EQ(shares.size(), 2u);
  EXPECT_EQ(shares[0].remote, "\\\\SRV1\\docs");
  EXPECT_EQ(shares[1].remote, "\\\\srv1\\pub");
  for (const Seen &share : shares) {
    EXPECT_EQ(share.displayType, RESOURCEDISPLAYTYPE_SHARE);
    EXPECT_EQ(share.usage, RESOURCEUSAGE_CONNECTABLE);
    EXPECT_EQ(share.type, RESOURCETYPE_DISK);
    EXPECT_EQ(share.provider, kProvider);
  }
  // Containers only, connectable ones only.
  EXPECT_EQ(Browse(RESOURCE_GLOBALNET, &server, RESOURCEUSAGE_CONTAINER).size(), 0u);
  EXPECT_EQ(Browse(RESOURCE_GLOBALNET, &group, RESOURCEUSAGE_CONNECTABLE).size(), 0u);
  EXPECT_EQ(Browse(RESOURCE_CONNECTED, nullptr).size(), 3u);
}

// The group: Samba's workgroup where its file sets one, else KELMARO_WORKGROUP, else WORKGROUP.
TEST_F(NetworkBrowse, GroupName) {
  struct Row {
    const char *config;
    const char *environment;
    const char *group;
  } rows[] = {
      {nullptr, nullptr, "WORKGROUP"},
      {nullptr, "HOME", "HOME"},
      {"[global]\n   Work Group = OFFICE \n", "HOME", "OFFICE"},
      {"[global]\n; workgroup = COMMENT\n# workgroup = HASH\n", "HOME", "HOME"},
      {"[homes]\nworkgroup = SHARESECTION\n", nullptr, "WORKGROUP"},
      {"workgroup = BEFORE\n[homes]\n", nullptr, "BEFORE"},  // lines before any section are global
      {"[global]\nworkgroup =\n", nullptr, "WORKGROUP"},
  };
  for (const Row &row : rows) {
    if (row.config != nullptr)
      WriteSambaConfig(row.config);
    else
      std::remove((folder_.LinuxPath() + "/smb.conf").c_str());
    if (row.environment != nullptr)
      setenv("KELMARO_WORKGROUP", row.environment, 1);
    else
      unsetenv("KELMARO_WORKGROUP");
    std::vector<Seen> groups = Browse(RESOURCE_CONTEXT, nullptr);
    ASSERT_EQ(groups.size(), 1u);
    EXPECT_EQ(groups[0].remote, row.group) << (row.config ? row.config : "no file");
  }
}

// A buffer that holds one record at a time needs a call per record; one too small for any gives ERROR_MORE_DATA with
// the size needed, and the record is not lost.
TEST_F(NetworkBrowse, Batches) {
  NETRESOURCEA server = Parent(RESOURCEDISPLAYTYPE_SERVER, "\\\\srv1");
  int calls = 0;
  EXPECT_EQ(Browse(RESOURCE_GLOBALNET, &server, RESOURCEUSAGE_ALL, sizeof(NETRESOURCEA) + 40, &calls).size(), 2u);
  EXPECT_EQ(calls, 2);

  HANDLE handle = nullptr;
  ASSERT_EQ(WNetOpenEnumA(RESOURCE_GLOBALNET, RESOURCETYPE_ANY, 0, &server, &handle), static_cast<DWORD>(NO_ERROR));
  char small[8];
  DWORD count = 0xFFFFFFFFu, size = sizeof small;
  EXPECT_EQ(WNetEnumResourceA(handle, &count, small, &size), static_cast<DWORD>(ERROR_MORE_DATA));
  EXPECT_EQ(size, sizeof(NETRESOURCEA) + sizeof "\\\\SRV1\\docs" + 1 + sizeof kProvider);
  std::vector<char> buffer(size);
  count = 1;
  EXPECT_EQ(WNetEnumResourceA(handle, &count, buffer.data(), &size), static_cast<DWORD>(NO_ERROR));
  EXPECT_EQ(count, 1u);
  EXPECT_STREQ(reinterpret_cast<NETRESOURCEA *>(buffer.data())->lpRemoteName, "\\\\SRV1\\docs");
  EXPECT_EQ(WNetCloseEnum(handle), static_cast<DWORD>(NO_ERROR));
}

// What is not there, and what is no browse.
TEST_F(NetworkBrowse, Failures) {
  HANDLE handle = nullptr;
  struct Row {
    DWORD displayType;
    const char *remote;
    DWORD error;
  } rows[] = {
      {RESOURCEDISPLAYTYPE_SERVER, "\\\\srv3", ERROR_BAD_NETPATH},
      {RESOURCEDISPLAYTYPE_DOMAIN, "OTHER", ERROR_BAD_NETPATH},
      {RESOURCEDISPLAYTYPE_NETWORK, "Some Other Network", ERROR_BAD_NETPATH},
      {RESOURCEDISPLAYTYPE_SHARE, "\\\\srv1\\docs", ERROR_NOT_CONTAINER},
  };
  for (const Row &row : rows) {
    NETRESOURCEA parent = Parent(row.displayType, row.remote);
    EXPECT_EQ(WNetOpenEnumA(RESOURCE_GLOBALNET, RESOURCETYPE_ANY, 0, &parent, &handle), row.error) << row.remote;
    EXPECT_EQ(GetLastError(), row.error) << row.remote;
  }
  NETRESOURCEA group = Parent(RESOURCEDISPLAYTYPE_DOMAIN, "WORKGROUP");
  EXPECT_EQ(WNetOpenEnumA(RESOURCE_CONTEXT, RESOURCETYPE_ANY, 0, &group, &handle),
            static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(WNetOpenEnumA(RESOURCE_GLOBALNET, RESOURCETYPE_ANY, 0, nullptr, nullptr),
            static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(WNetOpenEnumA(9, RESOURCETYPE_ANY, 0, nullptr, &handle), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  char buffer[64];
  DWORD count = 1, size = sizeof buffer;
  EXPECT_EQ(WNetEnumResourceA(&count, &count, buffer, &size), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  EXPECT_EQ(WNetCloseEnum(nullptr), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  // A closed browse is no browse.
  ASSERT_EQ(WNetOpenEnumA(RESOURCE_CONTEXT, RESOURCETYPE_ANY, 0, nullptr, &handle), static_cast<DWORD>(NO_ERROR));
  EXPECT_EQ(WNetCloseEnum(handle), static_cast<DWORD>(NO_ERROR));
  EXPECT_EQ(WNetCloseEnum(handle), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  // The share table leaves no extended error.
  DWORD error = 77;
  char text[16] = "garbage", name[16] = "garbage";
  EXPECT_EQ(WNetGetLastErrorA(&error, text, sizeof text, name, sizeof name), static_cast<DWORD>(NO_ERROR));
  EXPECT_EQ(error, 0u);
  EXPECT_STREQ(text, "");
  EXPECT_STREQ(name, "");
}

}  // namespace
