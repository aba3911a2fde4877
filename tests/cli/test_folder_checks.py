"""The checks of the search folder before the walk: what a refused folder shows, and the exit code after it."""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import harness  # noqa: E402

ANY_KEY = "Press Any Key>>"
WRONG_FORM = "ﾌｫﾙﾀﾞ名の指定ﾙｰﾙが間違っています。"
BAD_CHARACTER = "名前に不正な文字が使われています。"


def refused(shown_part, body):
    """A folder refused by its form: the run's newline, then the message, which quotes the part at fault twice (once
    by the check, once by the report)."""
    return "\nﾌｫﾙﾀﾞ名不正:''%s''\n%s" % (shown_part, body) + ANY_KEY


class RefusedFolders(harness.ProgramTest):
    def setUp(self):
        super().setUp()
        os.makedirs(os.path.join(self.scratch, "a", "b"))
        os.makedirs(os.path.join(self.scratch, "c"))
        self.root = harness.drive_form(self.scratch)

    def test_faults_of_form(self):
        cases = [
            # (folder as typed, the part shown, the message)
            (self.root + "\\a\\\\b", "\\\\b", WRONG_FORM),  # a doubled backslash inside: shown from there on
            (self.root[:2] + "\\\\" + self.root[3:] + "\\a", None, WRONG_FORM),  # one right behind the root
            (self.root + "\\a/b", "a/b", BAD_CHARACTER),  # a forward slash inside a part
            (self.root + "\\a\\b/", "b/", BAD_CHARACTER),  # a forbidden character in the last part
        ]
        for folder, part, body in cases:
            with self.subTest(folder=folder):
                # Without k nothing is asked before the run, and the message waits for a key all the same.
                result = harness.run(["-fdr", folder, "old", "new"])
                self.assertOutput(result, refused(folder if part is None else part, body), 1)

    def test_a_folder_without_a_drive_head(self):
        # "..\a" exists relative to the current folder; only "a" is checked as a name, and the drive test then finds
        # no drive ".".
        result = harness.run(["-fd", "..\\" + os.path.basename(self.scratch) + "\\a", "old", "new"], cwd=self.scratch)
        self.assertOutput(result, "\nDrive: ﾄﾞﾗｲﾌﾞ・ﾌｫﾙﾀﾞ指定失敗:[-.-] ﾄﾞﾗｲﾌﾞのｱｸｾｽが拒否されました。" + ANY_KEY, 1)

    def test_a_refused_folder_under_k_ends_with_the_closing_message(self):
        folder = self.root + "\\a\\\\b"
        result = harness.run(["-fdk", folder, "old", "new"], b"yk")
        expected = ("次の条件で置換します：\n    検索ﾌｫﾙﾀﾞ %s\n    旧文字列 old\n    新文字列 new\n"
                    "    f:* 先頭(front)から一致 (==> d or c)\n    d:* ﾌｫﾙﾀﾞ(directory)単位\n"
                    "    k:* 実行前確認(kakunin)有り\nY:はい N:いいえ>>Y" % folder)
        self.assertOutput(result, expected + refused("\\\\b", WRONG_FORM) + "\n\n====> 終了：" + ANY_KEY, 1)

    def test_a_relative_folder_runs_on_linux(self):
        if harness.under_wine():
            self.skipTest("Windows takes no relative search folder: it has no drive head")
        for typed in ("c", "a/b", "./a/b", "../%s/c" % os.path.basename(self.scratch)):
            with self.subTest(folder=typed):
                result = harness.run(["-fdp", typed, "old", "new"], cwd=self.scratch)
                folder = os.path.normpath(os.path.join(self.scratch, typed))
                self.assertOutput(result, "\n\n " + harness.drive_form(folder), 1)


if __name__ == "__main__":
    harness.main()
