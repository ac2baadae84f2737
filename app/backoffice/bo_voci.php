<?php
// The stock of articles and values as its page and remoto.php read and set it.

/**
 * The list of articles (A) or values of variants (V): its tables, its key in the character set and order of
 * kv_disponibilita, what is grouped by, what is shown, what a search looks into, the order. All of it is SQL of our own.
 */
function boStockSources(): array
{
    $value = "CONVERT(LEFT(CONCAT(g.ID, '.', a.OpID, '.', a.codice), 100) USING latin1) COLLATE latin1_bin";
    return [
        'A' => ['tables' => 'articoli a LEFT JOIN dettaglio g ON g.ID = a.ID',
            'key' => 'CONVERT(CAST(a.ID AS CHAR) USING latin1) COLLATE latin1_bin', 'group' => 'a.ID',
            'fields' => 'MAX(a.ID) AS chiave, MAX(g.codice) AS codice, MAX(a.plain_titolo) AS nome',
            'search' => "CONCAT_WS(' ', g.codice, a.plain_titolo)", 'order' => 'MAX(g.codice), MAX(a.plain_titolo), a.ID'],
        'V' => ['tables' => 'opcodici a INNER JOIN dettaglio g ON a.OpID IN (' . kvVariantColumns('g')
                . ') INNER JOIN articoli t ON t.ID = g.ID LEFT JOIN opzioni p ON p.ID = a.OpID',
            'key' => $value, 'group' => $value,
            'fields' => "MAX($value) AS chiave, MAX(a.codice) AS codice,"
                . " MAX(CONCAT_WS(' ', g.codice, t.plain_titolo, '-', p.nomeopzione)) AS nome",
            'search' => "CONCAT_WS(' ', a.codice, g.codice, t.plain_titolo, p.nomeopzione)",
            'order' => 'MAX(g.codice), MAX(t.plain_titolo), MAX(p.nomeopzione), MAX(a.codice), ' . $value],
    ];
}

/** The tables of a list with what the stock says of its rows, as d. */
function boStockTables(string $kind): string
{
    $source = boStockSources()[$kind];
    return $source['tables'] . " LEFT JOIN kv_disponibilita d ON d.tipo = '$kind' AND d.chiave = " . $source['key'];
}

/**
 * Rows of a list from an index on: chiave, codice, nome, and what the stock says (d is null when it has none). `filter`:
 * a condition and its values. Null when the server refused the query.
 */
function boFindStockRows(string $kind, array $filter, int $from, int $count): ?array
{
    list($where, $values) = $filter;
    $source = boStockSources()[$kind];
    return kvQuery("SELECT {$source['fields']}, MAX(d.chiave) AS d, MAX(d.disponibile) AS disponibile,"
        . ' MAX(d.quantita) AS quantita FROM ' . boStockTables($kind) . " WHERE $where GROUP BY {$source['group']}"
        . " ORDER BY {$source['order']} LIMIT $count OFFSET $from", $values);
}

/** The name of such a row as plain text, in the catalogue's character set. */
function boStockRowName(array $row): string
{
    return html_entity_decode(strip_tags((string) $row['nome']), ENT_QUOTES, 'cp1252');
}

/** What such a row says: see boStockEntry. */
function boFoundEntry(array $row): string
{
    return boRowEntry($row['d'] === null ? null : $row);
}

/** What the fields of a row say: "1|12", "1|" without a limit, "0|..." for none; null when the quantity is none. */
function boStockEntry(bool $available, string $quantity): ?string
{
    return preg_match('/^\d{0,7}$/D', $quantity) ? ($available ? '1' : '0') . '|' . ltrim($quantity, '0')
        . (preg_match('/^0+$/D', $quantity) ? '0' : '') : null;
}

/** The same of a row of kv_disponibilita, null for a missing one. */
function boRowEntry(?array $row): string
{
    return $row === null ? '1|' : ($row['disponibile'] ? '1' : '0') . '|' . ($row['quantita'] === null ? ''
        : max(0, (int) $row['quantita']));
}

/** Stores one row whose fields went from `before` to `after`; false when the database no longer holds `before`. */
function boSaveEntry(string $kind, string $key, string $before, string $after): bool
{
    // The table must be there before a transaction: making it would end one.
    kvRiga("SELECT COUNT(*) FROM kv_disponibilita WHERE tipo = '-'");
    mysqli_begin_transaction(kvConnection());
    $row = kvRiga('SELECT disponibile, quantita FROM kv_disponibilita WHERE tipo = ? AND chiave = ? FOR UPDATE',
        [$kind, $key]);
    if (boRowEntry($row) !== $before) {
        mysqli_rollback(kvConnection());
        return false;
    }
    list($available, $quantity) = explode('|', $after);
    if ($after === '1|') {
        $result = kvQuery('DELETE FROM kv_disponibilita WHERE tipo = ? AND chiave = ?', [$kind, $key]);
    } else {
        $result = kvQuery('REPLACE INTO kv_disponibilita (tipo, chiave, disponibile, quantita) VALUES (?, ?, ?, ?)',
            [$kind, $key, (int) $available, $quantity === '' ? null : (int) $quantity]);
    }
    if ($result !== null && mysqli_commit(kvConnection())) {
        return true;
    }
    mysqli_rollback(kvConnection());
    return false;
}
