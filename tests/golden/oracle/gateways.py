"""The modules of the payment methods: descriptor, action and scripts, as they are in the shop's folder of code."""
from texts import file_lingua
from txtar import from_cp1252

UNREADABLE = "###ERRORE###"
SCRIPT_KEYS = ("php(default)", "php", "php(sel)")


def read_kpg(shop, name):
    if name.strip(" ") == "":
        return ""
    data = shop.files["shopcode"].get(name + ".kpg")
    return UNREADABLE if data is None else from_cp1252(data)


def module_keys(shop, name):
    data = shop.files["shopcode"].get(name + "/conf.ini", b"")
    return [line.split("=", 1) for line in from_cp1252(data).split("\r\n") if "=" in line]


def read_kpg_action(shop, name, suffix):
    if name.strip(" ") == "":
        return ""
    for key, value in module_keys(shop, name):
        if key in ("php(default)", "action"):
            return file_lingua(value + ".php", suffix)
    return ""


def module_scripts(shop, name):
    """(bare name, bytes or None) of each script that goes to the site."""
    if name.strip(" ") == "":
        return []
    files = shop.files["shopcode"]
    return [(value + ".php", files.get("%s/%s.php" % (name, value)))
            for key, value in module_keys(shop, name) if key in SCRIPT_KEYS]
