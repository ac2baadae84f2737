<?php
// ***1.0.7***
// Finds articles by the index of words (kvindex.php). Each word of a request is looked up among the words of the shop,
// whole or in part; results come by where the word is (title, code, texts) and how (whole, beginning, inside). A request
// word with marks inside, as "l'olio", must also be in the article as it was typed.

include_once "kvtables.php";
include_once "kvfound.php";

/** Most words of the shop that one word of a request may stand for. */
const KV_SHOP_WORDS = 5000;
/** Most words of the shop for which a single character is looked up: of more, nearly every article has one. */
const KV_SHORT_WORDS = 300;
/** Most articles of the rarest part of a request that the other parts are asked about one by one. */
const KV_FEW_ARTICLES = 300;

/** Whether the index is there and can answer: where any word is enough, words without marks. */
function kvIsIndexReady(array $kept, array $words, bool $all): bool
{
    return $kept['indice'] !== '' && ($all || array_filter($words, 'kvHasMarks') === []);
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

/** The words of the shop that a pattern fits; null when there are too many to be told one by one. */
function kvShopWords(string $pattern, int $most = KV_SHOP_WORDS): ?array
{
    $rows = kvQuery('SELECT parola FROM kv_vocaboli' . $GLOBALS['Lingua'] . ' WHERE parola LIKE ? LIMIT ' . ($most + 1),
        [$pattern]);
    return $rows !== null && count($rows) <= $most ? array_column($rows, 'parola') : null;
}

/**
 * What a part of a request asks of a word: a condition, its values, and how many words it names; null where they are too
 * many to be told one by one.
 */
function kvPartCondition(string $pattern, string $piece, bool $whole): array
{
    $words = $whole ? [$piece] : kvShopWords($pattern);
    if ($words === null) {
        return ['parola LIKE ?', [$pattern], null];
    }
    return [$words === [] ? '1 = 0' : 'parola IN (' . implode(',', array_fill(0, count($words), '?')) . ')', $words, count($words)];
}

/**
 * The articles of the rarest part of a request; null where each part has more than a few. Of all other parts these articles
 * alone have to be looked at: a part that many have takes longest of all.
 */
function kvFewArticles(array $conditions): ?array
{
    $few = null;
    foreach ($conditions as list($where, $values, $count)) {
        // More words than these are in more articles.
        if ($count === null || $count > KV_FEW_ARTICLES) {
            continue;
        }
        $most = $few === null ? KV_FEW_ARTICLES : count($few) - 1;
        $rows = kvQuery("SELECT articolo FROM kv_parole{$GLOBALS['Lingua']} FORCE INDEX (PRIMARY) WHERE $where LIMIT "
            . ($most + 1), $values);
        if ($rows !== null && count($rows) <= $most) {
            $few = array_values(array_unique(array_map('intval', array_column($rows, 'articolo'))));
        }
    }
    return $few;
}

/**
 * The articles that have a word as a part of a request asks (kvPartCondition), as a SELECT of articolo and punti; values go
 * to `values`. With `few` only these are looked at. Without being told, the server would rather walk through all words in
 * the order of the articles, and with few of those through all articles of a word.
 */
function kvWordSelect(array $condition, string $piece, bool $whole, ?array $few, array &$values): string
{
    list($where, $words, $count) = $condition;
    $table = 'kv_parole' . $GLOBALS['Lingua'] . ($few === null ? '' : ' IGNORE INDEX (PRIMARY)');
    $where .= $few === null ? '' : ($few === [] ? ' AND 1 = 0' : ' AND articolo IN (' . implode(',', $few) . ')');
    if ($whole) {
        $values[] = $piece;
        return "SELECT articolo, rango * 3 AS punti FROM $table WHERE $where";
    }
    array_push($values, $piece, addcslashes($piece, '%_\\') . '%', ...$words);
    $points = 'rango * 3 + IF(parola = ?, 0, IF(parola LIKE ?, 1, 2))';
    // An article has a word once: of one word alone there is nothing to be put together.
    return $count === 1 ? "SELECT articolo, $points AS punti FROM $table WHERE $where"
        : "SELECT articolo, MIN($points) AS punti FROM $table" . ($few === null ? ' FORCE INDEX (PRIMARY)' : '')
            . " WHERE $where GROUP BY articolo";
}

/** The conditions that request words with marks inside put on an article besides; values go to `values`. */
function kvMarksCondition(array $words, bool $wholeWords, array &$values): string
{
    $marked = array_values(array_filter($words, 'kvHasMarks'));
    return $marked === [] ? '' : ' AND ' . kvWordsCondition($marked, true, $wholeWords, $values);
}

/** The condition that an article's department is open to the visitor and not hidden; values go to `values`. */
function kvDepartmentsCondition(array &$values): string
{
    $all = kvQuery('SELECT ID, inaccessibile' . ($GLOBALS['listino'] ?: '') . ' OR nascosto AS chiuso FROM categorie') ?? [];
    $closed = array_values(array_filter($all, fn($row) => (bool) $row['chiuso']));
    foreach ($closed as $row) {
        $values[] = kvUtf8((string) $row['ID']);
    }
    return $closed === [] ? '1 = 1' : 'reparto NOT IN (' . implode(',', array_fill(0, count($closed), '?')) . ')';
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
        fn($pattern) => kvShopWords((string) $pattern, KV_SHORT_WORDS) !== null, ARRAY_FILTER_USE_KEY);
}

/**
 * What the index is asked for a request: what stands behind the columns of the SELECT, its values, and whether it is so much
 * work that the result is kept in any case.
 */
function kvIndexQuery(array $words, bool $all, bool $wholeWords): array
{
    $pieces = kvRequestParts($words);
    $values = $conditions = [];
    $isWhole = fn($pattern): bool => $wholeWords || (string) $pattern === addcslashes($pieces[$pattern], '%_\\');
    foreach ($pieces as $pattern => $piece) {
        $conditions[$pattern] = kvPartCondition((string) $pattern, $piece, $isWhole($pattern));
    }
    $few = $all && count($pieces) > 1 ? kvFewArticles($conditions) : null;
    $choices = $pieces === [] ? ["(SELECT articolo, 0 AS punti FROM kv_voci{$GLOBALS['Lingua']})"] : [];
    foreach ($conditions as $pattern => $condition) {
        $choices[] = '(' . kvWordSelect($condition, $pieces[$pattern], $isWhole($pattern), $few, $values) . ')';
    }
    $wanted = $all ? count($pieces) : 1;
    $found = count($choices) === 1 ? $choices[0] : '(SELECT articolo, SUM(punti) - 100 * COUNT(*) AS punti FROM ('
        . implode(' UNION ALL ', $choices) . ") t GROUP BY articolo HAVING COUNT(*) >= $wanted)";
    list($departments, $marks) = [kvDepartmentsCondition($values), kvMarksCondition($words, $wholeWords, $values)];
    $table = kvLanguageTable('articoli');
    // Named with a table of words, the statement speaks UTF-8 as they do.
    $from = " FROM $found p INNER JOIN kv_voci{$GLOBALS['Lingua']} v ON v.articolo = p.articolo" . ($marks === '' ? ''
        : " INNER JOIN $table ON $table.ID = p.articolo INNER JOIN dettaglio ON dettaglio.ID = p.articolo")
        . ' WHERE ' . $departments . $marks;
    return [$from, $values, $marks !== ''];
}

/** How many articles the index finds, the rows of one page of results in their order, and the number of that page. */
function kvFindByIndex(array $kept, callable $query, int $perPage, int $page): array
{
    $one = null;
    list($count, $numbers) = kvFoundNumbers($kept, function () use ($query, &$one): array {
        return $one = $one ?? $query();
    }, $perPage, $page);
    return [$count, kvFoundRows($numbers), $page];
}

/** The rows of results by the numbers of their articles, in that order. */
function kvFoundRows(array $numbers): array
{
    $rows = kvArticles($numbers);
    return array_values(array_filter(array_map(fn($number) => $rows[$number] ?? null, $numbers)));
}
