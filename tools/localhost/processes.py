"""Starting servers, waiting until they answer, and ending them.

A server is known by its process number together with the moment it started, so that a number that the system has
given to somebody else meanwhile is never signalled.
"""
import dataclasses
import json
import os
import pathlib
import shutil
import signal
import subprocess
import time

from .failure import HostError

START_SECONDS = 60.0
STOP_SECONDS = 30.0
SYSTEM_FOLDERS = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"


def find_program(names, package):
    """The path of the first program of `names` that is there; servers are often outside a user's PATH."""
    path = os.environ.get("PATH", "") + ":" + SYSTEM_FOLDERS
    for name in names:
        found = shutil.which(name, path=path)
        if found:
            return found
    raise HostError(f"{names[0]} is missing: install the package {package} (tools/install-deps does)")


def child_environment(**more):
    """A bare environment: nothing of the user's settings reaches a server."""
    return {"PATH": SYSTEM_FOLDERS, "LANG": "C.UTF-8", "HOME": "/nonexistent", **more}


@dataclasses.dataclass(frozen=True)
class Server:
    """How one server is started. `answers` tells whether it serves by now; `log` is where it complains."""

    name: str
    command: list
    log: pathlib.Path
    answers: object
    environment: dict


def started_at(pid):
    """The start time of a process in clock ticks since boot; None when it has ended. Source: proc(5), field 22."""
    try:
        text = pathlib.Path(f"/proc/{pid}/stat").read_text()
    except OSError:
        return None
    fields = text[text.rindex(")") + 2:].split()
    return None if fields[0] in "ZX" else int(fields[19])


class Servers:
    """The servers of one HOME, written down in run/servers.json."""

    def __init__(self, home):
        self._file = home.run / "servers.json"
        self._entries = self._read()

    def _read(self):
        try:
            return json.loads(self._file.read_text())
        except (OSError, ValueError):
            return []

    def _write(self):
        part = self._file.with_suffix(".part")
        part.write_text(json.dumps(self._entries))
        part.replace(self._file)

    def alive(self):
        """Name and process number of each server that runs."""
        return [(e["name"], e["pid"]) for e in self._entries if started_at(e["pid"]) == e["started"]]

    def start(self, server):
        """Starts a server and waits until it answers. Fails with the last line of its log when it ends instead."""
        with open(server.log, "ab") as log:
            process = subprocess.Popen(server.command, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                       env=server.environment, start_new_session=True, cwd="/")
        self._entries = [e for e in self._entries if e["name"] != server.name]
        self._entries.append({"name": server.name, "pid": process.pid, "started": started_at(process.pid)})
        self._write()
        end = time.monotonic() + START_SECONDS
        while not server.answers():
            if process.poll() is not None:
                raise HostError(f"{server.name} did not start: {last_line(server.log)}")
            if time.monotonic() > end:
                raise HostError(f"{server.name} does not answer after {START_SECONDS:.0f} s: see {server.log}")
            time.sleep(0.02)

    def stop(self):
        """Ends every server, the last started first; forcibly, with all its children, when one does not obey."""
        for name, pid in reversed(self.alive()):
            started = started_at(pid)
            signal_quietly(os.kill, pid, signal.SIGTERM)
            end = time.monotonic() + STOP_SECONDS
            while started_at(pid) == started and time.monotonic() < end:
                reap(pid)
                time.sleep(0.02)
            # Each server leads a process group of its own, which holds its workers.
            if started_at(pid) == started:
                signal_quietly(os.killpg, pid, signal.SIGKILL)
                reap(pid)
        self._entries = []
        self._file.unlink(missing_ok=True)


def signal_quietly(send, number, which):
    try:
        send(number, which)
    except ProcessLookupError:
        pass


def reap(pid):
    """Takes leave of an ended child; of no matter when it was another process's."""
    try:
        os.waitpid(pid, os.WNOHANG)
    except ChildProcessError:
        pass


def last_line(log):
    try:
        lines = [line.strip() for line in log.read_text(errors="replace").splitlines() if line.strip()]
    except OSError:
        lines = []
    return lines[-1] if lines else f"see {log}"
