<?php
// ***1.0.7***
// Customers: their data, access, registration, a forgotten password. logcheck.php takes what the forms of lognew.php
// send; attempts are counted in kv_tentativi.
include_once "kvtables.php";
include_once "kvmail.php";
include_once "kvregister.php";
include_once "kvdati.php";

/** The data of a customer that forms show, by column: the field of the order form and the longest text. */
const KV_DATI_CLIENTE = [
    'nome' => ['Nome', 100], 'cognome' => ['Cognome', 100], 'rsoc' => ['RagioneSociale', 200],
    'piva' => ['PartitaIVA', 40], 'indirizzo' => ['Indirizzo', 200], 'cap' => ['CAP', 20], 'citta' => ['Citta', 100],
    'provincia' => ['Provincia', 60], 'paese' => ['Paese', 60], 'telefono' => ['Telefono', 60],
];

/** The number of the customer in this session, whether approved or not; 0 for a visitor. */
function kvClienteSessione(): int
{
    return $GLOBALS['cliente'] > 0 ? (int) $GLOBALS['cliente'] : (int) $GLOBALS['clienteinattesa'];
}

function kvRigaCliente(int $id): ?array
{
    return $id === 0 ? null : kvRiga('SELECT * FROM kv_clienti WHERE id = ?', [$id]);
}

/**
 * The customer's data for the cookie that CaricaDati reads: name=value pairs, percent-coded, joined by "|"; empty for a
 * visitor. A cookie holds about 4000 letters: what would go beyond stays out.
 */
function kvDatiCliente(int $id): string
{
    $riga = kvRigaCliente($id);
    $coppie = [];
    $lungo = 0;
    foreach ($riga === null ? [] : array_merge(array_keys(KV_DATI_CLIENTE), ['email']) as $nome) {
        $coppia = $nome . '=' . rawurlencode((string) $riga[$nome]);
        $lungo += strlen($coppia) + 1;
        if ($lungo < 3800) {
            $coppie[] = $coppia;
        }
    }
    return implode('|', $coppie);
}

/** Back to the login page with the message of a number. */
function kvMessaggio(int $numero, string $altro = ''): void
{
    kvGoTo("login<<1-IDlingua>>.php?m=" . $numero . $altro);
}

/** Ends with a message when there were too many attempts; else counts one. */
function kvContaTentativo(string $chiave, string $limite): void
{
    if (!kvAdmitAttempt($chiave, $limite)) {
        kvMessaggio(6);
    }
}

/** Opens the customer's session under a fresh session number. */
function kvApriSessione(int $id, string $impronta): void
{
    session_regenerate_id(true);
    $_SESSION['cliente'] = $id;
    $_SESSION['segno'] = kvPasswordMark($impronta);
    unset($_SESSION['gettone']);
}

/** Lets a customer in: on to the shop or to the order, or back with a notice while approval is missing. */
function kvEntra(int $id, string $impronta, bool $approvato, string $dopo): void
{
    kvApriSessione($id, $impronta);
    if (!$approvato) {
        kvMessaggio(5);
    }
    kvGoTo($dopo === 'ordine' ? "order.htm" : "index.htm");
}

/** Whether a password has a hash; earlier releases made it of Windows-1252. */
function kvPasswordGiusta(string $pw, string $impronta): bool
{
    return password_verify($pw, $impronta)
        || (preg_match('/[\x80-\xFF]/', $pw) && password_verify(kvFromUtf8($pw), $impronta));
}

/** Access with address and password. */
function kvAccesso(string $email, string $pw): void
{
    $chiave = kvAttemptsKey('negozio', $email);
    $indirizzo = kvAttemptsKey('negozio', '');
    kvContaTentativo($chiave, 'accessi_conto');
    kvContaTentativo($indirizzo, 'accessi');
    $riga = kvRiga('SELECT id, pw, approvato FROM kv_clienti WHERE email = ?', [$email]);
    // An unknown address is checked against a fixed hash, as costly as PHP makes those of this host, so that both answers
    // take the same time.
    $impronta = $riga['pw'] ?? sprintf('$2y$%02d$', PASSWORD_BCRYPT_DEFAULT_COST)
        . 'dHKUwezJEPkiCbbCBpyIyewdj/VZnjbaUhH9QqxTXvkaE04HJYQTe';
    if (!kvPasswordGiusta($pw, $impronta) || $riga === null) {
        kvMessaggio(1);
    }
    kvForgetAttempts($chiave);
    kvForgetAttempt($indirizzo);
    if (password_needs_rehash($impronta, PASSWORD_DEFAULT)) {
        $impronta = password_hash($pw, PASSWORD_DEFAULT);
        kvQuery('UPDATE kv_clienti SET pw = ? WHERE id = ?', [$impronta, (int) $riga['id']]);
    }
    kvEntra((int) $riga['id'], $impronta, (bool) $riga['approvato'], kvCampo($_POST, 'dopo', 10));
}

/** The customer's own data. */
function kvCambiaDati(): void
{
    $id = kvClienteSessione();
    if ($id === 0) {
        kvMessaggio(4);
    }
    kvRequireTables();
    $colonne = [];
    $valori = [];
    foreach (KV_DATI_CLIENTE as $nome => list(, $massimo)) {
        $colonne[] = $nome . ' = ?';
        $valori[] = kvLineField($_POST, $nome, $massimo);
    }
    if (kvCampo($_POST, 'nome') === '' || kvCampo($_POST, 'cognome') === '') {
        kvMessaggio(7);
    }
    $valori[] = $id;
    kvQuery('UPDATE kv_clienti SET ' . implode(', ', $colonne) . ' WHERE id = ?', $valori);
    kvMessaggio(8);
}

/** Gives a customer another password; sessions opened with the old one end. Requests for a new one are used up. */
function kvNuovaPassword(int $id, string $email, string $pw): string
{
    $impronta = password_hash($pw, PASSWORD_DEFAULT);
    kvQuery('UPDATE kv_clienti SET pw = ? WHERE id = ?', [$impronta, $id]);
    kvQuery("UPDATE kv_richieste SET stato = 'annullata' WHERE email = ? AND stato = 'nuova'", [$email]);
    return $impronta;
}

/** The customer of the session; ends with a message when there is none. */
function kvClienteProprio(): array
{
    $riga = kvRigaCliente(kvClienteSessione());
    if ($riga === null) {
        kvMessaggio(4);
    }
    return $riga;
}

/** The customer of the session, who proves to know the password; ends with a message otherwise. */
function kvClienteSicuro(): array
{
    $riga = kvClienteProprio();
    $chiave = kvAttemptsKey('negozio', $riga['email']);
    kvContaTentativo($chiave, 'accessi_conto');
    if (!kvPasswordGiusta(kvPassword('attuale'), $riga['pw'])) {
        kvMessaggio(1);
    }
    kvForgetAttempts($chiave);
    return $riga;
}

/** The customer's own data as a file. */
function kvDatiPropri(): void
{
    kvScaricaDati(kvClienteProprio());
}

/** Deletes the customer of the session, who proves to be it; not while an order needs the address. */
function kvEliminaAccesso(): void
{
    $riga = kvClienteSicuro();
    if (!isset($_POST['sicuro'])) {
        kvMessaggio(2);
    }
    if (kvOrdiniInCorso($riga) > 0) {
        kvMessaggio(16);
    }
    if (!kvEliminaDati($riga)) {
        kvOutOfService();
    }
    $_SESSION = [];
    session_regenerate_id(true);
    kvMessaggio(15);
}

/** Another password for the customer of the session, who proves to know the old one. */
function kvCambiaPassword(string $pw): void
{
    $riga = kvClienteSicuro();
    if (kvLength($pw) < 8) {
        kvMessaggio(2);
    }
    $_SESSION['segno'] = kvPasswordMark(kvNuovaPassword((int) $riga['id'], $riga['email'], $pw));
    session_regenerate_id(true);
    kvMessaggio(9);
}

/** A password of the form as it was typed, of at most 100 characters. */
function kvPassword(string $nome): string
{
    return isset($_POST[$nome]) && is_string($_POST[$nome]) ? kvCut(kvSentText($_POST[$nome], true), 100) : '';
}

/** Takes the wish for a new password. The answer is the same, and comes as soon, whether the address is known or not. */
function kvRichiediPassword(string $email): void
{
    kvContaTentativo(kvAccountKey('richiesta', $email), 'richieste_email');
    kvContaTentativo(kvAttemptsKey('richiesta', ''), 'richieste');
    kvAfterResponse(fn() => kvMandaPassword($email));
    kvMessaggio(10);
}

/** Mails a link with a token that is good once, for an hour; the database holds its hash alone. */
function kvMandaPassword(string $email): void
{
    if (!kvIndirizzoValido($email) || kvRiga('SELECT id FROM kv_clienti WHERE email = ?', [$email]) === null) {
        return;
    }
    $gettone = bin2hex(random_bytes(24));
    kvQuery('INSERT INTO kv_richieste (email, creato, gettone, scade, stato)'
        . " VALUES (?, NOW(), ?, NOW() + INTERVAL 1 HOUR, 'nuova')", [$email, hash('sha256', $gettone)]);
    $negozio = kvMittente();
    kvMail($email, $negozio['email'], $negozio['nome'] . ' - ' . kvUtf8("<<4-password_richiesta>>"),
        kvUtf8("<<4-password_istruzioni>>\r\n\r\n<<1-perl_shopURL>>/login<<1-IDlingua>>.php?g=$gettone\r\n\r\n")
        . $negozio['firma']);
}

/** The address of the request that a token belongs to; empty when it is unknown, used or too old. */
function kvRichiestaValida(string $gettone): string
{
    $riga = preg_match('/^[0-9a-f]{48}$/D', $gettone) ? kvRiga("SELECT email FROM kv_richieste WHERE gettone = ?"
        . " AND stato = 'nuova' AND scade > NOW()", [hash('sha256', $gettone)]) : null;
    return $riga === null ? '' : (string) $riga['email'];
}

/** The end of a request: the new password, if the token is good, and the customer is in. */
function kvRipristina(string $gettone, string $pw): void
{
    kvContaTentativo(kvAttemptsKey('ripristino', ''), 'collegamenti');
    $email = kvRichiestaValida($gettone);
    if ($email === '') {
        kvMessaggio(12);
    }
    if (kvLength($pw) < 8) {
        kvMessaggio(2, '&g=' . $gettone);
    }
    $riga = kvRiga('SELECT id FROM kv_clienti WHERE email = ?', [$email]);
    kvQuery("UPDATE kv_richieste SET stato = 'usata' WHERE gettone = ? AND stato = 'nuova'", [hash('sha256', $gettone)]);
    if (kvRigheToccate() !== 1 || $riga === null) {
        kvMessaggio(12);
    }
    kvRequireTables();
    kvQuery('UPDATE kv_clienti SET provato = 1 WHERE id = ?', [(int) $riga['id']]);
    kvApriSessione((int) $riga['id'], kvNuovaPassword((int) $riga['id'], $email, $pw));
    kvMessaggio(9);
}
