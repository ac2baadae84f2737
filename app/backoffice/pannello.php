<?php
// What waits for the merchant: orders of today and of this month, those to be worked on, customers to be approved.
include "bo_base.php";
include_once "bo_ordini.php";
include_once "bo_grafico.php";
include_once "bo_scorte.php";
boRiservata();

/** Orders since a moment (an SQL expression of ours): how many, and the sum of those still good, by currency. */
function boSomma(string $da): string
{
    $righe = kvQuery("SELECT valuta, COUNT(*) AS n, SUM(IF(stato IN ('annullato', 'rifiutato'), 0, totale)) AS somma"
        . " FROM kv_ordini WHERE creato >= $da GROUP BY valuta ORDER BY valuta") ?? [];
    $ordini = array_sum(array_column($righe, 'n'));
    $somme = array_map(fn($riga) => boImporto($riga['somma'], $riga['valuta']), $righe);
    return '<strong>' . $ordini . '</strong> ' . ($ordini === 1 ? 'ordine' : 'ordini')
        . ($somme === [] ? '' : '<small>' . implode(', ', $somme) . '</small>');
}

/** A tile of the page: a heading, what it holds as HTML, and the page behind it. */
function boRiquadro(string $titolo, string $html, string $indirizzo): string
{
    return '<li><a href="' . kvHtml($indirizzo) . '"><h2>' . kvHtml($titolo) . '</h2><p>' . $html . '</p></a></li>';
}

/** A counted thing as HTML. */
function boQuanti(int $n, string $uno, string $molti): string
{
    return '<strong>' . $n . '</strong> ' . ($n === 1 ? $uno : $molti);
}

// The database's own clock dates the orders, so it also says what today is.
$boOggi = kvRiga("SELECT CURDATE() AS oggi, DATE_FORMAT(CURDATE(), '%Y-%m-01') AS mese")
    ?? ['oggi' => date('Y-m-d'), 'mese' => date('Y-m-01')];
$boAttesa = boConta('SELECT COUNT(*) AS n FROM kv_clienti WHERE approvato = 0');
$boRecessi = boConta("SELECT COUNT(*) AS n FROM kv_recessi WHERE stato = 'ricevuto'");
$boEsauriti = boConta("SELECT COUNT(*) AS n FROM kv_disponibilita WHERE tipo = 'A'"
    . ' AND (disponibile = 0 OR quantita <= 0)');
$boScarsi = boVociScarse();
$boUltimi = kvQuery('SELECT codice, creato, nome, totale, valuta, stato FROM kv_ordini ORDER BY id DESC LIMIT 8') ?? [];
boInizio('Riepilogo', 'pannello.php');
echo '<ul class="riquadri">',
    boRiquadro('Oggi', boSomma('CURDATE()'), boIndirizzo('ordini.php', ['da' => $boOggi['oggi']])),
    boRiquadro('Questo mese', boSomma("DATE_FORMAT(CURDATE(), '%Y-%m-01')"),
        boIndirizzo('ordini.php', ['da' => $boOggi['mese']])),
    implode('', array_map(fn($elenco) => boRiquadro(BO_ELENCHI[$elenco][0], boQuanti(boConta(
        'SELECT COUNT(*) AS n FROM kv_ordini WHERE ' . BO_ELENCHI[$elenco][1]), 'ordine', 'ordini'),
        'ordini.php?stato=' . $elenco), array_keys(BO_ELENCHI))),
    boRiquadro('Recessi da trattare', boQuanti($boRecessi, 'recesso', 'recessi'), 'recessi.php?stato=ricevuto'),
    boRiquadro('In attesa di approvazione', boQuanti($boAttesa, 'cliente', 'clienti'), 'clienti.php?attesa=1'),
    boRiquadro('Non disponibili', boQuanti($boEsauriti, 'voce', 'voci'), 'disponibilita.php?vedi=esauriti'),
    boRiquadro('In esaurimento', boQuanti($boScarsi['A'] + $boScarsi['V'], 'voce', 'voci'),
        boIndirizzo('disponibilita.php', ['tipo' => $boScarsi['A'] > 0 ? '' : 'V', 'vedi' => 'scarsi'])),
    '</ul>', boGraficoVendite(), '<h2>Ultimi ordini</h2>';
if ($boUltimi === []) {
    echo '<p>Non ci sono ancora ordini.</p>';
} else {
    boTabella(['Codice', 'Data', 'Cliente', '#Totale', 'Stato'], array_map(fn($riga) => [
        '<a href="' . kvHtml(boIndirizzo('ordine.php', ['codice' => $riga['codice']])) . '">' . kvHtml($riga['codice'])
            . '</a>',
        boData($riga['creato']), kvHtmlUtf8($riga['nome']), boImporto($riga['totale'], $riga['valuta']),
        boStato($riga['stato'])], $boUltimi), 'Ultimi ordini');
}
boFine();
