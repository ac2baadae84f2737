<?php
// The orders of a search as a CSV file for spreadsheets of an Italian system: UTF-8 with a mark by which they know it,
// ";", CR LF, decimal comma. With ?righe=1 a row for each line of an order, which repeats what the order says.
include "bo_base.php";
include_once "bo_ordini.php";
boRequireAccess();

/**
 * A customer's text as a field. One that a spreadsheet would take for a formula gets an apostrophe in front. Source:
 * OWASP, CSV Injection.
 */
function boCsvField(string $text): string
{
    $text = trim(preg_replace('/[\x00-\x1f\x7f]+/', ' ', $text));
    // The wide forms of these characters too: U+FF1D, U+FF0B, U+FF0D, U+FF20 as UTF-8.
    if (preg_match('/^(?:[=+\-@]|\xEF\xBC[\x9D\x8B\x8D\xA0])/', $text)) {
        $text = "'" . $text;
    }
    return '"' . str_replace('"', '""', $text) . '"';
}

/** The fields of the order form after the columns of the table: heading => name in the column `dati`. */
const BO_CSV_FIELDS = ['Ragione sociale' => 'RagioneSociale', 'Partita IVA' => 'PartitaIVA', 'Indirizzo' => 'Indirizzo',
    'CAP' => 'CAP', 'Città' => 'Citta', 'Provincia' => 'Provincia', 'Paese' => 'Paese', 'Telefono' => 'Telefono',
    'Note' => 'Note'];

/** The further columns of a file of lines; words are those of the shop's first language, then the customer's. */
const BO_CSV_LINE_FIELDS = ['Riga', 'Codice articolo', 'Articolo', 'Opzioni', 'Articolo (cliente)', 'Opzioni (cliente)',
    'Quantità', 'Prezzo', 'Totale riga'];

/** The columns of BO_CSV_LINE_FIELDS for each line of an order; empty ones for an order that doesn't hold its lines. */
function boCsvLines(array $rows): array
{
    $amount = fn(float $number): string => number_format($number, 2, ',', '');
    return $rows === [] ? [array_fill(0, count(BO_CSV_LINE_FIELDS), '')] : array_map(fn($n, $row) => [(string) ($n + 1),
        boCsvField($row['codice']), boCsvField($row['prima']), boCsvField($row['scelte_prima']),
        boCsvField($row['testo']), boCsvField($row['scelte']), (string) $row['quantita'], $amount($row['importo']),
        $amount($row['importo'] * $row['quantita'])], array_keys($rows), $rows);
}

/** An order as one row, or with `rows` as a row for each of its lines. */
function boCsvRow(array $order, bool $rows): string
{
    $data = boOrderData($order['dati']);
    $fields = $data['campi'];
    $row = [boCsvField($order['codice']), boDateText($order['creato']), boCsvField($order['nome']),
        boCsvField($order['email']), number_format((float) $order['totale'], 2, ',', ''),
        boCsvField($order['valuta']), boCsvField($order['metodo']), boCsvField($order['stato'])];
    foreach (BO_CSV_FIELDS as $name) {
        $row[] = boCsvField($fields[$name] ?? '');
    }
    $texts = [];
    foreach ($rows ? boCsvLines($data['righe']) : [[]] as $others) {
        $texts[] = implode(';', array_merge($row, $others)) . "\r\n";
    }
    return implode('', $texts);
}

list(, $boWhere, $boValues) = boOrderFilter($_GET);
header('Content-Type: text/csv; charset=utf-8');
$boRows = isset($_GET['righe']);
header('Content-Disposition: attachment; filename="' . ($boRows ? 'righe' : 'ordini') . '-' . date('Y-m-d') . '.csv"');
ob_end_flush();
echo "\u{FEFF}", 'Codice;Data;Cliente;E-mail;Totale;Valuta;Pagamento;Stato;',
    kvUtf8(implode(';', array_merge(array_keys(BO_CSV_FIELDS), $boRows ? BO_CSV_LINE_FIELDS : []))), "\r\n";
// In steps, each from where the last one ended, so that many orders need no more memory than few.
$boLast = PHP_INT_MAX;
do {
    $boOrders = kvQuery('SELECT ' . BO_ORDER_COLUMNS . ", dati FROM kv_ordini WHERE $boWhere AND id < ?"
        . ' ORDER BY id DESC LIMIT 200', array_merge($boValues, [$boLast])) ?? [];
    foreach ($boOrders as $boOrder) {
        echo boCsvRow($boOrder, $boRows);
        $boLast = (int) $boOrder['id'];
    }
    flush();
} while (count($boOrders) === 200);
