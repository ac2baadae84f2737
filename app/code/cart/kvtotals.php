<?php
// ***1.0.7***
// The totals of an order. The cart in the browser (orderTotals in js2.js) follows the same rule on the same tables of the
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
function kvReadScript(string $script): array
{
    $number = fn(string $text): float => (float) str_replace(' ', '', $text);
    $values = [];
    $pattern = '/(\w+)\s*=\s*(?:new Array\(([^)]*)\)|"([^"]*)"|\'([^\']*)\'|(-?\s*[\d.]+(?:E[-+]?\d+)?))\s*;/i';
    preg_match_all($pattern, $script, $found, PREG_SET_ORDER | PREG_UNMATCHED_AS_NULL);
    foreach ($found as $match) {
        if ($match[2] !== null) {
            $values[$match[1]] = array_map('floatval', explode(',', str_replace(' ', '', $match[2])));
        } elseif ($match[5] !== null) {
            $values[$match[1]] = $number($match[5]);
        } else {
            $values[$match[1]] = (string) ($match[3] ?? $match[4]);
        }
    }
    return $values;
}

/** A decimal as a whole number of its parts; the same steps as in js2.js, so that no half goes another way. */
function kvWholeParts(float $value, int $per): int
{
    return (int) floor($value * $per + 0.5);
}

/** The tables of a generated script in whole numbers; what the script doesn't hold is 0, the factors of discount 1. */
function kvScriptTables(string $script): array
{
    $read = kvReadScript($script);
    $scale = ($read['PutDec'] ?? 1.0) > 0 ? 100 : 1;
    $wholes = function (string $name, int $per, float $missing, int $count) use ($read): array {
        $values = array_fill(0, $count, (int) ($missing * $per));
        foreach ((array) ($read[$name] ?? []) as $n => $value) {
            // As kvWholeParts: a call for each of hundreds of numbers takes longer than all the rest.
            $values[$n] = $value === 0.0 ? 0 : (int) floor($value * $per + 0.5);
        }
        return $values;
    };
    $tables = [
        'scala' => $scale,
        'tipopeso' => ($read['tipopeso'] ?? '0') === '1',
        'ivacompresa' => ($read['ivacompresa'] ?? '0') === '1',
        'aliquotaspese' => kvWholeParts($read['aliquotaspese'] ?? 0.0, 1000000),
        'minimo' => kvWholeParts($read['minimo'] ?? 0.0, 10000),
        'qminima' => (int) ($read['qminima'] ?? 0.0),
        'SpOk' => (string) ($read['SpOk'] ?? ''),
        'IvaOk' => (string) ($read['IvaOk'] ?? ''),
        'scimp' => $wholes('scimp', 10000, 0, 10),
        'scperc' => $wholes('scperc', 1000000, 1, 10),
        'impord1' => $wholes('impord1', 10000, 0, 32),
        'impord2' => $wholes('impord2', 10000, 0, 32),
    ];
    foreach ([1, 2, 3] as $n) {
        $tables["impspese$n"] = $wholes("impspese$n", $scale, 0, 32);
    }
    for ($n = 1; $n <= 10; $n++) {
        $tables["imppeso$n"] = $wholes("imppeso$n", 10000, 0, 32);
        $tables["impspp$n"] = $wholes("impspp$n", $scale, 0, 32);
    }
    foreach (['obbl_rsoc' => 0, 'obbl_piva' => 0, 'obbl_tel' => 0, 'obbl_magg' => 1] as $name => $missing) {
        $tables[$name] = ($read[$name] ?? $missing) > 0;
    }
    return $tables;
}

/** The tables of shipping by amount or by weight, whichever the shop has: the others are hundreds of numbers that no rule asks for. */
function kvShippingScript(): string
{
    return "<<1-java_tipopeso>>" === '1' ? <<<'KORVANE_VALORI'
<<1-java_importi_peso>>
KORVANE_VALORI
        : <<<'KORVANE_VALORI'
<<1-java_importi>>
KORVANE_VALORI;
}

/** The shop's tables: shipping, permissions, discounts by amount, smallest order, required fields. */
function kvShopTables(): array
{
    static $data = null;
    if ($data === null) {
        $data = kvScriptTables(kvShippingScript() . "\n" . <<<'KORVANE_VALORI'
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
    return $data;
}

/** An amount (not negative) by millionths, rounded half up. No step of it is above 2^53 for amounts below 9 * 10^15. */
function kvShare(int $amount, int $millionths): int
{
    return intdiv($amount, 1000000) * $millionths + intdiv($amount % 1000000 * $millionths + 500000, 1000000);
}

/** `product`, itself an amount by millionths, by another millionths, rounded half up: the two products as one. */
function kvShareOfShare(int $product, int $millionths): int
{
    $high = intdiv($product, 1000000) * $millionths;
    $low = $product % 1000000 * $millionths;
    return intdiv($high, 1000000) + intdiv($high % 1000000 * 1000000 + $low + 500000000000, 1000000000000);
}

/** The price of one piece: `base` by the factor of the highest of the steps [quantity, millionths] reached. */
function kvPiecePrice(int $base, array $steps, int $quantity): int
{
    $factor = 1000000;
    foreach ($steps as list($threshold, $millionths)) {
        if ($quantity >= $threshold) {
            $factor = $millionths;
        }
    }
    return kvShare(max(0, $base), max(0, $factor));
}

/** The discount factor of an order in millionths: the customer's own, else the one by amount of the listino. */
function kvOrderFactor(array $data, int $listino, float $customerDiscount, int $goods): int
{
    if ($customerDiscount > 0) {
        return max(0, 1000000 - kvWholeParts($customerDiscount, 10000));
    }
    $above = $goods * intdiv(10000, $data['scala']) > $data['scimp'][$listino];
    return $above ? max(0, min(1000000, $data['scperc'][$listino])) : 1000000;
}

/** The shipping cost of a slot, by weight or by the amount of the goods. */
function kvShippingCost(array $data, int $slot, int $goods, int $weight): int
{
    $measure = $data['tipopeso'] ? $weight : $goods * intdiv(10000, $data['scala']);
    $thresholds = $data['tipopeso'] ? 'imppeso' : 'impord';
    $amounts = $data['tipopeso'] ? 'impspp' : 'impspese';
    $last = $data['tipopeso'] ? 10 : 3;
    for ($n = 1; $n < $last; $n++) {
        if ($measure <= $data[$thresholds . $n][$slot]) {
            return $data[$amounts . $n][$slot];
        }
    }
    return $data[$amounts . $last][$slot];
}

/**
 * Whether the method may be used in the zone. The characters of SpOk belong to the filled slots in the order of the slots;
 * a method fills its slots of all eight zones, and the methods come without gaps, so the filled slots are the first
 * ones and the character of a filled slot is the one of its number. Slots after the characters have no method.
 */
function kvIsMethodAllowed(array $data, int $slot): bool
{
    return $slot >= 0 && $slot < strlen($data['SpOk']) && $data['SpOk'][$slot] === '1';
}

/** The VAT on shipping: added, taken off, or neither. */
function kvShippingVat(array $data, bool $withVat, int $shipping): int
{
    if ($data['ivacompresa']) {
        return $withVat ? 0 : -kvIncludedVat($shipping, $data['aliquotaspese']);
    }
    return $withVat ? kvShare($shipping, $data['aliquotaspese']) : 0;
}

/** The VAT that an amount includes at a rate in millionths, rounded half up. */
function kvIncludedVat(int $amount, int $rate): int
{
    $base = 1000000 + $rate;
    return intdiv($amount, $base) * $rate + intdiv($amount % $base * $rate * 2 + $base, $base * 2);
}

/** The VAT in the prices of some lines, less the discount of the order. */
function kvVatInLines(array $lines, int $factor): int
{
    $amounts = [];
    foreach ($lines as $line) {
        $rate = (int) ($line['aliquota'] ?? 0);
        $amounts[$rate] = ($amounts[$rate] ?? 0) + $line['importo'] * $line['quantita'];
    }
    $vat = 0;
    foreach ($amounts as $rate => $amount) {
        $vat += kvIncludedVat(kvShare($amount, $factor), (int) $rate);
    }
    return $vat;
}

/**
 * The totals of an order. Each line has importo (of one piece), quantita, iva (millionths, 0 where prices include it),
 * aliquota (the rate that its price includes, 0 where it doesn't), peso (ten-thousandths, of one piece). `method` counts the active payment methods from 1, `zone` is 1 to 8.
 * Result: merce, sconto, iva, spese, ivaspese, totale, and ammesso: the method is allowed for the zone.
 */
function kvOrderTotals(array $lines, int $method, int $zone, array $data, int $listino, float $customerDiscount): array
{
    $slot = ($method - 1) * 8 + $zone - 1;
    $withVat = substr($data['IvaOk'], $zone - 1, 1) === '1';
    $goods = 0;
    $vat = 0;
    $weight = 0;
    foreach ($lines as $line) {
        $amount = $line['importo'] * $line['quantita'];
        $goods += $amount;
        $vat += $amount * $line['iva'];
        $weight += $line['peso'] * $line['quantita'];
    }
    $factor = kvOrderFactor($data, $listino, $customerDiscount, $goods);
    $discount = kvShare($goods, 1000000 - $factor);
    $shipping = kvShippingCost($data, $slot, $goods - $discount, $weight);
    $totals = [
        'merce' => $goods,
        'sconto' => $discount,
        'iva' => $withVat ? kvShareOfShare($vat, $factor) : ($data['ivacompresa'] ? -kvVatInLines($lines, $factor) : 0),
        'spese' => $shipping,
        'ivaspese' => kvShippingVat($data, $withVat, $shipping),
        'ammesso' => kvIsMethodAllowed($data, $slot),
    ];
    $totals['totale'] = $goods - $discount + $totals['iva'] + $shipping + $totals['ivaspese'];
    return $totals;
}
