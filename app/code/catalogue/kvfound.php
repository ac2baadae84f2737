<?php
// ***1.0.7***
// Results of searches that found much, kept until the next load: to find and order thousands of articles takes longer than
// to read which they are. What is kept are numbers of articles in their order, never their words or prices.
include_once "kvtables.php";

/** Most numbers kept of a search; further pages of results are read as before. */
const KV_KEPT_NUMBERS = 500;
/**
 * Searches that found fewer aren't kept: they are quick, and there is no end of them. Those that found nothing are, for
 * they looked through all words of the shop; of too many they go first.
 */
const KV_WORTH_KEEPING = 100;
/** Most searches kept. */
const KV_SEARCHES = 2000;

/**
 * A search as it is looked for among those kept: `chiave` is made of all that its result depends on within a load. With
 * it `carico` (the mark of the load), `indice` (that of its index of words), `quanti` and `numeri`, null where nothing is
 * kept.
 */
function kvKeptSearch(array $request): array
{
    $language = $GLOBALS['Lingua'];
    $key = md5(serialize([$language, $GLOBALS['listino'], $request]));
    // By one question without bound values, which take two more trips to the server.
    $sql = "SELECT s.valore AS carico, i.valore AS indice, l.valore AS laterali, r.quanti, r.numeri FROM kv_stato s LEFT JOIN"
        . " kv_stato i ON i.nome = 'indice$language' LEFT JOIN kv_stato l ON l.nome = 'laterali' LEFT JOIN kv_ricerche r ON"
        . " r.chiave = '$key' AND r.carico = s.valore WHERE s.nome = 'carico'";
    $result = mysqli_query(kvConnection(), $sql);
    $row = $result instanceof mysqli_result ? mysqli_fetch_assoc($result) : kvRiga($sql);
    if ($row === null) {
        return ['chiave' => $key, 'carico' => '', 'indice' => kvStoredValue('indice' . $language), 'quanti' => null, 'numeri' => null];
    }
    kvRememberStates(array_filter(['carico' => $row['carico'], "indice$language" => $row['indice'], 'laterali' => $row['laterali']],
        'is_string'));
    return ['chiave' => $key, 'indice' => (string) $row['indice']] + $row;
}

/** The numbers kept of a search; null where none are. */
function kvKeptNumbers(array $kept): ?array
{
    return $kept['quanti'] === null ? null : ($kept['numeri'] === '' ? [] : array_map('intval', explode(',', $kept['numeri'])));
}

/** Keeps a search under the load that it was made on; now and then sweeps those of former loads. */
function kvKeepSearch(array $kept, int $count, array $numbers): void
{
    list('chiave' => $key, 'carico' => $load) = $kept;
    if ($load === '') {
        return;
    }
    kvQuery('REPLACE INTO kv_ricerche (chiave, carico, quanti, numeri) VALUES (?, ?, ?, ?)',
        [$key, $load, $count, implode(',', $numbers)]);
    if (random_int(1, 20) === 1) {
        $stored = (int) (kvRiga('SELECT COUNT(*) AS n FROM kv_ricerche')['n'] ?? 0) > KV_SEARCHES;
        kvQuery('DELETE FROM kv_ricerche WHERE carico <> ?' . ($stored ? ' OR quanti = 0' : ''), [$load]);
        if ($stored && kvRigheToccate() === 0) {
            kvQuery('DELETE FROM kv_ricerche');
        }
    }
}

/**
 * What a search finds, null when the server refused it, and the first numbers. Positions hold within one load: where another
 * has come in the midst, it is made once more.
 */
function kvFoundInOneLoad(array &$kept, callable $search): array
{
    for ($tries = 1; true; $tries++) {
        $found = $search();
        $numbers = $found === null ? [] : $found->numbers(KV_KEPT_NUMBERS, 0);
        $load = (string) (kvDirectRows("SELECT valore FROM kv_stato WHERE nome = 'carico'")[0]['valore'] ?? '');
        if ($tries > 1 || $load === $kept['carico']) {
            return [$found, $numbers];
        }
        $kept['carico'] = $load;
    }
}

/**
 * How many articles a search finds and the numbers of one page of them, in their order. `search` finds them (KvFound, null
 * when the server refused); it is asked only for what isn't kept. `page` becomes that of the page that there is.
 */
function kvFoundNumbers(array $kept, callable $search, int $perPage, int &$page): array
{
    $numbers = kvKeptNumbers($kept);
    $count = (int) $kept['quanti'];
    $found = null;
    if ($numbers === null) {
        list($found, $numbers) = kvFoundInOneLoad($kept, $search);
        $count = $found === null ? 0 : $found->count;
        if ($found !== null && ($found->wereTextsRead || $count === 0 || $count >= KV_WORTH_KEEPING)) {
            kvKeepSearch($kept, $count, $numbers);
        }
    }
    $page = max(1, min($page, (int) ceil($count / $perPage)));
    $after = ($page - 1) * $perPage;
    if ($after + $perPage <= count($numbers) || count($numbers) === $count) {
        return [$count, array_slice($numbers, $after, $perPage)];
    }
    $found = $found ?? $search();
    return [$count, $found !== null ? $found->numbers($perPage, $after) : []];
}
