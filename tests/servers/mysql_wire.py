"""A connection to a MySQL or MariaDB server over its socket: statements as bytes, answers as bytes, warnings counted.

What the mariadb client would do to a statement on its way (separators, "\\g", character sets) is not done here, so that
the server sees exactly the bytes of a file. Source: MySQL Internals Manual, chapter "MySQL Client/Server Protocol".
"""
import socket
import struct


class ServerError(Exception):
    pass


LONG_PASSWORD, LONG_FLAG, PROTOCOL_41, TRANSACTIONS, SECURE = 1, 4, 0x200, 0x2000, 0x8000
PLUGIN_AUTH = 0x80000
LATIN1 = 8


def _encoded_length(data, at):
    first = data[at]
    if first < 0xFB:
        return first, at + 1
    size = {0xFC: 2, 0xFD: 3, 0xFE: 8}[first]
    return int.from_bytes(data[at + 1:at + 1 + size], "little"), at + 1 + size


class Connection:
    def __init__(self, path, user="root"):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(path)
        self.file = self.socket.makefile("rb")
        self.sequence = 0
        self._answer()  # the greeting
        flags = LONG_PASSWORD | LONG_FLAG | PROTOCOL_41 | TRANSACTIONS | SECURE | PLUGIN_AUTH
        self._send(struct.pack("<IIB23x", flags, 1 << 24, LATIN1) + user.encode() + b"\0" + b"\0" +
                   b"mysql_native_password\0")
        answer = self._answer()
        if answer[:1] == b"\xfe":  # another way to log in: an empty password is an empty answer to each
            self._send(b"")
            answer = self._answer()
        self._check(answer)

    def close(self):
        self.file.close()
        self.socket.close()

    def _send(self, payload):
        while True:
            piece, payload = payload[:0xFFFFFF], payload[0xFFFFFF:]
            self.socket.sendall(len(piece).to_bytes(3, "little") + bytes([self.sequence & 255]) + piece)
            self.sequence += 1
            if len(piece) < 0xFFFFFF:
                return

    def _answer(self):
        payload = b""
        while True:
            head = self.file.read(4)
            if len(head) < 4:
                raise ServerError("the server closed the connection")
            size = int.from_bytes(head[:3], "little")
            self.sequence = head[3] + 1
            payload += self.file.read(size)
            if size < 0xFFFFFF:
                return payload

    @staticmethod
    def _check(answer):
        if answer[:1] == b"\xff":
            number = int.from_bytes(answer[1:3], "little")
            raise ServerError("%d: %s" % (number, answer[9:].decode("latin-1")))

    def execute(self, statement):
        """Runs a statement that returns no rows; the number of warnings."""
        self.sequence = 0
        self._send(b"\x03" + statement)
        answer = self._answer()
        self._check(answer)
        if answer[:1] != b"\0":
            raise ServerError("rows where none were expected")
        _, at = _encoded_length(answer, 1)
        _, at = _encoded_length(answer, at)
        return int.from_bytes(answer[at + 2:at + 4], "little")

    def rows(self, statement):
        """The rows of a query: lists of bytes, None for NULL."""
        self.sequence = 0
        self._send(b"\x03" + statement)
        answer = self._answer()
        self._check(answer)
        columns, _ = _encoded_length(answer, 0)
        for _ in range(columns + 1):  # the columns, and the mark after them
            self._answer()
        found = []
        while True:
            answer = self._answer()
            self._check(answer)
            if answer[:1] == b"\xfe" and len(answer) < 9:
                return found
            row, at = [], 0
            for _ in range(columns):
                length = answer[at]
                if length == 0xFB:
                    row.append(None)
                    at += 1
                    continue
                if length < 0xFB:
                    at += 1
                else:
                    length, at = _encoded_length(answer, at)
                row.append(answer[at:at + length])
                at += length
            found.append(row)
