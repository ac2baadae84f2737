<?php
// Tests of what the templates ask for beyond the tags (kvlook.php and what it includes): look_test.php FOLDER. Needs no
// database.
include __DIR__ . '/harness.php';
$_SERVER['SCRIPT_NAME'] = '/shop/cat007.php';
$HTTP_GET_VARS = ['n' => 1, 'prod' => 0];
$GLOBALS['sp'] = 1;
shopScripts(['kvdb', 'kvcontext', 'kvprice', 'kvarticle', 'kvpay', 'kvlook', 'kvsequence']);

/** The lowest contrast of any writing on any surface it may be shown on, over palettes of every kind of colour. */
function lowestContrast(array $pairs): float
{
    $shades = ['#000000', '#333333', '#767676', '#777777', '#808080', '#cccccc', '#ffffff', '#ff0000', '#00ff00', '#0000ff',
        '#ffff00', '#ff00ff', '#00ffff', '#a8321f', '#1b5e5a', '#faf8f4'];
    $lowest = 21.0;
    foreach ($shades as $n => $text) {
        foreach ($shades as $page) {
            foreach ($shades as $link) {
                $palette = kvPalette($text, $page, $link, $shades[15 - $n]);
                foreach ($pairs as list($over, $under)) {
                    $lowest = min($lowest, kvContrast(kvRgb($palette[$over]), kvRgb($palette[$under])));
                }
            }
        }
    }
    return $lowest;
}

$texts = [];
foreach (['testo', 'tenue', 'link'] as $over) {
    array_push($texts, [$over, 'fondo'], [$over, 'scheda']);
}
array_push($texts, ['su-pannello', 'pannello'], ['link-pannello', 'pannello'], ['su-pieno', 'pieno']);
$linksOf = function (string $suffix): array {
    $GLOBALS['Lingua'] = $suffix;
    kvLingue('<a href="cat007.php?n=1"><img src="kvan_italiano.gif" height="16" width="24" border="0"></a>|'
        . '|<a href="cat007_l3.php?n=1">francese</a>|<a href="cat007_l4.php?n=1">klingon</a>');
    return kvLingue();
};
$path = '<font size="1"><a href="cat001.php?n=1">Casa & cucina</a> &gt; </font>';
$below = '<BR><font size="1">&gt;&gt;&nbsp;</font><font face="Arial" size="1"><a href="cat009.php?n=1">Vasi</a> | </font>';
$article = ['ID' => '7', 'codice' => 'A<1>', 'plain_titolo' => 'Tazza "Alba" </script>', 'contatore' => '2',
    'descrizione' => "Prima riga\r\nseconda & terza", 'implistino' => '10.0000', 'importo' => '10.0000', 'catID' => 'c',
    'immagine1' => '<img border="0" src="a b.jpg" width="240" height="180">', 'immagine2' => '', 'immagine3' => ''];

/** What a function writes in a site where these files are beside its scripts. */
$inSite = function (array $files, callable $write): string {
    $site = sys_get_temp_dir() . '/korvane-look-' . getmypid();
    $before = getcwd();
    mkdir($site);
    chdir($site);
    array_map('touch', $files);
    try {
        return $write();
    } finally {
        array_map('unlink', $files);
        chdir($before);
        rmdir($site);
    }
};
$wide = '<a href="x.htm"><img border="0" src="a b.jpg" width="1200" height="900" alt=""></a>';

runTests([
    'AnyColoursGiveReadableTexts' => fn() => [true, lowestContrast($texts) >= 4.5],
    'AnyColoursGiveVisibleEdgesOfControls' => fn() => [true,
        lowestContrast([['bordo', 'fondo'], ['bordo', 'scheda']]) >= 3],
    'ColoursThatAreReadableStayAsTheMerchantChoseThem' => fn() => [['#1e2a32', '#0b5c6b', '#f1f4f3'],
        array_values(array_intersect_key(kvPalette('#1E2A32', '#FFFFFF', '#0B5C6B', '#F1F4F3'),
            array_flip(['testo', 'link', 'pannello'])))],
    'AColourThatIsNoneIsBlack' => fn() => [[0, 0, 0], kvRgb('')],

    'TagsOfTheBuildAreWrittenAsToday' => fn() => ['<img src="a.jpg" alt="">', kvPulito('<IMG BORDER=0 SRC="a.jpg">')],
    'FontsAndTablesLoseTheirDecorations' => fn() => ['<div><span><table><tr><td>x</td></tr></table></span></div>', kvPulito(
        '<center><font size="2" color="#fff"><table border=0 width=100%><tr><td valign=top width=33%>x</td></tr></table>'
        . '</font></center>')],
    'ALoneAmpersandBecomesAReference' => fn() => ['<a href="x?a=1&amp;b=2">R&amp;B &amp; caff&egrave;</a>',
        kvPulito('<a href="x?a=1&b=2">R&B & caff&egrave;</a>')],
    'AnAngleBracketThatOpensNoTagIsText' => fn() => ['5 &lt; 6 &gt; 4', kvPulito('5 < 6 > 4')],
    'ASelectOfTheBuildIsCleanAndKeepsItsValues' => fn() => [
        '<select autocomplete="off" name="LSStato" onchange="SpedPaese()"><option selected value="1">Italia</option></select>',
        kvScelta('<select size="1" name="LSStato" onChange="SpedPaese()"><option selected value ="1">Italia</option></select>',
            'autocomplete="off"')],
    'ScriptsAndCommentsStayAsTheyAre' => fn() => ['<script>if (a < b && c) {}</script><!-- <B> -->',
        kvPulito('<script>if (a < b && c) {}</script><!-- <B> -->')],
    'ALinkToAnotherWindowDoesNotHandOverThisOne' => fn() => ['<a href="http://x/" target="_blank" rel="noopener">x</a>',
        kvPulito('<a href="http://x/" target="_blank">x</a>')],
    'EmptyLinesPartParagraphs' => fn() => ["<p>uno<br>due</p>\n<p>tre</p>\n", kvTesto("uno\r\ndue\r\n\r\ntre")],
    'LineBreaksOfTheBuildPartParagraphsToo' => fn() => ["<p>uno</p>\n<p>due</p>\n", kvTesto("uno<BR>\r\n<BR>due")],
    'HtmlOfTheMerchantKeepsItsForm' => fn() => ["<ul>\n<li>x\n</ul>", kvTesto("<UL>\n<LI>x\n</UL>")],
    'AnEmptyTextIsEmpty' => fn() => ['', kvTesto(" \r\n")],
    'ADescriptionEndsWithAWholeWord' => fn() => ["Tazze fatte\x85", kvFirstWords('Tazze <b>fatte</b> a mano', 12)],

    'ATitleWithoutPathIsOnlyATitle' => fn() => [['titolo' => 'Vasi', 'percorso' => [], 'sotto' => []], kvReparto('Vasi')],
    'ATitleWithPathAndSubdepartmentsIsTakenApart' => fn() => [
        ['titolo' => 'Tazze', 'percorso' => [['cat001.php?n=1', 'Casa &amp; cucina']], 'sotto' => [['cat009.php?n=1', 'Vasi']]],
        kvReparto($path . 'Tazze' . $below)],
    'TheLastStepOfThePathIsThePageItself' => fn() => [1, preg_match(
        '/<li><a href="cat001.php\?n=1">Casa &amp; cucina<\/a><\/li><li><span aria-current="page">Tazze<\/span>/',
        kvPercorso(kvReparto($path . 'Tazze')))],
    'OnePageHasNoPager' => fn() => ['', kvPagine(1, 1)],
    'ManyPagesShowTheFirstTheLastAndTheNearOnes' => fn() => [['1', '8', '9', '10', '11', '12', '20'],
        preg_match_all('/>(\d+)</', kvPagine(10, 20), $found) ? $found[1] : []],
    'ThePagerLeadsBackAndOn' => fn() => [['prev', 'next'], preg_match_all('/rel="(\w+)"/', kvPagine(2, 3), $found) ? $found[1] : []],

    'LanguagesAreKnownByTheirOwnNames' => fn() => [[1 => 'it', 2 => 'Italiano'], array_slice($linksOf('_l2')[1], 1, null, true)],
    'ThePagesOwnLanguageHasNoLink' => fn() => [1, preg_match('/<span lang="it" aria-current="true">/',
        $linksOf('_l2') ? kvVociLingue() : '')],
    'AnUnknownLanguageIsNamedByItsModule' => fn() => ['Klingon', $linksOf('_l2')[4][2]],
    'TheFirstLanguageIsForEverybodyElse' => fn() => [1, preg_match(
        '/hreflang="x-default" href="[^"]*\/cat007.php\?n=1"/', $linksOf('_l2') ? kvTesta() : '')],
    'APageForTheVisitorAloneAsksToBeLeftOut' => fn() => [[1, 0], [substr_count(kvTesta(true), 'noindex'),
        substr_count(kvTesta(true), 'canonical')]],
    'ADescriptionWithQuotesStaysInItsAttribute' => fn() => [1, substr_count(kvTesta(true, 'Tazza "Alba"'),
        'content="Tazza &quot;Alba&quot;"')],
    'KeywordsAreAMetaElementOfTheirOwn' => fn() => [['<meta name="keywords" content="tazze, gres &quot;blu&quot;">' . "\n", ''],
        [kvParoleChiave('tazze, gres "blu"'), kvParoleChiave(" \r\n")]],
    'WhoShowsALinkToAPageIsToldTitleAddressAndDescription' => fn() => [
        ['og:title" content="Tazze &amp; c."', 'og:url" content="http://localhost:8080/cat007.php?n=1"',
            'og:description" content="Tazza &quot;Alba&quot;"'], (function () {
            kvTitolo('<b>Tazze</b> & c.');
            preg_match_all('/og:(?:title|url|description)" content="[^"]*"/', kvTesta(false, 'Tazza "Alba"'), $told);
            return $told[0] === [] ? [] : [$told[0][0], $told[0][2], $told[0][1]];
        })()],

    'TheShowcaseTableBecomesAList' => fn() => [2, substr_count(kvVetrina("<table><tr>\r\n<td valign=\"top\" align=\"center\" "
        . "width=\"50%\">\r\n<font size=\"2\">\r\nuno</font></td>\r\n<td valign=\"top\" align=\"center\" width=\"50%\">\r\n<font "
        . "size=\"2\">\r\ndue</font></td>\r\n</tr></table>"), '<li>')],
    'AnEmptyShowcaseIsNothing' => fn() => ['', kvVetrina('')],
    'ThePictureOfAnArticleHasItsSizes' => fn() => ['<img src="a b.jpg" alt="x" width="240" height="180" decoding="async">',
        kvTagImmagine(kvImmagine($article['immagine1']), 'x', false)],
    'ABiggerPictureIsOfferedToSharperScreens' => fn() => [1, substr_count(kvFotoGrande(['plain_titolo' => 'x',
        'immagine2' => '<img border="0" src="g.jpg" width="600" height="600">'] + $article), '600w, a%20b.jpg 240w')],
    'LighterFormsOfAPictureAreOfferedWhereTheyAre' => fn() => ['<a href="x.htm"><picture><source type="image/webp" '
        . 'srcset="a%20b.jpg.480.webp 480w, a%20b.jpg.webp 1200w" sizes="(max-width: 1200px) 100vw, 1200px">'
        . '<img border="0" src="a b.jpg" width="1200" height="900" alt=""></picture></a>',
        $inSite(['a b.jpg.webp', 'a b.jpg.480.webp'], function () use ($wide): string {
            $GLOBALS['rowArt'] = ['immagine1' => $wide];
            return ViewArt('immagine1');
        })],
    'WithoutThemAPictureIsAsTheBuildWroteIt' => function () use ($wide, $inSite) {
        $GLOBALS['rowArt'] = ['immagine1' => $wide];
        return [$wide, $inSite(['a b.jpg.480.webp'], fn() => ViewArt('immagine1'))];
    },
    'APictureOfUnknownSizeIsOfferedWhole' => fn() => [
        '<picture><source type="image/webp" srcset="v.png.webp"><img src="v.png" alt="" loading="lazy"></picture>',
        $inSite(['v.png.webp', 'v.png.480.webp'], fn() => VetImmagine('v.png', '', ''))],
    'ACardOffersTheLighterFormsOfAllItsPictures' => fn() => [1, substr_count($inSite(
        ['a b.jpg.webp', 'g.jpg.webp', 'g.jpg.480.webp'], fn() => kvFotoGrande(['plain_titolo' => 'x',
            'immagine2' => '<img border="0" src="g.jpg" width="600" height="600">'] + $article)),
        'srcset="a%20b.jpg.webp 240w, g.jpg.480.webp 480w, g.jpg.webp 600w"')],
    'NoFileOutsideTheSiteIsLookedFor' => fn() => [[], kvLighterForms('../a.jpg', 600)],
    'StructuredDataCannotEndTheirElement' => fn() => [1, substr_count(kvStructuredData(['name' => '</script>']), '</script>')],
    'TheOfferOfSchemaOrgHasThePriceOfThePage' => fn() => [['12.20', 'EUR', 'https://schema.org/InStock'],
        array_slice(array_values(kvArticleData($article, true)['offers']), 1, 3)],
    'ASoldOutArticleSaysSo' => fn() => ['https://schema.org/OutOfStock',
        kvArticleData($article, false)['offers']['availability']],
    'AHiddenPriceIsNotTold' => function () use ($article) {
        $GLOBALS['regpr'] = 1;
        return [false, isset(kvArticleData($article, true)['offers'])];
    },
    'TheCurrencyIsKnownByItsSign' => function () {
        $GLOBALS['valuta'] = ["\x80 ", ''];
        return ['EUR', kvCurrencyCode()];
    },
    'AnUnknownCurrencyIsNotGuessed' => function () {
        $GLOBALS['valuta'] = ['Gettoni ', ''];
        return ['', kvCurrencyCode()];
    },
    'WordsWithMarksBetweenThemAreSequencesOfTwo' => fn() => [["3'olio\u{A0}l", "3-7\u{A0}gr", "3/b\u{A0}7"],
        kvSequences("l'olio, (gr-7/b) blu ----- notte.")],
    'ARunOfThousandsOfWordsIsReadToItsEnd' => fn() => [100000, count(kvSequences(str_repeat('a-', 100000) . 'b l c'))],
]);
