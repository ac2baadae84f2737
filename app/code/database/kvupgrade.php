<?php
// ***1.0.7***
// Brings the server's own tables of an earlier release up to date. Each step leaves what it finds done as it is, so that
// one which was interrupted is simply taken again; the number in kv_stato is written when all of them have been taken.

/** Takes the steps that are missing, one caller at a time. */
function kvUpgradeTables(): void
{
    static $underWay = false;
    if ($underWay || (int) kvStoredValue('tabelle') >= KV_TABLES) {
        return;
    }
    $underWay = true;
    $lock = kvRiga("SELECT GET_LOCK(CONCAT(DATABASE(), '.kv_tabelle'), 60) AS mio");
    if ((int) ($lock['mio'] ?? 0) === 1) {
        if (kvTablesToUtf8() && kvNewColumns() && kvStockPerArticle()) {
            kvStoreValue('tabelle', (string) KV_TABLES);
        }
        kvQuery("SELECT RELEASE_LOCK(CONCAT(DATABASE(), '.kv_tabelle'))");
    }
    $underWay = false;
}

/** The tables of visitors' words in UTF-8, where an earlier release kept references for what Windows-1252 lacks. */
function kvTablesToUtf8(): bool
{
    $tables = kvQuery("SELECT TABLE_NAME AS nome FROM information_schema.TABLES WHERE TABLE_SCHEMA = DATABASE()"
        . " AND TABLE_NAME IN ('kv_clienti', 'kv_ordini', 'kv_richieste') AND TABLE_COLLATION NOT LIKE 'utf8mb4%'");
    foreach ($tables ?? [] as list('nome' => $name)) {
        if (kvQuery("ALTER TABLE $name CONVERT TO CHARACTER SET utf8mb4") === null || !kvReplaceReferences($name)) {
            return false;
        }
    }
    return $tables !== null;
}

/** The columns that earlier releases didn't have. */
function kvNewColumns(): bool
{
    foreach (['kv_clienti' => ['provato', 'TINYINT NOT NULL DEFAULT 0'], 'kv_richieste' => ['dati', 'TEXT NULL'],
              'kv_ordini' => ['modificato', KV_MODIFIED . ', ADD KEY modificato (modificato, id)']]
             as $table => list($column, $kind)) {
        $rows = kvQuery('SELECT COLUMN_NAME FROM information_schema.COLUMNS WHERE TABLE_SCHEMA = DATABASE()'
            . ' AND TABLE_NAME = ? AND COLUMN_NAME = ?', [$table, $column]);
        if ($rows === null || ($rows === [] && kvQuery("ALTER TABLE $table ADD COLUMN $column $kind") === null)) {
            return false;
        }
    }
    return true;
}

/**
 * The stock of values, which an earlier release counted by their code alone, for each article that offers them. A code
 * that more than one article offers had one count for all: nobody can tell whose pieces they were, so each article gets
 * the count, which is the most it can have, and the merchant is told which ones to look at.
 */
function kvStockPerArticle(): bool
{
    if ((kvRiga("SELECT COUNT(*) AS n FROM kv_disponibilita WHERE tipo = 'O'")['n'] ?? 0) == 0) {
        return true;
    }
    $offered = "opcodici c ON CONVERT(c.codice USING latin1) COLLATE latin1_bin = d.chiave INNER JOIN dettaglio o"
        . " ON c.OpID IN (" . kvVariantColumns('o') . ") WHERE d.tipo = 'O'";
    $common = kvQuery("SELECT d.chiave FROM kv_disponibilita d INNER JOIN $offered AND d.quantita > 0 GROUP BY d.chiave"
        . ' HAVING COUNT(DISTINCT o.ID) > 1 ORDER BY d.chiave');
    if ($common === null) {
        return false;
    }
    if ($common !== []) {
        kvStoreValue('scorte_condivise', kvCut(kvUtf8(implode(', ', array_column($common, 'chiave'))), 190));
    }
    return kvQuery("INSERT IGNORE INTO kv_disponibilita (tipo, chiave, disponibile, quantita) SELECT 'V',"
        . " LEFT(CONCAT(o.ID, '.', c.OpID, '.', c.codice), 100), disponibile, quantita FROM kv_disponibilita d INNER JOIN"
        . " $offered") !== null
        && kvQuery("DELETE FROM kv_disponibilita WHERE tipo = 'O'") !== null;
}

/** The texts of a table without numeric references. */
function kvReplaceReferences(string $table): bool
{
    $columns = ['kv_clienti' => array_merge(['nome', 'cognome', 'rsoc', 'piva', 'indirizzo', 'cap', 'citta', 'provincia'],
        ['paese', 'telefono']), 'kv_ordini' => ['nome', 'metodo', 'valuta', 'riepilogo']][$table] ?? [];
    foreach ($columns as $column) {
        $rows = kvQuery("SELECT id, $column AS testo FROM $table WHERE INSTR($column, '&#') > 0");
        foreach ($rows ?? [] as $row) {
            if (kvQuery("UPDATE $table SET $column = ? WHERE id = ?",
                [kvWithoutReferences((string) $row['testo']), (int) $row['id']]) === null) {
                return false;
            }
        }
        if ($rows === null) {
            return false;
        }
    }
    return true;
}
