"""The Debian package as CPack makes it: its control fields declare what the
programs need at run time, under names the archive knows; it holds the
programs, the desktop entry, the icon and the manual pages; and the programs
unpacked into a folder compute a statement."""
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

# What the programs load, link or show with: Qt's widgets and SQL with both
# drivers, the ODBC driver manager and FreeTDS, the workbook library, Qt's
# Chinese texts, a CJK font.
NEEDS = ["libqt6widgets6", "libqt6sql6", "libqt6sql6-sqlite", "libqt6sql6-odbc", "unixodbc",
         "tdsodbc", "libxlsxwriter4", "qt6-translations-l10n", "fonts-noto-cjk"]
HOLDS = ["usr/bin/yunqi-reports", "usr/bin/yunqi-statement",
         "usr/share/applications/yunqi-reports.desktop",
         "usr/share/icons/hicolor/scalable/apps/yunqi-reports.svg",
         "usr/share/icons/hicolor/48x48/apps/yunqi-reports.png",
         "usr/share/icons/hicolor/256x256/apps/yunqi-reports.png",
         "usr/share/man/man1/yunqi-statement.1.gz", "usr/share/man/man1/yunqi-reports.1.gz",
         "usr/share/doc/yunqi-reports/README.md"]


@unittest.skipUnless(shutil.which("dpkg-deb") and shutil.which("cpack"),
                     "dpkg-deb or cpack is missing: no Debian package to check")
class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()
        r = subprocess.run(["cpack", "--config", os.path.join(BUILD, "CPackConfig.cmake"),
                            "-G", "DEB", "-B", cls.dir], capture_output=True, text=True)
        assert r.returncode == 0, r.stdout + r.stderr
        debs = [f for f in os.listdir(cls.dir) if f.endswith(".deb")]
        assert debs == ["yunqi-reports_1.0.0_amd64.deb"], debs
        cls.deb = os.path.join(cls.dir, debs[0])

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
        for package in NEEDS:
            self.assertIn(package, depends)
        # Names the archive knows: each is installed here, for the build or the tests.
        r = subprocess.run(["dpkg-query", "-W", *depends], capture_output=True, text=True)
        self.assertEqual(r.returncode, 0, r.stderr)

    def test_files_and_a_statement_from_the_unpacked_programs(self):
        listed = {line.split()[-1].lstrip("./") for line in self.dpkg_deb("-c").splitlines()}
        for name in HOLDS:
            self.assertIn(name, listed)
        root = os.path.join(self.dir, "root")
        subprocess.run(["dpkg-deb", "-x", self.deb, root], check=True)
        rows = programs.statement_rows(os.path.join(root, "usr", "bin"))
        self.assertGreater(len(rows), 3)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
