<?php
// ***1.0.7***
// Addresses of the shop for search engines: the parts of its map, and the two files that lead there, sitemap.xml and
// robots.txt. These are written at each load, since the host alone knows when the catalogue is another one.
// Source: sitemaps.org, protocol 0.9; RFC 9309 (robots.txt).

/** Addresses in one part; the protocol allows 50,000. */
const KV_PAGINE_MAPPA = 20000;
/** What the first line of a robots.txt of ours says; a merchant's own is never touched. */
const KV_ROBOTS = '# Scritto dal negozio a ogni aggiornamento: senza questa riga resta com\'e\'.';

/** The condition of a table of articles for those that every visitor sees. */
function kvArticoliVisibili(string $tabella): string
{
    return " FROM $tabella INNER JOIN dettaglio USING (ID) INNER JOIN ordinamento USING (ID) INNER JOIN categorie"
        . ' ON categorie.ID = catID WHERE nascosto = 0 AND inaccessibile = 0';
}

/**
 * How many of so many articles of a language every visitor sees. The index of words has a narrow row for each, with its
 * department; the rows of the catalogue are wide, and a large one doesn't fit into the server's memory.
 */
function kvQuantiVisibili(string $lingua, int $tutti): int
{
    if (!kvEsiste("kv_voci$lingua")) {
        return (int) (kvRiga('SELECT COUNT(*) AS n' . kvArticoliVisibili("articoli$lingua"))['n'] ?? 0);
    }
    $chiusi = kvQuery('SELECT ID FROM categorie WHERE NOT (nascosto = 0 AND inaccessibile = 0)') ?? [];
    if ($chiusi === []) {
        return $tutti;
    }
    $reparti = implode(',', array_fill(0, count($chiusi), '?'));
    return $tutti - (int) (kvRiga("SELECT COUNT(*) AS n FROM kv_voci$lingua WHERE reparto IN ($reparti)",
        array_column($chiusi, 'ID'))['n'] ?? 0);
}

/** How many parts the map of a language has; 0 for a language that the shop hasn't. During a load (kvshadow.php). */
function kvPartiMappa(string $lingua): int
{
    $tabella = 'articoli' . $lingua;
    if (!kvEsiste($tabella)) {
        return $lingua === '' ? 1 : 0;
    }
    // Which articles are visible takes long to count, and seldom says more than that there is one.
    $tutti = (int) (kvRiga("SELECT COUNT(*) AS n FROM $tabella")['n'] ?? 0);
    if ($tutti <= KV_PAGINE_MAPPA) {
        return $lingua === '' || kvRiga('SELECT 1' . kvArticoliVisibili($tabella) . ' LIMIT 1') !== null ? 1 : 0;
    }
    $quanti = kvQuantiVisibili($lingua, $tutti);
    return $lingua === '' ? max(1, (int) ceil($quanti / KV_PAGINE_MAPPA)) : (int) ceil($quanti / KV_PAGINE_MAPPA);
}

/**
 * The same for any language while one is loaded: counted for that one, and kept. The others are counted by their own
 * loads, which each publishing brings.
 */
function kvPartiTenute(string $lingua, string $caricata): int
{
    $tenute = kvStato("mappa$lingua");
    if ($lingua !== $caricata && ctype_digit($tenute) && kvEsiste("articoli$lingua")) {
        return (int) $tenute;
    }
    $parti = kvPartiMappa($lingua);
    if ((string) $parti !== $tenute && kvMettiStato("mappa$lingua", (string) $parti)) {
        kvQuery('COMMIT');
    }
    return $parti;
}

/** One part of the map of this language. */
function kvMappa(int $parte): string
{
    $tabella = kvTabellaLingua('articoli');
    $pagine = [];
    if ($parte === 1) {
        $pagine = ["index.htm", "condizioni.htm", "recesso.htm", "datipers.htm"];
        foreach (kvQuery("SELECT DISTINCT $tabella.pagina, sottopagina" . kvArticoliVisibili($tabella) . ' ORDER BY 1, 2') ?? [] as $riga) {
            $pagine[] = $riga['pagina'] . '.php?n=' . (int) $riga['sottopagina'];
        }
    }
    $righe = kvQuery("SELECT $tabella.pagina AS linkPage, sottopagina, contatore" . kvArticoliVisibili($tabella)
        . " ORDER BY $tabella.ID LIMIT ? OFFSET ?", [KV_PAGINE_MAPPA, ($parte - 1) * KV_PAGINE_MAPPA]);
    $pagine = array_merge($pagine, array_map('kvPaginaArticolo', $righe ?? []));
    $xml = '<?xml version="1.0" encoding="UTF-8"?>' . "\n" . '<urlset xmlns="http://www.sitemaps.org/schemas/sitemap/0.9">' . "\n";
    foreach ($pagine as $pagina) {
        $xml .= '<url><loc>' . htmlspecialchars(kvUtf8(kvAssoluto($pagina)), ENT_XML1) . "</loc></url>\n";
    }
    return $xml . "</urlset>\n";
}

/** Writes a file of the site, whole or not at all. A host whose folder can't be written goes without. */
function kvScriviFile(string $nome, string $testo): void
{
    if (@file_put_contents($nome . '.nuovo', $testo) === strlen($testo)) {
        @rename($nome . '.nuovo', $nome);
    }
}

/** Renews sitemap.xml and robots.txt after the load of a language. */
function kvScriviMappe(string $caricata): void
{
    $negozio = rtrim("<<1-perl_shopURL>>", '/');
    if (!preg_match('~^https?://[^/]~i', $negozio)) {
        return;
    }
    $xml = '<?xml version="1.0" encoding="UTF-8"?>' . "\n" . '<sitemapindex xmlns="http://www.sitemaps.org/schemas/sitemap/0.9">' . "\n";
    foreach (['', '_l2', '_l3', '_l4'] as $lingua) {
        for ($parte = 1, $parti = kvPartiTenute($lingua, $caricata); $parte <= $parti; $parte++) {
            $xml .= '<sitemap><loc>' . htmlspecialchars(kvUtf8("$negozio/kvsitemap$lingua.php?p=$parte"), ENT_XML1) . "</loc></sitemap>\n";
        }
    }
    kvScriviFile('sitemap.xml', $xml . "</sitemapindex>\n");
    $prima = is_file('robots.txt') ? rtrim((string) strtok((string) @file_get_contents('robots.txt'), "\n")) : KV_ROBOTS;
    if ($prima === KV_ROBOTS) {
        $cartella = rtrim((string) parse_url($negozio, PHP_URL_PATH), '/');
        $vietate = '';
        foreach (['kvsearch', 'kvsuggerisci', 'kvcarrello', 'kvminicarrello', 'kvorder', 'updatedb'] as $pagina) {
            $vietate .= "Disallow: $cartella/$pagina\n";
        }
        kvScriviFile('robots.txt', KV_ROBOTS . "\nUser-agent: *\n{$vietate}Sitemap: $negozio/sitemap.xml\n");
    }
}
