<?php
// ***1.0.7***
// Takes an order: checks the form, works the order out again from the database, stores it together with the stock it
// takes, writes to customer and merchant, and goes on to the page of the chosen payment method (thankyou1 to 4).
// A form is good for one order: sent twice, it leads to the page of the order it made.
include "funcs.php";
include_once "kvcart.php";
include_once "kvmailordine.php";
include_once "kvtables.php";
include_once "kvpaesi.php";
include_once "kvplain.php";
include_once "kvprima.php";
include_once "kvscarsi.php";

/** Ends with a page that names what is wrong. */
function kvRefuseOrder(string $reason): void
{
    kvNotify($reason);
    kvGoTo("messaggio.htm");
}

/** The chosen payment method, counted from 1, and its name; ends the order when the shop has no such one. */
function kvOrderMethod(): array
{
    $methods = kvSelectOptions(<<<'KORVANE_VALORI'
<<1-pagamento>>
KORVANE_VALORI
    );
    $method = kvMethodNumber();
    if (!isset($methods[$method - 1]) || !is_file('thankyou' . $method . '<<1-IDlingua>>.php')) {
        kvRefuseOrder("<<4-metodo_non_ammesso>>");
    }
    return [$method, kvUtf8($methods[$method - 1]['name'])];
}

/**
 * The chosen country in the shop's own words and its zone (1 to 8). The form sends "zone-position in the list"; one of a
 * merchant's own template the zone and the country's name.
 */
function kvOrderCountry(): array
{
    $countries = kvSelectOptions(<<<'KORVANE_VALORI'
<<1-paesi>>
KORVANE_VALORI
    );
    $name = preg_replace('/\s+/u', ' ', kvLineField($_POST, 'Paese'));
    list($zone, $index) = explode('-', kvCampo($_POST, 'LSStato', 8)) + [1 => ''];
    foreach ($countries as $n => $country) {
        $chosen = $index === '' ? kvUtf8($country['name']) === $name : $index === (string) $n;
        if ($chosen && $country['value'] === $zone && (int) $zone >= 1 && (int) $zone <= 8) {
            return [kvUtf8($country['name']), (int) $zone];
        }
    }
    kvRefuseOrder("<<4-ordine_campi_mancanti>>");
    return ['', 0];
}

/** The form's fields, by the names of the order form; ends the order when a required one is missing or wrong. */
function kvOrderForm(array $data): array
{
    $fields = [];
    foreach (['Nome' => 100, 'Cognome' => 100, 'RagioneSociale' => 200, 'PartitaIVA' => 40, 'Indirizzo' => 200,
              'CAP' => 20, 'Citta' => 100, 'Provincia' => 60, 'Telefono' => 60, 'Email' => 190] as $name => $most) {
        $fields[$name] = kvLineField($_POST, $name, $most);
    }
    $fields['Note'] = kvCampo($_POST, 'Note', 2000);
    $wanted = ['Nome', 'Cognome', 'Indirizzo', 'CAP', 'Citta', 'Email'];
    foreach (['obbl_rsoc' => 'RagioneSociale', 'obbl_piva' => 'PartitaIVA', 'obbl_tel' => 'Telefono'] as $n => $name) {
        if ($data[$n]) {
            $wanted[] = $name;
        }
    }
    foreach ($wanted as $name) {
        if ($fields[$name] === '') {
            kvRefuseOrder("<<4-ordine_campi_mancanti>>");
        }
    }
    if (!kvIsValidAddress($fields['Email'])) {
        kvRefuseOrder("<<4-ordine_email_errata>>");
    }
    if (!isset($_POST['Privacy']) || ($data['obbl_magg'] && !isset($_POST['Maggiorenne']))) {
        kvRefuseOrder("<<4-ordine_consensi_mancanti>>");
    }
    return $fields;
}

/** The cart text of the form; that of the cookie where no script could fill it in. */
function kvCartText(): string
{
    $text = kvCampo($_POST, 'Dettaglio', 8000);
    return $text === '' && isset($_POST['senza_script']) ? kvCampo($_COOKIE, kvCartCookie(), 8000) : $text;
}

/** The lines of the order from the form's cart text; ends the order when one can't be bought. */
function kvOrderLines(array $data): array
{
    $lines = kvCartLines(kvCartText());
    if ($lines === []) {
        kvRefuseOrder("<<4-ordine_vuoto>>");
    }
    foreach ($lines as $line) {
        if (!$line['ok']) {
            kvRefuseOrder("<<4-articolo_non_disponibile>>");
        }
        if ($line['quantita'] < $data['qminima']) {
            kvRefuseOrder("<<4-quantita_minima>>");
        }
    }
    return $lines;
}

/** The totals; ends the order when the shop doesn't take it, or when the shopper was shown other ones. */
function kvCheckedTotals(array $lines, int $method, int $zone, array $data): array
{
    global $listino, $scontocliente;
    $totals = kvOrderTotals($lines, $method, $zone, $data, $listino, (float) $scontocliente);
    // Of more the table of orders has no column wide enough.
    if ($totals['totale'] >= 10000000000 * $data['scala']) {
        kvRefuseOrder("<<4-quantita_errata>>");
    }
    if (!$totals['ammesso']) {
        kvRefuseOrder("<<4-metodo_non_ammesso>>");
    }
    if ($totals['merce'] * intdiv(10000, $data['scala']) < $data['minimo']) {
        kvRefuseOrder("<<4-ordine_minimo>>");
    }
    $shown = kvCampo($_POST, 'Totale', 20);
    if ($shown !== '' && $shown !== (string) $totals['totale']) {
        kvRefuseOrder("<<4-importi_cambiati>>");
    }
    return $totals;
}

/** Who gets the goods, as plain text in UTF-8. */
function kvRecipient(array $fields): string
{
    $text = $fields['Nome'] . ' ' . $fields['Cognome'] . "\r\n";
    foreach (['RagioneSociale', 'PartitaIVA', 'Indirizzo'] as $name) {
        $text .= $fields[$name] === '' ? '' : $fields[$name] . "\r\n";
    }
    $text .= trim($fields['CAP'] . ' ' . $fields['Citta'] . ' ' . $fields['Provincia']) . "\r\n";
    $text .= kvUtf8(kvCountryName(kvFromUtf8($fields['Paese']))) . "\r\n";
    $text .= kvUtf8("<<4-ordine_email>>: ") . $fields['Email'] . "\r\n";
    return $text . ($fields['Telefono'] === '' ? '' : kvUtf8("<<4-ordine_telefono>>: ") . $fields['Telefono'] . "\r\n");
}

/**
 * The order as plain text in UTF-8, in parts: recipient, account, end, notes. Joined, with an empty line after the first,
 * they are the summary of the order's page and of the back office.
 */
function kvOrderParts(array $fields, array $lines, array $totals): array
{
    return ['recipient' => kvRecipient($fields), 'account' => kvUtf8(kvAccountText($lines, $totals)),
        'end' => kvUtf8("<<4-ordine_pagamento>>: ") . $fields['NomePagamento'] . "\r\n",
        'notes' => $fields['Note'] === '' ? '' : "\r\n" . kvUtf8("<<4-ordine_note>>: ") . $fields['Note'] . "\r\n"];
}

/** The discounts, taxes and costs of an order that there are, by their names. */
function kvAccountEntries(array $totals): array
{
    $vat = $totals['iva'] < 0 ? "<<4-carrello_iva_esente>>" : "<<4-carrello_iva>>";
    $entries = [["<<4-sconto>>", -$totals['sconto']], [$vat, $totals['iva']],
        ["<<4-carrello_spedizione>>", $totals['spese']], ["<<4-carrello_iva_spedizione>>", $totals['ivaspese']]];
    return array_filter($entries, fn(array $entry, int $n): bool => $entry[1] !== 0 || $n === 2, ARRAY_FILTER_USE_BOTH);
}

/** The lines and the totals of an order as plain text, in the page's character set. */
function kvAccountText(array $lines, array $totals): string
{
    $text = '';
    foreach ($lines as $line) {
        $choices = $line['scelte'] === '' ? '' : ' (' . $line['scelte'] . ')';
        $text .= "<<4-carrello_articolo>>: " . $line['testo'] . $choices . "\r\n  "
            . $line['quantita'] . ' x ' . kvUnitsText($line['importo']) . ' = '
            . kvUnitsText($line['importo'] * $line['quantita']) . "\r\n";
    }
    $text .= "\r\n<<4-carrello_merce>>: " . kvUnitsText($totals['merce']) . "\r\n";
    foreach (kvAccountEntries($totals) as list($name, $amount)) {
        $text .= $name . ': ' . kvUnitsText($amount) . "\r\n";
    }
    return $text . "<<4-carrello_totale>>: " . kvUnitsText($totals['totale']) . "\r\n";
}

/**
 * The order for the column `dati` as JSON: campi, righe and totali, amounts in units, weights as in the catalogue; and
 * what kvFirstLanguage says of it.
 */
function kvOrderData(array $fields, array $lines, array $totals, int $scale): string
{
    $entries = [];
    $first = kvFirstLanguage($lines);
    foreach ($lines as $n => $line) {
        $entries[] = ($first['righe'][$n] ?? []) + ['id' => $line['id'], 'codice' => kvUtf8($line['codice']), 'testo' => kvUtf8($line['testo']),
            'scelte' => kvUtf8($line['scelte']), 'quantita' => $line['quantita'], 'importo' => $line['importo'] / $scale,
            'chiavi' => $line['chiavi'], 'iva' => $line['iva'] / 1000000, 'peso' => $line['peso'] / 10000, 'scorte' => array_map('kvUtf8', $line['scorte'])];
    }
    unset($totals['ammesso']);
    return (string) json_encode([
        'campi' => $fields,
        'righe' => $entries,
        'totali' => array_map(fn($amount) => $amount / $scale, $totals),
    ] + $first['ordine'], JSON_INVALID_UTF8_SUBSTITUTE);
}

/** Takes the pieces of the lines off their stock; false when there are too few, null when the server refused. */
function kvTakeStock(array $lines): ?bool
{
    $requests = kvWantedPieces($lines);
    $stock = kvStock(array_map('strval', array_keys($requests)), true);
    foreach ($stock ?? [] as $key => $quantity) {
        $key = (string) $key;
        if ($quantity < $requests[$key]) {
            return false;
        }
        $result = kvQuery('UPDATE kv_disponibilita SET quantita = quantita - ? WHERE tipo = ? AND chiave = ?',
            [$requests[$key], $key[0], substr($key, 1)]);
        if ($result === null) {
            return null;
        }
    }
    return $stock === null ? null : true;
}

/** Writes the row of an order. */
function kvInsertOrder(string $code, array $fields, array $totals, string $data, string $summary): bool
{
    global $cliente, $valuta;
    return null !== kvQuery(
        'INSERT INTO kv_ordini (codice, creato, cliente, nome, email, totale, valuta, metodo, stato, lingua, dati,'
        . ' riepilogo) VALUES (?, NOW(), ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)',
        [$code, (int) $cliente, $fields['Nome'] . ' ' . $fields['Cognome'], $fields['Email'],
         kvScriptNumber($totals['totale'], kvScale()), kvUtf8(trim($valuta[0])), kvFirstLanguageMethod($fields['NomePagamento']), 'nuovo',
         "<<1-IDlingua>>", $data, $summary]);
}

/**
 * Stores the order and takes its stock, both or neither. The code is the day and six characters of the form's token, so
 * that a form stores one order even where sessions don't wait for one another. Result: the code, and whether it is new.
 */
function kvStoreOrder(array $fields, array $lines, array $totals, string $summary, string $token): array
{
    $data = kvOrderData($fields, $lines, $totals, kvScale());
    // The tables must be there before the transaction: making one would end it.
    kvRequireTables();
    kvRiga('SELECT COUNT(*) FROM kv_disponibilita WHERE tipo = ?', ['-']);
    for ($trial = 0; $trial < 5; $trial++) {
        $code = date('ymd') . '-' . strtoupper(substr(hash('sha256', $token . ($trial ?: '')), 0, 6));
        mysqli_begin_transaction(kvConnection());
        $taken = kvTakeStock($lines);
        if ($taken && kvInsertOrder($code, $fields, $totals, $data, $summary) && mysqli_commit(kvConnection())) {
            return [$code, true];
        }
        mysqli_rollback(kvConnection());
        if (kvRiga('SELECT id FROM kv_ordini WHERE codice = ? AND dati = ?', [$code, $data]) !== null) {
            return [$code, false];
        }
        if ($taken === false) {
            kvRefuseOrder("<<4-articolo_non_disponibile>>");
        }
    }
    kvRefuseOrder("<<4-guasto>>");
    return ['', false];
}

/** The whole way of one order, once the form's token has proved good. */
function kvTakeOrder(string $token): void
{
    global $notazione;
    $data = kvShopTables();
    kvRefusePrograms('kvRefuseOrder', "<<4-troppo_presto>>");
    $fields = kvOrderForm($data);
    list($fields['Paese'], $zone) = kvOrderCountry();
    list($method, $fields['NomePagamento']) = kvOrderMethod();
    $lines = kvOrderLines($data);
    $totals = kvCheckedTotals($lines, $method, $zone, $data);
    if (isset($_POST['senza_script'])) {
        // Nobody orders without having seen the sum, which no script could show in the form.
        $GLOBALS['kvConfirmation'] = kvOrderReview(kvAccountText($lines, $totals), $totals, kvCartText());
        return;
    }
    $parts = kvOrderParts($fields, $lines, $totals);
    $summary = $parts['recipient'] . "\r\n" . $parts['account'] . $parts['end'] . $parts['notes'];
    if (!kvAdmitAttempt(kvAttemptsKey('ordine', ''), 'ordini')
        || !kvAdmitAttempt(kvAccountKey('ordine', $fields['Email']), 'ordini_email')) {
        kvRefuseOrder("<<4-troppi_tentativi>>");
    }
    list($code, $new) = kvStoreOrder($fields, $lines, $totals, $summary, $token);
    $page = 'thankyou' . $method . '<<1-IDlingua>>.php';
    $_SESSION['ordine'] = $code;
    $_SESSION['ordini'] = array_slice([$token => [$code, $page]] + ($_SESSION['ordini'] ?? []), 0, 20, true);
    unset($_SESSION['gettone']);
    setcookie(kvCartCookie(), '', ['expires' => 1, 'path' => kvCookieFolder(), 'samesite' => 'Lax']);
    if ($new) {
        kvStockChanged();
        $instructions = kvMailInstructions($method);
        $parts['end'] .= $instructions === '' ? '' : "\r\n" . $instructions . "\r\n";
        kvMailOrder(['code' => $code, 'email' => $fields['Email'], 'table' => kvOrderTable($lines, $totals),
            'amount' => kvFormatUnits($totals['totale'], kvScale(), (int) $notazione)] + $parts);
        kvMailLowStock($lines);
    }
    kvGoTo($page);
}

kvStartSession(true);
$kvFormToken = kvCampo($_POST, 'gettone', 64);
if (isset($_SESSION['ordini'][$kvFormToken])) {
    list($_SESSION['ordine'], $kvPage) = $_SESSION['ordini'][$kvFormToken];
    kvGoTo($kvPage);
}
if ($_SERVER['REQUEST_METHOD'] !== 'POST' || kvCartText() === '') {
    kvRefuseOrder("<<4-ordine_vuoto>>");
}
if (!kvIsTokenValid()) {
    kvRefuseOrder("<<4-sessione_scaduta>>");
}
if (($cliente === 0 && $regobbl) || kvIsBuyingDenied()) {
    kvGoTo("login<<1-IDlingua>>.php?" . ($cliente > 0 ? 'm=37&t=.37.' : ($clienteinattesa > 0 ? 'm=5' : 'm=23')));
}
kvTakeOrder($kvFormToken);
include "messaggio.htm";
