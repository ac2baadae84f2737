"""The command line."""
import argparse
import signal
import sys

from . import host, update, view
from .failure import HostError
from .layout import home_of
from .shop import prepare_shop, read_shop
from .web import free_port

DESCRIPTION = """A web host on one machine: MariaDB, PHP-FPM, nginx and a mail sink, on 127.0.0.1 alone, without root
rights and with nothing outside HOME."""

EPILOG = """
a shop on this machine:
  korvane-cli new SHOP
  tools/local-host prepare SHOP        sets address, database and back office login in the catalogue
  korvane-cli build SHOP
  korvane-cli export-sql SHOP
  tools/local-host start SHOP --home HOME
  tools/local-host load SHOP --home HOME
  tools/local-host stop --home HOME

a look at any shop, which stays as it is; Ctrl-C ends it:
  tools/local-host view SHOP --home HOME --cli build/dev/bin/korvane-cli

HOME/mail/NNNN.eml   each mail that the shop sent
HOME/log/php.log     what PHP complained of, with everything reported; empty is good
HOME/log             the servers' own logs
PHP_FPM=php-fpm8.4   chooses another PHP
"""


def parser():
    root = argparse.ArgumentParser(prog="tools/local-host", description=DESCRIPTION, epilog=EPILOG,
                                   formatter_class=argparse.RawDescriptionHelpFormatter)
    commands = root.add_subparsers(dest="command", required=True, metavar="COMMAND")

    def command(name, help_text, shop=False, home=False):
        added = commands.add_parser(name, help=help_text, description=help_text)
        if shop:
            added.add_argument("shop", metavar="SHOP", help="the shop folder")
        if home:
            added.add_argument("--home", required=True, metavar="HOME", help="the folder that holds the host")
        return added

    prepare = command("prepare", "set a shop up for this host, before it is built", shop=True)
    prepare.add_argument("--port", type=port_number, help="of 127.0.0.1; without it a free one")
    prepare.add_argument("--force", action="store_true", help="even a shop that is set up for a real host")
    start = command("start", "start the servers for a built shop", shop=True, home=True)
    start.add_argument("--port", type=port_number, help="without it the one that the shop was prepared for")
    start.add_argument("--hold", action="store_true",
                       help="stay, and stop the host on Ctrl-C or at the end of a piped standard input")
    look = command("view", "build a copy of a shop and serve it until Ctrl-C or the end of a piped standard input",
                   shop=True, home=True)
    look.add_argument("--cli", required=True, metavar="PROGRAM", help="korvane-cli, which builds the copy")
    look.add_argument("--app", metavar="FOLDER", help="the application folder; without it the user's own")
    command("load", "have the shop load its SQL files", shop=True, home=True)
    command("status", "say what runs", home=True)
    command("stop", "stop the servers", home=True)
    return root


def port_number(text):
    number = int(text)
    if not 1 <= number <= 65535:
        raise argparse.ArgumentTypeError("a port is a number from 1 to 65535")
    return number


def run(arguments):
    """Does what the command line asks for; the result is the exit status."""
    if arguments.command == "prepare":
        port = arguments.port or free_port()
        prepare_shop(arguments.shop, port, arguments.force)
        print(f"http://127.0.0.1:{port}/")
        return 0
    home = home_of(arguments.home)
    if arguments.command == "start":
        for line in host.start(home, read_shop(arguments.shop), arguments.port):
            print(line, flush=True)
        return 0 if not arguments.hold or host.hold(home) else 1
    if arguments.command == "view":
        return 0 if view.view(arguments.shop, home, arguments.cli, arguments.app) else 1
    if arguments.command == "load":
        address = f"http://127.0.0.1:{host.running_port(home)}"
        return 0 if update.load(read_shop(arguments.shop), address) else 1
    if arguments.command == "status":
        return 0 if host.status(home) else 1
    host.stop(home)
    return 0


def main(words):
    def leave(number, frame):
        raise KeyboardInterrupt
    signal.signal(signal.SIGTERM, leave)
    signal.signal(signal.SIGHUP, leave)
    try:
        return run(parser().parse_args(words))
    except HostError as error:
        print(f"local-host: {error}", file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        return 130
