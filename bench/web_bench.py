#!/usr/bin/env python3
"""web_bench.py KORVANE_CLI [--quick]: the shop on the host of tools/local-host.

  pages  requests per second of a department page of 20 articles, beside a bare PHP script that runs the page's two
         queries and prints the rows; both in turn, so that they see the same machine, the middle ratio counts
  load   seconds that updatedb.php takes for a full dump of 10,000 articles (--quick: 1,000), beside the mariadb client
         reading the same files, once; the fastest of three of the script counts
"""
import os
import pathlib
import re
import shutil
import statistics
import subprocess
import sys
import time

SOURCES = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(SOURCES / "tests/web"))
from served_shop import ServedShop, Visitor  # noqa: E402  (the path above comes first)

ROUNDS, SECONDS, CONNECTIONS = 15, 1, 4
DEPARTMENT = "cat007"
PER_PAGE = 20
COPIED = "sottotitolo, descrizione, note, peso, immagine0, immagine1, immagine2"

# The same connection, the same statements, all rows read; of each row what a plain page would show, escaped.
BARE = """<?php
$mysqli = mysqli_init();
mysqli_options($mysqli, MYSQLI_SET_CHARSET_NAME, 'latin1');
mysqli_real_connect($mysqli, 'localhost', 'negozio', 'negozio-locale', 'negozio');
header('Content-Type: text/html; charset=windows-1252');
$n = (int) ($_GET['n'] ?? 1);
$result = mysqli_query($mysqli, "SELECT * FROM articoli WHERE pagina='%(page)s' ORDER BY sottopagina DESC");
$row = mysqli_fetch_array($result);
mysqli_free_result($result);
$result = mysqli_query($mysqli, "SELECT *, articoli.pagina as 'linkPage' FROM articoli INNER JOIN dettaglio USING (ID) "
    . "INNER JOIN ordinamento USING (ID) WHERE articoli.pagina='%(page)s' AND articoli.sottopagina=$n "
    . "ORDER BY contatore + 0 ASC");
?><!DOCTYPE html>
<html lang="it"><head><title>Articoli</title></head><body>
<?php while ($row = mysqli_fetch_array($result)) { ?>
<article id="<?php echo $row['contatore']; ?>"><?php echo $row['immagine1']; ?>
<h2><?php echo htmlspecialchars($row['titolo'], ENT_QUOTES, 'cp1252'); ?></h2>
<p><?php echo htmlspecialchars($row['sottotitolo'], ENT_QUOTES, 'cp1252'); ?></p>
<p><?php echo $row['descrizione']; ?></p>
<p><?php echo number_format((float) $row['importo'], 2, ',', '.'); ?></p>
<p><?php echo htmlspecialchars($row['codice'], ENT_QUOTES, 'cp1252'); ?></p></article>
<?php } ?>
</body></html>
"""


def verdict(met):
    return "met" if met else "MISSED"


def copy_articles(catalogue, departments, wanted):
    """Fills departments with copies of the articles that they have, up to `wanted` in each."""
    for department in departments:
        have = catalogue.execute("SELECT COUNT(*) FROM articoli WHERE catID = ?", [department]).fetchone()[0]
        catalogue.execute(
            "WITH RECURSIVE numbers(n) AS (SELECT 0 UNION ALL SELECT n + 1 FROM numbers LIMIT ?) "
            f"INSERT INTO articoli (catID, ordinamento, codice, titolo, prezzo, {COPIED}) "
            f"SELECT catID, 1000 + n, codice || '-' || n, titolo || ' ' || n, prezzo + 100 * n, {COPIED} "
            "FROM numbers INNER JOIN (SELECT *, ROW_NUMBER() OVER (ORDER BY ID) - 1 AS position FROM articoli "
            "WHERE catID = ?) ON position = n % ?", [max(0, wanted - have), department, have])


def requests_per_second(address):
    done = subprocess.run(["wrk", "-t1", f"-c{CONNECTIONS}", f"-d{SECONDS}s", address], text=True, check=True,
                          stdout=subprocess.PIPE)
    if "Non-2xx" in done.stdout or "Socket errors" in done.stdout:
        raise AssertionError(f"{address}\n{done.stdout}")
    return float(re.search(r"Requests/sec:\s*([\d.]+)", done.stdout).group(1))


def measure_pages(program, template):
    def change(catalogue):
        copy_articles(catalogue, [DEPARTMENT], PER_PAGE)
        catalogue.execute("UPDATE categorie SET maxarticoli = ?", [PER_PAGE])
        catalogue.execute("UPDATE generale SET template = ?", [template])
    served = ServedShop(program, change)
    try:
        served.open()
        page, bare = f"{DEPARTMENT}.php?n=1", "bare.php?n=1"
        (served.shop / "online/bare.php").write_text(BARE % {"page": DEPARTMENT})
        sizes = []
        for address in (page, bare):
            answer = Visitor(served.base).ask("/" + address)
            assert answer.status == 200 and answer.text.count("<article") == PER_PAGE, answer.text
            sizes.append(len(answer.body))
            requests_per_second(f"{served.base}/{address}")
        figures = [[requests_per_second(f"{served.base}/{address}") for address in (page, bare)] for _ in range(ROUNDS)]
        assert served.log() == "", served.log()
    finally:
        served.close()
    ratio = statistics.median(shop / plain for shop, plain in figures)
    for name, column, size in (("page", 0, sizes[0]), ("bare script", 1, sizes[1])):
        rate = statistics.median(row[column] for row in figures)
        print(f"  {template}, {name}: {rate:.0f} requests/s of {size} bytes")
    print(f"  {template}, page / bare script: {ratio:.2f} (bar 0.80) {verdict(ratio >= 0.8)}", flush=True)


def client_seconds(served, files, *options):
    program = shutil.which("mariadb") or shutil.which("mysql")
    start = time.monotonic()
    for file in files:
        with open(file, "rb") as text:
            subprocess.run([program, "--no-defaults", f"--socket={served.home / 'run/mysql.sock'}", "--user=negozio",
                            "--password=negozio-locale", "--default-character-set=latin1", *options, "negozio"],
                           stdin=text, check=True)
    return time.monotonic() - start


def script_seconds(served, files, word):
    for file in files:
        shutil.copy(file, served.shop / "online" / file.name)
    start = time.monotonic()
    answer = Visitor(served.base).ask("updatedb.php", {"rnd": "x", "sec": word}).text
    seconds = time.monotonic() - start
    assert answer.strip() == "OK", answer
    return seconds


def measure_load(program, articles):
    def change(catalogue):
        catalogue.execute("UPDATE lingue SET lingua2 = NULL, lingua3 = NULL, lingua4 = NULL")
        departments = [row[0] for row in catalogue.execute("SELECT DISTINCT catID FROM articoli")]
        copy_articles(catalogue, departments, articles // len(departments) + 1)
    served = ServedShop(program, change)
    try:
        served.korvane("build")
        served.korvane("export-sql")
        files = [served.work / name for name in ("dbdel.sql", "db.sql")]
        for file in files:
            shutil.copy(served.shop / "online" / file.name, file)
        size = files[1].stat().st_size
        word = files[0].read_text("cp1252").splitlines()[0][1:]
        served.start()
        script_seconds(served, files, word)
        by_client = client_seconds(served, files)
        # For comparison: UNLOCK TABLES ends each transaction.
        at_once = client_seconds(served, files, "--init-command=SET autocommit = 0")
        by_script = min(script_seconds(served, files, word) for _ in range(3))
        count = int(served.rows("SELECT COUNT(*) FROM articoli")[0][0])
    finally:
        served.close()
    print(f"  {count} articles, {size / 1e6:.1f} MB: updatedb.php {by_script:.2f} s, mariadb {by_client:.2f} s "
          f"({at_once:.2f} s with a commit for each table alone)")
    print(f"  updatedb.php / mariadb: {by_script / by_client:.2f} (bar 0.40) {verdict(by_script <= 0.4 * by_client)}")


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    program = os.path.abspath(sys.argv[1])
    for template in ("classico", "chiaro"):
        measure_pages(program, template)
    measure_load(program, 1000 if "--quick" in sys.argv else 10000)


if __name__ == "__main__":
    main()
