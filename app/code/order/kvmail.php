<?php
// ***1.0.7***
// Mails of the shop: UTF-8 in Base64, so that neither the words nor the line ends of a visitor can become a header.
// Source: RFC 2045, section 6.8; RFC 2047.

/** An UTF-8 text of a mail header, in encoded words of at most 75 characters, cut between characters. */
function kvHeaderText(string $text): string
{
    $words = [];
    $word = '';
    foreach (preg_split('//u', preg_replace('/[\x00-\x1f\x7f]+/', ' ', $text), -1, PREG_SPLIT_NO_EMPTY) as $character) {
        if (strlen($word . $character) > 42) {
            $words[] = $word;
            $word = '';
        }
        $word .= $character;
    }
    $words[] = $word;
    return implode("\r\n ", array_map(fn($p) => '=?UTF-8?B?' . base64_encode($p) . '?=', $words));
}

/** Whether a text is one plain mail address. */
function kvIsValidAddress(string $email): bool
{
    return strlen($email) <= 190 && filter_var($email, FILTER_VALIDATE_EMAIL) !== false;
}

/**
 * Hands a mail to the server; false when an address isn't one or the server refused it. `head`: the lines of its head
 * that say what `body` is; `replyTo`: who gets the answers.
 */
function kvSendMail(array $mail, array $head, string $body): bool
{
    list('to' => $to, 'from' => $from, 'subject' => $subject, 'replyTo' => $replyTo) = $mail + ['replyTo' => ''];
    if (!kvIsValidAddress($to)) {
        return false;
    }
    if (kvIsValidAddress($from)) {
        $name = trim(kvSender()['nome']);
        $head[] = 'From: ' . ($name === '' ? $from : kvHeaderText($name) . ' <' . $from . '>');
    }
    if (kvIsValidAddress($replyTo)) {
        $head[] = 'Reply-To: ' . $replyTo;
    }
    $head = implode("\r\n", array_merge(['MIME-Version: 1.0'], $head));
    // Where mails that can't be delivered go back to. It reaches a command line: plain characters only. A host that lets
    // nobody say it takes the mail without.
    $envelope = preg_match('/^[A-Za-z0-9][A-Za-z0-9._+-]*@[A-Za-z0-9.-]+$/D', $from) ? '-f' . $from : '';
    $subject = kvHeaderText($subject);
    if (@mail($to, $subject, $body, $head, $envelope) || ($envelope !== '' && @mail($to, $subject, $body, $head))) {
        return true;
    }
    error_log('Shop mail: a mail was refused');
    return false;
}

/** Sends one mail of plain text in UTF-8; see kvSendMail. */
function kvMail(string $to, string $from, string $subject, string $text, string $replyTo = ''): bool
{
    return kvSendMail(['to' => $to, 'from' => $from, 'subject' => $subject, 'replyTo' => $replyTo],
        ['Content-Type: text/plain; charset=utf-8', 'Content-Transfer-Encoding: base64'],
        rtrim(chunk_split(base64_encode($text))));
}

/** The shop's own address, name and signature, in UTF-8. */
function kvSender(): array
{
    $lines = kvLinee(<<<'KORVANE_VALORI'
<<1-email_ordini>>
<<1-negozio>>
<<1-firma>>
KORVANE_VALORI
    );
    return ['email' => trim($lines[0]), 'nome' => kvUtf8($lines[1]),
        'firma' => kvUtf8(implode("\r\n", array_slice($lines, 2)))];
}

/** The customer's order mail in UTF-8: the merchant's text with amount, code and summary in it; the summary without. */
function kvMailText(string $code, string $grossTotal, string $order): string
{
    $values = ['$mail_valuta . $totale_lordo' => kvUtf8($GLOBALS['valuta'][0] . $grossTotal), '$codice' => $code,
        '$riepilogo' => $order];
    $text = '';
    foreach (kvLinee((string) include "kvmailtesto.php") as $line) {
        if (!preg_match('/^\$info \.= "(.*)\\\\r\\\\n";$/s', $line, $parts)) {
            continue;
        }
        // What the build put between the merchant's words can't be theirs: their quotes have a backslash.
        $pieces = preg_split('/(?<!\\\\)" \. (\$mail_valuta \. \$totale_lordo|\$codice|\$riepilogo) \. "/', $parts[1], -1,
            PREG_SPLIT_DELIM_CAPTURE);
        foreach ($pieces as $n => $piece) {
            $text .= $n % 2 === 1 ? $values[$piece] : kvUtf8(str_replace('\\"', '"', $piece));
        }
        $text .= "\r\n";
    }
    return trim($text) === '' ? $order : $text;
}

/** Whether a mail address is known to belong to who gives it: of this customer, or of an order that was paid or sent. */
function kvIsProvenAddress(string $email): bool
{
    return kvRiga('SELECT id FROM kv_clienti WHERE id = ? AND email = ? AND provato = 1', [(int) $GLOBALS['cliente'], $email])
        !== null || kvRiga("SELECT id FROM kv_ordini WHERE email = ? AND stato IN ('pagato', 'spedito') LIMIT 1", [$email])
        !== null;
}
