#!/usr/bin/env python3
"""Every include of src/ goes down the layers: core <- db <- frame <- reports <- shell, cli.
A report folder includes no other report; widget code is included only from widget code.
Inside a folder too every dependency points one way: no files (a header with its
source) that need each other, directly or round a circle."""
import os
import re
import sys
import unittest

SRC = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'src')
RANK = {'core': 0, 'db': 1, 'frame': 2, 'reports': 3, 'shell': 4, 'cli': 4}
INCLUDE = re.compile(r'#\s*include\s+"([^"]+)"')


def layer(rel):
    parts = rel.split('/')
    if len(parts) == 1:
        return None  # the programs' entry points sit above everything
    return parts[0]


def report(rel):
    parts = rel.split('/')
    return parts[1] if parts[0] == 'reports' and len(parts) > 2 else None


def is_widget(rel):
    return '/widgets/' in '/' + rel


def wrong_way_includes(src):
    faults = []
    for folder, _, files in os.walk(src):
        for name in files:
            if not name.endswith(('.h', '.cpp')):
                continue
            path = os.path.join(folder, name)
            rel = os.path.relpath(path, src).replace(os.sep, '/')
            with open(path, encoding='utf-8') as f:
                for number, line in enumerate(f, 1):
                    m = INCLUDE.search(line)
                    if not m or not os.path.exists(os.path.join(src, m.group(1))):
                        continue
                    target = m.group(1)
                    here, there = layer(rel), layer(target)
                    where = '%s:%d includes %s' % (rel, number, target)
                    if here is None:
                        continue
                    if RANK[there] > RANK[here] or (here != there and RANK[there] == RANK[here]):
                        faults.append(where + ' (a layer above)')
                    elif report(rel) and report(target) and report(rel) != report(target):
                        faults.append(where + ' (another report)')
                    elif is_widget(target) and not is_widget(rel):
                        faults.append(where + ' (widgets from widget-free code)')
    return faults


def file_circles(src):
    """Circles of files that include each other; a header and its source are one file."""
    needs = {}
    for folder, _, files in os.walk(src):
        for name in files:
            if not name.endswith(('.h', '.cpp')):
                continue
            path = os.path.join(folder, name)
            unit = os.path.splitext(os.path.relpath(path, src).replace(os.sep, '/'))[0]
            with open(path, encoding='utf-8') as f:
                for line in f:
                    m = INCLUDE.search(line)
                    if m and os.path.exists(os.path.join(src, m.group(1))):
                        target = os.path.splitext(m.group(1))[0]
                        if target != unit:
                            needs.setdefault(unit, set()).add(target)
    # Tarjan's strongly connected components: each one of more than one file is a circle.
    index, low, stack, on_stack, circles = {}, {}, [], set(), []

    def visit(unit):
        index[unit] = low[unit] = len(index)
        stack.append(unit)
        on_stack.add(unit)
        for other in sorted(needs.get(unit, ())):
            if other not in index:
                visit(other)
                low[unit] = min(low[unit], low[other])
            elif other in on_stack:
                low[unit] = min(low[unit], index[other])
        if low[unit] == index[unit]:
            component = []
            while True:
                other = stack.pop()
                on_stack.discard(other)
                component.append(other)
                if other == unit:
                    break
            if len(component) > 1:
                circles.append(' <-> '.join(sorted(component)))

    for unit in sorted(needs):
        if unit not in index:
            visit(unit)
    return circles


class LayersTest(unittest.TestCase):
    def test_includes_go_down_the_layers(self):
        self.assertEqual(wrong_way_includes(SRC), [])

    def test_no_files_need_each_other(self):
        self.assertEqual(file_circles(SRC), [])

    def test_the_check_sees_a_wrong_way_include(self):
        import tempfile
        with tempfile.TemporaryDirectory() as root:
            for rel, text in {'core/A.h': '#include "frame/B.h"\n', 'frame/B.h': '',
                              'reports/x/C.h': '#include "reports/y/D.h"\n', 'reports/y/D.h': ''}.items():
                os.makedirs(os.path.dirname(os.path.join(root, rel)), exist_ok=True)
                with open(os.path.join(root, rel), 'w', encoding='utf-8') as f:
                    f.write(text)
            faults = wrong_way_includes(root)
            self.assertEqual(len(faults), 2, faults)

    def test_the_check_sees_files_that_need_each_other(self):
        import tempfile
        with tempfile.TemporaryDirectory() as root:
            for rel, text in {'cli/A.h': '', 'cli/A.cpp': '#include "cli/B.h"\n',
                              'cli/B.h': '#include "cli/A.h"\n',
                              'cli/C.cpp': '#include "cli/D.h"\n', 'cli/D.h': '#include "cli/E.h"\n',
                              'cli/E.h': '#include "cli/C.h"\n', 'cli/C.h': '',
                              'cli/F.h': '#include "cli/A.h"\n'}.items():
                os.makedirs(os.path.dirname(os.path.join(root, rel)), exist_ok=True)
                with open(os.path.join(root, rel), 'w', encoding='utf-8') as f:
                    f.write(text)
            self.assertEqual(file_circles(root), ['cli/A <-> cli/B', 'cli/C <-> cli/D <-> cli/E'])


if __name__ == '__main__':
    unittest.main(argv=sys.argv[:1])
