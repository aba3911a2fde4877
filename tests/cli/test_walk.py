"""Walking a real folder tree: the folders reached and their order, the refusals before a walk, and a link loop."""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import harness  # noqa: E402


def make_tree(root, files, folders=()):
    for folder in folders:
        os.makedirs(os.path.join(root, folder), exist_ok=True)
    for name in files:
        path = os.path.join(root, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb"):
            pass


class WalkOrder(harness.ProgramTest):
    def test_folders_are_printed_depth_first_in_listing_order(self):
        make_tree(self.scratch, ["a.lnk", "sub/b.lnk", "x.lnk/c.lnk", "Zeta/deeper/d.LNK", "notes.txt"], ["empty"])
        result = harness.run(["-fdp", harness.folder_argument(self.scratch), "old", "new"])
        shown = harness.drive_form(self.scratch)
        folders = ["", "\\empty", "\\sub", "\\x.lnk", "\\Zeta", "\\Zeta\\deeper"]
        expected = "\n" + "".join("\n %s%s" % (shown, folder) for folder in folders)
        self.assertOutput(result, expected, 1)

    def test_a_start_folder_typed_in_another_case_is_walked_in_the_disks_spelling(self):
        os.makedirs(os.path.join(self.scratch, "MixedCase", "Inner"))
        typed = harness.drive_form(os.path.join(self.scratch, "mixedCASE")).lower()
        shown = harness.drive_form(os.path.join(self.scratch, "MixedCase"))
        self.assertOutput(harness.run(["-fdp", typed, "old", "new"]), "\n\n %s\n %s\\Inner" % (shown, shown), 1)

    def test_without_p_and_r_a_run_prints_one_newline(self):
        make_tree(self.scratch, ["a.lnk", "sub/b.lnk"])
        self.assertOutput(harness.run(["-fd", harness.folder_argument(self.scratch), "old", "new"]), "\n", 1)

    def test_a_folder_that_is_not_there_is_refused_before_the_walk(self):
        missing = os.path.join(self.scratch, "gone")
        argument = harness.drive_form(missing)
        for options in (["-fdp"], ["-fdkp"]):
            with self.subTest(options=options):
                expected = ("次の条件で置換します：\n" if "k" in options[0] else "") + \
                    "\n\n====> %sが見つかりません：Press Any Key>>" % argument
                self.assertOutput(harness.run(options + [argument, "old", "new"], b"k"), expected, 0)

    def test_a_drive_that_does_not_exist_is_refused(self):
        self.assertOutput(harness.run(["-fd", "Q:\\x", "old", "new"], b"k"),
                          "\n\n====> Q:\\xが見つかりません：Press Any Key>>", 0)


class LinkLoop(harness.ProgramTest):
    def test_a_link_to_a_parent_ends_when_the_path_no_longer_fits(self):
        # sub/loop leads back to the scratch folder, so the tree is endless: sub\loop\sub\loop\...
        make_tree(self.scratch, ["a.lnk", "sub/b.lnk"])
        os.symlink("..", os.path.join(self.scratch, "sub", "loop"))
        result = harness.run(["-fdp", harness.folder_argument(self.scratch), "old", "new"])
        self.assertEqual(result.code, 1, result.stderr)
        lines = [line for line in result.stdout.replace(b"\r\n", b"\n").split(b"\n") if line.strip()]
        # The walk follows the link as a folder, deeper and deeper, until a path no longer fits: the system's listing
        # limit (260 on Windows; Wine takes a little more) or at the latest the walk's own 520-byte paths.
        self.assertGreater(len(lines), 5)
        self.assertLess(max(len(line) for line in lines), 1 + 520)
        below = harness.sj(" " + harness.drive_form(self.scratch) + "\\sub")
        self.assertTrue(all(line.startswith(below) for line in lines[1:]), lines[:3])


if __name__ == "__main__":
    harness.main()
