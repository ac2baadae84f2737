<?php
// ***1.0.7***
// One article as the pages show it. ViewArt is what each article tag of a template becomes; the row of the article
// stands in the global $rowArt. Texts that depend on the visitor (prices, marks, the buy link, variants) are made here,
// all others are columns of the row. Besides the columns a template may name: prezzo_barrato (the list price, only
// where a lower one is asked), opzioni (all variant selectors), correlati (links to the articles of the same group).

if (!function_exists('ViewArt')) {

function ViewArt(string $nome): string
{
    global $rowArt;
    $riga = is_array($rowArt) ? $rowArt : [];
    if (in_array($nome, ['listino', 'prezzo', 'prezzo_barrato', 'cambio', 'cart_prezzo'], true)) {
        return kvVistaPrezzo($nome, $riga);
    }
    if (preg_match('/^opzione[1-4]$/', $nome)) {
        return kvSelettore($riga, (int) substr($nome, -1));
    }
    switch ($nome) {
        case 'offerta': return ViewOfferta();
        case 'novita': return empty($riga['novita']) ? '' : $GLOBALS['visnovita'];
        case 'java_acquista': return kvAcquista($riga);
        case 'opzioni': return implode('', array_map(fn($n) => kvSelettore($riga, $n), [1, 2, 3, 4]));
        case 'correlati': return kvCorrelati($riga);
        default: return (string) ($riga[$nome] ?? '');
    }
}

function kvVistaPrezzo(string $nome, array $riga): string
{
    if (kvPrezziNascosti()) {
        return $nome === 'prezzo' ? kvHtml("<<4-prezzo_riservato>>") : '';
    }
    $prezzi = kvPrezziVisitatore($riga);
    $ridotto = $prezzi['offerta'] || $prezzi['prezzo'] !== $prezzi['listino'];
    $barrato = '<s>' . kvTestoImporto($prezzi['listino']) . '</s>';
    switch ($nome) {
        case 'listino': return $ridotto ? $barrato : kvTestoImporto($prezzi['listino']);
        case 'prezzo_barrato': return $ridotto ? $barrato : '';
        case 'cambio': return kvTestoCambio($prezzi['prezzo']);
        case 'cart_prezzo': return kvNumeroScript($prezzi['prezzo'], (bool) $GLOBALS['visdec'][0]);
        default: return kvTestoImporto($prezzi['prezzo']);
    }
}

/** The offer mark and the discount percent of the current row. */
function ViewOfferta(): string
{
    global $rowArt, $visofferta, $vissconto, $notazione;
    if (!is_array($rowArt) || kvPrezziNascosti()) {
        return '';
    }
    $prezzi = kvPrezziVisitatore($rowArt);
    $testo = $prezzi['offerta'] ? $visofferta : '';
    if ($vissconto && $prezzi['sconto'] > 0) {
        $percento = rtrim(rtrim(kvFormato($prezzi['sconto'], true, (int) $notazione), '0'), ',.');
        $testo .= ' <span class="sconto">-' . $percento . '%</span>';
    }
    return $testo;
}

/** An image of the showcase cell; nothing without a name, no size when none is known. */
function VetImmagine(string $file, string $larghezza, string $altezza): string
{
    if ($file === '') {
        return '';
    }
    $misure = (int) $larghezza > 0 ? ' width="' . (int) $larghezza . '" height="' . (int) $altezza . '"' : '';
    return '<img src="' . kvHtml($file) . '"' . $misure . ' alt="" loading="lazy">';
}

/** A text as an argument between single quotes of a script that stands in the address of a link. */
function kvTestoScript(string $testo): string
{
    return strtr($testo, [
        '"' => '%22', '%' => '%25', "'" => "\\'", '\\' => '\\\\', ';' => ',',
        '[' => ' ', ']' => ' ', '|' => ' ', "\xA3" => ' ', "\r" => ' ', "\n" => ' ',
    ]);
}

/** The quantity discount of a row as "quantity:factor" pairs joined by commas; empty when it has none. */
function kvScaglioni(array $riga, int $listino): string
{
    $suffisso = $listino === 0 ? '' : (string) $listino;
    $coppie = [];
    if (!empty($riga['scq' . $suffisso])) {
        foreach (['0', '1'] as $n) {
            if ((int) ($riga['scqart' . $n] ?? 0) > 0) {
                $coppie[] = (int) $riga['scqart' . $n] . ':' . round((float) $riga['scqperc' . $n], 6);
            }
        }
    }
    return implode(',', $coppie);
}

/**
 * The buy link: stands in an href; its inner quote closes the address. Visitors who may not buy are sent to the
 * registration page instead.
 */
function kvAcquista(array $riga): string
{
    global $cliente, $listino, $regobbl, $subtitleincart, $ivacompresa, $ivarep, $Lingua;
    $coda = "\" onMouseOver=\"window.status=''; return true";
    $limitato = $cliente > 0 && $listino === 0 && $regobbl && kvLimiteListinoBase();
    if ($limitato || kvPrezziNascosti()) {
        $motivo = $cliente > 0 ? 'm=37&t=.37.' : 'm=23';
        return "javascript:self.location='login$Lingua.php?$motivo';" . $coda;
    }
    $articolo = (string) ($riga['cart_articolo'] ?? '');
    if ($subtitleincart && ($riga['plain_sottotitolo'] ?? '') !== '') {
        $articolo .= ' ' . kvTestoScript(strip_tags((string) $riga['plain_sottotitolo']));
    }
    $posto = (int) ($riga['contatore'] ?? 0);
    $prezzo = kvNumeroScript(kvPrezziVisitatore($riga)['prezzo'], (bool) $GLOBALS['visdec'][0]);
    $iva = $ivacompresa ? '0' : (string) round((float) $ivarep, 6);
    $peso = (string) ($riga['cart_peso'] ?? '0');
    return "javascript:window.status='';Acquista('$articolo','$prezzo','$iva',document.itemsform.qt$posto.value,"
        . "'op1$posto','op2$posto','op3$posto','$peso','op4$posto'," . (int) ($riga['ID'] ?? 0) . ",'"
        . kvScaglioni($riga, $listino) . "')" . $coda;
}

/** The variant of a slot (1 to 4) for a listino; 0 when the slot is empty. */
function kvVariante(array $riga, int $posto, int $listino): int
{
    $id = (int) ($riga['opzione' . $posto . ($listino === 0 ? '' : '_' . $listino)] ?? 0);
    return $id > 1 ? $id : 0;
}

/** The built list of a variant: its name and its option elements, null when the variant has none. */
function kvElencoVariante(int $id): ?array
{
    global $Lingua;
    $tabella = 'opzioni' . (preg_match('/^_l[2-4]$/', $Lingua) ? $Lingua : '');
    return kvRiga("SELECT nomeopzione, opzione FROM $tabella WHERE ID = ?", [$id]);
}

/** The difference of a variant value for the visitor: the department's factor unless on offer, then VAT. */
function kvDifferenza(float $differenza, array $riga): float
{
    global $listino, $ivacompresa, $scontorep, $ivarep;
    if (!kvPrezziVisitatore($riga)['offerta'] && (float) $scontorep[$listino] !== 1.0) {
        $differenza = kvProdotto($differenza, (float) $scontorep[$listino]);
    }
    return kvConIva($differenza, (float) $ivarep, (bool) $ivacompresa);
}

/** The selector of a variant slot with the visitor's price differences; empty without a variant. */
function kvSelettore(array $riga, int $posto): string
{
    $id = kvVariante($riga, $posto, $GLOBALS['listino']);
    $variante = $id === 0 ? null : kvElencoVariante($id);
    if ($variante === null || (string) $variante['opzione'] === '') {
        return '';
    }
    $voci = preg_replace_callback('/<option.*?<\/option>/is', function (array $voce) use ($riga): string {
        if (!preg_match('/value="<<\s*(-?[0-9.]+)>>/', $voce[0], $trovato)) {
            return $voce[0];
        }
        $importo = kvDifferenza((float) $trovato[1], $riga);
        $decimali = (bool) $GLOBALS['visdec'][0];
        return str_replace(
            [$trovato[0], '<<importo>>'],
            ['value="' . kvNumeroScript($importo, $decimali),
             kvFormato(abs($importo), $decimali, (int) $GLOBALS['notazione'])],
            $voce[0]
        );
    }, (string) $variante['opzione']);
    $nome = 'op' . $posto . (int) ($riga['contatore'] ?? 0);
    return '<label class="opzione">' . kvHtml((string) $variante['nomeopzione'])
        . ' <select name="' . $nome . '">' . $voci . '</select></label>';
}

/** Links to the other articles with the same group word. */
function kvCorrelati(array $riga): string
{
    global $Lingua;
    $gruppo = trim((string) ($riga['correlazione'] ?? ''));
    if ($gruppo === '') {
        return '';
    }
    $tabella = 'articoli' . (preg_match('/^_l[2-4]$/', $Lingua) ? $Lingua : '');
    $righe = kvQuery("SELECT *, $tabella.pagina AS linkPage FROM $tabella INNER JOIN dettaglio USING (ID)"
        . " INNER JOIN ordinamento USING (ID) WHERE correlazione = ? AND $tabella.ID <> ? LIMIT 12",
        [$gruppo, (int) $riga['ID']]);
    $voci = '';
    foreach ($righe ?? [] as $altra) {
        $voci .= '<li><a href="' . kvHtml($altra['linkPage']) . '.php?n=' . (int) $altra['sottopagina'] . '#'
            . (int) $altra['contatore'] . '">' . kvHtml(strip_tags((string) $altra['plain_titolo'])) . '</a></li>';
    }
    return $voci === '' ? '' : '<ul class="correlati">' . $voci . '</ul>';
}

}
