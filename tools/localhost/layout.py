"""Where things are below HOME, and how paths are written into the servers' settings."""
import dataclasses
import pathlib

from .failure import HostError

# sun_path of a Unix socket holds 107 bytes and a zero, unix(7).
SOCKET_PATH_BYTES = 107
FORBIDDEN = set("\"'$\\\n\r;{}`%")


@dataclasses.dataclass(frozen=True)
class Home:
    """The folders of one host. Nothing is written outside of them."""

    root: pathlib.Path

    @property
    def conf(self):
        return self.root / "conf"

    @property
    def data(self):
        return self.root / "data"

    @property
    def log(self):
        return self.root / "log"

    @property
    def mail(self):
        return self.root / "mail"

    @property
    def run(self):
        return self.root / "run"

    @property
    def tmp(self):
        return self.root / "tmp"

    @property
    def sessions(self):
        return self.root / "sessions"

    @property
    def database_socket(self):
        return self.run / "mysql.sock"

    @property
    def php_socket(self):
        return self.run / "php.sock"

    def make(self):
        """Makes the folders, readable by their owner alone."""
        check_path(self.root)
        if len(bytes(self.database_socket)) > SOCKET_PATH_BYTES:
            raise HostError(f"{self.root}: too long a path for the servers' sockets; choose a shorter HOME")
        self.root.mkdir(mode=0o700, parents=True, exist_ok=True)
        for folder in (self.conf, self.log, self.mail, self.run, self.tmp, self.sessions):
            folder.mkdir(mode=0o700, exist_ok=True)

    def configure(self, name, text):
        """Writes one settings file and answers its path."""
        path = self.conf / name
        path.write_text(text)
        return path


def home_of(folder):
    return Home(pathlib.Path(folder).resolve())


def check_path(path):
    """Fails for a path that could not be quoted in every server's settings."""
    found = FORBIDDEN.intersection(str(path))
    if found:
        raise HostError(f"{path}: the servers' settings cannot hold a path with {' '.join(sorted(found))}")
