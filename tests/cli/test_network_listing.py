"""The places of the network above share level as search folders, on Linux: a server, and the same server by the
network view's name, walked through the shares that the share table maps for it.

The shares are scratch folders of the test's own, mapped by KELMARO_SHARES: two of one server and one of another. The
browser that lists them is the Linux program's own, over the share table; the Windows program under Wine has no
browser that lists anything (its unit tests give it a scripted network instead).
"""
import os
import re
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import harness  # noqa: E402
from test_network_paths import linux_network_connected, write_linked  # noqa: E402

# Servers of this run's own, so that no share of the machine's mounts comes between.
FIRST = "kelmaro-list-%d-a" % os.getpid()
SECOND = "kelmaro-list-%d-b" % os.getpid()


def network_group():
    """The group the Linux program puts its servers in: the workgroup of /etc/samba/smb.conf where that file sets one
    in its global section, otherwise KELMARO_WORKGROUP, which these tests set."""
    group, section = "", "global"
    try:
        with open("/etc/samba/smb.conf", encoding="utf-8", errors="replace") as conf:
            for line in conf:
                text = line.strip()
                if not text or text[0] in ";#":
                    continue
                if text.startswith("["):
                    section = text[1:].split("]")[0].strip().lower()
                    continue
                key, _, value = text.partition("=")
                if section == "global" and re.sub(r"\s", "", key).lower() == "workgroup" and value.strip():
                    group = value.strip()
    except OSError:
        pass
    return group or "TESTGROUP"


class NetworkListing(harness.ProgramTest):
    def setUp(self):
        super().setUp()
        if harness.under_wine():
            self.skipTest("only the Linux program lists the network from its shares: Wine's browser shows no server, "
                          "and the Windows build's listing is tested against a scripted network in the unit tests")
        if not linux_network_connected():
            self.skipTest("this machine has no network connection (no interface but the loopback is up): the program "
                          "refuses a network path before it looks at it, as Windows does")
        self.folders = {}
        for name in ("docs", "pub", "data"):
            folder = os.path.join(self.scratch, name)
            os.makedirs(os.path.join(folder, "Sub"))
            write_linked(os.path.join(folder, "top.lnk"), "D:\\Apps\\%s.exe" % name)
            write_linked(os.path.join(folder, "Sub", "inner.lnk"), "D:\\Apps\\inner.exe")
            self.folders[name] = folder
        # Given out of name order: the browser lists the shares by name.
        shares = [(FIRST, "pub"), (SECOND, "data"), (FIRST, "docs")]
        self.env = {"KELMARO_SHARES": ";".join("\\\\%s\\%s=%s" % (server, share, self.folders[share])
                                               for server, share in shares),
                    "KELMARO_WORKGROUP": "TESTGROUP"}

    def target(self, share, name="top.lnk"):
        return harness.read_shortcut(os.path.join(self.folders[share], name))["path"]

    def walk_lines(self, start, changed):
        """The folder lines of a walk that starts at a server: the server, then each share and its folder below,
        twice, as the mask pass and the pass over all entries both go into a place of the network view; a changed
        shortcut's line behind its folder."""
        lines = "\n\n " + start
        for rounds in range(2):
            for share in ("docs", "pub"):
                folder = "%s\\%s" % (start, share)
                lines += "\n " + folder
                if changed(rounds):
                    lines += "\n ---> - %s\\top.lnk" % folder
                lines += "\n %s\\Sub" % folder
                if changed(rounds):
                    lines += "\n ---> - %s\\Sub\\inner.lnk" % folder
        return lines

    def test_a_server_is_walked_through_its_shares(self):
        result = harness.run(["-fdpr", "\\\\" + FIRST, "D:\\Apps", "E:\\Apps"], env=self.env)
        # The server stands as the exact-case pass spells a name it does not know; its shares as the browser does.
        self.assertOutput(result, self.walk_lines("\\\\" + FIRST.capitalize(), lambda rounds: rounds == 0), 1)
        self.assertEqual([self.target(share) for share in ("docs", "pub", "data")],
                         ["E:\\Apps\\docs.exe", "E:\\Apps\\pub.exe", "D:\\Apps\\data.exe"])
        self.assertEqual(self.target("pub", "Sub/inner.lnk"), "E:\\Apps\\inner.exe")

    def test_the_network_views_name_of_the_server_walks_the_same_shares(self):
        group = network_group()
        view = "\\:\\%s\\%s" % (group, FIRST)
        result = harness.run(["-fdpr", view, "D:\\Apps", "E:\\Apps"], env=self.env)
        start = "\\:\\%s\\%s" % (group.capitalize(), FIRST.capitalize())
        # The matches are reported in both passes: the writer is handed the shortcut's path in the view's spelling,
        # which no system call takes, and a failed write shows nowhere, so the files stay as they were.
        self.assertOutput(result, self.walk_lines(start, lambda rounds: True), 1)
        self.assertEqual([self.target(share) for share in ("docs", "pub", "data")],
                         ["D:\\Apps\\docs.exe", "D:\\Apps\\pub.exe", "D:\\Apps\\data.exe"])

    def test_a_server_the_share_table_does_not_know_is_told_once(self):
        missing = "\\\\%s-none" % FIRST
        result = harness.run(["-fdp", missing, "D:\\Apps", "E:\\Apps"], env=self.env)
        told = ("\nﾈｯﾄﾜｰｸ:[%s-none] in \\:\\%s" % (FIRST.capitalize(), network_group()) +
                "\n\n指定したﾈｯﾄﾜｰｸﾌｫﾙﾀﾞが見つかりません。")
        shown = harness.sj(told)
        self.assertEqual(result.stdout.count(shown), 1, result.stdout.decode("cp932", errors="replace"))
        self.assertEqual(result.code, 1)


if __name__ == "__main__":
    harness.main()
