<?php
// Orders as the list, the page of one order and the CSV file share them.

/** The columns of an order that a list needs. */
const BO_ORDER_COLUMNS = 'id, codice, creato, nome, email, totale, valuta, metodo, stato';

/**
 * The lists of what waits for the merchant: name, condition. Orders of a method that proves its payments by itself need
 * no comparing while they are new: nobody has paid them. The quotes of the JSON can't be a customer's, whose own get a
 * backslash.
 */
const BO_LISTS = [
    'aperti' => ['Da evadere', "stato IN ('nuovo', 'da verificare', 'importo diverso')"],
    'pagati' => ['Pagati, da spedire', "stato = 'pagato'"],
    'confronto' => ['Da confrontare a mano', "pagamento = '' AND (stato IN ('da verificare', 'importo diverso')"
        . " OR stato = 'nuovo' AND INSTR(dati, '\"prova\":true') = 0)"],
];

/** A day of a request as yyyy-mm-dd; empty when it is none. */
function boDay(array $form, string $name): string
{
    $text = kvCampo($form, $name, 10);
    return preg_match('/^(\d{4})-(\d\d)-(\d\d)$/D', $text, $p) && checkdate((int) $p[2], (int) $p[3], (int) $p[1])
        ? $text : '';
}

/** What a request asks of the list of orders: the parameters that stand for it, the condition and its values. */
function boOrderFilter(array $request): array
{
    $parameters = ['q' => kvLineField($request, 'q', 100), 'da' => boDay($request, 'da'),
        'a' => boDay($request, 'a'), 'stato' => kvCampo($request, 'stato', 20),
        'metodo' => kvLineField($request, 'metodo', 200)];
    $where = ['1 = 1'];
    $values = [];
    if ($parameters['q'] !== '') {
        $where[] = "(INSTR(CONCAT_WS('\n', codice, nome, email, riepilogo), ?) > 0 OR id IN"
            . ' (SELECT ordine FROM kv_annotazioni WHERE INSTR(testo, ?) > 0))';
        array_push($values, $parameters['q'], $parameters['q']);
    }
    if ($parameters['metodo'] !== '') {
        $where[] = 'metodo = ?';
        $values[] = $parameters['metodo'];
    }
    if ($parameters['da'] !== '') {
        $where[] = 'creato >= ?';
        $values[] = $parameters['da'];
    }
    if ($parameters['a'] !== '') {
        $where[] = 'creato < ? + INTERVAL 1 DAY';
        $values[] = $parameters['a'];
    }
    if (isset(BO_LISTS[$parameters['stato']])) {
        $where[] = BO_LISTS[$parameters['stato']][1];
    } elseif (in_array($parameters['stato'], BO_STATES, true)) {
        $where[] = 'stato = ?';
        $values[] = $parameters['stato'];
    } else {
        $parameters['stato'] = '';
    }
    return [$parameters, implode(' AND ', $where), $values];
}

/** The states as choices: value => text; with `lists` the lists of what waits go first. */
function boStateChoices(bool $lists = false): array
{
    return ($lists ? ['' => 'Tutti'] + array_map(fn($list) => $list[0], BO_LISTS) : []) + array_combine(BO_STATES, array_map('ucfirst', BO_STATES));
}

/**
 * What an order's column `dati` holds: campi, righe, totali, lingua (a code), each empty when it doesn't. Texts are
 * UTF-8, but the keys of stock, which are in the catalogue's character set.
 */
function boOrderData(string $json): array
{
    $data = json_decode($json, true);
    $data = (is_array($data) ? $data : []) + ['campi' => [], 'righe' => [], 'totali' => []];
    $language = $data['lingua'] ?? '';
    $data = array_map(fn($part) => is_array($part) ? $part : [], $data);
    $fields = [];
    foreach ($data['campi'] as $name => $value) {
        $fields[$name] = is_scalar($value) ? (string) $value : '';
    }
    $lines = [];
    foreach ($data['righe'] as $n => $line) {
        if (is_array($line) && isset($line['testo'], $line['quantita'], $line['importo'])) {
            $lines[] = boOrderLine($line) + ['n' => (int) $n];
        }
    }
    $totals = array_map('floatval', array_filter($data['totali'], 'is_numeric'));
    return ['campi' => $fields, 'righe' => $lines, 'totali' => $totals,
        'lingua' => is_string($language) ? $language : ''];
}

/** One line of an order, whose number `n` is added by the caller: `prima` and `scelte_prima` are its words in the shop's first language. */
function boOrderLine(array $line): array
{
    $text = (string) $line['testo'];
    $choices = (string) ($line['scelte'] ?? '');
    return ['id' => (int) ($line['id'] ?? 0), 'codice' => (string) ($line['codice'] ?? ''), 'testo' => $text,
        'scelte' => $choices, 'prima' => (string) ($line['testo_prima'] ?? $text),
        'scelte_prima' => (string) ($line['scelte_prima'] ?? $choices), 'quantita' => (int) $line['quantita'],
        'importo' => (float) $line['importo'],
        'scorte' => array_map(fn($key) => kvFromUtf8((string) $key), (array) ($line['scorte'] ?? []))];
}

/** The name of a line as HTML: in the first language, with the customer's words under it where they differ. */
function boLineName(array $line): string
{
    $equal = $line['testo'] === $line['prima'] && $line['scelte'] === $line['scelte_prima'];
    $words = fn(string $choices): string => $choices === '' ? '' : ' (' . kvHtmlUtf8($choices) . ')';
    return '<span>' . kvHtmlUtf8($line['prima'])
        . ($line['scelte_prima'] === '' ? '' : '<small>' . kvHtmlUtf8($line['scelte_prima']) . '</small>')
        . ($equal ? '' : '<small class="altra"><span class="non-stampare">Cliente: </span>' . kvHtmlUtf8($line['testo']) . $words($line['scelte'])
            . '</small>') . '</span>';
}

/** The payment method of an order as HTML, in the same way. */
function boMethodName(array $order, array $data): string
{
    $stored = $data['campi']['NomePagamento'] ?? '';
    return kvHtmlUtf8($order['metodo'])
        . (in_array($stored, ['', $order['metodo']], true) ? '' : ' (' . kvHtmlUtf8($stored) . ')');
}

/** Adds to the notes of an order; `kind` is nota, stato or messaggio, the text UTF-8. */
function boAddNote(int $order, string $kind, string $text): bool
{
    return kvQuery('INSERT INTO kv_annotazioni (ordine, quando, tipo, testo) VALUES (?, NOW(), ?, ?)',
        [$order, $kind, $text]) !== null && kvTouchOrder($order);
}

/**
 * The keys of a line's stock as they are today: an order of a release that counted values by their code alone has O and
 * the code, which became V, article, variant and code.
 */
function boLineStockKeys(array $line): array
{
    $keys = [];
    foreach ($line['scorte'] as $key) {
        if ($key !== '' && $key[0] === 'O') {
            $lines = kvQuery("SELECT chiave FROM kv_disponibilita WHERE tipo = 'V' AND chiave LIKE ?", [$line['id'] . '.%']);
            $code = substr($key, 1);
            $today = array_filter(array_column($lines ?? [], 'chiave'),
                fn($entry) => (explode('.', $entry, 3)[2] ?? '') === substr($code, 0, 100));
            $keys = array_merge($keys, array_map(fn($entry) => 'V' . $entry, array_slice(array_values($today), 0, 1)));
        } else {
            $keys[] = $key;
        }
    }
    return $keys;
}

/** How many pieces of each key of kv_disponibilita the lines of an order took. */
function boOrderPieces(array $lines): array
{
    $pieces = [];
    foreach ($lines as $line) {
        foreach (boLineStockKeys($line) as $key) {
            $pieces[$key] = ($pieces[$key] ?? 0) + $line['quantita'];
        }
    }
    return $pieces;
}

/** Gives pieces back to the stock (`direction` 1) or takes them again (-1); false when the server refused. */
function boMoveStock(array $pieces, int $direction): bool
{
    ksort($pieces, SORT_STRING);
    foreach ($pieces as $key => $quantity) {
        $key = (string) $key;
        $result = kvQuery('UPDATE kv_disponibilita SET quantita = GREATEST(0, quantita + ?)'
            . ' WHERE tipo = ? AND chiave = ? AND quantita IS NOT NULL',
            [$direction * $quantity, $key[0], substr($key, 1, 100)]);
        if ($result === null) {
            return false;
        }
    }
    return true;
}

/**
 * Sets the state of an order that still has the state `before`, and, with `stock`, its pieces free when it becomes
 * cancelled and taken when it no longer is; all of it or nothing.
 */
function boChangeState(array $order, string $before, string $after, bool $stock): bool
{
    // The tables must be there before the transaction: making one would end it.
    kvRequireTables();
    kvRiga("SELECT COUNT(*) FROM kv_disponibilita WHERE tipo = '-'");
    kvRiga('SELECT COUNT(*) FROM kv_annotazioni WHERE ordine = 0');
    mysqli_begin_transaction(kvConnection());
    $done = kvQuery('UPDATE kv_ordini SET stato = ? WHERE id = ? AND stato = ?', [$after, (int) $order['id'], $before])
        !== null && kvRigheToccate() === 1;
    $direction = ($after === 'annullato' ? 1 : 0) - ($before === 'annullato' ? 1 : 0);
    if ($done && $stock && $direction !== 0) {
        $done = boMoveStock(boOrderPieces(boOrderData($order['dati'])['righe']), $direction);
    }
    $done = $done && boAddNote((int) $order['id'], 'stato', kvFromCp1252("Stato: da \"$before\" a \"$after\""));
    if ($done && mysqli_commit(kvConnection())) {
        kvStockChanged();
        return true;
    }
    mysqli_rollback(kvConnection());
    return false;
}
