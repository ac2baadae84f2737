<?php
// The stock as remoto.php gives and sets it. Keys and names are those of the catalogue, sent as UTF-8.
include_once __DIR__ . '/bo_voci.php';

/** Which list a request asks for; null for one that there isn't. */
function boRemoteKind(array $data): ?string
{
    return in_array($data['tipo'] ?? null, ['A', 'V'], true) ? $data['tipo'] : null;
}

/** Rows of the stock from an index on: voci, altri. */
function boRemoteStock(array $data): array
{
    $kind = boRemoteKind($data);
    if ($kind === null) {
        return boRemoteError('Il negozio non ha questo elenco.');
    }
    $search = kvFromUtf8(boRemoteText($data, 'cerca', 100));
    $count = boRemoteInteger($data, 'quanti', 1, 500);
    $filter = $search === '' ? ['1 = 1', []] : ['INSTR(' . boStockSources()[$kind]['search'] . ', ?) > 0', [$search]];
    $found = boFindStockRows($kind, $filter, boRemoteInteger($data, 'da', 0, 10000000), $count + 1);
    if ($found === null) {
        kvOutOfService();
    }
    return ['voci' => array_map(fn($row) => ['chiave' => kvFromCp1252((string) $row['chiave']),
        'codice' => kvUtf8((string) $row['codice']), 'nome' => kvUtf8(boStockRowName($row)),
        'voce' => boFoundEntry($row)], array_slice($found, 0, $count)), 'altri' => count($found) > $count];
}

/** Sets one row that still says what the request saw: esito, voce. */
function boRemoteSetStock(array $data): array
{
    $kind = boRemoteKind($data);
    $key = kvFromUtf8(boRemoteText($data, 'chiave', 100));
    $given = boRemoteText($data, 'dopo', 12);
    $after = preg_match('/^[01]\|/', $given) ? boStockEntry($given[0] === '1', substr($given, 2)) : null;
    // Characters beyond the catalogue's set are longer in it: what the column can't hold is the key of nothing.
    if ($kind === null || $key === '' || strlen($key) > 100 || $after === null) {
        return boRemoteError("La quantità dev'essere un numero intero, vuota per nessun limite.");
    }
    $done = boSaveEntry($kind, $key, boRemoteText($data, 'prima', 12), $after);
    if ($done) {
        kvStockChanged();
    }
    $row = kvRiga('SELECT disponibile, quantita FROM kv_disponibilita WHERE tipo = ? AND chiave = ?', [$kind, $key]);
    return ['esito' => $done ? 'fatto' : 'diverso', 'voce' => boRowEntry($row)];
}
