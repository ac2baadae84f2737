<?php
// ***1.0.7***
// Two character sets meet in a shop: pages and catalogue are Windows-1252, as the build writes them; what visitors type,
// the server's own tables, mails and files for spreadsheets are UTF-8. The ways from one to the other.

/** Code points of the bytes 80 to 9F of Windows-1252. Source: the table of the WHATWG Encoding Standard. */
const KV_CP1252 = [0x20AC, 0x81, 0x201A, 0x192, 0x201E, 0x2026, 0x2020, 0x2021, 0x2C6, 0x2030, 0x160, 0x2039, 0x152,
    0x8D, 0x17D, 0x8F, 0x90, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x2DC, 0x2122, 0x161, 0x203A,
    0x153, 0x9D, 0x17E, 0x178];

/** The UTF-8 character of a code point; nothing for one that is none or steers the text. Source: RFC 3629, section 3. */
function kvUtf8Character(int $point): string
{
    if ($point < 0x20 || $point === 0x7F || ($point >= 0xD800 && $point < 0xE000) || $point > 0x10FFFF) {
        return '';
    }
    if ($point < 0x80) {
        return chr($point);
    }
    if ($point < 0x800) {
        return chr(0xC0 | $point >> 6) . chr(0x80 | $point & 0x3F);
    }
    $tail = chr(0x80 | $point >> 6 & 0x3F) . chr(0x80 | $point & 0x3F);
    return $point < 0x10000 ? chr(0xE0 | $point >> 12) . $tail
        : chr(0xF0 | $point >> 18) . chr(0x80 | $point >> 12 & 0x3F) . $tail;
}

/** The code point of one UTF-8 character. */
function kvCodePoint(string $character): int
{
    $bytes = array_values(unpack('C*', $character));
    $point = count($bytes) === 1 ? $bytes[0] : $bytes[0] & (0xFF >> (count($bytes) + 1));
    foreach (array_slice($bytes, 1) as $rest) {
        $point = $point << 6 | $rest & 0x3F;
    }
    return $point;
}

/** Windows-1252 bytes in UTF-8. */
function kvFromCp1252(string $text): string
{
    static $characters = [];
    if ($characters === []) {
        for ($bytes = 0x80; $bytes < 0x100; $bytes++) {
            $characters[chr($bytes)] = kvUtf8Character($bytes < 0xA0 ? KV_CP1252[$bytes - 0x80] : $bytes);
        }
    }
    return preg_match('/[\x80-\xFF]/', $text) ? strtr($text, $characters) : $text;
}

/** Numeric references in an UTF-8 text as their characters. */
function kvWithoutReferences(string $text): string
{
    return strpos($text, '&#') === false ? $text
        : preg_replace_callback('/&#(\d{2,7});/', fn($n) => kvUtf8Character((int) $n[1]), $text);
}

/** A text of catalogue, module or build in UTF-8; numeric references become their characters. */
function kvUtf8(string $text): string
{
    return kvWithoutReferences(kvFromCp1252($text));
}

/** An UTF-8 text in Windows-1252; characters beyond it as numeric references. */
function kvFromUtf8(string $text): string
{
    return (string) preg_replace_callback('/[^\x00-\x7F]/u', function (array $character): string {
        $point = kvCodePoint($character[0]);
        $bytes = array_search($point, KV_CP1252, true);
        if ($bytes !== false) {
            return chr(0x80 + $bytes);
        }
        return $point >= 0xA0 && $point < 0x100 ? chr($point) : '&#' . $point . ';';
    }, $text);
}

/** A visitor's UTF-8 text as HTML of a page: the only way in which their words reach one. */
function kvHtmlUtf8(?string $text): string
{
    return kvFromUtf8(htmlspecialchars((string) $text, ENT_QUOTES | ENT_SUBSTITUTE, 'UTF-8'));
}

/** A value of a request in UTF-8. `isSafe`: the form says that it is, so that "&#65;" is what somebody typed. */
function kvSentText(string $value, bool $isSafe): string
{
    $value = preg_match('//u', $value) === 1 ? $value : kvFromCp1252($value);
    return $isSafe ? $value : kvWithoutReferences($value);
}

/** The first characters of an UTF-8 text. */
function kvCut(string $text, int $most): string
{
    return preg_match('/^.{0,' . $most . '}/us', $text, $start) === 1 ? $start[0] : '';
}

/** The number of characters of an UTF-8 text. */
function kvLength(string $text): int
{
    return (int) preg_match_all('/./us', $text);
}

/** Ranges of code points and what stands for them where case and marks don't count: a text, or a number to be added. */
const KV_FOLDS = [[0xC0, 0xC5, 'a'], [0xC6, 0xC6, 'ae'], [0xC7, 0xC7, 'c'], [0xC8, 0xCB, 'e'], [0xCC, 0xCF, 'i'],
    [0xD0, 0xD0, 0x20], [0xD1, 0xD1, 'n'], [0xD2, 0xD6, 'o'], [0xD8, 0xD8, 'o'], [0xD9, 0xDC, 'u'], [0xDD, 0xDD, 'y'],
    [0xDE, 0xDE, 0x20], [0xDF, 0xDF, 'ss'], [0xE0, 0xE5, 'a'], [0xE6, 0xE6, 'ae'], [0xE7, 0xE7, 'c'], [0xE8, 0xEB, 'e'],
    [0xEC, 0xEF, 'i'], [0xF1, 0xF1, 'n'], [0xF2, 0xF6, 'o'], [0xF8, 0xF8, 'o'], [0xF9, 0xFC, 'u'], [0xFD, 0xFD, 'y'],
    [0xFF, 0xFF, 'y'], [0x100, 0x105, 'a'], [0x106, 0x10D, 'c'], [0x10E, 0x111, 'd'], [0x112, 0x11B, 'e'],
    [0x11C, 0x123, 'g'], [0x124, 0x127, 'h'], [0x128, 0x131, 'i'], [0x134, 0x135, 'j'], [0x136, 0x138, 'k'],
    [0x139, 0x142, 'l'], [0x143, 0x14B, 'n'], [0x14C, 0x151, 'o'], [0x152, 0x153, 'oe'], [0x154, 0x159, 'r'],
    [0x15A, 0x161, 's'], [0x162, 0x167, 't'], [0x168, 0x173, 'u'], [0x174, 0x175, 'w'], [0x176, 0x178, 'y'],
    [0x179, 0x17E, 'z'], [0x300, 0x36F, ''], [0x386, 0x386, 0x2B], [0x388, 0x388, 0x2D], [0x389, 0x389, 0x2E],
    [0x38A, 0x38A, 0x2F], [0x38C, 0x38C, 0x33],
    [0x38E, 0x38E, 0x37], [0x38F, 0x38F, 0x3A], [0x391, 0x3A9, 0x20], [0x3AC, 0x3AC, 5], [0x3AD, 0x3AD, 8],
    [0x3AE, 0x3AE, 9], [0x3AF, 0x3AF, 10], [0x3C2, 0x3C2, 1], [0x3CA, 0x3CA, -17], [0x3CB, 0x3CB, -6], [0x3CC, 0x3CC, -13],
    [0x3CD, 0x3CD, -8], [0x3CE, 0x3CE, -5], [0x400, 0x40F, 0x50], [0x410, 0x42F, 0x20]];

/** An UTF-8 text in which neither case nor the marks on Latin and Greek characters count, for searching and ordering. */
function kvFold(string $text): string
{
    static $table = [];
    if ($table === []) {
        foreach (KV_FOLDS as list($first, $last, $fold)) {
            for ($point = $first; $point <= $last; $point++) {
                $table[kvUtf8Character($point)] = is_string($fold) ? $fold : kvUtf8Character($point + $fold);
            }
        }
    }
    $text = strtolower($text);
    return preg_match('/[\x80-\xFF]/', $text) ? strtr($text, $table) : $text;
}
