<?php
// ***1.0.7***
// Mails of several parts: the same words as plain text and as HTML, with files attached. Source: RFC 2046, section 5.1;
// RFC 2183 and RFC 2231 for the names of files.
include_once "kvmail.php";
include_once "kvhtml.php";

/** An UTF-8 text as HTML of a mail. */
function kvHtmlMail(string $testo): string
{
    return htmlspecialchars($testo, ENT_QUOTES | ENT_SUBSTITUTE, 'UTF-8');
}

/** Plain text as paragraphs of HTML: an empty line parts them, addresses become links. */
function kvParagrafiMail(string $testo): string
{
    $html = '';
    foreach (preg_split('/(?:\r?\n){2,}/', trim($testo), -1, PREG_SPLIT_NO_EMPTY) as $paragrafo) {
        $html .= '<p>' . preg_replace(['~https?://[^\s<]+~', '/\r?\n/'], ['<a href="$0">$0</a>', "<br>\n"],
            kvHtmlMail($paragrafo)) . "</p>\n";
    }
    return $html;
}

/** A whole document of HTML in UTF-8, in the language of the page. */
function kvPaginaMail(string $titolo, string $corpo): string
{
    return "<!DOCTYPE html>\n<html lang=\"<<4-codice_lingua>>\">\n<head>\n<meta charset=\"utf-8\">\n<title>"
        . kvHtmlMail($titolo) . "</title>\n</head>\n<body>\n" . $corpo . "</body>\n</html>\n";
}

/** One part of a mail, in Base64; with a name it is an attached file. */
function kvParteMail(string $tipo, string $contenuto, string $nome = ''): string
{
    // A reader that knows no coded names takes the plain one of the type.
    $semplice = preg_replace('/[^A-Za-z0-9._-]+/', '-', kvFold($nome));
    return "Content-Type: $tipo; charset=utf-8" . ($nome === '' ? '' : ";\r\n name=\"$semplice\"\r\nContent-Disposition: attachment;"
        . "\r\n filename*=UTF-8''" . rawurlencode($nome)) . "\r\nContent-Transfer-Encoding: base64\r\n\r\n"
        . chunk_split(base64_encode($contenuto));
}

/** Parts one after the other between their boundaries: the type of the whole, and its body. */
function kvInsiemeMail(string $genere, array $parti): array
{
    $confine = '=_' . bin2hex(random_bytes(12));
    return ["multipart/$genere; boundary=\"$confine\"",
        "--$confine\r\n" . implode("\r\n--$confine\r\n", $parti) . "\r\n--$confine--\r\n"];
}

/**
 * Sends a mail of text and HTML with files. mail: a, da, oggetto, rispondi as for kvSpedisci; testo, html (a document), allegati (name =>
 * document of HTML).
 */
function kvMailParti(array $mail): bool
{
    list($tipo, $corpo) = kvInsiemeMail('alternative',
        [kvParteMail('text/plain', $mail['testo']), kvParteMail('text/html', $mail['html'])]);
    $parti = ["Content-Type: $tipo\r\n\r\n$corpo"];
    foreach ($mail['allegati'] ?? [] as $nome => $documento) {
        $parti[] = kvParteMail('text/html', $documento, (string) $nome);
    }
    list($tipo, $corpo) = count($parti) === 1 ? [$tipo, $corpo] : kvInsiemeMail('mixed', $parti);
    return kvSpedisci($mail, ["Content-Type: $tipo"], rtrim($corpo));
}

/** A text of the merchant as a document, from what its tag holds; empty when the merchant wrote none. */
function kvDocumento(string $titolo, string $testo, string $coda = ''): string
{
    $testo = kvTesto($testo);
    $titolo = kvUtf8($titolo);
    // References stay what they are: they would mean something else as characters of HTML.
    return trim(strip_tags($testo)) === '' ? ''
        : kvPaginaMail($titolo, '<h1>' . kvHtmlMail($titolo) . "</h1>\n" . kvFromCp1252($testo) . $coda);
}

/** The terms and the instruction on withdrawal as files that the buyer keeps. Source: directive 2011/83/EU, article 8(7). */
function kvDocumenti(): array
{
    $qui = kvHtmlMail(kvUtf8(kvIndirizzo("kvrecesso.php")));
    $documenti = [
        "<<4-menu_condizioni>>" => kvDocumento("<<4-menu_condizioni>>", <<<'KORVANE_VALORI'
<<1-condizioni>>
KORVANE_VALORI
        ),
        "<<4-menu_recesso>>" => kvDocumento("<<4-menu_recesso>>", <<<'KORVANE_VALORI'
<<1-recesso>>
KORVANE_VALORI
            , "<p><a href=\"$qui\">" . kvHtmlMail(kvUtf8("<<4-recesso_qui>>")) . "</a></p>\n"),
    ];
    $allegati = [];
    foreach (array_filter($documenti) as $titolo => $documento) {
        $allegati[kvUtf8((string) $titolo) . '.html'] = $documento;
    }
    return $allegati;
}
