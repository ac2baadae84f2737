<?php
// ***1.0.7***
// What the templates ask for beyond the tags of the build: the page's head (colours, description, addresses for search
// engines), the languages, the way to the department, the pager. Everything returned is HTML, escaped.
include_once "kvhtml.php";
include_once "kvpalette.php";
include_once "kvcard.php";
include_once "kvfiltro.php";

/** The language codes and own names of the modules, by their file names. Source: BCP 47. */
const KV_LANGUAGES = ['italiano' => ['it', 'Italiano'], 'inglese' => ['en', 'English'], 'francese' => ['fr', "Fran\xE7ais"],
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
function kvTitolo(string $html, int $subpage = 1): string
{
    $title = TestoSemplice($html);
    $GLOBALS['kvTitoloPagina'] = $title;
    return ($title === '' ? '' : $title . ($subpage > 1 ? " ($subpage)" : '') . ' - ') . kvNome();
}

/** The file of this page. */
function kvPageFile(): string
{
    return basename(str_replace('\\', '/', (string) ($_SERVER['SCRIPT_NAME'] ?? '')));
}

/** What marks the link to this page itself. */
function kvCorrente(string $file): string
{
    return $file === kvPageFile() ? ' aria-current="page"' : '';
}

/** A file of the shop with its full address, as search engines ask for it; encrypted when this page came so. */
function kvAbsoluteAddress(string $file): string
{
    $address = kvIndirizzo($file);
    return kvIsEncrypted() ? preg_replace('/^http:/i', 'https:', $address) : $address;
}

/** Which part of a department page is shown, as its address tells it; empty on all other pages. */
function kvShownPart(): string
{
    global $sp, $HTTP_GET_VARS;
    if (!isset($sp)) {
        return '';
    }
    return '?n=' . (kvListChoices()['active'] ? 1 : (int) $sp) . ($HTTP_GET_VARS['prod'] > 0 ? '&prod=' . $HTTP_GET_VARS['prod'] : '');
}

/**
 * The page in the other languages, from the links of the tags lingua1 to lingua4, joined by "|": by language number
 * [file, code, name]. The language of the page itself has no link. Kept: later calls may leave the links out.
 */
function kvLingue(?string $links = null): array
{
    static $languages = [];
    if ($links === null) {
        return $languages;
    }
    $languages = [];
    $own = (int) substr((string) ($GLOBALS['Lingua'] ?? ''), 2) ?: 1;
    foreach (explode('|', $links) as $n => $link) {
        $code = '';
        if (preg_match('/<a href="([^"]*)">(?:<img src="kvan_([^"]*)\.gif"|([^<]*))/', $link, $parts)) {
            $code = $parts[2] !== '' ? $parts[2] : (string) ($parts[3] ?? '');
            $file = strpos($parts[1], '?') === false ? $parts[1] : strstr($parts[1], '?', true);
        } elseif ($n + 1 === $own) {
            $code = array_search("<<4-codice_lingua>>", array_column(KV_LANGUAGES, 0), true);
            $code = $code === false ? "<<4-codice_lingua>>" : array_keys(KV_LANGUAGES)[$code];
            $file = kvPageFile();
        } else {
            continue;
        }
        // A script that shows its own words through another page leads to itself.
        $file = isset($GLOBALS['kvPageLanguages']) ? $GLOBALS['kvPageLanguages'] . ($n === 0 ? '' : '_l' . ($n + 1)) . '.php' : $file;
        $languages[$n + 1] = [$file . kvShownPart()] + [1 => '', 2 => ucfirst($code)];
        if (isset(KV_LANGUAGES[strtolower($code)])) {
            $languages[$n + 1] = array_merge([$file . kvShownPart()], KV_LANGUAGES[strtolower($code)]);
        }
    }
    return $languages;
}

/** The links to the other languages as list items; nothing in a shop of one language. */
function kvVociLingue(): string
{
    $entries = '';
    $own = (int) substr((string) ($GLOBALS['Lingua'] ?? ''), 2) ?: 1;
    foreach (count(kvLingue()) > 1 ? kvLingue() : [] as $n => list($file, $code, $name)) {
        $mark = $code === '' ? '' : ' lang="' . $code . '"';
        $text = '<span class="lungo">' . kvHtml($name) . '</span><span class="breve" aria-hidden="true">'
            . kvHtml(strtoupper($code === '' ? substr($name, 0, 2) : $code)) . '</span>';
        $entries .= $n === $own
            ? '<li><span' . $mark . ' aria-current="true">' . $text . '</span></li>'
            : '<li><a href="' . kvHtml($file) . '"' . ($code === '' ? '' : $mark . ' hreflang="' . $code . '"') . '>'
                . $text . '</a></li>';
    }
    return $entries;
}

/**
 * What search engines read in the head: the description (`text`, else the shop's), the page's address and those in
 * the other languages. A page that is for the visitor alone (order, access, search) asks to be left out instead.
 */
function kvTesta(bool $isReserved = false, string $text = ''): string
{
    $description = kvFirstWords($text !== '' ? $text : <<<'KORVANE_VALORI'
<<1-meta_description>>
KORVANE_VALORI
        , 160);
    $html = $description === '' ? '' : '<meta name="description" content="' . kvHtml($description) . "\">\n";
    if ($isReserved) {
        return $html . "<meta name=\"robots\" content=\"noindex\">\n";
    }
    $html .= '<link rel="canonical" href="' . kvHtml(kvAbsoluteAddress(kvPageFile() . kvShownPart())) . "\">\n";
    foreach (count(kvLingue()) > 1 ? kvLingue() : [] as $n => list($file, $code)) {
        foreach (array_filter([$code, $n === 1 ? 'x-default' : '']) as $per) {
            $html .= "<link rel=\"alternate\" hreflang=\"$per\" href=\"" . kvHtml(kvAbsoluteAddress($file)) . "\">\n";
        }
    }
    include_once "kvsociale.php";
    return $html . kvSocialData($description);
}

/** The keywords of the shop for search engines that still read them; nothing without any. */
function kvParoleChiave(string $words): string
{
    $words = TestoSemplice($words);
    return $words === '' ? '' : "<meta name=\"keywords\" content=\"$words\">\n";
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
function kvReparto(string $title): array
{
    $entry = '<a href="([^"]*)">(.*?)<\/a>';
    $pairs = function (string $text) use ($entry): array {
        preg_match_all("/$entry/s", $text, $found, PREG_SET_ORDER);
        return array_map(fn($match) => [$match[1], TestoSemplice($match[2])], $found);
    };
    preg_match("/^((?:<font size=\"1\">$entry &gt; <\/font>)*)(.*?)(<BR><font size=\"1\">&gt;&gt;&nbsp;<\/font>.*)?$/s",
        trim($title), $parts);
    return ['titolo' => kvPulito($parts[4] ?? $title), 'percorso' => $pairs($parts[1] ?? ''),
        'sotto' => $pairs($parts[5] ?? '')];
}

/** The links to the sub-departments; nothing without any. */
function kvSottoreparti(array $department): string
{
    $entries = '';
    foreach ($department['sotto'] as list($link, $title)) {
        $entries .= '<li><a href="' . kvHtml($link) . '">' . $title . '</a></li>';
    }
    return $entries === '' ? '' : '<ul class="sottoreparti">' . $entries . "</ul>\n";
}

/** The departments of the first level from the tree of the template's menu; nothing without any. */
function kvRepartiPrimi(string $tree): string
{
    preg_match_all('/<a class="primo"[^>]*>.*?<\/a>/s', $tree, $found);
    return $found[0] === [] ? ''
        : kvPulito('<ul class="sottoreparti"><li>' . implode('</li><li>', $found[0]) . "</li></ul>\n");
}

/** The way from the shop's first page to this one, the last step being the page itself; `end` names an article. */
function kvPercorso(array $department, string $end = ''): string
{
    $steps = array_merge([["index.htm", kvHtml("<<4-menu_inizio>>")]], $department['percorso']);
    $steps[] = [kvPageFile() . '?n=' . (int) $GLOBALS['sp'], TestoSemplice($department['titolo'])];
    if ($end !== '') {
        $steps[] = [kvPageFile() . kvShownPart(), TestoSemplice($end)];
    }
    $list = [];
    $html = '';
    foreach ($steps as $n => list($link, $title)) {
        $last = $n === count($steps) - 1;
        $html .= $last ? "<li><span aria-current=\"page\">$title</span></li>"
            : '<li><a href="' . kvHtml($link) . "\">$title</a></li>";
        $list[] = ['@type' => 'ListItem', 'position' => $n + 1, 'name' => kvDataText($title),
            'item' => kvAbsoluteAddress($link)];
    }
    return '<nav class="percorso" aria-label="' . kvHtml("<<4-percorso>>") . "\"><ol>$html</ol></nav>\n"
        . kvStructuredData(['@context' => 'https://schema.org', '@type' => 'BreadcrumbList', 'itemListElement' => $list]);
}

/** Structured data of the page. Source: JSON-LD 1.1, section 7 (in HTML); all that could end the element is escaped. */
function kvStructuredData(array $data): string
{
    return '<script type="application/ld+json">' . json_encode($data, JSON_HEX_TAG | JSON_HEX_AMP | JSON_HEX_APOS
        | JSON_UNESCAPED_SLASHES | JSON_INVALID_UTF8_SUBSTITUTE) . "</script>\n";
}

/** HTML text as a value of structured data. */
function kvDataText(string $html): string
{
    return kvUtf8(html_entity_decode(TestoSemplice($html), ENT_QUOTES, 'cp1252'));
}

/** The links to the sub-pages of a department: the first, the last, those around the present one, back and on. */
function kvPagine(int $page, int $pages): string
{
    if ($pages < 2) {
        return '';
    }
    $entry = fn(int $n, string $mark, string $other) => '<a href="' . kvHtml(kvPageFile() . "?n=$n" . kvChoicesQuery())
        . "\"$other>$mark</a>";
    $entries = $page > 1 ? '<li>' . $entry($page - 1, '&lsaquo; ' . kvHtml("<<4-precedente>>"), ' rel="prev"') . '</li>' : '';
    $last = 0;
    for ($n = 1; $n <= $pages; $n++) {
        if ($n > 1 && $n < $pages && abs($n - $page) > 2) {
            continue;
        }
        $entries .= $n > $last + 1 ? '<li aria-hidden="true">&hellip;</li>' : '';
        $last = $n;
        $entries .= $n === $page ? "<li><span aria-current=\"page\">$n</span></li>" : '<li>' . $entry($n, (string) $n, '') . '</li>';
    }
    $entries .= $page < $pages ? '<li>' . $entry($page + 1, kvHtml("<<4-seguente>>") . ' &rsaquo;', ' rel="next"') . '</li>' : '';
    return '<nav class="pagine" aria-label="' . kvHtml("<<4-pagine>>") . "\"><ul>$entries</ul></nav>\n";
}

/** The entries of a department's list of the build as links without pictures; nothing when it has none. */
function kvIndice(string $list): string
{
    preg_match_all('/<a href="([^"]*)">(.*?)<\/a>/s', $list, $found, PREG_SET_ORDER);
    $entries = '';
    foreach ($found as $match) {
        $text = TestoSemplice(str_ireplace('<br>', ' ', $match[2]));
        $entries .= $text === '' ? '' : '<li><a href="' . kvHtml($match[1]) . '">' . $text . '</a></li>';
    }
    return $entries === '' ? '' : '<ul class="elenco">' . $entries . "</ul>\n";
}

/** A select of the build, fit for a label; with the attributes given. */
function kvScelta(string $select, string $attributes = ''): string
{
    return preg_replace('/<select /', '<select ' . ($attributes === '' ? '' : $attributes . ' '),
        str_replace(' size="1"', '', kvPulito($select)), 1);
}
