<?php
// ***1.0.7***
// SysPay: the notice that the service sends to the shop's server, signed with the key of the receipts.
define('KORVANE_SYSPAY', 1);
include "syspay<<1-IDlingua>>.php";

kvNotifica('SysPay', ['negozio' => $kvAccount[0], 'valuta' => kvValutaServizio(), 'chiave' => $kvAccount[1]]);
