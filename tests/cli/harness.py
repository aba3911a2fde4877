"""Runs the built program as a process and compares what it prints, byte for byte, with the Shift-JIS text expected.

The same test files serve the Linux program and the Windows program under Wine (--wine names the wrapper that runs
it): under Wine the console is in text mode, so every newline arrives as CR LF, and the program names itself with its
.exe. Expected texts are written here in UTF-8 and encoded with Python's own cp932 codec, independently of how the
program's texts were converted.
"""
import argparse
import atexit
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

_options = None


def options():
    global _options
    if _options is None:
        parser = argparse.ArgumentParser()
        parser.add_argument("--program", required=True)
        parser.add_argument("--wine", default=None)
        parser.add_argument("--lnk-tool", default=None)
        _options, rest = parser.parse_known_args()
        sys.argv[1:] = rest
    return _options


def under_wine():
    return options().wine is not None


def program_name():
    """The name the program prints for itself in its usage."""
    return os.path.basename(options().program)


def sj(text):
    """The bytes that the program writes for `text`: Shift-JIS, with CR LF under Wine."""
    data = text.encode("cp932")
    return data.replace(b"\n", b"\r\n") if under_wine() else data


def drive_form(linux_path):
    """The drive form in which both builds see a Linux folder: Z: is the root."""
    return "Z:" + linux_path.replace("/", "\\")


def folder_argument(linux_path):
    """How a test names a folder on the command line: the Linux program converts an absolute Linux folder itself,
    Wine is handed the drive form."""
    return drive_form(linux_path) if under_wine() else linux_path


class Run:
    def __init__(self, stdout, stderr, code):
        self.stdout = stdout
        self.stderr = stderr
        self.code = code


def run(args, stdin=b"", env=None, cwd=None, timeout=120, user=None):
    """Runs the program with `args` (texts) and `stdin` (bytes), as `user` where given (a pair of user and group id;
    the tests must run as root to give one). A run that takes longer than `timeout` seconds raises
    subprocess.TimeoutExpired.
    Result: a Run.

    Under Wine the arguments go in UTF-8, which Wine's Japanese locale turns into Shift-JIS; the Linux program runs in
    the C locale, where the arguments are handed over as they are, so they go in Shift-JIS."""
    environment = clean_environment()
    if under_wine():
        command = [options().wine, options().program] + list(args)
    else:
        command = [options().program.encode()] + [a.encode("cp932") for a in args]
        # The C locale: the program's Shift-JIS passes to the pipe unconverted.
        environment["LC_ALL"] = "C"
        environment.pop("LANG", None)
    if env:
        environment.update(env)
    preexec = None
    if user is not None:
        def preexec():
            os.setgroups([])
            os.setgid(user[1])
            os.setuid(user[0])
    completed = subprocess.run(command, input=stdin, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                               env=environment, cwd=cwd, timeout=timeout, preexec_fn=preexec)
    if completed.returncode == 77 and under_wine() and b"not installed" in completed.stderr:
        raise unittest.SkipTest("Wine is not installed")
    return Run(completed.stdout, completed.stderr, completed.returncode & 0xFF)


class ProgramTest(unittest.TestCase):
    """A test case with a scratch folder and byte-exact comparison that shows both sides as text on failure."""

    def setUp(self):
        self._scratch = tempfile.TemporaryDirectory(prefix="kelmaro_cli_")
        self.scratch = self._scratch.name

    def tearDown(self):
        self._scratch.cleanup()

    def assertOutput(self, result, expected_text, expected_code, message=""):
        expected = sj(expected_text)
        if result.stdout != expected:
            shown = result.stdout.replace(b"\r\n", b"\n").decode("cp932", errors="replace")
            self.fail("%s\n--- expected ---\n%s\n--- got ---\n%s\n--- stderr ---\n%s" %
                      (message, expected_text, shown, result.stderr.decode("utf-8", errors="replace")))
        self.assertEqual(result.code, expected_code, message)


def main():
    options()
    unittest.main(verbosity=2)


def _tool_command(args):
    tool = options().lnk_tool
    if tool is None:
        raise unittest.SkipTest("no --lnk-tool given")
    return ([options().wine, tool] if under_wine() else [tool]) + args


def _escape(text):
    return "".join("^%02X" % ord(c) if ord(c) < 0x20 or c == "^" else c for c in text)


def _unescape(text):
    out, i = "", 0
    while i < len(text):
        if text[i] == "^" and i + 2 < len(text) + 1:
            out += chr(int(text[i + 1:i + 3], 16))
            i += 3
        else:
            out += text[i]
            i += 1
    return out


def write_shortcut(linux_path, **fields):
    """Writes a shortcut through the build's own shell link interface (ours on Linux, Wine's under Wine). Field
    texts are given as Windows paths and texts; keys: target, args, workdir, icon, index, desc, show, hotkey."""
    fields_file = linux_path + ".fields"
    lines = ["file=" + drive_form(linux_path)] + ["%s=%s" % (k, _escape(str(v))) for k, v in fields.items()]
    with open(fields_file, "wb") as out:
        out.write(("\n".join(lines) + "\n").encode("cp932"))
    fields_argument = drive_form(fields_file) if under_wine() else fields_file
    completed = subprocess.run(_tool_command(["write", fields_argument]), stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE, env=_tool_environment(), timeout=120)
    os.remove(fields_file)
    if not completed.stdout.rstrip().endswith(b"write=0"):
        raise AssertionError("could not write %s: %r %r" % (linux_path, completed.stdout, completed.stderr))


def read_shortcut(linux_path):
    """The fields of a shortcut as the build's shell link interface reads them: a dict of texts."""
    completed = subprocess.run(_tool_command(["read", drive_form(linux_path)]), stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE, env=_tool_environment(), timeout=120)
    line = completed.stdout.decode("cp932").strip().split("\n")[0]
    fields = {}
    for item in line.split("\t")[1:]:
        key, _, value = item.partition("=")
        fields[key] = _unescape(value)
    return fields


def clean_environment():
    """The environment in which a test starts the program: the developer's own settings never reach it. No KELMARO_*
    variable, a home folder of the tests' own, and under Wine the build's own prefix (the one wine-run would take)."""
    environment = {k: v for k, v in os.environ.items() if not k.startswith("KELMARO_")}
    environment["HOME"] = _home()
    environment.pop("WINEPREFIX", None)
    if under_wine():
        environment["WINEPREFIX"] = _own_wine_prefix or _wine_prefix()
    return environment


_own_wine_prefix = None


class OwnWinePrefix:
    """A Wine prefix of a test's own, made at the start and removed at the end, for tests that write the registry:
    the build's shared prefix serves suites that run beside them and must find nothing saved. While it stands, every
    run under Wine uses it."""

    def __enter__(self):
        global _own_wine_prefix
        self._folder = tempfile.mkdtemp(prefix="kelmaro_wine_")
        _own_wine_prefix = os.path.join(self._folder, "prefix")
        completed = wine_command(["wineboot", "--init"])
        if completed.returncode == 77:
            raise unittest.SkipTest("Wine is not installed")
        return self

    def __exit__(self, *exc):
        global _own_wine_prefix
        server = shutil.which("wineserver") or "/usr/lib/wine/wineserver"
        if os.path.exists(server):
            subprocess.run([server, "-k"], env=clean_environment(), stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL, timeout=60)
        _own_wine_prefix = None
        shutil.rmtree(self._folder, True)
        return False


def wine_prefix():
    """The Wine prefix that the program's runs use: a test's own while one stands, else the build's."""
    return _own_wine_prefix or _wine_prefix()


def wine_command(args):
    """Runs a Windows command (reg, wineboot, ...) under Wine in the prefix that the program's runs use."""
    return subprocess.run([options().wine] + list(args), stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          env=clean_environment(), timeout=300)


_home_folder = None


def _home():
    global _home_folder
    if _home_folder is None:
        _home_folder = tempfile.mkdtemp(prefix="kelmaro_home_")
        atexit.register(shutil.rmtree, _home_folder, True)
    return _home_folder


def _wine_prefix():
    """The prefix below the build folder of the program, as cmake/wine-run finds it."""
    folder = os.path.dirname(os.path.abspath(options().program))
    while not os.path.exists(os.path.join(folder, "CMakeCache.txt")) and folder != os.path.dirname(folder):
        folder = os.path.dirname(folder)
    return os.path.join(folder, "wineprefix")


def _tool_environment():
    environment = clean_environment()
    if not under_wine():
        environment["LC_ALL"] = "C"
    return environment
