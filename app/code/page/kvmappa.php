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

/** How many parts the map of a language has; 0 for a language that the shop hasn't. During a load (kvshadow.php). */
function kvPartiMappa(string $lingua): int
{
    $tabella = 'articoli' . $lingua;
    $quanti = kvEsiste($tabella) ? (int) (kvRiga('SELECT COUNT(*) AS n' . kvArticoliVisibili($tabella))['n'] ?? 0) : 0;
    return $lingua === '' ? max(1, (int) ceil($quanti / KV_PAGINE_MAPPA)) : (int) ceil($quanti / KV_PAGINE_MAPPA);
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

/** Renews sitemap.xml and robots.txt after a load. */
function kvScriviMappe(): void
{
    $negozio = rtrim("<<1-perl_shopURL>>", '/');
    if (!preg_match('~^https?://[^/]~i', $negozio)) {
        return;
    }
    $xml = '<?xml version="1.0" encoding="UTF-8"?>' . "\n" . '<sitemapindex xmlns="http://www.sitemaps.org/schemas/sitemap/0.9">' . "\n";
    foreach (['', '_l2', '_l3', '_l4'] as $lingua) {
        for ($parte = 1, $parti = kvPartiMappa($lingua); $parte <= $parti; $parte++) {
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
