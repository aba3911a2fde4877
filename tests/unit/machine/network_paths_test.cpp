// Network paths: the forms and depths, the class bits, the real path made in place, the two forms turned into each
// other, the spelling of a path the network list does not know, and the volume facts by the network rules, on a place
// of the network view and on a real share.
#include "machine/network_paths.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "resources/message_ids.h"
#include "support/hex_text.h"
#include "support/scratch_folder.h"
#include "support/test_share.h"
#include "text/quoted_args.h"
#include "text/resource_strings.h"

namespace {

// The group texts and switches that the routines read, cleared before and after each test.
class NetworkState : public ::testing::Test {
 protected:
  void SetUp() override { Clear(); }
  void TearDown() override { Clear(); }
  static void Clear() {
    CurrentGroupText()[0] = 0;
    GroupHintText()[0] = 0;
    SetNoViewPrefix(0);
    SetNetworkLevelMask(0);
    SetRemoteNameAndComment("", "");
    SetLanguageIndex(1);
    RestoreNetworkSuffixes();
  }
};

// The path forms with their depth (PathDepth, negative for the UNC forms) and their class.
TEST(NetworkPaths, FormsDepthsAndClasses) {
  struct Row {
    const char *path;
    int depth;
    unsigned bits;
  } rows[] = {
      {"\\\\", 0, 0x01},                       // network root
      {"\\:", 0, 0x01},                        // network root, view form
      {"\\:*", 0, 0x01},                       // the root never gets the wildcard bit
      {"\\:x", 0, 0x01},                       // passes IsNetworkPath: only two bytes are looked at
      {"\\:\\", 1, 0x06},                      // view root
      {"\\:\\grp", 1, 0x02},                   // group
      {"\\:\\*.*", 1, 0x82},                   // every group
      {"\\:\\grp\\srv", 2, 0x308},             // server, view
      {"\\\\srv", -2, 0x108},                  // server, UNC
      {"\\\\*", -2, 0x188},                    // every server
      {"\\:\\grp\\srv\\sh", 3, 0x710},         // share, view
      {"\\:\\////\\srv\\sh", 3, 0x710},        // share in the group that is not known
      {"\\\\srv\\sh", -3, 0x510},              // share, UNC
      {"\\\\srv\\\\sh", -3, 0x510},            // a doubled backslash counts once
      {"\\\\\x95\x5C\\sh", -3, 0x510},         // a server named 表: its trail byte 0x5C is no separator
      {"\\\\srv\\*.*", -3, 0x590},             // every share of a server
      {"\\:\\grp\\srv\\sh\\d", 4, 0x720},      // folder below a share, view
      {"\\\\srv\\sh\\d", -4, 0x520},           // folder below a share, UNC
      {"\\\\srv\\sh\\", -4, 0x520},            // the share's root with its backslash lies a level deeper
      {"\\\\srv\\sh\\*.lnk", -4, 0x5A0},       // the shortcuts of a share
      {"\\:\\grp\\srv\\sh\\d\\e", 5, 0x760},   // deeper, view
      {"\\\\srv\\sh\\d\\e", -5, 0x560},        // deeper, UNC
      {"\\\\srv\\sh\\d\\e\\f\\g", -7, 0x560},  // and deeper still
      {"c:\\x", 1, 0},                         // no network path
      {"x", 0, 0},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(PathDepth(row.path), row.depth) << Hex(row.path);
    EXPECT_EQ(ClassifyNetworkPath(row.path), row.bits) << Hex(row.path);
  }
  EXPECT_EQ(ClassifyNetworkPath(nullptr), 0u);
}

TEST(NetworkPaths, IsUncPath) {
  EXPECT_EQ(IsUncPath("\\\\srv"), 1);
  EXPECT_EQ(IsUncPath("\\\\"), 1);
  EXPECT_EQ(IsUncPath("\\:\\grp"), 0);
  EXPECT_EQ(IsUncPath("\\x"), 0);
  EXPECT_EQ(IsUncPath(nullptr), 0);
}

// The real path of each form, by the mask: where it points in the caller's string, the saved byte, and the text
// there; after RestoreNetworkPath the string is as it was.
TEST_F(NetworkState, RealPathInPlace) {
  struct Row {
    const char *path;
    unsigned mask;
    int offset;  // where the real path begins in the string
    int saved;
    const char *real;
  } rows[] = {
      {"\\:\\grp\\srv\\sh\\d", 0, 5, 'p', "\\\\srv\\sh\\d"},  // the group's last byte becomes a backslash
      {"\\:\\grp\\srv\\sh\\d\\e", 0, 5, 'p', "\\\\srv\\sh\\d\\e"},
      {"\\:\\grp\\srv\\sh", 0, 0, 0, "\\:\\grp\\srv\\sh"},  // at rest a share by itself is no real place
      {"\\:\\grp\\srv\\sh", 0x10, 5, 'p', "\\\\srv\\sh"},
      {"\\:\\grp\\srv\\sh", 0x400, 5, 'p', "\\\\srv\\sh"},
      {"\\:\\grp\\srv", 0, 0, 0, "\\:\\grp\\srv"},
      {"\\:\\grp\\srv", 0x08, 5, 'p', "\\\\srv"},
      {"\\:\\\x95\x5C\\srv\\sh\\d", 0, 4, 0x5C, "\\\\srv\\sh\\d"},  // the group 表: its trail byte is overwritten
      {"\\\\srv\\sh", 0, 0, 0, "\\\\srv\\sh"},
      {"\\\\srv\\sh", 0x400, 0, -92, "\\\\srv\\sh"},  // real as it stands: minus its first byte, unchanged
      {"\\\\srv\\sh\\d", 0, 0, -92, "\\\\srv\\sh\\d"},
      {"\\\\srv", 0x08, 0, -92, "\\\\srv"},
      {"\\\\srv", 0x10, 0, 0, "\\\\srv"},
      {"c:\\x", 0xFFFF, 0, 0, "c:\\x"},  // no network path
      {"\\:x", 0, 0, 0, "\\:x"},         // the network root
  };
  for (const Row &row : rows) {
    PathBuffer path(row.path);
    int saved = 12345;
    SetNetworkLevelMask(row.mask);
    char *real = ToRealNetworkPath(path.bytes, &saved);
    SetNetworkLevelMask(0);
    EXPECT_EQ(real - path.bytes, row.offset) << Hex(row.path) << " mask " << row.mask;
    EXPECT_EQ(saved, row.saved) << Hex(row.path) << " mask " << row.mask;
    EXPECT_EQ(Hex(real), Hex(row.real)) << Hex(row.path) << " mask " << row.mask;
    EXPECT_EQ(RestoreNetworkPath(real, saved), row.saved > 0 ? 1 : 0) << Hex(row.path);
    EXPECT_EQ(Hex(path.bytes), Hex(row.path)) << "restored";
  }
  int saved = 7;
  EXPECT_EQ(ToRealNetworkPath(nullptr, &saved), nullptr);
  EXPECT_EQ(saved, 0);
  char empty[1] = "";
  EXPECT_EQ(ToRealNetworkPath(empty, nullptr), empty);  // the saved word is optional
  EXPECT_EQ(RestoreNetworkPath(nullptr, 'p'), 0);
}

TEST_F(NetworkState, AddNetworkPrefix) {
  struct Row {
    const char *hint, *current;
    int noViewPrefix;
    const char *path;
    int result;
    const char *after;
  } rows[] = {
      {"", "WG", 0, "\\\\srv\\sh", 1, "\\:\\WG\\srv\\sh"},
      {"HINT", "WG", 0, "\\\\srv\\sh\\d", 1, "\\:\\HINT\\srv\\sh\\d"},  // the hint goes before the current group
      {"", "WG", 0, "\\\\", 1, "\\:\\WG\\"},
      {"", "", 0, "\\\\srv\\sh", -1, "\\\\srv\\sh"},  // no group known
      {"", "WG", 1, "\\\\srv\\sh", 0, "\\\\srv\\sh"},
      {"", "WG", 0, "\\:\\WG\\srv", 0, "\\:\\WG\\srv"},  // not UNC
      {"", "WG", 0, "C:\\x", 0, "C:\\x"},
  };
  for (const Row &row : rows) {
    std::strcpy(GroupHintText(), row.hint);
    std::strcpy(CurrentGroupText(), row.current);
    SetNoViewPrefix(row.noViewPrefix);
    PathBuffer path(row.path);
    EXPECT_EQ(AddNetworkPrefix(path.bytes), row.result) << row.path << " hint " << row.hint;
    EXPECT_STREQ(path.bytes, row.after) << row.path << " hint " << row.hint;
  }
}

TEST(NetworkPaths, ComposeNetworkPath) {
  struct Row {
    const char *group, *remote, *out;
  } rows[] = {
      {"WG", "\\\\srv\\sh", "\\:\\WG\\srv\\sh"},
      {"WG\\more", "\\\\srv", "\\:\\WG\\srv"},   // the group is read up to its first backslash
      {"WG", "x\\srv\\sh", "\\:\\WG\\srv\\sh"},  // a name that is not UNC: its tail from the first backslash
      {"WG", "name", ""},                        // no tail
      {"WG\\more", nullptr, "WG"},               // no remote name: the group alone
      {"WG", "", "WG"},
      {"", "\\\\srv", ""},  // no group
      {nullptr, "\\\\srv", ""},
  };
  for (const Row &row : rows) {
    char out[520] = "garbage";
    PathBuffer group(row.group ? row.group : "");
    EXPECT_EQ(ComposeNetworkPath(out, row.group ? group.bytes : nullptr, row.remote), out);
    EXPECT_STREQ(out, row.out) << (row.group ? row.group : "(null)") << " " << (row.remote ? row.remote : "(null)");
    if (row.group) {
      EXPECT_STREQ(group.bytes, row.group) << "the cut byte is put back";
    }
  }
}

TEST_F(NetworkState, DropNetworkPrefix) {
  struct Row {
    const char *current, *path;
    int result;
    const char *after;
  } rows[] = {
      {"WG", "\\:\\WG\\srv\\sh", 1, "\\\\srv\\sh"},
      {"WG", "\\:\\WG\\srv\\sh\\d\\e", 1, "\\\\srv\\sh\\d\\e"},
      {"WG", "\\:\\WG\\srv", 0, "\\:\\WG\\srv"},  // no share named
      {"WG", "\\\\srv\\sh", 0, "\\\\srv\\sh"},
      {"LONGER", "\\:\\WG\\srv\\sh\\d", 1, "\\\\sh\\d"},  // the length of CurrentGroup is what goes, unread
  };
  for (const Row &row : rows) {
    std::strcpy(CurrentGroupText(), row.current);
    PathBuffer path(row.path);
    EXPECT_EQ(DropNetworkPrefix(path.bytes), row.result) << row.path;
    EXPECT_STREQ(path.bytes, row.after) << row.path;
  }
  // The way back from AddNetworkPrefix.
  std::strcpy(CurrentGroupText(), "WORKGROUP");
  PathBuffer path("\\\\srv\\sh\\d");
  ASSERT_EQ(AddNetworkPrefix(path.bytes), 1);
  ASSERT_EQ(DropNetworkPrefix(path.bytes), 1);
  EXPECT_STREQ(path.bytes, "\\\\srv\\sh\\d");
}

// With nothing in the network list, a path is spelled in capitals, the share of a view path in capital and lower case.
TEST_F(NetworkState, ResolveNetworkNameWithoutTheList) {
  struct Row {
    const char *path, *out;
    int result;
  } rows[] = {
      {"\\:\\grp\\srv\\sh", "\\:\\GRP\\SRV\\Sh", -1},
      {"\\:\\grp\\srv\\ab", "\\:\\GRP\\SRV\\Ab", -1},
      {"\\:\\grp\\srv\\SHARE\\dir", "\\:\\GRP\\SRV\\Share\\DIR", 0},    // the share is re-cased, not the folder
      {"\\:\\grp\\srv\\sh\\d\\e\\f", "\\:\\GRP\\SRV\\Sh\\D\\E\\F", 0},  // all of it, not only four levels
      {"\\:\\grp\\srv", "\\:\\GRP\\SRV", -1},
      {"\\:\\grp", "\\:\\GRP", -1},
      {"\\\\srv\\sh", "\\\\SRV\\SH", -1},  // a UNC path keeps its share in capitals
      {"\\\\srv\\sh\\d", "\\\\SRV\\SH\\D", 0},
      {"\\:\\g\\s\\\x95\x5C"
       "a\\b",
       "\\:\\G\\S\\\x95\x5C"
       "a\\B",
       0},  // the share 表a: its trail byte is no separator, and its lead byte has no case
  };
  for (const Row &row : rows) {
    char out[520] = "garbage";
    EXPECT_EQ(ResolveNetworkName(row.path, out), row.result) << Hex(row.path);
    EXPECT_EQ(Hex(out), Hex(row.out)) << Hex(row.path);
  }
}

// A place of the network view above a share: no system call, "NETWORK", the group or "my network" as the label, and
// the numbers cleared. A root that asked the system ("\:\grp\") would fail on both platforms.
TEST_F(NetworkState, VolumeDetailsOfTheNetworkView) {
  LoadStrings(kMsgMyNetwork, 0);
  const std::string myNetwork = FirstSlotText();
  struct Row {
    const char *root, *groupBefore, *label, *groupAfter;
  } rows[] = {
      {"\\:\\grp", "", "grp", "grp"},  // the group is composed from the path
      {"\\:\\grp\\srv\\", "", "grp", "grp"},
      {"\\:\\grp\\srv", "Other", "Other", "Other"},  // a group known already stands
      {"\\\\srv\\", "", "", ""},                     // a UNC server: nothing to compose from
      {"\\\\srv", "WG", "WG", "WG"},
      {"\\:\\", "WG", myNetwork.c_str(), "WG"},  // the view root
      {"\\\\", "WG", myNetwork.c_str(), "WG"},   // no network path once its backslash is cut
  };
  for (const Row &row : rows) {
    std::strcpy(CurrentGroupText(), row.groupBefore);
    char label[64] = "garbage", fileSystem[64] = "garbage";
    DWORD serial = 0xDEADBEEF, maxLength = 0xDEADBEEF, flags = 0xDEADBEEF;
    EXPECT_EQ(
        GetVolumeDetails(row.root, label, sizeof label, &serial, &maxLength, &flags, fileSystem, sizeof fileSystem), 1)
        << row.root;
    EXPECT_STREQ(fileSystem, "NETWORK") << row.root;
    EXPECT_STREQ(label, row.label) << row.root;
    EXPECT_STREQ(CurrentGroupText(), row.groupAfter) << row.root;
    EXPECT_EQ(serial, 0u) << row.root;
    EXPECT_EQ(maxLength, 0u) << row.root;
    EXPECT_EQ(flags, 0u) << row.root;
  }
  // The buffers' sizes bound what is written; the numbers are optional.
  CurrentGroupText()[0] = 0;
  char label[3] = "", fileSystem[4] = "";
  EXPECT_EQ(GetVolumeDetails("\\:\\grp", label, sizeof label, nullptr, nullptr, nullptr, fileSystem, sizeof fileSystem),
            1);
  EXPECT_STREQ(label, "gr");
  EXPECT_STREQ(fileSystem, "NET");
}

// A local root is asked by its first three bytes, and its name gets no suffix.
TEST_F(NetworkState, VolumeDetailsOfALocalRoot) {
  char expectedName[64] = "", expectedLabel[64] = "";
  DWORD expectedSerial = 0;
  ASSERT_TRUE(GetVolumeInformationA("Z:\\", expectedLabel, sizeof expectedLabel, &expectedSerial, nullptr, nullptr,
                                    expectedName, sizeof expectedName));
  char label[64] = "garbage", fileSystem[64] = "garbage";
  DWORD serial = 0;
  EXPECT_NE(GetVolumeDetails("Z:\\no\\such\\folder", label, sizeof label, &serial, nullptr, nullptr, fileSystem,
                             sizeof fileSystem),
            0);
  EXPECT_STREQ(fileSystem, expectedName);
  EXPECT_STREQ(label, expectedLabel);
  EXPECT_EQ(serial, expectedSerial);
}

TEST(NetworkPaths, SuffixesAtStart) {
  RestoreNetworkSuffixes();
  EXPECT_STREQ(NetworkSuffix(0), "-like ");
  EXPECT_EQ(Hex(NetworkSuffix(1)), Hex("\x8C\x6E"));  // 系
  EXPECT_EQ(NetworkSuffix(5), NetworkSuffix(1));      // any index but 0 is Japanese
}

// A real share: the volume is asked at the share's root, however deep the path lies and in either form, and its file
// system's name gets the suffix of the language and "NETOS".
class VolumeOfAShare : public NetworkState {
 protected:
  void SetUp() override {
    NetworkState::SetUp();
    if (!share_.Available()) GTEST_SKIP() << share_.Why();
    share_.MakeFolder("d");
    share_.MakeFolder("d\\e");
    std::string root = share_.Unc() + "\\";
    bool answered = GetVolumeInformationA(root.c_str(), nullptr, 0, &serial_, nullptr, nullptr, name_, sizeof name_);
    if (!answered && RunningUnderWine())
      GTEST_SKIP() << "Wine gives no volume for the root of a share (error " << GetLastError()
                   << "), so the network volume rules are tried on Linux only";
    ASSERT_TRUE(answered) << root << " error " << GetLastError();
  }
  // GetVolumeDetails of `root`: its file system's name, after checking that the share's volume answered.
  std::string NameOf(const std::string &root) {
    char fileSystem[64] = "garbage", label[64] = "garbage";
    DWORD serial = 0;
    EXPECT_NE(
        GetVolumeDetails(root.c_str(), label, sizeof label, &serial, nullptr, nullptr, fileSystem, sizeof fileSystem),
        0)
        << root;
    EXPECT_EQ(serial, serial_) << root;
    return fileSystem;
  }
  TestShare share_;
  char name_[64] = "";
  DWORD serial_ = 0;
};

TEST_F(VolumeOfAShare, AskedAtTheShareRoot) {
  const std::string withSuffix = std::string(name_) + "\x8C\x6E" + "NETOS";
  // GetVolumeInformationA itself refuses a folder below the root: an answer shows that the root was asked.
  EXPECT_EQ(NameOf(share_.Unc("d\\e") + "\\"), withSuffix);
  EXPECT_EQ(NameOf(share_.Unc("d")), withSuffix);
  EXPECT_EQ(NameOf(share_.Unc() + "\\"), withSuffix);
  EXPECT_EQ(NameOf("\\:\\WORKGROUP\\" + std::string(TestShare::Server()) + "\\" + share_.Share() + "\\d\\e\\"),
            withSuffix);
  SetLanguageIndex(0);
  EXPECT_EQ(NameOf(share_.Unc("d") + "\\"), std::string(name_) + "-like NETOS");
}

TEST_F(VolumeOfAShare, ASambaServerEmptiesTheSuffixForTheRestOfTheRun) {
  // A comment that names another server changes nothing.
  SetRemoteNameAndComment(share_.Unc().c_str(), "Windows Server");
  EXPECT_EQ(NameOf(share_.Unc() + "\\"), std::string(name_) + "\x8C\x6E" + "NETOS");
  SetRemoteNameAndComment(share_.Unc().c_str(), "Samba 4.17.12-Debian");
  EXPECT_EQ(NameOf(share_.Unc() + "\\"), "LINUX");
  EXPECT_STREQ(NetworkSuffix(1), "");
  EXPECT_STREQ(NetworkSuffix(0), "-like ");  // the other language's suffix stays
  // Later volumes, of any server, read by their bare names.
  SetRemoteNameAndComment("", "");
  EXPECT_EQ(NameOf(share_.Unc("d") + "\\"), name_);
  SetLanguageIndex(0);
  EXPECT_EQ(NameOf(share_.Unc("d") + "\\"), std::string(name_) + "-like NETOS");
}

}  // namespace
