<?php
// ***1.0.7***
// The cart and the last look at an order for browsers without scripts; js2.js does the same in the others.
include_once "kvcart.php";

/** Whether a field of the order form must be filled, as an attribute of its element. */
function kvObbligo(string $name): string
{
    return kvShopTables()[$name] ? ' required' : '';
}

/** Why a line can't be ordered as it is; empty when it can. */
function kvLineFault(array $line): string
{
    if ($line['ok'] && ($line['massimo'] ?? 0) > 0 && $line['quantita'] > $line['massimo']) {
        return "<<4-pezzi_disponibili>>: " . $line['massimo'];
    }
    if (!$line['ok'] || ($line['massimo'] !== null && $line['quantita'] > $line['massimo'])) {
        return "<<4-riga_non_disponibile>>";
    }
    $least = kvShopTables()['qminima'];
    return $line['quantita'] < $least ? "<<4-quantita_minima>> ($least)" : '';
}

/** The sum of the goods, in smallest units. */
function kvGoodsSum(array $lines): int
{
    return (int) array_sum(array_map(fn($line) => $line['importo'] * $line['quantita'], $lines));
}

/** Why a cart can't be ordered as it is, one sentence each. */
function kvCartFaults(array $lines): array
{
    $data = kvShopTables();
    $faults = array_filter(array_map('kvLineFault', $lines)) === [] ? [] : ["<<4-carrello_da_correggere>>"];
    $least = (int) floor($data['minimo'] * $data['scala'] / 10000 + 0.5);
    if (kvGoodsSum($lines) < $least) {
        $faults[] = "<<4-carrello_minimo>>: " . kvUnitsText($least) . ". <<4-carrello_manca>>: "
            . kvUnitsText($least - kvGoodsSum($lines)) . '.';
    }
    return $faults;
}

/** One line of the cart's form. */
function kvFormLine(array $line): string
{
    $mark = kvLineMark(['id' => $line['id'], 'k' => $line['chiavi']]);
    $name = kvHtml($line['testo']);
    $link = $line['pagina'] === '' ? $name : '<a href="' . kvHtml($line['pagina']) . "\">$name</a>";
    $picture = $line['foto'] === '' ? '' : '<img class="provino" src="' . kvHtml($line['foto']) . '" alt="">';
    $reason = kvLineFault($line);
    return '<tr' . ($reason === '' ? '' : ' class="da-correggere"') . "><td>$picture$link"
        . ($line['scelte'] === '' ? '' : '<br><small>' . kvHtml($line['scelte']) . '</small>')
        . ($line['consegna'] === '' ? '' : '<br><small>' . kvHtml("<<4-tempo_consegna>> " . $line['consegna']) . '</small>')
        . ($reason === '' ? '' : '<br><strong>' . kvHtml($reason) . '</strong>') . '</td><td><input type="number" name="q['
        . strtr($mark, '.', '-') . ']" min="0" max="99999" value="' . $line['quantita'] . '" aria-label="'
        . kvHtml("<<4-quantita>>") . ': ' . $name . '"></td><td>' . ($line['ok'] ? kvUnitsText($line['importo']) : '')
        . '</td><td>' . ($line['ok'] ? kvUnitsText($line['importo'] * $line['quantita']) : '')
        . '</td><td><button type="submit" class="secondario" name="togli" value="' . $mark . '">' . kvHtml("<<4-togli>>")
        . '<span class="nascosto">: ' . $name . '</span></button></td></tr>';
}

/** The cart as a form, with its sum and the way to the order or what keeps from it. */
function kvCarrelloSemplice(): string
{
    $lines = kvVisitorCart();
    if ($lines === []) {
        return '<p>' . kvHtml("<<4-carrello_vuoto>>") . '</p>';
    }
    $faults = kvCartFaults($lines);
    $titles = array_map('kvHtml', ["<<4-carrello_articolo>>", "<<4-quantita>>", "<<4-prezzo>>", "<<4-carrello_importo>>"]);
    return '<form class="carrello" method="post" action="kvcarrello.php" accept-charset="utf-8"><table><thead><tr><th scope="col">'
        . implode('</th><th scope="col">', $titles) . '</th><td></td></tr></thead><tbody>'
        . implode('', array_map('kvFormLine', $lines)) . '</tbody></table><p>' . kvHtml("<<4-carrello_merce>>")
        . ': <strong>' . kvUnitsText(kvGoodsSum($lines)) . '</strong></p><p><button type="submit" class="secondario">'
        . kvHtml("<<4-aggiorna>>") . '</button></p></form>'
        . ($faults === [] ? '<p><a class="bottone" href="order.htm">' . kvHtml("<<4-vai_all_ordine>>") . '</a></p>'
            : '<p class="avviso">' . kvHtml(implode(' ', $faults)) . '</p>');
}

/** The last look at an order: its sum as it will be placed, and the form again, which now says that sum. */
function kvOrderReview(string $account, array $totals, string $cartText): string
{
    $fields = array_filter($_POST, 'is_string');
    unset($fields['senza_script']);
    $fields = ['Totale' => (string) $totals['totale'], 'Dettaglio' => $cartText] + $fields;
    $html = '<form class="modulo" method="post" action="kvorder.php" accept-charset="utf-8"><h2>'
        . kvHtml("<<4-ordine_riepilogo>>") . '</h2><pre class="riepilogo">' . kvHtml($account) . '</pre>';
    foreach ($fields as $name => $value) {
        $html .= '<input type="hidden" name="' . kvHtmlUtf8((string) $name) . '" value="'
            . kvHtmlUtf8(kvSentText($value, true)) . '">';
    }
    return $html . '<p><button type="submit">' . kvHtml("<<4-invia_ordine>>") . '</button></p></form>';
}
