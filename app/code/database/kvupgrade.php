<?php
// ***1.0.7***
// Brings the server's own tables of an earlier release up to date. Each step leaves what it finds done as it is, so that
// one which was interrupted is simply taken again; the number in kv_stato is written when all of them have been taken.

/** Takes the steps that are missing, one caller at a time. */
function kvAggiornaTabelle(): void
{
    static $in_corso = false;
    if ($in_corso || (int) kvStato('tabelle') >= KV_TABELLE) {
        return;
    }
    $in_corso = true;
    $blocco = kvRiga("SELECT GET_LOCK(CONCAT(DATABASE(), '.kv_tabelle'), 60) AS mio");
    if ((int) ($blocco['mio'] ?? 0) === 1) {
        if (kvTabelleInUtf8() && kvColonneNuove() && kvScortePerArticolo()) {
            kvMettiStato('tabelle', (string) KV_TABELLE);
        }
        kvQuery("SELECT RELEASE_LOCK(CONCAT(DATABASE(), '.kv_tabelle'))");
    }
    $in_corso = false;
}

/** The tables of visitors' words in UTF-8, where an earlier release kept references for what Windows-1252 lacks. */
function kvTabelleInUtf8(): bool
{
    $tabelle = kvQuery("SELECT TABLE_NAME AS nome FROM information_schema.TABLES WHERE TABLE_SCHEMA = DATABASE()"
        . " AND TABLE_NAME IN ('kv_clienti', 'kv_ordini', 'kv_richieste') AND TABLE_COLLATION NOT LIKE 'utf8mb4%'");
    foreach ($tabelle ?? [] as list('nome' => $nome)) {
        if (kvQuery("ALTER TABLE $nome CONVERT TO CHARACTER SET utf8mb4") === null || !kvRiferimentiInTabella($nome)) {
            return false;
        }
    }
    return $tabelle !== null;
}

/** The columns that earlier releases didn't have. */
function kvColonneNuove(): bool
{
    foreach (['kv_clienti' => ['provato', 'TINYINT NOT NULL DEFAULT 0'], 'kv_richieste' => ['dati', 'TEXT NULL'],
              'kv_ordini' => ['modificato', KV_MODIFICATO . ', ADD KEY modificato (modificato, id)']]
             as $tabella => list($colonna, $tipo)) {
        $righe = kvQuery('SELECT COLUMN_NAME FROM information_schema.COLUMNS WHERE TABLE_SCHEMA = DATABASE()'
            . ' AND TABLE_NAME = ? AND COLUMN_NAME = ?', [$tabella, $colonna]);
        if ($righe === null || ($righe === [] && kvQuery("ALTER TABLE $tabella ADD COLUMN $colonna $tipo") === null)) {
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
function kvScortePerArticolo(): bool
{
    if ((kvRiga("SELECT COUNT(*) AS n FROM kv_disponibilita WHERE tipo = 'O'")['n'] ?? 0) == 0) {
        return true;
    }
    $offerti = "opcodici c ON CONVERT(c.codice USING latin1) COLLATE latin1_bin = d.chiave INNER JOIN dettaglio o"
        . " ON c.OpID IN (" . kvColonneVarianti('o') . ") WHERE d.tipo = 'O'";
    $comuni = kvQuery("SELECT d.chiave FROM kv_disponibilita d INNER JOIN $offerti AND d.quantita > 0 GROUP BY d.chiave"
        . ' HAVING COUNT(DISTINCT o.ID) > 1 ORDER BY d.chiave');
    if ($comuni === null) {
        return false;
    }
    if ($comuni !== []) {
        kvMettiStato('scorte_condivise', kvCut(kvUtf8(implode(', ', array_column($comuni, 'chiave'))), 190));
    }
    return kvQuery("INSERT IGNORE INTO kv_disponibilita (tipo, chiave, disponibile, quantita) SELECT 'V',"
        . " LEFT(CONCAT(o.ID, '.', c.OpID, '.', c.codice), 100), disponibile, quantita FROM kv_disponibilita d INNER JOIN"
        . " $offerti") !== null
        && kvQuery("DELETE FROM kv_disponibilita WHERE tipo = 'O'") !== null;
}

/** The texts of a table without numeric references. */
function kvRiferimentiInTabella(string $tabella): bool
{
    $colonne = ['kv_clienti' => array_merge(['nome', 'cognome', 'rsoc', 'piva', 'indirizzo', 'cap', 'citta', 'provincia'],
        ['paese', 'telefono']), 'kv_ordini' => ['nome', 'metodo', 'valuta', 'riepilogo']][$tabella] ?? [];
    foreach ($colonne as $colonna) {
        $righe = kvQuery("SELECT id, $colonna AS testo FROM $tabella WHERE INSTR($colonna, '&#') > 0");
        foreach ($righe ?? [] as $riga) {
            if (kvQuery("UPDATE $tabella SET $colonna = ? WHERE id = ?",
                [kvWithoutReferences((string) $riga['testo']), (int) $riga['id']]) === null) {
                return false;
            }
        }
        if ($righe === null) {
            return false;
        }
    }
    return true;
}
