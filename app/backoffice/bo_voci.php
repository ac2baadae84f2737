<?php
// The stock of articles and values as its page and remoto.php read and set it.

/**
 * The list of articles (A) or values of variants (V): its tables, its key in the character set and order of
 * kv_disponibilita, what is grouped by, what is shown, what a search looks into, the order. All of it is SQL of our own.
 */
function boFonti(): array
{
    $valore = "CONVERT(LEFT(CONCAT(g.ID, '.', a.OpID, '.', a.codice), 100) USING latin1) COLLATE latin1_bin";
    return [
        'A' => ['tabelle' => 'articoli a LEFT JOIN dettaglio g ON g.ID = a.ID',
            'chiave' => 'CONVERT(CAST(a.ID AS CHAR) USING latin1) COLLATE latin1_bin', 'gruppo' => 'a.ID',
            'campi' => 'MAX(a.ID) AS chiave, MAX(g.codice) AS codice, MAX(a.plain_titolo) AS nome',
            'cerca' => "CONCAT_WS(' ', g.codice, a.plain_titolo)", 'ordine' => 'MAX(g.codice), MAX(a.plain_titolo), a.ID'],
        'V' => ['tabelle' => 'opcodici a INNER JOIN dettaglio g ON a.OpID IN (' . kvVariantColumns('g')
                . ') INNER JOIN articoli t ON t.ID = g.ID LEFT JOIN opzioni p ON p.ID = a.OpID',
            'chiave' => $valore, 'gruppo' => $valore,
            'campi' => "MAX($valore) AS chiave, MAX(a.codice) AS codice,"
                . " MAX(CONCAT_WS(' ', g.codice, t.plain_titolo, '-', p.nomeopzione)) AS nome",
            'cerca' => "CONCAT_WS(' ', a.codice, g.codice, t.plain_titolo, p.nomeopzione)",
            'ordine' => 'MAX(g.codice), MAX(t.plain_titolo), MAX(p.nomeopzione), MAX(a.codice), ' . $valore],
    ];
}

/** The tables of a list with what the stock says of its rows, as d. */
function boTabelleVoci(string $tipo): string
{
    $fonte = boFonti()[$tipo];
    return $fonte['tabelle'] . " LEFT JOIN kv_disponibilita d ON d.tipo = '$tipo' AND d.chiave = " . $fonte['chiave'];
}

/**
 * Rows of a list from an index on: chiave, codice, nome, and what the stock says (d is null when it has none). `filtro`:
 * a condition and its values. Null when the server refused the query.
 */
function boTrovaVoci(string $tipo, array $filtro, int $da, int $quante): ?array
{
    list($dove, $valori) = $filtro;
    $fonte = boFonti()[$tipo];
    return kvQuery("SELECT {$fonte['campi']}, MAX(d.chiave) AS d, MAX(d.disponibile) AS disponibile,"
        . ' MAX(d.quantita) AS quantita FROM ' . boTabelleVoci($tipo) . " WHERE $dove GROUP BY {$fonte['gruppo']}"
        . " ORDER BY {$fonte['ordine']} LIMIT $quante OFFSET $da", $valori);
}

/** The name of such a row as plain text, in the catalogue's character set. */
function boNomeVoce(array $riga): string
{
    return html_entity_decode(strip_tags((string) $riga['nome']), ENT_QUOTES, 'cp1252');
}

/** What such a row says: see boVoce. */
function boVoceTrovata(array $riga): string
{
    return boVoceRiga($riga['d'] === null ? null : $riga);
}

/** What the fields of a row say: "1|12", "1|" without a limit, "0|..." for none; null when the quantity is none. */
function boVoce(bool $disponibile, string $quantita): ?string
{
    return preg_match('/^\d{0,7}$/D', $quantita) ? ($disponibile ? '1' : '0') . '|' . ltrim($quantita, '0')
        . (preg_match('/^0+$/D', $quantita) ? '0' : '') : null;
}

/** The same of a row of kv_disponibilita, null for a missing one. */
function boVoceRiga(?array $riga): string
{
    return $riga === null ? '1|' : ($riga['disponibile'] ? '1' : '0') . '|' . ($riga['quantita'] === null ? ''
        : max(0, (int) $riga['quantita']));
}

/** Stores one row whose fields went from `prima` to `dopo`; false when the database no longer holds `prima`. */
function boSalvaVoce(string $tipo, string $chiave, string $prima, string $dopo): bool
{
    // The table must stand before a transaction: making it would end one.
    kvRiga("SELECT COUNT(*) FROM kv_disponibilita WHERE tipo = '-'");
    mysqli_begin_transaction(kvConnection());
    $riga = kvRiga('SELECT disponibile, quantita FROM kv_disponibilita WHERE tipo = ? AND chiave = ? FOR UPDATE',
        [$tipo, $chiave]);
    if (boVoceRiga($riga) !== $prima) {
        mysqli_rollback(kvConnection());
        return false;
    }
    list($disponibile, $quantita) = explode('|', $dopo);
    if ($dopo === '1|') {
        $esito = kvQuery('DELETE FROM kv_disponibilita WHERE tipo = ? AND chiave = ?', [$tipo, $chiave]);
    } else {
        $esito = kvQuery('REPLACE INTO kv_disponibilita (tipo, chiave, disponibile, quantita) VALUES (?, ?, ?, ?)',
            [$tipo, $chiave, (int) $disponibile, $quantita === '' ? null : (int) $quantita]);
    }
    if ($esito !== null && mysqli_commit(kvConnection())) {
        return true;
    }
    mysqli_rollback(kvConnection());
    return false;
}
