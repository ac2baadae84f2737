<?php
// ***1.0.7***
// Banca Sella, one-time passwords: each payment takes one password of the request list (kv_OTP, type 1). Without one
// left the payment can't be started.
include "funcs<<1-IDlingua>>.php";

$kvCampi = kvCampiPagamento(kvCampo($_POST, 'negozio', 40), kvCampo($_POST, 'valuta', 10));
$kvCampi['terminale'] = kvCampo($_POST, 'terminale', 10);
if (kvCampo($_POST, 'lingua', 10) === 'idlan=1') {
    $kvCampi['idlan'] = "<<4-codice_lingua>>";
}
$kvPassword = kvRiga('SELECT pwd FROM kv_OTP WHERE pwdtype = 1 LIMIT 1');
$kvPresa = false;
if ($kvPassword !== null && kvOrdineInCorso() !== null) {
    // Only the request that deletes the row may use it.
    kvQuery('DELETE FROM kv_OTP WHERE pwdtype = 1 AND pwd = ?', [$kvPassword['pwd']]);
    $kvPresa = (int) (kvRiga('SELECT ROW_COUNT() AS righe')['righe'] ?? 0) === 1;
    $kvCampi['otp'] = $kvPassword['pwd'];
}
$kvCampi['ritorno'] = kvIndirizzo("s2sotp<<1-IDlingua>>.php") . '?c=payok';
$kvCampi['annullo'] = kvIndirizzo("s2sotp<<1-IDlingua>>.php") . '?c=payerr';
kvPaginaPagamento(kvFormPagamento($kvPresa ? kvServizio('Banca Sella') : '', $kvCampi['negozio'], $kvCampi));
