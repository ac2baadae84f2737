<?php
// An order on paper: the order itself for the merchant, the delivery note without prices for the parcel, the receipt.
include "bo_base.php";
include_once "bo_ordini.php";
include_once "bo_ordine.php";
include_once "kvmail.php";
boRequireAccess();

/** The prints: heading, whether amounts are on it. */
const BO_PRINTS = ['ordine' => ['Ordine', true], 'consegna' => ['Documento di consegna', false],
    'ricevuta' => ['Ricevuta', true]];

/** The shop as it signs its mails, else its name alone. */
function boPrintedSender(): string
{
    $shop = kvSender();
    $signature = trim($shop['firma']);
    $name = strpos($signature, $shop['nome']) === 0 ? '' : $shop['nome'] . "\n";
    return '<p>' . nl2br(kvHtmlUtf8(trim($name . $signature))) . '</p>';
}

/** The lines without amounts, with room for a mark beside each; who receives them signs below. */
function boDeliveryLines(array $data): void
{
    boTable(['#Quantità', 'Codice', 'Articolo'], array_map(fn($row) => [(string) $row['quantita'],
        kvHtmlUtf8($row['codice']), boLineName($row)], $data['righe']), 'Articoli consegnati');
    $pieces = array_sum(array_column($data['righe'], 'quantita'));
    echo '<p>Pezzi: ', $pieces, '</p><p class="firma">Data e firma del destinatario</p>';
}

$boOrder = kvRiga('SELECT * FROM kv_ordini WHERE codice = ?', [kvLineField($_GET, 'codice', 20)]);
$boWhat = kvCampo($_GET, 'cosa', 10);
if ($boOrder === null || !isset(BO_PRINTS[$boWhat])) {
    boCloseWith(404, 'Questo ordine non esiste.');
}
$boData = boOrderData($boOrder['dati']);
list($boName, $boAmounts) = BO_PRINTS[$boWhat];
boPageStart($boName . ' ' . $boOrder['codice'], 'ordini.php');
echo '<p class="non-stampare"><button type="button" data-stampa hidden>Stampa</button> <a href="',
    kvHtml(boAddress('ordine.php', ['codice' => $boOrder['codice']])), '">Torna all\'ordine</a></p>',
    '<div class="colonne">', boPrintedSender(), '<section><h2>Destinatario</h2>';
boRecipient($boOrder, $boData['campi']);
echo '</section></div><p class="sommario">Ordine ', kvHtml($boOrder['codice']), ' del ', boDateText($boOrder['creato'], false),
    $boAmounts ? ' &middot; Pagamento: ' . boMethodName($boOrder, $boData) : '',
    $boWhat === 'ordine' ? ' &middot; ' . boStateText($boOrder['stato']) : '', '</p>';
if ($boAmounts || $boData['righe'] === []) {
    boOrderContent($boOrder, $boData);
} else {
    boDeliveryLines($boData);
}
if ($boWhat === 'ricevuta') {
    echo '<p>', in_array($boOrder['stato'], ['pagato', 'spedito'], true) ? 'Importo ricevuto.' : 'Importo da ricevere.',
        ' La ricevuta non vale come fattura.</p>';
} elseif (($boData['campi']['Note'] ?? '') !== '') {
    echo '<h2>Note del cliente</h2><p class="testo">', nl2br(kvHtmlUtf8($boData['campi']['Note'])), '</p>';
}
boPageEnd();
