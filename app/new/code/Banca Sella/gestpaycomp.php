<?php
// ***1.0.7***
// Banca Sella, compatible mode: the order goes to the service in the clear.
include "funcs<<1-IDlingua>>.php";
include_once "kvpaynotice<<1-IDlingua>>.php";

$kvAccount = kvInizioPagamento() + ['negozio' => '', 'valuta' => '', 'terminale' => '', 'lingua' => ''];
$kvFields = kvCampiPagamento($kvAccount['negozio'], $kvAccount['valuta']);
$kvFields['terminale'] = $kvAccount['terminale'];
if ($kvAccount['lingua'] === 'idlan=1') {
    $kvFields['idlan'] = "<<4-codice_lingua>>";
}
$kvFields['ritorno'] = kvIndirizzo("s2scomp<<1-IDlingua>>.php") . '?c=payok';
$kvFields['annullo'] = kvIndirizzo("s2scomp<<1-IDlingua>>.php") . '?c=payerr';
kvPaginaPagamento(kvFormPagamento(kvServizio('Banca Sella'), $kvAccount['negozio'], $kvFields));
