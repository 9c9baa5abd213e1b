"""Both programs run as an office runs them, from wherever they were
installed: a statement on a demo ledger, and the desktop program started
offscreen to its main window and closed."""
import csv
import os
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time

TOOL = os.path.join(sys.argv[1] if len(sys.argv) > 1 else "build/bin", "yunqi-statement")

# The main window, as Qt's accessibility cache logs it when it is shown.
MAIN_WINDOW = 'name="云栖账房报表" role=Window'.encode()


def run(*args, **kw):  # the companion under test, its outputs as text
    return subprocess.run([TOOL, *args], capture_output=True, text=True, **kw)


def statements():
    """Every statement command in the order of the companion's usage, each
    with its conditions' first option: "--from" (a date window) or "--year"."""
    found = {}
    for line in run("--help").stdout.splitlines():
        words = line.split()
        kind = next((w for w in words if w in ("--from", "--year")), None)
        if kind:
            found.update((command, kind) for command in words[1].split("|"))
    return found


def read(path):
    with open(path, encoding="utf-8") as f:
        return list(csv.reader(f))


def hiding(folder):
    """A launcher that runs a program with folder hidden under an empty one
    (a mount namespace of its own), or None where namespaces are not allowed."""
    wrap = ["unshare", "-rm", "sh", "-c", 'mount -t tmpfs none "$0" && exec "$@"', folder]
    ok = shutil.which("unshare") and subprocess.run(wrap + ["true"], capture_output=True)
    return wrap if ok and ok.returncode == 0 else None


def tool(bindir, *args, env=None, wrap=(), **kw):
    """Runs bindir's companion and asserts it succeeded."""
    r = subprocess.run([*wrap, os.path.join(bindir, "yunqi-statement"), *args],
                       capture_output=True, text=True, env=env, **kw)
    assert r.returncode == 0, (args[0], r.stderr)


def statement_rows(bindir, env=None, wrap=()):
    """Makes a demo ledger with bindir's companion and returns the rows of an
    invoice statement on it."""
    with tempfile.TemporaryDirectory() as d:
        db, out = os.path.join(d, "demo.sqlite"), os.path.join(d, "s.")
        tool(bindir, "make-demo-db", db, "--tickets", "2000", env=env, wrap=wrap, cwd=d)
        tool(bindir, "invoice", "--database", db, "--dept", "01", "--from", "2024-01-01", "--to",
             "2024-12-31", "--csv", out + "csv", "--xlsx", out + "xlsx", env=env, wrap=wrap, cwd=d)
        return read(out + "csv")


def main_window_shown(bindir, env=None, wrap=(), patience=60):
    """Starts bindir's desktop program offscreen on a demo ledger: whether its
    main window was shown before it was ended as a session ends it, and its
    standard error."""
    with tempfile.TemporaryDirectory() as d:
        db = os.path.join(d, "demo.sqlite")
        tool(bindir, "make-demo-db", db, "--tickets", "200", env=env)
        os.makedirs(os.path.join(d, "云栖账房"))
        with open(os.path.join(d, "云栖账房", "云栖账房.ini"), "w", encoding="utf-8") as f:
            f.write("[DBConfig]\nDriver=SQLite\nDBname=%s\n" % db)
        env = dict(env or os.environ, XDG_CONFIG_HOME=d, QT_QPA_PLATFORM="offscreen",
                   QT_LOGGING_RULES="qt.accessibility.cache.debug=true")
        p = subprocess.Popen([*wrap, os.path.join(bindir, "yunqi-reports")],
                             stderr=subprocess.PIPE, env=env, cwd=d)
        err, shown, end = b"", False, time.monotonic() + patience
        while not shown and p.poll() is None and time.monotonic() < end:
            if select.select([p.stderr], [], [], 1)[0]:
                err += os.read(p.stderr.fileno(), 65536)
                shown = MAIN_WINDOW in err
        if p.poll() is None:
            p.send_signal(signal.SIGTERM)
        err += p.communicate(timeout=patience)[1]
        return shown, err.decode(errors="replace")
