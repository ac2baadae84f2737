<?php
// ***1.0.7***
// What the templates ask for beyond the tags of the build: the page's head (colours, description, addresses for search
// engines), the languages, the way to the department, the pager. Everything returned is HTML, escaped.
include_once "kvhtml.php";
include_once "kvpalette.php";
include_once "kvcard.php";
include_once "kvfiltro.php";

/** The language codes and own names of the modules, by their file names. Source: BCP 47. */
const KV_LINGUE = ['italiano' => ['it', 'Italiano'], 'inglese' => ['en', 'English'], 'francese' => ['fr', "Fran\xE7ais"],
    'tedesco' => ['de', 'Deutsch'], 'spagnolo' => ['es', "Espa\xF1ol"], 'portoghese' => ['pt', "Portugu\xEAs"],
    'olandese' => ['nl', 'Nederlands'], 'sloveno' => ['sl', "Sloven\x9A\xE8ina"], 'croato' => ['hr', 'Hrvatski'],
    'svedese' => ['sv', 'Svenska'], 'danese' => ['da', 'Dansk']];

/** The shop's name. */
function kvNome(): string
{
    return TestoSemplice(<<<'KORVANE_VALORI'
<<1-negozio>>
KORVANE_VALORI
    );
}

/** The title of a page: what it is about, the sub-page from the second on, the shop. */
function kvTitolo(string $html, int $sottopagina = 1): string
{
    $titolo = TestoSemplice($html);
    $GLOBALS['kvTitoloPagina'] = $titolo;
    return ($titolo === '' ? '' : $titolo . ($sottopagina > 1 ? " ($sottopagina)" : '') . ' - ') . kvNome();
}

/** The file of this page. */
function kvFile(): string
{
    return basename(str_replace('\\', '/', (string) ($_SERVER['SCRIPT_NAME'] ?? '')));
}

/** What marks the link to this page itself. */
function kvCorrente(string $file): string
{
    return $file === kvFile() ? ' aria-current="page"' : '';
}

/** A file of the shop with its full address, as search engines ask for it; encrypted when this page came so. */
function kvAssoluto(string $file): string
{
    $indirizzo = kvIndirizzo($file);
    return kvProtetta() ? preg_replace('/^http:/i', 'https:', $indirizzo) : $indirizzo;
}

/** Which part of a department page is shown, as its address tells it; empty on all other pages. */
function kvParteMostrata(): string
{
    global $sp, $HTTP_GET_VARS;
    if (!isset($sp)) {
        return '';
    }
    return '?n=' . (kvScelteElenco()['attiva'] ? 1 : (int) $sp) . ($HTTP_GET_VARS['prod'] > 0 ? '&prod=' . $HTTP_GET_VARS['prod'] : '');
}

/**
 * The page in the other languages, from the links of the tags lingua1 to lingua4, joined by "|": by language number
 * [file, code, name]. The language of the page itself has no link. Kept: later calls may leave the links out.
 */
function kvLingue(?string $collegamenti = null): array
{
    static $lingue = [];
    if ($collegamenti === null) {
        return $lingue;
    }
    $lingue = [];
    $propria = (int) substr((string) ($GLOBALS['Lingua'] ?? ''), 2) ?: 1;
    foreach (explode('|', $collegamenti) as $n => $collegamento) {
        $codice = '';
        if (preg_match('/<a href="([^"]*)">(?:<img src="kvan_([^"]*)\.gif"|([^<]*))/', $collegamento, $parti)) {
            $codice = $parti[2] !== '' ? $parti[2] : (string) ($parti[3] ?? '');
            $file = strpos($parti[1], '?') === false ? $parti[1] : strstr($parti[1], '?', true);
        } elseif ($n + 1 === $propria) {
            $codice = array_search("<<4-codice_lingua>>", array_column(KV_LINGUE, 0), true);
            $codice = $codice === false ? "<<4-codice_lingua>>" : array_keys(KV_LINGUE)[$codice];
            $file = kvFile();
        } else {
            continue;
        }
        // A script that shows its own words through another page leads to itself.
        $file = isset($GLOBALS['kvPaginaLingue']) ? $GLOBALS['kvPaginaLingue'] . ($n === 0 ? '' : '_l' . ($n + 1)) . '.php' : $file;
        $lingue[$n + 1] = [$file . kvParteMostrata()] + [1 => '', 2 => ucfirst($codice)];
        if (isset(KV_LINGUE[strtolower($codice)])) {
            $lingue[$n + 1] = array_merge([$file . kvParteMostrata()], KV_LINGUE[strtolower($codice)]);
        }
    }
    return $lingue;
}

/** The links to the other languages as list items; nothing in a shop of one language. */
function kvVociLingue(): string
{
    $voci = '';
    $propria = (int) substr((string) ($GLOBALS['Lingua'] ?? ''), 2) ?: 1;
    foreach (count(kvLingue()) > 1 ? kvLingue() : [] as $n => list($file, $codice, $nome)) {
        $segno = $codice === '' ? '' : ' lang="' . $codice . '"';
        $testo = '<span class="lungo">' . kvHtml($nome) . '</span><span class="breve" aria-hidden="true">'
            . kvHtml(strtoupper($codice === '' ? substr($nome, 0, 2) : $codice)) . '</span>';
        $voci .= $n === $propria
            ? '<li><span' . $segno . ' aria-current="true">' . $testo . '</span></li>'
            : '<li><a href="' . kvHtml($file) . '"' . ($codice === '' ? '' : $segno . ' hreflang="' . $codice . '"') . '>'
                . $testo . '</a></li>';
    }
    return $voci;
}

/**
 * What search engines read in the head: the description (`testo`, else the shop's), the page's address and those in
 * the other languages. A page that is for the visitor alone (order, access, search) asks to be left out instead.
 */
function kvTesta(bool $riservata = false, string $testo = ''): string
{
    $descrizione = kvPrimeParole($testo !== '' ? $testo : <<<'KORVANE_VALORI'
<<1-meta_description>>
KORVANE_VALORI
        , 160);
    $html = $descrizione === '' ? '' : '<meta name="description" content="' . kvHtml($descrizione) . "\">\n";
    if ($riservata) {
        return $html . "<meta name=\"robots\" content=\"noindex\">\n";
    }
    $html .= '<link rel="canonical" href="' . kvHtml(kvAssoluto(kvFile() . kvParteMostrata())) . "\">\n";
    foreach (count(kvLingue()) > 1 ? kvLingue() : [] as $n => list($file, $codice)) {
        foreach (array_filter([$codice, $n === 1 ? 'x-default' : '']) as $per) {
            $html .= "<link rel=\"alternate\" hreflang=\"$per\" href=\"" . kvHtml(kvAssoluto($file)) . "\">\n";
        }
    }
    include_once "kvsociale.php";
    return $html . kvDatiSociali($descrizione);
}

/** The keywords of the shop for search engines that still read them; nothing without any. */
function kvParoleChiave(string $parole): string
{
    $parole = TestoSemplice($parole);
    return $parole === '' ? '' : "<meta name=\"keywords\" content=\"$parole\">\n";
}

/** The shop's logo from its tag, named; its name alone without one. */
function kvLogo(string $tag): string
{
    $logo = kvImmagine($tag);
    return $logo === null ? '<span>' . kvNome() . '</span>' : kvTagImmagine($logo, kvNome(), false);
}

/**
 * The title of a department taken apart, as the build writes it where it holds the way there and the sub-departments:
 * titolo (HTML), percorso and sotto, each a list of [link, title].
 */
function kvReparto(string $titolo): array
{
    $voce = '<a href="([^"]*)">(.*?)<\/a>';
    $coppie = function (string $testo) use ($voce): array {
        preg_match_all("/$voce/s", $testo, $trovati, PREG_SET_ORDER);
        return array_map(fn($trovato) => [$trovato[1], TestoSemplice($trovato[2])], $trovati);
    };
    preg_match("/^((?:<font size=\"1\">$voce &gt; <\/font>)*)(.*?)(<BR><font size=\"1\">&gt;&gt;&nbsp;<\/font>.*)?$/s",
        trim($titolo), $parti);
    return ['titolo' => kvPulito($parti[4] ?? $titolo), 'percorso' => $coppie($parti[1] ?? ''),
        'sotto' => $coppie($parti[5] ?? '')];
}

/** The links to the sub-departments; nothing without any. */
function kvSottoreparti(array $reparto): string
{
    $voci = '';
    foreach ($reparto['sotto'] as list($link, $titolo)) {
        $voci .= '<li><a href="' . kvHtml($link) . '">' . $titolo . '</a></li>';
    }
    return $voci === '' ? '' : '<ul class="sottoreparti">' . $voci . "</ul>\n";
}

/** The departments of the first level from the tree of the template's menu; nothing without any. */
function kvRepartiPrimi(string $albero): string
{
    preg_match_all('/<a class="primo"[^>]*>.*?<\/a>/s', $albero, $trovati);
    return $trovati[0] === [] ? ''
        : kvPulito('<ul class="sottoreparti"><li>' . implode('</li><li>', $trovati[0]) . "</li></ul>\n");
}

/** The way from the shop's first page to this one, the last step being the page itself; `fine` names an article. */
function kvPercorso(array $reparto, string $fine = ''): string
{
    $passi = array_merge([["index.htm", kvHtml("<<4-menu_inizio>>")]], $reparto['percorso']);
    $passi[] = [kvFile() . '?n=' . (int) $GLOBALS['sp'], TestoSemplice($reparto['titolo'])];
    if ($fine !== '') {
        $passi[] = [kvFile() . kvParteMostrata(), TestoSemplice($fine)];
    }
    $elenco = [];
    $html = '';
    foreach ($passi as $n => list($link, $titolo)) {
        $ultimo = $n === count($passi) - 1;
        $html .= $ultimo ? "<li><span aria-current=\"page\">$titolo</span></li>"
            : '<li><a href="' . kvHtml($link) . "\">$titolo</a></li>";
        $elenco[] = ['@type' => 'ListItem', 'position' => $n + 1, 'name' => kvParola($titolo),
            'item' => kvAssoluto($link)];
    }
    return '<nav class="percorso" aria-label="' . kvHtml("<<4-percorso>>") . "\"><ol>$html</ol></nav>\n"
        . kvDati(['@context' => 'https://schema.org', '@type' => 'BreadcrumbList', 'itemListElement' => $elenco]);
}

/** Structured data of the page. Source: JSON-LD 1.1, section 7 (in HTML); all that could end the element is escaped. */
function kvDati(array $dati): string
{
    return '<script type="application/ld+json">' . json_encode($dati, JSON_HEX_TAG | JSON_HEX_AMP | JSON_HEX_APOS
        | JSON_UNESCAPED_SLASHES | JSON_INVALID_UTF8_SUBSTITUTE) . "</script>\n";
}

/** HTML text as a value of structured data. */
function kvParola(string $html): string
{
    return kvUtf8(html_entity_decode(TestoSemplice($html), ENT_QUOTES, 'cp1252'));
}

/** The links to the sub-pages of a department: the first, the last, those around the present one, back and on. */
function kvPagine(int $pagina, int $pagine): string
{
    if ($pagine < 2) {
        return '';
    }
    $voce = fn(int $n, string $segno, string $altro) => '<a href="' . kvHtml(kvFile() . "?n=$n" . kvCodaScelte())
        . "\"$altro>$segno</a>";
    $voci = $pagina > 1 ? '<li>' . $voce($pagina - 1, '&lsaquo; ' . kvHtml("<<4-precedente>>"), ' rel="prev"') . '</li>' : '';
    $ultima = 0;
    for ($n = 1; $n <= $pagine; $n++) {
        if ($n > 1 && $n < $pagine && abs($n - $pagina) > 2) {
            continue;
        }
        $voci .= $n > $ultima + 1 ? '<li aria-hidden="true">&hellip;</li>' : '';
        $ultima = $n;
        $voci .= $n === $pagina ? "<li><span aria-current=\"page\">$n</span></li>" : '<li>' . $voce($n, (string) $n, '') . '</li>';
    }
    $voci .= $pagina < $pagine ? '<li>' . $voce($pagina + 1, kvHtml("<<4-seguente>>") . ' &rsaquo;', ' rel="next"') . '</li>' : '';
    return '<nav class="pagine" aria-label="' . kvHtml("<<4-pagine>>") . "\"><ul>$voci</ul></nav>\n";
}

/** The entries of a department's list of the build as links without pictures; nothing when it has none. */
function kvIndice(string $elenco): string
{
    preg_match_all('/<a href="([^"]*)">(.*?)<\/a>/s', $elenco, $trovati, PREG_SET_ORDER);
    $voci = '';
    foreach ($trovati as $trovato) {
        $testo = TestoSemplice(str_ireplace('<br>', ' ', $trovato[2]));
        $voci .= $testo === '' ? '' : '<li><a href="' . kvHtml($trovato[1]) . '">' . $testo . '</a></li>';
    }
    return $voci === '' ? '' : '<ul class="elenco">' . $voci . "</ul>\n";
}

/** A select of the build, fit for a label; with the attributes given. */
function kvScelta(string $select, string $attributi = ''): string
{
    return preg_replace('/<select /', '<select ' . ($attributi === '' ? '' : $attributi . ' '),
        str_replace(' size="1"', '', kvPulito($select)), 1);
}
