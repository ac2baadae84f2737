<?php
// ***1.0.7***
// What surrounds a page: the request's values, the answer's headers, the session, and the escape function for texts
// that go into HTML. Pages and catalogue are Windows-1252; what a visitor typed is UTF-8 from the form to the mail, see
// kvutf8.php.
include_once "kvutf8.php";

/** A text of the catalogue or of a module as HTML; numeric references in it stay what they are. */
function kvHtml(?string $testo): string
{
    $html = htmlspecialchars((string) $testo, ENT_QUOTES | ENT_SUBSTITUTE, 'cp1252');
    return strpos($html, '&amp;#') === false ? $html : preg_replace('/&amp;(#\d{2,7};)/', '&$1', $html);
}

/** A text of the merchant as HTML: as it stands when it holds tags, else escaped. */
function kvTestoHtml(?string $testo): string
{
    return preg_match('/<.*>/s', (string) $testo) ? (string) $testo : kvHtml($testo);
}

/** The words of a piece of HTML, on one line, as HTML text. For <title> and attributes. */
function TestoSemplice(string $html): string
{
    $parole = strpbrk($html, '<&') === false ? $html : html_entity_decode(strip_tags($html), ENT_QUOTES, 'cp1252');
    return kvHtml(trim(preg_replace('/\s+/', ' ', $parole)));
}

/** The number that tells this shop from others on the same host. */
function kvNegozio(): string
{
    return (string) (int) "<<1-IDnegozio>>";
}

/**
 * Gives the request's values the names that the generated pages read. `n` and `prod` reach SQL: they are always
 * there and always whole numbers. $kvErrata tells that one of them was none that a page can have.
 */
function kvPreparaRichiesta(): void
{
    $GLOBALS['kvErrata'] = false;
    foreach (['n', 'prod'] as $nome) {
        $detto = $_GET[$nome] ?? '';
        $GLOBALS['kvErrata'] = $GLOBALS['kvErrata'] || !is_string($detto) || !preg_match('/^(?:[1-9]\d{0,8})?$/D', $detto);
        $_GET[$nome] = isset($_GET[$nome]) && is_string($_GET[$nome]) ? (int) $_GET[$nome] : 0;
    }
    $GLOBALS['HTTP_GET_VARS'] = $_GET;
    $GLOBALS['HTTP_POST_VARS'] = $_POST;
    $GLOBALS['HTTP_COOKIE_VARS'] = $_COOKIE;
    $GLOBALS['HTTP_SERVER_VARS'] = $_SERVER;
    $GLOBALS['HTTP_POST_FILES'] = $_FILES;
    $GLOBALS['HTTP_ENV_VARS'] = $_ENV;
}

/** The buffered page; nothing of it when it turned out to be a redirection. */
function kvPaginaFinita(string $pagina): string
{
    $codice = http_response_code();
    return $codice >= 300 && $codice < 400 ? '' : $pagina;
}

/**
 * What a page may load and where it may stand. Pages of the build have scripts and styles in their text, merchants show
 * pictures and films from elsewhere, payment services take forms: the policy forbids all the rest. Source: CSP Level 3.
 */
const KV_POLITICA = "default-src 'self'; script-src 'self' 'unsafe-inline'; style-src 'self' 'unsafe-inline';"
    . " img-src 'self' data: https:; media-src 'self' https:; frame-src 'self' https:; object-src 'none'; base-uri 'self';"
    . " form-action 'self' https: http://127.0.0.1:* http://localhost:*; frame-ancestors 'self'";

/** Pages that are the same for all visitors without a session, but for what the catalogue and the stock bring. */
const KV_PAGINE_COMUNI = '/^(?:cat\d+|index|condizioni|recesso|datipers|search)(?:_l[2-4])?\.php$/D';

/** The states of the load by which a page is known. */
function kvNomiStati(): array
{
    return ['carico', 'indice' . $GLOBALS['Lingua'], 'laterali', 'scorte'];
}

/** The values of these states, by their names; empty without any. */
function kvStatiPagina(): array
{
    $esito = mysqli_query(kvConnessione(), "SELECT nome, valore FROM kv_stato WHERE nome IN ('" . implode("', '", kvNomiStati()) . "')");
    $stati = $esito instanceof mysqli_result ? array_column(mysqli_fetch_all($esito), 1, 0) : [];
    ksort($stati);
    return $stati;
}

/**
 * The same for a department page, and with them, for a question of its own would take as long: the department
 * ($kvRepartoPagina) and the number of its last sub-page ($kvUltimaPagina). Empty where there is no such department.
 */
function kvStatiReparto(string $pagina, string $reparto): array
{
    $articoli = 'articoli' . $GLOBALS['Lingua'];
    $colonne = KV_COLONNE_REPARTI . ", (SELECT MAX(sottopagina) FROM $articoli WHERE pagina = '$pagina') AS ultima";
    foreach (kvNomiStati() as $n => $nome) {
        $colonne .= ", (SELECT valore FROM kv_stato WHERE nome = '$nome') AS s$n";
    }
    $esito = mysqli_query(kvConnessione(), "SELECT $colonne FROM categorie WHERE ID = '$reparto'");
    $riga = $esito instanceof mysqli_result ? mysqli_fetch_assoc($esito) : null;
    if ($riga === null) {
        return [];
    }
    $GLOBALS['kvRepartoPagina'] = $riga;
    $GLOBALS['kvUltimaPagina'] = [$pagina, $riga['ultima']];
    return array_filter(array_combine(kvNomiStati(), [$riga['s0'], $riga['s1'], $riga['s2'], $riga['s3']]), 'is_string');
}

/** Keeps the states of the load for what else this page asks of it: its index, and which tables of kvlegge.php it has left. */
function kvRicordaStati(array $stati): void
{
    $GLOBALS['kvStati'] = $stati;
    $GLOBALS['kvLaterali'] = isset($stati['laterali']) ? explode(',', $stati['laterali']) : false;
}

/**
 * Gives a page that is the same for all visitors a name by load, stock and address: a browser that has it asks by that
 * name, and gets a header instead of the page. Source: RFC 9110, sections 8.8.3 and 13.1.2.
 */
function kvPaginaNota(): void
{
    $file = (string) ($_SERVER['SCRIPT_FILENAME'] ?? '');
    if (!in_array($_SERVER['REQUEST_METHOD'] ?? '', ['GET', 'HEAD'], true) || isset($_COOKIE['kvstore_sessione' . kvNegozio()])
        || !preg_match(KV_PAGINE_COMUNI, basename($file))) {
        return;
    }
    $stati = preg_match('/^((cat\d+)\w*)\.php$/D', basename($file), $parti) ? kvStatiReparto($parti[1], $parti[2]) : [];
    $stati = $stati === [] ? kvStatiPagina() : $stati;
    if ($stati === []) {
        return;
    }
    kvRicordaStati($stati);
    $nome = '"' . substr(hash('sha256', json_encode($stati) . ($_SERVER['REQUEST_URI'] ?? '') . (int) kvProtetta()
        . (int) @filemtime($file)), 0, 24) . '"';
    header('ETag: ' . $nome);
    header('Cache-Control: private, no-cache');
    header('Vary: Cookie');
    if (trim((string) ($_SERVER['HTTP_IF_NONE_MATCH'] ?? '')) === $nome) {
        http_response_code(304);
        exit;
    }
}

/** Headers of every page, and the buffer of kvPaginaFinita. */
function kvPreparaRisposta(): void
{
    header('Content-Type: text/html; charset=windows-1252');
    header('X-Content-Type-Options: nosniff');
    header('Referrer-Policy: same-origin');
    header('Content-Security-Policy: ' . KV_POLITICA);
    $p3p = trim(str_replace(['\\"', "\\'", '"'], ['', "'", ''], <<<'KORVANE_VALORI'
<<1-compact_privacy_policy>>
KORVANE_VALORI
    ));
    if ($p3p !== '') {
        header('P3P: CP="' . preg_replace('/\s+/', ' ', $p3p) . '"');
    }
    kvPaginaNota();
    ob_start('kvPaginaFinita');
}

/**
 * A text of a form in UTF-8, trimmed, of at most `massimo` characters; empty when absent. Forms are sent as UTF-8 and say
 * so in `_charset_`; one of a merchant's own template may still come as Windows-1252, with references for what that lacks.
 * Source: HTML Living Standard, section 4.10.21.4 (the field _charset_).
 */
function kvCampo(array $modulo, string $nome, int $massimo = 200): string
{
    $valore = $modulo[$nome] ?? '';
    if (!is_string($valore)) {
        return '';
    }
    $insieme = $modulo['_charset_'] ?? '';
    $valore = kvTestoInviato($valore, is_string($insieme) && strcasecmp($insieme, 'utf-8') === 0);
    return rtrim(kvTaglia(trim(str_replace("\0", '', $valore)), $massimo));
}

/** The same on one line, as names, addresses and whatever reaches the head of a mail must be. */
function kvRigaCampo(array $modulo, string $nome, int $massimo = 200): string
{
    return trim(preg_replace('/[\x00-\x1f\x7f\x{85}\x{2028}\x{2029}]+/u', ' ', kvCampo($modulo, $nome, $massimo)));
}

/** Where the shop's cookies hold: the folder of its pages. */
function kvCartellaBiscotti(): string
{
    $cartella = str_replace('\\', '/', dirname((string) ($_SERVER['SCRIPT_NAME'] ?? '/')));
    return $cartella === '/' || $cartella === '.' ? '/' : rtrim($cartella, '/') . '/';
}

/** Whether the visitor's own connection is encrypted. */
function kvProtetta(): bool
{
    return !in_array(strtolower((string) ($_SERVER['HTTPS'] ?? '')), ['', 'off'], true);
}

/** Starts the session; without `nuova` only when the visitor has one, so that plain visits set no cookie. */
function kvSessione(bool $nuova = false): bool
{
    if (session_status() === PHP_SESSION_ACTIVE) {
        return true;
    }
    $nome = 'kvstore_sessione' . kvNegozio();
    if (isset($_COOKIE[$nome]) && (!is_string($_COOKIE[$nome])
        || !preg_match('/^[A-Za-z0-9,-]{16,250}$/', $_COOKIE[$nome]))) {
        unset($_COOKIE[$nome]);
    }
    if (!$nuova && !isset($_COOKIE[$nome])) {
        return false;
    }
    session_name($nome);
    session_set_cookie_params(['path' => kvCartellaBiscotti(), 'httponly' => true, 'samesite' => 'Lax',
        'secure' => kvProtetta()]);
    // A number that the server didn't give out itself opens nothing.
    return @session_start(['use_strict_mode' => 1, 'use_only_cookies' => 1, 'cache_limiter' => 'nocache']);
}

/** The session's form token: a form that changes something carries it and kvGettoneValido asks for it. */
function kvGettone(): string
{
    kvSessione(true);
    if (!headers_sent()) {
        // A form that acts for the visitor must not be clicked through another site's page.
        header('X-Frame-Options: SAMEORIGIN');
    }
    if (!isset($_SESSION['gettone'])) {
        $_SESSION['gettone'] = bin2hex(random_bytes(16));
        $_SESSION['gettone_ora'] = time();
    }
    return $_SESSION['gettone'];
}

/** A field that nobody sees and only a program fills. */
function kvCampoEsca(): string
{
    return '<div class="nascosto" aria-hidden="true"><label>' . kvHtml("<<4-lasciare_vuoto>>")
        . ' <input name="kv_sito" tabindex="-1" autocomplete="off"></label></div>';
}

function kvGettoneValido(): bool
{
    return kvSessione() && isset($_SESSION['gettone'])
        && hash_equals($_SESSION['gettone'], kvCampo($_POST, 'gettone', 64));
}

/** Leaves a notice for the next page that prints messages (output.php). It is HTML. */
function kvAvvisa(string $html): void
{
    if (kvSessione(true)) {
        $_SESSION['avviso'] = $html;
    }
}

/** Does something when the visitor has the answer already: what takes long, and what shouldn't show by its time. */
function kvDopoRisposta(callable $lavoro): void
{
    register_shutdown_function(function () use ($lavoro): void {
        ignore_user_abort(true);
        if (session_status() === PHP_SESSION_ACTIVE) {
            session_write_close();
        }
        if (!headers_sent() && http_response_code() === 303) {
            header('Content-Length: 0');
            header('Connection: close');
        }
        while (ob_get_level() > 0 && @ob_end_flush()) {
            continue;
        }
        flush();
        if (function_exists('fastcgi_finish_request')) {
            fastcgi_finish_request();
        }
        $lavoro();
    });
}

/** Ends with a page that says that there is none at this address. */
function kvNonTrovata(): void
{
    http_response_code(404);
    while (ob_get_level() > 1) {
        ob_end_clean();
    }
    ob_clean();
    extract($GLOBALS, EXTR_SKIP);
    $kvConferma = '<p class="avviso" role="status">' . kvHtml("<<4-pagina_inesistente>>") . '</p>';
    include "messaggio.htm";
    exit;
}

/** A whole page with one notice, for when nothing else can be shown. */
function kvPaginaSola(string $avviso): string
{
    return '<!DOCTYPE html><html lang="<<4-codice_lingua>>"><head><meta charset="windows-1252"><meta name="viewport"'
        . ' content="width=device-width, initial-scale=1"><meta name="robots" content="noindex"><title>'
        . kvHtml("<<4-messaggio>>") . '</title></head><body><main><h1>' . kvHtml("<<4-messaggio>>") . '</h1><p>'
        . kvHtml($avviso) . '</p><p><a href="">' . kvHtml("<<4-riprova>>") . '</a></p></main></body></html>';
}

/** Goes to another page of the shop and ends. */
function kvVai(string $pagina): void
{
    header('Location: ' . $pagina, true, 303);
    exit;
}

/**
 * The customer of the session: number, listino, personal discount in percent. All 0 for a visitor, and for one who
 * still waits for approval, whose number then stands in $clienteinattesa.
 */
function kvCliente(): array
{
    $GLOBALS['clienteinattesa'] = 0;
    if (!kvSessione() || !isset($_SESSION['cliente'])) {
        return [0, 0, 0];
    }
    $id = (int) $_SESSION['cliente'];
    $riga = kvRiga('SELECT listino, sconto, approvato, pw FROM kv_clienti WHERE id = ?', [$id]);
    // A changed password ends all other sessions of the customer.
    if ($riga === null || !hash_equals(kvSegnoPassword($riga['pw']), (string) ($_SESSION['segno'] ?? ''))) {
        unset($_SESSION['cliente'], $_SESSION['segno']);
        return [0, 0, 0];
    }
    if (!$riga['approvato']) {
        $GLOBALS['clienteinattesa'] = $id;
        return [0, 0, 0];
    }
    return [$id, max(0, min(9, (int) $riga['listino'])), max(0, min(100, (float) $riga['sconto']))];
}

/** What a session remembers of the customer's password: enough to notice a change of it, nothing to guess it by. */
function kvSegnoPassword(string $impronta): string
{
    return substr(hash('sha256', $impronta), 0, 16);
}

/** The customer's data for the order form; empty for a visitor. */
function LoadDatiCliente(): string
{
    include_once "kvaccount.php";
    return kvDatiCliente((int) $GLOBALS['cliente']);
}

/**
 * Whether each line of the visitor's cart can be bought: a letter for each, "1" or "0". The order page doesn't open with
 * a line that can't: the cart does, which says which one and why.
 */
function CheckDispCart(): string
{
    include_once "kvcart.php";
    $lettere = kvLettereCarrello();
    if (strpos($lettere, '0') !== false && basename((string) ($_SERVER['SCRIPT_NAME'] ?? '')) === "order.htm") {
        kvVai("cart.htm");
    }
    return $lettere;
}

/** The lines of the visitor's cart as cart and order page need them: JSON that may stand in a script element. */
function DatiCarrello(): string
{
    include_once "kvcart.php";
    return kvDatiCarrello();
}
