<?php
// ***1.0.7***
// The stock: how many pieces there are of what the back office limits in kv_disponibilita, and what lines want of it.
// A key is the kind and what it is about: A and an article's number; V and article, variant and code of a value, so that
// the size M of an apron is another thing than that of a shirt. What has no row is there without limit.

/** The key of a variant's value of one article. */
function kvValueKey(int $article, int $variant, string $code): string
{
    return 'V' . substr("$article.$variant.$code", 0, 100);
}

/**
 * How many pieces there are of each key of kv_disponibilita; keys without a limit are missing, 0 is sold out. With
 * `reserve`, inside a transaction, the rows are held until its end. Null when the server refused.
 */
function kvStock(array $keys, bool $reserve = false): ?array
{
    if ($keys === []) {
        return [];
    }
    // In the order of the key, so that two orders that want the same pieces wait for one another.
    sort($keys, SORT_STRING);
    $values = [];
    foreach ($keys as $key) {
        array_push($values, $key[0], substr($key, 1, 100));
    }
    $lines = kvQuery('SELECT tipo, chiave, disponibile, quantita FROM kv_disponibilita WHERE (tipo, chiave) IN ('
        . implode(',', array_fill(0, count($keys), '(?,?)')) . ') ORDER BY tipo, chiave'
        . ($reserve ? ' FOR UPDATE' : ''), $values);
    if ($lines === null) {
        return null;
    }
    $stock = [];
    foreach ($lines as $line) {
        $stock[$line['tipo'] . $line['chiave']] = kvRowPieces($line);
    }
    return array_filter($stock, fn($pieces) => $pieces !== null);
}

/** How many pieces of each key the lines want together. */
function kvWantedPieces(array $lines): array
{
    $requests = [];
    foreach ($lines as $line) {
        foreach ($line['scorte'] as $key) {
            $requests[$key] = ($requests[$key] ?? 0) + $line['quantita'];
        }
    }
    return $requests;
}

/** The most pieces of a line that its stock allows, all other lines left as they are; null without a limit. */
function kvMostPieces(array $line, array $requests, array $stock): ?int
{
    $most = null;
    foreach ($line['scorte'] as $key) {
        if (isset($stock[$key])) {
            $rest = max(0, $stock[$key] - $requests[$key] + $line['quantita']);
            $most = $most === null ? $rest : min($most, $rest);
        }
    }
    return $most;
}

/** How many pieces a row of kv_disponibilita leaves; null without a limit. */
function kvRowPieces(array $line): ?int
{
    return !$line['disponibile'] ? 0 : ($line['quantita'] === null ? null : max(0, (int) $line['quantita']));
}

/**
 * The keys of an article's values that are sold out. A department page has them beside the article; a row from elsewhere
 * costs a query.
 */
function kvSoldOutValues(array $line): array
{
    static $read = [];
    $id = (int) ($line['ID'] ?? 0);
    if (!isset($read[$id])) {
        $list = array_key_exists('esauriti', $line) ? (string) $line['esauriti']
            : (string) (kvRiga('SELECT ' . sprintf(KV_SOLD_OUT, '?') . ' AS esauriti', ["$id.%"])['esauriti'] ?? '');
        $read[$id] = $list === '' ? [] : array_fill_keys(explode("\n", $list), true);
    }
    return $read[$id];
}

/** Whether a value of an article can be had. */
function kvIsValueAvailable(array $line, int $variant, string $code): bool
{
    return $code === ''
        || !isset(kvSoldOutValues($line)[substr(kvValueKey((int) $line['ID'], $variant, $code), 1)]);
}

/** Whether each variant of an article has a value that can be had. */
function kvAreVariantsAvailable(array $line): bool
{
    foreach (kvRowVariants($line, (int) $GLOBALS['listino']) as $id) {
        $free = 0;
        foreach (kvVariantValues($id)['entries'] ?? [['code' => '']] as $entry) {
            $free += kvIsValueAvailable($line, $id, $entry['code']) ? 1 : 0;
        }
        if ($free === 0) {
            return false;
        }
    }
    return true;
}
