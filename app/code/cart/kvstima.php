<?php
// ***1.0.7***
// What shipping of a cart would cost by country, before there is an order form. The order form starts with the method
// that the merchant prefers where the zone allows it, else with the first one allowed: so does the estimate, and both
// show the same sum. js4.js follows the same rule.
include_once "kvcart.php";
include_once "kvpaesi.php";

/** The payment methods (from 1) that a zone allows, the one that the order form starts with first. */
function kvZoneMethods(array $data, int $zone, int $first): array
{
    $methods = array_values(array_filter(range(1, max(1, (int) ceil(strlen($data['SpOk']) / 8))),
        fn($method) => kvIsMethodAllowed($data, ($method - 1) * 8 + $zone - 1)));
    return array_merge(array_intersect($methods, [$first]), array_diff($methods, [$first]));
}

/** The amount in ten-thousandths above which a slot ships for nothing; null when it never does, or by weight. */
function kvFreeShippingThreshold(array $data, int $slot): ?int
{
    $threshold = null;
    foreach ($data['tipopeso'] ? [] : [3 => 'impord2', 2 => 'impord1'] as $step => $name) {
        if ($data["impspese$step"][$slot] !== 0) {
            break;
        }
        $threshold = $data[$name][$slot];
    }
    return $threshold;
}

/** What is said of free shipping, as plain text; empty where there is none. */
function kvFreeShippingText(array $data, array $totals, int $slot): string
{
    $threshold = kvFreeShippingThreshold($data, $slot);
    if ($threshold === null || $totals['spese'] === 0) {
        return $threshold === null ? '' : "<<4-spedizione_gratuita>>.";
    }
    $units = intdiv($threshold, intdiv(10000, $data['scala']));
    // Above the threshold, not at it.
    $missing = $units - ($totals['merce'] - $totals['sconto']) + 1;
    return "<<4-gratuita_oltre>> " . kvUnitsText($units) . ". <<4-carrello_manca>>: " . kvUnitsText($missing) . '.';
}

/** The payment methods of the estimate for a zone, the one that it starts with first. */
function kvEstimateMethods(array $data, int $zone): array
{
    return kvZoneMethods($data, $zone, intdiv(max(1, (int) "<<1-java_zona>>") - 1, 8) + 1);
}

/** The totals for a zone by the method that the estimate starts with; null when nothing is sent there. */
function kvFirstEstimate(array $lines, int $zone): ?array
{
    global $listino, $scontocliente;
    $data = kvShopTables();
    $methods = kvEstimateMethods($data, $zone);
    return $methods === [] ? null : kvOrderTotals($lines, $methods[0], $zone, $data, (int) $listino, (float) $scontocliente);
}

/** The estimate for a zone: totals of the method it starts with, text of free shipping, and the least and most shipping of
 *  the methods; null when nothing is sent there. */
function kvEstimate(array $lines, int $zone): ?array
{
    global $listino, $scontocliente;
    $data = kvShopTables();
    $methods = kvEstimateMethods($data, $zone);
    if ($methods === []) {
        return null;
    }
    $all = array_map(fn($method) => kvOrderTotals($lines, $method, $zone, $data, (int) $listino, (float) $scontocliente), $methods);
    $shipping = array_column($all, 'spese');
    return ['totals' => $all[0], 'text' => kvFreeShippingText($data, $all[0], ($methods[0] - 1) * 8 + $zone - 1),
        'least' => min($shipping), 'most' => max($shipping)];
}

/** The country select of the cart page, from that of the build; the choice of the address is kept. */
function kvPaesiStima(string $select): string
{
    $html = str_replace('<select name="LSStato" onchange="SpedPaese()" autocomplete="country-name">', '<select name="paese">',
        kvSceltaPaesi($select));
    $chosen = kvCampo($_GET, 'paese', 12);
    if (preg_match('/^[1-8]-\d{1,4}$/D', $chosen) && strpos($html, "value=\"$chosen\"") !== false) {
        $html = str_replace("value=\"$chosen\"", "value=\"$chosen\" selected", preg_replace('/(<option[^>]*) selected>/', '$1>', $html));
    }
    return $html;
}

/** The estimate as HTML for browsers without scripts: the form that asks, and the answer for the country of the address. */
function kvStimaSemplice(string $select): string
{
    $lines = array_filter(kvVisitorCart(), fn($line) => $line['ok']);
    if ($lines === []) {
        return '';
    }
    $html = '<form class="stima" method="get" action="cart.htm"><label><span>' . kvHtml("<<4-stima_titolo>>") . ': '
        . kvHtml("<<4-ordine_paese>>") . '</span> ' . kvPaesiStima($select) . '</label> <button type="submit" class="secondario">'
        . kvHtml("<<4-stima_calcola>>") . '</button></form>';
    $country = kvCampo($_GET, 'paese', 12);
    if (!preg_match('/^([1-8])-\d{1,4}$/D', $country, $parts)) {
        return $html;
    }
    $estimate = kvEstimate($lines, (int) $parts[1]);
    if ($estimate === null) {
        return $html . '<p>' . kvHtml("<<4-stima_nessuna>>") . '</p>';
    }
    $entries = [["<<4-carrello_spedizione>>", $estimate['totals']['spese']], ["<<4-carrello_iva_spedizione>>", $estimate['totals']['ivaspese']],
        ["<<4-stima_totale>>", $estimate['totals']['totale']]];
    $html .= '<table class="totali">';
    foreach ($entries as $n => list($name, $amount)) {
        $html .= $n === 1 && $amount === 0 ? ''
            : '<tr><th scope="row">' . kvHtml($name) . '</th><td>' . kvUnitsText($amount) . '</td></tr>';
    }
    $html .= '</table>' . ($estimate['text'] === '' ? '' : '<p>' . kvHtml($estimate['text']) . '</p>');
    return $html . ($estimate['least'] === $estimate['most'] ? '' : '<p>' . kvHtml("<<4-stima_secondo>>: "
        . kvUnitsText($estimate['least']) . ' - ' . kvUnitsText($estimate['most'])) . '.</p>');
}
