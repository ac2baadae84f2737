<?php
// ***1.0.7***
// The totals of an order. The cart in the browser (totali in js2.js) follows the same rule on the same tables of the
// build, and arrives at the same cent, because both count in whole numbers alone:
//  - Amounts of lines, shipping and totals are smallest units of the currency (kvScale). Thresholds that a merchant may
//    give with more decimals, and weights, are ten-thousandths.
//  - Rates and factors are millionths, rounded once when they are read.
//  - A product is rounded once, half up; nothing is rounded before the last step.
// The steps:
//  1. A piece costs the price shown plus the differences of the chosen values as shown, by the factor of the highest
//     quantity step reached (rounded), and never less than nothing; a line costs that times its pieces.
//  2. Goods are the sum of the lines. A customer's own discount, else the discount by amount of the listino where the
//     goods are above its threshold, is taken off (its amount rounded).
//  3. VAT, where prices come without it and the zone pays any: the sum over the lines of amount, rate and discount
//     factor, rounded as a whole.
//  4. Shipping by the goods less discount, or by weight; its VAT as in 3, rounded.
//  5. Where prices include VAT and the zone pays none, the VAT in them is taken off: of the goods of each rate, less
//     discount (rounded), the part that is VAT (rounded), and that of shipping (rounded).
//  6. The total is the sum of these.

/** Reads assignments of a generated script: name => list of numbers, number or text. */
function kvLeggiScript(string $script): array
{
    $numero = fn(string $testo): float => (float) str_replace(' ', '', $testo);
    $valori = [];
    $forma = '/(\w+)\s*=\s*(?:new Array\(([^)]*)\)|"([^"]*)"|\'([^\']*)\'|(-?\s*[\d.]+(?:E[-+]?\d+)?))\s*;/i';
    preg_match_all($forma, $script, $trovati, PREG_SET_ORDER | PREG_UNMATCHED_AS_NULL);
    foreach ($trovati as $trovato) {
        if ($trovato[2] !== null) {
            $valori[$trovato[1]] = array_map('floatval', explode(',', str_replace(' ', '', $trovato[2])));
        } elseif ($trovato[5] !== null) {
            $valori[$trovato[1]] = $numero($trovato[5]);
        } else {
            $valori[$trovato[1]] = (string) ($trovato[3] ?? $trovato[4]);
        }
    }
    return $valori;
}

/** A decimal as a whole number of its parts; the same steps as in js2.js, so that no half goes another way. */
function kvInteri(float $valore, int $per): int
{
    return (int) floor($valore * $per + 0.5);
}

/** The tables of a generated script in whole numbers; what the script doesn't hold is 0, the factors of discount 1. */
function kvTavole(string $script): array
{
    $letti = kvLeggiScript($script);
    $scala = ($letti['PutDec'] ?? 1.0) > 0 ? 100 : 1;
    $interi = function (string $nome, int $per, float $manca, int $quanti) use ($letti): array {
        $valori = array_fill(0, $quanti, (int) ($manca * $per));
        foreach ((array) ($letti[$nome] ?? []) as $n => $valore) {
            // As kvInteri: a call for each of hundreds of numbers takes longer than all the rest.
            $valori[$n] = $valore === 0.0 ? 0 : (int) floor($valore * $per + 0.5);
        }
        return $valori;
    };
    $tavole = [
        'scala' => $scala,
        'tipopeso' => ($letti['tipopeso'] ?? '0') === '1',
        'ivacompresa' => ($letti['ivacompresa'] ?? '0') === '1',
        'aliquotaspese' => kvInteri($letti['aliquotaspese'] ?? 0.0, 1000000),
        'minimo' => kvInteri($letti['minimo'] ?? 0.0, 10000),
        'qminima' => (int) ($letti['qminima'] ?? 0.0),
        'SpOk' => (string) ($letti['SpOk'] ?? ''),
        'IvaOk' => (string) ($letti['IvaOk'] ?? ''),
        'scimp' => $interi('scimp', 10000, 0, 10),
        'scperc' => $interi('scperc', 1000000, 1, 10),
        'impord1' => $interi('impord1', 10000, 0, 32),
        'impord2' => $interi('impord2', 10000, 0, 32),
    ];
    foreach ([1, 2, 3] as $n) {
        $tavole["impspese$n"] = $interi("impspese$n", $scala, 0, 32);
    }
    for ($n = 1; $n <= 10; $n++) {
        $tavole["imppeso$n"] = $interi("imppeso$n", 10000, 0, 32);
        $tavole["impspp$n"] = $interi("impspp$n", $scala, 0, 32);
    }
    foreach (['obbl_rsoc' => 0, 'obbl_piva' => 0, 'obbl_tel' => 0, 'obbl_magg' => 1] as $nome => $manca) {
        $tavole[$nome] = ($letti[$nome] ?? $manca) > 0;
    }
    return $tavole;
}

/** The tables of shipping by amount or by weight, whichever the shop has: the others are hundreds of numbers that no rule asks for. */
function kvScriptSpese(): string
{
    return "<<1-java_tipopeso>>" === '1' ? <<<'KORVANE_VALORI'
<<1-java_importi_peso>>
KORVANE_VALORI
        : <<<'KORVANE_VALORI'
<<1-java_importi>>
KORVANE_VALORI;
}

/** The shop's tables: shipping, permissions, discounts by amount, smallest order, required fields. */
function kvDatiNegozio(): array
{
    static $dati = null;
    if ($dati === null) {
        $dati = kvTavole(kvScriptSpese() . "\n" . <<<'KORVANE_VALORI'
<<1-java_valuta>>
<<1-java_permessi>>
tipopeso = "<<1-java_tipopeso>>";
aliquotaspese = <<1-java_aliquotaspese>>;
minimo = <<1-java_minimo>>;
qminima = <<1-java_qminima>>;
ivacompresa = "<<1-java_ivacompresa>>";
<<1-java_campi>>
KORVANE_VALORI
        );
    }
    return $dati;
}

/** An amount (not negative) by millionths, rounded half up. No step of it is above 2^53 for amounts below 9 * 10^15. */
function kvParte(int $importo, int $milionesimi): int
{
    return intdiv($importo, 1000000) * $milionesimi + intdiv($importo % 1000000 * $milionesimi + 500000, 1000000);
}

/** `prodotto`, itself an amount by millionths, by another millionths, rounded half up: the two products as one. */
function kvParteDoppia(int $prodotto, int $milionesimi): int
{
    $alto = intdiv($prodotto, 1000000) * $milionesimi;
    $basso = $prodotto % 1000000 * $milionesimi;
    return intdiv($alto, 1000000) + intdiv($alto % 1000000 * 1000000 + $basso + 500000000000, 1000000000000);
}

/** The price of one piece: `base` by the factor of the highest of the steps [quantity, millionths] reached. */
function kvImportoPezzo(int $base, array $passi, int $quantita): int
{
    $fattore = 1000000;
    foreach ($passi as list($soglia, $milionesimi)) {
        if ($quantita >= $soglia) {
            $fattore = $milionesimi;
        }
    }
    return kvParte(max(0, $base), max(0, $fattore));
}

/** The discount factor of an order in millionths: the customer's own, else the one by amount of the listino. */
function kvFattoreOrdine(array $dati, int $listino, float $scontoCliente, int $merce): int
{
    if ($scontoCliente > 0) {
        return max(0, 1000000 - kvInteri($scontoCliente, 10000));
    }
    $sopra = $merce * intdiv(10000, $dati['scala']) > $dati['scimp'][$listino];
    return $sopra ? max(0, min(1000000, $dati['scperc'][$listino])) : 1000000;
}

/** The shipping cost of a slot, by weight or by the amount of the goods. */
function kvSpese(array $dati, int $posto, int $merce, int $peso): int
{
    $misura = $dati['tipopeso'] ? $peso : $merce * intdiv(10000, $dati['scala']);
    $soglie = $dati['tipopeso'] ? 'imppeso' : 'impord';
    $importi = $dati['tipopeso'] ? 'impspp' : 'impspese';
    $ultima = $dati['tipopeso'] ? 10 : 3;
    for ($n = 1; $n < $ultima; $n++) {
        if ($misura <= $dati[$soglie . $n][$posto]) {
            return $dati[$importi . $n][$posto];
        }
    }
    return $dati[$importi . $ultima][$posto];
}

/**
 * Whether the method may be used in the zone. The letters of SpOk belong to the filled slots in the order of the slots;
 * a method fills its slots of all eight zones, and the methods stand without gaps, so the filled slots are the first
 * ones and the letter of a filled slot is the one of its number. Slots behind the letters have no method.
 */
function kvAmmesso(array $dati, int $posto): bool
{
    return $posto >= 0 && $posto < strlen($dati['SpOk']) && $dati['SpOk'][$posto] === '1';
}

/** The VAT on shipping: added, taken off, or neither. */
function kvIvaSpese(array $dati, bool $conIva, int $spese): int
{
    if ($dati['ivacompresa']) {
        return $conIva ? 0 : -kvIvaCompresa($spese, $dati['aliquotaspese']);
    }
    return $conIva ? kvParte($spese, $dati['aliquotaspese']) : 0;
}

/** The VAT that an amount includes at a rate in millionths, rounded half up. */
function kvIvaCompresa(int $importo, int $aliquota): int
{
    $base = 1000000 + $aliquota;
    return intdiv($importo, $base) * $aliquota + intdiv($importo % $base * $aliquota * 2 + $base, $base * 2);
}

/** The VAT in the prices of some lines, less the discount of the order. */
function kvIvaNelleRighe(array $righe, int $fattore): int
{
    $importi = [];
    foreach ($righe as $riga) {
        $aliquota = (int) ($riga['aliquota'] ?? 0);
        $importi[$aliquota] = ($importi[$aliquota] ?? 0) + $riga['importo'] * $riga['quantita'];
    }
    $iva = 0;
    foreach ($importi as $aliquota => $importo) {
        $iva += kvIvaCompresa(kvParte($importo, $fattore), (int) $aliquota);
    }
    return $iva;
}

/**
 * The totals of an order. Each line has importo (of one piece), quantita, iva (millionths, 0 where prices include it),
 * aliquota (the rate that its price includes, 0 where it doesn't), peso (ten-thousandths, of one piece). `metodo` counts the active payment methods from 1, `zona` is 1 to 8.
 * Result: merce, sconto, iva, spese, ivaspese, totale, and ammesso: the method is allowed for the zone.
 */
function kvTotali(array $righe, int $metodo, int $zona, array $dati, int $listino, float $scontoCliente): array
{
    $posto = ($metodo - 1) * 8 + $zona - 1;
    $conIva = substr($dati['IvaOk'], $zona - 1, 1) === '1';
    $merce = 0;
    $iva = 0;
    $peso = 0;
    foreach ($righe as $riga) {
        $importo = $riga['importo'] * $riga['quantita'];
        $merce += $importo;
        $iva += $importo * $riga['iva'];
        $peso += $riga['peso'] * $riga['quantita'];
    }
    $fattore = kvFattoreOrdine($dati, $listino, $scontoCliente, $merce);
    $sconto = kvParte($merce, 1000000 - $fattore);
    $spese = kvSpese($dati, $posto, $merce - $sconto, $peso);
    $totali = [
        'merce' => $merce,
        'sconto' => $sconto,
        'iva' => $conIva ? kvParteDoppia($iva, $fattore) : ($dati['ivacompresa'] ? -kvIvaNelleRighe($righe, $fattore) : 0),
        'spese' => $spese,
        'ivaspese' => kvIvaSpese($dati, $conIva, $spese),
        'ammesso' => kvAmmesso($dati, $posto),
    ];
    $totali['totale'] = $merce - $sconto + $totali['iva'] + $spese + $totali['ivaspese'];
    return $totali;
}
