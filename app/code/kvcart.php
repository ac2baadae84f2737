<?php
// ***1.0.7***
// The cart on the server. The browser keeps the cart and shows its totals (js2.js); here the same order is worked out
// again from the database and from the same tables of the build, and this result alone counts. Both follow one rule:
// kvTotali here, totali() there.

if (!function_exists('kvTotali')) {

/** Reads assignments of a generated script: name => list of numbers, number or text. */
function kvLeggiScript(string $script): array
{
    $numero = fn(string $testo): float => (float) str_replace(' ', '', $testo);
    $valori = [];
    $forma = '/(\w+)\s*=\s*(?:new Array\(([^)]*)\)|"([^"]*)"|\'([^\']*)\'|(-?\s*[\d.]+(?:E[-+]?\d+)?))\s*;/i';
    preg_match_all($forma, $script, $trovati, PREG_SET_ORDER | PREG_UNMATCHED_AS_NULL);
    foreach ($trovati as $trovato) {
        if ($trovato[2] !== null) {
            $valori[$trovato[1]] = array_map($numero, explode(',', $trovato[2]));
        } elseif ($trovato[5] !== null) {
            $valori[$trovato[1]] = $numero($trovato[5]);
        } else {
            $valori[$trovato[1]] = (string) ($trovato[3] ?? $trovato[4]);
        }
    }
    return $valori;
}

/** The shop's tables: shipping, permissions, discounts by amount, smallest order. */
function kvDatiNegozio(): array
{
    static $dati = null;
    if ($dati === null) {
        $dati = kvLeggiScript(<<<'KORVANE_VALORI'
<<1-java_valuta>>
<<1-java_importi>>
<<1-java_importi_peso>>
<<1-java_permessi>>
tipopeso = "<<1-java_tipopeso>>";
aliquotaspese = <<1-java_aliquotaspese>>;
minimo = <<1-java_minimo>>;
qminima = <<1-java_qminima>>;
ivacompresa = "<<1-java_ivacompresa>>";
obbl_rsoc = 0; obbl_piva = 0; obbl_tel = 0; obbl_magg = 1;
<<1-java_campi>>
KORVANE_VALORI
        );
    }
    return $dati;
}

/** The discount factor of an order: the customer's own percent, else the one by amount of the listino. */
function kvFattoreOrdine(array $dati, int $listino, float $scontoCliente, float $merce): float
{
    if ($scontoCliente > 0) {
        return 1 - $scontoCliente / 100;
    }
    return $merce > ($dati['scimp'][$listino] ?? 0.0) ? ($dati['scperc'][$listino] ?? 1.0) : 1.0;
}

/** The shipping cost of a slot, by weight or by the amount of the goods. */
function kvSpese(array $dati, int $posto, float $merce, float $peso): float
{
    if (($dati['tipopeso'] ?? '0') === '1') {
        for ($n = 1; $n <= 9; $n++) {
            if ($peso <= ($dati['imppeso' . $n][$posto] ?? 0.0)) {
                return $dati['impspp' . $n][$posto] ?? 0.0;
            }
        }
        return $dati['impspp10'][$posto] ?? 0.0;
    }
    if ($merce <= ($dati['impord1'][$posto] ?? 0.0)) {
        return $dati['impspese1'][$posto] ?? 0.0;
    }
    if ($merce <= ($dati['impord2'][$posto] ?? 0.0)) {
        return $dati['impspese2'][$posto] ?? 0.0;
    }
    return $dati['impspese3'][$posto] ?? 0.0;
}

/**
 * The totals of an order. Each line has importo (of one piece), quantita, iva (fraction, 0 where prices include it),
 * peso. `metodo` counts the active payment methods from 1, `zona` is 1 to 8.
 * Result: merce, sconto, iva, spese, ivaspese, totale, and ammesso: the method is allowed for the zone.
 */
function kvTotali(array $righe, int $metodo, int $zona, array $dati, int $listino, float $scontoCliente): array
{
    $cifre = ($dati['PutDec'] ?? 1.0) > 0 ? 2 : 0;
    $posto = ($metodo - 1) * 8 + $zona - 1;
    $conIva = substr((string) ($dati['IvaOk'] ?? ''), $zona - 1, 1) === '1';
    $merce = 0.0;
    $iva = 0.0;
    $peso = 0.0;
    foreach ($righe as $riga) {
        $importo = round($riga['importo'] * $riga['quantita'], $cifre);
        $merce += $importo;
        $iva += $importo * $riga['iva'];
        $peso += $riga['peso'] * $riga['quantita'];
    }
    $merce = round($merce, $cifre);
    $fattore = kvFattoreOrdine($dati, $listino, $scontoCliente, $merce);
    $sconto = round($merce * (1 - $fattore), $cifre);
    $spese = kvSpese($dati, $posto, $merce - $sconto, $peso);
    $tassate = $conIva && ($dati['ivacompresa'] ?? '0') !== '1';
    $totali = [
        'merce' => $merce,
        'sconto' => $sconto,
        'iva' => $conIva ? round($iva * $fattore, $cifre) : 0.0,
        'spese' => $spese,
        'ivaspese' => $tassate ? round($spese * ($dati['aliquotaspese'] ?? 0.0), $cifre) : 0.0,
        'ammesso' => substr((string) ($dati['SpOk'] ?? ''), $posto, 1) === '1',
    ];
    $totali['totale'] = round(
        $merce - $sconto + $totali['iva'] + $totali['spese'] + $totali['ivaspese'], $cifre);
    return $totali;
}

/** The factor of the quantity discount of an article row; 1 below the first quantity. */
function kvFattoreQuantita(array $riga, int $listino, int $quantita): float
{
    $fattore = 1.0;
    $raggiunta = 0;
    foreach (array_filter(explode(',', kvScaglioni($riga, $listino))) as $coppia) {
        list($soglia, $valore) = explode(':', $coppia);
        if ($quantita >= (int) $soglia && (int) $soglia >= $raggiunta) {
            $raggiunta = (int) $soglia;
            $fattore = (float) $valore;
        }
    }
    return $fattore;
}

/** The value of a variant that has this label: price difference, weight difference; null when there is none such. */
function kvValoreVariante(array $riga, int $posto, int $listino, string $etichetta): ?array
{
    $id = kvVariante($riga, $posto, $listino);
    $variante = $id === 0 ? null : kvElencoVariante($id);
    $forma = '/value="<<\s*(-?[0-9.]+)>>=([^#"]*)#[^|"]*\|([^"]*)"/';
    preg_match_all($forma, (string) ($variante['opzione'] ?? ''), $voci, PREG_SET_ORDER);
    foreach ($voci as $voce) {
        if (html_entity_decode($voce[3], ENT_QUOTES, 'cp1252') === $etichetta) {
            return ['importo' => kvDifferenza((float) $voce[1], $riga), 'peso' => (float) $voce[2]];
        }
    }
    return null;
}

/**
 * One line of the browser's cart worked out from the database. `voce` has id, q and o (labels of the chosen variants
 * by slot). Null when the article is gone, closed to the visitor or misses a variant.
 */
function kvRigaOrdine(array $voce): ?array
{
    global $listino, $inaccessibile, $ivacompresa, $ivarep, $visdec;
    $id = $voce['id'] ?? 0;
    $quantita = $voce['q'] ?? 0;
    $riga = is_int($id) && is_int($quantita) && $quantita > 0 && $quantita < 100000 ? kvArticolo($id) : null;
    if ($riga === null || $inaccessibile[$listino] || kvPrezziNascosti()) {
        return null;
    }
    $importo = (float) kvNumeroScript(kvPrezziVisitatore($riga)['prezzo'], (bool) $visdec[0]);
    $peso = (float) ($riga['cart_peso'] ?? 0);
    $scelte = [];
    for ($posto = 1; $posto <= 4; $posto++) {
        $etichetta = $voce['o'][$posto - 1] ?? '';
        $etichetta = is_string($etichetta) ? (string) iconv('UTF-8', 'CP1252//TRANSLIT', $etichetta) : '';
        $elenco = kvVariante($riga, $posto, $listino);
        if ($elenco === 0 || (string) (kvElencoVariante($elenco)['opzione'] ?? '') === '') {
            continue;
        }
        $valore = kvValoreVariante($riga, $posto, $listino, $etichetta);
        if ($valore === null) {
            return null;
        }
        $importo += (float) kvNumeroScript($valore['importo'], (bool) $visdec[0]);
        $peso += $valore['peso'];
        $scelte[] = $etichetta;
    }
    return [
        'id' => $id,
        'testo' => trim($riga['codice'] . ' ' . strip_tags((string) $riga['plain_titolo'])),
        'scelte' => implode(', ', $scelte),
        'quantita' => $quantita,
        'importo' => round($importo * kvFattoreQuantita($riga, $listino, $quantita), $visdec[0] ? 2 : 0),
        'iva' => $ivacompresa ? 0.0 : (float) $ivarep,
        'peso' => $peso,
    ];
}

/**
 * Whether the articles in the visitor's cart can be bought: one letter for each, "1" or "0", in the order of the
 * cookie kvstore_art (article numbers joined by points).
 */
function CheckDispCart(): string
{
    global $listino, $inaccessibile;
    $lettere = '';
    $numeri = array_filter(explode('.', kvCampo($_COOKIE, 'kvstore_art', 2000)), 'ctype_digit');
    foreach (array_slice($numeri, 0, 200) as $id) {
        $lettere .= kvArticolo((int) $id) !== null && !$inaccessibile[$listino] ? '1' : '0';
    }
    return $lettere;
}

}
