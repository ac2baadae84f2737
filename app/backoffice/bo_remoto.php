<?php
// Signed requests: who may ask remoto.php, and how it answers. A signature is an HMAC with SHA-256 (RFC 2104) with the
// key that the database update brought; its time and its number make each request good for once.

/** What a signature begins with: it names the protocol. */
const BO_PROTOCOLLO = 'korvane-ordini-1';
/** Seconds by which the clocks of both may differ; seconds for which the number of a request is remembered. */
const BO_SCARTO = 300;
const BO_MEMORIA = 900;

/** Ends with one line of plain text. */
function boRemotoRifiuta(int $codice, string $riga): void
{
    http_response_code($codice);
    header('Content-Type: text/plain; charset=utf-8');
    die($riga . "\n");
}

/** The four fields of the request; whatever isn't one finds nothing here. */
function boRemotoCampi(): array
{
    $campi = [];
    foreach (['ora', 'numero', 'dati', 'firma'] as $nome) {
        if ($_SERVER['REQUEST_METHOD'] !== 'POST' || !is_string($_POST[$nome] ?? null)) {
            boRemotoRifiuta(404, 'non trovato');
        }
        $campi[$nome] = $_POST[$nome];
    }
    return $campi;
}

/** The key as bytes; ends the request when the shop has none. */
function boRemotoChiave(): string
{
    $chiave = kvStoredValue('chiave_ordini');
    if (!preg_match('/^[0-9a-f]{64}$/D', $chiave)) {
        boRemotoRifiuta(403, 'chiave');
    }
    return (string) hex2bin($chiave);
}

/** Ends the request unless it was signed with the key, just now, and for the first time. */
function boRemotoAmmetti(array $campi, string $chiave): void
{
    $firma = hash_hmac('sha256', BO_PROTOCOLLO . "\n{$campi['ora']}\n{$campi['numero']}\n{$campi['dati']}", $chiave);
    if (!hash_equals($firma, strtolower($campi['firma']))) {
        // Others at the merchant's address, or before the same proxy, must not be able to lock the merchant out.
        if (!kvAdmitAttempt(kvAttemptsKey('remoto', ''), 'firme')) {
            header('Retry-After: 900');
            boRemotoRifiuta(429, 'tentativi');
        }
        boRemotoRifiuta(403, 'firma');
    }
    $adesso = time();
    if (!preg_match('/^\d{1,12}$/D', $campi['ora']) || abs($adesso - (int) $campi['ora']) > BO_SCARTO) {
        boRemotoRifiuta(403, "ora $adesso");
    }
    if (!preg_match('/^[0-9a-f]{32}$/Di', $campi['numero']) || !boRemotoNumeroNuovo($campi['numero'], $adesso)) {
        boRemotoRifiuta(403, 'numero');
    }
}

/** Remembers the number of a request; false when it is known. Of two requests at a time the table takes one. */
function boRemotoNumeroNuovo(string $numero, int $adesso): bool
{
    kvQuery('DELETE FROM kv_numeri WHERE quando < ?', [$adesso - BO_MEMORIA]);
    if (kvQuery('INSERT INTO kv_numeri (numero, quando) VALUES (?, ?)', [$numero, $adesso]) !== null) {
        return true;
    }
    if (kvRiga('SELECT numero FROM kv_numeri WHERE numero = ?', [$numero]) === null) {
        kvOutOfService();
    }
    return false;
}

/** An answer that says why a request can't be met. */
function boRemotoErrore(string $testo): array
{
    return ['errore' => kvUtf8($testo)];
}

/** A value as JSON: UTF-8, its characters as they are. */
function boRemotoJson($valore): string
{
    return (string) json_encode($valore,
        JSON_UNESCAPED_UNICODE | JSON_UNESCAPED_SLASHES | JSON_INVALID_UTF8_SUBSTITUTE);
}

/** Sends the answer with its signature, on a line of its own in front of it. */
function boRemotoRispondi(string $chiave, string $numero, array $risposta): void
{
    $testo = boRemotoJson($risposta);
    header('Content-Type: application/json; charset=utf-8');
    echo hash_hmac('sha256', "risposta\n$numero\n$testo", $chiave), "\n", $testo;
}

/** A text of a request, trimmed, of at most so many characters; empty when it is none. */
function boRemotoTesto(array $dati, string $nome, int $massimo): string
{
    return kvCampo(['_charset_' => 'utf-8'] + $dati, $nome, $massimo);
}

/** A whole number of a request between two bounds; the lower one when it is none. */
function boRemotoIntero(array $dati, string $nome, int $minimo, int $massimo): int
{
    return max($minimo, min($massimo, is_int($dati[$nome] ?? null) ? $dati[$nome] : $minimo));
}
