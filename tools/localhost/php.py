"""PHP-FPM with its own php.ini: the strictest reporting, nothing shown to visitors, nothing of the system's settings.

Mails end in a folder: what PHP hands to sendmail becomes one file per mail.
"""
import glob
import os
import re
import socket
import subprocess

from .failure import HostError
from .processes import Server, child_environment, find_program

PACKAGE = "php-fpm"
PING = "/.local-host-ping"
# In the order in which they load: what every web host has and no more. What a PHP has built in is passed over.
EXTENSIONS = ["mysqlnd", "mysqli", "ctype", "iconv"]
NO_SCAN = {"PHP_INI_SCAN_DIR": ""}

# Numbers each mail by the first free name; a hard link is taken by one process only.
SINK = """#!/bin/sh
# Stands in for sendmail: keeps each mail as a file, with the sender of its envelope as the last server writes it (RFC
# 5321, section 4.4).
umask 077
box={box}
mail=$(mktemp "$box/.mail-XXXXXX") || exit 75
case "$1" in
-f*) printf 'Return-Path: <%s>\r\n' "${{1#-f}}" >"$mail" || exit 75 ;;
esac
cat >>"$mail" || exit 75
# The number of mails is near the first free name: to try all from 1 on takes longer with each mail.
set -- "$box"/*.eml
number=$#
until ln "$mail" "$box/$(printf %04d "$number").eml" 2>/dev/null; do
  number=$((number + 1))
  [ "$number" -lt 100000 ] || exit 75
done
rm -f "$mail"
"""

INI = """[PHP]
error_reporting = 32767
display_errors = 0
display_startup_errors = 0
log_errors = 1
html_errors = 0
error_log = "{log}/php.log"
expose_php = 0
short_open_tag = 0
variables_order = "GPCS"
memory_limit = 128M
post_max_size = 8M
max_execution_time = 30
date.timezone = "UTC"
sys_temp_dir = "{tmp}"
upload_tmp_dir = "{tmp}"
sendmail_path = "'{sink}'"
session.save_path = "{sessions}"
mysqli.default_socket = "{socket}"
opcache.enable = 1
opcache.validate_timestamps = 1
opcache.revalidate_freq = 0
opcache.lockfile_path = "{tmp}"
{extensions}
"""

POOL = """[global]
daemonize = no
error_log = {log}/php-fpm.log
log_level = warning
[shop]
listen = {socket}
listen.mode = 0600
{user}
pm = static
pm.max_children = 4
ping.path = {ping}
catch_workers_output = yes
decorate_workers_output = no
security.limit_extensions = .php{extension}
"""


def find_fpm():
    """The program: the one of the variable PHP_FPM, else version 8.2, else the highest that is there."""
    chosen = os.environ.get("PHP_FPM")
    if chosen:
        return find_program([chosen], PACKAGE)
    others = [os.path.basename(p) for f in ("/usr/local/sbin", "/usr/sbin") for p in glob.glob(f"{f}/php-fpm*")]
    others.sort(key=lambda name: [int(n) for n in re.findall(r"\d+", name)], reverse=True)
    return find_program(["php-fpm8.2", *others, "php-fpm"], PACKAGE)


def extension_lines(program):
    """The lines of php.ini that load the extensions which this PHP has as files of its own."""
    def ask(option):
        done = subprocess.run([program, "-n", option], capture_output=True, text=True, stdin=subprocess.DEVNULL,
                              env=child_environment(**NO_SCAN), cwd="/", check=False)
        return done.stdout
    built_in = {line.strip().lower() for line in ask("-m").splitlines()}
    found = re.search(r"^extension_dir => (\S+)", ask("-i"), re.MULTILINE)
    folder = found.group(1) if found else ""
    lines = []
    for name in EXTENSIONS:
        if name in built_in:
            continue
        if os.path.exists(f"{folder}/{name}.so"):
            lines.append(f"extension = {name}")
        else:
            raise HostError(f"{program} has no {name}: install the package php-mysql (tools/install-deps does)")
    if os.path.exists(f"{folder}/opcache.so"):
        lines.append("zend_extension = opcache")
    return "\n".join(lines)


def make_sink(home):
    """The program that PHP takes for sendmail."""
    sink = home.configure("sendmail", SINK.format(box=f"'{home.mail}'"))
    sink.chmod(0o700)
    return sink


def accepts(path):
    """Whether somebody listens on a socket."""
    try:
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as connection:
            connection.connect(str(path))
            return True
    except OSError:
        return False


def php_server(home, shop):
    program = find_fpm()
    (home.log / "php.log").touch(mode=0o600)
    ini = home.configure("php.ini", INI.format(
        log=home.log, tmp=home.tmp, sink=make_sink(home), sessions=home.sessions, socket=home.database_socket,
        extensions=extension_lines(program)))
    root = os.geteuid() == 0
    extension = "" if shop.extension == "php" else f" .{shop.extension}"
    pool = home.configure("php-fpm.conf", POOL.format(
        log=home.log, socket=home.php_socket, user="user = root\ngroup = root" if root else "", ping=PING,
        extension=extension))
    home.php_socket.unlink(missing_ok=True)
    command = [program, "--nodaemonize", "--php-ini", str(ini), "--fpm-config", str(pool)]
    if root:
        command.append("--allow-to-run-as-root")
    return Server("PHP-FPM", command, home.log / "php-fpm.log", lambda: accepts(home.php_socket),
                  child_environment(**NO_SCAN))
