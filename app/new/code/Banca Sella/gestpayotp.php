<?php
// ***1.0.7***
// Banca Sella, one-time passwords: each payment takes one password of the request list (kv_OTP, type 1). Without one
// left the payment can't be started.
include "funcs<<1-IDlingua>>.php";
include_once "kvpaynotice<<1-IDlingua>>.php";

$kvConto = kvInizioPagamento() + ['negozio' => '', 'valuta' => '', 'terminale' => '', 'lingua' => ''];
$kvCampi = kvCampiPagamento($kvConto['negozio'], $kvConto['valuta']);
$kvCampi['terminale'] = $kvConto['terminale'];
if ($kvConto['lingua'] === 'idlan=1') {
    $kvCampi['idlan'] = "<<4-codice_lingua>>";
}
$kvPresa = false;
$kvPassword = !kvDaPagare() ? null : kvRiga('SELECT pwd FROM kv_OTP WHERE pwdtype = 1 LIMIT 1');
if ($kvPassword !== null) {
    // Only the request that deletes the row may use it.
    kvQuery('DELETE FROM kv_OTP WHERE pwdtype = 1 AND pwd = ?', [$kvPassword['pwd']]);
    $kvPresa = kvRigheToccate() === 1;
    $kvCampi['otp'] = $kvPassword['pwd'];
}
$kvCampi['ritorno'] = kvIndirizzo("s2sotp<<1-IDlingua>>.php") . '?c=payok';
$kvCampi['annullo'] = kvIndirizzo("s2sotp<<1-IDlingua>>.php") . '?c=payerr';
$kvCampi['notifica'] = kvIndirizzo("s2sotp<<1-IDlingua>>.php");
kvPaginaPagamento(kvFormPagamento($kvPresa ? kvServizio('Banca Sella') : '', $kvConto['negozio'], $kvCampi));
