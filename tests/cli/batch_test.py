"""yunqi-statement batch on a ledger of three departments: the same files as
the single commands, a summary, narrowed work, failures and interruptions.
"""
import os
import pwd
import re
import resource
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import programs  # noqa: E402
from programs import TOOL, read  # noqa: E402

ENV = dict(os.environ, SOURCE_DATE_EPOCH="1700000000")
REPORTS = programs.statements()  # each with its conditions' first option
DEPTS = ["A1", "B2", "C/3"]  # in the list's order; B2 has no parking item


def run(*args):
    return programs.run(*args, env=ENV)


def tree(folder):
    """Every file under folder, hidden ones too, with its bytes."""
    found = {}
    for top, _, files in os.walk(folder):
        for f in files:
            with open(os.path.join(top, f), "rb") as fh:
                found[os.path.relpath(os.path.join(top, f), folder)] = fh.read()
    return found


def children(pid):
    """The live processes whose parent is pid."""
    found = []
    for entry in os.listdir("/proc"):
        try:
            with open("/proc/%s/stat" % entry) as f:
                fields = f.read().rsplit(")", 1)[1].split()
        except (OSError, IndexError):
            continue
        if fields[0] != "Z" and int(fields[1]) == pid:
            found.append(int(entry))
    return found


def alive(pid):
    try:
        with open("/proc/%d/stat" % pid) as f:
            return f.read().rsplit(")", 1)[1].split()[0] != "Z"
    except OSError:
        return False


def make_ledger(path):
    made = run("make-demo-db", path, "--tickets", "0")
    assert made.returncode == 0, made.stderr
    with sqlite3.connect(path) as con:
        for table in ("设置管理处", "职能部门new", "税控盘收费项目设置"):
            con.execute("DELETE FROM " + table)
        for code, site, name in [("A1", "GA", "甲苑"), ("B2", "GB", "乙苑"), ("C/3", "GC", "丙苑")]:
            con.execute("INSERT INTO 职能部门new VALUES (?,?,NULL)", (code, name))
            con.execute("INSERT INTO 设置管理处 VALUES (?,?,?)", (code, site, name))
            for item, rate in [("001", 0.06), ("010", 0.05)]:
                con.execute("INSERT INTO 税控盘收费项目设置 VALUES (?,?,?)", (item, rate, site))
        parking = con.execute(
            "SELECT dh FROM setupsfxm WHERE 收费类别 LIKE '%停车%' ORDER BY dh").fetchone()[0]
        tickets = [(dept, day, *fee) for dept in DEPTS for day in range(1, 29, 3)
                   for fee in [("001", 106.0, 6.0), (parking, 105.0, 5.0)]
                   if not (fee[0] == parking and dept == "B2")]
        for n, (dept, day, item, amount, tax) in enumerate(tickets, 1):
            no, note = "%06d" % n, "N%02d" % (n % 7)
            paid = None if n % 5 == 0 else "2024-03-%02d 10:00:00" % day
            con.execute("INSERT OR IGNORE INTO 票据入库单 VALUES (?, '01')", (note,))
            con.execute("INSERT INTO 票据 (票据编号, 入库单编号, 开票日期, 收款日期, 金额, 收款方式, "
                        "付款人, 开票部门编号, 预开) VALUES (?,?,?,?,?,?,?,?,?)",
                        (no, note, "2024-03-%02d 09:00:00" % day, paid, amount,
                         "现金" if n % 2 else "微信支付", "住户%d" % n, dept, 1 if paid is None else 0))
            con.execute("INSERT INTO 票据开票数据 VALUES (?,?,?,?,?)", (note, no, item, amount, tax))
    return parking


class Batch(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()
        cls.db = os.path.join(cls.dir, "ledger.sqlite")
        cls.parking = make_ledger(cls.db)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.dir)

    def batch(self, out, *extra):
        return run("batch", "--database", self.db, "--month", "2024-03", "--out", out, *extra)

    def summary(self, out):
        return read(os.path.join(out, "summary.csv"))

    def test_files_equal_the_single_commands_and_the_summary_lists_every_pair(self):
        out = os.path.join(self.dir, "full")
        ratio = "%s=60/40" % self.parking
        r = self.batch(out, "--csv", "--jobs", "2", "--ratio", ratio)
        self.assertEqual(r.returncode, 0, r.stderr)
        rows = self.summary(out)
        self.assertEqual(rows[0], ["dept", "report", "status", "rows", "seconds", "file"])
        self.assertEqual([tuple(row[:3]) for row in rows[1:]],
                         [(d, rep, "empty" if (d, rep) == ("B2", "parking") else "ok")
                          for d in DEPTS for rep in REPORTS])
        self.assertFalse(os.path.exists(os.path.join(out, "B2", "parking.xlsx")))

        for d, rep, st, count, _, rel in rows[1:]:
            if st != "ok":  # an empty statement names no file and counts no rows
                self.assertEqual((count, rel), ("0", ""), (d, rep))
                continue
            cond = (["--year", "2024", "--months", "01-03"] if REPORTS[rep] == "--year" else
                    ["--from", "2024-03-01", "--to", "2024-03-31", "--ratio", ratio,
                     "--ratio-if-present"])
            x, c = os.path.join(self.dir, "s.xlsx"), os.path.join(self.dir, "s.csv")
            one = run(rep, "--database", self.db, "--dept", d, *cond, "--xlsx", x, "--csv", c)
            self.assertEqual(one.returncode, 0, one.stderr)
            for mine, theirs in [(c, rel[:-5] + ".csv"), (x, rel)]:
                with open(mine, "rb") as f1, open(os.path.join(out, theirs), "rb") as f2:
                    self.assertEqual(f1.read(), f2.read(), theirs)
            self.assertEqual(int(count), len(read(c)) - 2)

    def test_options_narrow_the_work(self):
        out = os.path.join(self.dir, "narrow")
        r = self.batch(out, "--dept", "C/3", "--dept", "A1", "--report", "invoice")
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertEqual([row[:3] for row in self.summary(out)[1:]],
                         [["A1", "invoice", "ok"], ["C/3", "invoice", "ok"]])
        self.assertEqual(sorted(os.listdir(os.path.join(out, "A1"))), ["invoice.xlsx"])
        # A bad month or an unknown option: StatementCli_test, as for every command.
        for bad in (["--report", "nothing"], ["--dept", "ZZ"], ["--jobs", "0"],
                    ["--ratio", "%s=50/60" % self.parking]):
            self.assertEqual(run("batch", "--database", self.db, "--month", "2024-03", "--out",
                                 os.path.join(self.dir, "bad"), *bad).returncode, 2, bad)
            self.assertFalse(os.path.exists(os.path.join(self.dir, "bad")), bad)

    def test_a_failing_statement_spoils_only_itself(self):
        db = os.path.join(self.dir, "broken.sqlite")
        shutil.copy(self.db, db)
        with sqlite3.connect(db) as con:  # a Null payer is an error of the invoice statement
            con.execute("UPDATE 票据 SET 付款人 = NULL WHERE 开票部门编号 = 'B2'")
        out = os.path.join(self.dir, "broken")
        r = run("batch", "--database", db, "--month", "2024-03", "--out", out)
        self.assertEqual(r.returncode, 1)
        self.assertIn("94", r.stderr)
        status = {(d, rep): (s, f) for d, rep, s, _, _, f in self.summary(out)[1:]}
        self.assertEqual((status[("B2", "invoice")], status[("A1", "invoice")]),
                         (("failed", ""), ("ok", "A1/invoice.xlsx")))
        self.assertTrue(os.path.exists(os.path.join(out, "C%2F3", "parking.xlsx")))

    def test_a_foreign_folder_is_refused_without_force(self):
        out = os.path.join(self.dir, "foreign")
        os.makedirs(out)
        with open(os.path.join(out, "notes.txt"), "w") as f:
            f.write("mine")
        self.assertEqual(self.batch(out, "--report", "invoice").returncode, 2)
        self.assertEqual(os.listdir(out), ["notes.txt"])
        r = self.batch(out, "--report", "invoice", "--force")
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertEqual(open(os.path.join(out, "notes.txt")).read(), "mine")
        # A folder of an earlier batch is ours to write again.
        self.assertEqual(self.batch(out, "--report", "invoice").returncode, 2)
        again = os.path.join(self.dir, "again")
        self.assertEqual(self.batch(again, "--report", "invoice").returncode, 0)
        self.assertEqual(self.batch(again, "--report", "invoice").returncode, 0)

    def test_another_month_replaces_the_whole_batch(self):
        out = os.path.join(self.dir, "months")
        self.assertEqual(self.batch(out, "--csv").returncode, 0)
        r = run("batch", "--database", self.db, "--month", "2021-12", "--out", out, "--csv")
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertEqual(sorted(tree(out)), ["mismatches.csv", "summary.csv"])
        self.assertEqual({row[2] for row in self.summary(out)[1:]}, {"empty"})
        self.assertFalse([f for f in os.listdir(self.dir) if f.startswith(".")])

    def test_limits_of_the_system_fail_statements_never_the_batch(self):
        nobody = pwd.getpwnam("nobody")
        if os.geteuid() != 0:
            self.skipTest("a process limit binds only a user other than root")
        os.chmod(self.dir, 0o755)
        os.chmod(self.db, 0o644)
        room = tempfile.mkdtemp()
        os.chmod(room, 0o777)
        rows = [  # name, open files, processes of the user, --jobs
            ("1024 files, 256 jobs", 1024, None, "256"),
            ("20 files, 8 jobs", 20, None, "8"),
            ("3 processes, 4 jobs", None, 3, "4"),
            ("1 process", None, 1, "4"),
        ]
        for name, files, processes, jobs in rows:
            def limits():
                if files:
                    resource.setrlimit(resource.RLIMIT_NOFILE, (files, files))
                if processes:
                    os.setgid(nobody.pw_gid)
                    os.setuid(nobody.pw_uid)
                    resource.setrlimit(resource.RLIMIT_NPROC, (processes, processes))
            out = os.path.join(room, name)
            r = subprocess.run([TOOL, "batch", "--database", self.db, "--month", "2024-03",
                                "--out", out, "--jobs", jobs, "--quiet"], capture_output=True,
                               text=True, env=ENV, preexec_fn=limits)
            self.assertIn(r.returncode, (0, 1), name + r.stderr)
            self.assertEqual(len(self.summary(out)), 1 + len(DEPTS) * len(REPORTS), name)
            if processes == 1:  # not one companion could start
                self.assertIn("cannot start the companion", r.stderr, name)
        shutil.rmtree(room)

    def test_a_code_that_cannot_be_a_folder_fails_its_department_only(self):
        db = os.path.join(self.dir, "codes.sqlite")
        shutil.copy(self.db, db)
        long_code = "L" * 300
        with sqlite3.connect(db) as con:
            for code in ("summary.csv", long_code):
                con.execute("INSERT INTO 职能部门new VALUES (?, '怪苑', NULL)", (code,))
                con.execute("INSERT INTO 设置管理处 VALUES (?, 'GA', '怪苑')", (code,))
        out = os.path.join(self.dir, "codes")
        r = run("batch", "--database", db, "--month", "2024-03", "--out", out, "--quiet")
        self.assertEqual(r.returncode, 1)
        self.assertIn("File name too long", r.stderr)
        status = {(d, rep): s for d, rep, s, *_ in self.summary(out)[1:]}
        self.assertEqual({status[(long_code, rep)] for rep in REPORTS}, {"failed"})
        self.assertEqual(status[("A1", "invoice")], "ok")
        self.assertTrue(os.path.isdir(os.path.join(out, "%73ummary.csv")))

    def test_a_ctrl_c_to_the_process_group_is_an_interruption_only(self):
        out = os.path.join(self.dir, "group")
        p = subprocess.Popen([TOOL, "batch", "--database", self.large(), "--month", "2024-03",
                              "--out", out, "--jobs", "2"], stdout=subprocess.DEVNULL,
                             stderr=subprocess.PIPE, text=True, env=ENV, start_new_session=True)
        p.stderr.readline()
        os.killpg(p.pid, signal.SIGINT)
        err = p.communicate(timeout=300)[1]
        self.assertEqual(p.returncode, 130)
        self.assertIsNone(re.search(r"batch: \S+ \w+: ", err), err)  # no failed statement
        self.assertFalse(os.path.exists(out))

    def test_an_interrupted_or_killed_batch_leaves_the_folder_as_it_was(self):
        # Rows: the signal, and whether the batch's own handler runs.
        for sig in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGKILL):
            out = os.path.join(self.dir, "kept-%d" % sig)
            self.assertEqual(self.batch(out, "--csv").returncode, 0)
            before = tree(out)
            p = subprocess.Popen([TOOL, "batch", "--database", self.large(), "--month",
                                  "2024-02", "--out", out, "--csv", "--jobs", "2"],
                                 stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, env=ENV)
            p.stderr.readline()  # one statement done, others running
            companions = children(p.pid)
            self.assertTrue(companions, sig)
            p.send_signal(sig)
            p.communicate(timeout=300)
            self.assertEqual(p.returncode, 130 if sig != signal.SIGKILL else -sig)
            # The companions end with their batch, and write nothing into the folder.
            for _ in range(200):
                if not any(alive(c) for c in companions):
                    break
                time.sleep(0.05)
            self.assertFalse([c for c in companions if alive(c)], sig)
            self.assertEqual(tree(out), before, sig)
            # A killed batch's hidden folder goes with the next batch.
            self.assertEqual(self.batch(out, "--report", "invoice").returncode, 0)
            self.assertFalse([f for f in os.listdir(self.dir) if f.startswith(".")], sig)

    def test_a_name_that_is_no_utf8_is_refused_before_any_work(self):
        # Typed under a GBK locale: each would have become the same U+FFFD name.
        folder = tempfile.mkdtemp(dir=self.dir)
        rows = [("报表.csv in GBK", ["invoice", "--csv", "报表.csv".encode("gbk")]),
                ("表报.csv in GBK", ["invoice", "--csv", "表报.csv".encode("gbk")]),
                ("a stray byte", ["invoice", "--csv", b"bad\xffname.csv"]),
                ("a batch folder in GBK", ["batch", "--out", "月结".encode("gbk")])]
        for name, (command, option, value) in rows:
            args = [os.path.abspath(TOOL), command, "--database", self.db, "--dept", "A1", option, value]
            args += (["--month", "2024-03"] if command == "batch" else
                     ["--from", "2024-03-01", "--to", "2024-03-31"])
            r = subprocess.run(args, capture_output=True, env=dict(ENV, LANG="zh_CN.GBK"),
                               cwd=folder)
            self.assertEqual(r.returncode, 2, name)
            self.assertIn(b"is not UTF-8 text", r.stderr, name)
            self.assertEqual(os.listdir(folder), [], name)

    @classmethod
    def large(cls):
        db = os.path.join(cls.dir, "large.sqlite")
        if not os.path.exists(db):
            assert run("make-demo-db", db, "--tickets", "60000").returncode == 0
        return db

    def test_an_interrupted_batch_leaves_no_temporary_file(self):
        db = self.large()
        out = os.path.join(self.dir, "interrupted")
        p = subprocess.Popen([TOOL, "batch", "--database", db, "--month", "2024-03", "--out", out,
                              "--csv", "--jobs", "2"], stdout=subprocess.DEVNULL,
                             stderr=subprocess.PIPE, env=ENV)
        p.stderr.readline()  # once the first statement is done: others are still running
        p.send_signal(signal.SIGINT)
        p.communicate(timeout=300)
        self.assertEqual(p.returncode, 130)
        left = [f for _, _, files in os.walk(out) for f in files
                if f.startswith(".") or ".part" in f or f.count(".") > 1]
        self.assertEqual(left, [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
