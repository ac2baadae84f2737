"""A MariaDB server of the test's own: fresh data in a temporary folder, one socket, no network. Works for root and for
an ordinary user."""
import os
import shutil
import subprocess
import tempfile
import time

from mysql_wire import Connection
from own_server import end_with_parent, leave


def program(*names):
    path = os.environ.get("PATH", "") + ":/usr/sbin:/usr/local/sbin:/usr/libexec"
    for name in names:
        found = shutil.which(name, path=path)
        if found:
            return found
    raise SystemExit("%s is missing: tools/install-deps" % names[0])


class Server:
    def __init__(self):
        # Not deeper: the name of a socket has at most 107 bytes.
        self.folder = tempfile.mkdtemp(prefix="korvane-mariadb-")
        self.socket = os.path.join(self.folder, "socket")
        self.log = os.path.join(self.folder, "log")
        self.process = None

    def __enter__(self):
        data = os.path.join(self.folder, "data")
        user = ["--user=root"] if os.geteuid() == 0 else []
        installed = subprocess.run([program("mariadb-install-db", "mysql_install_db"), "--no-defaults",
                                    "--datadir=" + data, "--auth-root-authentication-method=normal", "--skip-test-db",
                                    *user], stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if installed.returncode != 0:
            raise SystemExit(installed.stdout.decode(errors="replace"))
        with open(self.log, "wb") as log:
            self.process = subprocess.Popen(
                [program("mariadbd", "mysqld"), "--no-defaults", "--datadir=" + data, "--socket=" + self.socket,
                 "--pid-file=" + os.path.join(self.folder, "pid"), "--skip-networking", "--skip-grant-tables",
                 "--innodb-buffer-pool-size=32M", "--innodb-flush-log-at-trx-commit=0",
                 # Nothing here has to outlive the machine.
                 "--innodb-flush-method=nosync", "--skip-sync-frm", "--skip-innodb-doublewrite", *user],
                stdin=subprocess.DEVNULL, stdout=log, stderr=log, preexec_fn=end_with_parent)
        self._wait()
        return self

    def _wait(self):
        for _ in range(600):
            if self.process.poll() is not None:
                break
            try:
                self.connect().close()
                return
            except OSError:
                time.sleep(0.1)
        with open(self.log, errors="replace") as log:
            raise SystemExit("the server did not start:\n" + log.read())

    def connect(self):
        return Connection(self.socket)

    def __exit__(self, kind, error, trace):
        leave(self.process, self.folder, keep=kind is not None, patience=60)
