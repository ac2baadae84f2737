"""MariaDB with its data and its socket below HOME, reachable by no network."""
import os
import shutil
import socket
import subprocess

from .failure import HostError
from .processes import Server, child_environment, find_program

PACKAGE = "mariadb-server-core"
# Both for the making of the data folder and for the server; a log file of the usual size takes seconds to make.
SIZES = ["--innodb-log-file-size=48M", "--innodb-use-native-aio=0"]


def sql_text(value):
    """A text as an SQL literal; the file of first statements holds one statement a line."""
    quoted = value.replace("\\", "\\\\").replace("'", "\\'").replace("\n", "\\n").replace("\r", "\\r")
    return f"'{quoted}'"


def first_statements(shop):
    """Makes the database and the login that the shop's settings name. The server runs this before it listens."""
    name, user = shop.settings["db_dbname"], shop.settings["db_username"]
    login = f"{sql_text(user)}@'localhost'"
    return (f"CREATE DATABASE IF NOT EXISTS `{name}`;\n"
            f"CREATE OR REPLACE USER {login} IDENTIFIED BY {sql_text(shop.settings['db_password'])};\n"
            f"GRANT ALL PRIVILEGES ON `{name}`.* TO {login};\n")


def as_root():
    """The argument without which the server refuses to run as root."""
    return ["--user=root"] if os.geteuid() == 0 else []


def make_data(home):
    """Makes the data folder. A half made one of an interrupted run is thrown away."""
    if home.data.is_dir():
        return
    program = find_program(["mariadb-install-db", "mysql_install_db"], PACKAGE)
    fresh = home.root / "data.new"
    shutil.rmtree(fresh, ignore_errors=True)
    log = home.log / "mariadb-install.log"
    with open(log, "wb") as output:
        # The program is a shell script that takes no folder with a space in its path: hence a relative one. --force: the
        # machine's own name need not be known to any name server.
        done = subprocess.run(
            [program, "--no-defaults", f"--datadir=./{fresh.name}", "--skip-test-db", "--force",
             "--auth-root-authentication-method=normal", *SIZES, *as_root()],
            stdin=subprocess.DEVNULL, stdout=output, stderr=output, cwd=home.root,
            env=child_environment(TMPDIR=str(home.tmp)))
    if done.returncode != 0:
        raise HostError(f"the database folder could not be made: see {log}")
    fresh.rename(home.data)


def greets(path):
    """Whether a MySQL server greets on a socket: a packet whose fifth byte is the protocol's version, 10."""
    try:
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as connection:
            connection.settimeout(5)
            connection.connect(str(path))
            return connection.recv(5)[4:5] == b"\x0a"
    except OSError:
        return False


def database_server(home, shop):
    """The server, which has the character set that Debian gives it: a shop must not rely on another."""
    make_data(home)
    statements = home.configure("first.sql", first_statements(shop))
    program = find_program(["mariadbd", "mysqld"], PACKAGE)
    command = [program, "--no-defaults", f"--datadir={home.data}", f"--socket={home.database_socket}",
               f"--pid-file={home.run / 'mariadb.pid'}", f"--tmpdir={home.tmp}",
               f"--log-error={home.log / 'mariadb.log'}", f"--init-file={statements}", "--skip-networking",
               "--skip-name-resolve", "--performance-schema=OFF", "--character-set-server=utf8mb4",
               "--collation-server=utf8mb4_general_ci", *SIZES, *as_root()]
    home.database_socket.unlink(missing_ok=True)
    return Server("MariaDB", command, home.log / "mariadb.log", lambda: greets(home.database_socket),
                  child_environment())
