<?php
// ***1.0.7***
// The index of words (kvindex.php) brought up to what some articles have become: which of them differ from it, and what they
// change in it. All of it in the transaction of the load.

/** So many articles at least, and one of so many, may be out of their order before new positions are given. */
const KV_LATE_ARTICLES = 1000;
const KV_LATE_SHARE = 10;

/**
 * The numbers of the articles whose words the index doesn't have as they are in the tables, those gone included; null
 * when there is no index, or when so many of them differ, or are out of their order, that to rebuild it is less work.
 */
function kvDifferingArticles(array $tables, string $language): ?array
{
    list($articles, $cartText) = $tables;
    if (!kvIsIndexCurrent($language)) {
        return null;
    }
    kvSetCharset('latin1');
    $result = mysqli_query(kvConnection(), "SELECT a.ID FROM $articles a LEFT JOIN $cartText d ON d.ID = a.ID LEFT JOIN"
        . " kv_voci$language v ON v.articolo = a.ID WHERE v.articolo IS NULL OR v.segno <> " . KV_DIGEST);
    $count = mysqli_query(kvConnection(), "SELECT COUNT(*), (SELECT COUNT(*) FROM kv_voci$language) FROM $articles");
    if (!$result instanceof mysqli_result || !$count instanceof mysqli_result) {
        return null;
    }
    $numbers = array_column(mysqli_fetch_all($result), 0);
    list($rows, $entries) = mysqli_fetch_row($count);
    if ($numbers !== [] || $rows !== $entries) {
        $result = mysqli_query(kvConnection(), "SELECT articolo FROM kv_voci$language LEFT JOIN $articles a ON a.ID = articolo"
            . ' WHERE a.ID IS NULL');
        if (!$result instanceof mysqli_result) {
            return null;
        }
        $numbers = array_values(array_unique(array_merge($numbers, array_column(mysqli_fetch_all($result), 0))));
    }
    $late = (int) (kvRiga("SELECT quanti FROM kv_insiemi$language WHERE parola = ?", [KV_LATE])['quanti'] ?? 0);
    $most = max(KV_LATE_ARTICLES, intdiv((int) $rows, KV_LATE_SHARE));
    return count($numbers) * 4 > (int) $rows || $late > $most ? null : $numbers;
}

/** Of some articles those whose words the index doesn't have as they are in the tables, those gone included. */
function kvDifferingAmong(array $numbers, array $tables, string $language): array
{
    list($articles, $cartText) = $tables;
    kvSetCharset('latin1');
    $differing = [];
    foreach (array_chunk($numbers, KV_ARTICLES_TOGETHER) as $some) {
        $list = implode(',', array_map('intval', $some));
        $result = mysqli_query(kvConnection(), "SELECT a.ID FROM $articles a LEFT JOIN $cartText d ON d.ID = a.ID LEFT JOIN"
            . " kv_voci$language v ON v.articolo = a.ID WHERE a.ID IN ($list) AND (v.articolo IS NULL OR v.segno <> " . KV_DIGEST
            . ") UNION SELECT articolo FROM kv_voci$language LEFT JOIN $articles a ON a.ID = articolo WHERE articolo IN ($list)"
            . ' AND a.ID IS NULL');
        $differing[] = $result instanceof mysqli_result ? array_column(mysqli_fetch_all($result), 0) : $some;
    }
    return $differing === [] ? [] : array_merge(...$differing);
}

/** Reads the words of some articles again, in the transaction of the load. The failure. */
function kvRereadArticles(array $numbers, array $tables, string $language): string
{
    foreach (array_chunk($numbers, KV_ARTICLES_TOGETHER) as $some) {
        $list = implode(',', array_map('intval', $some));
        $rows = kvIndexArticles($tables, "a.ID IN ($list)", -2147483648);
        $former = kvQuery("SELECT v.articolo, titolo, posizione, parole FROM kv_voci$language v INNER JOIN kv_parole$language USING (articolo)"
            . " WHERE v.articolo IN ($list)");
        if ($rows === null || $former === null) {
            return kvSqlFailure("SELECT FROM $tables[0]");
        }
        $changes = kvChangedSets($rows, array_column($former, null, 'articolo'),
            (int) (kvRiga("SELECT MAX(posizione) + 1 AS n FROM kv_voci$language")['n'] ?? 0));
        $failure = kvRunSql("DELETE FROM kv_parole$language WHERE articolo IN ($list)");
        $failure = $failure === '' ? kvRunSql("DELETE FROM kv_voci$language WHERE articolo IN ($list)") : $failure;
        $failure = $failure === '' ? kvWriteChanges($changes, $language) : $failure;
        if ($failure !== '') {
            return $failure;
        }
    }
    return '';
}

/**
 * What some articles change in the index: the rows that they have now, and of each set by its name the positions that come
 * into it (true) or leave it (false). An article keeps its position; `next` is the first one that none has.
 */
function kvChangedSets(array $rows, array $former, int $next): KvIndexRows
{
    $changes = new KvIndexRows();
    $present = [];
    foreach ($rows as $row) {
        $before = $former[$row['ID']] ?? null;
        $position = $before === null ? $next++ : (int) $before['posizione'];
        $names = kvSetNames($row);
        list($changes->entries[], $changes->words[]) = kvIndexRows($row, $names, $position);
        $had = $before === null ? [] : explode(' ', $before['parole']);
        $late = $before === null || $before['titolo'] !== kvIndexTitle($row) ? ['0' . KV_LATE] : [];
        foreach (array_diff($had, $names) as $name) {
            $changes->sets[$name][$position] = false;
        }
        foreach (array_merge(array_diff($names, $had), $late) as $name) {
            $changes->sets[$name][$position] = true;
        }
        $present[$row['ID']] = true;
    }
    foreach (array_diff_key($former, $present) as $gone) {
        foreach (array_merge(explode(' ', $gone['parole']), ['0' . KV_LATE]) as $name) {
            $changes->sets[$name][(int) $gone['posizione']] = false;
        }
    }
    return $changes;
}

/** Writes what some articles change. The failure. */
function kvWriteChanges(KvIndexRows $changes, string $language): string
{
    kvSetCharset('utf8mb4');
    $names = array_keys(array_filter($changes->sets, fn($positions) => in_array(true, $positions, true)));
    $failure = kvInsertRows("INSERT INTO kv_parole$language", $changes->words);
    $failure = $failure === '' ? kvInsertRows("INSERT INTO kv_voci$language", $changes->entries) : $failure;
    $failure = $failure === '' ? kvWriteVocabulary($names, '', $language) : $failure;
    foreach ($failure === '' ? array_chunk($changes->sets, KV_SETS_TOGETHER, true) : [] as $some) {
        $failure = $failure === '' ? kvChangeSets($some, "kv_insiemi$language") : $failure;
    }
    return $failure;
}

/** Puts positions into sets and takes others out, by the names of the sets. The failure. */
function kvChangeSets(array $changes, string $table): string
{
    $words = array_map(fn($name) => substr((string) $name, 1), array_keys($changes));
    $stored = kvQuery("SELECT CONCAT(rango, parola) AS nome, quanti, insieme FROM $table WHERE parola IN ("
        . implode(',', array_fill(0, count($words), '?')) . ')', $words);
    if ($stored === null) {
        return kvSqlFailure("SELECT FROM $table");
    }
    $stored = array_column($stored, null, 'nome');
    $rows = [];
    foreach ($changes as $name => $positions) {
        $set = $stored[$name] ?? ['quanti' => 0, 'insieme' => ''];
        $bits = kvIsList((int) $set['quanti'], $set['insieme']) ? kvSetOf(unpack('V*', $set['insieme'])) : $set['insieme'];
        $bits = str_pad($bits, (max(array_keys($positions)) >> 3) + 1, "\0");
        $gone = kvWithPositions(str_repeat("\0", strlen($bits)), array_keys($positions, false, true));
        $bits = kvWithPositions($bits, array_keys($positions, true, true)) & ~$gone;
        $rows[] = kvSetRow((string) $name, ...kvSetToStore($bits));
    }
    return kvInsertRows("REPLACE INTO $table", $rows);
}

/**
 * The words of the changed articles. Their codes are in one table for all languages, which the first one brings: what it
 * brings for others shows in its own marks as well. Most changes are of prices, which have no words.
 */
function kvIndexChanged(KvLoad $load): string
{
    $numbers = array_keys($load->articles);
    foreach ($load->language === '' ? ['', '_l2', '_l3', '_l4'] : [$load->language] as $language) {
        if (!kvIsIndexCurrent($language)) {
            continue;
        }
        $tables = ["articoli$language", 'dettaglio'];
        $differing = kvDifferingAmong($numbers, $tables, $language);
        $failure = kvRereadArticles($differing, $tables, $language);
        if ($failure !== '') {
            return $failure;
        }
        $numbers = $language === '' ? $differing : $numbers;
    }
    return '';
}
