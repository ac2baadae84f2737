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
const KV_TRA_PAROLE = " \t\r\n\xA0,;.:!?\"()[]{}<>/\\|'`\x91\x92\x93\x94\xAB\xBB*+=-_#&%$^~@";

/** The words of a request, at most eight, each of at least two letters, without the marks around them. */
function kvParole(string $testo): array
{
    $parole = [];
    foreach (preg_split('/[\s\xA0]+/', $testo, -1, PREG_SPLIT_NO_EMPTY) as $parola) {
        $nuda = trim($parola, KV_TRA_PAROLE);
        $parole[] = strlen($nuda) > 1 ? $nuda : $parola;
    }
    $lunghe = array_filter(array_unique($parole), fn($parola) => strlen($parola) > 1);
    return array_slice(array_values($lunghe), 0, 8);
}

/** The expression of a text in which each mark between words is a blank. */
function kvTestoAParole(string $campo): string
{
    foreach (str_split(KV_TRA_PAROLE) as $segno) {
        $campo = "REPLACE($campo, '" . mysql_real_escape_string($segno) . "', ' ')";
    }
    return "CONCAT(' ', $campo, ' ')";
}

/** The condition that finds the words, all or any of them, whole ones or parts; its values go to `valori`. */
function kvCondizione(array $parole, bool $tutte, bool $intere, array &$valori): string
{
    $campo = "CONCAT_WS(' ', codice, plain_titolo, plain_sottotitolo, descrizione, note)";
    // One collation for all servers, whatever the tables have: case and accents fold.
    $come = "CONVERT(%s USING utf8mb4) COLLATE utf8mb4_general_ci LIKE ?";
    $prove = [];
    foreach ($parole as $parola) {
        $prova = sprintf($come, $campo);
        $valori[] = '%' . addcslashes($parola, '%_\\') . '%';
        if ($intere) {
            $prova .= ' AND ' . sprintf($come, kvTestoAParole($campo));
            $valori[] = '% ' . strtr($parola, KV_TRA_PAROLE, str_repeat(' ', strlen(KV_TRA_PAROLE))) . ' %';
        }
        $prove[] = "($prova)";
    }
    return implode($tutte ? ' AND ' : ' OR ', $prove);
}

/** How many articles the search finds, and those of one page of results. */
function kvTrova(array $parole, bool $tutte, bool $intere, int $perPagina, int $pagina): array
{
    global $listino;
    $tenuta = kvRicercaTenuta([$parole, $tutte, $intere]);
    if (kvIndicePronto($tenuta, $parole, $tutte)) {
        return kvTrovaIndice($tenuta, fn() => kvDomandaIndice($parole, $tutte, $intere), $perPagina, $pagina);
    }
    $tabella = kvLanguageTable('articoli');
    $valori = [];
    $da = " FROM $tabella INNER JOIN dettaglio USING (ID) INNER JOIN ordinamento USING (ID)"
        . ' INNER JOIN categorie ON categorie.ID = catID WHERE categorie.inaccessibile' . ($listino ?: '')
        . ' = 0 AND nascosto = 0 AND (' . kvCondizione($parole, $tutte, $intere, $valori) . ')';
    $quanti = (int) (kvRiga('SELECT COUNT(*) AS n' . $da, $valori)['n'] ?? 0);
    $pagina = max(1, min($pagina, (int) ceil($quanti / $perPagina)));
    $righe = $quanti === 0 ? [] : kvQuery(
        "SELECT $tabella.ID, codice, plain_titolo, plain_sottotitolo, immagine3, $tabella.pagina AS linkPage,"
        . " $tabella.pagina, sottopagina, contatore$da ORDER BY plain_titolo, $tabella.ID LIMIT ? OFFSET ?",
        array_merge($valori, [$perPagina, ($pagina - 1) * $perPagina]));
    return [$quanti, $righe ?? [], $pagina];
}

/** Marks and price of a result, by the row of its article; nothing where that is missing. */
function kvPrezzoRisultato(?array $riga): string
{
    if ($riga === null) {
        return '';
    }
    SetVariables($riga['catID']);
    $GLOBALS['rowArt'] = $riga;
    return '<span class="segni">' . kvSegni($riga) . '</span> <span class="prezzi">' . kvPrezzo() . '</span>';
}

/**
 * One result: the row template with page, code, title, subtitle and picture in it, and with marks and price where it
 * names them: $arg6 is no tag of the build.
 */
function kvRigaRisultato(string $modello, string $pagina, array $rowArt, ?array $riga): string
{
    $foto = $riga === null ? null : kvFotoPiccola($riga);
    return strtr($modello, [
        '$arg6' => strpos($modello, '$arg6') === false ? '' : kvPrezzoRisultato($riga),
        '$arg1' => kvHtml($pagina),
        '$arg2' => kvHtml((string) $rowArt['codice']),
        '$arg3' => kvTextHtml((string) $rowArt['plain_titolo']),
        '$arg4' => kvTextHtml((string) $rowArt['plain_sottotitolo']),
        '$arg5' => $foto === null ? (string) $rowArt['immagine3'] : kvTagImmagine($foto, ''),
    ]);
}

/** Links to the pages of results: the first, the last and those around the present one. */
function kvPagineRisultati(string $testo, int $pagina, int $pagine): string
{
    $html = '';
    $ultima = 0;
    for ($numero = 1; $pagine > 1 && $numero <= $pagine; $numero++) {
        if ($numero > 1 && $numero < $pagine && abs($numero - $pagina) > 3) {
            continue;
        }
        $html .= $numero > $ultima + 1 ? ' &hellip;' : '';
        $ultima = $numero;
        $html .= $numero === $pagina
            ? ' <strong aria-current="page">' . $numero . '</strong>'
            : ' <a href="kvsearch<<1-IDlingua>>.php?q=' . rawurlencode(kvUtf8($testo)) . '&amp;p=' . $numero . '">' . $numero . '</a>';
    }
    return $html;
}

$kvTesto = kvFromUtf8(kvCampo($HTTP_GET_VARS, 'q', 100));
$kvWords = kvParole($kvTesto);
$kvWhole = strpos(<<<'KORVANE_VALORI'
<<1-java_sepsearch>>
KORVANE_VALORI
, 'sleft = "#"') !== false;
$kvPerPage = (int) "<<1-search_maxart>>" > 0 ? (int) "<<1-search_maxart>>" : 10;
list($kvQuanti, $kvTrovati, $kvPage) = $kvWords === [] ? [0, [], 1] : kvTrova($kvWords,
    "<<1-java_ANDORsearch>>" !== 'any', $kvWhole, $kvPerPage, (int) kvCampo($HTTP_GET_VARS, 'p', 6));

include_once "kvlook.php";
$kvTemplate = (string) @file_get_contents("results.htm");
$kvWholeRows = kvArticoli(array_column($kvTrovati, 'ID'));
kvLeggiReparti(array_map('strval', array_column($kvWholeRows, 'catID')));
$kvRisultati = '';
$fpagina = [];
foreach ($kvTrovati as $artFound => $rowArt) {
    // A build changes this line where results lead to the single article.
    $fpagina[$artFound]=$rowArt["linkPage"].".php?n=".$rowArt["sottopagina"]."#".$rowArt["contatore"];
    $kvRisultati .= kvRigaRisultato($kvTemplate, $fpagina[$artFound], $rowArt, $kvWholeRows[(int) $rowArt['ID']] ?? null);
}
$kvNavigazione = kvPagineRisultati($kvTesto, $kvPage, (int) ceil($kvQuanti / $kvPerPage));
include "search.htm";
