<?php
// ***1.0.7***
// Mails of several parts: the same words as plain text and as HTML, with files attached. Source: RFC 2046, section 5.1;
// RFC 2183 and RFC 2231 for the names of files.
include_once "kvmail.php";
include_once "kvhtml.php";

/** An UTF-8 text as HTML of a mail. */
function kvMailHtml(string $text): string
{
    return htmlspecialchars($text, ENT_QUOTES | ENT_SUBSTITUTE, 'UTF-8');
}

/** Plain text as paragraphs of HTML: an empty line parts them, addresses become links. */
function kvMailParagraphs(string $text): string
{
    $html = '';
    foreach (preg_split('/(?:\r?\n){2,}/', trim($text), -1, PREG_SPLIT_NO_EMPTY) as $paragraph) {
        $html .= '<p>' . preg_replace(['~https?://[^\s<]+~', '/\r?\n/'], ['<a href="$0">$0</a>', "<br>\n"],
            kvMailHtml($paragraph)) . "</p>\n";
    }
    return $html;
}

/** A whole document of HTML in UTF-8, in the language of the page. */
function kvMailPage(string $title, string $body): string
{
    return "<!DOCTYPE html>\n<html lang=\"<<4-codice_lingua>>\">\n<head>\n<meta charset=\"utf-8\">\n<title>"
        . kvMailHtml($title) . "</title>\n</head>\n<body>\n" . $body . "</body>\n</html>\n";
}

/** One part of a mail, in Base64; with a name it is an attached file. */
function kvMailPart(string $kind, string $content, string $name = ''): string
{
    // A reader that knows no coded names takes the plain one of the type.
    $plain = preg_replace('/[^A-Za-z0-9._-]+/', '-', kvFold($name));
    return "Content-Type: $kind; charset=utf-8" . ($name === '' ? '' : ";\r\n name=\"$plain\"\r\nContent-Disposition: attachment;"
        . "\r\n filename*=UTF-8''" . rawurlencode($name)) . "\r\nContent-Transfer-Encoding: base64\r\n\r\n"
        . chunk_split(base64_encode($content));
}

/** Parts one after the other between their boundaries: the type of the whole, and its body. */
function kvMailParts(string $type, array $parts): array
{
    $boundary = '=_' . bin2hex(random_bytes(12));
    return ["multipart/$type; boundary=\"$boundary\"",
        "--$boundary\r\n" . implode("\r\n--$boundary\r\n", $parts) . "\r\n--$boundary--\r\n"];
}

/**
 * Sends a mail of text and HTML with files. mail: to, from, subject, replyTo as for kvSendMail; text, html (a document),
 * attachments (name => document of HTML).
 */
function kvSendMailParts(array $mail): bool
{
    list($kind, $body) = kvMailParts('alternative',
        [kvMailPart('text/plain', $mail['text']), kvMailPart('text/html', $mail['html'])]);
    $parts = ["Content-Type: $kind\r\n\r\n$body"];
    foreach ($mail['attachments'] ?? [] as $name => $document) {
        $parts[] = kvMailPart('text/html', $document, (string) $name);
    }
    list($kind, $body) = count($parts) === 1 ? [$kind, $body] : kvMailParts('mixed', $parts);
    return kvSendMail($mail, ["Content-Type: $kind"], rtrim($body));
}

/** A text of the merchant as a document, from what its tag holds; empty when the merchant wrote none. */
function kvDocument(string $title, string $text, string $tail = ''): string
{
    $text = kvTesto($text);
    $title = kvUtf8($title);
    // References stay what they are: they would mean something else as characters of HTML.
    return trim(strip_tags($text)) === '' ? ''
        : kvMailPage($title, '<h1>' . kvMailHtml($title) . "</h1>\n" . kvFromCp1252($text) . $tail);
}

/** The terms and the instruction on withdrawal as files that the buyer keeps. Source: directive 2011/83/EU, article 8(7). */
function kvDocuments(): array
{
    $here = kvMailHtml(kvUtf8(kvIndirizzo("kvrecesso.php")));
    $documents = [
        "<<4-menu_condizioni>>" => kvDocument("<<4-menu_condizioni>>", <<<'KORVANE_VALORI'
<<1-condizioni>>
KORVANE_VALORI
        ),
        "<<4-menu_recesso>>" => kvDocument("<<4-menu_recesso>>", <<<'KORVANE_VALORI'
<<1-recesso>>
KORVANE_VALORI
            , "<p><a href=\"$here\">" . kvMailHtml(kvUtf8("<<4-recesso_qui>>")) . "</a></p>\n"),
    ];
    $attachments = [];
    foreach (array_filter($documents) as $title => $document) {
        $attachments[kvUtf8((string) $title) . '.html'] = $document;
    }
    return $attachments;
}
