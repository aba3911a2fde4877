"""Folders that other people filled, walked under -fdpr: one table of entries that are no ordinary shortcut (a FIFO, a
socket or a device named *.lnk, a folder named so, symbolic links that lead nowhere, round or 2,000 deep, names that
are not UTF-8 or that Shift-JIS cannot hold, read-only shortcuts and folders, a folder that cannot be listed, empty,
cut and random files), each in a folder of its own beside a shortcut that is to be repaired, and then all of them in
one tree. Each run must end within its time limit, with its exit code and its output, and leave every file of the tree
as it was except the shortcuts that were meant to change.
"""
import hashlib
import os
import pwd
import random
import socket
import stat
import subprocess
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import harness  # noqa: E402

# Seconds that one run may take; the slowest entry (10 MB of random bytes, 2,000 links) takes well under one second,
# also under the sanitizers. A run that hangs fails here instead of holding the suite.
TIME_LIMIT = 60

# A shortcut written by Windows 10, among the samples that exist beside the project in CI but not on every machine.
SAMPLE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..", "shared", "lnk-samples",
                      "alfaifi", "WIN10", "1607_14393", "manual.lnk")

IS_ROOT = hasattr(os, "geteuid") and os.geteuid() == 0
NOT_ON_WINE = "Wine shows no FIFOs, sockets, devices or Unix symbolic links as Windows would have them"


class Entry:
    """One row of the table. `make(folder)` puts the hostile entry into its own folder; `lines(root)` gives what the
    walk prints below that folder's line in walk order, as ("folder", name) and ("changed", name) with names relative
    to the folder, leaving out the line of its zz-good.lnk, which comes before the first sub-folder; `changed` are the
    names whose files the run is meant to change, `told` those whose failed save is told on standard error. The three
    take `root`, True when the program runs as root."""

    def __init__(self, folder, make, lines=lambda root: [], changed=lambda root: [], told=lambda root: [],
                 linux_only=None, root_only=False, drops_root=False):
        self.folder = folder
        self.make = make
        self.lines = lines
        self.changed = changed
        self.told = told
        self.linux_only = linux_only
        self.root_only = root_only
        self.drops_root = drops_root


def write(path, data):
    with open(path, "wb") as out:
        out.write(data)


def make_fifo(folder):
    os.mkfifo(os.path.join(folder, "a.lnk"))


def make_socket(folder):
    listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
    listener.bind(os.path.join(folder, "a.lnk"))
    listener.close()  # the name stays, with nobody behind it


def make_device(folder):
    # The device of /dev/null: opened, it would read as an empty file.
    os.mknod(os.path.join(folder, "a.lnk"), stat.S_IFCHR | 0o666, os.makedev(1, 3))


def make_link_chain(folder):
    # a0000.lnk -> a0001.lnk -> ... -> a1999.lnk -> nothing: far beyond the 40 links Linux follows in one path.
    for i in range(2000):
        os.symlink("a%04d.lnk" % (i + 1), os.path.join(folder, "a%04d.lnk" % i))


class HostileTrees(harness.ProgramTest):
    def setUp(self):
        super().setUp()
        os.makedirs(os.path.join(self.scratch, "oldapp"))
        write(os.path.join(self.scratch, "oldapp", "app.exe"), b"")
        self.old = harness.drive_form(os.path.join(self.scratch, "oldapp"))
        self.new = harness.drive_form(os.path.join(self.scratch, "newapp"))
        self.outside = os.path.join(self.scratch, "outside")
        os.makedirs(self.outside)
        self.good = os.path.join(self.scratch, "good.lnk")
        harness.write_shortcut(self.good, target=self.old + "\\app.exe")
        with open(self.good, "rb") as data:
            self.good_bytes = data.read()

    def tearDown(self):
        # A folder without permissions would keep the scratch folder from being removed by anyone but root.
        for folder, _, _ in os.walk(self.scratch):
            os.chmod(folder, 0o755)
        super().tearDown()

    # ---- the table ---------------------------------------------------------------------------------------------

    def shortcut(self, path):
        """A shortcut to the old program: one that the run repairs wherever it can."""
        write(path, self.good_bytes)

    def entries(self):
        def good_named(name):
            return lambda folder: self.shortcut(os.path.join(folder, name))

        def links_to_links(folder):
            real = os.path.join(self.outside, "real.lnk")
            self.shortcut(real)
            os.symlink("b.lnk", os.path.join(folder, "a.lnk"))
            os.symlink(os.path.relpath(real, folder), os.path.join(folder, "b.lnk"))

        def read_only_shortcut(folder):
            path = os.path.join(folder, "a.lnk")
            self.shortcut(path)
            os.chmod(path, 0o444)

        def read_only_folder(folder):
            inner = os.path.join(folder, "ro")
            os.mkdir(inner)
            self.shortcut(os.path.join(inner, "a.lnk"))
            os.chmod(inner, 0o555)

        def unlisted_folder(folder):
            inner = os.path.join(folder, "closed")
            os.mkdir(inner)
            self.shortcut(os.path.join(inner, "a.lnk"))
            os.chmod(inner, 0)

        def truncated(folder):
            write(os.path.join(folder, "a.lnk"), self.good_bytes[:len(self.good_bytes) // 2])
            # And one that Windows wrote, where the samples are at hand: whatever the reader makes of its first half,
            # its target is none of the tree's, so it stays as it is.
            if os.path.isfile(SAMPLE):
                with open(SAMPLE, "rb") as data:
                    sample = data.read()
                write(os.path.join(folder, "b.lnk"), sample[:len(sample) // 2])

        def random_bytes(folder):
            write(os.path.join(folder, "a.lnk"), random.Random(15).randbytes(10 << 20))

        # A read-only shortcut is refused as Windows refuses it, also to an administrator; Wine lets root write it.
        read_only_kept = harness.under_wine() and IS_ROOT
        return [
            Entry("01-folder", lambda folder: os.mkdir(os.path.join(folder, "a.lnk")),
                  lines=lambda root: [("folder", "a.lnk")]),
            Entry("02-fifo", make_fifo, linux_only=NOT_ON_WINE),
            Entry("03-socket", make_socket, linux_only=NOT_ON_WINE),
            Entry("04-device", make_device, linux_only=NOT_ON_WINE, root_only=True),
            Entry("05-dangling-link", lambda folder: os.symlink("nowhere.lnk", os.path.join(folder, "a.lnk")),
                  linux_only=NOT_ON_WINE),
            Entry("06-link-loop", lambda folder: (os.symlink("b.lnk", os.path.join(folder, "a.lnk")),
                                                  os.symlink("a.lnk", os.path.join(folder, "b.lnk"))),
                  linux_only=NOT_ON_WINE),
            Entry("07-link-chain", make_link_chain, linux_only=NOT_ON_WINE),
            # a.lnk leads through b.lnk to a shortcut outside the tree: that file is repaired, the links stay, and
            # b.lnk then finds it repaired already.
            Entry("08-links-to-links", links_to_links, lines=lambda root: [("changed", "a.lnk")],
                  changed=lambda root: ["../../outside/real.lnk"], linux_only=NOT_ON_WINE),
            # Neither name can be opened by the program, which sees a "?" in it, as Windows' ANSI calls would.
            Entry("09-name-not-utf8", lambda folder: self.shortcut(os.path.join(os.fsencode(folder), b"a\xff.lnk")),
                  linux_only="Wine spells undecodable names in its own way"),
            Entry("10-name-not-sjis", good_named("a\u00e9\U0001F600.lnk"),
                  linux_only="Wine spells names outside the code page in its own way"),
            Entry("11-read-only-shortcut", read_only_shortcut, lines=lambda root: [("changed", "a.lnk")],
                  changed=lambda root: ["a.lnk"] if read_only_kept else [],
                  told=lambda root: [] if read_only_kept else ["a.lnk"]),
            # The read-only attribute of a folder keeps nobody from writing in it on Windows; on Linux only root
            # may write in a folder without write permission.
            Entry("12-read-only-folder", read_only_folder,
                  lines=lambda root: [("folder", "ro"), ("changed", "ro\\a.lnk")],
                  changed=lambda root: ["ro/a.lnk"] if root else [],
                  told=lambda root: [] if root else ["ro\\a.lnk"]),
            # Root lists any folder: this one is walked as the user nobody, for whom it is shown and passed over.
            Entry("13-unlistable-folder", unlisted_folder,
                  lines=lambda root: [("folder", "closed")] + ([("changed", "closed\\a.lnk")] if root else []),
                  changed=lambda root: ["closed/a.lnk"] if root else [], drops_root=True,
                  linux_only="Wine runs as the owner of its prefix"),
            Entry("14-empty-file", lambda folder: write(os.path.join(folder, "a.lnk"), b"")),
            Entry("15-truncated", truncated),
            Entry("16-random-10mb", random_bytes),
            # A folder whose name Shift-JIS cannot hold is found as "d?", which the listing repairs to "d_": it is
            # shown, cannot be entered under that name, and its shortcut stays as it is.
            Entry("17-folder-not-sjis", lambda folder: (os.mkdir(os.path.join(folder, "d\u00e9")),
                                                        self.shortcut(os.path.join(folder, "d\u00e9", "a.lnk"))),
                  lines=lambda root: [("folder", "d_")],
                  linux_only="Wine spells names outside the code page in its own way"),
        ]

    # ---- running one tree --------------------------------------------------------------------------------------

    def usable(self, entry):
        """None when the entry can be made and walked here, else why not."""
        if entry.linux_only and harness.under_wine():
            return entry.linux_only
        if entry.root_only and not IS_ROOT:
            return "only root can make a device node"
        return None

    def nobody(self):
        """The user and group the run drops to, having given them the whole scratch folder; skips where that is not
        possible."""
        if harness.under_wine():
            self.skipTest("Wine runs as the owner of its prefix, so the run cannot drop root")
        try:
            account = pwd.getpwnam("nobody")
        except KeyError:
            self.skipTest("there is no user nobody to drop root to")
        folder = os.path.dirname(os.path.abspath(harness.options().program))
        while folder != os.path.dirname(folder):
            if not os.stat(folder).st_mode & stat.S_IXOTH:
                self.skipTest("the user nobody cannot reach the program in " + folder)
            folder = os.path.dirname(folder)
        for folder, folders, files in os.walk(self.scratch):
            for name in [folder] + [os.path.join(folder, n) for n in folders + files]:
                os.lchown(name, account.pw_uid, account.pw_gid)
        os.chmod(self.scratch, 0o755)
        return (account.pw_uid, account.pw_gid)

    def snapshot(self):
        """Every name below the scratch folder with what it is: a file's digest and mode, a link's text, a folder's
        mode, a special file's kind and device."""
        found = {}
        for folder, folders, files in os.walk(os.fsencode(self.scratch)):
            for name in folders + files:
                path = os.path.join(folder, name)
                key = os.path.relpath(path, os.fsencode(self.scratch))
                info = os.lstat(path)
                if stat.S_ISLNK(info.st_mode):
                    found[key] = ("link", os.readlink(path))
                elif stat.S_ISDIR(info.st_mode):
                    found[key] = ("folder", stat.S_IMODE(info.st_mode))
                elif stat.S_ISREG(info.st_mode):
                    with open(path, "rb") as data:
                        found[key] = ("file", hashlib.sha256(data.read()).hexdigest(), stat.S_IMODE(info.st_mode))
                else:
                    found[key] = ("special", stat.S_IFMT(info.st_mode), info.st_rdev)
        return found

    def walk(self, entries, tree):
        """Makes the entries in a new tree of that name, each in its folder, walks it and checks everything the run
        left in the scratch folder."""
        self.root = os.path.join(self.scratch, tree)
        os.mkdir(self.root)
        drop = any(entry.drops_root for entry in entries) and IS_ROOT
        as_root = IS_ROOT and not drop
        shown = harness.drive_form(self.root)
        expected = "\n\n " + shown
        changed, told = [], []
        # The walk takes the folders by name (none of them differs only in case).
        for entry in sorted(entries, key=lambda entry: entry.folder):
            folder = os.path.join(self.root, entry.folder)
            os.mkdir(folder)
            self.shortcut(os.path.join(folder, "zz-good.lnk"))
            entry.make(folder)
            here = shown + "\\" + entry.folder
            # A folder's shortcuts come before its sub-folders, each of which is followed by its own.
            lines = entry.lines(as_root)
            first_folder = next((i for i, line in enumerate(lines) if line[0] == "folder"), len(lines))
            lines.insert(first_folder, ("changed", "zz-good.lnk"))
            expected += "\n " + here
            for kind, name in lines:
                expected += ("\n ---> - %s\\%s" if kind == "changed" else "\n %s\\%s") % (here, name)
            changed += [os.path.normpath(os.path.join(tree, entry.folder, name))
                        for name in entry.changed(as_root) + ["zz-good.lnk"]]
            told += [here + "\\" + name for name in entry.told(as_root)]
        user = self.nobody() if drop else None
        before = self.snapshot()
        try:
            result = harness.run(["-fdpr", harness.folder_argument(self.root), self.old, self.new],
                                 timeout=TIME_LIMIT, user=user)
        except subprocess.TimeoutExpired:
            self.fail("the walk did not end within %d seconds" % TIME_LIMIT)
        self.assertOutput(result, expected, 1)
        self.check_told(result.stderr, told)
        after = self.snapshot()
        self.assertEqual(sorted(after), sorted(before), "no name came or went (no temporary file is left)")
        for name in sorted(before):
            if os.fsdecode(name) in changed:
                self.assertNotEqual(after[name], before[name], name)
                self.assertEqual(harness.read_shortcut(os.path.join(self.scratch, os.fsdecode(name)))["path"],
                                 self.new + "\\app.exe", name)
            else:
                self.assertEqual(after[name], before[name], name)

    def check_told(self, errors, told):
        lines = errors.replace(b"\r\n", b"\n").decode("cp932", errors="replace").splitlines()
        if harness.under_wine():
            # Wine has its own remarks for standard error ("wine: Read access denied for device ...").
            lines = [line for line in lines if not line.startswith("wine: ")]
        prefixes = ["kelmaro: could not save %s: " % path for path in told]
        self.assertEqual(len(lines), len(prefixes), errors)
        for line, prefix in zip(lines, prefixes):
            self.assertTrue(line.startswith(prefix), line)
            if not harness.under_wine():
                # The C locale's text for EACCES; Wine's own text is whatever its system table says.
                self.assertEqual(line, prefix + "Permission denied")

    def test_each_entry_alone(self):
        for entry in self.entries():
            with self.subTest(entry=entry.folder):
                reason = self.usable(entry)
                if reason:
                    self.skipTest(reason)
                self.walk([entry], "tree-" + entry.folder)

    def test_all_entries_in_one_tree(self):
        self.walk([entry for entry in self.entries() if not self.usable(entry)], "tree")


if __name__ == "__main__":
    harness.main()
