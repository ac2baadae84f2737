<?php
// ***1.0.7***
// Payment: what the descriptors and scripts of the payment modules share. The order just placed is in the session
// with its server-side total; a module never takes an amount, a merchant's code or a state from the browser.
// Every service is spoken to in one way, by the names of kvCampiPagamento and the signature of kvFirma, but for Paypal,
// whose button has names of its own. They are to be matched with the service's own manual. What a service says of a
// payment is taken by kvpaynotice.php.

if (!function_exists('kvOrdineInCorso')) {
include_once "kvhtml.php";

/** The order just placed by this visitor (a row of kv_ordini), null when there is none. */
function kvOrdineInCorso(): ?array
{
    static $read = [];
    $code = kvStartSession() ? (string) ($_SESSION['ordine'] ?? '') : '';
    if (!array_key_exists($code, $read)) {
        $read[$code] = $code === '' ? null : kvRiga('SELECT * FROM kv_ordini WHERE codice = ?', [$code]);
    }
    return $read[$code];
}

/** One value of that order as HTML text: codice, totale (decimal point), nome, email, riepilogo... */
function kvOrdine(string $name): string
{
    return kvHtmlUtf8((string) (kvOrdineInCorso()[$name] ?? ''));
}

/** Whether that order still waits for its money. */
function kvDaPagare(): bool
{
    return in_array(kvOrdineInCorso()['stato'] ?? '', ['nuovo', 'rifiutato'], true);
}

/**
 * What the page after a payment says. Anybody can open its address, and some services lead here whatever came of the
 * payment: it says "paid" where the order is known to be.
 */
function kvEsitoMostrato(string $text): string
{
    $isPaid = in_array(kvOrdineInCorso()['stato'] ?? '', ['pagato', 'spedito'], true);
    return $isPaid || kvPageFile() !== "payok<<1-IDlingua>>.php" ? $text : kvHtml("<<4-pagamento_da_confermare>>");
}

/** The order's total in the smallest unit of the currency: cents. */
function kvCentesimi(array $order): int
{
    return (int) round((float) $order['totale'] * 100);
}

/** The public address of a page of the shop, in the language of the request. */
function kvIndirizzo(string $page): string
{
    return "<<1-perl_shopURL>>/" . $page;
}

/** The shop's currency for a service whose module doesn't name it: the label when that has three characters, else EUR. */
function kvValutaServizio(): string
{
    $code = strtoupper(trim((string) $GLOBALS['valuta'][0]));
    return preg_match('/^[A-Z]{3}$/D', $code) ? $code : 'EUR';
}

/**
 * The address of a payment service that isn't part of its module's settings; empty while none is known. The merchant
 * may put a script kvservizi.php among the shop's pictures, which brings it here: it returns module => address.
 */
function kvServizio(string $module): string
{
    $own = is_file(__DIR__ . '/kvservizi.php') ? include __DIR__ . '/kvservizi.php' : [];
    $services = (is_array($own) ? $own : []) + [
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
    return (string) ($services[$module] ?? '');
}

/** Whether an address may be sent to: an encrypted one, or one of this very machine, for trying out. */
function kvIsServiceAllowed(string $address): bool
{
    $pattern = '~^(https://[a-z0-9.-]+|http://(127\.0\.0\.1|localhost|\[::1\]))(:\d{1,5})?(/[^\s"<>\\\\]*)?$~iD';
    return preg_match($pattern, $address) === 1;
}

/** A form with hidden fields and one button. */
function kvFieldsForm(string $address, array $fields): string
{
    $form = '<form class="pagamento" name="kvPagamento" method="post" action="' . kvHtml($address) . '">';
    foreach ($fields as $name => $value) {
        $form .= '<input type="hidden" name="' . kvHtml((string) $name) . '" value="' . kvHtml((string) $value) . '">';
    }
    return $form . '<button type="submit">' . kvHtml("<<4-paga_ora>>") . '</button></form>';
}

/** What the visitor reads instead of a button; the order is kept. */
function kvNoPaymentNotice(): string
{
    $isPaid = in_array(kvOrdineInCorso()['stato'] ?? '', ['pagato', 'spedito'], true);
    return '<p class="avviso">' . kvHtml($isPaid ? "<<4-pay_ok>>" : "<<4-pagamento_non_attivo>>") . '</p>';
}

/**
 * The form that takes the shopper to the payment service. While the address or the merchant's code is missing the
 * module isn't in use yet: the visitor reads so.
 */
function kvFormPagamento(string $address, string $shopCode, array $fields): string
{
    $ready = kvIsServiceAllowed($address) && $shopCode !== '' && kvDaPagare();
    return $ready ? kvFieldsForm($address, $fields) : kvNoPaymentNotice();
}

/**
 * The form of a descriptor whose module has a script of its own, which it leads to with the order on the page. `account`
 * stays on the server: the script finds it by kvInizioPagamento.
 */
function kvFormModulo(string $action, array $account = []): string
{
    $order = kvOrdineInCorso();
    if (!kvDaPagare()) {
        return kvNoPaymentNotice();
    }
    $_SESSION['conto'] = $account;
    return kvFieldsForm($action, ['gettone' => kvGettone(), 'ordine' => $order['codice'],
        'importo' => (string) kvCentesimi($order)]);
}

/** The signature of fields: HMAC-SHA-256 over "name=value" joined by "&", values percent-coded, in hexadecimal. */
function kvFirma(array $fields, string $key): string
{
    return hash_hmac('sha256', http_build_query($fields, '', '&', PHP_QUERY_RFC3986), $key);
}

/** The fields that tell a service of the order in progress: shop, order, amount in cents, and where to go back to. */
function kvCampiPagamento(string $shopCode, string $serviceCurrency, string $prefix = ''): array
{
    $order = kvOrdineInCorso() ?? ['codice' => '', 'totale' => 0, 'email' => ''];
    return [
        'negozio' => $shopCode,
        'ordine' => $prefix . $order['codice'],
        'importo' => (string) kvCentesimi($order),
        'valuta' => $serviceCurrency,
        'email' => (string) $order['email'],
        'lingua' => "<<4-codice_lingua>>",
        'ritorno' => kvIndirizzo("payok<<1-IDlingua>>.php"),
        'annullo' => kvIndirizzo("payerr<<1-IDlingua>>.php"),
    ];
}

/**
 * How an order is paid that no service is needed for, as HTML: the shop's words, or those of the module when the shop
 * has none in its language.
 */
function kvIstruzioni(string $text, string $module = ''): string
{
    return kvTesto(trim($text) === '' ? $module : $text);
}

/** The same as plain text in UTF-8 for the mail, from the page of a payment method; empty for all other methods. */
function kvMailInstructions(int $method): string
{
    $page = (string) @file_get_contents('thankyou' . $method . '<<1-IDlingua>>.php');
    $block = "<<<'(\\w+)'\r?\n(.*?)\r?\n";
    if (!preg_match("/kvIstruzioni\\($block\\1(?:\r?\n, $block\\3)?/s", $page, $parts)) {
        return '';
    }
    $chosen = trim($parts[2]) === '' ? $parts[4] ?? '' : $parts[2];
    $text = preg_replace('/<br\s*\/?>\s*/i', "\r\n", trim($chosen));
    return kvUtf8(html_entity_decode(strip_tags($text), ENT_QUOTES, 'cp1252'));
}

/** A free text of the merchant: HTML when it holds tags, else plain lines. */
function kvFreeText(string $text): string
{
    return preg_match('/<.*>/s', $text) ? $text : nl2br(kvHtml($text));
}

}
