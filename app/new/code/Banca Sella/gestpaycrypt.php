<?php
// ***1.0.7***
// Banca Sella, encryption: the order is enciphered by the bank's own component GestPayCrypt, which the merchant gets
// from the bank. Without it the payment can't be started.
include "funcs<<1-IDlingua>>.php";

$kvCampi = kvCampiPagamento(kvCampo($_POST, 'negozio', 40), kvCampo($_POST, 'valuta', 10));
$kvCampi['terminale'] = kvCampo($_POST, 'terminale', 10);
if (kvCampo($_POST, 'lingua', 10) === 'idlan=1') {
    $kvCampi['idlan'] = "<<4-codice_lingua>>";
}
$kvIndirizzo = '';
if (class_exists('GestPayCrypt') && kvOrdineInCorso() !== null) {
    $kvCifra = new GestPayCrypt();
    $kvCifra->SetShopLogin($kvCampi['negozio']);
    $kvCifra->SetCurrency($kvCampi['valuta']);
    $kvCifra->SetAmount(number_format((float) kvOrdineInCorso()['totale'], 2, '.', ''));
    $kvCifra->SetShopTransactionID(kvOrdineInCorso()['codice']);
    if ($kvCifra->Encrypt()) {
        $kvIndirizzo = kvServizio('Banca Sella');
        $kvCampi = ['a' => $kvCampi['negozio'], 'b' => $kvCifra->GetEncryptedString(), 'negozio' => $kvCampi['negozio']];
    }
}
kvPaginaPagamento(kvFormPagamento($kvIndirizzo, $kvCampi['negozio'], $kvCampi));
