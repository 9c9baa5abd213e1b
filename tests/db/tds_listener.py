#!/usr/bin/env python3
"""A TDS listener on loopback for the driver-stack tests.

Answers the pre-login without encryption and prints what the login packet
holds as one JSON line (to standard output only: the password is in it). Then
--reply close closes the connection; fail answers as SQL Server 2000 answers a
failed login (error 18456, a DONE in the 7.1 form) and keeps the connection
until the client closes it; serve answers the session's queries from the
SQLite ledger of --ledger (see Server below) until the client closes, one
session after another for --sessions N. With --browser-port it also answers
the UDP browser service with the TCP port. The first line printed is "port N";
it stops after one session (N serving) or 40 seconds (600 serving).
"""

import argparse
import datetime
import json
import re
import select
import socket
import sqlite3
import struct
import sys
import threading
import time

HOST = "127.0.0.1"


def packet(kind, payload):
    return struct.pack(">BBHHBB", kind, 0x01, 8 + len(payload), 0, 1, 0) + payload


def message(kind, payload, size=4096):
    """A reply split into packets of the negotiated size."""
    chunks = [payload[i:i + size - 8] for i in range(0, len(payload), size - 8)] or [b""]
    out = []
    for n, chunk in enumerate(chunks):
        last = n == len(chunks) - 1
        out.append(struct.pack(">BBHHBB", kind, 0x01 if last else 0x00, 8 + len(chunk), 0,
                               (n + 1) & 0xFF, 0) + chunk)
    return b"".join(out)


def read_message(conn, deadline):
    """One TDS message (packets up to end-of-message): (type, payload)."""
    data = buf = b""
    while True:
        while len(buf) < 8 or len(buf) < struct.unpack(">H", buf[2:4])[0]:
            left = deadline - time.monotonic()
            if left <= 0 or not select.select([conn], [], [], left)[0]:
                return None, b""
            chunk = conn.recv(65536)
            if not chunk:
                return None, b""
            buf += chunk
        length = struct.unpack(">H", buf[2:4])[0]
        kind, status, data, buf = buf[0], buf[1], data + buf[8:length], buf[length:]
        if status & 0x01:
            return kind, data


# Option table (token, offset, length), then VERSION 8.0.194 (SQL Server 2000)
# and ENCRYPTION 2 = not supported.
PRELOGIN_REPLY = packet(0x04, bytes.fromhex("00000b0006" "0100110001" "ff" "080000c20000" "02"))


def login_fields(data):
    def text(at):
        offset, count = struct.unpack("<HH", data[at:at + 4])
        return data[offset:offset + 2 * count]

    def plain(at):
        return text(at).decode("utf-16-le")

    # The password's bytes are nibble-swapped and XORed with 0xA5.
    hidden = bytes(((b ^ 0xA5) << 4 & 0xF0) | ((b ^ 0xA5) >> 4) for b in text(44))
    return {
        "version": "0x%08X" % struct.unpack("<I", data[4:8])[0],
        "user": plain(40),
        "password": hidden.decode("utf-16-le"),
        "app": plain(48),
        "database": plain(68),
    }


def b_varchar(s):
    return bytes([len(s)]) + s.encode("utf-16-le")


def failed_login_reply(user):
    message = "Login failed for user '%s'." % user
    body = (struct.pack("<iBB", 18456, 1, 14) + struct.pack("<H", len(message)) +
            message.encode("utf-16-le") + b_varchar("YUNQI") + b_varchar("") +
            struct.pack("<H", 0))  # line number: two bytes before TDS 7.2
    error = b"\xaa" + struct.pack("<H", len(body)) + body
    done = b"\xfd" + struct.pack("<HHI", 0x0002, 0, 0)  # error; row count of 4 bytes
    return packet(0x04, error + done)


def browser_reply(port):
    text = ("ServerName;YUNQI;InstanceName;LEDGER;IsClustered;No;Version;8.00.194;"
            "tcp;%d;;" % port).encode("ascii")
    return b"\x05" + struct.pack("<H", len(text)) + text


# Collations as the server states them: LCID and flags, then the sort id.
COLLATIONS = {
    "Chinese_PRC_CI_AS": bytes.fromhex("0408d00000"),
    "Latin1_General_CI_AS": bytes.fromhex("0904d00000"),
    "SQL_Latin1_General_CP1_CI_AS": bytes.fromhex("0904d00034"),
}
DATETIME = re.compile(r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d$")


def us_varchar(s):
    return struct.pack("<H", len(s)) + s.encode("utf-16-le")


class Server:
    """Answers SQL batches from a SQLite ledger, as SQL Server would type them.

    Text goes as GBK varchar under --collation, or as nvarchar (--text
    nvarchar); amounts that hold four decimals as money (or --amounts decimal,
    float), others as float; texts of the form "YYYY-MM-DD HH:MM:SS" as
    datetime. The T-SQL of the statements is looked up in --translations (a
    JSON object of T-SQL to SQLite text), anything else runs as it stands.
    --drop-on TEXT closes the connection after --drop-after rows of a batch
    holding TEXT; --stall-on TEXT never answers a batch holding TEXT (a
    cancel still is);
    --error-on TEXT answers a batch holding TEXT with an error token; --bad
    TEXT sends the text TEXT as its GBK bytes and a lone lead byte 0x81,
    --bad-inside TEXT with a byte 0xFF after its first character.
    """

    def __init__(self, args, version):
        self.args = args
        self.version = version  # the client's, as its login asked
        self.db = sqlite3.connect("file:%s?mode=ro" % args.ledger, uri=True)
        self.translations = {}
        if args.translations:
            with open(args.translations, encoding="utf-8") as f:
                self.translations = json.load(f)
        self.collation = COLLATIONS[args.collation]

    def wide(self):
        return self.version >= 0x72000000

    def done(self, status=0, count=0, command=0xC1):
        size = "<Q" if self.wide() else "<I"
        return b"\xfd" + struct.pack("<HH", status, command) + struct.pack(size, count)

    def error(self, number, text):
        line = struct.pack("<I" if self.wide() else "<H", 1)
        body = (struct.pack("<iBB", number, 1, 16) + us_varchar(text) + b_varchar("YUNQI") +
                b_varchar("") + line)
        return b"\xaa" + struct.pack("<H", len(body)) + body + self.done(0x0002)

    def login_reply(self, database):
        def envchange(kind, new, old=b""):
            body = bytes([kind]) + new + old
            return b"\xe3" + struct.pack("<H", len(body)) + body
        ack = (b"\x01" + struct.pack(">I", self.version) + b_varchar("Microsoft SQL Server") +
               bytes([10, 0, 0, 0]))
        return (envchange(1, b_varchar(database), b_varchar("master")) +
                envchange(7, bytes([5]) + self.collation, b"\x00") +
                b"\xad" + struct.pack("<H", len(ack)) + ack +
                envchange(4, b_varchar("4096"), b_varchar("4096")) + self.done(0, 0, 0))

    def text_type(self, size):
        if self.args.text == "nvarchar":
            return b"\xe7" + struct.pack("<H", 8000) + self.collation
        return b"\xa7" + struct.pack("<H", 8000) + self.collation

    def column(self, name, values):
        """(type info, row encoder) of a result column by what it holds."""
        present = [v for v in values if v is not None]
        user = struct.pack("<I" if self.wide() else "<H", 0) + struct.pack("<H", 0x0009)
        if present and all(isinstance(v, str) and DATETIME.match(v) for v in present):
            def encode(v):
                t = datetime.datetime.strptime(v, "%Y-%m-%d %H:%M:%S")
                days = (t - datetime.datetime(1900, 1, 1)).days
                seconds = t.hour * 3600 + t.minute * 60 + t.second
                return b"\x08" + struct.pack("<iI", days, seconds * 300)
            info = b"\x6f\x08"
        elif present and all(isinstance(v, int) for v in present):
            def encode(v):
                return b"\x08" + struct.pack("<q", v)
            info = b"\x26\x08"
        elif present and all(isinstance(v, (int, float)) for v in present):
            exact = all(round(v * 10000) / 10000 == v and abs(v) < 9e14 for v in present)
            if exact and self.args.amounts == "money":
                def encode(v):
                    n = round(v * 10000)
                    return b"\x08" + struct.pack("<iI", n >> 32, n & 0xFFFFFFFF)
                info = b"\x6e\x08"
            elif exact and self.args.amounts == "decimal":
                def encode(v):
                    n = round(v * 10000)
                    return b"\x11" + bytes([0 if n < 0 else 1]) + abs(n).to_bytes(16, "little")
                info = b"\x6a\x11\x26\x04"
            else:
                def encode(v):
                    return b"\x08" + struct.pack("<d", float(v))
                info = b"\x6d\x08"
        else:
            nvarchar = self.args.text == "nvarchar"
            def encode(v):
                if isinstance(v, bytes):
                    data = v
                elif self.args.bad and v == self.args.bad:
                    data = v.encode("gbk") + b"\x81"
                elif self.args.bad_inside and v == self.args.bad_inside:
                    data = v[0].encode("gbk") + b"\xff" + v[1:].encode("gbk")
                else:
                    data = str(v).encode("utf-16-le" if nvarchar else "gbk")
                return struct.pack("<H", len(data)) + data
            info = self.text_type(8000)
        null = b"\x00" if not info.startswith((b"\xa7", b"\xe7")) else b"\xff\xff"
        meta = user + info + b_varchar(name)
        return meta, lambda v: null if v is None else encode(v)

    def answer(self, sql, send):
        """Sends the reply to one batch; False once the connection is to drop."""
        if self.args.stall_on and self.args.stall_on in sql:
            return True
        if self.args.error_on and self.args.error_on in sql:
            send(self.error(208, "Invalid object name '票据'."))
            return True
        if "DatabasePropertyEx" in sql:
            rows, names = [(self.args.collation,)], ["Collation"]
        elif sql.lstrip().lower().startswith(("set ", "sp_")) or not sql.strip():
            send(self.done(0, 0, 0))
            return True
        else:
            try:
                cursor = self.db.execute(self.translations.get(sql, sql))
                names = [d[0] for d in cursor.description]
                rows = cursor.fetchall()
            except sqlite3.Error as e:
                send(self.error(102, str(e)))
                return True
        columns = [self.column(n, [r[i] for r in rows]) for i, n in enumerate(names)]
        out = [b"\x81" + struct.pack("<H", len(columns)) + b"".join(c[0] for c in columns)]
        drop = self.args.drop_on and self.args.drop_on in sql
        encoders = [c[1] for c in columns]
        for n, row in enumerate(rows):
            if drop and n == self.args.drop_after:
                send(b"".join(out), last=False)
                return False
            out.append(b"\xd1" + b"".join(e(v) for e, v in zip(encoders, row)))
        send(b"".join(out) + self.done(0x10, len(rows)))
        return True

    def serve(self, conn, deadline):
        def send(payload, last=True):
            if last:
                conn.sendall(message(0x04, payload))
            else:  # a part of the reply, and then nothing
                conn.sendall(message(0x04, payload)[:-1])
        while True:
            kind, data = read_message(conn, deadline)
            if kind is None:
                return
            if kind == 0x06:  # attention: the rest of a reply is cancelled
                print(json.dumps({"attention": True}), flush=True)
                send(self.done(0x0020, 0, 0))
            elif kind == 0x01:
                if self.wide():
                    data = data[struct.unpack("<I", data[:4])[0]:]
                sql = data.decode("utf-16-le")
                print(json.dumps({"query": sql}, ensure_ascii=False), flush=True)
                if not self.answer(sql, send):
                    return
            else:
                send(self.done(0, 0, 0))


def read_login(conn, deadline):
    """The pre-login answered, the login packet read: None when either is missing."""
    if read_message(conn, deadline)[0] != 0x12:
        return None
    conn.sendall(PRELOGIN_REPLY)
    kind, data = read_message(conn, deadline)
    return data if kind == 0x10 else None


def serve_session(args, conn, deadline):
    with conn:
        data = read_login(conn, deadline)
        if data is None:
            return
        fields = login_fields(data)
        print(json.dumps(fields), flush=True)
        session = Server(args, struct.unpack("<I", data[4:8])[0])
        conn.sendall(message(0x04, session.login_reply(fields["database"])))
        session.serve(conn, deadline)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--reply", choices=["close", "fail", "serve"], default="close")
    parser.add_argument("--ledger")
    parser.add_argument("--translations")
    parser.add_argument("--collation", choices=sorted(COLLATIONS), default="Chinese_PRC_CI_AS")
    parser.add_argument("--text", choices=["varchar", "nvarchar"], default="varchar")
    parser.add_argument("--amounts", choices=["money", "decimal", "float"], default="money")
    parser.add_argument("--drop-on")
    parser.add_argument("--drop-after", type=int, default=0)
    parser.add_argument("--error-on")
    parser.add_argument("--stall-on")
    parser.add_argument("--sessions", type=int, default=1)
    parser.add_argument("--bad")
    parser.add_argument("--bad-inside")
    parser.add_argument("--browser-port", type=int, default=0)
    args = parser.parse_args()
    deadline = time.monotonic() + (600 if args.reply == "serve" else 40)

    server = socket.create_server((HOST, 0))
    port = server.getsockname()[1]
    browser = None
    if args.browser_port:
        browser = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        try:
            browser.bind((HOST, args.browser_port))
        except OSError as e:
            print("browser port %d: %s" % (args.browser_port, e.strerror), flush=True)
            return 3
    print("port %d" % port, flush=True)

    sessions = []
    while (left := deadline - time.monotonic()) > 0:
        ready = select.select([server] + ([browser] if browser else []), [], [], left)[0]
        if browser in ready:
            request, peer = browser.recvfrom(4096)
            print(json.dumps({"browser": request[1:].split(b"\0")[0].decode("latin-1")}),
                  flush=True)
            browser.sendto(browser_reply(port), peer)
        if server not in ready:
            continue
        conn, _ = server.accept()
        if args.reply == "serve":
            # Each session on a thread of its own: a client may hold one
            # while it opens the next.
            sessions.append(threading.Thread(target=serve_session, args=(args, conn, deadline)))
            sessions[-1].start()
            if len(sessions) < args.sessions:
                continue
            for t in sessions:
                t.join()
            return 0
        with conn:
            data = read_login(conn, deadline)
            if data is None:
                continue
            fields = login_fields(data)
            if args.reply == "fail":
                conn.sendall(failed_login_reply(fields["user"]))
                # Kept open as the old server does, until the client gives up.
                while time.monotonic() < deadline:
                    if select.select([conn], [], [], deadline - time.monotonic())[0]:
                        if not conn.recv(4096):
                            break
            print(json.dumps(fields), flush=True)
            return 0


if __name__ == "__main__":
    sys.exit(main())
