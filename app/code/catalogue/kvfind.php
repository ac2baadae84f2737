<?php
// ***1.0.7***
// Finds articles by the index of words (kvindex.php). Each word of a request is looked up among the words of the shop,
// whole or in part; results come by where the word is (title, code, texts) and how (whole, beginning, inside). A request
// word with marks inside, as "l'olio", must also be in the article as it was typed.

include_once "kvtables.php";
include_once "kvfound.php";

/** Most words of the shop that one word of a request may stand for. */
const KV_VOCABOLI = 5000;
/** Most words of the shop for which a single character is looked up: of more, nearly every article has one. */
const KV_VOCABOLI_BREVI = 300;

/** Whether the index is there and can answer: where any word is enough, words without marks. */
function kvIndicePronto(array $tenuta, array $parole, bool $tutte): bool
{
    return $tenuta['indice'] !== '' && ($tutte || array_filter($parole, 'kvHaSegni') === []);
}

/**
 * What the index is asked for a request word, by the pattern of the words that it stands for: the word anywhere in them;
 * of one with marks its parts of at least so many characters, which end a word before a mark and begin one after it.
 */
function kvPezziParola(string $parola, int $almeno = 2): array
{
    preg_match_all('/[\p{L}\p{N}\p{M}]+/u', kvFold(kvUtf8($parola)), $trovati);
    $pezzi = [];
    foreach ($trovati[0] as $n => $pezzo) {
        if (kvLength($pezzo) >= $almeno) {
            $ultimo = $n === count($trovati[0]) - 1;
            $pezzi[($n === 0 ? '%' : '') . addcslashes($pezzo, '%_\\') . ($ultimo ? '%' : '')] = $pezzo;
        }
    }
    return $pezzi;
}

/** Whether a request word holds other than characters and digits. */
function kvHaSegni(string $parola): bool
{
    return preg_match('/^[\p{L}\p{N}\p{M}]+$/uD', kvUtf8($parola)) !== 1;
}

/** The words of the shop that a pattern fits; null when there are too many to be told one by one. */
function kvVocaboli(string $forma, int $massimo = KV_VOCABOLI): ?array
{
    $righe = kvQuery('SELECT parola FROM kv_vocaboli' . $GLOBALS['Lingua'] . ' WHERE parola LIKE ? LIMIT ' . ($massimo + 1),
        [$forma]);
    return $righe !== null && count($righe) <= $massimo ? array_column($righe, 'parola') : null;
}

/**
 * The articles that have a word which fits a pattern, or the whole of it, as a SELECT of articolo and punti; values go to
 * `valori`. Without being told, the server would rather walk through all words in the order of the articles.
 */
function kvSceltaParola(string $forma, string $pezzo, bool $intera, array &$valori): string
{
    $tabella = 'kv_parole' . $GLOBALS['Lingua'];
    if ($intera) {
        $valori[] = $pezzo;
        return "SELECT articolo, rango * 3 AS punti FROM $tabella WHERE parola = ?";
    }
    $parole = kvVocaboli($forma);
    array_push($valori, $pezzo, addcslashes($pezzo, '%_\\') . '%');
    if ($parole === null) {
        $dove = 'parola LIKE ?';
        $valori[] = $forma;
    } else {
        $dove = $parole === [] ? '1 = 0' : 'parola IN (' . implode(',', array_fill(0, count($parole), '?')) . ')';
        $valori = array_merge($valori, $parole);
    }
    $punti = 'rango * 3 + IF(parola = ?, 0, IF(parola LIKE ?, 1, 2))';
    // An article has a word once: of one word alone there is nothing to be put together.
    return $parole !== null && count($parole) === 1 ? "SELECT articolo, $punti AS punti FROM $tabella WHERE $dove"
        : "SELECT articolo, MIN($punti) AS punti FROM $tabella FORCE INDEX (PRIMARY) WHERE $dove GROUP BY articolo";
}

/** The conditions that request words with marks inside put on an article besides; values go to `valori`. */
function kvCondizioneSegni(array $parole, bool $intere, array &$valori): string
{
    $segnate = array_values(array_filter($parole, 'kvHaSegni'));
    return $segnate === [] ? '' : ' AND ' . kvCondizione($segnate, true, $intere, $valori);
}

/** The condition that an article's department is open to the visitor and not hidden; values go to `valori`. */
function kvCondizioneReparti(array &$valori): string
{
    $tutti = kvQuery('SELECT ID, inaccessibile' . ($GLOBALS['listino'] ?: '') . ' OR nascosto AS chiuso FROM categorie') ?? [];
    $chiusi = array_values(array_filter($tutti, fn($riga) => (bool) $riga['chiuso']));
    foreach ($chiusi as $riga) {
        $valori[] = kvUtf8((string) $riga['ID']);
    }
    return $chiusi === [] ? '1 = 1' : 'reparto NOT IN (' . implode(',', array_fill(0, count($chiusi), '?')) . ')';
}

/**
 * What the index is asked for all words of a request. Where those have single characters alone ("a-b"), the ones that
 * few words of the shop begin or end with; empty when only the texts themselves can tell.
 */
function kvPezziRichiesta(array $parole): array
{
    $pezzi = $brevi = [];
    foreach ($parole as $parola) {
        $pezzi += kvPezziParola($parola);
        $brevi += kvPezziParola($parola, 1);
    }
    return $pezzi !== [] ? $pezzi : array_filter($brevi,
        fn($forma) => kvVocaboli((string) $forma, KV_VOCABOLI_BREVI) !== null, ARRAY_FILTER_USE_KEY);
}

/**
 * What the index is asked for a request: what stands behind the columns of the SELECT, its values, and whether it is so much
 * work that the result is kept in any case.
 */
function kvDomandaIndice(array $parole, bool $tutte, bool $intere): array
{
    $pezzi = kvPezziRichiesta($parole);
    $valori = [];
    $scelte = $pezzi === [] ? ["(SELECT articolo, 0 AS punti FROM kv_voci{$GLOBALS['Lingua']})"] : [];
    foreach ($pezzi as $forma => $pezzo) {
        $intera = $intere || (string) $forma === addcslashes($pezzo, '%_\\');
        $scelte[] = '(' . kvSceltaParola((string) $forma, $pezzo, $intera, $valori) . ')';
    }
    $voluti = $tutte ? count($pezzi) : 1;
    $trovati = count($scelte) === 1 ? $scelte[0] : '(SELECT articolo, SUM(punti) - 100 * COUNT(*) AS punti FROM ('
        . implode(' UNION ALL ', $scelte) . ") t GROUP BY articolo HAVING COUNT(*) >= $voluti)";
    list($reparti, $segni) = [kvCondizioneReparti($valori), kvCondizioneSegni($parole, $intere, $valori)];
    $tabella = kvLanguageTable('articoli');
    // Named with a table of words, the statement speaks UTF-8 as they do.
    $da = " FROM $trovati p INNER JOIN kv_voci{$GLOBALS['Lingua']} v ON v.articolo = p.articolo" . ($segni === '' ? ''
        : " INNER JOIN $tabella ON $tabella.ID = p.articolo INNER JOIN dettaglio ON dettaglio.ID = p.articolo")
        . ' WHERE ' . $reparti . $segni;
    return [$da, $valori, $segni !== ''];
}

/** How many articles the index finds, the rows of one page of results in their order, and the number of that page. */
function kvTrovaIndice(array $tenuta, callable $domanda, int $perPagina, int $pagina): array
{
    $una = null;
    list($quanti, $numeri) = kvNumeriTrovati($tenuta, function () use ($domanda, &$una): array {
        return $una = $una ?? $domanda();
    }, $perPagina, $pagina);
    return [$quanti, kvRigheTrovate($numeri), $pagina];
}

/** The rows of results by the numbers of their articles, in that order. */
function kvRigheTrovate(array $numeri): array
{
    $righe = kvArticoli($numeri);
    return array_values(array_filter(array_map(fn($numero) => $righe[$numero] ?? null, $numeri)));
}
