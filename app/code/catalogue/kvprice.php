<?php
// ***1.0.7***
// Prices of an article for the visitor's listino, in whole numbers throughout.
//
// An amount of the database is a count of ten-thousandths. Its way to the price asked is the one of the build: the
// offer price as it is, else the list price by the department's factor (which holds the shop's discount); then VAT
// where prices include it. A product with a rate passes through single precision, as in the build.
// What is shown and charged is a count of the smallest unit shown, hundredths or whole units by the shop's decimals,
// rounded once, half away from zero. From there on (cart, order, mails) everything counts in that unit: see
// kvtotals.php.

/** An amount of the database, as "12.5000", in ten-thousandths. */
function kvTenThousandths($amount): int
{
    return (int) round((float) $amount * 10000);
}

/** Ten-thousandths by a rate, like the build's: double, then single precision, then ties to the even number. */
function kvProduct(int $amount, float $rate): int
{
    $single = unpack('g', pack('g', $amount / 10000 * $rate))[1];
    // Exact: 24 bits of a single times 14 of the factor.
    $exact = $single * 10000.0;
    $whole = (int) floor($exact);
    $rest = $exact - floor($exact);
    return $rest > 0.5 || ($rest === 0.5 && $whole % 2 !== 0) ? $whole + 1 : $whole;
}

/** Ten-thousandths with VAT added where the shop shows it. */
function kvWithVat(int $amount, float $rate, bool $isIncluded): int
{
    return $isIncluded ? $amount + kvProduct($amount, $rate) : $amount;
}

/** How many smallest units make one: 100 with decimals shown, else 1. */
function kvScale(): int
{
    return $GLOBALS['visdec'][0] ? 100 : 1;
}

/** Ten-thousandths in smallest units, a half away from zero. */
function kvSmallestUnits(int $amount, int $scale): int
{
    $units = intdiv(10000, $scale);
    $value = intdiv(abs($amount) * 2 + $units, $units * 2);
    return $amount < 0 ? -$value : $value;
}

/**
 * The prices of an article row. `rate` is a fraction, `factor` the department's factor for the listino. An offer is
 * another price than the list price, or the same one where bit n of `offerte` says so of listino n.
 * Result: listino (list price) and prezzo (price asked), both in ten-thousandths, offerta (it is an offer), ridotto
 * (another price than the list price is asked), sconto (percent, 0 when none).
 */
function kvPrices(array $row, int $listino, float $rate, float $factor, bool $isIncluded): array
{
    $suffix = $listino === 0 ? '' : (string) $listino;
    $full = kvTenThousandths($row['implistino' . $suffix] ?? 0);
    $asked = kvTenThousandths($row['importo' . $suffix] ?? 0);
    $atListPrice = ((int) ($row['offerte'] ?? 0) >> $listino & 1) === 1;
    $prices = ['listino' => kvWithVat($full, $rate, $isIncluded), 'offerta' => $asked !== $full || $atListPrice, 'sconto' => 0.0];
    if ($prices['offerta']) {
        $prices['prezzo'] = kvWithVat($asked, $rate, $isIncluded);
        if ($prices['listino'] > $prices['prezzo'] && $prices['listino'] !== 0) {
            $prices['sconto'] = round((1 - $prices['prezzo'] / $prices['listino']) * 100, 2);
        }
    } elseif ($factor !== 1.0) {
        $prices['prezzo'] = kvWithVat(kvProduct($full, $factor), $rate, $isIncluded);
        $prices['sconto'] = max(0.0, round(100 - 100 * $factor, 2));
    } else {
        $prices['prezzo'] = $prices['listino'];
    }
    $prices['ridotto'] = $prices['offerta'] || $factor !== 1.0;
    return $prices;
}

/** The notation of this page: the merchant's in the first language, in others that of their readers where it is known. */
function kvNotation(int $own): int
{
    return "<<1-IDlingua>>" === '' ? $own : (['it' => 0, 'de' => 0, 'en' => 1, 'fr' => 2]["<<4-codice_lingua>>"] ?? $own);
}

/** Smallest units in a notation (0: 1.000,00; 1: 1,000.00; 2: 1 000,00, with a space that keeps the line together). */
function kvFormatUnits(int $units, int $scale, int $notazione): string
{
    list($decimal, $thousands) = [[',', '.'], ['.', ','], [',', "\xA0"]][$notazione] ?? [',', '.'];
    return number_format($units / $scale, $scale === 100 ? 2 : 0, $decimal, $thousands);
}

/** Smallest units for scripts: decimal point, no thousands separator. */
function kvScriptNumber(int $units, int $scale): string
{
    return number_format($units / $scale, $scale === 100 ? 2 : 0, '.', '');
}

/** Smallest units with the label of the first currency. */
function kvUnitsText(int $units): string
{
    return $GLOBALS['valuta'][0] . kvFormatUnits($units, kvScale(), (int) $GLOBALS['notazione']);
}

/** Ten-thousandths as they are shown. */
function kvAmountText(int $amount): string
{
    return kvUnitsText(kvSmallestUnits($amount, kvScale()));
}

/** An amount (in units) in the second currency, empty when the shop shows none. Fifteen digits of it count. */
function kvExchangeText(float $amount): string
{
    global $valuta, $visdec, $notazione, $cambio;
    if ($cambio <= 0) {
        return '';
    }
    $scale = $visdec[1] ? 100 : 1;
    $value = (float) sprintf('%.14e', $amount / $cambio * $scale);
    $units = (int) floor(abs($value) + 0.5);
    return $valuta[1] . kvFormatUnits($value < 0 ? -$units : $units, $scale, (int) $notazione);
}

/** What is read of a department. A FLOAT comes with six digits unless it is made a DOUBLE; the factor needs all of its own. */
const KV_DEPARTMENT_COLUMNS = 'ID, iva + 0e0 AS iva, sconto + 0e0 AS sconto, inaccessibile'
    . ', sconto1 + 0e0 AS sconto1, inaccessibile1, sconto2 + 0e0 AS sconto2, inaccessibile2'
    . ', sconto3 + 0e0 AS sconto3, inaccessibile3, sconto4 + 0e0 AS sconto4, inaccessibile4'
    . ', sconto5 + 0e0 AS sconto5, inaccessibile5, sconto6 + 0e0 AS sconto6, inaccessibile6'
    . ', sconto7 + 0e0 AS sconto7, inaccessibile7, sconto8 + 0e0 AS sconto8, inaccessibile8'
    . ', sconto9 + 0e0 AS sconto9, inaccessibile9';

/**
 * Departments as SetVariables keeps them, by their keys: [closed by listino, factor by listino, VAT]. One query at most;
 * an unknown department is open and plain.
 */
function kvReadDepartments(array $codes): array
{
    static $read = [];
    $missing = array_diff($codes, array_keys($read));
    if ($missing === []) {
        return $read;
    }
    $rows = array_fill_keys($missing, []);
    // That of the page itself has come along with the state of the load.
    $own = $GLOBALS['kvPageDepartment'] ?? [];
    if ($missing === [$own['ID'] ?? null]) {
        $rows = [$own['ID'] => $own];
    } else {
        $list = implode("','", array_map('mysql_real_escape_string', $missing));
        $result = mysql_query('SELECT ' . KV_DEPARTMENT_COLUMNS . " FROM categorie WHERE ID IN ('$list')");
        while ($row = mysql_fetch_assoc($result)) {
            $rows[$row['ID']] = $row;
        }
    }
    foreach ($rows as $code => $row) {
        $factors = [];
        $closed = [];
        foreach (['', 1, 2, 3, 4, 5, 6, 7, 8, 9] as $suffix) {
            $factors[] = (float) ($row["sconto$suffix"] ?? 1.0);
            $closed[] = (int) ($row["inaccessibile$suffix"] ?? 0);
        }
        $read[$code] = [$closed, $factors, (float) ($row['iva'] ?? 0)];
    }
    return $read;
}

/** Loads a department: its factors and VAT, and which listini it is closed to. */
function SetVariables($department): void
{
    global $inaccessibile, $scontorep, $ivarep;
    $department = (string) $department;
    list($inaccessibile, $scontorep, $ivarep) = kvReadDepartments([$department])[$department];
}

/** The prices of an article row for this visitor; SetVariables of its department has run. Kept for the last row. */
function kvVisitorPrices(array $row): array
{
    static $last = null;
    static $rules = [];
    static $prices = [];
    global $listino, $ivacompresa, $scontorep, $ivarep;
    $current = [$listino, (float) $ivarep, (float) $scontorep[$listino], (bool) $ivacompresa];
    if ($row !== $last || $current !== $rules) {
        $prices = kvPrices($row, ...$current);
        $last = $row;
        $rules = $current;
    }
    return $prices;
}

/**
 * Whether the limits of registration hold for registered customers of the base listino too. The build tells it in the
 * order page alone, as a redirection to message 37.
 */
function kvIsBaseListLimited(): bool
{
    static $limit = null;
    if ($limit === null) {
        $limit = strpos((string) @file_get_contents("order.htm"), '&t=.37.') !== false;
    }
    return $limit;
}

/** Whether this visitor may not see prices. */
function kvArePricesHidden(): bool
{
    global $cliente, $listino, $regpr;
    return $regpr && ($cliente === 0 || ($listino === 0 && kvIsBaseListLimited()));
}

/** Whether this visitor may not order: not registered where that is asked for, or of the base listino. */
function kvIsBuyingDenied(): bool
{
    global $cliente, $listino, $regobbl;
    return kvArePricesHidden() || ($cliente > 0 && $listino === 0 && $regobbl && kvIsBaseListLimited());
}

/**
 * The one article that the address asks for of a page (`prod`). Before it are those that the loop of the page counts and
 * doesn't show: of these the number alone. Null where none is asked for, and where there is none.
 */
function kvPageArticle(string $sql, string $table): ?KvRows
{
    $slot = (int) ($_GET['prod'] ?? 0);
    $pattern = "/^SELECT \\*, $table\\.pagina as 'linkPage' FROM $table INNER JOIN dettaglio USING \\(ID\\) INNER JOIN ordinamento"
        . " USING \\(ID\\) WHERE ($table\\.pagina='\\w+' AND $table\\.sottopagina=\\d+)$/D";
    if ($slot === 0 || !preg_match($pattern, $sql, $parts)) {
        return null;
    }
    // The build numbers the articles of a page from 1 on: their numbers are their positions.
    $rows = kvDirectRows("SELECT STRAIGHT_JOIN $table.*, dettaglio.*, ordinamento.*, offerte, s.disponibile, s.quantita,"
        . " $table.pagina AS linkPage FROM $table INNER JOIN ordinamento ON ordinamento.ID = $table.ID INNER JOIN dettaglio ON"
        . " dettaglio.ID = $table.ID LEFT JOIN kv_offerte ON kv_offerte.ID = $table.ID LEFT JOIN kv_disponibilita s ON s.tipo ="
        . " 'A' AND s.chiave = CAST($table.ID AS CHAR CHARACTER SET latin1) WHERE $parts[1] AND contatore = '$slot'");
    $soldOut = count($rows) === 1 ? kvArticleSoldOut($rows[0]) : null;
    return $soldOut === null ? null
        : new KvRows(array_merge(array_fill(0, $slot - 1, ['ID' => '0']), [$rows[0] + $soldOut]));
}

/** The rows of a statement without bound values; none when the server refused it. */
function kvDirectRows(string $sql): array
{
    $result = mysqli_query(kvConnection(), $sql);
    return $result instanceof mysqli_result ? mysqli_fetch_all($result, MYSQLI_ASSOC) : [];
}

/**
 * The keys of the sold out values of an article as kvPageArticles adds them to its row, asked for where it has variants;
 * null when their table isn't there.
 */
function kvArticleSoldOut(array $row): ?array
{
    if (kvRowVariants($row, (int) $GLOBALS['listino']) === []) {
        return ['esauriti' => null];
    }
    $id = (int) $row['ID'];
    $result = mysqli_query(kvConnection(), "SELECT chiave FROM kv_disponibilita WHERE tipo = 'V' AND chiave LIKE '$id.%'"
        . ' AND (disponibile = 0 OR quantita <= 0)');
    return $result instanceof mysqli_result
        ? ['esauriti' => implode("\n", array_column(mysqli_fetch_all($result), 0)) ?: null] : null;
}

/** Articles by their numbers, with all their columns; those that aren't in the shop are missing. One query at most. */
function kvArticles(array $numbers): array
{
    static $read = [];
    $missing = array_values(array_diff(array_map('intval', $numbers), array_keys($read)));
    if ($missing !== []) {
        $table = kvLanguageTable('articoli');
        $read += array_fill_keys($missing, null);
        $sql = "SELECT STRAIGHT_JOIN *, $table.pagina AS linkPage FROM $table INNER JOIN dettaglio USING (ID) INNER JOIN ordinamento"
            . " USING (ID) LEFT JOIN kv_offerte USING (ID) WHERE $table.ID IN (" . implode(',', $missing) . ')';
        // Numbers alone need no binding, which takes two more trips to the server.
        kvSetCharset('latin1');
        $result = mysqli_query(kvConnection(), $sql);
        $rows = $result instanceof mysqli_result ? mysqli_fetch_all($result, MYSQLI_ASSOC) : kvQuery($sql);
        foreach ($rows ?? [] as $row) {
            $read[(int) $row['ID']] = $row;
        }
    }
    return array_filter(array_intersect_key($read, array_flip(array_map('intval', $numbers))));
}

/** The numbers of the articles that this page's showcase asks for one by one, so that they are read at once. */
function kvShowcaseNumbers(): array
{
    static $numbers = null;
    if ($numbers === null) {
        preg_match_all('/\b(?:ArtPrice|ArtCambio|VetOfferta)\((\d+)\)/',
            (string) @file_get_contents((string) ($_SERVER['SCRIPT_FILENAME'] ?? '')), $found);
        $numbers = array_map('intval', array_unique($found[1]));
    }
    return $numbers;
}

/** One article by its number, null when it isn't in the shop. Sets its department. */
function kvArticle(int $id): ?array
{
    $articles = kvArticles(array_merge([$id], kvShowcaseNumbers()));
    kvReadDepartments(array_map('strval', array_column($articles, 'catID')));
    $row = $articles[$id] ?? null;
    if ($row !== null) {
        SetVariables($row['catID']);
    }
    return $row;
}

/** The price text of an article of the showcase. */
function ArtPrice($id): string
{
    $row = kvArticle((int) $id);
    if ($row === null) {
        return '';
    }
    // A showcase whose cells call VetOfferta has the lowest price in its mark.
    return kvArePricesHidden() ? kvHtml("<<4-prezzo_riservato>>")
        : kvAmountText(kvVisitorPrices($row)['prezzo']) . kvPriceNotes($row, !function_exists('VetOfferta'));
}

/** The price of an article of the showcase in the second currency. */
function ArtCambio($id): string
{
    $row = kvArticle((int) $id);
    return $row === null || kvArePricesHidden() ? '' : kvExchangeText(kvVisitorPrices($row)['prezzo'] / 10000);
}
