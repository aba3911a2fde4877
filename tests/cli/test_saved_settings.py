"""Short command lines that lean on the options and search folder that the dialog tool saved: each argument form with
and without a saved folder, saved ids outside the option table, and where the settings are read from (the registry
under Wine; a registry file or a Wine prefix's user.reg on Linux)."""
import os
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import harness  # noqa: E402
from test_command_line import OPTION_ROWS, confirmation, run_output  # noqa: E402

ANY_KEY = "Press Any Key>>"
KEY = "Software\\Orvel\\Tarnbrook\\UseDefine"
# i, f, d, k and p, in an order of their own: the displayed letters follow the option table instead.
SAVED_IDS = "3041 3012 3022 3019 3040"
SAVED_LETTERS = "-ifdkp"


def usage_saved(option_text, folder_text):
    """The usage in its saved form, up to and including the any-key prompt."""
    name = harness.program_name()
    text = ("\n====KELMARO ver.1.10 (C)KELMARO開発ﾁｰﾑ===="
            "\n====ｺﾝｿｰﾙ版 ｼｮｰﾄｶｯﾄ内文字列一括置換===="
            "\n%s [-imfeadcxyzkpr] 検索ﾌｫﾙﾀﾞ 旧文字列 新文字列 "
            "\n   Windows版のｼｮｰﾄｶｯﾄ内文字列置換ﾀﾞｲｱﾛｸﾞからﾚｼﾞｽﾄﾘに設定可"
            "\n   *：既設定   fea はどれかを選択\n") % name
    for letter, description in OPTION_ROWS:
        text += "    -%s %s\n" % (letter, description)
    text += "\nﾚｼﾞｽﾄﾘ内> [ｵﾌﾟｼｮﾝ]%s [検索ﾌｫﾙﾀﾞ]%s" % (option_text, folder_text)
    text += "\n%s ABCD abcd: ﾚｼﾞｽﾄﾘから[ｵﾌﾟｼｮﾝ]と[検索ﾌｫﾙﾀﾞ]使用" % name
    text += "\n%s -fdpr ANCD abcd: ﾚｼﾞｽﾄﾘから[検索ﾌｫﾙﾀﾞ]使用" % name
    text += "\n%s C:\\Windows ANCD abcd: ﾚｼﾞｽﾄﾘから[ｵﾌﾟｼｮﾝ]使用" % name
    text += "\n%s -fdpr C:\\Windows ANCD abcd: ﾚｼﾞｽﾄﾘからは使用せず\n" % name
    return text + ANY_KEY


def saved_state(option_text, folder_text):
    return "\n\n====>ﾚｼﾞｽﾄﾘ> ｵﾌﾟｼｮﾝ：%s 検索ﾌｫﾙﾀﾞ:%s\n" % (option_text, folder_text)


# The need texts name items that are not decided when they are printed: the run-time shows each as "(null)".
NEED_TWO = "\n\n====> [(null)] [(null)] を指定してください" + ANY_KEY
NEED_THREE = "\n\n====> [(null)] [(null)] [(null)] を指定してください" + ANY_KEY


def no_folder(option_text):
    return ("\n\n====>ﾚｼﾞｽﾄﾘ> ｵﾌﾟｼｮﾝ：%s 検索ﾌｫﾙﾀﾞ:指定無\n" % option_text +
            "\n\n====>検索ﾌｫﾙﾀﾞがﾚｼﾞｽﾄﾘにありません：指定してください" + ANY_KEY)


def incompatible(letters):
    return ("\n 同時に指定できないにオプションが入っています。\n 同時指定不可:fea dc xyz (f or e ==>d or c) "
            "(a ==> x or y or z)\n 指定ｵﾌﾟｼｮﾝ  :%s\n" % letters) + ANY_KEY


def reg_string(text):
    return '"%s"' % text.replace("\\", "\\\\").replace('"', '\\"')


class Settings:
    """Puts saved values where the program under test reads them. Values: {name: text}, or an int for a DWORD."""

    def __init__(self, test):
        self.test = test
        self.saved = ("nothing written yet",)
        self.env = {}

    def save(self, values):
        """Result: the environment that the runs need on top of the harness's own. Under Wine every write is a
        process of its own: values that stand already are not written again."""
        if values == self.saved:
            return dict(self.env)
        self.saved = dict(values) if values is not None else None
        self.env = self._write(values)
        return dict(self.env)

    def _write(self, values):
        if harness.under_wine():
            harness.wine_command(["reg", "delete", "HKCU\\Software\\Orvel", "/f"])
            if values is not None:
                harness.wine_command(["reg", "add", "HKCU\\" + KEY, "/f"])
            for name, value in (values or {}).items():
                kind, data = ("REG_DWORD", str(value)) if isinstance(value, int) else ("REG_SZ", value)
                completed = harness.wine_command(["reg", "add", "HKCU\\" + KEY, "/v", name, "/t", kind, "/d", data,
                                                  "/f"])
                self.test.assertEqual(completed.returncode, 0, completed.stderr)
            return {}
        # A registry export as a Japanese regedit writes it: REGEDIT4 in the ANSI code page.
        lines = ["REGEDIT4", "", "[HKEY_CURRENT_USER\\%s]" % KEY]
        for name, value in (values or {}).items():
            shown = "dword:%08x" % value if isinstance(value, int) else reg_string(value)
            lines.append("%s=%s" % (reg_string(name), shown))
        path = os.path.join(self.test.scratch, "saved.reg")
        with open(path, "wb") as out:
            out.write(("\r\n".join(lines if values is not None else ["REGEDIT4"]) + "\r\n").encode("cp932"))
        return {"KELMARO_REGISTRY": path}


class SavedForms(harness.ProgramTest):
    def setUp(self):
        super().setUp()
        self.folder = os.path.join(self.scratch, "links")
        os.makedirs(self.folder)
        self.shown = harness.drive_form(self.folder)
        self.settings = Settings(self)

    def run_with(self, values, args, stdin=b"k"):
        return harness.run(args, stdin, env=self.settings.save(values))

    def test_options_and_folder_saved(self):
        values = {"option": SAVED_IDS, "folder": self.shown}
        other = os.path.join(self.scratch, "other")
        os.makedirs(other)
        other_shown = harness.drive_form(other)
        cases = [
            # (arguments, standard input, expected output, exit code)
            ([], b"k", usage_saved(SAVED_LETTERS, self.shown), 0),
            # One argument is never a run, whatever it is.
            (["old"], b"k", saved_state(SAVED_LETTERS, self.shown) + NEED_TWO, 0),
            (["-fd"], b"k", saved_state(SAVED_LETTERS, self.shown) + NEED_TWO, 0),
            # Two: the saved options and folder with the old and new strings.
            (["old", "new"], b"yk",
             confirmation(self.shown, "old", "new", "ifdkp") + "Y" + run_output("ifdkp", self.shown), 1),
            # Two of which the first is options: the old and new strings are missing.
            (["-fd", "old"], b"k", saved_state(SAVED_LETTERS, self.shown) + NEED_TWO, 0),
            # Three with options first: the saved folder, the typed options.
            (["-fdp", "old", "new"], b"", run_output("fdp", self.shown), 1),
            # Three without: the saved options, the typed folder.
            ([harness.folder_argument(other), "old", "new"], b"yk",
             confirmation(other_shown, "old", "new", "ifdkp") + "Y" + run_output("ifdkp", other_shown), 1),
            # Four need nothing saved.
            (["-fdp", harness.folder_argument(other), "old", "new"], b"", run_output("fdp", other_shown), 1),
        ]
        for args, stdin, expected, code in cases:
            with self.subTest(args=args):
                self.assertOutput(self.run_with(values, args, stdin), expected, code)

    def test_options_saved_without_a_folder(self):
        values = {"option": SAVED_IDS}
        cases = [
            ([], usage_saved(SAVED_LETTERS, "無")),
            (["old"], saved_state(SAVED_LETTERS, "無") + NEED_THREE),
            (["old", "new"], no_folder(SAVED_LETTERS)),
            (["-fd", "old", "new"], no_folder(SAVED_LETTERS)),
        ]
        for args, expected in cases:
            with self.subTest(args=args):
                self.assertOutput(self.run_with(values, args), expected, 0)

    def test_saved_ids_outside_the_table_are_refused_as_empty_letters(self):
        values = {"option": "1 2 9999 3016", "folder": self.shown}
        self.assertOutput(self.run_with(values, []), usage_saved("-", self.shown), 0)
        self.assertOutput(self.run_with(values, ["old", "new"]), incompatible(""), 0)

    def test_what_reads_as_nothing_saved(self):
        # The usage's prompting form follows, as it does with no settings at all.
        prompting_start = "\n====KELMARO ver.1.10"
        for values in (None, {}, {"option": ""}, {"option": 3012}, {"folder": self.shown}):
            with self.subTest(values=values):
                result = self.run_with(values, [], b"N")
                self.assertTrue(result.stdout.startswith(harness.sj(prompting_start)), result.stdout)
                self.assertIn(harness.sj("続けて入力しますか？"), result.stdout)
                self.assertEqual(result.code, 0)


@unittest.skipIf(harness.under_wine(), "the Linux build's own ways to the saved settings")
class LinuxSources(harness.ProgramTest):
    def test_a_saved_linux_folder_is_taken_in_drive_form(self):
        folder = os.path.join(self.scratch, "links")
        os.makedirs(folder)
        env = Settings(self).save({"option": "3019 3022 3041", "folder": folder})
        shown = harness.drive_form(folder)
        self.assertOutput(harness.run(["old", "new"], env=env), run_output("fdp", shown), 1)

    def test_the_settings_and_drives_of_a_wine_prefix(self):
        # The windowed edition run under Wine saved its settings in the prefix: this edition reads them there, and
        # takes the prefix's drives, so that the saved "C:\" folder is the prefix's drive_c.
        home = os.path.join(self.scratch, "home")
        prefix = os.path.join(home, ".wine")
        os.makedirs(os.path.join(prefix, "drive_c", "Links"))
        os.makedirs(os.path.join(prefix, "dosdevices"))
        os.symlink("../drive_c", os.path.join(prefix, "dosdevices", "c:"))
        os.symlink("/", os.path.join(prefix, "dosdevices", "z:"))
        with open(os.path.join(prefix, "user.reg"), "w", encoding="ascii") as out:
            out.write("WINE REGISTRY Version 2\n;; All keys relative to REGISTRY\\\\User\\\\S-1-5-21-0-0-0-1000\n\n"
                      "#arch=win64\n\n"
                      "[Software\\\\Orvel\\\\Tarnbrook\\\\UseDefine] 1700000000\n#time=1da0000000000000\n"
                      "\"folder\"=\"C:\\\\Links\"\n\"option\"=\"3019 3022 3041 3042\"\n")
        result = harness.run(["old", "new"], env={"HOME": home})
        self.assertOutput(result, run_output("fdpr", "C:\\Links"), 1)
        # A registry file named in the environment comes before the prefix.
        env = Settings(self).save({"option": "3019 3022 3041"})
        env["HOME"] = home
        self.assertOutput(harness.run(["old", "new"], env=env), no_folder("-fdp"), 0)


def setUpModule():
    global _prefix
    _prefix = None
    if harness.under_wine():
        # The registry written here must not show in the suites that run beside this one.
        _prefix = harness.OwnWinePrefix()
        _prefix.__enter__()


def tearDownModule():
    if _prefix is not None:
        _prefix.__exit__(None, None, None)


_prefix = None

if __name__ == "__main__":
    harness.main()
