"""A server of a test's own on 127.0.0.1: an ordinary process in a temporary folder."""
import os
import pathlib
import shutil
import socket
import subprocess
import tempfile


def free_port():
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


def program(name):
    found = shutil.which(name, path=os.environ.get("PATH", "") + ":/usr/sbin:/usr/local/sbin")
    if not found:
        raise SystemExit("%s is missing: tools/install-deps" % name)
    return found


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
                                            env=self.environment())
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
