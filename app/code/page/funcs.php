<?php
// ***1.0.7***
// The entry of every page: settings, request values, the customer. A page includes it first, and may do so more than
// once (a page that prints another one): only the first time counts.
// It leaves as globals: the settings of the build ($ivacompresa to $scontoimp), $cliente (0: a visitor),
// $clienteinattesa, $listino (0 to 9), $scontocliente (percent), $inaccessibile (by listino), $cartdisp, $ordercliente.

if (!defined('KORVANE_SHOP')) {
    define('KORVANE_SHOP', '1.0.8');
    include_once "kvdb.php";
    include_once "kvcontext.php";
    include_once "kvprice.php";
    include_once "kvarticle.php";
    include_once "kvfiltro.php";
    include_once "kvpay.php";

    // The settings, first as a shop without any has them, then as the build wrote them.
    $ivacompresa = 0;
    $visdec = [1, 1, 2];
    $vissconto = 0;
    $valuta = ['', ''];
    $cambio = 0;
    $notazione = 0;
    $regobbl = 0;
    $regpr = 0;
    $subtitleincart = 0;
    $visofferta = '';
    $visnovita = '';
    $scontoperc = array_fill(0, 10, 1);
    $scontoimp = array_fill(0, 10, 0);
    <<1-php_globals>>

    if (!isset($Lingua)) {
        $Lingua = "<<1-IDlingua>>";
    }
    $notazione = kvNotation((int) $notazione);
    $inaccessibile = array_fill(0, 10, 0);
    $scontorep = array_fill(0, 10, 1.0);
    $ivarep = 0.0;
    $cartdisp = '';
    $ordercliente = '';
    $rowArt = [];
    kvPrepareRequest();
    kvPrepareResponse();
    list($cliente, $listino, $scontocliente) = kvCustomer();
}
