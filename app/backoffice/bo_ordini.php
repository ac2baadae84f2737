<?php
// Orders as the list, the page of one order and the CSV file share them.

/** The columns of an order that a list needs. */
const BO_COLONNE_ORDINE = 'id, codice, creato, nome, email, totale, valuta, metodo, stato';

/**
 * The lists of what waits for the merchant: name, condition. Orders of a method that proves its payments by itself need
 * no comparing while they are new: nobody has paid them. The quotes of the JSON can't be a customer's, whose own get a
 * backslash.
 */
const BO_ELENCHI = [
    'aperti' => ['Da evadere', "stato IN ('nuovo', 'da verificare', 'importo diverso')"],
    'pagati' => ['Pagati, da spedire', "stato = 'pagato'"],
    'confronto' => ['Da confrontare a mano', "pagamento = '' AND (stato IN ('da verificare', 'importo diverso')"
        . " OR stato = 'nuovo' AND INSTR(dati, '\"prova\":true') = 0)"],
];

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
    $parametri = ['q' => kvLineField($richiesta, 'q', 100), 'da' => boGiorno($richiesta, 'da'),
        'a' => boGiorno($richiesta, 'a'), 'stato' => kvCampo($richiesta, 'stato', 20),
        'metodo' => kvLineField($richiesta, 'metodo', 200)];
    $dove = ['1 = 1'];
    $valori = [];
    if ($parametri['q'] !== '') {
        $dove[] = "(INSTR(CONCAT_WS('\n', codice, nome, email, riepilogo), ?) > 0 OR id IN"
            . ' (SELECT ordine FROM kv_annotazioni WHERE INSTR(testo, ?) > 0))';
        array_push($valori, $parametri['q'], $parametri['q']);
    }
    if ($parametri['metodo'] !== '') {
        $dove[] = 'metodo = ?';
        $valori[] = $parametri['metodo'];
    }
    if ($parametri['da'] !== '') {
        $dove[] = 'creato >= ?';
        $valori[] = $parametri['da'];
    }
    if ($parametri['a'] !== '') {
        $dove[] = 'creato < ? + INTERVAL 1 DAY';
        $valori[] = $parametri['a'];
    }
    if (isset(BO_ELENCHI[$parametri['stato']])) {
        $dove[] = BO_ELENCHI[$parametri['stato']][1];
    } elseif (in_array($parametri['stato'], BO_STATI, true)) {
        $dove[] = 'stato = ?';
        $valori[] = $parametri['stato'];
    } else {
        $parametri['stato'] = '';
    }
    return [$parametri, implode(' AND ', $dove), $valori];
}

/** The states as choices: value => text; with `elenchi` the lists of what waits go first. */
function boSceltaStati(bool $elenchi = false): array
{
    return ($elenchi ? ['' => 'Tutti'] + array_map(fn($elenco) => $elenco[0], BO_ELENCHI) : []) + array_combine(BO_STATI, array_map('ucfirst', BO_STATI));
}

/**
 * What an order's column `dati` holds: campi, righe, totali, lingua (a code), each empty when it doesn't. Texts are
 * UTF-8, but the keys of stock, which are in the catalogue's character set.
 */
function boDatiOrdine(string $json): array
{
    $dati = json_decode($json, true);
    $dati = (is_array($dati) ? $dati : []) + ['campi' => [], 'righe' => [], 'totali' => []];
    $lingua = $dati['lingua'] ?? '';
    $dati = array_map(fn($parte) => is_array($parte) ? $parte : [], $dati);
    $campi = [];
    foreach ($dati['campi'] as $nome => $valore) {
        $campi[$nome] = is_scalar($valore) ? (string) $valore : '';
    }
    $righe = [];
    foreach ($dati['righe'] as $n => $riga) {
        if (is_array($riga) && isset($riga['testo'], $riga['quantita'], $riga['importo'])) {
            $righe[] = boRigaOrdine($riga) + ['n' => (int) $n];
        }
    }
    $totali = array_map('floatval', array_filter($dati['totali'], 'is_numeric'));
    return ['campi' => $campi, 'righe' => $righe, 'totali' => $totali,
        'lingua' => is_string($lingua) ? $lingua : ''];
}

/** One line of an order, whose number `n` is added by the caller: `prima` and `scelte_prima` are its words in the shop's first language. */
function boRigaOrdine(array $riga): array
{
    $testo = (string) $riga['testo'];
    $scelte = (string) ($riga['scelte'] ?? '');
    return ['id' => (int) ($riga['id'] ?? 0), 'codice' => (string) ($riga['codice'] ?? ''), 'testo' => $testo,
        'scelte' => $scelte, 'prima' => (string) ($riga['testo_prima'] ?? $testo),
        'scelte_prima' => (string) ($riga['scelte_prima'] ?? $scelte), 'quantita' => (int) $riga['quantita'],
        'importo' => (float) $riga['importo'],
        'scorte' => array_map(fn($chiave) => kvFromUtf8((string) $chiave), (array) ($riga['scorte'] ?? []))];
}

/** The name of a line as HTML: in the first language, with the customer's words under it where they are others. */
function boNomeRiga(array $riga): string
{
    $uguali = $riga['testo'] === $riga['prima'] && $riga['scelte'] === $riga['scelte_prima'];
    $parole = fn(string $scelte): string => $scelte === '' ? '' : ' (' . kvHtmlUtf8($scelte) . ')';
    return '<span>' . kvHtmlUtf8($riga['prima'])
        . ($riga['scelte_prima'] === '' ? '' : '<small>' . kvHtmlUtf8($riga['scelte_prima']) . '</small>')
        . ($uguali ? '' : '<small class="altra"><span class="non-stampare">Cliente: </span>' . kvHtmlUtf8($riga['testo']) . $parole($riga['scelte'])
            . '</small>') . '</span>';
}

/** The payment method of an order as HTML, in the same way. */
function boNomeMetodo(array $ordine, array $dati): string
{
    $detto = $dati['campi']['NomePagamento'] ?? '';
    return kvHtmlUtf8($ordine['metodo'])
        . (in_array($detto, ['', $ordine['metodo']], true) ? '' : ' (' . kvHtmlUtf8($detto) . ')');
}

/** Adds to the notes of an order; `tipo` is nota, stato or messaggio, the text UTF-8. */
function boAnnota(int $ordine, string $tipo, string $testo): bool
{
    return kvQuery('INSERT INTO kv_annotazioni (ordine, quando, tipo, testo) VALUES (?, NOW(), ?, ?)',
        [$ordine, $tipo, $testo]) !== null && kvTouchOrder($ordine);
}

/**
 * The keys of a line's stock as they are today: an order of a release that counted values by their code alone has O and
 * the code, which became V, article, variant and code.
 */
function boScorteRiga(array $riga): array
{
    $chiavi = [];
    foreach ($riga['scorte'] as $chiave) {
        if ($chiave !== '' && $chiave[0] === 'O') {
            $righe = kvQuery("SELECT chiave FROM kv_disponibilita WHERE tipo = 'V' AND chiave LIKE ?", [$riga['id'] . '.%']);
            $codice = substr($chiave, 1);
            $oggi = array_filter(array_column($righe ?? [], 'chiave'),
                fn($voce) => (explode('.', $voce, 3)[2] ?? '') === substr($codice, 0, 100));
            $chiavi = array_merge($chiavi, array_map(fn($voce) => 'V' . $voce, array_slice(array_values($oggi), 0, 1)));
        } else {
            $chiavi[] = $chiave;
        }
    }
    return $chiavi;
}

/** How many pieces of each key of kv_disponibilita the lines of an order took. */
function boPezziOrdine(array $righe): array
{
    $pezzi = [];
    foreach ($righe as $riga) {
        foreach (boScorteRiga($riga) as $chiave) {
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
    // The tables must stand before the transaction: making one would end it.
    kvRequireTables();
    kvRiga("SELECT COUNT(*) FROM kv_disponibilita WHERE tipo = '-'");
    kvRiga('SELECT COUNT(*) FROM kv_annotazioni WHERE ordine = 0');
    mysqli_begin_transaction(kvConnection());
    $fatto = kvQuery('UPDATE kv_ordini SET stato = ? WHERE id = ? AND stato = ?', [$dopo, (int) $ordine['id'], $prima])
        !== null && kvRigheToccate() === 1;
    $verso = ($dopo === 'annullato' ? 1 : 0) - ($prima === 'annullato' ? 1 : 0);
    if ($fatto && $scorte && $verso !== 0) {
        $fatto = boMuoviScorte(boPezziOrdine(boDatiOrdine($ordine['dati'])['righe']), $verso);
    }
    $fatto = $fatto && boAnnota((int) $ordine['id'], 'stato', kvFromCp1252("Stato: da \"$prima\" a \"$dopo\""));
    if ($fatto && mysqli_commit(kvConnection())) {
        kvStockChanged();
        return true;
    }
    mysqli_rollback(kvConnection());
    return false;
}
