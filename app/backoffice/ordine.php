<?php
// One order: what was bought, by whom, where it goes; its state; to be printed as it stands.
include "bo_base.php";
include_once "bo_ordini.php";
include_once "bo_recessi.php";
boRiservata();

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
        kvHtmlUtf8($riga['testo']) . ($riga['scelte'] === '' ? '' : '<small>' . kvHtmlUtf8($riga['scelte']) . '</small>'),
        (string) $riga['quantita'], boDecimale($riga['importo']), boDecimale($riga['importo'] * $riga['quantita'])],
        $dati['righe']), 'Articoli');
    echo '<dl class="totali">';
    foreach (['merce' => 'Totale articoli', 'sconto' => 'Sconto', 'iva' => ($dati['totali']['iva'] ?? 0) < 0 ? 'IVA non dovuta' : 'IVA', 'spese' => 'Spese di spedizione',
              'ivaspese' => 'IVA sulle spese'] as $chiave => $nome) {
        $importo = $dati['totali'][$chiave] ?? 0.0;
        if ($importo != 0.0) {
            echo "<dt>$nome</dt><dd>", $chiave === 'sconto' ? '-' : '', boDecimale($importo), '</dd>';
        }
    }
    echo '<dt>Totale</dt><dd><strong>', boImporto($ordine['totale'], $ordine['valuta']), '</strong></dd></dl>';
}

/** The form of the state. Whether stock moves is asked where an order has pieces and is cancelled or comes back. */
function boModuloStato(array $ordine, array $dati): void
{
    $annullato = $ordine['stato'] === 'annullato';
    echo '<form class="modulo non-stampare" method="post" accept-charset="utf-8" action="',
        kvHtml(boIndirizzo('ordine.php', ['codice' => $ordine['codice']])), '">', boCampoGettone(),
        '<input type="hidden" name="prima" value="', kvHtml($ordine['stato']), '"><h2>Stato</h2>',
        '<label>Stato dell\'ordine <select name="stato">', boScelte(boSceltaStati(), $ordine['stato']),
        '</select></label>';
    if (boPezziOrdine($dati['righe']) !== []) {
        echo '<label class="spunta"><input type="checkbox" name="scorte" value="1" checked> <span>',
            $annullato ? 'Se l\'ordine torna valido, togliere di nuovo i pezzi dalle quantità disponibili'
                : 'Se l\'ordine viene annullato, rimettere i pezzi tra le quantità disponibili', '</span></label>';
    }
    echo '<p><button type="submit">Salva</button></p></form>';
}

$boCodice = kvRigaCampo($_GET, 'codice', 20);
$boOrdine = kvRiga('SELECT * FROM kv_ordini WHERE codice = ?', [$boCodice]);
if ($boOrdine === null) {
    boChiudi(404, 'Questo ordine non esiste.');
}
if (boInvio()) {
    $boPrima = kvCampo($_POST, 'prima', 20);
    $boDopo = kvCampo($_POST, 'stato', 20);
    if (in_array($boDopo, BO_STATI, true) && $boDopo !== $boPrima) {
        $boFatto = boCambiaStato($boOrdine, $boPrima, $boDopo, isset($_POST['scorte']));
        boAvvisa($boFatto ? 'Lo stato dell\'ordine è ora: ' . $boDopo . '.'
            : 'Lo stato è cambiato nel frattempo: controllare e ripetere.', !$boFatto);
    }
    boVai(boIndirizzo('ordine.php', ['codice' => $boCodice]));
}
$boDati = boDatiOrdine($boOrdine['dati']);
boInizio('Ordine ' . $boOrdine['codice'], 'ordini.php');
?>
<p class="sommario"><?php echo boData($boOrdine['creato']), ' &middot; ', boStato($boOrdine['stato']), ' &middot; ',
    kvHtmlUtf8($boOrdine['metodo']); ?></p>
<?php if (($boOrdine['pagamento'] ?? '') !== '') { ?>
<p>Pagamento confermato: <?php echo kvHtmlUtf8($boOrdine['pagamento']); ?></p>
<?php } ?>
<div class="colonne">
<section><h2>Destinatario</h2>
<?php boDestinatario($boOrdine, $boDati['campi']); ?>
</section>
<?php boModuloStato($boOrdine, $boDati); ?>
</div>
<h2>Articoli</h2>
<?php
boContenuto($boOrdine, $boDati);
boRecessiOrdine($boOrdine);
if (($boDati['campi']['Note'] ?? '') !== '') {
    echo '<h2>Note</h2><p class="testo">', nl2br(kvHtmlUtf8($boDati['campi']['Note'])), '</p>';
}
?>
<p class="non-stampare"><button type="button" data-stampa hidden>Stampa</button>
<a href="ordini.php">Tutti gli ordini</a></p>
<?php
boFine();
