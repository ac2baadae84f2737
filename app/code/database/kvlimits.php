<?php
// ***1.0.7***
// How much one visitor may ask for: attempts are counted in kv_tentativi, under hashes that tell neither address nor
// account. A merchant whose customers come from one address, as behind some providers, may put a script kvlimiti.php
// among the shop's pictures, which brings it here: it returns other values by the names of KV_LIMITI.

/** Most attempts within so many minutes. */
const KV_LIMITI = [
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
const KV_TEMPO_MINIMO = 3;

/** A limit by its name; `tempo_minimo` is a number of seconds, all others a number of attempts and of minutes. */
function kvLimite(string $nome)
{
    static $propri = null;
    if ($propri === null) {
        $propri = is_file(__DIR__ . '/kvlimiti.php') ? include __DIR__ . '/kvlimiti.php' : [];
        $propri = is_array($propri) ? $propri : [];
    }
    return $propri[$nome] ?? ($nome === 'tempo_minimo' ? KV_TEMPO_MINIMO : KV_LIMITI[$nome]);
}

/** The visitor's address; of an IPv6 one the half that a provider gives to a household. Source: RFC 6177, section 2. */
function kvIndirizzoVisitatore(): string
{
    $indirizzo = (string) ($_SERVER['REMOTE_ADDR'] ?? '');
    $byte = @inet_pton($indirizzo);
    return $byte !== false && strlen($byte) === 16 ? bin2hex(substr($byte, 0, 8)) : $indirizzo;
}

/** The name under which the attempts at one account from one address are kept. */
function kvChiaveTentativi(string $dove, string $conto): string
{
    return kvChiaveConto($dove, $conto . "\n" . kvIndirizzoVisitatore());
}

/** The same for attempts from any address. */
function kvChiaveConto(string $dove, string $conto): string
{
    return hash('sha256', $dove . "\n" . strtolower($conto));
}

/** How many attempts of the last minutes stand under a name. */
function kvTentativi(string $chiave, int $minuti): int
{
    return (int) (kvRiga("SELECT COUNT(*) AS n FROM kv_tentativi WHERE chiave = ? AND quando > NOW() - INTERVAL $minuti MINUTE",
        [$chiave])['n'] ?? 0);
}

/** Whether a limit bars another attempt. */
function kvTroppiTentativi(string $chiave, string $limite): bool
{
    list($massimo, $minuti) = kvLimite($limite);
    return kvTentativi($chiave, (int) $minuti) >= $massimo;
}

/** Counts an attempt before its outcome is known, so that many at a time don't slip through; sweeps old ones. */
function kvSegnaTentativo(string $chiave): void
{
    kvQuery('INSERT INTO kv_tentativi (chiave, quando) VALUES (?, NOW())', [$chiave]);
    if (random_int(1, 50) === 1) {
        kvQuery('DELETE FROM kv_tentativi WHERE quando < NOW() - INTERVAL 1 DAY');
    }
}

/** Counts an attempt unless a limit bars it; whether it may go on. Of many at a time no more than the limit may. */
function kvAmmetti(string $chiave, string $limite): bool
{
    if (kvTroppiTentativi($chiave, $limite)) {
        return false;
    }
    kvSegnaTentativo($chiave);
    list($massimo, $minuti) = kvLimite($limite);
    return kvTentativi($chiave, (int) $minuti) <= $massimo;
}

/** Forgets the attempts at an account after a good one. */
function kvAzzeraTentativi(string $chiave): void
{
    kvQuery('DELETE FROM kv_tentativi WHERE chiave = ?', [$chiave]);
}

/** Forgets one attempt: a good access from an address says nothing for the others that came from there. */
function kvTogliTentativo(string $chiave): void
{
    kvQuery('DELETE FROM kv_tentativi WHERE chiave = ? ORDER BY quando DESC LIMIT 1', [$chiave]);
}

/**
 * Whether a program, not a person, filled a form: it wrote into the field that nobody sees, or was quicker than anybody.
 * Calls `rifiuta` with `motivo` if so.
 */
function kvTroppoPresto(callable $rifiuta, $motivo): void
{
    $secondi = time() - (int) ($_SESSION['gettone_ora'] ?? 0);
    if (kvCampo($_POST, 'kv_sito', 10) !== '' || $secondi < (int) kvLimite('tempo_minimo')) {
        $rifiuta($motivo);
    }
}
