#!/usr/bin/env python3
"""equal_times.py KORVANE_CLI [--rounds N]: whether the time of an answer tells which mail addresses have an account.

Signing in with a wrong password, registering and asking for a new password are tried in turns with a known and with an
unknown address one after the other, N times each (300 unless told otherwise), so that whatever else the machine does meets
both alike. For each form the median of the ratios of the pairs has to be within LIMIT of 1. The same of answers to the known
address alone, each with the one before, says how far chance gets.
"""
import statistics
import sys
import time

from shop_case import PASSWORD, open_shop, register, token

# A known address that cost one more check of a password would make the ratio 2; one more query some 1.1.
LIMIT = 0.05
KNOWN = "ada@example.org"
UNKNOWN = "eva@example.org"
FORMS = {
    "access": {"azione": "entra", "pw": "una-parola-sbagliata"},
    "registration": {"azione": "registra", "pw": PASSWORD, "nome": "Ada", "cognome": "Neri", "privacy": "1"},
    "new password": {"azione": "richiedi"},
}


def milliseconds(shop, fields, address):
    """The time of one answer to a form of a visitor who was never here."""
    visitor = shop.visitor()
    sent = dict(fields, email=address, gettone=token(visitor))
    # What earlier requests left to be done after their answers must not meet this one, nor may any limit.
    while int(shop.rows("SELECT COUNT(*) FROM information_schema.processlist WHERE command <> 'Sleep' AND db = 'negozio'"
                        " AND id <> CONNECTION_ID()")[0][0]):
        time.sleep(0.002)
    shop.execute("DELETE FROM kv_tentativi")
    began = time.perf_counter()
    page = visitor.ask("logcheck.php", sent, follow=False)
    spent = (time.perf_counter() - began) * 1000
    if page.status not in (302, 303) or "m=6" in page.headers["Location"]:
        raise AssertionError(f"{page.status} {page.headers['Location']}")
    time.sleep(0.02)
    return spent


def compare(shop, name, rounds):
    """The median of the ratios known to unknown; prints it beside that of chance."""
    times = {KNOWN: [], UNKNOWN: []}
    for number in range(rounds):
        # Whoever comes second in a round has other caches: they take turns.
        for address in (KNOWN, UNKNOWN) if number % 2 == 0 else (UNKNOWN, KNOWN):
            times[address].append(milliseconds(shop, FORMS[name], address))
    known, unknown = times[KNOWN], times[UNKNOWN]
    ratio = statistics.median(one / other for one, other in zip(known, unknown))
    chance = statistics.median(one / other for one, other in zip(known, known[1:]))
    print(f"{name}: known {statistics.median(known):.2f} ms, unknown {statistics.median(unknown):.2f} ms, ratio {ratio:.3f},"
          f" by chance {chance:.3f}", flush=True)
    return ratio


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    rounds = int(sys.argv[sys.argv.index("--rounds") + 1]) if "--rounds" in sys.argv else 300
    with open_shop(sys.argv[1]) as shop:
        (shop.shop / "online/kvlimiti.php").write_text(
            "<?php return ['tempo_minimo' => 0, 'registrazioni_email' => [100000, 60], 'richieste_email' => [100000, 60]];\n")
        register(shop.visitor(), KNOWN)
        told = [name for name in FORMS if abs(compare(shop, name, rounds) - 1) > LIMIT]
        if told:
            sys.exit(f"the times tell: {', '.join(told)}")


if __name__ == "__main__":
    main()
