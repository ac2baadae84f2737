<?php
// The orders, newest first, fifty a page; with ?codice= one order with its summary and state.
include "bo_base.php";
boRiservata();

const BO_STATI = ['nuovo', 'da verificare', 'pagato', 'rifiutato', 'spedito', 'annullato'];
const BO_PER_PAGINA = 50;

/** One order with the form that changes its state. */
function boOrdine(array $ordine): void
{
    boInizio('Ordine ' . $ordine['codice']);
    echo '<p>', boHtml($ordine['creato']), ' &middot; ', boHtml($ordine['nome']), ' &middot; <a href="mailto:',
        boHtml($ordine['email']), '">', boHtml($ordine['email']), '</a></p>',
        '<pre>', boHtml($ordine['riepilogo']), '</pre><form method="post" action="ordini.php?codice=',
        rawurlencode($ordine['codice']), '"><input type="hidden" name="gettone" value="', boGettone(),
        '"><label>Stato <select name="stato">';
    foreach (BO_STATI as $stato) {
        echo '<option', $stato === $ordine['stato'] ? ' selected' : '', '>', $stato, '</option>';
    }
    echo '</select></label><button type="submit">Salva</button></form><p><a href="ordini.php">Tutti gli ordini</a></p>';
    boFine();
}

function boElencoOrdini(int $pagina): void
{
    $righe = boQuery('SELECT codice, creato, nome, totale, valuta, metodo, stato FROM kv_ordini ORDER BY id DESC LIMIT '
        . (BO_PER_PAGINA + 1) . ' OFFSET ' . (($pagina - 1) * BO_PER_PAGINA));
    boInizio('Ordini');
    if ($righe === null || $righe === []) {
        echo '<p>Non ci sono ancora ordini.</p>';
        boFine();
        return;
    }
    echo '<table><thead><tr><th>Codice</th><th>Data</th><th>Cliente</th><th>Totale</th><th>Pagamento</th>',
        '<th>Stato</th></tr></thead><tbody>';
    foreach (array_slice($righe, 0, BO_PER_PAGINA) as $riga) {
        echo '<tr><td><a href="ordini.php?codice=', rawurlencode($riga['codice']), '">', boHtml($riga['codice']),
            '</a></td><td>', boHtml($riga['creato']), '</td><td>', boHtml($riga['nome']), '</td><td class="numero">',
            boHtml($riga['valuta'] . ' ' . $riga['totale']), '</td><td>', boHtml($riga['metodo']), '</td><td>',
            boHtml($riga['stato']), '</td></tr>';
    }
    echo '</tbody></table><p>';
    if ($pagina > 1) {
        echo '<a href="ordini.php?p=', $pagina - 1, '">Più recenti</a> ';
    }
    if (count($righe) > BO_PER_PAGINA) {
        echo '<a href="ordini.php?p=', $pagina + 1, '">Precedenti</a>';
    }
    echo '</p>';
    boFine();
}

$boCodice = boCampo($_GET, 'codice', 20);
if ($boCodice !== '' && $_SERVER['REQUEST_METHOD'] === 'POST') {
    $boStato = boCampo($_POST, 'stato', 20);
    if (boGettoneValido() && in_array($boStato, BO_STATI, true)) {
        boQuery('UPDATE kv_ordini SET stato = ? WHERE codice = ?', [$boStato, $boCodice]);
    }
    header('Location: ordini.php?codice=' . rawurlencode($boCodice), true, 303);
    exit;
}
$boOrdine = $boCodice === '' ? [] : boQuery('SELECT * FROM kv_ordini WHERE codice = ?', [$boCodice]);
if ($boOrdine) {
    boOrdine($boOrdine[0]);
} else {
    boElencoOrdini(max(1, (int) boCampo($_GET, 'p', 6)));
}
