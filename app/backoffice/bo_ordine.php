<?php
// What the page of an order and its prints show: the address, the lines with their amounts.

/** The customer's address, or the bare name of an order without fields. */
function boRecipient(array $order, array $fields): void
{
    $lines = [trim(($fields['Nome'] ?? '') . ' ' . ($fields['Cognome'] ?? '')), $fields['RagioneSociale'] ?? '',
        $fields['Indirizzo'] ?? '',
        trim(($fields['CAP'] ?? '') . ' ' . ($fields['Citta'] ?? '') . ' ' . ($fields['Provincia'] ?? '')),
        $fields['Paese'] ?? ''];
    $lines = array_filter($lines, fn($line) => $line !== '');
    $lines = array_map('kvHtmlUtf8', $lines === [] ? [$order['nome']] : $lines);
    echo '<address>', implode('<br>', $lines), '</address><dl>';
    $entries = ['E-mail' => $order['email'] === '' ? '' : '<a href="mailto:' . kvHtml(rawurlencode($order['email'])) . '">' . kvHtmlUtf8($order['email'])
        . '</a>', 'Telefono' => kvHtmlUtf8($fields['Telefono'] ?? ''), 'Partita IVA' => kvHtmlUtf8($fields['PartitaIVA'] ?? '')];
    if ((int) $order['cliente'] > 0) {
        $number = (int) $order['cliente'];
        $entries['Cliente'] = '<a href="cliente.php?id=' . $number . '">n. ' . $number . '</a>';
    }
    foreach ($entries as $name => $html) {
        echo $html === '' ? '' : "<dt>$name</dt><dd>$html</dd>";
    }
    echo '</dl>';
}

/** The lines with their amounts, and the totals under them; the plain summary for an order that doesn't hold them. */
function boOrderContent(array $order, array $data): void
{
    if ($data['righe'] === []) {
        echo '<pre>', kvHtmlUtf8($order['riepilogo']), '</pre>';
        return;
    }
    boTable(['Articolo', '#Quantità', '#Importo', '#Totale'], array_map(fn($line) => [
        boLineName($line), (string) $line['quantita'], boDecimalText($line['importo']),
        boDecimalText($line['importo'] * $line['quantita'])], $data['righe']), 'Articoli');
    echo '<dl class="totali">';
    $vat = ($data['totali']['iva'] ?? 0) < 0 ? 'IVA non dovuta' : 'IVA';
    foreach (['merce' => 'Totale articoli', 'sconto' => 'Sconto', 'iva' => $vat, 'spese' => 'Spese di spedizione',
              'ivaspese' => 'IVA sulle spese'] as $key => $name) {
        $amount = $data['totali'][$key] ?? 0.0;
        if ($amount != 0.0) {
            echo "<dt>$name</dt><dd>", $key === 'sconto' ? '-' : '', boDecimalText($amount), '</dd>';
        }
    }
    echo '<dt>Totale</dt><dd><strong>', boAmountText($order['totale'], $order['valuta']), '</strong></dd></dl>';
}
