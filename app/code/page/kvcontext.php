<?php
// ***1.0.7***
// What surrounds a page: the request's values, the answer's headers, the session, and the escape function for texts
// that go into HTML. Pages and catalogue are Windows-1252; what a visitor typed is UTF-8 from the form to the mail, see
// kvutf8.php.
include_once "kvutf8.php";

/** A text of the catalogue or of a module as HTML; numeric references in it stay what they are. */
function kvHtml(?string $text): string
{
    $html = htmlspecialchars((string) $text, ENT_QUOTES | ENT_SUBSTITUTE, 'cp1252');
    return strpos($html, '&amp;#') === false ? $html : preg_replace('/&amp;(#\d{2,7};)/', '&$1', $html);
}

/** A text of the merchant as HTML: as it is when it holds tags, else escaped. */
function kvTextHtml(?string $text): string
{
    return preg_match('/<.*>/s', (string) $text) ? (string) $text : kvHtml($text);
}

/** The words of a piece of HTML, on one line, as HTML text. For <title> and attributes. */
function TestoSemplice(string $html): string
{
    $words = strpbrk($html, '<&') === false ? $html : html_entity_decode(strip_tags($html), ENT_QUOTES, 'cp1252');
    return kvHtml(trim(preg_replace('/\s+/', ' ', $words)));
}

/** The number that tells this shop from others on the same host. */
function kvShopNumber(): string
{
    return (string) (int) "<<1-IDnegozio>>";
}

/**
 * Gives the request's values the names that the generated pages read. `n` and `prod` reach SQL: they are always
 * there and always whole numbers. $kvWrong tells that one of them was none that a page can have.
 */
function kvPrepareRequest(): void
{
    $GLOBALS['kvWrong'] = false;
    foreach (['n', 'prod'] as $name) {
        $given = $_GET[$name] ?? '';
        $GLOBALS['kvWrong'] = $GLOBALS['kvWrong'] || !is_string($given) || !preg_match('/^(?:[1-9]\d{0,8})?$/D', $given);
        $_GET[$name] = isset($_GET[$name]) && is_string($_GET[$name]) ? (int) $_GET[$name] : 0;
    }
    $GLOBALS['HTTP_GET_VARS'] = $_GET;
    $GLOBALS['HTTP_POST_VARS'] = $_POST;
    $GLOBALS['HTTP_COOKIE_VARS'] = $_COOKIE;
    $GLOBALS['HTTP_SERVER_VARS'] = $_SERVER;
    $GLOBALS['HTTP_POST_FILES'] = $_FILES;
    $GLOBALS['HTTP_ENV_VARS'] = $_ENV;
}

/** The buffered page; nothing of it when it turned out to be a redirection. */
function kvFinishedPage(string $page): string
{
    $code = http_response_code();
    return $code >= 300 && $code < 400 ? '' : $page;
}

/**
 * What a page may load and which frames may hold it. Pages of the build have scripts and styles in their text, merchants show
 * pictures and films from elsewhere, payment services take forms: the policy forbids all the rest. Source: CSP Level 3.
 */
const KV_POLICY = "default-src 'self'; script-src 'self' 'unsafe-inline'; style-src 'self' 'unsafe-inline';"
    . " img-src 'self' data: https:; media-src 'self' https:; frame-src 'self' https:; object-src 'none'; base-uri 'self';"
    . " form-action 'self' https: http://127.0.0.1:* http://localhost:*; frame-ancestors 'self'";

/** Pages that are the same for all visitors without a session, but for what the catalogue and the stock bring. */
const KV_COMMON_PAGES = '/^(?:cat\d+|index|condizioni|recesso|datipers|search)(?:_l[2-4])?\.php$/D';

/** The states of the load by which a page is known. */
function kvStateNames(): array
{
    return ['carico', 'indice' . $GLOBALS['Lingua'], 'laterali', 'scorte'];
}

/** The values of these states, by their names; empty without any. */
function kvPageStates(): array
{
    $result = mysqli_query(kvConnection(), "SELECT nome, valore FROM kv_stato WHERE nome IN ('" . implode("', '", kvStateNames()) . "')");
    $states = $result instanceof mysqli_result ? array_column(mysqli_fetch_all($result), 1, 0) : [];
    ksort($states);
    return $states;
}

/**
 * The same for a department page, and with them, for a question of its own would take as long: the department
 * ($kvPageDepartment) and the number of its last sub-page ($kvLastPage). Empty where there is no such department.
 */
function kvDepartmentStates(string $page, string $department): array
{
    $articles = 'articoli' . $GLOBALS['Lingua'];
    $columns = KV_DEPARTMENT_COLUMNS . ", (SELECT MAX(sottopagina) FROM $articles WHERE pagina = '$page') AS ultima";
    foreach (kvStateNames() as $n => $name) {
        $columns .= ", (SELECT valore FROM kv_stato WHERE nome = '$name') AS s$n";
    }
    $result = mysqli_query(kvConnection(), "SELECT $columns FROM categorie WHERE ID = '$department'");
    $row = $result instanceof mysqli_result ? mysqli_fetch_assoc($result) : null;
    if ($row === null) {
        return [];
    }
    $GLOBALS['kvPageDepartment'] = $row;
    $GLOBALS['kvLastPage'] = [$page, $row['ultima']];
    return array_filter(array_combine(kvStateNames(), [$row['s0'], $row['s1'], $row['s2'], $row['s3']]), 'is_string');
}

/** Keeps the states of the load for what else this page asks of it: its index, and which tables of kvlegge.php it has left. */
function kvRememberStates(array $states): void
{
    $GLOBALS['kvStates'] = $states;
    $GLOBALS['kvSideTables'] = isset($states['laterali']) ? explode(',', $states['laterali']) : false;
}

/**
 * Gives a page that is the same for all visitors a name by load, stock and address: a browser that has it asks by that
 * name, and gets a header instead of the page. Source: RFC 9110, sections 8.8.3 and 13.1.2.
 */
function kvCachePage(): void
{
    $file = (string) ($_SERVER['SCRIPT_FILENAME'] ?? '');
    if (!in_array($_SERVER['REQUEST_METHOD'] ?? '', ['GET', 'HEAD'], true) || isset($_COOKIE['kvstore_sessione' . kvShopNumber()])
        || !preg_match(KV_COMMON_PAGES, basename($file))) {
        return;
    }
    $states = preg_match('/^((cat\d+)\w*)\.php$/D', basename($file), $parts) ? kvDepartmentStates($parts[1], $parts[2]) : [];
    $states = $states === [] ? kvPageStates() : $states;
    if ($states === []) {
        return;
    }
    kvRememberStates($states);
    $name = '"' . substr(hash('sha256', json_encode($states) . ($_SERVER['REQUEST_URI'] ?? '') . (int) kvIsEncrypted()
        . (int) @filemtime($file)), 0, 24) . '"';
    header('ETag: ' . $name);
    header('Cache-Control: private, no-cache');
    header('Vary: Cookie');
    if (trim((string) ($_SERVER['HTTP_IF_NONE_MATCH'] ?? '')) === $name) {
        http_response_code(304);
        exit;
    }
}

/** Headers of every page, and the buffer of kvFinishedPage. */
function kvPrepareResponse(): void
{
    header('Content-Type: text/html; charset=windows-1252');
    header('X-Content-Type-Options: nosniff');
    header('Referrer-Policy: same-origin');
    header('Content-Security-Policy: ' . KV_POLICY);
    $p3p = trim(str_replace(['\\"', "\\'", '"'], ['', "'", ''], <<<'KORVANE_VALORI'
<<1-compact_privacy_policy>>
KORVANE_VALORI
    ));
    if ($p3p !== '') {
        header('P3P: CP="' . preg_replace('/\s+/', ' ', $p3p) . '"');
    }
    kvCachePage();
    ob_start('kvFinishedPage');
}

/**
 * A text of a form in UTF-8, trimmed, of at most `most` characters; empty when absent. Forms are sent as UTF-8 and say
 * so in `_charset_`; one of a merchant's own template may still come as Windows-1252, with references for what that lacks.
 * Source: HTML Living Standard, section 4.10.21.4 (the field _charset_).
 */
function kvCampo(array $form, string $name, int $most = 200): string
{
    $value = $form[$name] ?? '';
    if (!is_string($value)) {
        return '';
    }
    $charset = $form['_charset_'] ?? '';
    $value = kvSentText($value, is_string($charset) && strcasecmp($charset, 'utf-8') === 0);
    return rtrim(kvCut(trim(str_replace("\0", '', $value)), $most));
}

/** The same on one line, as names, addresses and whatever reaches the head of a mail must be. */
function kvLineField(array $form, string $name, int $most = 200): string
{
    return trim(preg_replace('/[\x00-\x1f\x7f\x{85}\x{2028}\x{2029}]+/u', ' ', kvCampo($form, $name, $most)));
}

/** A password of a form as it was typed, of at most 100 characters. A zero byte, which nobody types, makes no hash. */
function kvPassword(string $name): string
{
    return isset($_POST[$name]) && is_string($_POST[$name])
        ? kvCut(kvSentText(str_replace("\0", '', $_POST[$name]), true), 100) : '';
}

/** Where the shop's cookies hold: the folder of its pages. */
function kvCookieFolder(): string
{
    $folder = str_replace('\\', '/', dirname((string) ($_SERVER['SCRIPT_NAME'] ?? '/')));
    return $folder === '/' || $folder === '.' ? '/' : rtrim($folder, '/') . '/';
}

/** Whether the visitor's own connection is encrypted. */
function kvIsEncrypted(): bool
{
    return !in_array(strtolower((string) ($_SERVER['HTTPS'] ?? '')), ['', 'off'], true);
}

/** Starts the session; without `isNew` only when the visitor has one, so that plain visits set no cookie. */
function kvStartSession(bool $isNew = false): bool
{
    if (session_status() === PHP_SESSION_ACTIVE) {
        return true;
    }
    $name = 'kvstore_sessione' . kvShopNumber();
    if (isset($_COOKIE[$name]) && (!is_string($_COOKIE[$name])
        || !preg_match('/^[A-Za-z0-9,-]{16,250}$/', $_COOKIE[$name]))) {
        unset($_COOKIE[$name]);
    }
    if (!$isNew && !isset($_COOKIE[$name])) {
        return false;
    }
    session_name($name);
    session_set_cookie_params(['path' => kvCookieFolder(), 'httponly' => true, 'samesite' => 'Lax',
        'secure' => kvIsEncrypted()]);
    // A number that the server didn't give out itself opens nothing.
    return @session_start(['use_strict_mode' => 1, 'use_only_cookies' => 1, 'cache_limiter' => 'nocache']);
}

/** The session's form token: a form that changes something carries it and kvIsTokenValid asks for it. */
function kvGettone(): string
{
    kvStartSession(true);
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

function kvIsTokenValid(): bool
{
    return kvStartSession() && isset($_SESSION['gettone'])
        && hash_equals($_SESSION['gettone'], kvCampo($_POST, 'gettone', 64));
}

/** Leaves a notice for the next page that prints messages (output.php). It is HTML. */
function kvNotify(string $html): void
{
    if (kvStartSession(true)) {
        $_SESSION['avviso'] = $html;
    }
}

/** Does something when the visitor has the answer already: what takes long, and what shouldn't show by its time. */
function kvAfterResponse(callable $task): void
{
    register_shutdown_function(function () use ($task): void {
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
        $task();
    });
}

/** Ends with a page that says that there is none at this address. */
function kvNotFound(): void
{
    http_response_code(404);
    while (ob_get_level() > 1) {
        ob_end_clean();
    }
    ob_clean();
    extract($GLOBALS, EXTR_SKIP);
    $kvTitoloPagina = "<<4-pagina_non_trovata>>";
    $kvConfirmation = '<p class="avviso" role="status">' . kvHtml("<<4-pagina_inesistente>>") . '</p>';
    include "messaggio.htm";
    exit;
}

/** A whole page with one notice, for when nothing else can be shown. */
function kvNoticePage(string $notice): string
{
    return '<!DOCTYPE html><html lang="<<4-codice_lingua>>"><head><meta charset="windows-1252"><meta name="viewport"'
        . ' content="width=device-width, initial-scale=1"><meta name="robots" content="noindex"><title>'
        . kvHtml("<<4-messaggio>>") . '</title></head><body><main><h1>' . kvHtml("<<4-messaggio>>") . '</h1><p>'
        . kvHtml($notice) . '</p><p><a href="">' . kvHtml("<<4-riprova>>") . '</a></p></main></body></html>';
}

/** Goes to another page of the shop and ends. */
function kvGoTo(string $page): void
{
    header('Location: ' . $page, true, 303);
    exit;
}

/**
 * The customer of the session: number, listino, personal discount in percent. All 0 for a visitor, and for one who
 * still waits for approval, whose number is then in $clienteinattesa.
 */
function kvCustomer(): array
{
    $GLOBALS['clienteinattesa'] = 0;
    if (!kvStartSession() || !isset($_SESSION['cliente'])) {
        return [0, 0, 0];
    }
    $id = (int) $_SESSION['cliente'];
    $row = kvRiga('SELECT listino, sconto, approvato, pw FROM kv_clienti WHERE id = ?', [$id]);
    // A changed password ends all other sessions of the customer.
    if ($row === null || !hash_equals(kvPasswordMark($row['pw']), (string) ($_SESSION['segno'] ?? ''))) {
        unset($_SESSION['cliente'], $_SESSION['segno']);
        return [0, 0, 0];
    }
    if (!$row['approvato']) {
        $GLOBALS['clienteinattesa'] = $id;
        return [0, 0, 0];
    }
    return [$id, max(0, min(9, (int) $row['listino'])), max(0, min(100, (float) $row['sconto']))];
}

/** What a session remembers of the customer's password: enough to notice a change of it, nothing to guess it by. */
function kvPasswordMark(string $hash): string
{
    return substr(hash('sha256', $hash), 0, 16);
}

/** The customer's data for the order form; empty for a visitor. */
function LoadDatiCliente(): string
{
    include_once "kvaccount.php";
    return kvCustomerCookie((int) $GLOBALS['cliente']);
}

/**
 * Whether each line of the visitor's cart can be bought: a character for each, "1" or "0". The order page doesn't open with
 * a line that can't: the cart does, which says which one and why.
 */
function CheckDispCart(): string
{
    include_once "kvcart.php";
    $characters = kvCartCharacters();
    if (strpos($characters, '0') !== false && basename((string) ($_SERVER['SCRIPT_NAME'] ?? '')) === "order.htm") {
        kvGoTo("cart.htm");
    }
    return $characters;
}

/** The lines of the visitor's cart as cart and order page need them: JSON that may be in a script element. */
function DatiCarrello(): string
{
    include_once "kvcart.php";
    return kvCartData();
}
