<?php
// ***1.0.7***
// Banca Sella, compatible mode: the order goes to the service in the clear.
include "funcs<<1-IDlingua>>.php";
include_once "kvpaynotice<<1-IDlingua>>.php";

$kvConto = kvInizioPagamento() + ['negozio' => '', 'valuta' => '', 'terminale' => '', 'lingua' => ''];
$kvCampi = kvCampiPagamento($kvConto['negozio'], $kvConto['valuta']);
$kvCampi['terminale'] = $kvConto['terminale'];
if ($kvConto['lingua'] === 'idlan=1') {
    $kvCampi['idlan'] = "<<4-codice_lingua>>";
}
$kvCampi['ritorno'] = kvIndirizzo("s2scomp<<1-IDlingua>>.php") . '?c=payok';
$kvCampi['annullo'] = kvIndirizzo("s2scomp<<1-IDlingua>>.php") . '?c=payerr';
kvPaginaPagamento(kvFormPagamento(kvServizio('Banca Sella'), $kvConto['negozio'], $kvCampi));
