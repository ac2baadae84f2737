<?php
// ***1.0.7***
// Takes an order: checks the form, works the order out again from the database, stores it, writes to customer and
// merchant, and goes on to the page of the chosen payment method (thankyou1 to thankyou4).
include "funcs.php";

/** Ends with a page that names what is wrong. */
function kvRifiutaOrdine(string $motivo): void
{
    $_SESSION['avviso'] = $motivo;
    header("Location: messaggio<<1-IDlingua>>.php", true, 303);
    exit;
}

/** The form's fields, by the names of the order form; ends the order when a required one is missing or wrong. */
function kvModuloOrdine(array $dati): array
{
    $campi = [];
    foreach (['Nome', 'Cognome', 'RagioneSociale', 'PartitaIVA', 'Indirizzo', 'CAP', 'Citta', 'Provincia', 'Paese',
              'Telefono', 'Email', 'NomePagamento'] as $nome) {
        $campi[$nome] = str_replace(["\r", "\n"], ' ', kvCampo($_POST, $nome));
    }
    $campi['Note'] = kvCampo($_POST, 'Note', 2000);
    $richiesti = ['Nome', 'Cognome', 'Indirizzo', 'CAP', 'Citta', 'Paese', 'Email'];
    foreach (['obbl_rsoc' => 'RagioneSociale', 'obbl_piva' => 'PartitaIVA', 'obbl_tel' => 'Telefono'] as $n => $nome) {
        if (($dati[$n] ?? 0.0) > 0) {
            $richiesti[] = $nome;
        }
    }
    foreach ($richiesti as $nome) {
        if ($campi[$nome] === '') {
            kvRifiutaOrdine("<<4-ordine_campi_mancanti>>");
        }
    }
    if (filter_var($campi['Email'], FILTER_VALIDATE_EMAIL) === false) {
        kvRifiutaOrdine("<<4-ordine_email_errata>>");
    }
    if (!isset($_POST['Privacy']) || (($dati['obbl_magg'] ?? 1.0) > 0 && !isset($_POST['Maggiorenne']))) {
        kvRifiutaOrdine("<<4-ordine_consensi_mancanti>>");
    }
    return $campi;
}

/** The lines of the order from the browser's list; ends the order when one can't be bought. */
function kvRigheOrdine(array $dati): array
{
    $voci = json_decode(kvCampo($_POST, 'Dettaglio', 60000), true);
    if (!is_array($voci) || $voci === [] || count($voci) > 200) {
        kvRifiutaOrdine("<<4-ordine_vuoto>>");
    }
    $righe = [];
    foreach ($voci as $voce) {
        $riga = is_array($voce) ? kvRigaOrdine($voce) : null;
        if ($riga === null) {
            kvRifiutaOrdine("<<4-articolo_non_disponibile>>");
        }
        if ($riga['quantita'] < ($dati['qminima'] ?? 0.0)) {
            kvRifiutaOrdine("<<4-quantita_minima>>");
        }
        $righe[] = $riga;
    }
    return $righe;
}

/** The order as plain text, for the mails and the back office. */
function kvRiepilogoOrdine(array $campi, array $righe, array $totali): string
{
    $testo = $campi['Nome'] . ' ' . $campi['Cognome'] . "\r\n";
    foreach (['RagioneSociale', 'PartitaIVA', 'Indirizzo'] as $nome) {
        $testo .= $campi[$nome] === '' ? '' : $campi[$nome] . "\r\n";
    }
    $testo .= trim($campi['CAP'] . ' ' . $campi['Citta'] . ' ' . $campi['Provincia']) . "\r\n";
    $testo .= $campi['Paese'] . "\r\n";
    $testo .= "<<4-ordine_email>>: " . $campi['Email'] . "\r\n";
    $testo .= $campi['Telefono'] === '' ? '' : "<<4-ordine_telefono>>: " . $campi['Telefono'] . "\r\n";
    $testo .= "\r\n";
    foreach ($righe as $riga) {
        $scelte = $riga['scelte'] === '' ? '' : ' (' . $riga['scelte'] . ')';
        $testo .= "<<4-carrello_articolo>>: " . $riga['testo'] . $scelte . "\r\n  "
            . $riga['quantita'] . ' x ' . kvTestoImporto($riga['importo']) . ' = '
            . kvTestoImporto($riga['importo'] * $riga['quantita']) . "\r\n";
    }
    $testo .= "\r\n<<4-carrello_merce>>: " . kvTestoImporto($totali['merce']) . "\r\n";
    if ($totali['sconto'] > 0) {
        $testo .= "<<4-sconto>>: -" . kvTestoImporto($totali['sconto']) . "\r\n";
    }
    if ($totali['iva'] > 0) {
        $testo .= "<<4-carrello_iva>>: " . kvTestoImporto($totali['iva']) . "\r\n";
    }
    $testo .= "<<4-carrello_spedizione>>: " . kvTestoImporto($totali['spese']) . "\r\n";
    if ($totali['ivaspese'] > 0) {
        $testo .= "<<4-carrello_iva_spedizione>>: " . kvTestoImporto($totali['ivaspese']) . "\r\n";
    }
    $testo .= "<<4-carrello_totale>>: " . kvTestoImporto($totali['totale']) . "\r\n";
    $testo .= "<<4-ordine_pagamento>>: " . $campi['NomePagamento'] . "\r\n";
    return $testo . ($campi['Note'] === '' ? '' : "\r\n<<4-ordine_note>>: " . $campi['Note'] . "\r\n");
}

/** The customer's mail: the merchant's text with amount, code and summary in it. */
function kvTestoMail(string $codice, string $totale_lordo, string $riepilogo): string
{
    $mail_valuta = $GLOBALS['valuta'][0];
    $info = "";
    <<1-testo_email>>
    return $info === "" ? $riepilogo : $info;
}

/** Sends one plain mail; false when the server refused it. */
function kvMail(string $a, string $da, string $oggetto, string $testo): bool
{
    $codifica = fn(string $parole): string => '=?windows-1252?B?' . base64_encode($parole) . '?=';
    $righe = ['MIME-Version: 1.0', 'Content-Type: text/plain; charset=windows-1252',
              'Content-Transfer-Encoding: base64'];
    if (filter_var($da, FILTER_VALIDATE_EMAIL) !== false) {
        array_unshift($righe, 'From: ' . $da);
    }
    return @mail($a, $codifica($oggetto), chunk_split(base64_encode($testo)), implode("\r\n", $righe));
}

/** Stores the order under a fresh code, which is the result. */
function kvSalvaOrdine(array $campi, array $righe, array $totali, string $riepilogo): string
{
    global $cliente, $valuta;
    kvTabelle();
    $dati = json_encode(['campi' => $campi, 'righe' => $righe, 'totali' => $totali],
        JSON_INVALID_UTF8_SUBSTITUTE | JSON_PARTIAL_OUTPUT_ON_ERROR);
    for ($prova = 0; $prova < 5; $prova++) {
        $codice = date('ymd') . '-' . strtoupper(bin2hex(random_bytes(3)));
        $esito = kvQuery(
            'INSERT INTO kv_ordini (codice, creato, cliente, nome, email, totale, valuta, metodo, stato, lingua, dati,'
            . ' riepilogo) VALUES (?, NOW(), ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)',
            [$codice, $cliente, $campi['Nome'] . ' ' . $campi['Cognome'], $campi['Email'], $totali['totale'],
             trim($valuta[0]), $campi['NomePagamento'], 'nuovo', "<<1-IDlingua>>", $dati, $riepilogo]);
        if ($esito !== null) {
            return $codice;
        }
    }
    kvRifiutaOrdine("<<4-guasto>>");
    return '';
}

kvSessione(true);
if ($_SERVER['REQUEST_METHOD'] !== 'POST' || kvCampo($_POST, 'Dettaglio', 60000) === '') {
    kvRifiutaOrdine("<<4-ordine_vuoto>>");
}
if (!kvGettoneValido()) {
    kvRifiutaOrdine("<<4-sessione_scaduta>>");
}
if ($cliente === 0 && $regobbl) {
    header("Location: login<<1-IDlingua>>.php?m=23", true, 303);
    exit;
}
$kvDati = kvDatiNegozio();
$kvCampi = kvModuloOrdine($kvDati);
$kvRighe = kvRigheOrdine($kvDati);
$kvMetodo = (int) kvCampo($_POST, 'Metodo', 2);
$kvZona = (int) kvCampo($_POST, 'LSStato', 2);
$kvPagina = 'thankyou' . $kvMetodo . '<<1-IDlingua>>.php';
if ($kvMetodo < 1 || $kvMetodo > 4 || $kvZona < 1 || $kvZona > 8 || !is_file($kvPagina)) {
    kvRifiutaOrdine("<<4-metodo_non_ammesso>>");
}
$kvTotale = kvTotali($kvRighe, $kvMetodo, $kvZona, $kvDati, $listino, (float) $scontocliente);
if (!$kvTotale['ammesso']) {
    kvRifiutaOrdine("<<4-metodo_non_ammesso>>");
}
if ($kvTotale['merce'] < ($kvDati['minimo'] ?? 0.0)) {
    kvRifiutaOrdine("<<4-ordine_minimo>>");
}
$kvRiepilogo = kvRiepilogoOrdine($kvCampi, $kvRighe, $kvTotale);
$kvCodice = kvSalvaOrdine($kvCampi, $kvRighe, $kvTotale, $kvRiepilogo);
$_SESSION['ordine'] = $kvCodice;

list($kvIndirizzoNegozio, $kvNomeNegozio) = kvLinee(<<<'KORVANE_VALORI'
<<1-email_ordini>>
<<1-negozio>>
KORVANE_VALORI
);
$kvOggetto = $kvNomeNegozio . " - <<4-ordine_titolo>> " . $kvCodice;
$kvFirma = implode("\r\n", kvLinee(<<<'KORVANE_VALORI'
<<1-firma>>
KORVANE_VALORI
));
$kvImporto = kvFormato($kvTotale['totale'], (bool) $visdec[0], (int) $notazione);
kvMail($kvCampi['Email'], $kvIndirizzoNegozio, $kvOggetto,
    kvTestoMail($kvCodice, $kvImporto, $kvRiepilogo) . "\r\n" . $kvFirma);
kvMail($kvIndirizzoNegozio, $kvIndirizzoNegozio, $kvOggetto, "<<4-ordine_codice>>: $kvCodice\r\n\r\n" . $kvRiepilogo);
header('Location: ' . $kvPagina, true, 303);
