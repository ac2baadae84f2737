<?php
// What every page of the back office starts with: headers, session, the merchant's access, notices from page to page.
// The back office may stand anywhere on the host, so it uses no file of the shop's folder: kvcontext.php, kvutf8.php,
// kvdati.php, kvdb.php, kvmail.php, kvlimits.php, kvtables.php and kvupgrade.php beside it are copies that the packing of the data
// makes of the shop's own sources. Its own words and the catalogue's are Windows-1252, those of customers UTF-8: kvHtml and kvHtmlUtf8.
include_once __DIR__ . '/bo_impostazioni.php';
include_once __DIR__ . '/bo_pagina.php';

/** Seconds without a request after which the access ends, and seconds after which it ends anyway. */
const BO_INATTIVITA = 1800;
const BO_DURATA = 43200;

/** Whether the merchant has set both a user name and a password; without them nobody gets in. */
function boProtetto(): bool
{
    return boImpostazioni()['utente'] !== '' && boImpostazioni()['password'] !== '';
}

function boIntestazioni(): void
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
function boPaginaFinita(string $pagina): string
{
    $codice = http_response_code();
    return $codice >= 300 && $codice < 400 ? '' : $pagina;
}

// What kvdb.php shows when the database can't be reached: its own words are those of a visitor's language.
$GLOBALS['kvFailurePage'] = function (): string {
    return boPaginaChiusa('Il database del negozio non è raggiungibile: riprovare tra qualche minuto.');
};

/** Goes to another page of the back office and ends. */
function boVai(string $pagina): void
{
    header('Location: ' . $pagina, true, 303);
    exit;
}

/** Ends with a page that holds nothing but a notice. */
function boChiudi(int $codice, string $testo): void
{
    http_response_code($codice);
    die(boPaginaChiusa($testo));
}

function boApriSessione(): void
{
    session_name('kvstore_backoffice' . (int) kvNegozio());
    $cartella = rtrim(str_replace('\\', '/', dirname((string) ($_SERVER['SCRIPT_NAME'] ?? '/'))), '/');
    session_set_cookie_params(['path' => $cartella . '/', 'httponly' => true, 'samesite' => 'Strict',
        'secure' => kvIsEncrypted()]);
    $aperta = @session_start(['use_strict_mode' => 1, 'use_only_cookies' => 1, 'cache_limiter' => '',
        'gc_maxlifetime' => BO_INATTIVITA]);
    if (!$aperta) {
        boChiudi(503, 'Il server non conserva le sessioni: rivolgersi al gestore dello spazio web.');
    }
}

/** What a session remembers of the access data: other ones, set by a later build, end it. */
function boSegno(): string
{
    $dati = boImpostazioni();
    return hash('sha256', $dati['utente'] . "\n" . $dati['password'] . "\n" . kvNegozio());
}

/** Whether this session has access; one that was left alone for too long loses it, with a notice. */
function boEntrato(): bool
{
    $accesso = $_SESSION['backoffice'] ?? null;
    if (!boProtetto() || !is_array($accesso) || !hash_equals(boSegno(), (string) ($accesso['segno'] ?? ''))) {
        return false;
    }
    $adesso = time();
    if ($adesso - (int) $accesso['visto'] > BO_INATTIVITA || $adesso - (int) $accesso['inizio'] > BO_DURATA) {
        $_SESSION = [];
        session_regenerate_id(true);
        boAvvisa('La sessione è scaduta: accedere di nuovo.', true);
        return false;
    }
    $_SESSION['backoffice']['visto'] = $adesso;
    return true;
}

/** Gives the session access, under a fresh number and with a fresh token. */
function boEntra(): void
{
    session_regenerate_id(true);
    $_SESSION = ['backoffice' => ['segno' => boSegno(), 'inizio' => time(), 'visto' => time()]];
}

/** Sends whoever hasn't access to the first page, which asks for user and password. */
function boRiservata(): void
{
    if (!boEntrato()) {
        boVai('index.php');
    }
}

/** The token that each form of the session carries. */
function boGettone(): string
{
    if (!isset($_SESSION['gettone'])) {
        $_SESSION['gettone'] = bin2hex(random_bytes(16));
    }
    return $_SESSION['gettone'];
}

/** Whether a form was sent. One without the session's token ends the page: the merchant's own hand didn't send it. */
function boInvio(): bool
{
    if ($_SERVER['REQUEST_METHOD'] !== 'POST') {
        return false;
    }
    if (!isset($_SESSION['gettone']) || !hash_equals($_SESSION['gettone'], kvCampo($_POST, 'gettone', 64))) {
        boChiudi(403, 'La pagina è scaduta: tornare indietro, ricaricarla e ripetere l\'operazione.');
    }
    return true;
}

/** Leaves a notice for the next page that is shown. */
function boAvvisa(string $testo, bool $errore = false): void
{
    $_SESSION['avvisi'][] = [$testo, $errore];
}

/** A whole number of a request between two bounds; the lower one when it is none. */
function boNumero(array $modulo, string $nome, int $minimo, int $massimo): int
{
    $testo = kvCampo($modulo, $nome, 10);
    return max($minimo, min($massimo, preg_match('/^\d+$/D', $testo) ? (int) $testo : $minimo));
}

boIntestazioni();
ob_start('boPaginaFinita');
boApriSessione();
