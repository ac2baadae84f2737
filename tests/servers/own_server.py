"""A server of a test's own on 127.0.0.1: an ordinary process in a temporary folder."""
import ctypes
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile

# Source: prctl(2).
PR_SET_PDEATHSIG = 1
PRCTL = ctypes.CDLL(None, use_errno=True).prctl


def free_port():
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


def program(name):
    found = shutil.which(name, path=os.environ.get("PATH", "") + ":/usr/sbin:/usr/local/sbin")
    if not found:
        raise SystemExit("%s is missing: tools/install-deps" % name)
    return found


def end_with_parent():
    """For a process between fork and exec: it ends when the thread that has started it does, however that ends."""
    PRCTL(PR_SET_PDEATHSIG, signal.SIGKILL, 0, 0, 0)


def leave(process, folder, keep, patience=20):
    """Ends a server, after `patience` seconds by force, and removes its folder unless somebody is to look into it."""
    process.terminate()
    try:
        process.wait(patience)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
    if keep:
        print("kept for inspection:", folder)
    else:
        shutil.rmtree(folder)


class OwnServer:
    """`words()` of a subclass is the command line that serves `port`, `environment()` what it runs in."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="korvane-server-"))
        self.port = free_port()
        self.process = None

    def environment(self):
        return os.environ

    def log(self):
        return "".join(path.read_text(errors="replace") for path in sorted(self.folder.glob("*log")))

    def __enter__(self):
        with open(self.folder / "output.log", "wb") as output:
            self.process = subprocess.Popen(self.words(), stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                                            env=self.environment(), preexec_fn=end_with_parent)
        for _ in range(300):
            if self.process.poll() is not None:
                break
            try:
                socket.create_connection(("127.0.0.1", self.port), 5).close()
                return self
            except OSError:
                self.wait_a_moment()
        raise SystemExit("the server did not start:\n" + self.log())

    def wait_a_moment(self):
        try:
            self.process.wait(0.1)
        except subprocess.TimeoutExpired:
            pass

    def __exit__(self, kind, error, trace):
        leave(self.process, self.folder, keep=kind is not None)
