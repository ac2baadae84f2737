<?php
// ***1.0.7***
// The scripts of the payment modules: the way to a service, and what the service says of a payment. Whatever it says is
// checked against the order in the database before the order changes.
if (!defined('KORVANE_SHOP')) {
    exit;
}
include_once "kvtables.php";

/** Sends the shopper to payok or payerr. */
function kvEsitoPagamento(bool $isPaid): void
{
    kvGoTo($isPaid ? "payok<<1-IDlingua>>.php" : "payerr<<1-IDlingua>>.php");
}

/**
 * The start of a module's script: the order in progress must be the one of the page that the shopper came from, with
 * the same total. Result: the account that the page's descriptor left. Ten starts of one order in a quarter of an hour
 * bar further ones.
 */
function kvInizioPagamento(): array
{
    $order = kvOrdineInCorso();
    if ($order === null || $_SERVER['REQUEST_METHOD'] !== 'POST' || !kvIsTokenValid()
        || kvCampo($_POST, 'ordine', 40) !== $order['codice']
        || kvCampo($_POST, 'importo', 15) !== (string) kvCentesimi($order)) {
        kvNotify("<<4-sessione_scaduta>>");
        kvGoTo("messaggio<<1-IDlingua>>.php");
    }
    $key = kvAttemptsKey('pagamento', $order['codice']);
    if (!kvAdmitAttempt($key, 'pagamenti')) {
        kvNotify("<<4-troppi_tentativi>>");
        kvGoTo("messaggio<<1-IDlingua>>.php");
    }
    return array_map('strval', (array) ($_SESSION['conto'] ?? []));
}

/** A page that takes the shopper on: the form of kvFormPagamento, sent by itself where scripts run. Never returns. */
function kvPaginaPagamento(string $form): void
{
    echo '<!DOCTYPE html><html lang="<<4-codice_lingua>>"><head><meta charset="windows-1252">'
        . '<meta name="viewport" content="width=device-width, initial-scale=1"><meta name="robots" content="noindex">'
        . '<title>' . kvHtml("<<4-ordine_pagamento>>") . '</title></head><body><main><h1>'
        . kvHtml("<<4-ordine_pagamento>>") . '</h1>' . $form . '<p><a href="index<<1-IDlingua>>.php">'
        . kvHtml("<<4-torna_al_negozio>>") . '</a></p></main>'
        . '<script>if (document.kvPagamento) { document.kvPagamento.submit(); }</script></body></html>';
    exit;
}

/** Ends a notice: its answer, in a word and as a status. */
function kvRispondi(int $code): void
{
    header('Content-Type: text/plain; charset=us-ascii');
    http_response_code($code);
    die($code === 200 ? 'OK' : 'KO');
}

/** The order that a service names; its code may come after a word: "Ordine 260131-A1B2C3". */
function kvOrdineNominato(string $name): ?array
{
    $words = explode(' ', $name);
    return kvRiga('SELECT * FROM kv_ordini WHERE codice = ?', [end($words)]);
}

/**
 * What becomes of an order whose payment succeeded or failed, once the notice has proved good: null for a notice that
 * contradicts an earlier one, else the new state. The same notice sent again changes nothing. An order that the
 * merchant has sent or cancelled meanwhile keeps its state, with the payment noted.
 */
function kvStateAfterPayment(array $order, string $reference, bool $isPaid): ?string
{
    if ($order['pagamento'] !== '') {
        return $isPaid && $order['pagamento'] === $reference ? $order['stato'] : null;
    }
    if ($isPaid) {
        return in_array($order['stato'], ['nuovo', 'rifiutato', 'da verificare', 'importo diverso'], true) ? 'pagato' : $order['stato'];
    }
    return in_array($order['stato'], ['nuovo', 'da verificare'], true) ? 'rifiutato' : $order['stato'];
}

/**
 * Notes the outcome of a payment with the order; false when it was refused. `transaction` is the service's own name of
 * the payment, by which a notice that comes twice is known.
 */
function kvRegistraPagamento(string $code, string $module, string $transaction, bool $isPaid): bool
{
    if (!preg_match('/^[\x21-\x7e]{1,100}$/D', $transaction)) {
        return false;
    }
    $reference = $module . ' ' . $transaction;
    mysqli_begin_transaction(kvConnection());
    $order = kvRiga('SELECT id, stato, pagamento FROM kv_ordini WHERE codice = ? FOR UPDATE', [$code]);
    $after = $order === null ? null : kvStateAfterPayment($order, $reference, $isPaid);
    $done = $after !== null && null !== kvQuery('UPDATE kv_ordini SET stato = ?, pagamento = ? WHERE id = ?',
        [$after, $isPaid ? $reference : $order['pagamento'], (int) $order['id']]);
    if ($done) {
        return mysqli_commit(kvConnection());
    }
    mysqli_rollback(kvConnection());
    return false;
}

/** Marks an order of which another amount or currency was paid: the merchant has to look. The status of the answer. */
function kvImportoDiverso(array $order): int
{
    kvQuery("UPDATE kv_ordini SET stato = 'importo diverso' WHERE id = ? AND pagamento = ''"
        . " AND stato IN ('nuovo', 'rifiutato', 'da verificare')", [(int) $order['id']]);
    return 409;
}

/**
 * Checks what a service says, in the fields negozio, ordine, importo, valuta, transazione and esito, signed in this
 * order with the key in the field firma; and notes it. Result: the status of the answer. 403: not from the service, or
 * for another shop. 404: no such order. 409: another amount or currency, or against what was said before.
 */
function kvAccettaEsito(array $given, string $module, array $account): int
{
    $fields = [];
    foreach (['negozio', 'ordine', 'importo', 'valuta', 'transazione', 'esito'] as $name) {
        $fields[$name] = kvCampo($given, $name, 100);
    }
    $signed = $account['chiave'] !== '' && hash_equals(kvFirma($fields, $account['chiave']), kvCampo($given, 'firma'));
    if (!$signed || $account['negozio'] === '' || $fields['negozio'] !== $account['negozio']) {
        return 403;
    }
    $order = kvOrdineNominato($fields['ordine']);
    if ($order === null) {
        return 404;
    }
    if ($fields['importo'] !== (string) kvCentesimi($order) || $fields['valuta'] !== $account['valuta']) {
        return $fields['esito'] === 'OK' ? kvImportoDiverso($order) : 409;
    }
    if (!in_array($fields['esito'], ['OK', 'KO'], true)) {
        return 409;
    }
    $known = kvRegistraPagamento((string) $order['codice'], $module, $fields['transazione'], $fields['esito'] === 'OK');
    return $known ? 200 : 409;
}

/** Takes the notice that a service sends to the shop's server. `account`: negozio, valuta, chiave. Never returns. */
function kvNotifica(string $module, array $account): void
{
    kvRispondi($_SERVER['REQUEST_METHOD'] === 'POST' ? kvAccettaEsito($_POST, $module, $account) : 405);
}
