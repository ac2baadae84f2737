<?php
// ***1.0.7***
// Registration in two steps: the form leaves a request and a link goes to the address; who opens it has the account. So
// an account's address is proven, and the answer to the form is the same, in the same time, whether it is known or not.

/** Takes the registration form. What differs for a known address happens when the visitor has the answer already. */
function kvRegistrazione(string $email, string $pw): void
{
    kvContaTentativo(kvAttemptsKey('registrazione', ''), 'registrazioni');
    kvRefusePrograms('kvMessaggio', 14);
    $nome = kvLineField($_POST, 'nome', 100);
    $cognome = kvLineField($_POST, 'cognome', 100);
    if (!kvIndirizzoValido($email) || kvLength($pw) < 8 || $nome === '' || $cognome === '' || !isset($_POST['privacy'])) {
        kvMessaggio(2);
    }
    kvContaTentativo(kvAccountKey('registrazione', $email), 'registrazioni_email');
    $dati = ['nome' => $nome, 'cognome' => $cognome, 'pw' => password_hash($pw, PASSWORD_DEFAULT),
        'dopo' => kvCampo($_POST, 'dopo', 10)];
    kvAfterResponse(fn() => kvMandaRegistrazione($email, $dati));
    kvMessaggio(13);
}

/** Mails the link that ends a registration; to a known address, that it has an account already. */
function kvMandaRegistrazione(string $email, array $dati): void
{
    kvRequireTables();
    $negozio = kvMittente();
    $oggetto = $negozio['nome'] . ' - ' . kvUtf8("<<4-registrazione_titolo>>");
    $pagina = kvUtf8("<<1-perl_shopURL>>/login<<1-IDlingua>>.php");
    if (kvRiga('SELECT id FROM kv_clienti WHERE email = ?', [$email]) !== null) {
        kvMail($email, $negozio['email'], $oggetto, kvUtf8("<<4-registrazione_doppia>>") . "\r\n\r\n$pagina\r\n\r\n"
            . $negozio['firma']);
        return;
    }
    $gettone = bin2hex(random_bytes(24));
    kvQuery('INSERT INTO kv_richieste (email, creato, gettone, scade, stato, dati)'
        . " VALUES (?, NOW(), ?, NOW() + INTERVAL 1 DAY, 'registrazione', ?)",
        [$email, hash('sha256', $gettone), (string) json_encode($dati)]);
    kvMail($email, $negozio['email'], $oggetto, kvUtf8("<<4-registrazione_istruzioni>>") . "\r\n\r\n$pagina?r=$gettone\r\n\r\n"
        . $negozio['firma']);
}

/** The registration that a token belongs to: email and dati; null when it is unknown, used or too old. */
function kvRegistrazioneValida(string $gettone): ?array
{
    $riga = preg_match('/^[0-9a-f]{48}$/D', $gettone) ? kvRiga("SELECT email, dati FROM kv_richieste WHERE gettone = ?"
        . " AND stato = 'registrazione' AND scade > NOW()", [hash('sha256', $gettone)]) : null;
    $dati = json_decode((string) ($riga['dati'] ?? ''), true);
    return is_array($dati) ? ['email' => (string) $riga['email'], 'dati' => $dati] : null;
}

/** Ends a registration: the account is made, and its owner let in unless prices are for approved customers alone. */
function kvConfermaRegistrazione(string $gettone): void
{
    global $regpr;
    kvContaTentativo(kvAttemptsKey('ripristino', ''), 'collegamenti');
    $richiesta = kvRegistrazioneValida($gettone);
    kvQuery("UPDATE kv_richieste SET stato = 'registrata', dati = '' WHERE gettone = ? AND stato = 'registrazione'",
        [hash('sha256', $gettone)]);
    if ($richiesta === null || kvRigheToccate() !== 1) {
        kvMessaggio(12);
    }
    list('email' => $email, 'dati' => $dati) = $richiesta;
    $approvato = $regpr ? 0 : 1;
    kvRequireTables();
    $esito = kvQuery('INSERT INTO kv_clienti (email, pw, nome, cognome, approvato, provato, lingua, creato)'
        . ' VALUES (?, ?, ?, ?, ?, 1, ?, NOW())',
        [$email, (string) $dati['pw'], (string) $dati['nome'], (string) $dati['cognome'], $approvato, "<<1-IDlingua>>"]);
    $riga = $esito === null ? null : kvRiga('SELECT id FROM kv_clienti WHERE email = ?', [$email]);
    if ($riga === null) {
        kvMessaggio(3);
    }
    if (!$approvato) {
        $negozio = kvMittente();
        kvMail($negozio['email'], $negozio['email'], $negozio['nome'] . ' - ' . kvUtf8("<<4-cliente_in_attesa>>"),
            kvUtf8("<<4-cliente_in_attesa>>: ") . "$dati[nome] $dati[cognome], $email", $email);
    }
    kvEntra((int) $riga['id'], (string) $dati['pw'], (bool) $approvato, (string) $dati['dopo']);
}
