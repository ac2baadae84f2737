"""A payment service of the test's own on 127.0.0.1: takes the form that a shop sends a shopper with, says what is wrong
with it, and when the shopper pays or gives up tells the shop so and sends the shopper back.

    POST /SERVICE         the shop's form; 200 with the number of the payment, or 400 with the faults
    GET /SERVICE/N/OK     the shopper pays payment N: notice to the shop, then back to the shop
    GET /SERVICE/N/KO     the shopper gives up

Services are described by `Service`; what came in is kept in `payments`, what the shop answered in `answers`."""
import base64
import dataclasses
import hashlib
import hmac
import http.server
import json
import re
import threading
import urllib.error
import urllib.parse
import urllib.request

OPENER = urllib.request.build_opener(urllib.request.ProxyHandler({}))
COMMON = ["negozio", "ordine", "importo", "valuta", "email", "lingua", "ritorno", "annullo"]
CIPHER_KEY = b"chiave della banca"


def signature(fields, key):
    """HMAC-SHA-256 over name=value joined by "&", values percent-coded, in the order of the fields."""
    text = urllib.parse.urlencode(fields, quote_via=urllib.parse.quote, safe="", encoding="cp1252")
    return hmac.new(key.encode("cp1252"), text.encode(), hashlib.sha256).hexdigest()


def sealed(data):
    """What the bank's component makes of an order, and opens again: see GestPayCrypt.inc.php."""
    text = base64.b64encode(json.dumps(data).encode())
    return text.decode() + "." + hmac.new(CIPHER_KEY, text, hashlib.sha256).hexdigest()


def opened(text):
    body, _, seal = text.partition(".")
    if not hmac.compare_digest(hmac.new(CIPHER_KEY, body.encode(), hashlib.sha256).hexdigest(), seal):
        return None
    return json.loads(base64.b64decode(body))


@dataclasses.dataclass
class Service:
    """What a service expects of a shop. Without `key` the form is not signed; without `notice_key` nothing is told to
    the shop but by the shopper's way back."""

    merchant: str
    currency: str
    extra: dict = dataclasses.field(default_factory=dict)  # further fields with their value, None for any
    key: str = ""
    notice_key: str = ""
    unsent: dict = dataclasses.field(default_factory=dict)  # fields that are signed and not sent
    prefix: str = ""
    kind: str = "fields"  # or button, otp, crypt
    receipt: bool = False  # the way back carries the signed notice
    otp_in: set = dataclasses.field(default_factory=set)
    otp_out: list = dataclasses.field(default_factory=list)

    def faults(self, fields, shop):
        """What is wrong with the form that a shop at an address sent."""
        if self.kind == "button":
            return self._button_faults(fields, shop)
        if self.kind == "crypt":
            return self._sealed_faults(fields)
        names = COMMON + list(self.extra) + (["firma"] if self.key else [])
        found = [] if list(fields) == names else [f"fields {list(fields)} instead of {names}"]
        found += [f"{name} is {fields.get(name)!r}" for name, value in
                  {**self.extra, "negozio": self.merchant, "valuta": self.currency}.items()
                  if value is not None and fields.get(name) != value]
        if not re.fullmatch(re.escape(self.prefix) + r"\d{6}-[0-9A-F]{6}", fields.get("ordine", "")):
            found.append(f"ordine is {fields.get('ordine')!r}")
        if not re.fullmatch(r"[1-9]\d*", fields.get("importo", "")):
            found.append(f"importo is {fields.get('importo')!r}")
        found += [f"{name} leads to {fields.get(name)!r}" for name in ("ritorno", "annullo", "notifica")
                  if name in names and not fields.get(name, "").startswith(shop)]
        if self.key:
            signed = {name: value for name, value in fields.items() if name != "firma"}
            if not hmac.compare_digest(signature({**signed, **self.unsent}, self.key), fields.get("firma", "")):
                found.append("the signature is wrong")
        if self.kind == "otp" and fields.get("otp") not in self.otp_in:
            found.append("the one-time password is unknown")
        self.otp_in.discard(fields.get("otp"))
        return found

    def _button_faults(self, fields, shop):
        wanted = {"cmd": "_xclick", "business": self.merchant, "currency_code": self.currency}
        found = [f"{name} is {fields.get(name)!r}" for name, value in wanted.items() if fields.get(name) != value]
        if not re.fullmatch(r"\d+\.\d\d", fields.get("amount", "")) or not fields.get("invoice"):
            found.append("amount or invoice is missing")
        return found + [f"{name} leads to {fields.get(name)!r}" for name in ("return", "cancel_return")
                        if not fields.get(name, "").startswith(shop)]

    def _sealed_faults(self, fields):
        order = opened(fields.get("b", ""))
        if sorted(fields) != ["a", "b"] or order is None:
            return ["no sealed order"]
        wanted = {"shop": self.merchant, "currency": self.currency}
        return [f"{name} is {order.get(name)!r}" for name, value in wanted.items() if order.get(name) != value]

    def order(self, fields):
        """Code and amount (as sent) of the order of a form."""
        if self.kind == "crypt":
            data = opened(fields["b"])
            return data["order"], data["amount"]
        return (fields["invoice"], fields["amount"]) if self.kind == "button" else (fields["ordine"], fields["importo"])

    def notice(self, fields, transaction, outcome):
        """The fields of a notice; empty for a service that gives none."""
        if self.kind == "crypt":
            order, amount = self.order(fields)
            return {"a": self.merchant, "b": sealed({"shop": self.merchant, "currency": self.currency, "order": order,
                                                     "amount": amount, "transaction": transaction, "result": outcome})}
        if not self.notice_key and self.kind != "otp":
            return {}
        told = {"negozio": self.merchant, "ordine": fields["ordine"], "importo": fields["importo"],
                "valuta": self.currency, "transazione": transaction, "esito": outcome}
        if self.kind == "otp":
            return {**told, "otp": self.otp_out.pop()}
        return {**told, "firma": signature(told, self.notice_key)}


def post(address, fields):
    """Sends a notice; status and text of the answer."""
    try:
        with OPENER.open(address, urllib.parse.urlencode(fields, encoding="cp1252").encode(), timeout=300) as answer:
            return answer.status, answer.read().decode("cp1252")
    except urllib.error.HTTPError as error:
        return error.code, error.read().decode("cp1252")


class Gateway:
    """The running services, by name, and what happened. `shop` is the address of the shop's pages; a notice address
    that a form doesn't carry is looked up in `notices`."""

    def __init__(self, services, shop, notices=None):
        self.services, self.shop, self.notices = services, shop, notices or {}
        self.payments, self.answers = [], []
        gateway = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def log_message(self, *words):
                pass

            def do_POST(self):
                body = self.rfile.read(int(self.headers.get("Content-Length", 0))).decode("ascii")
                fields = dict(urllib.parse.parse_qsl(body, keep_blank_values=True, encoding="cp1252"))
                self.answer(*gateway.take(self.path.strip("/"), fields))

            def do_GET(self):
                self.answer(*gateway.finish(*self.path.strip("/").split("/")))

            def answer(self, status, text, location=None):
                self.send_response(status)
                self.send_header("Content-Type", "text/plain; charset=windows-1252")
                if location:
                    self.send_header("Location", location)
                self.end_headers()
                self.wfile.write(text.encode("cp1252"))

        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.base = f"http://127.0.0.1:{self.server.server_address[1]}/"
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def close(self):
        self.server.shutdown()
        self.server.server_close()

    def take(self, name, fields):
        service = self.services.get(name)
        faults = ["no such service"] if service is None else service.faults(fields, self.shop)
        if faults:
            return 400, "\n".join(faults)
        self.payments.append((name, fields))
        return 200, str(len(self.payments) - 1)

    def finish(self, name, number, outcome):
        service, fields = self.services[name], self.payments[int(number)][1]
        told = service.notice(fields, f"T{number}", outcome)
        if told:
            self.answers.append(post(fields.get("notifica") or self.notices[name], told))
        good = outcome == "OK"
        back = fields.get("ritorno" if good else "annullo") or fields.get("return" if good else "cancel_return")
        back = back or self.notices[name] + ("?c=payok" if good else "?c=payerr")
        if service.receipt and good:
            back += ("&" if "?" in back else "?") + urllib.parse.urlencode(told, encoding="cp1252")
        return 303, "", back
