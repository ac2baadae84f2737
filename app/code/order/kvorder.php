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
function kvRifiutaOrdine(string $motivo): void
{
    kvNotify($motivo);
    kvGoTo("messaggio.htm");
}

/** The chosen payment method, counted from 1, and its name; ends the order when the shop has no such one. */
function kvMetodoOrdine(): array
{
    $metodi = kvVociSelect(<<<'KORVANE_VALORI'
<<1-pagamento>>
KORVANE_VALORI
    );
    $metodo = kvNumeroMetodo();
    if (!isset($metodi[$metodo - 1]) || !is_file('thankyou' . $metodo . '<<1-IDlingua>>.php')) {
        kvRifiutaOrdine("<<4-metodo_non_ammesso>>");
    }
    return [$metodo, kvUtf8($metodi[$metodo - 1]['nome'])];
}

/**
 * The chosen country in the shop's own words and its zone (1 to 8). The form sends "zone-position in the list"; one of a
 * merchant's own template the zone and the country's name.
 */
function kvPaeseOrdine(): array
{
    $paesi = kvVociSelect(<<<'KORVANE_VALORI'
<<1-paesi>>
KORVANE_VALORI
    );
    $nome = preg_replace('/\s+/u', ' ', kvLineField($_POST, 'Paese'));
    list($zona, $posto) = explode('-', kvCampo($_POST, 'LSStato', 8)) + [1 => ''];
    foreach ($paesi as $n => $paese) {
        $scelto = $posto === '' ? kvUtf8($paese['nome']) === $nome : $posto === (string) $n;
        if ($scelto && $paese['valore'] === $zona && (int) $zona >= 1 && (int) $zona <= 8) {
            return [kvUtf8($paese['nome']), (int) $zona];
        }
    }
    kvRifiutaOrdine("<<4-ordine_campi_mancanti>>");
    return ['', 0];
}

/** The form's fields, by the names of the order form; ends the order when a required one is missing or wrong. */
function kvModuloOrdine(array $dati): array
{
    $campi = [];
    foreach (['Nome' => 100, 'Cognome' => 100, 'RagioneSociale' => 200, 'PartitaIVA' => 40, 'Indirizzo' => 200,
              'CAP' => 20, 'Citta' => 100, 'Provincia' => 60, 'Telefono' => 60, 'Email' => 190] as $nome => $massimo) {
        $campi[$nome] = kvLineField($_POST, $nome, $massimo);
    }
    $campi['Note'] = kvCampo($_POST, 'Note', 2000);
    $richiesti = ['Nome', 'Cognome', 'Indirizzo', 'CAP', 'Citta', 'Email'];
    foreach (['obbl_rsoc' => 'RagioneSociale', 'obbl_piva' => 'PartitaIVA', 'obbl_tel' => 'Telefono'] as $n => $nome) {
        if ($dati[$n]) {
            $richiesti[] = $nome;
        }
    }
    foreach ($richiesti as $nome) {
        if ($campi[$nome] === '') {
            kvRifiutaOrdine("<<4-ordine_campi_mancanti>>");
        }
    }
    if (!kvIndirizzoValido($campi['Email'])) {
        kvRifiutaOrdine("<<4-ordine_email_errata>>");
    }
    if (!isset($_POST['Privacy']) || ($dati['obbl_magg'] && !isset($_POST['Maggiorenne']))) {
        kvRifiutaOrdine("<<4-ordine_consensi_mancanti>>");
    }
    return $campi;
}

/** The cart text of the form; that of the cookie where no script could fill it in. */
function kvDettaglio(): string
{
    $testo = kvCampo($_POST, 'Dettaglio', 8000);
    return $testo === '' && isset($_POST['senza_script']) ? kvCampo($_COOKIE, kvCartCookie(), 8000) : $testo;
}

/** The lines of the order from the form's cart text; ends the order when one can't be bought. */
function kvRigheOrdine(array $dati): array
{
    $righe = kvCartLines(kvDettaglio());
    if ($righe === []) {
        kvRifiutaOrdine("<<4-ordine_vuoto>>");
    }
    foreach ($righe as $riga) {
        if (!$riga['ok']) {
            kvRifiutaOrdine("<<4-articolo_non_disponibile>>");
        }
        if ($riga['quantita'] < $dati['qminima']) {
            kvRifiutaOrdine("<<4-quantita_minima>>");
        }
    }
    return $righe;
}

/** The totals; ends the order when the shop doesn't take it, or when the shopper was shown other ones. */
function kvTotaliOrdine(array $righe, int $metodo, int $zona, array $dati): array
{
    global $listino, $scontocliente;
    $totali = kvOrderTotals($righe, $metodo, $zona, $dati, $listino, (float) $scontocliente);
    if (!$totali['ammesso']) {
        kvRifiutaOrdine("<<4-metodo_non_ammesso>>");
    }
    if ($totali['merce'] * intdiv(10000, $dati['scala']) < $dati['minimo']) {
        kvRifiutaOrdine("<<4-ordine_minimo>>");
    }
    $mostrato = kvCampo($_POST, 'Totale', 20);
    if ($mostrato !== '' && $mostrato !== (string) $totali['totale']) {
        kvRifiutaOrdine("<<4-importi_cambiati>>");
    }
    return $totali;
}

/** Who gets the goods, as plain text in UTF-8. */
function kvDestinatario(array $campi): string
{
    $testo = $campi['Nome'] . ' ' . $campi['Cognome'] . "\r\n";
    foreach (['RagioneSociale', 'PartitaIVA', 'Indirizzo'] as $nome) {
        $testo .= $campi[$nome] === '' ? '' : $campi[$nome] . "\r\n";
    }
    $testo .= trim($campi['CAP'] . ' ' . $campi['Citta'] . ' ' . $campi['Provincia']) . "\r\n";
    $testo .= kvUtf8(kvNomePaese(kvFromUtf8($campi['Paese']))) . "\r\n";
    $testo .= kvUtf8("<<4-ordine_email>>: ") . $campi['Email'] . "\r\n";
    return $testo . ($campi['Telefono'] === '' ? '' : kvUtf8("<<4-ordine_telefono>>: ") . $campi['Telefono'] . "\r\n");
}

/**
 * The order as plain text in UTF-8, in parts: destinatario, conto, coda, note. Joined, with an empty line after the first,
 * they are the summary of the order's page and of the back office.
 */
function kvPartiOrdine(array $campi, array $righe, array $totali): array
{
    return ['destinatario' => kvDestinatario($campi), 'conto' => kvUtf8(kvConto($righe, $totali)),
        'coda' => kvUtf8("<<4-ordine_pagamento>>: ") . $campi['NomePagamento'] . "\r\n",
        'note' => $campi['Note'] === '' ? '' : "\r\n" . kvUtf8("<<4-ordine_note>>: ") . $campi['Note'] . "\r\n"];
}

/** The discounts, taxes and costs of an order that there are, by their names. */
function kvVociConto(array $totali): array
{
    $iva = $totali['iva'] < 0 ? "<<4-carrello_iva_esente>>" : "<<4-carrello_iva>>";
    $voci = [["<<4-sconto>>", -$totali['sconto']], [$iva, $totali['iva']],
        ["<<4-carrello_spedizione>>", $totali['spese']], ["<<4-carrello_iva_spedizione>>", $totali['ivaspese']]];
    return array_filter($voci, fn(array $voce, int $n): bool => $voce[1] !== 0 || $n === 2, ARRAY_FILTER_USE_BOTH);
}

/** The lines and the totals of an order as plain text, in the page's character set. */
function kvConto(array $righe, array $totali): string
{
    $testo = '';
    foreach ($righe as $riga) {
        $scelte = $riga['scelte'] === '' ? '' : ' (' . $riga['scelte'] . ')';
        $testo .= "<<4-carrello_articolo>>: " . $riga['testo'] . $scelte . "\r\n  "
            . $riga['quantita'] . ' x ' . kvUnitsText($riga['importo']) . ' = '
            . kvUnitsText($riga['importo'] * $riga['quantita']) . "\r\n";
    }
    $testo .= "\r\n<<4-carrello_merce>>: " . kvUnitsText($totali['merce']) . "\r\n";
    foreach (kvVociConto($totali) as list($nome, $importo)) {
        $testo .= $nome . ': ' . kvUnitsText($importo) . "\r\n";
    }
    return $testo . "<<4-carrello_totale>>: " . kvUnitsText($totali['totale']) . "\r\n";
}

/**
 * The order for the column `dati` as JSON: campi, righe and totali, amounts in units, weights as in the catalogue; and
 * what kvPrimaLingua says of it.
 */
function kvDatiOrdine(array $campi, array $righe, array $totali, int $scala): string
{
    $voci = [];
    $prima = kvPrimaLingua($righe);
    foreach ($righe as $n => $riga) {
        $voci[] = ($prima['righe'][$n] ?? []) + ['id' => $riga['id'], 'codice' => kvUtf8($riga['codice']), 'testo' => kvUtf8($riga['testo']),
            'scelte' => kvUtf8($riga['scelte']), 'quantita' => $riga['quantita'], 'importo' => $riga['importo'] / $scala,
            'chiavi' => $riga['chiavi'], 'iva' => $riga['iva'] / 1000000, 'peso' => $riga['peso'] / 10000, 'scorte' => array_map('kvUtf8', $riga['scorte'])];
    }
    unset($totali['ammesso']);
    return (string) json_encode([
        'campi' => $campi,
        'righe' => $voci,
        'totali' => array_map(fn($importo) => $importo / $scala, $totali),
    ] + $prima['ordine'], JSON_INVALID_UTF8_SUBSTITUTE);
}

/** Takes the pieces of the lines off their stock; false when there are too few, null when the server refused. */
function kvPrendiScorte(array $righe): ?bool
{
    $richieste = kvWantedPieces($righe);
    $scorte = kvStock(array_map('strval', array_keys($richieste)), true);
    foreach ($scorte ?? [] as $chiave => $quantita) {
        $chiave = (string) $chiave;
        if ($quantita < $richieste[$chiave]) {
            return false;
        }
        $esito = kvQuery('UPDATE kv_disponibilita SET quantita = quantita - ? WHERE tipo = ? AND chiave = ?',
            [$richieste[$chiave], $chiave[0], substr($chiave, 1)]);
        if ($esito === null) {
            return null;
        }
    }
    return $scorte === null ? null : true;
}

/** Writes the row of an order. */
function kvScriviOrdine(string $codice, array $campi, array $totali, string $dati, string $riepilogo): bool
{
    global $cliente, $valuta;
    return null !== kvQuery(
        'INSERT INTO kv_ordini (codice, creato, cliente, nome, email, totale, valuta, metodo, stato, lingua, dati,'
        . ' riepilogo) VALUES (?, NOW(), ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)',
        [$codice, (int) $cliente, $campi['Nome'] . ' ' . $campi['Cognome'], $campi['Email'],
         kvScriptNumber($totali['totale'], kvScale()), kvUtf8(trim($valuta[0])), kvMetodoPrima($campi['NomePagamento']), 'nuovo',
         "<<1-IDlingua>>", $dati, $riepilogo]);
}

/**
 * Stores the order and takes its stock, both or neither. The code is the day and six letters of the form's token, so
 * that a form stores one order even where sessions don't wait for one another. Result: the code, and whether it is new.
 */
function kvSalvaOrdine(array $campi, array $righe, array $totali, string $riepilogo, string $gettone): array
{
    $dati = kvDatiOrdine($campi, $righe, $totali, kvScale());
    // The tables must stand before the transaction: making one would end it.
    kvRequireTables();
    kvRiga('SELECT COUNT(*) FROM kv_disponibilita WHERE tipo = ?', ['-']);
    for ($prova = 0; $prova < 5; $prova++) {
        $codice = date('ymd') . '-' . strtoupper(substr(hash('sha256', $gettone . ($prova ?: '')), 0, 6));
        mysqli_begin_transaction(kvConnection());
        $prese = kvPrendiScorte($righe);
        if ($prese && kvScriviOrdine($codice, $campi, $totali, $dati, $riepilogo) && mysqli_commit(kvConnection())) {
            return [$codice, true];
        }
        mysqli_rollback(kvConnection());
        if (kvRiga('SELECT id FROM kv_ordini WHERE codice = ? AND dati = ?', [$codice, $dati]) !== null) {
            return [$codice, false];
        }
        if ($prese === false) {
            kvRifiutaOrdine("<<4-articolo_non_disponibile>>");
        }
    }
    kvRifiutaOrdine("<<4-guasto>>");
    return ['', false];
}

/** The whole way of one order, once the form's token has proved good. */
function kvPrendiOrdine(string $gettone): void
{
    global $notazione;
    $dati = kvShopTables();
    kvRefusePrograms('kvRifiutaOrdine', "<<4-troppo_presto>>");
    $campi = kvModuloOrdine($dati);
    list($campi['Paese'], $zona) = kvPaeseOrdine();
    list($metodo, $campi['NomePagamento']) = kvMetodoOrdine();
    $righe = kvRigheOrdine($dati);
    $totali = kvTotaliOrdine($righe, $metodo, $zona, $dati);
    if (isset($_POST['senza_script'])) {
        // Nobody orders without having seen the sum, which no script could show in the form.
        $GLOBALS['kvConfirmation'] = kvOrderReview(kvConto($righe, $totali), $totali, kvDettaglio());
        return;
    }
    $parti = kvPartiOrdine($campi, $righe, $totali);
    $riepilogo = $parti['destinatario'] . "\r\n" . $parti['conto'] . $parti['coda'] . $parti['note'];
    if (!kvAdmitAttempt(kvAttemptsKey('ordine', ''), 'ordini')
        || !kvAdmitAttempt(kvAccountKey('ordine', $campi['Email']), 'ordini_email')) {
        kvRifiutaOrdine("<<4-troppi_tentativi>>");
    }
    list($codice, $nuovo) = kvSalvaOrdine($campi, $righe, $totali, $riepilogo, $gettone);
    $pagina = 'thankyou' . $metodo . '<<1-IDlingua>>.php';
    $_SESSION['ordine'] = $codice;
    $_SESSION['ordini'] = array_slice([$gettone => [$codice, $pagina]] + ($_SESSION['ordini'] ?? []), 0, 20, true);
    unset($_SESSION['gettone']);
    setcookie(kvCartCookie(), '', ['expires' => 1, 'path' => kvCookieFolder(), 'samesite' => 'Lax']);
    if ($nuovo) {
        kvStockChanged();
        $istruzioni = kvIstruzioniMail($metodo);
        $parti['coda'] .= $istruzioni === '' ? '' : "\r\n" . $istruzioni . "\r\n";
        kvMailOrdine(['codice' => $codice, 'email' => $campi['Email'], 'tabella' => kvTabellaOrdine($righe, $totali),
            'importo' => kvFormatUnits($totali['totale'], kvScale(), (int) $notazione)] + $parti);
        kvMailScarsi($righe);
    }
    kvGoTo($pagina);
}

kvStartSession(true);
$kvPattern = kvCampo($_POST, 'gettone', 64);
if (isset($_SESSION['ordini'][$kvPattern])) {
    list($_SESSION['ordine'], $kvPage) = $_SESSION['ordini'][$kvPattern];
    kvGoTo($kvPage);
}
if ($_SERVER['REQUEST_METHOD'] !== 'POST' || kvDettaglio() === '') {
    kvRifiutaOrdine("<<4-ordine_vuoto>>");
}
if (!kvIsTokenValid()) {
    kvRifiutaOrdine("<<4-sessione_scaduta>>");
}
if (($cliente === 0 && $regobbl) || kvIsBuyingDenied()) {
    kvGoTo("login<<1-IDlingua>>.php?" . ($cliente > 0 ? 'm=37&t=.37.' : ($clienteinattesa > 0 ? 'm=5' : 'm=23')));
}
kvPrendiOrdine($kvPattern);
include "messaggio.htm";
