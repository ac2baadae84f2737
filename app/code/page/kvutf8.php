<?php
// ***1.0.7***
// Two character sets meet in a shop: pages and catalogue are Windows-1252, as the build writes them; what visitors type,
// the server's own tables, mails and files for spreadsheets are UTF-8. The ways from one to the other.

/** Code points of the bytes 80 to 9F of Windows-1252. Source: the table of the WHATWG Encoding Standard. */
const KV_CP1252 = [0x20AC, 0x81, 0x201A, 0x192, 0x201E, 0x2026, 0x2020, 0x2021, 0x2C6, 0x2030, 0x160, 0x2039, 0x152,
    0x8D, 0x17D, 0x8F, 0x90, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x2DC, 0x2122, 0x161, 0x203A,
    0x153, 0x9D, 0x17E, 0x178];

/** The UTF-8 character of a code point; nothing for one that is none or steers the text. Source: RFC 3629, section 3. */
function kvLettera(int $punto): string
{
    if ($punto < 0x20 || $punto === 0x7F || ($punto >= 0xD800 && $punto < 0xE000) || $punto > 0x10FFFF) {
        return '';
    }
    if ($punto < 0x80) {
        return chr($punto);
    }
    if ($punto < 0x800) {
        return chr(0xC0 | $punto >> 6) . chr(0x80 | $punto & 0x3F);
    }
    $coda = chr(0x80 | $punto >> 6 & 0x3F) . chr(0x80 | $punto & 0x3F);
    return $punto < 0x10000 ? chr(0xE0 | $punto >> 12) . $coda
        : chr(0xF0 | $punto >> 18) . chr(0x80 | $punto >> 12 & 0x3F) . $coda;
}

/** The code point of one UTF-8 character. */
function kvPunto(string $lettera): int
{
    $byte = array_values(unpack('C*', $lettera));
    $punto = count($byte) === 1 ? $byte[0] : $byte[0] & (0xFF >> (count($byte) + 1));
    foreach (array_slice($byte, 1) as $resto) {
        $punto = $punto << 6 | $resto & 0x3F;
    }
    return $punto;
}

/** Windows-1252 bytes in UTF-8. */
function kvDaCp1252(string $testo): string
{
    static $lettere = [];
    if ($lettere === []) {
        for ($byte = 0x80; $byte < 0x100; $byte++) {
            $lettere[chr($byte)] = kvLettera($byte < 0xA0 ? KV_CP1252[$byte - 0x80] : $byte);
        }
    }
    return preg_match('/[\x80-\xFF]/', $testo) ? strtr($testo, $lettere) : $testo;
}

/** Numeric references in an UTF-8 text as their characters. */
function kvSenzaRiferimenti(string $testo): string
{
    return strpos($testo, '&#') === false ? $testo
        : preg_replace_callback('/&#(\d{2,7});/', fn($n) => kvLettera((int) $n[1]), $testo);
}

/** A text of catalogue, module or build in UTF-8; numeric references become their characters. */
function kvUtf8(string $testo): string
{
    return kvSenzaRiferimenti(kvDaCp1252($testo));
}

/** An UTF-8 text in Windows-1252; characters beyond it as numeric references. */
function kvDaUtf8(string $testo): string
{
    return (string) preg_replace_callback('/[^\x00-\x7F]/u', function (array $lettera): string {
        $punto = kvPunto($lettera[0]);
        $byte = array_search($punto, KV_CP1252, true);
        if ($byte !== false) {
            return chr(0x80 + $byte);
        }
        return $punto >= 0xA0 && $punto < 0x100 ? chr($punto) : '&#' . $punto . ';';
    }, $testo);
}

/** A visitor's UTF-8 text as HTML of a page: the only way in which their words reach one. */
function kvHtmlUtf8(?string $testo): string
{
    return kvDaUtf8(htmlspecialchars((string) $testo, ENT_QUOTES | ENT_SUBSTITUTE, 'UTF-8'));
}

/** A value of a request in UTF-8. `sicuro`: the form says that it is, so that "&#65;" is what somebody typed. */
function kvTestoInviato(string $valore, bool $sicuro): string
{
    $valore = preg_match('//u', $valore) === 1 ? $valore : kvDaCp1252($valore);
    return $sicuro ? $valore : kvSenzaRiferimenti($valore);
}

/** The first characters of an UTF-8 text. */
function kvTaglia(string $testo, int $massimo): string
{
    return preg_match('/^.{0,' . $massimo . '}/us', $testo, $inizio) === 1 ? $inizio[0] : '';
}

/** The number of characters of an UTF-8 text. */
function kvLunghezza(string $testo): int
{
    return (int) preg_match_all('/./us', $testo);
}
