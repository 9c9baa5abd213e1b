"""cmake --install into a temporary prefix, then moved, so that nothing can
lean on the build tree: every file where a desktop expects it, and both
programs run from the prefix with the build folder hidden (where a mount
namespace is allowed) and nothing of it on their way."""
import gzip
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
import programs  # noqa: E402

BIN = sys.argv[1] if len(sys.argv) > 1 else "build/bin"
BUILD = os.path.dirname(os.path.abspath(BIN))


def png_size(data):
    return int.from_bytes(data[16:20], "big"), int.from_bytes(data[20:24], "big")


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
    ("share/icons/hicolor/48x48/apps/yunqi-reports.png", lambda b: png_size(b) == (48, 48)),
    ("share/icons/hicolor/256x256/apps/yunqi-reports.png", lambda b: png_size(b) == (256, 256)),
    ("share/man/man1/yunqi-statement.1.gz",
     lambda b: gzip.decompress(b).find(b".TH YUNQI-STATEMENT 1") >= 0),
    ("share/man/man1/yunqi-reports.1.gz",
     lambda b: gzip.decompress(b).find(b".TH YUNQI-REPORTS 1") >= 0),
    ("share/doc/yunqi-reports/README.md", lambda b: b.startswith("# 云栖账房报表".encode())),
]


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
        rows = programs.statement_rows(bindir, self.env, wrap or ())
        self.assertGreater(len(rows), 3)
        shown, err = programs.main_window_shown(bindir, self.env, wrap or ())
        self.assertTrue(shown, err)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
