<?php
// ***1.0.7***
// The mails of an order: to the customer as text and HTML, with the terms and the instruction on withdrawal attached; to
// the merchant as text.
include_once "kvmailparti.php";

/** One line of a table of amounts. */
function kvRigaTabella(string $nome, string $importo, string $elemento = 'td'): string
{
    return '<tr><td>' . $nome . "</td><$elemento style=\"text-align: right; vertical-align: top; white-space: nowrap\">"
        . $importo . "</$elemento></tr>\n";
}

/** Lines and totals of an order as a table of HTML in UTF-8; all amounts are in smallest units. */
function kvTabellaOrdine(array $righe, array $totali): string
{
    $importo = fn(int $minimi): string => kvHtmlMail(kvUtf8(kvUnitsText($minimi)));
    $html = '<table cellpadding="4">' . "\n";
    foreach ($righe as $riga) {
        $scelte = $riga['scelte'] === '' ? '' : '<br><small>' . kvHtmlMail(kvUtf8($riga['scelte'])) . '</small>';
        $html .= kvRigaTabella($riga['quantita'] . ' &times; ' . kvHtmlMail(kvUtf8($riga['testo'])) . $scelte,
            $importo($riga['importo'] * $riga['quantita']));
    }
    foreach (kvVociConto($totali) as list($nome, $valore)) {
        $html .= kvRigaTabella(kvHtmlMail(kvUtf8($nome)), $importo($valore));
    }
    return $html . kvRigaTabella('<strong>' . kvHtmlMail(kvUtf8("<<4-carrello_totale>>")) . '</strong>',
        $importo($totali['totale']), 'th') . "</table>\n";
}

/**
 * Tells customer and merchant of an order. ordine: codice, email, importo (the total in the shop's notation, without a
 * label), destinatario and note (what was typed), conto and tabella (lines and totals as text and as HTML), coda (what
 * follows them). An address that nobody has proven gets nothing that was typed: it could be words for a stranger.
 */
function kvMailOrdine(array $ordine): void
{
    $negozio = kvMittente();
    $codice = $ordine['codice'];
    $oggetto = $negozio['nome'] . ' - ' . kvUtf8("<<4-ordine_titolo>> ") . $codice;
    $tutto = $ordine['destinatario'] . "\r\n" . $ordine['conto'] . $ordine['coda'] . $ordine['note'];
    $proprio = $tutto;
    if (!kvIndirizzoProvato($ordine['email'])) {
        list($ordine['destinatario'], $ordine['note'], $proprio) = ['', '', $ordine['conto'] . $ordine['coda']];
    }
    $allegati = kvDocumenti();
    $fine = "\r\n" . kvUtf8(($allegati === [] ? '' : "<<4-mail_allegati>>\r\n") . "<<4-mail_recesso>> "
        . kvIndirizzo("kvrecesso.php")) . "\r\n\r\n" . $negozio['firma'];
    // The summary stands within the merchant's words: in HTML it is a table, which cuts them in two.
    $riepilogo = kvParagrafiMail($ordine['destinatario']) . $ordine['tabella'] . kvParagrafiMail($ordine['coda'] . $ordine['note']);
    $pezzi = explode("\1", kvTestoMail($codice, $ordine['importo'], "\1") . "\r\n\r\n" . $fine);
    kvMailParti(['a' => $ordine['email'], 'da' => $negozio['email'], 'oggetto' => $oggetto,
        'testo' => kvTestoMail($codice, $ordine['importo'], $proprio) . $fine,
        'html' => kvPaginaMail($oggetto, implode($riepilogo, array_map('kvParagrafiMail', $pezzi))), 'allegati' => $allegati]);
    kvMail($negozio['email'], $negozio['email'], $oggetto, kvUtf8("<<4-ordine_codice>>: ") . "$codice\r\n\r\n" . $tutto,
        $ordine['email']);
}
