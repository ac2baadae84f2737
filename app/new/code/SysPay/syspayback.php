<?php
// ***1.0.7***
// SysPay: the shopper left the service without paying.
include "funcs<<1-IDlingua>>.php";
include_once "kvpaynotice<<1-IDlingua>>.php";

kvEsitoPagamento(false);
