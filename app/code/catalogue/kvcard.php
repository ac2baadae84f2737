<?php
// ***1.0.7***
// An article as a card of a list and as a page of its own, beyond the tags of kind 2: pictures with their sizes, marks,
// price, the form that buys, and the structured data of schema.org. The row of the article is in $rowArt and its
// department is set, as for ViewArt.
include_once "kvcart.php";
include_once "kvnota.php";

/** The picture in a tag of the build: src, and width and height where the build knew them; null without one. */
function kvImmagine(string $tag): ?array
{
    if (!preg_match('/<img\b[^>]*>/i', $tag, $parts)) {
        return null;
    }
    $attributes = kvAttributes(substr($parts[0], 4));
    $src = (string) ($attributes['src'] ?? '');
    return $src === '' ? null
        : ['src' => $src, 'width' => (int) ($attributes['width'] ?? 0), 'height' => (int) ($attributes['height'] ?? 0)];
}

/** The tag of a picture; `others` are the same picture in other sizes, for screens that show more of it. */
function kvTagImmagine(array $picture, string $text, bool $lazy = true, array $others = [], string $sizes = ''): string
{
    $attributes = ['src' => $picture['src'], 'alt' => $text];
    if ($picture['width'] > 0 && $picture['height'] > 0) {
        $attributes += ['width' => $picture['width'], 'height' => $picture['height']];
        $set = [];
        foreach (array_merge([$picture], $others) as $other) {
            if ($other['width'] > 0) {
                $set[$other['width']] = str_replace(' ', '%20', $other['src']) . ' ' . $other['width'] . 'w';
            }
        }
        if (count($set) > 1) {
            $attributes += ['srcset' => implode(', ', $set), 'sizes' => $sizes];
        }
    }
    $forms = [];
    foreach (array_merge([$picture], $others) as $other) {
        $forms += kvLighterForms($other['src'], (int) $other['width']);
    }
    $tag = kvTag('img', $attributes + ($lazy ? ['loading' => 'lazy'] : []) + ['decoding' => 'async']);
    return kvWithForms($tag, $forms, $sizes === '' ? "(max-width: {$picture['width']}px) 100vw, {$picture['width']}px" : $sizes);
}

/** A piece of HTML of the build whose pictures say what they show. */
function kvConTesto(string $html, string $text): string
{
    return str_replace('alt=""', 'alt="' . TestoSemplice($text) . '"', kvPulito($html));
}

/** Whether the next picture of a list may wait until it is scrolled to: the first four may not. */
function kvIsLazy(): bool
{
    static $seen = 0;
    return $seen++ >= 4;
}

/** The picture of an article for its card, without words beside its title; an empty text without any. */
function kvFotoScheda(array $row): string
{
    $pictures = array_filter([kvImmagine((string) ($row['immagine1'] ?? '')),
        kvImmagine((string) ($row['immagine2'] ?? '')), kvImmagine((string) ($row['immagine3'] ?? ''))]);
    return $pictures === [] ? ''
        : kvTagImmagine(array_shift($pictures), '', kvIsLazy(), $pictures, '(min-width: 40rem) 15rem, 45vw');
}

/** The big picture of an article on its own page; a click shows it in its full size where the merchant wants that. */
function kvFotoGrande(array $row): string
{
    $first = (string) ($row['immagine1'] ?? '');
    $pictures = array_values(array_filter([kvImmagine((string) ($row['immagine2'] ?? '')), kvImmagine($first)]));
    if ($pictures === []) {
        return '';
    }
    $name = TestoSemplice((string) $row['plain_titolo']);
    $tag = kvTagImmagine($pictures[0], $name, kvIsLazy(), array_slice($pictures, 1), '(min-width: 60rem) 30rem, 92vw');
    if (!preg_match('/PopupImage\(\'([^\']*)\',(\d+),(\d+)\)/', $first, $parts)) {
        return $tag;
    }
    return '<a href="' . kvHtml($parts[1]) . '" onclick="PopupImage(\'' . kvHtml($parts[1])
        . "',$parts[2],$parts[3]); return false\">$tag</a>";
}

/** A picture of the showcase from the file name and the size texts of its cell. */
function kvFotoVetrina(string $file, string $width, string $height): string
{
    return $file === '' ? '' : kvTagImmagine(
        ['src' => kvHtml($file), 'width' => (int) $width, 'height' => (int) $height], '', kvIsLazy());
}

/** The marks of an article: offer, discount in percent, novelty. */
function kvSegni(array $row): string
{
    $marks = empty($row['novita']) ? '' : '<span class="bollo">' . kvHtml("<<4-novita>>") . '</span>';
    return kvBolli(kvOfferMark()) . $marks;
}

/** The marks of the build in words instead of pictures. */
function kvBolli(string $html): string
{
    $html = preg_replace('/<img\b[^>]*\bkvan_offerta[^>]*>/i', '<span class="bollo">' . kvHtml("<<4-offerta>>") . '</span>', trim($html), 1);
    return str_replace('class="sconto"', 'class="bollo sconto"', $html);
}

/** The price asked, the struck list price before it, VAT and second currency after it. */
function kvPrezzo(): string
{
    $crossedOut = ViewArt('prezzo_barrato');
    $html = $crossedOut === '' ? '' : '<span class="barrato"><span class="nascosto">' . kvHtml("<<4-prezzo_pieno>>") . ' </span>'
        . $crossedOut . '</span> ';
    $html .= '<strong class="prezzo">' . ViewArt('prezzo') . '</strong>';
    foreach (['iva', 'cambio'] as $note) {
        $text = ViewArt($note);
        $html .= $text === '' ? '' : ' <span class="nota ' . $note . '">' . kvPulito($text) . '</span>';
    }
    return $html . ' ' . kvNotaPrezzo() . kvPriceNotes($GLOBALS['rowArt']);
}

/** What the browser needs to show the price of the chosen values and pieces; nothing where prices are hidden. */
function kvDatiPrezzo(array $row): string
{
    if (kvArePricesHidden()) {
        return '';
    }
    $content = kvContent($row);
    return '<span class="kv-prezzo" hidden data-prezzo="'
        . kvSmallestUnits(kvVisitorPrices($row)['prezzo'], kvScale())
        . ($content === null ? '' : '" data-contenuto="' . $content[0] . '" data-misura="' . $content[1]) . '" data-passi="'
        . kvHtml((string) json_encode(kvQuantitySteps($row, (int) $GLOBALS['listino']))) . '"></span>';
}

/** All rows of the department page; those that the loop has yet to read stay unread. */
function kvPageRows($result): array
{
    static $rows = null;
    if ($result instanceof KvRows) {
        return $result->rows;
    }
    if ($rows === null && $result instanceof mysqli_result) {
        $rows = [];
        mysqli_data_seek($result, 0);
        while ($row = mysqli_fetch_assoc($result)) {
            $rows[] = $row;
        }
        mysqli_data_seek($result, (int) ($GLOBALS['Contatore'] ?? 0));
    }
    return $rows ?? [];
}

/**
 * The article that is shown alone: the one that the address asks for, or the only one of the page where `unique`. Null
 * for a list. To be called before the loop over the articles; an address that asks for what there isn't gets a page that
 * says so, with status 404.
 */
function kvArticoloSolo(bool $unique = false): ?array
{
    global $resultArt, $HTTP_GET_VARS, $sp;
    $rows = kvPageRows($resultArt);
    $slot = (int) $HTTP_GET_VARS['prod'];
    $page = (int) $HTTP_GET_VARS['n'];
    if (!empty($GLOBALS['kvWrong']) || ($page > 0 && $page !== (int) $sp) || ($slot > 0 && !isset($rows[$slot - 1]))) {
        kvNotFound();
    }
    return $slot > 0 ? $rows[$slot - 1] : ($unique && count($rows) === 1 && !kvListChoices()['active'] ? $rows[0] : null);
}

/** Whether an article can be bought: neither it nor all values of one of its variants are sold out. */
function kvDisponibile(array $row): bool
{
    return kvIsArticleAvailable($row) && kvAreVariantsAvailable($row);
}

/** Whether the article itself isn't sold out. */
function kvIsArticleAvailable(array $row): bool
{
    // A department page has the stock beside the article.
    if (!array_key_exists('disponibile', $row)) {
        return (kvStock(['A' . $row['ID']])['A' . $row['ID']] ?? 1) > 0;
    }
    return $row['disponibile'] === null || ($row['disponibile'] && ($row['quantita'] === null || $row['quantita'] > 0));
}

/** The page that shows an article of this page alone. */
function kvPaginaScheda(array $row): string
{
    return kvPageFile() . '?n=' . (int) ($row['sottopagina'] ?? $GLOBALS['sp']) . '&prod='
        . (int) ($row['posto'] ?? $row['contatore']);
}

/** The same for an article of any department. */
function kvArticlePage(array $row): string
{
    return $row['linkPage'] . '.php?n=' . (int) $row['sottopagina'] . '&prod=' . (int) $row['contatore'];
}

/** The title of an article on its card: the link that the merchant gave it, else one to its own page. */
function kvCardTitle(array $row): string
{
    $title = (string) ($row['titolo'] ?? '');
    return stripos($title, '<a ') !== false ? $title
        : '<a href="' . kvHtml(kvPaginaScheda($row)) . '">' . TestoSemplice((string) $row['plain_titolo']) . '</a>';
}

/** The smallest picture of an article that is fit for a list; null without any. */
function kvSmallPicture(array $row): ?array
{
    return kvImmagine((string) ($row['immagine3'] ?? '')) ?? kvImmagine((string) ($row['immagine1'] ?? ''))
        ?? kvImmagine((string) ($row['immagine2'] ?? ''));
}

/** Whether the visitor has to choose a variant of the article. */
function kvHasVariants(array $row): bool
{
    return kvRowVariants($row, (int) $GLOBALS['listino']) !== [];
}

/**
 * What buys an article: a form with variants and quantity on its own page (`whole`), on a card one button, which leads
 * to that page where there is something to choose. Who may not buy is sent where the buy link of the build would.
 */
function kvModuloAcquista(array $row, bool $whole): string
{
    if (!kvDisponibile($row)) {
        return '<p class="esaurito">' . kvHtml("<<4-esaurito>>") . '</p>';
    }
    $call = substr((string) strstr(ViewArt('java_acquista'), '"', true), strlen('javascript:'));
    if (preg_match('/^self\.location=\'([^\']*)\'/', $call, $parts)) {
        return '<p><a class="bottone" href="' . $parts[1] . '">' . kvHtml("<<4-menu_accesso>>") . '</a></p>';
    }
    $name = kvHtml(kvPlainText((string) $row['plain_titolo']));
    if (!$whole && kvHasVariants($row)) {
        return '<p><a class="bottone secondario" href="' . kvHtml(kvPaginaScheda($row)) . '">' . kvHtml("<<4-scegli>>")
            . '<span class="nascosto">: ' . $name . '</span></a></p>';
    }
    $slot = (int) $row['contatore'];
    // In an address the percent codes are read before the script is; in an attribute they are not.
    $call = str_replace(["window.status='';", "document.itemsform.qt$slot.value"], ['', "this.qt$slot.value"],
        $call);
    $call = kvHtml(rawurldecode($call));
    $least = max(1, (int) "<<1-java_qminima>>");
    $quantity = $whole
        ? '<div class="quantita"><label for="qt' . $slot . '">' . kvHtml("<<4-quantita>>") . '</label>'
            . '<div><button type="button" data-passo="-1" aria-label="' . kvHtml("<<4-meno>>") . '">&minus;</button>'
            . "<input type=\"number\" inputmode=\"numeric\" name=\"qt$slot\" id=\"qt$slot\" value=\"$least\""
            . " min=\"$least\" max=\"99999\" required><button type=\"button\" data-passo=\"1\" aria-label=\""
            . kvHtml("<<4-piu>>") . '">+</button></div></div>'
        : "<input type=\"hidden\" name=\"qt$slot\" value=\"$least\">";
    return '<form class="acquisto" method="post" action="kvcarrello.php" accept-charset="utf-8" onsubmit="' . $call
        . '; return false"><input type="hidden" name="compra" value="' . (int) $row['ID'] . ".$slot\">" . ($whole ? ViewArt('opzioni') : '') . $quantity
        . '<button type="submit">' . kvHtml("<<4-acquista>>") . ($whole ? '' : '<span class="nascosto">: ' . $name . '</span>')
        . '</button></form>';
}

/** The link that an article has to a page elsewhere; nothing without one. */
function kvLinkEsterno(array $row): string
{
    if (!preg_match('/^<a href="([^"]*)"( target="_blank")?>/', (string) ($row['titolo'] ?? ''), $parts)) {
        return '';
    }
    return '<p><a href="' . kvTextBetweenTags($parts[1]) . '"' . (isset($parts[2]) ? ' target="_blank" rel="noopener"' : '') . '>'
        . kvHtml("<<4-approfondimento>>") . '</a></p>';
}

/** The start of the article loop: what the build puts around each article is not wanted, see kvFineSchede. */
function kvInizioSchede(): void
{
    $GLOBALS['kvCards'] = '';
    $GLOBALS['kvDatiSchede'] = [];
    ob_start();
}

/** The start of one article. */
function kvInizioScheda(): void
{
    ob_start();
}

/** The end of one article: it is kept together with its structured data. */
function kvFineScheda(): void
{
    $GLOBALS['kvCards'] .= ob_get_clean();
    $GLOBALS['kvDatiSchede'][] = kvArticleData($GLOBALS['rowArt'], kvDisponibile($GLOBALS['rowArt']));
}

/** The end of the loop: the articles, without the anchors and table cells between them. */
function kvFineSchede(): string
{
    ob_end_clean();
    return $GLOBALS['kvCards'];
}

/** The ISO 4217 code of the shop's currency from its label; empty when the label doesn't tell. */
function kvCurrencyCode(): string
{
    $label = strtoupper(trim(html_entity_decode((string) $GLOBALS['valuta'][0], ENT_QUOTES, 'cp1252')));
    $marks = ["\x80" => 'EUR', 'EURO' => 'EUR', '$' => 'USD', 'US$' => 'USD', "\xA3" => 'GBP', 'FR.' => 'CHF',
        'SFR' => 'CHF', "\xA5" => 'JPY', 'LIT.' => 'ITL', 'LIRE' => 'ITL'];
    return $marks[$label] ?? (preg_match('/^[A-Z]{3}$/D', $label) ? $label : '');
}

/** An offer for each value of an article with one variant that has a limited value; none for all other articles. */
function kvValueOffers(array $row, callable $offer): array
{
    $variants = array_values(kvRowVariants($row, (int) $GLOBALS['listino']));
    $offers = [];
    $limited = 0;
    foreach (count($variants) === 1 ? (kvVariantValues($variants[0])['entries'] ?? []) : [] as $entry) {
        $isFree = kvIsValueAvailable($row, $variants[0], $entry['code']);
        $limited += $isFree ? 0 : 1;
        $price = kvSmallestUnits(kvVisitorPrices($row)['prezzo'], kvScale()) + kvDifference($entry['price'], $row);
        $offers[] = ['name' => kvDataText($entry['label'])] + ($entry['code'] === '' ? []
            : ['sku' => kvUtf8($entry['code'])]) + $offer(kvScriptNumber(max(0, $price), kvScale()), $isFree && kvIsArticleAvailable($row));
    }
    return $limited > 0 ? $offers : [];
}

/** An article as schema.org has it: Product with its Offer. A price that the visitor doesn't see isn't told either. */
function kvArticleData(array $row, bool $available): array
{
    $picture = kvImmagine((string) ($row['immagine2'] ?? '')) ?? kvImmagine((string) ($row['immagine1'] ?? ''));
    $data = ['@type' => 'Product', 'name' => kvDataText((string) $row['plain_titolo']), 'sku' => kvUtf8((string) $row['codice']),
        'description' => kvUtf8(kvFirstWords((string) $row['descrizione'], 1000)),
        'image' => $picture === null ? '' : kvAbsoluteAddress(rawurlencode(html_entity_decode($picture['src']))),
        'url' => kvAbsoluteAddress(kvPaginaScheda($row))];
    $valuta = kvCurrencyCode();
    if (!kvArePricesHidden() && $valuta !== '') {
        $price = kvScriptNumber(kvSmallestUnits(kvVisitorPrices($row)['prezzo'], kvScale()), kvScale());
        $offer = fn(string $price, bool $available): array => ['@type' => 'Offer', 'price' => $price,
            'priceCurrency' => $valuta, 'availability' => 'https://schema.org/' . ($available ? 'InStock' : 'OutOfStock'),
            'url' => $data['url']] + ($GLOBALS['ivacompresa'] ? [] : ['priceSpecification' => [
            '@type' => 'UnitPriceSpecification', 'price' => $price, 'priceCurrency' => $valuta,
            'valueAddedTaxIncluded' => false]]);
        $data['offers'] = $offer($price, $available);
        $values = kvValueOffers($row, $offer);
        $data['offers'] = $values === [] ? $data['offers'] : $values;
        if (is_array($GLOBALS['kvSolo'] ?? null)) {
            include_once "kvsociale.php";
            $delivery = kvDeliveryData($row, $valuta);
            $data['offers'] = $values === [] ? $data['offers'] + $delivery : array_map(fn($one) => $one + $delivery, $values);
        }
    }
    return array_filter($data, fn($value) => $value !== '');
}

/** The structured data of the article that is shown alone; nothing on a page of several. */
function kvSingleArticleData(): string
{
    return is_array($GLOBALS['kvSolo'] ?? null) ? kvStructuredData(['@context' => 'https://schema.org']
        + kvArticleData($GLOBALS['rowArt'], kvDisponibile($GLOBALS['rowArt']))) : '';
}

/** The structured data of the articles shown: one product, or the list of them. */
function kvDatiSchede(): string
{
    $cards = $GLOBALS['kvDatiSchede'] ?? [];
    if (count($cards) < 2) {
        return $cards === [] ? '' : kvStructuredData(['@context' => 'https://schema.org'] + $cards[0]);
    }
    $entries = [];
    foreach ($cards as $n => $card) {
        $entries[] = ['@type' => 'ListItem', 'position' => $n + 1, 'item' => $card];
    }
    return kvStructuredData(['@context' => 'https://schema.org', '@type' => 'ItemList', 'itemListElement' => $entries]);
}

/** The cells of the showcase table of the build as list items; nothing without any. */
function kvVetrina(string $table): string
{
    preg_match_all('/<td [^>]*>\s*<font size="[^"]*">\s*(.*?)<\/font><\/td>/s', $table, $cells);
    $entries = '';
    foreach ($cells[1] as $cell) {
        $entries .= '<li>' . kvBolli(trim($cell)) . "</li>\n";
    }
    return $entries === '' ? '' : "<ul class=\"griglia\">\n$entries</ul>\n";
}

/** The lines of the visitor's cart in brief, for the summary beside the order form. */
function kvElencoCarrello(): string
{
    $entries = '';
    foreach (kvVisitorCart() as $row) {
        $choices = $row['scelte'] === '' ? '' : '<br><span class="nota">' . kvHtml($row['scelte']) . '</span>';
        $entries .= '<li><span>' . $row['quantita'] . ' &times; ' . kvHtml($row['testo']) . $choices . '</span> <span>'
            . kvUnitsText($row['importo'] * $row['quantita']) . '</span></li>';
    }
    return $entries === '' ? '' : '<ul class="righe">' . $entries . "</ul>\n";
}
