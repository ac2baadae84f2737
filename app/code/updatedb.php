<?php
// ***1.0.7***
// Loads the SQL files that came with the last publishing into the database: dbdel.sql, which drops the shop's tables,
// then db.sql. The caller proves itself with the word that stands behind "#" on the files' first line; the answer is
// "OK" or a description of what failed. With ?w=phpinfo it shows the server's PHP settings, without the variables of
// the environment.
include "kvdb.php";

/** The opened file behind its head: handle, word, separator of statements. Null when there is none. */
function kvApriSql(string $nome): ?array
{
    $file = @fopen($nome, 'rb');
    if ($file === false) {
        return null;
    }
    $parola = rtrim((string) fgets($file), "\r\n");
    $inizio = ftell($file);
    $riga = rtrim((string) fgets($file), "\r\n");
    $separatore = ';';
    if (strncmp($riga, '#QS=', 4) === 0) {
        $separatore = substr($riga, 4);
    } else {
        fseek($file, $inizio);
    }
    $parola = substr($parola, 0, 1) === '#' ? substr($parola, 1) : '';
    return ['file' => $file, 'parola' => $parola, 'fine' => $separatore];
}

/**
 * Runs the statements of a file. A statement ends with the separator at the end of a line: line ends inside values
 * are written as \n, so no value can end one. Failures of DROP TABLE don't count: the table may not be there yet.
 * Result: the first failure, empty when all went well.
 */
function kvEsegui(array $sql): string
{
    $istruzione = '';
    $lungo = strlen($sql['fine']);
    while (($riga = fgets($sql['file'])) !== false) {
        $istruzione .= $riga;
        $testo = rtrim($riga, "\r\n");
        if (substr($testo, -$lungo) !== $sql['fine']) {
            continue;
        }
        $comando = trim(substr(rtrim($istruzione, "\r\n"), 0, -$lungo));
        $istruzione = '';
        if ($comando !== '' && mysql_query($comando) === false && stripos($comando, 'DROP TABLE') !== 0) {
            return mysql_error() . "\n" . substr($comando, 0, 500);
        }
    }
    $resto = substr(trim($istruzione), 0, 500);
    return $resto === '' ? '' : "Incomplete statement at the end of the file:\n" . $resto;
}

if (($_GET['w'] ?? '') === 'phpinfo') {
    phpinfo(INFO_GENERAL | INFO_CONFIGURATION | INFO_MODULES);
    exit;
}
header('Content-Type: text/plain; charset=windows-1252');
header('Cache-Control: no-store');
ignore_user_abort(true);
@set_time_limit(0);
$kvVia = kvApriSql('dbdel<<1-IDlingua>>.sql');
$kvNuovo = kvApriSql('db<<1-IDlingua>>.sql');
$kvParola = isset($_POST['sec']) && is_string($_POST['sec']) ? $_POST['sec'] : '';
if ($kvVia === null || $kvNuovo === null || $kvParola === '' || !hash_equals($kvNuovo['parola'], $kvParola)
    || !hash_equals($kvVia['parola'], $kvParola)) {
    die('accesso al database non autorizzato');
}
$kvEsito = kvEsegui($kvVia);
if ($kvEsito === '') {
    $kvEsito = kvEsegui($kvNuovo);
}
echo $kvEsito === '' ? 'OK' : $kvEsito;
