<?php
// ***1.0.7***
// Finds articles by the index of words (kvindex.php). Each word of a request is looked up among the words of the shop,
// whole or in part; results come by where the word is (title, code, texts) and how (whole, beginning, inside). A request
// word with marks inside, as "l'olio", must also be in the article as it was typed.

include_once "kvtables.php";
include_once "kvset.php";
include_once "kvfound.php";

/** Most words of the shop for which a single character is looked up: of more, nearly every article has one. */
const KV_SHORT_WORDS = 300;
/** Most articles whose texts are read one by one; of more, all are. Those of one statement. */
const KV_TEXTS_READ = 20000;
const KV_TEXTS_TOGETHER = 5000;

/** Whether the index is there and can answer: where any word is enough, words without marks. */
function kvIsIndexReady(array $kept, array $words, bool $all): bool
{
    return (int) $kept['indice'] >= KV_INDEX_OF_SETS && ($all || array_filter($words, 'kvHasMarks') === []);
}

/**
 * What the index is asked for a request word, by the pattern of the words that it stands for: the word anywhere in them;
 * of one with marks its parts of at least so many characters, which end a word before a mark and begin one after it.
 */
function kvWordParts(string $word, int $atLeast = 2): array
{
    preg_match_all('/[\p{L}\p{N}\p{M}]+/u', kvFold(kvUtf8($word)), $found);
    $pieces = [];
    foreach ($found[0] as $n => $piece) {
        if (kvLength($piece) >= $atLeast) {
            $last = $n === count($found[0]) - 1;
            $pieces[($n === 0 ? '%' : '') . addcslashes($piece, '%_\\') . ($last ? '%' : '')] = $piece;
        }
    }
    return $pieces;
}

/** Whether a request word holds other than characters and digits. */
function kvHasMarks(string $word): bool
{
    return preg_match('/^[\p{L}\p{N}\p{M}]+$/uD', kvUtf8($word)) !== 1;
}

/** Whether so few words of the shop fit a pattern. */
function kvAreWordsFew(string $pattern, int $most): bool
{
    $rows = kvQuery('SELECT parola FROM kv_vocaboli' . $GLOBALS['Lingua'] . ' WHERE parola LIKE ? LIMIT ' . ($most + 1),
        [$pattern]);
    return $rows !== null && count($rows) <= $most;
}

/** The SELECT of the sets of one word, or of all words that a pattern fits. */
function kvSetsSql(bool $one): string
{
    $language = $GLOBALS['Lingua'];
    return 'SELECT STRAIGHT_JOIN i.parola, rango, quanti, insieme FROM ' . ($one ? "kv_insiemi$language i WHERE i.parola = ?"
        : "kv_vocaboli$language w INNER JOIN kv_insiemi$language i ON i.parola = w.parola WHERE w.parola LIKE ?");
}

/** The articles that have a word as a part of a request asks, by points: where it is, and how it stands there. */
function kvPartSets(string $pattern, string $piece, bool $whole, int $length): ?array
{
    return kvSetsByPoints(kvSetsSql($whole), [$whole ? $piece : $pattern], fn(string $word, int $rank): int => $rank * 3
        + ($whole || $word === $piece ? 0 : (strncmp($word, $piece, strlen($piece)) === 0 ? 1 : 2)), $length);
}

/**
 * The bytes of a set, and the articles that are not where their titles belong; no byte where there is no article, null when
 * the server refused it.
 */
function kvSetLength(): ?array
{
    $language = $GLOBALS['Lingua'];
    $late = KV_LATE;
    $row = kvDirectRows("SELECT (SELECT MAX(posizione) FROM kv_voci$language) AS ultima, quanti, insieme FROM (SELECT 1) t LEFT JOIN"
        . " kv_insiemi$language ON parola = '$late'")[0] ?? null;
    if ($row === null) {
        return null;
    }
    $length = $row['ultima'] === null ? 0 : ((int) $row['ultima'] >> 3) + 1;
    return [$length, kvStoredBits((int) $row['quanti'], (string) $row['insieme'], $length)];
}

/** The sets without the articles of departments that are closed to the visitor or hidden; null when the server refused it. */
function kvOpenSets(array $sets, int $length): ?array
{
    $closed = kvQuery('SELECT ID FROM categorie WHERE inaccessibile' . ($GLOBALS['listino'] ?: '') . ' OR nascosto');
    $names = array_map(fn($row) => kvDepartmentWord((string) $row['ID']), $closed ?? []);
    $closedSets = $sets === [] || $names === [] ? [] : kvSetsByPoints("SELECT parola, rango, quanti, insieme FROM kv_insiemi{$GLOBALS['Lingua']} WHERE"
        . ' parola IN (' . implode(',', array_fill(0, count($names), '?')) . ')', $names, fn(): int => 0, $length);
    $hidden = $closedSets[0] ?? '';
    return $closed === null || $closedSets === null ? null
        : ($hidden === '' ? $sets : array_map(fn(string $bits): string => $bits & ~$hidden, $sets));
}

/** The articles of a set whose texts have some words as they were typed; null when the server refused to look. */
function kvTextSet(array $words, bool $all, bool $wholeWords, string $among): ?string
{
    $table = kvLanguageTable('articoli');
    $values = [];
    $condition = kvWordsCondition($words, $all, $wholeWords, $values);
    $found = str_repeat("\0", strlen($among));
    $positions = kvSetCount($among) > KV_TEXTS_READ ? [] : kvPositions($among);
    foreach ($positions === [] ? [''] : array_chunk($positions, KV_TEXTS_TOGETHER) as $some) {
        // In the order of the articles, as the texts lie there.
        $chosen = $some === '' ? "kv_voci{$GLOBALS['Lingua']}" : "(SELECT articolo, posizione FROM kv_voci{$GLOBALS['Lingua']}"
            . ' WHERE posizione IN (' . implode(',', $some) . ') ORDER BY articolo LIMIT ' . KV_TEXTS_TOGETHER . ')';
        $rows = kvQuery("SELECT STRAIGHT_JOIN v.posizione FROM $chosen v INNER JOIN $table ON $table.ID = v.articolo INNER JOIN dettaglio"
            . " ON dettaglio.ID = v.articolo WHERE $condition", $values);
        if ($rows === null) {
            return null;
        }
        $found = kvWithPositions($found, array_map('intval', array_column($rows, 'posizione')));
    }
    return $found;
}

/**
 * What the index is asked for all words of a request. Where those have single characters alone ("a-b"), the ones that
 * few words of the shop begin or end with; empty when only the texts themselves can tell.
 */
function kvRequestParts(array $words): array
{
    $pieces = $shorts = [];
    foreach ($words as $word) {
        $pieces += kvWordParts($word);
        $shorts += kvWordParts($word, 1);
    }
    return $pieces !== [] ? $pieces : array_filter($shorts,
        fn($pattern) => kvAreWordsFew((string) $pattern, KV_SHORT_WORDS), ARRAY_FILTER_USE_KEY);
}

/** What the index finds for a request; null when the server refused a question. */
function kvFindSets(array $words, bool $all, bool $wholeWords): ?KvFound
{
    list($length, $late) = kvSetLength() ?? [null, ''];
    if (!$length) {
        return $length === null ? null : new KvFound([], '');
    }
    $parts = [];
    foreach (kvRequestParts($words) as $pattern => $piece) {
        $whole = $wholeWords || (string) $pattern === addcslashes($piece, '%_\\');
        $parts[] = kvPartSets((string) $pattern, $piece, $whole, $length);
    }
    if (in_array(null, $parts, true)) {
        return null;
    }
    $sets = kvJoinParts($parts, $all, $length);
    // Words of single characters that most articles have are no part of what the index was asked.
    $texts = array_values(array_filter($words, fn($word) => $parts === [] || kvHasMarks($word)));
    if ($sets !== [] && $texts !== []) {
        $among = array_reduce($sets, fn(string $before, string $bits): string => $before | $bits, '');
        $read = kvTextSet($texts, $all, $wholeWords, $among);
        $sets = $read === null ? null : array_map(fn(string $bits): string => $bits & $read, $sets);
    }
    $open = $sets === null ? null : kvOpenSets($sets, $length);
    return $open === null ? null : new KvFound($open, $late, $texts !== []);
}

/** How many articles the index finds, the rows of one page of results in their order, and the number of that page. */
function kvFindByIndex(array $kept, callable $search, int $perPage, int $page): array
{
    list($count, $numbers) = kvFoundNumbers($kept, $search, $perPage, $page);
    return [$count, kvFoundRows($numbers), $page];
}

/** The rows of results by the numbers of their articles, in that order. */
function kvFoundRows(array $numbers): array
{
    $rows = kvArticles($numbers);
    return array_values(array_filter(array_map(fn($number) => $rows[$number] ?? null, $numbers)));
}
