<?php
// ***1.0.7***
// Banca Sella, encryption: the order is enciphered by the bank's own component GestPayCrypt, which the merchant gets
// from the bank and puts among the shop's pictures as GestPayCrypt.inc.php. Without it the payment can't be started.
include "funcs<<1-IDlingua>>.php";
include_once "kvpaynotice<<1-IDlingua>>.php";

$kvAccount = kvInizioPagamento() + ['negozio' => '', 'valuta' => '', 'terminale' => '', 'lingua' => ''];
$kvFields = kvCampiPagamento($kvAccount['negozio'], $kvAccount['valuta']);
$kvFields['terminale'] = $kvAccount['terminale'];
if ($kvAccount['lingua'] === 'idlan=1') {
    $kvFields['idlan'] = "<<4-codice_lingua>>";
}
if (!class_exists('GestPayCrypt') && is_file('GestPayCrypt.inc.php')) {
    include_once "GestPayCrypt.inc.php";
}
$kvAddress = '';
if (class_exists('GestPayCrypt') && kvDaPagare()) {
    $kvCipher = new GestPayCrypt();
    $kvCipher->SetShopLogin($kvAccount['negozio']);
    $kvCipher->SetCurrency($kvAccount['valuta']);
    $kvCipher->SetAmount(number_format((float) kvOrdineInCorso()['totale'], 2, '.', ''));
    $kvCipher->SetShopTransactionID(kvOrdineInCorso()['codice']);
    if ($kvCipher->Encrypt()) {
        $kvAddress = kvServizio('Banca Sella');
        $kvFields = ['a' => $kvAccount['negozio'], 'b' => $kvCipher->GetEncryptedString()];
    }
}
kvPaginaPagamento(kvFormPagamento($kvAddress, $kvAccount['negozio'], $kvFields));
