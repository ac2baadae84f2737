<?php
// ***1.0.7***
// What surrounds a page: the request's values, the answer's headers, the session, and the one escape function for
// texts that go into HTML. Texts are Windows-1252; what a visitor typed beyond it arrives from the browser as numeric
// references (&#322;), which stay whole through all of this.

/** A text as HTML: the only way in which a visitor's words reach a page. */
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

/** Code points of the bytes 80 to 9F of Windows-1252. Source: the table of the WHATWG Encoding Standard. */
const KV_CP1252 = [0x20AC, 0x81, 0x201A, 0x192, 0x201E, 0x2026, 0x2020, 0x2021, 0x2C6, 0x2030, 0x160, 0x2039, 0x152,
    0x8D, 0x17D, 0x8F, 0x90, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x2DC, 0x2122, 0x161, 0x203A,
    0x153, 0x9D, 0x17E, 0x178];

/** A text in UTF-8, as JSON, mails and cookies want it; numeric references become their letters. */
function kvUtf8(string $testo): string
{
    static $lettere = [];
    if ($lettere === []) {
        for ($byte = 0x80; $byte < 0x100; $byte++) {
            $lettere[chr($byte)] = kvLettera($byte < 0xA0 ? KV_CP1252[$byte - 0x80] : $byte);
        }
    }
    if (preg_match('/[\x80-\xFF]/', $testo)) {
        $testo = strtr($testo, $lettere);
    }
    return strpos($testo, '&#') === false ? $testo
        : preg_replace_callback('/&#(\d{2,7});/', fn($n) => kvLettera((int) $n[1]), $testo);
}

/** The UTF-8 letter of a code point; nothing for one that is none or steers the text. Source: RFC 3629, section 3. */
function kvLettera(int $punto): string
{
    if ($punto < 0x20 || $punto === 0x7F || ($punto >= 0xD800 && $punto < 0xE000) || $punto > 0x10FFFF) {
        return '';
    }
    if ($punto < 0x80) {
        return chr($punto);
    }
    if ($punto < 0x800) {
        return chr(0xC0 | $punto >> 6) . chr(0x80 | $punto & 0x3F);
    }
    $coda = chr(0x80 | $punto >> 6 & 0x3F) . chr(0x80 | $punto & 0x3F);
    return $punto < 0x10000 ? chr(0xE0 | $punto >> 12) . $coda
        : chr(0xF0 | $punto >> 18) . chr(0x80 | $punto >> 12 & 0x3F) . $coda;
}

/** The number that tells this shop from others on the same host. */
function kvNegozio(): string
{
    return (string) (int) "<<1-IDnegozio>>";
}

/**
 * Gives the request's values the names that the generated pages read. `n` and `prod` reach SQL: they are always
 * there and always whole numbers.
 */
function kvPreparaRichiesta(): void
{
    foreach (['n', 'prod'] as $nome) {
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

/** Headers of every page, and the buffer of kvPaginaFinita. */
function kvPreparaRisposta(): void
{
    header('Content-Type: text/html; charset=windows-1252');
    header('X-Content-Type-Options: nosniff');
    header('Referrer-Policy: same-origin');
    $p3p = trim(str_replace(['\\"', "\\'", '"'], ['', "'", ''], <<<'KORVANE_VALORI'
<<1-compact_privacy_policy>>
KORVANE_VALORI
    ));
    if ($p3p !== '') {
        header('P3P: CP="' . preg_replace('/\s+/', ' ', $p3p) . '"');
    }
    ob_start('kvPaginaFinita');
}

/** A text of a form, trimmed, of at most `massimo` bytes; empty when absent. Browsers send it as Windows-1252. */
function kvCampo(array $modulo, string $nome, int $massimo = 200): string
{
    $valore = $modulo[$nome] ?? '';
    return is_string($valore) ? rtrim(substr(trim(str_replace("\0", '', $valore)), 0, $massimo)) : '';
}

/** The same on one line, as names, addresses and whatever reaches the head of a mail must be. */
function kvRigaCampo(array $modulo, string $nome, int $massimo = 200): string
{
    return trim(preg_replace('/[\x00-\x1f\x7f]+/', ' ', kvCampo($modulo, $nome, $massimo)));
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
    }
    return $_SESSION['gettone'];
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

/** Whether each line of the visitor's cart can be bought: a letter for each, "1" or "0". */
function CheckDispCart(): string
{
    include_once "kvcart.php";
    return kvLettereCarrello();
}

/** The lines of the visitor's cart as cart and order page need them: JSON that may stand in a script element. */
function DatiCarrello(): string
{
    include_once "kvcart.php";
    return kvDatiCarrello();
}
