#!/usr/bin/env python3
"""A TDS listener on loopback for the driver-stack tests.

Answers the pre-login without encryption and prints what the login packet
holds as one JSON line (to standard output only: the password is in it). Then
--reply close closes the connection; fail answers as SQL Server 2000 answers a
failed login (error 18456, a DONE in the 7.1 form) and keeps the connection
until the client closes it. --browser-port also answers the UDP browser service
with the TCP port. The first line printed is "port N"; it stops after one login
or 40 seconds.
"""

import argparse
import json
import select
import socket
import struct
import sys
import time

HOST = "127.0.0.1"


def packet(kind, payload):
    return struct.pack(">BBHHBB", kind, 0x01, 8 + len(payload), 0, 1, 0) + payload


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


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--reply", choices=["close", "fail"], default="close")
    parser.add_argument("--browser-port", type=int, default=0)
    args = parser.parse_args()
    deadline = time.monotonic() + 40

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
        with conn:
            if read_message(conn, deadline)[0] != 0x12:
                continue  # no pre-login
            conn.sendall(PRELOGIN_REPLY)
            kind, data = read_message(conn, deadline)
            if kind != 0x10:
                continue  # no login
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
