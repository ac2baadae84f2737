<?php
// ***1.0.7***
// Changes the cart for browsers without scripts: takes the plain forms of the article pages (compra: "article.position",
// pieces and values under the names of the page) and of the cart page (q[line]: pieces, togli: a line), and an order to be
// repeated (ripeti: its code). Leads to the cart.
include "funcs.php";
include_once "kvcart.php";

/** Most characters of the cart's cookie, as js1.js counts them. */
const KV_CART_LENGTH = 3900;

/** The keys of the values that a form chose for an article, by slot. */
function kvChosenKeys(array $line, string $position): array
{
    $keys = [];
    foreach ([1, 2, 3, 4] as $slot) {
        $chosen = explode('#', kvFromUtf8(kvCampo($_POST, "op$slot$position", 500)), 2)[1] ?? '';
        $keys[$slot] = '';
        foreach (kvVariantValues(kvVariantNumber($line, $slot, (int) $GLOBALS['listino']))['entries'] ?? [] as $key => $entry) {
            if ($entry['coded'] . '|' . html_entity_decode($entry['label'], ENT_QUOTES, 'cp1252') === $chosen) {
                $keys[$slot] = (string) $key;
            }
        }
    }
    return array_values($keys);
}

/** Adds what a form buys; the reason why it can't, empty when it could. */
function kvAddToCart(array &$entries): string
{
    list($id, $position) = explode('.', kvCampo($_POST, 'compra', 20)) + [1 => ''];
    $line = preg_match('/^[1-9]\d{0,8}$/D', $id) ? kvArticle((int) $id) : null;
    $pieces = kvCampo($_POST, "qt$position", 5);
    if ($line === null) {
        return "<<4-articolo_non_disponibile>>";
    }
    if (!preg_match('/^[1-9]\d{0,4}$/D', $pieces)) {
        return "<<4-quantita_errata>>";
    }
    if ((int) $pieces < kvShopTables()['qminima']) {
        return "<<4-quantita_minima>>";
    }
    $added = ['id' => (int) $id, 'q' => (int) $pieces, 'k' => kvChosenKeys($line, $position)];
    foreach ($entries as $n => $entry) {
        if (kvLineMark($entry) === kvLineMark($added)) {
            $entries[$n]['q'] = min(99999, $entry['q'] + $added['q']);
            return '';
        }
    }
    $entries[] = $added;
    return '';
}

/** The lines with the pieces that the cart's form says; a line of none goes. */
function kvChangeLines(array $entries): array
{
    $pieces = is_array($_POST['q'] ?? null) ? $_POST['q'] : [];
    $remove = kvCampo($_POST, 'togli', 60);
    $changed = [];
    foreach ($entries as $entry) {
        $mark = kvLineMark($entry);
        // PHP makes other characters of some in a field's name, so the form has it with a dash.
        $given = kvCampo($pieces, strtr($mark, '.', '-'), 5);
        $entry['q'] = preg_match('/^\d{1,5}$/D', $given) ? (int) $given : $entry['q'];
        if ($mark !== $remove && $entry['q'] > 0) {
            $changed[] = $entry;
        }
    }
    return $changed;
}

if ($_SERVER['REQUEST_METHOD'] !== 'POST') {
    kvGoTo("cart.htm");
}
if (kvIsBuyingDenied()) {
    kvGoTo("login<<1-IDlingua>>.php?" . ($cliente > 0 ? 'm=37&t=.37.' : 'm=23'));
}
$kvEntries = kvCartEntries(kvCampo($_COOKIE, kvCartCookie(), 8000));
$kvRefusal = '';
if (isset($_POST['compra'])) {
    $kvRefusal = kvAddToCart($kvEntries);
} elseif (isset($_POST['ripeti'])) {
    include_once "kvstorico.php";
    $kvRefusal = kvRepeatOrder($kvEntries, kvCampo($_POST, 'ripeti', 20), (int) $cliente);
} else {
    $kvEntries = kvChangeLines($kvEntries);
}
$kvTesto = implode('_', array_map(fn($entry) => rtrim($entry['id'] . '.' . $entry['q'] . '.' . implode('.', $entry['k']), '.'),
    $kvEntries));
if ($kvRefusal === '' && (strlen($kvTesto) > KV_CART_LENGTH || count($kvEntries) > KV_CART_LINES)) {
    $kvRefusal = "<<4-carrello_non_conservato>>";
}
if ($kvRefusal !== '') {
    kvNotify($kvRefusal);
    kvGoTo("messaggio.htm");
}
setcookie(kvCartCookie(), $kvTesto, ['expires' => $kvEntries === [] ? 1 : time() + 30 * 86400,
    'path' => kvCookieFolder(), 'samesite' => 'Lax', 'secure' => kvIsEncrypted()]);
kvGoTo("cart.htm");
