<?php
// ***1.0.7***
// All that the server keeps of one customer: given to them as a file, or deleted. Orders are accounts: they stay, without
// anything that tells whose they were, until the years of the tax law are over. Source: regulation (EU) 2016/679, articles
// 15, 17(3)(b) and 20; the Italian civil code, article 2220 (ten years). Shop and back office both use this file.
include_once "kvtables.php";

/** Whole years after that of an order for which it is kept. */
const KV_ANNI_ORDINI = 10;
/** Days for which an order that isn't sent yet needs the address of its customer. */
const KV_GIORNI_IN_CORSO = 60;
/** What is written in the name of an order whose customer is deleted. */
const KV_CLIENTE_ELIMINATO = 'Cliente eliminato';
/** The fields of an order that tell nobody's identity. */
const KV_CAMPI_ANONIMI = ['Paese' => 1, 'NomePagamento' => 1];

/** Which orders are a customer's: those of the account, and those of its address once that is proven. */
function kvOrdiniDi(array $cliente): array
{
    return ["(cliente = ? OR (? = 1 AND email = ? AND email <> ''))",
        [(int) $cliente['id'], (int) $cliente['provato'], (string) $cliente['email']]];
}

/** A column of JSON as a value; null when it holds none. */
function kvJson(?string $testo)
{
    return json_decode((string) $testo, true);
}

/** All that is kept of a customer (a row of kv_clienti), as a document of JSON in UTF-8. */
function kvEsportaDati(array $cliente): string
{
    kvRequireTables();
    list($dove, $valori) = kvOrdiniDi($cliente);
    $ordini = kvQuery("SELECT id, codice, creato, nome, email, totale, valuta, metodo, stato, lingua, pagamento, dati, riepilogo"
        . " FROM kv_ordini WHERE $dove ORDER BY id", $valori) ?? [];
    $recessi = [];
    foreach ($ordini as $n => $ordine) {
        foreach (kvQuery('SELECT numero, creato, email, stato, righe, ricevuta FROM kv_recessi WHERE ordine = ? ORDER BY id',
            [(int) $ordine['id']]) ?? [] as $recesso) {
            $recessi[] = ['righe' => kvJson($recesso['righe'])] + $recesso;
        }
        $ordini[$n]['annotazioni'] = kvQuery('SELECT quando, testo FROM kv_annotazioni WHERE ordine = ? ORDER BY id',
            [(int) $ordine['id']]) ?? [];
        unset($ordini[$n]['id']);
        $ordini[$n]['dati'] = kvJson($ordine['dati']);
    }
    $richieste = kvQuery('SELECT creato, scade, stato FROM kv_richieste WHERE email = ? ORDER BY id', [$cliente['email']]) ?? [];
    // The password's hash is no data of the customer's, and better in no file.
    unset($cliente['pw']);
    return (string) json_encode(['esportato' => gmdate('Y-m-d\TH:i:s\Z'), 'cliente' => $cliente, 'ordini' => $ordini,
        'recessi' => $recessi, 'richieste' => $richieste],
        JSON_PRETTY_PRINT | JSON_UNESCAPED_UNICODE | JSON_UNESCAPED_SLASHES | JSON_INVALID_UTF8_SUBSTITUTE) . "\n";
}

/** Sends the document as a file and ends. */
function kvScaricaDati(array $cliente): void
{
    $dati = kvEsportaDati($cliente);
    while (ob_get_level() > 0 && @ob_end_clean()) {
        continue;
    }
    header('Content-Type: application/json; charset=utf-8');
    header('Content-Disposition: attachment; filename="dati-personali.json"');
    header('Cache-Control: no-store');
    echo $dati;
    exit;
}

/** How many orders of a customer are under way and need the data. */
function kvOrdiniInCorso(array $cliente): int
{
    list($dove, $valori) = kvOrdiniDi($cliente);
    return (int) (kvRiga("SELECT COUNT(*) AS n FROM kv_ordini WHERE $dove AND stato IN ('nuovo', 'da verificare',"
        . " 'importo diverso', 'pagato') AND creato > NOW() - INTERVAL " . KV_GIORNI_IN_CORSO . ' DAY', $valori)['n'] ?? 0);
}

/** Takes from an order all that tells whose it was, and from its withdrawals; false when the server refused. */
function kvAnonimizzaOrdine(array $ordine): bool
{
    $dati = kvJson($ordine['dati']);
    $dati = is_array($dati) ? $dati : [];
    $dati['campi'] = array_intersect_key(is_array($dati['campi'] ?? null) ? $dati['campi'] : [], KV_CAMPI_ANONIMI);
    return kvQuery("UPDATE kv_ordini SET cliente = 0, nome = ?, email = '', dati = ?, riepilogo = '',"
            . " modificato = CURRENT_TIMESTAMP(6) WHERE id = ?",
            [KV_CLIENTE_ELIMINATO, (string) json_encode($dati, JSON_INVALID_UTF8_SUBSTITUTE), (int) $ordine['id']]) !== null
        && kvQuery("UPDATE kv_recessi SET email = '' WHERE ordine = ?", [(int) $ordine['id']]) !== null
        && kvQuery("DELETE FROM kv_annotazioni WHERE ordine = ? AND tipo <> 'stato'", [(int) $ordine['id']]) !== null;
}

/** Deletes the customer and what was asked in their name, and makes their orders anonymous: all of it or nothing. */
function kvEliminaDati(array $cliente): bool
{
    // The tables must stand before the transaction: making one would end it.
    kvRequireTables();
    kvRiga('SELECT COUNT(*) FROM kv_recessi WHERE id = 0');
    kvRiga('SELECT COUNT(*) FROM kv_annotazioni WHERE id = 0');
    list($dove, $valori) = kvOrdiniDi($cliente);
    mysqli_begin_transaction(kvConnection());
    $ordini = kvQuery("SELECT id, dati FROM kv_ordini WHERE $dove FOR UPDATE", $valori);
    $fatto = $ordini !== null;
    foreach ($ordini ?? [] as $ordine) {
        $fatto = $fatto && kvAnonimizzaOrdine($ordine);
    }
    $fatto = $fatto && kvQuery('DELETE FROM kv_richieste WHERE email = ?', [$cliente['email']]) !== null
        && kvQuery('DELETE FROM kv_clienti WHERE id = ?', [(int) $cliente['id']]) !== null && mysqli_commit(kvConnection());
    if (!$fatto) {
        mysqli_rollback(kvConnection());
        return false;
    }
    kvTogliOrdiniVecchi();
    return true;
}

/**
 * Deletes the anonymous orders whose years are over, with what belongs to them, and notes which, so that copies follow:
 * all of it or nothing.
 */
function kvTogliOrdiniVecchi(): void
{
    // The table must stand before the transaction: making one would end it.
    kvRiga('SELECT COUNT(*) FROM kv_tolti WHERE id = 0');
    mysqli_begin_transaction(kvConnection());
    $righe = kvQuery("SELECT id FROM kv_ordini WHERE email = '' AND cliente = 0 AND nome = ? AND YEAR(creato) < YEAR(NOW()) - "
        . KV_ANNI_ORDINI . ' FOR UPDATE', [KV_CLIENTE_ELIMINATO]);
    $fatto = $righe !== null && $righe !== [];
    if ($fatto) {
        $elenco = implode(',', array_map('intval', array_column($righe, 'id')));
        foreach (["INSERT INTO kv_tolti (ordine, codice) SELECT id, codice FROM kv_ordini WHERE id IN ($elenco) ORDER BY id",
                  "DELETE FROM kv_recessi WHERE ordine IN ($elenco)", "DELETE FROM kv_annotazioni WHERE ordine IN ($elenco)",
                  "DELETE FROM kv_ordini WHERE id IN ($elenco)"] as $sql) {
            $fatto = $fatto && kvQuery($sql) !== null;
        }
    }
    if (!$fatto || !mysqli_commit(kvConnection())) {
        mysqli_rollback(kvConnection());
    }
}
