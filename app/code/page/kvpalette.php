<?php
// ***1.0.7***
// The colours of a page. A template has colours of its own and a merchant may put any others in their place; what is
// read must stay readable all the same. From the four colours that reach the pages (0 text, 1 page, 2 links and
// buttons, 3 panels and borders) come the style sheet's custom properties, each moved towards black or white as little
// as its contrast asks for. Source of the measures: WCAG 2.1, relative luminance, criteria 1.4.3 (4.5:1 for text) and
// 1.4.11 (3:1 for the edges of controls).

/** "#RRGGBB" as three numbers from 0 to 255; black when it is none. */
function kvRgb(string $colore): array
{
    return preg_match('/^#([0-9a-f]{2})([0-9a-f]{2})([0-9a-f]{2})$/iD', trim($colore), $parti)
        ? [hexdec($parti[1]), hexdec($parti[2]), hexdec($parti[3])] : [0, 0, 0];
}

function kvColore(array $rgb): string
{
    return sprintf('#%02x%02x%02x', ...$rgb);
}

/** Relative luminance, 0 for black to 1 for white. */
function kvLuminanza(array $rgb): float
{
    $luce = 0.0;
    foreach ([0.2126, 0.7152, 0.0722] as $n => $parte) {
        $valore = $rgb[$n] / 255;
        $luce += $parte * ($valore <= 0.03928 ? $valore / 12.92 : pow(($valore + 0.055) / 1.055, 2.4));
    }
    return $luce;
}

/** The contrast of two luminances, 1 to 21. */
function kvContrastoLuci(float $una, float $altra): float
{
    return $una > $altra ? ($una + 0.05) / ($altra + 0.05) : ($altra + 0.05) / ($una + 0.05);
}

/** The contrast of two colours, 1 to 21. */
function kvContrasto(array $uno, array $altro): float
{
    return kvContrastoLuci(kvLuminanza($uno), kvLuminanza($altro));
}

/** A colour with so much (0 to 1) of another one in it. */
function kvMescola(array $colore, array $altro, float $quanto): array
{
    $misto = [];
    foreach ($colore as $n => $canale) {
        $misto[] = (int) round($canale + ($altro[$n] - $canale) * $quanto);
    }
    return $misto;
}

/** Whether black is the surer writing on a surface; white is on all others. One of the two always has 4.5:1. */
function kvVuoleScuro(array $superficie): bool
{
    return kvLuminanza($superficie) >= 0.179;
}

/** The colour, moved towards black or white until it has a contrast on every surface; all surfaces want the same. */
function kvLeggibile(array $colore, array $superfici, float $contrasto): array
{
    $luci = array_map('kvLuminanza', $superfici);
    $fine = kvVuoleScuro($superfici[0]) ? [0, 0, 0] : [255, 255, 255];
    for ($passo = 0; $passo < 32; $passo++) {
        $prova = $passo === 0 ? $colore : kvMescola($colore, $fine, $passo / 32);
        $luce = kvLuminanza($prova);
        $basta = true;
        foreach ($luci as $altra) {
            $basta = $basta && kvContrastoLuci($luce, $altra) >= $contrasto;
        }
        if ($basta) {
            return $prova;
        }
    }
    return $fine;
}

/**
 * The custom properties of a page for four colours "#RRGGBB". Surfaces: fondo (page), scheda (what lies on it, as cards
 * and fields), pannello (bands), pieno (buttons and marks). Writing: testo, tenue, link on the first two; su-pannello,
 * link-pannello; su-pieno. bordo edges controls on the first two, riga only parts.
 */
function kvPalette(string $testo, string $fondo, string $link, string $pannello): array
{
    $fondo = kvRgb($fondo);
    $pannello = kvRgb($pannello);
    $pieno = kvRgb($link);
    // A card is raised away from the writing, so that what is readable on the page is so on the card.
    $scheda = kvVuoleScuro($fondo) ? kvMescola($fondo, [255, 255, 255], 0.75) : kvMescola($fondo, [0, 0, 0], 0.25);
    $sopra = [$fondo, $scheda];
    $nero = kvLeggibile(kvRgb($testo), $sopra, 4.5);
    $colori = [
        'testo' => $nero,
        'tenue' => kvLeggibile(kvMescola($nero, $fondo, 0.3), $sopra, 4.5),
        'link' => kvLeggibile($pieno, $sopra, 4.5),
        'bordo' => kvLeggibile(kvMescola($nero, $fondo, 0.5), $sopra, 3),
        'riga' => kvMescola($nero, $fondo, 0.82),
        'fondo' => $fondo,
        'scheda' => $scheda,
        'pannello' => $pannello,
        'su-pannello' => kvLeggibile(kvRgb($testo), [$pannello], 4.5),
        'link-pannello' => kvLeggibile($pieno, [$pannello], 4.5),
        'pieno' => $pieno,
        'su-pieno' => kvLeggibile(kvVuoleScuro($pieno) ? [0, 0, 0] : [255, 255, 255], [$pieno], 4.5),
    ];
    return array_map('kvColore', $colori);
}

/** The style element of a page's head with the colours of the template. */
function kvStilePagina(): string
{
    $regole = '';
    foreach (kvPalette("<<1-colore0>>", "<<1-colore1>>", "<<1-colore2>>", "<<1-colore3>>") as $nome => $colore) {
        $regole .= "--$nome:$colore;";
    }
    return "<style>:root{{$regole}}</style>\n";
}
