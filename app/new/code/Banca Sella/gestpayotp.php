<?php
// ***1.0.7***
// Banca Sella, one-time passwords: each payment takes one password of the request list (kv_OTP, type 1). Without one
// left the payment can't be started.
include "funcs<<1-IDlingua>>.php";
include_once "kvpaynotice<<1-IDlingua>>.php";

$kvAccount = kvInizioPagamento() + ['negozio' => '', 'valuta' => '', 'terminale' => '', 'lingua' => ''];
$kvFields = kvCampiPagamento($kvAccount['negozio'], $kvAccount['valuta']);
$kvFields['terminale'] = $kvAccount['terminale'];
if ($kvAccount['lingua'] === 'idlan=1') {
    $kvFields['idlan'] = "<<4-codice_lingua>>";
}
$kvTaken = false;
$kvPassword = !kvDaPagare() ? null : kvRiga('SELECT pwd FROM kv_OTP WHERE pwdtype = 1 LIMIT 1');
if ($kvPassword !== null) {
    // Only the request that deletes the row may use it.
    kvQuery('DELETE FROM kv_OTP WHERE pwdtype = 1 AND pwd = ?', [$kvPassword['pwd']]);
    $kvTaken = kvRigheToccate() === 1;
    $kvFields['otp'] = $kvPassword['pwd'];
}
$kvFields['ritorno'] = kvIndirizzo("s2sotp<<1-IDlingua>>.php") . '?c=payok';
$kvFields['annullo'] = kvIndirizzo("s2sotp<<1-IDlingua>>.php") . '?c=payerr';
$kvFields['notifica'] = kvIndirizzo("s2sotp<<1-IDlingua>>.php");
kvPaginaPagamento(kvFormPagamento($kvTaken ? kvServizio('Banca Sella') : '', $kvAccount['negozio'], $kvFields));
