"""What the host reads and sets in a shop folder: addresses, folders, the database login."""
import dataclasses
import pathlib
import re
import sqlite3
import urllib.parse

from .failure import HostError

BACKOFFICE_PATH = "/scripts/backoffice/"

# What a shop is given to live on this host. The passwords protect nothing but a model shop on this machine.
LOCAL_SETTINGS = {
    "cartella": "",
    "cartellaCGI": BACKOFFICE_PATH.strip("/"),
    "db_hostname": "localhost",
    "db_username": "negozio",
    "db_password": "negozio-locale",
    "db_dbname": "negozio",
    "bo_username": "bottega",
    "bo_password": "bottega-locale",
}


@dataclasses.dataclass(frozen=True)
class Shop:
    """A shop folder with the settings that concern its host."""

    folder: pathlib.Path
    settings: dict

    @property
    def online(self):
        return self._output("siteonline", "online")

    @property
    def scripts(self):
        """The folder of the back office."""
        return self._output("sitescript", "scripts")

    @property
    def port(self):
        """The port of 127.0.0.1 that the shop was built for; None when it was built for another host."""
        address = urllib.parse.urlsplit(self.settings["URL"])
        local = address.scheme == "http" and address.hostname == "127.0.0.1" and self.settings["cartella"] == ""
        return address.port if local else None

    @property
    def extension(self):
        """The extension of the pages, without the dot."""
        return self.settings["estensione"].lstrip(".") or "php"

    def _output(self, column, usual):
        chosen = self.settings[column]
        return self.folder / (chosen.replace("\\", "/") if chosen else usual)

    def languages(self):
        """The number of languages that the SQL files were made for, told by the first line of <db_security>.sc."""
        counter = self.online / (self.settings["db_security"] + ".sc")
        try:
            return int(counter.read_text("cp1252").splitlines()[0])
        except (OSError, ValueError, IndexError):
            raise HostError(f"{counter} does not tell the number of languages: run korvane-cli export-sql") from None


def open_catalogue(folder, mode):
    """The shop's catalogue; mode is that of SQLite's file addresses: ro or rw."""
    path = pathlib.Path(folder).resolve() / "catalog.mdb"
    if not path.is_file():
        raise HostError(f"{folder} is no shop folder: it has no catalog.mdb")
    return sqlite3.connect(f"file:{urllib.parse.quote(str(path))}?mode={mode}", uri=True, timeout=10)


def read_shop(folder):
    """The shop of a folder, with a null setting as an empty text."""
    columns = ["URL", "siteonline", "sitescript", "estensione", "db_security", *LOCAL_SETTINGS]
    connection = open_catalogue(folder, "ro")
    try:
        row = connection.execute(f"SELECT {', '.join(columns)} FROM generale").fetchone()
    except sqlite3.Error as error:
        raise HostError(f"{folder}/catalog.mdb: {error}") from None
    finally:
        connection.close()
    if row is None:
        raise HostError(f"{folder}/catalog.mdb has no settings")
    settings = {column: str(value or "") for column, value in zip(columns, row)}
    return Shop(pathlib.Path(folder).resolve(), settings)


def prepare_shop(folder, port, force=False):
    """Sets a shop up for this host, to be built afterwards. Refuses one that is set up for a real host."""
    shop = read_shop(folder)
    foreign = shop.settings["db_username"] and shop.port is None
    if foreign and not force:
        raise HostError(f"{folder} is set up for {shop.settings['URL']}: take a copy of it, or give --force")
    values = {"URL": f"http://127.0.0.1:{port}", **LOCAL_SETTINGS}
    assignments = ", ".join(f"{column} = :{column}" for column in values)
    connection = open_catalogue(folder, "rw")
    try:
        with connection:
            connection.execute(f"UPDATE generale SET {assignments}", values)
    except sqlite3.Error as error:
        raise HostError(f"{folder}/catalog.mdb: {error}") from None
    finally:
        connection.close()


def check_built(shop):
    """Fails unless the shop is built for this host."""
    if shop.port is None or shop.settings["db_hostname"] != "localhost":
        raise HostError(f"{shop.folder} is not set up for this machine: run tools/local-host prepare, then build it")
    for page in (shop.online / "funcs.php", shop.scripts / "index.php"):
        if not page.is_file():
            raise HostError(f"{page} is not there: build the shop first")
    for name in ("db_username", "db_dbname"):
        if not re.fullmatch(r"[A-Za-z0-9_]{1,60}", shop.settings[name]):
            raise HostError(f"{name} {shop.settings[name]!r}: letters, digits and underscores only")
