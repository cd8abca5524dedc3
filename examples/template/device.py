#!/usr/bin/env python3
"""Plays a device for the template driver: 16-bit registers over TCP, one line of text at a time.

Usage: device.py [PORT]    (default 5000; 0 takes a free one, which is printed)

Registers 0 to 99 can be read and written, of any station; others are refused with code 0002.
"""
import socketserver
import sys

registers = {number: 0 for number in range(100)}


def answer(line):
    """The answer to one request without its CR, or None if it is no request."""
    station, command, register = line[1:3], line[3:4], line[4:8]
    if line[:1] != b":" or command not in (b"R", b"W"):
        return None
    number = int(register, 16)
    if number not in registers:
        return b"!" + station + b"0002\r"
    if command == b"W":
        registers[number] = int(line[8:12], 16)
    return b":" + station + b"%04X\r" % registers[number]


class Connection(socketserver.BaseRequestHandler):
    def handle(self):
        waiting = b""
        while received := self.request.recv(100):
            *lines, waiting = (waiting + received).split(b"\r")
            for line in lines:
                reply = answer(line)
                print(line.decode("ascii", "replace"), "->", reply, flush=True)
                if reply:
                    self.request.sendall(reply)


class Server(socketserver.ThreadingTCPServer):
    allow_reuse_address = True
    daemon_threads = True


if __name__ == "__main__":
    if len(sys.argv) > 2 or "-h" in sys.argv or "--help" in sys.argv:
        print(__doc__, end="")
        sys.exit(0 if len(sys.argv) == 2 else 2)
    with Server(("127.0.0.1", int(sys.argv[1]) if len(sys.argv) > 1 else 5000), Connection) as server:
        print("listening on port", server.server_address[1], flush=True)
        try:
            server.serve_forever()
        except KeyboardInterrupt:
            pass
