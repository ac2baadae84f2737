<?php
// ***1.0.7***
// Banca Sella, compatible mode: the shopper comes back. Nothing proves the payment in this mode, so the order is only
// marked for checking against the bank's own list.
include "funcs<<1-IDlingua>>.php";
include_once "kvpaynotice<<1-IDlingua>>.php";

$kvOrder = kvOrdineInCorso();
$kvSucceeded = kvCampo($_GET, 'c', 10) === 'payok' && $kvOrder !== null;
if ($kvSucceeded) {
    kvQuery("UPDATE kv_ordini SET stato = 'da verificare' WHERE codice = ? AND stato = 'nuovo'", [$kvOrder['codice']]);
}
kvEsitoPagamento($kvSucceeded);
