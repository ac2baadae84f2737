<?php
// Orders as the list, the page of one order and the CSV file share them.

/** The columns of an order that a list needs. */
const BO_COLONNE_ORDINE = 'id, codice, creato, nome, email, totale, valuta, metodo, stato';

/** A day of a request as yyyy-mm-dd; empty when it is none. */
function boGiorno(array $modulo, string $nome): string
{
    $testo = kvCampo($modulo, $nome, 10);
    return preg_match('/^(\d{4})-(\d\d)-(\d\d)$/D', $testo, $p) && checkdate((int) $p[2], (int) $p[3], (int) $p[1])
        ? $testo : '';
}

/** What a request asks of the list of orders: the parameters that stand for it, the condition and its values. */
function boFiltroOrdini(array $richiesta): array
{
    $parametri = ['q' => kvRigaCampo($richiesta, 'q', 100), 'da' => boGiorno($richiesta, 'da'),
        'a' => boGiorno($richiesta, 'a'), 'stato' => kvCampo($richiesta, 'stato', 20)];
    $dove = ['1 = 1'];
    $valori = [];
    if ($parametri['q'] !== '') {
        $dove[] = '(INSTR(codice, ?) > 0 OR INSTR(nome, ?) > 0 OR INSTR(email, ?) > 0)';
        array_push($valori, $parametri['q'], $parametri['q'], $parametri['q']);
    }
    if ($parametri['da'] !== '') {
        $dove[] = 'creato >= ?';
        $valori[] = $parametri['da'];
    }
    if ($parametri['a'] !== '') {
        $dove[] = 'creato < ? + INTERVAL 1 DAY';
        $valori[] = $parametri['a'];
    }
    if ($parametri['stato'] === 'aperti') {
        $dove[] = "stato IN ('nuovo', 'da verificare', 'importo diverso')";
    } elseif (in_array($parametri['stato'], BO_STATI, true)) {
        $dove[] = 'stato = ?';
        $valori[] = $parametri['stato'];
    } else {
        $parametri['stato'] = '';
    }
    return [$parametri, implode(' AND ', $dove), $valori];
}

/** The states as choices: value => text; `altri` go first. */
function boSceltaStati(array $altri = []): array
{
    return $altri + array_combine(BO_STATI, array_map('ucfirst', BO_STATI));
}

/**
 * What an order's column `dati` holds: campi, righe, totali, each empty when it doesn't. Texts are UTF-8, but the
 * keys of stock, which are in the catalogue's character set.
 */
function boDatiOrdine(string $json): array
{
    $dati = json_decode($json, true);
    $dati = (is_array($dati) ? $dati : []) + ['campi' => [], 'righe' => [], 'totali' => []];
    $dati = array_map(fn($parte) => is_array($parte) ? $parte : [], $dati);
    $campi = [];
    foreach ($dati['campi'] as $nome => $valore) {
        $campi[$nome] = is_scalar($valore) ? (string) $valore : '';
    }
    $righe = [];
    foreach ($dati['righe'] as $riga) {
        if (is_array($riga) && isset($riga['testo'], $riga['quantita'], $riga['importo'])) {
            $righe[] = ['testo' => (string) $riga['testo'],
                'scelte' => (string) ($riga['scelte'] ?? ''), 'quantita' => (int) $riga['quantita'],
                'importo' => (float) $riga['importo'],
                'scorte' => array_map(fn($chiave) => kvDaUtf8((string) $chiave), (array) ($riga['scorte'] ?? []))];
        }
    }
    $totali = array_map('floatval', array_filter($dati['totali'], 'is_numeric'));
    return ['campi' => $campi, 'righe' => $righe, 'totali' => $totali];
}

/** How many pieces of each key of kv_disponibilita the lines of an order took. */
function boPezziOrdine(array $righe): array
{
    $pezzi = [];
    foreach ($righe as $riga) {
        foreach ($riga['scorte'] as $chiave) {
            $pezzi[$chiave] = ($pezzi[$chiave] ?? 0) + $riga['quantita'];
        }
    }
    return $pezzi;
}

/** Gives pieces back to the stock (`verso` 1) or takes them again (-1); false when the server refused. */
function boMuoviScorte(array $pezzi, int $verso): bool
{
    ksort($pezzi, SORT_STRING);
    foreach ($pezzi as $chiave => $quantita) {
        $chiave = (string) $chiave;
        $esito = kvQuery('UPDATE kv_disponibilita SET quantita = GREATEST(0, quantita + ?)'
            . ' WHERE tipo = ? AND chiave = ? AND quantita IS NOT NULL',
            [$verso * $quantita, $chiave[0], substr($chiave, 1, 100)]);
        if ($esito === null) {
            return false;
        }
    }
    return true;
}

/**
 * Sets the state of an order that still has the state `prima`, and, with `scorte`, its pieces free when it becomes
 * cancelled and taken when it no longer is; all of it or nothing.
 */
function boCambiaStato(array $ordine, string $prima, string $dopo, bool $scorte): bool
{
    // Both tables must stand before the transaction: making one would end it.
    kvRiga("SELECT COUNT(*) FROM kv_disponibilita WHERE tipo = '-'");
    mysqli_begin_transaction(kvConnessione());
    $fatto = kvQuery('UPDATE kv_ordini SET stato = ? WHERE id = ? AND stato = ?', [$dopo, (int) $ordine['id'], $prima])
        !== null && kvRigheToccate() === 1;
    $verso = ($dopo === 'annullato' ? 1 : 0) - ($prima === 'annullato' ? 1 : 0);
    if ($fatto && $scorte && $verso !== 0) {
        $fatto = boMuoviScorte(boPezziOrdine(boDatiOrdine($ordine['dati'])['righe']), $verso);
    }
    if ($fatto && mysqli_commit(kvConnessione())) {
        return true;
    }
    mysqli_rollback(kvConnessione());
    return false;
}
