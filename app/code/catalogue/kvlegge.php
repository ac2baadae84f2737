<?php
// ***1.0.7***
// What the law wants beside an article: the price of a unit of its content, the lowest price of the days before a
// reduction, maker and person responsible, the time of delivery. A shop that uses none of these has none of their tables, and a page that
// misses one goes without.

/** The tables of this kind that the load has left; null where no load has said so yet. */
function kvSideTables(): ?array
{
    global $kvSideTables;
    if (!isset($kvSideTables)) {
        $result = mysqli_query(kvConnection(), "SELECT valore FROM kv_stato WHERE nome = 'laterali'");
        $row = $result instanceof mysqli_result ? mysqli_fetch_row($result) : null;
        $kvSideTables = $row === null ? false : explode(',', $row[0]);
    }
    return $kvSideTables === false ? null : $kvSideTables;
}

/** Whether the catalogue has such a table; one of which the load says nothing is asked. */
function kvHasTable(string $table): bool
{
    global $kvLegalRows;
    if (!array_key_exists($table, $kvLegalRows ?? []) && !in_array($table, kvSideTables() ?? [$table], true)) {
        $kvLegalRows[$table] = null;
    }
    return !array_key_exists($table, $kvLegalRows ?? []) || $kvLegalRows[$table] !== null;
}

/**
 * The row of a number in such a table, empty when there is none; with `articles` those of the articles that the page shows
 * beside it are read along with it. $kvLegalRows keeps what was read, by table and number, and null for a table that isn't there.
 */
function kvLegalRow(string $table, int $id, bool $articles = true): array
{
    global $kvLegalRows;
    if (!kvHasTable($table) || isset($kvLegalRows[$table][$id])) {
        return $kvLegalRows[$table][$id] ?? [];
    }
    $numbers = array_values(array_unique(array_map('intval', array_merge([$id], $articles ? kvPageNumbers() : []))));
    kvSetCharset('latin1');
    $result = mysqli_query(kvConnection(), "SELECT * FROM $table WHERE ID IN (" . implode(',', $numbers) . ')');
    if (!$result instanceof mysqli_result) {
        $kvLegalRows[$table] = null;
        return [];
    }
    $kvLegalRows[$table] = array_fill_keys($numbers, []) + ($kvLegalRows[$table] ?? []);
    foreach (mysqli_fetch_all($result, MYSQLI_ASSOC) as $row) {
        $kvLegalRows[$table][(int) $row['ID']] = $row;
    }
    return $kvLegalRows[$table][$id];
}

/** The numbers of the articles that the page shows beside this one; $kvAlsoShown has those of results and cards. */
function kvPageNumbers(): array
{
    global $resultArt;
    return array_merge($resultArt instanceof KvRows ? array_column($resultArt->rows, 'ID') : [], kvShowcaseNumbers(),
        $GLOBALS['kvAlsoShown'] ?? []);
}

/** The content of an article in ten-thousandths of its measure, and the word of that; null without a content. */
function kvContent(array $row): ?array
{
    $units = kvLegalRow('kv_unita', (int) ($row['ID'] ?? 0));
    $content = kvTenThousandths($units['contenuto'] ?? 0);
    $words = ['kg' => 'kg', 'l' => 'l', 'm' => 'm', 'pz' => kvHtml("<<4-unita_pezzo>>")];
    return $content > 0 && isset($words[$units['misura'] ?? '']) ? [$content, $words[$units['misura']]] : null;
}

/** Smallest units by a content in ten-thousandths: the price of one unit, rounded half up. */
function kvUnitAmount(int $units, int $content): int
{
    return intdiv($units * 20000 + $content, $content * 2);
}

/** The price of one unit: that of the piece as it is shown, by the content; empty without a content. */
function kvUnitPrice(array $row): string
{
    $content = kvArePricesHidden() ? null : kvContent($row);
    if ($content === null) {
        return '';
    }
    $units = max(0, kvSmallestUnits(kvVisitorPrices($row)['prezzo'], kvScale()));
    return kvUnitsText(kvUnitAmount($units, $content[0])) . ' / ' . $content[1];
}

/**
 * The lowest price of the days before the reduction, with VAT where prices include it; empty where nothing is reduced
 * or no earlier price was published. Source: Directive 98/6/EC, article 6a.
 */
function kvLowestPrice(array $row): string
{
    global $listino, $ivacompresa, $ivarep;
    $prices = kvArePricesHidden() ? null : kvVisitorPrices($row);
    if ($prices === null || $prices['prezzo'] >= $prices['listino']) {
        return '';
    }
    $units = kvLegalRow('kv_minimi', (int) ($row['ID'] ?? 0));
    $suffix = $listino === 0 ? '' : (string) $listino;
    if (!isset($units['minimo' . $suffix])) {
        return '';
    }
    $amount = kvWithVat(kvTenThousandths($units['minimo' . $suffix]), (float) $ivarep, (bool) $ivacompresa);
    return str_replace('%g', (string) (int) $units['giorni' . $suffix], kvHtml("<<4-prezzo_minimo>>")) . ' '
        . kvAmountText($amount);
}

/** The unit price and the lowest price as notes beside a price; empty without either. */
function kvPriceNotes(array $row, bool $least = true): string
{
    $notes = '';
    foreach (['unitario' => kvUnitPrice($row), 'minimo' => $least ? kvLowestPrice($row) : ''] as $class => $text) {
        $notes .= $text === '' ? '' : ' <span class="nota ' . $class . '">' . $text . '</span>';
    }
    return $notes;
}

/** A mail or web address as a link, anything else as it was typed. */
function kvContactLink(string $contact): string
{
    $text = kvHtml($contact);
    if (preg_match('/^[^\s@<>"]+@[^\s@<>"]+\.[a-z]{2,}$/Di', $contact)) {
        return '<a href="mailto:' . $text . '">' . $text . '</a>';
    }
    return preg_match('/^https?:\/\/[^\s<>"]+$/Di', $contact) ? '<a href="' . $text . '" rel="noopener">' . $text . '</a>' : $text;
}

/**
 * Maker of an article and person responsible in the European Union; empty where none was chosen. Open where the article
 * is shown alone. Source: Regulation (EU) 2023/988, article 19.
 */
function kvSafetyData(array $row): string
{
    global $kvSolo;
    $choice = kvLegalRow('kv_sicurezza', (int) ($row['ID'] ?? 0));
    $company = $choice === [] ? [] : kvLegalRow('kv_produttori', (int) $choice['produttore'], false);
    $entries = '';
    foreach ([["<<4-produttore>>", 'nome', 'indirizzo', 'contatto'],
              ["<<4-responsabile_ue>>", 'responsabile', 'resp_indirizzo', 'resp_contatto']] as list($word, $name, $street, $contact)) {
        $rows = array_filter([kvHtml(trim($company[$name] ?? '')), kvHtml(trim($company[$street] ?? '')),
            kvContactLink(trim($company[$contact] ?? ''))],
            'strlen');
        $entries .= $rows === [] ? '' : '<dt>' . kvHtml($word) . '</dt><dd>' . implode('<br>', $rows) . '</dd>';
    }
    return $entries === '' ? '' : '<details class="sicurezza"' . (is_array($kvSolo) ? ' open' : '') . '><summary>'
        . kvHtml("<<4-sicurezza_prodotto>>") . "</summary><dl>$entries</dl></details>";
}

/** Reads the times of delivery of some article rows and of their departments, by one question. */
function kvReadDeliveries(array $rows): void
{
    global $kvLegalRows;
    if (!kvHasTable('kv_consegna')) {
        return;
    }
    $read = $kvLegalRows['kv_consegna'] ?? [];
    $keys = array_map('strval', array_merge(array_column($rows, 'ID'), array_column($rows, 'catID')));
    $unread = array_filter(array_unique($keys), fn($key) => $key !== '' && !isset($read[$key]));
    if ($unread === []) {
        return;
    }
    kvSetCharset('latin1');
    $list = implode("','", array_map(fn($key) => mysqli_real_escape_string(kvConnection(), $key), $unread));
    $result = mysqli_query(kvConnection(), "SELECT * FROM kv_consegna WHERE ID IN ('$list')");
    if (!$result instanceof mysqli_result) {
        $kvLegalRows['kv_consegna'] = null;
        return;
    }
    $kvLegalRows['kv_consegna'] = array_fill_keys($unread, []) + $read;
    foreach (mysqli_fetch_all($result, MYSQLI_ASSOC) as $row) {
        $kvLegalRows['kv_consegna'][$row['ID']] = $row;
    }
}

/** How long the delivery of an article takes, in words: its own time, else that of its department; empty without any. */
function kvDeliveryTime(array $row): string
{
    global $resultArt, $kvLegalRows, $Lingua;
    kvReadDeliveries(array_merge([$row], $resultArt instanceof KvRows ? $resultArt->rows : []));
    foreach ([(string) ($row['ID'] ?? ''), (string) ($row['catID'] ?? '')] as $key) {
        $time = $kvLegalRows['kv_consegna'][$key] ?? [];
        if ($time !== []) {
            $own = trim((string) ($time['tempo' . $Lingua] ?? ''));
            return $own !== '' ? $own : trim((string) $time['tempo']);
        }
    }
    return '';
}

/** The time of delivery of an article that can be bought; empty without any. */
function kvDeliveryNote(array $row): string
{
    $time = kvDeliveryTime($row);
    include_once "kvcard.php";
    return $time === '' || !kvDisponibile($row) ? '' : '<p class="nota consegna">' . kvHtml("<<4-tempo_consegna>>") . ' '
        . kvHtml($time) . '</p>';
}

/**
 * The days that a time of delivery tells, fewest and most: "2-4 giorni lavorativi", "24/48 ore", "3 weeks"; null for
 * words that tell none.
 */
function kvDeliveryDays(string $time): ?array
{
    $units = '(?<ore>ore|ora|h|hours?|heures?|stunden?)|(?<giorni>gg|giorn\p{L}*|days?|jours?|\p{L}*tage?n?)'
        . '|(?<settimane>settiman\p{L}*|weeks?|semaines?|wochen?)';
    if (!preg_match('~(\d{1,3})(?:\s*(?:-|\x{2013}|/|a|o|to|or|\x{e0}|ou|bis|oder)\s*(\d{1,3}))?\s*(?:(?:working|business) )?(?:'
        . $units . ')(?!\p{L})~iu', kvUtf8($time), $parts, PREG_UNMATCHED_AS_NULL)) {
        return null;
    }
    $days = fn(int $n): int => $parts['ore'] !== null ? intdiv($n + 23, 24) : ($parts['settimane'] !== null ? 7 * $n : $n);
    $first = $days((int) $parts[1]);
    $last = $days((int) ($parts[2] ?? $parts[1]));
    return $first > $last ? null : [$first, $last];
}
