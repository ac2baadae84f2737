<?php
// ***1.0.7***
// What surrounds a page: the request's values, the answer's headers, the session and the customer, and the one
// escape function for texts that go into HTML.

if (!function_exists('kvHtml')) {

/** A text as HTML: the only way in which a visitor's words reach a page. */
function kvHtml(?string $testo): string
{
    return htmlspecialchars((string) $testo, ENT_QUOTES | ENT_SUBSTITUTE, 'cp1252');
}

/** The words of a piece of HTML, on one line, as HTML text. For <title> and attributes. */
function TestoSemplice(string $html): string
{
    $parole = html_entity_decode(strip_tags($html), ENT_QUOTES, 'cp1252');
    return kvHtml(trim(preg_replace('/\s+/', ' ', $parole)));
}

/**
 * Gives the request's values the names that the generated pages read. `n` and `prod` reach SQL: they are always
 * there and always whole numbers.
 */
function kvPreparaRichiesta(): void
{
    $get = $_GET;
    foreach (['n', 'prod'] as $nome) {
        $get[$nome] = isset($get[$nome]) && is_scalar($get[$nome]) ? (int) $get[$nome] : 0;
    }
    $GLOBALS['HTTP_GET_VARS'] = $get;
    $GLOBALS['HTTP_POST_VARS'] = $_POST;
    $GLOBALS['HTTP_COOKIE_VARS'] = $_COOKIE;
    $GLOBALS['HTTP_SERVER_VARS'] = $_SERVER;
    $_GET = $get;
}

/** Headers, and a buffer that drops the page when it turns out to be a redirection. */
function kvPreparaRisposta(string $p3p): void
{
    header('Content-Type: text/html; charset=windows-1252');
    header('X-Content-Type-Options: nosniff');
    header('Referrer-Policy: same-origin');
    if ($p3p !== '') {
        header('P3P: CP="' . $p3p . '"');
    }
    ob_start(function (string $pagina): string {
        foreach (headers_list() as $riga) {
            if (stripos($riga, 'Location:') === 0) {
                return '';
            }
        }
        return $pagina;
    });
}

/** A text of a form, trimmed, of at most `massimo` bytes; empty when absent. Browsers send it as Windows-1252. */
function kvCampo(array $modulo, string $nome, int $massimo = 200): string
{
    $valore = $modulo[$nome] ?? '';
    return is_string($valore) ? substr(trim(str_replace("\0", '', $valore)), 0, $massimo) : '';
}

/** Starts the session; without `nuova` only when the visitor has one, so that plain visits set no cookie. */
function kvSessione(bool $nuova = false): bool
{
    if (session_status() === PHP_SESSION_ACTIVE) {
        return true;
    }
    session_name('kvstore_sessione');
    if (!$nuova && !isset($_COOKIE['kvstore_sessione'])) {
        return false;
    }
    session_set_cookie_params([
        'httponly' => true,
        'samesite' => 'Lax',
        'secure' => ($_SERVER['HTTPS'] ?? '') !== '' && $_SERVER['HTTPS'] !== 'off',
    ]);
    ini_set('session.use_strict_mode', '1');
    return session_start();
}

/** The session's form token: a form that changes something carries it and kvGettoneValido asks for it. */
function kvGettone(): string
{
    kvSessione(true);
    if (!isset($_SESSION['gettone'])) {
        $_SESSION['gettone'] = bin2hex(random_bytes(16));
    }
    return $_SESSION['gettone'];
}

function kvGettoneValido(): bool
{
    return kvSessione() && isset($_SESSION['gettone'])
        && hash_equals($_SESSION['gettone'], kvCampo($_POST, 'gettone', 64));
}

/** Creates the tables of customers and orders, which live on the server alone and survive each update. */
function kvTabelle(): void
{
    kvQuery("CREATE TABLE IF NOT EXISTS kv_clienti (id INT NOT NULL AUTO_INCREMENT PRIMARY KEY,"
        . " email VARCHAR(190) NOT NULL UNIQUE, pw VARCHAR(255) NOT NULL, nome VARCHAR(100) NOT NULL DEFAULT '',"
        . " cognome VARCHAR(100) NOT NULL DEFAULT '', rsoc VARCHAR(200) NOT NULL DEFAULT '',"
        . " piva VARCHAR(40) NOT NULL DEFAULT '', indirizzo VARCHAR(200) NOT NULL DEFAULT '',"
        . " cap VARCHAR(20) NOT NULL DEFAULT '', citta VARCHAR(100) NOT NULL DEFAULT '',"
        . " provincia VARCHAR(60) NOT NULL DEFAULT '', telefono VARCHAR(60) NOT NULL DEFAULT '',"
        . " listino TINYINT NOT NULL DEFAULT 0, sconto DECIMAL(5,2) NOT NULL DEFAULT 0,"
        . " creato DATETIME NOT NULL) DEFAULT CHARSET=latin1");
    kvQuery("CREATE TABLE IF NOT EXISTS kv_ordini (id INT NOT NULL AUTO_INCREMENT PRIMARY KEY,"
        . " codice VARCHAR(20) NOT NULL UNIQUE, creato DATETIME NOT NULL, cliente INT NOT NULL DEFAULT 0,"
        . " nome VARCHAR(200) NOT NULL, email VARCHAR(190) NOT NULL, totale DECIMAL(12,2) NOT NULL,"
        . " valuta VARCHAR(20) NOT NULL, metodo VARCHAR(100) NOT NULL, stato VARCHAR(20) NOT NULL,"
        . " lingua VARCHAR(5) NOT NULL, dati TEXT NOT NULL, riepilogo TEXT NOT NULL) DEFAULT CHARSET=latin1");
}

/** The customer of the session: number, listino, personal discount in percent; all 0 for a visitor. */
function kvCliente(): array
{
    if (!kvSessione() || !isset($_SESSION['cliente'])) {
        return [0, 0, 0];
    }
    $riga = kvRiga('SELECT id, listino, sconto FROM kv_clienti WHERE id = ?', [(int) $_SESSION['cliente']]);
    if ($riga === null) {
        unset($_SESSION['cliente']);
        return [0, 0, 0];
    }
    return [(int) $riga['id'], max(0, min(9, (int) $riga['listino'])), (float) $riga['sconto']];
}

/** The customer's data for the order form: name=value pairs, percent-coded, joined by "|"; empty for a visitor. */
function LoadDatiCliente(): string
{
    global $cliente;
    $riga = $cliente === 0 ? null : kvRiga('SELECT * FROM kv_clienti WHERE id = ?', [$cliente]);
    if ($riga === null) {
        return '';
    }
    $coppie = [];
    foreach (['nome', 'cognome', 'rsoc', 'piva', 'indirizzo', 'cap', 'citta', 'provincia', 'telefono', 'email'] as $n) {
        $coppie[] = $n . '=' . rawurlencode(iconv('CP1252', 'UTF-8//IGNORE', (string) $riga[$n]));
    }
    return implode('|', $coppie);
}

}
