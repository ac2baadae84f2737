<?php
// ***1.0.7***
// A department's articles in another order, or some of them, by an address that can be shared: `ordine` (a key of
// KV_SORT_ORDERS), `da` and `a` (price, as shown), `offerte` and `novita` (1), `vN` (the key of a value of variant N). The
// pages of the build ask for the articles of one sub-page; where the address chooses, kvdb.php gives them those of
// kvArticoliScelti instead, in pages of KV_PER_PAGE.
include_once "kvvariant.php";

/** Articles on a page that the visitor put together. */
const KV_PER_PAGE = 24;
/** The orders, by what compares two articles. */
const KV_SORT_ORDERS = ['' => "<<4-ordine_negozio>>", 'prezzo' => "<<4-ordine_prezzo>>", 'prezzo-giu' => "<<4-ordine_prezzo_giu>>",
    'nome' => "<<4-ordine_alfabetico>>", 'novita' => "<<4-ordine_novita>>"];

/** What the address chooses; `active` tells that it chooses anything. The page of one article chooses nothing. */
function kvListChoices(): array
{
    static $choices = null;
    if ($choices !== null) {
        return $choices;
    }
    $given = fn(string $name): string => is_string($_GET[$name] ?? null) ? $_GET[$name] : '';
    $amount = fn(string $text): ?int => preg_match('/^\d{1,9}(?:[.,]\d{1,2})?$/D', $text)
        ? (int) round((float) strtr($text, ',', '.') * 10000) : null;
    $choices = ['ordine' => isset(KV_SORT_ORDERS[$given('ordine')]) ? $given('ordine') : '', 'offerte' => $given('offerte') === '1',
        'novita' => $given('novita') === '1', 'da' => $amount($given('da')), 'a' => $amount($given('a')), 'valori' => []];
    foreach ($_GET as $name => $value) {
        if (preg_match('/^v([1-9]\d{0,8})$/D', (string) $name, $parts) && is_string($value)
            && preg_match('/^[0-9a-f]{6}$/D', $value)) {
            $choices['valori'][(int) $parts[1]] = $value;
        }
    }
    $choices['active'] = (int) ($_GET['prod'] ?? 0) === 0 && isset($GLOBALS['PageRoot'])
        && array_filter($choices, fn($choice) => !in_array($choice, ['', false, null, []], true)) !== [];
    return $choices;
}

/** The choice as the end of an address, "&ordine=prezzo"; empty where nothing is chosen. */
function kvChoicesQuery(): string
{
    $choices = kvListChoices();
    if (!$choices['active']) {
        return '';
    }
    $parts = ['ordine' => $choices['ordine'], 'da' => kvFieldAmount($choices['da']), 'a' => kvFieldAmount($choices['a']),
        'offerte' => $choices['offerte'] ? '1' : '', 'novita' => $choices['novita'] ? '1' : ''];
    foreach ($choices['valori'] as $variant => $key) {
        $parts["v$variant"] = $key;
    }
    $parts = array_filter($parts, fn($value) => $value !== '');
    return $parts === [] ? '' : '&' . http_build_query($parts);
}

/** An amount of the choice as a number field holds it. */
function kvFieldAmount(?int $amount): string
{
    return $amount === null ? '' : rtrim(rtrim(number_format($amount / 10000, 2, '.', ''), '0'), '.');
}

/**
 * What is chosen by of all articles of this department, by their numbers: narrow rows, in the order of the shop. A page
 * that holds the whole department has read them already.
 */
function kvDepartmentRows(): array
{
    static $rows = null;
    $read = $GLOBALS['resultArt'] ?? null;
    if ($rows === null && $read instanceof KvRows && (int) ($GLOBALS['mp'] ?? 0) === 1 && !kvListChoices()['active']) {
        $rows = array_column($read->rows, null, 'ID');
    }
    if ($rows === null) {
        list($table, $n) = [kvLanguageTable('articoli'), (string) ($GLOBALS['listino'] ?: '')];
        $variants = '';
        foreach ([1, 2, 3, 4] as $slot) {
            $variants .= ", opzione$slot" . ($n === '' ? '' : '_' . $n);
        }
        $read = kvQuery("SELECT $table.ID, plain_titolo, sottopagina, contatore, novita, catID, implistino$n, importo$n, offerte"
            . "$variants FROM $table INNER JOIN dettaglio USING (ID) INNER JOIN ordinamento USING (ID) LEFT JOIN kv_offerte"
            . " USING (ID) WHERE $table.pagina = ?", [(string) $GLOBALS['PageRoot']]) ?? [];
        usort($read, fn($one, $other) => [(int) $one['sottopagina'], (int) $one['contatore']]
            <=> [(int) $other['sottopagina'], (int) $other['contatore']]);
        $rows = array_column($read, null, 'ID');
    }
    return $rows;
}

/** The prices of a narrow row for this visitor. */
function kvRowPrices(array $row): array
{
    global $listino, $ivacompresa;
    $department = (string) $row['catID'];
    list(, $factors, $vat) = kvReadDepartments([$department])[$department];
    return kvPrices($row, $listino, $vat, $factors[$listino], (bool) $ivacompresa);
}

/** Whether an article is among those chosen. */
function kvIsRowChosen(array $row, array $choices): bool
{
    if ($choices['novita'] && empty($row['novita'])) {
        return false;
    }
    foreach ($choices['valori'] as $variant => $key) {
        if (!in_array($variant, kvRowVariants($row, (int) $GLOBALS['listino']), true)
            || !isset(kvVariantValues($variant)['entries'][$key])) {
            return false;
        }
    }
    if (kvArePricesHidden()) {
        return true;
    }
    $prices = kvRowPrices($row);
    return (!$choices['offerte'] || $prices['ridotto']) && ($choices['da'] === null || $prices['prezzo'] >= $choices['da'])
        && ($choices['a'] === null || $prices['prezzo'] <= $choices['a']);
}

/** The numbers of the articles chosen, in the order chosen; equal ones stay in the order of the shop. */
function kvChosenNumbers(): array
{
    static $numbers = null;
    if ($numbers === null) {
        $choices = kvListChoices();
        include_once "kvcart.php";
        kvReadVariants(array_keys($choices['valori']));
        $rows = array_filter(kvDepartmentRows(), fn($row) => kvIsRowChosen($row, $choices));
        $name = fn($row) => kvFold(kvUtf8(kvPlainText((string) $row['plain_titolo'])));
        $values = ['prezzo' => fn($row) => kvRowPrices($row)['prezzo'], 'prezzo-giu' => fn($row) => -kvRowPrices($row)['prezzo'],
            'nome' => $name, 'novita' => fn($row) => empty($row['novita'])][$choices['ordine']] ?? null;
        if ($values !== null && ($choices['ordine'][0] !== 'p' || !kvArePricesHidden())) {
            $of = array_map($values, $rows);
            uasort($rows, fn($one, $other) => $of[$one['ID']] <=> $of[$other['ID']]);
        }
        $numbers = array_map('intval', array_column($rows, 'ID'));
    }
    return $numbers;
}

/** How many pages the chosen articles fill; one at least. */
function kvChosenPages(): int
{
    return max(1, (int) ceil(count(kvChosenNumbers()) / KV_PER_PAGE));
}

/** The query of a department page for the articles of its present page of those chosen. */
function kvChosenSql(string $sql): string
{
    $numbers = array_slice(kvChosenNumbers(), ((int) $GLOBALS['sp'] - 1) * KV_PER_PAGE, KV_PER_PAGE);
    return preg_replace('/ WHERE (articoli\w*)\..*$/s', ' WHERE $1.ID IN (' . implode(',', $numbers ?: [0]) . ')', $sql);
}

/**
 * The rows of a page of chosen articles: in their order, numbered as they are there, with the number that each has on
 * its own sub-page in `posto`, and in the cells of a table where the department has one.
 */
function kvSortChosen(array $rows): array
{
    $positions = array_flip(kvChosenNumbers());
    usort($rows, fn($one, $other) => $positions[(int) $one['ID']] <=> $positions[(int) $other['ID']]);
    $widths = [];
    foreach ($rows as $row) {
        if (preg_match('/width=(\d+)%><table/', (string) $row['beforecode'], $parts)) {
            $widths[] = (int) $parts[1];
        }
    }
    $columns = $widths === [] ? 1 : max(1, intdiv(100, max(1, min($widths))));
    foreach ($rows as $n => $row) {
        $rows[$n]['posto'] = (int) $row['contatore'];
        $rows[$n]['contatore'] = (string) ($n + 1);
        if ($widths !== []) {
            $first = $n % $columns === 0;
            $last = $n % $columns === $columns - 1 || $n === count($rows) - 1;
            $rows[$n]['beforecode'] = ($first ? '<tr>' : '') . '<td valign=top width=' . intdiv(100, $columns)
                . '%><table border=0 width=100%><tr><td valign=top>';
            $rows[$n]['aftercode'] = '</td></tr></table></td>' . ($last ? '</tr>' : '');
        }
    }
    return $rows;
}

/** The selector of the values of one variant; empty where it has fewer than two. */
function kvVariantFilter(int $id, array $choices): string
{
    $variant = kvVariantValues($id);
    if ($variant === null || count($variant['entries']) < 2) {
        return '';
    }
    $options = '<option value="">' . kvHtml("<<4-tutti_i_valori>>") . '</option>';
    foreach ($variant['entries'] as $key => $entry) {
        // The text of a value ends in what it adds to the price, which is not what is chosen by.
        $text = preg_replace('/ \( [^()]*<<importo>> \)/', '', $entry['text']);
        $options .= '<option value="' . $key . '"' . (($choices['valori'][$id] ?? '') === (string) $key ? ' selected' : '')
            . '>' . kvTextHtml(trim($text, " *")) . '</option>';
    }
    return '<label><span>' . kvTextHtml($variant['name']) . '</span> <select name="v' . $id . '">' . $options . '</select></label>';
}

/** A box to be ticked. */
function kvCheckBox(string $name, string $text, bool $choice): string
{
    return '<label class="spunta"><input type="checkbox" name="' . $name . '" value="1"' . ($choice ? ' checked' : '') . '> <span>'
        . kvHtml($text) . '</span></label>';
}

/** The fields of the form: what tells no article of the department from another is left out. */
function kvFilterFields(array $choices): string
{
    $rows = kvDepartmentRows();
    $hidden = kvArePricesHidden();
    $variants = array_unique(array_merge([], ...array_map(fn($row) => array_values(kvRowVariants($row, (int) $GLOBALS['listino'])),
        array_values($rows))));
    kvReadVariants($variants);
    $options = '';
    foreach (KV_SORT_ORDERS as $value => $text) {
        $options .= $hidden && $value !== '' && $value[0] === 'p' ? '' : '<option value="' . $value . '"'
            . ($value === $choices['ordine'] ? ' selected' : '') . '>' . kvHtml($text) . '</option>';
    }
    $html = '<label><span>' . kvHtml("<<4-ordina_per>>") . "</span> <select name=\"ordine\">$options</select></label>";
    foreach ($hidden ? [] : ['da' => "<<4-prezzo_da>>", 'a' => "<<4-prezzo_a>>"] as $name => $text) {
        $html .= '<label><span>' . kvHtml($text) . '</span> <input type="number" inputmode="decimal" min="0" step="0.01" name="' . $name
            . '" value="' . kvFieldAmount($choices[$name]) . '"></label>';
    }
    foreach ($variants as $id) {
        $html .= kvVariantFilter((int) $id, $choices);
    }
    $offers = !$hidden && array_filter($rows, fn($row) => kvRowPrices($row)['ridotto']) !== [];
    $html .= $offers || $choices['offerte'] ? kvCheckBox('offerte', "<<4-solo_offerte>>", $choices['offerte']) : '';
    $hasNews = array_filter(array_column($rows, 'novita')) !== [];
    return $html . ($hasNews || $choices['novita'] ? kvCheckBox('novita', "<<4-solo_novita>>", $choices['novita']) : '');
}

/** The form above a list; nothing for a department of one article. What it found is told below it. */
function kvFiltri(): string
{
    if (!($GLOBALS['resultArt'] ?? null) instanceof KvRows || count(kvDepartmentRows()) < 2) {
        return '';
    }
    $choices = kvListChoices();
    $html = '<details class="filtri"' . ($choices['active'] ? ' open' : '') . '><summary>' . kvHtml("<<4-filtri>>") . '</summary>'
        . '<form method="get" action="' . kvHtml(kvPageFile()) . '"><input type="hidden" name="n" value="1">' . kvFilterFields($choices)
        . '<p><button type="submit">' . kvHtml("<<4-filtri_mostra>>") . '</button>' . ($choices['active']
        ? ' <a href="' . kvHtml(kvPageFile()) . '?n=1">' . kvHtml("<<4-filtri_togli>>") . '</a>' : '') . "</p></form></details>\n";
    if (!$choices['active']) {
        return $html;
    }
    $count = count(kvChosenNumbers());
    return $html . '<p class="nota" role="status">' . kvHtml($count === 0 ? "<<4-filtri_nessuno>>" : "<<4-filtri_quanti>>: $count")
        . "</p>\n";
}
