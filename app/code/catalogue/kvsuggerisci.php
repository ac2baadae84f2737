<?php
// ***1.0.7***
// What a visitor may be looking for while they type: the articles whose words begin with what is in the field, as
// JSON for js3.js: t (title), u (page), p (price, empty where it is hidden), n (that of a unit), i (picture). The words before the last one
// are taken as whole; at most eight articles, those with the words in their titles first.
include "funcs.php";
include_once "kvfind.php";
include_once "kvlook.php";

/** Most articles that are told. */
const KV_SUGGESTIONS = 8;

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
    if ($numbers === null && kvIsIndexReady($kept, [], true)) {
        $numbers = kvFindSuggested($words);
        if (count($numbers) === KV_SUGGESTIONS) {
            kvKeepSearch($kept, count($numbers), $numbers);
        }
    }
    return $numbers ?? [];
}

/** The same, asked of the index: by where the word is that the last one begins. */
function kvFindSuggested(array $words): array
{
    $last = (string) array_pop($words);
    list($length, $late) = kvSetLength() ?? [0, ''];
    if ($length === 0) {
        return [];
    }
    $parts = array_map(fn($word) => kvSetsByPoints(kvSetsSql(true), [$word], fn(): int => 0, $length), $words);
    $parts[] = kvSetsByPoints(kvSetsSql(false), [addcslashes($last, '%_\\') . '%'], fn(string $word, int $rank): int => $rank, $length);
    $sets = in_array(null, $parts, true) ? null : kvOpenSets(kvJoinParts($parts, true, $length), $length);
    return $sets === null ? [] : (new KvFound($sets, $late))->numbers(KV_SUGGESTIONS, 0);
}

/** One article as js3.js shows it. */
function kvSuggestion(array $row): array
{
    $picture = kvSmallPicture($row);
    return ['t' => kvDataText((string) $row['plain_titolo']), 'u' => kvArticlePage($row),
        'p' => kvArePricesHidden() ? '' : kvUtf8(kvAmountText(kvVisitorPrices($row)['prezzo'])),
        'n' => kvUtf8(html_entity_decode(kvUnitPrice($row), ENT_QUOTES, 'cp1252')),
        'i' => $picture === null ? '' : kvUtf8(html_entity_decode($picture['src'], ENT_QUOTES, 'cp1252'))];
}

$kvNumbers = kvSuggested(kvTypedWords(kvCampo($HTTP_GET_VARS, 'q', 100)));
$kvAlsoShown = $kvNumbers;
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
