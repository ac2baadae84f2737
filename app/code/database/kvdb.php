<?php
// ***1.0.7***
// The shop's database: one connection, opened at the first query, and the mysql_ calls that the generated pages make.
// Catalogue and pages are Windows-1252, which MySQL calls latin1; the tables of what visitors typed are UTF-8, and the
// connection speaks whichever a statement asks for. Whatever comes from a visitor goes in through kvQuery, whose values
// are bound, never pasted.

/** The tables whose texts are UTF-8; a statement about one of them takes and gives UTF-8. */
const KV_UTF8_TABLES = '/\bkv_(?:clienti|ordini|recessi|richieste|stato|annotazioni|testi|ricerche|(?:parole|vocaboli|sequenze|insiemi|voci)(?:_l[2-4])?)\b/';

/** The lines of a block of settings. */
function kvLinee(string $block): array
{
    return preg_split('/\r\n|\n|\r/', $block);
}

/** The same, freed of the backslash that the build puts before each quote of a value. */
function kvValues(string $block): array
{
    return kvLinee(preg_replace('/\\\\(["\'])/', '$1', $block));
}

/**
 * A database address as the settings hold it: host, port and socket. "host", "host:3307", "host:/path/of/socket",
 * "[::1]:3307"; a port of 0 and a null socket stand for the server's own.
 */
function kvDatabaseServer(string $address): array
{
    if (!preg_match('/^(\[[^\]]*\]|[^:]*):(\d+|\/.*)$/', trim($address), $parts)) {
        return [trim($address), 0, null];
    }
    $socket = $parts[2][0] === '/';
    return [$parts[1] === '' || $socket ? 'localhost' : $parts[1], $socket ? 0 : (int) $parts[2],
            $socket ? $parts[2] : null];
}

/** Ends the page: the shop can't be served for a moment. */
function kvOutOfService(): void
{
    http_response_code(503);
    header('Retry-After: 120');
    header('Cache-Control: no-store');
    while (ob_get_level() > 0 && @ob_end_clean()) {
        continue;
    }
    if (isset($GLOBALS['kvFailurePage'])) {
        die($GLOBALS['kvFailurePage']());
    }
    die(function_exists('kvNoticePage') ? kvNoticePage("<<4-guasto>>") : "<<4-guasto>>");
}

/** The connection; ends the page with a notice when the server can't be reached. */
function kvConnection(): mysqli
{
    static $connection = null;
    if ($connection !== null) {
        return $connection;
    }
    $access = kvValues(<<<'KORVANE_VALORI'
<<1-db_hostname>>
<<1-db_username>>
<<1-db_password>>
<<1-db_dbname>>
KORVANE_VALORI
    );
    mysqli_report(MYSQLI_REPORT_OFF);
    $handle = mysqli_init();
    // The character set goes along with the greeting: a SET NAMES would be one more trip to the server.
    mysqli_options($handle, MYSQLI_SET_CHARSET_NAME, 'latin1');
    list($host, $port, $socket) = kvDatabaseServer($access[0]);
    if (!@mysqli_real_connect($handle, $host, $access[1], $access[2], $access[3], $port, $socket)) {
        error_log('Shop database: ' . mysqli_connect_error());
        kvOutOfService();
    }
    $connection = $handle;
    return $connection;
}

/** Lets the connection speak a character set: latin1, as it does from the start, or utf8mb4. */
function kvSetCharset(string $charset): void
{
    static $current = 'latin1';
    $connection = kvConnection();
    if ($charset !== $current && mysqli_set_charset($connection, $charset)) {
        $current = $charset;
    }
}

/**
 * Runs one statement with bound values: its result object or true. False when the server refused it; `failure` then holds
 * number and words of its reason.
 */
function kvRunBound(string $sql, array $values, ?array &$failure = null)
{
    kvSetCharset(preg_match(KV_UTF8_TABLES, $sql) ? 'utf8mb4' : 'latin1');
    $statement = mysqli_prepare(kvConnection(), $sql);
    if ($statement === false) {
        $failure = [mysqli_errno(kvConnection()), mysqli_error(kvConnection())];
        return false;
    }
    if ($values !== []) {
        $kinds = '';
        foreach ($values as $value) {
            $kinds .= is_int($value) ? 'i' : (is_float($value) ? 'd' : 's');
        }
        mysqli_stmt_bind_param($statement, $kinds, ...array_values($values));
    }
    if (!mysqli_stmt_execute($statement)) {
        $failure = [mysqli_stmt_errno($statement), mysqli_stmt_error($statement)];
        return false;
    }
    $result = mysqli_stmt_get_result($statement);
    kvRigheToccate((int) mysqli_stmt_affected_rows($statement));
    return $result === false ? true : $result;
}

/** How many rows the last statement of kvQuery changed. With an argument it keeps that number. */
function kvRigheToccate(?int $count = null): int
{
    static $rows = 0;
    if ($count !== null) {
        $rows = $count;
    }
    return $rows;
}

/**
 * Runs one statement with bound values. Rows of a SELECT, as arrays by column name; an empty list for any other
 * statement; null when the server refused it, with the reason in the server's error log. The shop's own tables
 * (kv_...) are made when the first statement misses them.
 */
function kvQuery(string $sql, array $values = []): ?array
{
    $result = kvRunBound($sql, $values, $failure);
    // 1146 is "no such table", 1062 "duplicate entry". Source: MySQL 8.0 Error Reference.
    if ($result === false && $failure[0] === 1146 && strpos($sql, 'kv_') !== false) {
        include_once "kvtables.php";
        kvUpdateTables();
        $result = kvRunBound($sql, $values, $failure);
    }
    if ($result === false) {
        // A key that is there already is an answer, which the caller asked for.
        if ($failure[0] !== 1062) {
            error_log('Shop database: ' . $failure[1]);
        }
        return null;
    }
    return $result === true ? [] : mysqli_fetch_all($result, MYSQLI_ASSOC);
}

/** The first row of a query, null when there is none. */
function kvRiga(string $sql, array $values = []): ?array
{
    $rows = kvQuery($sql, $values);
    return $rows ? $rows[0] : null;
}

/** The table of the visitor's language: `articoli` or `opzioni` with the language suffix. */
function kvLanguageTable(string $table): string
{
    $suffix = (string) ($GLOBALS['Lingua'] ?? '');
    return preg_match('/^_l[2-4]$/', $suffix) ? $table . $suffix : $table;
}

/** The articles of a department page as mysql_query gives them: all rows by column name, read one after the other. */
final class KvRows
{
    /** @var array[] */
    public $rows;
    /** @var int */
    public $next = 0;

    public function __construct(array $rows)
    {
        $this->rows = $rows;
    }
}

/** The keys of the sold out values of an article, one a line; the pattern of its keys stands for the mark. */
const KV_SOLD_OUT = "(SELECT GROUP_CONCAT(chiave SEPARATOR '\n') FROM kv_disponibilita WHERE tipo = 'V' AND chiave LIKE %s"
    . ' AND (disponibile = 0 OR quantita <= 0))';

/**
 * The articles of a page. Sorting them by a column of the last of three tables would make the server copy every text of
 * them to a temporary table, which takes longer than all the rest of the query; so they are sorted here. Where the
 * back office limits an article, its row also holds `disponibile` and `quantita`, null where it doesn't, and `esauriti`;
 * `offerte` tells of offers at the list price, see kvPrices.
 */
function kvPageArticles(string $sql)
{
    $result = false;
    $chosen = function_exists('kvListChoices') && kvListChoices()['active'];
    $sql = $chosen ? kvChosenSql($sql) : $sql;
    kvSetCharset('latin1');
    if (preg_match('/ FROM (articoli\w*) .* WHERE /', $sql, $parts)) {
        $only = $chosen || !function_exists('kvPageArticle') ? null : kvPageArticle($sql, $parts[1]);
        if ($only !== null) {
            return $only;
        }
        $id = "CAST($parts[1].ID AS CHAR CHARACTER SET latin1)";
        $soldOut = "EXISTS (SELECT 1 FROM kv_disponibilita WHERE tipo = 'V')";
        // The order of the tables is the one by their keys: to find that out takes the server longer than to read them.
        $whole = str_replace([' WHERE ', " FROM $parts[1] "], [
            " LEFT JOIN kv_offerte USING (ID) LEFT JOIN kv_disponibilita s ON s.tipo = 'A' AND s.chiave = $id WHERE ",
            ", $soldOut AS esauriti FROM $parts[1] "], $sql);
        $result = mysqli_query(kvConnection(), preg_replace('/\ASELECT /', 'SELECT STRAIGHT_JOIN ', $whole));
        if ($result === false && mysqli_errno(kvConnection()) === 1146) {
            include_once "kvtables.php";
            kvUpdateTables();
            kvSetCharset('latin1');
        }
    }
    $result = $result === false ? mysqli_query(kvConnection(), $sql) : $result;
    if (!$result instanceof mysqli_result) {
        return $result;
    }
    $rows = kvWithSoldOut(mysqli_fetch_all($result, MYSQLI_ASSOC));
    usort($rows, fn($a, $b) => (int) $a['contatore'] <=> (int) $b['contatore']);
    return new KvRows($chosen ? kvSortChosen($rows) : $rows);
}

/**
 * The rows with their sold out values in `esauriti`, where they came with the word whether any value of the shop is
 * limited. Read by the key of each article: where a key comes from another row, the server looks through all of them.
 */
function kvWithSoldOut(array $rows): array
{
    $numbers = array_map('intval', array_column(array_filter($rows, fn($row) => $row['esauriti'] ?? false), 'ID'));
    $choices = array_map(fn($id) => sprintf(KV_SOLD_OUT, "'$id.%'") . " AS e$id", array_unique($numbers));
    $result = $choices === [] ? false : mysqli_query(kvConnection(), 'SELECT ' . implode(', ', $choices));
    $soldOut = $result instanceof mysqli_result ? mysqli_fetch_assoc($result) : [];
    return array_map(fn($row) => array_key_exists('esauriti', $row)
        ? ['esauriti' => $soldOut['e' . (int) $row['ID']] ?? null] + $row : $row, $rows);
}

// The calls of the extension that PHP 7 left out, as far as pages, modules and merchants' own templates use them.
// Values come as texts and a failed query is false, as they always did.
if (!function_exists('mysql_query')) {
    // The same numbers as MYSQLI_ASSOC, MYSQLI_NUM, MYSQLI_BOTH.
    define('MYSQL_ASSOC', 1);
    define('MYSQL_NUM', 2);
    define('MYSQL_BOTH', 3);

    /** A result set; true for a statement without rows; false on a failure, told by mysql_error. */
    function mysql_query(string $sql, $link = null)
    {
        // A department page reads the articles of all its sub-pages to learn the number of the last one, which the
        // first row tells.
        if (substr($sql, -27) === "' ORDER BY sottopagina DESC") {
            if (function_exists('kvListChoices') && kvListChoices()['active']) {
                return new KvRows([['sottopagina' => kvChosenPages()]]);
            }
            list($page, $last) = $GLOBALS['kvLastPage'] ?? ['', null];
            if ($page !== '' && $sql === 'SELECT * FROM ' . kvLanguageTable('articoli') . " WHERE pagina='$page' ORDER BY sottopagina DESC") {
                return new KvRows($last === null ? [] : [['sottopagina' => $last]]);
            }
            $sql .= ' LIMIT 1';
        } elseif (substr($sql, -27) === ' ORDER BY contatore + 0 ASC') {
            return kvPageArticles(substr($sql, 0, -27));
        } elseif (function_exists('kvArticle')
            && preg_match('/^SELECT \* FROM (articoli\w*) INNER JOIN dettaglio USING \(ID\) INNER JOIN ordinamento USING'
                . ' \(ID\) WHERE \1\.ID=(\d+)$/D', $sql, $parts) && $parts[1] === kvLanguageTable('articoli')) {
            // The showcase asks for the mark of each of its articles.
            return new KvRows(array_filter([kvArticle((int) $parts[2])]));
        }
        kvSetCharset('latin1');
        return mysqli_query(kvConnection(), $sql);
    }

    function mysql_num_rows($result): int
    {
        if ($result instanceof KvRows) {
            return count($result->rows);
        }
        return $result instanceof mysqli_result ? (int) mysqli_num_rows($result) : 0;
    }

    function mysql_num_fields($result): int
    {
        return $result instanceof mysqli_result ? (int) mysqli_num_fields($result) : 0;
    }

    /**
     * The next row by number and by name; false after the last one and for a failed query. Articles of a department
     * page come by name alone.
     */
    function mysql_fetch_array($result, int $pattern = MYSQL_BOTH)
    {
        if ($result instanceof KvRows) {
            return $result->rows[$result->next++] ?? false;
        }
        return ($result instanceof mysqli_result ? mysqli_fetch_array($result, $pattern) : null) ?? false;
    }

    function mysql_fetch_assoc($result)
    {
        return mysql_fetch_array($result, MYSQL_ASSOC);
    }

    function mysql_fetch_row($result)
    {
        return mysql_fetch_array($result, MYSQL_NUM);
    }

    function mysql_data_seek($result, int $row): bool
    {
        if ($result instanceof KvRows) {
            $result->next = $row;
            return isset($result->rows[$row]);
        }
        return $result instanceof mysqli_result && mysqli_data_seek($result, $row);
    }

    /** One field of a row, by its number or name; false when there is none. */
    function mysql_result($result, int $row, $field = 0)
    {
        return mysql_data_seek($result, $row) ? (mysql_fetch_array($result)[$field] ?? false) : false;
    }

    function mysql_free_result($result): bool
    {
        if ($result instanceof mysqli_result) {
            mysqli_free_result($result);
        }
        return true;
    }

    function mysql_error($link = null): string
    {
        return mysqli_error(kvConnection());
    }

    function mysql_errno($link = null): int
    {
        return mysqli_errno(kvConnection());
    }

    function mysql_affected_rows($link = null): int
    {
        return (int) mysqli_affected_rows(kvConnection());
    }

    function mysql_insert_id($link = null): int
    {
        return (int) mysqli_insert_id(kvConnection());
    }

    function mysql_real_escape_string(string $text, $link = null): string
    {
        return mysqli_real_escape_string(kvConnection(), $text);
    }

    function mysql_escape_string(string $text): string
    {
        return mysqli_real_escape_string(kvConnection(), $text);
    }
}
