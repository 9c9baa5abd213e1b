#!/usr/bin/env python3
"""Every C++ file of the tree is as the project's .clang-format writes it: one style, kept by
this check (hand-aligned tables sit between "clang-format off" and "on")."""
import glob
import os
import subprocess
import sys
import unittest

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..')


def sources():
    files = []
    for folder in ('src', 'tests', 'bench'):
        for ext in ('cpp', 'h'):
            files += glob.glob(os.path.join(ROOT, folder, '**', '*.' + ext), recursive=True)
    return sorted(files)


class Formatting(unittest.TestCase):
    def test_every_file_as_clang_format_writes_it(self):
        files = sources()
        self.assertGreater(len(files), 100)
        run = subprocess.run(['clang-format', '--dry-run', '-Werror', '--style=file'] + files,
                             cwd=ROOT, capture_output=True, text=True)
        differing = sorted({line.split(':')[0] for line in run.stderr.splitlines()
                            if ': error: ' in line})
        self.assertEqual(differing, [], 'run clang-format -i on these files')
        self.assertEqual(run.returncode, 0, run.stderr[:2000])


if __name__ == '__main__':
    unittest.main(argv=sys.argv[:1])
