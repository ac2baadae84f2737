<?php
// ***1.0.7***
// Registration in two steps: the form leaves a request and a link goes to the address; who opens it has the account. So
// an account's address is proven, and the answer to the form is the same, in the same time, whether it is known or not.

/** Takes the registration form. What differs for a known address happens when the visitor has the answer already. */
function kvRegister(string $email, string $pw): void
{
    kvCountAttemptOrEnd(kvAttemptsKey('registrazione', ''), 'registrazioni');
    kvRefusePrograms('kvGoToMessage', 14);
    $name = kvLineField($_POST, 'nome', 100);
    $surname = kvLineField($_POST, 'cognome', 100);
    if (!kvIsValidAddress($email) || kvLength($pw) < 8 || $name === '' || $surname === '' || !isset($_POST['privacy'])) {
        kvGoToMessage(2);
    }
    kvCountAttemptOrEnd(kvAccountKey('registrazione', $email), 'registrazioni_email');
    $data = ['nome' => $name, 'cognome' => $surname, 'pw' => password_hash($pw, PASSWORD_DEFAULT),
        'dopo' => kvCampo($_POST, 'dopo', 10)];
    kvAfterResponse(fn() => kvMailRegistration($email, $data));
    kvGoToMessage(13);
}

/** Mails the link that ends a registration; to a known address, that it has an account already. */
function kvMailRegistration(string $email, array $data): void
{
    kvRequireTables();
    $shop = kvSender();
    $subject = $shop['nome'] . ' - ' . kvUtf8("<<4-registrazione_titolo>>");
    $page = kvUtf8("<<1-perl_shopURL>>/login<<1-IDlingua>>.php");
    if (kvRiga('SELECT id FROM kv_clienti WHERE email = ?', [$email]) !== null) {
        kvMail($email, $shop['email'], $subject, kvUtf8("<<4-registrazione_doppia>>") . "\r\n\r\n$page\r\n\r\n"
            . $shop['firma']);
        return;
    }
    $token = bin2hex(random_bytes(24));
    kvQuery('INSERT INTO kv_richieste (email, creato, gettone, scade, stato, dati)'
        . " VALUES (?, NOW(), ?, NOW() + INTERVAL 1 DAY, 'registrazione', ?)",
        [$email, hash('sha256', $token), (string) json_encode($data)]);
    kvMail($email, $shop['email'], $subject, kvUtf8("<<4-registrazione_istruzioni>>") . "\r\n\r\n$page?r=$token\r\n\r\n"
        . $shop['firma']);
}

/** The registration that a token belongs to: email and dati; null when it is unknown, used or too old. */
function kvValidRegistration(string $token): ?array
{
    $row = preg_match('/^[0-9a-f]{48}$/D', $token) ? kvRiga("SELECT email, dati FROM kv_richieste WHERE gettone = ?"
        . " AND stato = 'registrazione' AND scade > NOW()", [hash('sha256', $token)]) : null;
    $data = json_decode((string) ($row['dati'] ?? ''), true);
    return is_array($data) ? ['email' => (string) $row['email'], 'dati' => $data] : null;
}

/** Ends a registration: the account is made, and its owner let in unless prices are for approved customers alone. */
function kvConfirmRegistration(string $token): void
{
    global $regpr;
    kvCountAttemptOrEnd(kvAttemptsKey('ripristino', ''), 'collegamenti');
    $request = kvValidRegistration($token);
    kvQuery("UPDATE kv_richieste SET stato = 'registrata', dati = '' WHERE gettone = ? AND stato = 'registrazione'",
        [hash('sha256', $token)]);
    if ($request === null || kvRigheToccate() !== 1) {
        kvGoToMessage(12);
    }
    list('email' => $email, 'dati' => $data) = $request;
    $approved = $regpr ? 0 : 1;
    kvRequireTables();
    $result = kvQuery('INSERT INTO kv_clienti (email, pw, nome, cognome, approvato, provato, lingua, creato)'
        . ' VALUES (?, ?, ?, ?, ?, 1, ?, NOW())',
        [$email, (string) $data['pw'], (string) $data['nome'], (string) $data['cognome'], $approved, "<<1-IDlingua>>"]);
    $row = $result === null ? null : kvRiga('SELECT id FROM kv_clienti WHERE email = ?', [$email]);
    if ($row === null) {
        kvGoToMessage(3);
    }
    if (!$approved) {
        $shop = kvSender();
        kvMail($shop['email'], $shop['email'], $shop['nome'] . ' - ' . kvUtf8("<<4-cliente_in_attesa>>"),
            kvUtf8("<<4-cliente_in_attesa>>: ") . "$data[nome] $data[cognome], $email", $email);
    }
    kvLogIn((int) $row['id'], (string) $data['pw'], (bool) $approved, (string) $data['dopo']);
}
