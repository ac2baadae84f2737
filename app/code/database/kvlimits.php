<?php
// ***1.0.7***
// How much one visitor may ask for: attempts are counted in kv_tentativi, under hashes that tell neither address nor
// account. A merchant whose customers come from one address, as with some providers, may put a script kvlimiti.php
// among the shop's pictures, which brings it here: it returns other values by the names of KV_LIMITS.

/** Most attempts within so many minutes. */
const KV_LIMITS = [
    'accessi_conto' => [5, 15],         // to one account from one address
    'accessi' => [20, 15],              // to any accounts from one address
    'registrazioni' => [20, 15],        // from one address
    'registrazioni_email' => [3, 60],   // mails to one address
    'richieste' => [20, 15],            // of a new password, from one address
    'richieste_email' => [3, 15],       // of a new password, for one address
    'collegamenti' => [20, 15],         // links of mails, from one address
    'ordini' => [10, 15],               // orders from one address
    'ordini_email' => [5, 60],          // orders that write to one address
    'pagamenti' => [10, 15],            // starts of one order's payment
    'recessi' => [20, 15],              // looks for an order to withdraw from, from one address
    'firme' => [10, 15],                // wrong signatures of requests for orders, from one address
];
/** Seconds that a person takes at least to fill an order or a registration. */
const KV_LEAST_TIME = 3;

/** A limit by its name; `tempo_minimo` is a number of seconds, all others a number of attempts and of minutes. */
function kvLimit(string $name)
{
    static $own = null;
    if ($own === null) {
        $own = is_file(__DIR__ . '/kvlimiti.php') ? include __DIR__ . '/kvlimiti.php' : [];
        $own = is_array($own) ? $own : [];
    }
    return $own[$name] ?? ($name === 'tempo_minimo' ? KV_LEAST_TIME : KV_LIMITS[$name]);
}

/** The visitor's address; of an IPv6 one the half that a provider gives to a household. Source: RFC 6177, section 2. */
function kvVisitorAddress(): string
{
    $address = (string) ($_SERVER['REMOTE_ADDR'] ?? '');
    $bytes = @inet_pton($address);
    return $bytes !== false && strlen($bytes) === 16 ? bin2hex(substr($bytes, 0, 8)) : $address;
}

/** The name under which the attempts at one account from one address are kept. */
function kvAttemptsKey(string $where, string $account): string
{
    return kvAccountKey($where, $account . "\n" . kvVisitorAddress());
}

/** The same for attempts from any address. */
function kvAccountKey(string $where, string $account): string
{
    return hash('sha256', $where . "\n" . strtolower($account));
}

/** How many attempts of the last minutes are noted under a name. */
function kvAttempts(string $key, int $minutes): int
{
    return (int) (kvRiga("SELECT COUNT(*) AS n FROM kv_tentativi WHERE chiave = ? AND quando > NOW() - INTERVAL $minutes MINUTE",
        [$key])['n'] ?? 0);
}

/** Whether a limit bars another attempt. */
function kvTooManyAttempts(string $key, string $limit): bool
{
    list($most, $minutes) = kvLimit($limit);
    return kvAttempts($key, (int) $minutes) >= $most;
}

/** Counts an attempt before its outcome is known, so that many at a time don't slip through; sweeps old ones. */
function kvCountAttempt(string $key): void
{
    kvQuery('INSERT INTO kv_tentativi (chiave, quando) VALUES (?, NOW())', [$key]);
    if (random_int(1, 50) === 1) {
        kvQuery('DELETE FROM kv_tentativi WHERE quando < NOW() - INTERVAL 1 DAY');
    }
}

/** Counts an attempt unless a limit bars it; whether it may go on. Of many at a time no more than the limit may. */
function kvAdmitAttempt(string $key, string $limit): bool
{
    if (kvTooManyAttempts($key, $limit)) {
        return false;
    }
    kvCountAttempt($key);
    list($most, $minutes) = kvLimit($limit);
    return kvAttempts($key, (int) $minutes) <= $most;
}

/** Forgets the attempts at an account after a good one. */
function kvForgetAttempts(string $key): void
{
    kvQuery('DELETE FROM kv_tentativi WHERE chiave = ?', [$key]);
}

/** Forgets one attempt: a good access from an address says nothing for the others that came from there. */
function kvForgetAttempt(string $key): void
{
    kvQuery('DELETE FROM kv_tentativi WHERE chiave = ? ORDER BY quando DESC LIMIT 1', [$key]);
}

/**
 * Whether a program, not a person, filled a form: it wrote into the field that nobody sees, or was quicker than anybody.
 * Calls `refuse` with `reason` if so.
 */
function kvRefusePrograms(callable $refuse, $reason): void
{
    $seconds = time() - (int) ($_SESSION['gettone_ora'] ?? 0);
    if (kvCampo($_POST, 'kv_sito', 10) !== '' || $seconds < (int) kvLimit('tempo_minimo')) {
        $refuse($reason);
    }
}
