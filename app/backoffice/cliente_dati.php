<?php
// All that the shop knows of one customer as a file of JSON, for the customer who asks for it.
include "bo_base.php";
include_once "kvcustomer.php";
boRiservata();

$boCliente = kvRiga('SELECT * FROM kv_clienti WHERE id = ?', [boNumero($_GET, 'id', 0, PHP_INT_MAX)]);
if ($boCliente === null) {
    boChiudi(404, 'Questo cliente non esiste.');
}
header('Content-Type: application/json; charset=utf-8');
header('Content-Disposition: attachment; filename="cliente-' . (int) $boCliente['id'] . '.json"');
echo json_encode(kvDatiPersonali($boCliente), JSON_PRETTY_PRINT | JSON_UNESCAPED_UNICODE | JSON_INVALID_UTF8_SUBSTITUTE), "\n";
