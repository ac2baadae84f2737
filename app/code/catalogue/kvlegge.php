<?php
// ***1.0.7***
// What the law wants beside an article: the price of a unit of its content, the lowest price of the days before a
// reduction, maker and person responsible, the time of delivery. A shop that uses none of these has none of their tables, and a page that
// misses one goes without.

/** The tables of this kind that the load has left; null where no load has said so yet. */
function kvTabelleLaterali(): ?array
{
    global $kvSideTables;
    if (!isset($kvSideTables)) {
        $esito = mysqli_query(kvConnection(), "SELECT valore FROM kv_stato WHERE nome = 'laterali'");
        $riga = $esito instanceof mysqli_result ? mysqli_fetch_row($esito) : null;
        $kvSideTables = $riga === null ? false : explode(',', $riga[0]);
    }
    return $kvSideTables === false ? null : $kvSideTables;
}

/** Whether the catalogue has such a table; one of which the load says nothing is asked. */
function kvHaTabella(string $tabella): bool
{
    global $kvLegalRows;
    if (!array_key_exists($tabella, $kvLegalRows ?? []) && !in_array($tabella, kvTabelleLaterali() ?? [$tabella], true)) {
        $kvLegalRows[$tabella] = null;
    }
    return !array_key_exists($tabella, $kvLegalRows ?? []) || $kvLegalRows[$tabella] !== null;
}

/**
 * The row of a number in such a table, empty when there is none; with `articoli` those of the articles that the page shows
 * beside it are read along with it. $kvLegge keeps what was read, by table and number, and null for a table that isn't there.
 */
function kvRigaLegge(string $tabella, int $id, bool $articoli = true): array
{
    global $kvLegalRows;
    if (!kvHaTabella($tabella) || isset($kvLegalRows[$tabella][$id])) {
        return $kvLegalRows[$tabella][$id] ?? [];
    }
    $numeri = array_values(array_unique(array_map('intval', array_merge([$id], $articoli ? kvNumeriPagina() : []))));
    kvSetCharset('latin1');
    $esito = mysqli_query(kvConnection(), "SELECT * FROM $tabella WHERE ID IN (" . implode(',', $numeri) . ')');
    if (!$esito instanceof mysqli_result) {
        $kvLegalRows[$tabella] = null;
        return [];
    }
    $kvLegalRows[$tabella] = array_fill_keys($numeri, []) + ($kvLegalRows[$tabella] ?? []);
    foreach (mysqli_fetch_all($esito, MYSQLI_ASSOC) as $riga) {
        $kvLegalRows[$tabella][(int) $riga['ID']] = $riga;
    }
    return $kvLegalRows[$tabella][$id];
}

/** The numbers of the articles that the page shows beside this one. */
function kvNumeriPagina(): array
{
    global $resultArt;
    return array_merge($resultArt instanceof KvRows ? array_column($resultArt->rows, 'ID') : [], kvNumeriVetrina());
}

/** The content of an article in ten-thousandths of its measure, and the word of that; null without a content. */
function kvContenuto(array $riga): ?array
{
    $unita = kvRigaLegge('kv_unita', (int) ($riga['ID'] ?? 0));
    $contenuto = kvDecimillesimi($unita['contenuto'] ?? 0);
    $parole = ['kg' => 'kg', 'l' => 'l', 'm' => 'm', 'pz' => kvHtml("<<4-unita_pezzo>>")];
    return $contenuto > 0 && isset($parole[$unita['misura'] ?? '']) ? [$contenuto, $parole[$unita['misura']]] : null;
}

/** Smallest units by a content in ten-thousandths: the price of one unit, rounded half up. */
function kvImportoUnitario(int $minimi, int $contenuto): int
{
    return intdiv($minimi * 20000 + $contenuto, $contenuto * 2);
}

/** The price of one unit: that of the piece as it is shown, by the content; empty without a content. */
function kvPrezzoUnitario(array $riga): string
{
    $contenuto = kvPrezziNascosti() ? null : kvContenuto($riga);
    if ($contenuto === null) {
        return '';
    }
    $minimi = max(0, kvMinimi(kvPrezziVisitatore($riga)['prezzo'], kvScala()));
    return kvTestoMinimi(kvImportoUnitario($minimi, $contenuto[0])) . ' / ' . $contenuto[1];
}

/**
 * The lowest price of the days before the reduction, with VAT where prices include it; empty where nothing is reduced
 * or no earlier price was published. Source: Directive 98/6/EC, article 6a.
 */
function kvPrezzoMinimo(array $riga): string
{
    global $listino, $ivacompresa, $ivarep;
    $prezzi = kvPrezziNascosti() ? null : kvPrezziVisitatore($riga);
    if ($prezzi === null || $prezzi['prezzo'] >= $prezzi['listino']) {
        return '';
    }
    $minimi = kvRigaLegge('kv_minimi', (int) ($riga['ID'] ?? 0));
    $suffisso = $listino === 0 ? '' : (string) $listino;
    if (!isset($minimi['minimo' . $suffisso])) {
        return '';
    }
    $importo = kvConIva(kvDecimillesimi($minimi['minimo' . $suffisso]), (float) $ivarep, (bool) $ivacompresa);
    return str_replace('%g', (string) (int) $minimi['giorni' . $suffisso], kvHtml("<<4-prezzo_minimo>>")) . ' '
        . kvTestoImporto($importo);
}

/** The unit price and the lowest price as notes beside a price; empty without either. */
function kvNotePrezzo(array $riga, bool $minimo = true): string
{
    $note = '';
    foreach (['unitario' => kvPrezzoUnitario($riga), 'minimo' => $minimo ? kvPrezzoMinimo($riga) : ''] as $classe => $testo) {
        $note .= $testo === '' ? '' : ' <span class="nota ' . $classe . '">' . $testo . '</span>';
    }
    return $note;
}

/** A mail or web address as a link, anything else as it was typed. */
function kvContatto(string $contatto): string
{
    $testo = kvHtml($contatto);
    if (preg_match('/^[^\s@<>"]+@[^\s@<>"]+\.[a-z]{2,}$/Di', $contatto)) {
        return '<a href="mailto:' . $testo . '">' . $testo . '</a>';
    }
    return preg_match('/^https?:\/\/[^\s<>"]+$/Di', $contatto) ? '<a href="' . $testo . '" rel="noopener">' . $testo . '</a>' : $testo;
}

/**
 * Maker of an article and person responsible in the European Union; empty where none was chosen. Open where the article
 * is shown alone. Source: Regulation (EU) 2023/988, article 19.
 */
function kvSicurezza(array $riga): string
{
    global $kvSolo;
    $scelta = kvRigaLegge('kv_sicurezza', (int) ($riga['ID'] ?? 0));
    $chi = $scelta === [] ? [] : kvRigaLegge('kv_produttori', (int) $scelta['produttore'], false);
    $voci = '';
    foreach ([["<<4-produttore>>", 'nome', 'indirizzo', 'contatto'],
              ["<<4-responsabile_ue>>", 'responsabile', 'resp_indirizzo', 'resp_contatto']] as list($parola, $nome, $via, $contatto)) {
        $righe = array_filter([kvHtml(trim($chi[$nome] ?? '')), kvHtml(trim($chi[$via] ?? '')), kvContatto(trim($chi[$contatto] ?? ''))],
            'strlen');
        $voci .= $righe === [] ? '' : '<dt>' . kvHtml($parola) . '</dt><dd>' . implode('<br>', $righe) . '</dd>';
    }
    return $voci === '' ? '' : '<details class="sicurezza"' . (is_array($kvSolo) ? ' open' : '') . '><summary>'
        . kvHtml("<<4-sicurezza_prodotto>>") . "</summary><dl>$voci</dl></details>";
}

/** Reads the times of delivery of some article rows and of their departments, by one question. */
function kvLeggiConsegne(array $righe): void
{
    global $kvLegalRows;
    if (!kvHaTabella('kv_consegna')) {
        return;
    }
    $lette = $kvLegalRows['kv_consegna'] ?? [];
    $chiavi = array_map('strval', array_merge(array_column($righe, 'ID'), array_column($righe, 'catID')));
    $nuove = array_filter(array_unique($chiavi), fn($chiave) => $chiave !== '' && !isset($lette[$chiave]));
    if ($nuove === []) {
        return;
    }
    kvSetCharset('latin1');
    $elenco = implode("','", array_map(fn($chiave) => mysqli_real_escape_string(kvConnection(), $chiave), $nuove));
    $esito = mysqli_query(kvConnection(), "SELECT * FROM kv_consegna WHERE ID IN ('$elenco')");
    if (!$esito instanceof mysqli_result) {
        $kvLegalRows['kv_consegna'] = null;
        return;
    }
    $kvLegalRows['kv_consegna'] = array_fill_keys($nuove, []) + $lette;
    foreach (mysqli_fetch_all($esito, MYSQLI_ASSOC) as $riga) {
        $kvLegalRows['kv_consegna'][$riga['ID']] = $riga;
    }
}

/** How long the delivery of an article takes, in words: its own time, else that of its department; empty without any. */
function kvTempoConsegna(array $riga): string
{
    global $resultArt, $kvLegalRows, $Lingua;
    kvLeggiConsegne(array_merge([$riga], $resultArt instanceof KvRows ? $resultArt->rows : []));
    foreach ([(string) ($riga['ID'] ?? ''), (string) ($riga['catID'] ?? '')] as $chiave) {
        $tempo = $kvLegalRows['kv_consegna'][$chiave] ?? [];
        if ($tempo !== []) {
            $proprio = trim((string) ($tempo['tempo' . $Lingua] ?? ''));
            return $proprio !== '' ? $proprio : trim((string) $tempo['tempo']);
        }
    }
    return '';
}

/** The time of delivery of an article that can be bought; empty without any. */
function kvConsegna(array $riga): string
{
    $tempo = kvTempoConsegna($riga);
    include_once "kvcard.php";
    return $tempo === '' || !kvDisponibile($riga) ? '' : '<p class="nota consegna">' . kvHtml("<<4-tempo_consegna>>") . ' '
        . kvHtml($tempo) . '</p>';
}

/**
 * The days that a time of delivery tells, fewest and most: "2-4 giorni lavorativi", "24/48 ore", "3 weeks"; null for
 * words that tell none.
 */
function kvGiorniConsegna(string $tempo): ?array
{
    $unita = '(?<ore>ore|ora|h|hours?|heures?|stunden?)|(?<giorni>gg|giorn\p{L}*|days?|jours?|\p{L}*tage?n?)'
        . '|(?<settimane>settiman\p{L}*|weeks?|semaines?|wochen?)';
    if (!preg_match('~(\d{1,3})(?:\s*(?:-|\x{2013}|/|a|o|to|or|\x{e0}|ou|bis|oder)\s*(\d{1,3}))?\s*(?:(?:working|business) )?(?:'
        . $unita . ')(?!\p{L})~iu', kvUtf8($tempo), $parti, PREG_UNMATCHED_AS_NULL)) {
        return null;
    }
    $giorni = fn(int $n): int => $parti['ore'] !== null ? intdiv($n + 23, 24) : ($parti['settimane'] !== null ? 7 * $n : $n);
    $primo = $giorni((int) $parti[1]);
    $ultimo = $giorni((int) ($parti[2] ?? $parti[1]));
    return $primo > $ultimo ? null : [$primo, $ultimo];
}
