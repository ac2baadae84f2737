<?php
// ***1.0.7***
// All that the server keeps of one customer: given to them as a file, or deleted. Orders are accounts: they stay, without
// anything that tells whose they were, until the years of the tax law are over. Source: regulation (EU) 2016/679, articles
// 15, 17(3)(b) and 20; the Italian civil code, article 2220 (ten years). Shop and back office both use this file.
include_once "kvtables.php";

/** Whole years after that of an order for which it is kept. */
const KV_ORDER_YEARS = 10;
/** Days for which an order that isn't sent yet needs the address of its customer. */
const KV_OPEN_DAYS = 60;
/** What is written in the name of an order whose customer is deleted. */
const KV_DELETED_CUSTOMER = 'Cliente eliminato';
/** The fields of an order that tell nobody's identity. */
const KV_ANONYMOUS_FIELDS = ['Paese' => 1, 'NomePagamento' => 1];

/** Which orders are a customer's: those of the account, and those of its address once that is proven. */
function kvOrdersOf(array $cliente): array
{
    return ["(cliente = ? OR (? = 1 AND email = ? AND email <> ''))",
        [(int) $cliente['id'], (int) $cliente['provato'], (string) $cliente['email']]];
}

/** A column of JSON as a value; null when it holds none. */
function kvJson(?string $text)
{
    return json_decode((string) $text, true);
}

/** All that is kept of a customer (a row of kv_clienti), as a document of JSON in UTF-8. */
function kvExportData(array $cliente): string
{
    kvRequireTables();
    list($where, $values) = kvOrdersOf($cliente);
    $orders = kvQuery("SELECT id, codice, creato, nome, email, totale, valuta, metodo, stato, lingua, pagamento, dati, riepilogo"
        . " FROM kv_ordini WHERE $where ORDER BY id", $values) ?? [];
    $withdrawals = [];
    foreach ($orders as $n => $order) {
        foreach (kvQuery('SELECT numero, creato, email, stato, righe, ricevuta FROM kv_recessi WHERE ordine = ? ORDER BY id',
            [(int) $order['id']]) ?? [] as $withdrawal) {
            $withdrawals[] = ['righe' => kvJson($withdrawal['righe'])] + $withdrawal;
        }
        $orders[$n]['annotazioni'] = kvQuery('SELECT quando, testo FROM kv_annotazioni WHERE ordine = ? ORDER BY id',
            [(int) $order['id']]) ?? [];
        unset($orders[$n]['id']);
        $orders[$n]['dati'] = kvJson($order['dati']);
    }
    $requests = kvQuery('SELECT creato, scade, stato FROM kv_richieste WHERE email = ? ORDER BY id', [$cliente['email']]) ?? [];
    // The password's hash is no data of the customer's, and better in no file.
    unset($cliente['pw']);
    return (string) json_encode(['esportato' => gmdate('Y-m-d\TH:i:s\Z'), 'cliente' => $cliente, 'ordini' => $orders,
        'recessi' => $withdrawals, 'richieste' => $requests],
        JSON_PRETTY_PRINT | JSON_UNESCAPED_UNICODE | JSON_UNESCAPED_SLASHES | JSON_INVALID_UTF8_SUBSTITUTE) . "\n";
}

/** Sends the document as a file and ends. */
function kvDownloadData(array $cliente): void
{
    $data = kvExportData($cliente);
    while (ob_get_level() > 0 && @ob_end_clean()) {
        continue;
    }
    header('Content-Type: application/json; charset=utf-8');
    header('Content-Disposition: attachment; filename="dati-personali.json"');
    header('Cache-Control: no-store');
    echo $data;
    exit;
}

/** How many orders of a customer are under way and need the data. */
function kvOpenOrders(array $cliente): int
{
    list($where, $values) = kvOrdersOf($cliente);
    return (int) (kvRiga("SELECT COUNT(*) AS n FROM kv_ordini WHERE $where AND stato IN ('nuovo', 'da verificare',"
        . " 'importo diverso', 'pagato') AND creato > NOW() - INTERVAL " . KV_OPEN_DAYS . ' DAY', $values)['n'] ?? 0);
}

/** Takes from an order all that tells whose it was, and from its withdrawals; false when the server refused. */
function kvAnonymizeOrder(array $order): bool
{
    $data = kvJson($order['dati']);
    $data = is_array($data) ? $data : [];
    $data['campi'] = array_intersect_key(is_array($data['campi'] ?? null) ? $data['campi'] : [], KV_ANONYMOUS_FIELDS);
    return kvQuery("UPDATE kv_ordini SET cliente = 0, nome = ?, email = '', dati = ?, riepilogo = '',"
            . " modificato = CURRENT_TIMESTAMP(6) WHERE id = ?",
            [KV_DELETED_CUSTOMER, (string) json_encode($data, JSON_INVALID_UTF8_SUBSTITUTE), (int) $order['id']]) !== null
        && kvQuery("UPDATE kv_recessi SET email = '' WHERE ordine = ?", [(int) $order['id']]) !== null
        && kvQuery("DELETE FROM kv_annotazioni WHERE ordine = ? AND tipo <> 'stato'", [(int) $order['id']]) !== null;
}

/** Deletes the customer and what was asked in their name, and makes their orders anonymous: all of it or nothing. */
function kvDeleteData(array $cliente): bool
{
    // The tables must be there before the transaction: making one would end it.
    kvRequireTables();
    kvRiga('SELECT COUNT(*) FROM kv_recessi WHERE id = 0');
    kvRiga('SELECT COUNT(*) FROM kv_annotazioni WHERE id = 0');
    list($where, $values) = kvOrdersOf($cliente);
    mysqli_begin_transaction(kvConnection());
    $orders = kvQuery("SELECT id, dati FROM kv_ordini WHERE $where FOR UPDATE", $values);
    $done = $orders !== null;
    foreach ($orders ?? [] as $order) {
        $done = $done && kvAnonymizeOrder($order);
    }
    $done = $done && kvQuery('DELETE FROM kv_richieste WHERE email = ?', [$cliente['email']]) !== null
        && kvQuery('DELETE FROM kv_clienti WHERE id = ?', [(int) $cliente['id']]) !== null && mysqli_commit(kvConnection());
    if (!$done) {
        mysqli_rollback(kvConnection());
        return false;
    }
    kvRemoveOldOrders();
    return true;
}

/**
 * Deletes the anonymous orders whose years are over, with what belongs to them, and notes which, so that copies follow:
 * all of it or nothing.
 */
function kvRemoveOldOrders(): void
{
    // The table must be there before the transaction: making one would end it.
    kvRiga('SELECT COUNT(*) FROM kv_tolti WHERE id = 0');
    mysqli_begin_transaction(kvConnection());
    $rows = kvQuery("SELECT id FROM kv_ordini WHERE email = '' AND cliente = 0 AND nome = ? AND YEAR(creato) < YEAR(NOW()) - "
        . KV_ORDER_YEARS . ' FOR UPDATE', [KV_DELETED_CUSTOMER]);
    $done = $rows !== null && $rows !== [];
    if ($done) {
        $list = implode(',', array_map('intval', array_column($rows, 'id')));
        foreach (["INSERT INTO kv_tolti (ordine, codice) SELECT id, codice FROM kv_ordini WHERE id IN ($list) ORDER BY id",
                  "DELETE FROM kv_recessi WHERE ordine IN ($list)", "DELETE FROM kv_annotazioni WHERE ordine IN ($list)",
                  "DELETE FROM kv_ordini WHERE id IN ($list)"] as $sql) {
            $done = $done && kvQuery($sql) !== null;
        }
    }
    if (!$done || !mysqli_commit(kvConnection())) {
        mysqli_rollback(kvConnection());
    }
}
