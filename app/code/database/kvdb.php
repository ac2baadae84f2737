<?php
// ***1.0.7***
// The shop's database: one connection, opened at the first query, and the mysql_ calls that the generated pages make.
// Catalogue and pages are Windows-1252, which MySQL calls latin1; the tables of what visitors typed are UTF-8, and the
// connection speaks whichever a statement asks for. Whatever comes from a visitor goes in through kvQuery, whose values
// are bound, never pasted.

/** The tables whose texts are UTF-8; a statement about one of them takes and gives UTF-8. */
const KV_TABELLE_UTF8 = '/\bkv_(?:clienti|ordini|recessi|richieste|stato|annotazioni|testi|ricerche|(?:parole|vocaboli|voci)(?:_l[2-4])?)\b/';

/** The lines of a block of settings. */
function kvLinee(string $blocco): array
{
    return preg_split('/\r\n|\n|\r/', $blocco);
}

/** The same, freed of the backslash that the build puts before each quote of a value. */
function kvValori(string $blocco): array
{
    return kvLinee(preg_replace('/\\\\(["\'])/', '$1', $blocco));
}

/**
 * A database address as the settings hold it: host, port and socket. "host", "host:3307", "host:/path/of/socket",
 * "[::1]:3307"; a port of 0 and a null socket stand for the server's own.
 */
function kvServerDati(string $indirizzo): array
{
    if (!preg_match('/^(\[[^\]]*\]|[^:]*):(\d+|\/.*)$/', trim($indirizzo), $parti)) {
        return [trim($indirizzo), 0, null];
    }
    $socket = $parti[2][0] === '/';
    return [$parti[1] === '' || $socket ? 'localhost' : $parti[1], $socket ? 0 : (int) $parti[2],
            $socket ? $parti[2] : null];
}

/** Ends the page: the shop can't be served for a moment. */
function kvFuoriServizio(): void
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
function kvConnessione(): mysqli
{
    static $connessione = null;
    if ($connessione !== null) {
        return $connessione;
    }
    $accesso = kvValori(<<<'KORVANE_VALORI'
<<1-db_hostname>>
<<1-db_username>>
<<1-db_password>>
<<1-db_dbname>>
KORVANE_VALORI
    );
    mysqli_report(MYSQLI_REPORT_OFF);
    $nuova = mysqli_init();
    // The character set goes along with the greeting: a SET NAMES would be one more trip to the server.
    mysqli_options($nuova, MYSQLI_SET_CHARSET_NAME, 'latin1');
    list($host, $porta, $socket) = kvServerDati($accesso[0]);
    if (!@mysqli_real_connect($nuova, $host, $accesso[1], $accesso[2], $accesso[3], $porta, $socket)) {
        error_log('Shop database: ' . mysqli_connect_error());
        kvFuoriServizio();
    }
    $connessione = $nuova;
    return $connessione;
}

/** Lets the connection speak a character set: latin1, as it does from the start, or utf8mb4. */
function kvCaratteri(string $insieme): void
{
    static $attuale = 'latin1';
    $connessione = kvConnessione();
    if ($insieme !== $attuale && mysqli_set_charset($connessione, $insieme)) {
        $attuale = $insieme;
    }
}

/**
 * Runs one statement with bound values: its result object or true. False when the server refused it; `guasto` then holds
 * number and words of its reason.
 */
function kvEseguiLegata(string $sql, array $valori, ?array &$guasto = null)
{
    kvCaratteri(preg_match(KV_TABELLE_UTF8, $sql) ? 'utf8mb4' : 'latin1');
    $istruzione = mysqli_prepare(kvConnessione(), $sql);
    if ($istruzione === false) {
        $guasto = [mysqli_errno(kvConnessione()), mysqli_error(kvConnessione())];
        return false;
    }
    if ($valori !== []) {
        $tipi = '';
        foreach ($valori as $valore) {
            $tipi .= is_int($valore) ? 'i' : (is_float($valore) ? 'd' : 's');
        }
        mysqli_stmt_bind_param($istruzione, $tipi, ...array_values($valori));
    }
    if (!mysqli_stmt_execute($istruzione)) {
        $guasto = [mysqli_stmt_errno($istruzione), mysqli_stmt_error($istruzione)];
        return false;
    }
    $esito = mysqli_stmt_get_result($istruzione);
    kvRigheToccate((int) mysqli_stmt_affected_rows($istruzione));
    return $esito === false ? true : $esito;
}

/** How many rows the last statement of kvQuery changed. With an argument it keeps that number. */
function kvRigheToccate(?int $nuove = null): int
{
    static $righe = 0;
    if ($nuove !== null) {
        $righe = $nuove;
    }
    return $righe;
}

/**
 * Runs one statement with bound values. Rows of a SELECT, as arrays by column name; an empty list for any other
 * statement; null when the server refused it, with the reason in the server's error log. The shop's own tables
 * (kv_...) are made when the first statement misses them.
 */
function kvQuery(string $sql, array $valori = []): ?array
{
    $esito = kvEseguiLegata($sql, $valori, $guasto);
    // 1146 is "no such table", 1062 "duplicate entry". Source: MySQL 8.0 Error Reference.
    if ($esito === false && $guasto[0] === 1146 && strpos($sql, 'kv_') !== false) {
        include_once "kvtables.php";
        kvTabelle();
        $esito = kvEseguiLegata($sql, $valori, $guasto);
    }
    if ($esito === false) {
        // A key that is there already is an answer, which the caller asked for.
        if ($guasto[0] !== 1062) {
            error_log('Shop database: ' . $guasto[1]);
        }
        return null;
    }
    return $esito === true ? [] : mysqli_fetch_all($esito, MYSQLI_ASSOC);
}

/** The first row of a query, null when there is none. */
function kvRiga(string $sql, array $valori = []): ?array
{
    $righe = kvQuery($sql, $valori);
    return $righe ? $righe[0] : null;
}

/** The table of the visitor's language: `articoli` or `opzioni` with the language suffix. */
function kvTabellaLingua(string $tabella): string
{
    $suffisso = (string) ($GLOBALS['Lingua'] ?? '');
    return preg_match('/^_l[2-4]$/', $suffisso) ? $tabella . $suffisso : $tabella;
}

/** The articles of a department page as mysql_query gives them: all rows by column name, read one after the other. */
final class KvRighe
{
    /** @var array[] */
    public $righe;
    /** @var int */
    public $prossima = 0;

    public function __construct(array $righe)
    {
        $this->righe = $righe;
    }
}

/** The keys of the sold out values of an article, one a line; the pattern of its keys stands for the mark. */
const KV_ESAURITI = "(SELECT GROUP_CONCAT(chiave SEPARATOR '\n') FROM kv_disponibilita WHERE tipo = 'V' AND chiave LIKE %s"
    . ' AND (disponibile = 0 OR quantita <= 0))';

/**
 * The articles of a page. Sorting them by a column of the last of three tables would make the server copy every text of
 * them to a temporary table, which takes longer than all the rest of the query; so they are sorted here. Where the
 * back office limits an article, its row also holds `disponibile` and `quantita`, null where it doesn't, and `esauriti`;
 * `offerte` tells of offers at the list price, see kvPrezzi.
 */
function kvArticoliPagina(string $sql)
{
    $esito = false;
    $scelti = function_exists('kvScelteElenco') && kvScelteElenco()['attiva'];
    $sql = $scelti ? kvSqlScelti($sql) : $sql;
    kvCaratteri('latin1');
    if (preg_match('/ FROM (articoli\w*) .* WHERE /', $sql, $parti)) {
        $solo = $scelti || !function_exists('kvArticoloPagina') ? null : kvArticoloPagina($sql, $parti[1]);
        if ($solo !== null) {
            return $solo;
        }
        $id = "CAST($parti[1].ID AS CHAR CHARACTER SET latin1)";
        $esauriti = "EXISTS (SELECT 1 FROM kv_disponibilita WHERE tipo = 'V')";
        // The order of the tables is the one by their keys: to find that out takes the server longer than to read them.
        $intera = str_replace([' WHERE ', " FROM $parti[1] "], [
            " LEFT JOIN kv_offerte USING (ID) LEFT JOIN kv_disponibilita s ON s.tipo = 'A' AND s.chiave = $id WHERE ",
            ", $esauriti AS esauriti FROM $parti[1] "], $sql);
        $esito = mysqli_query(kvConnessione(), preg_replace('/\ASELECT /', 'SELECT STRAIGHT_JOIN ', $intera));
        if ($esito === false && mysqli_errno(kvConnessione()) === 1146) {
            include_once "kvtables.php";
            kvTabelle();
            kvCaratteri('latin1');
        }
    }
    $esito = $esito === false ? mysqli_query(kvConnessione(), $sql) : $esito;
    if (!$esito instanceof mysqli_result) {
        return $esito;
    }
    $righe = kvConEsauriti(mysqli_fetch_all($esito, MYSQLI_ASSOC));
    usort($righe, fn($a, $b) => (int) $a['contatore'] <=> (int) $b['contatore']);
    return new KvRighe($scelti ? kvOrdinaScelti($righe) : $righe);
}

/**
 * The rows with their sold out values in `esauriti`, where they came with the word whether any value of the shop is
 * limited. Read by the key of each article: where a key comes from another row, the server looks through all of them.
 */
function kvConEsauriti(array $righe): array
{
    $numeri = array_map('intval', array_column(array_filter($righe, fn($riga) => $riga['esauriti'] ?? false), 'ID'));
    $scelte = array_map(fn($id) => sprintf(KV_ESAURITI, "'$id.%'") . " AS e$id", array_unique($numeri));
    $esito = $scelte === [] ? false : mysqli_query(kvConnessione(), 'SELECT ' . implode(', ', $scelte));
    $esauriti = $esito instanceof mysqli_result ? mysqli_fetch_assoc($esito) : [];
    return array_map(fn($riga) => array_key_exists('esauriti', $riga)
        ? ['esauriti' => $esauriti['e' . (int) $riga['ID']] ?? null] + $riga : $riga, $righe);
}

// The calls of the extension that PHP 7 left out, as far as pages, modules and merchants' own templates use them.
// Values come as texts and a failed query is false, as they always did.
if (!function_exists('mysql_query')) {
    // The same numbers as MYSQLI_ASSOC, MYSQLI_NUM, MYSQLI_BOTH.
    define('MYSQL_ASSOC', 1);
    define('MYSQL_NUM', 2);
    define('MYSQL_BOTH', 3);

    /** A result set; true for a statement without rows; false on a failure, told by mysql_error. */
    function mysql_query(string $sql, $collegamento = null)
    {
        // A department page reads the articles of all its sub-pages to learn the number of the last one, which the
        // first row tells.
        if (substr($sql, -27) === "' ORDER BY sottopagina DESC") {
            if (function_exists('kvScelteElenco') && kvScelteElenco()['attiva']) {
                return new KvRighe([['sottopagina' => kvPagineScelte()]]);
            }
            list($pagina, $ultima) = $GLOBALS['kvLastPage'] ?? ['', null];
            if ($pagina !== '' && $sql === 'SELECT * FROM ' . kvTabellaLingua('articoli') . " WHERE pagina='$pagina' ORDER BY sottopagina DESC") {
                return new KvRighe($ultima === null ? [] : [['sottopagina' => $ultima]]);
            }
            $sql .= ' LIMIT 1';
        } elseif (substr($sql, -27) === ' ORDER BY contatore + 0 ASC') {
            return kvArticoliPagina(substr($sql, 0, -27));
        } elseif (function_exists('kvArticolo')
            && preg_match('/^SELECT \* FROM (articoli\w*) INNER JOIN dettaglio USING \(ID\) INNER JOIN ordinamento USING'
                . ' \(ID\) WHERE \1\.ID=(\d+)$/D', $sql, $parti) && $parti[1] === kvTabellaLingua('articoli')) {
            // The showcase asks for the mark of each of its articles.
            return new KvRighe(array_filter([kvArticolo((int) $parti[2])]));
        }
        kvCaratteri('latin1');
        return mysqli_query(kvConnessione(), $sql);
    }

    function mysql_num_rows($esito): int
    {
        if ($esito instanceof KvRighe) {
            return count($esito->righe);
        }
        return $esito instanceof mysqli_result ? (int) mysqli_num_rows($esito) : 0;
    }

    function mysql_num_fields($esito): int
    {
        return $esito instanceof mysqli_result ? (int) mysqli_num_fields($esito) : 0;
    }

    /**
     * The next row by number and by name; false behind the last one and for a failed query. Articles of a department
     * page come by name alone.
     */
    function mysql_fetch_array($esito, int $forma = MYSQL_BOTH)
    {
        if ($esito instanceof KvRighe) {
            return $esito->righe[$esito->prossima++] ?? false;
        }
        return ($esito instanceof mysqli_result ? mysqli_fetch_array($esito, $forma) : null) ?? false;
    }

    function mysql_fetch_assoc($esito)
    {
        return mysql_fetch_array($esito, MYSQL_ASSOC);
    }

    function mysql_fetch_row($esito)
    {
        return mysql_fetch_array($esito, MYSQL_NUM);
    }

    function mysql_data_seek($esito, int $riga): bool
    {
        if ($esito instanceof KvRighe) {
            $esito->prossima = $riga;
            return isset($esito->righe[$riga]);
        }
        return $esito instanceof mysqli_result && mysqli_data_seek($esito, $riga);
    }

    /** One field of a row, by its number or name; false when there is none. */
    function mysql_result($esito, int $riga, $campo = 0)
    {
        return mysql_data_seek($esito, $riga) ? (mysql_fetch_array($esito)[$campo] ?? false) : false;
    }

    function mysql_free_result($esito): bool
    {
        if ($esito instanceof mysqli_result) {
            mysqli_free_result($esito);
        }
        return true;
    }

    function mysql_error($collegamento = null): string
    {
        return mysqli_error(kvConnessione());
    }

    function mysql_errno($collegamento = null): int
    {
        return mysqli_errno(kvConnessione());
    }

    function mysql_affected_rows($collegamento = null): int
    {
        return (int) mysqli_affected_rows(kvConnessione());
    }

    function mysql_insert_id($collegamento = null): int
    {
        return (int) mysqli_insert_id(kvConnessione());
    }

    function mysql_real_escape_string(string $testo, $collegamento = null): string
    {
        return mysqli_real_escape_string(kvConnessione(), $testo);
    }

    function mysql_escape_string(string $testo): string
    {
        return mysqli_real_escape_string(kvConnessione(), $testo);
    }
}
