<?php
// ***1.0.7***
// What a visitor may be looking for while they type: the articles whose words begin with what stands in the field, as
// JSON for js3.js: t (title), u (page), p (price, empty where it is hidden), i (picture). The words before the last one
// are taken as whole; at most eight articles, those with the words in their titles first.
include "funcs.php";
include_once "kvfind.php";
include_once "kvlook.php";

/** Most articles that are told. */
const KV_SUGGESTIONS = 8;
/** Most entries of the index that are looked at: with two letters typed there may be as many as articles. */
const KV_ENTRIES_READ = 2000;

/** The words typed, folded as the index has them; the last of them is the beginning of a word. */
function kvTypedWords(string $text): array
{
    preg_match_all('/[\p{L}\p{N}\p{M}]+/u', kvFold($text), $found);
    return array_slice($found[0], 0, 6);
}

/** The numbers of the articles that have all the words, the best first; kept where there are as many as are told. */
function kvSuggested(array $words): array
{
    if (kvLength((string) end($words)) < 2) {
        return [];
    }
    $kept = kvKeptSearch(['suggerisci', $words]);
    $numbers = kvKeptNumbers($kept);
    if ($numbers === null && $kept['indice'] !== '') {
        $numbers = kvFindSuggested($words);
        if (count($numbers) === KV_SUGGESTIONS) {
            kvKeepSearch($kept, count($numbers), $numbers);
        }
    }
    return $numbers ?? [];
}

/** The same, asked of the index. */
function kvFindSuggested(array $words): array
{
    $last = (string) array_pop($words);
    $table = 'kv_parole' . $GLOBALS['Lingua'];
    $values = [];
    $from = '';
    foreach ($words as $n => $word) {
        $from .= " INNER JOIN $table a$n ON a$n.articolo = p.articolo AND a$n.parola = ?";
        $values[] = $word;
    }
    array_push($values, addcslashes($last, '%_\\') . '%', KV_ENTRIES_READ);
    $entries = "SELECT p.articolo, p.rango FROM $table p$from WHERE p.parola LIKE ? LIMIT ?";
    $departments = kvDepartmentsCondition($values);
    $rows = kvQuery("SELECT t.articolo FROM ($entries) t INNER JOIN kv_voci{$GLOBALS['Lingua']} v ON v.articolo = t.articolo"
        . " WHERE $departments GROUP BY t.articolo, v.titolo ORDER BY MIN(t.rango), v.titolo, t.articolo LIMIT "
        . KV_SUGGESTIONS, $values);
    return array_map('intval', array_column($rows ?? [], 'articolo'));
}

/** One article as js3.js shows it. */
function kvSuggestion(array $row): array
{
    $picture = kvSmallPicture($row);
    return ['t' => kvDataText((string) $row['plain_titolo']), 'u' => kvArticlePage($row),
        'p' => kvArePricesHidden() ? '' : kvUtf8(kvAmountText(kvVisitorPrices($row)['prezzo'])),
        'i' => $picture === null ? '' : kvUtf8(html_entity_decode($picture['src'], ENT_QUOTES, 'cp1252'))];
}

$kvNumbers = kvSuggested(kvTypedWords(kvCampo($HTTP_GET_VARS, 'q', 100)));
$kvReadArticles = kvArticles($kvNumbers);
$kvEntries = [];
foreach ($kvNumbers as $kvNumber) {
    if (isset($kvReadArticles[$kvNumber])) {
        SetVariables($kvReadArticles[$kvNumber]['catID']);
        $kvEntries[] = kvSuggestion($kvReadArticles[$kvNumber]);
    }
}
header('Content-Type: application/json; charset=utf-8');
header('Cache-Control: private, max-age=60');
echo json_encode($kvEntries, JSON_UNESCAPED_SLASHES | JSON_INVALID_UTF8_SUBSTITUTE);
