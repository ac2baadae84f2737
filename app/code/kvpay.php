<?php
// ***1.0.7***
// Payment: what the descriptors and scripts of the payment modules share. The order just placed stands in the session
// with its server-side total; a module never takes an amount from the browser.

if (!function_exists('kvOrdineInCorso')) {

/** The order just placed by this visitor (a row of kv_ordini), null when there is none. */
function kvOrdineInCorso(): ?array
{
    static $letto = [];
    $codice = kvSessione() ? (string) ($_SESSION['ordine'] ?? '') : '';
    if (!array_key_exists($codice, $letto)) {
        $letto[$codice] = $codice === '' ? null : kvRiga('SELECT * FROM kv_ordini WHERE codice = ?', [$codice]);
    }
    return $letto[$codice];
}

/** One value of that order as HTML text: codice, totale (decimal point), nome, email, riepilogo... */
function kvOrdine(string $nome): string
{
    return kvHtml((string) (kvOrdineInCorso()[$nome] ?? ''));
}

/** The order's total in the smallest unit of the currency: cents. */
function kvCentesimi(array $ordine): int
{
    return (int) round((float) $ordine['totale'] * 100);
}

/** The public address of a page of the shop, in the language of the request. */
function kvIndirizzo(string $pagina): string
{
    return "<<1-perl_shopURL>>/" . $pagina;
}

/**
 * The form that takes the shopper to the payment service: hidden fields and a button. While the address or the
 * merchant's code is missing the module isn't in use yet: the visitor reads so, and the order stands.
 */
function kvFormPagamento(string $indirizzo, string $codiceNegozio, array $campi): string
{
    $servizio = preg_match('/^https:\/\/[a-z0-9.-]+(:[0-9]+)?(\/[^\s"<>]*)?$/i', $indirizzo) === 1;
    if (!$servizio || $codiceNegozio === '' || kvOrdineInCorso() === null) {
        return '<p class="avviso">' . kvHtml("<<4-pagamento_non_attivo>>") . '</p>';
    }
    $form = '<form class="pagamento" name="kvPagamento" method="post" action="' . kvHtml($indirizzo) . '">';
    foreach ($campi as $nome => $valore) {
        $form .= '<input type="hidden" name="' . kvHtml((string) $nome) . '" value="' . kvHtml((string) $valore) . '">';
    }
    return $form . '<button type="submit">' . kvHtml("<<4-paga_ora>>") . '</button></form>';
}

/** The signature of fields: HMAC-SHA-256 over "name=value" joined by "&", in the order given, in hexadecimal. */
function kvFirma(array $campi, string $chiave): string
{
    $parti = [];
    foreach ($campi as $nome => $valore) {
        $parti[] = $nome . '=' . $valore;
    }
    return hash_hmac('sha256', implode('&', $parti), $chiave);
}

/** The address of a payment service that isn't part of its module's settings; empty while none is entered here. */
function kvServizio(string $modulo): string
{
    $servizi = [
        'Paypal' => 'https://www.paypal.com/cgi-bin/webscr',
        'AuthorizeNet' => '',
        'Banca Sella' => '',
        'Cariverona' => '',
        'Cilme' => '',
        'Consorzio Triveneto' => '',
        'Omnipay' => '',
        'Planet Payment' => '',
        'Shopla' => '',
    ];
    return $servizi[$modulo] ?? '';
}

/** The fields that tell a service of the order in progress: shop, order, amount in cents, and where to go back to. */
function kvCampiPagamento(string $codiceNegozio, string $valutaServizio, string $prefisso = ''): array
{
    $ordine = kvOrdineInCorso() ?? ['codice' => '', 'totale' => 0, 'email' => ''];
    return [
        'negozio' => $codiceNegozio,
        'ordine' => $prefisso . $ordine['codice'],
        'importo' => (string) kvCentesimi($ordine),
        'valuta' => $valutaServizio,
        'email' => (string) $ordine['email'],
        'ritorno' => kvIndirizzo("payok<<1-IDlingua>>.php"),
        'annullo' => kvIndirizzo("payerr<<1-IDlingua>>.php"),
    ];
}

/** A page that takes the shopper on: the form of kvFormPagamento, sent by itself where scripts run. Never returns. */
function kvPaginaPagamento(string $form): void
{
    echo '<!DOCTYPE html><html lang="<<4-codice_lingua>>"><head><meta charset="windows-1252"><title>'
        . kvHtml("<<4-ordine_pagamento>>") . '</title></head><body>' . $form
        . '<script>if (document.kvPagamento) { document.kvPagamento.submit(); }</script></body></html>';
    exit;
}

/** A free text of the merchant: HTML when it holds tags, else plain lines. */
function kvTestoLibero(string $testo): string
{
    return preg_match('/<.*>/s', $testo) ? $testo : nl2br(kvHtml($testo));
}

/**
 * Takes the notice of a payment service: the fields named by `nomi` must be signed with the key in the field `firma`,
 * and the amount must be the order's. Marks the order and answers; never returns.
 */
function kvNotifica(array $nomi, string $chiave): void
{
    header('Content-Type: text/plain; charset=us-ascii');
    $campi = [];
    foreach ($nomi as $nome) {
        $campi[$nome] = kvCampo($_POST, $nome);
    }
    if ($chiave === '' || !hash_equals(kvFirma($campi, $chiave), kvCampo($_POST, 'firma'))) {
        http_response_code(403);
        die('KO');
    }
    // The code may stand behind a word: "Ordine 260131-A1B2C3".
    $parole = explode(' ', $campi['ordine'] ?? '');
    $ordine = kvRiga('SELECT * FROM kv_ordini WHERE codice = ?', [end($parole)]);
    if ($ordine === null || (string) kvCentesimi($ordine) !== ($campi['importo'] ?? '')) {
        http_response_code(404);
        die('KO');
    }
    kvStatoOrdine((string) $ordine['codice'], ($campi['esito'] ?? '') === 'OK' ? 'pagato' : 'rifiutato');
    die('OK');
}

/** Sets the state of an order; a paid one stays paid. */
function kvStatoOrdine(string $codice, string $stato): void
{
    kvQuery("UPDATE kv_ordini SET stato = ? WHERE codice = ? AND stato <> 'pagato'", [$stato, $codice]);
}

/** Sends the shopper to payok or payerr. */
function kvEsitoPagamento(bool $pagato): void
{
    header('Location: ' . ($pagato ? "payok<<1-IDlingua>>.php" : "payerr<<1-IDlingua>>.php"), true, 303);
    exit;
}

}
