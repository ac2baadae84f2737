<?php
// ***1.0.7***
// A customer's orders on their own page: when, how much, in which state, what was in each, and a button that puts the same
// lines into the cart again. A line whose values are no longer offered stays in the cart and says so.
include_once "kvcart.php";

/** Most orders that are shown. */
const KV_STORICO = 50;

/** The words for the states that the back office knows; an order being looked at says so in general terms. */
const KV_STATI_ORDINE = ['nuovo' => "<<4-stato_nuovo>>", 'pagato' => "<<4-stato_pagato>>", 'spedito' => "<<4-stato_spedito>>",
    'rifiutato' => "<<4-stato_rifiutato>>", 'annullato' => "<<4-stato_annullato>>"];

/** The orders of a customer, the latest first. */
function kvOrdiniCliente(int $cliente): array
{
    return $cliente === 0 ? [] : kvQuery('SELECT codice, creato, totale, valuta, stato, riepilogo FROM kv_ordini WHERE cliente = ?'
        . ' ORDER BY creato DESC, id DESC LIMIT ' . KV_STORICO, [$cliente]) ?? [];
}

/** The lines of a stored order as the cart keeps them: those of a release that didn't store the keys have no choices. */
function kvVociOrdine(string $dati): array
{
    $voci = [];
    foreach (json_decode($dati, true)['righe'] ?? [] as $riga) {
        $chiavi = array_slice(array_pad(array_filter((array) ($riga['chiavi'] ?? []), 'is_string'), 4, ''), 0, 4);
        if (preg_match('/^[1-9]\d{0,8}$/D', (string) ($riga['id'] ?? '')) && ($riga['quantita'] ?? 0) > 0) {
            $voci[] = ['id' => (int) $riga['id'], 'q' => min(99999, (int) $riga['quantita']), 'k' => $chiavi];
        }
    }
    return $voci;
}

/** Puts the lines of an order of this customer to those of the cart; the reason why it can't, empty when it could. */
function kvRipeti(array &$voci, string $codice, int $cliente): string
{
    $ordine = $cliente === 0 ? null
        : kvRiga('SELECT dati FROM kv_ordini WHERE codice = ? AND cliente = ?', [$codice, $cliente]);
    if ($ordine === null || !kvIsTokenValid()) {
        return "<<4-sessione_scaduta>>";
    }
    $posti = array_flip(array_map('kvLineMark', $voci));
    foreach (kvVociOrdine((string) $ordine['dati']) as $nuova) {
        $posto = $posti[kvLineMark($nuova)] ?? null;
        if ($posto === null) {
            $voci[] = $nuova;
        } else {
            $voci[$posto]['q'] = min(99999, $voci[$posto]['q'] + $nuova['q']);
        }
    }
    return '';
}

/** One order as an entry of the list. */
function kvVoceStorico(array $ordine): string
{
    $stato = KV_STATI_ORDINE[$ordine['stato']] ?? "<<4-stato_in_corso>>";
    $codice = kvHtmlUtf8($ordine['codice']);
    return '<li><details><summary>' . $codice . ' <span>' . kvHtml(date('d.m.Y', (int) strtotime($ordine['creato']))) . '</span> <strong>'
        . kvHtmlUtf8($ordine['valuta']) . ' ' . kvFormatUnits((int) round((float) $ordine['totale'] * kvScale()), kvScale(),
            (int) $GLOBALS['notazione']) . '</strong> <span class="nota">' . kvHtml($stato) . '</span></summary><pre class="riepilogo">'
        . kvHtmlUtf8($ordine['riepilogo']) . '</pre></details><form method="post" action="kvcarrello.php" accept-charset="utf-8">'
        . '<input type="hidden" name="gettone" value="' . kvGettone() . '"><button type="submit" class="secondario" name="ripeti" value="'
        . $codice . '">' . kvHtml("<<4-storico_ripeti>>") . '<span class="nascosto">: ' . $codice . '</span></button></form></li>';
}

/** The list of a customer's orders. */
function kvStorico(int $cliente): string
{
    $voci = implode('', array_map('kvVoceStorico', kvOrdiniCliente($cliente)));
    return '<section class="storico"><h2>' . kvHtml("<<4-storico_titolo>>") . '</h2>' . ($voci === ''
        ? '<p>' . kvHtml("<<4-storico_nessuno>>") . '</p>' : "<ul class=\"ordini\">$voci</ul>") . "</section>\n";
}
