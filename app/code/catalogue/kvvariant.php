<?php
// ***1.0.7***
// Variants on a page and in the cart. The build wrote each variant as a list of option elements whose value reads
// <<PRICE>>=WEIGHT#CODE|LABEL and whose text may hold <<importo>>: here the visitor's own difference goes in.
// In the cart a value is known by a key of six characters made of its code and label in the shop's first language, so that
// the cart survives a change of language, of prices and of the order of the values.
include_once "kvstock.php";

/** The variants that a row names for a listino. */
function kvRowVariants(array $row, int $listino): array
{
    $numbers = [];
    for ($slot = 1; $slot <= 4; $slot++) {
        $numbers[] = kvVariantNumber($row, $slot, $listino);
    }
    return array_filter($numbers);
}

/** The numbers of all variants of the page's articles, so that one query reads them. */
function kvPageVariants(): array
{
    global $resultArt, $listino;
    $numbers = [];
    foreach ($resultArt instanceof KvRows ? $resultArt->rows : [] as $row) {
        foreach (kvRowVariants($row, $listino) as $id) {
            $numbers[] = $id;
        }
    }
    return $numbers;
}

/** Reads variants by their numbers, those that were read before excepted. */
function kvReadVariants(array $numbers): array
{
    static $read = [];
    $missing = array_values(array_unique(array_diff($numbers, array_keys($read))));
    if ($missing !== []) {
        $table = kvLanguageTable('opzioni');
        $read += array_fill_keys($missing, null);
        // Numbers that the database gave: one trip to the server, where a bound statement takes three.
        $list = implode(',', array_map('intval', $missing));
        $sql = $table === 'opzioni'
            ? "SELECT ID, nomeopzione, opzione, opzione AS prima FROM opzioni WHERE ID IN ($list)"
            : "SELECT $table.ID, $table.nomeopzione, $table.opzione, opzioni.opzione AS prima FROM $table"
                . " LEFT JOIN opzioni USING (ID) WHERE $table.ID IN ($list)";
        $result = mysql_query($sql);
        while ($row = mysql_fetch_assoc($result)) {
            $read[(int) $row['ID']] = kvParseVariant($row);
        }
    }
    return $read;
}

/** The option elements of a built list: [attributes before value, price, weight, code, label, text of the element]. */
function kvVariantOptions(string $list): array
{
    // The build marks the default value with a star, which is for the selector alone.
    $list = preg_replace('/(<option selected value="[^"]*) \*">/i', '$1">', $list);
    preg_match_all(
        '/<option ([^>]*?)value="<<\s*([-0-9.]*)>>=([^#"]*)#([^|"]*)\|([^"]*)">(.*?)<\/option>/is', $list, $entries,
        PREG_SET_ORDER);
    return $entries;
}

/**
 * A variant taken apart: name, and entries by key, each with attributes, price (ten-thousandths), weight, coded (the code
 * as it is in the value), code, label (the cart's), text, first (the label in the first language).
 */
function kvParseVariant(array $row): array
{
    $first = kvVariantOptions((string) $row['prima']);
    $own = kvVariantOptions((string) $row['opzione']);
    // Without a translation a value is missing from its list: then positions tell nothing about the other language.
    $parallel = count($first) === count($own);
    $entries = [];
    foreach ($own as $n => $entry) {
        $base = $parallel ? $first[$n] : $entry;
        $key = substr(md5($base[4] . '|' . $base[5]), 0, 6);
        while (isset($entries[$key])) {
            $key = substr(md5($key), 0, 6);
        }
        $entries[$key] = [
            'attributes' => trim($entry[1]), 'price' => kvTenThousandths($entry[2]), 'weight' => $entry[3],
            'coded' => $entry[4], 'code' => rawurldecode($entry[4]), 'label' => $entry[5], 'text' => $entry[6],
            'first' => $base[5],
        ];
    }
    return ['name' => (string) $row['nomeopzione'], 'entries' => $entries];
}

/** The variant of a number, null when it has no values. */
function kvVariantValues(int $id): ?array
{
    static $page = false;
    $read = kvReadVariants($page ? [$id] : array_merge([$id], kvPageVariants()));
    $page = true;
    return isset($read[$id]) && $read[$id]['entries'] !== [] ? $read[$id] : null;
}

/**
 * The difference of a variant value for the visitor, in smallest units: by the department's factor unless the article
 * is on offer, then with VAT where prices include it, like the price it is added to.
 */
function kvDifference(int $difference, array $row): int
{
    global $listino, $ivacompresa, $scontorep, $ivarep;
    if (!kvVisitorPrices($row)['offerta'] && (float) $scontorep[$listino] !== 1.0) {
        $difference = kvProduct($difference, (float) $scontorep[$listino]);
    }
    return kvSmallestUnits(kvWithVat($difference, (float) $ivarep, (bool) $ivacompresa), kvScale());
}

/** One value of a selector; one that is sold out can't be chosen, not even where it is the default. */
function kvOption(array $row, string $key, array $entry, bool $available): string
{
    $hidden = kvArePricesHidden();
    $amount = $hidden ? 0 : kvDifference($entry['price'], $row);
    $text = $hidden
        ? preg_replace('/ \( [^()]*<<importo>> \)/', '', $entry['text'])
        : str_replace('<<importo>>', kvFormatUnits(abs($amount), kvScale(), (int) $GLOBALS['notazione']), $entry['text']);
    $attributes = $available ? $entry['attributes'] : 'disabled';
    return '<option ' . ($attributes === '' ? '' : $attributes . ' ') . 'value="' . kvScriptNumber($amount, kvScale()) . '='
        . $entry['weight'] . '#' . $entry['coded'] . '|' . $entry['label'] . '" data-k="' . $key . '">' . $text
        . ($available ? '' : ' - ' . kvHtml("<<4-esaurito>>")) . '</option>';
}

/** The selector of a variant slot with the visitor's price differences; empty without a variant. */
function kvSelector(array $row, int $slot): string
{
    $id = kvVariantNumber($row, $slot, $GLOBALS['listino']);
    $variant = kvVariantValues($id);
    if ($variant === null) {
        return '';
    }
    $options = '';
    foreach ($variant['entries'] as $key => $entry) {
        $options .= kvOption($row, $key, $entry, kvIsValueAvailable($row, $id, $entry['code']));
    }
    return '<label class="opzione">' . kvTextHtml($variant['name']) . ' <select name="op' . $slot
        . (int) ($row['contatore'] ?? 0) . '">' . $options . '</select></label>';
}
