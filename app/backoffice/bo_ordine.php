<?php
// What the page of an order and its prints show: the address, the lines with their amounts.

/** The customer's address, or the bare name of an order without fields. */
function boDestinatario(array $ordine, array $campi): void
{
    $righe = [trim(($campi['Nome'] ?? '') . ' ' . ($campi['Cognome'] ?? '')), $campi['RagioneSociale'] ?? '',
        $campi['Indirizzo'] ?? '',
        trim(($campi['CAP'] ?? '') . ' ' . ($campi['Citta'] ?? '') . ' ' . ($campi['Provincia'] ?? '')),
        $campi['Paese'] ?? ''];
    $righe = array_filter($righe, fn($riga) => $riga !== '');
    $righe = array_map('kvHtmlUtf8', $righe === [] ? [$ordine['nome']] : $righe);
    echo '<address>', implode('<br>', $righe), '</address><dl>';
    $voci = ['E-mail' => $ordine['email'] === '' ? '' : '<a href="mailto:' . kvHtml(rawurlencode($ordine['email'])) . '">' . kvHtmlUtf8($ordine['email'])
        . '</a>', 'Telefono' => kvHtmlUtf8($campi['Telefono'] ?? ''), 'Partita IVA' => kvHtmlUtf8($campi['PartitaIVA'] ?? '')];
    if ((int) $ordine['cliente'] > 0) {
        $numero = (int) $ordine['cliente'];
        $voci['Cliente'] = '<a href="cliente.php?id=' . $numero . '">n. ' . $numero . '</a>';
    }
    foreach ($voci as $nome => $html) {
        echo $html === '' ? '' : "<dt>$nome</dt><dd>$html</dd>";
    }
    echo '</dl>';
}

/** The lines with their amounts, and the totals under them; the plain summary for an order that doesn't hold them. */
function boContenuto(array $ordine, array $dati): void
{
    if ($dati['righe'] === []) {
        echo '<pre>', kvHtmlUtf8($ordine['riepilogo']), '</pre>';
        return;
    }
    boTabella(['Articolo', '#Quantità', '#Importo', '#Totale'], array_map(fn($riga) => [
        boNomeRiga($riga), (string) $riga['quantita'], boDecimale($riga['importo']),
        boDecimale($riga['importo'] * $riga['quantita'])], $dati['righe']), 'Articoli');
    echo '<dl class="totali">';
    $iva = ($dati['totali']['iva'] ?? 0) < 0 ? 'IVA non dovuta' : 'IVA';
    foreach (['merce' => 'Totale articoli', 'sconto' => 'Sconto', 'iva' => $iva, 'spese' => 'Spese di spedizione',
              'ivaspese' => 'IVA sulle spese'] as $chiave => $nome) {
        $importo = $dati['totali'][$chiave] ?? 0.0;
        if ($importo != 0.0) {
            echo "<dt>$nome</dt><dd>", $chiave === 'sconto' ? '-' : '', boDecimale($importo), '</dd>';
        }
    }
    echo '<dt>Totale</dt><dd><strong>', boImporto($ordine['totale'], $ordine['valuta']), '</strong></dd></dl>';
}
