<?php
// ***1.0.7***
// Customers: their data, access, registration, a forgotten password. logcheck.php takes what the forms of lognew.php
// send; attempts are counted in kv_tentativi.
include_once "kvtables.php";
include_once "kvmail.php";
include_once "kvregister.php";
include_once "kvdati.php";

/** The data of a customer that forms show, by column: the field of the order form and the longest text. */
const KV_CUSTOMER_DATA = [
    'nome' => ['Nome', 100], 'cognome' => ['Cognome', 100], 'rsoc' => ['RagioneSociale', 200],
    'piva' => ['PartitaIVA', 40], 'indirizzo' => ['Indirizzo', 200], 'cap' => ['CAP', 20], 'citta' => ['Citta', 100],
    'provincia' => ['Provincia', 60], 'paese' => ['Paese', 60], 'telefono' => ['Telefono', 60],
];

/** The number of the customer in this session, whether approved or not; 0 for a visitor. */
function kvSessionCustomer(): int
{
    return $GLOBALS['cliente'] > 0 ? (int) $GLOBALS['cliente'] : (int) $GLOBALS['clienteinattesa'];
}

function kvCustomerRow(int $id): ?array
{
    return $id === 0 ? null : kvRiga('SELECT * FROM kv_clienti WHERE id = ?', [$id]);
}

/**
 * The customer's data for the cookie that CaricaDati reads: name=value pairs, percent-coded, joined by "|"; empty for a
 * visitor. A cookie holds about 4000 characters: what would go beyond stays out.
 */
function kvCustomerCookie(int $id): string
{
    $row = kvCustomerRow($id);
    $pairs = [];
    $length = 0;
    foreach ($row === null ? [] : array_merge(array_keys(KV_CUSTOMER_DATA), ['email']) as $name) {
        $pair = $name . '=' . rawurlencode((string) $row[$name]);
        $length += strlen($pair) + 1;
        if ($length < 3800) {
            $pairs[] = $pair;
        }
    }
    return implode('|', $pairs);
}

/** Back to the login page with the message of a number. */
function kvGoToMessage(int $number, string $other = ''): void
{
    kvGoTo("login<<1-IDlingua>>.php?m=" . $number . $other);
}

/** Ends with a message when there were too many attempts; else counts one. */
function kvCountAttemptOrEnd(string $key, string $limit): void
{
    if (!kvAdmitAttempt($key, $limit)) {
        kvGoToMessage(6);
    }
}

/** Opens the customer's session under a fresh session number. */
function kvOpenSession(int $id, string $hash): void
{
    session_regenerate_id(true);
    $_SESSION['cliente'] = $id;
    $_SESSION['segno'] = kvPasswordMark($hash);
    unset($_SESSION['gettone']);
}

/** Lets a customer in: on to the shop or to the order, or back with a notice while approval is missing. */
function kvLogIn(int $id, string $hash, bool $approved, string $after): void
{
    kvOpenSession($id, $hash);
    if (!$approved) {
        kvGoToMessage(5);
    }
    kvGoTo($after === 'ordine' ? "order.htm" : "index.htm");
}

/** Whether a password has a hash; earlier releases made it of Windows-1252. */
function kvIsRightPassword(string $pw, string $hash): bool
{
    return password_verify($pw, $hash)
        || (preg_match('/[\x80-\xFF]/', $pw) && password_verify(kvFromUtf8($pw), $hash));
}

/** Access with address and password. */
function kvAccess(string $email, string $pw): void
{
    $key = kvAttemptsKey('negozio', $email);
    $address = kvAttemptsKey('negozio', '');
    kvCountAttemptOrEnd($key, 'accessi_conto');
    kvCountAttemptOrEnd($address, 'accessi');
    $row = kvRiga('SELECT id, pw, approvato FROM kv_clienti WHERE email = ?', [$email]);
    // An unknown address is checked against a fixed hash, as costly as PHP makes those of this host, so that both answers
    // take the same time.
    $hash = $row['pw'] ?? sprintf('$2y$%02d$', PASSWORD_BCRYPT_DEFAULT_COST)
        . 'dHKUwezJEPkiCbbCBpyIyewdj/VZnjbaUhH9QqxTXvkaE04HJYQTe';
    if (!kvIsRightPassword($pw, $hash) || $row === null) {
        kvGoToMessage(1);
    }
    kvForgetAttempts($key);
    kvForgetAttempt($address);
    if (password_needs_rehash($hash, PASSWORD_DEFAULT)) {
        $hash = password_hash($pw, PASSWORD_DEFAULT);
        kvQuery('UPDATE kv_clienti SET pw = ? WHERE id = ?', [$hash, (int) $row['id']]);
    }
    kvLogIn((int) $row['id'], $hash, (bool) $row['approvato'], kvCampo($_POST, 'dopo', 10));
}

/** The customer's own data. */
function kvChangeData(): void
{
    $id = kvSessionCustomer();
    if ($id === 0) {
        kvGoToMessage(4);
    }
    kvRequireTables();
    $columns = [];
    $values = [];
    foreach (KV_CUSTOMER_DATA as $name => list(, $most)) {
        $columns[] = $name . ' = ?';
        $values[] = kvLineField($_POST, $name, $most);
    }
    if (kvCampo($_POST, 'nome') === '' || kvCampo($_POST, 'cognome') === '') {
        kvGoToMessage(7);
    }
    $values[] = $id;
    kvQuery('UPDATE kv_clienti SET ' . implode(', ', $columns) . ' WHERE id = ?', $values);
    kvGoToMessage(8);
}

/** Gives a customer another password; sessions opened with the old one end. Requests for a new one are used up. */
function kvSetPassword(int $id, string $email, string $pw): string
{
    $hash = password_hash($pw, PASSWORD_DEFAULT);
    kvQuery('UPDATE kv_clienti SET pw = ? WHERE id = ?', [$hash, $id]);
    kvQuery("UPDATE kv_richieste SET stato = 'annullata' WHERE email = ? AND stato = 'nuova'", [$email]);
    return $hash;
}

/** The customer of the session; ends with a message when there is none. */
function kvOwnCustomer(): array
{
    $row = kvCustomerRow(kvSessionCustomer());
    if ($row === null) {
        kvGoToMessage(4);
    }
    return $row;
}

/** The customer of the session, who proves to know the password; ends with a message otherwise. */
function kvProvenCustomer(): array
{
    $row = kvOwnCustomer();
    $key = kvAttemptsKey('negozio', $row['email']);
    kvCountAttemptOrEnd($key, 'accessi_conto');
    if (!kvIsRightPassword(kvPassword('attuale'), $row['pw'])) {
        kvGoToMessage(1);
    }
    kvForgetAttempts($key);
    return $row;
}

/** The customer's own data as a file. */
function kvOwnData(): void
{
    kvDownloadData(kvOwnCustomer());
}

/** Deletes the customer of the session, who proves to be it; not while an order needs the address. */
function kvDeleteAccount(): void
{
    $row = kvProvenCustomer();
    if (!isset($_POST['sicuro'])) {
        kvGoToMessage(2);
    }
    if (kvOpenOrders($row) > 0) {
        kvGoToMessage(16);
    }
    if (!kvDeleteData($row)) {
        kvOutOfService();
    }
    $_SESSION = [];
    session_regenerate_id(true);
    kvGoToMessage(15);
}

/** Another password for the customer of the session, who proves to know the old one. */
function kvChangePassword(string $pw): void
{
    $row = kvProvenCustomer();
    if (kvLength($pw) < 8) {
        kvGoToMessage(2);
    }
    $_SESSION['segno'] = kvPasswordMark(kvSetPassword((int) $row['id'], $row['email'], $pw));
    session_regenerate_id(true);
    kvGoToMessage(9);
}

/** Takes the wish for a new password. The answer is the same, and comes as soon, whether the address is known or not. */
function kvRequestPassword(string $email): void
{
    kvCountAttemptOrEnd(kvAccountKey('richiesta', $email), 'richieste_email');
    kvCountAttemptOrEnd(kvAttemptsKey('richiesta', ''), 'richieste');
    kvAfterResponse(fn() => kvMailPassword($email));
    kvGoToMessage(10);
}

/** Mails a link with a token that is good once, for an hour; the database holds its hash alone. */
function kvMailPassword(string $email): void
{
    if (!kvIsValidAddress($email) || kvRiga('SELECT id FROM kv_clienti WHERE email = ?', [$email]) === null) {
        return;
    }
    $token = bin2hex(random_bytes(24));
    kvQuery('INSERT INTO kv_richieste (email, creato, gettone, scade, stato)'
        . " VALUES (?, NOW(), ?, NOW() + INTERVAL 1 HOUR, 'nuova')", [$email, hash('sha256', $token)]);
    $shop = kvSender();
    kvMail($email, $shop['email'], $shop['nome'] . ' - ' . kvUtf8("<<4-password_richiesta>>"),
        kvUtf8("<<4-password_istruzioni>>\r\n\r\n<<1-perl_shopURL>>/login<<1-IDlingua>>.php?g=$token\r\n\r\n")
        . $shop['firma']);
}

/** The address of the request that a token belongs to; empty when it is unknown, used or too old. */
function kvValidRequest(string $token): string
{
    $row = preg_match('/^[0-9a-f]{48}$/D', $token) ? kvRiga("SELECT email FROM kv_richieste WHERE gettone = ?"
        . " AND stato = 'nuova' AND scade > NOW()", [hash('sha256', $token)]) : null;
    return $row === null ? '' : (string) $row['email'];
}

/** The end of a request: the new password, if the token is good, and the customer is in. */
function kvResetPassword(string $token, string $pw): void
{
    kvCountAttemptOrEnd(kvAttemptsKey('ripristino', ''), 'collegamenti');
    $email = kvValidRequest($token);
    if ($email === '') {
        kvGoToMessage(12);
    }
    if (kvLength($pw) < 8) {
        kvGoToMessage(2, '&g=' . $token);
    }
    $row = kvRiga('SELECT id FROM kv_clienti WHERE email = ?', [$email]);
    kvQuery("UPDATE kv_richieste SET stato = 'usata' WHERE gettone = ? AND stato = 'nuova'", [hash('sha256', $token)]);
    if (kvRigheToccate() !== 1 || $row === null) {
        kvGoToMessage(12);
    }
    kvRequireTables();
    kvQuery('UPDATE kv_clienti SET provato = 1 WHERE id = ?', [(int) $row['id']]);
    kvOpenSession((int) $row['id'], kvSetPassword((int) $row['id'], $email, $pw));
    kvGoToMessage(9);
}
