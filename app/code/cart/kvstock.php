<?php
// ***1.0.7***
// The stock: how many pieces there are of what the back office limits in kv_disponibilita, and what lines want of it.
// A key is the kind and what it is about: A and an article's number; V and article, variant and code of a value, so that
// the size M of an apron is another thing than that of a shirt. What has no row is there without limit.

/** The key of a variant's value of one article. */
function kvChiaveValore(int $articolo, int $variante, string $codice): string
{
    return 'V' . substr("$articolo.$variante.$codice", 0, 100);
}

/**
 * How many pieces there are of each key of kv_disponibilita; keys without a limit are missing, 0 is sold out. With
 * `riserva`, inside a transaction, the rows are held until its end. Null when the server refused.
 */
function kvScorte(array $chiavi, bool $riserva = false): ?array
{
    if ($chiavi === []) {
        return [];
    }
    // In the order of the key, so that two orders that want the same pieces wait for one another.
    sort($chiavi, SORT_STRING);
    $valori = [];
    foreach ($chiavi as $chiave) {
        array_push($valori, $chiave[0], substr($chiave, 1, 100));
    }
    $righe = kvQuery('SELECT tipo, chiave, disponibile, quantita FROM kv_disponibilita WHERE (tipo, chiave) IN ('
        . implode(',', array_fill(0, count($chiavi), '(?,?)')) . ') ORDER BY tipo, chiave'
        . ($riserva ? ' FOR UPDATE' : ''), $valori);
    if ($righe === null) {
        return null;
    }
    $scorte = [];
    foreach ($righe as $riga) {
        $scorte[$riga['tipo'] . $riga['chiave']] = kvPezziRiga($riga);
    }
    return array_filter($scorte, fn($pezzi) => $pezzi !== null);
}

/** How many pieces of each key the lines want together. */
function kvRichieste(array $righe): array
{
    $richieste = [];
    foreach ($righe as $riga) {
        foreach ($riga['scorte'] as $chiave) {
            $richieste[$chiave] = ($richieste[$chiave] ?? 0) + $riga['quantita'];
        }
    }
    return $richieste;
}

/** The most pieces of a line that its stock allows, all other lines left as they are; null without a limit. */
function kvMassimo(array $riga, array $richieste, array $scorte): ?int
{
    $massimo = null;
    foreach ($riga['scorte'] as $chiave) {
        if (isset($scorte[$chiave])) {
            $resto = max(0, $scorte[$chiave] - $richieste[$chiave] + $riga['quantita']);
            $massimo = $massimo === null ? $resto : min($massimo, $resto);
        }
    }
    return $massimo;
}

/** How many pieces a row of kv_disponibilita leaves; null without a limit. */
function kvPezziRiga(array $riga): ?int
{
    return !$riga['disponibile'] ? 0 : ($riga['quantita'] === null ? null : max(0, (int) $riga['quantita']));
}

/**
 * The keys of an article's values that are sold out. A department page has them beside the article; a row from elsewhere
 * costs a query.
 */
function kvValoriEsauriti(array $riga): array
{
    static $letti = [];
    $id = (int) ($riga['ID'] ?? 0);
    if (!isset($letti[$id])) {
        $elenco = array_key_exists('esauriti', $riga) ? (string) $riga['esauriti']
            : (string) (kvRiga('SELECT ' . sprintf(KV_SOLD_OUT, '?') . ' AS esauriti', ["$id.%"])['esauriti'] ?? '');
        $letti[$id] = $elenco === '' ? [] : array_fill_keys(explode("\n", $elenco), true);
    }
    return $letti[$id];
}

/** Whether a value of an article can be had. */
function kvValoreDisponibile(array $riga, int $variante, string $codice): bool
{
    return $codice === ''
        || !isset(kvValoriEsauriti($riga)[substr(kvChiaveValore((int) $riga['ID'], $variante, $codice), 1)]);
}

/** Whether each variant of an article has a value that can be had. */
function kvVariantiDisponibili(array $riga): bool
{
    foreach (kvRowVariants($riga, (int) $GLOBALS['listino']) as $id) {
        $libere = 0;
        foreach (kvVariantValues($id)['voci'] ?? [['codice' => '']] as $voce) {
            $libere += kvValoreDisponibile($riga, $id, $voce['codice']) ? 1 : 0;
        }
        if ($libere === 0) {
            return false;
        }
    }
    return true;
}
