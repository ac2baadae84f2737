<?php
// ***1.0.7***
// A department's articles in another order, or some of them, by an address that can be shared: `ordine` (a key of
// KV_ORDINI), `da` and `a` (price, as shown), `offerte` and `novita` (1), `vN` (the key of a value of variant N). The
// pages of the build ask for the articles of one sub-page; where the address chooses, kvdb.php gives them those of
// kvArticoliScelti instead, in pages of KV_PER_PAGINA.
include_once "kvvariant.php";

/** Articles on a page that the visitor put together. */
const KV_PER_PAGINA = 24;
/** The orders, by what compares two articles. */
const KV_ORDINI = ['' => "<<4-ordine_negozio>>", 'prezzo' => "<<4-ordine_prezzo>>", 'prezzo-giu' => "<<4-ordine_prezzo_giu>>",
    'nome' => "<<4-ordine_alfabetico>>", 'novita' => "<<4-ordine_novita>>"];

/** What the address chooses; `attiva` tells that it chooses anything. The page of one article chooses nothing. */
function kvScelteElenco(): array
{
    static $scelte = null;
    if ($scelte !== null) {
        return $scelte;
    }
    $detto = fn(string $nome): string => is_string($_GET[$nome] ?? null) ? $_GET[$nome] : '';
    $importo = fn(string $testo): ?int => preg_match('/^\d{1,9}(?:[.,]\d{1,2})?$/D', $testo)
        ? (int) round((float) strtr($testo, ',', '.') * 10000) : null;
    $scelte = ['ordine' => isset(KV_ORDINI[$detto('ordine')]) ? $detto('ordine') : '', 'offerte' => $detto('offerte') === '1',
        'novita' => $detto('novita') === '1', 'da' => $importo($detto('da')), 'a' => $importo($detto('a')), 'valori' => []];
    foreach ($_GET as $nome => $valore) {
        if (preg_match('/^v([1-9]\d{0,8})$/D', (string) $nome, $parti) && is_string($valore)
            && preg_match('/^[0-9a-f]{6}$/D', $valore)) {
            $scelte['valori'][(int) $parti[1]] = $valore;
        }
    }
    $scelte['attiva'] = (int) ($_GET['prod'] ?? 0) === 0 && isset($GLOBALS['PageRoot'])
        && array_filter($scelte, fn($scelta) => !in_array($scelta, ['', false, null, []], true)) !== [];
    return $scelte;
}

/** The choice as the end of an address, "&ordine=prezzo"; empty where nothing is chosen. */
function kvCodaScelte(): string
{
    $scelte = kvScelteElenco();
    if (!$scelte['attiva']) {
        return '';
    }
    $parti = ['ordine' => $scelte['ordine'], 'da' => kvImportoCampo($scelte['da']), 'a' => kvImportoCampo($scelte['a']),
        'offerte' => $scelte['offerte'] ? '1' : '', 'novita' => $scelte['novita'] ? '1' : ''];
    foreach ($scelte['valori'] as $variante => $chiave) {
        $parti["v$variante"] = $chiave;
    }
    $parti = array_filter($parti, fn($valore) => $valore !== '');
    return $parti === [] ? '' : '&' . http_build_query($parti);
}

/** An amount of the choice as a number field holds it. */
function kvImportoCampo(?int $importo): string
{
    return $importo === null ? '' : rtrim(rtrim(number_format($importo / 10000, 2, '.', ''), '0'), '.');
}

/**
 * What is chosen by of all articles of this department, by their numbers: narrow rows, in the order of the shop. A page
 * that holds the whole department has read them already.
 */
function kvRigheReparto(): array
{
    static $righe = null;
    $lette = $GLOBALS['resultArt'] ?? null;
    if ($righe === null && $lette instanceof KvRows && (int) ($GLOBALS['mp'] ?? 0) === 1 && !kvScelteElenco()['attiva']) {
        $righe = array_column($lette->rows, null, 'ID');
    }
    if ($righe === null) {
        list($tabella, $n) = [kvLanguageTable('articoli'), (string) ($GLOBALS['listino'] ?: '')];
        $varianti = '';
        foreach ([1, 2, 3, 4] as $posto) {
            $varianti .= ", opzione$posto" . ($n === '' ? '' : '_' . $n);
        }
        $lette = kvQuery("SELECT $tabella.ID, plain_titolo, sottopagina, contatore, novita, catID, implistino$n, importo$n, offerte"
            . "$varianti FROM $tabella INNER JOIN dettaglio USING (ID) INNER JOIN ordinamento USING (ID) LEFT JOIN kv_offerte"
            . " USING (ID) WHERE $tabella.pagina = ?", [(string) $GLOBALS['PageRoot']]) ?? [];
        usort($lette, fn($una, $altra) => [(int) $una['sottopagina'], (int) $una['contatore']]
            <=> [(int) $altra['sottopagina'], (int) $altra['contatore']]);
        $righe = array_column($lette, null, 'ID');
    }
    return $righe;
}

/** The prices of a narrow row for this visitor. */
function kvPrezziRiga(array $riga): array
{
    global $listino, $ivacompresa;
    $reparto = (string) $riga['catID'];
    list(, $fattori, $iva) = kvLeggiReparti([$reparto])[$reparto];
    return kvPrezzi($riga, $listino, $iva, $fattori[$listino], (bool) $ivacompresa);
}

/** Whether an article is among those chosen. */
function kvSceltaRiga(array $riga, array $scelte): bool
{
    if ($scelte['novita'] && empty($riga['novita'])) {
        return false;
    }
    foreach ($scelte['valori'] as $variante => $chiave) {
        if (!in_array($variante, kvVariantiRiga($riga, (int) $GLOBALS['listino']), true)
            || !isset(kvElencoVariante($variante)['voci'][$chiave])) {
            return false;
        }
    }
    if (kvPrezziNascosti()) {
        return true;
    }
    $prezzi = kvPrezziRiga($riga);
    return (!$scelte['offerte'] || $prezzi['ridotto']) && ($scelte['da'] === null || $prezzi['prezzo'] >= $scelte['da'])
        && ($scelte['a'] === null || $prezzi['prezzo'] <= $scelte['a']);
}

/** The numbers of the articles chosen, in the order chosen; equal ones stay in the order of the shop. */
function kvNumeriScelti(): array
{
    static $numeri = null;
    if ($numeri === null) {
        $scelte = kvScelteElenco();
        include_once "kvcart.php";
        kvLeggiVarianti(array_keys($scelte['valori']));
        $righe = array_filter(kvRigheReparto(), fn($riga) => kvSceltaRiga($riga, $scelte));
        $nome = fn($riga) => kvFold(kvUtf8(kvTestoPiano((string) $riga['plain_titolo'])));
        $valori = ['prezzo' => fn($riga) => kvPrezziRiga($riga)['prezzo'], 'prezzo-giu' => fn($riga) => -kvPrezziRiga($riga)['prezzo'],
            'nome' => $nome, 'novita' => fn($riga) => empty($riga['novita'])][$scelte['ordine']] ?? null;
        if ($valori !== null && ($scelte['ordine'][0] !== 'p' || !kvPrezziNascosti())) {
            $di = array_map($valori, $righe);
            uasort($righe, fn($una, $altra) => $di[$una['ID']] <=> $di[$altra['ID']]);
        }
        $numeri = array_map('intval', array_column($righe, 'ID'));
    }
    return $numeri;
}

/** How many pages the chosen articles fill; one at least. */
function kvPagineScelte(): int
{
    return max(1, (int) ceil(count(kvNumeriScelti()) / KV_PER_PAGINA));
}

/** The query of a department page for the articles of its present page of those chosen. */
function kvSqlScelti(string $sql): string
{
    $numeri = array_slice(kvNumeriScelti(), ((int) $GLOBALS['sp'] - 1) * KV_PER_PAGINA, KV_PER_PAGINA);
    return preg_replace('/ WHERE (articoli\w*)\..*$/s', ' WHERE $1.ID IN (' . implode(',', $numeri ?: [0]) . ')', $sql);
}

/**
 * The rows of a page of chosen articles: in their order, numbered as they stand there, with the number that each has on
 * its own sub-page in `posto`, and in the cells of a table where the department has one.
 */
function kvOrdinaScelti(array $righe): array
{
    $posti = array_flip(kvNumeriScelti());
    usort($righe, fn($una, $altra) => $posti[(int) $una['ID']] <=> $posti[(int) $altra['ID']]);
    $larghezze = [];
    foreach ($righe as $riga) {
        if (preg_match('/width=(\d+)%><table/', (string) $riga['beforecode'], $parti)) {
            $larghezze[] = (int) $parti[1];
        }
    }
    $colonne = $larghezze === [] ? 1 : max(1, intdiv(100, max(1, min($larghezze))));
    foreach ($righe as $n => $riga) {
        $righe[$n]['posto'] = (int) $riga['contatore'];
        $righe[$n]['contatore'] = (string) ($n + 1);
        if ($larghezze !== []) {
            $primo = $n % $colonne === 0;
            $ultimo = $n % $colonne === $colonne - 1 || $n === count($righe) - 1;
            $righe[$n]['beforecode'] = ($primo ? '<tr>' : '') . '<td valign=top width=' . intdiv(100, $colonne)
                . '%><table border=0 width=100%><tr><td valign=top>';
            $righe[$n]['aftercode'] = '</td></tr></table></td>' . ($ultimo ? '</tr>' : '');
        }
    }
    return $righe;
}

/** The selector of the values of one variant; empty where it has fewer than two. */
function kvFiltroVariante(int $id, array $scelte): string
{
    $variante = kvElencoVariante($id);
    if ($variante === null || count($variante['voci']) < 2) {
        return '';
    }
    $opzioni = '<option value="">' . kvHtml("<<4-tutti_i_valori>>") . '</option>';
    foreach ($variante['voci'] as $chiave => $voce) {
        // The text of a value ends in what it adds to the price, which is not what is chosen by.
        $testo = preg_replace('/ \( [^()]*<<importo>> \)/', '', $voce['testo']);
        $opzioni .= '<option value="' . $chiave . '"' . (($scelte['valori'][$id] ?? '') === (string) $chiave ? ' selected' : '')
            . '>' . kvTextHtml(trim($testo, " *")) . '</option>';
    }
    return '<label><span>' . kvTextHtml($variante['nome']) . '</span> <select name="v' . $id . '">' . $opzioni . '</select></label>';
}

/** A box to be ticked. */
function kvSpunta(string $nome, string $testo, bool $scelta): string
{
    return '<label class="spunta"><input type="checkbox" name="' . $nome . '" value="1"' . ($scelta ? ' checked' : '') . '> <span>'
        . kvHtml($testo) . '</span></label>';
}

/** The fields of the form: what tells no article of the department from another is left out. */
function kvCampiFiltro(array $scelte): string
{
    $righe = kvRigheReparto();
    $nascosti = kvPrezziNascosti();
    $varianti = array_unique(array_merge([], ...array_map(fn($riga) => array_values(kvVariantiRiga($riga, (int) $GLOBALS['listino'])),
        array_values($righe))));
    kvLeggiVarianti($varianti);
    $opzioni = '';
    foreach (KV_ORDINI as $valore => $testo) {
        $opzioni .= $nascosti && $valore !== '' && $valore[0] === 'p' ? '' : '<option value="' . $valore . '"'
            . ($valore === $scelte['ordine'] ? ' selected' : '') . '>' . kvHtml($testo) . '</option>';
    }
    $html = '<label><span>' . kvHtml("<<4-ordina_per>>") . "</span> <select name=\"ordine\">$opzioni</select></label>";
    foreach ($nascosti ? [] : ['da' => "<<4-prezzo_da>>", 'a' => "<<4-prezzo_a>>"] as $nome => $testo) {
        $html .= '<label><span>' . kvHtml($testo) . '</span> <input type="number" inputmode="decimal" min="0" step="0.01" name="' . $nome
            . '" value="' . kvImportoCampo($scelte[$nome]) . '"></label>';
    }
    foreach ($varianti as $id) {
        $html .= kvFiltroVariante((int) $id, $scelte);
    }
    $offerte = !$nascosti && array_filter($righe, fn($riga) => kvPrezziRiga($riga)['ridotto']) !== [];
    $html .= $offerte || $scelte['offerte'] ? kvSpunta('offerte', "<<4-solo_offerte>>", $scelte['offerte']) : '';
    $nuovi = array_filter(array_column($righe, 'novita')) !== [];
    return $html . ($nuovi || $scelte['novita'] ? kvSpunta('novita', "<<4-solo_novita>>", $scelte['novita']) : '');
}

/** The form above a list; nothing for a department of one article. What it found is told below it. */
function kvFiltri(): string
{
    if (!($GLOBALS['resultArt'] ?? null) instanceof KvRows || count(kvRigheReparto()) < 2) {
        return '';
    }
    $scelte = kvScelteElenco();
    $html = '<details class="filtri"' . ($scelte['attiva'] ? ' open' : '') . '><summary>' . kvHtml("<<4-filtri>>") . '</summary>'
        . '<form method="get" action="' . kvHtml(kvPageFile()) . '"><input type="hidden" name="n" value="1">' . kvCampiFiltro($scelte)
        . '<p><button type="submit">' . kvHtml("<<4-filtri_mostra>>") . '</button>' . ($scelte['attiva']
        ? ' <a href="' . kvHtml(kvPageFile()) . '?n=1">' . kvHtml("<<4-filtri_togli>>") . '</a>' : '') . "</p></form></details>\n";
    if (!$scelte['attiva']) {
        return $html;
    }
    $quanti = count(kvNumeriScelti());
    return $html . '<p class="nota" role="status">' . kvHtml($quanti === 0 ? "<<4-filtri_nessuno>>" : "<<4-filtri_quanti>>: $quanti")
        . "</p>\n";
}
