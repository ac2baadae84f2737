<?php
// ***1.0.7***
// The visitor's cart in brief, as JSON for the small cart of js3.js: righe, each with c (as in kvDatiCarrello), n (name),
// o (choices), q (pieces), t (its amount), f (picture), and merce, the sum; amounts in smallest units.
include "funcs.php";
include_once "kvplain.php";

$kvRighe = kvCarrelloVisitatore();
$kvVoci = [];
foreach ($kvRighe as $kvRiga) {
    $kvVoci[] = ['c' => kvSegnoRiga(['id' => $kvRiga['id'], 'k' => $kvRiga['chiavi']]), 'n' => kvUtf8($kvRiga['testo']),
        'o' => kvUtf8($kvRiga['scelte']), 'q' => $kvRiga['quantita'], 't' => $kvRiga['importo'] * $kvRiga['quantita'],
        'f' => kvUtf8($kvRiga['foto'] ?? '')];
}
header('Content-Type: application/json; charset=utf-8');
header('Cache-Control: no-store');
echo json_encode(['righe' => $kvVoci, 'merce' => kvMerce($kvRighe)], JSON_UNESCAPED_SLASHES | JSON_INVALID_UTF8_SUBSTITUTE);
