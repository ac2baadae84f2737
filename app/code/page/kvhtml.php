<?php
// ***1.0.7***
// The HTML of the build and of the merchant brought to today's: the build writes some elements in the manner of its
// first templates (<BR>, <font>, border="0", onMouseOver), a merchant may have pasted anything into a description.
// Nothing is taken away but what only decorated. Source: HTML Living Standard, sections 13.1 and 16 (obsolete features).

/** Elements that were only for looks, by what stands for them today. */
const KV_ELEMENTI = ['font' => 'span', 'center' => 'div', 'strike' => 's', 'tt' => 'code', 'big' => 'span'];
/** Attributes that were only for looks. */
const KV_ORNAMENTI = ['border', 'align', 'valign', 'bgcolor', 'background', 'cellpadding', 'cellspacing', 'nowrap',
    'hspace', 'vspace', 'face', 'color', 'link', 'vlink', 'alink', 'text', 'clear', 'noshade', 'language'];
/** A tag in which there is nothing to change, of two attributes at most: no look at its parts is needed. */
const KV_TAG_BUONO = '/^<(?:\/(?:[abip]|li|ul|ol|h[1-6]|strong|span|div|em|nav)|(?:[abip]|li|ul|ol|h[1-6]|strong|span|div|em|br)'
    . '(?: (href|class|id|title|lang)="[^"<>&]*"(?: (?!\1)(?:href|class|id|title|lang)="[^"<>&]*")?)?)>$/D';
/** Elements that can't stand within a paragraph. */
const KV_BLOCCHI = '/<(?:p|div|ul|ol|dl|table|h[1-6]|form|section|article|blockquote|pre|hr|figure|center)\b/i';

/** Text between tags: lone ampersands and angle brackets as references. */
function kvTestoTraTag(string $testo): string
{
    return str_replace(['<', '>'], ['&lt;', '&gt;'],
        preg_replace('/&(?!(?:[a-z][a-z0-9]*|#\d+|#x[0-9a-f]+);)/i', '&amp;', $testo));
}

/** The attributes of a start tag, by their names in lower case; the first of a name counts, null has no value. */
function kvAttributi(string $testo): array
{
    $attributi = [];
    preg_match_all('/([a-z_:][-\w:.]*)(?:\s*=\s*("[^"]*"|\'[^\']*\'|[^\s"\'>]+))?/i', $testo, $trovati, PREG_SET_ORDER);
    foreach ($trovati as $trovato) {
        $valore = isset($trovato[2]) ? $trovato[2] : null;
        if ($valore !== null && ($valore[0] === '"' || $valore[0] === "'")) {
            $valore = substr($valore, 1, -1);
        }
        $attributi += [strtolower($trovato[1]) => $valore];
    }
    return $attributi;
}

/** A start tag from its name and attributes; values are HTML text already, but for quotes and lone ampersands. */
function kvTag(string $nome, array $attributi): string
{
    $testo = '<' . $nome;
    foreach ($attributi as $attributo => $valore) {
        $testo .= ' ' . $attributo;
        $testo .= $valore === null ? '' : '="' . str_replace('"', '&quot;', kvTestoTraTag((string) $valore)) . '"';
    }
    return $testo . '>';
}

/** One start tag of the build or of the merchant as it is written today. */
function kvTagPulito(string $nome, string $resto): string
{
    $attributi = kvAttributi($resto);
    $misurabile = in_array($nome, ['img', 'video', 'iframe', 'canvas', 'svg', 'object', 'embed'], true);
    foreach ($attributi as $attributo => $valore) {
        $misura = ($attributo === 'width' || $attributo === 'height') && !$misurabile;
        if (in_array($attributo, KV_ORNAMENTI, true) || $misura || ($attributo === 'size' && $nome === 'font')) {
            unset($attributi[$attributo]);
        }
    }
    if ($nome === 'img') {
        $attributi += ['alt' => ''];
    }
    if ($nome === 'a' && isset($attributi['name'])) {
        $attributi += ['id' => $attributi['name']];
        unset($attributi['name']);
    }
    if (strtolower((string) ($attributi['target'] ?? '')) === '_blank') {
        $attributi += ['rel' => 'noopener'];
    }
    return kvTag(KV_ELEMENTI[$nome] ?? $nome, $attributi);
}

/** A piece of HTML as it is written today. Scripts, styles and comments stay as they are. */
function kvPulito(string $html): string
{
    if (strpbrk($html, '<>&') === false) {
        return $html;
    }
    $pezzi = preg_split(
        '/(<!--.*?-->|<(?:script|style)\b.*?<\/(?:script|style)\s*>|<\/?[a-z][a-z0-9]*(?:"[^"]*"|\'[^\']*\'|[^\'"<>])*>)/is',
        $html, -1, PREG_SPLIT_DELIM_CAPTURE);
    foreach ($pezzi as $n => $pezzo) {
        if ($n % 2 === 0) {
            $pezzi[$n] = kvTestoTraTag($pezzo);
        } elseif ($pezzo === '<BR>') {
            $pezzi[$n] = '<br>';
        } elseif (!preg_match(KV_TAG_BUONO, $pezzo)
            && preg_match('/^<(\/?)([a-z][a-z0-9]*)(.*?)\/?>$/is', $pezzo, $parti)) {
            $nome = strtolower($parti[2]);
            if ($nome !== 'script' && $nome !== 'style') {
                $pezzi[$n] = $parti[1] === '' ? kvTagPulito($nome, $parti[3]) : '</' . (KV_ELEMENTI[$nome] ?? $nome) . '>';
            }
        }
    }
    return implode('', $pezzi);
}

/** A text of the merchant as paragraphs: an empty line parts them, a line end is a line end. HTML keeps its own form. */
function kvTesto(?string $testo): string
{
    $testo = trim((string) $testo);
    if ($testo === '' || preg_match(KV_BLOCCHI, $testo)) {
        return kvPulito($testo);
    }
    $testo = preg_replace('/[ \t]*(?:<br\s*\/?>|\r\n?|\n)[ \t]*/i', "\n", preg_replace('/<br\s*\/?>\r?\n/i', "\n", $testo));
    $paragrafi = preg_split('/\n{2,}/', $testo, -1, PREG_SPLIT_NO_EMPTY);
    return '<p>' . implode("</p>\n<p>", array_map(fn($p) => str_replace("\n", '<br>', kvPulito(trim($p))), $paragrafi))
        . "</p>\n";
}

/** The first words of a text, at most so many letters, for descriptions. */
function kvPrimeParole(string $testo, int $massimo): string
{
    $parole = html_entity_decode(TestoSemplice($testo), ENT_QUOTES, 'cp1252');
    if (strlen($parole) <= $massimo) {
        return $parole;
    }
    $taglio = strrpos(substr($parole, 0, $massimo), ' ');
    return rtrim(substr($parole, 0, $taglio ?: $massimo), " ,;:.-\x96\x97") . "\x85";
}
