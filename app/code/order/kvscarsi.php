<?php
// ***1.0.7***
// Tells the merchant what an order has left in short supply, once: when the count passes the number that they set.

/** The keys of kv_disponibilita that ran short by an order, with the pieces left. */
function kvAppenaScarsi(array $righe): array
{
    $soglia = kvLowStockLimit();
    $richieste = kvWantedPieces($righe);
    $scarsi = [];
    foreach (kvStock(array_map('strval', array_keys($richieste))) ?? [] as $chiave => $pezzi) {
        if ($pezzi <= $soglia && $pezzi + $richieste[$chiave] > $soglia) {
            $scarsi[$chiave] = $pezzi;
        }
    }
    return $scarsi;
}

/** Writes to the merchant about the lines of a new order whose stock runs short. */
function kvMailScarsi(array $righe): void
{
    $scarsi = kvAppenaScarsi($righe);
    $testo = '';
    foreach ($righe as $riga) {
        foreach (array_intersect(array_map('strval', $riga['scorte']), array_map('strval', array_keys($scarsi))) as $chiave) {
            $valore = $chiave[0] === 'V' ? ' - ' . (explode('.', $chiave, 3)[2] ?? '') : '';
            $testo .= kvUtf8($riga['codice'] . $valore) . ': ' . $scarsi[$chiave] . "\r\n";
        }
    }
    if ($testo !== '') {
        $negozio = kvMittente();
        kvMail($negozio['email'], $negozio['email'], $negozio['nome'] . ' - Scorte in esaurimento',
            "Pezzi rimasti:\r\n" . $testo);
    }
}
