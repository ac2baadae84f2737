<?php
// ***1.0.7***
// Banca Sella, encryption: the order is enciphered by the bank's own component GestPayCrypt, which the merchant gets
// from the bank and puts among the shop's pictures as GestPayCrypt.inc.php. Without it the payment can't be started.
include "funcs<<1-IDlingua>>.php";
include_once "kvpaynotice<<1-IDlingua>>.php";

$kvConto = kvInizioPagamento() + ['negozio' => '', 'valuta' => '', 'terminale' => '', 'lingua' => ''];
$kvCampi = kvCampiPagamento($kvConto['negozio'], $kvConto['valuta']);
$kvCampi['terminale'] = $kvConto['terminale'];
if ($kvConto['lingua'] === 'idlan=1') {
    $kvCampi['idlan'] = "<<4-codice_lingua>>";
}
if (!class_exists('GestPayCrypt') && is_file('GestPayCrypt.inc.php')) {
    include_once "GestPayCrypt.inc.php";
}
$kvIndirizzo = '';
if (class_exists('GestPayCrypt') && kvDaPagare()) {
    $kvCifra = new GestPayCrypt();
    $kvCifra->SetShopLogin($kvConto['negozio']);
    $kvCifra->SetCurrency($kvConto['valuta']);
    $kvCifra->SetAmount(number_format((float) kvOrdineInCorso()['totale'], 2, '.', ''));
    $kvCifra->SetShopTransactionID(kvOrdineInCorso()['codice']);
    if ($kvCifra->Encrypt()) {
        $kvIndirizzo = kvServizio('Banca Sella');
        $kvCampi = ['a' => $kvConto['negozio'], 'b' => $kvCifra->GetEncryptedString()];
    }
}
kvPaginaPagamento(kvFormPagamento($kvIndirizzo, $kvConto['negozio'], $kvCampi));
