"""A client of remoto.php, as the merchant's own machine is one: it signs requests and proves answers."""
import hashlib
import hmac
import http.client
import json
import secrets
import time
import urllib.parse

KEY = bytes(range(32))


def sign(key, *lines):
    return hmac.new(key, "\n".join(lines).encode(), hashlib.sha256).hexdigest()


class Refused(Exception):
    """An answer of another status than 200: its status and text."""


class DeskClient:
    def __init__(self, visitor, key=KEY):
        self.visitor = visitor
        self.key = key

    def request(self, asked, key=None, age=0, number=None, **changes):
        """The four fields of a request: `age` seconds old, some of them changed after the signing."""
        moment, number = str(int(time.time()) - age), number or secrets.token_hex(16)
        data = asked if isinstance(asked, str) else json.dumps(asked, ensure_ascii=False)
        signature = sign(key or self.key, "korvane-ordini-1", moment, number, data)
        return {"ora": moment, "numero": number, "dati": data, "firma": signature, **changes}

    def send(self, fields):
        """What a request is answered with: proven, and read."""
        page = self.visitor.ask("remoto.php", fields)
        if page.status != 200:
            raise Refused(page.status, page.body.decode().strip())
        text = page.body.decode("utf-8")
        signature, _, text = text.partition("\n")
        if signature != sign(self.key, "risposta", fields["numero"], text):
            raise AssertionError(f"the answer isn't signed: {page.body[:200]}")
        if page.headers["Content-Type"] != "application/json; charset=utf-8":
            raise AssertionError(page.headers["Content-Type"])
        return json.loads(text)

    def cut(self, fields, most):
        """The beginning of an answer whose connection is cut off then."""
        parts = urllib.parse.urlsplit(self.visitor.base)
        connection = http.client.HTTPConnection(parts.hostname, parts.port, timeout=60)
        connection.request("POST", parts.path + "remoto.php", urllib.parse.urlencode(fields),
                           {"Content-Type": "application/x-www-form-urlencoded"})
        beginning = connection.getresponse().read(most)
        connection.close()
        return beginning

    def ask(self, action, **fields):
        return self.send(self.request({"azione": action, **fields}))

    def refusal(self, asked=None, **changes):
        """Status and text of the refusal that a request meets; None when it is answered."""
        try:
            self.send(self.request(asked or {"azione": "prova"}, **changes))
        except Refused as refused:
            return refused.args
        return None

    def orders(self, after="", most=500):
        """All orders that changed since, by steps of at most so many; the text to go on from."""
        found = []
        while True:
            answer = self.ask("ordini", dopo=after, quanti=most)
            if len(answer["ordini"]) > most:
                raise AssertionError("more orders than asked for")
            found += answer["ordini"]
            after = answer["dopo"]
            if not answer["altri"]:
                return found, after
