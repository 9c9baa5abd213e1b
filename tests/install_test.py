"""Installed into a prefix and moved, and packaged by CPack: every file where a
desktop expects it, both programs run with the build folder out of reach, and
the package's control fields and files.
"""
import gzip
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
import programs  # noqa: E402

BIN = sys.argv[1] if len(sys.argv) > 1 else "build/bin"
BUILD = os.path.dirname(os.path.abspath(BIN))


def png(side):  # a square icon: the header's width and height
    return lambda b: b[16:24] == side.to_bytes(4, "big") * 2


# Installed file, and what its content must show.
FILES = [
    ("bin/yunqi-reports", lambda b: b[:4] == b"\x7fELF"),
    ("bin/yunqi-statement", lambda b: b[:4] == b"\x7fELF"),
    ("share/applications/yunqi-reports.desktop",
     lambda b: all(line in b.decode().splitlines() for line in
                   ("Name=云栖账房报表", "Exec=yunqi-reports", "Icon=yunqi-reports",
                    "Categories=Office;Finance;"))
     and "Comment[zh_CN]=" in b.decode() and "\nComment=" in b.decode()),
    ("share/icons/hicolor/scalable/apps/yunqi-reports.svg", lambda b: b"<svg" in b),
    ("share/icons/hicolor/48x48/apps/yunqi-reports.png", png(48)),
    ("share/icons/hicolor/256x256/apps/yunqi-reports.png", png(256)),
    ("share/man/man1/yunqi-statement.1.gz",
     lambda b: gzip.decompress(b).find(b".TH YUNQI-STATEMENT 1") >= 0),
    ("share/man/man1/yunqi-reports.1.gz",
     lambda b: gzip.decompress(b).find(b".TH YUNQI-REPORTS 1") >= 0),
    ("share/doc/yunqi-reports/README.md", lambda b: b.startswith("# 云栖账房报表".encode())),
    ("share/doc/yunqi-reports/docs/windows-wine.png", lambda b: b[:4] == b"\x89PNG"),
    ("share/doc/yunqi-reports/copyright",
     lambda b: b.startswith(b"Format: https://www.debian.org/doc/packaging-manuals/copyright-format/")),
    ("share/doc/yunqi-reports/changelog.gz",
     lambda b: gzip.decompress(b).startswith(b"yunqi-reports (1.0.0) ")),
]

# What the programs load, link or show with: Qt's widgets and SQL with both drivers, the
# ODBC driver manager and FreeTDS, the workbook library, Qt's Chinese texts, a CJK font.
NEEDS = ["libqt6widgets6", "libqt6sql6", "libqt6sql6-sqlite", "libqt6sql6-odbc", "unixodbc",
         "tdsodbc", "libxlsxwriter4", "qt6-translations-l10n", "fonts-noto-cjk"]


class Install(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()
        staged = os.path.join(cls.dir, "staged")
        r = subprocess.run(["cmake", "--install", BUILD, "--prefix", staged],
                           capture_output=True, text=True)
        assert r.returncode == 0, r.stderr
        cls.prefix = os.path.join(cls.dir, "elsewhere", "usr")
        os.makedirs(os.path.dirname(cls.prefix))
        os.rename(staged, cls.prefix)
        # Only the prefix and the system: no build folder on any path.
        cls.env = {"PATH": os.path.join(cls.prefix, "bin") + ":/usr/bin:/bin",
                   "HOME": cls.dir, "LANG": "C.UTF-8"}

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.dir)

    def test_every_file_where_a_desktop_expects_it_and_none_names_the_build(self):
        for name, holds in FILES:
            with self.subTest(name):
                with open(os.path.join(self.prefix, name), "rb") as f:
                    data = f.read()
                self.assertTrue(holds(data))
                self.assertNotIn(BUILD.encode(), data)
        entry = os.path.join(self.prefix, FILES[2][0])
        r = subprocess.run(["desktop-file-validate", entry], capture_output=True, text=True)
        self.assertEqual((r.returncode, r.stdout), (0, ""))
        for program in ("yunqi-reports", "yunqi-statement"):
            r = subprocess.run(["readelf", "-d", os.path.join(self.prefix, "bin", program)],
                               capture_output=True, text=True)
            self.assertNotIn("PATH", r.stdout, program)  # neither RPATH nor RUNPATH

    def test_both_programs_run_from_the_prefix_with_the_build_folder_hidden(self):
        bindir = os.path.join(self.prefix, "bin")
        wrap = programs.hiding(BUILD)
        if wrap is None:
            print("no mount namespace here: the build folder stays in sight", file=sys.stderr)
        self.assertGreater(len(programs.statement_rows(bindir, self.env, wrap or ())), 3)
        shown, err = programs.main_window_shown(bindir, self.env, wrap or ())
        self.assertTrue(shown, err)


@unittest.skipUnless(shutil.which("dpkg-deb") and shutil.which("cpack"),
                     "dpkg-deb or cpack is missing: no Debian package to check")
class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()
        r = subprocess.run(["cpack", "--config", os.path.join(BUILD, "CPackConfig.cmake"),
                            "-G", "DEB", "-B", cls.dir], capture_output=True, text=True)
        assert r.returncode == 0, r.stdout + r.stderr
        cls.deb = os.path.join(cls.dir, "yunqi-reports_1.0.0_amd64.deb")
        assert [f for f in os.listdir(cls.dir) if f.endswith(".deb")] == [os.path.basename(cls.deb)]

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.dir)

    def dpkg_deb(self, *args):
        return subprocess.run(["dpkg-deb", *args, self.deb], capture_output=True, text=True,
                              check=True).stdout

    def test_control_fields_declare_what_the_programs_need(self):
        fields = dict(re.findall(r"^ (\w[\w-]*): (.*)$", self.dpkg_deb("-I"), re.M))
        self.assertEqual((fields["Package"], fields["Version"], fields["Architecture"]),
                         ("yunqi-reports", "1.0.0", "amd64"))
        depends = [re.split(r"[ (]", d.strip())[0] for d in fields["Depends"].split(",")]
        self.assertEqual(set(NEEDS) - set(depends), set())
        # Names the archive knows: each is installed here, for the build or the tests.
        r = subprocess.run(["dpkg-query", "-W", *depends], capture_output=True, text=True)
        self.assertEqual(r.returncode, 0, r.stderr)

    @unittest.skipUnless(shutil.which("lintian"), "lintian is missing")
    def test_lintian_finds_no_error_or_warning_and_the_hardening_is_there(self):
        r = subprocess.run(["lintian", "-EvIL", "+pedantic", self.deb], capture_output=True,
                           text=True)
        tags = [line for line in r.stdout.splitlines() if re.match(r"^[EWIPX]: ", line)]
        self.assertEqual([t for t in tags if t[0] in "EW"], [], r.stdout)
        self.assertEqual([t for t in tags if "hardening" in t], [], r.stdout)

    def test_files_and_a_statement_from_the_unpacked_programs(self):
        listed = {line.split()[-1].lstrip("./") for line in self.dpkg_deb("-c").splitlines()}
        self.assertEqual({"usr/" + name for name, _ in FILES} - listed, set())
        root = os.path.join(self.dir, "root")
        subprocess.run(["dpkg-deb", "-x", self.deb, root], check=True)
        self.assertGreater(len(programs.statement_rows(os.path.join(root, "usr", "bin"))), 3)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
