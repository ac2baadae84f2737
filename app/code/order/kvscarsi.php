<?php
// ***1.0.7***
// Tells the merchant what an order has left in short supply, once: when the count passes the number that they set.

/** The keys of kv_disponibilita that ran short by an order, with the pieces left. */
function kvNewlyLow(array $lines): array
{
    $threshold = kvLowStockLimit();
    $requests = kvWantedPieces($lines);
    $low = [];
    foreach (kvStock(array_map('strval', array_keys($requests))) ?? [] as $key => $pieces) {
        if ($pieces <= $threshold && $pieces + $requests[$key] > $threshold) {
            $low[$key] = $pieces;
        }
    }
    return $low;
}

/** Writes to the merchant about the lines of a new order whose stock runs short. */
function kvMailLowStock(array $lines): void
{
    $low = kvNewlyLow($lines);
    $text = '';
    foreach ($lines as $line) {
        foreach (array_intersect(array_map('strval', $line['scorte']), array_map('strval', array_keys($low))) as $key) {
            $value = $key[0] === 'V' ? ' - ' . (explode('.', $key, 3)[2] ?? '') : '';
            $text .= kvUtf8($line['codice'] . $value) . ': ' . $low[$key] . "\r\n";
        }
    }
    if ($text !== '') {
        $shop = kvSender();
        kvMail($shop['email'], $shop['email'], $shop['nome'] . ' - Scorte in esaurimento',
            "Pezzi rimasti:\r\n" . $text);
    }
}
