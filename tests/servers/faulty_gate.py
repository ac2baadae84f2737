"""A gate of its own on 127.0.0.1 before an FTP server, which spoils one command or one data connection."""
import re
import socket
import struct
import threading
import time

from own_server import free_port

# What is said instead of a reply, the command not being passed on.
SPOILED_REPLIES = {
    "malformed": b"HTTP/1.1 400 Bad Request\r\n",
    "over-long": b"250 " + b"x" * 70000,
    "negative": b"553-no\r\n e poi no\r\n553 comando rifiutato\r\n",
    "missing": b"",
}
COMMAND_FAULTS = ("cut", "late", "multi-line", *SPOILED_REPLIES)
# The port refuses; the connection is reset, stops, or is taken for whole and then refused.
DATA_FAULTS = ("data refused", "data cut", "data stalled", "disk full")
FAULTS = COMMAND_FAULTS + DATA_FAULTS
# With these a publish may succeed: nothing was lost.
HARMLESS = ("late", "multi-line")
LATE_SECONDS = 0.3
RESET = struct.pack("ii", 1, 0)  # with this option closing resets the connection
EXTENDED = re.compile(rb"229 [^\r\n]*\(\|\|\|(\d+)\|\)")


def close_both(*sockets):
    for one in sockets:
        try:
            one.shutdown(socket.SHUT_RDWR)
        except OSError:
            pass


class Talk:
    """One control connection: `spoils` is the start of the reply that is to be made another one, None for none."""

    def __init__(self, client):
        self.client, self.spoils = client, None


class FaultyGate:
    """At the command `fatal_at` (from 1, over all connections), or at that data connection, happens `fault`, one of
    FAULTS: "cut" closes the control connection without a word. `most_bytes` of a data connection go through before its
    fault. Once only, and `fired` tells whether it has."""

    def __init__(self, port, fatal_at, fault="cut", most_bytes=0):
        self.port, self.target, self.left = free_port(), port, fatal_at
        self.fault, self.most_bytes = fault, most_bytes
        self.fired = False
        self.guard = threading.Lock()
        self.open = []

    def __enter__(self):
        self.listener = socket.create_server(("127.0.0.1", self.port))
        self._start(self._accept)
        return self

    def __exit__(self, kind, error, trace):
        self.listener.close()
        # A stalled connection has nobody else who would end it.
        close_both(*self.open)

    @staticmethod
    def _start(work, *values):
        threading.Thread(target=work, args=values, daemon=True).start()

    def _accept(self):
        while True:
            try:
                client, _ = self.listener.accept()
            except OSError:
                return
            server = socket.create_connection(("127.0.0.1", self.target))
            self.open += [client, server]
            talk = Talk(client)
            self._start(self._carry, client, server, self._command, talk)
            self._start(self._carry, server, client, self._reply, talk)

    def _carry(self, source, sink, judge, talk):
        """Line by line; `judge` says what goes on, or None to close both sides."""
        try:
            with source.makefile("rb") as lines:
                for line in lines:
                    passed = judge(line, talk)
                    if passed is None:
                        break
                    sink.sendall(passed)
        except OSError:
            pass
        close_both(source, sink)
        source.close()

    def _is_now(self):
        """Counts down to the fault, which happens once."""
        with self.guard:
            self.left -= 1
            if self.left > 0 or self.fired:
                return False
            self.fired = True
            return True

    def _command(self, line, talk):
        if self.fault in DATA_FAULTS or not self._is_now():
            return line
        if self.fault in SPOILED_REPLIES:
            talk.client.sendall(SPOILED_REPLIES[self.fault])
            return b""
        if self.fault == "late":
            time.sleep(LATE_SECONDS)
        if self.fault == "multi-line":
            talk.spoils = b""
        return None if self.fault == "cut" else line

    def _reply(self, line, talk):
        if talk.spoils is not None and line.startswith(talk.spoils) and line[3:4] == b" ":
            talk.spoils = None
            if self.fault == "disk full":
                return b"552 disco pieno\r\n"
            return line[:3] + b"-una riga\r\n e un'altra\r\n" + line
        port = EXTENDED.match(line)
        return self._data_gate(int(port[1]), talk) if port and self.fault in DATA_FAULTS else line

    def _data_gate(self, port, talk):
        """Another reply to EPSV: a port of the gate's own stands for that of the server."""
        listener = socket.create_server(("127.0.0.1", 0))
        answer = b"229 modo passivo (|||%d|)\r\n" % listener.getsockname()[1]
        is_spoiled = self._is_now()
        if is_spoiled and self.fault == "data refused":
            listener.close()
        else:
            self._start(self._data, listener, port, talk if is_spoiled else None)
        return answer

    def _data(self, listener, port, spoiled_talk):
        with listener:
            client, _ = listener.accept()
        server = socket.create_connection(("127.0.0.1", port))
        self.open += [client, server]
        left = self.most_bytes if spoiled_talk else None
        try:
            while data := client.recv(65536):
                if left is not None and len(data) > left:
                    server.sendall(data[:left])
                    break
                server.sendall(data)
                left = None if left is None else left - len(data)
        except OSError:
            pass
        self._end_data(client, server, spoiled_talk) if spoiled_talk else self._end_whole(client, server)

    @staticmethod
    def _end_whole(client, server):
        server.close()
        client.close()

    def _end_data(self, client, server, talk):
        """What becomes of the spoiled connection, at the byte of its fault or at its end."""
        if self.fault == "data stalled":
            return
        if self.fault == "data cut":
            for one in (client, server):
                one.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, RESET)
                one.close()
            return
        talk.spoils = b"226"
        server.close()
        try:
            while client.recv(65536):
                pass
        except OSError:
            pass
        client.close()
