<?php
// ***1.0.7***
// SysPay: the shopper comes back from the service with a signed receipt, which counts as much as the notice; without a
// valid one the payment counts as not made.
define('KORVANE_SYSPAY', 1);
include "syspay<<1-IDlingua>>.php";

$kvReceipt = ['negozio' => $kvAccount[0], 'valuta' => kvValutaServizio(), 'chiave' => $kvAccount[1]];
kvEsitoPagamento(kvCampo($_GET, 'esito') === 'OK' && kvAccettaEsito($_GET, 'SysPay', $kvReceipt) === 200);
