<?php
// ***1.0.7***
// The colours of a page. A template has colours of its own and a merchant may use any others instead; what is
// read must stay readable all the same. From the four colours that reach the pages (0 text, 1 page, 2 links and
// buttons, 3 panels and borders) come the style sheet's custom properties, each moved towards black or white as little
// as its contrast asks for. Source of the measures: WCAG 2.1, relative luminance, criteria 1.4.3 (4.5:1 for text) and
// 1.4.11 (3:1 for the edges of controls).

/** "#RRGGBB" as three numbers from 0 to 255; black when it is none. */
function kvRgb(string $colour): array
{
    return preg_match('/^#([0-9a-f]{2})([0-9a-f]{2})([0-9a-f]{2})$/iD', trim($colour), $parts)
        ? [hexdec($parts[1]), hexdec($parts[2]), hexdec($parts[3])] : [0, 0, 0];
}

function kvColourText(array $rgb): string
{
    return sprintf('#%02x%02x%02x', ...$rgb);
}

/** Relative luminance, 0 for black to 1 for white. */
function kvLuminance(array $rgb): float
{
    $luminance = 0.0;
    foreach ([0.2126, 0.7152, 0.0722] as $n => $part) {
        $value = $rgb[$n] / 255;
        $luminance += $part * ($value <= 0.03928 ? $value / 12.92 : pow(($value + 0.055) / 1.055, 2.4));
    }
    return $luminance;
}

/** The contrast of two luminances, 1 to 21. */
function kvLuminanceContrast(float $one, float $other): float
{
    return $one > $other ? ($one + 0.05) / ($other + 0.05) : ($other + 0.05) / ($one + 0.05);
}

/** The contrast of two colours, 1 to 21. */
function kvContrast(array $one, array $other): float
{
    return kvLuminanceContrast(kvLuminance($one), kvLuminance($other));
}

/** A colour with so much (0 to 1) of another one in it. */
function kvMixColours(array $colour, array $other, float $amount): array
{
    $mixed = [];
    foreach ($colour as $n => $channel) {
        $mixed[] = (int) round($channel + ($other[$n] - $channel) * $amount);
    }
    return $mixed;
}

/** Whether black is the surer writing on a surface; white is on all others. One of the two always has 4.5:1. */
function kvWantsDark(array $surface): bool
{
    return kvLuminance($surface) >= 0.179;
}

/** The colour, moved towards black or white until it has a contrast on every surface; all surfaces want the same. */
function kvReadable(array $colour, array $surfaces, float $contrast): array
{
    $lights = array_map('kvLuminance', $surfaces);
    $end = kvWantsDark($surfaces[0]) ? [0, 0, 0] : [255, 255, 255];
    for ($step = 0; $step < 32; $step++) {
        $trial = $step === 0 ? $colour : kvMixColours($colour, $end, $step / 32);
        $luminance = kvLuminance($trial);
        $isEnough = true;
        foreach ($lights as $other) {
            $isEnough = $isEnough && kvLuminanceContrast($luminance, $other) >= $contrast;
        }
        if ($isEnough) {
            return $trial;
        }
    }
    return $end;
}

/**
 * The custom properties of a page for four colours "#RRGGBB". Surfaces: fondo (page), scheda (what lies on it, as cards
 * and fields), pannello (bands), pieno (buttons and marks). Writing: testo, tenue, link on the first two; su-pannello,
 * link-pannello; su-pieno. bordo edges controls on the first two, riga only parts.
 */
function kvPalette(string $text, string $background, string $link, string $panel): array
{
    $background = kvRgb($background);
    $panel = kvRgb($panel);
    $full = kvRgb($link);
    // A card is raised away from the writing, so that what is readable on the page is so on the card.
    $card = kvWantsDark($background) ? kvMixColours($background, [255, 255, 255], 0.75) : kvMixColours($background, [0, 0, 0], 0.25);
    $above = [$background, $card];
    $black = kvReadable(kvRgb($text), $above, 4.5);
    $colours = [
        'testo' => $black,
        'tenue' => kvReadable(kvMixColours($black, $background, 0.3), $above, 4.5),
        'link' => kvReadable($full, $above, 4.5),
        'bordo' => kvReadable(kvMixColours($black, $background, 0.5), $above, 3),
        'riga' => kvMixColours($black, $background, 0.82),
        'fondo' => $background,
        'scheda' => $card,
        'pannello' => $panel,
        'su-pannello' => kvReadable(kvRgb($text), [$panel], 4.5),
        'link-pannello' => kvReadable($full, [$panel], 4.5),
        'pieno' => $full,
        'su-pieno' => kvReadable(kvWantsDark($full) ? [0, 0, 0] : [255, 255, 255], [$full], 4.5),
    ];
    return array_map('kvColourText', $colours);
}

/** The style element of a page's head with the colours of the template. */
function kvStilePagina(): string
{
    $rules = '';
    foreach (kvPalette("<<1-colore0>>", "<<1-colore1>>", "<<1-colore2>>", "<<1-colore3>>") as $name => $colour) {
        $rules .= "--$name:$colour;";
    }
    return "<style>:root{{$rules}}</style>\n";
}
