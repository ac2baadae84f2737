<?php
// What the shop's server asks for orders: server_answers.php CODE CASES
// CODE holds the shop's scripts as they are shipped; CASES and what is printed are those of cart_answers.js.
include __DIR__ . '/../web/harness.php';
shopScripts(['kvdb', 'kvcontext', 'kvprice', 'kvarticle', 'kvcart']);
shopSettings();

foreach (file($argv[2], FILE_IGNORE_NEW_LINES) as $line) {
    $order = json_decode($line, true);
    $tables = kvScriptTables($order['script']);
    $goods = [['importo' => $order['goods'], 'quantita' => 1, 'iva' => 0, 'peso' => $order['weight']]];
    $asked = kvOrderTotals($goods, $order['method'], $order['zone'], $tables, 0, 0.0);
    echo $asked['ammesso'] ? 1 : 0, ' ', $asked['spese'], ' ', $asked['ivaspese'], "\n";
}
