<?php
// The search of the shop: finds the words in code, title, subtitle, description and notes, and prints the page
// search.htm with one row of results.htm for each article found. Departments closed to the visitor stay out.
// The build may redirect the links of the results to the single article (setting singleitem_search), by the line
// that fills $fpagina: that line must stay as it stands.
include "funcs.php";

/** The words of a request, at most eight, each of at least two letters. */
function kvParole(string $testo): array
{
    $parole = preg_split('/[\s,;.:!?"()]+/', $testo, -1, PREG_SPLIT_NO_EMPTY);
    return array_slice(array_values(array_filter($parole, fn($parola) => strlen($parola) > 1)), 0, 8);
}

/** The articles that hold all words, or any of them; whole words only when asked for. */
function kvTrova(array $parole, bool $tutte, bool $intere): array
{
    global $Lingua, $listino;
    $tabella = 'articoli' . (preg_match('/^_l[2-4]$/', $Lingua) ? $Lingua : '');
    $campo = "CONCAT_WS(' ', codice, plain_titolo, plain_sottotitolo, descrizione, note)";
    $prove = [];
    $valori = [];
    foreach ($parole as $parola) {
        if ($intere) {
            $prove[] = "$campo REGEXP ?";
            $valori[] = '(^|[^[:alnum:]])' . preg_quote($parola) . '([^[:alnum:]]|$)';
        } else {
            $prove[] = "$campo LIKE ?";
            $valori[] = '%' . addcslashes($parola, '%_\\') . '%';
        }
    }
    $chiuso = 'categorie.inaccessibile' . ($listino === 0 ? '' : (string) $listino);
    return kvQuery(
        "SELECT *, $tabella.ID AS artID, $tabella.pagina AS linkPage FROM $tabella INNER JOIN dettaglio USING (ID)"
        . " INNER JOIN ordinamento USING (ID) INNER JOIN categorie ON categorie.ID = catID"
        . " WHERE $chiuso = 0 AND (" . implode($tutte ? ' AND ' : ' OR ', $prove) . ')'
        . ' ORDER BY plain_titolo LIMIT 1000', $valori) ?? [];
}

/** One result: the row template with page, code, title, subtitle and picture in it. */
function kvRigaRisultato(string $modello, string $pagina, array $rowArt): string
{
    return strtr($modello, [
        '$arg1' => kvHtml($pagina),
        '$arg2' => kvHtml((string) $rowArt['codice']),
        '$arg3' => (string) $rowArt['plain_titolo'],
        '$arg4' => (string) $rowArt['plain_sottotitolo'],
        '$arg5' => (string) $rowArt['immagine3'],
    ]);
}

$kvTesto = kvCampo($HTTP_GET_VARS, 'q', 100);
$kvParole = kvParole($kvTesto);
$kvIntere = strpos(<<<'KORVANE_VALORI'
<<1-java_sepsearch>>
KORVANE_VALORI
, 'sleft = "#"') !== false;
$kvTrovati = $kvParole === [] ? [] : kvTrova($kvParole, "<<1-java_ANDORsearch>>" !== 'any', $kvIntere);
$kvPerPagina = (int) "<<1-search_maxart>>" > 0 ? (int) "<<1-search_maxart>>" : 10;
$kvPagine = max(1, (int) ceil(count($kvTrovati) / $kvPerPagina));
$kvPagina = min($kvPagine, max(1, (int) kvCampo($HTTP_GET_VARS, 'p', 6)));

$kvModello = (string) @file_get_contents("results.htm");
$kvRisultati = '';
$fpagina = [];
foreach (array_slice($kvTrovati, ($kvPagina - 1) * $kvPerPagina, $kvPerPagina) as $artFound => $rowArt) {
    $fpagina[$artFound]=$rowArt["linkPage"].".php?n=".$rowArt["sottopagina"]."#".$rowArt["contatore"];
    $kvRisultati .= kvRigaRisultato($kvModello, $fpagina[$artFound], $rowArt);
}
$kvNavigazione = '';
for ($kvNumero = 1; $kvPagine > 1 && $kvNumero <= $kvPagine; $kvNumero++) {
    $kvNavigazione .= $kvNumero === $kvPagina
        ? ' <strong aria-current="page">' . $kvNumero . '</strong>'
        : ' <a href="kvsearch<<1-IDlingua>>.php?q=' . rawurlencode($kvTesto) . '&amp;p=' . $kvNumero . '">'
            . $kvNumero . '</a>';
}
include "search<<1-IDlingua>>.php";
