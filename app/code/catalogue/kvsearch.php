<?php
// The search of the shop: finds the words in code, title, subtitle, description and notes, and prints the page
// search.htm with one row of results.htm for each article found. Departments closed to the visitor and hidden ones stay
// out. Upper and lower case and accents don't count: "perche" finds "Perché". The index of words answers (kvfind.php); a
// shop that has none yet reads all its articles.
// This script bears no mark of a release, so that the build can do its correction for shops whose results lead to the
// single article: it exchanges the line that makes the address.
include "funcs.php";
include_once "kvfind.php";

/** What parts whole words from one another in a text. */
const KV_BETWEEN_WORDS = " \t\r\n\xA0,;.:!?\"()[]{}<>/\\|'`\x91\x92\x93\x94\xAB\xBB*+=-_#&%$^~@";

/**
 * The words of a request, at most eight, each of at least two characters, without the marks around them; one beyond the
 * character set of the catalogue is a reference, whose own marks belong to it.
 */
function kvWords(string $text): array
{
    $marks = '[' . preg_quote(kvUtf8(KV_BETWEEN_WORDS), '/') . ']+';
    $words = [];
    foreach (preg_split('/[\s\xA0]+/', $text, -1, PREG_SPLIT_NO_EMPTY) as $word) {
        $bare = kvFromUtf8((string) preg_replace("/^$marks|$marks$/uD", '', kvUtf8($word)));
        $words[] = kvLength(kvUtf8($bare)) > 1 ? $bare : $word;
    }
    $long = array_filter(array_unique($words), fn($word) => kvLength(kvUtf8($word)) > 1);
    return array_slice(array_values($long), 0, 8);
}

/** The expression of a text in which each mark between words is a space. */
function kvWordsExpression(string $field): string
{
    foreach (str_split(KV_BETWEEN_WORDS) as $mark) {
        $field = "REPLACE($field, '" . mysql_real_escape_string($mark) . "', ' ')";
    }
    return "CONCAT(' ', $field, ' ')";
}

/** The condition that finds the words, all or any of them, whole ones or parts; its values go to `values`. */
function kvWordsCondition(array $words, bool $all, bool $wholeWords, array &$values): string
{
    $field = "CONCAT_WS(' ', codice, plain_titolo, plain_sottotitolo, descrizione, note)";
    // One collation for all servers, whatever the tables have: case and accents fold.
    $format = "CONVERT(%s USING utf8mb4) COLLATE utf8mb4_general_ci LIKE ?";
    $trials = [];
    foreach ($words as $word) {
        $trial = sprintf($format, $field);
        $values[] = '%' . addcslashes($word, '%_\\') . '%';
        if ($wholeWords) {
            $trial .= ' AND ' . sprintf($format, kvWordsExpression($field));
            $values[] = '% ' . strtr($word, KV_BETWEEN_WORDS, str_repeat(' ', strlen(KV_BETWEEN_WORDS))) . ' %';
        }
        $trials[] = "($trial)";
    }
    return implode($all ? ' AND ' : ' OR ', $trials);
}

/** How many articles the search finds, and those of one page of results. */
function kvFind(array $words, bool $all, bool $wholeWords, int $perPage, int $page): array
{
    global $listino;
    $kept = kvKeptSearch([$words, $all, $wholeWords]);
    if (kvIsIndexReady($kept, $words, $all)) {
        return kvFindByIndex($kept, fn() => kvFindSets($words, $all, $wholeWords,
            (int) $kept['indice'] >= KV_INDEX_OF_SEQUENCES), $perPage, $page);
    }
    $table = kvLanguageTable('articoli');
    $values = [];
    $from = " FROM $table INNER JOIN dettaglio USING (ID) INNER JOIN ordinamento USING (ID)"
        . ' INNER JOIN categorie ON categorie.ID = catID WHERE categorie.inaccessibile' . ($listino ?: '')
        . ' = 0 AND nascosto = 0 AND (' . kvWordsCondition($words, $all, $wholeWords, $values) . ')';
    $count = (int) (kvRiga('SELECT COUNT(*) AS n' . $from, $values)['n'] ?? 0);
    $page = max(1, min($page, (int) ceil($count / $perPage)));
    $rows = $count === 0 ? [] : kvQuery(
        "SELECT $table.ID, codice, plain_titolo, plain_sottotitolo, immagine3, $table.pagina AS linkPage,"
        . " $table.pagina, sottopagina, contatore$from ORDER BY plain_titolo, $table.ID LIMIT ? OFFSET ?",
        array_merge($values, [$perPage, ($page - 1) * $perPage]));
    return [$count, $rows ?? [], $page];
}

/** Marks and price of a result, by the row of its article; nothing where that is missing. */
function kvResultPrice(?array $row): string
{
    if ($row === null) {
        return '';
    }
    SetVariables($row['catID']);
    $GLOBALS['rowArt'] = $row;
    return '<span class="segni">' . kvSegni($row) . '</span> <span class="prezzi">' . kvPrezzo() . '</span>';
}

/**
 * One result: the row template with page, code, title, subtitle and picture in it, and with marks and price where it
 * names them: $arg6 is no tag of the build.
 */
function kvResultRow(string $template, string $page, array $rowArt, ?array $row): string
{
    $picture = $row === null ? null : kvSmallPicture($row);
    return strtr($template, [
        '$arg6' => strpos($template, '$arg6') === false ? '' : kvResultPrice($row),
        '$arg1' => kvHtml($page),
        '$arg2' => kvHtml((string) $rowArt['codice']),
        '$arg3' => kvTextHtml((string) $rowArt['plain_titolo']),
        '$arg4' => kvTextHtml((string) $rowArt['plain_sottotitolo']),
        '$arg5' => $picture === null ? (string) $rowArt['immagine3'] : kvTagImmagine($picture, ''),
    ]);
}

/** Links to the pages of results: the first, the last and those around the present one. */
function kvResultPages(string $text, int $page, int $pages): string
{
    $html = '';
    $last = 0;
    for ($number = 1; $pages > 1 && $number <= $pages; $number++) {
        if ($number > 1 && $number < $pages && abs($number - $page) > 3) {
            continue;
        }
        $html .= $number > $last + 1 ? ' &hellip;' : '';
        $last = $number;
        $html .= $number === $page
            ? ' <strong aria-current="page">' . $number . '</strong>'
            : ' <a href="kvsearch<<1-IDlingua>>.php?q=' . rawurlencode(kvUtf8($text)) . '&amp;p=' . $number . '">' . $number . '</a>';
    }
    return $html;
}

$kvTesto = kvFromUtf8(kvCampo($HTTP_GET_VARS, 'q', 100));
$kvWords = kvWords($kvTesto);
$kvWhole = strpos(<<<'KORVANE_VALORI'
<<1-java_sepsearch>>
KORVANE_VALORI
, 'sleft = "#"') !== false;
$kvPerPage = (int) "<<1-search_maxart>>" > 0 ? (int) "<<1-search_maxart>>" : 10;
list($kvQuanti, $kvTrovati, $kvPage) = $kvWords === [] ? [0, [], 1] : kvFind($kvWords,
    "<<1-java_ANDORsearch>>" !== 'any', $kvWhole, $kvPerPage, (int) kvCampo($HTTP_GET_VARS, 'p', 6));

include_once "kvlook.php";
$kvTemplate = (string) @file_get_contents("results.htm");
$kvAlsoShown = array_column($kvTrovati, 'ID');
$kvWholeRows = kvArticles($kvAlsoShown);
kvReadDepartments(array_map('strval', array_column($kvWholeRows, 'catID')));
$kvRisultati = '';
$fpagina = [];
foreach ($kvTrovati as $artFound => $rowArt) {
    // A build changes this line where results lead to the single article.
    $fpagina[$artFound]=$rowArt["linkPage"].".php?n=".$rowArt["sottopagina"]."#".$rowArt["contatore"];
    $kvRisultati .= kvResultRow($kvTemplate, $fpagina[$artFound], $rowArt, $kvWholeRows[(int) $rowArt['ID']] ?? null);
}
$kvNavigazione = kvResultPages($kvTesto, $kvPage, (int) ceil($kvQuanti / $kvPerPage));
include "search.htm";
