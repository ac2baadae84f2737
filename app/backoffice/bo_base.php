<?php
// What every page of the back office starts with: headers, session, the merchant's access, notices from page to page.
// The back office may be anywhere on the host, so it uses no file of the shop's folder: kvcontext.php, kvutf8.php,
// kvdati.php, kvdb.php, kvmail.php, kvlimits.php, kvtables.php and kvupgrade.php beside it are copies that the packing of the data
// makes of the shop's own sources. Its own words and the catalogue's are Windows-1252, those of customers UTF-8: kvHtml and kvHtmlUtf8.
include_once __DIR__ . '/bo_impostazioni.php';
include_once __DIR__ . '/bo_pagina.php';

/** Seconds without a request after which the access ends, and seconds after which it ends anyway. */
const BO_IDLE_TIME = 1800;
const BO_SESSION_TIME = 43200;

/** Whether the merchant has set both a user name and a password; without them nobody gets in. */
function boIsProtected(): bool
{
    return boSettings()['utente'] !== '' && boSettings()['password'] !== '';
}

function boSendHeaders(): void
{
    ini_set('display_errors', '0');
    header('Content-Type: text/html; charset=windows-1252');
    header('X-Content-Type-Options: nosniff');
    header('X-Frame-Options: DENY');
    header('X-Robots-Tag: noindex, nofollow');
    header('Referrer-Policy: same-origin');
    header('Cache-Control: no-store');
    header("Content-Security-Policy: default-src 'none'; style-src 'self'; script-src 'self'; img-src 'self';"
        . " form-action 'self'; base-uri 'none'; frame-ancestors 'none'");
}

/** The buffered page; a page that leads elsewhere has no text. */
function boFinishedPage(string $page): string
{
    $code = http_response_code();
    return $code >= 300 && $code < 400 ? '' : $page;
}

// What kvdb.php shows when the database can't be reached: its own words are those of a visitor's language.
$GLOBALS['kvFailurePage'] = function (): string {
    return boClosedPage('Il database del negozio non è raggiungibile: riprovare tra qualche minuto.');
};

/** Goes to another page of the back office and ends. */
function boGoTo(string $page): void
{
    header('Location: ' . $page, true, 303);
    exit;
}

/** Ends with a page that holds nothing but a notice. */
function boCloseWith(int $code, string $text): void
{
    http_response_code($code);
    die(boClosedPage($text));
}

function boOpenSession(): void
{
    session_name('kvstore_backoffice' . (int) kvShopNumber());
    $folder = rtrim(str_replace('\\', '/', dirname((string) ($_SERVER['SCRIPT_NAME'] ?? '/'))), '/');
    session_set_cookie_params(['path' => $folder . '/', 'httponly' => true, 'samesite' => 'Strict',
        'secure' => kvIsEncrypted()]);
    $opened = @session_start(['use_strict_mode' => 1, 'use_only_cookies' => 1, 'cache_limiter' => '',
        'gc_maxlifetime' => BO_IDLE_TIME]);
    if (!$opened) {
        boCloseWith(503, 'Il server non conserva le sessioni: rivolgersi al gestore dello spazio web.');
    }
}

/** What a session remembers of the access data: other ones, set by a later build, end it. */
function boAccessMark(): string
{
    $data = boSettings();
    return hash('sha256', $data['utente'] . "\n" . $data['password'] . "\n" . kvShopNumber());
}

/** Whether this session has access; one that was left alone for too long loses it, with a notice. */
function boHasAccess(): bool
{
    $access = $_SESSION['backoffice'] ?? null;
    if (!boIsProtected() || !is_array($access) || !hash_equals(boAccessMark(), (string) ($access['segno'] ?? ''))) {
        return false;
    }
    $now = time();
    if ($now - (int) $access['visto'] > BO_IDLE_TIME || $now - (int) $access['inizio'] > BO_SESSION_TIME) {
        $_SESSION = [];
        session_regenerate_id(true);
        boNotify('La sessione è scaduta: accedere di nuovo.', true);
        return false;
    }
    $_SESSION['backoffice']['visto'] = $now;
    return true;
}

/** Gives the session access, under a fresh number and with a fresh token. */
function boLogIn(): void
{
    session_regenerate_id(true);
    $_SESSION = ['backoffice' => ['segno' => boAccessMark(), 'inizio' => time(), 'visto' => time()]];
}

/** Sends whoever hasn't access to the first page, which asks for user and password. */
function boRequireAccess(): void
{
    if (!boHasAccess()) {
        boGoTo('index.php');
    }
}

/** The token that each form of the session carries. */
function boToken(): string
{
    if (!isset($_SESSION['gettone'])) {
        $_SESSION['gettone'] = bin2hex(random_bytes(16));
    }
    return $_SESSION['gettone'];
}

/** Whether a form was sent. One without the session's token ends the page: the merchant's own hand didn't send it. */
function boIsSubmitted(): bool
{
    if ($_SERVER['REQUEST_METHOD'] !== 'POST') {
        return false;
    }
    if (!isset($_SESSION['gettone']) || !hash_equals($_SESSION['gettone'], kvCampo($_POST, 'gettone', 64))) {
        boCloseWith(403, 'La pagina è scaduta: tornare indietro, ricaricarla e ripetere l\'operazione.');
    }
    return true;
}

/** Leaves a notice for the next page that is shown. */
function boNotify(string $text, bool $error = false): void
{
    $_SESSION['avvisi'][] = [$text, $error];
}

/** A whole number of a request between two bounds; the lower one when it is none. */
function boNumberWithin(array $form, string $name, int $least, int $most): int
{
    $text = kvCampo($form, $name, 10);
    return max($least, min($most, preg_match('/^\d+$/D', $text) ? (int) $text : $least));
}

boSendHeaders();
ob_start('boFinishedPage');
boOpenSession();
