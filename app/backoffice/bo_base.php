<?php
// What every page of the back office starts with: the session, the merchant's access, the database and the frame of
// the page. The back office stands in a folder of its own and shares no file with the shop.

ini_set('display_errors', '0');
header('Content-Type: text/html; charset=windows-1252');
header('X-Content-Type-Options: nosniff');
header('X-Frame-Options: DENY');
header('Referrer-Policy: same-origin');
header('Cache-Control: no-store');
header("Content-Security-Policy: default-src 'self'; form-action 'self'; base-uri 'none'; frame-ancestors 'none'");
ini_set('session.use_strict_mode', '1');
session_name('kvstore_backoffice');
session_set_cookie_params([
    'httponly' => true,
    'samesite' => 'Strict',
    'secure' => ($_SERVER['HTTPS'] ?? '') !== '' && $_SERVER['HTTPS'] !== 'off',
]);
session_start();

/** The shop's settings, one a line: database server, user, password, name; back office user, password; shop. */
function boImpostazioni(): array
{
    $righe = <<<'KORVANE_VALORI'
<<1-db_hostname>>
<<1-db_username>>
<<1-db_password>>
<<1-db_dbname>>
<<1-bo_username>>
<<1-bo_password>>
<<1-negozio>>
KORVANE_VALORI;
    // The build puts a backslash before each quote.
    return preg_split('/\r\n|\n|\r/', preg_replace('/\\\\(["\'])/', '$1', $righe));
}

/** A text as HTML. */
function boHtml(?string $testo): string
{
    return htmlspecialchars((string) $testo, ENT_QUOTES | ENT_SUBSTITUTE, 'cp1252');
}

/** A value of a request as text, trimmed and cut; empty when absent. */
function boCampo(array $richiesta, string $nome, int $massimo = 200): string
{
    $valore = $richiesta[$nome] ?? '';
    return is_string($valore) ? substr(trim($valore), 0, $massimo) : '';
}

/** Runs a statement with bound values: rows by column name, null when the server refused it. */
function boQuery(string $sql, array $valori = []): ?array
{
    static $connessione = null;
    if ($connessione === null) {
        $accesso = boImpostazioni();
        mysqli_report(MYSQLI_REPORT_OFF);
        $connessione = mysqli_init();
        if (!@mysqli_real_connect($connessione, $accesso[0], $accesso[1], $accesso[2], $accesso[3])) {
            $connessione = null;
            return null;
        }
        mysqli_set_charset($connessione, 'latin1');
    }
    $istruzione = mysqli_prepare($connessione, $sql);
    if ($istruzione === false) {
        return null;
    }
    if ($valori !== []) {
        mysqli_stmt_bind_param($istruzione, str_repeat('s', count($valori)), ...$valori);
    }
    if (!mysqli_stmt_execute($istruzione)) {
        return null;
    }
    $esito = mysqli_stmt_get_result($istruzione);
    return $esito === false ? [] : mysqli_fetch_all($esito, MYSQLI_ASSOC);
}

/** The token that each form of the session carries. */
function boGettone(): string
{
    if (!isset($_SESSION['gettone'])) {
        $_SESSION['gettone'] = bin2hex(random_bytes(16));
    }
    return $_SESSION['gettone'];
}

function boGettoneValido(): bool
{
    return hash_equals(boGettone(), boCampo($_POST, 'gettone', 64));
}

/** Sends whoever hasn't signed in to the first page, which asks for user and password. */
function boRiservata(): void
{
    if (!isset($_SESSION['accesso'])) {
        header('Location: index.php', true, 303);
        exit;
    }
}

/** The top of a page; the menu only for who has signed in. */
function boInizio(string $titolo): void
{
    $negozio = boHtml(boImpostazioni()[6] ?? '');
    echo '<!DOCTYPE html><html lang="it"><head><meta charset="windows-1252">',
        '<meta name="viewport" content="width=device-width, initial-scale=1"><meta name="robots" content="noindex">',
        '<title>', boHtml($titolo), ' - ', $negozio, '</title><link rel="stylesheet" href="bo.css"></head><body>',
        '<header><strong>', $negozio, '</strong> BackOffice';
    if (isset($_SESSION['accesso'])) {
        echo '<nav><a href="ordini.php">Ordini</a> <a href="clienti.php">Clienti</a> <a href="esci.php">Esci</a></nav>';
    }
    echo '</header><main><h1>', boHtml($titolo), '</h1>';
}

function boFine(): void
{
    echo '</main></body></html>';
}
