<?php
// The stock as remoto.php gives and sets it. Keys and names are those of the catalogue, sent as UTF-8.
include_once __DIR__ . '/bo_voci.php';

/** Which list a request asks for; null for one that there isn't. */
function boRemotoTipo(array $dati): ?string
{
    return in_array($dati['tipo'] ?? null, ['A', 'V'], true) ? $dati['tipo'] : null;
}

/** Rows of the stock from an index on: voci, altri. */
function boRemotoScorte(array $dati): array
{
    $tipo = boRemotoTipo($dati);
    if ($tipo === null) {
        return boRemotoErrore('Il negozio non ha questo elenco.');
    }
    $cerca = kvFromUtf8(boRemotoTesto($dati, 'cerca', 100));
    $quante = boRemotoIntero($dati, 'quanti', 1, 500);
    $filtro = $cerca === '' ? ['1 = 1', []] : ['INSTR(' . boFonti()[$tipo]['cerca'] . ', ?) > 0', [$cerca]];
    $trovate = boTrovaVoci($tipo, $filtro, boRemotoIntero($dati, 'da', 0, 10000000), $quante + 1);
    if ($trovate === null) {
        kvOutOfService();
    }
    return ['voci' => array_map(fn($riga) => ['chiave' => kvFromCp1252((string) $riga['chiave']),
        'codice' => kvUtf8((string) $riga['codice']), 'nome' => kvUtf8(boNomeVoce($riga)),
        'voce' => boVoceTrovata($riga)], array_slice($trovate, 0, $quante)), 'altri' => count($trovate) > $quante];
}

/** Sets one row that still says what the request saw: esito, voce. */
function boRemotoScorta(array $dati): array
{
    $tipo = boRemotoTipo($dati);
    $chiave = kvFromUtf8(boRemotoTesto($dati, 'chiave', 100));
    $detta = boRemotoTesto($dati, 'dopo', 12);
    $dopo = preg_match('/^[01]\|/', $detta) ? boVoce($detta[0] === '1', substr($detta, 2)) : null;
    // Characters beyond the catalogue's set are longer in it: what the column can't hold is the key of nothing.
    if ($tipo === null || $chiave === '' || strlen($chiave) > 100 || $dopo === null) {
        return boRemotoErrore("La quantità dev'essere un numero intero, vuota per nessun limite.");
    }
    $fatto = boSalvaVoce($tipo, $chiave, boRemotoTesto($dati, 'prima', 12), $dopo);
    if ($fatto) {
        kvStockChanged();
    }
    $riga = kvRiga('SELECT disponibile, quantita FROM kv_disponibilita WHERE tipo = ? AND chiave = ?', [$tipo, $chiave]);
    return ['esito' => $fatto ? 'fatto' : 'diverso', 'voce' => boVoceRiga($riga)];
}
