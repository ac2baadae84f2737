<?php
// ***1.0.7***
// Changes the cart for browsers without scripts: takes the plain forms of the article pages (compra: "article.position",
// pieces and values under the names of the page) and of the cart page (q[line]: pieces, togli: a line), and an order to be
// repeated (ripeti: its code). Leads to the cart.
include "funcs.php";
include_once "kvcart.php";

/** Most characters of the cart's cookie, as js1.js counts them. */
const KV_LUNGO_CARRELLO = 3900;

/** The keys of the values that a form chose for an article, by slot. */
function kvChiaviScelte(array $riga, string $posto): array
{
    $chiavi = [];
    foreach ([1, 2, 3, 4] as $slot) {
        $scelto = explode('#', kvFromUtf8(kvCampo($_POST, "op$slot$posto", 500)), 2)[1] ?? '';
        $chiavi[$slot] = '';
        foreach (kvVariantValues(kvVariantNumber($riga, $slot, (int) $GLOBALS['listino']))['voci'] ?? [] as $chiave => $voce) {
            if ($voce['cifrato'] . '|' . html_entity_decode($voce['etichetta'], ENT_QUOTES, 'cp1252') === $scelto) {
                $chiavi[$slot] = (string) $chiave;
            }
        }
    }
    return array_values($chiavi);
}

/** Adds what a form buys; the reason why it can't, empty when it could. */
function kvAggiungi(array &$voci): string
{
    list($id, $posto) = explode('.', kvCampo($_POST, 'compra', 20)) + [1 => ''];
    $riga = preg_match('/^[1-9]\d{0,8}$/D', $id) ? kvArticle((int) $id) : null;
    $pezzi = kvCampo($_POST, "qt$posto", 5);
    if ($riga === null) {
        return "<<4-articolo_non_disponibile>>";
    }
    if (!preg_match('/^[1-9]\d{0,4}$/D', $pezzi)) {
        return "<<4-quantita_errata>>";
    }
    if ((int) $pezzi < kvDatiNegozio()['qminima']) {
        return "<<4-quantita_minima>>";
    }
    $nuova = ['id' => (int) $id, 'q' => (int) $pezzi, 'k' => kvChiaviScelte($riga, $posto)];
    foreach ($voci as $n => $voce) {
        if (kvSegnoRiga($voce) === kvSegnoRiga($nuova)) {
            $voci[$n]['q'] = min(99999, $voce['q'] + $nuova['q']);
            return '';
        }
    }
    $voci[] = $nuova;
    return '';
}

/** The lines with the pieces that the cart's form says; a line of none goes. */
function kvCambiaRighe(array $voci): array
{
    $pezzi = is_array($_POST['q'] ?? null) ? $_POST['q'] : [];
    $togli = kvCampo($_POST, 'togli', 60);
    $nuove = [];
    foreach ($voci as $voce) {
        $segno = kvSegnoRiga($voce);
        // PHP makes other characters of some in a field's name, so the form has it with a dash.
        $detto = kvCampo($pezzi, strtr($segno, '.', '-'), 5);
        $voce['q'] = preg_match('/^\d{1,5}$/D', $detto) ? (int) $detto : $voce['q'];
        if ($segno !== $togli && $voce['q'] > 0) {
            $nuove[] = $voce;
        }
    }
    return $nuove;
}

if ($_SERVER['REQUEST_METHOD'] !== 'POST') {
    kvGoTo("cart.htm");
}
if (kvIsBuyingDenied()) {
    kvGoTo("login<<1-IDlingua>>.php?" . ($cliente > 0 ? 'm=37&t=.37.' : 'm=23'));
}
$kvEntries = kvVociCarrello(kvCampo($_COOKIE, kvBiscottoCarrello(), 8000));
$kvRefusal = '';
if (isset($_POST['compra'])) {
    $kvRefusal = kvAggiungi($kvEntries);
} elseif (isset($_POST['ripeti'])) {
    include_once "kvstorico.php";
    $kvRefusal = kvRipeti($kvEntries, kvCampo($_POST, 'ripeti', 20), (int) $cliente);
} else {
    $kvEntries = kvCambiaRighe($kvEntries);
}
$kvTesto = implode('_', array_map(fn($voce) => rtrim($voce['id'] . '.' . $voce['q'] . '.' . implode('.', $voce['k']), '.'),
    $kvEntries));
if ($kvRefusal === '' && (strlen($kvTesto) > KV_LUNGO_CARRELLO || count($kvEntries) > KV_RIGHE)) {
    $kvRefusal = "<<4-carrello_non_conservato>>";
}
if ($kvRefusal !== '') {
    kvNotify($kvRefusal);
    kvGoTo("messaggio.htm");
}
setcookie(kvBiscottoCarrello(), $kvTesto, ['expires' => $kvEntries === [] ? 1 : time() + 30 * 86400,
    'path' => kvCookieFolder(), 'samesite' => 'Lax', 'secure' => kvIsEncrypted()]);
kvGoTo("cart.htm");
