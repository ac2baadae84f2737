<?php
// ***1.0.7***
// The cart and the last look at an order for browsers without scripts; js2.js does the same in the others.
include_once "kvcart.php";

/** Whether a field of the order form must be filled, as an attribute of its element. */
function kvObbligo(string $nome): string
{
    return kvDatiNegozio()[$nome] ? ' required' : '';
}

/** Why a line can't be ordered as it is; empty when it can. */
function kvMotivoRiga(array $riga): string
{
    if ($riga['ok'] && ($riga['massimo'] ?? 0) > 0 && $riga['quantita'] > $riga['massimo']) {
        return "<<4-pezzi_disponibili>>: " . $riga['massimo'];
    }
    if (!$riga['ok'] || ($riga['massimo'] !== null && $riga['quantita'] > $riga['massimo'])) {
        return "<<4-riga_non_disponibile>>";
    }
    $minima = kvDatiNegozio()['qminima'];
    return $riga['quantita'] < $minima ? "<<4-quantita_minima>> ($minima)" : '';
}

/** The sum of the goods, in smallest units. */
function kvMerce(array $righe): int
{
    return (int) array_sum(array_map(fn($riga) => $riga['importo'] * $riga['quantita'], $righe));
}

/** Why a cart can't be ordered as it is, one sentence each. */
function kvMotiviCarrello(array $righe): array
{
    $dati = kvDatiNegozio();
    $motivi = array_filter(array_map('kvMotivoRiga', $righe)) === [] ? [] : ["<<4-carrello_da_correggere>>"];
    $minimo = (int) floor($dati['minimo'] * $dati['scala'] / 10000 + 0.5);
    if (kvMerce($righe) < $minimo) {
        $motivi[] = "<<4-carrello_minimo>>: " . kvUnitsText($minimo) . ". <<4-carrello_manca>>: "
            . kvUnitsText($minimo - kvMerce($righe)) . '.';
    }
    return $motivi;
}

/** One line of the cart's form. */
function kvRigaModulo(array $riga): string
{
    $segno = kvSegnoRiga(['id' => $riga['id'], 'k' => $riga['chiavi']]);
    $nome = kvHtml($riga['testo']);
    $legame = $riga['pagina'] === '' ? $nome : '<a href="' . kvHtml($riga['pagina']) . "\">$nome</a>";
    $foto = $riga['foto'] === '' ? '' : '<img class="provino" src="' . kvHtml($riga['foto']) . '" alt="">';
    $motivo = kvMotivoRiga($riga);
    return '<tr' . ($motivo === '' ? '' : ' class="da-correggere"') . "><td>$foto$legame"
        . ($riga['scelte'] === '' ? '' : '<br><small>' . kvHtml($riga['scelte']) . '</small>')
        . ($riga['consegna'] === '' ? '' : '<br><small>' . kvHtml("<<4-tempo_consegna>> " . $riga['consegna']) . '</small>')
        . ($motivo === '' ? '' : '<br><strong>' . kvHtml($motivo) . '</strong>') . '</td><td><input type="number" name="q['
        . strtr($segno, '.', '-') . ']" min="0" max="99999" value="' . $riga['quantita'] . '" aria-label="'
        . kvHtml("<<4-quantita>>") . ': ' . $nome . '"></td><td>' . ($riga['ok'] ? kvUnitsText($riga['importo']) : '')
        . '</td><td>' . ($riga['ok'] ? kvUnitsText($riga['importo'] * $riga['quantita']) : '')
        . '</td><td><button type="submit" class="secondario" name="togli" value="' . $segno . '">' . kvHtml("<<4-togli>>")
        . '<span class="nascosto">: ' . $nome . '</span></button></td></tr>';
}

/** The cart as a form, with its sum and the way to the order or what keeps from it. */
function kvCarrelloSemplice(): string
{
    $righe = kvCarrelloVisitatore();
    if ($righe === []) {
        return '<p>' . kvHtml("<<4-carrello_vuoto>>") . '</p>';
    }
    $motivi = kvMotiviCarrello($righe);
    $titoli = array_map('kvHtml', ["<<4-carrello_articolo>>", "<<4-quantita>>", "<<4-prezzo>>", "<<4-carrello_importo>>"]);
    return '<form class="carrello" method="post" action="kvcarrello.php" accept-charset="utf-8"><table><thead><tr><th scope="col">'
        . implode('</th><th scope="col">', $titoli) . '</th><td></td></tr></thead><tbody>'
        . implode('', array_map('kvRigaModulo', $righe)) . '</tbody></table><p>' . kvHtml("<<4-carrello_merce>>")
        . ': <strong>' . kvUnitsText(kvMerce($righe)) . '</strong></p><p><button type="submit" class="secondario">'
        . kvHtml("<<4-aggiorna>>") . '</button></p></form>'
        . ($motivi === [] ? '<p><a class="bottone" href="order.htm">' . kvHtml("<<4-vai_all_ordine>>") . '</a></p>'
            : '<p class="avviso">' . kvHtml(implode(' ', $motivi)) . '</p>');
}

/** The last look at an order: its sum as it will be placed, and the form again, which now says that sum. */
function kvConfermaOrdine(string $conto, array $totali, string $dettaglio): string
{
    $campi = array_filter($_POST, 'is_string');
    unset($campi['senza_script']);
    $campi = ['Totale' => (string) $totali['totale'], 'Dettaglio' => $dettaglio] + $campi;
    $html = '<form class="modulo" method="post" action="kvorder.php" accept-charset="utf-8"><h2>'
        . kvHtml("<<4-ordine_riepilogo>>") . '</h2><pre class="riepilogo">' . kvHtml($conto) . '</pre>';
    foreach ($campi as $nome => $valore) {
        $html .= '<input type="hidden" name="' . kvHtmlUtf8((string) $nome) . '" value="'
            . kvHtmlUtf8(kvSentText($valore, true)) . '">';
    }
    return $html . '<p><button type="submit">' . kvHtml("<<4-invia_ordine>>") . '</button></p></form>';
}
