"""The host as a whole: all servers start, or none does."""
import json
import os
import select
import signal
import stat
import sys
import time

from .database import database_server
from .failure import HostError
from .php import php_server
from .processes import Servers
from .shop import BACKOFFICE_PATH, check_built
from .web import check_free, pongs, web_server

MAKERS = (
    lambda home, shop, port: database_server(home, shop),
    lambda home, shop, port: php_server(home, shop),
    web_server,
)


def start(home, shop, port):
    """Starts the servers and answers what is told to the user; whatever fails, none is left running."""
    check_built(shop)
    port = port or shop.port
    home.make()
    servers = Servers(home)
    if servers.alive():
        raise HostError(f"a host runs in {home.root} already: stop it first")
    check_free(port)
    try:
        for make in MAKERS:
            servers.start(make(home, shop, port))
    except BaseException:
        servers.stop()
        raise
    (home.run / "port.json").write_text(json.dumps(port))
    if port != shop.port:
        print(f"the shop was built for port {shop.port}: its absolute addresses lead there", file=sys.stderr)
    return describe(home, port)


def describe(home, port):
    address = f"http://127.0.0.1:{port}"
    return [f"shop {address}/", f"backoffice {address}{BACKOFFICE_PATH}", f"mail {home.mail}"]


def running_port(home):
    """The port of the host that runs in HOME."""
    try:
        port = json.loads((home.run / "port.json").read_text())
    except (OSError, ValueError):
        port = None
    if port is None or not Servers(home).alive():
        raise HostError(f"no host runs in {home.root}")
    return port


def stop(home):
    Servers(home).stop()
    (home.run / "port.json").unlink(missing_ok=True)


def status(home):
    """Prints what runs. True when all servers do and a request gets through."""
    port = running_port(home)
    alive = Servers(home).alive()
    for name, pid in alive:
        print(f"{name} runs, process {pid}")
    for line in describe(home, port):
        print(line)
    whole = len(alive) == len(MAKERS) and pongs(port)
    if not whole:
        print("the host is not whole: stop it and start it again", file=sys.stderr)
    return whole


def hold(home):
    """Stays until Ctrl-C, a request to end, or the end of a standard input that is a pipe; then stops the host.

    The pipe is for a program that starts the host: however that program ends, the servers end with it.
    """
    def leave(number, frame):
        raise KeyboardInterrupt
    for number in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, leave)
    mode = os.fstat(0).st_mode
    piped = stat.S_ISFIFO(mode) or stat.S_ISSOCK(mode)
    count = len(Servers(home).alive())
    try:
        while True:
            if not piped:
                time.sleep(0.5)
            elif select.select([0], [], [], 0.5)[0] and not os.read(0, 4096):
                return True
            if len(Servers(home).alive()) != count:
                print("a server has ended by itself: the host stops", file=sys.stderr)
                return False
    except KeyboardInterrupt:
        return True
    finally:
        stop(home)
