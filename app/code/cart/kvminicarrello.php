<?php
// ***1.0.7***
// The visitor's cart in brief, as JSON for the small cart of js3.js: righe, each with c (as in kvCartData), n (name),
// o (choices), q (pieces), t (its amount), f (picture), and merce, the sum; amounts in smallest units.
include "funcs.php";
include_once "kvplain.php";

$kvRows = kvVisitorCart();
$kvEntries = [];
foreach ($kvRows as $kvRow) {
    $kvEntries[] = ['c' => kvLineMark(['id' => $kvRow['id'], 'k' => $kvRow['chiavi']]), 'n' => kvUtf8($kvRow['testo']),
        'o' => kvUtf8($kvRow['scelte']), 'q' => $kvRow['quantita'], 't' => $kvRow['importo'] * $kvRow['quantita'],
        'f' => kvUtf8($kvRow['foto'] ?? '')];
}
header('Content-Type: application/json; charset=utf-8');
header('Cache-Control: no-store');
echo json_encode(['righe' => $kvEntries, 'merce' => kvGoodsSum($kvRows)], JSON_UNESCAPED_SLASHES | JSON_INVALID_UTF8_SUBSTITUTE);
