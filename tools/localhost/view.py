"""A look at a shop: a copy of it is set up for this host, built, served and loaded. The shop itself stays as it is."""
import fnmatch
import pathlib
import shutil
import subprocess
import sys

from . import host, update
from .failure import HostError
from .shop import open_catalogue, prepare_shop, read_shop
from .web import free_port

# What builds and publish runs make, and what guards the catalogue: the copy makes its own or needs none.
LEFT_OUT = ("backup", "online", "scripts", "db", "tmp", "kvftp.dat", "kvftp.ini", "firewall.net", "last.*", "*.log",
            "catalog.0??")
PICTURES = "work"
# Without these a folder is no shop.
OUTPUTS = ("online", "scripts", "db")


def copy_shop(source, copy):
    """Copies a shop folder over a former copy; its pictures are linked, and both outputs are below the copy."""
    source = pathlib.Path(source).resolve()
    shutil.rmtree(copy, ignore_errors=True)

    def left_out(folder, names):
        if pathlib.Path(folder) != source:
            return set()
        patterns = (*LEFT_OUT, PICTURES)
        return {name for name in names if any(fnmatch.fnmatch(name.lower(), each) for each in patterns)}

    try:
        shutil.copytree(source, copy, ignore=left_out)
        for entry in source.iterdir():
            if entry.name.lower() == PICTURES:
                (copy / entry.name).symlink_to(entry)
        for name in OUTPUTS:
            (copy / name).mkdir(exist_ok=True)
    except (OSError, shutil.Error) as error:
        raise HostError(f"{source}: {error}") from None
    connection = open_catalogue(copy, "rw")
    with connection:
        connection.execute("UPDATE generale SET siteonline = NULL, sitescript = NULL")
    connection.close()


def run_cli(program, application, command, shop):
    """Runs a command of korvane-cli; what it says is told when it fails."""
    words = [program, *(["--app", application] if application else []), command, str(shop)]
    done = subprocess.run(words, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, check=False)
    if done.returncode != 0:
        raise HostError(done.stdout.strip() or f"{command}: exit status {done.returncode}")


def view(source, home, program, application):
    """Shows the shop until the host is told to stop. True when it ended as it was told to."""
    home.make()
    copy = home.root / "negozio"
    copy_shop(source, copy)
    port = free_port()
    prepare_shop(copy, port, force=True)
    run_cli(program, application, "build", copy)
    run_cli(program, application, "export-sql", copy)
    lines = host.start(home, read_shop(copy), port)
    try:
        if not update.load(read_shop(copy), f"http://127.0.0.1:{port}"):
            raise HostError("the shop has not loaded its database")
        for line in lines:
            print(line, flush=True)
    except BaseException:
        host.stop(home)
        raise
    sys.stdout.flush()
    return host.hold(home)
