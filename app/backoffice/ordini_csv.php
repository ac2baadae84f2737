<?php
// The orders of a search as a CSV file for spreadsheets of an Italian system: UTF-8 with a mark by which they know it,
// ";", CR LF, decimal comma.
include "bo_base.php";
include_once "bo_ordini.php";
boRiservata();

/**
 * A customer's text as a field. One that a spreadsheet would take for a formula gets an apostrophe in front. Source:
 * OWASP, CSV Injection.
 */
function boCampoCsv(string $testo): string
{
    $testo = trim(preg_replace('/[\x00-\x1f\x7f]+/', ' ', $testo));
    if (preg_match('/^[=+\-@]/', $testo)) {
        $testo = "'" . $testo;
    }
    return '"' . str_replace('"', '""', $testo) . '"';
}

/** The fields of the order form behind the columns of the table: heading => name in the column `dati`. */
const BO_CAMPI_CSV = ['Ragione sociale' => 'RagioneSociale', 'Partita IVA' => 'PartitaIVA', 'Indirizzo' => 'Indirizzo',
    'CAP' => 'CAP', 'Città' => 'Citta', 'Provincia' => 'Provincia', 'Paese' => 'Paese', 'Telefono' => 'Telefono',
    'Note' => 'Note'];

function boRigaCsv(array $ordine): string
{
    $campi = boDatiOrdine($ordine['dati'])['campi'];
    $riga = [boCampoCsv($ordine['codice']), boData($ordine['creato']), boCampoCsv($ordine['nome']),
        boCampoCsv($ordine['email']), number_format((float) $ordine['totale'], 2, ',', ''),
        boCampoCsv($ordine['valuta']), boCampoCsv($ordine['metodo']), boCampoCsv($ordine['stato'])];
    foreach (BO_CAMPI_CSV as $nome) {
        $riga[] = boCampoCsv($campi[$nome] ?? '');
    }
    return implode(';', $riga) . "\r\n";
}

list(, $boDove, $boValori) = boFiltroOrdini($_GET);
header('Content-Type: text/csv; charset=utf-8');
header('Content-Disposition: attachment; filename="ordini-' . date('Y-m-d') . '.csv"');
ob_end_flush();
echo "\u{FEFF}", 'Codice;Data;Cliente;E-mail;Totale;Valuta;Pagamento;Stato;', kvUtf8(implode(';', array_keys(BO_CAMPI_CSV))), "\r\n";
// In steps, each from where the last one ended, so that many orders need no more memory than few.
$boUltimo = PHP_INT_MAX;
do {
    $boOrdini = kvQuery('SELECT ' . BO_COLONNE_ORDINE . ", dati FROM kv_ordini WHERE $boDove AND id < ?"
        . ' ORDER BY id DESC LIMIT 200', array_merge($boValori, [$boUltimo])) ?? [];
    foreach ($boOrdini as $boOrdine) {
        echo boRigaCsv($boOrdine);
        $boUltimo = (int) $boOrdine['id'];
    }
    flush();
} while (count($boOrdini) === 200);
