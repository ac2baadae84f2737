<?php
// What waits for the merchant: orders of today and of this month, those to be worked on, customers to be approved.
include "bo_base.php";
include_once "bo_ordini.php";
include_once "bo_grafico.php";
include_once "bo_scorte.php";
boRequireAccess();

/** Orders since a moment (an SQL expression of ours): how many, and the sum of those still good, by currency. */
function boOrderSums(string $from): string
{
    $rows = kvQuery("SELECT valuta, COUNT(*) AS n, SUM(IF(stato IN ('annullato', 'rifiutato'), 0, totale)) AS somma"
        . " FROM kv_ordini WHERE creato >= $from GROUP BY valuta ORDER BY valuta") ?? [];
    $orders = array_sum(array_column($rows, 'n'));
    $sums = array_map(fn($row) => boAmountText($row['somma'], $row['valuta']), $rows);
    return '<strong>' . $orders . '</strong> ' . ($orders === 1 ? 'ordine' : 'ordini')
        . ($sums === [] ? '' : '<small>' . implode(', ', $sums) . '</small>');
}

/** A tile of the page: a heading, what it holds as HTML, and the page it leads to. */
function boTile(string $title, string $html, string $address): string
{
    return '<li><a href="' . kvHtml($address) . '"><h2>' . kvHtml($title) . '</h2><p>' . $html . '</p></a></li>';
}

/** A counted thing as HTML. */
function boCountText(int $n, string $one, string $many): string
{
    return '<strong>' . $n . '</strong> ' . ($n === 1 ? $one : $many);
}

// The database's own clock dates the orders, so it also says what today is.
$boToday = kvRiga("SELECT CURDATE() AS oggi, DATE_FORMAT(CURDATE(), '%Y-%m-01') AS mese")
    ?? ['oggi' => date('Y-m-d'), 'mese' => date('Y-m-01')];
$boWaiting = boCountRows('SELECT COUNT(*) AS n FROM kv_clienti WHERE approvato = 0');
$boWithdrawals = boCountRows("SELECT COUNT(*) AS n FROM kv_recessi WHERE stato = 'ricevuto'");
$boSoldOut = boCountRows("SELECT COUNT(*) AS n FROM kv_disponibilita WHERE tipo = 'A'"
    . ' AND (disponibile = 0 OR quantita <= 0)');
$boLow = boCountLowStock();
$boLatest = kvQuery('SELECT codice, creato, nome, totale, valuta, stato FROM kv_ordini ORDER BY id DESC LIMIT 8') ?? [];
boPageStart('Riepilogo', 'pannello.php');
echo '<ul class="riquadri">',
    boTile('Oggi', boOrderSums('CURDATE()'), boAddress('ordini.php', ['da' => $boToday['oggi']])),
    boTile('Questo mese', boOrderSums("DATE_FORMAT(CURDATE(), '%Y-%m-01')"),
        boAddress('ordini.php', ['da' => $boToday['mese']])),
    implode('', array_map(fn($list) => boTile(BO_LISTS[$list][0], boCountText(boCountRows(
        'SELECT COUNT(*) AS n FROM kv_ordini WHERE ' . BO_LISTS[$list][1]), 'ordine', 'ordini'),
        'ordini.php?stato=' . $list), array_keys(BO_LISTS))),
    boTile('Recessi da trattare', boCountText($boWithdrawals, 'recesso', 'recessi'), 'recessi.php?stato=ricevuto'),
    boTile('In attesa di approvazione', boCountText($boWaiting, 'cliente', 'clienti'), 'clienti.php?attesa=1'),
    boTile('Non disponibili', boCountText($boSoldOut, 'voce', 'voci'), 'disponibilita.php?vedi=esauriti'),
    boTile('In esaurimento', boCountText($boLow['A'] + $boLow['V'], 'voce', 'voci'),
        boAddress('disponibilita.php', ['tipo' => $boLow['A'] > 0 ? '' : 'V', 'vedi' => 'scarsi'])),
    '</ul>', boSalesChart(), '<h2>Ultimi ordini</h2>';
if ($boLatest === []) {
    echo '<p>Non ci sono ancora ordini.</p>';
} else {
    boTable(['Codice', 'Data', 'Cliente', '#Totale', 'Stato'], array_map(fn($row) => [
        '<a href="' . kvHtml(boAddress('ordine.php', ['codice' => $row['codice']])) . '">' . kvHtml($row['codice'])
            . '</a>',
        boDateText($row['creato']), kvHtmlUtf8($row['nome']), boAmountText($row['totale'], $row['valuta']),
        boStateText($row['stato'])], $boLatest), 'Ultimi ordini');
}
boPageEnd();
