<?php
// ***1.0.7***
// Addresses of the shop for search engines: the parts of its map, and the two files that lead there, sitemap.xml and
// robots.txt. These are written at each load, since the host alone knows when the catalogue is another one.
// Source: sitemaps.org, protocol 0.9; RFC 9309 (robots.txt).

/** Addresses in one part; the protocol allows 50,000. */
const KV_MAP_PAGES = 20000;
/** What the first line of a robots.txt of ours says; a merchant's own is never touched. */
const KV_ROBOTS = '# Scritto dal negozio a ogni aggiornamento: senza questa riga resta com\'e\'.';

/** The condition of a table of articles for those that every visitor sees. */
function kvVisibleArticles(string $table): string
{
    return " FROM $table INNER JOIN dettaglio USING (ID) INNER JOIN ordinamento USING (ID) INNER JOIN categorie"
        . ' ON categorie.ID = catID WHERE nascosto = 0 AND inaccessibile = 0';
}

/**
 * How many of so many articles of a language every visitor sees. The index of words has a narrow row for each, with its
 * department; the rows of the catalogue are wide, and a large one doesn't fit into the server's memory.
 */
function kvCountVisible(string $language, int $all): int
{
    if (!kvTableExists("kv_voci$language")) {
        return (int) (kvRiga('SELECT COUNT(*) AS n' . kvVisibleArticles("articoli$language"))['n'] ?? 0);
    }
    $closed = kvQuery('SELECT ID FROM categorie WHERE NOT (nascosto = 0 AND inaccessibile = 0)') ?? [];
    if ($closed === []) {
        return $all;
    }
    $departments = implode(',', array_fill(0, count($closed), '?'));
    return $all - (int) (kvRiga("SELECT COUNT(*) AS n FROM kv_voci$language WHERE reparto IN ($departments)",
        array_column($closed, 'ID'))['n'] ?? 0);
}

/** How many parts the map of a language has; 0 for a language that the shop hasn't. During a load (kvshadow.php). */
function kvMapParts(string $language): int
{
    $table = 'articoli' . $language;
    if (!kvTableExists($table)) {
        return $language === '' ? 1 : 0;
    }
    // Which articles are visible takes long to count, and seldom says more than that there is one.
    $all = (int) (kvRiga("SELECT COUNT(*) AS n FROM $table")['n'] ?? 0);
    if ($all <= KV_MAP_PAGES) {
        return $language === '' || kvRiga('SELECT 1' . kvVisibleArticles($table) . ' LIMIT 1') !== null ? 1 : 0;
    }
    $count = kvCountVisible($language, $all);
    return $language === '' ? max(1, (int) ceil($count / KV_MAP_PAGES)) : (int) ceil($count / KV_MAP_PAGES);
}

/**
 * The same for any language while one is loaded: counted for that one, and kept. The others are counted by their own
 * loads, which each publishing brings.
 */
function kvKeptMapParts(string $language, string $loaded): int
{
    $kept = kvStoredValue("mappa$language");
    if ($language !== $loaded && ctype_digit($kept) && kvTableExists("articoli$language")) {
        return (int) $kept;
    }
    $parts = kvMapParts($language);
    if ((string) $parts !== $kept && kvStoreValue("mappa$language", (string) $parts)) {
        kvQuery('COMMIT');
    }
    return $parts;
}

/** One part of the map of this language. */
function kvSiteMap(int $part): string
{
    $table = kvLanguageTable('articoli');
    $pages = [];
    if ($part === 1) {
        $pages = ["index.htm", "condizioni.htm", "recesso.htm", "datipers.htm"];
        foreach (kvQuery("SELECT DISTINCT $table.pagina, sottopagina" . kvVisibleArticles($table) . ' ORDER BY 1, 2') ?? [] as $row) {
            $pages[] = $row['pagina'] . '.php?n=' . (int) $row['sottopagina'];
        }
    }
    $rows = kvQuery("SELECT $table.pagina AS linkPage, sottopagina, contatore" . kvVisibleArticles($table)
        . " ORDER BY $table.ID LIMIT ? OFFSET ?", [KV_MAP_PAGES, ($part - 1) * KV_MAP_PAGES]);
    $pages = array_merge($pages, array_map('kvArticlePage', $rows ?? []));
    $xml = '<?xml version="1.0" encoding="UTF-8"?>' . "\n" . '<urlset xmlns="http://www.sitemaps.org/schemas/sitemap/0.9">' . "\n";
    foreach ($pages as $page) {
        $xml .= '<url><loc>' . htmlspecialchars(kvUtf8(kvAbsoluteAddress($page)), ENT_XML1) . "</loc></url>\n";
    }
    return $xml . "</urlset>\n";
}

/** Writes a file of the site, whole or not at all. A host whose folder can't be written goes without. */
function kvWriteFile(string $name, string $text): void
{
    if (@file_put_contents($name . '.nuovo', $text) === strlen($text)) {
        @rename($name . '.nuovo', $name);
    }
}

/** Renews sitemap.xml and robots.txt after the load of a language. */
function kvWriteMaps(string $loaded): void
{
    $shop = rtrim("<<1-perl_shopURL>>", '/');
    if (!preg_match('~^https?://[^/]~i', $shop)) {
        return;
    }
    $xml = '<?xml version="1.0" encoding="UTF-8"?>' . "\n" . '<sitemapindex xmlns="http://www.sitemaps.org/schemas/sitemap/0.9">' . "\n";
    foreach (['', '_l2', '_l3', '_l4'] as $language) {
        for ($part = 1, $parts = kvKeptMapParts($language, $loaded); $part <= $parts; $part++) {
            $xml .= '<sitemap><loc>' . htmlspecialchars(kvUtf8("$shop/kvsitemap$language.php?p=$part"), ENT_XML1) . "</loc></sitemap>\n";
        }
    }
    kvWriteFile('sitemap.xml', $xml . "</sitemapindex>\n");
    $first = is_file('robots.txt') ? rtrim((string) strtok((string) @file_get_contents('robots.txt'), "\n")) : KV_ROBOTS;
    if ($first === KV_ROBOTS) {
        $folder = rtrim((string) parse_url($shop, PHP_URL_PATH), '/');
        $forbidden = '';
        foreach (['kvsearch', 'kvsuggerisci', 'kvcarrello', 'kvminicarrello', 'kvorder', 'updatedb'] as $page) {
            $forbidden .= "Disallow: $folder/$page\n";
        }
        kvWriteFile('robots.txt', KV_ROBOTS . "\nUser-agent: *\n{$forbidden}Sitemap: $shop/sitemap.xml\n");
    }
}
