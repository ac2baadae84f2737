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
const BO_ACTIONS = ['prova' => 'boRemoteProbe', 'ordini' => 'boRemoteOrders', 'tolti' => 'boRemoteDeleted',
    'stato' => 'boRemoteSetState', 'nota' => 'boRemoteAddNote', 'scorte' => 'boRemoteStock', 'scorta' => 'boRemoteSetStock'];

/** That the two understand each other, and which shop this is. */
function boRemoteProbe(array $data): array
{
    return ['versione' => 1, 'negozio' => kvUtf8(boSettings()['negozio']), 'ora' => time()];
}

$boFields = boRemoteFields();
$boKey = boRemoteKey();
boRemoteAdmit($boFields, $boKey);
kvRequireTables();
$boData = json_decode($boFields['dati'], true, 8);
$boAction = is_array($boData) && is_string($boData['azione'] ?? null) ? BO_ACTIONS[$boData['azione']] ?? '' : '';
boRemoteAnswer($boKey, $boFields['numero'], $boAction === ''
    ? boRemoteError('Il negozio non conosce questa richiesta: pubblicarlo di nuovo.') : $boAction($boData));
