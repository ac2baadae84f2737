<?php
// Orders as remoto.php gives them, those that changed first; their states and notes as it sets them.
include_once __DIR__ . '/bo_ordini.php';
include_once __DIR__ . '/bo_testi.php';

/** Most orders of an answer, most bytes of it, and most bytes that its orders may have in the database. */
const BO_REMOTO_ORDINI = 500;
const BO_REMOTO_BYTE = 8000000;
const BO_REMOTO_DATI = 4000000;
/** Most notes of an order, its newest ones: as many as its page shows. */
const BO_REMOTO_NOTE = 200;
/** Most deleted orders of an answer. */
const BO_REMOTO_TOLTI = 5000;
/** Seconds by which a transaction may end later than the moment that it writes in a row. */
const BO_REMOTO_TRANSAZIONE = 120;

/** Rows of a query; where the server refuses it there is no answer, for one without these rows would be a wrong one. */
function boRemotoRighe(string $sql, array $valori = []): array
{
    $righe = kvQuery($sql, $valori);
    if ($righe === null) {
        kvOutOfService();
    }
    return $righe ?? [];
}

/** Runs something while the database speaks of world time: in local time an hour of each autumn comes twice. */
function boInUtc(callable $azione): array
{
    $fuso = (string) (kvRiga('SELECT @@session.time_zone AS fuso')['fuso'] ?? 'SYSTEM');
    kvQuery("SET time_zone = '+00:00'");
    $esito = $azione();
    kvQuery("SET time_zone = '" . mysqli_real_escape_string(kvConnection(), $fuso) . "'");
    return $esito;
}

/**
 * Where a reading has come to: moment of change and number of the last order, and, while it isn't over, the moment from
 * which on the next one has to look again. A text that is none begins at the beginning.
 */
function boSegnoOrdini(string $dopo): array
{
    $momento = '\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{6}';
    return preg_match("/^($momento)\|(\d{1,10})\|($momento|)$/D", $dopo, $parti)
        ? [$parti[1], (int) $parti[2], $parti[3]] : ['1970-01-02 00:00:00.000000', 0, ''];
}

/** Numbers and moments of the orders that come next, as many as one answer takes; and whether there are more. */
function boProssimiOrdini(array $segno, int $quanti): array
{
    $righe = boRemotoRighe('SELECT id, modificato, LENGTH(dati) + LENGTH(riepilogo) AS byte FROM kv_ordini WHERE modificato >= ?'
        . ' AND (modificato > ? OR id > ?) ORDER BY modificato, id LIMIT ' . ($quanti + 1),
        [$segno[0], $segno[0], $segno[1]]);
    $scelti = [];
    $byte = 0;
    foreach (array_slice($righe, 0, $quanti) as $riga) {
        $byte += (int) $riga['byte'];
        if ($scelti !== [] && $byte > BO_REMOTO_DATI) {
            break;
        }
        $scelti[(int) $riga['id']] = $riga['modificato'];
    }
    return [$scelti, count($righe) > count($scelti)];
}

/** Rows of a table that belong to orders, by the number of the order. */
function boRigheDiOrdini(string $colonne, string $tabella, string $elenco): array
{
    $gruppi = [];
    foreach (boRemotoRighe("SELECT ordine, $colonne FROM $tabella WHERE ordine IN ($elenco) ORDER BY id") as $riga) {
        $ordine = (int) $riga['ordine'];
        unset($riga['ordine']);
        $gruppi[$ordine][] = $riga;
    }
    return $gruppi;
}

/** Orders by their numbers, in the order of these. The database speaks of world time. */
function boLeggiOrdini(array $numeri): array
{
    if ($numeri === []) {
        return [];
    }
    $elenco = implode(',', array_map('intval', $numeri));
    $righe = array_column(boRemotoRighe('SELECT id, codice, creato, modificato, cliente, nome, email, totale, valuta, metodo, stato,'
        . " lingua, pagamento, riepilogo, dati FROM kv_ordini WHERE id IN ($elenco)"), null, 'id');
    $note = boRigheDiOrdini('quando, tipo, testo', 'kv_annotazioni', $elenco);
    $recessi = boRigheDiOrdini('numero, creato, stato, righe', 'kv_recessi', $elenco);
    $ordini = [];
    foreach ($numeri as $numero) {
        if (isset($righe[$numero])) {
            $ordini[] = boOrdineRemoto($righe[$numero], array_slice($note[$numero] ?? [], -BO_REMOTO_NOTE),
                $recessi[$numero] ?? []);
        }
    }
    return $ordini;
}

/** A withdrawal as it is sent; `riga` is the index of the line among those of the order, -1 when it isn't there. */
function boRecessoRemoto(array $recesso, array $indici): array
{
    $righe = json_decode($recesso['righe'], true);
    $righe = array_filter(is_array($righe) ? $righe : [], fn($riga) => is_array($riga) && isset($riga['testo'], $riga['quantita']));
    return ['righe' => array_map(fn($riga) => ['riga' => $indici[(int) ($riga['n'] ?? -1)] ?? -1, 'testo' => (string) $riga['testo'],
        'scelte' => (string) ($riga['scelte'] ?? ''), 'quantita' => (int) $riga['quantita']], array_values($righe))] + $recesso;
}

/** An order as it is sent: texts in UTF-8, amounts as texts with two decimals. */
function boOrdineRemoto(array $ordine, array $note, array $recessi): array
{
    $importo = fn(float $numero): string => number_format($numero, 2, '.', '');
    $dati = boDatiOrdine($ordine['dati']);
    $righe = array_map(fn($riga) => ['id' => $riga['id'], 'codice' => $riga['codice'], 'testo' => $riga['testo'],
        'scelte' => $riga['scelte'], 'prima' => $riga['prima'], 'scelte_prima' => $riga['scelte_prima'],
        'quantita' => $riga['quantita'], 'importo' => $importo($riga['importo'])], $dati['righe']);
    $lingua = $dati['lingua'] !== '' ? $dati['lingua'] : boLinguaOrdine($ordine, $dati);
    $indici = array_flip(array_column($dati['righe'], 'n'));
    unset($ordine['dati']);
    return ['id' => (int) $ordine['id'], 'cliente' => (int) $ordine['cliente'], 'lingua' => $lingua,
        'valuta' => trim($ordine['valuta']), 'campi' => (object) $dati['campi'], 'righe' => $righe,
        'totali' => (object) array_map($importo, $dati['totali']), 'note' => $note,
        'recessi' => array_map(fn($recesso) => boRecessoRemoto($recesso, $indici), $recessi)] + $ordine;
}

/** A text that is another one once a further order was deleted; empty as long as none was. */
function boSegnoTolti(): string
{
    $riga = boRemotoRighe('SELECT COUNT(*) AS quanti, MAX(id) AS ultimo FROM kv_tolti')[0];
    return (int) $riga['quanti'] === 0 ? '' : $riga['quanti'] . '-' . $riga['ultimo'];
}

/** Orders that were deleted, from an index on: tolti, altri. */
function boRemotoTolti(array $dati): array
{
    $quanti = boRemotoIntero($dati, 'quanti', 1, BO_REMOTO_TOLTI);
    $righe = boRemotoRighe('SELECT ordine AS id, codice FROM kv_tolti ORDER BY kv_tolti.id LIMIT ' . ($quanti + 1) . ' OFFSET '
        . boRemotoIntero($dati, 'da', 0, PHP_INT_MAX));
    return ['tolti' => array_map(fn($riga) => ['id' => (int) $riga['id'], 'codice' => $riga['codice']],
        array_slice($righe, 0, $quanti)), 'altri' => count($righe) > $quanti];
}

/** Orders that changed since the last reading: ordini, dopo, altri, tolti. */
function boRemotoOrdini(array $dati): array
{
    $segno = boSegnoOrdini(boRemotoTesto($dati, 'dopo', 100));
    return boInUtc(fn() => boOrdiniDa($segno, boRemotoIntero($dati, 'quanti', 1, BO_REMOTO_ORDINI)));
}

/** The same from a moment on. A reading ends before what transactions of this moment may still add. */
function boOrdiniDa(array $segno, int $quanti): array
{
    $adesso = boRemotoRighe('SELECT CAST(NOW(6) - INTERVAL ' . BO_REMOTO_TRANSAZIONE . ' SECOND AS CHAR) AS fermo');
    $fermo = $segno[2] === '' ? $adesso[0]['fermo'] : $segno[2];
    list($scelti, $altri) = boProssimiOrdini($segno, $quanti);
    $ordini = [];
    $byte = 0;
    foreach (boLeggiOrdini(array_keys($scelti)) as $ordine) {
        $byte += strlen(boRemotoJson($ordine)) + 1;
        if ($ordini !== [] && $byte > BO_REMOTO_BYTE) {
            $altri = true;
            break;
        }
        $ordini[] = $ordine;
        $segno = [$scelti[$ordine['id']], $ordine['id'], ''];
    }
    if ($altri) {
        $segno[2] = $fermo;
    } elseif ($segno[0] >= $fermo) {
        $segno = [$fermo, 0, ''];
    } else {
        $segno[2] = '';
    }
    return ['ordini' => $ordini, 'dopo' => implode('|', $segno), 'altri' => $altri, 'tolti' => boSegnoTolti()];
}

/** The order of a request; null when there is none of this code. */
function boOrdineRichiesto(array $dati): ?array
{
    return boRemotoRighe('SELECT * FROM kv_ordini WHERE codice = ?', [boRemotoTesto($dati, 'codice', 20)])[0] ?? null;
}

/** What came of a request about an order, with the order as it is now. */
function boEsitoOrdine(string $esito, ?array $ordine): array
{
    return ['esito' => $esito,
        'ordine' => $ordine === null ? null : boInUtc(fn() => boLeggiOrdini([(int) $ordine['id']]))[0] ?? null];
}

/** Sets the state of an order that still has the one which the request saw, and writes to the customer. */
function boRemotoStato(array $dati): array
{
    $prima = boRemotoTesto($dati, 'da', 20);
    $dopo = boRemotoTesto($dati, 'a', 20);
    if (!in_array($dopo, BO_STATI, true)) {
        return boRemotoErrore('Il negozio non conosce lo stato "' . kvFromUtf8($dopo) . '".');
    }
    $ordine = boOrdineRichiesto($dati);
    if ($ordine === null || $ordine['stato'] !== $prima || $dopo === $prima) {
        return boEsitoOrdine($ordine === null ? 'sconosciuto' : ($ordine['stato'] === $prima ? 'fatto' : 'diverso'), $ordine)
            + ['mail' => ''];
    }
    if (!boCambiaStato($ordine, $prima, $dopo, ($dati['scorte'] ?? false) === true)) {
        $adesso = boOrdineRichiesto($dati);
        return $adesso !== null && $adesso['stato'] === $prima
            ? boRemotoErrore('Il server non ha salvato lo stato: riprovare.')
            : boEsitoOrdine('diverso', $adesso) + ['mail' => ''];
    }
    $mail = ($dati['scrivi'] ?? false) === true
        ? boAvvisaCliente($ordine, $dopo, boRemotoTesto($dati, 'messaggio', BO_TESTO_MASSIMO)) : '';
    return boEsitoOrdine('fatto', $ordine) + ['mail' => $mail];
}

/** Adds a note to an order. */
function boRemotoNota(array $dati): array
{
    $ordine = boOrdineRichiesto($dati);
    $testo = boRemotoTesto($dati, 'testo', 2000);
    if ($ordine === null || $testo === '') {
        return $ordine === null ? boEsitoOrdine('sconosciuto', null) : boRemotoErrore("L'annotazione è vuota.");
    }
    return boAnnota((int) $ordine['id'], 'nota', $testo) ? boEsitoOrdine('fatto', $ordine)
        : boRemotoErrore("Il server non ha salvato l'annotazione: riprovare.");
}
