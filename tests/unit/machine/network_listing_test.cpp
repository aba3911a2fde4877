// The network listing against a scripted network, on both builds: what each level lists, the list after a listing
// (order, depth, serial, batch size), a second look that makes no browser call, batches that take several calls, a
// server the browser cannot open, names the browser does not show, each failure of the browser with the message it
// gives and its row in the result text, a place below a share, and the walker going through the levels.
#include "machine/network_listing.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "console/console_prompt.h"
#include "console/control_store.h"
#include "files/directory_search.h"
#include "machine/network_paths.h"
#include "machine/system_info.h"
#include "platform/testing.h"
#include "reports/result_text.h"
#include "resources/message_ids.h"
#include "support/hex_text.h"
#include "support/scripted_network.h"
#include "support/test_share.h"
#include "text/path_strings.h"
#include "walker/walk_context.h"

namespace {

std::string Text(UINT id) {
  char text[1024] = "";
  LoadStringA(nullptr, id, text, sizeof text);
  return text;
}

struct Listing {
  int first;                       // FindFirstEntry's result
  std::vector<std::string> names;  // every entry, in order
  std::string pattern;             // the pattern as the listing left it
};

// Two groups: WORKGROUP with SRV1 (docs, pub) and SRV2 (data), OTHER with FAR (x). Every test starts with an empty
// list, no group known, an empty result text and the console taken over (a message waits for a key: none comes).
class NetworkListing : public ::testing::Test {
 protected:
  void SetUp() override {
    Reset();
    net_.AddGroup("WORKGROUP");
    net_.AddGroup("OTHER");
    net_.AddServer("WORKGROUP", "SRV1", "Samba 4.19");
    net_.AddServer("WORKGROUP", "SRV2");
    net_.AddServer("OTHER", "FAR");
    net_.AddShare("SRV1", "docs", "documents");
    net_.AddShare("SRV1", "pub");
    net_.AddShare("SRV2", "data");
    net_.AddShare("FAR", "x");
    TestConsoleBegin("");
  }
  void TearDown() override {
    TestConsoleEnd();
    EXPECT_EQ(net_.OpenBrowses(), 0u) << "every browse is closed";
    Reset();
  }
  static void Reset() {
    ReleaseNetworkList();
    ReleaseResultText();
    CurrentGroupText()[0] = 0;
    GroupHintText()[0] = 0;
    SetRemoteNameAndComment("", "");
    SetStopFlag(0);
    SetNetworkMessageSwitches(0, 0, 0);
  }
  // Lists `pattern` as the walker does, through the directory search.
  static Listing List(const std::string &pattern) {
    char buffer[kPathSize];
    std::snprintf(buffer, sizeof buffer, "%s", pattern.c_str());
    FindHandle handle = {nullptr, nullptr};
    FindRecord record;
    Listing listing;
    listing.first = FindFirstEntry(&handle, buffer, &record);
    for (int status = listing.first; status == 0; status = FindNextEntry(&handle, &record)) {
      EXPECT_EQ(record.dwFileAttributes, static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY)) << record.cFileName;
      listing.names.push_back(record.cFileName);
    }
    CloseFind(&handle);
    listing.pattern = buffer;
    return listing;
  }
  static std::string ResultText() {
    const char *text = LockResultText();
    return text != nullptr ? text : "";
  }
  ScriptedNetwork net_;
};

typedef std::vector<std::string> Names;

// Each level of the network lists its entries, in the browser's order, and the pattern takes the network's spelling.
TEST_F(NetworkListing, EachLevel) {
  struct Row {
    const char *pattern;
    Names names;
    const char *spelled;
  } rows[] = {
      {"\\\\srv1\\*.*", {"docs", "pub"}, "\\:\\WORKGROUP\\SRV1\\*.*"},
      {"\\\\Srv1\\*.lnk", {"docs", "pub"}, "\\:\\WORKGROUP\\SRV1\\*.lnk"},  // the mask picks nothing out
      {"\\:\\workgroup\\srv2\\*.*", {"data"}, "\\:\\WORKGROUP\\SRV2\\*.*"},
      {"\\:\\WORKGROUP\\*.*", {"SRV1", "SRV2"}, "\\:\\WORKGROUP\\*.*"},
      {"\\:\\OTHER\\*.*", {"FAR"}, "\\:\\OTHER\\*.*"},
      {"\\:\\other\\far\\*.*", {"x"}, "\\:\\OTHER\\FAR\\*.*"},
      {"\\:\\*.*", {"WORKGROUP", "OTHER"}, "\\:\\*.*"},
      {"\\\\*.*", {"SRV1", "SRV2"}, "\\:\\WORKGROUP\\*.*"},  // the servers of the first group
      {"\\\\far\\*.*", {}, "\\:\\WORKGROUP\\far\\*.*"},      // a UNC server is looked for in the first group only
  };
  for (const Row &row : rows) {
    Reset();
    Listing listing = List(row.pattern);
    EXPECT_EQ(listing.names, row.names) << row.pattern;
    EXPECT_EQ(listing.first != 0, row.names.empty()) << row.pattern;
    EXPECT_EQ(listing.pattern, row.spelled) << row.pattern;
  }
}

// The list after a listing holds every batch seen on the way down, in order, with depth, serial and batch size.
TEST_F(NetworkListing, ListHoldsWhatWasSeen) {
  List("\\\\srv1\\*.*");
  struct Row {
    const char *view;
    int depth;
    DWORD serial;
    DWORD siblings;
    DWORD displayType;
  } rows[] = {
      {"\\:\\WORKGROUP", 1, 1, 2, 1},
      {"\\:\\OTHER", 1, 1, 2, 1},
      {"\\:\\WORKGROUP\\SRV1", 2, 2, 2, 2},
      {"\\:\\WORKGROUP\\SRV2", 2, 2, 2, 2},
      {"\\:\\WORKGROUP\\SRV1\\docs", 3, 3, 2, 3},
      {"\\:\\WORKGROUP\\SRV1\\pub", 3, 3, 2, 3},
  };
  NetworkNode *node = NetworkListHead();
  for (const Row &row : rows) {
    ASSERT_NE(node, nullptr) << row.view;
    EXPECT_STREQ(node->Resource->lpRemoteName, row.view);
    EXPECT_EQ(node->Depth, row.depth) << row.view;
    EXPECT_EQ(node->Serial, row.serial) << row.view;
    EXPECT_EQ(node->SiblingCount, row.siblings) << row.view;
    EXPECT_EQ(node->Resource->dwDisplayType, row.displayType) << row.view;
    EXPECT_EQ(node->Unreachable, 0) << row.view;
    node = node->Next;
  }
  EXPECT_EQ(node, nullptr);
  EXPECT_EQ(net_.OpenedPlaces(), (Names{"", "WORKGROUP", "\\\\SRV1"}));
  // The comment of the share stays with its node.
  EXPECT_STREQ(NetworkListHead()->Next->Next->Next->Next->Resource->lpComment, "documents");
}

// A second look at a place, or at anything seen on the way to it, makes no browser call; a server seen on the way
// is browsed from its own record, not from the top.
TEST_F(NetworkListing, SecondLookMakesNoCall) {
  List("\\\\srv1\\*.*");
  size_t calls = net_.Calls();
  for (const char *pattern :
       {"\\\\SRV1\\*.*", "\\\\srv1\\*.lnk", "\\:\\WORKGROUP\\SRV1\\*.*", "\\:\\WORKGROUP\\*.*", "\\:\\*.*", "\\\\*.*"})
    EXPECT_FALSE(List(pattern).names.empty()) << pattern;
  EXPECT_EQ(net_.Calls(), calls);
  EXPECT_EQ(List("\\\\srv2\\*.*").names, Names{"data"});
  EXPECT_EQ(net_.OpenedPlaces(), (Names{"", "WORKGROUP", "\\\\SRV1", "\\\\SRV2"}));
  calls = net_.Calls();
  EXPECT_EQ(List("\\\\srv2\\*.*").names, Names{"data"});
  EXPECT_EQ(net_.Calls(), calls);
}

// A browser that gives one record per call: every level takes several calls, each batch gets a serial of its own,
// and the listing is whole.
TEST_F(NetworkListing, BatchesThatNeedMoreCalls) {
  net_.SetBatchSize(1);
  EXPECT_EQ(List("\\\\srv1\\*.*").names, (Names{"docs", "pub"}));
  // Top: WORKGROUP matches in the first batch; the group: SRV1 in the first; the server: two batches and the end.
  EXPECT_EQ(net_.Enumerations(), 1u + 1u + 3u);
  std::vector<DWORD> serials;
  for (NetworkNode *node = NetworkListHead(); node != nullptr; node = node->Next) serials.push_back(node->Serial);
  EXPECT_EQ(serials, (std::vector<DWORD>{1, 2, 3, 4}));
  size_t calls = net_.Calls();
  EXPECT_EQ(List("\\\\srv1\\*.*").names, (Names{"docs", "pub"}));
  EXPECT_EQ(net_.Calls(), calls);
}

// A server that the browser cannot open stays in the list as unreachable: its listing says so (0x20), at once and
// on the second look, which makes no call.
TEST_F(NetworkListing, UnreachableServer) {
  net_.FailOpen("\\\\SRV2", ERROR_BAD_NETPATH);
  Listing first = List("\\\\srv2\\*.*");
  EXPECT_TRUE(first.names.empty());
  EXPECT_NE(first.first & 0x20, 0) << first.first;
  NetworkNode *server = NetworkListHead()->Next->Next->Next;
  ASSERT_NE(server, nullptr);
  EXPECT_STREQ(server->Resource->lpRemoteName, "\\:\\WORKGROUP\\SRV2");
  EXPECT_EQ(server->Unreachable, 1);
  size_t calls = net_.Calls();
  Listing second = List("\\\\srv2\\*.*");
  EXPECT_NE(second.first & 0x20, 0) << second.first;
  EXPECT_EQ(net_.Calls(), calls);
  // The server still lists among its group's servers, as the browser showed it.
  EXPECT_EQ(List("\\:\\WORKGROUP\\*.*").names, (Names{"SRV1", "SRV2"}));
  EXPECT_EQ(TestConsoleOutput(), "") << "an unreachable server is told by its bit, not by a message";
}

// Names the browser does not show: the message starts with the name in brackets and the place it was looked for in;
// a second look at the name, or below it, asks nothing and tells nothing; the name is no entry of its level.
TEST_F(NetworkListing, NamesTheBrowserDoesNotShow) {
  struct Row {
    const char *pattern;
    const char *head;
    const char *again;
  } rows[] = {
      {"\\:\\NOGROUP\\SRV1\\*.*", "[NOGROUP] in \\:\\", "\\:\\NOGROUP\\*.*"},
      {"\\\\srv9\\*.*", "[srv9] in \\:\\WORKGROUP", "\\\\SRV9\\*.lnk"},
      {"\\:\\WORKGROUP\\SRV9\\*.*", "[SRV9] in \\:\\WORKGROUP", "\\:\\WORKGROUP\\srv9\\*.*"},
  };
  for (const Row &row : rows) {
    Reset();
    TestConsoleEnd();
    TestConsoleBegin("");
    Listing listing = List(row.pattern);
    EXPECT_TRUE(listing.names.empty()) << row.pattern;
    EXPECT_NE(listing.first & 0x10, 0) << row.pattern;
    std::string shown = TestConsoleOutput();
    EXPECT_NE(shown.find(Text(kMsgNetworkTitle) + ":" + row.head), std::string::npos) << Hex(shown);
    EXPECT_NE(shown.find(Text(kMsgNetworkFolderNotFound)), std::string::npos) << Hex(shown);
    EXPECT_NE(ResultText().find(row.head), std::string::npos) << row.pattern;
    size_t calls = net_.Calls();
    EXPECT_TRUE(List(row.again).names.empty()) << row.again;
    EXPECT_EQ(net_.Calls(), calls) << row.again;
    EXPECT_EQ(TestConsoleOutput(), shown) << row.again;
  }
  EXPECT_EQ(List("\\:\\WORKGROUP\\*.*").names, (Names{"SRV1", "SRV2"}));
}

// Each failure of the browser: the message it gives (none for access denied), its row in the result text under the
// heading "ﾈｯﾄﾜｰｸ", and a listing that ends without entries.
TEST_F(NetworkListing, BrowserFailures) {
  struct Row {
    const char *what;
    bool atOpen;
    const char *place;
    DWORD error;
    const char *providerText;  // for the extended error
    std::string message;       // empty: no message
  } rows[] = {
      {"extended error", true, "\\\\SRV1", ERROR_EXTENDED_ERROR, "The provider is asleep.", "The provider is asleep."},
      {"extended error, no text", true, "\\\\SRV1", ERROR_EXTENDED_ERROR, "", Text(kMsgNetworkDriveError)},
      {"no network, at the top", true, "", ERROR_NO_NETWORK, "", Text(kMsgNetworkNotConnected)},
      {"no network, listing a server", false, "\\\\SRV1", ERROR_NO_NETWORK, "", Text(kMsgNetworkNotConnected)},
      {"logon refused", false, "\\\\SRV1", 59, "", Text(kMsgNetworkRefused)},
      {"another error", false, "WORKGROUP", 31, "", Text(kMsgNetworkDriveError)},
      {"access denied, at the open", true, "\\\\SRV1", ERROR_ACCESS_DENIED, "", ""},
      {"access denied, listing", false, "\\\\SRV1", ERROR_ACCESS_DENIED, "", ""},
  };
  for (const Row &row : rows) {
    Reset();
    TestConsoleEnd();
    TestConsoleBegin("");
    ScriptedNetwork *net = &net_;
    net->failures_.clear();
    if (row.atOpen)
      net->FailOpen(row.place, row.error);
    else
      net->FailEnumeration(row.place, row.error);
    net->SetExtendedError(row.error, row.providerText);
    size_t lastErrorCalls = net->LastErrorCalls();
    Listing listing = List("\\\\srv1\\*.*");
    EXPECT_TRUE(listing.names.empty()) << row.what;
    EXPECT_NE(listing.first, 0) << row.what;
    std::string shown = TestConsoleOutput();
    std::string result = ResultText();
    if (row.message.empty()) {
      EXPECT_EQ(shown, "") << row.what;
      EXPECT_EQ(result.find(Text(kMsgNetworkTitle)), std::string::npos) << row.what;
    } else {
      EXPECT_NE(shown.find(Text(kMsgNetworkTitle) + ":"), std::string::npos) << row.what << Hex(shown);
      EXPECT_NE(shown.find(row.message), std::string::npos) << row.what << Hex(shown);
      EXPECT_EQ(result.find(Text(kMsgNetworkTitle)), 0u) << row.what << Hex(result);
      EXPECT_NE(result.find(row.message), std::string::npos) << row.what << Hex(result);
    }
    EXPECT_EQ(net->LastErrorCalls() - lastErrorCalls, row.error == ERROR_EXTENDED_ERROR ? 1u : 0u) << row.what;
  }
}

// The message switches, which this program never sets: quiet tells nothing; suppressed tells only an extended
// error; the refused-access switch tells access denied.
TEST_F(NetworkListing, MessageSwitches) {
  struct Row {
    int quiet, suppressed, refusedAccess;
    DWORD error;
    std::string message;  // empty: nothing told
  } rows[] = {
      {1, 0, 0, ERROR_NO_NETWORK, ""},
      {1, 0, 0, ERROR_EXTENDED_ERROR, ""},
      {0, 1, 0, ERROR_NO_NETWORK, ""},
      {0, 1, 0, ERROR_EXTENDED_ERROR, "asleep"},
      {0, 0, 0, ERROR_NO_NETWORK, Text(kMsgNetworkNotConnected)},
      {0, 0, 1, ERROR_ACCESS_DENIED, Text(kMsgNetworkRefusedAskPassword)},
  };
  for (const Row &row : rows) {
    Reset();
    TestConsoleEnd();
    TestConsoleBegin("");
    net_.failures_.clear();
    net_.FailOpen("\\\\SRV1", row.error);
    net_.SetExtendedError(row.error, "asleep");
    SetNetworkMessageSwitches(row.quiet, row.suppressed, row.refusedAccess);
    List("\\\\srv1\\*.*");
    std::string shown = TestConsoleOutput();
    if (row.message.empty())
      EXPECT_EQ(shown, "") << row.error;
    else
      EXPECT_NE(shown.find(row.message), std::string::npos) << row.error << Hex(shown);
  }
}

// A failed close of a browse that listed nothing is told too.
TEST_F(NetworkListing, FailedClose) {
  net_.FailClose(ERROR_NO_NETWORK);
  net_.FailOpen("\\\\SRV1", ERROR_ACCESS_DENIED);
  List("\\\\srv1\\*.*");
  EXPECT_NE(TestConsoleOutput().find(Text(kMsgNetworkNotConnected)), std::string::npos);
}

// A place below a share is the file system's: no browse. A share named without a wildcard is browsed down to its
// server, and found there as lying below the share.
TEST_F(NetworkListing, BelowShare) {
  WIN32_FIND_DATAA record;
  void *cursor = nullptr;
  char below[kPathSize] = "\\\\SRV1\\docs\\sub\\*.*";
  EXPECT_EQ(FindFirstNetworkEntry(&cursor, below, &record), 0);
  EXPECT_EQ(net_.Calls(), 0u);
  char share[kPathSize] = "\\\\srv1\\DOCS";
  EXPECT_EQ(FindFirstNetworkEntry(&cursor, share, &record), 0);
  EXPECT_EQ(net_.OpenedPlaces(), (Names{"", "WORKGROUP", "\\\\SRV1"}));
  EXPECT_STREQ(share, "\\:\\WORKGROUP\\SRV1\\docs");
  EXPECT_EQ(FindFirstNetworkEntry(&cursor, const_cast<char *>("C:\\x"), &record), 4);
}

// The list gives a network path its spelling, and its release empties it.
TEST_F(NetworkListing, SpellingAndRelease) {
  List("\\\\srv1\\*.*");
  char out[kPathSize];
  EXPECT_EQ(ResolveNetworkName("\\:\\workgroup\\srv1\\DOCS", out), 1);
  EXPECT_STREQ(out, "\\:\\WORKGROUP\\SRV1\\docs");
  EXPECT_STREQ(RemoteNameAndComment() + std::strlen(RemoteNameAndComment()) + 1, "documents");
  ReleaseNetworkList();
  EXPECT_EQ(NetworkListHead(), nullptr);
  EXPECT_EQ(ResolveNetworkName("\\:\\workgroup\\srv1\\DOCS", out), -1);
}

// The walker goes through the network's root, a group and a server (by UNC and by the view's name) as folders whose
// entries come from the list, into the shares, whose folders are the file system's. At the levels of the network view
// both passes go into each entry, so each is walked twice. Only the first walk browses.
TEST(NetworkWalk, RootGroupAndServer) {
  TestShare share;
  if (!share.Available()) GTEST_SKIP() << share.Why();
  share.MakeFile("a.lnk");
  ReleaseNetworkList();
  ScriptedNetwork net;
  net.AddGroup("WORKGROUP");
  net.AddServer("WORKGROUP", TestShare::Server());
  net.AddShare(TestShare::Server(), share.Share());
  auto twice = [](const std::string &lines) { return lines + lines; };
  auto server = [&](const std::string &place) { return "\n " + place + twice("\n " + place + "\\" + share.Share()); };
  const std::string unc = std::string("\\\\") + TestShare::Server();
  const std::string view = std::string("\\:\\WORKGROUP\\") + TestShare::Server();
  struct Row {
    std::string folder;
    std::string lines;
  } rows[] = {
      {unc, server(unc)},
      {view, server(view)},
      {"\\\\", "\n \\\\" + twice(server(unc))},
      {"\\:\\WORKGROUP", "\n \\:\\WORKGROUP" + twice(server(view))},
  };
  for (const Row &row : rows) {
    PrepareWalk(nullptr, kIdFolderDisplay, 0, 0, 0, nullptr, nullptr, 0);
    TestConsoleBegin("");
    unsigned count = 0;
    ScanFolderTree(nullptr, nullptr, kWalkShortcutTree, &count, row.folder.c_str(), "*.lnk", nullptr);
    std::string output = TestConsoleOutput();
    TestConsoleEnd();
    EXPECT_EQ(output, row.lines) << row.folder;
  }
  EXPECT_EQ(net.OpenedPlaces(), (std::vector<std::string>{"", "WORKGROUP", unc}))
      << "later walks are served from the list";
  ReleaseNetworkList();
}

}  // namespace
