<?php
// An order on paper: the order itself for the merchant, the delivery note without prices for the parcel, the receipt.
include "bo_base.php";
include_once "bo_ordini.php";
include_once "bo_ordine.php";
include_once "kvmail.php";
boRiservata();

/** The prints: heading, whether amounts are on it. */
const BO_STAMPE = ['ordine' => ['Ordine', true], 'consegna' => ['Documento di consegna', false],
    'ricevuta' => ['Ricevuta', true]];

/** The shop as it signs its mails, else its name alone. */
function boMittenteStampa(): string
{
    $negozio = kvSender();
    $firma = trim($negozio['firma']);
    $nome = strpos($firma, $negozio['nome']) === 0 ? '' : $negozio['nome'] . "\n";
    return '<p>' . nl2br(kvHtmlUtf8(trim($nome . $firma))) . '</p>';
}

/** The lines without amounts, with room for a mark beside each; who receives them signs below. */
function boConsegna(array $dati): void
{
    boTabella(['#Quantità', 'Codice', 'Articolo'], array_map(fn($riga) => [(string) $riga['quantita'],
        kvHtmlUtf8($riga['codice']), boNomeRiga($riga)], $dati['righe']), 'Articoli consegnati');
    $pezzi = array_sum(array_column($dati['righe'], 'quantita'));
    echo '<p>Pezzi: ', $pezzi, '</p><p class="firma">Data e firma del destinatario</p>';
}

$boOrdine = kvRiga('SELECT * FROM kv_ordini WHERE codice = ?', [kvLineField($_GET, 'codice', 20)]);
$boCosa = kvCampo($_GET, 'cosa', 10);
if ($boOrdine === null || !isset(BO_STAMPE[$boCosa])) {
    boChiudi(404, 'Questo ordine non esiste.');
}
$boDati = boDatiOrdine($boOrdine['dati']);
list($boNome, $boImporti) = BO_STAMPE[$boCosa];
boInizio($boNome . ' ' . $boOrdine['codice'], 'ordini.php');
echo '<p class="non-stampare"><button type="button" data-stampa hidden>Stampa</button> <a href="',
    kvHtml(boIndirizzo('ordine.php', ['codice' => $boOrdine['codice']])), '">Torna all\'ordine</a></p>',
    '<div class="colonne">', boMittenteStampa(), '<section><h2>Destinatario</h2>';
boDestinatario($boOrdine, $boDati['campi']);
echo '</section></div><p class="sommario">Ordine ', kvHtml($boOrdine['codice']), ' del ', boData($boOrdine['creato'], false),
    $boImporti ? ' &middot; Pagamento: ' . boNomeMetodo($boOrdine, $boDati) : '',
    $boCosa === 'ordine' ? ' &middot; ' . boStato($boOrdine['stato']) : '', '</p>';
if ($boImporti || $boDati['righe'] === []) {
    boContenuto($boOrdine, $boDati);
} else {
    boConsegna($boDati);
}
if ($boCosa === 'ricevuta') {
    echo '<p>', in_array($boOrdine['stato'], ['pagato', 'spedito'], true) ? 'Importo ricevuto.' : 'Importo da ricevere.',
        ' La ricevuta non vale come fattura.</p>';
} elseif (($boDati['campi']['Note'] ?? '') !== '') {
    echo '<h2>Note del cliente</h2><p class="testo">', nl2br(kvHtmlUtf8($boDati['campi']['Note'])), '</p>';
}
boFine();
