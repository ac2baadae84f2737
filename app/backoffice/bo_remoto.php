<?php
// Signed requests: who may ask remoto.php, and how it answers. A signature is an HMAC with SHA-256 (RFC 2104) with the
// key that the database update brought; its time and its number make each request good for once.

/** What a signature begins with: it names the protocol. */
const BO_PROTOCOL = 'korvane-ordini-1';
/** Seconds by which the clocks of both may differ; seconds for which the number of a request is remembered. */
const BO_CLOCK_DIFFERENCE = 300;
const BO_MEMORY = 900;

/** Ends with one line of plain text. */
function boRemoteRefuse(int $code, string $row): void
{
    http_response_code($code);
    header('Content-Type: text/plain; charset=utf-8');
    die($row . "\n");
}

/** The four fields of the request; whatever isn't one finds nothing here. */
function boRemoteFields(): array
{
    $fields = [];
    foreach (['ora', 'numero', 'dati', 'firma'] as $name) {
        if ($_SERVER['REQUEST_METHOD'] !== 'POST' || !is_string($_POST[$name] ?? null)) {
            boRemoteRefuse(404, 'non trovato');
        }
        $fields[$name] = $_POST[$name];
    }
    return $fields;
}

/** The key as bytes; ends the request when the shop has none. */
function boRemoteKey(): string
{
    $key = kvStoredValue('chiave_ordini');
    if (!preg_match('/^[0-9a-f]{64}$/D', $key)) {
        boRemoteRefuse(403, 'chiave');
    }
    return (string) hex2bin($key);
}

/** Ends the request unless it was signed with the key, just now, and for the first time. */
function boRemoteAdmit(array $fields, string $key): void
{
    $signature = hash_hmac('sha256', BO_PROTOCOL . "\n{$fields['ora']}\n{$fields['numero']}\n{$fields['dati']}", $key);
    if (!hash_equals($signature, strtolower($fields['firma']))) {
        // Others at the merchant's address, or before the same proxy, must not be able to lock the merchant out.
        if (!kvAdmitAttempt(kvAttemptsKey('remoto', ''), 'firme')) {
            header('Retry-After: 900');
            boRemoteRefuse(429, 'tentativi');
        }
        boRemoteRefuse(403, 'firma');
    }
    $now = time();
    if (!preg_match('/^\d{1,12}$/D', $fields['ora']) || abs($now - (int) $fields['ora']) > BO_CLOCK_DIFFERENCE) {
        boRemoteRefuse(403, "ora $now");
    }
    if (!preg_match('/^[0-9a-f]{32}$/Di', $fields['numero']) || !boRemoteIsNewNumber($fields['numero'], $now)) {
        boRemoteRefuse(403, 'numero');
    }
}

/** Remembers the number of a request; false when it is known. Of two requests at a time the table takes one. */
function boRemoteIsNewNumber(string $number, int $now): bool
{
    kvQuery('DELETE FROM kv_numeri WHERE quando < ?', [$now - BO_MEMORY]);
    if (kvQuery('INSERT INTO kv_numeri (numero, quando) VALUES (?, ?)', [$number, $now]) !== null) {
        return true;
    }
    if (kvRiga('SELECT numero FROM kv_numeri WHERE numero = ?', [$number]) === null) {
        kvOutOfService();
    }
    return false;
}

/** An answer that says why a request can't be met. */
function boRemoteError(string $text): array
{
    return ['errore' => kvUtf8($text)];
}

/** A value as JSON: UTF-8, its characters as they are. */
function boRemoteJson($value): string
{
    return (string) json_encode($value,
        JSON_UNESCAPED_UNICODE | JSON_UNESCAPED_SLASHES | JSON_INVALID_UTF8_SUBSTITUTE);
}

/** Sends the answer with its signature, on a line of its own in front of it. */
function boRemoteAnswer(string $key, string $number, array $answer): void
{
    $text = boRemoteJson($answer);
    header('Content-Type: application/json; charset=utf-8');
    echo hash_hmac('sha256', "risposta\n$number\n$text", $key), "\n", $text;
}

/** A text of a request, trimmed, of at most so many characters; empty when it is none. */
function boRemoteText(array $data, string $name, int $most): string
{
    return kvCampo(['_charset_' => 'utf-8'] + $data, $name, $most);
}

/** A whole number of a request between two bounds; the lower one when it is none. */
function boRemoteInteger(array $data, string $name, int $least, int $most): int
{
    return max($least, min($most, is_int($data[$name] ?? null) ? $data[$name] : $least));
}
