<?php
// Orders and stock for the merchant's own machine: signed requests, without session and access data. What may be asked,
// and how requests and answers are signed, is described in docs/orders.md of the sources.
include_once __DIR__ . '/bo_impostazioni.php';
include_once __DIR__ . '/bo_pagina.php';
include_once __DIR__ . '/bo_remoto.php';
include_once __DIR__ . '/bo_remoto_ordini.php';
include_once __DIR__ . '/bo_remoto_scorte.php';

ini_set('display_errors', '0');
header('X-Content-Type-Options: nosniff');
header('X-Robots-Tag: noindex, nofollow');
header('Cache-Control: no-store');
header("Content-Security-Policy: default-src 'none'");
// A state that is set gets its mail, whether or not the caller still listens.
ignore_user_abort(true);
$GLOBALS['kvFailurePage'] = function (): string {
    header('Content-Type: text/plain; charset=utf-8');
    return "database\n";
};

/** What can be asked. Each takes the request and gives the answer. */
const BO_AZIONI = ['prova' => 'boRemotoProva', 'ordini' => 'boRemotoOrdini', 'tolti' => 'boRemotoTolti',
    'stato' => 'boRemotoStato', 'nota' => 'boRemotoNota', 'scorte' => 'boRemotoScorte', 'scorta' => 'boRemotoScorta'];

/** That the two understand each other, and which shop this is. */
function boRemotoProva(array $dati): array
{
    return ['versione' => 1, 'negozio' => kvUtf8(boImpostazioni()['negozio']), 'ora' => time()];
}

$boCampi = boRemotoCampi();
$boChiave = boRemotoChiave();
boRemotoAmmetti($boCampi, $boChiave);
kvRequireTables();
$boDati = json_decode($boCampi['dati'], true, 8);
$boAzione = is_array($boDati) && is_string($boDati['azione'] ?? null) ? BO_AZIONI[$boDati['azione']] ?? '' : '';
boRemotoRispondi($boChiave, $boCampi['numero'], $boAzione === ''
    ? boRemotoErrore('Il negozio non conosce questa richiesta: pubblicarlo di nuovo.') : $boAzione($boDati));
