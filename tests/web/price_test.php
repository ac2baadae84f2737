<?php
// Tests of the shop's arithmetic and of the texts that guard a page: price_test.php FOLDER, where FOLDER holds the
// expanded scripts (sample_shop.py makes it). Needs no database: what asks one isn't called here.

error_reporting(E_ALL);
set_error_handler(function (int $kind, string $what, string $file, int $line): bool {
    throw new ErrorException($what, 0, $kind, $file, $line);
});

$folder = $argv[1] ?? '';
if (!is_file("$folder/kvprice.php")) {
    fwrite(STDERR, "usage: price_test.php FOLDER\n");
    exit(2);
}
foreach (['kvdb', 'kvcontext', 'kvprice', 'kvarticle', 'kvcart', 'kvpay'] as $script) {
    include_once "$folder/$script.php";
}

// The settings that funcs.php takes from the build.
$ivacompresa = 1;
$visdec = [1, 0, 2];
$vissconto = 1;
$valuta = ['EUR ', 'Lit. '];
$cambio = 0;
$notazione = 0;
$regobbl = 0;
$regpr = 0;
$subtitleincart = 0;
$visofferta = '<img src="kvan_offerta.gif">';
$visnovita = '';
$Lingua = '';
$cliente = 0;
$listino = 0;
$scontorep = array_fill(0, 10, 1.0);
$ivarep = 0.22;

/** A row of the article tables: price 100, on offer at $offer when given. */
function article(?float $offer = null): array
{
    return ['ID' => 5, 'codice' => 'A1', 'plain_titolo' => 'Vaso', 'cart_articolo' => 'A1 Vaso', 'cart_peso' => '.5',
        'contatore' => '3', 'implistino' => '100.0000', 'importo' => (string) ($offer ?? 100), 'implistino1' => '80.0000',
        'importo1' => '80.0000', 'scq' => '1', 'scqart0' => '3', 'scqperc0' => '.9', 'scqart1' => '10', 'scqperc1' => '.8'];
}

$tables = kvLeggiScript('impord1=new Array(50,50); impspese1=new Array(9.00,4); impord2=new Array(100,100);'
    . ' impspese2=new Array(5.00,2); impspese3=new Array(0,0); imppeso1=new Array(1,1); impspp1=new Array(3,3);'
    . ' impspp10=new Array(20,20); var SpOk=\'10\'; var IvaOk=\'10\'; var PutDec= 1; aliquotaspese = .22;'
    . ' var scimp = new Array( 0, 200); var scperc = new Array( 1, .9); ivacompresa = "0"; tipopeso = "0";');
$line = fn(float $price, int $pieces, float $vat = 0.0): array =>
    ['importo' => $price, 'quantita' => $pieces, 'iva' => $vat, 'peso' => 0.5];

$tests = [
    'AnOfferPriceWinsOverTheDepartmentDiscount' => fn() =>
        [['listino' => 122.0, 'prezzo' => 97.6, 'offerta' => true, 'sconto' => 20.0], kvPrezzi(article(80), 0, 0.22, 0.9, true)],
    'ADepartmentFactorLowersThePriceBeforeVat' => fn() =>
        [['listino' => 122.0, 'prezzo' => 109.8, 'offerta' => false, 'sconto' => 10.0], kvPrezzi(article(), 0, 0.22, 0.9, true)],
    'AFactorOfOneLeavesThePriceAlone' => fn() => [100.0, kvPrezzi(article(), 0, 0.22, 1.0, false)['prezzo']],
    'AnotherListinoHasItsOwnPrice' => fn() => [80.0, kvPrezzi(article(50), 1, 0.22, 1.0, false)['prezzo']],
    'ARowWithoutPricesCostsNothing' => fn() => [0.0, kvPrezzi([], 3, 0.22, 0.9, true)['prezzo']],
    'AProductPassesThroughSinglePrecision' => fn() => [24197.3008, kvProdotto(109987.73, 0.22)],
    'ItalianNotationHasAPointForThousands' => fn() => ['1.234,50', kvFormato(1234.5, true, 0)],
    'EnglishNotationHasACommaForThousands' => fn() => ['1,235', kvFormato(1234.6, false, 1)],
    'ANumberForScriptsHasNoThousandsSeparator' => fn() => ['1234.50', kvNumeroScript(1234.5, true)],
    'PlainNumbersOfTheBuildAreRead' => fn() => [[0.0, 200.0], $tables['scimp']],
    'AFractionWithoutAZeroIsRead' => fn() => [0.22, $tables['aliquotaspese']],
    'AnOrderUpToTheFirstAmountPaysTheFirstShipping' => fn() =>
        [9.0, kvTotali([$line(50, 1)], 1, 1, $tables, 0, 0)['spese']],
    'ShippingGoesByTheSlotOfMethodAndZone' => fn() => [4.0, kvTotali([$line(50, 1)], 1, 2, $tables, 0, 0)['spese']],
    'AnOrderAboveTheSecondAmountShipsAtTheThirdPrice' => fn() => [0.0, kvTotali([$line(101, 1)], 1, 1, $tables, 0, 0)['spese']],
    'WeightDecidesWhenTheShopSaysSo' => fn() =>
        [3.0, kvTotali([$line(50, 2)], 1, 1, ['tipopeso' => '1'] + $tables, 0, 0)['spese']],
    'AWeightAboveAllLimitsPaysTheLastPrice' => fn() =>
        [20.0, kvTotali([$line(50, 3)], 1, 1, ['tipopeso' => '1'] + $tables, 0, 0)['spese']],
    'VatIsAddedInATaxedZone' => fn() => [22.0, kvTotali([$line(100, 1, 0.22)], 1, 1, $tables, 0, 0)['iva']],
    'AZoneFreeOfVatPaysNone' => fn() => [0.0, kvTotali([$line(100, 1, 0.22)], 1, 2, $tables, 0, 0)['iva']],
    'ShippingPaysVatWherePricesExcludeIt' => fn() => [1.98, kvTotali([$line(50, 1)], 1, 1, $tables, 0, 0)['ivaspese']],
    'AMethodThatTheZoneForbidsIsNotAllowed' => fn() => [false, kvTotali([$line(50, 1)], 1, 2, $tables, 0, 0)['ammesso']],
    'TheDiscountByAmountNeedsMoreThanTheAmount' => fn() => [0.0, kvTotali([$line(200, 1)], 1, 1, $tables, 1, 0)['sconto']],
    'TheDiscountByAmountTakesItsPart' => fn() => [30.0, kvTotali([$line(300, 1)], 1, 1, $tables, 1, 0)['sconto']],
    'APersonalDiscountReplacesTheOneByAmount' => fn() => [15.0, kvTotali([$line(300, 1)], 1, 1, $tables, 1, 5)['sconto']],
    'AQuantityBelowTheFirstStepPaysInFull' => fn() => [1.0, kvFattoreQuantita(article(), 0, 2)],
    'AQuantityOnAStepGetsItsFactor' => fn() => [0.8, kvFattoreQuantita(article(), 0, 10)],
    'AListinoWithoutQuantityDiscountHasNone' => fn() => [1.0, kvFattoreQuantita(article(), 1, 10)],
    'AnApostropheInAScriptTextIsEscaped' => fn() => ["d\\'Este %22blu%22 50%25", kvTestoScript("d'Este \"blu\" 50%")],
    'AnEscapedPageTextCannotOpenATag' => fn() => ['&lt;b&gt; &quot;&#039;', kvHtml("<b> \"'")],
    'ATitleOfTagsBecomesPlainWords' => fn() => ['Vasi &gt; Blu', TestoSemplice('<font size="1">Vasi</font> &gt; <b>Blu</b>')],
    'AQuotedSettingComesBackAsItWas' => fn() => [['pa"ss\\\'x', 'b'], kvValori('pa\\"ss\\\\\'x' . "\r\n" . 'b')],
    'AnInnerQuoteOfTheBuyLinkClosesTheAddress' => fn() =>
        ["javascript:window.status='';Acquista('A1 Vaso','122.00','0',document.itemsform.qt3.value,'op13','op23','op33',"
            . "'.5','op43',5,'3:0.9,10:0.8')\" onMouseOver=\"window.status=''; return true", kvAcquista(article())],
    'AServiceWithoutAnAddressGetsNoForm' => fn() => [false, strpos(kvFormPagamento('', 'shop', []), '<form')],
    'ASignatureDependsOnTheOrderOfTheFields' => fn() =>
        [false, kvFirma(['a' => '1', 'b' => '2'], 'k') === kvFirma(['b' => '2', 'a' => '1'], 'k')],
];

$failed = 0;
foreach ($tests as $name => $test) {
    try {
        list($wanted, $found) = $test();
        if ($wanted === $found) {
            continue;
        }
        $text = "wanted " . var_export($wanted, true) . "\n  found " . var_export($found, true);
    } catch (Throwable $error) {
        $text = get_class($error) . ': ' . $error->getMessage() . ' at line ' . $error->getLine();
    }
    echo "FAILED $name\n  $text\n";
    $failed++;
}
echo count($tests) - $failed, ' of ', count($tests), " tests passed\n";
exit($failed === 0 ? 0 : 1);
