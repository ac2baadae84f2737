<?php
// Orders as remoto.php gives them, those that changed first; their states and notes as it sets them.
include_once __DIR__ . '/bo_ordini.php';
include_once __DIR__ . '/bo_testi.php';

/** Most orders of an answer, most bytes of it, and most bytes that its orders may have in the database. */
const BO_REMOTE_ORDERS = 500;
const BO_REMOTE_BYTES = 8000000;
const BO_REMOTE_DATA = 4000000;
/** Most notes of an order, its newest ones: as many as its page shows. */
const BO_REMOTE_NOTES = 200;
/** Most deleted orders of an answer. */
const BO_REMOTE_DELETED = 5000;
/** Seconds by which a transaction may end later than the moment that it writes in a row. */
const BO_REMOTE_TRANSACTION = 120;

/** Rows of a query; where the server refuses it there is no answer, for one without these rows would be a wrong one. */
function boRemoteRows(string $sql, array $values = []): array
{
    $rows = kvQuery($sql, $values);
    if ($rows === null) {
        kvOutOfService();
    }
    return $rows ?? [];
}

/** Runs something while the database speaks of world time: in local time an hour of each autumn comes twice. */
function boInUtc(callable $action): array
{
    $zone = (string) (kvRiga('SELECT @@session.time_zone AS fuso')['fuso'] ?? 'SYSTEM');
    kvQuery("SET time_zone = '+00:00'");
    $result = $action();
    kvQuery("SET time_zone = '" . mysqli_real_escape_string(kvConnection(), $zone) . "'");
    return $result;
}

/**
 * Where a reading has come to: moment of change and number of the last order, and, while it isn't over, the moment from
 * which on the next one has to look again. A text that is none begins at the beginning.
 */
function boReadingMark(string $after): array
{
    $moment = '\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{6}';
    return preg_match("/^($moment)\|(\d{1,10})\|($moment|)$/D", $after, $parts)
        ? [$parts[1], (int) $parts[2], $parts[3]] : ['1970-01-02 00:00:00.000000', 0, ''];
}

/** Numbers and moments of the orders that come next, as many as one answer takes; and whether there are more. */
function boNextOrders(array $mark, int $count): array
{
    $rows = boRemoteRows('SELECT id, modificato, LENGTH(dati) + LENGTH(riepilogo) AS byte FROM kv_ordini WHERE modificato >= ?'
        . ' AND (modificato > ? OR id > ?) ORDER BY modificato, id LIMIT ' . ($count + 1),
        [$mark[0], $mark[0], $mark[1]]);
    $chosen = [];
    $bytes = 0;
    foreach (array_slice($rows, 0, $count) as $row) {
        $bytes += (int) $row['byte'];
        if ($chosen !== [] && $bytes > BO_REMOTE_DATA) {
            break;
        }
        $chosen[(int) $row['id']] = $row['modificato'];
    }
    return [$chosen, count($rows) > count($chosen)];
}

/** Rows of a table that belong to orders, by the number of the order. */
function boRowsOfOrders(string $columns, string $table, string $list): array
{
    $groups = [];
    foreach (boRemoteRows("SELECT ordine, $columns FROM $table WHERE ordine IN ($list) ORDER BY id") as $row) {
        $order = (int) $row['ordine'];
        unset($row['ordine']);
        $groups[$order][] = $row;
    }
    return $groups;
}

/** Orders by their numbers, in the order of these. The database speaks of world time. */
function boReadOrders(array $numbers): array
{
    if ($numbers === []) {
        return [];
    }
    $list = implode(',', array_map('intval', $numbers));
    $rows = array_column(boRemoteRows('SELECT id, codice, creato, modificato, cliente, nome, email, totale, valuta, metodo, stato,'
        . " lingua, pagamento, riepilogo, dati FROM kv_ordini WHERE id IN ($list)"), null, 'id');
    $notes = boRowsOfOrders('quando, tipo, testo', 'kv_annotazioni', $list);
    $withdrawals = boRowsOfOrders('numero, creato, stato, righe', 'kv_recessi', $list);
    $orders = [];
    foreach ($numbers as $number) {
        if (isset($rows[$number])) {
            $orders[] = boRemoteOrder($rows[$number], array_slice($notes[$number] ?? [], -BO_REMOTE_NOTES),
                $withdrawals[$number] ?? []);
        }
    }
    return $orders;
}

/** A withdrawal as it is sent; `riga` is the index of the line among those of the order, -1 when it isn't there. */
function boRemoteWithdrawal(array $withdrawal, array $indexes): array
{
    $rows = json_decode($withdrawal['righe'], true);
    $rows = array_filter(is_array($rows) ? $rows : [], fn($row) => is_array($row) && isset($row['testo'], $row['quantita']));
    return ['righe' => array_map(fn($row) => ['riga' => $indexes[(int) ($row['n'] ?? -1)] ?? -1, 'testo' => (string) $row['testo'],
        'scelte' => (string) ($row['scelte'] ?? ''), 'quantita' => (int) $row['quantita']], array_values($rows))] + $withdrawal;
}

/** An order as it is sent: texts in UTF-8, amounts as texts with two decimals. */
function boRemoteOrder(array $order, array $notes, array $withdrawals): array
{
    $amount = fn(float $number): string => number_format($number, 2, '.', '');
    $data = boOrderData($order['dati']);
    $rows = array_map(fn($row) => ['id' => $row['id'], 'codice' => $row['codice'], 'testo' => $row['testo'],
        'scelte' => $row['scelte'], 'prima' => $row['prima'], 'scelte_prima' => $row['scelte_prima'],
        'quantita' => $row['quantita'], 'importo' => $amount($row['importo'])], $data['righe']);
    $language = $data['lingua'] !== '' ? $data['lingua'] : boOrderLanguage($order, $data);
    $indexes = array_flip(array_column($data['righe'], 'n'));
    unset($order['dati']);
    return ['id' => (int) $order['id'], 'cliente' => (int) $order['cliente'], 'lingua' => $language,
        'valuta' => trim($order['valuta']), 'campi' => (object) $data['campi'], 'righe' => $rows,
        'totali' => (object) array_map($amount, $data['totali']), 'note' => $notes,
        'recessi' => array_map(fn($withdrawal) => boRemoteWithdrawal($withdrawal, $indexes), $withdrawals)] + $order;
}

/** A text that is another one once a further order was deleted; empty as long as none was. */
function boDeletionMark(): string
{
    $row = boRemoteRows('SELECT COUNT(*) AS quanti, MAX(id) AS ultimo FROM kv_tolti')[0];
    return (int) $row['quanti'] === 0 ? '' : $row['quanti'] . '-' . $row['ultimo'];
}

/** Orders that were deleted, from an index on: tolti, altri. */
function boRemoteDeleted(array $data): array
{
    $count = boRemoteInteger($data, 'quanti', 1, BO_REMOTE_DELETED);
    $rows = boRemoteRows('SELECT ordine AS id, codice FROM kv_tolti ORDER BY kv_tolti.id LIMIT ' . ($count + 1) . ' OFFSET '
        . boRemoteInteger($data, 'da', 0, PHP_INT_MAX));
    return ['tolti' => array_map(fn($row) => ['id' => (int) $row['id'], 'codice' => $row['codice']],
        array_slice($rows, 0, $count)), 'altri' => count($rows) > $count];
}

/** Orders that changed since the last reading: ordini, dopo, altri, tolti. */
function boRemoteOrders(array $data): array
{
    $mark = boReadingMark(boRemoteText($data, 'dopo', 100));
    return boInUtc(fn() => boOrdersSince($mark, boRemoteInteger($data, 'quanti', 1, BO_REMOTE_ORDERS)));
}

/** The same from a moment on. A reading ends before what transactions of this moment may still add. */
function boOrdersSince(array $mark, int $count): array
{
    $now = boRemoteRows('SELECT CAST(NOW(6) - INTERVAL ' . BO_REMOTE_TRANSACTION . ' SECOND AS CHAR) AS fermo');
    $fixed = $mark[2] === '' ? $now[0]['fermo'] : $mark[2];
    list($chosen, $more) = boNextOrders($mark, $count);
    $orders = [];
    $bytes = 0;
    foreach (boReadOrders(array_keys($chosen)) as $order) {
        $bytes += strlen(boRemoteJson($order)) + 1;
        if ($orders !== [] && $bytes > BO_REMOTE_BYTES) {
            $more = true;
            break;
        }
        $orders[] = $order;
        $mark = [$chosen[$order['id']], $order['id'], ''];
    }
    if ($more) {
        $mark[2] = $fixed;
    } elseif ($mark[0] >= $fixed) {
        $mark = [$fixed, 0, ''];
    } else {
        $mark[2] = '';
    }
    return ['ordini' => $orders, 'dopo' => implode('|', $mark), 'altri' => $more, 'tolti' => boDeletionMark()];
}

/** The order of a request; null when there is none of this code. */
function boRequestedOrder(array $data): ?array
{
    return boRemoteRows('SELECT * FROM kv_ordini WHERE codice = ?', [boRemoteText($data, 'codice', 20)])[0] ?? null;
}

/** What came of a request about an order, with the order as it is now. */
function boOrderOutcome(string $result, ?array $order): array
{
    return ['esito' => $result,
        'ordine' => $order === null ? null : boInUtc(fn() => boReadOrders([(int) $order['id']]))[0] ?? null];
}

/** Sets the state of an order that still has the one which the request saw, and writes to the customer. */
function boRemoteSetState(array $data): array
{
    $before = boRemoteText($data, 'da', 20);
    $after = boRemoteText($data, 'a', 20);
    if (!in_array($after, BO_STATES, true)) {
        return boRemoteError('Il negozio non conosce lo stato "' . kvFromUtf8($after) . '".');
    }
    $order = boRequestedOrder($data);
    if ($order === null || $order['stato'] !== $before || $after === $before) {
        return boOrderOutcome($order === null ? 'sconosciuto' : ($order['stato'] === $before ? 'fatto' : 'diverso'), $order)
            + ['mail' => ''];
    }
    if (!boChangeState($order, $before, $after, ($data['scorte'] ?? false) === true)) {
        $now = boRequestedOrder($data);
        return $now !== null && $now['stato'] === $before
            ? boRemoteError('Il server non ha salvato lo stato: riprovare.')
            : boOrderOutcome('diverso', $now) + ['mail' => ''];
    }
    $mail = ($data['scrivi'] ?? false) === true
        ? boNotifyCustomer($order, $after, boRemoteText($data, 'messaggio', BO_TEXT_LENGTH)) : '';
    return boOrderOutcome('fatto', $order) + ['mail' => $mail];
}

/** Adds a note to an order. */
function boRemoteAddNote(array $data): array
{
    $order = boRequestedOrder($data);
    $text = boRemoteText($data, 'testo', 2000);
    if ($order === null || $text === '') {
        return $order === null ? boOrderOutcome('sconosciuto', null) : boRemoteError("L'annotazione è vuota.");
    }
    return boAddNote((int) $order['id'], 'nota', $text) ? boOrderOutcome('fatto', $order)
        : boRemoteError("Il server non ha salvato l'annotazione: riprovare.");
}
