<?php
// ***1.0.7***
// Mails of the shop: plain text in UTF-8, in Base64, so that neither the words nor the line ends of a visitor can
// become a header. Source: RFC 2045, section 6.8; RFC 2047.

/** An UTF-8 text of a mail header, in encoded words of at most 75 characters, cut between characters. */
function kvTestoIntestazione(string $testo): string
{
    $parole = [];
    $parola = '';
    foreach (preg_split('//u', preg_replace('/[\x00-\x1f\x7f]+/', ' ', $testo), -1, PREG_SPLIT_NO_EMPTY) as $lettera) {
        if (strlen($parola . $lettera) > 42) {
            $parole[] = $parola;
            $parola = '';
        }
        $parola .= $lettera;
    }
    $parole[] = $parola;
    return implode("\r\n ", array_map(fn($p) => '=?UTF-8?B?' . base64_encode($p) . '?=', $parole));
}

/** Whether a text is one plain mail address. */
function kvIndirizzoValido(string $email): bool
{
    return strlen($email) <= 190 && filter_var($email, FILTER_VALIDATE_EMAIL) !== false;
}

/** Sends one mail, its texts in UTF-8; false when an address isn't one or the server refused it. `rispondi`: who gets the answers. */
function kvMail(string $a, string $da, string $oggetto, string $testo, string $rispondi = ''): bool
{
    if (!kvIndirizzoValido($a)) {
        return false;
    }
    $righe = ['MIME-Version: 1.0', 'Content-Type: text/plain; charset=utf-8', 'Content-Transfer-Encoding: base64'];
    if (kvIndirizzoValido($da)) {
        $righe[] = 'From: ' . $da;
    }
    if (kvIndirizzoValido($rispondi)) {
        $righe[] = 'Reply-To: ' . $rispondi;
    }
    $corpo = rtrim(chunk_split(base64_encode($testo)));
    if (@mail($a, kvTestoIntestazione($oggetto), $corpo, implode("\r\n", $righe))) {
        return true;
    }
    error_log('Shop mail: a mail was refused');
    return false;
}

/** The shop's own address, name and signature, in UTF-8. */
function kvMittente(): array
{
    $righe = kvLinee(<<<'KORVANE_VALORI'
<<1-email_ordini>>
<<1-negozio>>
<<1-firma>>
KORVANE_VALORI
    );
    return ['email' => trim($righe[0]), 'nome' => kvUtf8($righe[1]),
        'firma' => kvUtf8(implode("\r\n", array_slice($righe, 2)))];
}

/** The customer's order mail in UTF-8: the merchant's text with amount, code and summary in it; the summary without. */
function kvTestoMail(string $codice, string $totale_lordo, string $ordine): string
{
    $mail_valuta = $GLOBALS['valuta'][0];
    // The merchant's words are in another character set than the summary, whose position is marked until they aren't.
    $riepilogo = "\x1A";
    try {
        $info = (string) include "kvmailtesto.php";
    } catch (ParseError $errore) {
        // The merchant's words can break the script that the build makes of them; the order goes on without them.
        error_log('Shop mail: the text of the order mail is no valid script');
        $info = '';
    }
    return trim($info) === '' ? $ordine : str_replace("\x1A", $ordine, kvUtf8($info));
}

/** Whether a mail address is known to belong to who gives it: of this customer, or of an order that was paid or sent. */
function kvIndirizzoProvato(string $email): bool
{
    return kvRiga('SELECT id FROM kv_clienti WHERE id = ? AND email = ? AND provato = 1', [(int) $GLOBALS['cliente'], $email])
        !== null || kvRiga("SELECT id FROM kv_ordini WHERE email = ? AND stato IN ('pagato', 'spedito') LIMIT 1", [$email])
        !== null;
}

/**
 * Tells customer and merchant of an order. `importo` is the total in the shop's notation, without a label. An address
 * that nobody has proven gets `anonimo`, which holds nothing that was typed: it could be words for a stranger.
 */
function kvMailOrdine(string $codice, string $importo, string $riepilogo, string $email, string $anonimo): void
{
    $negozio = kvMittente();
    $oggetto = $negozio['nome'] . ' - ' . kvUtf8("<<4-ordine_titolo>> ") . $codice;
    $testo = kvTestoMail($codice, $importo, kvIndirizzoProvato($email) ? $riepilogo : $anonimo);
    kvMail($email, $negozio['email'], $oggetto, $testo . "\r\n" . $negozio['firma']);
    kvMail($negozio['email'], $negozio['email'], $oggetto, kvUtf8("<<4-ordine_codice>>: ") . "$codice\r\n\r\n" . $riepilogo, $email);
}
