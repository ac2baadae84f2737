<?php
// Tests of the order's totals and of the cart's text: cart_test.php FOLDER. Needs no database.
include __DIR__ . '/harness.php';
shopScripts(['kvdb', 'kvcontext', 'kvprice', 'kvarticle', 'kvcart', 'kvmail']);

$shipping = 'impord1=new Array(50,50); impspese1=new Array(9.00,4); impord2=new Array(100,100);'
    . ' impspese2=new Array(5.00,2); impspese3=new Array(0,0); imppeso1=new Array(1,1); impspp1=new Array(3,3);'
    . ' impspp10=new Array(20,20); var SpOk=\'10\'; var IvaOk=\'10\'; var PutDec= 1; aliquotaspese = .22;'
    . ' var scimp = new Array( 0, 200); var scperc = new Array( 1, .9); ivacompresa = "0"; tipopeso = "0";'
    . ' minimo =  10; qminima =  2; obbl_tel = 1; obbl_magg = 0;';
$tables = kvScriptTables($shipping);
$line = fn(int $price, int $pieces, int $vat = 0): array =>
    ['importo' => $price, 'quantita' => $pieces, 'iva' => $vat, 'peso' => 5000];
$total = fn(array $lines, int $zone = 1, int $listino = 0, float $own = 0, array $other = []): array =>
    kvOrderTotals($lines, 1, $zone, $other + $tables, $listino, $own);

runTests([
    'PlainNumbersOfTheBuildAreRead' => fn() => [[0, 2000000], array_slice($tables['scimp'], 0, 2)],
    'AFractionWithoutAZeroIsRead' => fn() => [220000, $tables['aliquotaspese']],
    'TablesThatTheBuildLeftOutAreZero' => fn() => [[0, 1000000, ''],
        [kvScriptTables('')['impspp10'][31], kvScriptTables('')['scperc'][9], kvScriptTables('')['SpOk']]],
    'RequiredFieldsFollowTheBuild' => fn() => [[false, false, true, false],
        [$tables['obbl_rsoc'], $tables['obbl_piva'], $tables['obbl_tel'], $tables['obbl_magg']]],
    'TheAgeMustBeConfirmedUnlessSwitchedOff' => fn() => [true, kvScriptTables('')['obbl_magg']],
    'AShopWithoutDecimalsCountsInWholeUnits' => fn() => [[1, 12], [kvScriptTables('PutDec= 0; impspese1=new Array(12);')['scala'],
        kvScriptTables('PutDec= 0; impspese1=new Array(12);')['impspese1'][0]]],
    'AnOrderUpToTheFirstAmountPaysTheFirstShipping' => fn() => [900, $total([$line(5000, 1)])['spese']],
    'ACentAboveTheFirstAmountPaysTheSecondShipping' => fn() => [500, $total([$line(5001, 1)])['spese']],
    'ShippingGoesByTheSlotOfMethodAndZone' => fn() => [400, $total([$line(5000, 1)], 2)['spese']],
    'AnOrderAboveTheSecondAmountShipsAtTheThirdPrice' => fn() => [0, $total([$line(10100, 1)])['spese']],
    'WeightDecidesWhenTheShopSaysSo' => fn() => [300, $total([$line(5000, 2)], 1, 0, 0, ['tipopeso' => true])['spese']],
    'AWeightAboveAllLimitsPaysTheLastPrice' => fn() => [2000, $total([$line(5000, 3)], 1, 0, 0, ['tipopeso' => true])['spese']],
    'ThreeTenthsWeighAsMuchAsTheirLimit' => fn() => [300, $total([['peso' => 1000] + $line(100, 3)], 1, 0, 0,
        ['tipopeso' => true, 'imppeso1' => kvScriptTables('imppeso1=new Array(.3);')['imppeso1']])['spese']],
    'VatIsAddedInATaxedZone' => fn() => [2200, $total([$line(10000, 1, 220000)])['iva']],
    'AZoneFreeOfVatPaysNone' => fn() => [[0, 0], [$total([$line(10000, 1, 220000)], 2)['iva'],
        $total([$line(10000, 1, 220000)], 2)['ivaspese']]],
    'VatOfAllLinesIsRoundedOnce' => fn() => [1, $total([$line(1, 1, 220000), $line(1, 1, 220000), $line(1, 1, 220000)])['iva']],
    'VatFollowsTheDiscount' => fn() => [5940, $total([$line(30000, 1, 220000)], 1, 1)['iva']],
    'ShippingPaysVatWherePricesExcludeIt' => fn() => [198, $total([$line(5000, 1)])['ivaspese']],
    'ShippingPaysNoVatWherePricesIncludeIt' => fn() => [0, $total([$line(5000, 1)], 1, 0, 0, ['ivacompresa' => true])['ivaspese']],
    'AZoneFreeOfVatBuysNetWherePricesIncludeIt' => fn() => [[-2200, -180, 12200 + 1000 - 2200 - 180], (function () use ($total) {
        $sums = $total([['importo' => 12200, 'quantita' => 1, 'iva' => 0, 'aliquota' => 220000, 'peso' => 0]], 2, 0, 0,
            ['ivacompresa' => true, 'impord1' => array_fill(0, 32, 9000000), 'impspese1' => array_fill(0, 32, 1000)]);
        return [$sums['iva'], $sums['ivaspese'], $sums['totale']];
    })()],
    'TheTotalIsTheSumOfItsParts' => fn() => [30000 - 3000 + 5940 + 0 + 0, $total([$line(30000, 1, 220000)], 1, 1)['totale']],
    'AMethodThatTheZoneForbidsIsNotAllowed' => fn() => [[true, false], [$total([])['ammesso'], $total([], 2)['ammesso']]],
    'ASlotBehindTheLettersHasNoMethod' => fn() => [false, kvOrderTotals([], 2, 1, $tables, 0, 0)['ammesso']],
    'TheLetterOfASlotIsTheOneOfItsPlaceAmongTheFilledSlots' => fn() => [[true, false, true],
        array_map(fn($slot) => kvIsMethodAllowed(['SpOk' => '1111111101111111'] , $slot), [7, 8, 15])],
    'TheDiscountByAmountNeedsMoreThanTheAmount' => fn() => [0, $total([$line(20000, 1)], 1, 1)['sconto']],
    'TheDiscountByAmountTakesItsPart' => fn() => [3000, $total([$line(30000, 1)], 1, 1)['sconto']],
    'APersonalDiscountReplacesTheOneByAmount' => fn() => [1500, $total([$line(30000, 1)], 1, 1, 5)['sconto']],
    'APersonalDiscountNeedsNoAmount' => fn() => [5, $total([$line(100, 1)], 1, 1, 5)['sconto']],
    'ADiscountOfAHundredLeavesNothingToPay' => fn() => [0, $total([$line(100, 1, 220000)], 1, 0, 100, ['tipopeso' => true,
        'imppeso1' => array_fill(0, 32, 10000), 'impspp1' => array_fill(0, 32, 0)])['totale']],
    'APieceBelowTheFirstStepPaysInFull' => fn() => [1000, kvPiecePrice(1000, [[3, 900000], [10, 800000]], 2)],
    'APieceOnAStepGetsItsFactor' => fn() => [[900, 800], [kvPiecePrice(1000, [[3, 900000], [10, 800000]], 3),
        kvPiecePrice(1000, [[3, 900000], [10, 800000]], 10)]],
    'APieceNeverCostsLessThanNothing' => fn() => [0, kvPiecePrice(-5, [], 1)],
    'AHalfCentOfAPieceIsRoundedUp' => fn() => [11, kvPiecePrice(15, [[1, 700000]], 1)],
    'LargeAmountsKeepEachCent' => fn() => [899999999910, kvShare(999999999900, 900000)],
    'TwoRatesAreRoundedAsOne' => fn() => [27160494, kvShareOfShare(123456789 * 220000, 1000000)],
    'CartLinesAreRead' => fn() => [[['id' => 12, 'q' => 3, 'k' => ['a1b2c3', '', 'ffffff', '']],
        ['id' => 45, 'q' => 1, 'k' => ['', '', '', '']]], kvCartEntries('12.3.a1b2c3..ffffff_45.1')],
    'LinesThatAreNoneAreLeftOut' => fn() => [[], kvCartEntries("1.0_0.1_-1.2_1.1.XX_a.1_1_1.1.a' OR 1=1_99999999999.1_1.1\n")],
    'ACartHasAnEnd' => fn() => [200, count(kvCartEntries(implode('_', array_fill(0, 500, '1.1'))))],
    'TheMostPiecesOfALineCountTheOtherLinesIn' => fn() => [[2, 1, null], (function () {
        $lines = [['quantita' => 2, 'scorte' => ['A1']], ['quantita' => 1, 'scorte' => ['A1', 'Ox']],
            ['quantita' => 9, 'scorte' => ['A2']]];
        return array_map(fn($l) => kvMostPieces($l, kvWantedPieces($lines), ['A1' => 3, 'Ox' => 5]), $lines);
    })()],
    'ANewLineInASubjectOpensNoHeader' => fn() => ['=?UTF-8?B?' . base64_encode('a Bcc: x@y.zz') . '?=',
        kvHeaderText("a\r\nBcc: x@y.zz")],
    'ALongSubjectIsCutIntoWordsOfSeventyFive' => fn() => [true, max(array_map('strlen',
        explode("\r\n ", kvHeaderText(str_repeat("\u{3B8}", 200))))) <= 75],
    'AnAddressWithASecondHeaderIsNone' => fn() => [false, kvIsValidAddress("a@b.it\r\nBcc: c@d.it")],
    'TheMerchantsMailTextIsFilled' => fn() => ["Ordine C1 di EUR 9,00\r\nR\r\n", kvMailText('C1', '9,00', 'R')],
]);
