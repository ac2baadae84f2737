<?php
// ***1.0.7***
// Banca Sella, compatible mode: the shopper comes back. Nothing proves the payment in this mode, so the order is
// marked for checking against the bank's own list.
include "funcs<<1-IDlingua>>.php";

$kvOrdine = kvOrdineInCorso();
$kvRiuscito = kvCampo($_GET, 'c', 10) === 'payok' && $kvOrdine !== null;
if ($kvRiuscito) {
    kvStatoOrdine((string) $kvOrdine['codice'], 'da verificare');
}
kvEsitoPagamento($kvRiuscito);
