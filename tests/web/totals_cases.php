<?php
// The server's totals of many carts: totals_cases.php FOLDER. Reads cases as JSON from the standard input, writes their
// totals as JSON. totals_match.js compares them with the browser's.
include __DIR__ . '/harness.php';
shopScripts(['kvdb', 'kvcontext', 'kvprice', 'kvarticle', 'kvcart']);
shopSettings();

$answers = [];
foreach (json_decode(stream_get_contents(STDIN), true) as $case) {
    $tables = kvScriptTables($case['script']);
    $lines = array_map(fn($line) => ['importo' => kvPiecePrice($line['p'], $line['s'], $line['q']),
        'quantita' => $line['q'], 'iva' => $line['v'], 'aliquota' => $tables['ivacompresa'] ? $line['a'] : 0, 'peso' => $line['w']], $case['lines']);
    $GLOBALS['visdec'] = [$tables['scala'] === 100 ? 1 : 0, 1, 2];
    $totals = kvOrderTotals($lines, $case['method'], $case['zone'], $tables, $case['listino'], (float) $case['own']);
    $totals['testo'] = kvUnitsText($totals['totale']);
    $first = $case['lines'][0];
    $totals['unitario'] = kvUnitsText(kvUnitAmount($first['p'], $first['w'] + 1)) . ' / kg';
    $answers[] = $totals;
}
echo json_encode($answers);
