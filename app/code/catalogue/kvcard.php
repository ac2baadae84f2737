<?php
// ***1.0.7***
// An article as a card of a list and as a page of its own, beyond the tags of kind 2: pictures with their sizes, marks,
// price, the form that buys, and the structured data of schema.org. The row of the article stands in $rowArt and its
// department is set, as for ViewArt.
include_once "kvcart.php";
include_once "kvnota.php";

/** The picture in a tag of the build: src, and width and height where the build knew them; null without one. */
function kvImmagine(string $tag): ?array
{
    if (!preg_match('/<img\b[^>]*>/i', $tag, $parti)) {
        return null;
    }
    $attributi = kvAttributes(substr($parti[0], 4));
    $src = (string) ($attributi['src'] ?? '');
    return $src === '' ? null
        : ['src' => $src, 'width' => (int) ($attributi['width'] ?? 0), 'height' => (int) ($attributi['height'] ?? 0)];
}

/** The tag of a picture; `altre` are the same picture in other sizes, for screens that show more of it. */
function kvTagImmagine(array $immagine, string $testo, bool $pigra = true, array $altre = [], string $misure = ''): string
{
    $attributi = ['src' => $immagine['src'], 'alt' => $testo];
    if ($immagine['width'] > 0 && $immagine['height'] > 0) {
        $attributi += ['width' => $immagine['width'], 'height' => $immagine['height']];
        $insieme = [];
        foreach (array_merge([$immagine], $altre) as $altra) {
            if ($altra['width'] > 0) {
                $insieme[$altra['width']] = str_replace(' ', '%20', $altra['src']) . ' ' . $altra['width'] . 'w';
            }
        }
        if (count($insieme) > 1) {
            $attributi += ['srcset' => implode(', ', $insieme), 'sizes' => $misure];
        }
    }
    $forme = [];
    foreach (array_merge([$immagine], $altre) as $altra) {
        $forme += kvForme($altra['src'], (int) $altra['width']);
    }
    $tag = kvTag('img', $attributi + ($pigra ? ['loading' => 'lazy'] : []) + ['decoding' => 'async']);
    return kvConForme($tag, $forme, $misure === '' ? "(max-width: {$immagine['width']}px) 100vw, {$immagine['width']}px" : $misure);
}

/** A piece of HTML of the build whose pictures say what they show. */
function kvConTesto(string $html, string $testo): string
{
    return str_replace('alt=""', 'alt="' . TestoSemplice($testo) . '"', kvPulito($html));
}

/** Whether the next picture of a list may wait until it is scrolled to: the first four may not. */
function kvPigra(): bool
{
    static $viste = 0;
    return $viste++ >= 4;
}

/** The picture of an article for its card, without words beside its title; an empty text without any. */
function kvFotoScheda(array $riga): string
{
    $immagini = array_filter([kvImmagine((string) ($riga['immagine1'] ?? '')),
        kvImmagine((string) ($riga['immagine2'] ?? '')), kvImmagine((string) ($riga['immagine3'] ?? ''))]);
    return $immagini === [] ? ''
        : kvTagImmagine(array_shift($immagini), '', kvPigra(), $immagini, '(min-width: 40rem) 15rem, 45vw');
}

/** The big picture of an article on its own page; a click shows it in its full size where the merchant wants that. */
function kvFotoGrande(array $riga): string
{
    $prima = (string) ($riga['immagine1'] ?? '');
    $immagini = array_values(array_filter([kvImmagine((string) ($riga['immagine2'] ?? '')), kvImmagine($prima)]));
    if ($immagini === []) {
        return '';
    }
    $nome = TestoSemplice((string) $riga['plain_titolo']);
    $tag = kvTagImmagine($immagini[0], $nome, kvPigra(), array_slice($immagini, 1), '(min-width: 60rem) 30rem, 92vw');
    if (!preg_match('/PopupImage\(\'([^\']*)\',(\d+),(\d+)\)/', $prima, $parti)) {
        return $tag;
    }
    return '<a href="' . kvHtml($parti[1]) . '" onclick="PopupImage(\'' . kvHtml($parti[1])
        . "',$parti[2],$parti[3]); return false\">$tag</a>";
}

/** A picture of the showcase from the file name and the size texts of its cell. */
function kvFotoVetrina(string $file, string $larghezza, string $altezza): string
{
    return $file === '' ? '' : kvTagImmagine(
        ['src' => kvHtml($file), 'width' => (int) $larghezza, 'height' => (int) $altezza], '', kvPigra());
}

/** The marks of an article: offer, discount in percent, novelty. */
function kvSegni(array $riga): string
{
    $segni = empty($riga['novita']) ? '' : '<span class="bollo">' . kvHtml("<<4-novita>>") . '</span>';
    return kvBolli(kvSegnoOfferta()) . $segni;
}

/** The marks of the build in words instead of pictures. */
function kvBolli(string $html): string
{
    $html = preg_replace('/<img\b[^>]*\bkvan_offerta[^>]*>/i', '<span class="bollo">' . kvHtml("<<4-offerta>>") . '</span>', trim($html), 1);
    return str_replace('class="sconto"', 'class="bollo sconto"', $html);
}

/** The price asked, the struck list price before it, VAT and second currency behind it. */
function kvPrezzo(): string
{
    $barrato = ViewArt('prezzo_barrato');
    $html = $barrato === '' ? '' : '<span class="barrato"><span class="nascosto">' . kvHtml("<<4-prezzo_pieno>>") . ' </span>'
        . $barrato . '</span> ';
    $html .= '<strong class="prezzo">' . ViewArt('prezzo') . '</strong>';
    foreach (['iva', 'cambio'] as $nota) {
        $testo = ViewArt($nota);
        $html .= $testo === '' ? '' : ' <span class="nota ' . $nota . '">' . kvPulito($testo) . '</span>';
    }
    return $html . ' ' . kvNotaPrezzo() . kvNotePrezzo($GLOBALS['rowArt']);
}

/** What the browser needs to show the price of the chosen values and pieces; nothing where prices are hidden. */
function kvDatiPrezzo(array $riga): string
{
    if (kvPrezziNascosti()) {
        return '';
    }
    $contenuto = kvContenuto($riga);
    return '<span class="kv-prezzo" hidden data-prezzo="'
        . kvMinimi(kvPrezziVisitatore($riga)['prezzo'], kvScala())
        . ($contenuto === null ? '' : '" data-contenuto="' . $contenuto[0] . '" data-misura="' . $contenuto[1]) . '" data-passi="'
        . kvHtml((string) json_encode(kvScaglioni($riga, (int) $GLOBALS['listino']))) . '"></span>';
}

/** All rows of the department page; those that the loop has yet to read stay unread. */
function kvRighePagina($esito): array
{
    static $righe = null;
    if ($esito instanceof KvRows) {
        return $esito->rows;
    }
    if ($righe === null && $esito instanceof mysqli_result) {
        $righe = [];
        mysqli_data_seek($esito, 0);
        while ($riga = mysqli_fetch_assoc($esito)) {
            $righe[] = $riga;
        }
        mysqli_data_seek($esito, (int) ($GLOBALS['Contatore'] ?? 0));
    }
    return $righe ?? [];
}

/**
 * The article that is shown alone: the one that the address asks for, or the only one of the page where `unica`. Null
 * for a list. To be called before the loop over the articles; an address that asks for what there isn't gets a page that
 * says so, with status 404.
 */
function kvArticoloSolo(bool $unica = false): ?array
{
    global $resultArt, $HTTP_GET_VARS, $sp;
    $righe = kvRighePagina($resultArt);
    $posto = (int) $HTTP_GET_VARS['prod'];
    $pagina = (int) $HTTP_GET_VARS['n'];
    if (!empty($GLOBALS['kvWrong']) || ($pagina > 0 && $pagina !== (int) $sp) || ($posto > 0 && !isset($righe[$posto - 1]))) {
        kvNotFound();
    }
    return $posto > 0 ? $righe[$posto - 1] : ($unica && count($righe) === 1 && !kvScelteElenco()['attiva'] ? $righe[0] : null);
}

/** Whether an article can be bought: neither it nor all values of one of its variants are sold out. */
function kvDisponibile(array $riga): bool
{
    return kvArticoloDisponibile($riga) && kvVariantiDisponibili($riga);
}

/** Whether the article itself isn't sold out. */
function kvArticoloDisponibile(array $riga): bool
{
    // A department page has the stock beside the article.
    if (!array_key_exists('disponibile', $riga)) {
        return (kvScorte(['A' . $riga['ID']])['A' . $riga['ID']] ?? 1) > 0;
    }
    return $riga['disponibile'] === null || ($riga['disponibile'] && ($riga['quantita'] === null || $riga['quantita'] > 0));
}

/** The page that shows an article of this page alone. */
function kvPaginaScheda(array $riga): string
{
    return kvPageFile() . '?n=' . (int) ($riga['sottopagina'] ?? $GLOBALS['sp']) . '&prod='
        . (int) ($riga['posto'] ?? $riga['contatore']);
}

/** The same for an article of any department. */
function kvPaginaArticolo(array $riga): string
{
    return $riga['linkPage'] . '.php?n=' . (int) $riga['sottopagina'] . '&prod=' . (int) $riga['contatore'];
}

/** The smallest picture of an article that is fit for a list; null without any. */
function kvFotoPiccola(array $riga): ?array
{
    return kvImmagine((string) ($riga['immagine3'] ?? '')) ?? kvImmagine((string) ($riga['immagine1'] ?? ''))
        ?? kvImmagine((string) ($riga['immagine2'] ?? ''));
}

/** Whether the visitor has to choose a variant of the article. */
function kvHaVarianti(array $riga): bool
{
    return kvVariantiRiga($riga, (int) $GLOBALS['listino']) !== [];
}

/**
 * What buys an article: a form with variants and quantity on its own page (`intera`), on a card one button, which leads
 * to that page where there is something to choose. Who may not buy is sent where the buy link of the build would.
 */
function kvModuloAcquista(array $riga, bool $intera): string
{
    if (!kvDisponibile($riga)) {
        return '<p class="esaurito">' . kvHtml("<<4-esaurito>>") . '</p>';
    }
    $chiamata = substr((string) strstr(ViewArt('java_acquista'), '"', true), strlen('javascript:'));
    if (preg_match('/^self\.location=\'([^\']*)\'/', $chiamata, $parti)) {
        return '<p><a class="bottone" href="' . $parti[1] . '">' . kvHtml("<<4-menu_accesso>>") . '</a></p>';
    }
    $nome = kvHtml(kvTestoPiano((string) $riga['plain_titolo']));
    if (!$intera && kvHaVarianti($riga)) {
        return '<p><a class="bottone secondario" href="' . kvHtml(kvPaginaScheda($riga)) . '">' . kvHtml("<<4-scegli>>")
            . '<span class="nascosto">: ' . $nome . '</span></a></p>';
    }
    $posto = (int) $riga['contatore'];
    // In an address the percent codes are read before the script is; in an attribute they are not.
    $chiamata = str_replace(["window.status='';", "document.itemsform.qt$posto.value"], ['', "this.qt$posto.value"],
        $chiamata);
    $chiamata = kvHtml(rawurldecode($chiamata));
    $minimo = max(1, (int) "<<1-java_qminima>>");
    $quantita = $intera
        ? '<div class="quantita"><label for="qt' . $posto . '">' . kvHtml("<<4-quantita>>") . '</label>'
            . '<div><button type="button" data-passo="-1" aria-label="' . kvHtml("<<4-meno>>") . '">&minus;</button>'
            . "<input type=\"number\" inputmode=\"numeric\" name=\"qt$posto\" id=\"qt$posto\" value=\"$minimo\""
            . " min=\"$minimo\" max=\"99999\" required><button type=\"button\" data-passo=\"1\" aria-label=\""
            . kvHtml("<<4-piu>>") . '">+</button></div></div>'
        : "<input type=\"hidden\" name=\"qt$posto\" value=\"$minimo\">";
    return '<form class="acquisto" method="post" action="kvcarrello.php" accept-charset="utf-8" onsubmit="' . $chiamata
        . '; return false"><input type="hidden" name="compra" value="' . (int) $riga['ID'] . ".$posto\">" . ($intera ? ViewArt('opzioni') : '') . $quantita
        . '<button type="submit">' . kvHtml("<<4-acquista>>") . ($intera ? '' : '<span class="nascosto">: ' . $nome . '</span>')
        . '</button></form>';
}

/** The link that an article has to a page elsewhere; nothing without one. */
function kvLinkEsterno(array $riga): string
{
    if (!preg_match('/^<a href="([^"]*)"( target="_blank")?>/', (string) ($riga['titolo'] ?? ''), $parti)) {
        return '';
    }
    return '<p><a href="' . kvTextBetweenTags($parti[1]) . '"' . (isset($parti[2]) ? ' target="_blank" rel="noopener"' : '') . '>'
        . kvHtml("<<4-approfondimento>>") . '</a></p>';
}

/** The start of the article loop: what the build puts around each article is not wanted, see kvFineSchede. */
function kvInizioSchede(): void
{
    $GLOBALS['kvCards'] = '';
    $GLOBALS['kvDatiSchede'] = [];
    ob_start();
}

/** The start of one article. */
function kvInizioScheda(): void
{
    ob_start();
}

/** The end of one article: it is kept together with its structured data. */
function kvFineScheda(): void
{
    $GLOBALS['kvCards'] .= ob_get_clean();
    $GLOBALS['kvDatiSchede'][] = kvDatiArticolo($GLOBALS['rowArt'], kvDisponibile($GLOBALS['rowArt']));
}

/** The end of the loop: the articles, without the anchors and table cells between them. */
function kvFineSchede(): string
{
    ob_end_clean();
    return $GLOBALS['kvCards'];
}

/** The ISO 4217 code of the shop's currency from its label; empty when the label doesn't tell. */
function kvCodiceValuta(): string
{
    $etichetta = strtoupper(trim(html_entity_decode((string) $GLOBALS['valuta'][0], ENT_QUOTES, 'cp1252')));
    $segni = ["\x80" => 'EUR', 'EURO' => 'EUR', '$' => 'USD', 'US$' => 'USD', "\xA3" => 'GBP', 'FR.' => 'CHF',
        'SFR' => 'CHF', "\xA5" => 'JPY', 'LIT.' => 'ITL', 'LIRE' => 'ITL'];
    return $segni[$etichetta] ?? (preg_match('/^[A-Z]{3}$/D', $etichetta) ? $etichetta : '');
}

/** An offer for each value of an article with one variant that has a limited value; none for all other articles. */
function kvOfferteValori(array $riga, callable $offerta): array
{
    $varianti = array_values(kvVariantiRiga($riga, (int) $GLOBALS['listino']));
    $offerte = [];
    $limitati = 0;
    foreach (count($varianti) === 1 ? (kvElencoVariante($varianti[0])['voci'] ?? []) : [] as $voce) {
        $libera = kvValoreDisponibile($riga, $varianti[0], $voce['codice']);
        $limitati += $libera ? 0 : 1;
        $prezzo = kvMinimi(kvPrezziVisitatore($riga)['prezzo'], kvScala()) + kvDifferenza($voce['prezzo'], $riga);
        $offerte[] = ['name' => kvDataText($voce['etichetta'])] + ($voce['codice'] === '' ? []
            : ['sku' => kvUtf8($voce['codice'])]) + $offerta(kvNumeroScript(max(0, $prezzo), kvScala()), $libera && kvArticoloDisponibile($riga));
    }
    return $limitati > 0 ? $offerte : [];
}

/** An article as schema.org has it: Product with its Offer. A price that the visitor doesn't see isn't told either. */
function kvDatiArticolo(array $riga, bool $disponibile): array
{
    $foto = kvImmagine((string) ($riga['immagine2'] ?? '')) ?? kvImmagine((string) ($riga['immagine1'] ?? ''));
    $dati = ['@type' => 'Product', 'name' => kvDataText((string) $riga['plain_titolo']), 'sku' => kvUtf8((string) $riga['codice']),
        'description' => kvUtf8(kvFirstWords((string) $riga['descrizione'], 1000)),
        'image' => $foto === null ? '' : kvAbsoluteAddress(rawurlencode(html_entity_decode($foto['src']))),
        'url' => kvAbsoluteAddress(kvPaginaScheda($riga))];
    $valuta = kvCodiceValuta();
    if (!kvPrezziNascosti() && $valuta !== '') {
        $prezzo = kvNumeroScript(kvMinimi(kvPrezziVisitatore($riga)['prezzo'], kvScala()), kvScala());
        $offerta = fn(string $prezzo, bool $disponibile): array => ['@type' => 'Offer', 'price' => $prezzo,
            'priceCurrency' => $valuta, 'availability' => 'https://schema.org/' . ($disponibile ? 'InStock' : 'OutOfStock'),
            'url' => $dati['url']] + ($GLOBALS['ivacompresa'] ? [] : ['priceSpecification' => [
            '@type' => 'UnitPriceSpecification', 'price' => $prezzo, 'priceCurrency' => $valuta,
            'valueAddedTaxIncluded' => false]]);
        $dati['offers'] = $offerta($prezzo, $disponibile);
        $valori = kvOfferteValori($riga, $offerta);
        $dati['offers'] = $valori === [] ? $dati['offers'] : $valori;
        if (is_array($GLOBALS['kvSolo'] ?? null)) {
            include_once "kvsociale.php";
            $consegna = kvDeliveryData($riga, $valuta);
            $dati['offers'] = $valori === [] ? $dati['offers'] + $consegna : array_map(fn($uno) => $uno + $consegna, $valori);
        }
    }
    return array_filter($dati, fn($valore) => $valore !== '');
}

/** The structured data of the articles shown: one product, or the list of them. */
function kvDatiSchede(): string
{
    $schede = $GLOBALS['kvDatiSchede'] ?? [];
    if (count($schede) < 2) {
        return $schede === [] ? '' : kvStructuredData(['@context' => 'https://schema.org'] + $schede[0]);
    }
    $voci = [];
    foreach ($schede as $n => $scheda) {
        $voci[] = ['@type' => 'ListItem', 'position' => $n + 1, 'item' => $scheda];
    }
    return kvStructuredData(['@context' => 'https://schema.org', '@type' => 'ItemList', 'itemListElement' => $voci]);
}

/** The cells of the showcase table of the build as list items; nothing without any. */
function kvVetrina(string $tabella): string
{
    preg_match_all('/<td [^>]*>\s*<font size="[^"]*">\s*(.*?)<\/font><\/td>/s', $tabella, $celle);
    $voci = '';
    foreach ($celle[1] as $cella) {
        $voci .= '<li>' . kvBolli(trim($cella)) . "</li>\n";
    }
    return $voci === '' ? '' : "<ul class=\"griglia\">\n$voci</ul>\n";
}

/** The lines of the visitor's cart in brief, for the summary beside the order form. */
function kvElencoCarrello(): string
{
    $voci = '';
    foreach (kvCarrelloVisitatore() as $riga) {
        $scelte = $riga['scelte'] === '' ? '' : '<br><span class="nota">' . kvHtml($riga['scelte']) . '</span>';
        $voci .= '<li><span>' . $riga['quantita'] . ' &times; ' . kvHtml($riga['testo']) . $scelte . '</span> <span>'
            . kvTestoMinimi($riga['importo'] * $riga['quantita']) . '</span></li>';
    }
    return $voci === '' ? '' : '<ul class="righe">' . $voci . "</ul>\n";
}
