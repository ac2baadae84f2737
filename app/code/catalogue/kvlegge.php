<?php
// ***1.0.7***
// What the law wants beside an article: the price of a unit of its content, the lowest price of the days before a
// reduction, maker and person responsible. A shop that uses none of these has none of their tables, and a page that
// misses one goes without.

/**
 * The row of a number in such a table, empty when there is none; the rows of the other numbers are read along with it.
 * $kvLegge keeps what was read, by table and number, and null for a table that isn't there.
 */
function kvRigaLegge(string $tabella, int $id, array $altri): array
{
    global $kvLegge;
    if (array_key_exists($tabella, $kvLegge ?? []) && ($kvLegge[$tabella] === null || isset($kvLegge[$tabella][$id]))) {
        return $kvLegge[$tabella][$id] ?? [];
    }
    $numeri = array_values(array_unique(array_map('intval', array_merge([$id], $altri))));
    kvCaratteri('latin1');
    $esito = mysqli_query(kvConnessione(), "SELECT * FROM $tabella WHERE ID IN (" . implode(',', $numeri) . ')');
    if (!$esito instanceof mysqli_result) {
        $kvLegge[$tabella] = null;
        return [];
    }
    $kvLegge[$tabella] = array_fill_keys($numeri, []) + ($kvLegge[$tabella] ?? []);
    foreach (mysqli_fetch_all($esito, MYSQLI_ASSOC) as $riga) {
        $kvLegge[$tabella][(int) $riga['ID']] = $riga;
    }
    return $kvLegge[$tabella][$id];
}

/** The numbers of the articles that the page shows beside this one. */
function kvNumeriPagina(): array
{
    global $resultArt;
    return array_merge($resultArt instanceof KvRighe ? array_column($resultArt->righe, 'ID') : [], kvNumeriVetrina());
}

/** The content of an article in ten-thousandths of its measure, and the word of that; null without a content. */
function kvContenuto(array $riga): ?array
{
    $unita = kvRigaLegge('kv_unita', (int) ($riga['ID'] ?? 0), kvNumeriPagina());
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
    $minimi = kvRigaLegge('kv_minimi', (int) ($riga['ID'] ?? 0), kvNumeriPagina());
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
    $scelta = kvRigaLegge('kv_sicurezza', (int) ($riga['ID'] ?? 0), kvNumeriPagina());
    $chi = $scelta === [] ? [] : kvRigaLegge('kv_produttori', (int) $scelta['produttore'], []);
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
