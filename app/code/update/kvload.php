<?php
// ***1.0.7***
// Loads SQL files of a publishing: updatedb.php's hands. A file is read in pieces and never held whole; single-row
// INSERT statements of one table, as the build writes them, go to the server joined to large ones.
include_once "kvtables.php";
include_once "kvshadow.php";

/** The most bytes of a joined statement; the server's own limit may be lower. */
const KV_BATCH = 1048576;
/** Seconds between two signs of life to a caller that waits. */
const KV_WAIT = 15;

/**
 * The opened file after its head: file, word (that of its first line), end (what ends a statement: the
 * separator and the file's line end), separator. Null when there is none or it has no word.
 */
function kvOpenSql(string $name): ?array
{
    $file = @fopen($name, 'rb');
    if ($file === false) {
        return null;
    }
    $first = (string) fgets($file, 1024);
    $head = substr($first, -2) === "\r\n" ? "\r\n" : "\n";
    $start = ftell($file);
    $second = rtrim((string) fgets($file, 1024), "\r\n");
    $separator = ';';
    if (strncmp($second, '#QS=', 4) === 0 && strlen($second) > 4) {
        $separator = substr($second, 4);
    } else {
        fseek($file, $start);
    }
    $word = rtrim($first, "\r\n");
    if (strlen($word) < 2 || $word[0] !== '#') {
        fclose($file);
        return null;
    }
    return ['file' => $file, 'word' => substr($word, 1), 'separator' => $separator, 'end' => $separator . $head];
}

/** Whether the file ends with a whole statement, or holds none: a transfer that broke off is told before it does harm. */
function kvIsSqlWhole(array $sql): bool
{
    $here = ftell($sql['file']);
    fseek($sql['file'], 0, SEEK_END);
    $count = min(4096, ftell($sql['file']) - $here);
    fseek($sql['file'], -$count, SEEK_END);
    $tail = rtrim($count > 0 ? (string) fread($sql['file'], $count) : '');
    fseek($sql['file'], $here);
    return $tail === '' || substr($tail, -strlen($sql['separator'])) === $sql['separator'];
}

/**
 * The statements of a file, one at a time. A statement ends with the separator at the end of a line: line ends inside
 * values are written as \n, so no value can end one.
 */
function kvSqlStatements(array $sql): Generator
{
    $end = $sql['end'];
    $text = '';
    $search = 0;
    do {
        $read = (string) fread($sql['file'], 262144);
        $text .= $read;
        $start = 0;
        while (($where = strpos($text, $end, $search)) !== false) {
            yield ltrim(substr($text, $start, $where - $start));
            $start = $search = $where + strlen($end);
        }
        $text = substr($text, $start);
        $search = max(0, strlen($text) - strlen($end));
    } while ($read !== '');
    $rest = rtrim($text);
    if ($rest !== '') {
        yield ltrim(substr($rest, 0, -strlen($sql['separator'])));
    }
}

/** What the server said of a failed statement: its beginning and the reason, without any path of the server. */
function kvSqlFailure(string $statement): string
{
    $reason = preg_replace('~[\w.:-]*(?:[\\\\/][\w.-]+)*[\\\\/]~', '', mysqli_error(kvConnection()));
    // The merchant knows the tables by their own names.
    list($statement, $reason) = str_replace(KV_NEW, '', [$statement, $reason]);
    return preg_replace('/\s+/', ' ', substr($statement, 0, 60)) . "\n" . $reason;
}

/** Runs one statement; the failure, empty when there is none. A table that isn't there needs no dropping. */
function kvRunSql(string $statement): string
{
    kvSetCharset('latin1');
    // 1051 is "unknown table". Source: MySQL 8.0 Error Reference.
    if (mysqli_query(kvConnection(), $statement) !== false
        || (mysqli_errno(kvConnection()) === 1051 && stripos($statement, 'DROP TABLE') === 0)) {
        return '';
    }
    return kvSqlFailure($statement);
}

/** A space now and then for the caller and for servers between that end a silent answer; the caller trims spaces. */
function kvSignOfLife(): void
{
    static $last = null;
    $last = $last ?? time();
    if (time() - $last >= KV_WAIT) {
        $last = time();
        echo ' ';
        @ob_flush();
        flush();
    }
}

/** The bytes that a joined statement may have on this server. */
function kvBatchLimit(): int
{
    $row = mysqli_fetch_row(mysqli_query(kvConnection(), 'SELECT @@max_allowed_packet'));
    return max(16384, min(KV_BATCH, (int) ($row[0] ?? 0) - 8192));
}

/** What the further rows of the same table begin with, where it is being filled; empty for a table that visitors read. */
function kvRowHead(string $statement, KvLoad $load): string
{
    return preg_match('/\AINSERT INTO (\S+)\s+VALUES \(/', $statement, $parts) && in_array($parts[1], $load->made, true)
        ? $parts[0] : '';
}

/** Runs the statements of a load file, rows of one table joined. The first failure, empty when all went well. */
function kvLoadSql(array $sql, KvLoad $load): string
{
    $limit = kvBatchLimit();
    $table = '';
    $batch = '';
    $head = '';
    foreach (kvSqlStatements($sql) as $read) {
        // One more row of a table that is being filled: nothing else of it is looked at.
        if ($head !== '' && strncmp($read, $head, strlen($head)) === 0 && strlen($batch) + strlen($read) < $limit) {
            $batch .= ',(' . substr($read, strlen($head));
            continue;
        }
        $head = '';
        $statement = kvLoadStatement($load, $read);
        if ($statement === null || $statement === '') {
            continue;
        }
        $row = preg_match('/\AINSERT INTO (\S+)\s+VALUES \(/', $statement, $parts) === 1;
        if ($row && $parts[1] === $table && strlen($batch) + strlen($statement) < $limit) {
            $batch .= ',(' . substr($statement, strlen($parts[0]));
            continue;
        }
        $failure = $batch === '' ? '' : kvRunSql($batch);
        $table = $row ? $parts[1] : '';
        $batch = $row ? $statement : '';
        $head = $row ? kvRowHead($read, $load) : '';
        $failure = $failure === '' && !$row ? kvRunSql($statement) : $failure;
        if ($failure !== '') {
            return $failure;
        }
        kvSignOfLife();
    }
    return $batch === '' ? '' : kvRunSql($batch);
}

/** The whole load: the drop file, then the load file. The first failure, empty when all went well. */
function kvLoadAll(array $drops, array $new, string $language): string
{
    if (!kvIsSqlWhole($drops) || !kvIsSqlWhole($new)) {
        return 'Il trasferimento dei file del database non è completo: aggiornare di nuovo il negozio.';
    }
    kvRequireTables();
    kvSetCharset('latin1');
    $lock = mysqli_fetch_row(mysqli_query(kvConnection(), "SELECT GET_LOCK(CONCAT(DATABASE(), '.updatedb'), 5)"));
    if ((int) ($lock[0] ?? 0) !== 1) {
        return 'Un altro aggiornamento del database è in corso.';
    }
    // The rows come checked from the build; what they must meet here is the width of the columns.
    foreach (["SET SESSION sql_mode = 'STRICT_ALL_TABLES,NO_AUTO_VALUE_ON_ZERO'", 'SET unique_checks = 0',
              'SET foreign_key_checks = 0', 'SET default_storage_engine = InnoDB', 'SET autocommit = 0'] as $setting) {
        mysqli_query(kvConnection(), $setting);
    }
    return kvLoadTogether($drops, $new, $language);
}

/** Keeps the files from being read over the web while they lie there, as far as this host lets us. */
function kvProtectSql(array $names): void
{
    foreach ($names as $name) {
        @chmod($name, 0600);
    }
    $server = (string) ($_SERVER['SERVER_SOFTWARE'] ?? '');
    if (preg_match('/apache|litespeed/i', $server) && !file_exists('.htaccess')) {
        @file_put_contents('.htaccess', "<IfModule mod_rewrite.c>\nRewriteEngine On\n"
            . "RewriteRule \\.(sql|sc)$ - [F,NC]\n</IfModule>\n");
    }
}

/** Takes loaded files away; one that can't be removed is emptied. */
function kvRemoveSql(array $sql, array $names): void
{
    foreach ($sql as $opened) {
        fclose($opened['file']);
    }
    foreach ($names as $name) {
        if (!@unlink($name)) {
            @file_put_contents($name, '');
        }
    }
}

/** What helps to find out why a load failed: versions, extensions and limits. Nothing of the account, nothing secret. */
function kvDiagnosis(): string
{
    $text = 'PHP ' . PHP_VERSION . ' (' . PHP_SAPI . ', ' . (PHP_INT_SIZE * 8) . " bit)\n";
    foreach (['memory_limit', 'max_execution_time', 'max_input_time', 'post_max_size', 'upload_max_filesize',
              'default_socket_timeout'] as $limit) {
        $text .= $limit . ': ' . ini_get($limit) . "\n";
    }
    $extensions = get_loaded_extensions();
    natcasesort($extensions);
    $text .= 'extensions: ' . implode(' ', $extensions) . "\n";
    return $text . 'mysqli: ' . (function_exists('mysqli_get_client_info') ? mysqli_get_client_info() : 'no') . "\n";
}

/** Seconds for which a caller who knew the word may ask for the diagnosis, which the program does after a failure. */
const KV_DIAGNOSIS = 600;

/** Where it is kept who may ask for the diagnosis: outside the folder that the web sees. */
function kvDiagnosisFile(): string
{
    return rtrim(sys_get_temp_dir(), '/\\') . '/kvdiagnosi' . substr(hash('sha256', __DIR__), 0, 16);
}

/**
 * Keeps the key with which the merchant's own machine signs its requests for orders, in the database alone. The caller
 * has proven itself.
 */
function kvKeepKey($key): void
{
    if (is_string($key) && preg_match('/^[0-9a-f]{64}$/D', $key) && kvStoredValue('chiave_ordini') !== $key) {
        kvStoreValue('chiave_ordini', $key);
    }
}

/** What lets a caller's address ask until a moment: others on the host can't make it without the database's password. */
function kvDiagnosisSignature(string $until): string
{
    return hash_hmac('sha256', $until . ' ' . ($_SERVER['REMOTE_ADDR'] ?? ''), <<<'KORVANE_VALORI'
<<1-db_hostname>>
<<1-db_password>>
KORVANE_VALORI
    );
}

/** Lets the caller, who knew the word, ask for the diagnosis. It can't without a folder for such files. */
function kvAllowDiagnosis(): void
{
    $until = (string) (time() + KV_DIAGNOSIS);
    @file_put_contents(kvDiagnosisFile(), $until . ' ' . kvDiagnosisSignature($until));
}

/** Whether the caller may ask for the diagnosis. */
function kvIsDiagnosisAllowed(): bool
{
    list($until, $signature) = explode(' ', (string) @file_get_contents(kvDiagnosisFile(), false, null, 0, 200)) + [1 => ''];
    return (int) $until > time() && hash_equals(kvDiagnosisSignature($until), $signature);
}
