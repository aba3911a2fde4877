"""The conversation before a run: argument forms, the typed-line prompt, option letters, the confirmation."""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import harness  # noqa: E402

OPTION_ROWS = [
    ("i", "ｼｮｰﾄｶｯﾄﾌｧｲﾙ内のｵﾌﾟｼｮﾝ文字列も含める(include)"),
    ("m", "大小文字(moji)区別"),
    ("f", "* 先頭(front)から一致 (==> d or c)"),
    ("e", "後尾(end)から一致 (==> d or c)"),
    ("a", "一致するものすべて(all) (==> x or y or z)"),
    ("d", "* ﾌｫﾙﾀﾞ(directory)単位"),
    ("c", "文字(character)単位"),
    ("x", "制限無し"),
    ("y", "\\記号で狭まれる文字列／\\記号で始まる最後尾の文字列"),
    ("z", "\\記号含む文字列のみ"),
    ("k", "* 実行前確認(kakunin)有り"),
    ("p", "* 処理中(processing)に検索ﾌｫﾙﾀﾞ名表示"),
    ("r", "* 置換した(replaced)ｼｮｰﾄｶｯﾄ名表示"),
]
DESCRIPTION = dict(OPTION_ROWS)

YES_NO = "Y:はい N:いいえ>>"
ANY_KEY = "Press Any Key>>"
TYPED_PROMPT = "\n>[-ｵﾌﾟｼｮﾝ] 検索ﾌｫﾙﾀﾞ 旧文字列 新文字列 \n>"


def run_output(letters, *folders):
    """What a run over folders without shortcuts prints: a newline, each folder under p, the closing message
    under k."""
    text = "\n"
    if "p" in letters:
        text += "".join("\n " + folder for folder in folders)
    if "k" in letters:
        text += "\n\n====> 終了：" + ANY_KEY
    return text

LABELS = ["検索ﾌｫﾙﾀﾞ", "旧文字列", "新文字列"]


def usage_prompting():
    """The usage in its prompting form, up to and including the yes/no prompt."""
    text = ("\n====KELMARO ver.1.10 (C)KELMARO開発ﾁｰﾑ===="
            "\n====ｺﾝｿｰﾙ版 ｼｮｰﾄｶｯﾄ内文字列一括置換===="
            "\n%s [-imfeadcxyzkpr] 検索ﾌｫﾙﾀﾞ 旧文字列 新文字列 "
            "\n   空白のある場合は\"でくくる: \"C:\\Program Files\""
            "\n   \"\"C:\\Program Files\"\"と指定すると\"C:\\Program Files\"になります"
            "\n   Windows版のｼｮｰﾄｶｯﾄ内文字列置換ﾀﾞｲｱﾛｸﾞからﾚｼﾞｽﾄﾘに設定可"
            "\n   *：既設定   fea はどれかを選択\n") % harness.program_name()
    for letter, description in OPTION_ROWS:
        text += "    -%s %s\n" % (letter, description)
    return text + "続けて入力しますか？" + YES_NO


def confirmation(folder, old, new, letters):
    text = "次の条件で置換します：\n"
    for label, value in zip(LABELS, [folder, old, new]):
        text += "    %s %s\n" % (label, value)
    for letter in letters:
        if letter in DESCRIPTION:
            text += "    %s:%s\n" % (letter, DESCRIPTION[letter])
    return text + YES_NO


def incompatible(letters):
    return ("\n 同時に指定できないにオプションが入っています。\n 同時指定不可:fea dc xyz (f or e ==>d or c) "
            "(a ==> x or y or z)\n 指定ｵﾌﾟｼｮﾝ  :%s\n" % letters) + ANY_KEY


class ArgumentForms(harness.ProgramTest):
    def setUp(self):
        super().setUp()
        self.folder = harness.folder_argument(self.scratch)
        self.shown = harness.drive_form(self.scratch)

    def test_too_few_arguments_lead_to_the_usage_and_its_question(self):
        for args in ([], ["only"], ["-fd", "x"]):
            with self.subTest(args=args):
                self.assertOutput(harness.run(args, b"N"), usage_prompting() + "N", 0)
        # At the end of input the question is answered "no": a script can never hang here.
        self.assertOutput(harness.run([], b""), usage_prompting(), 0, "end of input")

    def test_more_than_four_arguments_lead_to_the_prompt(self):
        result = harness.run(["-fdk", self.folder, "old", "new", "extra"], b"n")
        self.assertOutput(result, usage_prompting() + "N", 0)

    def test_full_command_lines(self):
        cases = [
            # (arguments, standard input, expected output, exit code)
            (["-fdk", "F", "old", "new"], b"yk", confirmation("F", "old", "new", "fdk") + "Y" + run_output("fdk", "F"), 1),
            # Without k nothing is asked and nothing is waited for: the run can go unattended.
            (["-fdpr", "F", "old", "new"], b"", run_output("fdpr", "F"), 1),
            # Without options the default -fdkpr applies.
            (["F", "old", "new"], b"yk", confirmation("F", "old", "new", "fdkpr") + "Y" + run_output("fdkpr", "F"), 1),
            # Letters given twice are listed twice; p, r and k are listed too.
            (["-fdrrk", "F", "o", "n"], b"yk", confirmation("F", "o", "n", "fdrrk") + "Y" + run_output("fdrrk", "F"), 1),
            # Blanks in front of the letters are trimmed.
            (["- fdk", "F", "o", "n"], b"yk", confirmation("F", "o", "n", "fdk") + "Y" + run_output("fdk", "F"), 1),
            # Quotes around an item are stripped on its way to the store.
            (["-fdk", "F", "\"o l d\"", "n"], b"yk", confirmation("F", "o l d", "n", "fdk") + "Y" + run_output("fdk", "F"), 1),
            # A declined confirmation.
            (["-fdk", "F", "old", "new"], b"nk",
             confirmation("F", "old", "new", "fdk") + "N\n\n====> 中止しました : " + ANY_KEY, 0),
            # End of input at the confirmation declines it.
            (["-fdk", "F", "old", "new"], b"",
             confirmation("F", "old", "new", "fdk") + "\n\n====> 中止しました : " + ANY_KEY, 0),
            # Keys that are no answer are passed over.
            (["-fdk", "F", "old", "new"], b"qxyk", confirmation("F", "old", "new", "fdk") + "Y" + run_output("fdk", "F"), 1),
            # Double-byte texts pass through unchanged.
            (["-fdk", "F", "旧表", "新"], b"yk", confirmation("F", "旧表", "新", "fdk") + "Y" + run_output("fdk", "F"), 1),
        ]
        for args, stdin, expected, code in cases:
            args = [self.folder if a == "F" else a for a in args]
            expected = expected.replace("    検索ﾌｫﾙﾀﾞ F\n", "    検索ﾌｫﾙﾀﾞ %s\n" % self.shown).replace("\n F", "\n " + self.shown)
            with self.subTest(args=args):
                self.assertOutput(harness.run(args, stdin), expected, code)

    def test_a_hyphen_anywhere_in_the_first_item_makes_it_the_options(self):
        # Without options, a folder with a hyphen in its name is taken for the options; its letters (all behind the
        # first byte) hold both f and e and are refused.
        folder = harness.folder_argument(os.path.join(self.scratch, "my-folder"))
        os.mkdir(os.path.join(self.scratch, "my-folder"))
        letters = harness.drive_form(os.path.join(self.scratch, "my-folder"))[1:]
        self.assertOutput(harness.run([folder, "old", "new"], b"k"), incompatible(letters), 0)

    def test_an_item_that_does_not_fit_its_text_is_refused(self):
        for index, label in enumerate(LABELS):
            args = [self.folder, "old", "new"]
            args[index] = "x" * 520
            with self.subTest(item=label):
                self.assertOutput(harness.run(["-fdk"] + args, b"k"),
                                  "\n\n====> %sが長すぎます：519ﾊﾞｲﾄ以内で指定してください" % label + ANY_KEY, 0)
        # 519 bytes still fit.
        result = harness.run(["-fd", self.folder, "o" * 519, "new"])
        self.assertOutput(result, "\n", 1, "519 bytes")


class CompatibilityOfLetters(harness.ProgramTest):
    def test_table(self):
        rows = [
            ("fd", True), ("ec", True), ("ax", True), ("fdkpr", True), ("", False), ("d", False), ("fe", False),
            ("ff", False), ("f", False), ("fdc", False), ("a", False), ("axy", False), ("fdx", False),
            ("adx", False), ("fdxy", True), ("fdxyz", True), ("axdc", True), ("fd?", True), ("FD", False),
        ]
        folder = harness.folder_argument(self.scratch)
        for letters, accepted in rows:
            with self.subTest(letters=letters):
                result = harness.run(["-" + letters, folder, "old", "new"], b"yk")
                if not accepted:
                    self.assertOutput(result, incompatible(letters), 0)
                elif "k" in letters:
                    shown = harness.drive_form(self.scratch)
                    expected = confirmation(shown, "old", "new", letters) + "Y" + run_output(letters, shown)
                    self.assertOutput(result, expected, 1)
                else:
                    self.assertOutput(result, run_output(letters, ""), 1)


class TypedLine(harness.ProgramTest):
    def test_rounds_of_the_prompt(self):
        # A typed line is not an argument: the folder is typed in the drive form, as a user would.
        folder = shown = harness.drive_form(self.scratch)
        os.mkdir(os.path.join(self.scratch, "a b"))
        usage = usage_prompting()
        again = usage + "Y" + TYPED_PROMPT
        cases = [
            # (typed input, expected output, exit code)
            ("Y-fd %s old new\n" % folder, again + "\n", 1),
            # Three items: the default options, confirmed.
            ("Y%s old new\nyk" % folder,
             again + confirmation(shown, "old", "new", "fdkpr") + "Y" + run_output("fdkpr", shown, shown + "\\a b"),
             1),
            # A quoted first item may hold blanks.
            ("Y\"%s\\a b\" old new\nyk" % folder,
             again + confirmation(shown + "\\a b", "old", "new", "fdkpr") + "Y" + run_output("fdkpr", shown + "\\a b"),
             1),
            # A quote further on makes the first item run to the blank behind the quoted stretch: here the line
            # holds two items, and the prompt comes round again.
            ("Y-fdk %s \"o l d\" new\nN" % folder, again + usage + "N", 0),
            # Two items, five items, an empty line: round again, then "N" ends it.
            ("Ya b\nN", again + usage + "N", 0),
            ("Ya b c d e\nN", again + usage + "N", 0),
            ("Y\nN", again + usage + "N", 0),
            # Three items of which the first holds "-": the new string is empty, and the run ends at once.
            ("Y-fd %s old\n" % folder, again + "\n", 1),
            # Refusals after a typed line end the program as on the command line.
            ("Y-fe %s old new\nk" % folder, again + incompatible("fe"), 0),
        ]
        for typed, expected, code in cases:
            with self.subTest(typed=typed):
                self.assertOutput(harness.run([], typed.encode("cp932")), expected, code)

    def test_an_unbalanced_quote_ends_the_process_as_the_run_time_does(self):
        result = harness.run([], b"Y-fd \"abc def\n")
        self.assertEqual(result.stdout, harness.sj(usage_prompting() + "Y" + TYPED_PROMPT))
        # 0xC0000417 on Windows, of which a Linux parent sees the low byte; the Linux build exits with that byte.
        self.assertEqual(result.code, 0x17)


if __name__ == "__main__":
    harness.main()
