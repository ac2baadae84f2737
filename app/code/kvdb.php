<?php
// ***1.0.7***
// The shop's database: one connection, opened at the first query, and the mysql_ calls that the generated pages make.
// Data and pages are Windows-1252, which MySQL calls latin1. Whatever comes from a visitor goes in through kvQuery,
// whose values are bound, never pasted.

if (!function_exists('kvValori')) {

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
    if (!@mysqli_real_connect($nuova, $accesso[0], $accesso[1], $accesso[2], $accesso[3])) {
        error_log('Shop database: ' . mysqli_connect_error());
        http_response_code(503);
        die("<<4-guasto>>");
    }
    mysqli_set_charset($nuova, 'latin1');
    mysqli_query($nuova, "SET SESSION sql_mode = ''");
    $connessione = $nuova;
    return $connessione;
}

/**
 * Runs one statement with bound values. Rows of a SELECT, as arrays by column name; an empty list for any other
 * statement; null when the server refused it, with the reason in the server's error log.
 */
function kvQuery(string $sql, array $valori = []): ?array
{
    $istruzione = mysqli_prepare(kvConnessione(), $sql);
    if ($istruzione === false) {
        error_log('Shop database: ' . mysqli_error(kvConnessione()));
        return null;
    }
    if ($valori !== []) {
        $tipi = '';
        foreach ($valori as $valore) {
            $tipi .= is_int($valore) ? 'i' : (is_float($valore) ? 'd' : 's');
        }
        mysqli_stmt_bind_param($istruzione, $tipi, ...$valori);
    }
    if (!mysqli_stmt_execute($istruzione)) {
        error_log('Shop database: ' . mysqli_stmt_error($istruzione));
        return null;
    }
    $esito = mysqli_stmt_get_result($istruzione);
    return $esito === false ? [] : mysqli_fetch_all($esito, MYSQLI_ASSOC);
}

/** The first row of a query, null when there is none. */
function kvRiga(string $sql, array $valori = []): ?array
{
    $righe = kvQuery($sql, $valori);
    return $righe ? $righe[0] : null;
}

}

// Servers with the old extension have these functions already.
if (!function_exists('mysql_query')) {

/** A result set; true for a statement without rows; false on a failure, told by mysql_error. */
function mysql_query(string $sql)
{
    return mysqli_query(kvConnessione(), $sql);
}

function mysql_num_rows($esito): int
{
    return $esito instanceof mysqli_result ? (int) mysqli_num_rows($esito) : 0;
}

/** The next row by number and by name; false behind the last one and for a failed query. */
function mysql_fetch_array($esito)
{
    return ($esito instanceof mysqli_result ? mysqli_fetch_array($esito, MYSQLI_BOTH) : null) ?? false;
}

function mysql_fetch_assoc($esito)
{
    return ($esito instanceof mysqli_result ? mysqli_fetch_assoc($esito) : null) ?? false;
}

function mysql_free_result($esito): bool
{
    if ($esito instanceof mysqli_result) {
        mysqli_free_result($esito);
    }
    return true;
}

function mysql_error(): string
{
    return mysqli_error(kvConnessione());
}

function mysql_affected_rows(): int
{
    return (int) mysqli_affected_rows(kvConnessione());
}

function mysql_insert_id(): int
{
    return (int) mysqli_insert_id(kvConnessione());
}

function mysql_real_escape_string(string $testo): string
{
    return mysqli_real_escape_string(kvConnessione(), $testo);
}

}
