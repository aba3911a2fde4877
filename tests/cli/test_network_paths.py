"""Search folders on the network: a share walked by its UNC name and by the network view's name, a share that is not
there, and on Linux a Linux folder that only a share holds.

A share is a scratch folder of the test's own. The Linux program finds it through KELMARO_SHARES; the Windows program
under Wine through the prefix's dosdevices/unc folder, where Wine looks for \\\\server\\share.
"""
import fcntl
import os
import socket
import struct
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import harness  # noqa: E402

ANY_KEY = "Press Any Key>>"
# The server of this run's shares: Wine's shares lie in a prefix that other suites use at the same time.
SERVER = "kelmaro-cli-%d" % os.getpid()


def linux_network_connected():
    """Whether the Linux program sees a network connection, by its own rule: an interface other than the loopback,
    up and running, with an IPv4 or IPv6 address. Without one it refuses every network path before touching it."""
    with open("/proc/net/if_inet6") if os.path.exists("/proc/net/if_inet6") else open(os.devnull) as inet6:
        ipv6 = {line.split()[-1] for line in inet6 if line.strip()}
    probe = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    try:
        for _, name in socket.if_nameindex():
            request = struct.pack("16sH14s", name.encode()[:15], 0, b"")
            try:
                flags = struct.unpack("16sH", fcntl.ioctl(probe, 0x8913, request)[:18])[1]  # SIOCGIFFLAGS
            except OSError:
                continue
            if flags & 0x8 or not flags & 0x1 or not flags & 0x40:  # LOOPBACK, UP, RUNNING
                continue
            if name in ipv6:
                return True
            try:
                fcntl.ioctl(probe, 0x8915, struct.pack("16s16s", name.encode()[:15], b""))  # SIOCGIFADDR
                return True
            except OSError:
                continue
    finally:
        probe.close()
    return False


def write_linked(path, target):
    harness.write_shortcut(path, target=target, workdir=os.path.dirname(target.replace("\\", "/")).replace("/", "\\"),
                           icon=target, index=0)


class Share:
    """A scratch folder served as \\\\SERVER\\name while the object lives: env() gives what the Linux program needs
    to see it; under Wine a link in the prefix stands for it."""

    def __init__(self, folder, name):
        self.folder = folder
        self.name = name
        self.link = None
        if harness.under_wine():
            server = os.path.join(harness.wine_prefix(), "dosdevices", "unc", SERVER)
            os.makedirs(server, exist_ok=True)
            self.link = os.path.join(server, name)
            os.symlink(folder, self.link)

    def unc(self, relative=""):
        return "\\\\%s\\%s" % (SERVER, self.name) + ("\\" + relative if relative else "")

    def env(self):
        return {} if harness.under_wine() else {"KELMARO_SHARES": "%s=%s" % (self.unc(), self.folder)}

    def close(self):
        if self.link:
            os.remove(self.link)
            try:
                os.rmdir(os.path.dirname(self.link))
            except OSError:
                pass


class NetworkSearchFolders(harness.ProgramTest):
    def setUp(self):
        super().setUp()
        if not harness.under_wine() and not linux_network_connected():
            self.skipTest("this machine has no network connection (no interface but the loopback is up): the program "
                          "refuses a network path before it looks at it, as Windows does")
        self.links = os.path.join(self.scratch, "links")
        os.makedirs(os.path.join(self.links, "Sub"))
        write_linked(os.path.join(self.links, "top.lnk"), "D:\\Apps\\top.exe")
        write_linked(os.path.join(self.links, "Sub", "inner.lnk"), "D:\\Apps\\inner.exe")
        write_linked(os.path.join(self.links, "Sub", "other.lnk"), "C:\\Other\\other.exe")
        self.share = Share(self.links, "links")
        self.addCleanup(self.share.close)

    def targets(self):
        return [harness.read_shortcut(os.path.join(self.links, name))["path"]
                for name in ("top.lnk", "Sub/inner.lnk", "Sub/other.lnk")]

    def test_a_unc_search_folder_is_walked_and_its_shortcuts_repaired(self):
        result = harness.run(["-fdpr", self.share.unc(), "D:\\Apps", "E:\\Apps"], env=self.share.env())
        # The start folder is spelled as the network view spells a name it does not know: the server and the share
        # with capitals, as the exact-case pass folds them; the folders below in the disk's own spelling.
        shown = "\\\\%s\\Links" % SERVER.capitalize()
        expected = ("\n\n %s\n ---> - %s\\top.lnk" % (shown, shown) +
                    "\n %s\\Sub\n ---> - %s\\Sub\\inner.lnk" % (shown, shown))
        self.assertOutput(result, expected, 1)
        self.assertEqual(self.targets(), ["E:\\Apps\\top.exe", "E:\\Apps\\inner.exe", "C:\\Other\\other.exe"])
        fields = harness.read_shortcut(os.path.join(self.links, "Sub", "inner.lnk"))
        self.assertEqual((fields["workdir"], fields["icon"]), ("E:\\Apps", "E:\\Apps\\inner.exe"))

    def test_the_network_views_name_of_the_share_reaches_the_same_folder(self):
        view = "\\:\\WORKGROUP\\%s\\links" % SERVER
        result = harness.run(["-fdpr", view, "D:\\Apps", "E:\\Apps"], env=self.share.env())
        shown = "\\:\\Workgroup\\%s\\Links" % SERVER.capitalize()
        expected = ("\n\n %s\n ---> - %s\\top.lnk" % (shown, shown) +
                    "\n %s\\Sub\n ---> - %s\\Sub\\inner.lnk" % (shown, shown))
        self.assertOutput(result, expected, 1)
        # The matches are reported, but the writer is handed the shortcut's path in the view's spelling, which no
        # system call takes, and a failed write shows nowhere: the files stay as they were, on Windows as here.
        self.assertEqual(self.targets(), ["D:\\Apps\\top.exe", "D:\\Apps\\inner.exe", "C:\\Other\\other.exe"])

    def test_a_share_that_is_not_there_is_refused_by_the_drive_check(self):
        missing = "\\\\%s\\nosuch" % SERVER
        result = harness.run(["-fdpr", missing, "D:\\Apps", "E:\\Apps"], b"k", env=self.share.env())
        if harness.under_wine():
            # Wine answers "path not found" for a share it does not know, where Windows answers "network path not
            # found" (53): the drive check then speaks of a drive, named by the path's first byte.
            expected = "\nDrive: ﾄﾞﾗｲﾌﾞ・ﾌｫﾙﾀﾞ指定失敗:[-\\-] ﾄﾞﾗｲﾌﾞのｱｸｾｽが拒否されました。"
        else:
            expected = "\nDrive: ﾄﾞﾗｲﾌﾞ・ﾌｫﾙﾀﾞ指定失敗:[%s]\n指定したﾈｯﾄﾜｰｸﾌｫﾙﾀﾞ･ﾌｧｲﾙにはｱｸｾｽできません。" % missing
        self.assertOutput(result, expected + ANY_KEY, 1)
        self.assertEqual(self.targets()[0], "D:\\Apps\\top.exe")

    def test_a_folder_below_a_share_that_is_not_there_is_not_found(self):
        # A folder below a share is a real place: the first check looks for it, before the drive check.
        missing = "\\\\%s\\nosuch\\folder" % SERVER
        result = harness.run(["-fdpr", missing, "D:\\Apps", "E:\\Apps"], b"k", env=self.share.env())
        self.assertOutput(result, "\n\n====> %sが見つかりません：" % missing + ANY_KEY, 0)

    def test_a_linux_folder_that_only_a_share_holds_is_taken_by_its_unc_name(self):
        if harness.under_wine():
            self.skipTest("Linux folders on the command line are the Linux program's: Wine is given Windows paths")
        # No drive holds the scratch folder once Z: is elsewhere; the share does.
        env = dict(self.share.env(), KELMARO_DRIVES="Z=%s" % os.path.join(self.scratch, "elsewhere"))
        os.makedirs(os.path.join(self.scratch, "elsewhere"))
        result = harness.run(["-fdp", os.path.join(self.links, "Sub"), "D:\\Apps", "E:\\Apps"], env=env)
        # Below a share the exact-case pass asks the file system name by name: the server stands as given, the share
        # too (a find call gives no entry for the root of a share), the folders below it as on disk.
        self.assertOutput(result, "\n\n \\\\%s\\links\\Sub" % SERVER, 1)
        self.assertEqual(self.targets()[1], "E:\\Apps\\inner.exe")


if __name__ == "__main__":
    harness.main()
