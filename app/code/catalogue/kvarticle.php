<?php
// ***1.0.7***
// One article as the pages show it. ViewArt is what each article tag of a template becomes; the row of the article
// is in the global $rowArt. Texts that depend on the visitor (prices, marks, the buy link, variants) are made here,
// all others are columns of the row. Besides the columns a template may name: prezzo_barrato (the list price, only
// where a lower one is asked), opzioni (all variant selectors), scaglioni (the quantity discounts in words), correlati
// (links to the articles of the same group), unitario (the price of a unit), minimo (the lowest price before a
// reduction), sicurezza (maker and person responsible), consegna (the time of delivery).
include_once "kvhtml.php";
include_once "kvlegge.php";

function ViewArt(string $name): string
{
    global $rowArt;
    $row = is_array($rowArt) ? $rowArt : [];
    switch ($name) {
        case 'listino':
        case 'prezzo':
        case 'prezzo_barrato':
        case 'cambio':
        case 'cart_prezzo':
            return kvPriceView($name, $row);
        case 'offerta':
            return ViewOfferta();
        case 'novita':
            return empty($row['novita']) ? '' : (string) $GLOBALS['visnovita'];
        case 'java_acquista':
            return kvBuyLink($row);
        case 'opzione1':
        case 'opzione2':
        case 'opzione3':
        case 'opzione4':
            return kvSelectors($row, [(int) $name[7]]);
        case 'opzioni':
            return kvSelectors($row, [1, 2, 3, 4]);
        case 'scaglioni':
            return kvQuantityStepsText($row);
        case 'correlati':
            return kvCorrelati($row);
        case 'unitario':
            return kvUnitPrice($row);
        case 'minimo':
            return kvLowestPrice($row);
        case 'sicurezza':
            return kvSafetyData($row);
        case 'consegna':
            return kvDeliveryNote($row);
        case 'iva':
            return kvArePricesHidden() ? '' : (string) ($row['iva'] ?? '');
        case 'immagine1':
        case 'immagine2':
        case 'immagine3':
            return kvWithLighterPictures((string) ($row[$name] ?? ''));
        default:
            return (string) ($row[$name] ?? '');
    }
}

/** The lighter forms of a picture that are in the site, by their widths in pixels; nothing without any. `src` is as
 *  in a tag; `width` is the picture's own width, 0 where it isn't known. */
function kvLighterForms(string $src, int $width): array
{
    $file = rawurldecode(html_entity_decode($src, ENT_QUOTES, 'ISO-8859-1'));
    if ($file === '' || strpbrk($file, "/\\:\0") !== false || !is_file($file . '.webp')) {
        return [];
    }
    $forms = [$width => $src . '.webp'];
    foreach ($width > 0 ? [960, 480] : [] as $measure) {
        if ($measure < $width && is_file("$file.$measure.webp")) {
            $forms[$measure] = "$src.$measure.webp";
        }
    }
    return $forms;
}

/** A tag of a picture within the offer of its lighter forms; the tag itself without any. */
function kvWithForms(string $tag, array $forms, string $sizes): string
{
    if ($forms === []) {
        return $tag;
    }
    if (count($forms) > 1) {
        unset($forms[0]);  // without its width a form can't be one of several
    }
    ksort($forms);
    $set = [];
    foreach ($forms as $width => $src) {
        $set[] = str_replace(' ', '%20', $src) . ($width > 0 ? " {$width}w" : '');
    }
    $attributes = ['type' => 'image/webp', 'srcset' => implode(', ', $set)];
    return '<picture>' . kvTag('source', $attributes + (isset($forms[0]) ? [] : ['sizes' => $sizes])) . $tag . '</picture>';
}

/** A piece of HTML of the build whose pictures are offered in their lighter forms. */
function kvWithLighterPictures(string $html): string
{
    return preg_replace_callback('/<img\b[^>]*>/i', function (array $parts): string {
        $attributes = kvAttributes(substr($parts[0], 4));
        $width = (int) ($attributes['width'] ?? 0);
        $forms = kvLighterForms((string) ($attributes['src'] ?? ''), $width);
        return kvWithForms($parts[0], $forms, "(max-width: {$width}px) 100vw, {$width}px");
    }, $html);
}

function kvPriceView(string $name, array $row): string
{
    if (kvArePricesHidden()) {
        return $name === 'prezzo' ? kvHtml("<<4-prezzo_riservato>>") : '';
    }
    $prices = kvVisitorPrices($row);
    switch ($name) {
        case 'listino':
        case 'prezzo_barrato':
            if ($prices['ridotto']) {
                return '<s>' . kvAmountText($prices['listino']) . '</s>';
            }
            return $name === 'listino' ? kvAmountText($prices['listino']) : '';
        case 'cambio':
            return kvExchangeText($prices['prezzo'] / 10000);
        case 'cart_prezzo':
            return kvScriptNumber(kvSmallestUnits($prices['prezzo'], kvScale()), kvScale());
        default:
            return kvAmountText($prices['prezzo']);
    }
}

/** The offer mark, the discount percent and the lowest price before the reduction of the current row. */
function ViewOfferta(): string
{
    global $rowArt;
    $least = is_array($rowArt) ? kvLowestPrice($rowArt) : '';
    return kvOfferMark() . ($least === '' ? '' : ' <span class="minimo">' . $least . '</span>');
}

/** The offer mark and the discount percent of the current row. */
function kvOfferMark(): string
{
    global $rowArt, $visofferta, $vissconto, $notazione;
    if (!is_array($rowArt) || kvArePricesHidden()) {
        return '';
    }
    $prices = kvVisitorPrices($rowArt);
    $text = $prices['offerta'] ? (string) $visofferta : '';
    if ($vissconto && $prices['sconto'] > 0) {
        $text .= ' <span class="sconto">-' . kvPercentText($prices['sconto']) . '%</span>';
    }
    return $text;
}

/** A percentage with at most two decimals, in the shop's notation. */
function kvPercentText(float $percent): string
{
    return rtrim(rtrim(kvFormatUnits((int) round($percent * 100), 100, (int) $GLOBALS['notazione']), '0'), ',.');
}

/** An image of the showcase cell; nothing without a name, no size when none is known. */
function VetImmagine(string $file, string $width, string $height): string
{
    if ($file === '') {
        return '';
    }
    $sizes = (int) $width > 0 ? ' width="' . (int) $width . '" height="' . (int) $height . '"' : '';
    return kvWithLighterPictures('<img src="' . kvHtml($file) . '"' . $sizes . ' alt="" loading="lazy">');
}

/** A text as an argument between single quotes of a script that is in the address of a link. */
function kvScriptText(string $text): string
{
    return strtr($text, [
        '"' => '%22', '%' => '%25', "'" => "\\'", '\\' => '\\\\', ';' => ',', '<' => '%3C', '>' => '%3E', '&' => '%26',
        '[' => ' ', ']' => ' ', '|' => ' ', "\xA3" => ' ', "\r" => ' ', "\n" => ' ',
    ]);
}

/** The quantity discount of a row: pairs of quantity and factor in millionths, by rising quantity. */
function kvQuantitySteps(array $row, int $listino): array
{
    $steps = [];
    if (!empty($row['scq' . ($listino === 0 ? '' : $listino)])) {
        foreach (['0', '1'] as $n) {
            $threshold = (int) ($row['scqart' . $n] ?? 0);
            if ($threshold > 0) {
                $steps[$threshold] = [$threshold, (int) round((float) ($row['scqperc' . $n] ?? 1) * 1000000)];
            }
        }
        ksort($steps);
    }
    return array_values($steps);
}

/** The quantity discounts in words, "3: -10% 10: -20%" as a list; empty without any. */
function kvQuantityStepsText(array $row): string
{
    if (kvArePricesHidden()) {
        return '';
    }
    $entries = '';
    foreach (kvQuantitySteps($row, $GLOBALS['listino']) as list($threshold, $factor)) {
        $percent = kvPercentText((1000000 - $factor) / 10000);
        $entries .= "<li><<4-quantita_da>> $threshold: -$percent%</li>";
    }
    return $entries === '' ? '' : '<ul class="scaglioni">' . $entries . '</ul>';
}

/**
 * The buy link: it is in an href; its inner quote closes the address. Visitors who may not buy are sent to the
 * registration page instead. What reaches the cart is the article's number, the quantity and the chosen values: names
 * and prices are for scripts of the merchant's own, the cart asks the server for them.
 */
function kvBuyLink(array $row): string
{
    global $cliente, $subtitleincart, $ivacompresa, $ivarep, $Lingua;
    $tail = "\" onMouseOver=\"window.status=''; return true";
    if (kvIsBuyingDenied()) {
        $reason = $cliente > 0 ? 'm=37&amp;t=.37.' : 'm=23';
        return "javascript:self.location='login$Lingua.php?$reason';" . $tail;
    }
    $article = (string) ($row['cart_articolo'] ?? '');
    if ($subtitleincart && ($row['plain_sottotitolo'] ?? '') !== '') {
        $article .= ' ' . kvScriptText(strip_tags((string) $row['plain_sottotitolo']));
    }
    $slot = (int) ($row['contatore'] ?? 0);
    $price = kvScriptNumber(kvSmallestUnits(kvVisitorPrices($row)['prezzo'], kvScale()), kvScale());
    $vat = $ivacompresa ? '0' : (string) round((float) $ivarep, 6);
    $weight = (string) ($row['cart_peso'] ?? '0');
    return "javascript:window.status='';Acquista('$article','$price','$vat',document.itemsform.qt$slot.value,"
        . "'op1$slot','op2$slot','op3$slot','$weight','op4$slot'," . (int) ($row['ID'] ?? 0) . ')' . $tail;
}

/** The variant of a slot (1 to 4) for a listino; 0 when the slot is empty. */
function kvVariantNumber(array $row, int $slot, int $listino): int
{
    $id = (int) ($row['opzione' . $slot . ($listino === 0 ? '' : '_' . $listino)] ?? 0);
    return $id > 1 ? $id : 0;
}

/** The selectors of some variant slots; empty where the article has no variants. */
function kvSelectors(array $row, array $positions): string
{
    $html = '';
    foreach ($positions as $slot) {
        if (kvVariantNumber($row, $slot, $GLOBALS['listino']) > 0) {
            include_once "kvvariant.php";
            $html .= kvSelector($row, $slot);
        }
    }
    return $html;
}

/** The group word of a row by which related articles are known; empty when it has none. */
function kvGroupWord(array $row): string
{
    return strtolower(trim((string) ($row['correlazione'] ?? '')));
}

/**
 * The rows of related articles, by the key that a load makes; a shop that has none yet reads all its articles. `after` is
 * the rest of the statement up to the column of the group word.
 */
function kvGroupRows(string $columns, string $table, string $after, array $groups): array
{
    include_once "kvtables.php";
    $index = 'indice' . $GLOBALS['Lingua'];
    if ((int) ($GLOBALS['kvStates'][$index] ?? kvStoredValue($index)) < KV_INDEX_OF_GROUPS) {
        return kvQuery("SELECT $columns FROM $table$after IN (" . implode(',', array_fill(0, count($groups), '?'))
            . ') ORDER BY plain_titolo', $groups) ?? [];
    }
    // The connection stays with the character set of the catalogue: a change of it, and bound values, are trips to the
    // server. The words of the index are UTF-8 all the same, told by their bytes.
    kvSetCharset('latin1');
    $words = array_map(fn($word) => "'" . mysqli_real_escape_string(kvConnection(), $word) . "'", $groups);
    $keys = array_map(fn($word) => "_utf8mb4 x'" . bin2hex(kvIndexGroup($word)) . "'", $groups);
    $sql = "SELECT STRAIGHT_JOIN $columns FROM kv_voci{$GLOBALS['Lingua']} v INNER JOIN $table ON $table.ID = v.articolo$after"
        . ' IN (' . implode(',', $words) . ') AND v.gruppo IN (' . implode(',', $keys) . ') ORDER BY plain_titolo';
    $result = mysqli_query(kvConnection(), $sql);
    if ($result === false && mysqli_errno(kvConnection()) === 1146) {
        kvUpdateTables();
        kvSetCharset('latin1');
        $result = mysqli_query(kvConnection(), $sql);
    }
    return $result instanceof mysqli_result ? mysqli_fetch_all($result, MYSQLI_ASSOC) : [];
}

/** The articles of each group word on the page, read by one query; closed and hidden departments stay out. */
function kvPageGroups(string $group): array
{
    global $resultArt, $listino;
    static $groups = [];
    if (isset($groups[$group])) {
        return $groups;
    }
    $rows = $resultArt instanceof KvRows ? $resultArt->rows : [];
    $wanted = array_values(array_filter(array_unique(array_merge([$group], array_map('kvGroupWord', $rows)))));
    $groups += array_fill_keys($wanted, []);
    $table = kvLanguageTable('articoli');
    // Beside an article that is shown alone they are cards, with picture and price: those columns come along.
    $cards = is_array($GLOBALS['kvSolo'] ?? null);
    $after = " INNER JOIN dettaglio ON dettaglio.ID = $table.ID INNER JOIN ordinamento ON ordinamento.ID = $table.ID"
        . ($cards ? " LEFT JOIN kv_offerte ON kv_offerte.ID = $table.ID" : '')
        . " INNER JOIN categorie ON categorie.ID = catID WHERE nascosto = 0 AND inaccessibile" . ($listino ?: '')
        . ' = 0 AND correlazione';
    $n = (string) ($listino ?: '');
    $columns = "$table.ID, $table.pagina, sottopagina, contatore, plain_titolo, correlazione"
        . ($cards ? ", catID, $table.pagina AS linkPage, immagine1, immagine2, immagine3, implistino$n, importo$n, offerte" : '');
    foreach (kvGroupRows($columns, $table, $after, $wanted) as $row) {
        $groups[kvGroupWord($row)][] = $row;
    }
    return $groups;
}

/** A card of another article: picture, title, price, that of a unit. Its department is set for its price, and not set back. */
function kvRelatedCard(array $row): string
{
    SetVariables($row['catID']);
    $picture = kvSmallPicture($row);
    $price = kvArePricesHidden() ? '' : '<strong class="importo">' . kvAmountText(kvVisitorPrices($row)['prezzo']) . '</strong>'
        . kvPriceNotes($row, false);
    return '<li><a class="scheda" href="' . kvHtml(kvArticlePage($row)) . '"><span class="foto">'
        . ($picture === null ? '' : kvTagImmagine($picture, '')) . '</span><span class="nome">' . TestoSemplice((string) $row['plain_titolo'])
        . "</span>$price</a></li>";
}

/** The other articles with the same group word, twelve at most: cards on the page of one article, links in a list. */
function kvCorrelati(array $row): string
{
    $group = kvGroupWord($row);
    $others = array_slice(array_filter($group === '' ? [] : kvPageGroups($group)[$group],
        fn($other) => (int) $other['ID'] !== (int) $row['ID']), 0, 12);
    $entries = '';
    if (is_array($GLOBALS['kvSolo'] ?? null)) {
        include_once "kvcard.php";
        kvReadDepartments(array_map('strval', array_column($others, 'catID')));
        $GLOBALS['kvAlsoShown'] = array_column($others, 'ID');
        $entries = implode('', array_map('kvRelatedCard', $others));
        SetVariables($row['catID']);
        return $entries === '' ? '' : '<ul class="correlati schede">' . $entries . '</ul>';
    }
    foreach ($others as $other) {
        $entries .= '<li><a href="' . kvHtml($other['pagina']) . '.php?n=' . (int) $other['sottopagina'] . '#'
            . (int) $other['contatore'] . '">' . kvTextHtml((string) $other['plain_titolo']) . '</a></li>';
    }
    return $entries === '' ? '' : '<ul class="correlati">' . $entries . '</ul>';
}
