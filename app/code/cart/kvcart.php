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
const KV_CART_LINES = 200;

/** The name of the cart's cookie, which js1.js writes. */
function kvCartCookie(): string
{
    return 'kvstore_cart' . kvShopNumber();
}

/**
 * The lines of a cart text, "12.3.a1b2c3.._45.1": lines joined by "_", in each the article's number, the pieces and up
 * to four keys of variant values by slot, joined by ".". What isn't of this form is left out.
 */
function kvCartEntries(string $text): array
{
    $entries = [];
    foreach (array_slice(explode('_', substr($text, 0, 8000)), 0, KV_CART_LINES) as $line) {
        if (preg_match('/^([1-9]\d{0,8})\.([1-9]\d{0,4})((?:\.[0-9a-f]{0,6}){0,4})$/D', $line, $parts)) {
            $keys = array_slice(array_pad(explode('.', substr($parts[3], 1)), 4, ''), 0, 4);
            $entries[] = ['id' => (int) $parts[1], 'q' => (int) $parts[2], 'k' => $keys];
        }
    }
    return $entries;
}

/** What tells a line from all others: the article and the keys of the chosen values. */
function kvLineMark(array $entry): string
{
    return rtrim($entry['id'] . '.' . implode('.', $entry['k']), '.');
}

/** A text as it is read: without tags, its entities as characters. */
function kvPlainText(?string $html): string
{
    return trim(preg_replace('/\s+/', ' ', html_entity_decode(strip_tags((string) $html), ENT_QUOTES, 'cp1252')));
}

/** The name of an article in the cart: code, title and, where the shop says so, subtitle. */
function kvArticleName(array $line): string
{
    $name = trim($line['codice'] . ' ' . kvPlainText($line['plain_titolo']));
    $below = $GLOBALS['subtitleincart'] ? kvPlainText($line['plain_sottotitolo']) : '';
    return $below === '' ? $name : $name . ' - ' . $below;
}

/** The chosen values of a line by slot; null when one is missing or isn't of that variant. */
function kvChoices(array $line, array $keys, int $listino): ?array
{
    $choices = [];
    for ($slot = 1; $slot <= 4; $slot++) {
        $id = kvVariantNumber($line, $slot, $listino);
        $variant = $id > 0 ? kvVariantValues($id) : null;
        if ($variant === null) {
            continue;
        }
        $value = $variant['entries'][$keys[$slot - 1]] ?? null;
        if ($value === null) {
            return null;
        }
        $choices[] = $value + ['variant' => $id];
    }
    return $choices;
}

/**
 * One line computed from the database; its article's department is set. Amounts in smallest units, weight in
 * ten-thousandths, VAT in millionths. `ok` tells that it can be bought, stock left aside; `base` is the price of a
 * piece before the quantity discount `passi`, `importo` after it; `scorte` are its keys of kv_disponibilita.
 */
function kvCartLine(array $entry, ?array $line): array
{
    global $listino, $inaccessibile, $ivacompresa, $ivarep;
    $empty = ['id' => $entry['id'], 'quantita' => $entry['q'], 'chiavi' => $entry['k'], 'ok' => false, 'codice' => '',
        'testo' => '', 'pagina' => '', 'foto' => '', 'consegna' => '', 'scelte' => '', 'base' => 0, 'passi' => [], 'importo' => 0, 'iva' => 0, 'aliquota' => 0, 'peso' => 0,
        'scorte' => []];
    if ($line === null) {
        return $empty;
    }
    SetVariables($line['catID']);
    if ($inaccessibile[$listino]) {
        // Whoever isn't let into a department learns nothing of its articles, not even by a number in a cookie.
        return ['testo' => "<<4-articolo_riservato>>"] + $empty;
    }
    $empty['codice'] = (string) $line['codice'];
    $empty['testo'] = kvArticleName($line);
    $empty['pagina'] = isset($line['linkPage']) ? kvArticlePage($line) : '';
    $empty['foto'] = html_entity_decode((string) (kvSmallPicture($line)['src'] ?? ''), ENT_QUOTES, 'cp1252');
    $empty['consegna'] = kvDeliveryTime($line);
    $choices = kvChoices($line, $entry['k'], $listino);
    if ($choices === null || kvArePricesHidden()) {
        return $empty;
    }
    $base = kvSmallestUnits(kvVisitorPrices($line)['prezzo'], kvScale());
    $weight = kvTenThousandths($line['cart_peso'] ?? 0);
    $stock = ['A' . $entry['id']];
    foreach ($choices as $value) {
        $base += kvDifference($value['price'], $line);
        $weight += kvTenThousandths($value['weight']);
        if ($value['code'] !== '') {
            $stock[] = kvValueKey($entry['id'], $value['variant'], $value['code']);
        }
    }
    $steps = kvQuantitySteps($line, $listino);
    $labels = array_map(fn($value) => kvPlainText($value['label']), $choices);
    return [
        'ok' => true,
        'scelte' => implode(', ', $labels),
        'base' => max(0, $base),
        'passi' => $steps,
        'importo' => kvPiecePrice($base, $steps, $entry['q']),
        'iva' => $ivacompresa ? 0 : (int) round($ivarep * 1000000),
        'aliquota' => $ivacompresa ? (int) round($ivarep * 1000000) : 0,
        'peso' => max(0, $weight),
        'scorte' => $stock,
    ] + $empty;
}

/** The lines of a cart text, computed; with `massimo` where stock limits a line. Three queries at most. */
function kvCartLines(string $text): array
{
    global $listino;
    $entries = kvCartEntries($text);
    $articles = kvArticles(array_column($entries, 'id'));
    kvReadDepartments(array_map('strval', array_column($articles, 'catID')));
    $variants = [];
    foreach ($articles as $line) {
        $variants = array_merge($variants, kvRowVariants($line, $listino));
    }
    kvReadVariants($variants);
    kvReadDeliveries($articles);
    $lines = [];
    foreach ($entries as $entry) {
        $lines[] = kvCartLine($entry, $articles[$entry['id']] ?? null);
    }
    $requests = kvWantedPieces($lines);
    $stock = kvStock(array_map('strval', array_keys($requests))) ?? [];
    foreach ($lines as $n => $line) {
        $lines[$n]['massimo'] = kvMostPieces($line, $requests, $stock);
    }
    return $lines;
}

/** The lines of the visitor's own cart. */
function kvVisitorCart(): array
{
    static $lines = null;
    if ($lines === null) {
        $lines = kvCartLines(kvCampo($_COOKIE, kvCartCookie(), 8000));
    }
    return $lines;
}

function kvCartCharacters(): string
{
    $characters = '';
    foreach (kvVisitorCart() as $line) {
        $characters .= $line['ok'] && ($line['massimo'] === null || $line['quantita'] <= $line['massimo']) ? '1' : '0';
    }
    return $characters;
}

/** Each line as js2.js reads it: c (article and keys as in the cookie), n, o, p, s, v, a, w, ok, m, u (its page), f (picture), t (time of delivery). */
function kvCartData(): string
{
    $data = [];
    foreach (kvVisitorCart() as $line) {
        $data[] = [
            'c' => kvLineMark(['id' => $line['id'], 'k' => $line['chiavi']]), 'n' => kvUtf8($line['testo']),
            'o' => kvUtf8($line['scelte']), 'p' => $line['base'], 's' => $line['passi'], 'v' => $line['iva'], 'a' => $line['aliquota'],
            'w' => $line['peso'], 'ok' => $line['ok'], 'm' => $line['massimo'], 'u' => $line['pagina'], 'f' => kvUtf8($line['foto']),
        ] + ($line['consegna'] === '' ? [] : ['t' => kvUtf8($line['consegna'])]);
    }
    return (string) json_encode($data, JSON_HEX_TAG | JSON_HEX_AMP | JSON_HEX_APOS | JSON_HEX_QUOT
        | JSON_INVALID_UTF8_SUBSTITUTE);
}
