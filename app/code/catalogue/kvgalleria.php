<?php
// ***1.0.7***
// The pictures of an article on its own page: the big one, and small ones that choose it. Besides the pictures of the
// article there may be more of them beside the first one in the site, by the numbers in their names: vaso.jpg, vaso-2.jpg,
// vaso-3.jpg. Without scripts a small picture leads to its file.

/** Most pictures that belong to one by their numbers. */
const KV_IMMAGINI = 9;

/** What the name of a picture says of the thing shown: without folder, ending and a mark of its size. */
function kvSoggetto(string $file): string
{
    return preg_replace('/[-_](?:p|g|s|m|l|xl|mini|small|big|large|thumb|piccol[ao]|grande)$/', '',
        strtolower((string) pathinfo($file, PATHINFO_FILENAME)));
}

/** The files of an article's pictures, each thing shown once, the biggest of it. */
function kvImmaginiArticolo(array $riga): array
{
    $files = [];
    foreach (['immagine2', 'immagine1', 'immagine3'] as $nome) {
        $src = (string) (kvImmagine((string) ($riga[$nome] ?? ''))['src'] ?? '');
        $file = rawurldecode(html_entity_decode($src, ENT_QUOTES, 'cp1252'));
        $files += $file === '' ? [] : [kvSoggetto($file) => $file];
    }
    if (preg_match('/PopupImage\(\'([^\']*)\'/', (string) ($riga['immagine1'] ?? ''), $parti)) {
        $grande = rawurldecode(html_entity_decode($parti[1], ENT_QUOTES, 'cp1252'));
        $files[kvSoggetto($grande)] = $grande;
    }
    foreach (array_keys($files) as $soggetto) {
        $files += kvImmaginiNumerate($files[$soggetto], (string) $soggetto);
    }
    return array_values(array_slice($files, 0, KV_IMMAGINI));
}

/** The pictures beside a file that its numbers name, by what they show. */
function kvImmaginiNumerate(string $file, string $soggetto): array
{
    $radice = substr((string) pathinfo($file, PATHINFO_FILENAME), 0, strlen($soggetto));
    $forma = strpbrk($radice, "/\\:\0*?[") === false ? $radice . '-%d.' . pathinfo($file, PATHINFO_EXTENSION) : '';
    $files = [];
    for ($n = 2; $forma !== '' && $n <= KV_IMMAGINI && is_file($altra = strtr($forma, ['%d' => (string) $n])); $n++) {
        $files[kvSoggetto($altra)] = $altra;
    }
    return $files;
}

/** The pictures of an article; an empty text without any. */
function kvGalleria(array $riga): string
{
    $grande = kvFotoGrande($riga);
    $files = kvImmaginiArticolo($riga);
    if ($grande === '' || $files === []) {
        return $grande;
    }
    $nome = TestoSemplice((string) $riga['plain_titolo']);
    $immagine = preg_match('/<picture>.*<\/picture>|<img[^>]*>/s', $grande, $parti) ? $parti[0] : $grande;
    $indirizzo = fn(string $file): string => kvHtml(str_replace('%2F', '/', rawurlencode(kvUtf8($file))));
    $html = '<div class="galleria" data-testo="' . $nome . '" data-grande="' . $indirizzo($files[0]) . '"><div class="grande"><a href="'
        . $indirizzo($files[0]) . '">' . $immagine . '</a></div>';
    $provini = '';
    foreach (count($files) > 1 ? $files : [] as $n => $file) {
        $testo = $nome . ', ' . ($n + 1);
        $provini .= '<li><a href="' . $indirizzo($file) . '" data-testo="' . $testo . '"' . ($n === 0 ? ' aria-current="true"' : '')
            . '><img src="' . $indirizzo($file) . '" alt="' . $testo . '" loading="lazy"></a></li>';
    }
    return $html . ($provini === '' ? '' : '<ul class="provini" aria-label="' . kvHtml("<<4-immagini>>") . "\">$provini</ul>") . '</div>';
}
