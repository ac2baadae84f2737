<?php
// Tests of an article's prices and of the texts that guard a page: price_test.php FOLDER. Needs no database.
include __DIR__ . '/harness.php';
shopScripts(['kvdb', 'kvcontext', 'kvprice', 'kvarticle', 'kvvariant', 'kvpay']);

/** A row of the article tables: price 100, on offer at $offer when given. */
function article(?float $offer = null): array
{
    return ['ID' => 5, 'codice' => 'A1', 'plain_titolo' => 'Vaso', 'cart_articolo' => 'A1 Vaso', 'cart_peso' => '.5',
        'contatore' => '3', 'implistino' => '100.0000', 'importo' => (string) ($offer ?? 100), 'implistino1' => '80.0000',
        'importo1' => '80.0000', 'scq' => '1', 'scqart0' => '10', 'scqperc0' => '.8', 'scqart1' => '3', 'scqperc1' => '.9',
        'iva' => '+ IVA 22%', 'plain_sottotitolo' => ''];
}

/** A rate as a FLOAT column holds it. */
function single(float $value): float
{
    return unpack('g', pack('g', $value))[1];
}

/** Sets globals for one test. */
function with(array $settings, callable $test)
{
    foreach ($settings as $name => $value) {
        $GLOBALS[$name] = $value;
    }
    return $test();
}

/** Runs a test with rows of the tables that only some shops have; the article's number is 5. */
function lawful(array $tables, callable $test)
{
    return with(['kvLegalRows' => array_map(fn($row) => [5 => $row], $tables) + $GLOBALS['kvLegalRows']], $test);
}

/** Runs a test with times of delivery, by article or department; department "cat001" has the article. */
function delivered(array $times, callable $test)
{
    $row = ['catID' => 'cat001', 'disponibile' => null, 'quantita' => null] + article();
    return with(['kvLegalRows' => ['kv_consegna' => $times + ['5' => [], 'cat001' => []]] + $GLOBALS['kvLegalRows']], fn() => $test($row));
}

$view = function (string $name, array $row) {
    $GLOBALS['rowArt'] = $row;
    return ViewArt($name);
};
$variant = '<option selected value="<< 2.50>>=.2#R%3D1|Misura: R1 Grande *">Grande * ( + EUR <<importo>> )</option>'
    . '<option value="<<-1.00>>=0#|Misura: Piccola">Piccola ( - EUR <<importo>> )</option>'
    . '<option value="<< 0>>=0#|Misura: Media">Media</option>';
$taken = kvParseVariant(['nomeopzione' => 'Misura', 'opzione' => $variant, 'prima' => $variant]);
$keys = array_keys($taken['entries']);
$translated = kvParseVariant(['nomeopzione' => 'Size', 'prima' => $variant,
    'opzione' => str_replace(['Misura', 'Grande', 'Piccola', 'Media'], ['Size', 'Large', 'Small', 'Medium'], $variant)]);
$shorter = kvParseVariant(['nomeopzione' => 'Size', 'prima' => $variant,
    'opzione' => '<option value="<< 0>>=0#|Size: Medium">Medium</option>']);

runTests([
    'AnOfferPriceWinsOverTheDepartmentDiscount' => fn() => [
        ['listino' => 1220000, 'offerta' => true, 'sconto' => 20.0, 'prezzo' => 976000, 'ridotto' => true],
        kvPrices(article(80), 0, single(0.22), single(0.9), true)],
    'ADepartmentFactorLowersThePriceBeforeVat' => fn() => [
        ['listino' => 1220000, 'offerta' => false, 'sconto' => 10.0, 'prezzo' => 1098000, 'ridotto' => true],
        kvPrices(article(), 0, single(0.22), single(0.9), true)],
    'AnOfferAboveTheListPriceShowsNoPercentage' => fn() =>
        [0.0, kvPrices(article(120), 0, 0.0, 1.0, false)['sconto']],
    'AnOfferAtTheListPriceTakesNoDiscountOfTheDepartment' => fn() => [
        ['listino' => 1220000, 'offerta' => true, 'sconto' => 0.0, 'prezzo' => 1220000, 'ridotto' => true],
        kvPrices(['offerte' => '5'] + article(), 0, single(0.22), single(0.9), true)],
    'AnOfferOfAnotherListinoIsNone' => fn() => [false, kvPrices(['offerte' => '5'] + article(), 1, 0.22, 0.9, true)['offerta']],
    'AFactorOfOneLeavesThePriceAlone' => fn() => [1000000, kvPrices(article(), 0, 0.22, 1.0, false)['prezzo']],
    'AnotherListinoHasItsOwnPrice' => fn() => [800000, kvPrices(article(50), 1, 0.22, 1.0, false)['prezzo']],
    'ARowWithoutPricesCostsNothing' => fn() => [0, kvPrices([], 3, 0.22, 0.9, true)['prezzo']],
    'AProductPassesThroughSinglePrecision' => fn() => [241973008, kvProduct(1099877300, single(0.22))],
    'AProductsTieGoesToTheEvenNumber' => fn() => 
        [[312, 938, -312], [kvProduct(625, 0.5), kvProduct(1875, 0.5), kvProduct(-625, 0.5)]],
    'SmallestUnitsRoundAHalfAwayFromZero' => fn() => [[101, -101, 100, 2, 1],
        [kvSmallestUnits(10050, 100), kvSmallestUnits(-10050, 100), kvSmallestUnits(10049, 100), kvSmallestUnits(15000, 1), kvSmallestUnits(14999, 1)]],
    'ItalianNotationHasAPointForThousands' => fn() => ['1.234,50', kvFormatUnits(123450, 100, 0)],
    'EnglishNotationHasACommaForThousands' => fn() => ['1,235', kvFormatUnits(1235, 1, 1)],
    'FrenchNotationHasASpaceThatKeepsTheAmountTogether' => fn() => ["1\xA0234,50", kvFormatUnits(123450, 100, 2)],
    'ANumberForScriptsHasNoThousandsSeparator' => fn() => ['1234.50', kvScriptNumber(123450, 100)],
    'ThePriceOfThePageIsRoundedToTheDecimalsShown' => fn() => ['EUR 12', with(
        ['visdec' => [0, 0, 2]], fn() => $view('prezzo', ['importo' => '9.9999', 'implistino' => '9.9999'] + article()))],
    'AStruckPriceStandsWhereALowerOneIsAsked' => fn() => ['<s>EUR 122,00</s>', $view('prezzo_barrato', article(80))],
    'NoStruckPriceStandsWhereTheListPriceIsAsked' => fn() => ['', $view('prezzo_barrato', article())],
    'TheOfferMarkCarriesThePercentage' => fn() =>
        ['<img src="kvan_offerta.gif"> <span class="sconto">-20%</span>', $view('offerta', article(80))],
    'TheSecondCurrencyDividesByTheRate' => fn() =>
        ['Lit. 236.224', with(['cambio' => 0.00051646], fn() => $view('cambio', article()))],
    'ReservedPricesAreNotShownToVisitors' => fn() => [['Prezzo riservato ai clienti registrati', '', '', '', ''], with(
        ['regpr' => 1], fn() => [$view('prezzo', article(80)), $view('listino', article(80)), $view('cart_prezzo', article()),
            $view('iva', article()), $view('offerta', article(80))])],
    'ReservedPricesLeadToTheLoginPage' => fn() => ["javascript:self.location='login.php?m=23';\" "
        . "onMouseOver=\"window.status=''; return true", with(['regpr' => 1], fn() => $view('java_acquista', article()))],
    'AnUnknownTagOfAnArticleIsEmpty' => fn() => ['', $view('nonesiste', article())],
    'ATagOutsideAnyArticleIsEmpty' => fn() => ['', with(['rowArt' => false], fn() => ViewArt('titolo'))],
    'AUnitPriceIsThePriceShownByTheContent' => fn() => [['EUR 488,00 / kg', 'EUR 162,67 / l', 'EUR 24,40 / pezzo'],
        array_map(fn($unit) => lawful(['kv_unita' => ['contenuto' => $unit[0], 'misura' => $unit[1]]],
            fn() => $view('unitario', article())), [['0.2500', 'kg'], ['0.7500', 'l'], ['5.0000', 'pz']])],
    'AnOfferHasItsOwnUnitPrice' => fn() => ['EUR 97,60 / m', lawful(['kv_unita' => ['contenuto' => '1.0000', 'misura' => 'm']],
        fn() => $view('unitario', article(80)))],
    'AnArticleWithoutContentOrOfAnUnknownMeasureHasNoUnitPrice' => fn() => [['', '', ''], array_map(
        fn($row) => lawful(['kv_unita' => $row], fn() => $view('unitario', article())),
        [[], ['contenuto' => null, 'misura' => 'kg'], ['contenuto' => '1.0000', 'misura' => 'oz']])],
    'AReducedPriceComesWithTheLowestBefore' => fn() => ['Prezzo più basso nei 30 giorni prima della riduzione: EUR 109,80',
        kvUtf8(lawful(['kv_minimi' => ['minimo' => '90.0000', 'giorni' => '30', 'minimo1' => null]],
            fn() => $view('minimo', article(80))))],
    'TheOfferMarkEndsWithTheLowestPriceBefore' => fn() => ['EUR 109,80</span>', substr(lawful(
        ['kv_minimi' => ['minimo' => '90.0000', 'giorni' => '30']], fn() => $view('offerta', article(80))), -17)],
    'APriceThatIsNotReducedHasNoLowestBefore' => fn() => [['', '', ''], array_map(fn($offer) => lawful(
        ['kv_minimi' => ['minimo' => '90.0000', 'giorni' => '30']], fn() => $view('minimo', article($offer))), [null, 100.0, 120.0])],
    'AListWithoutAnEarlierPriceTellsNone' => fn() => ['', with(['listino' => 1, 'scontorep' => array_fill(0, 10, 0.5)],
        fn() => lawful(['kv_minimi' => ['minimo' => '90.0000', 'giorni' => '30', 'minimo1' => null]],
            fn() => $view('minimo', article())))],
    'HiddenPricesHideWhatIsComputedFromThem' => fn() => [['', ''], with(['regpr' => 1], fn() => lawful(
        ['kv_unita' => ['contenuto' => '1.0000', 'misura' => 'kg'], 'kv_minimi' => ['minimo' => '90', 'giorni' => '30']],
        fn() => [$view('unitario', article()), $view('minimo', article(80))]))],
    'MakerAndPersonResponsibleAreTold' => fn() => ['<details class="sicurezza"><summary>Sicurezza del prodotto</summary><dl>'
        . '<dt>Produttore</dt><dd>Forno &lt;Due&gt;<br>Via Po 1<br><a href="mailto:a@b.it">a@b.it</a></dd>'
        . '<dt>Responsabile nell&#039;Unione europea</dt><dd>Ada<br><a href="https://b.it/x" rel="noopener">https://b.it/x</a></dd>'
        . '</dl></details>', with(['kvLegalRows' => ['kv_sicurezza' => [5 => ['produttore' => '2']], 'kv_produttori' => [2 => [
            'nome' => 'Forno <Due>', 'indirizzo' => 'Via Po 1', 'contatto' => 'a@b.it', 'responsabile' => 'Ada',
            'resp_indirizzo' => null, 'resp_contatto' => 'https://b.it/x']]]], fn() => $view('sicurezza', article()))],
    'AnArticleHasItsOwnTimeOfDeliveryElseThatOfItsDepartment' => fn() => [['Subito', '2 giorni', ''], [
        delivered(['5' => ['tempo' => 'Subito'], 'cat001' => ['tempo' => '2 giorni']], 'kvDeliveryTime'),
        delivered(['cat001' => ['tempo' => '2 giorni']], 'kvDeliveryTime'), delivered([], 'kvDeliveryTime')]],
    'ALanguageWithoutATimeOfDeliveryShowsThatOfTheFirst' => fn() => [['2 days', '2 giorni'], with(['Lingua' => '_l2'], fn() => [
        delivered(['5' => ['tempo' => '2 giorni', 'tempo_l2' => '2 days']], 'kvDeliveryTime'),
        delivered(['5' => ['tempo' => '2 giorni', 'tempo_l2' => '']], 'kvDeliveryTime')])],
    'TheTimeOfDeliveryIsShownAsItWasTypedUnlessTheArticleIsSoldOut' => fn() => [
        ['<p class="nota consegna">Consegna: 2 &lt; 4 giorni</p>', ''],
        delivered(['cat001' => ['tempo' => '2 < 4 giorni']], fn($row) => [$view('consegna', $row),
            $view('consegna', ['disponibile' => '1', 'quantita' => '0'] + $row)])],
    'DaysAreReadFromATimeOfDelivery' => fn() => [
        [[2, 4], [1, 2], [21, 21], [2, 3], [3, 5], [2, 4], [5, 5], [1, 1], null, null, null],
        array_map('kvDeliveryDays', ['2-4 giorni lavorativi', 'Corriere 24/48 ore', '3 weeks', '2 bis 3 Werktage', "3 \xe0 5 jours",
            "2 \x96 4 working days", '5 gg', 'entro 1 giorno', 'Subito', '4-2 giorni', 'Dal 3 gennaio'])],
    'AnArticleWithoutMakerTellsNone' => fn() => ['', $view('sicurezza', article())],
    'QuantityStepsComeByRisingQuantity' => fn() => [[[3, 900000], [10, 800000]], kvQuantitySteps(article(), 0)],
    'AListinoWithoutQuantityDiscountHasNoSteps' => fn() => [[], kvQuantitySteps(article(), 1)],
    'QuantityStepsAreToldInWords' => fn() =>
        ['<ul class="scaglioni"><li>Da 3: -10%</li><li>Da 10: -20%</li></ul>', $view('scaglioni', article())],
    'AVariantValueIsTakenApart' => fn() => [
        ['attributes' => 'selected', 'price' => 25000, 'weight' => '.2', 'coded' => 'R%3D1', 'code' => 'R=1',
         'label' => 'Misura: R1 Grande', 'text' => 'Grande * ( + EUR <<importo>> )',
         'first' => 'Misura: R1 Grande'], $taken['entries'][$keys[0]]],
    'AVariantKeepsItsKeysInAnotherLanguage' => fn() => [$keys, array_keys($translated['entries'])],
    'AValueWithoutTranslationHasItsOwnKey' => fn() => [false, in_array(array_keys($shorter['entries'])[0], $keys, true)],
    'TwoEqualValuesHaveTwoKeys' => fn() => [2, count(kvParseVariant(['nomeopzione' => '', 'prima' => '',
        'opzione' => str_repeat('<option value="<< 0>>=0#|A: B">B</option>', 2)])['entries'])],
    'ADifferenceFollowsFactorAndVat' => fn() =>
        [275, with(['scontorep' => array_fill(0, 10, single(0.9)), 'ivarep' => single(0.22)],
            fn() => kvDifference(25000, article()))],
    'ADifferenceOfAnOfferIsNotDiscounted' => fn() =>
        [305, with(['scontorep' => array_fill(0, 10, single(0.9)), 'ivarep' => single(0.22)],
            fn() => kvDifference(25000, article(80)))],
    'ANegativeDifferenceStaysNegative' => fn() => [-122, with(['ivarep' => single(0.22)], fn() => kvDifference(-10000, article()))],
    'AnApostropheInAScriptTextIsEscaped' => fn() =>
        ["d\\'Este %22blu%22 50%25 %3Cb%3E", kvScriptText("d'Este \"blu\" 50% <b>")],
    'AnEscapedPageTextCannotOpenATag' => fn() => ['&lt;b&gt; &quot;&#039;', kvHtml("<b> \"'")],
    'ALetterBeyondThePagesCodingStaysOne' => fn() => ['Wa&#322;&amp;lt;', kvHtml('Wa&#322;&lt;')],
    'AForeignLetterReachesAMailInUtf8' => fn() => ["Wał \u{20AC} è", kvUtf8("Wa&#322; \x80 \xE8")],
    'AReferenceToAControlLetterIsDropped' => fn() => ['ab', kvUtf8('a&#10;b')],
    'ATitleOfTagsBecomesPlainWords' => fn() => ['Vasi &gt; Blu', TestoSemplice('<font size="1">Vasi</font> &gt; <b>Blu</b>')],
    'AQuotedSettingComesBackAsItWas' => fn() => [['pa"ss\\\'x', 'b'], kvValues('pa\\"ss\\\\\'x' . "\r\n" . 'b')],
    'ADatabaseAddressMayNameAPort' => fn() => [['db.example', 3307, null], kvDatabaseServer('db.example:3307')],
    'ADatabaseAddressMayNameASocket' => fn() => [['localhost', 0, '/run/x.sock'], kvDatabaseServer('localhost:/run/x.sock')],
    'ADatabaseAddressMayBeAHostAlone' => fn() => [['localhost', 0, null], kvDatabaseServer(' localhost ')],
    'AnInnerQuoteOfTheBuyLinkClosesTheAddress' => fn() =>
        ["javascript:window.status='';Acquista('A1 Vaso','122.00','0',document.itemsform.qt3.value,'op13','op23','op33',"
            . "'.5','op43',5)\" onMouseOver=\"window.status=''; return true",
            with(['ivarep' => single(0.22)], fn() => kvBuyLink(article()))],
    'AFieldOfAFormIsOneLine' => fn() => ['a b', kvLineField(['x' => "a\r\nb\0"], 'x')],
    'AFieldThatIsAListIsEmpty' => fn() => ['', kvCampo(['x' => ['y']], 'x')],
]);
