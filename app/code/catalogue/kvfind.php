<?php
// ***1.0.7***
// Finds articles by the index of words (kvindex.php). Each word of a request is looked up among the words of the shop,
// whole or in part; results come by where the word is (title, code, texts) and how (whole, beginning, inside). A request
// word with marks inside, as "l'olio", must also be in the article as it was typed: as a sequence (kvsequence.php), or, where
// that doesn't say it all, in its texts.

include_once "kvtables.php";
include_once "kvset.php";
include_once "kvsequence.php";
include_once "kvfound.php";

/** Most words of the shop for which a single character is looked up: of more, nearly every article has one. */
const KV_SHORT_WORDS = 300;
/** Most articles whose texts are read one by one; of more, all are. Those of one statement. */
const KV_TEXTS_READ = 20000;
const KV_TEXTS_TOGETHER = 5000;

/** Whether the index is there and can answer: one of an earlier release only words without marks where any is enough. */
function kvIsIndexReady(array $kept, array $words, bool $all): bool
{
    return (int) $kept['indice'] >= ($all || array_filter($words, 'kvHasMarks') === [] ? KV_INDEX_OF_SETS : KV_INDEX_OF_SEQUENCES);
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

/** The articles that have a word as a part of a request asks, by points: where it is, and in which form. */
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
function kvTextSet(array $words, bool $wholeWords, string $among): ?string
{
    $table = kvLanguageTable('articoli');
    $values = [];
    // The statement names a table of the index: it speaks UTF-8.
    $condition = kvFromCp1252(kvWordsCondition($words, true, $wholeWords, $values));
    $values = array_map('kvFromCp1252', $values);
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

/** The sets by points of each part that the index is asked for some words; null when the server refused a question. */
function kvSetsOfParts(array $words, bool $wholeWords, int $length): ?array
{
    $parts = [];
    foreach (kvRequestParts($words) as $pattern => $piece) {
        $whole = $wholeWords || (string) $pattern === addcslashes($piece, '%_\\');
        $parts[] = kvPartSets((string) $pattern, $piece, $whole, $length);
    }
    return in_array(null, $parts, true) ? null : $parts;
}

/**
 * Sets by points without the articles that lack a word with marks; null when the server refused a question. `texts` gets the
 * words for which texts were read; an index of an earlier release has no sequences.
 */
function kvWithMarkedWords(?array $sets, array $words, bool $wholeWords, bool $hasSequences, array &$texts): ?array
{
    if ($sets === null || $sets === [] || $words === []) {
        return $sets;
    }
    $among = array_reduce($sets, fn(string $before, string $bits): string => $before | $bits, '');
    foreach ($hasSequences ? $words : [] as $word) {
        $having = kvSequenceSet($word, $wholeWords, strlen($among));
        if ($having === null) {
            return null;
        }
        $among &= $having;
    }
    $rest = array_values(array_filter($words, fn($word) => !$hasSequences || !kvIsSequence($word)));
    $texts = array_merge($texts, $rest);
    $having = $rest === [] || trim($among, "\0") === '' ? $among : kvTextSet($rest, $wholeWords, $among);
    return $having === null ? null : array_map(fn(string $bits): string => $bits & $among & $having, $sets);
}

/** The articles that have all words of a request, by points; null when the server refused a question. See kvWithMarkedWords. */
function kvSetsOfAll(array $words, bool $wholeWords, bool $hasSequences, int $length, array &$texts): ?array
{
    $parts = kvSetsOfParts($words, $wholeWords, $length);
    // Words of single characters that most articles have are no part of what the index was asked.
    $marked = array_values(array_filter($words, fn($word) => $parts === [] || kvHasMarks($word)));
    return $parts === null ? null
        : kvWithMarkedWords(kvJoinParts($parts, true, $length), $marked, $wholeWords, $hasSequences, $texts);
}

/** The articles that have any word of a request, by points; null when the server refused a question. See kvWithMarkedWords. */
function kvSetsOfAny(array $words, bool $wholeWords, int $length, array &$texts): ?array
{
    $marked = array_filter($words, 'kvHasMarks');
    $parts = kvSetsOfParts(array_values(array_diff($words, $marked)), $wholeWords, $length);
    foreach ($parts === null ? [] : $marked as $word) {
        $parts[] = kvSetsOfAll([$word], $wholeWords, true, $length, $texts);
    }
    return $parts === null || in_array(null, $parts, true) ? null : kvJoinParts($parts, false, $length);
}

/** What the index finds for a request; null when the server refused a question. See kvWithMarkedWords. */
function kvFindSets(array $words, bool $all, bool $wholeWords, bool $hasSequences): ?KvFound
{
    list($length, $late) = kvSetLength() ?? [null, ''];
    if (!$length) {
        return $length === null ? null : new KvFound([], '');
    }
    $texts = [];
    $sets = $all ? kvSetsOfAll($words, $wholeWords, $hasSequences, $length, $texts)
        : kvSetsOfAny($words, $wholeWords, $length, $texts);
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
