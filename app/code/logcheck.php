<?php
// ***1.0.7***
// Access, registration and leaving. Every answer is a redirection, to the shop or to the login page with a message.
include "funcs.php";

/** Back to the login page with the message of a number. */
function kvMessaggio(int $numero): void
{
    header("Location: login<<1-IDlingua>>.php?m=" . $numero, true, 303);
    exit;
}

/** Opens the customer's session under a fresh session number. */
function kvEntra(int $id): void
{
    session_regenerate_id(true);
    $_SESSION['cliente'] = $id;
    unset($_SESSION['gettone'], $_SESSION['tentativi']);
    header("Location: index<<1-IDlingua>>.php", true, 303);
    exit;
}

/** Access with address and password. A wrong pair costs time, and more of it with each attempt of the session. */
function kvAccesso(string $email, string $pw): void
{
    $riga = kvRiga('SELECT id, pw FROM kv_clienti WHERE email = ?', [$email]);
    // An unknown address is checked against a fixed hash, so that both answers take the same time.
    $segno = $riga['pw'] ?? '$2y$10$dHKUwezJEPkiCbbCBpyIyewdj/VZnjbaUhH9QqxTXvkaE04HJYQTe';
    if (password_verify($pw, $segno) && $riga !== null) {
        kvEntra((int) $riga['id']);
    }
    $_SESSION['tentativi'] = min(8, (int) ($_SESSION['tentativi'] ?? 0) + 1);
    usleep(250000 * $_SESSION['tentativi']);
    kvMessaggio(1);
}

function kvRegistrazione(string $email, string $pw): void
{
    $nome = kvCampo($_POST, 'nome', 100);
    $cognome = kvCampo($_POST, 'cognome', 100);
    $valida = filter_var($email, FILTER_VALIDATE_EMAIL) !== false && strlen($pw) >= 8;
    if (!$valida || $nome === '' || $cognome === '' || !isset($_POST['privacy'])) {
        kvMessaggio(2);
    }
    if (kvRiga('SELECT id FROM kv_clienti WHERE email = ?', [$email]) !== null) {
        kvMessaggio(3);
    }
    $esito = kvQuery('INSERT INTO kv_clienti (email, pw, nome, cognome, creato) VALUES (?, ?, ?, ?, NOW())',
        [$email, password_hash($pw, PASSWORD_DEFAULT), $nome, $cognome]);
    if ($esito === null) {
        kvMessaggio(3);
    }
    kvEntra((int) kvRiga('SELECT id FROM kv_clienti WHERE email = ?', [$email])['id']);
}

if ($_SERVER['REQUEST_METHOD'] !== 'POST' || !kvGettoneValido()) {
    kvMessaggio(4);
}
kvTabelle();
$kvEmail = strtolower(kvCampo($_POST, 'email', 190));
$kvPw = isset($_POST['pw']) && is_string($_POST['pw']) ? substr($_POST['pw'], 0, 100) : '';
switch (kvCampo($_POST, 'azione', 20)) {
    case 'entra':
        kvAccesso($kvEmail, $kvPw);
        break;
    case 'registra':
        kvRegistrazione($kvEmail, $kvPw);
        break;
    default:
        $_SESSION = [];
        session_destroy();
        header("Location: index<<1-IDlingua>>.php", true, 303);
}
