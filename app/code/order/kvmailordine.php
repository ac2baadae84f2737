<?php
// ***1.0.7***
// The mails of an order: to the customer as text and HTML, with the terms and the instruction on withdrawal attached; to
// the merchant as text.
include_once "kvmailparti.php";

/** One line of a table of amounts. */
function kvTableRow(string $name, string $amount, string $element = 'td'): string
{
    return '<tr><td>' . $name . "</td><$element style=\"text-align: right; vertical-align: top; white-space: nowrap\">"
        . $amount . "</$element></tr>\n";
}

/** Lines and totals of an order as a table of HTML in UTF-8; all amounts are in smallest units. */
function kvOrderTable(array $lines, array $totals): string
{
    $amount = fn(int $units): string => kvMailHtml(kvUtf8(kvUnitsText($units)));
    $html = '<table cellpadding="4">' . "\n";
    foreach ($lines as $line) {
        $choices = $line['scelte'] === '' ? '' : '<br><small>' . kvMailHtml(kvUtf8($line['scelte'])) . '</small>';
        $html .= kvTableRow($line['quantita'] . ' &times; ' . kvMailHtml(kvUtf8($line['testo'])) . $choices,
            $amount($line['importo'] * $line['quantita']));
    }
    foreach (kvAccountEntries($totals) as list($name, $value)) {
        $html .= kvTableRow(kvMailHtml(kvUtf8($name)), $amount($value));
    }
    return $html . kvTableRow('<strong>' . kvMailHtml(kvUtf8("<<4-carrello_totale>>")) . '</strong>',
        $amount($totals['totale']), 'th') . "</table>\n";
}

/**
 * Tells customer and merchant of an order. order: code, email, amount (the total in the shop's notation, without a
 * label), recipient and notes (what was typed), account and table (lines and totals as text and as HTML), end (what
 * follows them). An address that nobody has proven gets nothing that was typed: it could be words for a stranger.
 */
function kvMailOrder(array $order): void
{
    $shop = kvSender();
    $code = $order['code'];
    $subject = $shop['nome'] . ' - ' . kvUtf8("<<4-ordine_titolo>> ") . $code;
    $all = $order['recipient'] . "\r\n" . $order['account'] . $order['end'] . $order['notes'];
    $own = $all;
    if (!kvIsProvenAddress($order['email'])) {
        list($order['recipient'], $order['notes'], $own) = ['', '', $order['account'] . $order['end']];
    }
    $attachments = kvDocuments();
    $end = "\r\n" . kvUtf8(($attachments === [] ? '' : "<<4-mail_allegati>>\r\n") . "<<4-mail_recesso>> "
        . kvIndirizzo("kvrecesso.php")) . "\r\n\r\n" . $shop['firma'];
    // The summary is within the merchant's words: in HTML it is a table, which cuts them in two.
    $summary = kvMailParagraphs($order['recipient']) . $order['table'] . kvMailParagraphs($order['end'] . $order['notes']);
    $pieces = explode("\1", kvMailText($code, $order['amount'], "\1") . "\r\n\r\n" . $end);
    kvSendMailParts(['to' => $order['email'], 'from' => $shop['email'], 'subject' => $subject,
        'text' => kvMailText($code, $order['amount'], $own) . $end,
        'html' => kvMailPage($subject, implode($summary, array_map('kvMailParagraphs', $pieces))), 'attachments' => $attachments]);
    kvMail($shop['email'], $shop['email'], $subject, kvUtf8("<<4-ordine_codice>>: ") . "$code\r\n\r\n" . $all,
        $order['email']);
}
