<?php
// ***1.0.7***
// A customer's orders on their own page: when, how much, in which state, what was in each, and a button that puts the same
// lines into the cart again. A line whose values are no longer offered stays in the cart and says so.
include_once "kvcart.php";

/** Most orders that are shown. */
const KV_HISTORY = 50;

/** The words for the states that the back office knows; an order being looked at says so in general terms. */
const KV_ORDER_STATES = ['nuovo' => "<<4-stato_nuovo>>", 'pagato' => "<<4-stato_pagato>>", 'spedito' => "<<4-stato_spedito>>",
    'rifiutato' => "<<4-stato_rifiutato>>", 'annullato' => "<<4-stato_annullato>>"];

/** The orders of a customer, the latest first. */
function kvCustomerOrders(int $cliente): array
{
    return $cliente === 0 ? [] : kvQuery('SELECT codice, creato, totale, valuta, stato, riepilogo FROM kv_ordini WHERE cliente = ?'
        . ' ORDER BY creato DESC, id DESC LIMIT ' . KV_HISTORY, [$cliente]) ?? [];
}

/** The lines of a stored order as the cart keeps them: those of a release that didn't store the keys have no choices. */
function kvOrderCartLines(string $data): array
{
    $entries = [];
    foreach (json_decode($data, true)['righe'] ?? [] as $row) {
        $keys = array_slice(array_pad(array_filter((array) ($row['chiavi'] ?? []), 'is_string'), 4, ''), 0, 4);
        if (preg_match('/^[1-9]\d{0,8}$/D', (string) ($row['id'] ?? '')) && ($row['quantita'] ?? 0) > 0) {
            $entries[] = ['id' => (int) $row['id'], 'q' => min(99999, (int) $row['quantita']), 'k' => $keys];
        }
    }
    return $entries;
}

/** Puts the lines of an order of this customer to those of the cart; the reason why it can't, empty when it could. */
function kvRepeatOrder(array &$entries, string $code, int $cliente): string
{
    $order = $cliente === 0 ? null
        : kvRiga('SELECT dati FROM kv_ordini WHERE codice = ? AND cliente = ?', [$code, $cliente]);
    if ($order === null || !kvIsTokenValid()) {
        return "<<4-sessione_scaduta>>";
    }
    $positions = array_flip(array_map('kvLineMark', $entries));
    foreach (kvOrderCartLines((string) $order['dati']) as $added) {
        $position = $positions[kvLineMark($added)] ?? null;
        if ($position === null) {
            $entries[] = $added;
        } else {
            $entries[$position]['q'] = min(99999, $entries[$position]['q'] + $added['q']);
        }
    }
    return '';
}

/** One order as an entry of the list. */
function kvHistoryEntry(array $order): string
{
    $state = KV_ORDER_STATES[$order['stato']] ?? "<<4-stato_in_corso>>";
    $code = kvHtmlUtf8($order['codice']);
    return '<li><details><summary>' . $code . ' <span>' . kvHtml(date('d.m.Y', (int) strtotime($order['creato']))) . '</span> <strong>'
        . kvHtmlUtf8($order['valuta']) . ' ' . kvFormatUnits((int) round((float) $order['totale'] * kvScale()), kvScale(),
            (int) $GLOBALS['notazione']) . '</strong> <span class="nota">' . kvHtml($state) . '</span></summary><pre class="riepilogo">'
        . kvHtmlUtf8($order['riepilogo']) . '</pre></details><form method="post" action="kvcarrello.php" accept-charset="utf-8">'
        . '<input type="hidden" name="gettone" value="' . kvGettone() . '"><button type="submit" class="secondario" name="ripeti" value="'
        . $code . '">' . kvHtml("<<4-storico_ripeti>>") . '<span class="nascosto">: ' . $code . '</span></button></form></li>';
}

/** The list of a customer's orders. */
function kvOrderHistory(int $cliente): string
{
    $entries = implode('', array_map('kvHistoryEntry', kvCustomerOrders($cliente)));
    return '<section class="storico"><h2>' . kvHtml("<<4-storico_titolo>>") . '</h2>' . ($entries === ''
        ? '<p>' . kvHtml("<<4-storico_nessuno>>") . '</p>' : "<ul class=\"ordini\">$entries</ul>") . "</section>\n";
}
