<?php
// The orders of a search as a CSV file for spreadsheets of an Italian system: UTF-8 with a mark by which they know it,
// ";", CR LF, decimal comma. With ?righe=1 a row for each line of an order, which repeats what the order says.
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
    // The wide forms of these characters too: U+FF1D, U+FF0B, U+FF0D, U+FF20 as UTF-8.
    if (preg_match('/^(?:[=+\-@]|\xEF\xBC[\x9D\x8B\x8D\xA0])/', $testo)) {
        $testo = "'" . $testo;
    }
    return '"' . str_replace('"', '""', $testo) . '"';
}

/** The fields of the order form behind the columns of the table: heading => name in the column `dati`. */
const BO_CAMPI_CSV = ['Ragione sociale' => 'RagioneSociale', 'Partita IVA' => 'PartitaIVA', 'Indirizzo' => 'Indirizzo',
    'CAP' => 'CAP', 'Città' => 'Citta', 'Provincia' => 'Provincia', 'Paese' => 'Paese', 'Telefono' => 'Telefono',
    'Note' => 'Note'];

/** The further columns of a file of lines; words are those of the shop's first language, then the customer's. */
const BO_RIGHE_CSV = ['Riga', 'Codice articolo', 'Articolo', 'Opzioni', 'Articolo (cliente)', 'Opzioni (cliente)',
    'Quantità', 'Prezzo', 'Totale riga'];

/** The columns of BO_RIGHE_CSV for each line of an order; empty ones for an order that doesn't hold its lines. */
function boRigheCsv(array $righe): array
{
    $importo = fn(float $numero): string => number_format($numero, 2, ',', '');
    return $righe === [] ? [array_fill(0, count(BO_RIGHE_CSV), '')] : array_map(fn($n, $riga) => [(string) ($n + 1),
        boCampoCsv($riga['codice']), boCampoCsv($riga['prima']), boCampoCsv($riga['scelte_prima']),
        boCampoCsv($riga['testo']), boCampoCsv($riga['scelte']), (string) $riga['quantita'], $importo($riga['importo']),
        $importo($riga['importo'] * $riga['quantita'])], array_keys($righe), $righe);
}

/** An order as one row, or with `righe` as a row for each of its lines. */
function boRigaCsv(array $ordine, bool $righe): string
{
    $dati = boDatiOrdine($ordine['dati']);
    $campi = $dati['campi'];
    $riga = [boCampoCsv($ordine['codice']), boData($ordine['creato']), boCampoCsv($ordine['nome']),
        boCampoCsv($ordine['email']), number_format((float) $ordine['totale'], 2, ',', ''),
        boCampoCsv($ordine['valuta']), boCampoCsv($ordine['metodo']), boCampoCsv($ordine['stato'])];
    foreach (BO_CAMPI_CSV as $nome) {
        $riga[] = boCampoCsv($campi[$nome] ?? '');
    }
    $testi = [];
    foreach ($righe ? boRigheCsv($dati['righe']) : [[]] as $altre) {
        $testi[] = implode(';', array_merge($riga, $altre)) . "\r\n";
    }
    return implode('', $testi);
}

list(, $boDove, $boValori) = boFiltroOrdini($_GET);
header('Content-Type: text/csv; charset=utf-8');
$boRighe = isset($_GET['righe']);
header('Content-Disposition: attachment; filename="' . ($boRighe ? 'righe' : 'ordini') . '-' . date('Y-m-d') . '.csv"');
ob_end_flush();
echo "\u{FEFF}", 'Codice;Data;Cliente;E-mail;Totale;Valuta;Pagamento;Stato;',
    kvUtf8(implode(';', array_merge(array_keys(BO_CAMPI_CSV), $boRighe ? BO_RIGHE_CSV : []))), "\r\n";
// In steps, each from where the last one ended, so that many orders need no more memory than few.
$boUltimo = PHP_INT_MAX;
do {
    $boOrdini = kvQuery('SELECT ' . BO_COLONNE_ORDINE . ", dati FROM kv_ordini WHERE $boDove AND id < ?"
        . ' ORDER BY id DESC LIMIT 200', array_merge($boValori, [$boUltimo])) ?? [];
    foreach ($boOrdini as $boOrdine) {
        echo boRigaCsv($boOrdine, $boRighe);
        $boUltimo = (int) $boOrdine['id'];
    }
    flush();
} while (count($boOrdini) === 200);
