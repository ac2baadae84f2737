<?php
// ***1.0.7***
// The HTML of the build and of the merchant brought to today's: the build writes some elements in the manner of its
// first templates (<BR>, <font>, border="0", onMouseOver), a merchant may have pasted anything into a description.
// Nothing is taken away but what only decorated. Source: HTML Living Standard, sections 13.1 and 16 (obsolete features).

/** Elements that were only for looks, by what stands for them today. */
const KV_ELEMENTS = ['font' => 'span', 'center' => 'div', 'strike' => 's', 'tt' => 'code', 'big' => 'span'];
/** Attributes that were only for looks. */
const KV_ORNAMENTS = ['border', 'align', 'valign', 'bgcolor', 'background', 'cellpadding', 'cellspacing', 'nowrap',
    'hspace', 'vspace', 'face', 'color', 'link', 'vlink', 'alink', 'text', 'clear', 'noshade', 'language'];
/** A tag in which there is nothing to change, of two attributes at most: no look at its parts is needed. */
const KV_GOOD_TAG = '/^<(?:\/(?:[abip]|li|ul|ol|h[1-6]|strong|span|div|em|nav)|(?:[abip]|li|ul|ol|h[1-6]|strong|span|div|em|br)'
    . '(?: (href|class|id|title|lang)="[^"<>&]*"(?: (?!\1)(?:href|class|id|title|lang)="[^"<>&]*")?)?)>$/D';
/** Elements that can't be within a paragraph. */
const KV_BLOCKS = '/<(?:p|div|ul|ol|dl|table|h[1-6]|form|section|article|blockquote|pre|hr|figure|center)\b/i';

/** Text between tags: lone ampersands and angle brackets as references. */
function kvTextBetweenTags(string $text): string
{
    return str_replace(['<', '>'], ['&lt;', '&gt;'],
        preg_replace('/&(?!(?:[a-z][a-z0-9]*|#\d+|#x[0-9a-f]+);)/i', '&amp;', $text));
}

/** The attributes of a start tag, by their names in lower case; the first of a name counts, null has no value. */
function kvAttributes(string $text): array
{
    $attributes = [];
    preg_match_all('/([a-z_:][-\w:.]*)(?:\s*=\s*("[^"]*"|\'[^\']*\'|[^\s"\'>]+))?/i', $text, $found, PREG_SET_ORDER);
    foreach ($found as $match) {
        $value = isset($match[2]) ? $match[2] : null;
        if ($value !== null && ($value[0] === '"' || $value[0] === "'")) {
            $value = substr($value, 1, -1);
        }
        $attributes += [strtolower($match[1]) => $value];
    }
    return $attributes;
}

/** A start tag from its name and attributes; values are HTML text already, but for quotes and lone ampersands. */
function kvTag(string $name, array $attributes): string
{
    $text = '<' . $name;
    foreach ($attributes as $attribute => $value) {
        $text .= ' ' . $attribute;
        $text .= $value === null ? '' : '="' . str_replace('"', '&quot;', kvTextBetweenTags((string) $value)) . '"';
    }
    return $text . '>';
}

/** One start tag of the build or of the merchant as it is written today. */
function kvCleanTag(string $name, string $rest): string
{
    $attributes = kvAttributes($rest);
    $measurable = in_array($name, ['img', 'video', 'iframe', 'canvas', 'svg', 'object', 'embed'], true);
    foreach ($attributes as $attribute => $value) {
        $measure = ($attribute === 'width' || $attribute === 'height') && !$measurable;
        if (in_array($attribute, KV_ORNAMENTS, true) || $measure || ($attribute === 'size' && $name === 'font')) {
            unset($attributes[$attribute]);
        }
    }
    if ($name === 'img') {
        $attributes += ['alt' => ''];
    }
    if ($name === 'a' && isset($attributes['name'])) {
        $attributes += ['id' => $attributes['name']];
        unset($attributes['name']);
    }
    if (strtolower((string) ($attributes['target'] ?? '')) === '_blank') {
        $attributes += ['rel' => 'noopener'];
    }
    return kvTag(KV_ELEMENTS[$name] ?? $name, $attributes);
}

/** A piece of HTML as it is written today. Scripts, styles and comments stay as they are. */
function kvPulito(string $html): string
{
    if (strpbrk($html, '<>&') === false) {
        return $html;
    }
    $pieces = preg_split(
        '/(<!--.*?-->|<(?:script|style)\b.*?<\/(?:script|style)\s*>|<\/?[a-z][a-z0-9]*(?:"[^"]*"|\'[^\']*\'|[^\'"<>])*>)/is',
        $html, -1, PREG_SPLIT_DELIM_CAPTURE);
    foreach ($pieces as $n => $piece) {
        if ($n % 2 === 0) {
            $pieces[$n] = kvTextBetweenTags($piece);
        } elseif ($piece === '<BR>') {
            $pieces[$n] = '<br>';
        } elseif (!preg_match(KV_GOOD_TAG, $piece)
            && preg_match('/^<(\/?)([a-z][a-z0-9]*)(.*?)\/?>$/is', $piece, $parts)) {
            $name = strtolower($parts[2]);
            if ($name !== 'script' && $name !== 'style') {
                $pieces[$n] = $parts[1] === '' ? kvCleanTag($name, $parts[3]) : '</' . (KV_ELEMENTS[$name] ?? $name) . '>';
            }
        }
    }
    return implode('', $pieces);
}

/** A text of the merchant as paragraphs: an empty line parts them, a line end is a line end. HTML keeps its own form. */
function kvTesto(?string $text): string
{
    $text = trim((string) $text);
    if ($text === '' || preg_match(KV_BLOCKS, $text)) {
        return kvPulito($text);
    }
    $text = preg_replace('/[ \t]*(?:<br\s*\/?>|\r\n?|\n)[ \t]*/i', "\n", preg_replace('/<br\s*\/?>\r?\n/i', "\n", $text));
    $paragraphs = preg_split('/\n{2,}/', $text, -1, PREG_SPLIT_NO_EMPTY);
    return '<p>' . implode("</p>\n<p>", array_map(fn($p) => str_replace("\n", '<br>', kvPulito(trim($p))), $paragraphs))
        . "</p>\n";
}

/** The first words of a text, at most so many characters, for descriptions. */
function kvFirstWords(string $text, int $most): string
{
    $words = html_entity_decode(TestoSemplice($text), ENT_QUOTES, 'cp1252');
    if (strlen($words) <= $most) {
        return $words;
    }
    $cut = strrpos(substr($words, 0, $most), ' ');
    return rtrim(substr($words, 0, $cut ?: $most), " ,;:.-\x96\x97") . "\x85";
}
