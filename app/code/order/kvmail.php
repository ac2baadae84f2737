<?php
// ***1.0.7***
// Mails of the shop: UTF-8 in Base64, so that neither the words nor the line ends of a visitor can become a header.
// Source: RFC 2045, section 6.8; RFC 2047.

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

/**
 * Hands a mail to the server; false when an address isn't one or the server refused it. `testa`: the lines of its head
 * that say what `corpo` is; `rispondi`: who gets the answers.
 */
function kvSpedisci(array $mail, array $testa, string $corpo): bool
{
    list('a' => $a, 'da' => $da, 'oggetto' => $oggetto, 'rispondi' => $rispondi) = $mail + ['rispondi' => ''];
    if (!kvIndirizzoValido($a)) {
        return false;
    }
    if (kvIndirizzoValido($da)) {
        $nome = trim(kvMittente()['nome']);
        $testa[] = 'From: ' . ($nome === '' ? $da : kvTestoIntestazione($nome) . ' <' . $da . '>');
    }
    if (kvIndirizzoValido($rispondi)) {
        $testa[] = 'Reply-To: ' . $rispondi;
    }
    $testa = implode("\r\n", array_merge(['MIME-Version: 1.0'], $testa));
    // Where mails that can't be delivered go back to. It reaches a command line: plain characters only. A host that lets
    // nobody say it takes the mail without.
    $busta = preg_match('/^[A-Za-z0-9][A-Za-z0-9._+-]*@[A-Za-z0-9.-]+$/D', $da) ? '-f' . $da : '';
    $oggetto = kvTestoIntestazione($oggetto);
    if (@mail($a, $oggetto, $corpo, $testa, $busta) || ($busta !== '' && @mail($a, $oggetto, $corpo, $testa))) {
        return true;
    }
    error_log('Shop mail: a mail was refused');
    return false;
}

/** Sends one mail of plain text in UTF-8; see kvSpedisci. */
function kvMail(string $a, string $da, string $oggetto, string $testo, string $rispondi = ''): bool
{
    return kvSpedisci(['a' => $a, 'da' => $da, 'oggetto' => $oggetto, 'rispondi' => $rispondi],
        ['Content-Type: text/plain; charset=utf-8', 'Content-Transfer-Encoding: base64'],
        rtrim(chunk_split(base64_encode($testo))));
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
    $valori = ['$mail_valuta . $totale_lordo' => kvUtf8($GLOBALS['valuta'][0] . $totale_lordo), '$codice' => $codice,
        '$riepilogo' => $ordine];
    $testo = '';
    foreach (kvLinee((string) include "kvmailtesto.php") as $linea) {
        if (!preg_match('/^\$info \.= "(.*)\\\\r\\\\n";$/s', $linea, $parti)) {
            continue;
        }
        // What the build put between the merchant's words can't be theirs: their quotes have a backslash.
        $pezzi = preg_split('/(?<!\\\\)" \. (\$mail_valuta \. \$totale_lordo|\$codice|\$riepilogo) \. "/', $parti[1], -1,
            PREG_SPLIT_DELIM_CAPTURE);
        foreach ($pezzi as $n => $pezzo) {
            $testo .= $n % 2 === 1 ? $valori[$pezzo] : kvUtf8(str_replace('\\"', '"', $pezzo));
        }
        $testo .= "\r\n";
    }
    return trim($testo) === '' ? $ordine : $testo;
}

/** Whether a mail address is known to belong to who gives it: of this customer, or of an order that was paid or sent. */
function kvIndirizzoProvato(string $email): bool
{
    return kvRiga('SELECT id FROM kv_clienti WHERE id = ? AND email = ? AND provato = 1', [(int) $GLOBALS['cliente'], $email])
        !== null || kvRiga("SELECT id FROM kv_ordini WHERE email = ? AND stato IN ('pagato', 'spedito') LIMIT 1", [$email])
        !== null;
}
