"""Has the served shop load its SQL files, one POST per language, as a publish run does."""
import random
import string
import urllib.error
import urllib.parse
import urllib.request

from .failure import HostError

# A big shop takes minutes; the limit is the one of a publish run.
LOAD_SECONDS = 28800


def ask(address, security):
    """The answer of one script as text, a transport error as its description."""
    cache_breaker = "".join(random.choices(string.ascii_lowercase, k=20))
    body = urllib.parse.urlencode({"rnd": cache_breaker, "sec": security}).encode("ascii")
    opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
    try:
        with opener.open(address, body, timeout=LOAD_SECONDS) as answer:
            return answer.read().decode("cp1252", "replace").rstrip("\r\n\t").strip(" ")
    except urllib.error.HTTPError as error:
        return f"{error.code} {error.reason}: {error.read(500).decode('cp1252', 'replace').strip()}"
    except OSError as error:
        raise HostError(f"{address}: {error}") from None


def load(shop, address):
    """Loads every language and prints the answers. True when each was exactly OK."""
    good = True
    for language in range(1, shop.languages() + 1):
        script = "updatedb.php" if language == 1 else f"updatedb_l{language}.php"
        answer = ask(f"{address}/{script}", shop.settings["db_security"])
        print(f"{script}: {answer}", flush=True)
        good = good and answer == "OK"
    return good
