<?php
// ***1.0.7***
// One article as the pages show it. ViewArt is what each article tag of a template becomes; the row of the article
// stands in the global $rowArt. Texts that depend on the visitor (prices, marks, the buy link, variants) are made here,
// all others are columns of the row. Besides the columns a template may name: prezzo_barrato (the list price, only
// where a lower one is asked), opzioni (all variant selectors), scaglioni (the quantity discounts in words), correlati
// (links to the articles of the same group), unitario (the price of a unit), minimo (the lowest price before a
// reduction), sicurezza (maker and person responsible), consegna (the time of delivery).
include_once "kvhtml.php";
include_once "kvlegge.php";

function ViewArt(string $nome): string
{
    global $rowArt;
    $riga = is_array($rowArt) ? $rowArt : [];
    switch ($nome) {
        case 'listino':
        case 'prezzo':
        case 'prezzo_barrato':
        case 'cambio':
        case 'cart_prezzo':
            return kvVistaPrezzo($nome, $riga);
        case 'offerta':
            return ViewOfferta();
        case 'novita':
            return empty($riga['novita']) ? '' : (string) $GLOBALS['visnovita'];
        case 'java_acquista':
            return kvAcquista($riga);
        case 'opzione1':
        case 'opzione2':
        case 'opzione3':
        case 'opzione4':
            return kvSelettori($riga, [(int) $nome[7]]);
        case 'opzioni':
            return kvSelettori($riga, [1, 2, 3, 4]);
        case 'scaglioni':
            return kvTestoScaglioni($riga);
        case 'correlati':
            return kvCorrelati($riga);
        case 'unitario':
            return kvPrezzoUnitario($riga);
        case 'minimo':
            return kvPrezzoMinimo($riga);
        case 'sicurezza':
            return kvSicurezza($riga);
        case 'consegna':
            return kvConsegna($riga);
        case 'iva':
            return kvPrezziNascosti() ? '' : (string) ($riga['iva'] ?? '');
        case 'immagine1':
        case 'immagine2':
        case 'immagine3':
            return kvConLeggere((string) ($riga[$nome] ?? ''));
        default:
            return (string) ($riga[$nome] ?? '');
    }
}

/** The lighter forms of a picture that are in the site, by their widths in pixels; nothing without any. `src` is as
 *  in a tag; `larghezza` is the picture's own width, 0 where it isn't known. */
function kvForme(string $src, int $larghezza): array
{
    $file = rawurldecode(html_entity_decode($src, ENT_QUOTES, 'ISO-8859-1'));
    if ($file === '' || strpbrk($file, "/\\:\0") !== false || !is_file($file . '.webp')) {
        return [];
    }
    $forme = [$larghezza => $src . '.webp'];
    foreach ($larghezza > 0 ? [960, 480] : [] as $misura) {
        if ($misura < $larghezza && is_file("$file.$misura.webp")) {
            $forme[$misura] = "$src.$misura.webp";
        }
    }
    return $forme;
}

/** A tag of a picture within the offer of its lighter forms; the tag itself without any. */
function kvConForme(string $tag, array $forme, string $misure): string
{
    if ($forme === []) {
        return $tag;
    }
    if (count($forme) > 1) {
        unset($forme[0]);  // without its width a form can't be one of several
    }
    ksort($forme);
    $insieme = [];
    foreach ($forme as $larghezza => $src) {
        $insieme[] = str_replace(' ', '%20', $src) . ($larghezza > 0 ? " {$larghezza}w" : '');
    }
    $attributi = ['type' => 'image/webp', 'srcset' => implode(', ', $insieme)];
    return '<picture>' . kvTag('source', $attributi + (isset($forme[0]) ? [] : ['sizes' => $misure])) . $tag . '</picture>';
}

/** A piece of HTML of the build whose pictures are offered in their lighter forms. */
function kvConLeggere(string $html): string
{
    return preg_replace_callback('/<img\b[^>]*>/i', function (array $parti): string {
        $attributi = kvAttributes(substr($parti[0], 4));
        $larghezza = (int) ($attributi['width'] ?? 0);
        $forme = kvForme((string) ($attributi['src'] ?? ''), $larghezza);
        return kvConForme($parti[0], $forme, "(max-width: {$larghezza}px) 100vw, {$larghezza}px");
    }, $html);
}

function kvVistaPrezzo(string $nome, array $riga): string
{
    if (kvPrezziNascosti()) {
        return $nome === 'prezzo' ? kvHtml("<<4-prezzo_riservato>>") : '';
    }
    $prezzi = kvPrezziVisitatore($riga);
    switch ($nome) {
        case 'listino':
        case 'prezzo_barrato':
            if ($prezzi['ridotto']) {
                return '<s>' . kvTestoImporto($prezzi['listino']) . '</s>';
            }
            return $nome === 'listino' ? kvTestoImporto($prezzi['listino']) : '';
        case 'cambio':
            return kvTestoCambio($prezzi['prezzo'] / 10000);
        case 'cart_prezzo':
            return kvNumeroScript(kvMinimi($prezzi['prezzo'], kvScala()), kvScala());
        default:
            return kvTestoImporto($prezzi['prezzo']);
    }
}

/** The offer mark, the discount percent and the lowest price before the reduction of the current row. */
function ViewOfferta(): string
{
    global $rowArt;
    $minimo = is_array($rowArt) ? kvPrezzoMinimo($rowArt) : '';
    return kvSegnoOfferta() . ($minimo === '' ? '' : ' <span class="minimo">' . $minimo . '</span>');
}

/** The offer mark and the discount percent of the current row. */
function kvSegnoOfferta(): string
{
    global $rowArt, $visofferta, $vissconto, $notazione;
    if (!is_array($rowArt) || kvPrezziNascosti()) {
        return '';
    }
    $prezzi = kvPrezziVisitatore($rowArt);
    $testo = $prezzi['offerta'] ? (string) $visofferta : '';
    if ($vissconto && $prezzi['sconto'] > 0) {
        $testo .= ' <span class="sconto">-' . kvTestoPercento($prezzi['sconto']) . '%</span>';
    }
    return $testo;
}

/** A percentage with at most two decimals, in the shop's notation. */
function kvTestoPercento(float $percento): string
{
    return rtrim(rtrim(kvFormato((int) round($percento * 100), 100, (int) $GLOBALS['notazione']), '0'), ',.');
}

/** An image of the showcase cell; nothing without a name, no size when none is known. */
function VetImmagine(string $file, string $larghezza, string $altezza): string
{
    if ($file === '') {
        return '';
    }
    $misure = (int) $larghezza > 0 ? ' width="' . (int) $larghezza . '" height="' . (int) $altezza . '"' : '';
    return kvConLeggere('<img src="' . kvHtml($file) . '"' . $misure . ' alt="" loading="lazy">');
}

/** A text as an argument between single quotes of a script that stands in the address of a link. */
function kvTestoScript(string $testo): string
{
    return strtr($testo, [
        '"' => '%22', '%' => '%25', "'" => "\\'", '\\' => '\\\\', ';' => ',', '<' => '%3C', '>' => '%3E', '&' => '%26',
        '[' => ' ', ']' => ' ', '|' => ' ', "\xA3" => ' ', "\r" => ' ', "\n" => ' ',
    ]);
}

/** The quantity discount of a row: pairs of quantity and factor in millionths, by rising quantity. */
function kvScaglioni(array $riga, int $listino): array
{
    $passi = [];
    if (!empty($riga['scq' . ($listino === 0 ? '' : $listino)])) {
        foreach (['0', '1'] as $n) {
            $soglia = (int) ($riga['scqart' . $n] ?? 0);
            if ($soglia > 0) {
                $passi[$soglia] = [$soglia, (int) round((float) ($riga['scqperc' . $n] ?? 1) * 1000000)];
            }
        }
        ksort($passi);
    }
    return array_values($passi);
}

/** The quantity discounts in words, "3: -10% 10: -20%" as a list; empty without any. */
function kvTestoScaglioni(array $riga): string
{
    if (kvPrezziNascosti()) {
        return '';
    }
    $voci = '';
    foreach (kvScaglioni($riga, $GLOBALS['listino']) as list($soglia, $fattore)) {
        $percento = kvTestoPercento((1000000 - $fattore) / 10000);
        $voci .= "<li><<4-quantita_da>> $soglia: -$percento%</li>";
    }
    return $voci === '' ? '' : '<ul class="scaglioni">' . $voci . '</ul>';
}

/**
 * The buy link: stands in an href; its inner quote closes the address. Visitors who may not buy are sent to the
 * registration page instead. What reaches the cart is the article's number, the quantity and the chosen values: names
 * and prices are for scripts of the merchant's own, the cart asks the server for them.
 */
function kvAcquista(array $riga): string
{
    global $cliente, $subtitleincart, $ivacompresa, $ivarep, $Lingua;
    $coda = "\" onMouseOver=\"window.status=''; return true";
    if (kvAcquistoNegato()) {
        $motivo = $cliente > 0 ? 'm=37&amp;t=.37.' : 'm=23';
        return "javascript:self.location='login$Lingua.php?$motivo';" . $coda;
    }
    $articolo = (string) ($riga['cart_articolo'] ?? '');
    if ($subtitleincart && ($riga['plain_sottotitolo'] ?? '') !== '') {
        $articolo .= ' ' . kvTestoScript(strip_tags((string) $riga['plain_sottotitolo']));
    }
    $posto = (int) ($riga['contatore'] ?? 0);
    $prezzo = kvNumeroScript(kvMinimi(kvPrezziVisitatore($riga)['prezzo'], kvScala()), kvScala());
    $iva = $ivacompresa ? '0' : (string) round((float) $ivarep, 6);
    $peso = (string) ($riga['cart_peso'] ?? '0');
    return "javascript:window.status='';Acquista('$articolo','$prezzo','$iva',document.itemsform.qt$posto.value,"
        . "'op1$posto','op2$posto','op3$posto','$peso','op4$posto'," . (int) ($riga['ID'] ?? 0) . ')' . $coda;
}

/** The variant of a slot (1 to 4) for a listino; 0 when the slot is empty. */
function kvVariante(array $riga, int $posto, int $listino): int
{
    $id = (int) ($riga['opzione' . $posto . ($listino === 0 ? '' : '_' . $listino)] ?? 0);
    return $id > 1 ? $id : 0;
}

/** The selectors of some variant slots; empty where the article has no variants. */
function kvSelettori(array $riga, array $posti): string
{
    $html = '';
    foreach ($posti as $posto) {
        if (kvVariante($riga, $posto, $GLOBALS['listino']) > 0) {
            include_once "kvvariant.php";
            $html .= kvSelettore($riga, $posto);
        }
    }
    return $html;
}

/** The group word of a row by which related articles are known; empty when it has none. */
function kvGruppo(array $riga): string
{
    return strtolower(trim((string) ($riga['correlazione'] ?? '')));
}

/**
 * The rows of related articles, by the key that a load makes; a shop that has none yet reads all its articles. `dopo` is
 * the rest of the statement up to the column of the group word.
 */
function kvRigheGruppi(string $colonne, string $tabella, string $dopo, array $gruppi): array
{
    include_once "kvtables.php";
    $indice = 'indice' . $GLOBALS['Lingua'];
    if (($GLOBALS['kvStates'][$indice] ?? kvStoredValue($indice)) !== '2') {
        return kvQuery("SELECT $colonne FROM $tabella$dopo IN (" . implode(',', array_fill(0, count($gruppi), '?'))
            . ') ORDER BY plain_titolo', $gruppi) ?? [];
    }
    // The connection stays with the character set of the catalogue: a change of it, and bound values, are trips to the
    // server. The words of the index are UTF-8 all the same, told by their bytes.
    kvSetCharset('latin1');
    $parole = array_map(fn($parola) => "'" . mysqli_real_escape_string(kvConnection(), $parola) . "'", $gruppi);
    $chiavi = array_map(fn($parola) => "_utf8mb4 x'" . bin2hex(kvIndexGroup($parola)) . "'", $gruppi);
    $sql = "SELECT STRAIGHT_JOIN $colonne FROM kv_voci{$GLOBALS['Lingua']} v INNER JOIN $tabella ON $tabella.ID = v.articolo$dopo"
        . ' IN (' . implode(',', $parole) . ') AND v.gruppo IN (' . implode(',', $chiavi) . ') ORDER BY plain_titolo';
    $esito = mysqli_query(kvConnection(), $sql);
    if ($esito === false && mysqli_errno(kvConnection()) === 1146) {
        kvUpdateTables();
        kvSetCharset('latin1');
        $esito = mysqli_query(kvConnection(), $sql);
    }
    return $esito instanceof mysqli_result ? mysqli_fetch_all($esito, MYSQLI_ASSOC) : [];
}

/** The articles of each group word on the page, read by one query; closed and hidden departments stay out. */
function kvGruppiPagina(string $gruppo): array
{
    global $resultArt, $listino;
    static $gruppi = [];
    if (isset($gruppi[$gruppo])) {
        return $gruppi;
    }
    $righe = $resultArt instanceof KvRows ? $resultArt->rows : [];
    $nuovi = array_values(array_filter(array_unique(array_merge([$gruppo], array_map('kvGruppo', $righe)))));
    $gruppi += array_fill_keys($nuovi, []);
    $tabella = kvLanguageTable('articoli');
    // Beside an article that is shown alone they are cards, with picture and price: those columns come along.
    $schede = is_array($GLOBALS['kvSolo'] ?? null);
    $dopo = " INNER JOIN dettaglio ON dettaglio.ID = $tabella.ID INNER JOIN ordinamento ON ordinamento.ID = $tabella.ID"
        . ($schede ? " LEFT JOIN kv_offerte ON kv_offerte.ID = $tabella.ID" : '')
        . " INNER JOIN categorie ON categorie.ID = catID WHERE nascosto = 0 AND inaccessibile" . ($listino ?: '')
        . ' = 0 AND correlazione';
    $n = (string) ($listino ?: '');
    $colonne = "$tabella.ID, $tabella.pagina, sottopagina, contatore, plain_titolo, correlazione"
        . ($schede ? ", catID, $tabella.pagina AS linkPage, immagine1, immagine2, immagine3, implistino$n, importo$n, offerte" : '');
    foreach (kvRigheGruppi($colonne, $tabella, $dopo, $nuovi) as $riga) {
        $gruppi[kvGruppo($riga)][] = $riga;
    }
    return $gruppi;
}

/** A card of another article: picture, title, price. Its department is set for its price, and not set back. */
function kvSchedaCorrelata(array $riga): string
{
    SetVariables($riga['catID']);
    $foto = kvFotoPiccola($riga);
    $prezzo = kvPrezziNascosti() ? '' : '<strong class="importo">' . kvTestoImporto(kvPrezziVisitatore($riga)['prezzo']) . '</strong>';
    return '<li><a class="scheda" href="' . kvHtml(kvPaginaArticolo($riga)) . '"><span class="foto">'
        . ($foto === null ? '' : kvTagImmagine($foto, '')) . '</span><span class="nome">' . TestoSemplice((string) $riga['plain_titolo'])
        . "</span>$prezzo</a></li>";
}

/** The other articles with the same group word, twelve at most: cards on the page of one article, links in a list. */
function kvCorrelati(array $riga): string
{
    $gruppo = kvGruppo($riga);
    $altre = array_slice(array_filter($gruppo === '' ? [] : kvGruppiPagina($gruppo)[$gruppo],
        fn($altra) => (int) $altra['ID'] !== (int) $riga['ID']), 0, 12);
    $voci = '';
    if (is_array($GLOBALS['kvSolo'] ?? null)) {
        include_once "kvcard.php";
        kvLeggiReparti(array_map('strval', array_column($altre, 'catID')));
        $voci = implode('', array_map('kvSchedaCorrelata', $altre));
        SetVariables($riga['catID']);
        return $voci === '' ? '' : '<ul class="correlati schede">' . $voci . '</ul>';
    }
    foreach ($altre as $altra) {
        $voci .= '<li><a href="' . kvHtml($altra['pagina']) . '.php?n=' . (int) $altra['sottopagina'] . '#'
            . (int) $altra['contatore'] . '">' . kvTextHtml((string) $altra['plain_titolo']) . '</a></li>';
    }
    return $voci === '' ? '' : '<ul class="correlati">' . $voci . '</ul>';
}
