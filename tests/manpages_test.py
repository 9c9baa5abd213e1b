"""The manual pages render without a warning, and say what the programs and
the README say: every command and option of yunqi-statement's usage and every
exit status, every key of the settings."""
import os
import re
import subprocess
import sys
import unittest

BIN = sys.argv[1] if len(sys.argv) > 1 else "build/bin"
ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
PAGES = os.path.join(ROOT, "packaging")
ENV = dict(os.environ, LANG="C.UTF-8", LC_ALL="C.UTF-8", MANWIDTH="80")

with open(os.path.join(ROOT, "README.md"), encoding="utf-8") as f:
    README = f.read()


def render(page):
    path = os.path.join(PAGES, page)
    strict = subprocess.run(["groff", "-k", "-man", "-ww", "-z", "-Tutf8", path],
                            capture_output=True, text=True, env=ENV)
    shown = subprocess.run(["man", "--warnings", "-l", path], capture_output=True, text=True,
                           env=ENV)
    return strict.stderr + shown.stderr, shown.stdout


def section(text, title):
    return re.search(r"^%s\n(.*?)(?=^\S)" % title, text, re.M | re.S).group(1)


class ManualPages(unittest.TestCase):
    def test_statement_page_holds_every_command_option_and_status(self):
        warnings, text = render("yunqi-statement.1")
        self.assertEqual(warnings, "")
        usage = subprocess.run([os.path.join(BIN, "yunqi-statement"), "--help"],
                               capture_output=True, text=True, check=True).stdout
        commands = {c for line in usage.splitlines()[1:] for c in line.split()[1].split("|")
                    if not c.startswith("-") and c != "COMMAND"}
        self.assertGreaterEqual(len(commands), 6)
        for word in sorted(commands | set(re.findall(r"--[a-z-]+", usage))):
            self.assertIn(word, text)
        statuses = section(text, "EXIT STATUS")
        for status in re.findall(r"^\| (\d+) \|", README, re.M) + ["130"]:
            self.assertRegex(statuses, r"(?m)^ {7}%s\b" % status)

    def test_reports_page_holds_every_settings_key(self):
        warnings, text = render("yunqi-reports.1")
        self.assertEqual(warnings, "")
        table = README.split("| Key |")[1].split("\n\n")[0]
        keys = re.findall(r"`(\w+)`(?=[^|]*\|[^|]*\|[^|]*\|$)", table, re.M)
        self.assertGreaterEqual(len(keys), 6)
        for key in keys:
            self.assertRegex(section(text, "SETTINGS"), r"(?m)^ {7}(\w+, )*%s\b" % key)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
