<?php
// ***1.0.7***
// What shipping of a cart would cost by country, before there is an order form. The order form starts with the method
// that the merchant prefers where the zone allows it, else with the first one allowed: so does the estimate, and both
// show the same sum. js4.js follows the same rule.
include_once "kvcart.php";
include_once "kvpaesi.php";

/** The payment methods (from 1) that a zone allows, the one that the order form starts with first. */
function kvMetodiZona(array $dati, int $zona, int $primo): array
{
    $metodi = array_values(array_filter(range(1, max(1, (int) ceil(strlen($dati['SpOk']) / 8))),
        fn($metodo) => kvAmmesso($dati, ($metodo - 1) * 8 + $zona - 1)));
    return array_merge(array_intersect($metodi, [$primo]), array_diff($metodi, [$primo]));
}

/** The amount in ten-thousandths above which a slot ships for nothing; null when it never does, or by weight. */
function kvSogliaGratuita(array $dati, int $posto): ?int
{
    $soglia = null;
    foreach ($dati['tipopeso'] ? [] : [3 => 'impord2', 2 => 'impord1'] as $passo => $nome) {
        if ($dati["impspese$passo"][$posto] !== 0) {
            break;
        }
        $soglia = $dati[$nome][$posto];
    }
    return $soglia;
}

/** What is said of free shipping, as plain text; empty where there is none. */
function kvTestoGratuita(array $dati, array $totali, int $posto): string
{
    $soglia = kvSogliaGratuita($dati, $posto);
    if ($soglia === null || $totali['spese'] === 0) {
        return $soglia === null ? '' : "<<4-spedizione_gratuita>>.";
    }
    $minimi = intdiv($soglia, intdiv(10000, $dati['scala']));
    // Above the threshold, not at it.
    $manca = $minimi - ($totali['merce'] - $totali['sconto']) + 1;
    return "<<4-gratuita_oltre>> " . kvUnitsText($minimi) . ". <<4-carrello_manca>>: " . kvUnitsText($manca) . '.';
}

/** The payment methods of the estimate for a zone, the one that it starts with first. */
function kvMetodiStima(array $dati, int $zona): array
{
    return kvMetodiZona($dati, $zona, intdiv(max(1, (int) "<<1-java_zona>>") - 1, 8) + 1);
}

/** The totals for a zone by the method that the estimate starts with; null when nothing is sent there. */
function kvStimaPrima(array $righe, int $zona): ?array
{
    global $listino, $scontocliente;
    $dati = kvDatiNegozio();
    $metodi = kvMetodiStima($dati, $zona);
    return $metodi === [] ? null : kvTotali($righe, $metodi[0], $zona, $dati, (int) $listino, (float) $scontocliente);
}

/** The estimate for a zone: totali of the method it starts with, testo of free shipping, and the dearest and cheapest
 *  shipping of the methods; null when nothing is sent there. */
function kvStima(array $righe, int $zona): ?array
{
    global $listino, $scontocliente;
    $dati = kvDatiNegozio();
    $metodi = kvMetodiStima($dati, $zona);
    if ($metodi === []) {
        return null;
    }
    $tutti = array_map(fn($metodo) => kvTotali($righe, $metodo, $zona, $dati, (int) $listino, (float) $scontocliente), $metodi);
    $spese = array_column($tutti, 'spese');
    return ['totali' => $tutti[0], 'testo' => kvTestoGratuita($dati, $tutti[0], ($metodi[0] - 1) * 8 + $zona - 1),
        'minima' => min($spese), 'massima' => max($spese)];
}

/** The country select of the cart page, from that of the build; the choice of the address is kept. */
function kvPaesiStima(string $select): string
{
    $html = str_replace('<select name="LSStato" onchange="SpedPaese()" autocomplete="country-name">', '<select name="paese">',
        kvSceltaPaesi($select));
    $scelto = kvCampo($_GET, 'paese', 12);
    if (preg_match('/^[1-8]-\d{1,4}$/D', $scelto) && strpos($html, "value=\"$scelto\"") !== false) {
        $html = str_replace("value=\"$scelto\"", "value=\"$scelto\" selected", preg_replace('/(<option[^>]*) selected>/', '$1>', $html));
    }
    return $html;
}

/** The estimate as HTML for browsers without scripts: the form that asks, and the answer for the country of the address. */
function kvStimaSemplice(string $select): string
{
    $righe = array_filter(kvCarrelloVisitatore(), fn($riga) => $riga['ok']);
    if ($righe === []) {
        return '';
    }
    $html = '<form class="stima" method="get" action="cart.htm"><label><span>' . kvHtml("<<4-stima_titolo>>") . ': '
        . kvHtml("<<4-ordine_paese>>") . '</span> ' . kvPaesiStima($select) . '</label> <button type="submit" class="secondario">'
        . kvHtml("<<4-stima_calcola>>") . '</button></form>';
    $paese = kvCampo($_GET, 'paese', 12);
    if (!preg_match('/^([1-8])-\d{1,4}$/D', $paese, $parti)) {
        return $html;
    }
    $stima = kvStima($righe, (int) $parti[1]);
    if ($stima === null) {
        return $html . '<p>' . kvHtml("<<4-stima_nessuna>>") . '</p>';
    }
    $voci = [["<<4-carrello_spedizione>>", $stima['totali']['spese']], ["<<4-carrello_iva_spedizione>>", $stima['totali']['ivaspese']],
        ["<<4-stima_totale>>", $stima['totali']['totale']]];
    $html .= '<table class="totali">';
    foreach ($voci as $n => list($nome, $importo)) {
        $html .= $n === 1 && $importo === 0 ? ''
            : '<tr><th scope="row">' . kvHtml($nome) . '</th><td>' . kvUnitsText($importo) . '</td></tr>';
    }
    $html .= '</table>' . ($stima['testo'] === '' ? '' : '<p>' . kvHtml($stima['testo']) . '</p>');
    return $html . ($stima['minima'] === $stima['massima'] ? '' : '<p>' . kvHtml("<<4-stima_secondo>>: "
        . kvUnitsText($stima['minima']) . ' - ' . kvUnitsText($stima['massima'])) . '.</p>');
}
