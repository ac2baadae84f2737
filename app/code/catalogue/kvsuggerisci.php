<?php
// ***1.0.7***
// What a visitor may be looking for while they type: the articles whose words begin with what stands in the field, as
// JSON for js3.js: t (title), u (page), p (price, empty where it is hidden), i (picture). The words before the last one
// are taken as whole; at most eight articles, those with the words in their titles first.
include "funcs.php";
include_once "kvfind.php";
include_once "kvlook.php";

/** Most articles that are told. */
const KV_SUGGERITI = 8;
/** Most entries of the index that are looked at: with two letters typed there may be as many as articles. */
const KV_VOCI_GUARDATE = 2000;

/** The words typed, folded as the index has them; the last of them is the beginning of a word. */
function kvParoleScritte(string $testo): array
{
    preg_match_all('/[\p{L}\p{N}\p{M}]+/u', kvFold($testo), $trovate);
    return array_slice($trovate[0], 0, 6);
}

/** The numbers of the articles that have all the words, the best first; kept where there are as many as are told. */
function kvSuggeriti(array $parole): array
{
    if (kvLength((string) end($parole)) < 2) {
        return [];
    }
    $tenuta = kvRicercaTenuta(['suggerisci', $parole]);
    $numeri = kvNumeriTenuti($tenuta);
    if ($numeri === null && $tenuta['indice'] !== '') {
        $numeri = kvCercaSuggeriti($parole);
        if (count($numeri) === KV_SUGGERITI) {
            kvTieniRicerca($tenuta, count($numeri), $numeri);
        }
    }
    return $numeri ?? [];
}

/** The same, asked of the index. */
function kvCercaSuggeriti(array $parole): array
{
    $ultima = (string) array_pop($parole);
    $tabella = 'kv_parole' . $GLOBALS['Lingua'];
    $valori = [];
    $da = '';
    foreach ($parole as $n => $parola) {
        $da .= " INNER JOIN $tabella a$n ON a$n.articolo = p.articolo AND a$n.parola = ?";
        $valori[] = $parola;
    }
    array_push($valori, addcslashes($ultima, '%_\\') . '%', KV_VOCI_GUARDATE);
    $voci = "SELECT p.articolo, p.rango FROM $tabella p$da WHERE p.parola LIKE ? LIMIT ?";
    $reparti = kvCondizioneReparti($valori);
    $righe = kvQuery("SELECT t.articolo FROM ($voci) t INNER JOIN kv_voci{$GLOBALS['Lingua']} v ON v.articolo = t.articolo"
        . " WHERE $reparti GROUP BY t.articolo, v.titolo ORDER BY MIN(t.rango), v.titolo, t.articolo LIMIT "
        . KV_SUGGERITI, $valori);
    return array_map('intval', array_column($righe ?? [], 'articolo'));
}

/** One article as js3.js shows it. */
function kvSuggerimento(array $riga): array
{
    $foto = kvFotoPiccola($riga);
    return ['t' => kvDataText((string) $riga['plain_titolo']), 'u' => kvPaginaArticolo($riga),
        'p' => kvPrezziNascosti() ? '' : kvUtf8(kvTestoImporto(kvPrezziVisitatore($riga)['prezzo'])),
        'i' => $foto === null ? '' : kvUtf8(html_entity_decode($foto['src'], ENT_QUOTES, 'cp1252'))];
}

$kvNumbers = kvSuggeriti(kvParoleScritte(kvCampo($HTTP_GET_VARS, 'q', 100)));
$kvReadArticles = kvArticoli($kvNumbers);
$kvEntries = [];
foreach ($kvNumbers as $kvNumber) {
    if (isset($kvReadArticles[$kvNumber])) {
        SetVariables($kvReadArticles[$kvNumber]['catID']);
        $kvEntries[] = kvSuggerimento($kvReadArticles[$kvNumber]);
    }
}
header('Content-Type: application/json; charset=utf-8');
header('Cache-Control: private, max-age=60');
echo json_encode($kvEntries, JSON_UNESCAPED_SLASHES | JSON_INVALID_UTF8_SUBSTITUTE);
