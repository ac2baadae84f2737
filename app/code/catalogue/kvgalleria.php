<?php
// ***1.0.7***
// The pictures of an article on its own page: the big one, and small ones that choose it. Besides the pictures of the
// article there may be more of them beside the first one in the site, by the numbers in their names: vaso.jpg, vaso-2.jpg,
// vaso-3.jpg. Without scripts a small picture leads to its file.

/** Most pictures that belong to one by their numbers. */
const KV_PICTURES = 9;

/** What the name of a picture says of the thing shown: without folder, ending and a mark of its size. */
function kvPictureSubject(string $file): string
{
    return preg_replace('/[-_](?:p|g|s|m|l|xl|mini|small|big|large|thumb|piccol[ao]|grande)$/', '',
        strtolower((string) pathinfo($file, PATHINFO_FILENAME)));
}

/** The files of an article's pictures, each thing shown once, the biggest of it. */
function kvArticlePictures(array $row): array
{
    $files = [];
    foreach (['immagine2', 'immagine1', 'immagine3'] as $name) {
        $src = (string) (kvImmagine((string) ($row[$name] ?? ''))['src'] ?? '');
        $file = rawurldecode(html_entity_decode($src, ENT_QUOTES, 'cp1252'));
        $files += $file === '' ? [] : [kvPictureSubject($file) => $file];
    }
    if (preg_match('/PopupImage\(\'([^\']*)\'/', (string) ($row['immagine1'] ?? ''), $parts)) {
        $big = rawurldecode(html_entity_decode($parts[1], ENT_QUOTES, 'cp1252'));
        $files[kvPictureSubject($big)] = $big;
    }
    foreach (array_keys($files) as $subject) {
        $files += kvNumberedPictures($files[$subject], (string) $subject);
    }
    return array_values(array_slice($files, 0, KV_PICTURES));
}

/** The pictures beside a file that its numbers name, by what they show. */
function kvNumberedPictures(string $file, string $subject): array
{
    $root = substr((string) pathinfo($file, PATHINFO_FILENAME), 0, strlen($subject));
    $pattern = strpbrk($root, "/\\:\0*?[") === false ? $root . '-%d.' . pathinfo($file, PATHINFO_EXTENSION) : '';
    $files = [];
    for ($n = 2; $pattern !== '' && $n <= KV_PICTURES && is_file($other = strtr($pattern, ['%d' => (string) $n])); $n++) {
        $files[kvPictureSubject($other)] = $other;
    }
    return $files;
}

/** The pictures of an article; an empty text without any. */
function kvGalleria(array $row): string
{
    $big = kvFotoGrande($row);
    $files = kvArticlePictures($row);
    if ($big === '' || $files === []) {
        return $big;
    }
    $name = TestoSemplice((string) $row['plain_titolo']);
    $picture = preg_match('/<picture>.*<\/picture>|<img[^>]*>/s', $big, $parts) ? $parts[0] : $big;
    $address = fn(string $file): string => kvHtml(str_replace('%2F', '/', rawurlencode(kvUtf8($file))));
    $html = '<div class="galleria" data-testo="' . $name . '" data-grande="' . $address($files[0]) . '"><div class="grande"><a href="'
        . $address($files[0]) . '">' . $picture . '</a></div>';
    $thumbnails = '';
    foreach (count($files) > 1 ? $files : [] as $n => $file) {
        $text = $name . ', ' . ($n + 1);
        $thumbnails .= '<li><a href="' . $address($file) . '" data-testo="' . $text . '"' . ($n === 0 ? ' aria-current="true"' : '')
            . '><img src="' . $address($file) . '" alt="' . $text . '" loading="lazy"></a></li>';
    }
    return $html . ($thumbnails === '' ? '' : '<ul class="provini" aria-label="' . kvHtml("<<4-immagini>>") . "\">$thumbnails</ul>") . '</div>';
}
