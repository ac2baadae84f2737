<?php
// ***1.0.7***
// Banca Sella, compatible mode: the order goes to the service in the clear.
include "funcs<<1-IDlingua>>.php";

$kvCampi = kvCampiPagamento(kvCampo($_POST, 'negozio', 40), kvCampo($_POST, 'valuta', 10));
$kvCampi['terminale'] = kvCampo($_POST, 'terminale', 10);
if (kvCampo($_POST, 'lingua', 10) === 'idlan=1') {
    $kvCampi['idlan'] = "<<4-codice_lingua>>";
}
$kvCampi['ritorno'] = kvIndirizzo("s2scomp<<1-IDlingua>>.php") . '?c=payok';
$kvCampi['annullo'] = kvIndirizzo("s2scomp<<1-IDlingua>>.php") . '?c=payerr';
kvPaginaPagamento(kvFormPagamento(kvServizio('Banca Sella'), $kvCampi['negozio'], $kvCampi));
