<?php
// ***1.0.7***
// SysPay: the shopper comes back from the service with a signed receipt; without a valid one the payment counts as
// not made.
define('KORVANE_SYSPAY', 1);
include "syspay<<1-IDlingua>>.php";

$kvRicevuta = [];
foreach (['negozio', 'ordine', 'importo', 'esito'] as $kvNome) {
    $kvRicevuta[$kvNome] = kvCampo($_GET, $kvNome);
}
$kvOrdine = kvOrdineInCorso();
$kvValida = $kvConto[1] !== '' && $kvOrdine !== null && $kvRicevuta['esito'] === 'OK'
    && hash_equals(kvFirma($kvRicevuta, $kvConto[1]), kvCampo($_GET, 'firma'))
    && $kvRicevuta['ordine'] === $kvOrdine['codice']
    && $kvRicevuta['importo'] === (string) kvCentesimi($kvOrdine);
if ($kvValida) {
    kvStatoOrdine((string) $kvOrdine['codice'], 'pagato');
}
kvEsitoPagamento($kvValida);
