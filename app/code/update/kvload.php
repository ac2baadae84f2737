<?php
// ***1.0.7***
// Loads SQL files of a publishing: updatedb.php's hands. A file is read in pieces and never held whole; single-row
// INSERT statements of one table, as the build writes them, go to the server joined to large ones.
include_once "kvtables.php";
include_once "kvshadow.php";

/** The most bytes of a joined statement; the server's own limit may be lower. */
const KV_LOTTO = 1048576;
/** Seconds between two signs of life to a caller that waits. */
const KV_ATTESA = 15;

/**
 * The opened file behind its head: file, parola (the word of its first line), fine (what ends a statement: the
 * separator and the file's line end), separatore. Null when there is none or it has no word.
 */
function kvApriSql(string $nome): ?array
{
    $file = @fopen($nome, 'rb');
    if ($file === false) {
        return null;
    }
    $prima = (string) fgets($file, 1024);
    $capo = substr($prima, -2) === "\r\n" ? "\r\n" : "\n";
    $inizio = ftell($file);
    $seconda = rtrim((string) fgets($file, 1024), "\r\n");
    $separatore = ';';
    if (strncmp($seconda, '#QS=', 4) === 0 && strlen($seconda) > 4) {
        $separatore = substr($seconda, 4);
    } else {
        fseek($file, $inizio);
    }
    $parola = rtrim($prima, "\r\n");
    if (strlen($parola) < 2 || $parola[0] !== '#') {
        fclose($file);
        return null;
    }
    return ['file' => $file, 'parola' => substr($parola, 1), 'separatore' => $separatore, 'fine' => $separatore . $capo];
}

/** Whether the file ends with a whole statement, or holds none: a transfer that broke off is told before it does harm. */
function kvSqlIntero(array $sql): bool
{
    $qui = ftell($sql['file']);
    fseek($sql['file'], 0, SEEK_END);
    $quanti = min(4096, ftell($sql['file']) - $qui);
    fseek($sql['file'], -$quanti, SEEK_END);
    $coda = rtrim($quanti > 0 ? (string) fread($sql['file'], $quanti) : '');
    fseek($sql['file'], $qui);
    return $coda === '' || substr($coda, -strlen($sql['separatore'])) === $sql['separatore'];
}

/**
 * The statements of a file, one at a time. A statement ends with the separator at the end of a line: line ends inside
 * values are written as \n, so no value can end one.
 */
function kvIstruzioniSql(array $sql): Generator
{
    $fine = $sql['fine'];
    $testo = '';
    $cerca = 0;
    do {
        $letto = (string) fread($sql['file'], 262144);
        $testo .= $letto;
        $inizio = 0;
        while (($dove = strpos($testo, $fine, $cerca)) !== false) {
            yield ltrim(substr($testo, $inizio, $dove - $inizio));
            $inizio = $cerca = $dove + strlen($fine);
        }
        $testo = substr($testo, $inizio);
        $cerca = max(0, strlen($testo) - strlen($fine));
    } while ($letto !== '');
    $resto = rtrim($testo);
    if ($resto !== '') {
        yield ltrim(substr($resto, 0, -strlen($sql['separatore'])));
    }
}

/** What the server said of a failed statement: its beginning and the reason, without any path of the server. */
function kvGuastoSql(string $istruzione): string
{
    $motivo = preg_replace('~[\w.:-]*(?:[\\\\/][\w.-]+)*[\\\\/]~', '', mysqli_error(kvConnection()));
    // The merchant knows the tables by their own names.
    list($istruzione, $motivo) = str_replace(KV_NUOVA, '', [$istruzione, $motivo]);
    return preg_replace('/\s+/', ' ', substr($istruzione, 0, 60)) . "\n" . $motivo;
}

/** Runs one statement; the failure, empty when there is none. A table that isn't there needs no dropping. */
function kvEseguiSql(string $istruzione): string
{
    kvSetCharset('latin1');
    // 1051 is "unknown table". Source: MySQL 8.0 Error Reference.
    if (mysqli_query(kvConnection(), $istruzione) !== false
        || (mysqli_errno(kvConnection()) === 1051 && stripos($istruzione, 'DROP TABLE') === 0)) {
        return '';
    }
    return kvGuastoSql($istruzione);
}

/** A blank now and then for the caller and for servers between that end a silent answer; the caller trims blanks. */
function kvSegnoDiVita(): void
{
    static $ultimo = null;
    $ultimo = $ultimo ?? time();
    if (time() - $ultimo >= KV_ATTESA) {
        $ultimo = time();
        echo ' ';
        @ob_flush();
        flush();
    }
}

/** The bytes that a joined statement may have on this server. */
function kvLimiteLotto(): int
{
    $riga = mysqli_fetch_row(mysqli_query(kvConnection(), 'SELECT @@max_allowed_packet'));
    return max(16384, min(KV_LOTTO, (int) ($riga[0] ?? 0) - 8192));
}

/** What the further rows of the same table begin with, where it is being filled; empty for a table that visitors read. */
function kvCapoRiga(string $istruzione, KvCarico $carico): string
{
    return preg_match('/\AINSERT INTO (\S+)\s+VALUES \(/', $istruzione, $parti) && in_array($parti[1], $carico->nuove, true)
        ? $parti[0] : '';
}

/** Runs the statements of a load file, rows of one table joined. The first failure, empty when all went well. */
function kvCaricaSql(array $sql, KvCarico $carico): string
{
    $limite = kvLimiteLotto();
    $tabella = '';
    $lotto = '';
    $capo = '';
    foreach (kvIstruzioniSql($sql) as $letta) {
        // One more row of a table that is being filled: nothing else of it is looked at.
        if ($capo !== '' && strncmp($letta, $capo, strlen($capo)) === 0 && strlen($lotto) + strlen($letta) < $limite) {
            $lotto .= ',(' . substr($letta, strlen($capo));
            continue;
        }
        $capo = '';
        $istruzione = kvIstruzioneCarico($carico, $letta);
        if ($istruzione === null || $istruzione === '') {
            continue;
        }
        $riga = preg_match('/\AINSERT INTO (\S+)\s+VALUES \(/', $istruzione, $parti) === 1;
        if ($riga && $parti[1] === $tabella && strlen($lotto) + strlen($istruzione) < $limite) {
            $lotto .= ',(' . substr($istruzione, strlen($parti[0]));
            continue;
        }
        $guasto = $lotto === '' ? '' : kvEseguiSql($lotto);
        $tabella = $riga ? $parti[1] : '';
        $lotto = $riga ? $istruzione : '';
        $capo = $riga ? kvCapoRiga($letta, $carico) : '';
        $guasto = $guasto === '' && !$riga ? kvEseguiSql($istruzione) : $guasto;
        if ($guasto !== '') {
            return $guasto;
        }
        kvSegnoDiVita();
    }
    return $lotto === '' ? '' : kvEseguiSql($lotto);
}

/** The whole load: the drop file, then the load file. The first failure, empty when all went well. */
function kvCaricaTutto(array $via, array $nuovo, string $lingua): string
{
    if (!kvSqlIntero($via) || !kvSqlIntero($nuovo)) {
        return 'Il trasferimento dei file del database non è completo: aggiornare di nuovo il negozio.';
    }
    kvRequireTables();
    kvSetCharset('latin1');
    $blocco = mysqli_fetch_row(mysqli_query(kvConnection(), "SELECT GET_LOCK(CONCAT(DATABASE(), '.updatedb'), 5)"));
    if ((int) ($blocco[0] ?? 0) !== 1) {
        return 'Un altro aggiornamento del database è in corso.';
    }
    // The rows come checked from the build; what they must meet here is the width of the columns.
    foreach (["SET SESSION sql_mode = 'STRICT_ALL_TABLES,NO_AUTO_VALUE_ON_ZERO'", 'SET unique_checks = 0',
              'SET foreign_key_checks = 0', 'SET default_storage_engine = InnoDB', 'SET autocommit = 0'] as $impostazione) {
        mysqli_query(kvConnection(), $impostazione);
    }
    return kvCaricaInsieme($via, $nuovo, $lingua);
}

/** Keeps the files from being read over the web while they lie there, as far as this host lets us. */
function kvProteggiSql(array $nomi): void
{
    foreach ($nomi as $nome) {
        @chmod($nome, 0600);
    }
    $server = (string) ($_SERVER['SERVER_SOFTWARE'] ?? '');
    if (preg_match('/apache|litespeed/i', $server) && !file_exists('.htaccess')) {
        @file_put_contents('.htaccess', "<IfModule mod_rewrite.c>\nRewriteEngine On\n"
            . "RewriteRule \\.(sql|sc)$ - [F,NC]\n</IfModule>\n");
    }
}

/** Takes loaded files away; one that can't be removed is emptied. */
function kvTogliSql(array $sql, array $nomi): void
{
    foreach ($sql as $aperto) {
        fclose($aperto['file']);
    }
    foreach ($nomi as $nome) {
        if (!@unlink($nome)) {
            @file_put_contents($nome, '');
        }
    }
}

/** What helps to find out why a load failed: versions, extensions and limits. Nothing of the account, nothing secret. */
function kvDiagnosi(): string
{
    $testo = 'PHP ' . PHP_VERSION . ' (' . PHP_SAPI . ', ' . (PHP_INT_SIZE * 8) . " bit)\n";
    foreach (['memory_limit', 'max_execution_time', 'max_input_time', 'post_max_size', 'upload_max_filesize',
              'default_socket_timeout'] as $limite) {
        $testo .= $limite . ': ' . ini_get($limite) . "\n";
    }
    $estensioni = get_loaded_extensions();
    natcasesort($estensioni);
    $testo .= 'extensions: ' . implode(' ', $estensioni) . "\n";
    return $testo . 'mysqli: ' . (function_exists('mysqli_get_client_info') ? mysqli_get_client_info() : 'no') . "\n";
}

/** Seconds for which a caller who knew the word may ask for the diagnosis, which the program does after a failure. */
const KV_DIAGNOSI = 600;

/** Where it is kept who may ask for the diagnosis: outside the folder that the web sees. */
function kvFileDiagnosi(): string
{
    return rtrim(sys_get_temp_dir(), '/\\') . '/kvdiagnosi' . substr(hash('sha256', __DIR__), 0, 16);
}

/**
 * Keeps the key with which the merchant's own machine signs its requests for orders, in the database alone. The caller
 * has proven itself.
 */
function kvTieniChiave($chiave): void
{
    if (is_string($chiave) && preg_match('/^[0-9a-f]{64}$/D', $chiave) && kvStoredValue('chiave_ordini') !== $chiave) {
        kvStoreValue('chiave_ordini', $chiave);
    }
}

/** What lets a caller's address ask until a moment: others on the host can't make it without the database's password. */
function kvFirmaDiagnosi(string $fino): string
{
    return hash_hmac('sha256', $fino . ' ' . ($_SERVER['REMOTE_ADDR'] ?? ''), <<<'KORVANE_VALORI'
<<1-db_hostname>>
<<1-db_password>>
KORVANE_VALORI
    );
}

/** Lets the caller, who knew the word, ask for the diagnosis. It can't without a folder for such files. */
function kvAmmettiDiagnosi(): void
{
    $fino = (string) (time() + KV_DIAGNOSI);
    @file_put_contents(kvFileDiagnosi(), $fino . ' ' . kvFirmaDiagnosi($fino));
}

/** Whether the caller may ask for the diagnosis. */
function kvDiagnosiAmmessa(): bool
{
    list($fino, $firma) = explode(' ', (string) @file_get_contents(kvFileDiagnosi(), false, null, 0, 200)) + [1 => ''];
    return (int) $fino > time() && hash_equals(kvFirmaDiagnosi($fino), $firma);
}
