<?php
// ***1.0.7***
// The cart on the server. The browser keeps of each line the article's number, the pieces and the keys of the chosen
// values, in one cookie; names, prices and availability are read from the database whenever they are shown or ordered,
// so that nothing in the cart can be out of date or made up.
include_once "kvtotals.php";
include_once "kvvariant.php";
include_once "kvstock.php";
include_once "kvcard.php";

/** Most lines of a cart. */
const KV_RIGHE = 200;

/** The name of the cart's cookie, which js1.js writes. */
function kvBiscottoCarrello(): string
{
    return 'kvstore_cart' . kvNegozio();
}

/**
 * The lines of a cart text, "12.3.a1b2c3.._45.1": lines joined by "_", in each the article's number, the pieces and up
 * to four keys of variant values by slot, joined by ".". What isn't of this form is left out.
 */
function kvVociCarrello(string $testo): array
{
    $voci = [];
    foreach (array_slice(explode('_', substr($testo, 0, 8000)), 0, KV_RIGHE) as $riga) {
        if (preg_match('/^([1-9]\d{0,8})\.([1-9]\d{0,4})((?:\.[0-9a-f]{0,6}){0,4})$/D', $riga, $parti)) {
            $chiavi = array_slice(array_pad(explode('.', substr($parti[3], 1)), 4, ''), 0, 4);
            $voci[] = ['id' => (int) $parti[1], 'q' => (int) $parti[2], 'k' => $chiavi];
        }
    }
    return $voci;
}

/** What tells a line from all others: the article and the keys of the chosen values. */
function kvSegnoRiga(array $voce): string
{
    return rtrim($voce['id'] . '.' . implode('.', $voce['k']), '.');
}

/** A text as it is read: without tags, its entities as letters. */
function kvTestoPiano(?string $html): string
{
    return trim(preg_replace('/\s+/', ' ', html_entity_decode(strip_tags((string) $html), ENT_QUOTES, 'cp1252')));
}

/** The name of an article in the cart: code, title and, where the shop says so, subtitle. */
function kvNomeArticolo(array $riga): string
{
    $nome = trim($riga['codice'] . ' ' . kvTestoPiano($riga['plain_titolo']));
    $sotto = $GLOBALS['subtitleincart'] ? kvTestoPiano($riga['plain_sottotitolo']) : '';
    return $sotto === '' ? $nome : $nome . ' - ' . $sotto;
}

/** The chosen values of a line by slot; null when one is missing or isn't of that variant. */
function kvScelte(array $riga, array $chiavi, int $listino): ?array
{
    $scelte = [];
    for ($posto = 1; $posto <= 4; $posto++) {
        $id = kvVariantNumber($riga, $posto, $listino);
        $variante = $id > 0 ? kvVariantValues($id) : null;
        if ($variante === null) {
            continue;
        }
        $valore = $variante['voci'][$chiavi[$posto - 1]] ?? null;
        if ($valore === null) {
            return null;
        }
        $scelte[] = $valore + ['variante' => $id];
    }
    return $scelte;
}

/**
 * One line worked out from the database; its article's department is set. Amounts in smallest units, weight in
 * ten-thousandths, VAT in millionths. `ok` tells that it can be bought, stock left aside; `base` is the price of a
 * piece before the quantity discount `passi`, `importo` behind it; `scorte` are its keys of kv_disponibilita.
 */
function kvRigaCarrello(array $voce, ?array $riga): array
{
    global $listino, $inaccessibile, $ivacompresa, $ivarep;
    $vuota = ['id' => $voce['id'], 'quantita' => $voce['q'], 'chiavi' => $voce['k'], 'ok' => false, 'codice' => '',
        'testo' => '', 'pagina' => '', 'foto' => '', 'consegna' => '', 'scelte' => '', 'base' => 0, 'passi' => [], 'importo' => 0, 'iva' => 0, 'aliquota' => 0, 'peso' => 0,
        'scorte' => []];
    if ($riga === null) {
        return $vuota;
    }
    SetVariables($riga['catID']);
    if ($inaccessibile[$listino]) {
        // Whoever isn't let into a department learns nothing of its articles, not even by a number in a cookie.
        return ['testo' => "<<4-articolo_riservato>>"] + $vuota;
    }
    $vuota['codice'] = (string) $riga['codice'];
    $vuota['testo'] = kvNomeArticolo($riga);
    $vuota['pagina'] = isset($riga['linkPage']) ? kvArticlePage($riga) : '';
    $vuota['foto'] = html_entity_decode((string) (kvSmallPicture($riga)['src'] ?? ''), ENT_QUOTES, 'cp1252');
    $vuota['consegna'] = kvDeliveryTime($riga);
    $scelte = kvScelte($riga, $voce['k'], $listino);
    if ($scelte === null || kvArePricesHidden()) {
        return $vuota;
    }
    $base = kvSmallestUnits(kvVisitorPrices($riga)['prezzo'], kvScale());
    $peso = kvTenThousandths($riga['cart_peso'] ?? 0);
    $scorte = ['A' . $voce['id']];
    foreach ($scelte as $valore) {
        $base += kvDifference($valore['prezzo'], $riga);
        $peso += kvTenThousandths($valore['peso']);
        if ($valore['codice'] !== '') {
            $scorte[] = kvChiaveValore($voce['id'], $valore['variante'], $valore['codice']);
        }
    }
    $passi = kvQuantitySteps($riga, $listino);
    $etichette = array_map(fn($valore) => kvTestoPiano($valore['etichetta']), $scelte);
    return [
        'ok' => true,
        'scelte' => implode(', ', $etichette),
        'base' => max(0, $base),
        'passi' => $passi,
        'importo' => kvImportoPezzo($base, $passi, $voce['q']),
        'iva' => $ivacompresa ? 0 : (int) round($ivarep * 1000000),
        'aliquota' => $ivacompresa ? (int) round($ivarep * 1000000) : 0,
        'peso' => max(0, $peso),
        'scorte' => $scorte,
    ] + $vuota;
}

/** The lines of a cart text, worked out; with `massimo` where stock limits a line. Three queries at most. */
function kvRigheCarrello(string $testo): array
{
    global $listino;
    $voci = kvVociCarrello($testo);
    $articoli = kvArticoli(array_column($voci, 'id'));
    kvReadDepartments(array_map('strval', array_column($articoli, 'catID')));
    $varianti = [];
    foreach ($articoli as $riga) {
        $varianti = array_merge($varianti, kvRowVariants($riga, $listino));
    }
    kvReadVariants($varianti);
    kvReadDeliveries($articoli);
    $righe = [];
    foreach ($voci as $voce) {
        $righe[] = kvRigaCarrello($voce, $articoli[$voce['id']] ?? null);
    }
    $richieste = kvRichieste($righe);
    $scorte = kvScorte(array_map('strval', array_keys($richieste))) ?? [];
    foreach ($righe as $n => $riga) {
        $righe[$n]['massimo'] = kvMassimo($riga, $richieste, $scorte);
    }
    return $righe;
}

/** The lines of the visitor's own cart. */
function kvCarrelloVisitatore(): array
{
    static $righe = null;
    if ($righe === null) {
        $righe = kvRigheCarrello(kvCampo($_COOKIE, kvBiscottoCarrello(), 8000));
    }
    return $righe;
}

function kvLettereCarrello(): string
{
    $lettere = '';
    foreach (kvCarrelloVisitatore() as $riga) {
        $lettere .= $riga['ok'] && ($riga['massimo'] === null || $riga['quantita'] <= $riga['massimo']) ? '1' : '0';
    }
    return $lettere;
}

/** Each line as js2.js reads it: c (article and keys as in the cookie), n, o, p, s, v, a, w, ok, m, u (its page), f (picture), t (time of delivery). */
function kvDatiCarrello(): string
{
    $dati = [];
    foreach (kvCarrelloVisitatore() as $riga) {
        $dati[] = [
            'c' => kvSegnoRiga(['id' => $riga['id'], 'k' => $riga['chiavi']]), 'n' => kvUtf8($riga['testo']),
            'o' => kvUtf8($riga['scelte']), 'p' => $riga['base'], 's' => $riga['passi'], 'v' => $riga['iva'], 'a' => $riga['aliquota'],
            'w' => $riga['peso'], 'ok' => $riga['ok'], 'm' => $riga['massimo'], 'u' => $riga['pagina'], 'f' => kvUtf8($riga['foto']),
        ] + ($riga['consegna'] === '' ? [] : ['t' => kvUtf8($riga['consegna'])]);
    }
    return (string) json_encode($dati, JSON_HEX_TAG | JSON_HEX_AMP | JSON_HEX_APOS | JSON_HEX_QUOT
        | JSON_INVALID_UTF8_SUBSTITUTE);
}
